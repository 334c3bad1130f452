#include "exchange/Import.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "exchange/ExchangeTest.h"
#include "exchange/ImportSteps.h"
#include "exchange/LostLines.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

#include <random>

namespace {

class ImportTest : public ExchangeTest {
protected:
    ImportTest() { GivenTable("ZUKCUST", {{{"C_CODE", "OLD1"}}, {{"C_CODE", "OLD2"}}}); }

    ImportJob Job(const std::string& content, std::vector<std::string> selected,
                  Delimiter delimiter = Delimiter::Csv) {
        ImportJob job;
        job.ImportFile = GivenFile("cust.txt", content);
        job.TableFile = PathOf("ZUKCUST");
        job.Delimiter = delimiter;
        job.AvailableFields = AvailableFieldsOf(job.TableFile);
        job.SelectedFields = std::move(selected);
        job.LineCount = CountLines(job.ImportFile);
        return job;
    }

    ImportResult Import(const std::string& content, std::vector<std::string> selected,
                        Delimiter delimiter = Delimiter::Csv) {
        NoProgress nobody;
        return ImportDataFile(Job(content, std::move(selected), delimiter), nobody);
    }

    std::vector<std::string> Codes() const { return Column("ZUKCUST", "C_CODE"); }
};

/// A disk on which reads of one file fail: those from the first to the last of these numbers.
class UnreadableDisk final : public FaultyDisk {
public:
    UnreadableDisk(std::string path, int first, int last)
        : path_(std::move(path)),
          first_(first),
          last_(last) {}

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        auto file = FaultyDisk::Open(path, access);
        if (path != path_) return file;
        return std::make_unique<File>(std::move(file), *this);
    }

private:
    class File final : public PassingFile {
    public:
        File(std::unique_ptr<DiskFile> under, UnreadableDisk& disk)
            : PassingFile(std::move(under)),
              disk_(disk) {}
        std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
            ++disk_.reads_;
            if (disk_.reads_ >= disk_.first_ && disk_.reads_ <= disk_.last_) throw RunTimeFailure(57);
            return PassingFile::ReadAt(offset, to, size);
        }

    private:
        UnreadableDisk& disk_;
    };

    std::string path_;
    int first_, last_;
    int reads_ = 0;
};

/// What the bar was told.
class Shown final : public Progress {
public:
    void Begin(const Text&, std::int64_t) override {}
    void Show(std::int64_t value) override { Values.push_back(value); }
    std::vector<std::int64_t> Values;
};

TEST_F(ImportTest, ReplacesTheTableByOneRecordALine) {
    const ImportResult result = Import("A1,Acme\r\nB2,Bolt\r\n", {"C_CODE", "C_NAME"});

    EXPECT_EQ(result.LinesRead, 2);
    EXPECT_EQ(result.LinesFailed, 0);
    EXPECT_FALSE(result.FieldCountMismatch);
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);
    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}, {"C_NAME", "Acme"}}));
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", "Bolt"}}));
}

TEST_F(ImportTest, ShortLineTakesTheMissingColumnsFromTheLineBefore) {
    const ImportResult result = Import("A1,Acme,555\nB2,Bolt\n", {"C_CODE", "C_NAME", "C_PHONE"});

    EXPECT_EQ(result.LinesFailed, 0);
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", "Bolt"}, {"C_PHONE", "555"}}));
}

TEST_F(ImportTest, LineWithMoreColumnsThanTheSampleLeavesAnEmptyRecord) {
    for (const Delimiter delimiter : {Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}) {
        const std::string part = delimiter == Delimiter::Tab ? "\t" : ",";
        const ImportResult result =
            Import("A1" + part + "Acme\nB2" + part + "Bolt" + part + "more\nC3" + part + "Cog\n",
                   {"C_CODE", "C_NAME"}, delimiter);

        EXPECT_EQ(result.LinesRead, 3);
        EXPECT_EQ(result.LinesFailed, 1);
        EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "", "C3"}));
        EXPECT_EQ(Row("ZUKCUST", 2), Fields{});
    }
}

