#include "platform/Form.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "platform/Convert.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QEventLoop>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMetaMethod>
#include <QTableView>
#include <QTimer>

#include <algorithm>

namespace {

/// A handler's name cut at its last underscore; false when it has none.
bool SplitHandler(const QMetaMethod& method, QString& control, QString& event) {
    const QString name = QString::fromLatin1(method.name());
    const qsizetype cut = name.lastIndexOf(QLatin1Char('_'));
    if (cut <= 0) return false;
    control = name.left(cut);
    event = name.mid(cut + 1);
    return control != QLatin1String("Form");
}

/// The index of an element of a control array: "cmdX_3" is element 3 of "cmdX"; -1 for any other.
int ElementIndex(const QString& name, const QString& control) {
    if (!name.startsWith(control + QLatin1Char('_'))) return -1;
    bool isNumber = false;
    const int index = name.mid(control.size() + 1).toInt(&isNumber);
    return isNumber ? index : -1;
}

int FirstOwnMethod(const QWidget& window) {
    return qobject_cast<const QDialog*>(&window) ? QDialog::staticMetaObject.methodCount()
                                                 : QMainWindow::staticMetaObject.methodCount();
}

/// Controls of Qt's own inside a control (a combo box's list, a header's corner) have no names of ours.
bool IsOurs(const QObject& object) {
    return !object.objectName().isEmpty() && !object.objectName().startsWith(QLatin1String("qt_"));
}

bool IsClickable(const QObject& object) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&object)) {
        return !button->isCheckable() && button->isEnabled();
    }
    if (const auto* action = qobject_cast<const QAction*>(&object)) {
        return !action->menu() && !action->isSeparator() && action->isEnabled();
    }
    return false;
}

/// Input controls keep what they hold: their tag is the number of a field, not of a text.
void SetCaption(QObject& object, MessageId entry) {
    const QString caption = QString::fromStdString(CatalogueCaption(entry));
    const QString plain = QString::fromStdString(CatalogueText(entry));
    if (auto* button = qobject_cast<QAbstractButton*>(&object))
        button->setText(caption);
    else if (auto* label = qobject_cast<QLabel*>(&object))
        label->setText(label->buddy() ? caption : plain);
    else if (auto* action = qobject_cast<QAction*>(&object))
        action->setText(caption);
    else if (auto* menu = qobject_cast<QMenu*>(&object))
        menu->setTitle(caption);
    else if (auto* group = qobject_cast<QGroupBox*>(&object))
        group->setTitle(caption);
    else if (auto* widget = qobject_cast<QWidget*>(&object); widget && widget->isWindow())
        widget->setWindowTitle(plain);
}

/// The number that a control's tag holds, or nothing when it holds none.
std::optional<MessageId> TagOf(const QObject& object, const char* property) {
    bool isNumber = false;
    const int number = object.property(property).toString().toInt(&isNumber);
    if (!isNumber || number < 1 || number > 65535) return std::nullopt;
    return MessageId{static_cast<std::uint16_t>(number)};
}

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

void WaitInLoop(const std::function<bool()>& condition) {
    const auto holds = [&] { return !Global.Ending && condition(); };
    if (!holds()) return;
    QEventLoop loop;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                     [&] {
                         if (!holds()) loop.quit();
                     });
    loop.exec();
}

void FormBehaviour::WaitWhile(const std::function<bool()>& condition) {
    WaitInLoop([&] { return !gone_ && condition(); });
}

