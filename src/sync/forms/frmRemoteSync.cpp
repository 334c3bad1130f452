#include "sync/forms/frmRemoteSync.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "platform/MainScreen.h"
#include "sync/forms/UnattendedMode.h"
#include "sync/forms/frmMainSync.h"

#include <QCloseEvent>
#include <QWindow>

void frmRemoteSync::Form_Load() {
    TraceEvent("frmRemoteSync:Form_Load");
    setWindowIcon(Picture("tool-unattended"));
    if (!UnattendedSettingsCanBeUsed()) return Unload();
    lblRemote->setText(ToQt(std::string_view(Global.RemoteSyncSettings)));
    ShowUnattendedActivities(*this, SelectionsInForce());
    Global.UnattendedActive = true;
    // The operator walks to the handhelds now.
    if (const auto* sync = IfLoaded<frmMainSync>()) sync->LookForManager();
    ShowWaiting();
    if (auto* main = IfMainScreen()) main->LoadActiveRemoteSync();
    Global.RemoteFormLoaded = true;
}

void frmRemoteSync::Form_Unload() {
    TraceEvent("frmRemoteSync:Form_Unload");
    Global.RemoteFormLoaded = false;
}

bool frmRemoteSync::IsSecondary() const {
    return !Global.UnattendedActive;
}

void frmRemoteSync::closeEvent(QCloseEvent* event) {
    event->ignore();
    cmdCancel->click();
}

// ---- what goes on ----

void frmRemoteSync::ShowSession(const std::string& user) {
    lblMessage->setText(ToQt(Text(msg::lblSyncMsg)));
    lblHotSyncID->setText(ToQt(std::string_view(user)));
}

void frmRemoteSync::ShowWaiting() {
    const std::string& last = Global.LastSyncedUser;
    lblMessage->setText(ToQt(Text(last.empty() ? msg::PressHotSync : msg::LastHotsync)));
    lblHotSyncID->setText(ToQt(std::string_view(last)));
}

void frmRemoteSync::ShowMessage(const Text& message) {
    lblMessage->setText(ToQt(message));
    lblHotSyncID->clear();
}

void frmRemoteSync::ShowStopping(const Text& message) {
    ShowMessage(message);
    cmdCancel->setEnabled(false);
}

// ---- the controls ----

void frmRemoteSync::chkOnTop_Click() {
    TraceEvent("frmRemoteSync:chkOnTop_Click");
    // By the handle: the window's own way would hide it and show it again.
    if (QWindow* handle = windowHandle()) handle->setFlag(Qt::WindowStaysOnTopHint, chkOnTop->isChecked());
}

void frmRemoteSync::cmdCancel_Click() {
    TraceEvent("frmRemoteSync:cmdCancel_Click");
    StopUnattended();
}
