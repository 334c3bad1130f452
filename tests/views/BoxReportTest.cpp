#include "views/BoxReport.h"

#include "core/Messages.h"
#include "store/TableCatalogue.h"
#include "support/CountingDisk.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/PaperInMemory.h"
#include "support/TableMaker.h"
#include "views/TableViews.h"

#include <algorithm>

namespace {

using Row = std::vector<std::string>;

constexpr int AllPages = 1 << 30;

// The whole pages are written out here and not fetched, so that a change of the catalogue is noticed.

const std::string TotalsHead = R"(


                                                 SUMMARY OF TOTALS
                                                 -----------------
                                                                                                              Page 1

--------------------------------------------------------------------------------------------------------------------
|-----                  LAST EVENT                  -----|-----  TOTAL PC   -----|                |MACH. |LAST ORD.|
|EVENT          |DATE/TIME         |ORD'S|LINES|  $ TOTAL|ORD'S|LINES|    $ TOTAL|HOTSYNC ID      |NUMBER|   NUMBER|
--------------------------------------------------------------------------------------------------------------------
)";
const std::string TotalsEnd = "                                               *** End of Report ***\n";

const std::string OrHdrAudtHead = R"(


                                            ORDER HEADER AUDIT
                                            ------------------
                                                                                                          Page 1

----------------------------------------------------------------------------------------------------------------
| ORDER# |   CUSTOMER CODE    |ORD. TOTAL|PRINT STATUS| USER ID |DEL TYPE |   DATE    |    TIME    | MACHINE # |
----------------------------------------------------------------------------------------------------------------
)";
const std::string OrHdrAudtEnd = "                                             *** End of Report ***\n";

const std::string OrLinAudtHead = R"(


                            ORDER LINE AUDIT
                            ----------------
                                                                     Page 1

---------------------------------------------------------------------------
|   KEY    |   ITEM CODE   | USER ID |   DATE    |   TIME     | MACHINE # |
---------------------------------------------------------------------------
)";

const std::string AudtHHHead = R"(


                                    HANDHELD TOTALS
                                    ---------------
                                                                                  Page 1

----------------------------------------------------------------------------------------
|TOTAL  |TOTAL  |  TOTAL   | USER | MACH.  | LAST ORD. |          |            |       |
|ORDERS |LINES  |  $ VALUE | ID   | NUMBER | NUMBER    |   DATE   |    TIME    | EVENT |
----------------------------------------------------------------------------------------
)";
const std::string NarrowEnd = "                              *** End of Report ***\n";

class BoxReportTest : public EngineTest {
protected:
    static TableMaker Totals() {
        return TableMaker({{"TP_NUMHEAD", 'N', 10},
                           {"TP_NUMLINE", 'N', 10},
                           {"TP_DOL_LIN", 'N', 16, 4},
                           {"TP_CURHEAD", 'N', 10},
                           {"TP_CURLINE", 'N', 10},
                           {"TP_CURDOL", 'N', 16, 4},
                           {"TP_MACHINE", 'C', 4},
                           {"TP_EVENT", 'C', 16},
                           {"TP_DATETIM", 'C', 19},
                           {"TP_HOTSYNC", 'C', 30},
                           {"TP_LSTONUM", 'C', 12}});
    }
    static TableMaker OrHdrAudt() {
        return TableMaker({{"A_ORDCODE", 'C', 12},
                           {"A_CUSTCODE", 'C', 20},
                           {"A_TOTTOTAL", 'N', 14, 2},
                           {"A_PRT_STAT", 'C', 1},
                           {"A_DELTYPE", 'C', 10},
                           {"A_DATE", 'D', 8},
                           {"A_TIME", 'C', 8},
                           {"A_MACH_ID", 'C', 4}});
    }
    static TableMaker OrLinAudt() {
        return TableMaker({{"A_KEY", 'C', 20},
                           {"A_ITEMCODE", 'C', 20},
                           {"A_DATE", 'D', 8},
                           {"A_TIME", 'C', 8},
                           {"A_MACH_ID", 'C', 4}});
    }
    static TableMaker AudtHH() {
        return TableMaker({{"TH_NUMHEAD", 'N', 10},
                           {"TH_NUMLINE", 'N', 10},
                           {"TH_DOL_LIN", 'N', 16, 4},
                           {"TH_MACHINE", 'C', 4},
                           {"TH_LASTONU", 'C', 12},
                           {"TH_DATE", 'D', 8},
                           {"TH_TIME", 'C', 8},
                           {"TH_EVENT", 'C', 16}});
    }

