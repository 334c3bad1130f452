#include "quality/QualityTest.h"

#include "core/Progress.h"
#include "core/TextCompare.h"
#include "support/Fails.h"
#include "support/Rubbish.h"
#include "support/Tables.h"

#include <filesystem>
#include <set>

namespace {

using Texts = std::vector<std::string>;
using Records = std::vector<QualityOffice::Record>;

constexpr const char* Blank = "Field contains blank value";
constexpr const char* Duplicate = "Field contains duplicate value";
constexpr const char* Invalid = "Field contains invalid value";

class TableChecksTest : public QualityTest {
protected:
    void GivenCustomers(const Records& customers, const Records& taxes = {}) {
        Given({.Tables = {{"ZUKCUST", customers}, {"ZUKSTAX", taxes}}});
    }
    void GivenItems(const Records& items) { Given({.Tables = {{"ZUKITEM", items}}}); }
    /// Items with these prices; their records keep this order.
    void GivenPrices(const Texts& prices) {
        Records items;
        for (const std::string& price : prices) items.push_back(Item(Name(items), Name(items), price));
        GivenItems(items);
    }
    void GivenBarcodes(const Texts& barcodes) {
        Records items;
        for (const std::string& code : barcodes) items.push_back(Item(Name(items), Name(items), "1", code));
        GivenItems(items);
    }
    void GivenColumn(const std::string& table, const std::string& field, const Texts& values) {
        Records records;
        for (const std::string& value : values) records.push_back({{field, value}});
        Given({.Tables = {{table, records}}});
    }

