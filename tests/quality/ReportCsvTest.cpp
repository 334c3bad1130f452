#include "quality/ReportCsv.h"

#include "quality/QualityTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

#include <cstdlib>

namespace {

Text Value(const std::string& text) {
    return Text::Value(std::string_view(text));
}

class ReportCsvTest : public QualityTest {
protected:
    static ProblemRow Row(Severity severity, const std::string& issue,
                          const std::string& correction = "do it") {
        ProblemRow row;
        row.Severity = severity;
        row.Group = Value("PC: group");
        row.Problem = Value("problem");
        row.Issue = Value(issue);
        row.Correction = Value(correction);
        row.Target = "Import";
        row.List = "hidden";
        row.Field = "HIDDEN";
        return row;
    }

    std::string Saved(const std::vector<ProblemRow>& rows) {
        SaveReport(Path(), rows);
        return Bytes(Path());
    }
    std::string Path() const { return Folder() + "report.csv"; }

    static constexpr std::string_view Head =
        "\xEF\xBB\xBF\"Severity\",\"Configurator Group\",\"Problem\",\"Issue\",\"Correction\"\r\n";
};

TEST_F(ReportCsvTest, AReportWithoutRowsIsItsHeadings) {
    EXPECT_EQ(Saved({}), Head);
}

TEST_F(ReportCsvTest, ARowHasTheFiveColumnsThatTheReportShows) {
    EXPECT_EQ(Saved({Row(Severity::Fatal, "one"), Row(Severity::Warn, "two")}),
              std::string(Head) + "\"Fatal\",\"PC: group\",\"problem\",\"one\",\"do it\"\r\n"
                                  "\"Warn\",\"PC: group\",\"problem\",\"two\",\"do it\"\r\n");
}

TEST_F(ReportCsvTest, QuotesAreDoubledAndCommasAndLineBreaksKept) {
    EXPECT_EQ(Saved({Row(Severity::Fatal, "a \"b\", c\nd", "\"")}),
              std::string(Head) + "\"Fatal\",\"PC: group\",\"problem\",\"a \"\"b\"\", c\nd\",\"\"\"\"\r\n");
}

TEST_F(ReportCsvTest, LettersAreWrittenInUtf8) {
    EXPECT_NE(Saved({Row(Severity::Warn, "M\xFCller \x80")}).find("\"M\xC3\xBCller \xE2\x82\xAC\""),
              std::string::npos);
}

TEST_F(ReportCsvTest, ALongListIsWrittenWhole) {
    std::string list;
    for (int record = 1; record <= 20000; ++record) list += std::to_string(record) + ", ";

    EXPECT_NE(Saved({Row(Severity::Warn, list)}).find(list), std::string::npos);
}

// Another program's reader, so that a mistake of ours about the form is noticed.
TEST_F(ReportCsvTest, AnotherProgramReadsTheCellsThatTheReportShows) {
    Given({.Tables = {{"ZUKCUST", {Customer("", "", "XX"), Customer("A-1", "A-1"), Customer("A\"B", "a-1")}}},
           .Files = {{"Templates/Import/Gro\xC3\x9F, \"neu\".cst", "\"M\xFCller\", alt.csv\r\n"}}});
    ProblemList problems = ProblemsOf(Check::Customers);
    const ProblemList imports = ProblemsOf(Check::Import);
    for (const ProblemRow& row : imports.Rows()) problems.Add(row);
    SaveReport(Path(), problems.Rows());
    std::string expected = "Severity|Configurator Group|Problem|Issue|Correction\n";
    for (const ReportRow& row : RowsOf(problems))
        expected += row.Severity + "|" + row.Group + "|" + row.Problem + "|" + row.Issue + "|" +
                    row.Correction + "\n";
    GivenFile("read.py",
              "import csv, sys\n"
              "rows = csv.reader(open(sys.argv[1], encoding='utf-8-sig', newline=''), strict=True)\n"
              "text = ''.join('|'.join(row) + '\\n' for row in rows)\n"
              "open(sys.argv[2], 'w', encoding='utf-8', newline='').write(text)\n");

    const std::string command =
        "python3 '" + Folder() + "read.py' '" + Path() + "' '" + Folder() + "read.txt'";
    ASSERT_EQ(std::system(command.c_str()), 0);

    EXPECT_EQ(Bytes(Folder() + "read.txt"), expected);
}

TEST_F(ReportCsvTest, WhateverTheDiskDoesTheOldFileStaysWhole) {
    std::vector<ProblemRow> rows(2000, Row(Severity::Fatal, "an issue that is told in some words"));
    FaultyDisk whole;
    Global.TheDisk = &whole;
    SaveReport(Path(), rows);
    const int calls = whole.Calls();
    GivenFile("report.csv", "old");
    for (int n = 1; n <= calls; ++n) {
        FaultyDisk faulty(n);
        Global.TheDisk = &faulty;
        EXPECT_EQ(FailureNumber([&] { SaveReport(Path(), rows); }), 61) << n;
        Global.TheDisk = &NativeDisk();

        EXPECT_EQ(Bytes(Path()), "old") << n;
        EXPECT_FALSE(Exists(Path() + ".zuk~")) << n;
    }
}

} // namespace
