#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportTemplate.h"
#include "exchange/forms/frmQBExport.h"
#include "exchange/forms/frmQBImport.h"
#include "forms/FormTest.h"
#include "platform/Convert.h"
#include "support/ForeignTexts.h"

#include <QComboBox>
#include <QLabel>
#include <QTimer>

#include <filesystem>

namespace {

class QuickButtons : public FormTest {
protected:
    QuickButtons() { GivenOffice(); }

    void GivenActivity(const std::string& name, const std::string& first, const std::string& second = {}) {
        Activity activity;
        activity.Rows[0].Template = first;
        activity.Rows[1].Template = second;
        WriteActivity(Global.QuickButtonTemplates + name, activity);
    }

    void GivenImportTemplate(const std::string& name, const std::string& dataFile,
                             const std::vector<std::string>& fields) {
        ImportTemplate content;
        content.DataFile = dataFile;
        content.Delimiter = Delimiter::Csv;
        content.StartLine = "1";
        content.Fields = fields;
        WriteImportTemplate(Global.ImportTemplates + name, content);
    }

    void GivenExportTemplate(const std::string& name, const std::string& file,
                             const std::vector<std::string>& columns) {
        ExportTemplate content;
        content.FileName = file;
        content.Delimiter = Delimiter::Csv;
        content.Columns = columns;
        WriteExportTemplate(Global.ExportTemplates + name, content);
    }

    void GivenOrders() {
        GivenRows("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A1|Acme", "A2|Bolt"});
        GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY|L_QTY|L_TOTPRICE", "A1|1|2|10.5", "A1|2|3|4", "A2|3|1|1"});
    }

    /// Chooses the activity, presses Ok and answers the question.
    template <class F>
    F& Run(const char* activity) {
        Operator_.Expect(T(std::string("Perform ") + activity + " - Is that correct?")).Answer(Answer::Yes);
        return Prepared<F>(activity);
    }

    template <class F>
    F& Prepared(const char* activity) {
        F& form = Open<F>();
        Choose(form, "cboMaster", QString::fromLatin1(activity));
        return form;
    }

    static bool Succeeded(FormBehaviour& form, int row) {
        const QString name = Control(form, row == 1 ? "imgSuccess_1" : "imgSuccess_2").accessibleName();
        EXPECT_FALSE(name.isEmpty());
        return name == QStringLiteral("succeeded");
    }
};

TEST_F(QuickButtons, TheDroplistHoldsTheActivitiesOfItsKind) {
    GivenActivity("Morning.ipm", "A.cst");
    GivenActivity("Evening.xpm", "A.xor");

    auto& form = Open<frmQBImport>();

    auto& box = dynamic_cast<QComboBox&>(Control(form, "cboMaster"));
    EXPECT_GE(box.findText(QStringLiteral("Morning")), 0);
    EXPECT_EQ(box.findText(QStringLiteral("Evening")), -1);
    EXPECT_EQ(box.currentIndex(), -1);
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(QuickButtons, AnActivityShowsItsTwoRowsAndAnEmptyOneAsNone) {
    GivenActivity("Morning.ipm", "Cust.cst");

    auto& form = Prepared<frmQBImport>("Morning");

    EXPECT_EQ(TextOf(form, "lblSSHeading"), QStringLiteral("Activity contents:"));
    EXPECT_EQ(TextOf(form, "lblSS_1"), QStringLiteral("Saved Setting 1:"));
    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("Cust.cst"));
    EXPECT_EQ(TextOf(form, "lblSST_2"), QStringLiteral("None"));
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(QuickButtons, AnActivityShowsTheLabelsOfItsRowsInTheLanguage) {
    GivenActivity("Morning.ipm", "Cust.cst");
    UseForeignTexts();

    auto& form = Prepared<frmQBImport>("Morning");

    EXPECT_EQ(TextOf(form, "lblSS_1"), ToQt(Text(msg::SavedSetting1)));
    EXPECT_EQ(TextOf(form, "lblSS_2"), ToQt(Text(msg::SavedSetting2)));
    EXPECT_EQ(TextOf(form, "lblSST_2"), ToQt(Text(msg::None)));
}

TEST_F(QuickButtons, AnActivityWithAnAccentInItsNameIsOpened) {
    GivenActivity("Caf\xC3\xA9.ipm", "Cust.cst");
    auto& form = Open<frmQBImport>();

    Choose(form, "cboMaster", QStringLiteral("Caf\u00E9"));

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("Cust.cst"));
}

