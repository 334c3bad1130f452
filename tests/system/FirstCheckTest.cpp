#include "Program.h"

#include <QSet>

#include <algorithm>
#include <chrono>
#include <optional>

namespace {

const QString Config = "frmConfig", Report = "frmConfigMsg", Options = "frmOptions", Links = "frmChgLink";
const QString Convert = "frmConvert", Mapping = "frmImport1", Export = "frmExport1";
const QString Grid = "frmViewGrid", Question = "frmMessage";
const QString ImportButton = "frmQBImport", ExportButton = "frmQBExport", ClearButton = "frmQBClearPC";
const QString RemoteButton = "frmQBRemote", Remote = "frmRemoteSync";
const QString DownloadButton = "frmQBDownload", UploadButton = "frmQBUpload";
const QString DownloadTables = "frmTableSelectDL", ClearTables = "frmTableSelectCL";
const QString UploadTables = "frmUploadSelect", PCTables = "frmTableSelectPC";
const QString EditCust = "frmEditCust", EditItem = "frmEditItem", EditSTax = "frmEditSTax";
const QString ConfigCust = "frmConfigCust", ConfigItem = "frmConfigItem";
const QString ConfigSTax = "frmConfigSTax", ConfigPrint = "frmConfigPrint";
const QString Company = "frmCompany", Payments = "frmPay", Printing = "frmPrinter",
              HandheldSetup = "frmChSetup";
const QString Signatures = "frmViewSign";

const QString NoProblems = "No problems found!";
const QString NoFatalProblems = "No fatal problems found in data tables!";
const QString Changed = "Changed since the check. Check again to see whether the problem is solved.";
const QString Fatal = "#ff0000";

/// What could be pressed on the screens under watch, and what was.
class Presses {
public:
    /// Screens on which everything is pressed.
    static const QStringList& Whole() {
        static const QStringList forms{Config,     Report,        Options,     Links,    RemoteButton,
                                       Remote,     EditCust,      EditItem,    EditSTax, ConfigCust,
                                       ConfigItem, ConfigSTax,    ConfigPrint, Company,  Payments,
                                       Printing,   HandheldSetup, Signatures};
        return forms;
    }

    /// Screens whose ways to the options are pressed.
    static const QStringList& WithSetup() {
        static const QStringList forms{ImportButton, ExportButton, ClearButton, DownloadButton, UploadButton};
        return forms;
    }

    void See(DriverClient& program, const QString& form) {
        static const QStringList kinds{"QPushButton", "QToolButton", "QRadioButton", "QCheckBox"};
        const bool onlySetup = WithSetup().contains(form);
        if (!onlySetup && !Whole().contains(form)) return;
        for (const DrivenControl& control : program.Controls(form)) {
            // The help buttons of all screens have a test of their own.
            if (!control.Enabled || !control.Visible || control.Name == "cmdHelp") continue;
            if (onlySetup && !control.Name.startsWith("cmdSetup")) continue;
            if (kinds.contains(control.Class)) seen_ << form + "." + control.Name;
            if (control.Class != "QTabWidget") continue;
            for (const QString& tab : program.Items(form, control.Name)) seen_ << form + "." + tab;
        }
    }

    void Note(const QString& form, const QString& control) { pressed_ << form + "." + control; }

    QStringList Seen(const QString& form) const {
        QStringList seen;
        for (const QString& control : seen_) {
            if (control.startsWith(form + ".")) seen << control;
        }
        return seen;
    }

    QStringList Forgotten() const {
        QStringList forgotten = (seen_ - pressed_).values();
        std::sort(forgotten.begin(), forgotten.end());
        return forgotten;
    }

private:
    QSet<QString> seen_, pressed_;
};

/// An office on its first day: no records, and two files of the accounting system with the faults that a
/// first day has. What the accounting system writes after its data was mended lies beside them.
class FirstCheck : public Program {
protected:
    FirstCheck() : Program(QStringLiteral(TRAMBLE_SOURCE "/tests/system/firstcheck")) {}

    void OpenTheProgram() {
        program_.emplace(InOffice());
        StartUp(*program_);
    }

    // ---- hands and eyes ----

    void Press(const QString& form, const QString& control) {
        presses_.See(*program_, form);
        program_->Click(form, control);
        presses_.Note(form, control);
    }

    void PressAndWait(const QString& form, const QString& control, const QString& next) {
        Press(form, control);
        program_->WaitForm(next);
        presses_.See(*program_, next);
    }

    void PressToClose(const QString& form, const QString& control) {
        Press(form, control);
        program_->WaitGone(form);
    }

    void TurnTo(const QString& tab) {
        presses_.See(*program_, Options);
        program_->Choose(Options, "SSTab1", tab);
        presses_.Note(Options, tab);
    }

    void BoxesCame() { program_->Done(std::chrono::seconds(30)); }

    QString Text(const QString& form, const QString& control) { return program_->Text(form, control); }

    void ExpectText(const QString& form, const QString& control, const QString& text) {
        EXPECT_EQ(Text(form, control).toStdString(), text.toStdString()) << control.toStdString();
    }

    static void ExpectLines(const QStringList& found, const QStringList& expected) {
        EXPECT_EQ(found.join("\n").toStdString(), expected.join("\n").toStdString());
    }

    /// The report's rows; of an issue the line that says where.
    QStringList Problems() {
        const DrivenTable report = program_->Rows(Report, "FG1");
        QStringList problems;
        for (qsizetype row = 0; row < report.Rows.size(); ++row) {
            problems << QStringList{report.Cell(row, "Severity"), report.Cell(row, "Configurator Group"),
                                    report.Cell(row, "Problem"),
                                    report.Cell(row, "Issue").section('\n', 1, 1)}
                            .join(" | ");
        }
        return problems;
    }

    bool HasChanged(qsizetype row) {
        return program_->Rows(Report, "FG1").Cell(row, "Correction").endsWith(Changed);
    }

    /// The cells of the grid that are marked as Fatal, by code and heading.
    QStringList MarkedCells() {
        const DrivenTable grid = program_->Rows(Grid, "FG1");
        QStringList marked;
        for (auto ground = grid.Grounds.begin(); ground != grid.Grounds.end(); ++ground) {
            EXPECT_EQ(ground.value().toStdString(), Fatal.toStdString());
            marked << grid.Cell(ground.key().first, "Code") + ": " + grid.Headings.at(ground.key().second);
        }
        return marked;
    }

