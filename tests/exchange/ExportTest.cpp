#include "exchange/Export.h"

#include "exchange/ExchangeTest.h"
#include "exchange/ExportSteps.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

#include <array>
#include <random>

namespace {

using Rows = std::vector<std::string>;

/// A table of one field, which is the order code in either order table.
MemoryTable OneField() {
    constexpr std::array Lengths{12};
    return MemoryTable(Lengths);
}

std::string Padded(std::string text) {
    text.resize(12, ' ');
    return text;
}

class ExportTest : public ExchangeTest {
protected:
    /// Three orders with ten lines; the first order has no date.
    void GivenThreeOrders() {
        GivenTable("ZUKORHDR",
                   {{{"H_ORDCODE", "A1"}, {"H_CUSTCODE", "123"}, {"H_TOTTOTAL", "10.5"}},
                    {{"H_ORDCODE", "A2"}, {"H_CUSTCODE", "12A"}, {"H_ORDDATE", "20261115"}},
                    {{"H_ORDCODE", "A3"}, {"H_CUSTCODE", "Acme, Inc"}, {"H_ORDDATE", "20270102"}}});
        std::vector<Fields> lines;
        for (const char* order : {"A1", "A2", "A2", "A3", "A3", "A3", "A3", "a3", "A3", "A3"}) {
            lines.push_back({{"L_ORDCODE", order}, {"L_QTY", std::to_string(lines.size() + 1)}});
        }
        GivenTable("ZUKORLIN", lines);
    }

    ExportJob Job(Rows columns, Delimiter delimiter = Delimiter::Csv) const {
        ExportJob job;
        job.ExportFile = Folder() + "out.csv";
        job.Delimiter = delimiter;
        job.Columns = std::move(columns);
        return job;
    }

    ExportResult Run(const ExportJob& job) const {
        NoProgress nobody;
        return ExportOrders(job, LoadOrderTables(PathOf("ZUKORHDR"), PathOf("ZUKORLIN")), nobody);
    }

    Rows Export(Rows columns, Delimiter delimiter = Delimiter::Csv) {
        const ExportJob job = Job(std::move(columns), delimiter);
        Result = Run(job);
        EXPECT_FALSE(Result.CouldNotOpen);
        return Lines(job.ExportFile);
    }

    ExportResult Result;
};

TEST_F(ExportTest, TheBarIsFullWhenTheFileIsThereAlsoWhenLinesWereLeftOut) {
    GivenThreeOrders();
    class Shown final : public Progress {
    public:
        void Begin(const Text&, std::int64_t) override {}
        void Show(std::int64_t value) override { Last = value; }
        std::int64_t Last = 0;
    } bar;
    OrderTables tables = LoadOrderTables(PathOf("ZUKORHDR"), PathOf("ZUKORLIN"));

    ExportOrders(Job({"H_ORDCODE"}), tables, bar);
    EXPECT_EQ(bar.Last, 3 + StepsBehindExport);

    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A1"}}});
    tables = LoadOrderTables(PathOf("ZUKORHDR"), PathOf("ZUKORLIN"));
    EXPECT_EQ(ExportOrders(Job({"L_ORDCODE"}), tables, bar).OrphanLines, 9);
    EXPECT_EQ(bar.Last, 10 + StepsBehindExport);
}

TEST_F(ExportTest, FixedListsHave56HeaderAnd17LineFields) {
    EXPECT_EQ(FindTable("ZUKORHDR")->Fields.size(), 56U);
    EXPECT_STREQ(FindTable("ZUKORHDR")->Fields.front().Name, "H_ORDCODE");
    EXPECT_STREQ(FindTable("ZUKORHDR")->Fields.back().Name, "H_TIME2");
    EXPECT_EQ(FindTable("ZUKORLIN")->Fields.size(), 17U);
    EXPECT_STREQ(FindTable("ZUKORLIN")->Fields.front().Name, "L_ORDCODE");
    EXPECT_STREQ(FindTable("ZUKORLIN")->Fields.back().Name, "L_SOURCE");
}

TEST_F(ExportTest, HeaderFieldsGiveOneLineForEachOrder) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"H_ORDCODE", "H_CUSTCODE"}), (Rows{"A1,123", "A2,12A", "A3,Acme, Inc"}));

    EXPECT_EQ(Result.Exported, 3);
    EXPECT_EQ(Result.Walked, 3);
    EXPECT_EQ(Result.OrphanLines, 0);
}

