#include "sync/MainSession.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/Backup.h"
#include "maintenance/Totals.h"
#include "store/TableScan.h"
#include "sync/SafetyCopies.h"
#include "sync/SessionLinks.h"
#include "sync/SessionStatus.h"
#include "sync/TableSelection.h"

#include <optional>
#include <span>

namespace {

constexpr std::int32_t CreatorZUK2 = 'Z' << 24 | 'U' << 16 | 'K' << 8 | '2';

/// A group of tables that an upload template turns on.
struct UploadGroup {
    MessageId Line;
    std::string_view Tables[2];        ///< the second one may be none
    std::string MainSession::*Label;   ///< "Y" once the first of them is queued, or none
    bool Globals::*Backup;             ///< set by the mere name, or none
};

const UploadGroup UploadGroups[] = {
    {msg::UploadOrders, {"ZUKORHDR.DBF", "ZUKORLIN.DBF"}, &MainSession::Label1, &Globals::BackupOrders},
    {msg::UploadAudits, {"ZUKAUDTH.DBF", "ZUKAUDTL.DBF"}, &MainSession::Label2, &Globals::BackupAudits},
    {msg::TablesHHTotals, {"ZUKAUDHH.DBF"}, &MainSession::Label3, &Globals::BackupHHTotals},
    {msg::UploadPrintSpooler, {"ZUKPRN.DBF"}, nullptr, nullptr},
    {msg::TablesCustomers, {"ZUKCUST.DBF"}, nullptr, &Globals::BackupCustomers},
    {msg::TablesItems, {"ZUKITEM.DBF"}, nullptr, &Globals::BackupItems},
};

/// A group of tables that a template of a download or a clearing turns on.
struct DownloadGroup {
    MessageId Line;
    std::span<const std::string_view> Tables;
};

constexpr std::string_view OrderTables[] = {"ZUKORHDR.DBF", "ZUKORLIN.DBF"};
constexpr std::string_view AuditTables[] = {"ZUKAUDTH.DBF", "ZUKAUDTL.DBF"};
constexpr std::string_view TotalsTables[] = {"ZUKAUDHH.DBF"};
constexpr DownloadGroup ClearGroups[] = {{msg::TablesOrders, OrderTables},
                                         {msg::TablesAudits, AuditTables},
                                         {msg::TablesHHTotals, TotalsTables}};

constexpr std::string_view SetupTables[] = {"ZUKSETUP.DBF", "ZUKCOMP.DBF", "ZUKHELP.DBF", "ZUKPRINT.DBF",
                                            "ZUKSTAX.DBF",  "ZUKPAY.DBF",  "ZUKLINK.DBF"};
constexpr std::string_view ItemTables[] = {"ZUKITEM.DBF", "ZUKBARIN.DBF"};
constexpr std::string_view CustomerTables[] = {"ZUKCUST.DBF"};
constexpr DownloadGroup DownloadGroups[] = {{msg::TablesSetup, SetupTables},
                                            {msg::TablesItems, ItemTables},
                                            {msg::TablesCustomers, CustomerTables}};

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

std::int32_t RecordsIn(const std::string& path) {
    return TableScan(path).RecordCount();
}

/// The tables that a merge puts old records behind.
std::vector<MergedTable> TablesOf(const UploadRun& run) {
    std::vector<MergedTable> tables;
    if (run.OrderHeaders) tables.push_back(MergedOrders[0]);
    if (run.OrderLines) tables.push_back(MergedOrders[1]);
    if (run.AuditHeaders) tables.push_back(MergedAudits[0]);
    if (run.AuditLines) tables.push_back(MergedAudits[1]);
    if (run.HHTotals) tables.push_back(MergedHHTotals[0]);
    return tables;
}

/// What each table must hold when its old records stand behind those that arrived.
class MergeCheck {
public:
    explicit MergeCheck(const UploadRun& run) {
        for (const MergedTable& table : TablesOf(run)) {
            const std::string target = Global.DBFPath + std::string(table.Target);
            const std::string source = Global.DBFPath + std::string(table.Source);
            expected_.push_back({target, RecordsIn(target) + RecordsIn(source)});
        }
    }
    bool Holds() const {
        return std::all_of(expected_.begin(), expected_.end(),
                           [](const Expected& table) { return RecordsIn(table.Path) == table.Records; });
    }

private:
    struct Expected {
        std::string Path;
        std::int64_t Records = 0;
    };
    std::vector<Expected> expected_;
};

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
    arrived_ = {};
    oldTotalsTaken_ = false;
    if (Global.HHInstallActive) return false;

    // Copies that stand there are of a session whose end never came: its old records go back first.
    RecoverSafetyCopies();
    MakeSafetyCopies(SafetyCopies::OfSession);
    ZeroTotalsBlock();
    CalcOldPCTotals();
    oldTotalsTaken_ = true;
    Global.CurrentHotSyncID = Global.HSUserName;
    receipt_.Begin(Global.HSUserName);

    LinkTablePath = Global.HHUserDir + "ZUKLINK.DBF";
    QueueUpload(LinkTablePath);
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

    if (Global.UploadSelect) {
        HSUpload();
        if (SyncPhase != "HSUpload") return;
    }
    if (Global.RemoteClearSelect) HSClear();
    if (Global.RemoteSelect) HSDownload();
    SyncStage = "C>D";
}