    /// The Configurator's lines, each without its time.
    QStringList Results() {
        QStringList results;
        for (int line = 1; line <= 14; ++line)
            results << Text(Config, QString("lblResult_%1").arg(line)).section('\n', -1);
        return results;
    }

    // ---- what is done more than once ----

    void ChooseFile(const QString& file, const QString& table) {
        program_->WaitForm(Convert);
        program_->Choose(Convert, "filFiles", file);
        program_->Click(Convert, table);
        program_->Click(Convert, "cmdOK");
        program_->WaitForm(Mapping);
    }

    void Leave(const QString& form) {
        program_->Click(form, "cmdCancel");
        program_->WaitGone(form);
    }

    void Import(const QString& result) {
        program_->Expect(result + " lines successfully imported!");
        program_->Click(Mapping, "cmdOK");
        program_->WaitGone(Mapping);
        program_->WaitGone(Convert);
        BoxesCame();
    }

    void Add(const QString& form, const QString& field) {
        program_->Choose(form, "lstAvailable", field);
        program_->Click(form, "cmdAdd1");
    }

    void CheckAndFindNothing(const QString& button) { CheckAndFindNothing(Config, button); }

    void CheckAndFindNothing(const QString& form, const QString& button) {
        program_->Expect(NoProblems);
        Press(form, button);
        BoxesCame();
        EXPECT_FALSE(program_->IsShown(Report));
    }

    void CheckAndFind(const QString& button, const QStringList& problems) {
        PressAndWait(Config, button, Report);
        ExpectLines(Problems(), problems);
    }

    /// Chooses a row of the report and presses the button that leads to what it is about.
    void View(int row, const QString& caption, const QString& form) {
        program_->ChooseRow(Report, "FG1", row);
        ExpectText(Report, "cmdView", caption);
        PressAndWait(Report, "cmdView", form);
    }

    void OpenConfigurator() {
        program_->Click(Main, "mnuConfig");
        program_->WaitForm(Config);
        presses_.See(*program_, Config);
    }

    /// From an entry of the Edit menu over the grid to the editor.
    void OpenEditor(const QString& entry, const QString& form) {
        program_->Click(Main, entry);
        program_->WaitForm(Grid);
        EditFromGrid(form);
    }

    void EditFromGrid(const QString& form) {
        program_->Click(Grid, "cmdEdit");
        program_->WaitForm(form);
        EXPECT_FALSE(program_->IsShown(Grid));
        presses_.See(*program_, form);
    }

    /// To the table and back, and out without saving.
    void ViewAndCancel(const QString& form) {
        PressAndWait(form, "cmdView", Grid);
        EXPECT_FALSE(program_->IsShown(form));
        EditFromGrid(form);
        PressToClose(form, "cmdCancel");
    }

    void OpenGridAndClose(const QString& form, const QString& button, const QString& title) {
        PressAndWait(form, button, Grid);
        EXPECT_EQ(program_->Title(Grid).toStdString(), title.toStdString());
        program_->Click(Grid, "cmdOK");
        program_->WaitGone(Grid);
    }

    /// Opens a table, and its editor from there.
    void OpenEditor(const QString& topic, const QString& button, const QString& editor) {
        PressAndWait(topic, button, Grid);
        program_->Click(Grid, "cmdEdit");
        program_->WaitForm(editor);
        presses_.See(*program_, editor);
    }

    /// Goes through a master table on all buttons of its editor, and leaves it as it was.
    void WalkThrough(const QString& editor, int records) {
        const auto shows = [&](int record) {
            ExpectText(editor, "lblCount", QString("%1 of %2").arg(record).arg(records));
        };
        Press(editor, "cmdLast");
        shows(records);
        Press(editor, "cmdPrevious");
        shows(records - 1);
        PressAndWait(editor, "cmdView", Grid);
        EXPECT_FALSE(program_->IsShown(editor));
        program_->Click(Grid, "cmdEdit");
        program_->WaitForm(editor);
        shows(records - 1);
        Press(editor, "cmdNext");
        shows(records);
        Press(editor, "cmdFirst");
        shows(1);
        Press(editor, "cmdAdd");
        ExpectText(editor, "lblCount", QString("%1 of %1").arg(records + 1));
        program_->Expect("Delete current record?", "Yes");
        Press(editor, "cmdDelete");
        BoxesCame();
        shows(records);
        PressToClose(editor, "cmdOK");
    }

    std::optional<DriverClient> program_;
    Presses presses_;

    // ---- the story ----

