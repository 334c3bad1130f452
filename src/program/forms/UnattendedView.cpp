#include "program/forms/UnattendedView.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "sync/UnattendedSettings.h"
#include "sync/forms/UnattendedMode.h"
#include "ui_frmMain1.h"

#include <QAction>

#include <utility>

UnattendedView::UnattendedView(QWidget& form, const Ui::frmMain1& controls)
    : form_(form),
      controls_(controls) {
    waiting_.SetLabel(*controls_.aniHSWait);
    session_.SetLabel(*controls_.aniHSStatus);
}

void UnattendedView::ShowArmed() {
    Disable();
    ShowActivities();
    controls_.picRemoteSync->setCurrentWidget(controls_.pagRemote);
    controls_.lblRemoteSync->setText(ToQt(Text(msg::lblUA)));
    controls_.imgTools->setPixmap(Picture("tool-unattended").pixmap(20, 20));
    ShowNotice({});
    controls_.cmdStopRemoteSync->setEnabled(true);
    controls_.cmdStopRemoteSync->show();
    controls_.stkQB->setCurrentWidget(controls_.pagSession);
    ShowWaiting();
}

void UnattendedView::ShowIdle() {
    controls_.cmdStopRemoteSync->hide();
    controls_.imgQB->show();
    ShowWaiting();
    StopWaiting();
    ShowActivities();
    controls_.stkQB->setCurrentWidget(controls_.picQB);
    controls_.lblMatrix->setText(ToQt(Text(msg::lblMatrix)));
    for (QObject* each : std::exchange(disabled_, {})) each->setProperty("enabled", true);
}

/// No other process is to run beside a session. What is disabled already is not to come alive by this.
void UnattendedView::Disable() {
    QList<QObject*> all{controls_.mnuFile,  controls_.mnuEdit, controls_.mnuMainView,
                        controls_.mnuTools, controls_.mnuHelp, controls_.cmdPCTotals,
                        controls_.cmdReset, controls_.lblPrev, controls_.lblNext};
    for (QAction* entry : form_.findChildren<QAction*>()) {
        if (!entry->menu() && !entry->isSeparator()) all << entry;
    }
    for (QWidget* page :
         {static_cast<QWidget*>(controls_.picQB), static_cast<QWidget*>(controls_.picRemoteSync)}) {
        for (QToolButton* button : page->findChildren<QToolButton*>()) all << button;
    }
    for (QObject* each : all) {
        if (!each->property("enabled").toBool()) continue;
        each->setProperty("enabled", false);
        disabled_ << each;
    }
}

void UnattendedView::ShowActivities() {
    controls_.lblRemote->setText(ToQt(std::string_view(Global.RemoteSyncSettings)));
    ShowUnattendedActivities(form_, SelectionsInForce());
}

void UnattendedView::ShowNotice(const Text& message) {
    controls_.lblStopping->setText(ToQt(message));
    controls_.lblStopping->setVisible(!message.IsEmpty());
}

void UnattendedView::ShowSession(const std::string& user) {
    inSession_ = true;
    for (QLabel* image : {controls_.imgClear, controls_.imgDownload, controls_.imgUpload}) image->hide();
    controls_.lblMatrix->setText(ToQt(Text(msg::HotsyncActive)));
    controls_.lblHSID->setText(ToQt(std::string_view(user)));
    StopWaiting();
    session_.Play("synczukwhite");
    for (QLabel* label : {controls_.lblSyncMsg, controls_.lblHSID}) label->show();
}

void UnattendedView::ShowPhase(SyncPhaseImage phase, PhaseLook look) {
    QLabel* const image = phase == SyncPhaseImage::Upload  ? controls_.imgUpload
                          : phase == SyncPhaseImage::Clear ? controls_.imgClear
                                                           : controls_.imgDownload;
    const auto [picture, state] = look == PhaseLook::Idle      ? std::pair{"phase-idle", msg::PhaseIdle}
                                  : look == PhaseLook::Running ? std::pair{"phase-running", msg::PhaseRunning}
                                                               : std::pair{"pending", msg::PhaseQueued};
    image->setPixmap(Picture(picture).pixmap(16, 16));
    image->setToolTip(ToQt(Text(state)));
    image->setAccessibleName(image->toolTip());
    if (look != PhaseLook::Running) image->show();
}

void UnattendedView::ShowWaiting() {
    inSession_ = false;
    for (const auto phase : {SyncPhaseImage::Upload, SyncPhaseImage::Clear, SyncPhaseImage::Download})
        ShowPhase(phase, PhaseLook::Idle);
    controls_.lblMatrix->setText(ToQt(Text(msg::NoCurrentHotsync)));
    session_.Stop();
    waiting_.Play("WaitingforHotsync");
    controls_.lblAnim->show();
    for (QLabel* label : {controls_.lblSyncMsg, controls_.lblHSID}) label->hide();
}

void UnattendedView::StopWaiting() {
    waiting_.Stop();
    controls_.lblAnim->hide();
}
