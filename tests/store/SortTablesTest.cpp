#include "store/SortTables.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/TextCompare.h"
#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Lots.h"
#include "support/Rubbish.h"
#include "support/TableSteps.h"
#include "support/Tables.h"

#include <algorithm>

namespace {

using Values = std::vector<std::string>;

constexpr SortOptions Cleaning{.RemoveSpecial = true};

/// A bar that remembers what it was told.
struct Bar final : Progress {
    void Begin(const Text& label, std::int64_t maximum) override {
        Labels.push_back(label.Utf8());
        Maximum = maximum;
    }
    void Show(std::int64_t value) override { Shown.push_back(value); }
    Values Labels;
    std::int64_t Maximum = -1;
    std::vector<std::int64_t> Shown;
};

std::vector<std::int64_t> UpTo(std::int64_t last) {
    std::vector<std::int64_t> values;
    for (std::int64_t k = 1; k <= last; ++k) values.push_back(k);
    return values;
}

// What the routines stand for, a record at a time.

using Grid = std::vector<Values>;

std::string CleanStepByStep(std::string cell) {
    cell = UpperCase(cell);
    for (std::size_t at = 0; at < cell.size();) {
        const std::string c = cell.substr(at, 1);
        const bool digit = TextCompare(c, "0") >= 0 && TextCompare(c, "9") <= 0;
        const bool letter = TextCompare(c, "A") >= 0 && TextCompare(c, "Z") <= 0;
        if (digit || letter) {
            ++at;
        } else {
            cell.erase(at, 1);
            at = 0;
        }
    }
    return cell;
}

/// Puts each row in behind all that do not come after it.
void SortStepByStep(Grid& grid) {
    Grid sorted;
    for (const Values& row : grid) {
        const auto place = std::find_if(sorted.begin(), sorted.end(), [&](const Values& other) {
            return !row.empty() && TextCompare(other[0], row[0]) > 0;
        });
        sorted.insert(place, row);
    }
    grid = sorted;
}

void SortStepByStep(const std::string& path, bool clean) {
    DBFEdit table;
    Grid grid;
    table.FileOpen(path);
    table.Go(DBFEdit::First);
    for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
        Values row;
        for (int field = 1; field <= table.NoFields(); ++field) {
            row.emplace_back(Trim(table.GetData(field)));
            if (clean && field == 1) row.back() = CleanStepByStep(row.back());
        }
        grid.push_back(row);
        table.Go(DBFEdit::Next);
    }
    SortStepByStep(grid);
    table.Go(DBFEdit::First);
    for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
        table.DeleteRecord();
        table.Go(DBFEdit::Next);
    }
    table.ReIndex(path);
    table.FileOpen(path);
    BeginAppending(table);
    for (const Values& row : grid) {
        table.Go(DBFEdit::Append);
        for (std::size_t k = 0; k < row.size(); ++k) table.WriteData(static_cast<int>(k) + 1, row[k]);
        table.UpDate();
    }
    table.FileClose();
}

void RebuildStepByStep(const std::string& directory) {
    DBFEdit table;
    Grid grid;
    table.FileOpen(directory + "ZUKItem.dbf");
    table.Go(DBFEdit::First);
    for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
        grid.push_back({std::string(Trim(table.GetData("I_BARCODE"))), std::to_string(k - 1)});
        table.Go(DBFEdit::Next);
    }
    table.FileClose();
    SortStepByStep(grid);
    const std::string path = directory + "ZUKBarin.dbf";
    EmptyStepByStep(table, path);
    table.FileOpen(path);
    BeginAppending(table);
    for (const Values& row : grid) {
        table.Go(DBFEdit::Append);
        for (std::int16_t k = 1; k <= 2; ++k)
            table.WriteData(table.FieldName(k), row[static_cast<std::size_t>(k) - 1]);
        table.UpDate();
    }
    table.FileClose();
}

