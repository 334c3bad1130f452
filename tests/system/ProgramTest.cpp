#include "Program.h"
#include "MappingByKeys.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

namespace {

/// An office in which every rule of a full Quality Check is broken.
class FaultyOffice : public Program {
protected:
    FaultyOffice() : Program(Faults()) {
        const QDir templates(Faults() + QStringLiteral("/Templates"));
        for (const QString& kind : templates.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QString folder = office_.Path(QStringLiteral("Templates/") + kind + QLatin1Char('/'));
            QDir().mkpath(folder);
            for (const QString& name : QDir(templates.filePath(kind)).entryList(QDir::Files))
                EXPECT_TRUE(QFile::copy(templates.filePath(kind + QLatin1Char('/') + name), folder + name));
        }
    }

    static QString Faults() { return QStringLiteral(TRAMBLE_SOURCE "/tests/system/quality"); }
};

TEST_F(Program, StartsAndEndsAndLeavesItsSettingsAndItsTrace) {
    DriverClient program(InOffice());
    StartUp(program);

    EXPECT_EQ(program.Quit(), 0);

    EXPECT_TRUE(
        Bytes(office_.Path(QStringLiteral("ZUKTramble.ini"))).startsWith("[Backup]\r\nPurgeBackup=True\r\n"));
    EXPECT_TRUE(Bytes(office_.Path(QStringLiteral("Events.log"))).contains("frmMain1:Form_Unload\r\n"));
    EXPECT_EQ(QDir(office_.Path(QStringLiteral("DBFEmpty"))).entryList({QStringLiteral("*.dbf")}).size(), 24);
}

TEST_F(Program, F1OpensTheHelpBesideWhateverScreenStandsAndItsSearchFindsAWord) {
    const QString help = QStringLiteral("frmHelp");
    const QString page = QStringLiteral("rtbTopic");
    DriverClient program(InOffice());
    StartUp(program);
    program.Focus(Main, QStringLiteral("cmdReset"));
    program.Key(QStringLiteral("F1"));
    program.WaitForm(help);
    program.WaitTextContaining(help, page, QStringLiteral("Handheld Status"));

    program.Click(Main, QStringLiteral("mnuTblCust"));
    program.WaitForm(QStringLiteral("frmViewGrid"));
    program.Click(Main, QStringLiteral("mnuMainImport"));
    program.WaitForm(QStringLiteral("frmConvert"));
    program.Click(QStringLiteral("frmConvert"), QStringLiteral("cmdHelp"));
    program.WaitTextContaining(help, page, QStringLiteral("Importing"));

    program.Choose(help, QStringLiteral("tabHelp"), QStringLiteral("Search"));
    program.Set(help, QStringLiteral("txtWords"), QStringLiteral("signature"));
    program.Click(help, QStringLiteral("cmdListTopics"));
    program.WaitTextContaining(help, QStringLiteral("lblFound"), QStringLiteral("Topics found:"));
    program.Click(help, QStringLiteral("cmdOK"));
    program.WaitGone(help);
    EXPECT_TRUE(program.IsShown(QStringLiteral("frmConvert")));
    program.Click(QStringLiteral("frmConvert"), QStringLiteral("cmdCancel"));
    program.WaitGone(QStringLiteral("frmConvert"));
    EXPECT_EQ(program.Quit(), 0);
    EXPECT_TRUE(QDir(folder_.path()).entryList({QStringLiteral("ZUKHelp-*")}, QDir::Dirs).isEmpty());
}

TEST_F(Program, ALanguageIsChosenInSetupPCAndShownFromTheNextStart) {
    QDir().mkpath(office_.Path(QStringLiteral("Languages")));
    QFile german(office_.Path(QStringLiteral("Languages/Deutsch.tsv")));
    ASSERT_TRUE(german.open(QIODevice::WriteOnly));
    german.write("17130\tlblImportBtn\tE\t\"Einlesen\"\n");
    german.close();
    const QString options = QStringLiteral("frmOptions");
    {
        DriverClient program(InOffice());
        StartUp(program);
        program.Click(Main, QStringLiteral("mnuPCSetup"));
        program.WaitForm(options);
        program.Choose(options, QStringLiteral("SSTab1"), QStringLiteral("PC Backup / Updates"));
        program.Choose(options, QStringLiteral("cboLanguage"), QStringLiteral("Deutsch"));
        program.ExpectContaining(QStringLiteral("from its next start"));
        program.Click(options, QStringLiteral("cmdOK"));
        program.WaitGone(options);
        EXPECT_NE(program.Text(Main, QStringLiteral("lblImportBtn")), QStringLiteral("Einlesen"));
        EXPECT_EQ(program.Quit(), 0);
    }

    DriverClient program(InOffice());
    StartUp(program);
    EXPECT_EQ(program.Text(Main, QStringLiteral("lblImportBtn")), QStringLiteral("Einlesen"));
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Program, ASecondStartIsToldAndLeavesTheFirstUntouched) {
    DriverClient first(InOffice());
    StartUp(first);

    DriverClient second(InOffice());
    second.Expect(QStringLiteral("Application is aready running!"));
    second.Start();
    EXPECT_NE(second.WaitForEnd(), 0);

    EXPECT_TRUE(first.IsShown(Main));
    EXPECT_EQ(first.Quit(), 0);
}

TEST_F(Program, ACrashedFirstNeverBlocksTheNextStart) {
    {
        DriverClient first(InOffice());
        StartUp(first);
        first.Kill();
    }

    DriverClient next(InOffice());
    StartUp(next);

    EXPECT_EQ(next.Quit(), 0);
}

TEST_F(Program, ImportsBothFilesAndExportsWhatOtherProgramsMakeOfTheSameTables) {
    DriverClient program(InOffice());
    StartUp(program);

    EXPECT_EQ(RunActivity(program, QStringLiteral("lblImportBtn"), QStringLiteral("frmQBImport"),
                          QStringLiteral("DemoImport")),
              QStringLiteral("120 of 121"));
    EXPECT_EQ(RunActivity(program, QStringLiteral("lblExportBtn"), QStringLiteral("frmQBExport"),
                          QStringLiteral("DemoExport"),
                          [&] {
                              program.Expect(
                                  QStringLiteral("3 records in the Order Lines table appear to have no "
                                                 "corresponding Header records!"));
                              program.ExpectContaining(QStringLiteral("Delete Exported Tables on PC?"),
                                                       QStringLiteral("No"));
                          }),
              QStringLiteral("82 of 85"));
    EXPECT_EQ(program.Quit(), 0);

    const QString other = folder_.filePath(QStringLiteral("expected.csv"));
    ASSERT_EQ(QProcess::execute(QStringLiteral("bash"), {Samples() + QStringLiteral("/expected/make.sh"),
                                                         office_.Path(QStringLiteral("DBFFiles")), other}),
              0);
    const QByteArray exported = Bytes(office_.Path(QStringLiteral("DataOut/orders.csv")));
    EXPECT_EQ(exported, Bytes(other));
    EXPECT_EQ(exported, Bytes(Samples() + QStringLiteral("/expected/orders.csv")));
}

TEST_F(Program, DeletionAfterTheExportLeavesABackupAndEmptyTables) {
    DriverClient program(InOffice());
    StartUp(program);

    RunActivity(program, QStringLiteral("lblExportBtn"), QStringLiteral("frmQBExport"),
                QStringLiteral("DemoExport"), [&] {
                    program.ExpectContaining(QStringLiteral("records in the Order Lines table"));
                    program.ExpectContaining(QStringLiteral("Delete Exported Tables on PC?"),
                                             QStringLiteral("Yes"));
                });
    program.Click(Main, QStringLiteral("lblNext"));
    EXPECT_EQ(program.Text(Main, QStringLiteral("lblSysOrders1")), QStringLiteral("0"));
    EXPECT_EQ(program.Quit(), 0);

    const QStringList backups =
        QDir(office_.Path(QStringLiteral("Backup"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_EQ(QDir(office_.Path(QStringLiteral("Backup/") + backups[0])).entryList(QDir::Files).size(), 6);
}

TEST_F(Program, TheDarkLookIsRemembered) {
    {
        DriverClient program(InOffice());
        StartUp(program);
        program.Click(Main, QStringLiteral("mnuDarkLook"));
        EXPECT_TRUE(program.IsChecked(Main, QStringLiteral("mnuDarkLook")));
        EXPECT_EQ(program.Quit(), 0);
    }

    DriverClient program(InOffice());
    StartUp(program);

    EXPECT_TRUE(program.IsChecked(Main, QStringLiteral("mnuDarkLook")));
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Program, LooksAtATableAndItsRecordsByKeyboardAlone) {
    DriverClient program(InOffice());
    StartUp(program);
    const QString grid = QStringLiteral("frmViewGrid");
    const QString records = QStringLiteral("frmViewData");
    const QString count = QStringLiteral("lblCount");

    for (const char* key : {"Alt+V", "O", "H"}) program.Key(QString::fromLatin1(key));
    program.WaitForm(grid);
    EXPECT_EQ(program.Title(grid), QStringLiteral("View Order Headers"));
    EXPECT_EQ(program.Rows(grid, QStringLiteral("FG1")).Rows.size(), 27);
    EXPECT_TRUE(program.HasFocus(grid, QStringLiteral("FG1")));
    program.Key(QStringLiteral("End"));
    program.Key(QStringLiteral("Return"));

    program.WaitForm(records);
    program.WaitGone(grid);
    program.WaitText(records, count, QStringLiteral("27 of 27"));
    program.Key(QStringLiteral("PgUp"));
    program.WaitText(records, count, QStringLiteral("26 of 27"));
    program.Key(QStringLiteral("Home"));
    program.WaitText(records, count, QStringLiteral("1 of 27"));
    program.Key(QStringLiteral("Alt+N"));
    program.WaitText(records, count, QStringLiteral("2 of 27"));
    const QString order = program.Text(records, QStringLiteral("txtOrHdr_1"));
    program.Key(QStringLiteral("Alt+G"));

    program.WaitForm(grid);
    program.WaitGone(records);
    EXPECT_EQ(program.Text(grid, QStringLiteral("FG1")), order);
    program.Key(QStringLiteral("Ctrl+F"));
    program.Type(QStringLiteral("104"));
    program.Key(QStringLiteral("Return"));
    EXPECT_TRUE(program.Text(grid, QStringLiteral("FG1")).contains(QStringLiteral("104")));
    program.Key(QStringLiteral("Escape"));
    EXPECT_TRUE(program.IsShown(grid));
    program.Key(QStringLiteral("Escape"));
    program.WaitGone(grid);

    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Program, ImportsByKeyboardAlone) {
    DriverClient program(InOffice());
    StartUp(program);
    const QString form = QStringLiteral("frmQBImport");

    program.Key(QStringLiteral("Alt+I"));
    program.WaitForm(form);
    program.Type(QStringLiteral("DemoImport"));
    program.WaitEnabled(form, QStringLiteral("cmdOK"));
    program.Expect(QStringLiteral("Perform DemoImport - Is that correct?"), QStringLiteral("Yes"));
    program.Key(QStringLiteral("Return"));
    program.WaitTextContaining(form, QStringLiteral("lblProgress"),
                               QStringLiteral("Process completed with no errors!"));
    program.Key(QStringLiteral("Escape"));
    program.WaitGone(form);

    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Program, MapsImportsAndExportsByKeyboardAloneAsTheActivitiesDo) {
    const OfficeForDay other(QStringLiteral(TRAMBLE_BUILD), folder_.filePath(QStringLiteral("other")),
                             Samples());
    const QString templates = office_.Path(QStringLiteral("Templates/"));
    {
        DriverClient program(InOffice());
        StartUp(program);
        EXPECT_EQ(ImportByKeys(program, templates + QStringLiteral("Import/DemoCustomers.cst"),
                               QStringLiteral("Alt+U"), QStringLiteral("Mine"))
                      .toStdString(),
                  "120 of 120 lines successfully imported!");
        ImportByKeys(program, templates + QStringLiteral("Import/DemoItems.itm"), QStringLiteral("Alt+I"),
                     QStringLiteral("Mine"));
        ExportByKeys(program, templates + QStringLiteral("Export/DemoOrders.xor"), QStringLiteral("Mine"),
                     [&] {
                         program.ExpectContaining(QStringLiteral("3 records in the Order Lines table"));
                         program.ExpectContaining(QStringLiteral("Delete Exported Tables on PC?"),
                                                  QStringLiteral("No"));
                     });
        EXPECT_EQ(program.Quit(), 0);
    }
    DrivenProgram start = InOffice();
    start.Program = other.Program();
    start.Folder = other.Path(QString());
    DriverClient program(start);
    StartUp(program);
    RunActivity(program, QStringLiteral("lblImportBtn"), QStringLiteral("frmQBImport"),
                QStringLiteral("DemoImport"));
    EXPECT_EQ(program.Quit(), 0);

    for (const char* table : {"DBFFiles/ZUKCust.dbf", "DBFFiles/ZUKItem.dbf"}) {
        EXPECT_EQ(Bytes(office_.Path(QString::fromLatin1(table))),
                  Bytes(other.Path(QString::fromLatin1(table))))
            << table;
    }
    for (const char* pair :
         {"Import/Mine.cst Import/DemoCustomers.cst", "Import/Mine.itm Import/DemoItems.itm",
          "Export/Mine.xor Export/DemoOrders.xor"}) {
        const QStringList files = QString::fromLatin1(pair).split(QLatin1Char(' '));
        EXPECT_EQ(Bytes(templates + files[0]), Bytes(templates + files[1])) << pair;
    }
    EXPECT_EQ(Bytes(office_.Path(QStringLiteral("DataOut/orders.csv"))),
              Bytes(Samples() + QStringLiteral("/expected/orders.csv")));
}

TEST_F(FaultyOffice, IsReportedByTheFullCheckAndItsReportSavedAndPrinted) {
    DriverClient program(InOffice());
    StartUp(program);
    const QString report = QStringLiteral("frmConfigMsg"), question = QStringLiteral("frmMessage");

    program.Click(Main, QStringLiteral("mnuQC"));
    program.WaitForm(question);
    EXPECT_EQ(program.Text(question, QStringLiteral("lblMessage")),
              QStringLiteral("This process will perform a Quality Check on ALL processes. Do you want to "
                             "continue?"));
    program.Expect(QStringLiteral("'Fatal' problems were found in the data and need to be corrected before a "
                                  "download process can occur. More details of these problems in the next "
                                  "screen... "));
    program.Click(question, QStringLiteral("cmdYes"));
    program.WaitForm(report);
    EXPECT_EQ(program.Title(report), QStringLiteral("Quality Check"));
    EXPECT_EQ(program.Rows(report, QStringLiteral("FG1")).Rows.size(), 29);

    program.ExpectInputContaining(QStringLiteral("Save it as:"), QStringLiteral("QualityCheck"));
    program.ExpectContaining(QStringLiteral("DataOut/QualityCheck.csv"));
    program.Click(report, QStringLiteral("cmdSave"));
    program.Done();
    EXPECT_EQ(Bytes(office_.Path(QStringLiteral("DataOut/QualityCheck.csv"))),
              Bytes(QStringLiteral(TRAMBLE_SOURCE "/tests/system/expected/QualityCheck.csv")));

    // A look at the pages by keys, and from there into a file by the printer dialog.
    const QString preview = QStringLiteral("frmPreview"), dialog = QStringLiteral("PrintDialog");
    program.Key(QStringLiteral("Alt+W"));
    program.WaitForm(preview);
    program.Key(QStringLiteral("End"));
    const QString pages = program.Text(preview, QStringLiteral("lblPage")).section(QLatin1Char(' '), -1);
    program.WaitText(preview, QStringLiteral("lblPage"), QStringLiteral("Page %1 of %1").arg(pages));
    program.Key(QStringLiteral("Alt+R"));
    program.WaitForm(dialog);
    // Without a printer, as where tests run, the dialog offers a file.
    ASSERT_EQ(program.Items(dialog, QStringLiteral("printers")).size(), 1);
    const QString file = program.Text(dialog, QStringLiteral("filename"));
    EXPECT_EQ(file, office_.Path(QStringLiteral("DataOut/Quality Check.pdf")));
    program.Expect(QStringLiteral("Printing complete!"));
    program.Click(dialog, QStringLiteral("Ok"));
    program.Done(std::chrono::seconds(30));
    program.Key(QStringLiteral("Escape"));
    program.WaitGone(preview);
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), {file, QStringLiteral("-")});
    ASSERT_TRUE(reader.waitForFinished());
    const QString read = QString::fromUtf8(reader.readAllStandardOutput());
    EXPECT_EQ(read.count(QLatin1Char('\f')), pages.toInt());
    EXPECT_EQ(read.count(QStringLiteral("Severity")), pages.toInt());
    EXPECT_EQ(
        read.count(QRegularExpression(QStringLiteral("^(Fatal|Warn)$"), QRegularExpression::MultilineOption)),
        29);

    program.Click(report, QStringLiteral("cmdPrint"));
    program.WaitForm(dialog);
    program.Click(dialog, QStringLiteral("Cancel"));
    program.WaitGone(dialog);

    // From a row of the report to the faulty records.
    program.ChooseRow(report, QStringLiteral("FG1"), 0);
    EXPECT_EQ(program.Text(report, QStringLiteral("cmdView")), QStringLiteral("View Template"));
    program.ChooseRow(report, QStringLiteral("FG1"), 11);
    EXPECT_EQ(program.Text(report, QStringLiteral("cmdView")), QStringLiteral("View Records"));
    program.Click(report, QStringLiteral("cmdView"));
    program.WaitForm(QStringLiteral("frmViewGrid"));
    EXPECT_EQ(program.Title(QStringLiteral("frmViewGrid")), QStringLiteral("View Customers"));
    program.Close(QStringLiteral("frmViewGrid"));
    program.WaitGone(QStringLiteral("frmViewGrid"));

    program.Click(report, QStringLiteral("cmdOK"));
    program.WaitGone(report);
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Program, WithoutFatalProblemsAFullCheckSaysSoAndShowsNoReport) {
    DriverClient program(InOffice());
    StartUp(program);

    program.Click(Main, QStringLiteral("mnuQC"));
    program.WaitForm(QStringLiteral("frmMessage"));
    program.Expect(QStringLiteral("No fatal problems found in data tables!"));
    program.Click(QStringLiteral("frmMessage"), QStringLiteral("cmdYes"));
    program.Done(DriverClient::Milliseconds(30000));

    EXPECT_FALSE(program.IsShown(QStringLiteral("frmConfigMsg")));
    EXPECT_FALSE(program.IsShown(QStringLiteral("frmConfig")));
    EXPECT_EQ(program.Quit(), 0);
}

} // namespace
