#include "handheld/HandheldTest.h"

#include "handheld/OrderBook.h"
#include "handheld/Signature.h"
#include "handheld/Totals.h"
#include "support/FaultyDisk.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace {

class OrderTest : public HandheldTest {
protected:
    OrderTest() {
        GivenHandheld();
        GivenTable("ZUKCUST", {{{"C_SEARCH", "ACME"},
                                {"C_CODE", "C1"},
                                {"C_PHONE", "555-0100"},
                                {"C_NAME", "Acme \xC4"},
                                {"C_ZIP", "05999"},
                                {"C_ADDRESS1", "12 Mill Road"},
                                {"C_ADDRESS2", "Suite 2"},
                                {"C_CITY", "Tamarack"},
                                {"C_STATE", "VT"},
                                {"C_CONTACT", "Joe"},
                                {"C_PAYTERMS", "Net 30"},
                                {"C_SHIPVIA", "Ground"},
                                {"C_STCODE", "vt"}},
                               {{"C_SEARCH", "BOLT"}, {"C_CODE", "C2"}, {"C_STCODE", "XX"}},
                               {{"C_SEARCH", "COD"}, {"C_CODE", "C3"}}});
        GivenTable("ZUKITEM",
                   {{{"I_SEARCH", "BOLT"},
                     {"I_ITEMCODE", "B1"},
                     {"I_BARCODE", "2000"},
                     {"I_DESC1", "Hex bolt"},
                     {"I_UM", "EA"},
                     {"I_PRICE", "1,000.125"},
                     {"I_STAXUSE", "YES"}},
                    {{"I_SEARCH", "NUT"}, {"I_ITEMCODE", "N1"}, {"I_PRICE", "0.215"}, {"I_STAXUSE", "NO"}},
                    {{"I_SEARCH", "SAW"}, {"I_ITEMCODE", "S1"}, {"I_PRICE", "12.5A"}},
                    {{"I_SEARCH", "VISE"}, {"I_ITEMCODE", "V1"}}});
        GivenTable(
            "ZUKSTAX",
            {{{"ST_CODE", "VT"}, {"ST_TYPE", "STATE"}, {"ST_DESC", "Vermont"}, {"ST_RATE", "6.12500"}}});
        GivenTable("ZUKLINK",
                   {{{"LK_HOTSYNC", "Somebody"}, {"LK_MACH_ID", "M9"}, {"LK_LSTONUM", "777"}},
                    {{"LK_HOTSYNC", "ANNA petrow"}, {"LK_MACH_ID", "A7"}, {"LK_LSTONUM", "000099"}}});
    }

    CommandResult Order(std::vector<std::string> more, const std::string& customer = "C1") {
        std::vector<std::string> words{"order", "--customer", customer};
        words.insert(words.end(), more.begin(), more.end());
        return Run(words);
    }
};

TEST_F(OrderTest, TheHeaderHoldsWhatTheOfficeNeeds) {
    const CommandResult result = Order({"--line", "B1:3", "--line", "N1:10", "--po", "PO 77/A", "--ship-date",
                                        "3/9/2026", "--discount", "10%", "--charge", "Freight: fast:12.50",
                                        "--charge", "Crate:3", "--at", "2026-03-05 08:12:40"});

    EXPECT_EQ(result.Out, "A7000100\n") << result.Err;
    EXPECT_EQ(Row("ZUKORHDR", 0), (Fields{{"H_ORDCODE", "A7000100"},   {"H_CUSTCODE", "C1"},
                                          {"H_BILLNAME", "Acme \xC4"}, {"H_CUSTFONE", "555-0100"},
                                          {"H_CUST_PO", "PO 77/A"},    {"H_ORDDATE", "20260305"},
                                          {"H_ORDTIME", "08:12:40"},   {"H_SHIPVIA", "Ground"},
                                          {"H_PAYTERMS", "Net 30"},    {"H_BILLADD1", "12 Mill Road"},
                                          {"H_BILLADD2", "Suite 2"},   {"H_BILLCITY", "Tamarack"},
                                          {"H_BILLST", "VT"},          {"H_BILLZIP", "05999"},
                                          {"H_SHIPNAME", "Acme \xC4"}, {"H_SHIPADD1", "12 Mill Road"},
                                          {"H_SHIPADD2", "Suite 2"},   {"H_SHIPCITY", "Tamarack"},
                                          {"H_SHIPST", "VT"},          {"H_SHIPZIP", "05999"},
                                          {"H_SHIPDATE", "20260309"},  {"H_LASTLINE", "2"},
                                          {"H_DISCOUNT", "10"},        {"H_DISCTYPE", "%"},
                                          {"H_NUMLINES", "2"},         {"H_TOTITEMS", "3002.53"},
                                          {"H_TOTTOTAL", "2901.55"},   {"H_CHG1DESC", "Freight: fast"},
                                          {"H_CHG1AMT", "12.5"},       {"H_CHG1TYP", "C"},
                                          {"H_CHG2DESC", "Crate"},     {"H_CHG2AMT", "3"},
                                          {"H_CHG2TYP", "C"},          {"H_TOTCHARG", "15.5"},
                                          {"H_PRT_STAT", "N"},         {"H_STCODE", "vt"},
                                          {"H_STTYPE", "STATE"},       {"H_STDESC", "Vermont"},
                                          {"H_STRATE", "6.125"},       {"H_STAXNUM", "0"},
                                          {"H_TOTTAX", "3000.38"},     {"H_DATE", "20260305"},
                                          {"H_TIME", "08:12:40"}}));
    // 3002.53 less 300.25, and 15.50, and the tax of 3000.38: 183.77.
}

