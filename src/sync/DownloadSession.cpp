#include "sync/DownloadSession.h"

#include "core/Globals.h"
#include "core/TextCompare.h"
#include "sync/SessionStatus.h"
#include "sync/Status.h"

std::vector<std::string> TablesOf(const DownloadChoice& choice) {
    std::vector<std::string> tables;
    const auto add = [&tables](std::initializer_list<const char*> names) {
        for (const char* name : names) tables.push_back(Global.DBFPath + name);
    };
    if (choice.Setup) {
        add({"ZUKSETUP.DBF", "ZUKCOMP.DBF", "ZUKHELP.DBF", "ZUKPRINT.DBF", "ZUKSTAX.DBF", "ZUKPAY.DBF",
             "ZUKLINK.DBF"});
    }
    if (choice.Customers) add({"ZUKCUST.DBF"});
    if (choice.Items) add({"ZUKITEM.DBF", "ZUKBARIN.DBF"});
    return tables;
}

std::vector<std::string> TablesOf(const ClearChoice& choice) {
    std::vector<std::string> tables;
    const auto add = [&tables](std::initializer_list<const char*> names) {
        for (const char* name : names) tables.push_back(Global.DBFEmptyPath + name);
    };
    if (choice.Orders) add({"ZUKORHDR.DBF", "ZUKORLIN.DBF"});
    if (choice.Audits) add({"ZUKAUDTH.DBF", "ZUKAUDTL.DBF"});
    if (choice.HHTotals) add({"ZUKAUDHH.DBF"});
    return tables;
}

void DownloadSession::SFDownload_HotSyncStatus(std::int32_t status) {
    TraceEvent("frmTableSelectDL:SFDownload_HotSyncStatus");
    if (!Global.ManualUploadActive) return;
    if (status == OperationFinished) receipt_.NoteFinished();
    if (status == SessionEnded || PendingOps != 0) return;

    // One HotSync of one handheld was asked for, and the next one can be quicker than the screen: nobody
    // wants that one cleared.
    if (status == SessionBegun && SyncStage.empty()) {
        SyncStage = "A>B";
        receipt_.Begin(SFDownload.UserName());
    }
    if (SameText(SyncStage, "A>B")) {
        Global.LastSyncedUser = SFDownload.UserName();
        SyncStage = "B>C";
    }
    if (SameText(SyncStage, "B>C")) {
        for (const std::string& table : Tables) {
            SFDownload.QueueDownload(table);
            receipt_.NoteDownload(table);
        }
        SyncStage = "C>D";
    }
    if (SameText(SyncStage, "C>D")) {
        StoreHHStatus(Global.HHStatusStd, Global.LastSyncedUser, "S");
        if (ShowStatus) ShowStatus();
        SyncStage = "end";
    }
}

void DownloadSession::WriteReceipt() {
    receipt_.Write(SFDownload, {});
}