    std::unique_ptr<TableGrid> Grid(TableMaker maker, const std::vector<Row>& rows, const char* table) {
        for (const Row& row : rows) maker.Row(row);
        path_ = GivenFile("T.DBF", maker.Bytes());
        const TableEntry* entry = FindTable(table);
        if (!entry || std::string_view(table) == "ZUKTOTALPC.DBF")
            return std::make_unique<TableGrid>(path_, TotalsColumns);
        return std::make_unique<TableGrid>(
            path_, [entry](const TableLayout& layout) { return DataColumns(*entry, layout); });
    }
    std::unique_ptr<TableGrid> AuditGrid(const std::vector<Row>& rows) {
        return Grid(OrHdrAudt(), rows, "ZUKAUDTH.DBF");
    }
    /// So many audit rows, of orders A1 on.
    std::unique_ptr<TableGrid> AuditGrid(int count) {
        std::vector<Row> rows;
        for (int k = 1; k <= count; ++k) rows.push_back({"A" + std::to_string(k)});
        return AuditGrid(rows);
    }

    void Print(const BoxForm& form, std::unique_ptr<GridData> rows, int pageLength = UsualPageLength) {
        BoxReport report(form, std::move(rows), pageLength);
        ReportRun(report, paper_).Step(AllPages);
        EXPECT_TRUE(paper_.Ended);
    }

    /// The data lines of a page, from 0: between the head and the line below the rows.
    std::vector<std::string> RowsOf(std::size_t page, std::size_t headLines = 10) const {
        std::vector<std::string> rows;
        const auto& lines = paper_.Printed.at(page).Lines;
        for (std::size_t k = headLines; k + 1 < lines.size(); ++k) rows.push_back(lines[k].Words);
        return rows;
    }
    std::string LastLine(std::size_t page) const { return paper_.Printed.at(page).Lines.back().Words; }

    PaperInMemory paper_;
    std::string path_;
};

TEST_F(BoxReportTest, NoRowsGiveThePageHeadAndTheEndLineInEachReport) {
    const struct {
        const BoxForm& Form;
        TableMaker Table;
        const char* File;
        std::string Page;
    } reports[] = {{TotalsForm(), Totals(), "ZUKTOTALPC.DBF", TotalsHead + TotalsEnd},
                   {OrHdrAudtForm(), OrHdrAudt(), "ZUKAUDTH.DBF", OrHdrAudtHead + OrHdrAudtEnd},
                   {OrLinAudtForm(), OrLinAudt(), "ZUKAUDTL.DBF", OrLinAudtHead + NarrowEnd},
                   {AudtHHForm(), AudtHH(), "ZUKAUDHH.DBF", AudtHHHead + NarrowEnd}};
    for (const auto& each : reports) {
        PaperInMemory paper;
        BoxReport report(each.Form, Grid(each.Table, {}, each.File), UsualPageLength);
        ReportRun(report, paper).Step(AllPages);

        EXPECT_TRUE(paper.Ended);
        ASSERT_EQ(paper.Printed.size(), 1U) << each.File;
        EXPECT_EQ(paper.TextOf(0), each.Page);
        EXPECT_EQ(paper.FontName, "Courier New");
        EXPECT_EQ(paper.FontPoints, 8);
    }
}