TEST_F(ImportTest, QuotedCommaStaysInItsField) {
    Import("x,y\n\"Smith, John\",12\n\"Smith, John\",\"12\"\n", {"C_NAME", "C_CODE"}, Delimiter::CsvQuotes);

    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_NAME", "Smith, John"}, {"C_CODE", "12"}}));
    EXPECT_EQ(Row("ZUKCUST", 3), (Fields{{"C_NAME", "Smith, John"}, {"C_CODE", "\"12\""}}));
}

TEST_F(ImportTest, ColumnGoesBeforeALiteralForTheSameField) {
    ImportJob job = Job("A1,Acme\nB2,Bolt\n", {"C_CODE", "C_NAME"});
    job.Literals = {"C_NAME = nobody", " c_city  = Bonn = Rhine ", "C_NOWHERE = x"};
    NoProgress nobody;

    ImportDataFile(job, nobody);

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}, {"C_NAME", "Acme"}, {"C_CITY", "Bonn = Rhine"}}));
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", "Bolt"}, {"C_CITY", "Bonn = Rhine"}}));
}

TEST_F(ImportTest, EmptyColumnLeavesTheFieldBlankAlsoWhenALiteralIsGiven) {
    ImportJob job = Job("A1,,x\n", {"C_CODE", "C_NAME", "Ignore"});
    job.Literals = {"C_NAME = nobody"};
    NoProgress nobody;

    ImportDataFile(job, nobody);

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}}));
}

TEST_F(ImportTest, OneColumnFeedsSeveralFieldsEachToItsOwnWidth) {
    const std::string code = "0123456789012345678901234567890123456789012345";

    Import(code + ",x\n", {"C_CODE; c_search;  C_ZIP", "ignore"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", code.substr(0, 20)},
                                         {"C_SEARCH", code.substr(0, 40)},
                                         {"C_ZIP", code.substr(0, 12)}}));
}

TEST_F(ImportTest, TooFewColumnsLeaveTheTableAsItWas) {
    const std::string before = Bytes(PathOf("ZUKCUST"));

    const ImportResult result = Import("A1,Acme\n", {"C_CODE", "C_NAME", "C_PHONE"});

    EXPECT_TRUE(result.FieldCountMismatch);
    EXPECT_EQ(result.LinesRead, 0);
    EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before);
}

TEST_F(ImportTest, MoreColumnsThanSelectedAreNotRead) {
    EXPECT_EQ(Import("A1,Acme,x,y\n", {"C_CODE"}).LinesFailed, 0);
    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}}));
}

TEST_F(ImportTest, StartLineBeyondTheEndLeavesTheTableAsItWas) {
    const std::string before = Bytes(PathOf("ZUKCUST"));
    ImportJob job = Job("A1,Acme\n", {"C_CODE"});
    NoProgress nobody;

    job.StartLine = 2;
    EXPECT_EQ(FailureOf([&] { ImportDataFile(job, nobody); }).Number, 62);

    EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before);
}

TEST_F(ImportTest, EmptyFileLeavesTheTableAsItWas) {
    const std::string before = Bytes(PathOf("ZUKCUST"));

    EXPECT_EQ(FailureOf([&] { Import("", {"C_CODE"}); }).Number, 62);

    EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before);
}

TEST_F(ImportTest, MissingFileLeavesTheTableAsItWas) {
    const std::string before = Bytes(PathOf("ZUKCUST"));
    ImportJob job = Job("A1\n", {"C_CODE"});
    job.ImportFile = Folder() + "gone.csv";
    NoProgress nobody;

    EXPECT_EQ(FailureOf([&] { ImportDataFile(job, nobody); }).Number, 53);

    EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before);
}

TEST_F(ImportTest, HeadingsAreSkippedByTheStartLine) {
    ImportJob job = Job("\"Code\",\"Name\"\nA1,Acme\n", {"C_CODE", "C_NAME"});
    job.StartLine = 2;
    NoProgress nobody;

    EXPECT_EQ(ImportDataFile(job, nobody).LinesRead, 1);

    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1"}));
}

