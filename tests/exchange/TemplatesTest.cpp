#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportTemplate.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

namespace {

using Rows = std::vector<std::string>;

class TemplatesTest : public EngineTest {};

// Import templates.

ImportTemplate Customers() {
    ImportTemplate content;
    content.DataFile = "cust.csv";
    content.Delimiter = Delimiter::CsvQuotes;
    content.StartLine = "2";
    content.Fields = {"C_CODE; C_SEARCH", "Ignore", "C_NAME"};
    content.Literals = {"C_STATE = NV"};
    return content;
}

TEST_F(TemplatesTest, ImportTemplateIsWrittenLineByLine) {
    const std::string path = Folder() + "day.cst";

    WriteImportTemplate(path, Customers());

    EXPECT_EQ(Bytes(path),
              "cust.csv\r\nCSV Quotes\r\nStartLine=2\r\n[FIELDS]\r\nC_CODE; C_SEARCH\r\nIgnore\r\nC_NAME\r\n"
              "[LITERALS]\r\nC_STATE = NV\r\n");
}

TEST_F(TemplatesTest, ImportTemplateSurvivesSavingAndReading) {
    const std::string path = Folder() + "day.cst";
    WriteImportTemplate(path, Customers());

    const ImportTemplateRead read = ReadImportTemplate(path);

    EXPECT_TRUE(read.Opened);
    EXPECT_TRUE(read.Complete);
    EXPECT_FALSE(read.BadDataFile);
    EXPECT_EQ(read.Template.DataFile, "cust.csv");
    EXPECT_EQ(read.Template.Delimiter, Delimiter::CsvQuotes);
    EXPECT_EQ(read.Template.StartLine, "2");
    EXPECT_EQ(read.Template.Fields, Customers().Fields);
    EXPECT_EQ(read.Template.Literals, Customers().Literals);
}

TEST_F(TemplatesTest, DirectoryBeforeTheDataFileIsDropped) {
    for (const char* first :
         {"C:\\Data\\In\\cust.csv", "/home/office/cust.csv", "..\\cust.csv", "C:\\In/cust.csv "}) {
        EXPECT_EQ(ReadImportTemplate(GivenFile("old.cst", first)).Template.DataFile, "cust.csv") << first;
    }
}

TEST_F(TemplatesTest, DataFileThatIsNoFileNameIsRefused) {
    for (const char* first : {"..", "folder\\", "", ".", "C:cust.csv",
                              "a\x01"
                              "b"}) {
        const ImportTemplateRead read =
            ReadImportTemplate(GivenFile("bad.cst", std::string(first) + "\nCSV\n"));
        EXPECT_TRUE(read.BadDataFile) << first;
        EXPECT_EQ(read.Template.DataFile, "") << first;
        EXPECT_EQ(read.Template.Delimiter, Delimiter::Csv) << "the rest is read all the same";
    }
}

TEST_F(TemplatesTest, KeywordsAreReadInAnyCaseAndOrderAndOtherLinesSkipped) {
    const ImportTemplate read =
        ReadImportTemplate(GivenFile("any.itm",
                                     "items.txt\nhello\nstartline=  7 \n\ncsv quotes\ntab\n"
                                     "[fields]\nI_CODE\n\nCSV\n[Literals]\nI_UM = each\n[FIELDS]\n"))
            .Template;

    EXPECT_EQ(read.StartLine, "7");
    EXPECT_EQ(read.Delimiter, Delimiter::Tab) << "the last one counts";
    EXPECT_EQ(read.Fields, (Rows{"I_CODE", "", "CSV"})) << "an empty row is a column too";
    EXPECT_EQ(read.Literals, (Rows{"I_UM = each", "[FIELDS]"})) << "literals go on to the end of the file";
}

TEST_F(TemplatesTest, TemplateWithoutDelimiterOrStartLineTellsNone) {
    const ImportTemplate read =
        ReadImportTemplate(GivenFile("any.itm", "items.txt\n[FIELDS]\nI_CODE\n")).Template;

    EXPECT_EQ(read.Delimiter, std::nullopt);
    EXPECT_EQ(read.StartLine, "");
    EXPECT_EQ(read.Fields, (Rows{"I_CODE"}));
}

TEST_F(TemplatesTest, MissingOrEmptyTemplateIsNoFailure) {
    EXPECT_FALSE(ReadImportTemplate(Folder() + "gone.cst").Opened);

    const ImportTemplateRead empty = ReadImportTemplate(GivenFile("empty.cst", ""));
    EXPECT_TRUE(empty.Opened);
    EXPECT_FALSE(empty.Complete);
}

TEST_F(TemplatesTest, ReadingStopsAtALineThatIsTooLongAndKeepsWhatCameBefore) {
    const ImportTemplateRead read = ReadImportTemplate(
        GivenFile("big.cst", "c.csv\n[FIELDS]\nC_CODE\n" + std::string(2'000'000, 'x') + "\nC_NAME\n"));

    EXPECT_FALSE(read.Complete);
    EXPECT_EQ(read.Template.Fields, (Rows{"C_CODE"}));
}

TEST_F(TemplatesTest, TemplateThatCouldNotBeReadBackIsNotWritten) {
    const std::string path = GivenFile("day.cst", "old");
    ImportTemplate content = Customers();
    content.Fields.push_back("C_CITY\nC_STATE");
    EXPECT_EQ(FailureOf([&] { WriteImportTemplate(path, content); }).Number, 5);

    content = Customers();
    content.DataFile = "in/cust.csv";
    EXPECT_EQ(FailureOf([&] { WriteImportTemplate(path, content); }).Number, 52);

    EXPECT_EQ(Bytes(path), "old");
}

TEST_F(TemplatesTest, FullDiskLeavesTheOldTemplate) {
    const std::string path = GivenFile("day.cst", "old");
    FaultyDisk disk(2);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { WriteImportTemplate(path, Customers()); }).Number, 61);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(path), "old");
}

