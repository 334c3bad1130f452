#include "store/TextBridge.h"

#include "core/Globals.h"
#include "core/TextCompare.h"
#include "store/DBFEdit.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Lots.h"
#include "support/TableMaker.h"
#include "support/TableSteps.h"

#include <fstream>
#include <sstream>

namespace {

using Values = std::vector<std::string>;

const std::string Delimiter = "\xA5";

// The bridge record by record.

BridgeFields WriteTextStepByStep(const std::string& source, const std::string& text) {
    std::ofstream file(text, std::ios::binary);
    DBFEdit table;
    table.FileOpen(source);
    BridgeFields fields;
    for (int k = 1; k <= table.NoFields(); ++k) {
        const std::string name = table.FieldName(static_cast<std::int16_t>(k));
        fields.emplace_back(Trim(name.substr(0, name.find('\0'))));
    }
    table.Go(DBFEdit::First);
    for (std::int32_t record = 1; record <= table.RecordCount; ++record) {
        std::string line;
        for (int k = 1; k <= table.NoFields(); ++k)
            line += std::string(Trim(table.GetData(FieldKey(k)))) + Delimiter;
        file << line << "\r\n";
        table.Go(DBFEdit::Next);
    }
    table.FileClose();
    return fields;
}

void ReadTextStepByStep(const std::string& target, const BridgeFields& fields, const std::string& text) {
    DBFEdit table;
    table.FileOpen(target);
    BeginAppending(table);
    std::ifstream file(text, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        table.Go(DBFEdit::Append);
        Values values;
        for (std::size_t k = 0; k < fields.size(); ++k) {
            const std::size_t end = line.find(Delimiter);
            values.emplace_back(Trim(std::string_view(line).substr(0, end)));
            line = std::string(Trim(std::string_view(line).substr(end + 1)));
        }
        for (std::size_t k = 0; k < fields.size(); ++k) table.WriteData(fields[k], values[k]);
        table.UpDate();
    }
    table.FileClose();
}

class TextBridgeTest : public EngineTest {
protected:
    static constexpr const char* Old = "OLD.DAP";
    static constexpr const char* New = "NEW.DBF";

    std::string Path(const char* name) const { return Folder() + name; }

    std::string GivenTable(const char* name, const std::vector<TableMaker::Column>& columns,
                           const std::vector<Values>& rows) {
        TableMaker maker(columns);
        for (const Values& row : rows) maker.Row(row);
        return GivenFile(name, maker.Bytes());
    }

    /// Old records behind those of the new table.
    void Bridge() {
        NoProgress silent;
        BridgeFields fields;
        DBFtoText(Path(Old), fields, Path("OLD.TXT"));
        TextToDBF(Path(New), fields, Path("OLD.TXT"), silent);
    }

    /// Whether the records of the old table are in the new one, which stays as it is.
    bool HoldsBridged() {
        GivenFile("TRY.DBF", Bytes(Path(New)));
        return AppendMissing(Path("TRY.DBF"), Path(Old)) == 0;
    }

    TableContent Table() const { return TableContent(Bytes(Path(New))); }
};

class RandomBridges : public TextBridgeTest, public ::testing::WithParamInterface<unsigned> {};

} // namespace