TEST_F(ImportTest, FileOfHeadingsOnlyEmptiesTheTableOnlyWhenTheyCountAsData) {
    ImportJob job = Job("Code,Name\n", {"C_CODE", "C_NAME"});
    NoProgress nobody;
    job.StartLine = 2;
    EXPECT_EQ(FailureOf([&] { ImportDataFile(job, nobody); }).Number, 62);
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);

    job.StartLine = 1;
    EXPECT_EQ(ImportDataFile(job, nobody).LinesRead, 1);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"Code"}));
}

TEST_F(ImportTest, EmptyLinesCountForNothingAndLinesOfBlanksForOne) {
    const ImportResult result = Import("A1,Acme\n\n\n   \nB2,Bolt\n\n", {"C_CODE", "C_NAME"});

    EXPECT_EQ(result.LinesRead, 3);
    EXPECT_EQ(result.LinesFailed, 0);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "", "B2"}));
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_NAME", "Acme"}}))
        << "a blank first cell, the rest from the line before";
}

TEST_F(ImportTest, EmptySampleLineIsAFileOfOneColumn) {
    EXPECT_TRUE(Import("\nA1,Acme\n", {"C_CODE", "C_NAME"}).FieldCountMismatch);
    EXPECT_EQ(Import("\nA1\n", {"C_CODE"}).LinesRead, 1);
}

TEST_F(ImportTest, FileThatEndsItsLinesByCarriageReturnsIsReadLineByLine) {
    EXPECT_EQ(Import("A1,Acme\rB2,Bolt\rC3,Cog", {"C_CODE", "C_NAME"}).LinesRead, 3);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "B2", "C3"}));
}

TEST_F(ImportTest, LastLineWithoutAnEndIsRead) {
    EXPECT_EQ(Import("A1,Acme\nB2,Bolt", {"C_CODE", "C_NAME"}).LinesRead, 2);
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", "Bolt"}}));
}

TEST_F(ImportTest, LineOfAMegabyteIsCutToTheFieldsWidth) {
    EXPECT_EQ(
        Import("A1,Acme\nB2," + std::string(1'000'000, 'x') + "\nC3,Cog\n", {"C_CODE", "C_NAME"}).LinesFailed,
        0);
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", std::string(40, 'x')}}));
}

TEST_F(ImportTest, LineThatIsTooLongFailsForItselfAndAsAWhole) {
    ImportJob job = Job("A1,Acme\nB2," + std::string(3'300'000, 'x') + ",y\nC3,Cog\n", {"C_CODE", "C_NAME"});
    NoProgress nobody;

    const ImportResult result = ImportDataFile(job, nobody);

    EXPECT_EQ(job.LineCount, 3);
    EXPECT_EQ(result.LinesRead, 3);
    EXPECT_EQ(result.LinesFailed, 1);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "", "C3"}));
}

