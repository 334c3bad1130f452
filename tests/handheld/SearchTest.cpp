#include "handheld/HandheldTest.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/TableSearch.h"

#include <algorithm>
#include <random>

namespace {

class SearchTest : public HandheldTest {
protected:
    HandheldTable Customers(const std::vector<std::string>& keys) {
        std::vector<Fields> rows;
        for (const std::string& key : keys) rows.push_back({{"C_SEARCH", key}});
        if (!HandheldTable::Has(Its().Store, "ZUKCUST")) GivenTable("ZUKCUST", rows);
        return {Its().Store, "ZUKCUST"};
    }
};

std::string RandomKey(std::mt19937& random) {
    // Letters with and without accents, digits, a blank, a hyphen: so few that keys meet.
    constexpr std::string_view letters = "aAbZ\xE9\xC9\xE8\xDF\xD8zs 1-";
    std::string key;
    const std::size_t length = random() % 4;
    for (std::size_t at = 0; at < length; ++at) key += letters[random() % letters.size()];
    return key;
}

TEST_F(SearchTest, ABinarySearchFindsWhatAWalkFindsInAnyTableThatIsSorted) {
    std::mt19937 random(11);
    GivenHandheld();
    for (int turn = 0; turn < 60; ++turn) {
        std::vector<std::string> keys(random() % 40);
        for (std::string& key : keys) key = Trim(RandomKey(random));
        std::stable_sort(keys.begin(), keys.end(),
                         [](const std::string& a, const std::string& b) { return SortKey(a) < SortKey(b); });
        Its().Store.Remove("TZUK20000_ZUKCUST");
        const HandheldTable table = Customers(keys);
        ASSERT_EQ(FirstOutOfOrder(table), std::nullopt);
        for (int look = 0; look < 40; ++look) {
            const std::string key = RandomKey(random);
            const auto same = [&](const std::string& other) { return TextCompare(other, Trim(key)) == 0; };
            const auto first = std::find_if(keys.begin(), keys.end(), same);
            const RowRange found = FindKey(table, key);
            ASSERT_EQ(found.End - found.First,
                      static_cast<std::size_t>(std::count_if(keys.begin(), keys.end(), same)));
            if (first != keys.end()) {
                ASSERT_EQ(found.First, static_cast<std::size_t>(first - keys.begin()));
            }
        }
    }
}

TEST_F(SearchTest, APackedTableIsSearchedRowByRowAndNothingInItIsChanged) {
    GivenHandheld();
    Customers({"E", "\xC9", "EZ", "F", "G"});
    GivenPacked("ZUKCUST", 2);
    HandheldTable table = Customers({});

    ASSERT_EQ(table.Data().Records.size(), 3U);
    EXPECT_EQ(table.Count(), 5U);
    EXPECT_EQ(FindKey(table, "\xE9").First, 1U);
    EXPECT_EQ(table.Get(4, "C_SEARCH"), "G");
    EXPECT_FALSE(table.IsSigned(0));
    EXPECT_FALSE(FirstOutOfOrder(table));
    EXPECT_EQ(Run({"tables"}).Out.substr(0, 18), "ZUKCUST: 5 records");

    const std::string words =
        "the table ZUKCUST is packed, 2 rows in a record: it can be read and not changed";
    EXPECT_EQ(RefusalOf([&] { table.Append(table.NewFields()); }), words);
    EXPECT_EQ(RefusalOf([&] { table.Set(0, "C_SEARCH", "A"); }), words);
    EXPECT_EQ(RefusalOf([&] { table.Sign(0, {1, 1, "x"}); }), words);
    EXPECT_EQ(RefusalOf([&] { table.Clear(); }), words);
    EXPECT_FALSE(table.IsChanged());
}

TEST_F(SearchTest, APackedTableWithARecordThatIsNotFullBeforeTheLastIsDamaged) {
    GivenHandheld();
    Customers({"A", "B", "C"});
    GivenPacked("ZUKCUST", 2);
    Database data = Its().Store.Load("TZUK20000_ZUKCUST");
    std::swap(data.Records[0].Data, data.Records[1].Data);
    Its().Store.Save(data);

    EXPECT_EQ(RefusalOf([&] { Customers({}); }),
              "TZUK20000_ZUKCUST, record 2: record of a table: it comes behind one that is not full");
}

TEST_F(SearchTest, AnAccentStandsBehindItsLetter) {
    GivenHandheld();
    const HandheldTable table = Customers({"E", "\xC9", "EZ", "F"});

    EXPECT_EQ(FindKey(table, "\xE9").First, 1U);
    EXPECT_EQ(FindKey(table, "\xE9").End, 2U);
    EXPECT_TRUE(FindKey(table, "\xE8").IsEmpty());
}

TEST_F(SearchTest, EveryRowOfAKeyIsShown) {
    GivenHandheld();
    GivenTable("ZUKCUST", {{{"C_SEARCH", "ACME"}, {"C_CODE", "1"}},
                           {{"C_SEARCH", "ACME"}, {"C_CODE", "2"}},
                           {{"C_SEARCH", "BOLT"}}});

    const CommandResult result = Run({"customer", "acme"});

    EXPECT_EQ(result.How, Outcome::Done);
    EXPECT_EQ(result.Out, "ZUKCUST, record 1\n  C_SEARCH    ACME\n  C_CODE      1\n"
                          "ZUKCUST, record 2\n  C_SEARCH    ACME\n  C_CODE      2\n");
}

TEST_F(SearchTest, WhatIsNotFoundIsToldWithItsNeighbour) {
    GivenHandheld();
    GivenTable("ZUKITEM", {{{"I_SEARCH", "BOLT"}}, {{"I_SEARCH", "NUT"}}});

    EXPECT_EQ(Run({"item", "H\xC3\xBCt"}).Err, "handheld: not found: H\xC3\xBCt; next is NUT\n");
    EXPECT_EQ(Run({"item", "Z"}).Err, "handheld: not found: Z\n");
    EXPECT_EQ(Run({"item", "Z"}).How, Outcome::Failed);
}

TEST_F(SearchTest, ATableOutOfOrderIsToldOfWhenNothingIsFound) {
    GivenHandheld();
    GivenTable("ZUKCUST", {{{"C_SEARCH", "M"}}, {{"C_SEARCH", "Z"}}, {{"C_SEARCH", "A"}}});

    EXPECT_EQ(Run({"customer", "A"}).Err, "handheld: not found: A; next is M; the table ZUKCUST is not in "
                                          "the order of C_SEARCH: record 3 comes "
                                          "before the one above it\n");
}

TEST_F(SearchTest, AMissingTableIsNamed) {
    GivenHandheld();

    EXPECT_EQ(Run({"customer", "A"}).Err,
              "handheld: the handheld has no table ZUKCUST (TZUK20000_ZUKCUST)\n");
    EXPECT_EQ(Run({"version"}).Err, "handheld: the handheld has no table ZUKVER (TZUK20000_ZUKVER)\n");
}

class BarcodeTest : public HandheldTest {
protected:
    void GivenItems(const std::vector<Fields>& index) {
        GivenHandheld();
        GivenTable("ZUKITEM", {{{"I_SEARCH", "BOLT"}, {"I_ITEMCODE", "B1"}, {"I_BARCODE", "200"}},
                               {{"I_SEARCH", "NUT"}, {"I_ITEMCODE", "N1"}},
                               {{"I_SEARCH", "SAW"}, {"I_ITEMCODE", "S1"}, {"I_BARCODE", "100"}}});
        GivenTable("ZUKBARIN", index);
    }
};

TEST_F(BarcodeTest, GoesThroughTheIndexToThePlaceThatCountsFromZero) {
    GivenItems(
        {{{"ROWNUM", "1"}}, {{"BARCODE", "100"}, {"ROWNUM", "2"}}, {{"BARCODE", "200"}, {"ROWNUM", "0"}}});

    EXPECT_EQ(Run({"barcode", "100"}).Out,
              "ZUKITEM, record 3\n  I_SEARCH    SAW\n  I_ITEMCODE  S1\n  I_BARCODE   100\n");
    EXPECT_NE(Run({"barcode", "200"}).Out.find("BOLT"), std::string::npos);
    EXPECT_EQ(Run({"barcode", "300"}).Err, "handheld: the barcode 300 is not in ZUKBARIN\n");
    EXPECT_EQ(Run({"barcode", " "}).Err, "handheld: an empty barcode\n");
}

TEST_F(BarcodeTest, AnIndexThatPointsElsewhereIsOutOfDate) {
    GivenItems({{{"BARCODE", "100"}, {"ROWNUM", "0"}},
                {{"BARCODE", "200"}, {"ROWNUM", "7"}},
                {{"BARCODE", "300"}, {"ROWNUM", "x"}}});

    EXPECT_EQ(Run({"barcode", "100"}).Err, "handheld: the barcode 100: index out of date; ZUKBARIN tells the "
                                           "place \"0\", where no item with that "
                                           "barcode stands\n");
    for (const char* code : {"100", "200", "300"}) {
        EXPECT_NE(Run({"barcode", code}).Err.find("index out of date"), std::string::npos) << code;
    }
}

TEST_F(BarcodeTest, OfTwoPlacesTheOneThatHoldsCounts) {
    GivenItems({{{"BARCODE", "100"}, {"ROWNUM", "0"}}, {{"BARCODE", "100"}, {"ROWNUM", "2"}}});

    EXPECT_NE(Run({"barcode", "100"}).Out.find("SAW"), std::string::npos);
}

} // namespace