TEST_P(RandomBridges, LeaveTheTextTheTableAndTheTraceThatTheStepsLeave) {
    Lots lots(GetParam());
    for (int k = 0; k < 20; ++k) {
        const std::string source = GivenFile(Old, lots.Table(lots.Columns()).Bytes());
        const std::string before = lots.Table(lots.Columns()).Bytes();
        const std::string target = GivenFile(New, before);
        Global.Events.Clear();
        const BridgeFields expectedFields = WriteTextStepByStep(source, Path("STEPS.TXT"));
        ReadTextStepByStep(target, expectedFields, Path("STEPS.TXT"));
        const Values expectedTrace = TableTrace();
        const std::string expected = UpToTheEnd(Bytes(target));

        GivenFile(New, before);
        BridgeFields fields;
        NoProgress silent;
        DBFtoText(source, fields, Path("OLD.TXT"));
        ASSERT_EQ(Bytes(Path("OLD.TXT")), Bytes(Path("STEPS.TXT")));
        TextToDBF(target, fields, Path("OLD.TXT"), silent);

        ASSERT_EQ(fields, expectedFields);
        ASSERT_EQ(Bytes(target), expected);
        ASSERT_EQ(TableTrace(), expectedTrace);
        ASSERT_EQ(Global.Files.Count(), 0);
        ASSERT_EQ(AppendMissing(target, source), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomBridges, ::testing::Range(1u, 5u));

TEST_F(TextBridgeTest, ALineIsEachValueTrimmedAndByte165BehindEachOne) {
    GivenTable(Old, {{"CODE", 'C', 6}, {"NAME", 'C', 8}, {"QTY", 'N', 4}},
               {{"  A1", "  Acme", "7"}, {"", "say \"hi\"", ""}});

    BridgeFields fields;
    DBFtoText(Path(Old), fields, Path("OLD.TXT"));

    EXPECT_EQ(fields, (BridgeFields{"CODE", "NAME", "QTY"}));
    EXPECT_EQ(Bytes(Path("OLD.TXT")), "A1\xA5"
                                      "Acme\xA5"
                                      "7\xA5\r\n"
                                      "\xA5say \"hi\"\xA5\xA5\r\n");
}

TEST_F(TextBridgeTest, TheOldRecordsComeBehindTheNewOnes) {
    GivenTable(Old, {{"CODE", 'C', 4}}, {{"O1"}, {"O2"}});
    GivenTable(New, {{"CODE", 'C', 4}}, {{"N1"}, {"N2"}});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"N1  "}, {"N2  "}, {"O1  "}, {"O2  "}}));
    EXPECT_FALSE(Exists(Path("OLD.TXT")));
}

TEST_F(TextBridgeTest, RecordsMarkedAsDeletedComeBackAsLiveOnesAndThoseOfTheTableStayMarked) {
    GivenFile(Old, TableMaker({{"CODE", 'C', 2}}).Row({"O1"}, '*').Row({"O2"}).Bytes());
    GivenFile(New, TableMaker({{"CODE", 'C', 2}}).Row({"N1"}, '*').Bytes());

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"N1"}, {"O1"}, {"O2"}}));
    EXPECT_EQ(Table().Flags, "*  ");
}

TEST_F(TextBridgeTest, AnEmptySourceGivesAnEmptyTextThatStaysAndTheTableKeepsItsRecords) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {});
    GivenTable(New, {{"CODE", 'C', 2}}, {{"N1"}});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"N1"}}));
    EXPECT_EQ(Table().Behind, " ");
    EXPECT_EQ(Bytes(Path("OLD.TXT")), "");
}

TEST_F(TextBridgeTest, AnEmptyTableTakesAllOldRecords) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"O1"}});
    GivenTable(New, {{"CODE", 'C', 2}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1"}}));
}

TEST_F(TextBridgeTest, ANewFieldStaysBlankInTheOldRecordsAndFilledInTheNewOnes) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"O1"}});
    GivenTable(New, {{"CODE", 'C', 2}, {"NOTE", 'C', 4}, {"QTY", 'N', 3}}, {{"N1", "mine", "5"}});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"N1", "mine", "5  "}, {"O1", "    ", "   "}}));
}

TEST_F(TextBridgeTest, AFieldThatTheTableDoesNotHaveVanishesWithoutAWord) {
    GivenTable(Old, {{"GONE", 'C', 4}, {"CODE", 'C', 2}}, {{"old", "O1"}});
    GivenTable(New, {{"CODE", 'C', 2}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1"}}));
}

TEST_F(TextBridgeTest, AFieldWhoseNameDiffersInCaseAloneIsTheSame) {
    GivenTable(Old, {{"code", 'C', 2}}, {{"O1"}});
    GivenTable(New, {{"CODE", 'C', 2}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1"}}));
}

TEST_F(TextBridgeTest, FieldsInAnotherOrderAndOfOtherWidthsAreMatchedByName) {
    GivenTable(Old, {{"NAME", 'C', 8}, {"CODE", 'C', 2}}, {{"Acme Ltd", "O1"}});
    GivenTable(New, {{"CODE", 'C', 4}, {"NAME", 'C', 4}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1  ", "Acme"}}));
}

TEST_F(TextBridgeTest, ANumberFieldTakesZeroForWhatIsNoNumberAndADateFieldEightDigits) {
    GivenTable(Old, {{"QTY", 'C', 6}, {"DAY", 'C', 10}}, {{"many", "2026-11-15"}, {"", ""}});
    GivenTable(New, {{"QTY", 'N', 3}, {"DAY", 'D', 8}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"0  ", "20261115"}, {"0  ", "        "}}));
}

TEST_F(TextBridgeTest, AMemoOrBinaryFieldTravelsAsTheNumberOfItsBlockAndNoMore) {
    const std::vector<TableMaker::Column> columns = {{"SIGN", 'M', 10}, {"INK", 'B', 10}, {"PIC", 'G', 10}};
    GivenTable(Old, columns, {{"        12", "       345", "         6"}, {}});
    GivenTable(New, columns, {});
    const std::string memo = GivenFile("OLD.DBT", "the signatures themselves");

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"12        ", "345       ", "6         "},
                                                 {"          ", "          ", "          "}}));
    EXPECT_EQ(Bytes(memo), "the signatures themselves");
    EXPECT_FALSE(Exists(Path("NEW.DBT")));
}

