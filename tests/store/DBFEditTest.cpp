#include "store/DBFEdit.h"

#include "core/TextFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/TableMaker.h"

namespace {

using Values = std::vector<std::string>;

class DBFEditTest : public EngineTest {
protected:
    static TableMaker Customers() {
        return TableMaker(
            {{"C_CODE", 'C', 6}, {"C_NAME", 'C', 10}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}});
    }

    static TableMaker ThreeCustomers() {
        return Customers()
            .Row({"A1", "Acme", "12.5", "20260115"})
            .Row({"B2", "Bolt", "", "20260116"})
            .Row({"C3", "Caf\xE9", "-3", ""});
    }

    /// Opens a table of these bytes in `table`.
    void GivenTable(const TableMaker& maker) {
        path = GivenFile("ZUKCUST.DBF", maker.Bytes());
        table.FileOpen(path);
    }

    TableContent Content() { return TableContent(Bytes(path)); }

    std::string path;
    DBFEdit table;
};

} // namespace

TEST_F(DBFEditTest, OpeningReadsTheLayoutAndNoRecord) {
    GivenTable(ThreeCustomers());

    EXPECT_EQ(table.RecordCount, 3);
    EXPECT_EQ(table.RecordLength, 33);
    EXPECT_EQ(table.NoFields(), 4);
    EXPECT_EQ(table.FieldName(2), std::string("C_NAME\0\0\0\0\0", 11));
    EXPECT_EQ(table.FieldLength(2), "10");
    EXPECT_EQ(table.FieldLength(0), "2");
    EXPECT_EQ(table.GetFieldType(4), "D");
    EXPECT_EQ(table.RecordNumber(), 0);
    EXPECT_EQ(table.GetData("C_CODE"), std::string(6, ' '));
}