TEST_F(QuickButtons, AnActivityThatCannotBeOpenedIsTold) {
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Open<frmQBImport>();
    std::filesystem::remove(Global.QuickButtonTemplates + "Morning.ipm");
    Operator_.ExpectBeginning(msg::ActivityError).With(Icon::Warning);

    Choose(form, "cboMaster", QStringLiteral("Morning"));

    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(QuickButtons, NoAtTheQuestionRunsNothing) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Prepared<frmQBImport>("Morning");
    Operator_.Expect(T("Perform Morning - Is that correct?")).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(QuickButtons, AnImportFillsTheTableAndReportsItsLines) {
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\nB2,Bolt\r\n\r\nC3,Caf\xE9,,,\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE", "C_NAME"});
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblHeading1"), QStringLiteral("Table:"));
    EXPECT_EQ(TextOf(form, "lblHeading2"), QStringLiteral("Lines Imported:"));
    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("2 of 3"));
    EXPECT_TRUE(Succeeded(form, 1));
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with no errors!"));
    EXPECT_EQ(TextOf(form, "cmdCancel"), QStringLiteral("Done"));
    EXPECT_TRUE(Enabled(form, "cmdCancel"));
    for (const char* control : {"cmdOK", "cmdSetup", "cboMaster"})
        EXPECT_FALSE(Enabled(form, control)) << control;
    EXPECT_TRUE(Global.RefreshTotals);
    EXPECT_EQ(RecordCount("ZUKCust"), 3);
    EXPECT_EQ(Cell("ZUKCust", 2, "C_NAME"), "Bolt");
    EXPECT_EQ(Operator_.Beeps(), 1);
}

TEST_F(QuickButtons, AMissingTemplateInRowOneStillRunsRowTwoAndReportsOneError) {
    GivenFile("app/DataIn/i.csv", "I1,Nail\r\n");
    GivenImportTemplate("Items.itm", "i.csv", {"I_ITEMCODE", "I_DESC1"});
    GivenActivity("Morning.ipm", "Gone.cst", "Items.itm");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.Expect(T("Error opening Gone.cst. Please make sure the file exists."));

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_TRUE(Succeeded(form, 2));
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
    EXPECT_EQ(Cell("ZUKItem", 1, "I_DESC1"), "Nail");
}

TEST_F(QuickButtons, TwoErrorsAreCounted) {
    GivenActivity("Morning.ipm", "Gone.cst", "Lost.itm");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.Expect(T("Error opening Gone.cst. Please make sure the file exists."));
    Operator_.Expect(T("Error opening Lost.itm. Please make sure the file exists."));

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 2 errors!"));
    EXPECT_FALSE(Global.RefreshTotals) << "nothing was imported";
}

TEST_F(QuickButtons, EachRowSaysWhatItImportsAndFromWhichFile) {
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    GivenFile("app/DataIn/i.csv", "I1,Nail\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE", "C_NAME"});
    GivenImportTemplate("Items.itm", "i.csv", {"I_ITEMCODE", "I_DESC1"});
    GivenActivity("Morning.ipm", "Cust.cst", "Items.itm");
    auto& form = Run<frmQBImport>("Morning");
    QStringList told;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] { told << TextOf(form, "lblProgress"); });
    look.start(0);

    Click(form, "cmdOK");

    told.removeDuplicates();
    EXPECT_TRUE(told.contains(QStringLiteral("Importing Customers from c.csv")))
        << told.join(u'|').toStdString();
    EXPECT_TRUE(told.contains(QStringLiteral("Importing Items from i.csv"))) << told.join(u'|').toStdString();
}