    std::string BadPrices() { return ListOf(Check::Items, Invalid, "I_PRICE"); }
    std::string BlankPrices() { return ListOf(Check::Items, Blank, "I_PRICE"); }
    std::string UnknownTaxes() { return ListOf(Check::Customers, "Invalid secondary field", "C_STCODE"); }

private:
    static std::string Name(const Records& before) { return "I" + std::to_string(100 + before.size()); }
};

// ---- customers ----

TEST_F(TableChecksTest, AnEmptyCustomerTableGivesNoRowsWhateverTheTaxesAre) {
    GivenCustomers({}, {{{"ST_CODE", ""}}});

    EXPECT_EQ(Checked(Check::Customers), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, GoodCustomersGiveNoRows) {
    GivenCustomers({Customer("ABEL", "A1", "NY"), Customer("abel", "a2"), Customer("0815", "0")},
                   {{{"ST_CODE", "NY"}}});

    EXPECT_EQ(Checked(Check::Customers), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, ACustomerWithBlankSearchAndBlankCodeIsInBothRows) {
    GivenCustomers({Customer("ABEL", "A1"), Customer("", "")});

    EXPECT_EQ(ListOf(Check::Customers, Blank, "C_SEARCH"), "1");
    EXPECT_EQ(ListOf(Check::Customers, Blank, "C_CODE"), "1");
}

TEST_F(TableChecksTest, EveryBlankOneIsListedInTheOrderOfTheSortedFile) {
    GivenCustomers({Customer("", "B1"), Customer("COLE", ""), Customer("", "A1"), Customer("ABEL", "")});

    EXPECT_EQ(ListOf(Check::Customers, Blank, "C_SEARCH"), "1, 2");
    EXPECT_EQ(ListOf(Check::Customers, Blank, "C_CODE"), "3, 4");
}

TEST_F(TableChecksTest, CodesThatDifferOnlyInCaseAreDuplicates) {
    GivenCustomers({Customer("ABEL", "ab1"), Customer("BAKER", "AB1")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "1, 2");
}

TEST_F(TableChecksTest, ThreeEqualCodesNameTheMiddleOneTwice) {
    GivenCustomers({Customer("A", "K"), Customer("B", "k"), Customer("C", "K")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "1, 2, 2, 3");
}

TEST_F(TableChecksTest, TwoPairsOfDuplicatesStandInTheOrderOfTheirCodes) {
    GivenCustomers({Customer("A", "Z"), Customer("B", "K"), Customer("C", "Z"), Customer("D", "K")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "2, 4, 1, 3");
}

TEST_F(TableChecksTest, TheLastTwoRecordsCanBeDuplicates) {
    GivenCustomers({Customer("A", "K1"), Customer("B", "K2"), Customer("C", "K2")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "2, 3");
}

TEST_F(TableChecksTest, BlankCodesAreNoDuplicatesOfEachOther) {
    GivenCustomers({Customer("A", ""), Customer("B", " ")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "");
}

TEST_F(TableChecksTest, SearchesMayBeEqualUnlikeThoseOfItems) {
    GivenCustomers({Customer("ABEL", "A1"), Customer("ABEL", "A2")});

    EXPECT_EQ(Checked(Check::Customers), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, AnAccentMakesAnotherCodeButAnotherCaseOfItDoesNot) {
    GivenCustomers({Customer("A", "R\xE9"), Customer("B", "Re"), Customer("C", "R\xC9")});

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "1, 3");
}

TEST_F(TableChecksTest, ABlankInsideIsInvalidInSearchAndCode) {
    GivenCustomers({Customer("AB 12", "AB 12")});

    EXPECT_EQ(ListOf(Check::Customers, Invalid, "C_SEARCH"), "1");
    EXPECT_EQ(ListOf(Check::Customers, Invalid, "C_CODE"), "1");
}

TEST_F(TableChecksTest, ARecordWithSeveralInvalidCharactersIsListedOnce) {
    GivenCustomers({Customer("A", "-#/ .1")});

    EXPECT_EQ(ListOf(Check::Customers, Invalid, "C_CODE"), "1");
}

TEST_F(TableChecksTest, InvalidSearchesAreListedInTheOrderOfTheCodes) {
    GivenCustomers({Customer("A#", "Z"), Customer("B#", "Y"), Customer("C", "X")});

    EXPECT_EQ(ListOf(Check::Customers, Invalid, "C_SEARCH"), "2, 1");
}

// Between "A" and "Z" lies by text comparison what has such a letter below it.
TEST_F(TableChecksTest, AccentedLettersAndRaisedDigitsAreValidAndSignsAreNot) {
    const Texts valid = {"M\xFCLLER",
                         "R\xE9MY",
                         "STRA\xDF"
                         "E",
                         "\xD8RSTED",
                         "A\xB2",
                         "\xD0",
                         "\xC6\x8C\xDE"};
    const Texts invalid = {"\x8E"
                           "A",
                           "\x9E"
                           "A",
                           "A\xA0"
                           "B",
                           "\x80"
                           "5",
                           "A\xB5",
                           "A_B",
                           "A\x01"};
    Records customers;
    for (const Texts& texts : {valid, invalid}) {
        for (const std::string& text : texts)
            customers.push_back(Customer("S" + std::to_string(100 + customers.size()), text));
    }
    GivenCustomers(customers);

    const std::string list = ListOf(Check::Customers, Invalid, "C_CODE");

    std::vector<bool> isListed(customers.size() + 1);
    for (const std::string_view record : SplitText(list, ", "))
        isListed.at(static_cast<std::size_t>(std::stoi(std::string(record)))) = true;
    for (std::size_t record = 1; record <= customers.size(); ++record)
        EXPECT_EQ(isListed[record], record > valid.size()) << customers[record - 1][1].second;
}

TEST_F(TableChecksTest, BehindTheFirstKnownTaxCodeNoUnknownOneIsReported) {
    GivenCustomers({Customer("S1", "A", "XX"), Customer("S2", "B", "NY"), Customer("S3", "C", "YY")},
                   {{{"ST_CODE", "NY"}}});

    EXPECT_EQ(UnknownTaxes(), "1");
}

TEST_F(TableChecksTest, FirstMeansInTheOrderOfTheCodesAndNotOfTheFile) {
    GivenCustomers({Customer("S1", "C", "XX"), Customer("S2", "B", "NY"), Customer("S3", "A", "YY")},
                   {{{"ST_CODE", "NY"}}});

    EXPECT_EQ(UnknownTaxes(), "3");
}

TEST_F(TableChecksTest, WithAnEmptySalesTaxTableEveryTaxCodeIsUnknown) {
    GivenCustomers({Customer("S1", "A", "NY"), Customer("S2", "B"), Customer("S3", "C", "NJ")});

    EXPECT_EQ(UnknownTaxes(), "1, 3");
}

TEST_F(TableChecksTest, ATaxCodeIsKnownWhateverItsCase) {
    GivenCustomers({Customer("S1", "A", "ny")}, {{{"ST_CODE", "NJ"}}, {{"ST_CODE", "NY"}}});

    EXPECT_EQ(UnknownTaxes(), "");
}

TEST_F(TableChecksTest, ABlankTaxCodeNeitherIsUnknownNorMakesALaterOneKnown) {
    GivenCustomers({Customer("S1", "A", " "), Customer("S2", "B", "XX")},
                   {{{"ST_CODE", ""}}, {{"ST_CODE", "NY"}}});

    EXPECT_EQ(UnknownTaxes(), "2");
}

TEST_F(TableChecksTest, RecordsMarkedAsDeletedTakePart) {
    TableMaker table = EmptyTableOf("ZUKCUST");
    table.Row(RowOf("ZUKCUST", Customer("B", "K")), '*');
    table.Row(RowOf("ZUKCUST", Customer("A", "K")));
    GivenFile("app/DBFFiles/ZUKCust.dbf", table.Bytes());

    EXPECT_EQ(ListOf(Check::Customers, Duplicate, "C_CODE"), "1, 2");
}

TEST_F(TableChecksTest, TheCheckSortsBothTablesAndChangesNoKey) {
    GivenCustomers({Customer("b-1", "B"), Customer("A#", "A")}, {{{"ST_CODE", "n-y"}}, {{"ST_CODE", "a"}}});

    Checked(Check::Customers);

    const TableContent customers = TableAt(Global.DBFPath + "ZUKCust.dbf");
    ASSERT_EQ(customers.Count, 2);
    EXPECT_EQ(customers.Trimmed(1)[0], "A#");
    EXPECT_EQ(customers.Trimmed(2)[0], "b-1");
    const TableContent taxes = TableAt(Global.DBFPath + "ZUKSTAX.dbf");
    ASSERT_EQ(taxes.Count, 2);
    EXPECT_EQ(taxes.Trimmed(1)[0], "a");
    EXPECT_EQ(taxes.Trimmed(2)[0], "n-y");
}

TEST_F(TableChecksTest, EveryCustomerRowIsFatal) {
    GivenCustomers({Customer("", "", "XX"), Customer("A-1", "A-1"), Customer("ABEL", "a-1")});

    Checked(Check::Customers);

    EXPECT_TRUE(Global.QCFatalFound);
}

// ---- items ----

TEST_F(TableChecksTest, AnEmptyItemTableGivesNoRows) {
    EXPECT_EQ(Checked(Check::Items), std::vector<ReportRow>{});
    EXPECT_EQ(Checked(Check::BarCodes), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, AnItemsSearchMayHoldAnyCharacters) {
    GivenItems({Item("HEX BOLT 3/8\"", "HB", "1")});

    EXPECT_EQ(Checked(Check::Items), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, DuplicateSearchesAloneNeverBlockADownload) {
    GivenItems({Item("NUT", "N1", "1"), Item("NUT", "N2", "1")});

    EXPECT_EQ(Lists(Check::Items), (Texts{"1, 2"}));
    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, PricesOfDigitsCommasAndPointsAreNumeric) {
    GivenPrices({"1,250.00", "12.5", "7", ",", ".", "1.2.3", "0"});

    EXPECT_EQ(BadPrices(), "");
}

TEST_F(TableChecksTest, APriceWithAnythingElseIsNot) {
    GivenPrices({"12.5A", "-3", "1e5", "$5", "1 2", "call us", "5-", "(5)", "+5"});

    EXPECT_EQ(BadPrices(), "1, 2, 3, 4, 5, 6, 7, 8, 9");
    EXPECT_TRUE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, ABlankPriceIsNumericAndAWarning) {
    GivenPrices({" ", "5"});

    EXPECT_EQ(Lists(Check::Items), (Texts{"1"}));
    EXPECT_EQ(BlankPrices(), "1");
    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, ZeroInAnyFormIsABlankPrice) {
    GivenPrices({"0", "0.00", "", "00", "5", ".", "0,000.00"});

    // In the order of the texts: "", ".", "0", "0,000.00", "0.00", "00".
    EXPECT_EQ(BlankPrices(), "3, 6, 1, 7, 2, 4");
}

TEST_F(TableChecksTest, APriceThatSortsAheadOfTheZerosEndsTheirList) {
    GivenPrices({"0", "", "-3", "0.00"});

    EXPECT_EQ(BlankPrices(), "2");
}

TEST_F(TableChecksTest, ATextAheadOfTheZerosIsWorthNothingAndDoesNotEndTheirList) {
    GivenPrices({"0", "#", "5"});

    EXPECT_EQ(BadPrices(), "2");
    EXPECT_EQ(BlankPrices(), "2, 1");
}

TEST_F(TableChecksTest, InvalidPricesAreListedInTheOrderOfTheCodes) {
    GivenItems({Item("A", "Z", "x"), Item("B", "Y", "y")});

    EXPECT_EQ(BadPrices(), "2, 1");
}

TEST_F(TableChecksTest, ItemsAreSortedAndTheBarcodeIndexIsMadeAnewByBothChecks) {
    for (const Check check : {Check::Items, Check::BarCodes}) {
        GivenItems({Item("b", "2", "1", "900"), Item("A", "1", "1", "500")});

        Checked(check);

        const TableContent items = TableAt(Global.DBFPath + "ZUKItem.dbf");
        EXPECT_EQ(items.Trimmed(1)[0], "A");
        const TableContent index = TableAt(Global.DBFPath + "ZUKBarin.dbf");
        ASSERT_EQ(index.Count, 2);
        EXPECT_EQ(index.Trimmed(1), (Texts{"500", "0"}));
        EXPECT_EQ(index.Trimmed(2), (Texts{"900", "1"}));
    }
}

// ---- bar codes ----

TEST_F(TableChecksTest, WithoutASingleBarCodeNoneIsMissed) {
    GivenBarcodes({"", " ", ""});

    EXPECT_EQ(Checked(Check::BarCodes), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, OneBarCodeOfTenMakesTheOtherNineWarnings) {
    GivenBarcodes({"", "", "", "20", "", "", "", "", "", ""});

    EXPECT_EQ(Lists(Check::BarCodes), (Texts{"1, 2, 3, 5, 6, 7, 8, 9, 10"}));
    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, ThreeEqualBarCodesNameTheMiddleOneTwice) {
    GivenBarcodes({"20A", "19", "20a", "20A"});

    EXPECT_EQ(Lists(Check::BarCodes), (Texts{"1, 3, 3, 4"}));
}

TEST_F(TableChecksTest, TheSecondBarCodeDoesNotCount) {
    GivenItems({{{"I_SEARCH", "A"}, {"I_ITEMCODE", "A"}, {"I_PRICE", "1"}, {"I_BARCODE2", "20-7"}}});

    EXPECT_EQ(Checked(Check::BarCodes), std::vector<ReportRow>{});
}

// ---- sales tax, payments, links ----

TEST_F(TableChecksTest, AnEmptySalesTaxTableGivesNoRows) {
    EXPECT_EQ(Checked(Check::SalesTax), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, ThreeEqualTaxCodesNameTheMiddleOneTwice) {
    GivenColumn("ZUKSTAX", "ST_CODE", {"NY", "NJ", "ny", "Ny"});

    EXPECT_EQ(Lists(Check::SalesTax), (Texts{"2, 3, 3, 4"}));
}

TEST_F(TableChecksTest, AnEmptyPaymentsTableIsNotFatal) {
    Checked(Check::Payments);

    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, PaymentCodesCountWhateverTheirCaseAndTheBlanksAround) {
    GivenColumn("ZUKPAY", "PAY_CODE", {"cash", " Check", "CARD "});

    EXPECT_EQ(Checked(Check::Payments), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, APaymentsRecordWithoutACodeIsInvalidAndNotAnEmptyTable) {
    GivenColumn("ZUKPAY", "PAY_CODE", {"CASH", "", "C\xC4SH", "CASH1"});

    EXPECT_EQ(Lists(Check::Payments), (Texts{"2, 3, 4"}));
    EXPECT_TRUE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, ThePaymentsTableIsNeitherSortedNorChanged) {
    GivenColumn("ZUKPAY", "PAY_CODE", {"cheque", "CASH"});
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");

    Checked(Check::Payments);

    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), before);
}

TEST_F(TableChecksTest, ALinkIsKnownByItsHotSyncUserWhateverTheCase) {
    Given({.Tables = {{"ZUKLINK", {{{"LK_HOTSYNC", "anna "}}, {{"LK_HOTSYNC", "M\xDCLLER"}}}}},
           .HotSyncUsers = {"Anna", "M\xFCller"}});

    EXPECT_EQ(Checked(Check::Links), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, WithoutHotSyncUsersEveryLinkIsUnknownAndStillAWarning) {
    Given(
        {.Tables = {{"ZUKLINK", {{{"LK_HOTSYNC", "Zoe"}}, {{"LK_HOTSYNC", ""}}, {{"LK_HOTSYNC", "Anna"}}}}}});

    EXPECT_EQ(Lists(Check::Links), (Texts{"1, 2, 3"}));
    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(TableChecksTest, ALinksTableWhoseFirstRecordIsBlankCountsAsEmpty) {
    Given({.Tables = {{"ZUKLINK", {{{"LK_MACH_ID", "M1"}}, {{"LK_HOTSYNC", "Zoe"}}}}}});

    const auto rows = Checked(Check::Links);

    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].Problem, "Table Empty");
    EXPECT_TRUE(Global.QCFatalFound);
}

// ---- runs ----

TEST_F(TableChecksTest, BackupAndPrintingHaveNoTests) {
    EXPECT_EQ(Checked(Check::Backup), std::vector<ReportRow>{});
    EXPECT_EQ(Checked(Check::Printing), std::vector<ReportRow>{});
}

TEST_F(TableChecksTest, AFullRunHasItsOrderAndLeavesTheLinksOut) {
    const auto all = AllChecks();

    EXPECT_EQ(
        std::vector<Check>(all.begin(), all.end()),
        (std::vector<Check>{Check::Download, Check::Upload, Check::Import, Check::Export, Check::QuickButtons,
                            Check::Unattended, Check::Backup, Check::Customers, Check::Items, Check::SalesTax,
                            Check::Payments, Check::Printing, Check::BarCodes}));
}

TEST_F(TableChecksTest, EachCheckHasANameOfItsOwnInFiles) {
    std::set<std::string_view> names;
    for (std::size_t check = 0; check < Checks; ++check) names.insert(CheckName(static_cast<Check>(check)));

    EXPECT_EQ(names.size(), Checks);
}

TEST_F(TableChecksTest, ATableThatIsNotThereEndsTheCheckAndTheRowsBeforeItStay) {
    ProblemList problems;
    NoProgress silent;
    const CheckTools tools{silent, [] { return Texts{}; }};
    GivenTemplate("Upload/All.ust", "");
    RunCheck(Check::Upload, tools, problems);
    std::filesystem::remove(Global.DBFPath + "ZUKSTAX.dbf");

    EXPECT_EQ(FailureNumber([&] { RunCheck(Check::Customers, tools, problems); }), 53);

    EXPECT_EQ(problems.ProblemRows(), 1U);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TableChecksTest, TablesOfRubbishAreCheckedOrRefused) {
    GivenCustomers({Customer("b-1", "B", "NY"), Customer("A#", "A")}, {{{"ST_CODE", "NY"}}});
    const std::string good = Bytes(Global.DBFPath + "ZUKCust.dbf");
    for (const std::string& content : Rubbish(good)) {
        GivenFile("app/DBFFiles/ZUKCust.dbf", content);
        OnlyRunTimeFailures([&] { Checked(Check::Customers); });
    }
}

TEST_F(TableChecksTest, ATableOfFewerFieldsLacksWhatTheOthersHold) {
    GivenFile("app/DBFFiles/ZUKCust.dbf", TableMaker({{"C_SEARCH", 'C', 5}}).Row({"A"}).Row({"B"}).Bytes());

    EXPECT_EQ(Lists(Check::Customers), (Texts{"1, 2"}));
    EXPECT_EQ(ListOf(Check::Customers, Blank, "C_CODE"), "1, 2");
}

} // namespace