TEST_F(ExportTest, OneLineFieldAnywhereGivesOneLineForEachOrderLine) {
    GivenThreeOrders();

    const Rows lines = Export({"H_CUSTCODE", "l_qty"}, Delimiter::Tab);

    EXPECT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], "123\t1");
    EXPECT_EQ(lines[7], "Acme, Inc\t8") << "order codes are compared without regard to case";
    EXPECT_EQ(Result.Exported, 10);
    EXPECT_EQ(Result.Walked, 10);
}

TEST_F(ExportTest, NameThatMerelyHoldsALineFieldGivesLineShapeToo) {
    GivenThreeOrders();

    const Rows lines = Export({"XL_QTY", "H_ORDCODE"});

    EXPECT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], ",A1") << "the name itself is not found";
}

TEST_F(ExportTest, LineWithoutAHeaderIsLeftOutAndCounted) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A1"}}});
    GivenTable("ZUKORLIN", {{{"L_ORDCODE", "A1"}}, {{"L_ORDCODE", "A9"}}, {{"L_ORDCODE", "A1"}}});

    EXPECT_EQ(Export({"L_ORDCODE"}), (Rows{"A1", "A1"}));

    EXPECT_EQ(Result.Exported, 2);
    EXPECT_EQ(Result.Walked, 3);
    EXPECT_EQ(Result.OrphanLines, 1);
}

TEST_F(ExportTest, FirstOfTwoHeadersWithOneCodeWins) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "x"}},
                            {{"H_ORDCODE", "a1"}, {"H_CUSTCODE", "first"}},
                            {{"H_ORDCODE", "A1"}, {"H_CUSTCODE", "second"}}});
    GivenTable("ZUKORLIN", {{{"L_ORDCODE", "A1"}}});

    EXPECT_EQ(Export({"L_ORDCODE", "H_CUSTCODE"}), (Rows{"A1,first"}));
}

TEST_F(ExportTest, BlankLineStandsBeforeEachOrderTheFirstIncluded) {
    GivenThreeOrders();
    ExportJob job = Job({"L_ORDCODE"});
    job.AddBlankLine = true;
    Run(job);
    EXPECT_EQ(Lines(job.ExportFile),
              (Rows{"", "A1", "", "A2", "A2", "", "A3", "A3", "A3", "A3", "a3", "A3", "A3"}));

    job.AddHeadings = true;
    Run(job);
    EXPECT_EQ(Rows(Lines(job.ExportFile)).at(0), "L_ORDCODE");
    EXPECT_EQ(Rows(Lines(job.ExportFile)).at(1), "");
}

TEST_F(ExportTest, BlankLineStandsBehindEachHeader) {
    GivenThreeOrders();
    ExportJob job = Job({"H_ORDCODE"});
    job.AddBlankLine = true;

    Run(job);

    EXPECT_EQ(Bytes(job.ExportFile), "A1\r\n\r\nA2\r\n\r\nA3\r\n\r\n");
}

TEST_F(ExportTest, HeadingsAreTheRowsAsTheyStand) {
    GivenTable("ZUKORHDR");
    GivenTable("ZUKORLIN");
    ExportJob job = Job({" H_ORDCODE", "H_ORDDATE Format: mmddyyyy", "[1.5]"}, Delimiter::CsvQuotes);
    job.AddHeadings = true;
    Run(job);
    EXPECT_EQ(Bytes(job.ExportFile), "\"H_ORDCODE\",\"H_ORDDATE Format: mmddyyyy\",\"[1.5]\"\r\n");

    job.Delimiter = Delimiter::Tab;
    Run(job);
    EXPECT_EQ(Bytes(job.ExportFile), " H_ORDCODE\tH_ORDDATE Format: mmddyyyy\t[1.5]\r\n");
}