TEST_F(QuickButtons, ATemplateWithAFullPathInItsFirstLineWorksAndThePathIsDropped) {
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    GivenFile("app/DataIn/i.csv", "I1,Nail\r\n");
    const std::string elsewhere = GivenFile("elsewhere/i.csv", "X9,not this one\r\n");
    const std::string rest = "\r\nCSV\r\nStartLine=1\r\n[FIELDS]\r\n";
    WriteWholeFile(Global.ImportTemplates + "Cust.cst", "C:\\Old\\c.csv" + rest + "C_CODE\r\n[LITERALS]\r\n");
    WriteWholeFile(Global.ImportTemplates + "Items.itm", elsewhere + rest + "I_ITEMCODE\r\n[LITERALS]\r\n");
    GivenActivity("Morning.ipm", "Cust.cst", "Items.itm");
    auto& form = Run<frmQBImport>("Morning");

    Click(form, "cmdOK");

    EXPECT_TRUE(Succeeded(form, 1) && Succeeded(form, 2));
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "A1");
    EXPECT_EQ(Cell("ZUKItem", 1, "I_ITEMCODE"), "I1");
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with no errors!"));
}

TEST_F(QuickButtons, ADataFileThatIsGoneIsTold) {
    GivenImportTemplate("Cust.cst", "gone.csv", {"C_CODE"});
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");
    Operator_
        .Expect(T(
            "Error opening Import file defined in Cust.cst. Please make sure the file exists or that this is "
            "not an old template file."))
        .With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
}

TEST_F(QuickButtons, TwoRowsNamingOneTemplateRunItTwiceAndTheSecondReplacesTheContentAgain) {
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE"});
    GivenActivity("Morning.ipm", "Cust.cst", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");
    // Between the rows the table gets another content.
    int changed = 0;
    QTimer between;
    QObject::connect(&between, &QTimer::timeout, [&] {
        if (changed > 0 || TextOf(form, "lblSST_1") != QStringLiteral("1 of 1")) return;
        ++changed;
        GivenRows("ZUKCust", {"C_CODE", "OLD", "OLDER"});
    });
    between.start(0);

    Click(form, "cmdOK");

    EXPECT_EQ(changed, 1);
    EXPECT_TRUE(Succeeded(form, 1) && Succeeded(form, 2));
    EXPECT_EQ(TextOf(form, "lblSST_2"), QStringLiteral("1 of 1"));
    EXPECT_EQ(RecordCount("ZUKCust"), 1);
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "A1");
}

TEST_F(QuickButtons, AMismatchFailsTheRowLeavesTheTableAndGoesOn) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\nA2,Bolt\r\n");
    GivenFile("app/DataIn/i.csv", "I1,Nail\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE", "C_NAME", "C_PHONE"});
    GivenImportTemplate("Items.itm", "i.csv", {"I_ITEMCODE"});
    GivenActivity("Morning.ipm", "Cust.cst", "Items.itm");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.ExpectBeginning(msg::FieldsDoNotMatch).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("0 of 2"));
    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_TRUE(Succeeded(form, 2));
    EXPECT_EQ(RecordCount("ZUKCust"), 1);
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
    EXPECT_EQ(Cell("ZUKItem", 1, "I_ITEMCODE"), "I1");
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
}

TEST_F(QuickButtons, AStartLineBehindTheEndIsToldAndTheTableStays) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    WriteWholeFile(Global.ImportTemplates + "Cust.cst",
                   "c.csv\r\nCSV\r\nStartLine=9\r\n[FIELDS]\r\nC_CODE\r\n[LITERALS]\r\n");
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.ExpectBeginning(msg::ImportStopped).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
}