void FormBehaviour::PauseFor(double seconds) {
    bool over = Global.InstantPauses;
    QTimer::singleShot(static_cast<int>(seconds * 1000), &Window(), [&over] { over = true; });
    if (over) QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    WaitWhile([&] { return !over; });
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

void FormBehaviour::RunMethod(int method, int index) {
    if (gone_ || Global.Ending) return;
    Run([&] {
        void* arguments[] = {nullptr, &index};
        QMetaObject::metacall(&Window(), QMetaObject::InvokeMetaMethod, method, arguments);
    });
}

void FormBehaviour::Connect(QObject& control, const QString& event, int method, int index) {
    QWidget* context = &Window();
    const auto run = [this, method, index] { RunMethod(method, index); };
    if (event == QLatin1String("Click")) {
        if (auto* button = qobject_cast<QAbstractButton*>(&control)) {
            QObject::connect(button, &QAbstractButton::clicked, context, run);
        } else if (auto* action = qobject_cast<QAction*>(&control)) {
            QObject::connect(action, &QAction::triggered, context, run);
        } else if (auto* box = qobject_cast<QComboBox*>(&control)) {
            QObject::connect(box, &QComboBox::activated, context, run);
        } else if (auto* list = qobject_cast<QListWidget*>(&control)) {
            QObject::connect(list, &QListWidget::itemSelectionChanged, context, run);
        } else if (auto* view = qobject_cast<QAbstractItemView*>(&control)) {
            QObject::connect(view, &QAbstractItemView::clicked, context, run);
        }
    } else if (event == QLatin1String("DblClick")) {
        if (auto* view = qobject_cast<QAbstractItemView*>(&control)) {
            QObject::connect(view, &QAbstractItemView::doubleClicked, context, run);
        }
    } else if (event == QLatin1String("Change")) {
        if (auto* edit = qobject_cast<QLineEdit*>(&control)) {
            QObject::connect(edit, &QLineEdit::textChanged, context, run);
        } else if (auto* box = qobject_cast<QComboBox*>(&control)) {
            QObject::connect(box, &QComboBox::editTextChanged, context, run);
        }
    } else if (event == QLatin1String("ColumnClick")) {
        if (auto* view = qobject_cast<QTableView*>(&control)) {
            QObject::connect(view->horizontalHeader(), &QHeaderView::sectionClicked, context,
                             [this, method](int column) { RunMethod(method, column); });
        }
    } else if (event == QLatin1String("Timer")) {
        if (auto* timer = qobject_cast<QTimer*>(&control))
            QObject::connect(timer, &QTimer::timeout, context, run);
    }
}

void FormBehaviour::WireControl(QObject& control) {
    const QMetaObject* meta = Window().metaObject();
    for (int method = FirstOwnMethod(Window()); method < meta->methodCount(); ++method) {
        QString name;
        QString event;
        if (!SplitHandler(meta->method(method), name, event)) continue;
        const int index = ElementIndex(control.objectName(), name);
        if (control.objectName() == name || index >= 0) Connect(control, event, method, index);
    }
}

QStringList FormBehaviour::WiringProblems() const {
    QWidget& window = const_cast<FormBehaviour*>(this)->Window();
    const QMetaObject* meta = window.metaObject();
    const QList<QObject*> all = window.findChildren<QObject*>();
    QStringList problems;
    QStringList handled;
    for (int method = FirstOwnMethod(window); method < meta->methodCount(); ++method) {
        QString name;
        QString event;
        if (!SplitHandler(meta->method(method), name, event)) continue;
        handled << name;
        const bool takesIndex =
            meta->method(method).parameterCount() == 1 && event != QLatin1String("ColumnClick");
        const bool found = std::any_of(all.begin(), all.end(), [&](const QObject* object) {
            return object->objectName() == name || ElementIndex(object->objectName(), name) >= 0;
        });
        // The elements of an array are made when there are rows for them.
        if (!found && !takesIndex)
            problems << QStringLiteral("%1 has no control %2").arg(meta->className(), name);
    }
    for (const QObject* object : all) {
        if (!IsOurs(*object) || !IsClickable(*object)) continue;
        const bool has = std::any_of(handled.begin(), handled.end(), [&](const QString& name) {
            return object->objectName() == name || ElementIndex(object->objectName(), name) >= 0;
        });
        if (!has)
            problems << QStringLiteral("%1: nothing handles %2").arg(meta->className(), object->objectName());
    }
    return problems;
}

// ---- the life of a form ----

void FormBehaviour::LoadNow() {
    ++running_;
    try {
        QWidget& window = Window();
        window.setObjectName(QString::fromLatin1(window.metaObject()->className()));
        for (QObject* child : window.findChildren<QObject*>()) {
            if (IsOurs(*child)) WireControl(*child);
        }
        FillCaptions(window);
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
        if (!gone_ && !Global.Ending) Run([this] { Form_GotFocus(); });
    });
}