TEST_F(ImportTest, MoreFailuresThanTheCounterHoldsStopAtItsLargest) {
    std::string content = "A1,Acme\n";
    for (int k = 0; k < 70'000; ++k) content += "a,b,c\n";
    content += "B2,Bolt\n";

    const ImportResult result = Import(content, {"C_CODE", "C_NAME"});

    EXPECT_EQ(result.LinesRead, 70'002);
    EXPECT_EQ(result.LinesFailed, 32'767);
    EXPECT_EQ(RecordCount("ZUKCUST"), 70'002);
    EXPECT_EQ(Row("ZUKCUST", 70'002), (Fields{{"C_CODE", "B2"}, {"C_NAME", "Bolt"}}));
}

TEST_F(ImportTest, NulBytesAreTakenAsTheyStand) {
    const std::string code("A\0B", 3);

    Import(code + ",Acme\n", {"C_CODE", "C_NAME"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", code}, {"C_NAME", "Acme"}}));
}

TEST_F(ImportTest, Utf8IsConverted) {
    Import("A1,M\xC3\xBCller \xE2\x82\xAC \xE4\xB8\xAD\n", {"C_CODE", "C_NAME"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}, {"C_NAME", "M\xFCller \x80 ?"}}));
}

TEST_F(ImportTest, MarkOfUtf8IsNoPartOfTheFirstValue) {
    Import("\xEF\xBB\xBF"
           "A1,Acme\n",
           {"C_CODE", "C_NAME"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}, {"C_NAME", "Acme"}}));
}

TEST_F(ImportTest, OneInvalidByteAnywhereMakesTheFileCodePageText) {
    Import("A1,M\xC3\xBCller\nB2,M\xFCller\n", {"C_CODE", "C_NAME"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A1"}, {"C_NAME", "M\xC3\xBCller"}}));
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B2"}, {"C_NAME", "M\xFCller"}}));
}

TEST_F(ImportTest, NumberAndDateFieldsAreFittedLikeAnyWrite) {
    GivenFile("ZUKCUST.DBF",
              TableMaker({{"C_CODE", 'C', 4}, {"C_NUM", 'N', 6, 2}, {"C_DATE", 'D', 8}}).Bytes());

    Import("A,x,12/31/2025\nB,1.5,never\nC,,\n", {"C_CODE", "C_NUM", "C_DATE"});

    EXPECT_EQ(Row("ZUKCUST", 1), (Fields{{"C_CODE", "A"}, {"C_NUM", "0"}, {"C_DATE", "20251231"}}));
    EXPECT_EQ(Row("ZUKCUST", 2), (Fields{{"C_CODE", "B"}, {"C_NUM", "1.5"}, {"C_DATE", "never"}}));
    EXPECT_EQ(Row("ZUKCUST", 3), (Fields{{"C_CODE", "C"}, {"C_DATE", "never"}}))
        << "an empty value is not written, and the last cell is the one of the line before";
}

TEST_F(ImportTest, FieldThatTheTableLacksFailsTheLineAndLeavesAnEmptyRecord) {
    ImportJob job = Job("A1,Acme\nB2,\n", {"C_CODE", "C_GONE"});
    job.AvailableFields.push_back("C_GONE");
    NoProgress nobody;

    const ImportResult result = ImportDataFile(job, nobody);

    EXPECT_EQ(result.LinesFailed, 2);
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);
    EXPECT_EQ(Row("ZUKCUST", 1), Fields{});
}

TEST_F(ImportTest, ProgressIsThePercentageOfTheLines) {
    ImportJob job = Job("A\nB\n\nC\nD\n", {"C_CODE"});
    Shown bar;

    ImportDataFile(job, bar);

    EXPECT_EQ(bar.Values, (std::vector<std::int64_t>{25, 50, 75, 100}));
}

TEST_F(ImportTest, TheBarIsFullAtTheEndAlsoWhenTheFirstLinesAreHeadings) {
    ImportJob job = Job("code\nA\nB\nC\n", {"C_CODE"});
    job.StartLine = 2;
    Shown bar;

    ImportDataFile(job, bar);

    EXPECT_EQ(bar.Values, (std::vector<std::int64_t>{25, 50, 75, 100}));
}

TEST_F(ImportTest, LineCountOfZeroShowsNothing) {
    ImportJob job = Job("A\nB\n", {"C_CODE"});
    job.LineCount = 0;
    Shown bar;

    EXPECT_EQ(ImportDataFile(job, bar).LinesRead, 2);

    EXPECT_TRUE(bar.Values.empty());
}

TEST_F(ImportTest, TraceIsThatOfTheStepsWithTheTable) {
    ImportJob job = Job("A1,Acme\nB2,Bolt\n", {"C_CODE", "C_NAME"});
    TableTrace();
    ImportStepByStep(job);
    const std::vector<std::string> steps = TableTrace();
    NoProgress nobody;

    ImportDataFile(job, nobody);

    EXPECT_EQ(TableTrace(), steps);
    EXPECT_EQ(steps.size(), 5U);
}

TEST_F(ImportTest, FullDiskAtAnyMomentLeavesTheOldTable) {
    const std::string before = Bytes(PathOf("ZUKCUST"));
    const ImportJob job = Job("A1,Acme\nB2,Bolt\n", {"C_CODE", "C_NAME"});
    NoProgress nobody;
    int failures = 0;
    for (int failAt = 1; failAt < 50; ++failAt) {
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        bool failed = false;
        try {
            ImportDataFile(job, nobody);
        } catch (const RunTimeFailure&) {
            failed = true;
        }
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Global.Files.Count(), 0);
        if (!failed) break;
        ++failures;
        EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before) << "failing at " << failAt;
    }
    EXPECT_GE(failures, 3);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "B2"}));
}