TEST_F(OrderTest, ALineHoldsWhatTheOfficeNeeds) {
    Order({"--line", "N1:10", "--line", "bolt:3", "--at", "2026-03-05 08:12:40"});

    EXPECT_EQ(Row("ZUKORLIN", 1), (Fields{{"L_ORDCODE", "A7000100"},
                                          {"L_BARCODE", "2000"},
                                          {"L_CUSTCODE", "C1"},
                                          {"L_ITEMCODE", "B1"},
                                          {"L_NUMBER", "2"},
                                          {"L_KEY", "A70001000002"},
                                          {"L_ITEMDES1", "Hex bolt"},
                                          {"L_QTY", "3"},
                                          {"L_QTY_UM", "EA"},
                                          {"L_PRICE", "1000.125"},
                                          {"L_TOTPRICE", "3000.38"},
                                          {"L_PRIC_SRC", "LIST"},
                                          {"L_PRICEREF", "1000.125"},
                                          {"L_STRATE", "6.125"},
                                          {"L_DATE", "20260305"},
                                          {"L_TIME", "08:12:40"},
                                          {"L_SOURCE", "KEY"}}));
    EXPECT_EQ(Cell("ZUKORLIN", 0, "L_STRATE"), "0");
    EXPECT_EQ(Count("ZUKORLIN"), 2U);
}

TEST_F(OrderTest, ALineIsRoundedOnceAndHalfAwayFromZero) {
    const std::map<std::string, std::string> totals{
        {"N1:1", "0.22"},   {"N1:3", "0.65"},        {"N1:100", "21.5"},   {"B1:1", "1000.13"},
        {"N1:0.5", "0.11"}, {"N1:1@1.005", "1.01"},  {"N1:1@0.0049", "0"}, {"N1:1@0.005", "0.01"},
        {"V1:2@0", "0"},    {"N1:1.5@2.675", "4.01"}};
    std::size_t row = 0;
    for (const auto& [line, total] : totals) {
        EXPECT_EQ(Order({"--line", line}).How, Outcome::Done) << line;
        EXPECT_EQ(Cell("ZUKORLIN", row++, "L_TOTPRICE"), total) << line;
    }
}

TEST_F(OrderTest, APriceThatIsEnteredStandsInPlaceOfTheItems) {
    Order({"--line", "N1:2@0.2"});

    EXPECT_EQ(Cell("ZUKORLIN", 0, "L_PRICE"), "0.2");
    EXPECT_EQ(Cell("ZUKORLIN", 0, "L_PRICEREF"), "0.215");
    EXPECT_EQ(Cell("ZUKORLIN", 0, "L_PRIC_SRC"), "ENTERED");
    EXPECT_EQ(Cell("ZUKORLIN", 0, "L_TOTPRICE"), "0.4");
}