TEST_F(TextBridgeTest, AValueLosesTheBlanksAtItsEndsAndKeepsThoseInside) {
    GivenTable(Old, {{"NAME", 'C', 12}}, {{"  Acme  Ltd "}, {"            "}, {" x"}});
    GivenTable(New, {{"NAME", 'C', 12}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"Acme  Ltd   "}, {"            "}, {"x           "}}));
}

TEST_F(TextBridgeTest, Byte165InAValueMovesTheValuesBehindItOfItsRecordAlone) {
    GivenTable(Old, {{"A", 'C', 3}, {"B", 'C', 3}, {"C", 'C', 3}}, {{"x\xA5y", "b", "c"}, {"1", "2", "3"}});
    GivenTable(New, {{"A", 'C', 3}, {"B", 'C', 3}, {"C", 'C', 3}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"x  ", "y  ", "b  "}, {"1  ", "2  ", "3  "}}));
}

TEST_F(TextBridgeTest, ALineEndInAValueComesBackAsBlanksAndMakesNoSecondRecord) {
    GivenTable(Old, {{"A", 'C', 9}, {"B", 'C', 4}}, {{"one\r\ntwo", "\n"}, {"\r", "b"}, {"three", "end\n"}});
    GivenTable(New, {{"A", 'C', 9}, {"B", 'C', 4}}, {});

    Bridge();

    EXPECT_EQ(Table().Rows,
              (std::vector<Values>{{"one  two ", "    "}, {"         ", "b   "}, {"three    ", "end "}}));
}

TEST_F(TextBridgeTest, NulsQuotesCommasAndEveryOtherByteStay) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\r' && byte != '\n' && byte != ' ' && byte != 0xA5) all += static_cast<char>(byte);
    }
    const Values row = {all, std::string("a\0b", 3), "\"x\",y\x1A"};
    const std::vector<TableMaker::Column> columns = {{"ALL", 'C', 251}, {"NUL", 'C', 3}, {"QUOTE", 'C', 6}};
    GivenTable(Old, columns, {row});
    GivenTable(New, columns, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{row}));
}

TEST_F(TextBridgeTest, TheWidestRecordThatATableCanHaveIsOneLine) {
    std::vector<TableMaker::Column> columns;
    Values row;
    for (int k = 0; k < 128; ++k) {
        columns.push_back({"F" + std::to_string(1000 + k), 'C', 255});
        row.push_back(std::string(255, static_cast<char>('a' + k % 26)));
    }
    GivenTable(Old, columns, {row, row});
    GivenTable(New, columns, {});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{row, row}));
}

TEST_F(TextBridgeTest, ATableWithoutFieldsKeepsItsNumberOfRecords) {
    GivenTable(Old, {}, {{}, {}});
    GivenTable(New, {{"CODE", 'C', 2}}, {{"N1"}});

    Bridge();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"N1"}, {"  "}, {"  "}}));
}

TEST_F(TextBridgeTest, ALineWithTooFewValuesIsToldAndChangesNothing) {
    GivenTable(New, {{"A", 'C', 3}, {"B", 'C', 3}}, {{"n", "n"}});
    GivenFile("OLD.TXT", "1\xA5"
                         "2\xA5\r\n"
                         "only one\xA5\r\n");
    const std::string table = Bytes(Path(New));
    const std::string text = Bytes(Path("OLD.TXT"));
    NoProgress silent;

    const FailureSeen seen = FailureOf([&] { TextToDBF(Path(New), {"A", "B"}, Path("OLD.TXT"), silent); });

    EXPECT_EQ(seen.Number, 321);
    EXPECT_NE(seen.Words.find("OLD.TXT, line 2: only one"), std::string::npos) << seen.Words;
    EXPECT_EQ(Bytes(Path(New)), table);
    EXPECT_EQ(Bytes(Path("OLD.TXT")), text);
}

