#include "exchange/LineSplitter.h"

#include <gtest/gtest.h>

namespace {

using Cells = std::vector<std::string>;

Cells CellsOf(LineSplitter& splitter) {
    Cells cells;
    for (std::size_t k = 1; k <= splitter.ColumnCount(); ++k) cells.push_back(splitter.Cell(k));
    return cells;
}

Cells Split(Delimiter delimiter, std::size_t columns, std::string_view line) {
    LineSplitter splitter(delimiter, columns);
    EXPECT_TRUE(splitter.Split(line)) << line;
    return CellsOf(splitter);
}

bool Refuses(Delimiter delimiter, std::size_t columns, std::string_view line) {
    return !LineSplitter(delimiter, columns).Split(line);
}

TEST(LineSplitter, QuotedCommaBelongsToItsCell) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"Smith, John\",12"), (Cells{"Smith, John", "12"}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "1,\"a, b, c, d\",2"), (Cells{"1", "a, b, c, d", "2"}));
}

TEST(LineSplitter, LastCellKeepsItsQuotes) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"Smith, John\",\"12\""), (Cells{"Smith, John", "\"12\""}));
}

TEST(LineSplitter, LastCellWithACommaInsideItsQuotesLosesThem) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "12,\"Smith, John\""), (Cells{"12", "Smith, John"}));
}

TEST(LineSplitter, BlankBeforeAQuotedCommaIsKeptInTheCell) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"Smith , John\",12"), (Cells{"Smith , John", "12"}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"Smith   ,   , John\",12"),
              (Cells{"Smith   ,   , John", "12"}));
}

TEST(LineSplitter, QuoteThatNeverClosesTakesTheRestOfTheLine) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 4, "1,\"Smith, John,12"), (Cells{"1", "\"Smith, John,12", "", ""}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "\","), (Cells{"\",", "", ""}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "\",\","), (Cells{",", "", ""}));
}

TEST(LineSplitter, QuoteAtTheEndOfALineStays) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "1,12\""), (Cells{"1", "12\""}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "1,\""), (Cells{"1", "\""}));
}

TEST(LineSplitter, EmptyQuotesAreAnEmptyCell) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "\"\",\"\",x"), (Cells{"", "", "x"}));
}

TEST(LineSplitter, BlankBeforeACommaGoesToTheNextField) {
    // The comma that ended "a" becomes a field of its own.
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "a ,b"), (Cells{"a", "", "b"}));
}

TEST(LineSplitter, BlanksBehindACommaAreCut) {
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 3, "a,   \" b \",  c "), (Cells{"a", "b", "c"}));
}

TEST(LineSplitter, PlainCommasRefuseALineWithMoreColumns) {
    EXPECT_TRUE(Refuses(Delimiter::Csv, 2, "a,b,c"));
    EXPECT_TRUE(Refuses(Delimiter::Csv, 2, "\"Smith, John\",12"));
    EXPECT_TRUE(Refuses(Delimiter::Tab, 2, "a\tb\tc"));
    EXPECT_FALSE(Refuses(Delimiter::Csv, 3, "\"Smith, John\",12"));
}

TEST(LineSplitter, QuotedModeFailsWhereItRunsPastTheLastColumn) {
    LineSplitter splitter(Delimiter::CsvQuotes, 2);

    EXPECT_FALSE(splitter.Split("a,b,c"));

    EXPECT_EQ(CellsOf(splitter), (Cells{"a", "b"})) << "what was taken before the failure stays";
}

TEST(LineSplitter, ShortLineKeepsTheCellsOfTheLineBefore) {
    LineSplitter splitter(Delimiter::Csv, 3);
    EXPECT_TRUE(splitter.Split("a,b,c"));

    EXPECT_TRUE(splitter.Split("x,y"));
    EXPECT_EQ(CellsOf(splitter), (Cells{"x", "y", "c"}));

    EXPECT_TRUE(splitter.Split("1,"));
    EXPECT_EQ(CellsOf(splitter), (Cells{"1", "y", "c"})) << "nothing behind the last comma is no cell";
}

TEST(LineSplitter, RefusedLineChangesNoCell) {
    LineSplitter splitter(Delimiter::Csv, 2);
    EXPECT_TRUE(splitter.Split("a,b"));

    EXPECT_FALSE(splitter.Split("1,2,3"));

    EXPECT_EQ(CellsOf(splitter), (Cells{"a", "b"}));
}

TEST(LineSplitter, TabsPartCellsAndQuotesMeanNothing) {
    EXPECT_EQ(Split(Delimiter::Tab, 3, " \"a, b\" \t\tc "), (Cells{"\"a, b\"", "", "c"}));
}

TEST(LineSplitter, TabAtTheEndIsAnEmptyLastCell) {
    LineSplitter splitter(Delimiter::Tab, 2);
    EXPECT_TRUE(splitter.Split("a\tb"));

    EXPECT_TRUE(splitter.Split("c\t"));

    EXPECT_EQ(CellsOf(splitter), (Cells{"c", ""}));
}

TEST(LineSplitter, TabsInACommaFileAreText) {
    EXPECT_EQ(Split(Delimiter::Csv, 2, "a\tb,\tc"), (Cells{"a\tb", "\tc"}));
}

TEST(LineSplitter, NulBytesAreText) {
    using namespace std::string_view_literals;
    EXPECT_EQ(Split(Delimiter::Csv, 2, "a\0b,\0"sv), (Cells{std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST(LineSplitter, LineOfAMegabyteOfQuotedCommasIsSplitAtOnce) {
    // The time limit of the tests is the assertion: growing comma by comma must not cost a copy each.
    const std::string commas(1'000'000, ',');
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"" + commas + "\",x"), (Cells{commas, "x"}));
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"" + commas), (Cells{"\"" + commas, ""}));
    std::string blanks;
    for (int k = 0; k < 300'000; ++k) blanks += " , ";
    EXPECT_EQ(Split(Delimiter::CsvQuotes, 2, "\"" + blanks + "\",x").front().size(), 899'998U);
}

TEST(StripFieldQuotes, LoneQuoteIsNotComplete) {
    FieldQuotes quotes;
    EXPECT_EQ(StripFieldQuotes(" \" ", quotes), "\"");
    EXPECT_FALSE(quotes.FieldComplete);
    EXPECT_FALSE(quotes.QuotesRemoved);
}

TEST(StripFieldQuotes, RemovedQuotesStayNotedUntilTheSplitterClearsThem) {
    FieldQuotes quotes;
    EXPECT_EQ(StripFieldQuotes(" \"a\" ", quotes), "a");
    EXPECT_TRUE(quotes.QuotesRemoved);

    EXPECT_EQ(StripFieldQuotes("b", quotes), "b");

    EXPECT_TRUE(quotes.FieldComplete);
    EXPECT_TRUE(quotes.QuotesRemoved);
}

} // namespace
