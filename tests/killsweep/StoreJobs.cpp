#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "quality/SearchField.h"
#include "quality/TableChecks.h"
#include "store/DBFEdit.h"
#include "store/OfficeTables.h"
#include "store/SortTables.h"
#include "store/TableRecords.h"
#include "store/TableRewrite.h"
#include "views/MasterTable.h"

#include <algorithm>

namespace {

constexpr int Customers = 1200;
constexpr int Items = 2500;
constexpr int SalesTaxes = 5000;
constexpr int Handhelds = 3000;

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
    MasterTable customers(CustomerMaster, {FieldsWithoutRepeats, FirstObjection});
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

// ---- a record in its place ----

constexpr int Payments = 20;
constexpr const char* PaymentFile = "ZUKPAY.dbf";

std::string PaymentCode(int k) {
    return "T" + std::to_string(k);
}

void SavePayment(const std::string& path) {
    TableRecords payments;
    payments.Open(path, "PAY_CODE", Payments / 2);
    payments.Write({{"PAY_CDESC", "On delivery"}, {"PAY_CDET", "Cash or check"}});
}

void PreparePayments() {
    Fill(PaymentFile, Payments, [](int k) {
        return Cells{{"PAY_CODE", PaymentCode(k)}, {"PAY_CDESC", "Net " + std::to_string(k) + " days"}};
    });
    Keep(PaymentFile, Table(PaymentFile));
    SavePayment(New(PaymentFile));
}

/// What is cut off lies within the one record: before the cut it is the new one, behind it the old one.
std::string JudgeSavedPayment() {
    const std::string now = ReadWholeFile(Table(PaymentFile));
    const std::string old = ReadWholeFile(Old(PaymentFile));
    const std::string made = ReadWholeFile(New(PaymentFile));
    if (now.size() != old.size()) return "the table has another size";
    const auto cut = static_cast<std::size_t>(
        std::mismatch(now.begin(), now.end(), made.begin(), made.end()).first - now.begin());
    return now.substr(cut) == old.substr(cut) ? "" : "another record has changed";
}

std::string AddPayment() {
    TableRecords payments;
    payments.Open(Table(PaymentFile), "PAY_CODE", 1);
    payments.Append();
    payments.Write({{"PAY_CODE", "ADDED"}});
    return {};
}

/// Cut off it is a blank record, or one of which the end is missing.
std::string JudgeAddedPayment() {
    std::vector<std::string> codes = Column(PaymentFile, "PAY_CODE");
    if (codes.size() == Payments + 1) {
        if (!std::string("ADDED").starts_with(codes.back())) return "something else was added";
        codes.pop_back();
    }
    std::vector<std::string> before;
    for (int k = 1; k <= Payments; ++k) before.push_back(PaymentCode(k));
    return codes == before ? "" : "another record has changed";
}

// ---- the picture of a memo ----

std::string MemoFile() {
    return Global.DataInPath + "signature.dbt";
}

void PrepareMemo() {
    std::string memo(1024, '\x55');
    memo[5] = 2; // blocks
    memo.replace(8, 3, "INK");
    WriteWholeFile(MemoFile(), memo);
    WriteWholeFile(Global.AppPath + "temp.bmp", "BM of the one before");
}

std::string ShowMemo() {
    DBFEdit().GetDBTImage(MemoFile(), 0);
    return {};
}

} // namespace

std::vector<SweepJob> StoreJobs() {
    const std::string customers = "DBFFiles/ZUKCust.dbf";
    const std::string headers = "DBFFiles/ZUKOrHdr.dbf";
    const std::string lines = "DBFFiles/ZUKOrLin.dbf";
    const std::string payments = std::string("DBFFiles/") + PaymentFile;
    return {
        {"sort of the order headers", {headers}, FillOrders, SortHeaders},
        {"sort of the order lines", {lines}, FillOrders, SortLines},
        {"sort of the customers",
         {customers},
         [] { FillKeys("ZUKCust.dbf", "C_SEARCH", Customers); },
         [] { return Sort("ZUKCust.dbf", SortCustFile); }},
        {"sort of the customers, one late",
         {customers},
         PrepareLateCustomer,
         [] { return Sort("ZUKCust.dbf", SortCustFile); }},
        {"search field of the customers", {customers}, PrepareSearch, ChangeSearchField},
        {"deletion of a customer", {customers}, PrepareSearch, DeleteCustomer},
        {"sort of the items",
         {"DBFFiles/ZUKItem.dbf"},
         [] { FillKeys("ZUKItem.dbf", "I_SEARCH", Items); },
         [] { return Sort("ZUKItem.dbf", SortItemFile); }},
        {"sort of the sales taxes",
         {"DBFFiles/ZUKSTAX.dbf"},
         [] { FillKeys("ZUKSTAX.dbf", "ST_CODE", SalesTaxes); },
         [] { return Sort("ZUKSTAX.dbf", SortSTaxFile); }},
        {"sort of the links",
         {"DBFFiles/ZUKLINK.dbf"},
         [] { FillKeys("ZUKLINK.dbf", "LK_HOTSYNC", Handhelds); },
         SortLinks},
        {"barcode index", {"DBFFiles/ZUKBarin.dbf"}, PrepareIndex, RebuildIndex},
        {"compaction", {headers}, PrepareCompaction, Compact},
        {"compaction by records", {headers}, PrepareShortCompaction, CompactByRecords},
        {"emptying", {headers}, FillOrders, Empty},
        {.Name = "record saved",
         .Steps = {payments},
         .Prepare = PreparePayments,
         .Run =
             [] {
                 SavePayment(Table(PaymentFile));
                 return std::string();
             },
         .JudgeStarted = JudgeSavedPayment,
         .InPlace = payments},
        {.Name = "record added",
         .Steps = {payments},
         .Prepare = PreparePayments,
         .Run = AddPayment,
         .JudgeStarted = JudgeAddedPayment,
         .InPlace = payments},
        {"picture of a memo", {"temp.bmp"}, PrepareMemo, ShowMemo},
    };
}
