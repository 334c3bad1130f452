#include "views/TableGrid.h"

#include "store/TableRewrite.h"
#include "support/CountingDisk.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"
#include "support/TableMaker.h"

#include <algorithm>
#include <filesystem>
#include <random>

namespace {

using Row = std::vector<std::string>;

/// The record's number, the code, the price with two decimals, and the day with the time.
TableColumns FourColumns(const TableLayout& layout) {
    const auto place = [&](const char* field) { return layout.Find(FieldKey(field)); };
    TableColumns columns;
    columns.Columns = {{{Text::Value(1), SortKind::Number}, {}, -1},
                       {{Text::Value(2), SortKind::Text}, {place("CODE")}, -1},
                       {{Text::Value(3), SortKind::Number}, {place("PRICE")}, 2},
                       {{Text::Value(4), SortKind::Date}, {place("DAY"), place("TIME")}, -1}};
    return columns;
}

class TableGridTest : public EngineTest {
protected:
    static TableMaker Maker() {
        return TableMaker({{"CODE", 'C', 8}, {"PRICE", 'C', 10}, {"DAY", 'C', 10}, {"TIME", 'C', 8}});
    }

    std::string GivenRows(const std::vector<Row>& rows) {
        TableMaker maker = Maker();
        for (const Row& row : rows) maker.Row(row, row.at(0) == "gone" ? '*' : ' ');
        return GivenFile("T.DBF", maker.Bytes());
    }

    static Row Cells(GridData& grid, std::int32_t row) {
        Row cells;
        for (int column = 0; column < grid.ColumnCount(); ++column)
            cells.push_back(grid.Cell(row, column).CodePage());
        return cells;
    }