TEST_F(DBFEditTest, FieldIndexOutsideTheTableIsASubscriptFailure) {
    GivenTable(ThreeCustomers());

    EXPECT_EQ(table.FieldName(0), "");
    EXPECT_EQ(FailureOf([&] { table.FieldName(5); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { table.FieldLength(-1); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { table.GetFieldType(5); }).Number, 9);
}

TEST_F(DBFEditTest, MissingTableIsFileNotFound) {
    EXPECT_EQ(FailureOf([&] { table.FileOpen(Folder() + "NONE.DBF"); }).Number, 53);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(DBFEditTest, TableIsFoundWhateverTheCaseOfItsName) {
    GivenFile("ZUKCust.dbf", ThreeCustomers().Bytes());

    table.FileOpen(Folder() + "ZUKCUST.DBF");

    EXPECT_EQ(table.RecordCount, 3);
}

TEST_F(DBFEditTest, RefusedTableLeavesNoFileOpenAndTheObjectAsItWas) {
    GivenTable(ThreeCustomers());
    table.Go(2);
    const std::string bad = GivenFile("BAD.DBF", ThreeCustomers().ClaimCount(4).Bytes());

    EXPECT_EQ(FailureOf([&] { table.FileOpen(bad); }).Number, 321);

    EXPECT_EQ(Global.Files.Count(), 1);
    table.Go(DBFEdit::Next);
    EXPECT_EQ(table.GetData("C_CODE"), "C3    ");
}

TEST_F(DBFEditTest, RecordNumberStaysThroughAnOpen) {
    GivenTable(ThreeCustomers());
    table.Go(2);
    table.FileClose();

    table.FileOpen(path);

    EXPECT_EQ(table.RecordNumber(), 2);
    EXPECT_EQ(table.GetData("C_CODE"), std::string(6, ' '));
}

TEST_F(DBFEditTest, TargetsOutsideTheTableChangeNothing) {
    GivenTable(ThreeCustomers());
    table.Go(2);

    for (const int target : {0, 4, -6, -1000, 0x7FFFFFFF}) {
        table.Go(target);

        EXPECT_EQ(table.RecordNumber(), 2) << target;
        EXPECT_EQ(table.GetData("C_CODE"), "B2    ") << target;
    }
}

TEST_F(DBFEditTest, FirstAndLastMoveAndRead) {
    GivenTable(ThreeCustomers());

    table.Go(DBFEdit::Last);
    EXPECT_EQ(table.RecordNumber(), 3);
    EXPECT_EQ(table.GetData("C_NAME"), "Caf\xE9      ");

    table.Go(DBFEdit::First);
    EXPECT_EQ(table.RecordNumber(), 1);
    EXPECT_EQ(table.GetData("C_NAME"), "Acme      ");
}

TEST_F(DBFEditTest, LastOfAnEmptyTableIsRecordZeroAndReadsAsBlanks) {
    GivenTable(Customers());

    table.Go(DBFEdit::Last);

    EXPECT_EQ(table.RecordNumber(), 0);
    for (int k = 1; k <= 4; ++k) {
        EXPECT_EQ(
            table.GetData(k),
            std::string(static_cast<std::size_t>(std::stoi(table.FieldLength(static_cast<std::int16_t>(k)))),
                        ' '));
    }
}

TEST_F(DBFEditTest, FirstOfAnEmptyTableIsRecordOneAndReadsAsBlanks) {
    GivenTable(Customers());

    table.Go(DBFEdit::First);

    EXPECT_EQ(table.RecordNumber(), 1);
    EXPECT_EQ(table.GetData("C_NAME"), std::string(10, ' '));
}

TEST_F(DBFEditTest, NextOnTheLastRecordReadsItAgain) {
    GivenTable(ThreeCustomers());
    table.Go(3);
    table.WriteData("C_CODE", "ZZ");

    table.Go(DBFEdit::Next);

    EXPECT_EQ(table.RecordNumber(), 3);
    EXPECT_EQ(table.GetData("C_CODE"), "C3    ");
}

TEST_F(DBFEditTest, PreviousOnTheFirstRecordReadsItAgain) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    table.WriteData("C_CODE", "ZZ");

    table.Go(DBFEdit::Previous);

    EXPECT_EQ(table.RecordNumber(), 1);
    EXPECT_EQ(table.GetData("C_CODE"), "A1    ");
}

TEST_F(DBFEditTest, PreviousAndNextMoveByOne) {
    GivenTable(ThreeCustomers());
    table.Go(2);

    table.Go(DBFEdit::Next);
    EXPECT_EQ(table.GetData("C_CODE"), "C3    ");

    table.Go(DBFEdit::Previous);
    EXPECT_EQ(table.GetData("C_CODE"), "B2    ");
}

TEST_F(DBFEditTest, KeyThatBeginsNoNameGivesTheEmptyValue) {
    GivenTable(ThreeCustomers());
    table.Go(1);

    EXPECT_EQ(table.GetData("C_CODES"), "");
    EXPECT_EQ(table.GetData(0), "");
    EXPECT_EQ(FailureOf([&] { table.GetData(5); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { table.GetData("5"); }).Number, 9);
}

TEST_F(DBFEditTest, LowerCaseStartOfANameGivesTheFieldAndCapitalsInTheKey) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    FieldKey key("c_na");

    EXPECT_EQ(table.GetData(key), "Acme      ");
    EXPECT_EQ(key.Text(), "C_NA");
}

TEST_F(DBFEditTest, DataComesAsItStandsWithItsPadding) {
    GivenTable(Customers().Row({"  x", "", "    12.5", "20260115"}));
    table.Go(1);

    EXPECT_EQ(table.GetData("C_CODE"), "  x   ");
    EXPECT_EQ(table.GetData("C_BAL"), "    12.5");
    EXPECT_EQ(table.GetData("C_SINCE"), "20260115");
}

TEST_F(DBFEditTest, OverlongTextKeepsTheFieldsLength) {
    GivenTable(ThreeCustomers());
    table.Go(1);

    table.WriteData("C_CODE", "ABCDEFGH");
    table.UpDate();

    EXPECT_EQ(Content().Rows[0], (Values{"ABCDEF", "Acme      ", "12.5    ", "20260115"}));
}

TEST_F(DBFEditTest, NumberGoesInLeftAlignedAndPaddedOnTheRight) {
    GivenTable(ThreeCustomers());
    table.Go(1);

    table.WriteData("C_BAL", "7.25");

    EXPECT_EQ(table.GetData("C_BAL"), "7.25    ");
}

TEST_F(DBFEditTest, TextInANumberFieldStoresZeroAlsoInTheCallersValue) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    FieldKey key("C_BAL");
    std::string value = "much";

    table.WriteData(key, value);

    EXPECT_EQ(value, "0");
    EXPECT_EQ(table.GetData("C_BAL"), "0       ");
}

TEST_F(DBFEditTest, DateStoresEightDigitsAlsoInTheCallersValue) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    FieldKey key("c_since");
    std::string value = "2026-12-31";

    table.WriteData(key, value);

    EXPECT_EQ(value, "20261231");
    EXPECT_EQ(table.GetData("C_SINCE"), "20261231");
}