TEST_F(TemplatesTest, KindIsToldByTheLastThreeLetters) {
    EXPECT_EQ(TemplateKindOf("Day.CST"), TemplateKind::Cust);
    EXPECT_EQ(TemplateKindOf("day.itm"), TemplateKind::Item);
    EXPECT_EQ(TemplateKindOf("day.xor"), std::nullopt);
    EXPECT_EQ(TemplateKindOf("st"), std::nullopt);
    EXPECT_EQ(TableFileOf(TemplateKind::Item), "ZUKITEM.DBF");
}

TEST_F(TemplatesTest, StartLineIsANumberOfALineOrOne) {
    EXPECT_EQ(StartLineNumber("3"), 3);
    EXPECT_EQ(StartLineNumber(" 2.0 "), 2);
    for (const char* text : {"", "abc", "0", "-4", "99999999999"})
        EXPECT_EQ(StartLineNumber(text), 1) << text;
}

// Export templates.

ExportTemplate Orders() {
    ExportTemplate content;
    content.FileName = "orders.csv";
    content.Delimiter = Delimiter::Tab;
    content.AddBlankLine = true;
    content.Columns = {"H_ORDCODE", "L_QTY * [2]", "Literal = a + b", "H_ORDDATE Format: mmddyyyy", "[1.5]"};
    return content;
}

TEST_F(TemplatesTest, ExportTemplateIsWrittenLineByLine) {
    const std::string path = Folder() + "day.xor";

    WriteExportTemplate(path, Orders());

    EXPECT_EQ(Bytes(path), "Filename=orders.csv\r\nTAB\r\nSort Orders0\r\nAdd Blank Line between Orders1\r\n"
                           "Quality Check0\r\nHDR=0\r\nH_ORDCODE\r\nL_QTY * [2]\r\nLiteral = a + b\r\n"
                           "H_ORDDATE Format: mmddyyyy\r\n[1.5]\r\n");
}

TEST_F(TemplatesTest, ExportTemplateSurvivesSavingAndReading) {
    const std::string path = Folder() + "day.xor";
    for (const Delimiter delimiter : {Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}) {
        for (int flags = 0; flags < 16; ++flags) {
            ExportTemplate content = Orders();
            content.Delimiter = delimiter;
            content.SortOrders = (flags & 1) != 0;
            content.AddBlankLine = (flags & 2) != 0;
            content.QualityCheck = (flags & 4) != 0;
            content.AddHeadings = (flags & 8) != 0;
            WriteExportTemplate(path, content);

            const ExportTemplateRead read = ReadExportTemplate(path);

            EXPECT_TRUE(read.Complete);
            EXPECT_TRUE(read.BeginsWithFileName);
            EXPECT_EQ(read.Template.FileName, "orders.csv");
            EXPECT_EQ(read.Template.Delimiter, delimiter);
            EXPECT_EQ(read.Template.SortOrders, content.SortOrders);
            EXPECT_EQ(read.Template.AddBlankLine, content.AddBlankLine);
            EXPECT_EQ(read.Template.QualityCheck, content.QualityCheck);
            EXPECT_EQ(read.Template.AddHeadings, content.AddHeadings);
            EXPECT_EQ(read.Template.Columns, content.Columns);
        }
    }
}

TEST_F(TemplatesTest, ExportTemplateLinesAreTakenByTheirBeginning) {
    const ExportTemplateRead read = ReadExportTemplate(
        GivenFile("old.xor", "H_ORDCODE\nfilename= C:\\Out\\orders \ncsv quotesXY\ntabular\nhdr=1\nadd blank "
                             "line between orders 1\n"
                             "SORT ORDERSyes\nQuality Check\nfilter: Payments\nCSVNAME\n\nL_QTY\n"));

    EXPECT_FALSE(read.BeginsWithFileName);
    EXPECT_EQ(read.Template.FileName, "orders");
    EXPECT_EQ(read.Template.Delimiter, Delimiter::Csv) << "CSVNAME is no column";
    EXPECT_TRUE(read.Template.AddHeadings);
    EXPECT_TRUE(read.Template.AddBlankLine);
    EXPECT_FALSE(read.Template.SortOrders) << "only 1 is on";
    EXPECT_FALSE(read.Template.QualityCheck);
    EXPECT_EQ(read.Template.Filter, "Payments");
    EXPECT_EQ(read.Template.Columns, (Rows{"H_ORDCODE", "", "L_QTY"}));
}

