#include "sync/forms/frmMainSync.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmProgress.h"
#include "maintenance/Totals.h"
#include "maintenance/forms/BackupRun.h"
#include "platform/HotSyncControl.h"
#include "platform/MainScreen.h"
#include "store/forms/frmAppend.h"
#include "store/forms/frmAppendAudit.h"
#include "store/forms/frmAppendIndex.h"
#include "sync/SessionStatus.h"
#include "sync/Status.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/frmRemoteSync.h"

#include <utility>

namespace {

/// Takes a step behind the transfers. Its failure must not keep the steps that follow from being taken:
/// nobody may be there to answer a box. It stands in the trace, and in the letter of the handheld.
void Attempt(const char* routine, const std::function<void()>& step) {
    try {
        step();
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("frmMainSync:") + routine + " " + failure.what());
    }
}

} // namespace

void frmMainSync::Form_Load() {
    TraceEvent("frmMainSync:Form_Load");
    SFMain = NewSFrmAX40();
    SessionScreen& screen = *this;
    session_.emplace(*SFMain, screen);
    SFMain->HotSyncStatus = [this](std::int32_t status) {
        if (!IsOver()) Run([this, status] { SFMain_HotSyncStatus(status); });
    };
    SFMain->SetEnabled(true);
    Global.MainSyncLoaded = true;
}

void frmMainSync::Form_Unload() {
    TraceEvent("frmMainSync:Form_Unload");
    if (SFMain) SFMain->SetEnabled(false);
    Global.MainSyncLoaded = false;
}

bool frmMainSync::InSession() const {
    if (!session_) return false;
    const std::string& stage = session_->SyncStage;
    return session_->SessionClosing || (!stage.empty() && stage != "End");
}

void frmMainSync::LookForManager() const {
    if (SFMain) SFMain->HotSyncUser(0); // whoever asks for users goes to the manager for them
}

void frmMainSync::SFMain_HotSyncStatus(std::int32_t status) {
    const bool wasActive = Global.UnattendedActive;
    session_->SFMain_HotSyncStatus(status);
    auto* main = IfMainScreen();
    if (IsOver() || !main || !wasActive) return;
    if (!Global.UnattendedActive)
        main->ShowUnattendedOff();
    else if (status == SessionEnded && !InSession())
        main->SessionIsOver();
}

// ---- what the session asks for ----

void frmMainSync::TellUnknownHandheld() {
    Tell(msg::UnknownHandheld, Icon::Warning);
}

void frmMainSync::TellBackupFailed() {
    TellNoBackup(msg::CannotBackUp);
}

void frmMainSync::ShowBegun(const std::string& user) {
    if (auto* main = IfMainScreen()) main->ShowSession(user);
    if (auto* remote = IfLoaded<frmRemoteSync>()) remote->ShowSession(user);
}

void frmMainSync::ShowPhase(SyncPhaseImage phase, PhaseLook look) {
    if (auto* main = IfMainScreen()) main->ShowPhase(phase, look);
}

void frmMainSync::ShowEnded() {
    if (auto* main = IfMainScreen()) main->ShowWaiting();
    if (auto* remote = IfLoaded<frmRemoteSync>()) remote->ShowWaiting();
}

void frmMainSync::Merge() {
    The<frmAppend>().Show(ShowMode::Modal);
    The<frmAppendAudit>().Show(ShowMode::Modal);
    The<frmAppendIndex>().Show(ShowMode::Modal);
}

void frmMainSync::RecordUpload() {
    Attempt("RecordUpload", [] { RecordTotals(ProgressFlag::UploadAdd); });
}

void frmMainSync::GetPCTotals() {
    Attempt("GetPCTotals", [] {
        if (auto* main = IfMainScreen()) main->GetPCTotals();
    });
}

std::optional<SessionScreen::Upload> frmMainSync::NewestUpload() const {
    const auto* main = IfMainScreen();
    if (!main || !main->NewestUpload()) return std::nullopt;
    const UploadRow& row = *main->NewestUpload();
    return Upload{row.Orders, row.Lines, row.Dollars};
}

void frmMainSync::RefreshRecordCounts() {
    Attempt("RefreshRecordCounts", [] {
        if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
    });
}

void frmMainSync::ShowHHStatus() {
    if (!WithStatusFile(UpdateHHStatus)) return;
    Attempt("ShowHHStatus", [] {
        if (auto* main = IfMainScreen()) main->GetHHBricks();
    });
}

// ---- one control at a time ----

void UnloadMainSync() {
    if (auto* form = IfLoaded<frmMainSync>()) form->Unload();
}

void LoadMainSync() {
    const auto* main = IfMainScreen();
    if (main && !main->IsGone() && !Global.Ending) The<frmMainSync>();
}