TEST_F(OrderTest, ATaxCodeThatNobodyKnowsLeavesItsLinesUncalculated) {
    Order({"--line", "B1:1", "--line", "B1:1", "--line", "N1:1"}, "C2");
    Order({"--line", "B1:1"}, "C3");

    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_STCODE"), "XX");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_STAXNUM"), "2");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_STRATE"), "0");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_TOTTAX"), "2000.26");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_TOTTOTAL"), "2000.48");
    EXPECT_EQ(Cell("ZUKORHDR", 1, "H_STAXNUM"), "0");
    EXPECT_EQ(Cell("ZUKORHDR", 1, "H_TOTTOTAL"), "1000.13");
}

TEST_F(OrderTest, ADiscountInDollarsIsTakenOff) {
    Order({"--line", "N1:100", "--discount", "1.5"}, "C3");

    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_DISCOUNT"), "1.5");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_DISCTYPE"), "$");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_TOTTOTAL"), "20");
}

TEST_F(OrderTest, ChanceTakesAsManyLinesAsItIsTold) {
    EXPECT_EQ(Run({"take", "3", "--seed", "4", "--lines", "12"}).How, Outcome::Done);

    EXPECT_EQ(Count("ZUKORHDR"), 3U);
    EXPECT_EQ(Count("ZUKORLIN"), 36U);
    for (std::size_t order = 0; order < 3; ++order) EXPECT_EQ(Cell("ZUKORHDR", order, "H_NUMLINES"), "12");
}

TEST_F(OrderTest, IsTakenOfPackedCustomersAndItems) {
    GivenPacked("ZUKCUST", 2);
    GivenPacked("ZUKITEM", 3);
    Again();

    EXPECT_EQ(Order({"--line", "N1:10", "--line", "bolt:3"}, "cod").Out, "A7000100\n");
    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_CUSTCODE"), "C3");
    EXPECT_EQ(Cell("ZUKORLIN", 1, "L_ITEMCODE"), "B1");
    EXPECT_EQ(Run({"take", "3", "--seed", "4"}).How, Outcome::Done);
    EXPECT_EQ(Count("ZUKORHDR"), 4U);
}

TEST_F(OrderTest, IsNeitherTakenNorDeletedWhereTheOrderTablesArePacked) {
    for (int order = 0; order < 2; ++order) Order({"--line", "N1:10"});
    GivenPacked("ZUKORLIN", 2);
    const std::string before = Cell("ZUKLINK", 1, "LK_LSTONUM");

    for (const CommandResult& result : {Order({"--line", "N1:10"}), Run({"delete", "A7000100"})}) {
        EXPECT_EQ(result.How, Outcome::Failed);
        EXPECT_NE(result.Err.find("the table ZUKORLIN is packed"), std::string::npos) << result.Err;
    }

    EXPECT_EQ(Count("ZUKORHDR"), 2U);
    EXPECT_EQ(Count("ZUKORLIN"), 2U);
    EXPECT_FALSE(HandheldTable::Has(Again().Store, "ZUKAUDTH"));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), before) << "no number is used up";
}

TEST_F(OrderTest, TheNumberCountsOnAtItsWidthAndIsWrittenBack) {
    EXPECT_EQ(Order({"--line", "N1:1"}).Out, "A7000100\n");
    EXPECT_EQ(Order({"--line", "N1:1"}).Out, "A7000101\n");

    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "000101");
    EXPECT_EQ(Cell("ZUKLINK", 0, "LK_LSTONUM"), "777");
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "A8"}, {"LK_LSTONUM", "99"}}});
    EXPECT_EQ(HandheldTable(Its().Store, "ZUKLINK").Count(), 3U);
}