TEST_F(QuickButtons, ADataDirectoryThatIsGoneIsMadeAgainAndTold) {
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE"});
    GivenActivity("Morning.ipm", "Cust.cst");
    std::filesystem::remove_all(Global.DataInPath);
    auto& form = Run<frmQBImport>("Morning");
    Operator_.ExpectBeginning(msg::DataInUnavailable).With(Icon::Information);
    Operator_.ExpectBeginning(T("Error opening Import file defined in Cust.cst"));

    Click(form, "cmdOK");

    EXPECT_TRUE(Exists(Global.DataInPath));
}

TEST_F(QuickButtons, AnActivityOfTwoEmptyRowsEndsWithoutErrors) {
    GivenActivity("Nothing.ipm", "");
    auto& form = Run<frmQBImport>("Nothing");

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with no errors!"));
}

TEST_F(QuickButtons, ATemplateThatMapsNothingLeavesTheTable) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {});
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.ExpectBeginning(T("Error opening Import file defined in Cust.cst")).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
}

TEST_F(QuickButtons, ATemplateThatCannotBeReadToItsEndIsNotRun) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\n");
    WriteWholeFile(Global.ImportTemplates + "Cust.cst",
                   "c.csv\r\nCSV\r\nStartLine=1\r\n[FIELDS]\r\nC_CODE\r\n" +
                       std::string(TextReader::MaxLine + 1, 'x'));
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");
    Operator_.Expect(T("Error opening Cust.cst. Please make sure the file exists."));

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
}

TEST_F(QuickButtons, LinesThatWereLostAreNamedOnTheRowsTip) {
    GivenFile("app/DataIn/c.csv", "A1,Acme\r\nA2,Bolt,x\r\n");
    GivenImportTemplate("Cust.cst", "c.csv", {"C_CODE"});
    GivenActivity("Morning.ipm", "Cust.cst");
    auto& form = Run<frmQBImport>("Morning");

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("1 of 2"));
    const QString list = QString::fromStdString(Global.DataInPath + "Errors/c.csv.txt");
    EXPECT_EQ(Control(form, "lblSST_1").toolTip(),
              QStringLiteral("The lines that failed are listed in ") + list);
    EXPECT_EQ(EngineTest::Lines(list.toStdString()).size(), 2U);
}

TEST_F(QuickButtons, ColumnsThatMayHaveMovedMarkTheRowUntilSomebodyHasLooked) {
    GivenFile("app/DataIn/c.csv", "Code,Name\r\nA1,Acme\r\n");
    WriteWholeFile(Global.ImportTemplates + "Cust.cst",
                   "c.csv\r\nCSV\r\nStartLine=2\r\n[FIELDS]\r\nC_CODE\r\nC_NAME\r\n[LITERALS]\r\n");
    GivenActivity("Morning.ipm", "Cust.cst");
    const auto run = [&] {
        auto& form = Run<frmQBImport>("Morning");
        Click(form, "cmdOK");
        const QString state = Control(form, "imgSuccess_1").accessibleName();
        EXPECT_EQ(Control(form, "imgSuccess_1").toolTip().isEmpty(), state == QStringLiteral("succeeded"));
        form.Unload();
        Settle();
        return state;
    };
    EXPECT_EQ(run(), QStringLiteral("succeeded"));
    EXPECT_EQ(run(), QStringLiteral("succeeded"));

    GivenFile("app/DataIn/c.csv", "Code,Group,Name\r\nA1,G,Acme\r\n");

    EXPECT_EQ(run(), QStringLiteral("succeeded, but the columns may have moved"));
    EXPECT_EQ(Cell("ZUKCust", 1, "C_NAME"), "G") << "it goes on as told";
    EXPECT_EQ(run(), QStringLiteral("succeeded, but the columns may have moved"));
}

// ---- export ----