TEST_F(DBFEditTest, EmptyTextInADateFieldStoresBlanks) {
    GivenTable(ThreeCustomers());
    table.Go(1);

    table.WriteData("C_SINCE", "");

    EXPECT_EQ(table.GetData("C_SINCE"), "        ");
}

TEST_F(DBFEditTest, TextThatIsNoDateGoesIntoADateFieldAsItStands) {
    GivenTable(ThreeCustomers());
    table.Go(1);

    table.WriteData("C_SINCE", "tomorrow night");

    EXPECT_EQ(table.GetData("C_SINCE"), "tomorrow");
}

TEST_F(DBFEditTest, UnknownKeyWritesNothing) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    FieldKey key("z_none");
    std::string value = "much";

    table.WriteData(key, value);
    table.WriteData(0, "x");
    table.UpDate();

    EXPECT_EQ(key.Text(), "Z_NONE");
    EXPECT_EQ(value, "much");
    EXPECT_EQ(Bytes(path), ThreeCustomers().Bytes());
}

TEST_F(DBFEditTest, NothingReachesTheFileBeforeUpDate) {
    GivenTable(ThreeCustomers());
    table.Go(2);

    table.WriteData("C_NAME", "New");
    EXPECT_EQ(Bytes(path), ThreeCustomers().Bytes());

    table.UpDate();
    EXPECT_EQ(Content().Trimmed(2), (Values{"B2", "New", "", "20260116"}));
}

TEST_F(DBFEditTest, UpDateOfTheLastRecordKeepsTheEndMarkBehindIt) {
    GivenTable(ThreeCustomers());
    table.Go(3);

    table.WriteData("C_CODE", "X9");
    table.UpDate();

    EXPECT_EQ(Content().Trimmed(3)[0], "X9");
    EXPECT_EQ(Content().Behind, "\x1A");
}

TEST_F(DBFEditTest, UpDateCarriesTheNextRecordsFlagAsItWasRead) {
    GivenTable(ThreeCustomers());
    DBFEdit other;
    other.FileOpen(path);
    table.Go(1);
    other.Go(2);
    other.DeleteRecord();

    table.UpDate();

    EXPECT_EQ(Content().Flags, "   ");
}

TEST_F(DBFEditTest, DeletedRecordStillReads) {
    GivenTable(ThreeCustomers());
    table.Go(2);

    table.DeleteRecord();
    table.Go(2);

    EXPECT_EQ(table.GetData("C_CODE"), "B2    ");
    EXPECT_EQ(table.RecordCount, 3);
    EXPECT_EQ(Content().Flags, " * ");
}

