#include "store/TableRewrite.h"

#include "store/DBFEdit.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Lots.h"
#include "support/RefusingDisk.h"
#include "support/TableMaker.h"
#include "support/TableSteps.h"

#include <chrono>
#include <filesystem>
#include <functional>

namespace {

using Values = std::vector<std::string>;

// What the routines stand for, record at a time.

void CompactStepByStep(const std::string& path) {
    DBFEdit table;
    table.FileOpen(path);
    table.ReIndex(path);
}

void RefillStepByStep(const std::string& path, const std::vector<Values>& rows) {
    DBFEdit table;
    EmptyStepByStep(table, path);
    table.FileOpen(path);
    BeginAppending(table);
    for (const Values& row : rows) AppendStepByStep(table, row);
    table.FileClose();
}

void ShiftStepByStep(const std::string& path, const Values& first) {
    DBFEdit table;
    table.FileOpen(path);
    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    table.Go(DBFEdit::Append);
    table.Go(DBFEdit::Last);
    for (std::int32_t k = table.RecordCount; k > 1; --k) {
        table.Go(k - 1);
        Values above;
        for (int field = 1; field <= table.NoFields(); ++field) above.push_back(table.GetData(field));
        table.Go(k);
        for (int field = 1; field <= table.NoFields(); ++field) {
            table.WriteData(field, above[static_cast<std::size_t>(field) - 1]);
        }
        table.UpDate();
    }
    table.Go(1);
    for (int field = 1; field <= table.NoFields(); ++field) table.WriteData(field, "");
    for (std::size_t k = 0; k < first.size(); ++k) table.WriteData(static_cast<int>(k) + 1, first[k]);
    table.UpDate();
    table.FileClose();
}

class TableRewriteTest : public EngineTest {
protected:
    static TableMaker Items() {
        return TableMaker({{"I_CODE", 'C', 4}, {"I_PRICE", 'N', 6, 2}, {"I_DATE", 'D', 8}});
    }

    std::string GivenItems(const TableMaker& maker) { return GivenFile("ZUKITEM.DBF", maker.Bytes()); }

    /// Both roads over one table: they must leave the same bytes and the same trace.
    void ExpectSame(const std::string& before, const std::function<void(const std::string&)>& steps,
                    const std::function<void(const std::string&)>& whole) {
        const std::string path = GivenFile("ROAD.DBF", before);
        Global.Events.Clear();
        steps(path);
        const TraceRing trace = Global.Events;
        const std::string expected = UpToTheEnd(Bytes(path));

        GivenFile("ROAD.DBF", before);
        Global.Events.Clear();
        whole(path);

        ASSERT_EQ(Bytes(path), expected);
        ASSERT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
        ASSERT_EQ(Global.Files.Count(), 0);
        for (std::size_t k = 0; k < TraceEntries; ++k) ASSERT_EQ(Global.Events.Entry(k), trace.Entry(k));
    }
};

class RandomTables : public TableRewriteTest, public ::testing::WithParamInterface<unsigned> {
protected:
    Lots lots{GetParam()};
    static constexpr int Tables = 12;
};

} // namespace

TEST_P(RandomTables, CompactedWholeComeOutAsStepByStep) {
    for (int k = 0; k < Tables; ++k) {
        ASSERT_NO_FATAL_FAILURE(
            ExpectSame(lots.Table(lots.Columns()).Bytes(), CompactStepByStep, CompactTable));
    }
}

TEST_P(RandomTables, EmptiedWholeComeOutAsStepByStep) {
    for (int k = 0; k < Tables; ++k) {
        ASSERT_NO_FATAL_FAILURE(ExpectSame(
            lots.Table(lots.Columns()).Bytes(),
            [](const std::string& path) {
                DBFEdit table;
                EmptyStepByStep(table, path);
            },
            [](const std::string& path) { EmptyTable(path); }));
    }
}

TEST_P(RandomTables, RefilledWholeComeOutAsStepByStep) {
    for (int k = 0; k < Tables; ++k) {
        const auto columns = lots.Columns();
        std::vector<Values> rows(static_cast<std::size_t>(lots.Below(60)));
        for (Values& row : rows) {
            for (const auto& column : columns) row.push_back(lots.Value(column.Type, column.Length));
        }
        const auto whole = [&](const std::string& path) {
            EmptyTable(path);
            TraceEvent("DBFEdit:FileOpen " + path);
            TableRewrite rewrite(path);
            for (const Values& row : rows) {
                rewrite.Append();
                for (std::size_t field = 0; field < row.size(); ++field) {
                    if (!row[field].empty()) rewrite.Write(static_cast<int>(field) + 1, row[field]);
                }
            }
            TraceEvent("DBFEdit:FileClose");
            rewrite.Commit();
        };
        ASSERT_NO_FATAL_FAILURE(ExpectSame(
            lots.Table(columns).Bytes(), [&](const std::string& path) { RefillStepByStep(path, rows); },
            whole));
    }
}

