#include "sync/MainSession.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/Backup.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "store/TableScan.h"
#include "sync/SessionLinks.h"
#include "sync/SessionStatus.h"
#include "sync/Status.h"
#include "sync/TableSelection.h"

#include <optional>
#include <span>
#include <vector>

namespace {

constexpr std::int32_t CreatorZUK2 = 'Z' << 24 | 'U' << 16 | 'K' << 8 | '2';

constexpr std::string_view OrderTables[] = {"ZUKORHDR.DBF", "ZUKORLIN.DBF"};
constexpr std::string_view AuditTables[] = {"ZUKAUDTH.DBF", "ZUKAUDTL.DBF"};
constexpr std::string_view TotalsTables[] = {"ZUKAUDHH.DBF"};
constexpr std::string_view SpoolerTables[] = {"ZUKPRN.DBF"};
constexpr std::string_view CustomerTables[] = {"ZUKCUST.DBF"};
constexpr std::string_view ItemTable[] = {"ZUKITEM.DBF"};
constexpr std::string_view ItemTables[] = {"ZUKITEM.DBF", "ZUKBARIN.DBF"};
constexpr std::string_view SetupTables[] = {"ZUKSETUP.DBF", "ZUKCOMP.DBF", "ZUKHELP.DBF", "ZUKPRINT.DBF",
                                            "ZUKSTAX.DBF",  "ZUKPAY.DBF",  "ZUKLINK.DBF"};

/// A group of tables that an upload template turns on.
struct UploadGroup {
    MessageId Line;
    std::span<const std::string_view> Tables;
    std::string MainSession::*Label; ///< "Y" once the first of them is queued, or none
    bool Globals::*Backup;           ///< set by the mere name, or none
};

const UploadGroup UploadGroups[] = {
    {msg::UploadOrders, OrderTables, &MainSession::Label1, &Globals::BackupOrders},
    {msg::UploadAudits, AuditTables, &MainSession::Label2, &Globals::BackupAudits},
    {msg::TablesHHTotals, TotalsTables, &MainSession::Label3, &Globals::BackupHHTotals},
    {msg::UploadPrintSpooler, SpoolerTables, nullptr, nullptr},
    {msg::TablesCustomers, CustomerTables, nullptr, &Globals::BackupCustomers},
    {msg::TablesItems, ItemTable, nullptr, &Globals::BackupItems},
};

/// A group of tables that a template of a download or a clearing turns on.
struct DownloadGroup {
    MessageId Line;
    std::span<const std::string_view> Tables;
};

constexpr DownloadGroup ClearGroups[] = {
    {msg::TablesOrders, OrderTables}, {msg::TablesAudits, AuditTables}, {msg::TablesHHTotals, TotalsTables}};
constexpr DownloadGroup DownloadGroups[] = {
    {msg::TablesSetup, SetupTables}, {msg::TablesItems, ItemTables}, {msg::TablesCustomers, CustomerTables}};

/// Template names come out of a settings file.
std::string TemplatePath(const std::string& folder, const std::string& setting, const char* extension) {
    const std::string name = NameToPath(setting);
    if (!IsPlainFileName(name)) throw RunTimeFailure(52, name + extension);
    return folder + name + extension;
}

std::vector<std::string> LinesOf(const std::string& path) {
    TextReader file(path, TextReader::OwnFile);
    std::vector<std::string> lines;
    for (std::string line; file.ReadLine(line);) lines.push_back(line);
    return lines;
}

/// A flag that is set as long as its object lives.
class WhileSet {
public:
    explicit WhileSet(bool& flag) : flag_(flag) { flag_ = true; }
    WhileSet(const WhileSet&) = delete;
    WhileSet& operator=(const WhileSet&) = delete;
    ~WhileSet() { flag_ = false; }

private:
    bool& flag_;
};

std::string TotalsOfHandheld() {
    return Global.HHUserDir + "ZUKAudHH.dbf";
}

} // namespace