    void ImportTheFirstFilesWithoutASearchField();
    void FindFatalProblemsAndLookAtTheRecords();
    void ImportTheMendedFiles();
    void RepairOneImportTemplateAndDeleteTheOther();
    void RepairTheActivityThatNamedTheDeletedTemplate();
    void RepairAnExportTemplateWithoutAFile();
    void FillOneEmptyActivityAndDeleteTheOther();
    void SetUpActivitiesFromTheQuickButtons();
    void RepairABlankDownloadAndDeleteABlankUpload();
    void KeepSelectionsOfTablesInTheOptions();
    void SetUpSelectionsFromTheQuickButtons();
    void RepairAnUnattendedSettingWithoutAnAction();
    void SetUpBackups();
    void AddTwoHandhelds();
    void SetUpCustomersAndItems();
    void SetUpSalesTaxAndPrinting();
    void CheckWhatIsLeft();
    void CheckAllAndFindNothing();
    void FindTheResultsAfterARestart();
    void EditWhatTheHandheldIsToldOnce();
    void KeepPayments();
    void RunTheRepairedActivity();
    void WaitForHandheldsUnattended();
};

void FirstCheck::ImportTheFirstFilesWithoutASearchField() {
    program_->Click(Main, "mnuMainImport");
    ChooseFile("customers-1.csv", "optCustomer");
    for (const char* field : {"C_CODE", "C_NAME", "C_PHONE", "C_CITY"}) Add(Mapping, field);
    program_->Set(Mapping, "UpDown1", 2);
    program_->Set(Mapping, "cboSettings", "Customers");
    Import("5 of 5");

    program_->Click(Main, "mnuMainImport");
    ChooseFile("items-1.csv", "optItem");
    Add(Mapping, "I_ITEMCODE");
    program_->Click(Mapping, "cmdAnd");
    for (const char* field : {"I_SEARCH", "I_DESC1", "I_UM", "I_PRICE"}) Add(Mapping, field);
    ExpectLines(program_->Items(Mapping, "lstSelected"),
                {"I_ITEMCODE; I_SEARCH", "I_DESC1", "I_UM", "I_PRICE"});
    program_->Set(Mapping, "UpDown1", 2);
    program_->Set(Mapping, "cboSettings", "Items");
    Import("4 of 4");
}

void FirstCheck::FindFatalProblemsAndLookAtTheRecords() {
    program_->Click(Main, "mnuQC");
    program_->WaitForm(Question);
    ExpectText(Question, "lblMessage",
               "This process will perform a Quality Check on ALL processes. Do you want to continue?");
    program_->Expect("'Fatal' problems were found in the data and need to be corrected before a download "
                     "process can occur. More details of these problems in the next screen... ");
    program_->Click(Question, "cmdYes");
    program_->WaitForm(Report);
    ExpectLines(
        Problems(),
        {"Warn | PC: Special Processes: Import | Import file does not exist. | "
         "Template name: DemoCustomers.cst, DemoItems.itm",
         "Fatal | Handheld: Basic Setup: Customers | Field contains blank value | Records: 1, 2, 3, 4, 5",
         "Fatal | Handheld: Basic Setup: Customers | Field contains duplicate value | Records: 1, 4",
         "Fatal | Handheld: Basic Setup: Customers | Field contains invalid value | Records: 3",
         "Warn | Handheld: Basic Setup: Items | Field contains duplicate value | Records: 1, 2",
         "Fatal | Handheld: Basic Setup: Items | Field contains duplicate value | Records: 1, 2",
         "Fatal | Handheld: Basic Setup: Items | Field contains invalid value | Records: 3",
         "Warn | Handheld: Special Processes: Payments | Empty table | "});

    View(1, "View Records", Grid);
    EXPECT_EQ(program_->Title(Grid), "View Customers");
    EXPECT_EQ(program_->ChosenItems(Grid, "FG1").size(), 5);
    ExpectLines(MarkedCells(), {"C100: Search Value", "C101: Search Value", "C-102: Search Value",
                                "C100: Search Value", "C103: Search Value"});
    View(2, "View Records", Grid);
    ExpectLines(program_->ChosenItems(Grid, "FG1"), {"1", "4"});
    ExpectLines(MarkedCells(), {"C100: Code", "C100: Code"});
    View(6, "View Records", Grid);
    EXPECT_EQ(program_->Title(Grid), "View Items");
    ExpectLines(program_->ChosenItems(Grid, "FG1"), {"3"});
    ExpectLines(MarkedCells(), {"B11: Price per UM"});
    ExpectText(Grid, "FG1", "4O.00"); // the current cell is the first faulty one
    program_->Click(Grid, "cmdOK");
    program_->WaitGone(Grid);

    program_->ExpectInputContaining("Save it as:", "First day");
    program_->ExpectContaining("DataOut/First day.csv");
    Press(Report, "cmdSave");
    BoxesCame();
    const QByteArray saved = Bytes(office_.Path("DataOut/First day.csv"));
    EXPECT_EQ(saved.count("\"Fatal\","), 5);
    EXPECT_EQ(saved.count("\"Warn\","), 3);

    PressAndWait(Report, "cmdPreview", "frmPreview");
    ExpectText("frmPreview", "lblPage", "Page 1 of 1");
    PressToClose("frmPreview", "cmdOK");
    PressAndWait(Report, "cmdPrint", "PrintDialog");
    program_->Click("PrintDialog", "Cancel");
    program_->WaitGone("PrintDialog");

    PressToClose(Report, "cmdOK");
    EXPECT_FALSE(program_->IsShown(Config));
}

void FirstCheck::ImportTheMendedFiles() {
    OpenConfigurator();
    ExpectLines(Results(), {"never checked", "3 Fatal", "2 Fatal 1 Warn", "no problems", "no problems",
                            "1 Warn", "no problems", "no problems", "no problems", "1 Warn", "no problems",
                            "no problems", "no problems", "no problems"});

    // The template of the first import, with the search field that it forgot.
    PressAndWait(Config, "cmdImport1", Convert);
    ChooseFile("customers-2.csv", "optCustomer");
    program_->Choose(Mapping, "cboSettings", "Customers");
    program_->Choose(Mapping, "lstSelected", "C_CODE");
    program_->Click(Mapping, "cmdAnd");
    Add(Mapping, "C_SEARCH");
    ExpectLines(program_->Items(Mapping, "lstSelected"), {"C_CODE; C_SEARCH", "C_NAME", "C_PHONE", "C_CITY"});
    Import("5 of 5");
    CheckAndFindNothing("cmdCust2");

    PressAndWait(Config, "cmdImport1", Convert);
    ChooseFile("items-2.csv", "optItem");
    program_->Choose(Mapping, "cboSettings", "Items");
    Import("4 of 4");
    CheckAndFindNothing("cmdItems2");

    program_->Expect(NoFatalProblems);
    Press(Config, "cmdCheckAll");
    BoxesCame();
    EXPECT_FALSE(program_->IsShown(Report));
}

void FirstCheck::RepairOneImportTemplateAndDeleteTheOther() {
    CheckAndFind("cmdImport2", {"Warn | PC: Special Processes: Import | Import file does not exist. | "
                                "Template name: DemoCustomers.cst, DemoItems.itm"});

    View(0, "View Template", Convert);
    ExpectText(Convert, "lblHelp",
               "1. Select an import file from the list and click 'Ok' to save the new filename to the "
               "template (DemoCustomers.cst), or \n2. Click 'Cancel' to delete this template.");
    EXPECT_TRUE(program_->IsChecked(Convert, "optCustomer"));
    program_->Choose(Convert, "filFiles", "customers-2.csv");
    program_->Click(Convert, "cmdOK");

    program_->WaitTextContaining(Convert, "lblHelp", "(DemoItems.itm)");
    EXPECT_TRUE(program_->IsChecked(Convert, "optItem"));
    program_->Click(Convert, "cmdCancel");
    program_->WaitGone(Convert);

    EXPECT_TRUE(HasChanged(0));
    EXPECT_TRUE(Bytes(office_.Path("Templates/Import/DemoCustomers.cst")).startsWith("customers-2.csv\r\n"));
    EXPECT_FALSE(QFile::exists(office_.Path("Templates/Import/DemoItems.itm")));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdImport2");
}

void FirstCheck::RepairTheActivityThatNamedTheDeletedTemplate() {
    CheckAndFind("cmdQB2", {"Warn | PC: Special Processes: Quick Buttons | Template does not exist | "
                            "Template name: DemoImport.ipm"});

    View(0, "View Template", Options);
    ExpectText(Options, "SSTab1", "QuickButtons");
    ExpectText(Options, "cboImpAct", "DemoImport");
    ExpectText(Options, "cboImpSS1", "DemoCustomers.cst");
    ExpectText(Options, "cboImpSS2", "");
    EXPECT_EQ(program_->Property(Options, "cboImpSS2", "placeholderText").toString(),
              "DemoItems.itm is missing");
    program_->Choose(Options, "cboImpSS1", "Customers.cst");
    program_->Choose(Options, "cboImpSS2", "Items.itm");
    PressToClose(Options, "cmdOK");

    EXPECT_TRUE(HasChanged(0));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdQB2");
}

void FirstCheck::RepairAnExportTemplateWithoutAFile() {
    PressAndWait(Config, "cmdExport1", Export);
    Add(Export, "H_ORDCODE");
    program_->Set(Export, "cboSettings", "Nameless");
    program_->Click(Export, "cmdSaveSettings");
    program_->Click(Export, "cmdCancel");
    program_->WaitGone(Export);
    CheckAndFind("cmdExport2", {"Warn | PC: Special Processes: Export | Import file does not exist. | "
                                "Template name: Nameless.xor"});

    View(0, "View Template", Export);
    ExpectText(Export, "cboSettings", "Nameless");
    EXPECT_TRUE(program_->HasFocus(Export, "txtExpFile"));
    EXPECT_FALSE(program_->IsEnabled(Export, "cmdOK"));
    program_->Set(Export, "txtExpFile", "orders.csv");
    program_->Click(Export, "cmdOK");
    program_->WaitGone(Export);

    EXPECT_TRUE(HasChanged(0));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdExport2");
}

void FirstCheck::FillOneEmptyActivityAndDeleteTheOther() {
    PressAndWait(Config, "cmdQB1", Options);
    ExpectText(Options, "SSTab1", "QuickButtons");
    program_->Set(Options, "cboExpAct", "Orders");
    program_->Set(Options, "cboPCAct", "Monday");
    PressToClose(Options, "cmdOK");
    CheckAndFind("cmdQB2", {"Warn | PC: Special Processes: Quick Buttons | Blank Quick Button saved settings "
                            "| Template name: Orders.xpm, Monday.ctm"});

    View(0, "View Template", Options);
    ExpectText(Options, "cboExpAct", "Orders");
    program_->Choose(Options, "cboExpSS1", "Nameless.xor");
    Press(Options, "cmdOK");

    program_->WaitText(Options, "cboPCAct", "Monday");
    program_->Expect("Are you sure you want to delete Monday", "Yes");
    Press(Options, "cmdDelPCAct");
    BoxesCame();
    ExpectText(Options, "cboPCAct", "");
    PressToClose(Options, "cmdCancel");

    EXPECT_TRUE(HasChanged(0));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdQB2");
    PressToClose(Config, "cmdCancel");
}

void FirstCheck::SetUpActivitiesFromTheQuickButtons() {
    program_->Click(Main, "lblImportBtn");
    program_->WaitForm(ImportButton);
    PressAndWait(ImportButton, "cmdSetup", Options);
    EXPECT_TRUE(program_->HasFocus(Options, "cboImpAct"));
    PressAndWait(Options, "cmdEdtImp", Mapping);
    EXPECT_EQ(program_->Title(Mapping), "Edit Import Template");
    program_->Choose(Mapping, "cboSettings", "DemoCustomers.cst");
    program_->Click(Mapping, "cmdDelSettings");
    program_->Click(Mapping, "cmdCancel");
    program_->WaitGone(Mapping);
    ExpectLines(program_->Items(Options, "cboImpSS1"), {"", "Customers.cst", "Items.itm"});
    program_->Set(Options, "cboImpAct", "Mistake");
    program_->Choose(Options, "cboImpSS1", "Items.itm");
    PressToClose(Options, "cmdOK");
    ExpectLines(program_->Items(ImportButton, "cboMaster"), {"DemoImport", "Mistake"});

    program_->Choose(ImportButton, "cboMaster", "Mistake");
    ExpectText(ImportButton, "lblSST_1", "Items.itm");
    PressAndWait(ImportButton, "cmdSetup", Options);
    ExpectText(Options, "cboImpAct", "Mistake");
    program_->Expect("Are you sure you want to delete Mistake", "Yes");
    Press(Options, "cmdDelImpAct");
    BoxesCame();
    PressToClose(Options, "cmdCancel");
    ExpectLines(program_->Items(ImportButton, "cboMaster"), {"DemoImport"});
    program_->Click(ImportButton, "cmdCancel");
    program_->WaitGone(ImportButton);

    program_->Click(Main, "lblExportBtn");
    program_->WaitForm(ExportButton);
    program_->Choose(ExportButton, "cboMaster", "Orders");
    ExpectText(ExportButton, "lblSST_1", "Nameless.xor");
    PressAndWait(ExportButton, "cmdSetup", Options);
    ExpectText(Options, "cboExpAct", "Orders");
    PressAndWait(Options, "cmdEdtExp", Export);
    program_->Click(Export, "cmdCancel");
    program_->WaitGone(Export);
    program_->Expect("Are you sure you want to delete Orders", "Yes");
    Press(Options, "cmdDelExpAct");
    BoxesCame();
    PressToClose(Options, "cmdCancel");
    ExpectLines(program_->Items(ExportButton, "cboMaster"), {"DemoExport"});
    program_->Click(ExportButton, "cmdCancel");
    program_->WaitGone(ExportButton);

    program_->Click(Main, "lblClearPC");
    program_->WaitForm(ClearButton);
    PressAndWait(ClearButton, "cmdSetup", Options);
    EXPECT_TRUE(program_->HasFocus(Options, "cboPCAct"));
    PressAndWait(Options, "cmdEdtPC", PCTables);
    program_->Click(PCTables, "cmdSelectAll");
    program_->Click(PCTables, "cmdInvert");
    program_->Click(PCTables, "chkOrHdr");
    program_->Set(PCTables, "cboSettings", "Orders");
    program_->Expect("Would you like to perform the clear operation now?", "No");
    program_->Click(PCTables, "cmdOK");
    program_->WaitGone(PCTables);
    BoxesCame();
    ExpectLines(program_->Items(Options, "cboPCSS1"), {"", "Orders.pct"});
    program_->Set(Options, "cboPCAct", "Evening");
    program_->Choose(Options, "cboPCSS1", "Orders.pct");
    PressToClose(Options, "cmdOK");
    program_->Choose(ClearButton, "cboMaster", "Evening");
    ExpectText(ClearButton, "lblSST_1", "Orders.pct");
    program_->Expect("Perform Evening - Is that correct?", "Yes");
    program_->Click(ClearButton, "cmdOK");
    program_->WaitText(ClearButton, "lblProgress", "Process completed with no errors!");
    ExpectText(ClearButton, "lblSST_1", "2 of 2");
    program_->Click(ClearButton, "cmdCancel");
    program_->WaitGone(ClearButton);
}

void FirstCheck::RepairABlankDownloadAndDeleteABlankUpload() {
    OpenConfigurator();
    PressAndWait(Config, "cmdDownload1", DownloadTables);
    program_->Set(DownloadTables, "cboSettings", "Prices");
    program_->Click(DownloadTables, "cmdSave");
    Leave(DownloadTables);
    CheckAndFind("cmdDownload2",
                 {"Warn | PC: Basic Setup: Download | Blank Template | Template name: Prices.dst"});

    View(0, "View Template", DownloadTables);
    ExpectText(DownloadTables, "cboSettings", "Prices");
    program_->Click(DownloadTables, "chkCust");
    program_->Click(DownloadTables, "cmdOK");
    program_->WaitGone(DownloadTables);

    EXPECT_TRUE(HasChanged(0));
    EXPECT_TRUE(Bytes(office_.Path("Templates/Download/Prices.dst")).startsWith("Customers=1\r\n"));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdDownload2");

    PressAndWait(Config, "cmdUpload1", UploadTables);
    program_->Set(UploadTables, "cboSettings", "Mistake");
    program_->Click(UploadTables, "cmdSave");
    Leave(UploadTables);
    CheckAndFind("cmdUpload2",
                 {"Warn | PC: Basic Setup: Upload | Blank Template | Template name: Mistake.ust"});
    View(0, "View Template", UploadTables);
    program_->Click(UploadTables, "cmdDelete");
    Leave(UploadTables);

    EXPECT_TRUE(HasChanged(0));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdUpload2");
}

void FirstCheck::KeepSelectionsOfTablesInTheOptions() {
    PressAndWait(Config, "cmdUA1", Options);
    PressAndWait(Options, "cmdSUUpload", UploadTables);
    program_->Click(UploadTables, "cmdSelectAll");
    program_->Set(UploadTables, "cboSettings", "Evening");
    program_->Click(UploadTables, "cmdOK");
    program_->WaitGone(UploadTables);
    ExpectLines(program_->Items(Options, "cboULSettings"), {"", "Evening"});

    PressAndWait(Options, "cmdSUClear", ClearTables);
    program_->Click(ClearTables, "cmdSelectAll");
    program_->Set(ClearTables, "cboSettings", "Orders");
    program_->Click(ClearTables, "cmdOK");
    program_->WaitGone(ClearTables);
    ExpectLines(program_->Items(Options, "cboClearSettings"), {"", "Orders"});

    PressAndWait(Options, "cmdSUDownload", DownloadTables);
    program_->Choose(DownloadTables, "cboSettings", "Prices");
    EXPECT_TRUE(program_->IsChecked(DownloadTables, "chkCust"));
    program_->Click(DownloadTables, "cmdDelete");
    Leave(DownloadTables);
    ExpectLines(program_->Items(Options, "cboSettings"), {""});
    PressToClose(Options, "cmdCancel");
    PressToClose(Config, "cmdCancel");
}

void FirstCheck::SetUpSelectionsFromTheQuickButtons() {
    program_->Click(Main, "lblUploadBtn");
    program_->WaitForm(UploadButton);
    ExpectLines(program_->Items(UploadButton, "cboDownload"), {"Evening"});
    PressAndWait(UploadButton, "cmdSetup", Options);
    EXPECT_TRUE(program_->HasFocus(Options, "cmdSUUpload"));
    PressAndWait(Options, "cmdSUUpload", UploadTables);
    program_->Choose(UploadTables, "cboSettings", "Evening");
    program_->Click(UploadTables, "cmdDelete");
    Leave(UploadTables);
    PressToClose(Options, "cmdCancel");
    ExpectLines(program_->Items(UploadButton, "cboDownload"), {});
    Leave(UploadButton);

    program_->Click(Main, "lblDownloadBtn");
    program_->WaitForm(DownloadButton);
    PressAndWait(DownloadButton, "cmdSetupDL", Options);
    EXPECT_TRUE(program_->HasFocus(Options, "cmdSUDownload"));
    PressToClose(Options, "cmdCancel");
    ExpectLines(program_->Items(DownloadButton, "cboClear"), {"Orders"});
    PressAndWait(DownloadButton, "cmdSetupCL", Options);
    PressAndWait(Options, "cmdSUClear", ClearTables);
    program_->Choose(ClearTables, "cboSettings", "Orders");
    program_->Click(ClearTables, "cmdDelete");
    Leave(ClearTables);
    PressToClose(Options, "cmdCancel");
    ExpectLines(program_->Items(DownloadButton, "cboClear"), {});
    Leave(DownloadButton);
}

void FirstCheck::RepairAnUnattendedSettingWithoutAnAction() {
    OpenConfigurator();
    PressAndWait(Config, "cmdUA1", Options);
    ExpectText(Options, "SSTab1", "Unattended Hotsync");
    program_->Set(Options, "cboRemoteSettings", "Night");
    // No template has been saved for any of them yet, so each is refused.
    const char* actions[][3] = {
        {"optRemoteSelect", "optNoDownload", "Download Tables"},
        {"optUploadSelect", "optNoUpload", "Upload Tables"},
        {"optRemoteClearSelect", "optRemoteNoClear", "Clear Tables on Handheld after HotSync"}};
    for (const auto& [on, off, name] : actions) {
        Press(Options, on);
        program_->Expect(QString("The '%1' option is selected, but no file is selected from the 'Saved "
                                 "Settings' droplist! Please select a saved file from the 'Saved Settings' "
                                 "droplist, or select another option.")
                             .arg(name));
        Press(Options, "cmdOK");
        BoxesCame();
        Press(Options, off);
        EXPECT_FALSE(program_->IsChecked(Options, on));
    }
    PressToClose(Options, "cmdOK");
    CheckAndFind("cmdUA2", {"Warn | PC: Special Processes: Unattended Hotsync | No action specified | "
                            "Unattended Hotsync saved setting: Night.uhs"});

    View(0, "View Template", Options);
    ExpectText(Options, "cboRemoteSettings", "Night");
    Press(Options, "cmdDelete");
    ExpectText(Options, "cboRemoteSettings", "");
    PressToClose(Options, "cmdCancel");

    EXPECT_TRUE(HasChanged(0));
    PressToClose(Report, "cmdOK");
    CheckAndFindNothing("cmdUA2");
}

void FirstCheck::SetUpBackups() {
    PressAndWait(Config, "cmdBackup1", Options);
    ExpectText(Options, "SSTab1", "PC Backup / Updates");
    Press(Options, "optDelBackup");
    program_->ExpectContaining("You are about to permanently delete backup tables", "Yes");
    program_->Expect("A total of 0 backup tables were deleted!");
    Press(Options, "cmdDelBU");
    BoxesCame();
    Press(Options, "optNoPurge");
    EXPECT_FALSE(program_->IsVisible(Options, "cmdDelBU"));
    EXPECT_FALSE(program_->IsEnabled(Options, "cboPurge"));
    Press(Options, "optPurge");
    program_->Choose(Options, "cboPurge", "30");
    EXPECT_TRUE(program_->IsChecked(Options, "chkDemoTemplates"));
    Press(Options, "chkDemoTemplates");
    PressToClose(Options, "cmdOK");
    PressToClose(Config, "cmdCancel");

    program_->Click(Main, "mnuPCSetup");
    program_->WaitForm(Options);
    TurnTo("Unattended Hotsync");
    EXPECT_TRUE(program_->IsVisible(Options, "cboRemoteSettings"));
    TurnTo("QuickButtons");
    EXPECT_TRUE(program_->IsVisible(Options, "cboImpAct"));
    TurnTo("PC Backup / Updates");
    ExpectText(Options, "cboPurge", "30");
    EXPECT_FALSE(program_->IsChecked(Options, "chkDemoTemplates"));
    PressToClose(Options, "cmdCancel");
    OpenConfigurator();
    CheckAndFindNothing("cmdBackup2");
}

void FirstCheck::AddTwoHandhelds() {
    CheckAndFind("cmdLinks2", {"Fatal | Handheld: Basic Setup: Links | Table Empty | "});
    View(0, "View Records", Grid);
    EXPECT_EQ(program_->Title(Grid), "View Links");
    program_->Click(Grid, "cmdOK");
    program_->WaitGone(Grid);
    PressToClose(Report, "cmdOK");

    PressAndWait(Config, "cmdLinks1", Grid);
    program_->Click(Grid, "cmdEdit");
    program_->WaitForm(Links);
    ExpectText(Links, "lblCount", "No records to display!");
    for (const char* id : {"Smith", "Jones", "Mistake"}) {
        Press(Links, "cmdAdd");
        program_->Set(Links, "txtHotSync", id);
    }
    ExpectText(Links, "lblCount", "3 of 3");
    const char* moves[][2] = {
        {"cmdFirst", "Smith"}, {"cmdNext", "Jones"}, {"cmdLast", "Mistake"}, {"cmdPrevious", "Jones"}};
    for (const auto& [button, id] : moves) {
        Press(Links, button);
        ExpectText(Links, "txtHotSync", id);
    }
    Press(Links, "cmdLast");

    PressAndWait(Links, "cmdView", Grid);
    EXPECT_FALSE(program_->IsShown(Links));
    EXPECT_EQ(program_->Rows(Grid, "FG1").Rows.size(), 3);
    program_->Click(Grid, "cmdOK");
    program_->WaitForm(Links);
    ExpectText(Links, "lblCount", "3 of 3");

    program_->Expect("Delete current record?", "Yes");
    Press(Links, "cmdDelete");
    BoxesCame();
    ExpectText(Links, "lblCount", "2 of 2");
    PressToClose(Links, "cmdOK");

    // Sorted now, and there to stay.
    PressAndWait(Config, "cmdLinks1", Grid);
    program_->Click(Grid, "cmdEdit");
    program_->WaitForm(Links);
    ExpectText(Links, "txtHotSync", "Jones");
    ExpectText(Links, "lblCount", "1 of 2");
    program_->Set(Links, "txtHotSync", "Nobody");
    PressToClose(Links, "cmdCancel");

    // Nobody knows the users of handhelds as long as there is no HotSync Manager.
    CheckAndFind("cmdLinks2", {"Warn | Handheld: Basic Setup: Links | Invalid Hotsync ID | Records: 1, 2"});
    View(0, "View Records", Grid);
    ExpectLines(program_->ChosenItems(Grid, "FG1"), {"1", "2"});
    const DrivenTable links = program_->Rows(Grid, "FG1");
    ExpectLines({links.Rows.at(0).at(1), links.Rows.at(1).at(1)}, {"Jones", "Smith"});
    program_->Click(Grid, "cmdOK");
    program_->WaitGone(Grid);
    PressToClose(Report, "cmdOK");
}

void FirstCheck::SetUpCustomersAndItems() {
    PressAndWait(Config, "cmdCust1", ConfigCust);
    program_->Expect("Update customers with this Search field?", "Yes");
    program_->Choose(ConfigCust, "cboSrchCus", "Code");
    BoxesCame();
    ExpectText(ConfigCust, "lblHelp", "5 records have this search field now.");
    CheckAndFindNothing(ConfigCust, "cmdQC");
    PressAndWait(ConfigCust, "cmdImport", Convert);
    EXPECT_TRUE(program_->IsChecked(Convert, "optCustomer"));
    Leave(Convert);
    OpenEditor(ConfigCust, "cmdEdit", EditCust);
    ExpectText(EditCust, "lblWarning", "");
    program_->Set(EditCust, "txtField_2", "C-1");
    ExpectText(EditCust, "lblWarning",
               "Customer Code (C_CODE) in customer table contains invalid characters.");
    PressToClose(EditCust, "cmdCancel");
    OpenEditor(ConfigCust, "cmdEdit", EditCust);
    WalkThrough(EditCust, 5);
    PressToClose(ConfigCust, "cmdCancel");

    PressAndWait(Config, "cmdItems1", ConfigItem);
    ExpectText(ConfigItem, "cboSrchItm", "");
    program_->Expect("Update items with this Search field?", "Yes");
    program_->Choose(ConfigItem, "cboSrchItm", "Code");
    BoxesCame();
    CheckAndFindNothing(ConfigItem, "cmdQC");
    PressAndWait(ConfigItem, "cmdImport", Convert);
    EXPECT_TRUE(program_->IsChecked(Convert, "optItem"));
    Leave(Convert);
    OpenEditor(ConfigItem, "cmdEdit", EditItem);
    PressToClose(EditItem, "cmdCancel");
    OpenEditor(ConfigItem, "cmdEdit", EditItem);
    WalkThrough(EditItem, 4);
    PressToClose(ConfigItem, "cmdCancel");

    // The choices are there to stay.
    PressAndWait(Config, "cmdItems1", ConfigItem);
    ExpectText(ConfigItem, "cboSrchItm", "Code");
    PressToClose(ConfigItem, "cmdCancel");
}

void FirstCheck::SetUpSalesTaxAndPrinting() {
    PressAndWait(Config, "lblSTax", ConfigSTax);
    OpenEditor(ConfigSTax, "cmdSTax", EditSTax);
    ExpectText(EditSTax, "lblCount", "No records to display!");
    for (const char* code : {"NY", "CA"}) {
        Press(EditSTax, "cmdAdd");
        program_->Set(EditSTax, "txtField_1", code);
        program_->Set(EditSTax, "txtField_4", "8.25");
    }
    Press(EditSTax, "cmdFirst");
    WalkThrough(EditSTax, 2);
    CheckAndFindNothing(ConfigSTax, "cmdQC"); // and puts them in order
    OpenEditor(ConfigSTax, "cmdSTax", EditSTax);
    ExpectText(EditSTax, "txtField_1", "CA");
    PressToClose(EditSTax, "cmdCancel");
    OpenEditor(ConfigSTax, "cmdCust", EditCust);
    program_->Choose(EditCust, "cboC_STCode", "NY");
    PressToClose(EditCust, "cmdOK");
    PressToClose(ConfigSTax, "cmdCancel");

    PressAndWait(Config, "lblPrinter", ConfigPrint);
    OpenGridAndClose(ConfigPrint, "cmdComp", "View Company Details");
    OpenGridAndClose(ConfigPrint, "cmdPrinter", "View Printer Settings");
    CheckAndFindNothing(ConfigPrint, "cmdQC");
    PressToClose(ConfigPrint, "cmdCancel");
}

void FirstCheck::CheckWhatIsLeft() {
    OpenGridAndClose(Config, "cmdBarcode1", "View Items");
    OpenGridAndClose(Config, "cmdSTax1", "View Sales Tax");
    OpenGridAndClose(Config, "cmdPay1", "View Payments");
    OpenGridAndClose(Config, "cmdPrinter1", "View Printer Settings");
    for (const char* button : {"cmdBarcode2", "cmdSTax2", "cmdPrinter2", "cmdDownload2", "cmdUpload2",
                               "cmdCust2", "cmdItems2", "cmdImport2", "cmdExport2", "cmdQB2", "cmdUA2"})
        CheckAndFindNothing(button);
    // An office that takes no payments has none.
    CheckAndFind("cmdPay2", {"Warn | Handheld: Special Processes: Payments | Empty table | "});
    PressToClose(Report, "cmdOK");
}

void FirstCheck::CheckAllAndFindNothing() {
    program_->Expect(NoFatalProblems);
    Press(Config, "cmdCheckAll");
    BoxesCame();
    EXPECT_FALSE(program_->IsShown(Report));
    QStringList clean(14, "no problems");
    clean[0] = "1 Warn"; // Links
    clean[5] = "1 Warn"; // Payments
    ExpectLines(Results(), clean);
}

void FirstCheck::FindTheResultsAfterARestart() {
    const auto shown = [this] {
        QStringList texts;
        for (int line = 1; line <= 14; ++line) texts << Text(Config, QString("lblResult_%1").arg(line));
        return texts;
    };
    const QStringList before = shown();
    PressToClose(Config, "cmdCancel");
    EXPECT_EQ(program_->Quit(), 0);

    OpenTheProgram();
    OpenConfigurator();
    ExpectLines(shown(), before);
    PressToClose(Config, "cmdCancel");
}

void FirstCheck::EditWhatTheHandheldIsToldOnce() {
    OpenEditor("mnuChgComp", Company);
    program_->Set(Company, "txtField_1", "First Day Ltd");
    PressToClose(Company, "cmdOK");
    OpenEditor("mnuChgComp", Company);
    ExpectText(Company, "txtField_1", "First Day Ltd");
    ViewAndCancel(Company);

    OpenEditor("mnuChgSetup", HandheldSetup);
    program_->Choose(HandheldSetup, "cboSrchCus", "Company");
    PressToClose(HandheldSetup, "cmdOK");
    OpenEditor("mnuChgSetup", HandheldSetup);
    ExpectText(HandheldSetup, "cboSrchCus", "Company");
    ViewAndCancel(HandheldSetup);

    OpenEditor("mnuChgPrinter", Printing);
    program_->Set(Printing, "txtLineMax", "60");
    program_->Choose(Printing, "cboContForm", "NO");
    program_->Choose(Printing, "cboPrinter", "Datecs");
    program_->Choose(Printing, "cboStdStyle", "Fixed Length");
    program_->ExpectContaining("the program has changed the Print Format to 'Continuous Form'");
    program_->ExpectContaining("Would you like the program to change this option?", "Yes");
    PressToClose(Printing, "cmdOK");
    BoxesCame();
    OpenEditor("mnuChgPrinter", Printing);
    ExpectText(Printing, "cboStdStyle", "Continuous Form");
    ExpectText(Printing, "cboContForm", "YES");
    ExpectText(Printing, "txtLineMax", "60");
    EXPECT_FALSE(program_->IsEnabled(Printing, "txtLineMax"));
    ViewAndCancel(Printing);

    program_->Click(Main, "mnuViewSign");
    program_->WaitForm(Signatures);
    ExpectText(Signatures, "lblCount", "No records to display!");
    PressToClose(Signatures, "cmdOK");
}

void FirstCheck::KeepPayments() {
    const QString update = "Update database with changed information?";
    OpenEditor("mnuChgPayments", Payments);
    ExpectText(Payments, "lblCount", "No records to display!");
    Press(Payments, "cmdAdd");
    program_->Expect("Please select a Payment Type to continue.");
    Press(Payments, "cmdAdd");
    BoxesCame();
    Press(Payments, "optCash");
    Press(Payments, "cmdUpdate");
    Press(Payments, "cmdAdd");
    Press(Payments, "optCheck");
    program_->Expect(update, "Yes");
    Press(Payments, "cmdAdd");
    BoxesCame();
    Press(Payments, "optCard");
    program_->Set(Payments, "txtPayCDesc", "Visa");
    program_->Expect(update, "Yes");
    const char* moves[][2] = {
        {"cmdFirst", "1 of 3"}, {"cmdNext", "2 of 3"}, {"cmdLast", "3 of 3"}, {"cmdPrevious", "2 of 3"}};
    for (const auto& [button, count] : moves) {
        Press(Payments, button);
        ExpectText(Payments, "lblCount", count);
    }
    BoxesCame();
    program_->Expect("Delete current record?", "Yes");
    Press(Payments, "cmdDelete");
    BoxesCame();
    ExpectText(Payments, "lblCount", "1 of 2");
    ViewAndCancel(Payments);

    OpenEditor("mnuChgPayments", Payments);
    Press(Payments, "cmdLast");
    ExpectText(Payments, "txtPayCDesc", "Visa");
    PressToClose(Payments, "cmdOK");
    OpenConfigurator();
    CheckAndFindNothing("cmdPay2");
    PressToClose(Config, "cmdCancel");
}

void FirstCheck::RunTheRepairedActivity() {
    EXPECT_EQ(RunActivity(*program_, "lblImportBtn", ImportButton, "DemoImport"), "5 of 6");
}

void FirstCheck::WaitForHandheldsUnattended() {
    program_->ExpectContaining("No activity templates are setup for Unattended Hotsync.");
    program_->Click(Main, "lblUA");
    BoxesCame();
    EXPECT_FALSE(program_->IsShown(RemoteButton));
    program_->Click(Main, "mnuPCSetup");
    program_->WaitForm(Options);
    TurnTo("Unattended Hotsync");
    program_->Set(Options, "cboRemoteSettings", "Evening");
    PressToClose(Options, "cmdOK");

    program_->Click(Main, "lblUA");
    program_->WaitForm(RemoteButton);
    PressToClose(RemoteButton, "cmdCancel");
    program_->Click(Main, "lblUA");
    program_->WaitForm(RemoteButton);
    ExpectText(RemoteButton, "cboUnattended", "Evening");
    PressAndWait(RemoteButton, "cmdSetup", Options);
    ExpectText(Options, "cboRemoteSettings", "Evening");
    PressToClose(Options, "cmdOK");

    program_->Expect("Perform Evening - Is that correct?", "Yes");
    Press(RemoteButton, "cmdOK");
    program_->WaitForm(Remote);
    BoxesCame();
    EXPECT_FALSE(program_->IsShown(RemoteButton));
    ExpectText(Remote, "lblRemote", "Evening");
    ExpectText(Remote, "lblULActive", "No");
    Press(Remote, "chkOnTop");
    EXPECT_TRUE(program_->IsChecked(Remote, "chkOnTop"));
    PressToClose(Remote, "cmdCancel");

    program_->Click(Main, "lblUA"); // and it can be started again
    program_->WaitForm(RemoteButton);
    PressToClose(RemoteButton, "cmdCancel");
    EXPECT_EQ(program_->Quit(), 0);
}

TEST_F(FirstCheck, LeadsFromAnEmptyOfficeToACleanCheckOnTheScreensAlone) {
    OpenTheProgram();

    ImportTheFirstFilesWithoutASearchField();
    FindFatalProblemsAndLookAtTheRecords();
    ImportTheMendedFiles();
    RepairOneImportTemplateAndDeleteTheOther();
    RepairTheActivityThatNamedTheDeletedTemplate();
    RepairAnExportTemplateWithoutAFile();
    FillOneEmptyActivityAndDeleteTheOther();
    SetUpActivitiesFromTheQuickButtons();
    RepairABlankDownloadAndDeleteABlankUpload();
    KeepSelectionsOfTablesInTheOptions();
    SetUpSelectionsFromTheQuickButtons();
    RepairAnUnattendedSettingWithoutAnAction();
    SetUpBackups();
    AddTwoHandhelds();
    SetUpCustomersAndItems();
    SetUpSalesTaxAndPrinting();
    CheckWhatIsLeft();
    CheckAllAndFindNothing();
    FindTheResultsAfterARestart();
    EditWhatTheHandheldIsToldOnce();
    KeepPayments();
    RunTheRepairedActivity();
    WaitForHandheldsUnattended();

    for (const QString& form : Presses::Whole() + Presses::WithSetup())
        EXPECT_FALSE(presses_.Seen(form).isEmpty()) << form.toStdString() << " was never looked at";
    ExpectLines(presses_.Forgotten(), {});
}

} // namespace