TEST_F(QuickButtons, AnExportWritesTheFileAndLeavesTheTablesAtNo) {
    GivenOrders();
    GivenExportTemplate("Orders.xor", "out", {"H_ORDCODE", "H_BILLNAME", "L_QTY"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    // The icon makes No the default.
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote))
        .With(Icon::Warning)
        .Then(
            [&form] { EXPECT_TRUE(TextOf(form, "lblWritten").endsWith(QStringLiteral("/DataOut/out.csv"))); })
        .Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_TRUE(Visible(form, "lblWritten"));
    EXPECT_EQ(Bytes(Global.DataOutPath + "out.csv"), "A1,Acme,2\r\nA1,Acme,3\r\nA2,Bolt,1\r\n");
    EXPECT_EQ(TextOf(form, "lblHeading2"), QStringLiteral("Records Exported:"));
    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("3 of 3"));
    EXPECT_TRUE(Succeeded(form, 1));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);
    EXPECT_TRUE(Global.RefreshTotals);
}

TEST_F(QuickButtons, YesMakesABackupRecordsTheEventAndEmptiesTheTables) {
    GivenOrders();
    Global.Clock = [] { return DateTime{2026, 11, 15, 2, 36, 7}; };
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::Yes);

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("2 of 2"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 0);
    EXPECT_EQ(RecordCount("ZUKOrLin"), 0);
    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023607/Backup.txt")[0], "EXPORT");
    EXPECT_TRUE(Exists(Global.BackupPath + "61115023607/ZUKOrLin.dbf"));
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "EXPORT");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_NUMLINE"), "3");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_DOL_LIN"), "15.5");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_DATETIM"), "2026-11-15 02:36:07");
}

TEST_F(QuickButtons, AYesInTheSecondOfAnotherYesLeavesTheFirstOnesBackupInItsPlace) {
    static DateTime clockTime;
    clockTime = {2026, 11, 15, 2, 36, 7};
    Global.Clock = [] { return clockTime; };
    GivenOrders();
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    const Text question = ::Lines(msg::DeleteExported, msg::DeleteExportedNote);
    Operator_.Expect(question).Answer(Answer::Yes);
    // Time passes only when the program waits.
    Operator_.Expect(question).Answer(Answer::Yes).Then([] {
        QTimer::singleShot(0, qApp, [] { clockTime.Second = 8; });
    });

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_2"), QStringLiteral("0 of 0"));
    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023607/Backup.txt").at(2), "2");
    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023608/Backup.txt").at(2), "0");
}

/// As an upload leaves its copies when the program ends before the merge.
void GivenUnmergedUpload() {
    for (const char* table : {"ZUKOrHdr", "ZUKOrLin"})
        CopyOver(Global.DBFPath + table + ".dbf", Global.DBFPath + table + ".dap");
    WriteWholeFile(Global.DBFPath + "SafetyCopies.txt", "");
}

TEST_F(QuickButtons, WhatAnUploadLeftToBePutBackIsToldAndExportedAndGoesWithTheOthers) {
    GivenOrders();
    GivenUnmergedUpload();
    GivenRows("ZUKOrHdr", {"H_ORDCODE", "H1"});
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.ExpectBeginning(Text(msg::CopiesPutBack)).With(Icon::Information);
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::Yes);

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("3 of 3"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 0);
    EXPECT_FALSE(Exists(Global.DBFPath + "SafetyCopies.txt"));
}

TEST_F(QuickButtons, TablesWhoseCopiesCannotBePutBackAreNeitherExportedNorEmptied) {
    GivenOrders();
    GivenUnmergedUpload();
    WriteWholeFile(Global.DBFPath + "ZUKOrHdr.dap", "no table");
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::CopiesNotPutBack)).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(Exists(Global.DataOutPath + "out.txt"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_TRUE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
}

TEST_F(QuickButtons, AHotSyncThatComesBehindTheExportKeepsItsOrdersAndTheFile) {
    GivenRows("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A1|Acme"});
    GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY|L_QTY", "A1|1|2", "A9|1|3"});
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE", "L_QTY"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.Expect(Words(Text::Value(1), msg::LinesWithoutHeader)).Then(GivenUnmergedUpload);
    Operator_.Expect(msg::HotsyncCameMeanwhile).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_TRUE(Succeeded(form, 1));
    EXPECT_TRUE(Exists(Global.DataOutPath + "out.txt"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
    EXPECT_TRUE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
}

TEST_F(QuickButtons, AFailedBackupIsToldAndTheOrdersStay) {
    GivenOrders();
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor");
    WriteWholeFile(Global.DBFPath + ".~lock.ZUKAudTH.dbf#", "office");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::Yes);
    Operator_.Expect(::Lines(::Lines(msg::FileError, msg::CannotBackUp), T(Global.DBFPath + "ZUKAudTH.dbf")))
        .With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);
}