class SortTablesTest : public EngineTest {
protected:
    /// A table of a key and a mark that tells records with the same key apart.
    std::string GivenKeys(const Values& keys) {
        TableMaker maker({{"KEY", 'C', 12}, {"MARK", 'C', 4}});
        for (std::size_t k = 0; k < keys.size(); ++k) maker.Row({keys[k], std::to_string(k + 1)});
        return GivenFile("T.DBF", maker.Bytes());
    }

    static Values Column(const std::string& path, std::size_t field) {
        const TableContent content = TableAt(path);
        Values values;
        for (int record = 1; record <= content.Count; ++record)
            values.push_back(content.Trimmed(record)[field - 1]);
        return values;
    }
    static Values Keys(const std::string& path) { return Column(path, 1); }
    static Values Marks(const std::string& path) { return Column(path, 2); }

    void GivenItems(const std::vector<std::pair<std::string, std::string>>& barcodes) {
        Grid rows;
        for (const auto& [first, second] : barcodes)
            rows.push_back(RowOf("ZUKITEM", {{"I_BARCODE", first}, {"I_BARCODE2", second}}));
        GivenTable(Folder(), "ZUKITEM", rows);
        GivenTable(Folder(), "ZUKBARIN", {{"of before", "77"}});
    }
    std::string Index() const { return Folder() + "ZUKBarin.dbf"; }

    NoProgress Nobody;
};

TEST_F(SortTablesTest, RecordsComeInTheOrderOfTheirKeysAndEqualOnesKeepTheirs) {
    const std::string path = GivenKeys({"b2", "A1", "B2",
                                        "\xC4"
                                        "1",
                                        "", "B10", " a1"});

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(Keys(path), (Values{"", "A1", "a1",
                                  "\xC4"
                                  "1",
                                  "B10", "b2", "B2"}));
    EXPECT_EQ(Marks(path), (Values{"5", "2", "7", "4", "6", "1", "3"}));
}

TEST_F(SortTablesTest, KeyIsTheFirstFieldWhateverItIsCalled) {
    const std::string path = GivenFile(
        "T.DBF",
        TableMaker({{"MARK", 'C', 2}, {"C_SEARCH", 'C', 4}}).Row({"2", "A"}).Row({"1", "B"}).Bytes());

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(Column(path, 2), (Values{"B", "A"}));
}

TEST_F(SortTablesTest, EmptyTableStaysAnEmptyTable) {
    const std::string path = GivenKeys({});
    Bar bar;

    SortCustFile(path, Cleaning, bar);

    EXPECT_EQ(TableAt(path).Count, 0);
    EXPECT_EQ(TableAt(path).Names, (Values{"KEY", "MARK"}));
    EXPECT_EQ(bar.Maximum, 4);
    EXPECT_EQ(bar.Shown, UpTo(0));
}

TEST_F(SortTablesTest, CleanedKeyIsCapitalsAndDigitsAndTheRecordMovesToItsPlace) {
    const std::string path = GivenKeys({"B", "ab-1 2", "AA"});

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(Keys(path), (Values{"AA", "AB12", "B"}));
    EXPECT_EQ(Marks(path), (Values{"3", "2", "1"}));
}

TEST_F(SortTablesTest, KeyOfNothingButIllegalCharactersBecomesEmptyAndComesFirst) {
    const std::string path = GivenKeys({"A", "-_ !"});

    SortItemFile(path, Cleaning, Nobody);

    EXPECT_EQ(Keys(path), (Values{"", "A"}));
    EXPECT_EQ(Marks(path), (Values{"2", "1"}));
}

TEST_F(SortTablesTest, KeysThatAreNotToBeCleanedStayAsTheyAreTrimmed) {
    const std::string path = GivenKeys({"  ab-1 2 ", "-_ !"});

    SortCustFile(path, {.RebuildIndex = true, .SortContents = true}, Nobody);

    EXPECT_EQ(TableAt(path).Rows[0][0], "-_ !        ");
    EXPECT_EQ(TableAt(path).Rows[1][0], "ab-1 2      ");
}

