#include "store/TableRecords.h"

#include "core/Paths.h"
#include "core/SafeFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

namespace {

/// A disk on which another program holds a lock on every table, or on none.
class LockingDisk : public PassingDisk {
public:
    bool Locked = false;
    bool LockedByAnother(const std::string&) override { return Locked; }
};

class TableRecordsTest : public EngineTest {
protected:
    TableRecordsTest() { GivenAppDirectory(); }

    void GivenPayments(const std::vector<std::vector<std::string>>& rows) {
        path_ = GivenTable(Global.DBFPath, "ZUKPAY", rows);
    }

    void Open(TableRecords& table, std::int32_t record = 1) const { table.Open(path_, "PAY_CODE", record); }

    std::vector<std::string> Row(int record) const { return TableAt(path_).Trimmed(record); }

    std::string path_;
};

using Cells = std::vector<std::string>;

TEST_F(TableRecordsTest, OpensAtTheRecordThatIsAskedForOrTheNearest) {
    GivenPayments({{"CASH"}, {"CHECK"}, {"CARD"}});
    for (const auto& [asked, found] : {std::pair{2, 2}, {0, 1}, {-5, 1}, {9, 3}}) {
        TableRecords table;
        Open(table, asked);
        EXPECT_EQ(table.RecordNumber(), found) << asked;
    }
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TableRecordsTest, AWriteChangesTheFieldsThatItNamesAndNoOthers) {
    GivenPayments({{"CASH", "NO", "old", "NO"}});
    TableRecords one, other;
    Open(one);
    Open(other);

    one.Write({{"PAY_REF", "YES"}});
    other.Write({{"PAY_CDESC", " new "}});

    EXPECT_EQ(Row(1), (Cells{"CASH", "YES", "new", "NO"}));
}

TEST_F(TableRecordsTest, AWriteReachesTheTableThatStandsThereByNow) {
    GivenPayments({{"CASH", "NO", "old", "NO"}});
    TableRecords table;
    Open(table);
    GivenPayments({{"CASH", "YES", "other", "YES"}, {"CARD"}}); // by another program, under the same name

    table.Write({{"PAY_CDESC", "new"}});

    EXPECT_EQ(Row(1), (Cells{"CASH", "YES", "new", "YES"}));
    EXPECT_EQ(table.RecordCount(), 2);
}

TEST_F(TableRecordsTest, ARecordThatIsAnotherByNowIsNotWrittenOver) {
    GivenPayments({{"CASH", "NO"}, {"CHECK", "NO"}});
    TableRecords table;
    Open(table, 2);
    GivenPayments({{"CARD", "NO"}, {"CASH", "NO"}});

    for (int k = 0; k < 2; ++k) EXPECT_EQ(FailureOf([&] { table.Write({{"PAY_REF", "YES"}}); }).Number, 63);
    GivenPayments({{"CHECK", "NO"}});
    EXPECT_EQ(FailureOf([&] { table.Write({{"PAY_REF", "YES"}}); }).Number, 63);

    EXPECT_EQ(TableAt(path_).Count, 1);
    EXPECT_EQ(Row(1), (Cells{"CHECK", "NO", "", ""}));
}

TEST_F(TableRecordsTest, AnEmptyTableGetsRecordOneByTheFirstWrite) {
    GivenPayments({});
    TableRecords table;
    Open(table);
    EXPECT_EQ(table.RecordNumber(), 0);
    EXPECT_EQ(table.Trimmed("PAY_CODE"), "");

    table.Write({{"PAY_CODE", "CASH"}});

    EXPECT_EQ(table.RecordNumber(), 1);
    EXPECT_EQ(TableAt(path_).Count, 1);
    EXPECT_EQ(Row(1), (Cells{"CASH", "", "", ""}));
}

TEST_F(TableRecordsTest, ATableThatAnotherProgramHasLockedIsNeitherOpenedNorChanged) {
    GivenPayments({{"CASH", "NO"}});
    const std::string before = Bytes(path_);
    LockingDisk disk;
    Global.TheDisk = &disk;
    TableRecords table;
    Open(table);
    disk.Locked = true;

    const FailureSeen refused = FailureOf([&] { table.Write({{"PAY_REF", "YES"}}); });
    EXPECT_EQ(refused.Number, 70);
    EXPECT_NE(refused.Words.find("ZUKPAY"), std::string::npos);
    EXPECT_EQ(FailureOf([&] { table.Append(); }).Number, 70);
    EXPECT_EQ(FailureOf([&] { table.Delete(TableRecords::Then::Next); }).Number, 70);
    TableRecords late;
    EXPECT_EQ(FailureOf([&] { Open(late); }).Number, 70);
    EXPECT_EQ(Bytes(path_), before);

    disk.Locked = false;
    table.Write({{"PAY_REF", "YES"}});
    EXPECT_EQ(Row(1), (Cells{"CASH", "YES", "", ""}));
}

TEST_F(TableRecordsTest, ATableThatIsGoneIsToldAndWrittenWhenItIsBack) {
    GivenPayments({{"CASH", "NO"}});
    TableRecords table;
    Open(table);
    const std::string bytes = Bytes(path_);
    Global.TheDisk->Remove(ResolvePath(path_));

    EXPECT_EQ(FailureOf([&] { table.Write({{"PAY_REF", "YES"}}); }).Number, 53);
    WriteWholeFile(path_, bytes);
    table.Write({{"PAY_REF", "YES"}});

    EXPECT_EQ(Row(1), (Cells{"CASH", "YES", "", ""}));
}

TEST_F(TableRecordsTest, ADeletionGoesToTheRecordThatItIsTold) {
    for (const auto& [then, code] :
         {std::pair{TableRecords::Then::Next, "CARD"}, {TableRecords::Then::Previous, "CASH"}}) {
        GivenPayments({{"CASH"}, {"CHECK"}, {"CARD"}});
        TableRecords table;
        Open(table, 2);

        table.Delete(then);

        EXPECT_EQ(table.Trimmed("PAY_CODE"), code);
        EXPECT_EQ(table.RecordCount(), 2);
    }
}

} // namespace