TEST_F(QuickButtons, OrphanLinesAreToldBeforeTheDeletionIsAsked) {
    GivenOrders();
    GivenRows("ZUKOrHdr", {"H_ORDCODE", "A1"});
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE", "L_KEY"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.Expect(T("1 records in the Order Lines table appear to have no corresponding Header records!"))
        .With(Icon::Information);
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("2 of 3"));
}

TEST_F(QuickButtons, AMissingExportTemplateInRowOneStillRunsRowTwoAndAPathInItsFileNameIsDropped) {
    GivenOrders();
    WriteWholeFile(Global.ExportTemplates + "Orders.xor",
                   "Filename=" + Folder() + "elsewhere/out.txt\r\nCSV\r\nH_ORDCODE\r\n");
    GivenActivity("Evening.xpm", "Gone.xor", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.ExpectBeginning(T("Error opening Export file defined in Gone.xor!")).With(Icon::Warning);
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_TRUE(Succeeded(form, 2));
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
    EXPECT_EQ(Bytes(Global.DataOutPath + "out.txt"), "A1\r\nA2\r\n");
    EXPECT_FALSE(Exists(Folder() + "elsewhere"));
}

TEST_F(QuickButtons, ATemplateWithoutAFileNameLineIsAnOldOne) {
    WriteWholeFile(Global.ExportTemplates + "Old.xor", "CSV\r\nH_ORDCODE\r\n");
    GivenActivity("Evening.xpm", "Old.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_
        .Expect(T("Error opening Export file defined in Old.xor! Please make sure the file exists or that "
                  "this is not "
                  "an old template file."))
        .With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
}

TEST_F(QuickButtons, AnExportTemplateWithoutColumnsIsNotRunAndNothingIsDeleted) {
    GivenOrders();
    GivenExportTemplate("Orders.xor", "out.txt", {});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.ExpectBeginning(T("Error opening Export file defined in Orders.xor!")).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_FALSE(Exists(Global.DataOutPath + "out.txt"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
}

TEST_F(QuickButtons, AnExportFileThatCannotBeOpenedIsToldAndFailsTheRow) {
    GivenOrders();
    std::filesystem::create_directories(Global.DataOutPath + "out.txt");
    GivenExportTemplate("Orders.xor", "out.txt", {"H_ORDCODE"});
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.ExpectBeginning(msg::ExportFileCannotBeOpened).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(Succeeded(form, 1));
    EXPECT_EQ(TextOf(form, "lblSST_1"), QStringLiteral("0 of 2"));
}

TEST_F(QuickButtons, ARepeatedOrderIsAskedAboutWhenTheTemplateWantsTheCheck) {
    GivenRows("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A1|First", "A1|Second"});
    GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY", "A1|1"});
    ExportTemplate content;
    content.FileName = "out.txt";
    content.Delimiter = Delimiter::Csv;
    content.QualityCheck = true;
    content.Columns = {"H_BILLNAME"};
    WriteExportTemplate(Global.ExportTemplates + "Orders.xor", content);
    GivenActivity("Evening.xpm", "Orders.xor");
    auto& form = Run<frmQBExport>("Evening");
    Operator_.Expect(msg::DuplicateOrders).With(Icon::Question).Answer(Answer::Yes);
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Global.DataOutPath + "out.txt"), "First\r\n");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "QUALCHECK");
}

} // namespace
