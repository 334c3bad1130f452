#include "quality/TableChecks.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "quality/ScratchGrid.h"
#include "store/SortTables.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <unordered_set>

namespace {

// In every check `FGIndex` is the table in work; `FGIndex2` is the sales tax that customers point to.

// Places of fields: the checks go by place, as the handheld does.
constexpr int C_SEARCH = 1, C_CODE = 2, C_STCODE = 13;
constexpr int I_SEARCH = 1, I_ITEMCODE = 2, I_BARCODE = 3, I_PRICE = 6;
constexpr int ST_CODE = 1, PAY_CODE = 1, LK_HOTSYNC = 1;

/// The tests are sorted as they find the rows; a check reports a key and does not change it.
constexpr SortOptions KeepKeys{.RebuildIndex = false, .SortContents = true, .RemoveSpecial = false};

std::string TablePath(std::string_view file) {
    return Global.DBFPath + std::string(file);
}

// ---- what a test collects ----

using Records = std::vector<std::int32_t>;

/// How a test finds the records that it tells of, in a table and in the hands of an editor.
class Collector {
public:
    using InTable = Records (*)(const ScratchGrid& grid, int field);
    using InCell = bool (*)(std::string_view cell);

    /// `alone`: what is wrong with a record whatever the others are; nullptr for nothing.
    constexpr Collector(InTable all, InCell alone) : all_(all), alone_(alone) {}

    Records All(const ScratchGrid& grid, int field) const { return all_(grid, field); }
    bool FailsAlone(std::string_view cell) const { return alone_ && alone_(cell); }
    bool operator==(const Collector&) const = default;

private:
    InTable all_;
    InCell alone_;
};

bool IsBlank(std::string_view cell) {
    return cell.empty();
}

/// Rows from the top while the cell is empty: in a grid that is sorted on the field these are all.
Records BlankRecords(const ScratchGrid& grid, int field) {
    Records records;
    for (std::int32_t row = 1; row <= grid.RowCount() && IsBlank(grid.Cell(row, field)); ++row)
        records.push_back(grid.Record(row));
    return records;
}

/// Both rows of each pair of neighbours with the same text: three equal ones give a, b, b, c.
Records DuplicateRecords(const ScratchGrid& grid, int field) {
    Records records;
    for (std::int32_t row = 1; row < grid.RowCount(); ++row) {
        const std::string_view own = grid.Cell(row, field);
        if (own.empty() || !SameText(own, grid.Cell(row + 1, field))) continue;
        records.push_back(grid.Record(row));
        records.push_back(grid.Record(row + 1));
    }
    return records;
}

Records RecordsWhere(const ScratchGrid& grid, int field,
                     const std::function<bool(std::string_view)>& isFaulty) {
    Records records;
    for (std::int32_t row = 1; row <= grid.RowCount(); ++row) {
        if (isFaulty(grid.Cell(row, field))) records.push_back(grid.Record(row));
    }
    return records;
}

bool IsInvalid(std::string_view cell) {
    return !std::all_of(cell.begin(), cell.end(), IsKeyCharacter);
}

Records InvalidRecords(const ScratchGrid& grid, int field) {
    return RecordsWhere(grid, field, IsInvalid);
}

/// A minus sign is none of a price's characters.
bool IsNoPrice(std::string_view cell) {
    return !std::all_of(cell.begin(), cell.end(), [](char c) {
        const std::string_view text(&c, 1);
        return c == ',' || c == '.' || (TextCompare(text, "0") >= 0 && TextCompare(text, "9") <= 0);
    });
}

Records NoPriceRecords(const ScratchGrid& grid, int field) {
    return RecordsWhere(grid, field, IsNoPrice);
}

bool IsZeroPrice(std::string_view cell) {
    return ToNumber(cell) == 0;
}

/// Rows from the top while the price is 0. A text sort may put another price ahead of the zeros,
/// and then this stops there; that is accepted.
Records ZeroPriceRecords(const ScratchGrid& grid, int field) {
    Records records;
    for (std::int32_t row = 1; row <= grid.RowCount() && IsZeroPrice(grid.Cell(row, field)); ++row)
        records.push_back(grid.Record(row));
    return records;
}

constexpr Collector Blanks(BlankRecords, IsBlank);
constexpr Collector Duplicates(DuplicateRecords, nullptr);
constexpr Collector Invalids(InvalidRecords, IsInvalid);
constexpr Collector NoPrices(NoPriceRecords, IsNoPrice);
constexpr Collector ZeroPrices(ZeroPriceRecords, IsZeroPrice);
/// Of a test that has a walk of its own, over more than one field.
constexpr Collector OwnWalk(nullptr, nullptr);

// ---- rows ----

std::string ListOf(const Records& records) {
    std::string list;
    for (const std::int32_t record : records) {
        if (!list.empty()) list += ListSeparator;
        list += std::to_string(record);
    }
    return list;
}

/// A test of one field of a table.
struct FieldTest {
    Collector Collect;
    int Field;
    int SortedOn; ///< the field in whose order the rows are put before; 0: as they stand
    ::Severity Severity;
    MessageId Problem, Issue, Correction;
    const char* Name;
    MessageId Remark = {}; ///< below the list, where there is one
};

/// A check's table, and by what name its rows go.
struct Subject {
    MessageId Group;
    const char* File;