TEST_F(TextBridgeTest, WhereverTheDiskFailsTheTableIsTheOldOneOrTheMergedOne) {
    GivenTable(Old, {{"CODE", 'C', 4}}, {{"O1"}, {"O2"}});
    GivenTable(New, {{"CODE", 'C', 4}}, {{"N1"}});
    const std::string before = Bytes(Path(New));
    int failAt = 1;
    for (bool failed = true; failed; ++failAt) {
        GivenFile(New, before);
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        failed = FailureNumber([&] { Bridge(); }) != 0;
        Global.TheDisk = &NativeDisk();
        const bool merged = HoldsBridged();

        EXPECT_TRUE(failed ? merged || Bytes(Path(New)) == before : merged) << failAt;
        EXPECT_EQ(Global.Files.Count(), 0);
    }
    EXPECT_GT(failAt, 3);
}

TEST_F(TextBridgeTest, TheBarGoesFromTheFirstLineToTheLast) {
    struct Bar final : Progress {
        void Begin(const Text&, std::int64_t maximum) override { Maximum = maximum; }
        void Show(std::int64_t value) override { Shown.push_back(value); }
        std::int64_t Maximum = 0;
        std::vector<std::int64_t> Shown;
    } bar;
    GivenTable(New, {{"A", 'C', 1}}, {});
    GivenFile("OLD.TXT", "1\xA5\r\n2\xA5\r\n3\xA5\r\n");

    TextToDBF(Path(New), {"A"}, Path("OLD.TXT"), bar);

    EXPECT_EQ(bar.Maximum, 3);
    EXPECT_EQ(bar.Shown, (std::vector<std::int64_t>{1, 2, 3}));
}

// ---- has it been done already? ----

TEST_F(TextBridgeTest, ATableThatWasMergedHoldsTheOldRecordsAsTheBridgeWritesThem) {
    // Trimmed, converted, cut, and a field less.
    GivenTable(Old, {{"CODE", 'C', 6}, {"QTY", 'C', 4}, {"GONE", 'C', 2}}, {{"  long1", "many", "x"}});
    GivenTable(New, {{"CODE", 'C', 4}, {"QTY", 'N', 4}, {"MORE", 'C', 1}}, {{"N1", "1", "y"}});
    EXPECT_FALSE(HoldsBridged());

    Bridge();

    EXPECT_TRUE(HoldsBridged());
}

TEST_F(TextBridgeTest, ATableThatIsShorterOrLacksOneOfTheRecordsWasNotMerged) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"O1"}, {"O2"}, {"O2"}});
    for (const std::vector<Values>& rows : {std::vector<Values>{},
                                            {{"O2"}, {"O2"}},
                                            {{"O1"}, {"O2"}, {"N1"}},
                                            {{"O1"}, {"O2"}, {"O1"}},
                                            {{"N1"}, {"O1"}, {"O2"}, {"OX"}}}) {
        GivenTable(New, {{"CODE", 'C', 2}}, rows);
        EXPECT_FALSE(HoldsBridged()) << rows.size();
    }
}

TEST_F(TextBridgeTest, AMergedTableThatWasSortedSinceCountsAsMerged) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"O1"}, {"O2"}, {"O2"}});
    for (const std::vector<Values>& rows :
         {std::vector<Values>{{"O2"}, {"O2"}, {"O1"}}, {{"O2"}, {"N1"}, {"O1"}, {"O2"}, {"N2"}}}) {
        GivenTable(New, {{"CODE", 'C', 2}}, rows);
        EXPECT_TRUE(HoldsBridged()) << rows.size();
    }
}

TEST_F(TextBridgeTest, ATableThatWasNeverReplacedAndSortedSinceCountsAsMerged) {
    // Its values have blanks before them still, and a mark of deletion.
    const std::vector<TableMaker::Column> columns = {{"CODE", 'C', 4}, {"QTY", 'N', 3}};
    GivenFile(Old, TableMaker(columns).Row({" O2", "  7"}).Row({" O1", ""}, '*').Bytes());
    GivenFile(New, TableMaker(columns).Row({" O1", ""}).Row({" O2", "  7"}).Bytes());

    EXPECT_TRUE(HoldsBridged());
}

