#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "exchange/Activity.h"
#include "exchange/Export.h"
#include "exchange/ExportTemplate.h"
#include "exchange/HeadLines.h"
#include "exchange/Import.h"
#include "exchange/ImportTemplate.h"
#include "exchange/LostLines.h"
#include "exchange/OrderCheck.h"
#include "maintenance/Backup.h"
#include "maintenance/Totals.h"

namespace {

constexpr int Customers = 1200;
constexpr int LostEvery = 100;

/// A data file whose first lines are headings; every hundredth line has a column too many when
/// `linesAreLost`.
void PrepareCustomers(bool linesAreLost) {
    Fill("ZUKCust.dbf", Customers / 2, [](int k) { return Cells{{"C_CODE", "OLD" + std::to_string(k)}}; });
    std::string file = "Code,Name,Phone\r\n";
    for (int k = 1; k <= Customers; ++k) {
        file += "C" + std::to_string(k) + ",Customer " + std::to_string(k) + ",555";
        file += linesAreLost && k % LostEvery == 0 ? ",one too many\r\n" : "\r\n";
    }
    WriteWholeFile(Global.DataInPath + "customers.csv", file);
}

std::string ImportCustomers(int linesLost) {
    ImportJob job;
    job.ImportFile = Global.DataInPath + "customers.csv";
    job.TableFile = Table("ZUKCust.dbf");
    job.StartLine = 2;
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    job.SelectedFields = {"C_CODE", "C_NAME", "Ignore"};
    job.LineCount = Customers + 1;
    job.ErrorFile = LostLinesFile(Global.DataInPath, "customers.csv");
    NoProgress silent;
    const ImportResult result = ImportDataFile(job, silent);
    if (result.FieldCountMismatch) return "the file has too few columns";
    if (result.LinesFailed != linesLost) return std::to_string(result.LinesFailed) + " lines failed";
    if (linesLost > 0 && !result.ErrorsListed) return "the lines that failed are not listed";
    return {};
}
/// Few records, since the check has many calls; it writes its tables as the sorts do. Orders and lines
/// come twice.
void PrepareCheck() {
    Fill("ZUKOrHdr.dbf", 40, [](int k) { return Cells{{"H_ORDCODE", OrderCode(k % 30)}}; });
    Fill("ZUKOrLin.dbf", 90, [](int k) {
        return Cells{{"L_ORDCODE", OrderCode(k % 30)},
                     {"L_KEY", OrderCode(k % 30) + "-" + std::to_string(k % 2)},
                     {"L_TOTPRICE", "12.5"}};
    });
    FillTotals(12);
}

std::string Check() {
    PCOrders book = Book();
    std::string told;
    RepeatQuestions questions;
    questions.DeleteRepeats = [] { return true; };
    questions.MakeBackup = [] { return MakeBackup("QUALCHECK"); };
    questions.BackupFailed = [&] { told = "the tables cannot be backed up"; };
    questions.CalcPCTotals = [] {
        NoProgress silent;
        CalcPCTotals("QUALCHECK", silent);
    };
    QualityCheckOrders(book, questions);
    return told;
}

std::string Export() {
    ExportJob job;
    job.ExportFile = Global.DataOutPath + "orders.csv";
    job.AddHeadings = true;
    for (int k = 0; k < 12; ++k) {
        job.Columns.insert(job.Columns.end(), {"L_ORDCODE", "L_KEY", "H_CUSTCODE", "L_QTY * [1.5]"});
    }
    NoProgress silent;
    return ExportOrders(job, Book().Tables, silent).CouldNotOpen ? "the export file cannot be written" : "";
}

/// What operators and updates leave for the next start to put away.

std::string WriteImport() {
    WriteImportTemplate(Global.ImportTemplates + "customers.cst", CustomerTemplate(9));
    return {};
}

ExportTemplate OrderTemplate(std::size_t columns) {
    ExportTemplate content;
    content.FileName = "orders.csv";
    content.Columns.assign(columns, "H_ORDDATE Format: mmddyyyy");
    return content;
}

std::string WriteExport() {
    WriteExportTemplate(Global.ExportTemplates + "orders.xor", OrderTemplate(9));
    return {};
}

Activity ImportActivity(const char* item) {
    Activity activity;
    activity.Rows[0].Template = "customers.cst";
    activity.Rows[1].Template = item;
    return activity;
}

std::string WriteQuickButton() {
    WriteActivity(Global.QuickButtonTemplates + "morning.ipm", ImportActivity("items.itm"));
    return {};
}

std::string DemoTemplate() {
    return Global.ImportTemplates + "customers.cst";
}

std::string RememberHeads() {
    RememberHeadLines(DemoTemplate(), {2, {"Code,Name,Phone"}});
    return {};
}

std::string ForgetHeads() {
    ForgetHeadLines(DemoTemplate());
    return {};
}

void PrepareHeads() {
    RememberHeadLines(DemoTemplate(), {2, {"Code,Name"}});
}

} // namespace

ImportTemplate CustomerTemplate(std::size_t fields) {
    ImportTemplate content;
    content.DataFile = "customers.csv";
    content.StartLine = "2";
    content.Fields.assign(fields, "C_CODE; C_NAME");
    content.Literals = {"C_STATE = CA"};
    return content;
}

std::vector<SweepJob> ExchangeJobs() {
    const std::string customers = "DBFFiles/ZUKCust.dbf";
    const std::string headers = "DBFFiles/ZUKOrHdr.dbf";
    const std::string lines = "DBFFiles/ZUKOrLin.dbf";
    const std::string heads = "Templates/Import/customers.cst.head";

    // Sorted first; nothing is deleted before the backup and the event stand.
    std::vector<std::string> check = {headers, lines};
    const std::vector<std::string> backup = StepsOfBackup();
    check.insert(check.end(), backup.begin(), backup.end());
    check.insert(check.end(), {"DBFFiles/ZUKTOTALPC.dbf", headers, lines});

    return {
        {"import", {customers}, [] { PrepareCustomers(false); }, [] { return ImportCustomers(0); }},
        {"import that loses lines",
         {"DataIn/Errors/", customers, "DataIn/Errors/customers.csv.txt"},
         [] { PrepareCustomers(true); },
         [] { return ImportCustomers(Customers / LostEvery); }},
        {"order check, repeats deleted", check, PrepareCheck, Check},
        {"export", {"DataOut/orders.csv"}, FillOrders, Export},
        {"export over a file",
         {"DataOut/orders.csv"},
         [] {
             FillOrders();
             WriteWholeFile(Global.DataOutPath + "orders.csv", "of yesterday\r\n");
         },
         Export},
        {"import template",
         {"Templates/Import/customers.cst"},
         [] { WriteImportTemplate(DemoTemplate(), CustomerTemplate(3)); },
         WriteImport},
        {"export template",
         {"Templates/Export/orders.xor"},
         [] { WriteExportTemplate(Global.ExportTemplates + "orders.xor", OrderTemplate(3)); },
         WriteExport},
        {"QuickButton",
         {"Templates/QuickButtons/morning.ipm"},
         [] { WriteActivity(Global.QuickButtonTemplates + "morning.ipm", ImportActivity("")); },
         WriteQuickButton},
        {.Name = "head lines remembered",
         .Steps = {heads},
         .Prepare = PrepareHeads,
         .Run = RememberHeads,
         .IsQuiet = true},
        {.Name = "head lines forgotten",
         .Steps = {heads},
         .Prepare = PrepareHeads,
         .Run = ForgetHeads,
         .IsQuiet = true},
    };
}