    static Row Column(GridData& grid, int column) {
        Row cells;
        for (std::int32_t row = 0; row < grid.RowCount(); ++row)
            cells.push_back(grid.Cell(row, column).CodePage());
        return cells;
    }
};

TEST_F(TableGridTest, ShowsEveryRecordOfTheFileInItsOrderDeletedOnesToo) {
    TableGrid grid(GivenRows({{"A1", "1.5"}, {"gone", "2"}, {" C3", "3"}}), FourColumns);

    EXPECT_EQ(grid.RowCount(), 3);
    EXPECT_EQ(Column(grid, 0), (Row{"1", "2", "3"}));
    EXPECT_EQ(Column(grid, 1), (Row{"A1", "gone", "C3"}));
}

TEST_F(TableGridTest, WritesNumbersWithTheirDecimalsAndLeavesWhatIsNone) {
    TableGrid grid(GivenRows({{"A", "1.005"}, {"B", ""}, {"C", "call us"}, {"D", "-0.001"}, {"E", "1,250"}}),
                   FourColumns);

    EXPECT_EQ(Column(grid, 2), (Row{"1.01", "", "call us", "0.00", "1250.00"}));
}

TEST_F(TableGridTest, JoinsTwoFieldsWithABlank) {
    TableGrid grid(GivenRows({{"A", "", "2026-11-15", "14:05"}, {"B", "", "2026-11-15", ""}}), FourColumns);

    EXPECT_EQ(Column(grid, 3), (Row{"2026-11-15 14:05", "2026-11-15"}));
}

TEST_F(TableGridTest, AFieldThatTheTableLacksIsEmpty) {
    const std::string path = GivenFile("T.DBF", TableMaker({{"CODE", 'C', 4}}).Row({"A1"}).Bytes());
    TableGrid grid(path, FourColumns);

    EXPECT_EQ(Cells(grid, 0), (Row{"1", "A1", "", ""}));
}

TEST_F(TableGridTest, SortsEachColumnAndTakesTheRecordNumberAlong) {
    TableGrid grid(GivenRows({{"b", "10", "2026-01-02", "10:00"},
                              {"A", "9", "2026-01-02", "09:00"},
                              {"c", "x", "2025-12-31", ""}}),
                   FourColumns);

    grid.Sort(1, false);
    EXPECT_EQ(Column(grid, 0), (Row{"2", "1", "3"}));
    grid.Sort(2, true);
    EXPECT_EQ(Column(grid, 0), (Row{"1", "2", "3"}));
    grid.Sort(3, false);
    EXPECT_EQ(Column(grid, 0), (Row{"3", "2", "1"}));
    grid.Sort(0, true);
    EXPECT_EQ(Column(grid, 0), (Row{"3", "2", "1"}));
    grid.Sort(0, false);
    EXPECT_EQ(Column(grid, 0), (Row{"1", "2", "3"}));
}

TEST_F(TableGridTest, ASortOfManyRecordsIsWhatAStableSortOfTheirCellsGives) {
    std::mt19937 random(20261115);
    std::vector<Row> rows;
    for (int k = 0; k < 3000; ++k) rows.push_back({"C" + std::to_string(random() % 500)});
    TableGrid grid(GivenRows(rows), FourColumns);
    for (const bool descending : {false, true}) {
        std::vector<std::pair<std::string, int>> expected;
        for (int k = 0; k < 3000; ++k) expected.emplace_back(rows[static_cast<std::size_t>(k)][0], k + 1);
        std::stable_sort(expected.begin(), expected.end(), [&](const auto& a, const auto& b) {
            return descending ? b.first < a.first : a.first < b.first;
        });

        grid.Sort(1, descending);

        for (std::int32_t row = 0; row < 3000; ++row)
            ASSERT_EQ(grid.RecordOf(row), expected[static_cast<std::size_t>(row)].second);
    }
}

TEST_F(TableGridTest, ASortReadsTheTableOnce) {
    std::vector<Row> rows(5000, Row{"A1", "1"});
    const std::string path = GivenRows(rows);
    CountingDisk disk;
    Global.TheDisk = &disk;
    TableGrid grid(path, FourColumns);
    disk.BytesRead = 0;

    grid.Sort(1, false);

    EXPECT_LE(disk.BytesRead, std::filesystem::file_size(path) + 10'000);
}

TEST_F(TableGridTest, FindsWhatIsShownInEveryOrder) {
    TableGrid grid(GivenRows({{"Bolt", "1"}, {"Nut", "2"}, {"Bolt M8", "1.5"}, {"Axe", "15"}}), FourColumns);

    EXPECT_EQ(grid.Find(1, "bolt", 0), 2);
    EXPECT_EQ(grid.Find(2, "5.00", -1), 3);
    grid.Sort(1, false); // Axe, Bolt, Bolt M8, Nut
    EXPECT_EQ(grid.Find(1, "bolt", 2), 1);
    EXPECT_EQ(grid.Find(1, "bolt", 1), 2);
    EXPECT_EQ(grid.Find(0, "4", -1), 0);
}

TEST_F(TableGridTest, AnotherTableInItsPlaceIsNotMixedWithTheOldOne) {
    const std::string path = GivenRows({{"A1", "1"}, {"A2", "2"}});
    TableGrid grid(path, FourColumns);
    {
        TableRewrite rewrite(path);
        for (const char* code : {"B1", "B2", "B3"}) {
            rewrite.Append();
            rewrite.Write("CODE", code);
        }
        rewrite.Commit(false);
    }

    grid.Sort(1, true);
    EXPECT_TRUE(grid.HasChanged());
    EXPECT_EQ(grid.RowCount(), 2);
    EXPECT_EQ(Column(grid, 1), (Row{"", ""}));

    grid.Reload();
    EXPECT_FALSE(grid.HasChanged());
    EXPECT_EQ(Column(grid, 1), (Row{"B1", "B2", "B3"}));
}

TEST_F(TableGridTest, ATableThatCannotBeReadAnyMoreHasNoRowsAndComesBack) {
    const std::string path = GivenRows({{"A1", "1"}});
    TableGrid grid(path, FourColumns);
    std::filesystem::remove(path);

    EXPECT_TRUE(grid.CheckChanged());
    EXPECT_EQ(FailureOf([&] { grid.Reload(); }).Number, 53);
    EXPECT_EQ(grid.RowCount(), 0);

    GivenRows({{"A1", "1"}, {"A2", "2"}});
    grid.Reload();
    EXPECT_EQ(grid.RowCount(), 2);
}

TEST_F(TableGridTest, RubbishIsShownOrRefused) {
    const std::string good =
        Maker().Row({"A1", "1", "2026-11-15"}).Row({"A2", "2"}).Row({"gone"}, '*').Bytes();
    for (const std::string& content : Rubbish(good)) {
        const std::string path = GivenFile("T.DBF", content);
        OnlyRunTimeFailures([&] {
            TableGrid grid(path, FourColumns);
            for (int column = 0; column < grid.ColumnCount(); ++column) {
                grid.Sort(column, true);
                grid.Find(column, "a", 0);
                if (grid.RowCount() > 0) grid.Cell(grid.RowCount() - 1, column);
            }
        });
    }
}

} // namespace