TEST_F(SortTablesTest, CleaningLeavesEveryFieldButTheKey) {
    const std::string path = GivenFile(
        "T.DBF", TableMaker({{"KEY", 'C', 4}, {"NAME", 'C', 10}}).Row({"a-b", " o'Neil & "}).Bytes());

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(TableAt(path).Rows[0], (Values{"AB  ", "o'Neil &  "}));
}

TEST_F(SortTablesTest, CleanedKeysThatHaveBecomeEqualKeepTheirOrder) {
    const std::string path = GivenKeys({"a.b", "AB", "a b", "A"});

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(Keys(path), (Values{"A", "AB", "AB", "AB"}));
    EXPECT_EQ(Marks(path), (Values{"4", "1", "2", "3"}));
}

TEST_F(SortTablesTest, SalesTaxAndLinksKeepThePunctuationOfTheirKeysInEveryRun) {
    std::string path = GivenKeys({"tx-1.5", "a/b"});
    SortSTaxFile(path, Cleaning, Nobody);
    EXPECT_EQ(Keys(path), (Values{"a/b", "tx-1.5"}));

    path = GivenKeys({"tx-1.5", "a/b"});
    SortLinkFile(path);
    EXPECT_EQ(Keys(path), (Values{"a/b", "tx-1.5"}));
}

TEST_F(SortTablesTest, RecordsMarkedAsDeletedComeBack) {
    const std::string path =
        GivenFile("T.DBF", TableMaker({{"KEY", 'C', 4}}).Row({"b"}).Row({"a"}, '*').Bytes());

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(Keys(path), (Values{"a", "b"}));
    EXPECT_EQ(TableAt(path).Flags, "  ");
}

TEST_F(SortTablesTest, ValuesAreWrittenAnewAlsoInATableThatIsInOrder) {
    const std::string path =
        GivenFile("T.DBF", TableMaker({{"KEY", 'C', 4}, {"NUM", 'N', 4, 0}, {"DAY", 'D', 8}})
                               .Row({"a", "many", "12/31/25"})
                               .Row({"b", "  7", ""})
                               .Row({"c", "", "20261115"})
                               .Bytes());

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(
        TableAt(path).Rows,
        (Grid{{"a   ", "0   ", "20251231"}, {"b   ", "7   ", "        "}, {"c   ", "0   ", "20261115"}}));
}

TEST_F(SortTablesTest, NumbersAsKeysAreSortedAsTextsAsTheyStoodAndBlankOnesBecomeZeros) {
    const std::string path = GivenFile(
        "T.DBF",
        TableMaker({{"NUM", 'N', 5, 0}}).Row({"10"}).Row({"  9"}).Row({"-5"}).Row({""}).Row({"x"}).Bytes());

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(Keys(path), (Values{"0", "-5", "10", "9", "0"}));
}

TEST_F(SortTablesTest, CleanedNumberLosesItsSignAndPoint) {
    const std::string path =
        GivenFile("T.DBF", TableMaker({{"NUM", 'N', 5, 1}}).Row({"-1.5"}).Row({"..."}).Row({"12"}).Bytes());

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(Keys(path), (Values{"0", "12", "15"}));
}

TEST_F(SortTablesTest, TableWithoutFieldsKeepsItsRecords) {
    const std::string path =
        GivenFile("T.DBF", TableMaker({}).Slack(3).RawRow("xyz", ' ').RawRow("uvw", '*').Bytes());

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(TableAt(path).Count, 2);
}

TEST_F(SortTablesTest, BarCountsWhatIsReadAndWritten) {
    const auto shown = [&](void (*sort)(std::string_view, const SortOptions&, Progress&)) {
        Bar bar;
        sort(GivenKeys({"b", "a", "c"}), {}, bar);
        EXPECT_EQ(bar.Maximum, 10);
        EXPECT_EQ(bar.Shown, UpTo(6));
        return bar.Labels;
    };

    EXPECT_EQ(shown(SortCustFile), Values{"Sorting Customer Table, please wait..."});
    EXPECT_EQ(shown(SortItemFile), Values{"Sorting Item Table, please wait..."});
    EXPECT_EQ(shown(SortSTaxFile), Values{"Sorting Sales Tax table, please wait..."});
}

