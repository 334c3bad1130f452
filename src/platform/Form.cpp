#include "platform/Form.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "platform/ControlHabits.h"
#include "platform/ScreenFit.h"
#include "platform/WindowPlace.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCloseEvent>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace {

/// Calls a function once, behind the first paint of a window or after a moment without one.
class BehindFirstPaint final : public QObject {
public:
    BehindFirstPaint(QWidget& window, std::function<void()> call) : QObject(&window), call_(std::move(call)) {
        window.installEventFilter(this);
        QTimer::singleShot(250, this, [this] { Fire(); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && !queued_) {
            queued_ = true;
            QTimer::singleShot(0, this, [this] { Fire(); });
        }
        return false;
    }

private:
    void Fire() {
        if (!call_) return;
        const auto call = std::exchange(call_, nullptr);
        deleteLater();
        call();
    }

    std::function<void()> call_;
    bool queued_ = false;
};

} // namespace

// ---- waiting ----

void WaitInLoop(const std::function<bool()>& condition, QEventLoop::ProcessEventsFlags events) {
    const auto holds = [&] { return !Global.Ending && condition(); };
    if (!holds()) return;
    QEventLoop loop;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                     [&] {
                         if (!holds()) loop.quit();
                     });
    loop.exec(events);
}

bool FormBehaviour::IsOver() const {
    return gone_ || Global.Ending;
}

void FormBehaviour::WaitWhile(const std::function<bool()>& condition) {
    WaitInLoop([&] { return !gone_ && condition(); });
}

void FormBehaviour::PauseFor(double seconds) {
    if (Global.InstantPauses) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return;
    }
    QTimer pause;
    pause.setSingleShot(true);
    pause.start(static_cast<int>(seconds * 1000));
    WaitInLoop([&] { return !gone_ && pause.isActive(); }, QEventLoop::ExcludeUserInputEvents);
}

// ---- handlers ----

void FormBehaviour::Run(const std::function<void()>& handler) {
    ++running_;
    try {
        handler();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    Leave();
}

bool FormBehaviour::Try(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

void FormBehaviour::Trace(std::string_view routine) const {
    const QWidget& window = const_cast<FormBehaviour*>(this)->Window();
    TraceEvent(std::string(window.metaObject()->className()) + ":" + std::string(routine));
}

// ---- the life of a form ----

void FormBehaviour::LoadNow() {
    ++running_;
    try {
        QWidget& window = Window();
        window.setObjectName(QString::fromLatin1(window.metaObject()->className()));
        TeachHabits(window);
        WireControls();
        FillCaptions(window);
        WireHelp(window);
        new ScreenFit(window);
        Form_Load();
    } catch (...) {
        // The failure is the caller's, who asked for the form; half a form is no form.
        Unload();
        Leave();
        throw;
    }
    Leave();
}

void FormBehaviour::Leave() {
    if (--running_ == 0 && gone_) FormRegistry::Instance().Release(*this);
}

void FormBehaviour::QueueGotFocus() {
    new BehindFirstPaint(Window(), [this] {
        if (!IsOver()) Run([this] { Form_GotFocus(); });
    });
}

void FormBehaviour::Show(ShowMode mode) {
    if (IsOver()) return;
    QWidget& window = Window();
    // An object that has gone must outlive the wait below.
    ++running_;
    window.setWindowModality(mode == ShowMode::Modal ? Qt::ApplicationModal : Qt::NonModal);
    if (mode == ShowMode::Modeless) FormRegistry::BelongToModal(window);
    FormRegistry::Instance().Raise(*this);
    QueueGotFocus();
    if (!window.isVisible()) RestorePlace(window);
    window.show();
    window.raise();
    window.activateWindow();
    if (mode == ShowMode::Modal) WaitInLoop([this] { return !gone_; });
    Leave();
}

void FormBehaviour::Unload() {
    if (gone_) return;
    ++running_;
    // From here on no event starts a handler, and a second Unload does nothing.
    gone_ = true;
    try {
        Form_Unload();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    KeepPlace(Window());
    Window().hide();
    FormRegistry::Instance().PassOn(Window().windowHandle());
    FormRegistry::Instance().Forget(*this);
    Leave();
}

void FormBehaviour::PressEscape() {
    for (const char* name : {"cmdCancel", "cmdOK"}) {
        auto* button = Window().findChild<QAbstractButton*>(QString::fromLatin1(name));
        if (!button || button->isHidden()) continue;
        if (button->isEnabled()) button->click();
        return;
    }
}

void Form::closeEvent(QCloseEvent* event) {
    event->ignore();
    auto* cancel = findChild<QAbstractButton*>(QStringLiteral("cmdCancel"));
    // While the way out is shut (an operation runs), so is the window's own cross.
    if (cancel && !cancel->isEnabled()) return;
    Unload();
}

void MainForm::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (QApplication::activeModalWidget()) return;
    Unload();
}

// ---- the end ----

void EndProgram(int exitCode) {
    // The first reason to end is the one that counts.
    if (!Global.Ending) Global.ExitCode = exitCode;
    Global.Ending = true;
    QCoreApplication::exit(Global.ExitCode);
}

void FailUnexpectedly(const std::exception& failure) {
    if (Global.Ending) return;
    // Before the box, so that no timer can start a handler that fails on top of this one.
    Global.Ending = true;
    Global.ExitCode = 1;
    const Text words = Text::Path(std::string_view(failure.what()));
    Tell(Lines(words, Text::Value(Global.Events.Entry(0))), Icon::Stop);
    EndProgram(1);
}