TEST_F(BoxReportTest, TheTotalsStandInElevenBoxes) {
    Print(TotalsForm(), Grid(Totals(),
                             {{"2", "5", "10.5", "12", "15", "1110.5", "M1", "UPLOAD-ADD", "2026-11-15 10:02",
                               "Anna Berg", "M1000002"},
                              {"0", "0", "0", "0", "0", "0", "", "CLEAR", "2026-11-14 9:00", "", ""}},
                             "ZUKTOTALPC.DBF"));

    EXPECT_EQ(
        paper_.TextOf(0),
        TotalsHead +
            "|UPLOAD-ADD     |2026-11-15 10:02  |   12|   15|  1110.50|    2|    5|      10.50|Anna Berg   "
            "    |M1    |M1000002 |\n"
            "|CLEAR          |2026-11-14 9:00   |    0|    0|     0.00|    0|    0|       0.00|            "
            "    |      |         |\n" +
            TotalsEnd);
}

TEST_F(BoxReportTest, TheHeaderAuditLeavesTheUsersBoxEmptyForATableWithoutOne) {
    Print(OrHdrAudtForm(),
          AuditGrid({{"A0000001", "CUST-1", "431.50", "Y", "SINGLE", "20261115", "10:02:00", "A001"}}));

    EXPECT_EQ(
        paper_.TextOf(0),
        OrHdrAudtHead +
            "|A0000001|CUST-1              |    431.50|Y           |         |SINGLE   |20261115   |10:02:00 "
            "   |A001       |\n" +
            OrHdrAudtEnd);
}

TEST_F(BoxReportTest, ATableWithAColumnForEachBoxFillsThemAll) {
    TableMaker maker({{"A_KEY", 'C', 8},
                      {"A_ITEMCODE", 'C', 8},
                      {"A_USERID", 'C', 8},
                      {"A_DATE", 'D', 8},
                      {"A_TIME", 'C', 8},
                      {"A_MACH_ID", 'C', 4},
                      {"A_MORE", 'C', 4}});
    Print(OrLinAudtForm(),
          Grid(maker, {{"K1", "I1", "anna", "20261115", "10:02:00", "A001", "more"}}, "ZUKAUDTL.DBF"));

    EXPECT_EQ(paper_.TextOf(0),
              OrLinAudtHead +
                  "|K1        |I1             |anna     |20261115   |10:02:00    |A001       |\n" +
                  NarrowEnd);
}

TEST_F(BoxReportTest, TheLineAuditStandsInSixBoxes) {
    Print(OrLinAudtForm(),
          Grid(OrLinAudt(), {{"A000000101", "H1", "20261115", "10:02:00", "A001"}}, "ZUKAUDTL.DBF"));

    EXPECT_EQ(paper_.TextOf(0),
              OrLinAudtHead +
                  "|A000000101|H1             |         |20261115   |10:02:00    |A001       |\n" +
                  NarrowEnd);
}

TEST_F(BoxReportTest, TheHandheldTotalsStandInNineBoxes) {
    Print(AudtHHForm(),
          Grid(AudtHH(), {{"3", "12", "431.5", "A001", "A001000003", "20261115", "10:02:00", "UPLOAD"}},
               "ZUKAUDHH.DBF"));

    EXPECT_EQ(
        paper_.TextOf(0),
        AudtHHHead +
            "|      3|     12|     431.5|      |A001    |A001000003 |20261115  |10:02:00    |UPLOAD |\n" +
            NarrowEnd);
}

TEST_F(BoxReportTest, TitleAndItsDashesAreBoldAndNothingElseIs) {
    Print(OrHdrAudtForm(), AuditGrid(1));
    std::vector<std::string> bold;
    for (const auto& line : paper_.Printed[0].Lines) {
        if (line.Bold) bold.push_back(line.Words);
    }
    EXPECT_EQ(bold, (std::vector<std::string>{"", std::string(44, ' ') + "ORDER HEADER AUDIT",
                                              std::string(44, ' ') + "------------------"}));
}