class OrderNumberTest : public HandheldTest {
protected:
    static constexpr const char* Links = "ZUKLINK";
    OrderNumbers With(const std::string& last, const std::string& machine = "A7") {
        GivenHandheld();
        GivenTable(Links, {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", machine}, {"LK_LSTONUM", last}}});
        return OrderNumbers(Its());
    }
};

TEST_F(OrderNumberTest, NinesGrowByADigit) {
    OrderNumbers numbers = With("99");

    EXPECT_EQ(numbers.Next(), "A7100");
}

TEST_F(OrderNumberTest, ABlankOneBeginsWithSixDigits) {
    OrderNumbers numbers = With("", "");

    EXPECT_EQ(numbers.LastCode(), "");
    EXPECT_EQ(numbers.Next(), "M1000001");
}

TEST_F(OrderNumberTest, TheLastNumberIsTheLast) {
    OrderNumbers numbers = With("99999999");

    EXPECT_NE(RefusalOf([&] { numbers.Next(); }).find("no order number is left"), std::string::npos);
}

TEST_F(OrderNumberTest, ANumberThatIsNoneIsToldWithItsRecord) {
    EXPECT_EQ(RefusalOf([&] { With("12A"); }),
              "ZUKLINK, record 1: LK_LSTONUM is no number of up to 8 digits: \"12A\"");
}

class LonelyOrderTest : public HandheldTest {
protected:
    LonelyOrderTest() {
        GivenHandheld();
        GivenTable("ZUKCUST", {{{"C_SEARCH", "M"}, {"C_CODE", "C1"}},
                               {{"C_SEARCH", "Z"}, {"C_CODE", "C2"}},
                               {{"C_SEARCH", "A"}, {"C_CODE", "C3"}}});
        GivenTable("ZUKITEM", {{{"I_SEARCH", "NUT"}, {"I_ITEMCODE", "N1"}, {"I_PRICE", "2"}}});
    }
};

TEST_F(LonelyOrderTest, WithoutALinksRowTheHandheldCountsForItself) {
    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000001\n");
    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000002\n");

    EXPECT_EQ(Again().Settings.LastOrder, "000002");
    EXPECT_FALSE(Its().Store.Has("TZUK20000_ZUKLINK"));
}

/// As after an install of a demo company: the office learns machine id and number from the row.
TEST_F(LonelyOrderTest, LinksOfOthersGetARowOfTheHandheldWithItsFirstOrder) {
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Demo"}, {"LK_MACH_ID", "D1"}, {"LK_LSTONUM", "000114"}}});

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000001\n");
    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000002\n");

    EXPECT_EQ(Row("ZUKLINK", 1),
              (Fields{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "M1"}, {"LK_LSTONUM", "000002"}}));
    EXPECT_EQ(Count("ZUKLINK"), 2U);
    EXPECT_EQ(Cell("ZUKLINK", 0, "LK_LSTONUM"), "000114");
}

TEST_F(LonelyOrderTest, LinksWithoutRoomForItsNameStayAsTheyAre) {
    Its().Settings.User.Name = "A name of more than thirty characters";
    Its().SaveSettings();
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Demo"}, {"LK_MACH_ID", "D1"}, {"LK_LSTONUM", "000114"}}});

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000001\n");

    EXPECT_EQ(Count("ZUKLINK"), 1U);
}

TEST_F(LonelyOrderTest, AnOrderThatStandsThereIsNotGivenItsNumberAgain) {
    Run({"order", "--customer", "C1", "--line", "N1:1"});
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "M1"}, {"LK_LSTONUM", "000000"}}});

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000002\n");
}

/// The handheld's Links table may be gone for a while: a HotSync broke off before the new one had its name.
TEST_F(LonelyOrderTest, WithoutItsLinksTheHandheldCountsOnFromWhereTheyWere) {
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "M1"}, {"LK_LSTONUM", "000123"}}});
    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000124\n");
    for (const char* table : {"ZUKLINK", "ZUKORHDR", "ZUKORLIN"})
        Again().Store.Remove("TZUK20000_" + std::string(table));

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000125\n");
}

TEST_F(LonelyOrderTest, LinksThatAHotSyncTakesAwayAreCountedOnThoughNoOrderWasTaken) {
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "M1"}, {"LK_LSTONUM", "000123"}}});
    const auto takeLinksAway = [](Handheld& handheld, const HotSyncJob&, std::ostream&) {
        handheld.Store.Remove("TZUK20000_ZUKLINK");
        return Outcome::Cut;
    };
    std::ostringstream out, err;
    RunCommand({Place(), "hotsync", "desk"}, {out, err, {}, takeLinksAway});

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000124\n");
}

TEST_F(LonelyOrderTest, LinksThatCountLessLeaveTheHandheldsOwnCountAlone) {
    for (int k = 0; k < 3; ++k) Run({"order", "--customer", "C1", "--line", "N1:1"});
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "A7"}, {"LK_LSTONUM", "1"}}});
    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "A72\n");
    Again().Store.Remove("TZUK20000_ZUKLINK");

    EXPECT_EQ(Run({"order", "--customer", "C1", "--line", "N1:1"}).Out, "M1000004\n");
}