TEST_F(SortTablesTest, TableThatIsInOrderIsNotWrittenAgain) {
    const std::string path = GivenKeys({"b", "a", "-", "", "B"});
    SortCustFile(path, Cleaning, Nobody);
    const std::string once = Bytes(path);
    FaultyDisk full(1);
    Global.TheDisk = &full;

    SortCustFile(path, Cleaning, Nobody);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(full.Calls(), 0);
    EXPECT_EQ(Bytes(path), once);
}

TEST_F(SortTablesTest, TableInOrderThatEndsAsOtherProgramsWriteItIsWrittenAnew) {
    const std::string path = GivenKeys({"a", "b"});

    SortCustFile(path, {}, Nobody);

    EXPECT_EQ(TableAt(path).Behind, " ");
}

TEST_F(SortTablesTest, FullDiskLeavesTheTableAsItWas) {
    const std::string path = GivenKeys({"b", "a"});
    const std::string before = Bytes(path);
    FaultyDisk counting;
    Global.TheDisk = &counting;
    SortCustFile(path, {}, Nobody);
    ASSERT_GE(counting.Calls(), 4) << "makes, writes, flushes and renames its work file";

    for (int call = 1; call <= counting.Calls(); ++call) {
        GivenFile("T.DBF", before);
        FaultyDisk disk(call);
        Global.TheDisk = &disk;

        EXPECT_EQ(FailureOf([&] { SortCustFile(path, {}, Nobody); }).Number, 61);

        EXPECT_EQ(Bytes(path), before) << "call " << call;
        EXPECT_EQ(Global.Files.Count(), 0);
    }
    Global.TheDisk = &NativeDisk();
}

TEST_F(SortTablesTest, TableThatIsNotThereIsAFailure) {
    EXPECT_EQ(FailureNumber([&] { SortCustFile(Folder() + "none.dbf", {}, Nobody); }), 53);
    EXPECT_FALSE(Exists(Folder() + "none.dbf"));
}

TEST_F(SortTablesTest, RubbishIsSortedOrRefusedAndThenLeft) {
    TableMaker good({{"C_CODE", 'C', 10}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}});
    for (int k = 0; k < 6; ++k)
        good.Row({"C" + std::to_string(k * 5 % 6), std::to_string(k * 3), "20260101"}, " *"[k % 2]);
    for (const std::string& content : Rubbish(good.Bytes())) {
        const std::string path = GivenFile("T.DBF", content);
        bool sorted = false;
        OnlyRunTimeFailures([&] {
            SortItemFile(path, Cleaning, Nobody);
            sorted = true;
        });
        if (!sorted) {
            EXPECT_EQ(Bytes(path), content);
        }
        EXPECT_FALSE(Exists(path + ".zuk~"));
    }
}

TEST_F(SortTablesTest, TableOf255FieldsIsSorted) {
    std::vector<TableMaker::Column> columns;
    for (int k = 1; k <= 255; ++k) columns.push_back({"F" + std::to_string(k), 'C', 1});
    const std::string path = GivenFile("T.DBF", TableMaker(columns).Row({"b"}).Row({"a"}).Bytes());

    SortCustFile(path, Cleaning, Nobody);

    EXPECT_EQ(Keys(path), (Values{"A", "B"}));
}