TEST_F(TextBridgeTest, NothingToMergeCountsAsMerged) {
    for (const char* field : {"CODE", "992"}) { // a number names a field by its place
        GivenTable(Old, {{field, 'C', 2}}, {});
        GivenTable(New, {{"OTHER", 'C', 2}}, {{"N1"}});

        EXPECT_TRUE(HoldsBridged()) << field;
    }
}

TEST_F(TextBridgeTest, TablesHoldTheSameWhenFieldsRecordsAndMarksAgree) {
    const std::vector<TableMaker::Column> columns = {{"CODE", 'C', 2}, {"QTY", 'N', 3}};
    const auto with = [&](const std::string& bytes) {
        GivenFile(New, bytes);
        return HoldTheSame(Path(New), Path(Old));
    };
    GivenFile(Old, TableMaker(columns).Row({"O1", "1"}).Bytes());

    EXPECT_TRUE(with(TableMaker(columns)
                         .Row({"O1", "1"})
                         .End(" ")
                         .Preamble("\x03\x01\x01\x01", std::string(20, 'x'))
                         .Bytes()));
    EXPECT_FALSE(with(TableMaker(columns).Row({"O1", "2"}).Bytes()));
    EXPECT_FALSE(with(TableMaker(columns).Row({"O1", "1"}, '*').Bytes()));
    EXPECT_FALSE(with(TableMaker(columns).Row({"O1", "1"}).Row({"O1", "1"}).Bytes()));
    EXPECT_FALSE(with(TableMaker({{"CODE", 'C', 2}, {"QTX", 'N', 3}}).Row({"O1", "1"}).Bytes()));
    EXPECT_FALSE(with(TableMaker({{"CODE", 'C', 2}, {"QTY", 'C', 3}}).Row({"O1", "1"}).Bytes()));
    EXPECT_FALSE(with(TableMaker({{"CODE", 'C', 3}, {"QTY", 'N', 2}}).Row({"O1", "1"}).Bytes()));
    EXPECT_FALSE(with(TableMaker({{"CODE", 'C', 5}}).Row({"O11"}).Bytes()));
    EXPECT_FALSE(with(TableMaker({{"CODE", 'C', 2}, {"QTY", 'N', 3, 1}}).Row({"O1", "1"}).Bytes()));
}

// ---- whole tables into another structure ----

namespace {

/// What the transfer of one table does, record by record.
void CarryStepByStep(const std::string& source, const std::string& target, const std::string& text) {
    DBFEdit table;
    EmptyStepByStep(table, target);
    const BridgeFields old = WriteTextStepByStep(source, text);
    table.FileOpen(target);
    BridgeFields now;
    for (int k = 1; k <= table.NoFields(); ++k) {
        const std::string name = table.FieldName(static_cast<std::int16_t>(k));
        now.emplace_back(Trim(name.substr(0, name.find('\0'))));
    }
    BeginAppending(table);
    std::ifstream file(text, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        table.Go(DBFEdit::Append);
        Values values;
        for (std::size_t k = 0; k < old.size(); ++k) {
            const std::size_t end = line.find(Delimiter);
            values.emplace_back(Trim(std::string_view(line).substr(0, end)));
            line = std::string(Trim(std::string_view(line).substr(end + 1)));
        }
        const bool oldIsOuter = old.size() <= now.size();
        for (std::size_t i = 0; i < std::min(old.size(), now.size()); ++i) {
            for (std::size_t j = 0; j < std::max(old.size(), now.size()); ++j) {
                const std::size_t from = oldIsOuter ? i : j;
                const std::size_t to = oldIsOuter ? j : i;
                if (SameText(old[from], now[to])) table.WriteData(now[to], values[from]);
            }
        }
        table.UpDate();
    }
    table.FileClose();
}

class NewStructureTest : public TextBridgeTest {
protected:
    /// Old records into the fields that the new table has.
    void Carry() {
        BridgeFields fields;
        NoProgress silent;
        const TableLayout structure = TableScan(Path(New)).Layout();
        OldDBFtoText(Path(Old), fields, Path("DBFCOPY.TXT"), silent);
        TextToNewDBF(Path(New), structure, fields, Path("DBFCOPY.TXT"), silent);
    }
};

class RandomStructures : public NewStructureTest, public ::testing::WithParamInterface<unsigned> {};

} // namespace