TEST_F(BoxReportTest, EachReportIsAsWideAsItsHeadLinesAndDashes) {
    for (const BoxForm* form : {&TotalsForm(), &OrHdrAudtForm(), &OrLinAudtForm(), &AudtHHForm()}) {
        const auto width = static_cast<std::size_t>(form->Width);
        for (const MessageId line : form->Head) EXPECT_EQ(Text(line).CodePage().size(), width);
        PaperInMemory paper;
        BoxReport report(*form, AuditGrid(1), UsualPageLength);
        ReportRun(report, paper).Step(AllPages);
        for (const auto& line : paper.Printed[0].Lines) {
            if (!line.Words.starts_with('|')) continue;
            EXPECT_EQ(line.Words.size(), width) << line.Words;
        }
    }
}

TEST_F(BoxReportTest, AValueLongerThanItsBoxIsNotCutAndTheLineFindsItsPlaceAgain) {
    Print(OrHdrAudtForm(), AuditGrid({{"A00100000128", "C1", "1234567890.25", "Y", "", "", "", "A001"},
                                      {"", "", "12345678901.25", "", "EVERYTHING"}}));

    const auto rows = RowsOf(0);
    EXPECT_EQ(rows[0],
              "|A00100000128|C1              |1234567890.25|Y        |         |         |           |"
              "            |A001       |");
    EXPECT_EQ(rows[1],
              "|        |                    |12345678901.25|        |         |EVERYTHING|          |"
              "            |           |");
}

TEST_F(BoxReportTest, TheMomentOfATotalsEventIsACharacterLongerThanItsBoxAndStandsWhole) {
    Print(TotalsForm(),
          Grid(Totals(), {{"2", "5", "1", "3", "4", "2", "M1", "EXPORT", "2026-11-15 10:02:00"}},
               "ZUKTOTALPC.DBF"));

    EXPECT_TRUE(RowsOf(0, 11)[0].starts_with("|EXPORT         |2026-11-15 10:02:00|   3|    4|"));
}

TEST_F(BoxReportTest, AControlCharacterInACellDoesNotBreakTheLine) {
    Print(OrHdrAudtForm(), AuditGrid({{"A\n1\t", "C\x7F\x01"
                                                 "2"},
                                      {"\xE9"}}));
    EXPECT_TRUE(RowsOf(0)[0].starts_with("|A 1     |C  2                |"));
    EXPECT_TRUE(RowsOf(0)[1].starts_with("|\xE9       |"));
}

// ---- pages ----

TEST_F(BoxReportTest, RowsThatJustFillOnePagePrintNoContinuationLine) {
    Print(OrHdrAudtForm(), AuditGrid(20), 30);

    ASSERT_EQ(paper_.Printed.size(), 1U);
    EXPECT_EQ(paper_.Printed[0].Lines.size(), 31U); // the end line stands below the counted ones
    EXPECT_EQ(RowsOf(0).size(), 20U);
    EXPECT_EQ(LastLine(0) + "\n", OrHdrAudtEnd);
    EXPECT_EQ(paper_.TextOf(0).find("Continued"), std::string::npos);
}

TEST_F(BoxReportTest, OneRowMoreMakesASecondPageWhichTheContinuationLineNames) {
    Print(OrHdrAudtForm(), AuditGrid(21), 30);

    ASSERT_EQ(paper_.Printed.size(), 2U);
    EXPECT_EQ(LastLine(0),
              "                             -----------------  Continued on Page 2  ----------------");
    EXPECT_EQ(RowsOf(0).size(), 20U);
    ASSERT_EQ(RowsOf(1).size(), 1U);
    EXPECT_TRUE(RowsOf(1)[0].starts_with("|A21     |"));
    std::string secondHead = OrHdrAudtHead;
    secondHead.replace(secondHead.find("Page 1"), 6, "Page 2");
    EXPECT_EQ(paper_.TextOf(1), secondHead + RowsOf(1)[0] + "\n" + OrHdrAudtEnd);
}