TEST_F(ExportTest, QuotesStandAroundWhatIsNoNumber) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"H_CUSTCODE", "H_ORDDATE"}, Delimiter::CsvQuotes),
              (Rows{"123,\"\"", "\"12A\",20261115", "\"Acme, Inc\",20270102"}));
}

TEST_F(ExportTest, TextInQuotesIsNotQuotedAgain) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "\"a\""}}, {{"H_ORDCODE", "\"a"}}, {{"H_ORDCODE", "\""}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_ORDCODE"}, Delimiter::CsvQuotes), (Rows{"\"a\"", "\"\"a\"", "\""}));
}

TEST_F(ExportTest, DateTakesItsFormatAndAnEmptyDateIsAnEmptyCell) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"H_ORDCODE", "H_ORDDATE Format: mmddyyyy", "h_orddate format:dd-mmm-yy"}),
              (Rows{"A1,,", "A2,11152026,15-Nov-26", "A3,01022027,02-Jan-27"}));
}

TEST_F(ExportTest, DateThatIsNoneKeepsTheCellOfTheRecordBefore) {
    GivenTable("ZUKORHDR",
               {{{"H_ORDDATE", "20261115"}}, {{"H_ORDDATE", "20269915"}}, {{"H_ORDDATE", "soon"}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_ORDDATE Format: yyyy"}), (Rows{"2026", "2026", "2026"}));
}

TEST_F(ExportTest, FormatIsForHeaderFieldsOnly) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A1"}}});
    GivenTable("ZUKORLIN", {{{"L_ORDCODE", "A1"}, {"L_DATE", "20261115"}}});

    EXPECT_EQ(Export({"L_DATE Format: yyyy", "L_DATE"}), (Rows{",20261115"}));
    EXPECT_EQ(Export({"Format: yyyy", "L_DATE"}), (Rows{",20261115"}));
}

TEST_F(ExportTest, LiteralStandsInEveryLine) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"Literal =  a = b ", "Literal = H_ORDCODE"}),
              (Rows{"a = b,H_ORDCODE", "a = b,H_ORDCODE", "a = b,H_ORDCODE"}));
}

TEST_F(ExportTest, LiteralWithAnOperatorActsAsACalculation) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"Literal = this + that"}), (Rows{" + ", " + ", " + "})) << "neither operand is found";
    EXPECT_EQ(Export({"[2] * [3]", "Literal = this + that"}), (Rows{"6,5", "6,5", "6,5"}))
        << "both operands keep the values of the calculation before";
}

TEST_F(ExportTest, CalculationsTakeFieldsAndNumbers) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A1"}, {"H_TOTTOTAL", "1,250.50"}}});
    GivenTable("ZUKORLIN", {{{"L_ORDCODE", "A1"}, {"L_QTY", "3"}, {"L_PRICE", "0.1"}}});

    EXPECT_EQ(
        Export({"L_QTY * [1.5]", "L_QTY * L_PRICE", "H_TOTTOTAL + [0.25]", "l_qty - [10]", "[1] / L_QTY"}),
        (Rows{"4.5,0.3,1250.75,-7,0.333333333333333"}));
}

TEST_F(ExportTest, PlusGoesBeforeMinusTimesAndDivision) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A1"}, {"H_TOTTOTAL", "8"}}});
    GivenTable("ZUKORLIN");

    // The left side of the first is "[1] * [2]": it holds a bracket, and its value is "1".
    EXPECT_EQ(Export({"[1] * [2] + [5]", "H_TOTTOTAL / H_TOTTOTAL - [1]"}), (Rows{"6,0"}))
        << "the left side of the second is no field: the 1 of the calculation before stays";
}