    void Report(ProblemList& problems, const FieldTest& test, const Records& records) const {
        if (records.empty()) return;
        ProblemRow row;
        row.Severity = test.Severity;
        row.Group = Group;
        row.Problem = test.Problem;
        row.List = ListOf(records);
        row.Issue = Lines(test.Issue, Words(msg::LabelRecords, Text::Value(std::string_view(row.List))));
        if (test.Remark != MessageId{}) row.Issue = Lines(row.Issue, test.Remark);
        row.Correction = test.Correction;
        row.Target = TablePath(File);
        row.Field = test.Name;
        problems.Add(std::move(row));
    }

    /// A table in which something has to stand.
    void ReportEmpty(ProblemList& problems, Severity severity, MessageId problem, MessageId issue,
                     MessageId correction) const {
        ProblemRow row;
        row.Severity = severity;
        row.Group = Group;
        row.Problem = problem;
        row.Issue = issue;
        row.Correction = correction;
        row.Target = TablePath(File);
        problems.Add(std::move(row));
    }
};

constexpr Subject Customers{msg::GroupCustomers, "ZUKCUST.DBF"};
constexpr Subject Items{msg::GroupItems, "ZUKITEM.DBF"};
constexpr Subject BarCodes{msg::GroupBarCodes, "ZUKITEM.DBF"};
constexpr Subject SalesTax{msg::GroupSalesTax, "ZUKSTAX.DBF"};
constexpr Subject Payments{msg::GroupPayments, "ZUKPAY.DBF"};
constexpr Subject Links{msg::GroupLinks, "ZUKLINK.DBF"};

void RunTests(const Subject& subject, std::span<const FieldTest> tests, ScratchGrid& grid,
              ProblemList& problems) {
    for (const FieldTest& test : tests) {
        if (test.SortedOn != 0) grid.SortOn(test.SortedOn);
        subject.Report(problems, test, test.Collect.All(grid, test.Field));
    }
}

constexpr Severity Fatal = Severity::Fatal;
constexpr Severity Warn = Severity::Warn;

// ---- customers ----

constexpr std::array CustomerTests{
    FieldTest{Blanks, C_SEARCH, C_SEARCH, Fatal, msg::ProblemBlank, msg::CustSearchBlank,
              msg::CustSearchUnique, "C_SEARCH"},
    FieldTest{Blanks, C_CODE, C_CODE, Fatal, msg::ProblemBlank, msg::CustCodeBlank, msg::CustCodeUnique,
              "C_CODE"},
    FieldTest{Duplicates, C_CODE, C_CODE, Fatal, msg::ProblemDuplicate, msg::CustCodeDuplicate,
              msg::CustCodeUnique, "C_CODE"},
    FieldTest{Invalids, C_SEARCH, 0, Fatal, msg::ProblemInvalid, msg::CustSearchInvalid, msg::CustSearchPlain,
              "C_SEARCH"},
    FieldTest{Invalids, C_CODE, 0, Fatal, msg::ProblemInvalid, msg::CustCodeInvalid, msg::CustCodePlain,
              "C_CODE"},
};
constexpr FieldTest TaxCodeTest{
    OwnWalk,   C_STCODE, 0, Fatal, msg::ProblemSecondary, msg::CustTaxUnknown, msg::CustTaxCorrection,
    "C_STCODE"};

/// Customers whose tax code the tax table lacks, up to the first whose code it has: behind that one
/// nobody is looked at any more, on purpose.
Records UnknownTaxCodes(const ScratchGrid& FGIndex, const ScratchGrid& FGIndex2) {
    std::unordered_set<std::string> codes;
    for (std::int32_t row = 1; row <= FGIndex2.RowCount(); ++row)
        codes.insert(FoldCase(FGIndex2.Cell(row, ST_CODE)));
    Records records;
    for (std::int32_t row = 1; row <= FGIndex.RowCount(); ++row) {
        const std::string_view code = FGIndex.Cell(row, C_STCODE);
        if (code.empty()) continue;
        if (codes.contains(FoldCase(code))) break;
        records.push_back(FGIndex.Record(row));
    }
    return records;
}

// ---- items ----

constexpr std::array ItemTests{
    FieldTest{Blanks, I_SEARCH, I_SEARCH, Fatal, msg::ProblemBlank, msg::ItemSearchBlank,
              msg::ItemSearchUnique, "I_SEARCH"},
    FieldTest{Blanks, I_ITEMCODE, I_ITEMCODE, Fatal, msg::ProblemBlank, msg::ItemCodeBlank,
              msg::ItemCodeUnique, "I_ITEMCODE"},
    FieldTest{Duplicates, I_SEARCH, I_SEARCH, Warn, msg::ProblemDuplicate, msg::ItemSearchDuplicate,
              msg::ItemSearchUnique, "I_SEARCH", msg::ItemSearchRemark},
    FieldTest{Duplicates, I_ITEMCODE, I_ITEMCODE, Fatal, msg::ProblemDuplicate, msg::ItemCodeDuplicate,
              msg::ItemCodeUnique, "I_ITEMCODE"},
    FieldTest{Invalids, I_ITEMCODE, 0, Warn, msg::ProblemInvalid, msg::ItemCodeInvalid, msg::ItemCodePlain,
              "I_ITEMCODE"},
    FieldTest{NoPrices, I_PRICE, 0, Fatal, msg::ProblemInvalid, msg::ItemPriceInvalid, msg::ItemPriceNumber,
              "I_PRICE"},
    FieldTest{ZeroPrices, I_PRICE, I_PRICE, Warn, msg::ProblemBlank, msg::ItemPriceBlank, msg::ItemPriceEnter,
              "I_PRICE"},
};

constexpr std::array BarcodeTests{
    FieldTest{Blanks, I_BARCODE, 0, Warn, msg::ProblemBlank, msg::BarcodeBlank, msg::BarcodeNotFound,
              "I_BARCODE"},
    FieldTest{Invalids, I_BARCODE, 0, Warn, msg::ProblemInvalid, msg::BarcodeInvalid, msg::BarcodePlain,
              "I_BARCODE"},
    FieldTest{Duplicates, I_BARCODE, I_BARCODE, Warn, msg::ProblemDuplicate, msg::BarcodeDuplicate,
              msg::BarcodeUnique, "I_BARCODE"},
};

/// Blank bar codes are in order where nobody uses any.
constexpr std::span<const FieldTest> BarcodeTestsOfOne = std::span(BarcodeTests).subspan(1);

ScratchGrid SortedItems(Progress& progress) {
    const std::string path = TablePath(Items.File);
    SortItemFile(path, KeepKeys, progress);
    RebuildItemIndex(Global.DBFPath, progress);
    return ScratchGrid(path);
}

// ---- sales tax, payments, links ----

constexpr std::array TaxTests{
    FieldTest{Blanks, ST_CODE, ST_CODE, Fatal, msg::ProblemBlank, msg::TaxCodeBlank, msg::TaxCodeUnique,
              "ST_CODE"},
    FieldTest{Duplicates, ST_CODE, ST_CODE, Fatal, msg::ProblemDuplicate, msg::TaxCodeDuplicate,
              msg::TaxCodeUnique, "ST_CODE"},
    FieldTest{Invalids, ST_CODE, ST_CODE, Fatal, msg::ProblemInvalid, msg::TaxCodeInvalid, msg::TaxCodePlain,
              "ST_CODE"},
};

constexpr FieldTest PayTest{
    OwnWalk,   PAY_CODE, 0, Fatal, msg::ProblemInvalid, msg::PayCodeInvalid, msg::PayCodeCorrection,
    "PAY_CODE"};

constexpr FieldTest LinkTest{
    OwnWalk,     LK_HOTSYNC, 0, Warn, msg::ProblemHotsyncID, msg::LinksUnknown, msg::LinksUnknownCorrection,
    "LK_HOTSYNC"};

// ---- one record ----

/// The tests of a table, as far as one record can be held against them.
std::vector<FieldTest> TestsOfOne(std::string_view file) {
    std::vector<FieldTest> all;
    const auto add = [&](std::span<const FieldTest> tests) {
        all.insert(all.end(), tests.begin(), tests.end());
    };
    if (SameText(file, Customers.File)) add(CustomerTests);
    if (SameText(file, Items.File)) {
        add(ItemTests);
        add(BarcodeTestsOfOne);
    }
    if (SameText(file, SalesTax.File)) add(TaxTests);
    std::stable_partition(all.begin(), all.end(),
                          [](const FieldTest& test) { return test.Severity == Severity::Fatal; });
    return all;
}

} // namespace

