#include "quality/FlexGridPrint.h"

#include "support/EngineTest.h"
#include "support/PaperInMemory.h"

#include <algorithm>

namespace {

using Words = std::vector<std::string>;

constexpr int AllPages = 1 << 30;
constexpr int LineHeight = PaperInMemory::LineHeight;
constexpr int Margin = 60;

Text Value(const std::string& words) {
    return Text::Value(std::string_view(words));
}

class FlexGridPrintTest : public EngineTest {
protected:
    static PrintGrid::Row RowOf(const Words& cells, int height = 0) {
        PrintGrid::Row row;
        for (const std::string& cell : cells) row.Cells.push_back(Value(cell));
        row.Height = height;
        return row;
    }

    /// The headings and rows under them.
    static PrintGrid Grid(const std::vector<Words>& rows, int height = 0) {
        PrintGrid grid;
        grid.Widths = {1200, 2850, 1425, 2850, 2880};
        grid.Rows.push_back(RowOf({"Severity", "Configurator Group", "Problem", "Issue", "Correction"}));
        for (const Words& row : rows) grid.Rows.push_back(RowOf(row, height));
        return grid;
    }

    void Print(PrintGrid grid, const std::string& company = "Acme Hardware") {
        FlexGridPrint report(std::move(grid), company, {2026, 11, 15, 14, 5, 9});
        ReportRun(report, paper_).Step(AllPages);
        EXPECT_TRUE(paper_.Ended);
        EXPECT_EQ(report.WhenPrinted().Utf8(), "Printing complete!");
    }

    const PaperInMemory::Piece& Find(const std::string& words, std::size_t page = 0) const {
        const auto& pieces = paper_.Printed.at(page).Pieces;
        const auto at = std::find_if(pieces.begin(), pieces.end(),
                                     [&](const auto& piece) { return piece.Words == words; });
        if (at == pieces.end()) {
            ADD_FAILURE() << "not printed: " << words;
            return pieces.front();
        }
        return *at;
    }

    /// The lines of a column over all pages, without the headings.
    Words Column(int left) const {
        Words lines;
        for (const auto& page : paper_.Printed) {
            for (const auto& piece : page.Pieces) {
                if (piece.Left == left + Margin && !piece.Font.Bold) lines.push_back(piece.Words);
            }
        }
        return lines;
    }

    void ExpectEverythingOnThePaper() const {
        for (const auto& page : paper_.Printed) {
            for (const auto& box : page.Boxes) {
                EXPECT_LE(box.Left + box.Width, paper_.Width);
                EXPECT_LE(box.Top + box.Height, paper_.Height * 94 / 100 - 200);
            }
        }
    }