TEST_F(SortTablesTest, SortedTableHasTheBytesAndTheTraceOfTheSortStepByStep) {
    Lots lots{20261115};
    for (int round = 0; round < 60; ++round) {
        auto columns = lots.Columns();
        if (round % 3) columns[0].Length = lots.Below(3); // keys that come more than once
        const std::string before = lots.Table(columns).Bytes();
        const bool clean = round % 2;
        const std::string path = GivenFile("T.DBF", before);
        // The second time the table is in order.
        for (const char* time : {"first", "second"}) {
            const std::string given = Bytes(path);
            TableTrace();
            SortStepByStep(path, clean);
            const std::string expected = Bytes(path);
            const Values steps = TableTrace();
            GivenFile("T.DBF", given);

            SortCustFile(path, {.RemoveSpecial = clean}, Nobody);

            ASSERT_EQ(Bytes(path), UpToTheEnd(expected)) << "round " << round << ", " << time;
            ASSERT_EQ(TableTrace(), steps);
        }
    }
}

// ---- cleaning ----

TEST(CleanKey, LettersBecomeCapitalsAndOnlyLettersAndDigitsStay) {
    EXPECT_EQ(CleanKey("ab-1 2_Z.9/0"), "AB12Z90");
    EXPECT_EQ(CleanKey(""), "");
    EXPECT_EQ(CleanKey("(),;:'\"@[]{}~`^$\x80\xA3"), "");
}

TEST(CleanKey, AccentedLettersAndLigaturesStayAsCapitals) {
    EXPECT_EQ(CleanKey("\xE9\xFC\xF1\xE7\xF8\xE5"), "\xC9\xDC\xD1\xC7\xD8\xC5");
    EXPECT_EQ(CleanKey("\xE6\x9C\xFE\xF0\x9A\xFF"), "\xC6\x8C\xDE\xD0\x8A\x9F");
    EXPECT_EQ(CleanKey("\xDF\x83\xAA\xBA"), "\xDF\x83\xAA\xBA") << "these have no capital";
}

TEST(CleanKey, LetterThatComesBehindZGoes) {
    EXPECT_EQ(CleanKey("a\x9E\x8Ez"), "AZ");
}

TEST(CleanKey, RaisedDigitsStayAndFractionsGo) {
    EXPECT_EQ(CleanKey("m\xB9\xB2\xB3"), "M\xB9\xB2\xB3");
    EXPECT_EQ(CleanKey("\xBC\xBD\xBE"), "");
}

TEST(CleanKey, MicroSignTimesSignAndControlCharactersGo) {
    EXPECT_EQ(CleanKey("\xB5\xD7\xF7\xA0\x81\x7F\t"), "");
    EXPECT_EQ(CleanKey(std::string("a\0b", 3)), "AB");
}

TEST(CleanKey, EveryPairOfCharactersIsCleanedAsByScanningAgainAfterEachCut) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string key{static_cast<char>(first), static_cast<char>(second), 'a'};
            ASSERT_EQ(CleanKey(key), CleanStepByStep(key)) << first << ' ' << second;
        }
    }
}

// ---- the barcode index ----

TEST_F(SortTablesTest, IndexHoldsThePlaceOfEachBarcodeFromZero) {
    GivenItems({{"300", ""}, {"100", ""}, {"200", ""}});
    Bar bar;

    RebuildItemIndex(Folder(), bar);

    EXPECT_EQ(Column(Index(), 1), (Values{"100", "200", "300"}));
    EXPECT_EQ(Column(Index(), 2), (Values{"1", "2", "0"}));
    EXPECT_EQ(bar.Labels, Values{"Rebuilding Index Tables, please wait..."});
    EXPECT_EQ(bar.Maximum, 9);
    EXPECT_EQ(bar.Shown, UpTo(6));
}

TEST_F(SortTablesTest, ItemWithoutABarcodeIsInTheIndexAndComesFirst) {
    GivenItems({{"300", ""}, {"", ""}});

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Column(Index(), 1), (Values{"", "300"}));
    EXPECT_EQ(Column(Index(), 2), (Values{"1", "0"}));
}

TEST_F(SortTablesTest, SecondBarcodesAreNotInTheIndex) {
    GivenItems({{"300", "900"}, {"100", "050"}, {"", "700"}});

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Column(Index(), 1), (Values{"", "100", "300"}));
}

