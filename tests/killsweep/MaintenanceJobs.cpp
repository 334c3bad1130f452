#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "exchange/ImportTemplate.h"
#include "maintenance/Backup.h"
#include "maintenance/ClearTables.h"
#include "maintenance/Office.h"
#include "maintenance/Restore.h"
#include "maintenance/Totals.h"
#include "maintenance/UnfinishedJobs.h"
#include "maintenance/VersionUpdate.h"
#include "store/OfficeTables.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <utility>

namespace {

constexpr int TotalsEvents = 2200;

/// Each table is the old or the new one, and the mark names those of a job that came to some of them and not
/// to others. The PC totals, which take events in the middle of the job, are new when they are not the old
/// ones.
std::string JudgeJob(CutOffJob job, const std::vector<std::string>& tables) {
    bool changed = false;
    for (const std::string& table : tables) {
        const std::string now = ReadWholeFile(Table(table.c_str()));
        const bool isOld = now == ReadWholeFile(Old(table));
        const bool isNew = now == ReadWholeFile(New(table)) || (!isOld && table == "ZUKTOTALPC.DBF");
        if (!isOld && !isNew) return table + " is neither the old nor the new one";
        (isNew ? job.Done : job.Left).push_back(table);
        changed = changed || !isOld;
    }
    std::vector<CutOffJob> expected;
    if (changed && !job.Left.empty()) expected.push_back(std::move(job));
    const UnfinishedJobs found = FindUnfinishedJobs();
    if (!found.Broken.empty()) return found.Broken;
    if (found.Jobs != expected) return "the mark does not say which tables have been replaced";
    if (expected.empty() && FileExists(Table("UnfinishedJobs.txt"))) return "a mark lies about";
    return {};
}

std::string Backup() {
    return MakeBackup("CLEAR") ? "" : "the tables cannot be backed up";
}

const std::vector<std::string> TablesToClear = {"ZUKORHDR.DBF", "ZUKORLIN.DBF", "ZUKCUST.DBF",
                                                "ZUKTOTALPC.DBF"};

/// Few records, for the sake of the totals event, which shifts them; the images lie where an upload puts
/// them.
void PrepareClear() {
    Fill("ZUKOrHdr.dbf", 40, [](int k) { return Cells{{"H_ORDCODE", OrderCode(k)}}; });
    Fill("ZUKOrLin.dbf", 90, [](int k) { return Cells{{"L_KEY", LineKey(k)}, {"L_TOTPRICE", "12.5"}}; });
    Fill("ZUKCust.dbf", 40, [](int k) { return Cells{{"C_CODE", "C" + std::to_string(k)}}; });
    FillTotals(12);
    for (const char* image : {"a.bmp", "b.bmp"}) WriteWholeFile(Global.ImagesPath + image, "BM");
    for (const std::string& table : TablesToClear) Keep(table, Global.DBFEmptyPath + table);
}

/// The steps of the screen.
std::string Clear() {
    ClearPlan plan;
    for (const ClearGroup group : {ClearGroup::OrHdr, ClearGroup::Cust, ClearGroup::TotalPC})
        plan.Choose(group);
    if (!MakeBackup("CLEAR")) return "the tables cannot be backed up";
    NoProgress silent;
    ClearedTables cleared;
    TableJob job = MarkClearing(plan);
    ClearPCTotals(plan, cleared);
    CalcPCTotals("CLEAR", silent);
    ClearTables(plan, cleared);
    job.Finish();
    CalcPCTotals("CLEAR2", silent);
    return cleared.Images == 2 ? "" : "not all images were deleted"; // the screen says how many were
}

std::string JudgeClear() {
    return JudgeJob({JobKind::Clear, "61115093000", {}, {}}, TablesToClear);
}

constexpr int PaymentTerms = 9000;

const std::vector<std::string> TablesToRestore = {"ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf",
                                                  "ZUKOrHdr.dbf", "ZUKOrLin.dbf"};

/// A backup of this morning, its headers of an older release, and other orders since.
void PrepareRestore() {
    FillOrders();
    Global.Clock = [] { return DateTime{2026, 11, 15, 9, 0, 0}; };
    MakeBackup("CLEAR");
    const std::string folder = Global.BackupPath + "61115090000/";
    PutInto(folder, "ZUKOrHdr.dbf", {{"H_ORDCODE", 'C', 9}, {"H_FORMER", 'C', 200}});
    TableRewrite headers(folder + "ZUKOrHdr.dbf");
    for (int k = 1; k <= 1500; ++k) {
        headers.Append();
        headers.Write("H_ORDCODE", OrderCode(k));
        headers.Write("H_FORMER", std::string(180, 'x'));
    }
    headers.Commit();
    Fill("ZUKOrHdr.dbf", OrdersSent, [](int k) { return Cells{{"H_ORDCODE", CodeSent(k)}}; });
    Fill("ZUKOrLin.dbf", OrdersSent, [](int k) { return Cells{{"L_KEY", CodeSent(k)}}; });
    Fill("ZUKAudTH.dbf", 5, [](int k) { return Cells{{"A_ORDCODE", CodeSent(k)}}; });
    FillTotals(12);
    NoProgress silent;
    for (const std::string& table : TablesToRestore) {
        Keep(table, Table(table.c_str()));
        CopySingleTable(folder + table, New(table), silent);
    }
}

std::string Restore() {
    NoProgress silent;
    const RestoreResult result =
        RestoreTables(FindBackup("2026-11-15 09:00:00"), [&](const std::string& from, const std::string& to) {
            CopySingleTable(from, to, silent);
        });
    if (result.How == RestoreResult::End::NoSafetyCopy) return "the tables cannot be backed up";
    if (result.How != RestoreResult::End::Restored) return result.Why;
    return Event("RESTORE");
}

std::string JudgeRestore() {
    const auto headers = ReadWholeFile(Table("ZUKOrHdr.dbf"));
    if (headers == ReadWholeFile(New("ZUKOrHdr.dbf"))) {
        std::vector<std::string> codes;
        for (int k = 1; k <= 1500; ++k) codes.push_back(OrderCode(k));
        if (Column("ZUKOrHdr.dbf", "H_ORDCODE") != codes)
            return "the headers of the older release are others";
    }
    if (FileExists(Table("DBFCOPY.TXT"))) return "the text of the transfer lies about";
    return JudgeJob({JobKind::Restore, "61115090000", {}, {}}, TablesToRestore);
}

/// One table with other fields and one that is new.
void PrepareUpdate() {
    Fill("ZUKPAY.dbf", PaymentTerms, [](int k) {
        return Cells{{"PAY_CODE", "T" + std::to_string(k)},
                     {"PAY_CDESC", "Net " + std::to_string(k) + " days"}};
    });
    const std::string folder = AddBackslash(Global.AppPath + "DBFNew");
    PutInto(folder, "ZUKPAY.dbf", {{"PAY_CODE", 'C', 12}, {"PAY_NEW", 'C', 3}, {"PAY_CDESC", 'C', 40}});
    PutInto(folder, "ZUKBRAND.dbf", {{"X_CODE", 'C', 8}});
}

std::string WriteSettings() {
    Global.PurgeDays = 31;
    Global.RemoteSyncSettings = "Every evening";
    UpdateIniFile();
    return {};
}

void PrepareStart() {
    WriteWholeFile(Global.AppPath + "orders.csv", "of an older program\r\n");
    WriteImportTemplate(Global.TemplatesPath + "dropped.cst", CustomerTemplate(3));
    MakePath(Global.AppPath + "DBFNew/");
    WriteWholeFile(Global.AppPath + "DBFNew/item.bmp", "BM");
}

/// What a start always does: all old twins go, then each is made anew: a copy of the installed table, which
/// is then emptied.
std::vector<std::string> StepsOfTwins() {
    std::vector<std::string> twins;
    for (const TableEntry& table : AllTables().first(TwinTables)) {
        twins.push_back("DBFEmpty/" + std::string(table.Name) + ".dbf");
    }
    std::vector<std::string> steps = twins;
    std::sort(steps.begin(), steps.end(),
              [](const std::string& a, const std::string& b) { return TextCompare(a, b) < 0; });
    for (const std::string& twin : twins) steps.insert(steps.end(), 2, twin);
    return steps;
}

std::vector<std::string> StepsOfStart() {
    std::vector<std::string> steps = StepsOfTwins();
    // What moves is there before it goes where it was.
    steps.insert(steps.end(), {"DataIn/orders.csv", "orders.csv", "Templates/Demo/Import/dropped.cst",
                               "Templates/Import/dropped.cst", "Templates/dropped.cst",
                               "DBFFiles/Images/item.bmp", "DBFNew/item.bmp"});
    return steps;
}

/// The part of a start that an update has to itself.
std::string Update() {
    NoProgress silent;
    UpdateTables(silent);
    return {};
}

/// The new tables in the order of their names.
std::vector<std::string> StepsOfUpdate() {
    const std::string text = "DBFFiles/DBFCOPY.TXT";
    return {"DBFFiles/ZUKBRAND.dbf",
            "DBFNew/ZUKBRAND.dbf",
            text,
            text,
            "DBFFiles/ZUKPAY.dbf",
            text,
            text,
            "Install/ZUKPAY.dbf",
            "DBFEmpty/ZUKPAY.dbf",
            "DBFNew/ZUKPAY.dbf"};
}

// ---- a job that was cut off, looked at ----

const CutOffJob CutOff{JobKind::Clear, "61115093000", {"ZUKORHDR.DBF"}, {"ZUKORLIN.DBF"}};

/// The program was killed behind the first table.
void PrepareCutOff() {
    FillOrders();
    std::make_unique<TableJob>(CutOff.Kind, CutOff.Backup,
                               std::vector<std::string>{CutOff.Done[0], CutOff.Left[0]})
        .release();
    EmptyTable(Table(CutOff.Done[0]));
}

std::string LookAtCutOff() {
    FindUnfinishedJobs();
    return {};
}

std::string JudgeCutOff() {
    return FindUnfinishedJobs().Jobs == std::vector{CutOff} ? ""
                                                            : "the mark does not say what was left undone";
}

// ---- old backups ----

/// Not so old that a start purges it.
void PreparePurge() {
    FillOrders();
    Global.Clock = [] { return DateTime{2026, 11, 10, 9, 0, 0}; };
    MakeBackup("CLEAR");
}

std::string Purge() {
    std::string told;
    PurgeBackups({2026, 11, 12, 0, 0, 0}, [&](std::string_view file) { told += file; });
    return told;
}

// ---- the laying out ----

std::string SecondOffice() {
    return Global.AppPath + "Second/";
}

std::string InstalledSet() {
    return Global.AppPath + "Set/";
}

constexpr const char* NotLaidOut[] = {"DBFFiles/ZUKComp.dbf", "DBFFiles/ZUKPAY.dbf", "Install/Office.txt"};

/// One that was cut off, with a set that has no pictures.
void PrepareLayout() {
    namespace fs = std::filesystem;
    fs::create_directories(InstalledSet());
    fs::copy(Global.InstallPath, InstalledSet() + "Install", fs::copy_options::recursive);
    fs::remove(InstalledSet() + "Install/Office.txt");
    LayOutOffice(InstalledSet(), SecondOffice());
    MakePath(Global.AppPath + "New");
    for (const char* file : NotLaidOut) {
        const std::string path = ResolvePath(SecondOffice() + file);
        CopyOver(path, New(std::string(FileNameOf(file))));
        fs::remove(path);
    }
}

std::string LayOut() {
    LayOutOffice(InstalledSet(), SecondOffice());
    return {};
}

std::string JudgeLayout() {
    LayOutOffice(InstalledSet(), SecondOffice());
    for (const char* file : NotLaidOut) {
        if (ReadWholeFile(SecondOffice() + file) != ReadWholeFile(New(std::string(FileNameOf(file)))))
            return std::string(file) + " is not as it was laid out at first";
    }
    return {};
}

// ---- the renewal of Install ----

std::string Programs() {
    return Global.AppPath + "Prefix/bin/";
}

std::string Everybodys(const char* file) {
    return Global.AppPath + "Prefix/share/zuk-tramble/Install/" + file;
}

/// The office of a user, laid out at the first call.
std::string UsersOwn() {
    return ApplicationDirectory(Programs(), Global.AppPath + "Data/");
}

constexpr const char* Renewed[] = {"Notes.dat", "Terms.txt", "ZUKPAY.dbf"};

/// A newer release has other notes, a file more and a table with a field more.
void PrepareRenewal() {
    namespace fs = std::filesystem;
    fs::create_directories(Programs());
    fs::create_directories(Everybodys(""));
    fs::copy(Global.InstallPath, Everybodys(""), fs::copy_options::recursive);
    fs::remove(Everybodys("Office.txt"));
    UsersOwn();
    WriteWholeFile(Everybodys("Notes.dat"), ReadWholeFile(Everybodys("Notes.dat")) + std::string(1112, ' '));
    WriteWholeFile(Everybodys("Terms.txt"), "Net 30");
    PutInto(Everybodys(""), "ZUKPAY.dbf",
            {{"PAY_CODE", 'C', 12}, {"PAY_NEW", 'C', 3}, {"PAY_CDESC", 'C', 40}});
}

std::string Renew() {
    RenewInstall(::InstalledSet(Programs()), Global.AppPath + "Data/ZUKTramble");
    return {};
}

/// The next start has completed it, and the operator's payments wait for the version update.
std::string JudgeRenewal() {
    Renew();
    const std::string office = UsersOwn();
    for (const char* file : Renewed) {
        if (ReadWholeFile(office + "Install/" + file) != ReadWholeFile(Everybodys(file)))
            return std::string(file) + " is not the newer one";
    }
    if (ReadWholeFile(office + "DBFNew/ZUKPAY.dbf") != ReadWholeFile(Everybodys("ZUKPAY.dbf")))
        return "the newer table does not wait for the version update";
    return {};
}

} // namespace

