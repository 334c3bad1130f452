#include "quality/RowWatch.h"

#include "quality/QualityTest.h"
#include "quality/ReportGrid.h"
#include "store/DBFEdit.h"
#include "support/CountingDisk.h"
#include "support/RefusingDisk.h"

#include <filesystem>

namespace {

class RowWatchTest : public QualityTest {
protected:
    RowWatchTest() {
        Given({.Tables = {{"ZUKCUST", {Customer("", "A1"), Customer("B-1", "B1"), Customer("COLE", "C1")}}}});
    }

    /// The rows about blank and about invalid searches: records 1 and 2.
    RowWatch Watching() { return RowWatch(ProblemsOf(Check::Customers).Rows()); }
    RowWatch Watching(Check check) { return RowWatch(ProblemsOf(check).Rows()); }

    void Write(int record, const char* field, const std::string& value) {
        DBFEdit table;
        table.FileOpen(Global.DBFPath + "ZUKCUST.DBF");
        table.Go(record);
        table.WriteData(field, value);
        table.UpDate();
        table.FileClose();
    }

    static std::string Changed(const RowWatch& watch, std::size_t rows) {
        std::string changed;
        for (std::size_t row = 0; row < rows; ++row) changed += watch.HasChanged(row) ? 'x' : '-';
        return changed;
    }
};

TEST_F(RowWatchTest, NothingHasChangedAtFirst) {
    RowWatch watch = Watching();

    EXPECT_FALSE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "--");
}

TEST_F(RowWatchTest, WithoutRowsNothingEverChanges) {
    RowWatch watch;
    Write(1, "C_SEARCH", "ABEL");

    EXPECT_FALSE(watch.Look());
}

TEST_F(RowWatchTest, ARepairedRecordMarksItsRowAndNoOther) {
    RowWatch watch = Watching();

    Write(2, "C_SEARCH", "B1");

    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "-x");
    EXPECT_FALSE(watch.Look()) << "no news";
    EXPECT_EQ(Changed(watch, 2), "-x");
}

TEST_F(RowWatchTest, ARecordOfNoRowMarksNothing) {
    RowWatch watch = Watching();

    Write(3, "C_NAME", "Cole & Sons");

    EXPECT_FALSE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "--");
}

TEST_F(RowWatchTest, WhatIsChangedBackIsAsItWas) {
    RowWatch watch = Watching();

    Write(2, "C_SEARCH", "B1");
    ASSERT_TRUE(watch.Look());
    Write(2, "C_SEARCH", "B-1");

    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "--");
}

TEST_F(RowWatchTest, ADeletedRecordBeforeItMovesTheRecordsOfARow) {
    RowWatch watch = Watching();
    {
        DBFEdit table;
        table.FileOpen(Global.DBFPath + "ZUKCUST.DBF");
        table.Go(1);
        table.DeleteRecord();
        table.ReIndex(Global.DBFPath + "ZUKCUST.DBF");
    }

    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "xx");
}

TEST_F(RowWatchTest, ATableThatIsGoneHoldsNoneOfTheRecordsAndMayComeBack) {
    RowWatch watch = Watching();
    const std::string path = Global.DBFPath + "ZUKCust.dbf";
    const std::string bytes = Bytes(path);
    std::filesystem::remove(path);

    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "xx");

    GivenFile("app/DBFFiles/ZUKCust.dbf", bytes);
    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "--");
}

TEST_F(RowWatchTest, ASortThatMovesNothingMarksNothing) {
    RowWatch watch = Watching();

    ProblemsOf(Check::Customers);

    watch.Look();
    EXPECT_EQ(Changed(watch, 2), "--");
}