TEST_F(SortTablesTest, EqualBarcodesComeInTheOrderOfTheirItems) {
    GivenItems({{"b", ""}, {"a", ""}, {"B", ""}, {"a", ""}});

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Column(Index(), 2), (Values{"1", "3", "0", "2"}));
}

TEST_F(SortTablesTest, NoItemsMakeAnEmptyIndex) {
    GivenItems({});
    Bar bar;

    RebuildItemIndex(Folder(), bar);

    EXPECT_EQ(TableAt(Index()).Count, 0);
    EXPECT_EQ(bar.Maximum, 0);
}

TEST_F(SortTablesTest, ItemsMarkedAsDeletedHaveTheirPlaceInTheIndexToo) {
    GivenItems({});
    GivenFile("ZUKItem.dbf", EmptyTableOf("ZUKITEM")
                                 .Row(RowOf("ZUKITEM", {{"I_BARCODE", "2"}}), '*')
                                 .Row(RowOf("ZUKITEM", {{"I_BARCODE", "1"}}))
                                 .Bytes());

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Column(Index(), 2), (Values{"1", "0"}));
}

TEST_F(SortTablesTest, ItemTableIsOnlyRead) {
    GivenItems({{"300", ""}, {"100", ""}});
    const std::string before = Bytes(Folder() + "ZUKItem.dbf");

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Bytes(Folder() + "ZUKItem.dbf"), before);
}

TEST_F(SortTablesTest, ItemsWithoutTheBarcodeFieldGiveAnIndexOfEmptyBarcodes) {
    GivenItems({});
    GivenFile("ZUKItem.dbf", TableMaker({{"I_CODE", 'C', 4}}).Row({"b"}).Row({"a"}).Bytes());

    RebuildItemIndex(Folder(), Nobody);

    EXPECT_EQ(Column(Index(), 1), (Values{"", ""}));
    EXPECT_EQ(Column(Index(), 2), (Values{"0", "1"}));
}