TEST_F(DBFEditTest, WritingBeforeRecordOneIsABadRecordNumberAndTouchesNothing) {
    GivenTable(Customers());
    table.Go(DBFEdit::Last);

    EXPECT_EQ(FailureOf([&] { table.UpDate(); }).Number, 63);
    EXPECT_EQ(FailureOf([&] { table.DeleteRecord(); }).Number, 63);
    table.RecordCount = -2;
    table.Go(DBFEdit::Last);
    EXPECT_EQ(FailureOf([&] { table.KillEOFFlag(); }).Number, 63);
    EXPECT_EQ(FailureOf([&] { table.Go(DBFEdit::Append); }).Number, 63);

    EXPECT_EQ(Bytes(path), Customers().Bytes());
}

TEST_F(DBFEditTest, KillEOFFlagAtRecordZeroClearsTheFirstFlag) {
    GivenTable(Customers());
    table.Go(DBFEdit::Last);

    table.KillEOFFlag();

    EXPECT_EQ(Content().Behind, " ");
}

TEST_F(DBFEditTest, AppendByTheRuleGivesALiveRecordWithABlankBehindIt) {
    GivenTable(ThreeCustomers());

    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    table.Go(DBFEdit::Append);
    table.WriteData("C_CODE", "D4");
    table.UpDate();

    EXPECT_EQ(table.RecordCount, 4);
    EXPECT_EQ(table.RecordNumber(), 4);
    EXPECT_EQ(Content().Count, 4);
    EXPECT_EQ(Content().Flags, "    ");
    EXPECT_EQ(Content().Trimmed(4), (Values{"D4", "", "", ""}));
    EXPECT_EQ(Content().Behind, " ");
}

TEST_F(DBFEditTest, AppendToAnEmptyTableByTheRule) {
    GivenTable(Customers());

    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    table.Go(DBFEdit::Append);
    table.Go(DBFEdit::Append);

    EXPECT_EQ(Content().Count, 2);
    EXPECT_EQ(Content().Flags, "  ");
    EXPECT_EQ(Content().Behind, " ");
}

TEST_F(DBFEditTest, BlankRecordIsOnDiskAsSoonAsItIsAppended) {
    GivenTable(ThreeCustomers());

    table.Go(DBFEdit::Append);

    EXPECT_EQ(Content().Count, 4);
    EXPECT_EQ(Content().Rows[3][0], "      ");
    EXPECT_EQ(Content().Flags, "   \x1A"); // whoever does not clear the mark keeps it as a flag
}

TEST_F(DBFEditTest, AppendLeavesTheDateOfTheHeaderAlone) {
    GivenTable(ThreeCustomers());

    table.Go(DBFEdit::Append);

    EXPECT_EQ(Bytes(path).substr(0, 4), ThreeCustomers().Bytes().substr(0, 4));
    EXPECT_EQ(Bytes(path).substr(8, 24), ThreeCustomers().Bytes().substr(8, 24));
}

TEST_F(DBFEditTest, MissingByteBehindTheLastRecordReadsAsABlank) {
    GivenTable(ThreeCustomers().End(""));
    table.Go(3);

    table.UpDate();

    EXPECT_EQ(Content().Behind, " ");
}

TEST_F(DBFEditTest, RecordLengthThatCannotHoldTheFieldsIsRefused) {
    GivenTable(ThreeCustomers());

    table.RecordLength = 32;
    EXPECT_EQ(FailureOf([&] { table.Go(1); }).Number, 5);
    table.RecordLength = -1;
    EXPECT_EQ(FailureOf([&] { table.Go(DBFEdit::Append); }).Number, 5);

    EXPECT_EQ(Bytes(path), ThreeCustomers().Bytes());
}

TEST_F(DBFEditTest, TableOfNoFieldsIsWalkedAndAppendedTo) {
    GivenTable(TableMaker(std::vector<TableMaker::Column>{}).Row({}).Row({}, '*'));
    table.Go(1);
    EXPECT_EQ(table.GetData("ANY"), "");

    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    table.Go(DBFEdit::Append);

    EXPECT_EQ(Content().Flags, " * ");
}