TEST_F(LonelyOrderTest, WhereverAnOrderIsCutOffItsNumberIsNotGivenAgain) {
    std::set<std::string> given;
    const auto take = [&] { return Run({"order", "--customer", "C1", "--line", "N1:1"}); };
    const auto standing = [&] {
        std::vector<std::string> codes;
        if (!Again().Store.Has("TZUK20000_ZUKORHDR")) return codes;
        const HandheldTable headers(Its().Store, "ZUKORHDR");
        for (std::size_t row = 0; row < headers.Count(); ++row)
            codes.emplace_back(headers.Get(row, "H_ORDCODE"));
        return codes;
    };
    int cuts = 0;
    for (bool whole = false; !whole; ++cuts) {
        FaultyDisk disk(cuts + 1); // nothing works from there on, as if the process had ended
        Global.TheDisk = &disk;
        whole = take().How == Outcome::Done;
        Global.TheDisk = &NativeDisk();
        // The orders go to the office, and the office clears them.
        for (const std::string& code : standing()) EXPECT_TRUE(given.insert(code).second) << code;
        for (const char* table : {"ZUKORHDR", "ZUKORLIN"})
            Its().Store.Remove("TZUK20000_" + std::string(table));

        const std::string next = take().Out.substr(0, 8);

        EXPECT_TRUE(given.insert(next).second) << next << " is given again, cut at call " << cuts + 1;
        Again();
        for (const char* table : {"ZUKORHDR", "ZUKORLIN"})
            Its().Store.Remove("TZUK20000_" + std::string(table));
    }
    EXPECT_GT(cuts, 10);
}

TEST_F(LonelyOrderTest, InAnUnsortedTableACustomerIsFoundByItsCodeAndNotByItsKey) {
    EXPECT_EQ(Run({"order", "--customer", "c3", "--line", "N1:1"}).How, Outcome::Done);
    EXPECT_EQ(
        Run({"order", "--customer", "A", "--line", "N1:1"}).Err,
        "handheld: there is no customer A; the table ZUKCUST is not in the order of C_SEARCH: record 3 comes "
        "before the one above it\n");
    EXPECT_EQ(Run({"order", "--customer", "m", "--line", "N1:1"}).How, Outcome::Done);
}

TEST_F(LonelyOrderTest, TheFirstOrderMakesItsTablesAsAnOfficeHasThem) {
    Run({"order", "--customer", "C1", "--line", "N1:1"});

    const HandheldTable headers(Again().Store, "ZUKORHDR");
    EXPECT_EQ(headers.Layout().Fields.size(), 56U);
    EXPECT_EQ(headers.Layout().RecordBytes(), headers.Data().Records[0].Data.size());
    EXPECT_EQ(headers.Data().Version, WholeTable);
    EXPECT_EQ(headers.Data().Creator, HandheldCreator);
    EXPECT_EQ(headers.Data().Records[0].Flags, DirtyRecord);
    EXPECT_EQ(HandheldTable(Its().Store, "ZUKORLIN").Layout().Fields.size(), 17U);
}

TEST_F(OrderTest, WhatIsMissingIsNamedAndNothingIsTaken) {
    const std::map<std::vector<std::string>, std::string> wrong{
        {{"--line", "X9:1"}, "there is no item X9"},
        {{"--line", "N1:0"}, "the item N1: the quantity is not above 0"},
        {{"--line", "N1:-1"}, "the item N1: the quantity is not above 0"},
        {{"--line", "S1:1"}, "the item S1 has no price: \"12.5A\"; enter one behind the quantity"},
        {{"--line", "V1:1"}, "the item V1 has no price; enter one behind the quantity"},
        {{"--line", "N1:1@-1"}, "the item N1: the price is below 0"},
        {{"--line", "N1:1", "--po", "123456789012345678901"},
         "\"123456789012345678901\" is longer than the 20 characters of H_CUST_PO"},
        {{"--line", "N1:1", "--discount", "101%"}, "the discount is not between nothing and the whole"},
        {{"--line", "N1:1", "--discount", "0.23"}, "the discount is not between nothing and the whole"},
        {{"--line", "N1:1", "--discount", "-1"}, "the discount is not between nothing and the whole"},
        {{"--line", "N1:99999999999@9999999"}, "the price of a line is too great"},
        {{"--line", "N1:99999999@9999999"},
         "\"999999890000001\" is longer than the 14 characters of H_TOTITEMS"},
    };
    for (const auto& [words, reason] : wrong) {
        const CommandResult result = Order(words);
        EXPECT_EQ(result.How, Outcome::Failed) << reason;
        EXPECT_EQ(result.Err, "handheld: " + reason + "\n");
    }
    EXPECT_EQ(Order({"--line", "N1:1"}, "NOBODY").Err, "handheld: there is no customer NOBODY\n");
    EXPECT_FALSE(Again().Store.Has("TZUK20000_ZUKORHDR"));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "000099");
}

