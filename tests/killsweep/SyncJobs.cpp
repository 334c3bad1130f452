#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "maintenance/SafetyCopies.h"
#include "store/SortTables.h"
#include "support/IdleControl.h"
#include "sync/Images.h"
#include "sync/Links.h"
#include "sync/Receipt.h"
#include "sync/Status.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"

namespace {

constexpr int Links = 2500;

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

constexpr const char* SentTables[] = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf"};

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

/// Each record of the PC is there once, behind all those that were sent or behind none.
std::string JudgeMerge() {
    std::vector<std::string> headers;
    std::vector<std::string> lines;
    for (int k = 1; k <= OrderCount; ++k) headers.push_back(OrderCode(k));
    for (int k = 1; k <= LineCount; ++k) lines.push_back(LineKey(k));
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

/// The headers have come from the handheld, nothing else, and nothing has been merged yet.
void PrepareRecovery() {
    PrepareMerge();
    Global.UploadSelect = Selection(true);
    MakeSafetyCopies(SafetyCopies::OfSession);
    CopyOver(Sent(SentTables[0]), Table(SentTables[0]));
}

std::string RecoverUpload() {
    RecoverSafetyCopies();
    return {};
}

// ---- images ----

void PrepareImages() {
    for (const char* order : {"A1", "B2"})
        WriteWholeFile(Global.ImagesPath + order, "BM of " + std::string(order));
}

std::string GiveImagesTheirNames() {
    std::string told;
    for (const std::string& name : RenameImages(Global.ImagesPath)) told += name + " stays ";
    return told;
}

// ---- receipts ----

std::string ReceiptOf(int number) {
    return "Receipt 2026-11-01 10" + std::to_string(number) + "00.txt";
}

/// As many as are kept.
void PrepareReceipts() {
    const std::string folder = Global.HHTotalsPath + "Anna/";
    MakePath(folder);
    for (int k = 0; k < static_cast<int>(ReceiptsKept); ++k)
        WriteWholeFile(folder + ReceiptOf(10 + k), "Receipt of a HotSync\r\n");
}

std::string WriteReceipt() {
    const IdleControl control;
    SessionReceipt receipt(SessionKind::Unattended);
    receipt.Begin("Anna");
    receipt.Write(control, {});
    return {};
}

// ---- selections of tables ----

std::string UploadTemplate() {
    return Global.UploadTemplates + "orders.ust";
}

std::string ClearTemplate() {
    return Global.ClearPCTemplates + "orders.pct";
}

std::string SaveSelection() {
    UploadChoice choice;
    choice.Orders = choice.Audits = true;
    WriteTemplate(UploadTemplate(), choice);
    return {};
}

std::string SaveClearing() {
    ClearPlan plan;
    plan.Choose(ClearGroup::OrHdr);
    WriteTemplate(ClearTemplate(), plan);
    return {};
}

} // namespace

std::vector<SweepJob> SyncJobs() {
    const std::string headers = "DBFFiles/ZUKOrHdr.dbf";
    const std::string lines = "DBFFiles/ZUKOrLin.dbf";
    const std::string links = "DBFFiles/ZUKLINK.dbf";
    const std::string mark = "DBFFiles/SafetyCopies.txt";
    const std::string headerText = "DBFFiles/OLDHDR.TXT";
    const std::string lineText = "DBFFiles/OLDLIN.TXT";
    const std::string images = "DBFFiles/Images/";
    const std::string receipts = "DBFFiles/HHTotals/Anna/";
    const auto copyOf = [](const char* table) { return "DBFFiles/ZUK" + std::string(table) + ".dap"; };

    // The copies, the mark, what the handheld sends, the merge, and all of it away.
    std::vector<std::string> copies;
    for (const char* name : {"OrHdr", "OrLin", "AudtH", "AudtL", "AudHH", "BarIn"})
        copies.push_back(copyOf(name));
    std::vector<std::string> merge = copies;
    merge.insert(merge.end(),
                 {mark, headers, lines, headerText, lineText, headers, headerText, lines, lineText, mark});
    merge.insert(merge.end(), copies.begin(), copies.end());

    // A table after the other, and its copy as soon as it is settled.
    std::vector<std::string> recovery = {headers};
    for (const char* name : {"OrHdr", "OrLin", "AudtH", "AudtL", "AudHH"}) recovery.push_back(copyOf(name));
    recovery.insert(recovery.end(), {mark, copyOf("BarIn")});

    return {
        {.Name = "merge",
         .Steps = merge,
         .Prepare = PrepareMerge,
         .Run = MergeUpload,
         .JudgeStarted = JudgeMerge},
        {.Name = "recovery of an upload",
         .Steps = recovery,
         .Prepare = PrepareRecovery,
         .Run = RecoverUpload,
         .IsStart = true,
         .JudgeStarted = JudgeMerge},
        {"status", {"Install/HSStatus.dat"}, PrepareStatus, WriteStatus},
        {"deletion of a link", {links}, PrepareLinks, DeleteLink},
        {"links sorted, status anew", {links, "Install/HSStatus.dat"}, PrepareLinks, SortLinksAndResetStatus},
        {"unattended settings",
         {"Templates/UnattendedHotsync/evening.uhs"},
         [] { SaveUA(UnattendedFile(), {}); },
         WriteUnattended},
        {"images named",
         {images + "A1.bmp", images + "A1", images + "B2.bmp", images + "B2"},
         PrepareImages,
         GiveImagesTheirNames},
        {.Name = "receipt",
         .Steps = {receipts + "Receipt 2026-11-15 093000.txt", receipts + ReceiptOf(10)},
         .Prepare = PrepareReceipts,
         .Run = WriteReceipt,
         .IsQuiet = true},
        {"selection of tables",
         {"Templates/Upload/orders.ust"},
         [] { WriteTemplate(UploadTemplate(), UploadChoice()); },
         SaveSelection},
        {"selection of tables to clear",
         {"Templates/ClearPC/orders.pct"},
         [] { WriteTemplate(ClearTemplate(), ClearPlan()); },
         SaveClearing},
    };
}
