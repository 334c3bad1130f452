#include "store/TableScan.h"

#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/TableMaker.h"

#include <stdexcept>

namespace {

class TableScanTest : public EngineTest {
protected:
    static TableMaker Items() { return TableMaker({{"I_CODE", 'C', 6}, {"I_NAME", 'C', 10}}); }
};

} // namespace

TEST_F(TableScanTest, ReadsEveryRecordInItsOrderDeletedOnesToo) {
    const std::string path =
        GivenFile("ZUKITEM.DBF", Items().Slack(2).Row({"A1", " Axe"}).Row({"B2", "B\xF6rse"}, '*').Bytes());
    TableScan scan(path);
    const int name = scan.Layout().Find("i_n");

    EXPECT_EQ(scan.RecordCount(), 2);
    EXPECT_EQ(scan.RecordNumber(), 0);
    EXPECT_EQ(scan.Trimmed(1), "");
    ASSERT_TRUE(scan.Next());
    EXPECT_EQ(scan.RecordNumber(), 1);
    EXPECT_EQ(scan.Field(1), "A1    ");
    EXPECT_EQ(scan.Trimmed(name), "Axe");
    EXPECT_FALSE(scan.Deleted());
    EXPECT_EQ(scan.Record(), "A1     Axe        ");
    ASSERT_TRUE(scan.Next());
    EXPECT_EQ(scan.Trimmed(name), "B\xF6rse");
    EXPECT_TRUE(scan.Deleted());
    EXPECT_FALSE(scan.Next());
    EXPECT_FALSE(scan.Next());
    EXPECT_EQ(scan.RecordNumber(), 2);
    EXPECT_EQ(scan.Trailing(), '\x1A');
}

TEST_F(TableScanTest, FieldZeroIsEmptyAndOneOutsideIsASubscriptFailure) {
    TableScan scan(GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Bytes()));
    scan.Next();

    EXPECT_EQ(scan.Field(scan.Layout().Find("NONE")), "");
    EXPECT_EQ(FailureOf([&] { scan.Field(3); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { scan.Field(-1); }).Number, 9);
}

TEST_F(TableScanTest, EmptyTableHasNoRecord) {
    TableScan scan(GivenFile("ZUKITEM.DBF", Items().End("").Bytes()));

    EXPECT_FALSE(scan.Next());
    EXPECT_EQ(scan.Trailing(), ' ');
}

TEST_F(TableScanTest, ReadsTheSameAsDBFEditOverManyBlocks) {
    TableMaker maker({{"KEY", 'C', 9}, {"REST", 'C', 200}});
    for (int k = 1; k <= 4000; ++k) {
        maker.Row({"K" + std::to_string(k), std::string(static_cast<std::size_t>(k % 200), 'x')},
                  k % 7 ? ' ' : '*');
    }
    const std::string path = GivenFile("BIG.DBF", maker.Bytes());
    DBFEdit table;
    table.FileOpen(path);

    TableScan scan(path);
    int records = 0;
    while (scan.Next()) {
        table.Go(++records);
        ASSERT_EQ(scan.RecordNumber(), records);
        ASSERT_EQ(scan.Field(1), table.GetData(1));
        ASSERT_EQ(scan.Field(2), table.GetData(2));
        ASSERT_EQ(scan.Deleted(), records % 7 == 0);
    }

    EXPECT_EQ(records, 4000);
}

TEST_F(TableScanTest, CanStartAgain) {
    TableScan scan(GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Row({"B2"}).Bytes()));
    while (scan.Next()) {
    }

    scan.Restart();

    EXPECT_EQ(scan.RecordNumber(), 0);
    EXPECT_EQ(scan.Field(1), "      ");
    ASSERT_TRUE(scan.Next());
    EXPECT_EQ(scan.Trimmed(1), "A1");
}

TEST_F(TableScanTest, BytesThatHaveGoneReadAsBlanks) {
    const std::string path = GivenFile("ZUKITEM.DBF", Items().Row({"A1"}, '*').Row({"B2"}, '*').Bytes());
    TableScan scan(path);
    GivenFile("ZUKITEM.DBF", Items().Row({"A1"}, '*').End("").Bytes());

    ASSERT_TRUE(scan.Next());
    EXPECT_EQ(scan.Trimmed(1), "A1");
    ASSERT_TRUE(scan.Next());

    EXPECT_EQ(scan.Field(1), "      ");
    EXPECT_FALSE(scan.Deleted());
}

TEST_F(TableScanTest, HoldsAFileNumberAndLeavesTheTraceLines) {
    const std::string path = GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Bytes());
    {
        TableScan scan(path);
        EXPECT_EQ(Global.Files.Count(), 1);
        EXPECT_EQ(Global.Events.Entry(0), "DBFEdit:FileOpen " + path);
    }

    EXPECT_EQ(Global.Files.Count(), 0);
    EXPECT_EQ(Global.Events.Entry(0), "DBFEdit:FileClose");
    EXPECT_EQ(Global.Events.Entry(1), "DBFEdit:FileOpen " + path);
}

TEST_F(TableScanTest, ClosesOnceOnly) {
    TableScan scan(GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Bytes()));
    scan.Close();
    DBFEdit next;
    next.FileOpen(Folder() + "ZUKITEM.DBF");

    scan.Close();

    EXPECT_EQ(FailureOf([&] { scan.Next(); }).Number, 52);
    next.Go(1);
    EXPECT_EQ(next.RecordNumber(), 1);
}

TEST_F(TableScanTest, FailureOnItsWayKeepsItsTraceLineOnTop) {
    const std::string path = GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Bytes());
    try {
        TableScan scan(path);
        TraceEvent("frmMain1:Work");
        throw std::runtime_error("broken");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(Global.Events.Entry(0), "frmMain1:Work");
    }

    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TableScanTest, NumberClosedByAnotherIsABadFileNumber) {
    TableScan scan(GivenFile("ZUKITEM.DBF", Items().Row({"A1"}).Row({"B2"}).Bytes()));
    scan.Next();

    Global.Files.Close(1);

    EXPECT_EQ(FailureOf([&] { scan.Next(); }).Number, 52);
}

TEST_F(TableScanTest, HostileHeaderIsRefusedAndNothingStaysOpen) {
    const std::string path = GivenFile("ZUKITEM.DBF", Items().ClaimCount(0x7FFFFFFF).Bytes());

    EXPECT_EQ(FailureOf([&] { TableScan scan(path); }).Number, 321);
    EXPECT_EQ(FailureOf([&] { TableScan scan(Folder() + "NONE.DBF"); }).Number, 53);

    EXPECT_EQ(Global.Files.Count(), 0);
}