void MainSession::SFMain_HotSyncStatus(std::int32_t status) {
    TraceEvent("frmMainSync:SFMain_HotSyncStatus");
    if (!Global.UnattendedActive) return;
    if (SFMain.CreatorID() != CreatorZUK2) return;
    if (status == OperationFinished) {
        --PendingOps;
        receipt_.NoteFinished();
    }
    // While the forms of the merge stand, statuses are counted and no more.
    if (SessionClosing) return;
    if (status == SessionEnded) return HSEnd();
    if (status == SessionBegun && !HSStart()) return;
    if (status == OperationFinished && Global.HHInstallActive) return;
    StageStep();
}

/// False when the session goes no further in this handler.
bool MainSession::HSStart() {
    SyncPhase = "HSStart";
    Global.HSUserName = SFMain.UserName();
    if (SFMain.CreatorID() != CreatorZUK2) return false;
    if (!HasLink(Global.HSUserName)) {
        Global.UnattendedActive = false;
        screen_.TellUnknownHandheld();
        return false;
    }
    MakeHHUserDir(Global.HSUserName);
    screen_.ShowBegun(Global.HSUserName);
    PendingOps = 0;
    arrivals_.Clear();
    copiesMade_ = false;
    if (Global.HHInstallActive) return false;

    MakeSafetyCopies(SafetyCopies::OfSession);
    ZeroTotalsBlock();
    CalcOldPCTotals();
    copiesMade_ = true;
    Global.CurrentHotSyncID = Global.HSUserName;
    receipt_.Begin(Global.HSUserName);

    LinkTablePath = Global.HHUserDir + "ZUKLINK.DBF";
    QueueUpload(LinkTablePath);
    ++PendingOps;
    SyncStage = "A>B";
    return true;
}

void MainSession::StageStep() {
    if (PendingOps > 0) return;
    if (SameText(SyncStage, "A>B")) {
        RefreshUser();
        SyncStage = "B>C";
    }
    if (!SameText(SyncStage, "B>C")) return;

    if (Global.UploadSelect && !HSUpload()) return;
    if (Global.RemoteClearSelect) HSClear();
    if (Global.RemoteSelect) HSDownload();
    SyncStage = "C>D";
}

/// False when the backup failed: the next status tries the phases again.
bool MainSession::HSUpload() {
    SyncPhase = "HSUpload";
    screen_.ShowPhase(SyncPhaseImage::Upload, PhaseLook::Running);
    if (Global.UploadSelect.ByTemplate()) {
        if (!UploadByTemplate()) return false;
    } else {
        UploadFixedList();
    }
    screen_.ShowPhase(SyncPhaseImage::Upload, PhaseLook::Queued);
    return true;
}

bool MainSession::UploadByTemplate() {
    const std::vector<std::string> lines =
        LinesOf(TemplatePath(Global.UploadTemplates, Global.UploadSelSettings, ".ust"));
    // The name alone decides: a table that is listed and off is backed up too.
    for (const std::string& line : lines) {
        for (const UploadGroup& group : UploadGroups) {
            if (group.Backup && BeginsAs(line, group.Line)) Global.*group.Backup = true;
        }
    }
    const bool backsUp = Global.BackupOrders || Global.BackupAudits || Global.BackupHHTotals ||
                         Global.BackupCustomers || Global.BackupItems;
    if (backsUp && !MakeBackup("UPLOAD-ADD")) {
        screen_.TellBackupFailed();
        return false;
    }
    if (backsUp) receipt_.NoteBackup(BackupName(Global.BackupTime));

    for (const std::string& line : lines) {
        for (const UploadGroup& group : UploadGroups) {
            if (TurnsOn(line, group.Line).value_or(false)) QueueGroup(group.Tables, group.Label);
        }
    }
    QueueTotalsOfHandheld();
    ++PendingOps;
    return true;
}