TEST_F(DBFEditTest, OpeningAndClosingLeaveTheirTraceLines) {
    GivenTable(ThreeCustomers());
    EXPECT_EQ(Global.Events.Entry(0), "DBFEdit:FileOpen " + path);

    table.ReIndex(path);

    EXPECT_EQ(Global.Events.Entry(1), "DBFEdit:ReIndex " + path);
    EXPECT_EQ(Global.Events.Entry(0), "DBFEdit:FileClose");
}

TEST_F(DBFEditTest, ClosedTableIsABadFileNumber) {
    GivenTable(ThreeCustomers());

    table.FileClose();

    EXPECT_EQ(Global.Files.Count(), 0);
    for (const int target : {1, -1, -2, -3, -4, -5}) {
        EXPECT_EQ(FailureOf([&] { table.Go(target); }).Number, 52) << target;
    }
    EXPECT_EQ(FailureOf([&] { table.UpDate(); }).Number, 52);
    EXPECT_EQ(FailureOf([&] { table.ReIndex(path); }).Number, 52);
}

TEST_F(DBFEditTest, SecondFileCloseClosesTheNextLowerNumberWhoeverOwnsIt) {
    GivenTable(ThreeCustomers());
    DBFEdit other;
    other.FileOpen(GivenFile("ZUKITEM.DBF", ThreeCustomers().Bytes()));

    other.FileClose();
    EXPECT_EQ(Global.Files.Count(), 1);
    table.Go(1);
    other.FileClose();

    EXPECT_EQ(Global.Files.Count(), 0);
    EXPECT_EQ(FailureOf([&] { table.Go(1); }).Number, 52);
    other.FileClose();
    other.FileClose();
}

TEST_F(DBFEditTest, CloseAllFilesClosesDownToOneAndNothingAbove) {
    const std::string text = GivenFile("list.txt", "one\ntwo\n");
    TextReader reader(text);
    GivenTable(ThreeCustomers());
    DBFEdit above;
    above.FileOpen(GivenFile("ZUKITEM.DBF", ThreeCustomers().Bytes()));

    table.CloseAllFiles();

    EXPECT_EQ(Global.Files.Count(), 1);
    EXPECT_EQ(FailureOf([&] { reader.RequireLine(); }).Number, 52);
    above.Go(1);
    table.FileClose();
    EXPECT_EQ(Global.Files.Count(), 1);
}

TEST_F(DBFEditTest, NumberThatAnotherHasTakenIsNeverUsed) {
    GivenTable(ThreeCustomers());
    table.Go(1);
    table.WriteData("C_CODE", "HARM");
    DBFEdit closer;
    Global.Files.Close(1);
    const std::string otherPath = GivenFile("ZUKITEM.DBF", ThreeCustomers().Bytes());
    closer.FileOpen(otherPath);

    EXPECT_EQ(FailureOf([&] { table.UpDate(); }).Number, 52);
    EXPECT_EQ(FailureOf([&] { table.DeleteRecord(); }).Number, 52);

    EXPECT_EQ(Bytes(otherPath), ThreeCustomers().Bytes());
    closer.Go(1);
}