std::vector<int> FieldsWithoutRepeats(std::string_view file) {
    std::vector<int> fields;
    for (const FieldTest& test : TestsOfOne(file)) {
        if (test.Collect == Duplicates) fields.push_back(test.Field);
    }
    return fields;
}

Text FirstObjection(std::string_view file, const std::function<std::string(int)>& cell,
                    const std::function<std::int32_t(int, std::string_view)>& otherWith) {
    for (const FieldTest& test : TestsOfOne(file)) {
        const std::string text = cell(test.Field);
        if (test.Collect.FailsAlone(text)) return test.Issue;
        if (test.Collect != Duplicates || text.empty()) continue;
        if (const std::int32_t other = otherWith(test.Field, text))
            return Words(test.Issue, msg::LabelRecords, Text::Value(std::int64_t{other}));
    }
    return {};
}

void QCCust(ProblemList& problems, Progress& progress) {
    const std::string taxPath = TablePath(SalesTax.File);
    SortSTaxFile(taxPath, KeepKeys, progress);
    const ScratchGrid FGIndex2(taxPath);
    const std::string path = TablePath(Customers.File);
    SortCustFile(path, KeepKeys, progress);
    ScratchGrid FGIndex(path);
    RunTests(Customers, CustomerTests, FGIndex, problems);
    Customers.Report(problems, TaxCodeTest, UnknownTaxCodes(FGIndex, FGIndex2));
}

