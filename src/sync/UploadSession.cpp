#include "sync/UploadSession.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/TextCompare.h"
#include "maintenance/Backup.h"
#include "sync/SessionLinks.h"
#include "sync/SessionStatus.h"
#include "sync/Status.h"

namespace {

/// A table that an upload can bring, and the box that asks for it, in the order in which they are queued.
struct UploadTable {
    const char* Name;
    bool UploadChoice::*Box;
};

constexpr UploadTable UploadTables[] = {
    {"ZUKOrHdr.dbf", &UploadChoice::Orders},   {"ZUKOrLin.dbf", &UploadChoice::Orders},
    {"ZUKAudTH.dbf", &UploadChoice::Audits},   {"ZUKAudTL.dbf", &UploadChoice::Audits},
    {"ZUKAudHH.dbf", &UploadChoice::HHTotals}, {"ZUKPRN.dbf", &UploadChoice::PrintSpooler},
    {"ZUKCUST.dbf", &UploadChoice::Customers}, {"ZUKITEM.dbf", &UploadChoice::Items}};

} // namespace

void UploadSession::SFUpload_HotSyncStatus(std::int32_t status) {
    TraceEvent("frmUploadSelect:SFUpload_HotSyncStatus");
    if (!Global.ManualUploadActive) return;
    // The next handheld can be quicker than the screen, which has yet to merge what the first one brought.
    if (status == SessionBegun && !SyncRunning && !SyncDone) Begin();
    if (status == OperationFinished) {
        --PendingOps;
        receipt_.NoteFinished();
    }
    if (status == SessionEnded) return;

    if (PendingOps <= 0 && SameText(SyncStage, "A>B")) {
        UpdateLinks();
        SyncRunning = true;
        SyncStage = "B>C";
    }
    if (PendingOps <= 0 && SameText(SyncStage, "B>C")) {
        for (const auto& [name, box] : UploadTables) {
            if (Chosen.*box) QueueUpload(Global.DBFPath + name);
        }
        SyncStage = "C>D";
    }
    if (PendingOps <= 0 && SameText(SyncStage, "C>D")) {
        // Whatever became of the transfers: the letter says that the session went through.
        StoreHHStatus(Global.HHStatus, Global.HSUserName, "G");
        if (ShowStatus) ShowStatus();
        SyncRunning = false;
        SyncDone = true;
        SyncStage = "end";
    }
}

void UploadSession::Begin() {
    PendingOps = 0;
    SyncStage.clear();
    arrivals_.Clear();
    RefreshUser();
    if (!MakeHHUserDir(Global.HSUserName)) return;
    Global.CurrentHotSyncID = Global.HSUserName;
    Global.HHLastOrder.clear();
    receipt_.Begin(Global.HSUserName);
    if (Global.BackupEvent == "UPLOAD-ADD") receipt_.NoteBackup(BackupName(Global.BackupTime));

    QueueUpload(Global.HHUserDir + "ZUKLINK.DBF");
    SyncStage = "A>B";
}

void UploadSession::RefreshUser() {
    Global.LastSyncedUser = Global.HSUserName = SFUpload.UserName();
}

void UploadSession::UpdateLinks() {
    RefreshUser();
    if (!TakeHandheldLink(Global.HSUserName)) return;
    if (const auto failure = WritePCLink(Global.HSUserName))
        receipt_.Note(Words(msg::ReceiptLinkFailed, Text::Path(*failure)));
}

void UploadSession::QueueUpload(const std::string& path) {
    arrivals_.Remember(path);
    SFUpload.QueueUpload(path);
    receipt_.NoteUpload(path);
    ++PendingOps;
}

UploadRun UploadSession::Arrived() const {
    const auto came = [this](const char* table) { return arrivals_.Has(SFUpload, Global.DBFPath + table); };
    return {.OrderHeaders = came("ZUKOrHdr.dbf"),
            .OrderLines = came("ZUKOrLin.dbf"),
            .AuditHeaders = came("ZUKAudTH.dbf"),
            .AuditLines = came("ZUKAudTL.dbf"),
            .HHTotals = came("ZUKAudHH.dbf")};
}

void UploadSession::TakeArrived() {
    const UploadRun arrived = Arrived();
    Global.UploadScreenRun = merged_ = arrived;
    receipt_.TakeArrived(arrived, arrived.HHTotals ? Global.DBFPath + "ZUKAudHH.dbf" : std::string());
}

void UploadSession::WriteReceipt() {
    if (!receipt_.HasBegun()) return;
    if (!receipt_.HasTaken()) {
        TakeArrived();
        merged_ = {};
    }
    if (!Global.FailedMerges.empty()) receipt_.Note(msg::ReceiptCopiesStay);
    receipt_.Write(SFUpload, merged_);
}