void MainSession::QueueGroup(std::span<const std::string_view> tables, std::string MainSession::*label) {
    for (const std::string_view table : tables) {
        const std::string path = Global.DBFPath + std::string(table);
        if (!FileExists(path)) continue;
        QueueUpload(path);
        ++PendingOps;
        if (label && table == tables.front()) this->*label = "Y";
    }
}

/// What no screen and no setting asks for: everything, without a template and without a backup.
void MainSession::UploadFixedList() {
    for (const char* table : {"ZUKOrHdr.dbf", "ZUKOrLin.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKAudHH.dbf",
                              "ZUKPRN.dbf", "ZUKCUST.dbf", "ZUKITEM.dbf"})
        QueueUpload(Global.DBFPath + table);
    Label1 = Label2 = Label3 = "Y";
    QueueTotalsOfHandheld();
    // Nine are queued and six are counted: the counter goes below zero, which is meant.
    PendingOps += 6;
}

/// The second copy of the handheld's totals goes to its own directory, for the comparison behind the merge.
void MainSession::QueueTotalsOfHandheld() {
    RefreshUser();
    QueueUpload(TotalsOfHandheld());
}

void MainSession::HSClear() {
    SyncPhase = "HSClear";
    screen_.ShowPhase(SyncPhaseImage::Clear, PhaseLook::Running);
    for (const std::string& line :
         LinesOf(TemplatePath(Global.DownloadTemplates, Global.RemoteClearSettings, ".dct"))) {
        for (const DownloadGroup& group : ClearGroups) {
            if (!TurnsOn(line, group.Line).value_or(false)) continue;
            for (const std::string_view table : group.Tables) {
                const std::string path = Global.DBFEmptyPath + std::string(table);
                if (FileExists(path)) QueueDownload(path);
            }
        }
    }
    screen_.ShowPhase(SyncPhaseImage::Clear, PhaseLook::Queued);
}

void MainSession::HSDownload() {
    SyncPhase = "HSDownload";
    screen_.ShowPhase(SyncPhaseImage::Download, PhaseLook::Running);
    if (Global.RemoteSelect.ByTemplate()) {
        // The Links table may travel: with the number of the session before, the handheld would give codes of
        // orders that it has just sent once more. The end of the session writes the row in any case.
        if (arrivals_.Has(SFMain, LinkTablePath) && TakeHandheldLink(Global.HSUserName))
            WritePCLink(Global.HSUserName);
        for (const std::string& line :
             LinesOf(TemplatePath(Global.DownloadTemplates, Global.RemoteSelSettings, ".dst"))) {
            for (const DownloadGroup& group : DownloadGroups) {
                if (!TurnsOn(Trim(line), group.Line).value_or(false)) continue;
                for (const std::string_view table : group.Tables)
                    QueueDownload(Global.DBFPath + std::string(table));
            }
        }
    }
    screen_.ShowPhase(SyncPhaseImage::Download, PhaseLook::Queued);
}

void MainSession::QueueUpload(const std::string& path) {
    arrivals_.Remember(path);
    SFMain.QueueUpload(path);
    receipt_.NoteUpload(path);
    LastQueuedTable = path;
}

void MainSession::QueueDownload(const std::string& path) {
    SFMain.QueueDownload(path);
    receipt_.NoteDownload(path);
    ++PendingOps;
    LastQueuedTable = path;
}

/// The user as the control has it by now. One whose directory cannot be made leaves the one before.
void MainSession::RefreshUser() {
    const std::string user = SFMain.UserName();
    if (MakeHHUserDir(user)) Global.HSUserName = user;
}

