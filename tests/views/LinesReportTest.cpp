#include "views/LinesReport.h"

#include "core/Messages.h"
#include "support/PaperInMemory.h"

#include <gtest/gtest.h>

namespace {

using Parts = std::vector<std::string>;

std::vector<Text> Given(const Parts& lines) {
    std::vector<Text> texts;
    for (const std::string& line : lines) texts.push_back(Text::Value(std::string_view(line)));
    return texts;
}

std::string Printed(LinesReport& report, PaperInMemory& paper) {
    ReportRun run(report, paper);
    while (!run.IsOver()) run.Step(1);
    std::string pages;
    for (std::size_t page = 0; page < paper.Printed.size(); ++page) pages += paper.TextOf(page) + "\f";
    return pages;
}

TEST(WrapColumnsTest, BreaksAtTheLastBlankThatFits) {
    EXPECT_EQ(WrapColumns("one two three", 7), (Parts{"one two", "three"}));
    EXPECT_EQ(WrapColumns("one two three", 8), (Parts{"one two", "three"}));
    EXPECT_EQ(WrapColumns("one two three", 6), (Parts{"one", "two", "three"}));
}

TEST(WrapColumnsTest, ALineThatFitsStaysAsItIs) {
    EXPECT_EQ(WrapColumns("  a  b", 6), (Parts{"  a  b"}));
    EXPECT_EQ(WrapColumns("", 6), (Parts{""}));
}

TEST(WrapColumnsTest, AWordThatIsLongerThanALineIsBrokenInside) {
    EXPECT_EQ(WrapColumns("/a/long/path", 5), (Parts{"/a/lo", "ng/pa", "th"}));
}

TEST(WrapColumnsTest, FurtherLinesStandAsFarInAsTheFirst) {
    EXPECT_EQ(WrapColumns("    label value", 10), (Parts{"    label", "    value"}));
    EXPECT_EQ(WrapColumns("    /a/long/path", 8), (Parts{"    /a/l", "    ong/", "    path"}));
}

TEST(WrapColumnsTest, AnyWidthComesToAnEndAndLosesNoWord) {
    const std::string line = "    one  two three    four-and-a-half      ";
    for (std::size_t columns = 1; columns < 50; ++columns) {
        std::string letters;
        for (const std::string& part : WrapColumns(line, columns)) {
            EXPECT_LE(part.size(), columns);
            for (const char c : part)
                if (c != ' ') letters += c;
        }
        EXPECT_EQ(letters, "onetwothreefour-and-a-half") << columns;
    }
    EXPECT_EQ(WrapColumns("      ", 3), (Parts{""}));
}

TEST(LinesReportTest, TheTitleStandsAboveTheLinesInCourierNew) {
    LinesReport report(msg::SysInfoTitle, Given({"one", "two"}));
    PaperInMemory paper;

    EXPECT_EQ(Printed(report, paper), "ZUK Tramble PC System Information\n\none\ntwo\n\f");

    EXPECT_EQ(paper.FontName, "Courier New");
    EXPECT_TRUE(paper.Printed[0].Lines[0].Bold);
    EXPECT_FALSE(paper.Printed[0].Lines[2].Bold);
    EXPECT_TRUE(paper.Ended);
}

TEST(LinesReportTest, AsManyLinesStandOnAPageAsItTakes) {
    LinesReport report(msg::SysInfoTitle, Given({"1", "2", "3"}));
    PaperInMemory paper;
    paper.Capacity = 3;

    EXPECT_EQ(Printed(report, paper), "ZUK Tramble PC System Information\n\n1\n\f2\n3\n\f");
}

TEST(LinesReportTest, ALineThatIsWiderThanThePaperGoesOnBelow) {
    LinesReport report(msg::SysInfoTitle, Given({std::string(130, 'x')}));
    PaperInMemory paper; // 120 characters wide

    EXPECT_EQ(Printed(report, paper), "ZUK Tramble PC System Information\n\n" + std::string(120, 'x') + '\n' +
                                          std::string(10, 'x') + "\n\f");
}

TEST(LinesReportTest, BlankLinesAtTheEndTakeNoPage) {
    LinesReport report(msg::SysInfoTitle, Given({"", "1", "", "  ", ""}));
    PaperInMemory paper;
    paper.Capacity = 4;

    EXPECT_EQ(Printed(report, paper), "ZUK Tramble PC System Information\n\n\n1\n\f");
}

TEST(LinesReportTest, SaysWhenItIsPrintedAndWhenItIsNot) {
    const LinesReport report(msg::SysInfoTitle, {});

    EXPECT_EQ(report.WhenPrinted().Utf8(), "Printing complete!");
    EXPECT_EQ(report.WhenNotPrinted().Utf8(), "Printer communication error! Please make sure a printer is "
                                              "installed and turned on, then try again.");
}

TEST(LinesReportTest, PaperTooSmallForALineTakesOne) {
    LinesReport report(msg::SysInfoTitle, Given({"abc"}));
    PaperInMemory paper;
    paper.Capacity = 0;
    paper.Width = 0;

    EXPECT_EQ(report.PageCount(), 1);
    Printed(report, paper);

    EXPECT_TRUE(paper.Ended);
}

} // namespace