TEST_F(OrderTest, ACommandThatIsWrittenWronglyIsToldHow) {
    EXPECT_EQ(Run({"order", "--line", "N1:1"}).Err.substr(0, 31), "handheld: --customer is missing");
    const std::map<std::vector<std::string>, std::string> wrong{
        {{}, "--line is missing"},
        {{"--line", "N1"}, "--line: \"N1\" has no colon"},
        {{"--line", "N1:many"}, "--line: \"many\" is no number"},
        {{"--line", "N1:1", "--at", "someday"}, "--at: \"someday\" is no date"},
        {{"--line", "N1:1", "--discount", "92233720368547750"},
         "--discount: \"92233720368547750\" is too great"},
        {{"--line", "N1:1", "--charge", "Freight"}, "--charge: \"Freight\" has no colon"},
        {{"--line", "N1:1", "--po"}, "--po lacks its value"},
        {{"--line", "N1:1", "--colour", "red"}, "the command has no option --colour"},
        {{"--line", "N1:1", "--po", "1", "--po", "2"}, "--po is given twice"},
    };
    for (const auto& [words, reason] : wrong) {
        const CommandResult result = Order(words);
        EXPECT_EQ(result.How, Outcome::Misused);
        EXPECT_EQ(result.Err, "handheld: " + reason + "\nhandheld help [COMMAND] tells more.\n");
    }
}

TEST_F(OrderTest, AFullMemoryTakesNoPartOfAnOrder) {
    HandheldSettings settings = Its().Settings;
    settings.Memory = Again().Store.Used() + 2000;
    Its().Settings = settings;
    Its().SaveSettings();

    EXPECT_NE(Order({"--line", "N1:1"}).Err.find("memory is full"), std::string::npos);

    EXPECT_FALSE(Again().Store.Has("TZUK20000_ZUKORLIN"));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "000099");
}

// ---- signatures ----

TEST_F(OrderTest, ASignatureStandsBehindTheFieldsAndIsTheSameForTheSameName) {
    Order({"--line", "N1:1"});
    Order({"--line", "N1:1"});
    const Fields before = Row("ZUKORHDR", 0);

    EXPECT_EQ(Run({"sign", "a7000100", "--text", "Joe Smith"}).How, Outcome::Done);

    const HandheldTable headers(Again().Store, "ZUKORHDR");
    EXPECT_TRUE(headers.IsSigned(0));
    EXPECT_FALSE(headers.IsSigned(1));
    EXPECT_EQ(headers.SignatureOf(0), DrawSignature("Joe Smith"));
    EXPECT_EQ(Row("ZUKORHDR", 0), before);
    EXPECT_EQ(Run({"sign", "A7999"}).Err, "handheld: there is no order A7999\n");
}

TEST(Signature, IsInkAndNotABlankBox) {
    const auto dots = [](const Ink& ink) {
        return std::count_if(ink.Rows.begin(), ink.Rows.end(), [](char byte) { return byte != 0; });
    };
    for (const char* name :
         {"Joe Smith", "", "   ", "A", "\xC4\xD6\xDC", "An uncommonly long name for a short line"}) {
        const Ink ink = DrawSignature(name);
        EXPECT_EQ(ink.Rows.size(), (ink.Width + 7U) / 8 * ink.Height);
        EXPECT_GT(dots(ink), 20) << name;
        EXPECT_LT(dots(ink), static_cast<std::ptrdiff_t>(ink.Rows.size() / 2)) << name;
    }
    EXPECT_NE(DrawSignature("Joe"), DrawSignature("Jim"));
}

// ---- deleting and totals ----