TEST_F(SortTablesTest, IndexTableWithTheWrongNumberOfFieldsIsRefusedAndStays) {
    for (const std::vector<TableMaker::Column>& columns :
         {std::vector<TableMaker::Column>{{"BARCODE", 'C', 20}},
          {{"BARCODE", 'C', 20}, {"ROWNUM", 'N', 10}, {"NOTE", 'C', 4}},
          {}}) {
        GivenItems({{"300", ""}});
        GivenFile("ZUKBarin.dbf", TableMaker(columns).Row({"kept"}).Bytes());
        const std::string before = Bytes(Index());

        const FailureSeen failure = FailureOf([&] { RebuildItemIndex(Folder(), Nobody); });

        EXPECT_EQ(failure.Number, 321);
        EXPECT_NE(failure.Words.find("ZUKBarin.dbf"), std::string::npos) << failure.Words;
        EXPECT_EQ(Bytes(Index()), before);
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(SortTablesTest, MissingItemTableLeavesTheIndex) {
    GivenTable(Folder(), "ZUKBARIN", {{"kept", "0"}});

    EXPECT_EQ(FailureNumber([&] { RebuildItemIndex(Folder(), Nobody); }), 53);

    EXPECT_EQ(Column(Index(), 1), Values{"kept"});
}

TEST_F(SortTablesTest, MissingIndexTableIsAFailure) {
    GivenTable(Folder(), "ZUKITEM", {});

    EXPECT_EQ(FailureNumber([&] { RebuildItemIndex(Folder(), Nobody); }), 53);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SortTablesTest, FullDiskLeavesTheIndexAsItWas) {
    GivenItems({{"300", ""}, {"100", ""}});
    const std::string before = Bytes(Index());
    FaultyDisk counting;
    Global.TheDisk = &counting;
    RebuildItemIndex(Folder(), Nobody);
    ASSERT_GE(counting.Calls(), 4);

    for (int call = 1; call <= counting.Calls(); ++call) {
        GivenFile("ZUKBarin.dbf", before);
        FaultyDisk disk(call);
        Global.TheDisk = &disk;

        EXPECT_EQ(FailureOf([&] { RebuildItemIndex(Folder(), Nobody); }).Number, 61);

        EXPECT_EQ(Bytes(Index()), before);
    }
    Global.TheDisk = &NativeDisk();
}

TEST_F(SortTablesTest, IndexOfTheSameItemsIsNotWrittenAgain) {
    GivenItems({{"300", ""}, {"100", ""}});
    RebuildItemIndex(Folder(), Nobody);
    FaultyDisk full(1);
    Global.TheDisk = &full;

    RebuildItemIndex(Folder(), Nobody);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Column(Index(), 1), (Values{"100", "300"}));
}

TEST_F(SortTablesTest, IndexOfTheOfficeIsMadeInTheTablesDirectory) {
    GivenItems({{"300", ""}});
    Global.DBFPath = Folder();
    Bar bar;

    RebuildIndexTables(bar);

    EXPECT_EQ(Column(Index(), 1), Values{"300"});
    EXPECT_EQ(bar.Labels.size(), 1U);
}

TEST_F(SortTablesTest, IndexHasTheBytesAndTheTraceOfTheStepsRecordByRecord) {
    Lots lots{20261116};
    for (int round = 0; round < 60; ++round) {
        auto items = lots.Columns();
        auto& barcode = items[static_cast<std::size_t>(lots.Below(static_cast<int>(items.size())))];
        if (round % 4) barcode.Name = round % 3 ? "I_BARCODE" : "I_BARCODE2";
        barcode.Length = lots.Below(6);
        GivenFile("ZUKItem.dbf", lots.Table(items).Bytes());
        // The fields of the index are found by their own names, as prefixes.
        static const Values Names = {"BARCODE", "ROWNUM", "BAR", "barcode", "ROW", " "};
        std::vector<TableMaker::Column> index;
        for (int k = 0; k < 2; ++k)
            index.push_back(
                {Names[static_cast<std::size_t>(lots.Below(6))], "CND"[lots.Below(3)], lots.Below(12)});
        const std::string before = lots.Table(index).Bytes();
        GivenFile("ZUKBarin.dbf", before);
        TableTrace();
        RebuildStepByStep(Folder());
        const std::string expected = Bytes(Index());
        const Values steps = TableTrace();
        GivenFile("ZUKBarin.dbf", before);

        RebuildItemIndex(Folder(), Nobody);

        ASSERT_EQ(Bytes(Index()), UpToTheEnd(expected)) << "round " << round;
        ASSERT_EQ(TableTrace(), steps);
    }
}

TEST_F(SortTablesTest, RubbishInThePlaceOfEitherTableLosesNothing) {
    GivenItems({{"300", ""}, {"100", "5"}, {"", ""}});
    const std::string items = Bytes(Folder() + "ZUKItem.dbf");
    const std::string index = Bytes(Index());
    const auto rebuild = [&] {
        bool done = false;
        OnlyRunTimeFailures([&] {
            RebuildItemIndex(Folder(), Nobody);
            done = true;
        });
        return done;
    };
    for (const std::string& content : Rubbish(items)) {
        GivenFile("ZUKItem.dbf", content);
        GivenFile("ZUKBarin.dbf", index);
        if (!rebuild()) {
            EXPECT_EQ(Bytes(Index()), index);
        }
        EXPECT_EQ(Bytes(Folder() + "ZUKItem.dbf"), content);
    }
    GivenFile("ZUKItem.dbf", items);
    for (const std::string& content : Rubbish(index)) {
        GivenFile("ZUKBarin.dbf", content);
        if (!rebuild()) {
            EXPECT_EQ(Bytes(Index()), content);
        }
        EXPECT_FALSE(Exists(Index() + ".zuk~"));
    }
}

} // namespace