TEST_F(ExportTest, TextsAreJoinedByTheOperator) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"H_ORDCODE + H_CUSTCODE", "H_CUSTCODE / [x]"}),
              (Rows{"A1 + 123,123 / x", "A2 + 12A,12A / x", "A3 + Acme, Inc,Acme, Inc / x"}));
}

TEST_F(ExportTest, DivisionByZeroRepeatsTheCellOfTheRecordBefore) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "0"}, {"H_TOTTOTAL", "5"}},
                            {{"H_ORDCODE", "2"}, {"H_TOTTOTAL", "5"}},
                            {{"H_ORDCODE", "0"}, {"H_TOTTOTAL", "7"}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_TOTTOTAL / [0]", "H_TOTTOTAL / H_ORDCODE"}), (Rows{",", ",2.5", ",2.5"}));
}

TEST_F(ExportTest, ResultThatIsTooGreatRepeatsTheCellOfTheRecordBefore) {
    GivenTable("ZUKORHDR", {{{"H_CUSTCODE", "2"}}, {{"H_CUSTCODE", "1E300"}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_CUSTCODE * [1E300]"}), (Rows{"2E+300", "2E+300"}));
}

TEST_F(ExportTest, OperandThatIsFoundNowhereKeepsTheValueOfTheLastCalculation) {
    GivenTable("ZUKORHDR",
               {{{"H_ORDCODE", "1"}, {"H_TOTTOTAL", "10"}}, {{"H_ORDCODE", "2"}, {"H_TOTTOTAL", "20"}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_NOWHERE + [1]", "H_TOTTOTAL * [2]", "H_ORDCODE - nothing"}),
              (Rows{" + 1,20,-1", "2,40,0"}))
        << "in the second record the left operand is the order code of the first";
}

TEST_F(ExportTest, BracketMustStandFirst) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "A"}}});
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"x[5] + [1]"}), (Rows{"[5 + 1"}));
    EXPECT_EQ(Export({"[5] + [1", "][ + [2]"}), (Rows{"5 + ,7"}))
        << "a bracket that is not closed, or closed at once, leaves the operand as it was";
}

TEST_F(ExportTest, NumberOperandAloneIsNoColumn) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"[1.5]", "H_ORDCODE"}), (Rows{",A1", ",A2", ",A3"}));
}

TEST_F(ExportTest, CalculationOnADateRowGoesBeforeItsFormat) {
    GivenThreeOrders();

    EXPECT_EQ(Export({"H_ORDDATE Format: mmddyyyy + [1]"}), (Rows{" + 1", " + 1", " + 1"}));
}

TEST_F(ExportTest, LineFieldsAreNotFoundWithoutLineShape) {
    // No row can hold the name of a line field in header shape, so nothing but a cut one is left.
    GivenThreeOrders();

    EXPECT_EQ(Export({"L_", "H_ORDCODE"}), (Rows{",A1", ",A2", ",A3"}));
}

TEST_F(ExportTest, TableWithFewerFieldsThanItShouldHaveLeavesTheirCells) {
    GivenFile("ZUKORHDR.DBF",
              TableMaker({{"H_ORDCODE", 'C', 4}, {"H_CUSTCODE", 'C', 4}}).Row({"A1", "c"}).Bytes());
    GivenFile("ZUKORLIN.DBF", TableMaker({{"L_ORDCODE", 'C', 4}}).Row({"A1"}).Bytes());

    EXPECT_EQ(Export({"H_CUSTCODE", "H_BILLNAME", "L_QTY", "L_QTY + [1]"}), (Rows{"c,,, + 1"}));
}

TEST_F(ExportTest, RecordsMarkedAsDeletedAreExported) {
    GivenFile("ZUKORHDR.DBF", TableMaker({{"H_ORDCODE", 'C', 4}}).Row({"A1"}).Row({"A2"}, '*').Bytes());
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"H_ORDCODE"}), (Rows{"A1", "A2"}));
}

