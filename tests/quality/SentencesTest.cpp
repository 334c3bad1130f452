#include "quality/QualityTest.h"

#include <ostream>

// Every rule of the Quality Check with an office that breaks it and the whole rows of the report.
// The texts are written out here and not fetched, so that a change of the catalogue is noticed.

namespace {

struct Rule {
    const char* Name;
    Check Of;
    QualityOffice Office;
    std::vector<ReportRow> Report;
};

void PrintTo(const Rule& rule, std::ostream* out) {
    *out << rule.Name;
}

const std::string Customers = "Handheld: Basic Setup: Customers";
const std::string Items = "Handheld: Basic Setup: Items";
const std::string BarCodes = "Handheld: Special Processes: Bar Codes";
const std::string SalesTax = "Handheld: Special Processes: Sales Tax";
const std::string Payments = "Handheld: Special Processes: Payments";
const std::string Links = "Handheld: Basic Setup: Links";
const std::string Download = "PC: Basic Setup: Download";
const std::string Upload = "PC: Basic Setup: Upload";
const std::string Import = "PC: Special Processes: Import";
const std::string Export = "PC: Special Processes: Export";
const std::string QuickButtons = "PC: Special Processes: Quick Buttons";
const std::string Unattended = "PC: Special Processes: Unattended Hotsync";

QualityOffice CustomerTable(std::vector<QualityOffice::Record> customers,
                            std::vector<QualityOffice::Record> taxes = {}) {
    return {.Tables = {{"ZUKCUST", std::move(customers)}, {"ZUKSTAX", std::move(taxes)}}};
}

QualityOffice ItemTable(std::vector<QualityOffice::Record> items) {
    return {.Tables = {{"ZUKITEM", std::move(items)}}};
}

QualityOffice Table(const std::string& name, const std::string& field,
                    const std::vector<std::string>& values) {
    QualityOffice office;
    for (const std::string& value : values) office.Tables[name].push_back({{field, value}});
    return office;
}

QualityOffice Template(const std::string& path, const std::string& content) {
    return {.Files = {{"Templates/" + path, content}}};
}

const Rule Rules[] = {
    // ---- customers ----
    {"BlankCustomerSearch",
     Check::Customers,
     CustomerTable({Customer("BAKER", "B1"), Customer("", "A1")}),
     {{"Fatal", Customers, "Field contains blank value",
       "Blank customer searchfield (C_SEARCH) in customer table.\nRecords: 1",
       "Place a unique value in the Customer Search field (C_SEARCH) for every customer.", "ZUKCUST.DBF", "1",
       "C_SEARCH"}}},
    {"BlankCustomerCode",
     Check::Customers,
     CustomerTable({Customer("BAKER", ""), Customer("ABEL", "A1"), Customer("COLE", "")}),
     {{"Fatal", Customers, "Field contains blank value",
       "Blank customer code (C_CODE) in customer table.\nRecords: 2, 3",
       "Place a unique value in the Customer Code field (C_CODE) for every customer.", "ZUKCUST.DBF", "2, 3",
       "C_CODE"}}},
    {"DuplicateCustomerCode",
     Check::Customers,
     CustomerTable({Customer("ABEL", "X1"), Customer("BAKER", "B1"), Customer("COLE", "x1")}),
     {{"Fatal", Customers, "Field contains duplicate value",
       "Duplicate customer code (C_CODE) in customer table.\nRecords: 1, 3",
       "Place a unique value in the Customer Code field (C_CODE) for every customer.", "ZUKCUST.DBF", "1, 3",
       "C_CODE"}}},
    {"InvalidCustomerSearch",
     Check::Customers,
     CustomerTable({Customer("AB 12", "A1"), Customer("BAKER", "B1")}),
     {{"Fatal", Customers, "Field contains invalid value",
       "Customer search field (C_SEARCH) in customer table contains invalid characters.\nRecords: 1",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Customer "
       "Search field (C_SEARCH) for every customer.",
       "ZUKCUST.DBF", "1", "C_SEARCH"}}},
    {"InvalidCustomerCode",
     Check::Customers,
     CustomerTable({Customer("ABEL", "A1"), Customer("BAKER", "B-1")}),
     {{"Fatal", Customers, "Field contains invalid value",
       "Customer Code (C_CODE) in customer table contains invalid characters.\nRecords: 2",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Customer "
       "Code "
       "field (C_CODE) for every customer.",
       "ZUKCUST.DBF", "2", "C_CODE"}}},
    {"UnknownTaxCodeOfACustomer",
     Check::Customers,
     CustomerTable({Customer("ABEL", "A1", "XX"), Customer("BAKER", "B1")}, {{{"ST_CODE", "NY"}}}),
     {{"Fatal", Customers, "Invalid secondary field",
       "Customer sales tax code (C_STCODE) not found in sales tax table.\nRecords: 1",
       "Either:\n1. Remove the customer sales tax code (C_STCODE) or\n2. Add a sales tax code (ST_CODE) to "
       "the "
       "sales tax table.",
       "ZUKCUST.DBF", "1", "C_STCODE"}}},
    {"EveryCustomerRuleInItsOrder",
     Check::Customers,
     CustomerTable({Customer("", "", "XX"), Customer("A-1", "A-1"), Customer("ABEL", "a-1")}),
     {{"Fatal", Customers, "Field contains blank value",
       "Blank customer searchfield (C_SEARCH) in customer table.\nRecords: 1",
       "Place a unique value in the Customer Search field (C_SEARCH) for every customer.", "ZUKCUST.DBF", "1",
       "C_SEARCH"},
      {"Fatal", Customers, "Field contains blank value",
       "Blank customer code (C_CODE) in customer table.\nRecords: 1",
       "Place a unique value in the Customer Code field (C_CODE) for every customer.", "ZUKCUST.DBF", "1",
       "C_CODE"},
      {"Fatal", Customers, "Field contains duplicate value",
       "Duplicate customer code (C_CODE) in customer table.\nRecords: 2, 3",
       "Place a unique value in the Customer Code field (C_CODE) for every customer.", "ZUKCUST.DBF", "2, 3",
       "C_CODE"},
      {"Fatal", Customers, "Field contains invalid value",
       "Customer search field (C_SEARCH) in customer table contains invalid characters.\nRecords: 2",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Customer "
       "Search field (C_SEARCH) for every customer.",
       "ZUKCUST.DBF", "2", "C_SEARCH"},
      {"Fatal", Customers, "Field contains invalid value",
       "Customer Code (C_CODE) in customer table contains invalid characters.\nRecords: 2, 3",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Customer "
       "Code "
       "field (C_CODE) for every customer.",
       "ZUKCUST.DBF", "2, 3", "C_CODE"},
      {"Fatal", Customers, "Invalid secondary field",
       "Customer sales tax code (C_STCODE) not found in sales tax table.\nRecords: 1",
       "Either:\n1. Remove the customer sales tax code (C_STCODE) or\n2. Add a sales tax code (ST_CODE) to "
       "the "
       "sales tax table.",
       "ZUKCUST.DBF", "1", "C_STCODE"}}},

    // ---- items ----
    {"BlankItemSearch",
     Check::Items,
     ItemTable({Item("NUT", "N1", "2"), Item("", "B1", "1")}),
     {{"Fatal", Items, "Field contains blank value",
       "Blank item searchfield (I_SEARCH) in item table.\nRecords: 1",
       "Place a unique value in the Item Search field (I_SEARCH) for every item.", "ZUKITEM.DBF", "1",
       "I_SEARCH"}}},
    {"BlankItemCode",
     Check::Items,
     ItemTable({Item("NUT", "", "2"), Item("BOLT", "B1", "1")}),
     {{"Fatal", Items, "Field contains blank value",
       "Blank item code (I_ITEMCODE) in item table.\nRecords: 2",
       "Place a unique value in the Item Code field (I_ITEMCODE) for every item.", "ZUKITEM.DBF", "2",
       "I_ITEMCODE"}}},
    {"DuplicateItemSearch",
     Check::Items,
     ItemTable({Item("NUT", "N1", "2"), Item("BOLT", "B1", "1"), Item("nut", "N2", "3")}),
     {{"Warn", Items, "Field contains duplicate value",
       "Duplicate item search field (I_SEARCH) in item table.\nRecords: 2, 3\nThis may cause the incorrect "
       "item to be displayed at ENTER ITEM screen when a Search value is entered and the ORDER button "
       "pressed "
       "at the FIND ITEM screen.",
       "Place a unique value in the Item Search field (I_SEARCH) for every item.", "ZUKITEM.DBF", "2, 3",
       "I_SEARCH"}}},
    {"DuplicateItemCode",
     Check::Items,
     ItemTable({Item("BOLT", "X1", "1"), Item("NUT", "x1", "2")}),
     {{"Fatal", Items, "Field contains duplicate value",
       "Duplicate item code (I_ITEMCODE) in item table.\nRecords: 1, 2",
       "Place a unique value in the Item Code field (I_ITEMCODE) for every item.", "ZUKITEM.DBF", "1, 2",
       "I_ITEMCODE"}}},
    {"InvalidItemCode",
     Check::Items,
     ItemTable({Item("BOLT", "B/1", "1"), Item("NUT", "N1", "2")}),
     {{"Warn", Items, "Field contains invalid value",
       "Item code field (I_ITEMCODE) in item table contains invalid characters.\nRecords: 1",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Item Code "
       "(I_ITEMCODE) for every item.",
       "ZUKITEM.DBF", "1", "I_ITEMCODE"}}},
    {"PriceThatIsNoNumber",
     Check::Items,
     ItemTable({Item("BOLT", "B1", "12.5A"), Item("NUT", "N1", "1,250.00")}),
     {{"Fatal", Items, "Field contains invalid value", "Non-numeric price in item table.\nRecords: 1",
       "Place a numeric value in the Price Field (I_PRICE) for every item.", "ZUKITEM.DBF", "1", "I_PRICE"}}},
    {"BlankPrice",
     Check::Items,
     ItemTable({Item("BOLT", "B1", ""), Item("NUT", "N1", "2"), Item("SCREW", "S1", "0.00")}),
     {{"Warn", Items, "Field contains blank value",
       "Blank item price field (I_PRICE) in item table.\nRecords: 1, 3",
       "Operator will have to enter price when selling this item.", "ZUKITEM.DBF", "1, 3", "I_PRICE"}}},
    {"EveryItemRuleInItsOrder",
     Check::Items,
     ItemTable({Item("", "", ""), Item("NUT", "N-1", "-3"), Item("NUT", "N-1", "5")}),
     {{"Fatal", Items, "Field contains blank value",
       "Blank item searchfield (I_SEARCH) in item table.\nRecords: 1",
       "Place a unique value in the Item Search field (I_SEARCH) for every item.", "ZUKITEM.DBF", "1",
       "I_SEARCH"},
      {"Fatal", Items, "Field contains blank value",
       "Blank item code (I_ITEMCODE) in item table.\nRecords: 1",
       "Place a unique value in the Item Code field (I_ITEMCODE) for every item.", "ZUKITEM.DBF", "1",
       "I_ITEMCODE"},
      {"Warn", Items, "Field contains duplicate value",
       "Duplicate item search field (I_SEARCH) in item table.\nRecords: 2, 3\nThis may cause the incorrect "
       "item to be displayed at ENTER ITEM screen when a Search value is entered and the ORDER button "
       "pressed "
       "at the FIND ITEM screen.",
       "Place a unique value in the Item Search field (I_SEARCH) for every item.", "ZUKITEM.DBF", "2, 3",
       "I_SEARCH"},
      {"Fatal", Items, "Field contains duplicate value",
       "Duplicate item code (I_ITEMCODE) in item table.\nRecords: 2, 3",
       "Place a unique value in the Item Code field (I_ITEMCODE) for every item.", "ZUKITEM.DBF", "2, 3",
       "I_ITEMCODE"},
      {"Warn", Items, "Field contains invalid value",
       "Item code field (I_ITEMCODE) in item table contains invalid characters.\nRecords: 2, 3",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Item Code "
       "(I_ITEMCODE) for every item.",
       "ZUKITEM.DBF", "2, 3", "I_ITEMCODE"},
      {"Fatal", Items, "Field contains invalid value", "Non-numeric price in item table.\nRecords: 2",
       "Place a numeric value in the Price Field (I_PRICE) for every item.", "ZUKITEM.DBF", "2", "I_PRICE"},
      {"Warn", Items, "Field contains blank value",
       "Blank item price field (I_PRICE) in item table.\nRecords: 1",
       "Operator will have to enter price when selling this item.", "ZUKITEM.DBF", "1", "I_PRICE"}}},

    // ---- bar codes ----
    {"EveryBarCodeRuleInItsOrder",
     Check::BarCodes,
     ItemTable({Item("A", "A1", "1", "20-7"), Item("B", "B1", "1", "20x"), Item("C", "C1", "1", ""),
                Item("D", "D1", "1", "20X")}),
     {{"Warn", BarCodes, "Field contains blank value",
       "Item bar code field (I_BARCODE) is blank.\nRecords: 3",
       "Item cannot be located when bar code is scanned.", "ZUKITEM.DBF", "3", "I_BARCODE"},
      {"Warn", BarCodes, "Field contains invalid value",
       "Item bar code field (I_BARCODE) in item table contains invalid characters.\nRecords: 1",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Item bar "
       "code "
       "field (I_BARCODE) for every item.",
       "ZUKITEM.DBF", "1", "I_BARCODE"},
      {"Warn", BarCodes, "Field contains duplicate value",
       "Duplicate item bar code (I_BARCODE) in item table.\nRecords: 2, 4",
       "Place a unique value in the Item bar code field (I_BARCODE) for every item.", "ZUKITEM.DBF", "2, 4",
       "I_BARCODE"}}},

    // ---- sales tax, payments, links ----
    {"EverySalesTaxRuleInItsOrder",
     Check::SalesTax,
     Table("ZUKSTAX", "ST_CODE", {"NY", "", "ny", "N.J"}),
     {{"Fatal", SalesTax, "Field contains blank value",
       "Blank sales tax code (ST_CODE) in sales tax table.\nRecords: 1",
       "Place a unique value in the Sales Tax Code field (ST_CODE) for every sales tax record.",
       "ZUKSTAX.DBF", "1", "ST_CODE"},
      {"Fatal", SalesTax, "Field contains duplicate value",
       "Duplicate sales tax code (ST_CODE) in sales tax table.\nRecords: 3, 4",
       "Place a unique value in the Sales Tax Code field (ST_CODE) for every sales tax record.",
       "ZUKSTAX.DBF", "3, 4", "ST_CODE"},
      {"Fatal", SalesTax, "Field contains invalid value",
       "Sales Tax Code field (ST_CODE) in sales tax table contains invalid characters.\nRecords: 2",
       "Remove characters other than 0 through 9 and a through z (upper or lower case) from the Sales Tax "
       "Code "
       "(I_ITEMCODE) for every sales tax record.",
       "ZUKSTAX.DBF", "2", "ST_CODE"}}},
    {"EmptyPaymentsTable",
     Check::Payments,
     {},
     {{"Warn", Payments, "Empty table", "Payments table record contains no records.",
       "Payments cannot be used if table is empty.", "ZUKPAY.DBF", "", ""}}},
    {"UnknownPaymentCode",
     Check::Payments,
     Table("ZUKPAY", "PAY_CODE", {"CREDIT", "CASH", "CARD", "CHECK", "CHEQUE"}),
     {{"Fatal", Payments, "Field contains invalid value",
       "Payments code field (PAY_CODE) in payments table contains invalid data.\nRecords: 1, 5",
       "Payments Code field (PAY_CODE) must contain a value of 'CASH', 'CHECK' or 'CARD'.", "ZUKPAY.DBF",
       "1, 5", "PAY_CODE"}}},
    {"EmptyLinksTable",
     Check::Links,
     {.HotSyncUsers = {"Anna"}},
     {{"Fatal", Links, "Table Empty", "Links table contains no records.",
       "Create at least one record with a valid Hotsync ID..", "ZUKLINK.DBF", "", ""}}},
    {"LinkWithoutAHotSyncUser",
     Check::Links,
     {.Tables = {{"ZUKLINK", {{{"LK_HOTSYNC", "Anna"}}, {{"LK_HOTSYNC", "Zoe"}}}}}, .HotSyncUsers = {"Anna"}},
     {{"Warn", Links, "Invalid Hotsync ID",
       "Hotsync ID in links table does not match any Hotsync Manager Users.\nRecords: 2",
       "Change Hotsync Id in links table to an existing Hotsync Manager User, or delete the Links record..",
       "ZUKLINK.DBF", "2", "LK_HOTSYNC"}}},

    // ---- templates ----
    {"BlankDownloadTemplates",
     Check::Download,
     {.Files = {{"Templates/Download/Prices.dst", "Customers=0\r\nItems=0\r\nSetup Tables=0\r\n"},
                {"Templates/Download/Old.dct", "Order Tables=0\r\nAudit Tables=0\r\nHandheld Totals=0\r\n"}}},
     {{"Warn", Download, "Blank Template",
       "No tables specified for download.\nTemplate name: Old.dct, Prices.dst",
       "Select tables for download, or delete template.", "Download", "Old.dct, Prices.dst", ""}}},
    {"BlankUploadTemplate",
     Check::Upload,
     Template("Upload/All.ust", "Orders=0\r\nAudits=0\r\nHandheld Totals=0\r\n"),
     {{"Warn", Upload, "Blank Template", "No tables specified for upload.\nTemplate name: All.ust",
       "Select tables for upload, or delete template.", "Upload", "All.ust", ""}}},
    {"ImportFilesThatAreNotThere",
     Check::Import,
     {.Files = {{"Templates/Import/Stock.itm", "stock.txt\r\nTAB\r\n"},
                {"Templates/Import/Firms.cst", "  firms.csv \r\nCSV\r\n"}}},
     {{"Warn", Import, "Import file does not exist.",
       "Import file specified in template does not exist in DataIn directory.\nTemplate name: Firms.cst, "
       "Stock.itm\nImport filename: firms.csv, stock.txt",
       "Place the specified import file in DataIn directory, or update the import template.", "Import",
       "Firms.cst, Stock.itm", ""}}},
    {"ExportWithoutAFileName",
     Check::Export,
     Template("Export/Web.xor", "Filename=  \r\nCSV\r\n"),
     {{"Warn", Export, "Import file does not exist.",
       "No export filename specified in template.\nTemplate name: Web.xor",
       "Enter a valid filename for export, or delete the export template.", "Export", "Web.xor", ""}}},
    {"QuickButtonsWithoutTemplatesAndWithLostOnes",
     Check::QuickButtons,
     {.Files = {{"Templates/QuickButtons/Morning.ipm",
                 "Saved Setting 1:    ;\r\nSaved Setting 2:    None;\r\n"},
                {"Templates/QuickButtons/Evening.xpm",
                 "Saved Setting 1:    Gone.xor;\r\nSaved Setting 2:    ;\r\n"}}},
     {{"Warn", QuickButtons, "Blank Quick Button saved settings",
       "No templates specified in quick button saved settings.\nTemplate name: Morning.ipm",
       "Update or delete Quick Button saved settings.", "QuickButtons", "Morning.ipm", ""},
      {"Warn", QuickButtons, "Template does not exist",
       "Template specified in quick button saved settings cannot be found in templates directory.\nTemplate "
       "name: Evening.xpm",
       "Update or delete Quick Button saved settings, or create the specified template.", "QuickButtons",
       "Evening.xpm", ""}}},
    {"UnattendedSettingsOfEveryFault",
     Check::Unattended,
     {.Files = {{"Templates/UnattendedHotsync/Idle.uhs",
                 "Download=False\r\nDownloadTemplate=Prices\r\nUpload=False\r\nUploadTemplate=\r\n"
                 "Clear=False\r\nClearTemplate=\r\n"},
                {"Templates/UnattendedHotsync/Nameless.uhs", "Upload=True\r\nUploadTemplate=\r\n"},
                {"Templates/UnattendedHotsync/Lost.uhs", "Clear=True\r\nClearTemplate=Gone\r\n"}}},
     {{"Warn", Unattended, "No action specified",
       "Unattended hotsync action not specified in saved settings.\nUnattended Hotsync saved setting: "
       "Idle.uhs",
       "Update or delete Unattended Hotsync saved settings.", "Unattended", "Idle.uhs", ""},
      {"Warn", Unattended, "No templates specified",
       "Unattended hotsync templates not specified in saved settings.\nUnattended Hotsync saved setting: "
       "Nameless.uhs",
       "Update or delete Unattended Hotsync saved settings.", "Unattended", "Nameless.uhs", ""},
      {"Warn", Unattended, "Template does not exist",
       "Template specified in unattended hotsync saved settings cannot be found in templates "
       "directory.\nUnattended Hotsync saved setting: Lost.uhs",
       "Update or delete Unattended Hotsync saved settings, or create the specified template.", "Unattended",
       "Lost.uhs", ""}}},
};

class QualityRules : public QualityTest, public ::testing::WithParamInterface<Rule> {};

TEST_P(QualityRules, IsReportedWordForWord) {
    Given(GetParam().Office);

    EXPECT_EQ(Checked(GetParam().Of), GetParam().Report);
}

INSTANTIATE_TEST_SUITE_P(Rules, QualityRules, ::testing::ValuesIn(Rules),
                         [](const auto& rule) { return std::string(rule.param.Name); });

} // namespace
