#include "exchange/OrderCheck.h"

#include "core/TextCompare.h"
#include "exchange/ExchangeTest.h"
#include "store/DBFEdit.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/TableSteps.h"

#include <algorithm>
#include <random>

namespace {

using Rows = std::vector<std::string>;

class OrderCheckTest : public ExchangeTest {
protected:
    /// Headers by order code and lines by key; `mark` tells records with the same key apart.
    void GivenOrders(const Rows& orders, const Rows& keys) {
        std::vector<Fields> headers, lines;
        for (const std::string& order : orders) {
            headers.push_back(
                {{"H_ORDCODE", order}, {"H_CUST_PO", "h" + std::to_string(headers.size() + 1)}});
        }
        for (const std::string& key : keys) {
            lines.push_back({{"L_KEY", key},
                             {"L_ORDCODE", key.substr(0, key.find('-'))},
                             {"L_BARCODE", "l" + std::to_string(lines.size() + 1)}});
        }
        GivenTable("ZUKORHDR", headers);
        GivenTable("ZUKORLIN", lines);
    }

    PCOrders Open() { return OpenPCOrders(PathOf("ZUKORHDR"), PathOf("ZUKORLIN")); }

    /// Questions answered in this order; one more fails the test.
    RepeatQuestions Answering(std::vector<bool> answers, bool backupGoesWell = true) {
        RepeatQuestions questions;
        questions.DeleteRepeats = [this, answers] {
            EXPECT_LT(Asked, answers.size()) << "asked once more than expected";
            return Asked < answers.size() && answers[Asked++];
        };
        questions.MakeBackup = [this, backupGoesWell] {
            Events.push_back("backup of " + std::to_string(RecordCount("ZUKORHDR")));
            return backupGoesWell;
        };
        questions.BackupFailed = [this] { Events.push_back("told"); };
        questions.CalcPCTotals = [this] {
            Events.push_back("totals of " + std::to_string(RecordCount("ZUKORHDR")));
        };
        return questions;
    }

    Rows Orders() const { return Column("ZUKORHDR", "H_ORDCODE"); }
    Rows OrderMarks() const { return Column("ZUKORHDR", "H_CUST_PO"); }
    Rows Keys() const { return Column("ZUKORLIN", "L_KEY"); }
    Rows LineMarks() const { return Column("ZUKORLIN", "L_BARCODE"); }