TEST_F(ExportTest, NoColumnsGiveEmptyLines) {
    GivenThreeOrders();
    ExportJob job = Job({});
    job.AddHeadings = true;

    EXPECT_EQ(Run(job).Exported, 3);

    EXPECT_EQ(Bytes(job.ExportFile), "\r\n\r\n\r\n\r\n");
}

TEST_F(ExportTest, EmptyTablesGiveAnEmptyFile) {
    GivenTable("ZUKORHDR");
    GivenTable("ZUKORLIN");

    EXPECT_EQ(Export({"L_QTY"}), Rows{});

    EXPECT_EQ(Result.Walked, 0);
    EXPECT_EQ(Bytes(Folder() + "out.csv"), "");
}

TEST_F(ExportTest, MoreOrphansThanTheCounterHoldsStopAtItsLargest) {
    OrderTables tables{OneField(), OneField()};
    for (int k = 0; k < 70'000; ++k) {
        tables.FGLin.Add(Padded("A1"));
    }
    NoProgress nobody;

    const ExportResult result = ExportOrders(Job({"L_ORDCODE"}), tables, nobody);

    EXPECT_EQ(result.OrphanLines, 32'767);
    EXPECT_EQ(result.Exported, 0);
    EXPECT_EQ(result.Walked, 70'000);
}

TEST_F(ExportTest, FileThatCannotBeOpenedIsTold) {
    GivenThreeOrders();
    ExportJob job = Job({"L_QTY"});
    job.ExportFile = Folder() + "missing/out.csv";

    const ExportResult result = Run(job);

    EXPECT_TRUE(result.CouldNotOpen);
    EXPECT_EQ(result.Exported, 0);
    EXPECT_EQ(result.Walked, 10);
}

TEST_F(ExportTest, FullDiskLeavesTheFileThatStoodThere) {
    GivenThreeOrders();
    const ExportJob job = Job({"H_ORDCODE"});
    const OrderTables tables = LoadOrderTables(PathOf("ZUKORHDR"), PathOf("ZUKORLIN"));
    GivenFile("out.csv", "old");
    NoProgress nobody;
    int failures = 0;
    for (int failAt = 1; failAt < 20; ++failAt) {
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        bool failed = false;
        try {
            failed = ExportOrders(job, tables, nobody).CouldNotOpen;
        } catch (const RunTimeFailure&) {
            failed = true;
        }
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Global.Files.Count(), 0);
        if (!failed) break;
        ++failures;
        EXPECT_EQ(Bytes(job.ExportFile), "old");
    }
    EXPECT_GE(failures, 3);
    EXPECT_EQ(Lines(job.ExportFile), (Rows{"A1", "A2", "A3"}));
}

TEST_F(ExportTest, FileNameWithoutExtensionTakesThatOfItsDelimiter) {
    EXPECT_EQ(ExportFileName("orders", Delimiter::Csv), "orders.csv");
    EXPECT_EQ(ExportFileName("orders", Delimiter::CsvQuotes), "orders.csv");
    EXPECT_EQ(ExportFileName("orders", Delimiter::Tab), "orders.txt");
    EXPECT_EQ(ExportFileName("orders.iif", Delimiter::Tab), "orders.iif");
}

TEST_F(ExportTest, RecordOfAnotherLengthIsNotAdded) {
    MemoryTable table = OneField();

    EXPECT_EQ(FailureNumber([&] { table.Add("A1"); }), 5);

    EXPECT_EQ(table.RecordCount(), 0);
    EXPECT_EQ(FailureNumber([&] { table.Cell(1, 1); }), 9);
}

TEST_F(ExportTest, EachOfManyLinesFindsItsHeader) {
    OrderTables tables{OneField(), OneField()};
    for (int k = 0; k < 60'000; ++k) {
        tables.FGHdr.Add(Padded("ORDER" + std::to_string(k)));
        tables.FGLin.Add(Padded("order" + std::to_string(60'000 - k - 1)));
    }
    NoProgress nobody;

    EXPECT_EQ(ExportOrders(Job({"L_ORDCODE", "H_ORDCODE"}), tables, nobody).Exported, 60'000);

    EXPECT_EQ(Lines(Folder() + "out.csv").front(), "order59999,ORDER59999");
}

// Both roads.

TEST_F(ExportTest, RandomColumnsGiveTheTextOfTheExportStepByStep) {
    std::mt19937 random(20261115);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const auto oneOf = [&](const Rows& list) { return list[below(list.size())]; };
    const Rows values{"",    "1",     "2.5", "-3",       "0",        "1,000", "x",
                      "a b", "\"q\"", "\"",  "20261115", "20260230", "1E400", "$5"};
    const Rows codes{"A1",
                     "a1",
                     "A2",
                     "\xC4"
                     "1",
                     "\xE4"
                     "1",
                     "",
                     "A3"};
    const Rows operands{"H_TOTTOTAL",  "h_discount", "L_QTY",      "L_PRICE",
                        "[2]",         "[0]",        "[x]",        "x[4]",
                        "[7",          "][",         "nowhere",    "H_ORDDATE Format: yyyy",
                        "Literal = 3", "",           "H_DISCOUNT "};
    const Rows operations{" + ", " - ", " * ", " / ", " = ", ", "};
    const Rows fields{"H_ORDCODE", "H_CUSTCODE", "H_ORDDATE", "H_TOTTOTAL", "H_TIME2", "H_DISCOUNT"};
    const Rows plain{"H_ORDCODE",
                     "h_custcode",
                     "H_ORDDATE Format: mmddyyyy",
                     "H_ORDDATEFormat:dd/mm/yy",
                     "H_SHIPDATE FORMAT: yyyy \"x",
                     "Format:yy",
                     "Literal = a",
                     "Literal = Format: d",
                     "[1.5]",
                     "H_NOWHERE",
                     " H_ORDCODE",
                     "H_CUSTCODE Format: yyyy",
                     "",
                     "H_TIME2"};
    const Rows lineRows{"L_QTY", "l_ordcode", "L_DATE Format: yyyy", "XL_KEY", "L_SOURCE"};
    for (int round = 0; round < 400; ++round) {
        std::vector<Fields> headers, lines;
        for (std::size_t k = below(6); k > 0; --k) {
            Fields row{{"H_ORDCODE", oneOf(codes)}};
            for (const std::string& field : fields) {
                if (field != "H_ORDCODE") row[field] = oneOf(values);
            }
            headers.push_back(row);
        }
        for (std::size_t k = below(8); k > 0; --k) {
            lines.push_back(
                {{"L_ORDCODE", oneOf(codes)}, {"L_QTY", oneOf(values)}, {"L_PRICE", oneOf(values)}});
        }
        GivenTable("ZUKORHDR", headers);
        GivenTable("ZUKORLIN", lines);
        Rows columns;
        for (std::size_t k = below(5); k > 0; --k) {
            if (below(3) == 0)
                columns.push_back(oneOf(plain));
            else if (below(4) == 0)
                columns.push_back(oneOf(lineRows));
            else
                columns.push_back(oneOf(operands) + oneOf(operations) + oneOf(operands));
        }
        ExportJob job =
            Job(columns, std::vector{Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}[below(3)]);
        job.AddHeadings = below(2) == 0;
        job.AddBlankLine = below(2) == 0;
        ExportResult steps;
        const std::string expected = ExportStepByStep(job, PathOf("ZUKORHDR"), PathOf("ZUKORLIN"), steps);

        const ExportResult result = Run(job);

        SCOPED_TRACE("round " + std::to_string(round));
        ASSERT_EQ(Bytes(job.ExportFile), expected);
        EXPECT_EQ(result.Exported, steps.Exported);
        EXPECT_EQ(result.Walked, steps.Walked);
        EXPECT_EQ(result.OrphanLines, steps.OrphanLines);
    }
}

} // namespace