TEST_F(RowWatchTest, AnEmptyTableThatIsFilledMarksItsRow) {
    RowWatch watch = Watching(Check::Payments);

    Given({.Tables = {{"ZUKPAY", {{{"PAY_CODE", "CASH"}}}}}});

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, AnEmptyTableThatGetsABlankRecordMarksItsRow) {
    RowWatch watch = Watching(Check::Payments);

    Given({.Tables = {{"ZUKPAY", {{{"PAY_CODE", ""}}}}}});

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, ATemplateThatIsRepairedMarksItsRow) {
    GivenTemplate("Upload/All.ust", "Orders=0\r\n");
    RowWatch watch = Watching(Check::Upload);

    GivenTemplate("Upload/All.ust", "Orders=1\r\n");
    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));

    GivenTemplate("Upload/All.ust", "Orders=0\r\n");
    EXPECT_TRUE(watch.Look());
    EXPECT_FALSE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, ATemplateThatIsDeletedMarksItsRow) {
    GivenTemplate("Upload/All.ust", "Orders=0\r\n");
    RowWatch watch = Watching(Check::Upload);

    std::filesystem::remove(Global.UploadTemplates + "All.ust");

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, AnImportFileThatArrivesMarksItsRow) {
    GivenTemplate("Import/Firms.cst", "firms.csv\r\n");
    RowWatch watch = Watching(Check::Import);

    GivenFile("app/DataIn/FIRMS.CSV", "A1");

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, ATemplateThatAnActivityMissedMarksItsRowWhenItIsMade) {
    GivenTemplate("QuickButtons/Day.ipm", "Saved Setting 1:    Firms.cst;\r\n");
    RowWatch watch = Watching(Check::QuickButtons);

    GivenTemplate("Import/Firms.cst", "firms.csv\r\n");

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, ATemplateThatUnattendedSettingsMissedMarksTheirRowWhenItIsMade) {
    GivenTemplate("UnattendedHotsync/Night.uhs", "Upload=True\r\nUploadTemplate=All\r\n");
    RowWatch watch = Watching(Check::Unattended);

    GivenTemplate("Upload/All.ust", "Orders=1\r\n");

    EXPECT_TRUE(watch.Look());
    EXPECT_TRUE(watch.HasChanged(0));
}

TEST_F(RowWatchTest, ALookAtFilesThatNobodyTouchedReadsNothing) {
    GivenTemplate("Upload/All.ust", "Orders=0\r\n");
    RowWatch table = Watching(), templates = Watching(Check::Upload);
    CountingDisk disk;
    Global.TheDisk = &disk;

    table.Look();
    templates.Look();

    EXPECT_EQ(disk.BytesRead, 0U);
}

TEST_F(RowWatchTest, AChangeIsReadOnce) {
    RowWatch watch = Watching();
    Write(2, "C_SEARCH", "B1");
    watch.Look();
    CountingDisk disk;
    Global.TheDisk = &disk;

    watch.Look();

    EXPECT_EQ(disk.BytesRead, 0U);
}

TEST_F(RowWatchTest, RecordsInNoOrderAreReadInThatOfTheTable) {
    QualityOffice office;
    for (int k = 0; k < 20000; ++k) // searches in order, codes far from it
        office.Tables["ZUKCUST"].push_back(
            Customer("S" + std::to_string(100000 + k), "C-" + std::to_string(k * 7919 % 20000)));
    Given(office);
    const ProblemList problems = ProblemsOf(Check::Customers);
    ASSERT_EQ(problems.ProblemRows(), 1U);
    CountingDisk disk;
    Global.TheDisk = &disk;

    RowWatch watch(problems.Rows());

    EXPECT_LT(disk.BytesRead, 2 * std::filesystem::file_size(Global.DBFPath + "ZUKCust.dbf"));
}

TEST_F(RowWatchTest, WantOfMemoryIsAFileThatCannotBeRead) {
    RowWatch watch = Watching();
    PoorDisk disk;
    Global.TheDisk = &disk;

    EXPECT_TRUE(watch.Look());
    EXPECT_EQ(Changed(watch, 2), "xx");
}

// ---- the report's grid ----

class ReportGridTest : public RowWatchTest {
protected:
    static constexpr int IssueColumn = 3, CorrectionColumn = 4;

    static std::string CellText(ReportGrid& grid, std::int32_t row, int column) {
        return grid.Cell(row, column).Utf8();
    }
};

TEST_F(ReportGridTest, ShowsTheFiveColumnsUnderTheirHeadingsInTheOrderOfTheFindings) {
    ReportGrid grid(ProblemsOf(Check::Customers).Rows());

    std::string headings, first;
    for (int column = 0; column < grid.ColumnCount(); ++column) {
        headings +=
            grid.Heading(column).Title.Utf8() + " " + std::to_string(grid.Heading(column).Width) + "|";
        first += CellText(grid, 0, column) + "|";
    }

    EXPECT_EQ(headings, "Severity 80|Configurator Group 190|Problem 95|Issue 190|Correction 192|");
    EXPECT_EQ(first,
              "Fatal|Handheld: Basic Setup: Customers|Field contains blank value|Blank customer "
              "searchfield (C_SEARCH) in customer table.\nRecords: 1|Place a unique value in the Customer "
              "Search field (C_SEARCH) for every customer.|");
    EXPECT_EQ(grid.RowCount(), 2);
}