TEST_F(ImportTest, ReadThatFailsOnceFailsForItsPassOnly) {
    std::string content;
    for (int k = 0; k < 20'000; ++k) content += "C" + std::to_string(k) + ",Name of this customer\n";
    const ImportJob job = Job(content, {"C_CODE", "C_NAME"});
    NoProgress nobody;
    // Five blocks to survey the file and its end, one for the sample line, then the records.
    UnreadableDisk disk(job.ImportFile, 10, 10);
    Global.TheDisk = &disk;

    const ImportResult result = ImportDataFile(job, nobody);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(result.LinesRead, 20'000);
    EXPECT_EQ(result.LinesFailed, 1);
    EXPECT_EQ(RecordCount("ZUKCUST"), 20'000);
    EXPECT_EQ(Codes().back(), "C19999");
}

TEST_F(ImportTest, ReadThatFailsOnceAboveTheDataMovesNoLine) {
    std::string content;
    for (int k = 1; k <= 20'000; ++k) content += "C" + std::to_string(k) + ",Name of this customer\n";
    ImportJob job = Job(content, {"C_CODE", "C_NAME"});
    job.StartLine = 15'001;
    NoProgress nobody;
    int imports = 0;
    for (int read = 1; read < 20; ++read) {
        UnreadableDisk disk(job.ImportFile, read, read);
        Global.TheDisk = &disk;
        try {
            const ImportResult result = ImportDataFile(job, nobody);

            ++imports;
            EXPECT_EQ(result.LinesRead, 5'000) << read;
        } catch (const RunTimeFailure&) { // before the run over the lines
        }
        Global.TheDisk = &NativeDisk();
        if (imports == 0) continue;
        EXPECT_EQ(Codes().front(), "C15001") << read;
        EXPECT_EQ(Codes().back(), "C20000") << read;
    }
    EXPECT_GT(imports, 4);
}

TEST_F(ImportTest, FileThatCanNoLongerBeReadLeavesTheTableAsItWas) {
    std::string content;
    for (int k = 0; k < 20'000; ++k) content += "C" + std::to_string(k) + ",Name of this customer\n";
    const ImportJob job = Job(content, {"C_CODE", "C_NAME"});
    const std::string before = Bytes(PathOf("ZUKCUST"));
    NoProgress nobody;
    for (int first = 1; first < 12; ++first) {
        UnreadableDisk disk(job.ImportFile, first, 1'000'000);
        Global.TheDisk = &disk;

        EXPECT_EQ(FailureOf([&] { ImportDataFile(job, nobody); }).Number, 57) << first;

        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Bytes(PathOf("ZUKCUST")), before);
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(ImportTest, TableThatMayNotBeReplacedIsFoundBeforeTheFirstLine) {
    ImportJob job = Job("A1\n", {"C_CODE"});
    job.TableFile = Folder() + "missing.DBF";
    NoProgress nobody;

    EXPECT_EQ(FailureOf([&] { ImportDataFile(job, nobody); }).Number, 53);
    EXPECT_FALSE(Exists(job.TableFile));
}

TEST_F(ImportTest, AvailableFieldsAreIgnoreAndTheNamesUpToTheirNul) {
    GivenFile("ZUKCUST.DBF",
              TableMaker({{std::string("C_ONE\0XY", 8), 'C', 4}, {"C_TWO ", 'N', 6, 2}}).Bytes());

    EXPECT_EQ(AvailableFieldsOf(PathOf("ZUKCUST")), (std::vector<std::string>{"Ignore", "C_ONE", "C_TWO"}));
}

// Both roads.

class RandomImport : public ImportTest {
protected:
    std::mt19937 random_{20261115};

    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    template <typename T>
    const T& OneOf(const std::vector<T>& list) {
        return list[static_cast<std::size_t>(Below(static_cast<int>(list.size())))];
    }

    std::string RandomLine() {
        static const std::vector<std::string> pieces{"a",     "b",        "12",  ",",    ",",  ",",
                                                     "\"",    "\"",       " ",   "  ",   "\t", "\t",
                                                     "\",\"", "20251231", "x,y", "\", ", " ,"};
        std::string line;
        for (int k = Below(12); k > 0; --k) line += OneOf(pieces);
        return line;
    }

    ImportJob RandomJob() {
        static const std::vector<std::string> rows{
            "Ignore", "F_TEXT", "F_NUM",   "F_DATE", "F_WIDE", "f_text; F_WIDE", "F_NUM;  F_DATE; Ignore",
            "F_NONE", "; ",     "F_TEXT; "};
        static const std::vector<std::string> literals{
            "F_TEXT = lit", "F_NUM = 7",  "F_WIDE = ",  "f_date = 2025-01-02",
            "F_NONE = x",   "Ignore = y", "no literal", " = z"};
        std::string content = "a,b,c\td\te\n";
        for (int k = Below(25); k > 0; --k)
            content += RandomLine() + OneOf<std::string>({"\n", "\r\n", "\r"});
        std::vector<std::string> selected;
        for (int k = Below(5); k > 0; --k) selected.push_back(OneOf(rows));
        ImportJob job =
            Job(content, selected, OneOf<Delimiter>({Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}));
        for (int k = Below(3); k > 0; --k) job.Literals.push_back(OneOf(literals));
        if (Below(20) == 0) job.AvailableFields.push_back("F_NONE");
        return job;
    }
};

TEST_F(RandomImport, GivesTheBytesOfTheImportStepByStep) {
    TableMaker maker({{"F_TEXT", 'C', 5}, {"F_NUM", 'N', 4, 1}, {"F_DATE", 'D', 8}, {"F_WIDE", 'C', 30}});
    const std::string table = maker.Row({"old", "1", "20250101", "old"}).Row({"gone"}, '*').Bytes();
    for (int round = 0; round < 800; ++round) {
        GivenFile("ZUKCUST.DBF", table);
        const ImportJob job = RandomJob();
        const ImportResult steps = ImportStepByStep(job);
        const std::string expected = Bytes(PathOf("ZUKCUST"));
        GivenFile("ZUKCUST.DBF", table);
        NoProgress nobody;

        const ImportResult result = ImportDataFile(job, nobody);

        SCOPED_TRACE("round " + std::to_string(round) + "\n" + Bytes(job.ImportFile));
        EXPECT_EQ(result.LinesRead, steps.LinesRead);
        EXPECT_EQ(result.LinesFailed, steps.LinesFailed);
        EXPECT_EQ(result.FieldCountMismatch, steps.FieldCountMismatch);
        const std::string got = Bytes(PathOf("ZUKCUST"));
        ASSERT_EQ(got, expected.substr(0, got.size()));
        ASSERT_EQ(TableContent(got).Count, TableContent(expected).Count);
        EXPECT_TRUE(!result.FieldCountMismatch || got == table);
    }
}

// The text file itself.

TEST_F(ImportTest, FormatIsThatOfTheFirstLineWithADelimiter) {
    const auto recognise = [&](const std::string& content) {
        return RecogniseDelimiter(GivenFile("any.txt", content));
    };

    EXPECT_EQ(recognise("a,b\nc,d\n\"e\",f\n"), Delimiter::Csv) << "the quotes come too late";
    EXPECT_EQ(recognise("title\n\"e\",f\na,b\n"), Delimiter::CsvQuotes);
    EXPECT_EQ(recognise("a\tb\nc,d\n"), Delimiter::Tab);
    EXPECT_EQ(recognise("a\tb,c\n"), Delimiter::Csv) << "a comma goes before a tab on the same line";
    EXPECT_EQ(recognise("no\ndelimiter\n"), std::nullopt);
    EXPECT_EQ(recognise(""), std::nullopt);
}

TEST_F(ImportTest, OnlyLinesThatAreNotEmptyAreCounted) {
    EXPECT_EQ(CountLines(GivenFile("any.txt", "a\n\n b\r\n\r\n \rc")), 4);
    EXPECT_EQ(CountLines(GivenFile("any.txt", "")), 0);
    EXPECT_EQ(CountLines(GivenFile("any.txt", "\xEF\xBB\xBF\na\n")), 1) << "a mark alone is an empty line";
}

// ---- the lines that were lost ----

class LostLinesTest : public ImportTest {
protected:
    ImportResult Import(const std::string& content, std::vector<std::string> selected) {
        ImportJob job = Job(content, std::move(selected));
        job.ErrorFile = List();
        NoProgress nobody;
        return ImportDataFile(job, nobody);
    }

    std::string List() const { return LostLinesFile(Folder(), "cust.txt"); }
};

TEST_F(LostLinesTest, AreListedWithNumberAndReason) {
    Global.Clock = [] { return DateTime{2026, 11, 21, 18, 5, 0}; };

    const ImportResult result = Import("A1,Acme\n\nB2,Bolt,9\nC3,Cog\n", {"C_CODE", "C_NAME"});

    EXPECT_TRUE(result.ErrorsListed);
    EXPECT_EQ(ReadWholeFile(List()), "Lines that were not imported from cust.txt, 2026-11-21 18:05:00\r\n"
                                     "3\tmore than the 2 columns of line 1\tB2,Bolt,9\r\n");
}

TEST_F(LostLinesTest, ALineThatIsTooLongIsListedByItsBeginning) {
    Import("A1,Acme\n" + std::string(2'000'000, 'x') + "\nC3,Cog\n", {"C_CODE", "C_NAME"});

    const std::string list = ReadWholeFile(List());
    EXPECT_NE(list.find("\r\n2\tthe line is longer"), std::string::npos);
    EXPECT_NE(list.find("\txxxx"), std::string::npos);
    EXPECT_LT(list.size(), 5000U);
}

TEST_F(LostLinesTest, ALineThatIsTooLongIsListedInTheCodePageToo) {
    std::string blocks;
    for (int k = 0; k < 1'200'000; ++k) blocks += "\xC3\xA9";

    const ImportResult result = Import("\xEF\xBB\xBF"
                                       "A1,Acme\nCaf\xC3\xA9" +
                                           blocks + "\nC3,Caf\xC3\xA9\n",
                                       {"C_CODE", "C_NAME"});

    EXPECT_EQ(result.LinesFailed, 1);
    EXPECT_NE(ReadWholeFile(List()).find("\tCaf\xE9\xE9\xE9"), std::string::npos);
}

TEST_F(LostLinesTest, AListOfAnEarlierRunGoesWhenNoLineIsLost) {
    Import("A1,Acme\nB2,Bolt,9\n", {"C_CODE", "C_NAME"});
    ASSERT_TRUE(FileExists(List()));

    const ImportResult result = Import("A1,Acme\nB2,Bolt\n", {"C_CODE", "C_NAME"});

    EXPECT_FALSE(result.ErrorsListed);
    EXPECT_FALSE(FileExists(List()));
}

TEST_F(LostLinesTest, AListThatCannotBeWrittenStopsNothing) {
    GivenFile("Errors", "a file where the folder should be");

    const ImportResult result = Import("A1,Acme\nB2,Bolt,9\nC3,Cog\n", {"C_CODE", "C_NAME"});

    EXPECT_FALSE(result.ErrorsListed);
    EXPECT_EQ(result.LinesFailed, 1);
    EXPECT_EQ(Codes(), (std::vector<std::string>{"A1", "", "C3"}));
}

TEST_F(LostLinesTest, AnImportThatIsStoppedLeavesTheListOfTheOneBefore) {
    Import("A1,Acme\nB2,Bolt,9\n", {"C_CODE", "C_NAME"});
    const std::string before = ReadWholeFile(List());
    ImportJob job = Job("A1,Acme\nB2,Bolt,9,9\n", {"C_CODE", "C_NAME"});
    job.ErrorFile = List();
    job.TableFile = Folder() + "gone.dbf";
    NoProgress nobody;

    EXPECT_EQ(FailureNumber([&] { ImportDataFile(job, nobody); }), 53);

    EXPECT_EQ(ReadWholeFile(List()), before);
}

} // namespace