TEST_F(TemplatesTest, AFilterLineOfAnExportTemplateIsNoColumn) {
    const ExportTemplateRead read =
        ReadExportTemplate(GivenFile("f.xor", "Filename=out\r\nCSV\r\nFilter: H_ORDCODE=1\r\nH_ORDCODE\r\n"));

    EXPECT_EQ(read.Template.Filter, "H_ORDCODE=1");
    EXPECT_EQ(read.Template.Columns, std::vector<std::string>{"H_ORDCODE"});
}

TEST_F(TemplatesTest, ExportFileNameThatIsNoneIsRefused) {
    const ExportTemplateRead read =
        ReadExportTemplate(GivenFile("bad.xor", "Filename=out/..\nCSV\nH_ORDCODE\n"));

    EXPECT_TRUE(read.BadFileName);
    EXPECT_EQ(read.Template.FileName, "");
    EXPECT_EQ(read.Template.Columns, (Rows{"H_ORDCODE"}));
}

TEST_F(TemplatesTest, ExportFileNameIsTakenWithoutItsDirectoryAndTheBlanksAroundIt) {
    const std::string path = GivenFile("old.xor", "Filename= C:\\out\\ orders.csv \nCSV\n");

    EXPECT_EQ(ReadExportTemplate(path).Template.FileName, "orders.csv");
}

TEST_F(TemplatesTest, EmptyExportFileNameIsEmpty) {
    const ExportTemplateRead read = ReadExportTemplate(GivenFile("empty.xor", "Filename=\nH_ORDCODE\n"));

    EXPECT_TRUE(read.BeginsWithFileName);
    EXPECT_FALSE(read.BadFileName);
    EXPECT_EQ(read.Template.FileName, "");
}

TEST_F(TemplatesTest, MissingExportTemplateIsNoFailure) {
    const ExportTemplateRead read = ReadExportTemplate(Folder() + "gone.xor");
    EXPECT_FALSE(read.Opened);
    EXPECT_FALSE(read.Complete);
}

// Activities.

TEST_F(TemplatesTest, ActivityIsTwoLinesOfALabelAndATemplate) {
    Activity activity;
    activity.Rows[0].Template = "customers of the day.cst";

    WriteActivity(Folder() + "Day.ipm", activity);

    EXPECT_EQ(Bytes(Folder() + "Day.ipm"),
              "Saved Setting 1:    customers of the day.cst;\r\nSaved Setting 2:    ;\r\n");
    const Activity read = ReadActivity(Folder() + "Day.ipm");
    EXPECT_EQ(read.Rows[0].Label, "Saved Setting 1:");
    EXPECT_EQ(read.Rows[0].Template, "customers of the day.cst");
    EXPECT_EQ(read.Rows[1].Label, "Saved Setting 2:");
    EXPECT_EQ(read.Rows[1].Template, "");
}

TEST_F(TemplatesTest, ActivityValueEndsAtTheFirstSemicolonFromColumnTwenty) {
    const Activity read =
        ReadActivity(GivenFile("odd.ipm", "Saved; Setting 1:  xa.cst ; b.cst;\nSaved Setting 2:   None;\n"
                                          "Delete Override DirectoriesYes;\n"));

    EXPECT_EQ(read.Rows[0].Label, "Saved; Setting 1:  x");
    EXPECT_EQ(read.Rows[0].Template, "xa.cst") << "the value begins with the label's last column";
    EXPECT_EQ(read.Rows[1].Template, "");
}

TEST_F(TemplatesTest, ShortActivityLinesAreNone) {
    const Activity read = ReadActivity(GivenFile("short.ipm", "Saved\n\n"));

    EXPECT_EQ(read.Rows[0].Label, "Saved");
    EXPECT_EQ(read.Rows[0].Template, "");
    EXPECT_EQ(read.Rows[1].Label, "");
}

TEST_F(TemplatesTest, ActivityThatCannotBeReadFails) {
    EXPECT_EQ(FailureOf([&] { ReadActivity(Folder() + "gone.ipm"); }).Number, 53);
    EXPECT_EQ(FailureOf([&] { ReadActivity(GivenFile("one.ipm", "Saved Setting 1:    a.cst;\n")); }).Number,
              62);
    EXPECT_EQ(FailureOf([&] {
                  ReadActivity(
                      GivenFile("path.ipm", "Saved Setting 1:    ..\\a.cst;\nSaved Setting 2:    ;\n"));
              }).Number,
              52);
}

TEST_F(TemplatesTest, ActivityWithATemplateThatWouldNotBeReadBackIsNotWritten) {
    for (const char* name : {"a;b.cst", "x\\a.cst", ".."}) {
        Activity activity;
        activity.Rows[1].Template = name;
        EXPECT_EQ(FailureOf([&] { WriteActivity(Folder() + "Day.ipm", activity); }).Number, 52) << name;
        EXPECT_FALSE(Exists(Folder() + "Day.ipm"));
    }
}

} // namespace