TEST_F(OrderTest, ADeletedOrderGoesWithItsLinesAndLeavesAudits) {
    Order({"--line", "N1:1", "--line", "B1:1", "--line", "N1:2"});
    Order({"--line", "N1:1"});
    Order({"--line", "N1:3"});

    EXPECT_EQ(Run({"delete", "A7000100", "--at", "2026-03-06 17:00:09"}).Out,
              "A7000100 is deleted with 3 lines\n");

    EXPECT_EQ(Cell("ZUKORHDR", 0, "H_ORDCODE"), "A7000101");
    EXPECT_EQ(Count("ZUKORHDR"), 2U);
    EXPECT_EQ(Count("ZUKORLIN"), 2U);
    EXPECT_EQ(Row("ZUKAUDTH", 0), (Fields{{"A_ORDCODE", "A7000100"},
                                          {"A_CUSTCODE", "C1"},
                                          {"A_TOTTOTAL", "1062.04"},
                                          {"A_PRT_STAT", "N"},
                                          {"A_DELTYPE", "ORDER"},
                                          {"A_DATE", "20260306"},
                                          {"A_TIME", "17:00:09"},
                                          {"A_MACH_ID", "A7"}}));
    EXPECT_EQ(Count("ZUKAUDTL"), 3U);
    EXPECT_EQ(Row("ZUKAUDTL", 1), (Fields{{"A_KEY", "A70001000002"},
                                          {"A_ITEMCODE", "B1"},
                                          {"A_DATE", "20260306"},
                                          {"A_TIME", "17:00:09"},
                                          {"A_MACH_ID", "A7"}}));
    EXPECT_EQ(Run({"delete", "A7000100"}).Err, "handheld: there is no order A7000100\n");
    EXPECT_EQ(Count("ZUKAUDTH"), 1U);
}

TEST_F(OrderTest, WhereverADeletionIsCutOffNoHeaderStandsWithoutItsLines) {
    int cuts = 0;
    for (bool whole = false; !whole; ++cuts) {
        ASSERT_EQ(Order({"--line", "N1:1", "--line", "B1:1"}).How, Outcome::Done);
        const std::string code = Cell("ZUKORHDR", 0, "H_ORDCODE");
        FaultyDisk disk(cuts + 1); // nothing works from there on, as if the process had ended
        Global.TheDisk = &disk;
        whole = Run({"delete", code}).How == Outcome::Done;
        Global.TheDisk = &NativeDisk();

        if (Count("ZUKORHDR") != 0) {
            EXPECT_EQ(Count("ZUKORLIN"), 2U) << "cut at call " << cuts + 1;
        } else {
            EXPECT_NE(Count("ZUKAUDTH"), 0U) << "cut at call " << cuts + 1;
        }

        Its().Store.Remove("TZUK20000_ZUKORHDR");
        Its().Store.Remove("TZUK20000_ZUKORLIN");
        Its().Store.Remove("TZUK20000_ZUKAUDTH");
    }
    EXPECT_GT(cuts, 12);
}

TEST_F(OrderTest, TheTotalsAreOneRecordAndTellTheLastEvent) {
    Order({"--line", "N1:1", "--line", "B1:1"});
    Order({"--line", "N1:10"});
    EXPECT_EQ(Row("ZUKAUDHH", 0), (Fields{{"TH_NUMHEAD", "2"},
                                          {"TH_NUMLINE", "3"},
                                          {"TH_DOL_LIN", "1002.5"},
                                          {"TH_MACHINE", "A7"},
                                          {"TH_LASTONU", "A7000101"},
                                          {"TH_DATE", "20260305"},
                                          {"TH_TIME", "08:00:00"},
                                          {"TH_EVENT", "ORDER"}}));

    Run({"delete", "A7000100"});

    EXPECT_EQ(Count("ZUKAUDHH"), 1U);
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_DOL_LIN"), "2.15");
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_EVENT"), "DELETE");
    EXPECT_EQ(Run({"totals"}).Out,
              "Orders: 1\nLines: 1\nDollars: 2.15\nMachine id: A7\nLast order: A7000101\n");
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_EVENT"), "TOTALS");
}

TEST_F(OrderTest, AHandheldThatNeverTookAnOrderHasNoTotalsTable) {
    EXPECT_EQ(Run({"totals"}).Out, "Orders: 0\nLines: 0\nDollars: 0\nMachine id: A7\nLast order: A7000099\n");

    EXPECT_FALSE(Again().Store.Has("TZUK20000_ZUKAUDHH"));
}

// ---- orders by chance ----