TEST_F(DBFEditTest, SecondOpenOnOneObjectLeavesTheFirstOpen) {
    GivenTable(ThreeCustomers());

    table.FileOpen(GivenFile("ZUKITEM.DBF", Customers().Bytes()));

    EXPECT_EQ(Global.Files.Count(), 2);
    EXPECT_EQ(table.RecordCount, 0);
    table.FileClose();
    table.FileClose();
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(DBFEditTest, EndOfAnObjectClosesNothing) {
    {
        DBFEdit dropped;
        dropped.FileOpen(GivenFile("ZUKITEM.DBF", Customers().Bytes()));
    }

    EXPECT_EQ(Global.Files.Count(), 1);
}

TEST_F(DBFEditTest, TwoObjectsOnOneFileDoNotSeeEachOthersCount) {
    GivenTable(ThreeCustomers());
    DBFEdit other;
    other.FileOpen(path);

    table.Go(DBFEdit::Append);

    EXPECT_EQ(other.RecordCount, 3);
    other.Go(4);
    EXPECT_EQ(other.RecordNumber(), 0);
}

TEST_F(DBFEditTest, ReIndexRemovesDeletedRecordsAndClosesTheObject) {
    GivenTable(Customers().Row({"A1"}).Row({"B2"}, '*').Row({"C3"}).Row({"D4"}, '*').Row({"E5"}));

    table.ReIndex(path);

    EXPECT_EQ(Content().Count, 3);
    EXPECT_EQ(Content().Trimmed(1)[0], "A1");
    EXPECT_EQ(Content().Trimmed(2)[0], "C3");
    EXPECT_EQ(Content().Trimmed(3)[0], "E5");
    EXPECT_EQ(Content().Flags, "   ");
    EXPECT_EQ(Content().Behind.front(), '\x1A'); // what stood behind E5 came with it
    EXPECT_EQ(Global.Files.Count(), 0);
    EXPECT_FALSE(Exists(Folder() + "ZUKCUST.idx"));
}

TEST_F(DBFEditTest, ReIndexLeavesTheFlagOfADeletedFollowerBehindTheLastRecord) {
    GivenTable(Customers().Row({"A1"}, '*').Row({"B2"}).Row({"C3"}, '*'));

    table.ReIndex(path);

    EXPECT_EQ(Content().Count, 1);
    EXPECT_EQ(Content().Behind.front(), '*');
}

TEST_F(DBFEditTest, ReIndexBlanksThePlaceOfTheFirstDeletedRecord) {
    GivenTable(Customers().Row({"A1"}).Row({"B2"}, '*').Row({"C3"}, '*'));

    table.ReIndex(path);

    EXPECT_EQ(Content().Count, 1);
    EXPECT_EQ(Content().Behind.front(), ' ');
}

TEST_F(DBFEditTest, ReIndexOfATableWhereAllIsDeletedLeavesNoRecord) {
    GivenTable(Customers().Row({"A1"}, '*').Row({"B2"}, '*'));

    table.ReIndex(path);

    EXPECT_EQ(Content().Count, 0);
    EXPECT_EQ(Content().Names, (Values{"C_CODE", "C_NAME", "C_BAL", "C_SINCE"}));
    EXPECT_EQ(Content().Behind.front(), ' ');
}

TEST_F(DBFEditTest, ReIndexOfATableWithoutDeletedRecordsRewritesItAsItWas) {
    GivenTable(ThreeCustomers().Preamble("\x83\x63\x0C\x1F", "reserved bytes stay "));

    table.ReIndex(path);

    EXPECT_EQ(Bytes(path), ThreeCustomers().Preamble("\x83\x63\x0C\x1F", "reserved bytes stay ").Bytes());
}

TEST_F(DBFEditTest, ReIndexCountsTheRecordsThatTheObjectKnows) {
    GivenTable(ThreeCustomers());
    DBFEdit other;
    other.FileOpen(path);
    other.Go(DBFEdit::Last);
    other.KillEOFFlag();
    other.Go(DBFEdit::Append);

    table.ReIndex(path);

    EXPECT_EQ(Content().Count, 3);
}

TEST_F(DBFEditTest, ReIndexTakesAPathWithBlanksAroundIt) {
    GivenTable(Customers().Row({"A1"}, '*').Row({"B2"}));

    table.ReIndex("  " + path + " ");

    EXPECT_EQ(Content().Count, 1);
    EXPECT_FALSE(Exists(Folder() + "ZUKCUST.idx"));
}

TEST_F(DBFEditTest, FailingDiskLeavesTheTableAsItWasAndNoWorkFile) {
    const std::string before = Customers().Row({"A1"}).Row({"B2"}, '*').Row({"C3"}).Bytes();
    int failures = 0;

    for (int failAt = 1; failAt < 100; ++failAt) {
        path = GivenFile("ZUKCUST.DBF", before);
        FaultyDisk disk(failAt, 61);
        Global.TheDisk = &disk;
        DBFEdit broken;
        broken.FileOpen(path);
        try {
            broken.ReIndex(path);
            failAt = 100;
        } catch (const RunTimeFailure& failure) {
            ++failures;
            EXPECT_EQ(failure.Number(), 61);
            EXPECT_EQ(Bytes(path), before) << failAt;
        }
        Global.TheDisk = &NativeDisk();
        EXPECT_FALSE(Exists(Folder() + "ZUKCUST.idx")) << failAt;
        EXPECT_EQ(Global.Files.Count(), 0) << failAt;
    }

    EXPECT_GT(failures, 8); // the work file, its writes, the flush, the rename
    EXPECT_EQ(Content().Count, 2);
}

TEST_F(DBFEditTest, SortFileSortsUpwardsWithoutRegardToCase) {
    GivenTable(Customers().Row({"c"}).Row({"B"}).Row({"\xE0"}).Row({"D"}).Row({"a"}).Row({"zz"}));

    table.SortFile("C_CODE", 0);

    const TableContent content = Content();
    Values codes;
    for (int k = 1; k <= 6; ++k) codes.push_back(content.Trimmed(k)[0]);
    EXPECT_EQ(codes, (Values{"a", "\xE0", "B", "c", "D", "zz"}));
}

TEST_F(DBFEditTest, SortFileNeverMovesTheLastRecord) {
    GivenTable(Customers().Row({"C"}).Row({"B"}).Row({"A"}));

    table.SortFile("C_CODE", 0);

    EXPECT_EQ(Content().Trimmed(1)[0], "B");
    EXPECT_EQ(Content().Trimmed(2)[0], "C");
    EXPECT_EQ(Content().Trimmed(3)[0], "A");
}

TEST_F(DBFEditTest, SortFileDownwardsNeverReturnsToTheFirstPair) {
    GivenTable(Customers().Row({"A"}).Row({"B"}).Row({"C"}).Row({"Z"}));

    table.SortFile("C_CODE", -1);

    EXPECT_EQ(Content().Trimmed(1)[0], "B");
    EXPECT_EQ(Content().Trimmed(2)[0], "C");
    EXPECT_EQ(Content().Trimmed(3)[0], "A");
    EXPECT_EQ(Content().Trimmed(4)[0], "Z");
}

TEST_F(DBFEditTest, SortFileSwapsTheFlagsBehindThePair) {
    GivenTable(Customers().Row({"B"}).Row({"A"}, '*').Row({"C"}).Row({"D"}));

    table.SortFile("C_CODE", 0);

    EXPECT_EQ(Content().Trimmed(1)[0], "A");
    EXPECT_EQ(Content().Trimmed(2)[0], "B");
    EXPECT_EQ(Content().Flags, "  * ");
}

TEST_F(DBFEditTest, SortFileTakesOnlyMinusOneForDownwards) {
    GivenTable(Customers().Row({"B"}).Row({"A"}).Row({"Z"}));

    table.SortFile("C_CODE", 1);

    EXPECT_EQ(Content().Trimmed(1)[0], "A");
}

TEST_F(DBFEditTest, SortFileComparesNumbersAsText) {
    GivenTable(Customers().Row({"", "", "9"}).Row({"", "", "10"}).Row({"", "", "0"}));
    FieldKey key("c_bal");

    table.SortFile(key, 0);

    EXPECT_EQ(Content().Trimmed(1)[2], "10");
    EXPECT_EQ(Content().Trimmed(2)[2], "9");
    EXPECT_EQ(key.Text(), "C_BAL");
}

TEST_F(DBFEditTest, SortFileByAnUnknownKeyMovesNothing) {
    GivenTable(Customers().Row({"B"}).Row({"A"}).Row({"Z"}));

    table.SortFile("NONE", 0);

    EXPECT_EQ(Content().Trimmed(1)[0], "B");
}
