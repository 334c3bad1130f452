#include "hotsync/forms/frmHSProgress.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "hotsync/forms/KnownWindows.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <QCloseEvent>

#include <algorithm>

namespace {

constexpr int PaintEvery = 50; // milliseconds

} // namespace

frmHSProgress::frmHSProgress() {
    setupUi(this);
    setWindowTitle(QString::fromLatin1(ProgressWindowTitle));
    nextPaint_.setSingleShot(true);
    connect(&nextPaint_, &QTimer::timeout, this, &frmHSProgress::Paint);
}

void frmHSProgress::Form_Load() {
    TraceEvent("frmHSProgress:Form_Load");
    LetBeFound(*this);
    imgHotSync->setPixmap(Picture("Hotsync16-256").pixmap(36, 36));
}

void frmHSProgress::ShowWaiting(const Text& caption) {
    lblCaption->setText(ToQt(caption.IsEmpty() ? Text(msg::HSCaption) : caption));
    lblUser->clear();
    cmdCancel->setEnabled(true);
    ShowStep(msg::HSPressButton, 0, 0);
}

void frmHSProgress::ShowUser(const Text& user) {
    lblUser->setText(ToQt(Words(msg::HSUser, user)));
    cmdCancel->setEnabled(true);
    ShowStep({}, 0, 0);
}

void frmHSProgress::ShowStep(const Text& what, std::int32_t done, std::int32_t of) {
    what_ = what;
    const std::int64_t most = std::max(of, 1);
    bar_ = static_cast<int>(std::clamp<std::int64_t>(done, 0, most) * pgbProgress->maximum() / most);
    const qint64 since = lastPaint_.isValid() ? lastPaint_.elapsed() : PaintEvery;
    if (since >= PaintEvery) return Paint();
    if (!nextPaint_.isActive()) nextPaint_.start(static_cast<int>(PaintEvery - since));
}

void frmHSProgress::Paint() {
    // What follows the operator's Cancel is the end of the session, whatever still moves.
    lblWhat->setText(ToQt(cmdCancel->isEnabled() ? what_ : Text(msg::HSCancelling)));
    pgbProgress->setValue(bar_);
    repaint();
    nextPaint_.stop();
    lastPaint_.start();
}

void frmHSProgress::cmdCancel_Click() {
    TraceEvent("frmHSProgress:cmdCancel_Click");
    cmdCancel->setEnabled(false);
    Paint();
    if (Cancelled) Cancelled();
}

void frmHSProgress::closeEvent(QCloseEvent* event) {
    event->ignore();
    PressEscape();
}

// ---- the progress of sessions ----

frmHSProgress& HotSyncProgress::Window() {
    auto& form = The<frmHSProgress>();
    form.Cancelled = [this] { Cancel(); };
    if (!form.isVisible()) form.Show();
    return form;
}

void HotSyncProgress::CloseWindow() {
    if (auto* form = IfLoaded<frmHSProgress>()) form->Unload();
}

void HotSyncProgress::Cancel() {
    if (inSession_) {
        cancelAsked_ = true;
        return;
    }
    awaited_.reset();
    CloseWindow();
    if (AwaitCancelled) AwaitCancelled();
}

void HotSyncProgress::Await(const Text& caption) {
    awaited_ = caption;
    if (!inSession_) Window().ShowWaiting(caption);
}

void HotSyncProgress::StopAwaiting() {
    awaited_.reset();
    if (!inSession_) CloseWindow();
}

void HotSyncProgress::Begun(std::string_view user) {
    inSession_ = true;
    cancelAsked_ = false;
    Window().ShowUser(Text::Value(user));
}

void HotSyncProgress::Step(Way way, std::string_view what, std::int32_t done, std::int32_t of) {
    if (!inSession_) return;
    const Text direction(way == Way::ToHandheld ? msg::HSToHandheld : msg::HSFromHandheld);
    Window().ShowStep(Words(Text::Value(what), direction), done, of);
}

void HotSyncProgress::Ended(std::string_view /*how*/, bool /*well*/) {
    inSession_ = false;
    if (awaited_)
        Window().ShowWaiting(*awaited_);
    else
        CloseWindow();
}