    std::size_t Asked = 0;
    Rows Events;
};

TEST_F(OrderCheckTest, HeadersAreSortedByOrderCodeAndEqualOnesKeepTheirOrder) {
    GivenOrders({"b2", "A1", "B2",
                 "\xE4"
                 "1",
                 "", "B10"},
                {});
    PCOrders book = Open();

    SortOrHdrFile(book);

    EXPECT_EQ(Orders(), (Rows{"", "A1",
                              "\xE4"
                              "1",
                              "B10", "b2", "B2"}));
    EXPECT_EQ(OrderMarks(), (Rows{"h5", "h2", "h4", "h6", "h1", "h3"}));
    EXPECT_EQ(book.Tables.FGHdr.Cell(1, 5), "h5") << "the copy says what the table holds";
}

TEST_F(OrderCheckTest, LinesAreSortedByTheirKeyAndNotByTheirOrder) {
    GivenTable("ZUKORLIN", {{{"L_KEY", "3"}, {"L_ORDCODE", "A"}}, {{"L_KEY", "1"}, {"L_ORDCODE", "Z"}}});
    GivenTable("ZUKORHDR");
    PCOrders book = Open();

    SortOrLinFile(book);

    EXPECT_EQ(Column("ZUKORLIN", "L_ORDCODE"), (Rows{"Z", "A"}));
    EXPECT_EQ(book.Tables.FGLin.Cell(2, 6), "3");
}

TEST_F(OrderCheckTest, SortWritesEveryFieldAnew) {
    GivenFile("ZUKORHDR.DBF", TableMaker({{"H_ORDCODE", 'C', 4}, {"H_NUM", 'N', 4, 0}, {"H_DATE", 'D', 8}})
                                  .Row({" b", " 5", "20261115"})
                                  .Row({"a", "", "12/31/25"}, '*')
                                  .Bytes());
    GivenTable("ZUKORLIN");
    PCOrders book = Open();

    SortOrHdrFile(book);

    EXPECT_EQ(Row("ZUKORHDR", 1), (Fields{{"H_ORDCODE", "a"}, {"H_NUM", "0"}, {"H_DATE", "20251231"}}));
    EXPECT_EQ(Row("ZUKORHDR", 2), (Fields{{"H_ORDCODE", "b"}, {"H_NUM", "5"}, {"H_DATE", "20261115"}}));
    EXPECT_EQ(TableContent(Bytes(PathOf("ZUKORHDR"))).Flags, "  ") << "a record marked as deleted comes back";
    EXPECT_EQ(book.Tables.FGHdr.Cell(1, 2), "0") << "the copy is filled again after the sort";
}

TEST_F(OrderCheckTest, TableThatHasChangedItsFieldsSinceItWasReadStaysAsItIs) {
    GivenOrders({"B", "A"}, {});
    PCOrders book = Open();
    GivenFile("ZUKORHDR.DBF", TableMaker({{"H_ORDCODE", 'C', 4}}).Row({"Z"}).Bytes());
    const std::string before = Bytes(PathOf("ZUKORHDR"));

    EXPECT_EQ(FailureNumber([&] { SortOrHdrFile(book); }), 5);

    EXPECT_EQ(Bytes(PathOf("ZUKORHDR")), before);
    EXPECT_EQ(book.Tables.FGHdr.Cell(1, 1), "B");
}

TEST_F(OrderCheckTest, SortedTableHasTheBytesOfTheSortStepByStep) {
    std::mt19937 random(20261115);
    for (int round = 0; round < 60; ++round) {
        Rows orders;
        for (std::size_t k = random() % 12; k > 0; --k) {
            orders.push_back(std::string(1, "aAbB1 \xE4"[random() % 7]) + std::to_string(random() % 3));
        }
        GivenOrders(orders, {});
        const std::string path = PathOf("ZUKORHDR");
        const std::string before = Bytes(path);

        const MemoryTable copy = LoadTable(path);
        std::vector<std::int32_t> order;
        for (std::int32_t k = 1; k <= copy.RecordCount(); ++k) {
            // Put in behind all that do not come after it.
            const auto place = std::find_if(order.begin(), order.end(), [&](std::int32_t other) {
                return TextCompare(copy.Cell(other, 1), copy.Cell(k, 1)) > 0;
            });
            order.insert(place, k);
        }
        TableTrace();
        DBFEdit table;
        EmptyStepByStep(table, path);
        table.FileOpen(path);
        BeginAppending(table);
        for (const std::int32_t record : order) {
            table.Go(DBFEdit::Append);
            for (int k = 1; k <= copy.FieldCount(); ++k)
                table.WriteData(k, std::string(copy.Cell(record, k)));
            table.UpDate();
        }
        table.FileClose();
        const std::string expected = Bytes(path);
        const Rows steps = TableTrace();
        GivenFile("ZUKORHDR.DBF", before);
        PCOrders book = Open();
        TableTrace();

        SortOrHdrFile(book);

        const std::string got = Bytes(path);
        ASSERT_EQ(got, expected.substr(0, got.size()));
        Rows trace = TableTrace();
        trace.resize(steps.size()); // the copy is read once more behind them
        EXPECT_EQ(trace, steps);
    }
}

TEST_F(OrderCheckTest, OrderUploadedTwiceIsLeftOnceAfterAYes) {
    GivenOrders({"A1", "A2", "A1"}, {"A1-1", "A1-2", "A2-1", "A1-1", "A1-2"});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({true}));

    EXPECT_EQ(Orders(), (Rows{"A1", "A2"}));
    EXPECT_EQ(OrderMarks(), (Rows{"h1", "h2"}));
    EXPECT_EQ(Keys(), (Rows{"A1-1", "A1-2", "A2-1"}));
    EXPECT_EQ(LineMarks(), (Rows{"l1", "l2", "l3"}));
    EXPECT_EQ(Asked, 1U);
    EXPECT_EQ(Events, (Rows{"backup of 3", "totals of 3"})) << "the backup still holds both copies";
    EXPECT_EQ(book.Tables.FGHdr.RecordCount(), 2);
    EXPECT_EQ(book.Tables.FGLin.RecordCount(), 3);
}

TEST_F(OrderCheckTest, NoAtEveryQuestionLeavesBothTablesAsSorted) {
    GivenOrders({"A2", "A1", "a1", "A1"}, {"2", "1", "1"});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({false, false, false}));

    EXPECT_EQ(Asked, 3U) << "two repeats of the header and one of the line";
    EXPECT_EQ(Orders(), (Rows{"A1", "a1", "A1", "A2"}));
    EXPECT_EQ(Keys(), (Rows{"1", "1", "2"}));
    EXPECT_EQ(Events, Rows{});
}

TEST_F(OrderCheckTest, RepeatsRefusedBeforeTheYesStay) {
    GivenOrders({"A1", "A1", "A2", "A2"}, {});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({false, true}));

    EXPECT_EQ(OrderMarks(), (Rows{"h1", "h2", "h3"}));
}

TEST_F(OrderCheckTest, SecondAndThirdOfThreeEqualKeysAreDropped) {
    GivenOrders({"A1", "A1", "A1"}, {});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({true}));

    EXPECT_EQ(OrderMarks(), (Rows{"h1"}));
}