TEST_P(RandomTables, RecordsWrittenAnewComeOutAsFieldByField) {
    for (int k = 0; k < Tables; ++k) {
        const auto fieldByField = [](const std::string& path) {
            std::vector<Values> rows;
            {
                TableScan scan(path);
                while (scan.Next()) {
                    rows.emplace_back();
                    for (int field = 1; field <= scan.Layout().FieldCount(); ++field)
                        rows.back().emplace_back(scan.Trimmed(field));
                }
            }
            DBFEdit table;
            EmptyStepByStep(table, path);
            table.FileOpen(path);
            BeginAppending(table);
            for (const Values& row : rows) {
                table.Go(DBFEdit::Append);
                for (std::size_t field = 0; field < row.size(); ++field)
                    table.WriteData(FieldKey(static_cast<int>(field) + 1), row[field]);
                table.UpDate();
            }
            table.FileClose();
        };
        const auto whole = [](const std::string& path) {
            std::vector<std::string> records;
            {
                TableScan scan(path);
                const auto fields = static_cast<std::size_t>(scan.Layout().FieldBytes());
                while (scan.Next()) records.emplace_back(scan.Record().substr(0, fields));
            }
            EmptyTable(path);
            TraceEvent("DBFEdit:FileOpen " + path);
            TableRewrite rewrite(path);
            for (const std::string& record : records) rewrite.Append(record);
            TraceEvent("DBFEdit:FileClose");
            rewrite.Commit();
        };
        ASSERT_NO_FATAL_FAILURE(ExpectSame(lots.Table(lots.Columns()).Bytes(), fieldByField, whole));
    }
}

TEST_P(RandomTables, ARecordRemovedWholeComesOutAsStepByStep) {
    for (int k = 0; k < Tables; ++k) {
        const std::string before = lots.Table(lots.Columns()).Bytes();
        const int count = TableContent(before).Count;
        if (count == 0) continue;
        const std::int32_t record = 1 + lots.Below(count);
        const auto stepByStep = [&](const std::string& path) {
            DBFEdit table;
            table.FileOpen(path);
            table.Go(record);
            table.DeleteRecord();
            table.ReIndex(path);
        };
        ASSERT_NO_FATAL_FAILURE(
            ExpectSame(before, stepByStep, [&](const std::string& path) { RemoveRecord(path, record); }));
    }
}