TEST_P(RandomStructures, LeaveTheTableThatTheStepsLeave) {
    Lots lots(GetParam());
    for (int k = 0; k < 20; ++k) {
        auto columns = lots.Columns();
        const std::string source = GivenFile(Old, lots.Table(columns).Bytes());
        if (lots.Below(2)) { // a table with some of the fields, in another order, and new ones
            for (auto& column : lots.Columns())
                columns.insert(columns.begin() + lots.Below(static_cast<int>(columns.size()) + 1), column);
            columns.resize(std::min<std::size_t>(columns.size(), 60));
        }
        const std::string before = lots.Table(columns).Bytes();
        const std::string target = GivenFile(New, before);
        CarryStepByStep(source, target, Path("STEPS.TXT"));
        const std::string expected = UpToTheEnd(Bytes(target));

        GivenFile(New, before);
        Carry();

        ASSERT_EQ(Bytes(target), expected);
        ASSERT_FALSE(Exists(Path("DBFCOPY.TXT")));
        ASSERT_EQ(Global.Files.Count(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomStructures, ::testing::Range(1u, 5u));

TEST_F(NewStructureTest, RowsOfTheNewTableItselfGoAndTheOldRecordsTakeTheirPlace) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"O1"}, {"O2"}});
    GivenTable(New, {{"CODE", 'C', 4}}, {{"demo"}, {"demo"}, {"demo"}});

    Carry();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1  "}, {"O2  "}}));
}

TEST_F(NewStructureTest, AnEmptyTableEmptiesTheNewOneAndItsTextGoes) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {});
    GivenTable(New, {{"CODE", 'C', 4}}, {{"demo"}});

    Carry();

    EXPECT_EQ(Table().Count, 0);
    EXPECT_FALSE(Exists(Path("DBFCOPY.TXT")));
}

TEST_F(NewStructureTest, WiderNewDroppedAndMovedFieldsAreMatchedByTheirWholeNames) {
    GivenTable(Old, {{"CODE", 'C', 2}, {"GONE", 'C', 3}, {"name", 'C', 6}, {"QTY", 'N', 3}},
               {{"A1", "old", " Acme ", "12"}, {"B2", "x", "", ""}});
    GivenTable(New, {{"NAME", 'C', 8}, {"NOTE", 'C', 2}, {"CODE", 'C', 3}, {"QTY", 'N', 5}}, {});

    Carry();

    EXPECT_EQ(Table().Rows,
              (std::vector<Values>{{"Acme    ", "  ", "A1 ", "12   "}, {"        ", "  ", "B2 ", "0    "}}));
}

TEST_F(NewStructureTest, AWholeNameIsMatchedAndItsValueGoesToTheFirstFieldThatBeginsSo) {
    GivenTable(Old, {{"CODE", 'C', 2}}, {{"A1"}});
    GivenTable(New, {{"CODE2", 'C', 2}, {"CODE", 'C', 2}}, {});

    Carry();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"A1", "  "}}));
}

TEST_F(NewStructureTest, AMemoIsTheNumberOfItsBlockAndByte165MovesTheValuesBehindIt) {
    GivenTable(Old, {{"A", 'C', 3}, {"B", 'C', 3}, {"M", 'M', 10}}, {{"x\xA5y", "b", "        12"}});
    GivenTable(New, {{"A", 'C', 4}, {"B", 'C', 4}, {"M", 'M', 10}}, {});

    Carry();

    EXPECT_EQ(Table().Rows, (std::vector<Values>{{"x   ", "y   ", "b         "}}));
}

TEST_F(NewStructureTest, WhereverTheDiskFailsTheNewTableIsAsItWasOrWhole) {
    GivenTable(Old, {{"CODE", 'C', 4}}, {{"O1"}, {"O2"}});
    const std::string before = GivenTable(New, {{"CODE", 'C', 5}}, {{"demo"}});
    const std::string bytes = Bytes(before);
    int failAt = 1;
    for (bool failed = true; failed; ++failAt) {
        GivenFile(New, bytes);
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        failed = FailureNumber([&] { Carry(); }) != 0;
        Global.TheDisk = &NativeDisk();
        if (Bytes(Path(New)) == bytes && failed) continue;
        EXPECT_EQ(Table().Rows, (std::vector<Values>{{"O1   "}, {"O2   "}})) << failAt;
    }
    EXPECT_GT(failAt, 3);
}