TEST_F(OrderCheckTest, OrdersThatComeInWhileTheQuestionWaitsAreNotLost) {
    GivenOrders({"A1", "A1"}, {});
    PCOrders book = Open();
    RepeatQuestions questions = Answering({});
    questions.DeleteRepeats = [&] {
        GivenOrders({"A1", "A1", "A2"}, {});
        return true;
    };

    EXPECT_EQ(FailureNumber([&] { QualityCheckOrders(book, questions); }), 75);

    EXPECT_EQ(Orders(), (Rows{"A1", "A1", "A2"}));
}

TEST_F(OrderCheckTest, RepeatsOfLinesAloneRaiseTheQuestion) {
    GivenOrders({"A1", "A2"}, {"1", "1"});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({true}));

    EXPECT_EQ(OrderMarks(), (Rows{"h1", "h2"}));
    EXPECT_EQ(LineMarks(), (Rows{"l1"}));
}

TEST_F(OrderCheckTest, OneRecordIsNotAskedAbout) {
    for (const char* key : {"A1", ""}) {
        GivenOrders({key}, {key});
        PCOrders book = Open();

        QualityCheckOrders(book, Answering({}));

        EXPECT_EQ(RecordCount("ZUKORHDR"), 1);
        EXPECT_EQ(RecordCount("ZUKORLIN"), 1);
    }
}

TEST_F(OrderCheckTest, EmptyTablesAreNotAskedAbout) {
    GivenOrders({}, {});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({}));

    EXPECT_EQ(RecordCount("ZUKORHDR"), 0);
}

TEST_F(OrderCheckTest, CheckWithoutTheSortStillSortsBothTables) {
    GivenOrders({"B", "A"}, {"2", "1"});
    PCOrders book = Open();
    ExportJob job;
    job.QualityCheck = true;

    PrepareOrders(job, book, Answering({}));

    EXPECT_EQ(Orders(), (Rows{"A", "B"}));
    EXPECT_EQ(Keys(), (Rows{"1", "2"}));
    EXPECT_FALSE(book.Sorted);
}

TEST_F(OrderCheckTest, SortAndCheckSortOnce) {
    GivenOrders({"B", "A"}, {"2", "1"});
    PCOrders book = Open();
    ExportJob job;
    job.SortOrders = true;
    job.QualityCheck = true;
    TableTrace();

    PrepareOrders(job, book, Answering({}));

    EXPECT_TRUE(book.Sorted);
    const Rows trace = TableTrace();
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "DBFEdit:ReIndex " + PathOf("ZUKORHDR")), 1);
}

TEST_F(OrderCheckTest, NeitherSortNorCheckLeavesTheTables) {
    GivenOrders({"B", "A", "A"}, {"2", "1"});
    const std::string before = Bytes(PathOf("ZUKORHDR"));
    PCOrders book = Open();

    PrepareOrders(ExportJob{}, book, Answering({}));

    EXPECT_EQ(Bytes(PathOf("ZUKORHDR")), before);
}

TEST_F(OrderCheckTest, FailedBackupIsToldAndTheDeletionGoesOn) {
    GivenOrders({"A1", "A1"}, {});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({true}, false));

    EXPECT_EQ(Events, (Rows{"backup of 2", "told", "totals of 2"}));
    EXPECT_EQ(RecordCount("ZUKORHDR"), 1);
}

TEST_F(OrderCheckTest, OrderWhoseCodeIsAnAsteriskIsKept) {
    GivenOrders({"*", "A1", "A1"}, {});
    PCOrders book = Open();

    QualityCheckOrders(book, Answering({true}));

    EXPECT_EQ(Orders(), (Rows{"*", "A1"}));
}

TEST_F(OrderCheckTest, FullDiskLeavesTheTableAsItWas) {
    GivenOrders({"B", "A"}, {});
    PCOrders book = Open();
    const std::string before = Bytes(PathOf("ZUKORHDR"));
    FaultyDisk disk(2);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { SortOrHdrFile(book); }).Number, 61);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(PathOf("ZUKORHDR")), before);
    EXPECT_EQ(book.Tables.FGHdr.Cell(1, 1), "B");
}

TEST_F(OrderCheckTest, ExportAfterARefusedCheckWritesTheRepeats) {
    GivenOrders({"A1", "A1"}, {"A1-1", "A1-1"});
    PCOrders book = Open();
    ExportJob job;
    job.ExportFile = Folder() + "out.csv";
    job.Columns = {"H_CUST_PO", "L_KEY"};
    job.QualityCheck = true;
    NoProgress nobody;

    PrepareOrders(job, book, Answering({false, false}));
    ExportOrders(job, book.Tables, nobody);

    EXPECT_EQ(Lines(job.ExportFile), (Rows{"h1,A1-1", "h1,A1-1"}));
}

} // namespace