class TakeTest : public OrderTest {
protected:
    std::string OrdersOf(const std::string& seed) {
        const std::string at = "2026-03-05 09:00:00";
        Its().Store.Remove("TZUK20000_ZUKORHDR");
        Its().Store.Remove("TZUK20000_ZUKORLIN");
        GivenTableAfresh();
        const CommandResult result = Run({"take", "40", "--seed", seed, "--at", at});
        EXPECT_EQ(result.How, Outcome::Done) << result.Err;
        return Run({"show", "ORHDR", "--csv"}).Out + Run({"show", "ORLIN", "--csv"}).Out;
    }
    void GivenTableAfresh() {
        Again();
        Its().Store.Remove("TZUK20000_ZUKLINK");
        GivenTable("ZUKLINK",
                   {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_MACH_ID", "A7"}, {"LK_LSTONUM", "000099"}}});
    }
};

TEST_F(TakeTest, TheSameSeedGivesTheSameOrders) {
    const std::string first = OrdersOf("1");
    Again().Store.Remove("TZUK20000_ZUKORHDR");
    Its().Store.Remove("TZUK20000_ZUKORLIN");

    EXPECT_EQ(OrdersOf("1"), first);
    Again().Store.Remove("TZUK20000_ZUKORHDR");
    Its().Store.Remove("TZUK20000_ZUKORLIN");
    EXPECT_NE(OrdersOf("2"), first);
}

TEST_F(TakeTest, TheTotalsEqualARecount) {
    EXPECT_EQ(Run({"take", "60", "--seed", "5"}).Out, "60 orders, A7000100 to A7000159\n");

    const HandheldTable headers(Again().Store, "ZUKORHDR"), lines(Its().Store, "ZUKORLIN");
    std::map<std::string, std::int64_t> cents, counts;
    std::int64_t all = 0;
    for (std::size_t row = 0; row < lines.Count(); ++row) {
        const std::string total(lines.Get(row, "L_TOTPRICE"));
        const std::size_t point = std::min(total.find('.'), total.size());
        std::string fraction = point < total.size() ? total.substr(point + 1) : "";
        fraction.resize(2, '0');
        const std::int64_t amount = std::stoll(total.substr(0, point)) * 100 + std::stoll(fraction);
        cents[std::string(lines.Get(row, "L_ORDCODE"))] += amount;
        ++counts[std::string(lines.Get(row, "L_ORDCODE"))];
        all += amount;
    }
    int signedOnes = 0;
    for (std::size_t row = 0; row < headers.Count(); ++row) {
        const std::string code(headers.Get(row, "H_ORDCODE"));
        EXPECT_EQ(headers.Get(row, "H_NUMLINES"), std::to_string(counts[code]));
        EXPECT_EQ(headers.Get(row, "H_LASTLINE"), headers.Get(row, "H_NUMLINES"));
        EXPECT_EQ(std::stod(std::string(headers.Get(row, "H_TOTITEMS"))),
                  static_cast<double>(cents[code]) / 100);
        EXPECT_LE(counts[code], 10);
        EXPECT_GE(counts[code], 1);
        signedOnes += headers.IsSigned(row) ? 1 : 0;
    }
    EXPECT_GT(signedOnes, 0);
    EXPECT_LT(signedOnes, 60);
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_NUMHEAD"), "60");
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_NUMLINE"), std::to_string(lines.Count()));
    EXPECT_EQ(std::stod(Cell("ZUKAUDHH", 0, "TH_DOL_LIN")), static_cast<double>(all) / 100);
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "000159");
}

TEST_F(TakeTest, WithoutCustomersOrPricesItSaysSo) {
    Its().Store.Remove("TZUK20000_ZUKITEM");
    EXPECT_EQ(Run({"take", "1", "--seed", "1"}).Err,
              "handheld: the handheld has no item with a code and a price (ZUKITEM)\n");
    Its().Store.Remove("TZUK20000_ZUKCUST");
    EXPECT_EQ(Run({"take", "1", "--seed", "1"}).Err,
              "handheld: the handheld has no customer with a code (ZUKCUST)\n");
    EXPECT_EQ(Run({"take", "1"}).How, Outcome::Misused);
    EXPECT_EQ(Run({"take", "0", "--seed", "1"}).How, Outcome::Misused);
    EXPECT_EQ(Run({"take", "1", "--seed", "1", "--lines", "0"}).How, Outcome::Misused);
    EXPECT_EQ(Run({"take", "1", "--seed", "1", "--lines", "10000"}).How, Outcome::Misused);
}

} // namespace