    PaperInMemory paper_;
};

TEST_F(FlexGridPrintTest, TitleCompanyAndMomentStandWhereTheyAreTold) {
    Print(Grid({}));

    const auto& title = Find("Quality Check");
    EXPECT_EQ(title.Left, (12000 - 1300 - 200) / 2);
    EXPECT_EQ(title.Top, LineHeight / 2 + 300);
    EXPECT_TRUE(title.Font.Bold);
    const auto& company = Find("Acme Hardware");
    EXPECT_EQ(company.Left, (12000 - 1300 - 200) / 2);
    EXPECT_EQ(company.Top, LineHeight / 2 + 700);
    const std::string moment = "Printed on 2026-11-15 at 02:05 PM";
    EXPECT_EQ(Find(moment).Left, 12000 - static_cast<int>(moment.size()) * 100 - 500);
    EXPECT_GE(Find(moment).Top, company.Top + LineHeight);
}

TEST_F(FlexGridPrintTest, ACompanyWiderThanThePageBeginsAtItsEdge) {
    Print(Grid({}), std::string(130, 'W'));
    EXPECT_EQ(Find(std::string(130, 'W')).Left, 0);
}

TEST_F(FlexGridPrintTest, TheHeadingsAreBoldAndStandInBoxesOfTheToldWidths) {
    Print(Grid({{"Fatal", "Group", "Blank", "In records", "Fill"}}));

    ASSERT_EQ(paper_.Printed.size(), 1U);
    const auto& boxes = paper_.Printed[0].Boxes;
    ASSERT_EQ(boxes.size(), 10U);
    EXPECT_EQ(boxes[1].Left, 1200);
    EXPECT_EQ(boxes[4].Width, 2880);
    EXPECT_TRUE(Find("Severity").Font.Bold);
    EXPECT_FALSE(Find("Fatal").Font.Bold);
    EXPECT_GE(boxes[5].Top, boxes[0].Top + boxes[0].Height);
}

TEST_F(FlexGridPrintTest, LongCellsWrapAtBlanksAndLineFeedsAndInsideAWordThatFitsNoLine) {
    // 28 characters fit 2850 twips less the margins: 27.
    Print(Grid(
        {{"Fatal", "", "",
          "Customer code field in table\nRecords: 1, 2\n\nABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 end", ""}}));

    EXPECT_EQ(Column(5475), (Words{"Customer code field in", "table", "Records: 1, 2", "",
                                   "ABCDEFGHIJKLMNOPQRSTUVWXYZ0", "123456789 end"}));
    EXPECT_EQ(paper_.Printed[0].Boxes[5].Height, 6 * LineHeight + 2 * Margin);
}

TEST_F(FlexGridPrintTest, ARowIsAsHighAsOnTheScreenButNeverLowerThanItsTextNorMuchHigher) {
    PrintGrid grid = Grid({});
    for (const int told : {500, 10, 20000}) grid.Rows.push_back(RowOf({"Fatal", "a", "b", "c", "d"}, told));
    Print(std::move(grid));

    EXPECT_EQ(paper_.Printed[0].Boxes[5].Height, 500);
    EXPECT_EQ(paper_.Printed[0].Boxes[10].Height, LineHeight + 2 * Margin);
    EXPECT_EQ(paper_.Printed[0].Boxes[15].Height, 3 * LineHeight + 2 * Margin);
}

TEST_F(FlexGridPrintTest, RowsThatDoNotFitGoToTheNextPageBelowTheHeadings) {
    std::vector<Words> rows;
    for (int k = 1; k <= 100; ++k) rows.push_back({"Fatal", "Row " + std::to_string(k), "", "", ""});
    Print(Grid(rows));

    EXPECT_GT(paper_.Printed.size(), 2U);
    for (std::size_t page = 0; page < paper_.Printed.size(); ++page) {
        Find("Severity", page);
        EXPECT_EQ(paper_.Printed[page].Boxes.front().Top == 300, page > 0);
    }
    const Words printed = Column(1200);
    ASSERT_EQ(printed.size(), 100U);
    EXPECT_EQ(printed.front(), "Row 1");
    EXPECT_EQ(printed.back(), "Row 100");
    ExpectEverythingOnThePaper();
}

TEST_F(FlexGridPrintTest, ARowHigherThanAPageGoesOnOverSeveralAndLosesNoLine) {
    std::string issue = "1";
    for (int k = 2; k <= 200; ++k) issue += "\n" + std::to_string(k);
    Print(Grid(
        {{"Fatal", "before", "", "", ""}, {"Fatal", "long", "", issue, ""}, {"Warn", "behind", "", "", ""}}));

    const Words printed = Column(5475);
    ASSERT_GE(printed.size(), 200U);
    EXPECT_GE(paper_.Printed.size(), 4U);
    Words expected;
    for (int k = 1; k <= 200; ++k) expected.push_back(std::to_string(k));
    Words numbers;
    std::copy_if(printed.begin(), printed.end(), std::back_inserter(numbers),
                 [](const std::string& line) { return !line.empty(); });
    EXPECT_EQ(numbers, expected);
    Find("before", 0);
    Find("behind", paper_.Printed.size() - 1);
    ExpectEverythingOnThePaper();
}

TEST_F(FlexGridPrintTest, OnPaperTooNarrowForTheColumnsTheyShareWhatThereIs) {
    paper_.Width = 5600;
    Print(Grid({{"Fatal", "Group", "Blank", "In records", "Fill"}}));
    ExpectEverythingOnThePaper();
    EXPECT_EQ(paper_.Printed[0].Boxes[0].Width, 1200 * 5600 / 11205);
}

TEST_F(FlexGridPrintTest, PaperTooSmallForAnythingComesToAnEnd) {
    paper_.Width = 50;
    paper_.Height = 50;
    Print(Grid({{"Fatal", "ab cd", "Blank", "In records\n1", "Fill"}}));
    EXPECT_LT(paper_.Printed.size(), 20U);
    EXPECT_GT(paper_.Printed.size(), 1U);
}

} // namespace