void MainSession::HSEnd() {
    SyncPhase = "HSEnd";
    SyncStage = "End";
    Global.HHInstallActive = false;
    UpdateLinks();
    arrived_ = Arrived();
    totalsCame_ = arrivals_.Has(SFMain, TotalsOfHandheld());
    {
        const WhileSet closing(SessionClosing);
        Global.LastSyncedUser = Global.HSUserName;
        MergeUpload();
        if (Global.Ending) return;
        screen_.GetPCTotals();
    }
    PendingOps = 0;
    Global.HHInstallActive = false;
    copiesMade_ = false;
    arrivals_.Clear();
    ZeroTotalsBlock();
    screen_.ShowEnded();
    screen_.RefreshRecordCounts();
    // Without an upload there is nothing to compare: such a session cannot be marked bad.
    StoreStatus(Global.UploadSelect.ByTemplate() ? GetSyncStatus() : "G");
}

void MainSession::UpdateLinks() {
    if (!TakeHandheldLink(Global.HSUserName)) receipt_.Note(msg::ReceiptLinkOfOther);
    if (const auto failure = WritePCLink(Global.HSUserName))
        receipt_.Note(Words(msg::ReceiptLinkFailed, Text::Path(*failure)));
}

/// What the handheld sent meets what the PC held, and both are counted.
void MainSession::MergeUpload() {
    // A session that began before the mode was armed has nothing to count from, and copies that it finds are
    // not its own.
    if (!copiesMade_) CalcOldPCTotals();
    receipt_.TakeArrived(arrived_, totalsCame_ ? TotalsOfHandheld() : std::string());
    if (Global.UploadSelect) {
        Global.SessionRun = arrived_;
        screen_.Merge();
        if (Global.Ending) return; // the forms were cut short: the next start puts back what is not merged
        Global.UploadClosing = true;
        if (!Global.FailedMerges.empty()) receipt_.Note(msg::ReceiptCopiesStay);
        if (copiesMade_) DeleteCopies();
    }
    receipt_.Write(SFMain, arrived_);
    for (std::string* label : {&Label1, &Label2, &Label3}) label->clear();
    Global.TotalsBusy = true;
    if (Global.UploadClosing) screen_.RecordUpload();
    Global.UploadClosing = false;
    Global.TotalsBusy = false;
}

/// Files that cannot be deleted stop nothing: nobody may be there to answer a box.
void MainSession::DeleteCopies() {
    try {
        DeleteSafetyCopies(SafetyCopies::OfSession);
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("frmMainSync:DeleteCopies ") + failure.what());
    }
}

UploadRun MainSession::Arrived() const {
    if (SessionClosing) return arrived_;
    const auto came = [this](const char* table) { return arrivals_.Has(SFMain, Global.DBFPath + table); };
    const bool orders = Label1 == "Y";
    const bool audits = Label2 == "Y";
    return {.OrderHeaders = orders && came("ZUKORHDR.DBF"),
            .OrderLines = orders && came("ZUKORLIN.DBF"),
            .AuditHeaders = audits && came("ZUKAUDTH.DBF"),
            .AuditLines = audits && came("ZUKAUDTL.DBF"),
            .HHTotals = Label3 == "Y" && came("ZUKAUDHH.DBF")};
}

/// "G" when the newest upload is what the handheld says it sent in this session. The totals of an earlier one
/// that lie in its directory say nothing of this one.
std::string MainSession::GetSyncStatus() {
    const std::string path = TotalsOfHandheld();
    if (!totalsCame_) return "B";
    try {
        TableScan totals(path);
        const auto upload = screen_.NewestUpload();
        if (!totals.Next() || !upload) return "B";
        const bool same = ToNumber(totals.Trimmed(1)) == ToNumber(upload->Orders) &&
                          ToNumber(totals.Trimmed(2)) == ToNumber(upload->Lines) &&
                          ToNumber(totals.Trimmed(3)) == ToNumber(upload->Dollars);
        return same ? "G" : "B";
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("frmMainSync:GetSyncStatus ") + failure.what());
        return "B";
    }
}

void MainSession::StoreStatus(const std::string& letter) {
    StoreHHStatus(Global.HHStatus, Global.HSUserName, letter);
    screen_.ShowHHStatus();
}