std::vector<SweepJob> MaintenanceJobs() {
    const std::string customers = "DBFFiles/ZUKCust.dbf";
    const std::string headers = "DBFFiles/ZUKOrHdr.dbf";
    const std::string lines = "DBFFiles/ZUKOrLin.dbf";
    const std::string totals = "DBFFiles/ZUKTOTALPC.dbf";
    const std::string unfinished = "DBFFiles/UnfinishedJobs.txt";
    const std::vector<std::string> backup = StepsOfBackup();

    // Nothing is cleared before the backup stands; images that cannot go stop nothing.
    std::vector<std::string> clear = backup;
    clear.insert(clear.end(), {unfinished, totals, totals, headers, "DBFFiles/Images/a.bmp",
                               "DBFFiles/Images/b.bmp", lines, customers, unfinished, totals});

    // Behind the backup of the present tables those of the older one, the headers by way of a text.
    std::vector<std::string> restore = backup;
    restore.insert(restore.end(),
                   {unfinished, "DBFFiles/ZUKAudHH.dbf", "DBFFiles/ZUKAudTH.dbf", "DBFFiles/ZUKAudTL.dbf",
                    "DBFFiles/DBFCOPY.TXT", "DBFFiles/DBFCOPY.TXT", headers, lines, unfinished, totals});

    // The text of the backup stays.
    std::vector<std::string> purge;
    for (const char* table : {"ZUKAudHH", "ZUKAudTH", "ZUKAudTL", "ZUKOrHdr", "ZUKOrLin"})
        purge.push_back("Backup/61110090000/" + std::string(table) + ".dbf");

    std::vector<std::string> layout;
    for (const char* file : NotLaidOut) layout.push_back(std::string("Second/") + file);

    const auto ordersAndTotals = [] {
        FillOrders();
        FillTotals(TotalsEvents);
    };
    return {
        {"totals event", {totals}, ordersAndTotals, [] { return Event("EXPORT"); }},
        {"totals event, second half", {totals}, ordersAndTotals, [] { return Event("CLEAR2"); }},
        {"backup", backup, FillOrders, Backup},
        {"purge of backups", purge, PreparePurge, Purge},
        {.Name = "clear",
         .Steps = clear,
         .Prepare = PrepareClear,
         .Run = Clear,
         .JudgeStarted = JudgeClear,
         .Mark = unfinished},
        {.Name = "restore",
         .Steps = restore,
         .Prepare = PrepareRestore,
         .Run = Restore,
         .JudgeStarted = JudgeRestore,
         .Mark = unfinished},
        {.Name = "cut-off job looked at",
         .Steps = {unfinished},
         .Prepare = PrepareCutOff,
         .Run = LookAtCutOff,
         .IsStart = true,
         .JudgeStarted = JudgeCutOff,
         .IsQuiet = true},
        {"settings", {"ZUKTramble.ini"}, [] {}, WriteSettings},
        {.Name = "laying out",
         .Steps = layout,
         .Prepare = PrepareLayout,
         .Run = LayOut,
         .JudgeStarted = JudgeLayout},
        {.Name = "renewal of Install",
         .Steps = {"Data/ZUKTramble/Install/Notes.dat", "Data/ZUKTramble/Install/Terms.txt",
                   "Data/ZUKTramble/DBFNew/", "Data/ZUKTramble/DBFNew/ZUKPAY.dbf",
                   "Data/ZUKTramble/Install/ZUKPAY.dbf", "Data/ZUKTramble/Install/Office.txt"},
         .Prepare = PrepareRenewal,
         .Run = Renew,
         .JudgeStarted = JudgeRenewal},
        {.Name = "version update",
         .Steps = StepsOfUpdate(),
         .Prepare = PrepareUpdate,
         .Run = Update,
         .IsStart = true},
        {.Name = "start", .Steps = StepsOfStart(), .Prepare = PrepareStart, .IsStart = true},
    };
}