TEST_P(RandomTables, ShiftedWholeComeOutAsStepByStep) {
    for (int k = 0; k < Tables; ++k) {
        const auto columns = lots.Columns();
        Values first;
        const int values = lots.Below(static_cast<int>(columns.size()) + 1);
        for (const auto& column : columns) {
            if (static_cast<int>(first.size()) < values)
                first.push_back(lots.Value(column.Type, column.Length));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(
            lots.Table(columns).Bytes(), [&](const std::string& path) { ShiftStepByStep(path, first); },
            [&](const std::string& path) { ShiftDown(path, first); }));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTables, ::testing::Values(1u, 22u, 333u, 4444u, 55555u));

TEST_F(TableRewriteTest, NewContentTakesThePlaceOfTheOldUnderTheSameHeader) {
    const TableMaker empty = Items().Preamble("\x83\x63\x0C\x1F", "reserved");
    const std::string path = GivenItems(TableMaker(empty).Row({"A1", "3"}).Row({"B2"}, '*'));

    TableRewrite rewrite(path);
    rewrite.Append();
    rewrite.Write("I_CODE", "LONGER");
    rewrite.Write("i_pr", "dear");
    rewrite.Write("I_DATE", "2026-11-15");
    rewrite.AppendRaw('*', "Z9  1     20260101");
    rewrite.Write("I_CODE", "Y8");
    rewrite.Commit();

    EXPECT_EQ(
        Bytes(path),
        TableMaker(empty).Row({"LONG", "0", "20261115"}).Row({"Y8", "1", "20260101"}, '*').End(" ").Bytes());
}

TEST_F(TableRewriteTest, ByteBehindTheLastRecordCanBeChosen) {
    const std::string path = GivenItems(Items().Row({"A1"}));

    TableRewrite rewrite(path);
    rewrite.SetTrailing('\x1A');
    rewrite.Commit();

    EXPECT_EQ(Bytes(path), Items().Bytes());
}

TEST_F(TableRewriteTest, BlankTakesBackWhatWasWrittenToTheRecord) {
    const std::string path = GivenItems(Items());

    TableRewrite rewrite(path);
    rewrite.Append();
    rewrite.Write(1, "BAD");
    rewrite.Blank();
    rewrite.Commit();

    EXPECT_EQ(Bytes(path), Items().Row({}).End(" ").Bytes());
}

TEST_F(TableRewriteTest, WithoutCommitTheTableStaysAsItWas) {
    const std::string path = GivenItems(Items().Row({"A1"}));
    {
        TableRewrite rewrite(path);
        rewrite.Append();
    }

    EXPECT_EQ(Bytes(path), Items().Row({"A1"}).Bytes());
    EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
}

TEST_F(TableRewriteTest, WritingBeforeTheFirstRecordOrToNoFieldFails) {
    TableRewrite rewrite(GivenItems(Items()));

    EXPECT_EQ(FailureOf([&] { rewrite.Write(1, "A"); }).Number, 63);
    rewrite.Append();
    EXPECT_EQ(FailureOf([&] { rewrite.Write(4, "A"); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { rewrite.AppendRaw(' ', "short"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { rewrite.Append("short"); }).Number, 5);
    rewrite.Write("NONE", "A");
    EXPECT_EQ(rewrite.RecordCount(), 1);
}

TEST_F(TableRewriteTest, MissingOrHostileTableIsRefused) {
    EXPECT_EQ(FailureOf([&] { TableRewrite rewrite(Folder() + "NONE.DBF"); }).Number, 53);
    EXPECT_EQ(FailureOf([&] { TableRewrite rewrite(GivenItems(Items().ClaimRecordLength(0))); }).Number, 321);
    EXPECT_EQ(FailureOf([&] { EmptyTable(GivenItems(Items().ClaimCount(9))); }).Number, 321);
    EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
}

TEST_F(TableRewriteTest, ThousandsOfRecordsAreWrittenInBlocks) {
    const std::string path = GivenItems(Items());
    FaultyDisk disk;
    Global.TheDisk = &disk;

    TableRewrite rewrite(path);
    for (int k = 1; k <= 40000; ++k) {
        rewrite.Append();
        rewrite.Write(1, std::to_string(k));
    }
    rewrite.Commit();
    Global.TheDisk = &NativeDisk();

    EXPECT_LT(disk.Calls(), 12);
    const TableContent content(Bytes(path));
    EXPECT_EQ(content.Count, 40000);
    EXPECT_EQ(content.Trimmed(9999)[0], "9999");
}

TEST_F(TableRewriteTest, FailingDiskLeavesTheTableAsItWasAndNoWorkFile) {
    const std::string before = Items().Row({"A1", "", "20260101"}).Row({"B2"}, '*').Row({"C3"}).Bytes();
    const std::vector<std::function<void(const std::string&)>> routines = {
        CompactTable, [](const std::string& path) { EmptyTable(path); },
        [](const std::string& path) { ShiftDown(path); },
        [](const std::string& path) { RemoveRecord(path, 1); }};

    for (const auto& routine : routines) {
        int failures = 0;
        for (int failAt = 1; failAt < 100; ++failAt) {
            const std::string path = GivenFile("ZUKITEM.DBF", before);
            FaultyDisk disk(failAt, 57);
            Global.TheDisk = &disk;
            try {
                routine(path);
                failAt = 100;
            } catch (const RunTimeFailure& failure) {
                ++failures;
                EXPECT_EQ(failure.Number(), 57);
                EXPECT_EQ(Bytes(path), before);
            }
            Global.TheDisk = &NativeDisk();
            EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
            EXPECT_EQ(Global.Files.Count(), 0);
        }
        EXPECT_GE(failures, 4); // the work file, a write, the flush, the rename
    }
}

// ---- a content that the table has already ----

class SameContent : public TableRewriteTest {
protected:
    static constexpr int Records = 30000; ///< several blocks

    static TableMaker Many() {
        TableMaker maker = Items();
        for (int k = 1; k <= Records; ++k) maker.Row({std::to_string(k % 10000), "1", ""});
        return maker.End(" ");
    }
    static void Refill(TableRewrite& rewrite, int from, int to) {
        for (int k = from; k <= to; ++k) {
            rewrite.Append();
            rewrite.Write(1, std::to_string(k % 10000));
            rewrite.Write(2, "1");
        }
    }
};

TEST_F(SameContent, IsNotWritten) {
    const std::string path = GivenItems(Many());
    FaultyDisk full(1);
    Global.TheDisk = &full;

    TableRewrite rewrite(path);
    Refill(rewrite, 1, Records);
    rewrite.Commit();

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(Bytes(path) == Many().Bytes());
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SameContent, OfATableThatMayNotBeWrittenIsRefusedAsAnyOtherIs) {
    const std::string path = GivenItems(Many());
    RefusingDisk disk(path, Access::ReadWrite);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([&] { TableRewrite rewrite(path); }), 70);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SameContent, WithBytesBehindTheLastRecordIsWrittenWithoutThem) {
    for (const char* behind : {" and more", "\x1A", "", "          "}) {
        const std::string path = GivenItems(Many().End(behind));

        TableRewrite rewrite(path);
        Refill(rewrite, 1, Records);
        rewrite.Commit();

        EXPECT_TRUE(Bytes(path) == Many().Bytes()) << behind;
    }
}

TEST_F(SameContent, OfATableThatAnotherProgramHasReplacedMeanwhileLeavesTheirs) {
    const std::string path = GivenItems(Many());
    const std::string theirs = Items().Row({"X"}).Bytes();

    TableRewrite rewrite(path);
    Refill(rewrite, 1, Records);
    std::filesystem::rename(GivenFile("theirs.dbf", theirs), path);
    rewrite.Commit();

    EXPECT_EQ(Bytes(path), theirs);
}

TEST_F(SameContent, UpToSomeRecordOfATableThatWasReplacedMeanwhileIsNeverMixedWithTheirs) {
    const std::string path = GivenItems(Many());

    TableRewrite rewrite(path);
    Refill(rewrite, 1, Records);
    std::filesystem::rename(GivenFile("theirs.dbf", Items().Row({"X"}).Bytes()), path);
    rewrite.Append();
    rewrite.Write(2, "1");
    rewrite.Commit();

    EXPECT_TRUE(Bytes(path) == Many().Row({"", "1", ""}).End(" ").Bytes());
}

TEST_F(SameContent, UpToSomeRecordOfATableThatWasWrittenToMeanwhileIsAFailureAndTheirsStays) {
    const std::string path = GivenItems(Many());
    const auto before = std::filesystem::last_write_time(path);
    {
        TableRewrite rewrite(path);
        Refill(rewrite, 1, Records);
        DBFEdit theirs;
        theirs.FileOpen(path);
        theirs.Go(7);
        theirs.WriteData("I_CODE", "NEW");
        theirs.UpDate();
        theirs.FileClose();
        std::filesystem::last_write_time(path, before + std::chrono::seconds(1)); // coarse clocks
        rewrite.Append();
        rewrite.Write(1, "LAST");

        EXPECT_EQ(FailureNumber([&] { rewrite.Commit(); }), 75);
    }
    const TableContent content(Bytes(path));
    EXPECT_EQ(content.Count, Records);
    EXPECT_EQ(content.Trimmed(7)[0], "NEW");
    EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TableRewriteTest, ShiftLeavesRecordOneBlankWithZeroesInItsNumbers) {
    const std::string path = GivenItems(Items().Row({"A1", "", "20260101"}).Row({"B2", "2"}));

    ShiftDown(path);

    const TableContent content(Bytes(path));
    EXPECT_EQ(content.Count, 3);
    EXPECT_EQ(content.Trimmed(1), (Values{"", "0", ""}));
    EXPECT_EQ(content.Trimmed(2), (Values{"A1", "0", "20260101"}));
    EXPECT_EQ(content.Trimmed(3), (Values{"B2", "2", ""}));
    EXPECT_EQ(content.Behind, " ");
}

TEST_F(TableRewriteTest, ShiftOfAnEmptyTableGivesOneRecord) {
    const std::string path = GivenItems(Items());

    ShiftDown(path, Values{"A1", "12.5"});

    const TableContent content(Bytes(path));
    EXPECT_EQ(content.Count, 1);
    EXPECT_EQ(content.Trimmed(1), (Values{"A1", "12.5", ""}));
    EXPECT_EQ(content.Flags, " ");
}

TEST_F(TableRewriteTest, ShiftLeavesFlagsAtTheirPlaces) {
    const std::string path = GivenItems(Items().Row({"A1"}).Row({"B2"}, '*').Row({"C3"}));

    ShiftDown(path);

    EXPECT_EQ(TableContent(Bytes(path)).Flags, " *  ");
}

TEST_F(TableRewriteTest, ShiftWithMoreValuesThanFieldsIsASubscriptFailure) {
    const std::string path = GivenItems(Items().Row({"A1"}));

    EXPECT_EQ(FailureOf([&] { ShiftDown(path, Values{"1", "2", "", "4"}); }).Number, 9);

    EXPECT_EQ(Bytes(path), Items().Row({"A1"}).Bytes());
    EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
}
