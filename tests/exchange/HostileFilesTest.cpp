#include "core/TextFile.h"
#include "exchange/Activity.h"
#include "exchange/ExchangeTest.h"
#include "exchange/Export.h"
#include "exchange/ExportTemplate.h"
#include "exchange/Import.h"
#include "exchange/ImportTemplate.h"
#include "exchange/ImportText.h"
#include "exchange/OrderCheck.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"

#include <filesystem>

namespace {

class HostileExchangeTest : public ExchangeTest {};

constexpr std::string_view GoodImport =
    "cust.csv\r\nCSV Quotes\r\nStartLine=2\r\n[FIELDS]\r\nC_CODE; C_SEARCH\r\nIgnore\r\nC_NAME\r\n"
    "[LITERALS]\r\nC_CITY = Ulm\r\n";
constexpr std::string_view GoodExport =
    "Filename=orders.csv\r\nCSV Quotes\r\nSort Orders1\r\nAdd Blank Line between Orders1\r\n"
    "Quality Check1\r\nHDR=1\r\nH_ORDDATE Format: mmddyyyy\r\nLiteral = a + b\r\nL_QTY * [1.5]\r\n"
    "H_ORDCODE\r\nH_TOTTOTAL / [0]\r\n";

TEST_F(HostileExchangeTest, RubbishImportTemplatesNeverFailAndCanBeRun) {
    GivenTable("ZUKCUST");
    const std::string data = GivenFile("cust.csv", "A,B,C\nD,E,F\n");
    NoProgress silent;
    for (const std::string& content : Rubbish(GoodImport)) {
        const std::string path = GivenFile("t.cst", content);
        const ImportTemplateRead read = ReadImportTemplate(path);
        EXPECT_TRUE(read.Opened);

        OnlyRunTimeFailures([&] {
            ImportJob job;
            job.ImportFile = data;
            job.TableFile = PathOf("ZUKCUST");
            job.Delimiter = read.Template.Delimiter.value_or(Delimiter::Csv);
            job.StartLine = StartLineNumber(read.Template.StartLine);
            job.AvailableFields = AvailableFieldsOf(job.TableFile);
            job.SelectedFields = read.Template.Fields;
            job.Literals = read.Template.Literals;
            ImportDataFile(job, silent);
        });
    }
}

TEST_F(HostileExchangeTest, RubbishExportTemplatesNeverFailAndCanBeRun) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "1"}, {"H_ORDDATE", "20261115"}}, {{"H_ORDCODE", "2"}}});
    GivenTable("ZUKORLIN", {{{"L_ORDCODE", "1"}, {"L_QTY", "3"}}, {{"L_ORDCODE", "3"}}});
    const PCOrders book = OpenPCOrders(PathOf("ZUKORHDR"), PathOf("ZUKORLIN"));
    NoProgress silent;
    for (const std::string& content : Rubbish(GoodExport)) {
        const std::string path = GivenFile("t.xor", content);
        const ExportTemplateRead read = ReadExportTemplate(path);
        EXPECT_TRUE(read.Opened);

        OnlyRunTimeFailures([&] {
            ExportJob job;
            job.ExportFile = Folder() + "out.csv";
            job.Delimiter = read.Template.Delimiter.value_or(Delimiter::Csv);
            job.AddHeadings = read.Template.AddHeadings;
            job.AddBlankLine = read.Template.AddBlankLine;
            job.Columns = read.Template.Columns;
            ExportOrders(job, book.Tables, silent);
        });
    }
}

TEST_F(HostileExchangeTest, RubbishActivitiesAreReadOrRefused) {
    const std::string good = "Saved Setting 1:    cust.cst;\r\nSaved Setting 2:    None;\r\n";
    for (const std::string& content : Rubbish(good)) {
        const std::string path = GivenFile("a.ipm", content);
        OnlyRunTimeFailures([&] { WriteActivity(path, ReadActivity(path)); });
    }
}

TEST_F(HostileExchangeTest, RubbishDataFilesAreImportedWithARecordForEachLineThatIsRead) {
    GivenTable("ZUKCUST");
    NoProgress silent;
    const std::string good = "A1,\"Smith , John\",12\r\nB2,\"x\",\"y\"\r\n\r\nC3,,\"never closes, 5\r\n";
    for (const std::string& content : Rubbish(good)) {
        const std::string data = GivenFile("cust.csv", content);
        for (const Delimiter delimiter : {Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}) {
            OnlyRunTimeFailures([&] {
                ImportJob job;
                job.ImportFile = data;
                job.TableFile = PathOf("ZUKCUST");
                job.Delimiter = delimiter;
                job.AvailableFields = AvailableFieldsOf(job.TableFile);
                job.SelectedFields = {"C_CODE"};
                job.LineCount = CountLines(data);
                RecogniseDelimiter(data);
                const ImportResult result = ImportDataFile(job, silent);
                EXPECT_EQ(result.LinesRead, job.LineCount);
                EXPECT_EQ(RecordCount("ZUKCUST"), result.LinesRead);
            });
        }
    }
}

TEST_F(HostileExchangeTest, TemplatesForWhichThereIsNoMemoryAreNotOpened) {
    const std::string path = GivenFile("t.cst", GoodImport);
    PoorDisk disk;
    Global.TheDisk = &disk;

    EXPECT_FALSE(ReadImportTemplate(path).Opened);
    EXPECT_FALSE(ReadExportTemplate(path).Opened);
    Global.TheDisk = &NativeDisk();
}

TEST_F(HostileExchangeTest, ATemplateThatIsTooLargeIsNotOpened) {
    const std::string path = GivenFile("t.cst", GoodImport);
    std::filesystem::resize_file(path, TextReader::OwnFile + 1);

    EXPECT_FALSE(ReadImportTemplate(path).Opened);
    EXPECT_FALSE(ReadExportTemplate(path).Opened);
}

TEST_F(HostileExchangeTest, ADateFormatOfAMegabyteIsWrittenAtOnce) {
    GivenTable("ZUKORHDR", {{{"H_ORDCODE", "1"}, {"H_ORDDATE", "20261115"}}});
    GivenTable("ZUKORLIN");
    const PCOrders book = OpenPCOrders(PathOf("ZUKORHDR"), PathOf("ZUKORLIN"));
    ExportJob job;
    job.ExportFile = Folder() + "out.csv";
    job.Columns = {"H_ORDDATE Format:" + std::string(std::size_t{1} << 20, 'y')};
    NoProgress silent;

    ExportOrders(job, book.Tables, silent);

    EXPECT_EQ(Bytes(job.ExportFile).size(), (std::size_t{1} << 20) + 2);
    EXPECT_TRUE(Bytes(job.ExportFile).starts_with("20262026"));
}

} // namespace