void FormBehaviour::Show(ShowMode mode) {
    if (gone_ || Global.Ending) return;
    QWidget& window = Window();
    // An object that has gone must outlive the wait below.
    ++running_;
    window.setWindowModality(mode == ShowMode::Modal ? Qt::ApplicationModal : Qt::NonModal);
    FormRegistry::Instance().Raise(*this);
    QueueGotFocus();
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
    Window().hide();
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

Form::Form() {
    setModal(false);
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

// ---- the registry ----

FormRegistry& FormRegistry::Instance() {
    static FormRegistry registry;
    return registry;
}

FormBehaviour* FormRegistry::Find(const char* className) {
    for (const auto& form : forms_) {
        if (qstrcmp(form->Window().metaObject()->className(), className) == 0) return form.get();
    }
    return nullptr;
}

FormBehaviour& FormRegistry::Adopt(std::unique_ptr<FormBehaviour> form) {
    FormBehaviour& reference = *form;
    forms_.push_back(std::move(form));
    reference.LoadNow();
    return reference;
}

QStringList FormRegistry::Names() const {
    QStringList names;
    for (const auto& form : forms_) names << QString::fromLatin1(form->Window().metaObject()->className());
    names.sort(Qt::CaseInsensitive);
    return names;
}

void FormRegistry::UnloadSecondary() {
    for (const QString& name : Names()) {
        FormBehaviour* form = Find(name.toLatin1().constData());
        if (form && !qobject_cast<QMainWindow*>(&form->Window())) form->Unload();
    }
}

void FormRegistry::Clear() {
    UnloadSecondary();
    while (!forms_.empty()) forms_.back()->Unload();
    leaving_.clear();
    shown_.clear();
}

void FormRegistry::Raise(FormBehaviour& form) {
    std::erase(shown_, &form);
    shown_.push_back(&form);
}

void FormRegistry::Forget(FormBehaviour& form) {
    const bool wasTop = !shown_.empty() && shown_.back() == &form;
    std::erase(shown_, &form);
    const auto own =
        std::find_if(forms_.begin(), forms_.end(), [&](const auto& f) { return f.get() == &form; });
    if (own != forms_.end()) {
        leaving_.push_back(std::move(*own));
        forms_.erase(own);
    }
    if (wasTop) FocusTopmost();
}

void FormRegistry::FocusTopmost() {
    if (shown_.empty() || Global.Ending || Global.UnloadingForms) return;
    FormBehaviour* top = shown_.back();
    QPointer<QWidget> window = &top->Window();
    QTimer::singleShot(0, window, [top, window] {
        if (window && !top->IsGone() && !Global.Ending) top->Run([top] { top->Form_GotFocus(); });
    });
}

void FormRegistry::Release(FormBehaviour& form) {
    const auto own =
        std::find_if(leaving_.begin(), leaving_.end(), [&](const auto& f) { return f.get() == &form; });
    if (own == leaving_.end()) return;
    // Not here: the caller of the handler that has just returned may still look at the form.
    form.Window().deleteLater();
    own->release();
    leaving_.erase(own);
}

// ---- captions, the end ----

void FillCaptions(QWidget& window) {
    QList<QObject*> all = window.findChildren<QObject*>();
    all.prepend(&window);
    for (QObject* object : all) {
        if (const auto entry = TagOf(*object, "Tag")) SetCaption(*object, *entry);
        if (const auto entry = TagOf(*object, "TipTag")) {
            const QString tip = QString::fromStdString(CatalogueText(*entry));
            if (auto* widget = qobject_cast<QWidget*>(object)) {
                widget->setToolTip(tip);
                widget->setAccessibleName(tip);
            }
        }
    }
}

void EndProgram(int exitCode) {
    // The first reason to end is the one that counts.
    if (!Global.Ending) Global.ExitCode = exitCode;
    Global.Ending = true;
    QCoreApplication::exit(Global.ExitCode);
}

void FailUnexpectedly(const std::exception& failure) {
    if (Global.Ending) return;
    const Text words = Text::Path(std::string_view(failure.what()));
    Tell(Lines(words, Text::Value(Global.Events.Entry(0))), Icon::Stop);
    EndProgram(1);
}
