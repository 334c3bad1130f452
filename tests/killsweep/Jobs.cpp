#include "killsweep/Jobs.h"

#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "exchange/Activity.h"
#include "exchange/Export.h"
#include "exchange/ExportTemplate.h"
#include "exchange/Import.h"
#include "exchange/ImportTemplate.h"
#include "exchange/LostLines.h"
#include "exchange/OrderCheck.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "maintenance/Backup.h"
#include "maintenance/ClearTables.h"
#include "maintenance/Office.h"
#include "maintenance/Restore.h"
#include "maintenance/Totals.h"
#include "maintenance/UnfinishedJobs.h"
#include "maintenance/VersionUpdate.h"
#include "quality/SearchField.h"
#include "store/CreateTable.h"
#include "store/DBFEdit.h"
#include "store/OfficeTables.h"
#include "store/SortTables.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "sync/Links.h"
#include "sync/SafetyCopies.h"
#include "sync/Status.h"
#include "sync/UnattendedSettings.h"
#include "tools/Notes.h"
#include "views/MasterTable.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <utility>

namespace {

/// Enough records for a table to be more than one block of its writer.
constexpr int Customers = 1200;
constexpr int LostEvery = 100;
constexpr int Items = 2500;
constexpr int SalesTaxes = 5000;
constexpr int Handhelds = 3000;
constexpr int Orders = 320;
constexpr int Lines = 1100;
constexpr int TotalsEvents = 2200;
constexpr int Links = 2500;
constexpr int HotSyncUsersInFile = 5000;
constexpr int Notes = 200;

using Cells = std::vector<std::pair<const char*, std::string>>;

std::string Table(const char* name) {
    return Global.DBFPath + name;
}

void Fill(const char* name, int count, Cells (*cells)(int)) {
    TableRewrite table(Table(name));
    for (int k = 1; k <= count; ++k) {
        table.Append();
        for (const auto& [field, value] : cells(k)) table.Write(field, value);
    }
    table.Commit();
}

/// Numbers from 0 to `size` - 1 in no order; `size` has no factor in common with 37.
int Shuffled(int k, int size) {
    return k * 37 % size;
}

/// Orders in no order; the last tenth repeats codes that came before.
std::string OrderCode(int k) {
    return "HH" + std::to_string(10000 + Shuffled(k, Orders * 9 / 10 + 1));
}

std::string LineKey(int k) {
    return OrderCode(k % Orders) + "-" + std::to_string(k / Orders);
}

void FillOrders() {
    Fill("ZUKOrHdr.dbf", Orders, [](int k) {
        return Cells{{"H_ORDCODE", OrderCode(k)}, {"H_CUSTCODE", "C" + std::to_string(k)}};
    });
    Fill("ZUKOrLin.dbf", Lines, [](int k) {
        return Cells{{"L_ORDCODE", OrderCode(k % Orders)},
                     {"L_KEY", LineKey(k)},
                     {"L_QTY", std::to_string(k % 9)},
                     {"L_TOTPRICE", std::to_string(k) + ".25"}};
    });
}

void FillTotals(int events) {
    Fill("ZUKTOTALPC.dbf", events, [](int k) {
        return Cells{{"TP_NUMHEAD", std::to_string(k)}, {"TP_EVENT", "UPLOAD-ADD"}};
    });
}

PCOrders Book() {
    return OpenPCOrders(Table("ZUKOrHdr.dbf"), Table("ZUKOrLin.dbf"));
}

// ---- the jobs ----

/// A data file whose first lines are headings; every hundredth line has a column too many when
/// `linesAreLost`.
void PrepareCustomers(bool linesAreLost) {
    Fill("ZUKCust.dbf", Customers / 2, [](int k) { return Cells{{"C_CODE", "OLD" + std::to_string(k)}}; });
    std::string file = "Code,Name,Phone\r\n";
    for (int k = 1; k <= Customers; ++k) {
        file += "C" + std::to_string(k) + ",Customer " + std::to_string(k) + ",555";
        file += linesAreLost && k % LostEvery == 0 ? ",one too many\r\n" : "\r\n";
    }
    WriteWholeFile(Global.DataInPath + "customers.csv", file);
}

std::string ImportCustomers(int linesLost) {
    ImportJob job;
    job.ImportFile = Global.DataInPath + "customers.csv";
    job.TableFile = Table("ZUKCust.dbf");
    job.StartLine = 2;
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    job.SelectedFields = {"C_CODE", "C_NAME", "Ignore"};
    job.LineCount = Customers + 1;
    job.ErrorFile = LostLinesFile(Global.DataInPath, "customers.csv");
    NoProgress silent;
    const ImportResult result = ImportDataFile(job, silent);
    if (result.FieldCountMismatch) return "the file has too few columns";
    if (result.LinesFailed != linesLost) return std::to_string(result.LinesFailed) + " lines failed";
    if (linesLost > 0 && !result.ErrorsListed) return "the lines that failed are not listed";
    return {};
}

std::string SortHeaders() {
    PCOrders book = Book();
    SortOrHdrFile(book);
    return {};
}

std::string SortLines() {
    PCOrders book = Book();
    SortOrLinFile(book);
    return {};
}

/// A master table in no order, by keys that cleaning changes.
void FillKeys(const char* table, const char* key, int count) {
    TableRewrite content(Table(table));
    for (int k = 1; k <= count; ++k) {
        content.Append();
        content.Write(key, "k-" + std::to_string(Shuffled(k, count)));
    }
    content.Commit();
}

/// All in order but the last one, so that the beginning of the table stays what it is.
void PrepareLateCustomer() {
    TableRewrite content(Table("ZUKCust.dbf"));
    for (int k = 1; k <= Customers; ++k) {
        content.Append();
        content.Write("C_SEARCH", "K" + std::to_string(k == Customers ? 10'950 : 10'000 + k));
    }
    content.Commit();
}

std::string Sort(const char* table, void (*sort)(std::string_view, const SortOptions&, Progress&)) {
    NoProgress silent;
    sort(Table(table), {.RemoveSpecial = true}, silent);
    return {};
}

void PrepareSearch() {
    Fill("ZUKCust.dbf", Customers, [](int k) {
        return Cells{{"C_SEARCH", "OLD" + std::to_string(k)}, {"C_CODE", "C" + std::to_string(k)}};
    });
}

std::string ChangeSearchField() {
    UpdateSearchField(CustomerSearch, "Code");
    return {};
}

std::string DeleteCustomer() {
    MasterTable customers(CustomerMaster);
    customers.Open(Customers / 2);
    return customers.Delete() ? "" : "the record is not there";
}

std::string SortLinks() {
    SortLinkFile(Table("ZUKLINK.dbf"));
    return {};
}

/// Items with barcodes, and an index of other ones.
void PrepareIndex() {
    Fill("ZUKItem.dbf", Items, [](int k) {
        return Cells{{"I_BARCODE", "BC" + std::to_string(Shuffled(k, Items))}};
    });
    Fill("ZUKBarin.dbf", Items, [](int k) { return Cells{{"BARCODE", "OLD" + std::to_string(k)}}; });
}

std::string RebuildIndex() {
    NoProgress silent;
    RebuildIndexTables(silent);
    return {};
}

/// Few records, since the check has many calls; it writes its tables as the sorts do. Orders and lines
/// come twice.
void PrepareCheck() {
    Fill("ZUKOrHdr.dbf", 40, [](int k) { return Cells{{"H_ORDCODE", OrderCode(k % 30)}}; });
    Fill("ZUKOrLin.dbf", 90, [](int k) {
        return Cells{{"L_ORDCODE", OrderCode(k % 30)},
                     {"L_KEY", OrderCode(k % 30) + "-" + std::to_string(k % 2)},
                     {"L_TOTPRICE", "12.5"}};
    });
    FillTotals(12);
}

std::string Check() {
    PCOrders book = Book();
    std::string told;
    RepeatQuestions questions;
    questions.DeleteRepeats = [] { return true; };
    questions.MakeBackup = [] { return MakeBackup("QUALCHECK"); };
    questions.BackupFailed = [&] { told = "the tables cannot be backed up"; };
    questions.CalcPCTotals = [] {
        NoProgress silent;
        CalcPCTotals("QUALCHECK", silent);
    };
    QualityCheckOrders(book, questions);
    return told;
}

/// Marks every third order header as deleted.
void DeleteSome() {
    DBFEdit table;
    table.FileOpen(Table("ZUKOrHdr.dbf"));
    for (int k = 3; k <= table.RecordCount; k += 3) {
        table.Go(k);
        table.DeleteRecord();
    }
    table.FileClose();
}

void PrepareCompaction() {
    FillOrders();
    DeleteSome();
}

/// That one writes record by record, whatever the table's length.
void PrepareShortCompaction() {
    Fill("ZUKOrHdr.dbf", 12, [](int k) { return Cells{{"H_ORDCODE", OrderCode(k)}}; });
    DeleteSome();
}

std::string Compact() {
    CompactTable(Table("ZUKOrHdr.dbf"));
    return {};
}

std::string CompactByRecords() {
    DBFEdit table;
    table.FileOpen(Table("ZUKOrHdr.dbf"));
    table.ReIndex(Table("ZUKOrHdr.dbf"));
    return {};
}

std::string Empty() {
    EmptyTable(Table("ZUKOrHdr.dbf"));
    return {};
}

std::string Event(std::string_view event) {
    NoProgress silent;
    CalcPCTotals(event, silent);
    return {};
}

/// What the tables of a job were before it and are to be behind it, for its judge.
std::string Old(const std::string& table) {
    return Global.AppPath + "Old/" + table;
}
std::string New(const std::string& table) {
    return Global.AppPath + "New/" + table;
}

/// Keeps what a table is and what the job makes of it.
void Keep(const std::string& table, const std::string& made) {
    MakePath(Global.AppPath + "Old");
    MakePath(Global.AppPath + "New");
    CopyOver(Table(table.c_str()), Old(table));
    CopyOver(made, New(table));
}

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

void PrepareNotes() {
    std::string notes;
    for (int k = 1; k <= Notes; ++k) notes += NoteRecord(NewNote(k, "1.0.0"));
    WriteWholeFile(Global.DBFPath + "Notes.dat", notes);
}

std::string ResolveNote() {
    Note note = ReadNote(Notes / 2);
    note.Resolution = "Repaired";
    WriteNote(note);
    return {};
}

std::string WriteSettings() {
    Global.PurgeDays = 31;
    Global.RemoteSyncSettings = "Every evening";
    UpdateIniFile();
    return {};
}

void PrepareStatus() {
    Fill("ZUKLINK.DBF", 12, [](int k) { return Cells{{"LK_HOTSYNC", "Handheld " + std::to_string(k)}}; });
    MakeHHStatusFile();
}

/// The ids come in no order.
void PrepareLinks() {
    Fill("ZUKLINK.DBF", Links, [](int k) {
        return Cells{{"LK_HOTSYNC", "Handheld " + std::to_string(Shuffled(k, Links))}};
    });
    MakeHHStatusFile();
}

std::string DeleteLink() {
    LinkTable links;
    links.Open(Links / 2);
    links.Delete();
    return {};
}

std::string SortLinksAndResetStatus() {
    SortLinkFile(Table("ZUKLINK.DBF"));
    MakeHHStatusFile();
    return {};
}

std::string WriteStatus() {
    GetHHStatus();
    for (std::string& status : Global.HHStatus) status = "G";
    UpdateHHStatus();
    return {};
}

ImportTemplate CustomerTemplate(std::size_t fields) {
    ImportTemplate content;
    content.DataFile = "customers.csv";
    content.StartLine = "2";
    content.Fields.assign(fields, "C_CODE; C_NAME");
    content.Literals = {"C_STATE = CA"};
    return content;
}

std::string WriteImport() {
    WriteImportTemplate(Global.ImportTemplates + "customers.cst", CustomerTemplate(9));
    return {};
}

ExportTemplate OrderTemplate(std::size_t columns) {
    ExportTemplate content;
    content.FileName = "orders.csv";
    content.Columns.assign(columns, "H_ORDDATE Format: mmddyyyy");
    return content;
}

std::string WriteExport() {
    WriteExportTemplate(Global.ExportTemplates + "orders.xor", OrderTemplate(9));
    return {};
}

Activity ImportActivity(const char* item) {
    Activity activity;
    activity.Rows[0].Template = "customers.cst";
    activity.Rows[1].Template = item;
    return activity;
}

std::string WriteQuickButton() {
    WriteActivity(Global.QuickButtonTemplates + "morning.ipm", ImportActivity("items.itm"));
    return {};
}

std::string UnattendedFile() {
    return Global.UnattendedTemplates + "evening.uhs";
}

std::string WriteUnattended() {
    SaveUA(UnattendedFile(), {true, "Prices and customers", true, "Orders", true, "Orders of the day"});
    return {};
}

/// Where the tables lie that a handheld is about to send.
std::string Sent(const char* table) {
    return Global.DataInPath + "sent-" + table;
}

constexpr int OrdersSent = 300;
constexpr const char* SentTables[] = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf"};

std::string CodeSent(int k) {
    return "NEW" + std::to_string(k);
}

void PrepareMerge() {
    Fill(SentTables[0], OrdersSent, [](int k) { return Cells{{"H_ORDCODE", CodeSent(k)}}; });
    Fill(SentTables[1], OrdersSent, [](int k) { return Cells{{"L_KEY", CodeSent(k)}}; });
    for (const char* table : SentTables) CopyOver(Table(table), Sent(table));
    FillOrders();
}

/// A session as far as the files of the office go: what the HotSync Manager puts in place is merged.
std::string MergeUpload() {
    Global.UploadSelect = Selection(true);
    MakeSafetyCopies(SafetyCopies::OfSession);
    for (const char* table : SentTables) CopyOver(Sent(table), Table(table));
    NoProgress silent;
    std::vector<TableMerge> merges = {TableMerge(MergedOrderHeaders), TableMerge(MergedOrderLines)};
    for (TableMerge& merge : merges) merge.WriteText();
    for (TableMerge& merge : merges) merge.ReadText(silent);
    const bool failed = !Global.FailedMerges.empty();
    DeleteSafetyCopies(SafetyCopies::OfSession);
    return failed ? "the merge failed" : "";
}

std::vector<std::string> Column(const char* table, const char* field) {
    TableScan scan(Table(table));
    const int place = scan.Layout().Find(FieldKey(field));
    std::vector<std::string> values;
    while (scan.Next()) values.emplace_back(scan.Trimmed(place));
    return values;
}

/// Each record of the PC is there once, behind all those that were sent or behind none.
std::string JudgeMerge() {
    std::vector<std::string> headers;
    std::vector<std::string> lines;
    for (int k = 1; k <= Orders; ++k) headers.push_back(OrderCode(k));
    for (int k = 1; k <= Lines; ++k) lines.push_back(LineKey(k));
    const auto hasCome = [](const std::vector<std::string>& now, const std::vector<std::string>& old) {
        std::vector<std::string> both;
        for (int k = 1; k <= OrdersSent; ++k) both.push_back(CodeSent(k));
        both.insert(both.end(), old.begin(), old.end());
        return now == both;
    };
    const std::vector<std::string> headersNow = Column("ZUKOrHdr.dbf", "H_ORDCODE");
    const std::vector<std::string> linesNow = Column("ZUKOrLin.dbf", "L_KEY");
    if (!hasCome(headersNow, headers) && headersNow != headers) return "a header is lost or doubled";
    if (!hasCome(linesNow, lines) && linesNow != lines) return "a line is lost or doubled";
    if (FileExists(Table("SafetyCopies.txt"))) return "the recovery has not come to its end";
    return {};
}

void PutInto(const std::string& folder, const char* table, std::initializer_list<FieldDef> fields) {
    MakePath(folder);
    CreateTable(folder + table, fields);
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

std::string HotSyncFolder() {
    return Global.AppPath + "HotSync/";
}

/// More users than a block of their file holds.
void PrepareHotSyncUsers() {
    MakePath(HotSyncFolder());
    std::string lines;
    for (int k = 1; k <= HotSyncUsersInFile; ++k)
        lines += std::to_string(k) + "\tA user with a long name " + std::to_string(k) +
                 "\t2026-11-21 14:05:09\tcomplete\r\n";
    WriteWholeFile(HotSyncFolder() + "Users.txt", lines);
}

std::string EndHotSyncSession() {
    HotSyncUsers users(HotSyncFolder());
    users.Load();
    users.Synced(HotSyncUsersInFile / 2, Now(), false);
    return {};
}

void PrepareHotSyncSettings() {
    MakePath(HotSyncFolder());
    ManagerSettings settings;
    settings.PCId = 7;
    WriteManagerSettings(HotSyncFolder(), settings);
}

std::string WriteHotSyncSettings() {
    ManagerSettings settings = ReadManagerSettings(HotSyncFolder());
    settings.Address = "*";
    settings.AnswerSeconds = 90;
    WriteManagerSettings(HotSyncFolder(), settings);
    return {};
}

std::string Export() {
    ExportJob job;
    job.ExportFile = Global.DataOutPath + "orders.csv";
    job.AddHeadings = true;
    for (int k = 0; k < 12; ++k) {
        job.Columns.insert(job.Columns.end(), {"L_ORDCODE", "L_KEY", "H_CUSTCODE", "L_QTY * [1.5]"});
    }
    NoProgress silent;
    return ExportOrders(job, Book().Tables, silent).CouldNotOpen ? "the export file cannot be written" : "";
}

/// What operators and updates leave for the next start to put away.
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

/// The new tables in the order of their names.
std::vector<std::string> StepsOfUpdate() {
    const std::string text = "DBFFiles/DBFCOPY.TXT";
    std::vector<std::string> steps = StepsOfTwins();
    steps.insert(steps.end(),
                 {"DBFFiles/ZUKBRAND.dbf", "DBFNew/ZUKBRAND.dbf", text, text, "DBFFiles/ZUKPAY.dbf", text,
                  text, "Install/ZUKPAY.dbf", "DBFEmpty/ZUKPAY.dbf", "DBFNew/ZUKPAY.dbf"});
    return steps;
}

// ---- jobs that do harm ----

std::string HarmedFile() {
    return Global.DataOutPath + "harmed.txt";
}

void PrepareHarm() {
    WriteWholeFile(HarmedFile(), "what stood here before");
}

std::string WriteInPlace() {
    const auto file = Global.TheDisk->Open(HarmedFile(), Access::ReadWrite);
    file->WriteAt(0, "WHAT STANDS HERE BEHIND");
    return {};
}

std::string LeaveAFile() {
    const std::string work = Global.DataOutPath + "work.tmp";
    Global.TheDisk->Open(work, Access::Create)->WriteAt(0, "new");
    Global.TheDisk->Rename(work, HarmedFile());
    return {};
}

std::string KeepSilent() {
    try {
        WriteWholeFile(HarmedFile(), "new");
    } catch (const RunTimeFailure&) { // that nobody hears of it is the harm
    }
    return {};
}

std::string BreakDown() {
    try {
        WriteWholeFile(HarmedFile(), "new");
    } catch (const RunTimeFailure&) {
        std::abort();
    }
    return {};
}

std::string WriteInWrongOrder() {
    WriteWholeFile(Global.DataOutPath + "about.txt", "complete");
    WriteWholeFile(HarmedFile(), "new");
    return {};
}

std::string WriteByStream() {
    std::ofstream(HarmedFile()) << "new";
    return {};
}

std::vector<SweepJob> MakeJobs() {
    const std::string customers = "DBFFiles/ZUKCust.dbf";
    const std::string headers = "DBFFiles/ZUKOrHdr.dbf";
    const std::string lines = "DBFFiles/ZUKOrLin.dbf";
    const std::string totals = "DBFFiles/ZUKTOTALPC.dbf";
    const std::string links = "DBFFiles/ZUKLINK.dbf";
    const std::string harmed = "DataOut/harmed.txt";

    // A backup says that it is there when all of its tables are.
    std::vector<std::string> backup = {"Backup/61115093000/"};
    for (const char* name :
         {"ZUKOrHdr.dbf", "ZUKOrLin.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKAudHH.dbf", "Backup.txt"}) {
        backup.push_back(backup.front() + name);
    }
    // Sorted first; nothing is deleted before the backup and the event stand.
    std::vector<std::string> check = {headers, lines};
    check.insert(check.end(), backup.begin(), backup.end());
    check.insert(check.end(), {totals, headers, lines});

    // Nothing is cleared before the backup stands; images that cannot go stop nothing.
    std::vector<std::string> clear = backup;
    const std::string unfinished = "DBFFiles/UnfinishedJobs.txt";
    clear.insert(clear.end(), {unfinished, totals, totals, headers, "DBFFiles/Images/a.bmp",
                               "DBFFiles/Images/b.bmp", lines, customers, unfinished, totals});

    // The copies, the mark, what the handheld sends, the merge, and all of it away.
    std::vector<std::string> copies;
    for (const char* name : {"OrHdr", "OrLin", "AudtH", "AudtL", "AudHH", "BarIn"})
        copies.push_back("DBFFiles/ZUK" + std::string(name) + ".dap");
    const std::string mark = "DBFFiles/SafetyCopies.txt";
    const std::string headerText = "DBFFiles/OLDHDR.TXT";
    const std::string lineText = "DBFFiles/OLDLIN.TXT";
    std::vector<std::string> merge = copies;
    merge.insert(merge.end(),
                 {mark, headers, lines, headerText, lineText, headers, headerText, lines, lineText, mark});
    merge.insert(merge.end(), copies.begin(), copies.end());

    // Behind the backup of the present tables those of the older one, the headers by way of a text.
    std::vector<std::string> restore = backup;
    restore.insert(restore.end(),
                   {unfinished, "DBFFiles/ZUKAudHH.dbf", "DBFFiles/ZUKAudTH.dbf", "DBFFiles/ZUKAudTL.dbf",
                    "DBFFiles/DBFCOPY.TXT", "DBFFiles/DBFCOPY.TXT", headers, lines, unfinished, totals});

    const auto ordersAndTotals = [] {
        FillOrders();
        FillTotals(TotalsEvents);
    };
    return {
        {"import", {customers}, [] { PrepareCustomers(false); }, [] { return ImportCustomers(0); }, ""},
        {"import that loses lines",
         {"DataIn/Errors/", customers, "DataIn/Errors/customers.csv.txt"},
         [] { PrepareCustomers(true); },
         [] { return ImportCustomers(Customers / LostEvery); },
         ""},
        {"sort of the order headers", {headers}, FillOrders, SortHeaders, ""},
        {"sort of the order lines", {lines}, FillOrders, SortLines, ""},
        {"sort of the customers",
         {customers},
         [] { FillKeys("ZUKCust.dbf", "C_SEARCH", Customers); },
         [] { return Sort("ZUKCust.dbf", SortCustFile); },
         ""},
        {"sort of the customers, one late",
         {customers},
         PrepareLateCustomer,
         [] { return Sort("ZUKCust.dbf", SortCustFile); },
         ""},
        {"search field of the customers", {customers}, PrepareSearch, ChangeSearchField, ""},
        {"deletion of a customer", {customers}, PrepareSearch, DeleteCustomer, ""},
        {"sort of the items",
         {"DBFFiles/ZUKItem.dbf"},
         [] { FillKeys("ZUKItem.dbf", "I_SEARCH", Items); },
         [] { return Sort("ZUKItem.dbf", SortItemFile); },
         ""},
        {"sort of the sales taxes",
         {"DBFFiles/ZUKSTAX.dbf"},
         [] { FillKeys("ZUKSTAX.dbf", "ST_CODE", SalesTaxes); },
         [] { return Sort("ZUKSTAX.dbf", SortSTaxFile); },
         ""},
        {"sort of the links",
         {"DBFFiles/ZUKLINK.dbf"},
         [] { FillKeys("ZUKLINK.dbf", "LK_HOTSYNC", Handhelds); },
         SortLinks,
         ""},
        {"barcode index", {"DBFFiles/ZUKBarin.dbf"}, PrepareIndex, RebuildIndex, ""},
        {"order check, repeats deleted", check, PrepareCheck, Check, ""},
        {"compaction", {headers}, PrepareCompaction, Compact, ""},
        {"compaction by records", {headers}, PrepareShortCompaction, CompactByRecords, ""},
        {"emptying", {headers}, FillOrders, Empty, ""},
        {"merge", merge, PrepareMerge, MergeUpload, "", false, JudgeMerge},
        {"totals event", {totals}, ordersAndTotals, [] { return Event("EXPORT"); }, ""},
        {"totals event, second half", {totals}, ordersAndTotals, [] { return Event("CLEAR2"); }, ""},
        {"backup", backup, FillOrders, Backup, ""},
        {"clear", clear, PrepareClear, Clear, "", false, JudgeClear, unfinished},
        {"export", {"DataOut/orders.csv"}, FillOrders, Export, ""},
        {"export over a file",
         {"DataOut/orders.csv"},
         [] {
             FillOrders();
             WriteWholeFile(Global.DataOutPath + "orders.csv", "of yesterday\r\n");
         },
         Export,
         ""},
        {"settings", {"ZUKTramble.ini"}, [] {}, WriteSettings, ""},
        {"status", {"Install/HSStatus.dat"}, PrepareStatus, WriteStatus, ""},
        {"deletion of a link", {links}, PrepareLinks, DeleteLink, ""},
        {"links sorted, status anew",
         {links, "Install/HSStatus.dat"},
         PrepareLinks,
         SortLinksAndResetStatus,
         ""},
        {"import template",
         {"Templates/Import/customers.cst"},
         [] { WriteImportTemplate(Global.ImportTemplates + "customers.cst", CustomerTemplate(3)); },
         WriteImport,
         ""},
        {"export template",
         {"Templates/Export/orders.xor"},
         [] { WriteExportTemplate(Global.ExportTemplates + "orders.xor", OrderTemplate(3)); },
         WriteExport,
         ""},
        {"QuickButton",
         {"Templates/QuickButtons/morning.ipm"},
         [] { WriteActivity(Global.QuickButtonTemplates + "morning.ipm", ImportActivity("")); },
         WriteQuickButton,
         ""},
        {"unattended settings",
         {"Templates/UnattendedHotsync/evening.uhs"},
         [] { SaveUA(UnattendedFile(), {}); },
         WriteUnattended,
         ""},

        {"note", {"DBFFiles/Notes.dat"}, PrepareNotes, ResolveNote, ""},

        {"HotSync users", {"HotSync/Users.txt"}, PrepareHotSyncUsers, EndHotSyncSession, ""},
        {"HotSync settings", {"HotSync/HotSync.ini"}, PrepareHotSyncSettings, WriteHotSyncSettings, ""},

        {"restore", restore, PrepareRestore, Restore, "", false, JudgeRestore, unfinished},
        {"version update", StepsOfUpdate(), PrepareUpdate, nullptr, "", true},

        {"start", StepsOfStart(), PrepareStart, nullptr, "", true},

        {"harm: writes in place", {harmed}, PrepareHarm, WriteInPlace, "is neither the old nor the new"},
        {"harm: leaves a file", {harmed}, PrepareHarm, LeaveAFile, "work.tmp lies about"},
        {"harm: keeps silent", {harmed}, PrepareHarm, KeepSilent, "said that all went well"},
        {"harm: breaks down", {harmed}, PrepareHarm, BreakDown, "broke down"},
        {"harm: wrong order",
         {harmed, "DataOut/about.txt"},
         PrepareHarm,
         WriteInWrongOrder,
         "takes the steps"},
        {"harm: writes by a stream", {harmed}, PrepareHarm, WriteByStream, "cannot be followed"},
    };
}

/// As far as its files go, where there are any.
void StartHotSyncManager() {
    if (FileExists(HotSyncFolder() + "Users.txt")) HotSyncUsers(HotSyncFolder()).Load();
    if (FileExists(HotSyncFolder() + "HotSync.ini")) ReadManagerSettings(HotSyncFolder());
}

void BeginOffice(const std::string& folder) {
    Global = Globals{};
    Global.Clock = [] { return DateTime{2026, 11, 15, 9, 30, 0}; };
    Global.AppPath = AddBackslash(folder);
    Global.IniFile = Global.AppPath + "ZUKTramble.ini";
    LoadEvents();
}

} // namespace

const std::vector<SweepJob>& SweepJobs() {
    static const std::vector<SweepJob> jobs = MakeJobs();
    return jobs;
}

void OpenOffice(const std::string& folder) {
    BeginOffice(folder);
    SetTablesAndInstall();
    SetGraphics();
    SetImagesAndTotals();
    Global.DBFEmptyPath = Global.AppPath + "DBFEmpty/";
    SetDataIn();
    SetDataOutBackupTemplates();
    TemplatePass([] {});
    SetUpdates();
}

void StartOffice(const std::string& folder) {
    const auto updateSilently = [] {
        NoProgress silent;
        UpdateTables(silent);
    };
    BeginOffice(folder);
    GetIniFile();
    if (!PrepareOffice([] {}, updateSilently)) throw RunTimeFailure(53, "tables");
    FindUnfinishedJobs();
    RecoverSafetyCopies();
    GetPCTotals();
    GetHHStatus();
    StartHotSyncManager();
    if (!Global.PurgeBackup) return;
    DeleteBackupTables([](std::string_view file) { throw RunTimeFailure(75, std::string(file)); });
}
