#include "sync/forms/frmUploadSelect.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmProgress.h"
#include "maintenance/Backup.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "maintenance/forms/BackupRun.h"
#include "maintenance/forms/frmTotalsMsg.h"
#include "platform/HotSyncManager.h"
#include "platform/MainScreen.h"
#include "store/forms/frmAppend.h"
#include "store/forms/frmAppendAudit.h"
#include "sync/TableTemplates.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/frmMainSync.h"

#include <tuple>
#include <utility>

frmUploadSelect::frmUploadSelect() : TransferForm({&Global.UploadTemplates, ".ust"}) {
    setupUi(this);
    Bind({{chkOrHdr, lblOrHdr, {"ZUKORHDR", "ZUKORLIN"}},
          {chkAudtH, lblAudtH, {"ZUKAUDTH", "ZUKAUDTL"}},
          {chkAudHH, lblAudHH, {"ZUKAUDHH"}},
          {chkPrn, lblPrn, {"ZUKPRN"}},
          {chkCust, lblCust, {"ZUKCUST"}},
          {chkItem, lblItem, {"ZUKITEM"}}},
         {msg::HintTablesUL, msg::HintOKUL, msg::HintCancelUL, msg::NothingTicked}, false);
}

UploadChoice frmUploadSelect::Choice() const {
    return {chkOrHdr->isChecked(), chkAudtH->isChecked(), chkAudHH->isChecked(),
            chkPrn->isChecked(),   chkCust->isChecked(),  chkItem->isChecked()};
}

void frmUploadSelect::ReadSettings(const std::string& path) {
    UploadChoice choice = Choice();
    ReadTemplate(path, choice);
    chkOrHdr->setChecked(choice.Orders);
    chkAudtH->setChecked(choice.Audits);
    chkAudHH->setChecked(choice.HHTotals);
    chkPrn->setChecked(choice.PrintSpooler);
    chkCust->setChecked(choice.Customers);
    chkItem->setChecked(choice.Items);
}

void frmUploadSelect::WriteSettings(const std::string& path) {
    WriteTemplate(path, Choice());
}

std::vector<std::string> frmUploadSelect::ChosenTables() const {
    const UploadChoice chosen = Choice();
    std::vector<std::string> paths;
    const auto add = [&](bool on, std::initializer_list<const char*> tables) {
        if (!on) return;
        for (const char* table : tables) paths.push_back(Global.DBFPath + table);
    };
    add(chosen.Orders, {"ZUKORHDR.DBF", "ZUKORLIN.DBF"});
    add(chosen.Audits, {"ZUKAUDTH.DBF", "ZUKAUDTL.DBF"});
    add(chosen.HHTotals, {"ZUKAUDHH.DBF"});
    add(chosen.PrintSpooler, {"ZUKPRN.DBF"});
    add(chosen.Customers, {"ZUKCUST.DBF"});
    add(chosen.Items, {"ZUKITEM.DBF"});
    return paths;
}

// ---- Ok ----

void frmUploadSelect::Perform() {
    if (!IsDriven() && !AskYesNo(msg::UploadNow)) return Unload();
    UnloadMainSync();
    OrdersChosen = chkOrHdr->isChecked();
    if (!TablesAreFree(ChosenTables())) return;
    if (!MakeBackupOfChosen()) return TellNoBackup(msg::TransferAborted);
    AddData();
}

/// The print spooler alone is not worth a backup.
bool frmUploadSelect::MakeBackupOfChosen() {
    backup_.clear();
    UploadChoice worth = Choice();
    worth.PrintSpooler = false;
    if (worth == UploadChoice()) {
        Global.BackupTime = {}; // one that was made for something else is not this upload's
        Global.BackupEvent.clear();
        return true;
    }
    // The master tables join for this backup; what a session has set stays.
    const auto before = std::pair(Global.BackupCustomers, Global.BackupItems);
    Global.BackupCustomers = Global.BackupCustomers || worth.Customers;
    Global.BackupItems = Global.BackupItems || worth.Items;
    const bool made = MakeBackup("UPLOAD-ADD");
    std::tie(Global.BackupCustomers, Global.BackupItems) = before;
    if (made) backup_ = BackupName(Global.BackupTime);
    return made;
}

void frmUploadSelect::AddData() {
    Trace("AddData");
    if (!IsHotSyncActiveOrTell() || !PrepareTables()) return;
    session_.emplace(Control());
    session_->Chosen = Choice();
    session_->ShowStatus = ShowHHStatus;
    const FlushEnd end = FlushCommandQueue();
    if (Global.Ending) return; // the next start puts the old records back

    const bool held = session_->SyncDone;
    if (session_->SyncRunning) {
        EndUpload();
        TellBrokenOff();
        return Finish(end == FlushEnd::Done);
    }
    if (held) {
        AwaitProgressWindow();
        session_->SyncDone = false;
        if (OrdersChosen) MergeOrders();
        if (Global.Ending) return;
    }
    Global.UploadClosing = false;
    ZeroTotalsBlock();
    EndUpload();
    if (!held) TellEnd(end);
    Finish(held || end == FlushEnd::Done);
}

/// Keeps what the PC holds, and remembers how much that is. False when it cannot be kept: the operator has
/// been told.
bool frmUploadSelect::PrepareTables() {
    bool copied = false;
    try {
        MakeSafetyCopies(SafetyCopies::OfUploadScreen);
        copied = true;
        CalcOldPCTotals();
        return true;
    } catch (const RunTimeFailure& failure) {
        // Copies that could not be made may hide older ones, which are needed still.
        if (copied) EndUpload();
        Tell(Lines(Lines(msg::FileError, msg::TransferAborted), Text::Path(std::string_view(failure.what()))),
             Icon::Stop);
        return false;
    }
}

/// Puts the old orders and audits behind those that came, and shows what that makes. The barcode index is
/// none of it: it is not uploaded from here.
void frmUploadSelect::MergeOrders() {
    session_->TakeArrived();
    The<frmAppend>().Show(ShowMode::Modal);
    The<frmAppendAudit>().Show(ShowMode::Modal);
    if (Global.Ending) return; // they were cut short
    Global.UploadClosing = true;
    Try([] { RecordTotals(ProgressFlag::UploadAdd); });
    if (auto* main = IfMainScreen()) main->GetPCTotals();
    The<frmTotalsMsg>().Show(ShowMode::Modal);
}

void frmUploadSelect::EndUpload() {
    if (session_) session_->WriteReceipt();
    Try([] { DeleteSafetyCopies(SafetyCopies::OfUploadScreen); });
    if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
}

void frmUploadSelect::TellBrokenOff() {
    const Text told = msg::UploadBrokeOff;
    const std::string folder = Global.BackupPath + backup_;
    Tell(backup_.empty() ? told
                         : Lines(told, Words(msg::UploadBackupIn, Text::Path(std::string_view(folder)))),
         Icon::Warning);
}

void frmUploadSelect::HotSyncStatus(std::int32_t status) {
    if (session_) session_->SFUpload_HotSyncStatus(status);
}