TEST_F(ReportGridTest, ARowWhoseRecordsHaveChangedIsGreyAndSaysSoUntilTheyAreChangedBack) {
    ReportGrid grid(ProblemsOf(Check::Customers).Rows());
    const std::string before = CellText(grid, 1, CorrectionColumn);
    ASSERT_FALSE(grid.CheckChanged());

    Write(2, "C_SEARCH", "B1");
    EXPECT_TRUE(grid.CheckChanged());
    grid.Reload();
    EXPECT_EQ(grid.MarkOf(0, 0), CellMark::None);
    EXPECT_EQ(grid.MarkOf(1, 0), CellMark::Past);
    EXPECT_EQ(CellText(grid, 1, CorrectionColumn),
              before + "\nChanged since the check. Check again to see whether the problem is solved.");

    Write(2, "C_SEARCH", "B-1");
    EXPECT_TRUE(grid.CheckChanged());
    grid.Reload();
    EXPECT_EQ(grid.MarkOf(1, 0), CellMark::None);
    EXPECT_EQ(CellText(grid, 1, CorrectionColumn), before);
}

TEST_F(ReportGridTest, TheMarkFollowsItsRowThroughASort) {
    ReportGrid grid(ProblemsOf(Check::Customers).Rows());
    Write(2, "C_SEARCH", "B1");
    grid.CheckChanged();

    grid.Sort(IssueColumn, true);

    EXPECT_EQ(grid.RecordOf(0), 2);
    EXPECT_EQ(grid.MarkOf(0, 0), CellMark::Past);
    EXPECT_EQ(grid.MarkOf(1, 0), CellMark::None);
}

TEST_F(ReportGridTest, ALongListIsCutAndTheRestIsCounted) {
    QualityOffice office;
    for (int k = 0; k < 400; ++k) office.Tables["ZUKCUST"].push_back(Customer("", "K" + std::to_string(k)));
    Given(office);
    ReportGrid grid(ProblemsOf(Check::Customers).Rows());

    const std::string issue = CellText(grid, 0, IssueColumn);

    const std::string sentence = "Blank customer searchfield (C_SEARCH) in customer table.\n";
    ASSERT_TRUE(issue.starts_with(sentence + "Records: 1, 2, 3, "));
    EXPECT_LT(issue.size(), 400U);
    const std::size_t more = issue.find(" and more: ");
    ASSERT_NE(more, std::string::npos);
    const std::size_t last = issue.rfind(' ', more - 1);
    const int shown = std::stoi(issue.substr(last + 1));
    EXPECT_EQ(std::stoi(issue.substr(more + 11)), 400 - shown);
    EXPECT_EQ(grid.Row(1).List.size(), std::string("1, ").size() * 9 + std::string("10, ").size() * 90 +
                                           std::string("100, ").size() * 301 - 2)
        << "the row itself keeps them all";
}

TEST_F(ReportGridTest, AListThatFitsIsWholeAndOneByteLessCutsIt) {
    EXPECT_EQ(ShortList("1, 22, 333", 10).Utf8(), "1, 22, 333");
    EXPECT_EQ(ShortList("1, 22, 333", 9).Utf8(), "1, 22 and more: 1");
    EXPECT_EQ(ShortList("1, 22, 333", 5).Utf8(), "1, 22 and more: 1");
    EXPECT_EQ(ShortList("1, 22, 333", 4).Utf8(), "1 and more: 2");
    EXPECT_EQ(ShortList("", 4).Utf8(), "");
}

TEST_F(ReportGridTest, AnEntryThatDoesNotFitByItselfIsCutBetweenTwoCharacters) {
    EXPECT_EQ(ShortList("123456789", 4).Utf8(), "1234...");
    EXPECT_EQ(ShortList("123456789, 2, 3", 4).Utf8(), "1234... and more: 2");
    EXPECT_EQ(ShortList("12\xC3\xBC\xC3\xBC", 3).Utf8(), "12...");
    EXPECT_EQ(ShortList("12\xC3\xBC\xC3\xBC", 4).Utf8(), "12\xC3\xBC...");
}

TEST_F(ReportGridTest, AFileThatIsNoTemplateDoesNotFillTheReport) {
    GivenTemplate("Import/Photo.cst", std::string(100000, '\xFC'));
    ReportGrid grid(ProblemsOf(Check::Import).Rows());

    EXPECT_LT(CellText(grid, 0, IssueColumn).size(), 1000U);
}

} // namespace
