#include "views/GridData.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using Cells = std::vector<std::string>;

Text Value(const std::string& text) {
    return Text::Value(std::string_view(text));
}

/// A grid of one column.
ListGrid Column(SortKind kind, const Cells& cells) {
    std::vector<std::vector<Text>> rows;
    for (const std::string& cell : cells) rows.push_back({Value(cell)});
    return ListGrid({{Value("Title"), kind}}, std::move(rows));
}

Cells Shown(GridData& grid, int column = 0) {
    Cells cells;
    for (std::int32_t row = 0; row < grid.RowCount(); ++row)
        cells.push_back(grid.Cell(row, column).CodePage());
    return cells;
}

struct SortCase {
    const char* Name;
    SortKind Kind;
    Cells Before, Up, Down;
};

class GridSort : public ::testing::TestWithParam<SortCase> {};

TEST_P(GridSort, PutsTheRowsInTheOrderOfTheColumnsKind) {
    ListGrid grid = Column(GetParam().Kind, GetParam().Before);

    grid.Sort(0, false);
    EXPECT_EQ(Shown(grid), GetParam().Up);
    grid.Sort(0, true);
    EXPECT_EQ(Shown(grid), GetParam().Down);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, GridSort,
    ::testing::Values(SortCase{"Numbers",
                               SortKind::Number,
                               {"10", "9", "-3", "1,250.00", "2.5"},
                               {"-3", "2.5", "9", "10", "1,250.00"},
                               {"1,250.00", "10", "9", "2.5", "-3"}},
                      SortCase{"WhatIsNoNumberAsNought",
                               SortKind::Number,
                               {"1", "", "call us", "-1", "0"},
                               {"-1", "", "call us", "0", "1"},
                               {"1", "", "call us", "0", "-1"}},
                      SortCase{"DatesInAnyForm",
                               SortKind::Date,
                               {"2026-11-15 14:05:09", "20261115", "11/16/2026", "", "15-Nov-2025"},
                               {"", "15-Nov-2025", "20261115", "2026-11-15 14:05:09", "11/16/2026"},
                               {"11/16/2026", "2026-11-15 14:05:09", "20261115", "15-Nov-2025", ""}},
                      SortCase{"TextsWithoutRegardToCase",
                               SortKind::Text,
                               {"b", "A", "\xE9t\xE9", "a", "Z", "10", "9"},
                               {"10", "9", "A", "a", "b", "\xE9t\xE9", "Z"},
                               {"Z", "\xE9t\xE9", "b", "A", "a", "9", "10"}}),
    [](const auto& each) { return std::string(each.param.Name); });

TEST(GridData, EqualCellsKeepTheOrderOfTheirRecordsBothWays) {
    ListGrid grid({{Value("Key"), SortKind::Text}, {Value("Place"), SortKind::Number}},
                  {{Value("b"), Value("1")},
                   {Value("A"), Value("2")},
                   {Value("B"), Value("3")},
                   {Value("a"), Value("4")},
                   {Value("b"), Value("5")}});

    grid.Sort(0, false);
    EXPECT_EQ(Shown(grid, 1), (Cells{"2", "4", "1", "3", "5"}));
    grid.Sort(0, true);
    EXPECT_EQ(Shown(grid, 1), (Cells{"1", "3", "5", "2", "4"}));
}

TEST(GridData, ARecordIsFoundInEveryOrder) {
    ListGrid grid = Column(SortKind::Text, {"c", "a", "b"});
    EXPECT_FALSE(grid.IsSorted());
    EXPECT_EQ(grid.RecordOf(2), 3);
    EXPECT_EQ(grid.RowOf(3), 2);

    grid.Sort(0, false);

    EXPECT_TRUE(grid.IsSorted());
    EXPECT_EQ(grid.RecordOf(0), 2);
    EXPECT_EQ(grid.RowOf(1), 2);
    EXPECT_EQ(grid.RowOf(0), std::nullopt);
    EXPECT_EQ(grid.RowOf(4), std::nullopt);
}

TEST(GridData, FindsTheNextCellThatHasTheTextAndGoesOnAtTheOtherEnd) {
    ListGrid grid = Column(SortKind::Text, {"Smith", "Jones", "Blacksmith", "Brown", "smithy"});

    EXPECT_EQ(grid.Find(0, "SMITH", -1), 0);
    EXPECT_EQ(grid.Find(0, "smith", 0), 2);
    EXPECT_EQ(grid.Find(0, "smith", 2), 4);
    EXPECT_EQ(grid.Find(0, "smith", 4), 0);
    EXPECT_EQ(grid.Find(0, "jones", 1), 1);
    EXPECT_EQ(grid.Find(0, "Miller", 1), std::nullopt);
    EXPECT_EQ(grid.Find(0, "", 1), std::nullopt);
}

TEST(GridData, FindsBackwardsToo) {
    ListGrid grid = Column(SortKind::Text, {"Smith", "Jones", "Blacksmith", "Brown", "smithy"});

    EXPECT_EQ(grid.Find(0, "smith", 4, true), 2);
    EXPECT_EQ(grid.Find(0, "smith", 0, true), 4);
    EXPECT_EQ(grid.Find(0, "smith", -1, true), 4);
    EXPECT_EQ(grid.Find(0, "jones", 1, true), 1);
}

TEST(GridData, FindsInTheOrderThatIsShown) {
    const Cells cells{"Smith", "Jones", "Blacksmith", "Brown", "smithy"};
    for (const bool descending : {false, true}) {
        ListGrid grid = Column(SortKind::Text, cells);
        grid.Sort(0, descending);
        ListGrid plain = Column(SortKind::Text, Shown(grid));
        for (std::int32_t from = -1; from < 5; ++from) {
            for (const bool backwards : {false, true}) {
                for (const char* text : {"smith", "b", "jones", "nobody"}) {
                    EXPECT_EQ(grid.Find(0, text, from, backwards), plain.Find(0, text, from, backwards))
                        << text << " from " << from;
                }
            }
        }
    }
}

TEST(GridData, AnEmptyGridHasNothingToFindAndSortsToNothing) {
    ListGrid grid = Column(SortKind::Number, {});

    grid.Sort(0, true);

    EXPECT_EQ(grid.RowCount(), 0);
    EXPECT_EQ(grid.Find(0, "a", -1), std::nullopt);
}

TEST(GridData, ARowBehindTheLastOneIsRefusedInASortedGrid) {
    ListGrid grid = Column(SortKind::Text, {"b", "a"});
    grid.Sort(0, false);

    EXPECT_EQ(grid.RecordOf(1), 1);
    EXPECT_THROW(grid.RecordOf(2), std::out_of_range);
}

} // namespace