void QCItems(ProblemList& problems, Progress& progress) {
    ScratchGrid FGIndex = SortedItems(progress);
    RunTests(Items, ItemTests, FGIndex, problems);
}

void QCBarcode(ProblemList& problems, Progress& progress) {
    ScratchGrid FGIndex = SortedItems(progress);
    FGIndex.SortOn(I_BARCODE);
    // Blanks come first: an empty last one says that nobody here uses bar codes.
    if (FGIndex.RowCount() == 0 || FGIndex.Cell(FGIndex.RowCount(), I_BARCODE).empty()) return;
    RunTests(BarCodes, BarcodeTests, FGIndex, problems);
}

void QCSTax(ProblemList& problems, Progress& progress) {
    const std::string path = TablePath(SalesTax.File);
    SortSTaxFile(path, KeepKeys, progress);
    ScratchGrid FGIndex(path);
    RunTests(SalesTax, TaxTests, FGIndex, problems);
}

void QCPay(ProblemList& problems) {
    const ScratchGrid FGIndex(TablePath(Payments.File));
    if (FGIndex.RowCount() == 0) {
        return Payments.ReportEmpty(problems, Warn, msg::ProblemEmptyTable, msg::PayEmpty,
                                    msg::PayEmptyCorrection);
    }
    Payments.Report(problems, PayTest, RecordsWhere(FGIndex, PAY_CODE, [](std::string_view code) {
                        return !SameText(code, "CASH") && !SameText(code, "CHECK") && !SameText(code, "CARD");
                    }));
}

void QCLinks(ProblemList& problems, const std::vector<std::string>& users) {
    const ScratchGrid FGIndex(TablePath(Links.File));
    if (FGIndex.RowCount() == 0 || FGIndex.Cell(1, LK_HOTSYNC).empty()) {
        return Links.ReportEmpty(problems, Fatal, msg::ProblemTableEmpty, msg::LinksEmpty,
                                 msg::LinksEmptyCorrection);
    }
    std::unordered_set<std::string> known;
    for (const std::string& user : users) known.insert(FoldCase(user));
    Links.Report(problems, LinkTest, RecordsWhere(FGIndex, LK_HOTSYNC, [&](std::string_view id) {
                     return !known.contains(FoldCase(id));
                 }));
}