TEST_F(BoxReportTest, ThreePagesHoldEveryRowOnceInItsOrder) {
    auto rows = AuditGrid(50);
    rows->Sort(0, true);
    Print(OrHdrAudtForm(), std::move(rows), 30);

    ASSERT_EQ(paper_.Printed.size(), 3U);
    int expected = 50;
    for (std::size_t page = 0; page < 3; ++page) {
        for (const std::string& row : RowsOf(page)) {
            EXPECT_EQ(row.substr(1, 8), ("A" + std::to_string(expected--) + "        ").substr(0, 8));
        }
    }
    EXPECT_EQ(expected, 0);
    EXPECT_EQ(LastLine(1),
              "                             -----------------  Continued on Page 3  ----------------");
    EXPECT_EQ(LastLine(2) + "\n", OrHdrAudtEnd);
}

TEST_F(BoxReportTest, SortedPagesAreTheSameOneBehindTheOtherAndEachByItself) {
    auto rows = AuditGrid(70);
    rows->Sort(0, true);
    BoxReport report(OrHdrAudtForm(), std::move(rows), 30);
    const auto print = [&report](std::int32_t page) {
        PaperInMemory paper;
        if (page == 1) report.Begin(paper);
        report.PrintPage(page, paper);
        return paper.TextOf(0);
    };
    const std::vector<std::string> inARow = {print(1), print(2), print(3), print(4)};

    EXPECT_NE(inARow[1], inARow[2]);
    for (const std::int32_t page : {4, 2, 3, 3, 2, 1, 2})
        EXPECT_EQ(print(page), inARow[static_cast<std::size_t>(page - 1)]) << page;
}

TEST_F(BoxReportTest, ASortedTableThatIsLargerThanWhatIsKeptOfItIsReadOnceAndNotForEachRow) {
    TableMaker maker({{"A_ORDCODE", 'C', 9},
                      {"A_CUSTCODE", 'C', 250},
                      {"A_TIME", 'C', 250},
                      {"A_MACH_ID", 'C', 250},
                      {"A_DELTYPE", 'C', 250}});
    constexpr int Rows = 4000; // of 1010 bytes: twice the blocks that are kept
    for (int k = 1; k <= Rows; ++k) maker.Row({std::to_string(10000 + k * 37 % Rows)});
    auto rows = Grid(std::move(maker), {}, "ZUKAUDTH.DBF");
    rows->Sort(1, false);
    CountingDisk disk;
    Global.TheDisk = &disk;

    Print(OrHdrAudtForm(), std::move(rows));

    Global.TheDisk = &NativeDisk();
    EXPECT_LT(disk.BytesRead, 3U * Rows * 1010);
    EXPECT_EQ(RowsOf(40).front().substr(1, 5), std::to_string(10000 + 40 * 50));
}

TEST_F(BoxReportTest, TheContinuationLineStandsWhereEachReportHasIt) {
    const std::pair<const BoxForm*, std::size_t> forms[] = {
        {&TotalsForm(), 29}, {&OrHdrAudtForm(), 29}, {&OrLinAudtForm(), 7}, {&AudtHHForm(), 14}};
    for (const auto& [form, blanks] : forms) {
        PaperInMemory paper;
        BoxReport report(*form, AuditGrid(30), 30);
        ReportRun(report, paper).Step(AllPages);
        EXPECT_EQ(paper.Printed[0].Lines.back().Words,
                  std::string(blanks, ' ') + "-----------------  Continued on Page 2  ----------------");
    }
}

TEST_F(BoxReportTest, ThePageLengthIsThatOfThePrintSettings) {
    EXPECT_EQ(PageLengthFrom(66), 66);
    EXPECT_EQ(PageLengthFrom(20), 20);
}

TEST_F(BoxReportTest, APageLengthThatIsHardlyMoreThanTheHeadIsNotTaken) {
    for (const std::int16_t lineMax : {-32768, -1, 0, 1, 11, 12, 19}) EXPECT_EQ(PageLengthFrom(lineMax), 60);
}

TEST_F(BoxReportTest, NoPageHasMoreLinesThanThePaper) {
    paper_.Capacity = 25;
    Print(OrHdrAudtForm(), AuditGrid(100), 66);

    for (const auto& page : paper_.Printed) EXPECT_LE(page.Lines.size(), 25U);
    EXPECT_EQ(paper_.Printed.size(), 8U); // 14 rows a page
}

TEST_F(BoxReportTest, PaperWithRoomForNothingStillTakesARowAPage) {
    paper_.Capacity = 0;
    Print(OrHdrAudtForm(), AuditGrid(3));
    EXPECT_EQ(paper_.Printed.size(), 3U);
}

// ---- the way to the printer ----

TEST_F(BoxReportTest, OnlyTheWantedPagesArePrinted) {
    paper_.Wanted = {2, 3};
    Print(OrHdrAudtForm(), AuditGrid(100), 30);

    ASSERT_EQ(paper_.Printed.size(), 2U);
    EXPECT_TRUE(RowsOf(0)[0].starts_with("|A21     |"));
    EXPECT_TRUE(RowsOf(1)[0].starts_with("|A41     |"));
}

TEST_F(BoxReportTest, PagesBehindTheLastOneAreTheLastOne) {
    paper_.Wanted = {7, 9};
    Print(OrHdrAudtForm(), AuditGrid(21), 30);
    ASSERT_EQ(paper_.Printed.size(), 1U);
    EXPECT_TRUE(RowsOf(0)[0].starts_with("|A21     |"));
}

TEST_F(BoxReportTest, StepsPrintWhatOneGoPrintsAndTheDocumentEndsBehindTheLast) {
    BoxReport whole(OrHdrAudtForm(), AuditGrid(100), 30);
    ReportRun(whole, paper_).Step(AllPages);
    PaperInMemory inSteps;
    BoxReport again(OrHdrAudtForm(), AuditGrid(100), 30);
    ReportRun run(again, inSteps);
    for (int step = 0; step < 2; ++step) {
        run.Step(2);
        EXPECT_FALSE(run.IsOver());
        EXPECT_FALSE(inSteps.Ended);
    }
    EXPECT_EQ(run.NextPage(), 5);
    run.Step(2);

    EXPECT_TRUE(run.IsOver());
    EXPECT_TRUE(inSteps.Ended);
    ASSERT_EQ(inSteps.Printed.size(), paper_.Printed.size());
    for (std::size_t page = 0; page < inSteps.Printed.size(); ++page)
        EXPECT_EQ(inSteps.TextOf(page), paper_.TextOf(page));
}

TEST_F(BoxReportTest, ATableThatIsReplacedOnTheWayIsNotPrinted) {
    BoxReport report(OrHdrAudtForm(), AuditGrid(100), 30);
    ReportRun run(report, paper_);
    run.Step(1);
    AuditGrid(3); // under the same name
    run.Step(1);

    EXPECT_TRUE(run.IsOver());
    EXPECT_TRUE(run.WasOutdated());
    EXPECT_FALSE(paper_.Ended);
}

TEST_F(BoxReportTest, AFailureOfThePrinterIsTheCallersAndNothingIsPrinted) {
    paper_.FailsAtPage = 2;
    BoxReport report(OrHdrAudtForm(), AuditGrid(100), 30);
    ReportRun run(report, paper_);

    EXPECT_EQ(FailureNumber([&] { run.Step(AllPages); }), 57);
    EXPECT_FALSE(paper_.Ended);
}

} // namespace
