#include "core/Messages.h"
#include "core/SafeFile.h"
#include "exchange/ExportTemplate.h"
#include "exchange/forms/frmExport1.h"
#include "forms/FormTest.h"
#include "program/forms/frmMain1.h"
#include "store/TableScan.h"

#include <QComboBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStatusBar>

#include <filesystem>

namespace {

class ExportScreen : public FormTest {
protected:
    using Keys = std::vector<std::string>;

    ExportScreen() {
        GivenOffice();
        GivenRows("ZUKOrHdr", {"H_ORDCODE|H_ORDDATE|H_BILLNAME", "A2|20261103|Bolt", "A1|20261102|Acme"});
        GivenRows("ZUKOrLin",
                  {"L_ORDCODE|L_KEY|L_QTY|L_TOTPRICE", "A2|A2-1|3|9", "A1|A1-2|2|4", "A1|A1-1|1|2.5"});
    }

    static void Add(FormBehaviour& form, const QStringList& fields) {
        for (const QString& field : fields) {
            Select(form, "lstAvailable", {field});
            Click(form, "cmdAdd1");
        }
    }

    static QString Preview(FormBehaviour& form) {
        return dynamic_cast<QPlainTextEdit&>(Control(form, "rtbText")).toPlainText();
    }

    void ExpectEnd(const std::string& count, Answer deletion = Answer::No) {
        Operator_.Expect(T(count + " records successfully exported!")).With(Icon::None);
        Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote))
            .With(Icon::Question)
            .Answer(deletion);
    }

    static std::string Exported(const std::string& file) { return ReadWholeFile(Global.DataOutPath + file); }

    static Keys KeysOf(const std::string& table, const std::string& field) {
        Keys codes;
        for (int k = 1; k <= RecordCount(table); ++k) codes.push_back(Cell(table, k, field));
        return codes;
    }
};

TEST_F(ExportScreen, ListsTheFieldsOfTheHeadersAndThenThoseOfTheLines) {
    auto& form = Open<frmExport1>();

    const QStringList fields = Rows(form, "lstAvailable");

    EXPECT_EQ(form.windowTitle(), Q("Sales Orders"));
    EXPECT_EQ(fields.value(0), Q("H_ORDCODE"));
    EXPECT_LT(fields.indexOf(Q("H_TIME2")), fields.indexOf(Q("L_ORDCODE")));
    EXPECT_EQ(fields.size(), 56 + 17);
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(ExportScreen, OkNeedsAFileAndAColumn) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    EXPECT_FALSE(Enabled(form, "cmdOK"));

    Type(form, "txtExpFile", Q("out"));
    EXPECT_TRUE(Enabled(form, "cmdOK"));
    Click(form, "cmdRemoveAll");

    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(ExportScreen, ExportsInTheOrderOfTheTablesAndLeavesThem) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE"), Q("L_QTY")});
    Type(form, "txtExpFile", Q("out"));
    Click(form, "optTAB");
    dynamic_cast<QAbstractButton&>(Control(form, "chkHeader")).click();
    ExpectEnd("3 of 3");

    Click(form, "cmdOK");

    EXPECT_EQ(Exported("out.txt"), "H_ORDCODE\tL_QTY\r\nA2\t3\r\nA1\t2\r\nA1\t1\r\n");
    EXPECT_EQ(IfLoaded<frmExport1>(), nullptr);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_TRUE(Global.RefreshTotals);
}

TEST_F(ExportScreen, TheFootOfTheMainScreenSaysWhereTheFileLies) {
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("out"));
    ExpectEnd("2 of 2");

    Click(form, "cmdOK");

    const auto& outcome = dynamic_cast<QStatusBar&>(Control(main, "sbrOutcome"));
    EXPECT_EQ(outcome.currentMessage().toStdString(), "Written: " + Global.DataOutPath + "out.csv");
}

TEST_F(ExportScreen, ThePreviewShowsTheFirstLinesAsTheyWouldComeOut) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE"), Q("H_BILLNAME")});
    EXPECT_EQ(Preview(form), Q("\"A2\",\"Bolt\"\n\"A1\",\"Acme\""));

    Click(form, "optCSV");
    dynamic_cast<QAbstractButton&>(Control(form, "chkHeader")).click();

    EXPECT_EQ(Preview(form), Q("H_ORDCODE,H_BILLNAME\nA2,Bolt\nA1,Acme"));
}

TEST_F(ExportScreen, ADateIsAskedForItsFormat) {
    auto& form = Open<frmExport1>();
    Operator_.Expect(msg::DateFormatQuestion).Type("dd.mm.yyyy");
    Operator_.Expect(msg::DateFormatQuestion).Type("");

    Add(form, {Q("H_ORDDATE"), Q("H_SHIPDATE")});

    EXPECT_EQ(Rows(form, "lstSelected"),
              (QStringList{Q("H_ORDDATE Format: dd.mm.yyyy"), Q("H_SHIPDATE Format: mmddyyyy")}));
}

TEST_F(ExportScreen, ACalculationIsBuiltOfAnOperatorAndAField) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("L_QTY")});
    EXPECT_FALSE(Visible(form, "cmdPlus"));

    Click(form, "cmdCalc");
    EXPECT_FALSE(Visible(form, "cmdCalc"));
    Click(form, "cmdMultiply");
    EXPECT_FALSE(Enabled(form, "cmdLiteral")) << "an operand is awaited";
    Add(form, {Q("L_TOTPRICE")});

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{Q("L_QTY * L_TOTPRICE")});
    EXPECT_TRUE(Visible(form, "cmdCalc"));
    EXPECT_EQ(Preview(form), Q("27\n8\n2.5"));
}

TEST_F(ExportScreen, ANumberIsAnOperandOrAColumnAndNothingElseIs) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("L_QTY")});
    Click(form, "cmdCalc");
    Type(form, "txtVal", Q("many"));
    Click(form, "cmdVal");
    EXPECT_EQ(Rows(form, "lstSelected").size(), 1);

    Type(form, "txtVal", Q("7"));
    Click(form, "cmdVal");
    Select(form, "lstSelected", {Q("L_QTY")});
    Click(form, "cmdMinus");
    Type(form, "txtVal", Q("0.5"));
    Click(form, "cmdVal");

    EXPECT_EQ(Rows(form, "lstSelected"), (QStringList{Q("L_QTY - [0.5]"), Q("[7]")}));
    EXPECT_EQ(TextOf(form, "txtVal"), QString());
}

TEST_F(ExportScreen, EnterInTheNumberAddsItAndExportsNothing) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("L_QTY")});
    Type(form, "txtExpFile", Q("out"));
    Click(form, "cmdCalc");
    Click(form, "cmdMultiply");
    Type(form, "txtVal", Q("2"));

    Press(form, "txtVal", Qt::Key_Return);

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{Q("L_QTY * [2]")});
    EXPECT_TRUE(Control(form, "lstAvailable").hasFocus());
    EXPECT_TRUE(std::filesystem::is_empty(Global.DataOutPath));
}

TEST_F(ExportScreen, RemovingARowByKeyNeverLeadsToRemovingAll) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE"), Q("L_QTY")});
    EXPECT_TRUE(Control(form, "lstAvailable").hasFocus());
    Select(form, "lstSelected", {Q("L_QTY")});

    Press(form, "cmdRemove1", Qt::Key_Space);

    EXPECT_TRUE(Control(form, "lstSelected").hasFocus());
    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{Q("H_ORDCODE")});
}

TEST_F(ExportScreen, ATemplateSurvivesASaveAndAReloadUnchanged) {
    {
        auto& form = Open<frmExport1>();
        Add(form, {Q("L_QTY")});
        Click(form, "cmdCalc");
        Click(form, "cmdMultiply");
        Type(form, "txtVal", Q("2"));
        Click(form, "cmdVal");
        Operator_.Expect(msg::LiteralQuestion).Type("a + b");
        Click(form, "cmdLiteral");
        Type(form, "txtExpFile", Q("out.txt"));
        Click(form, "optTAB");
        dynamic_cast<QAbstractButton&>(Control(form, "chkQC")).click();
        Type(form, "cboSettings", Q("Mine"));
        Click(form, "cmdSaveSettings");
        Click(form, "cmdCancel");
    }
    EXPECT_EQ(
        ReadWholeFile(Global.ExportTemplates + "Mine.xor"),
        "Filename=out.txt\r\nTAB\r\nSort Orders0\r\nAdd Blank Line between Orders0\r\nQuality Check1\r\n"
        "HDR=0\r\nL_QTY * [2]\r\nLiteral = a + b\r\n");
    auto& form = Open<frmExport1>();

    Choose(form, "cboSettings", Q("Mine"));

    EXPECT_EQ(Rows(form, "lstSelected"), (QStringList{Q("L_QTY * [2]"), Q("Literal = a + b")}));
    EXPECT_EQ(TextOf(form, "txtExpFile"), Q("out.txt"));
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "optTAB")).isChecked());
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "chkQC")).isChecked());
    EXPECT_FALSE(dynamic_cast<QAbstractButton&>(Control(form, "chkSort")).isChecked());
}

TEST_F(ExportScreen, ANameThatIsSavedTwiceReplacesTheFileAndIsListedOnce) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "cboSettings", Q("Mine"));
    Click(form, "cmdSaveSettings");
    Add(form, {Q("H_BILLNAME")});

    Click(form, "cmdSaveSettings");

    const auto& box = dynamic_cast<QComboBox&>(Control(form, "cboSettings"));
    int listed = 0;
    for (int k = 0; k < box.count(); ++k) listed += box.itemText(k) == Q("Mine") ? 1 : 0;
    EXPECT_EQ(listed, 1);
    EXPECT_NE(ReadWholeFile(Global.ExportTemplates + "Mine.xor").find("H_BILLNAME"), std::string::npos);
}

TEST_F(ExportScreen, ATemplateNeedsANameAndAColumn) {
    auto& form = Open<frmExport1>();
    Operator_.Expect(msg::TypeTemplateName).With(Icon::Warning);
    Click(form, "cmdSaveSettings");
    EXPECT_TRUE(Control(form, "cboSettings").hasFocus());
    Type(form, "cboSettings", Q("Mine"));
    Operator_.Expect(msg::NothingToExport).With(Icon::Warning);

    Click(form, "cmdSaveSettings");

    EXPECT_TRUE(Control(form, "lstAvailable").hasFocus());
    EXPECT_FALSE(Exists(Global.ExportTemplates + "Mine.xor"));
}

TEST_F(ExportScreen, DeletingATemplateRemovesItsFileItsNameAndTheColumns) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "cboSettings", Q("Mine"));
    Click(form, "cmdSaveSettings");

    Click(form, "cmdDelSettings");

    EXPECT_FALSE(Exists(Global.ExportTemplates + "Mine.xor"));
    EXPECT_EQ(dynamic_cast<QComboBox&>(Control(form, "cboSettings")).findText(Q("Mine")), -1);
    EXPECT_EQ(Rows(form, "lstSelected"), QStringList());
}

TEST_F(ExportScreen, OrphanLinesAreToldBehindTheCount) {
    GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY|L_QTY", "A1|1|2", "ZZ|2|3"});
    auto& form = Open<frmExport1>();
    Add(form, {Q("L_QTY")});
    Type(form, "txtExpFile", Q("out"));
    Operator_.Expect(T("1 of 2 records successfully exported!"));
    Operator_.Expect(T("1 records in the Order Lines table appear to have no corresponding Header records!"))
        .With(Icon::Information);
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(Exported("out.csv"), "2\r\n");
}

TEST_F(ExportScreen, YesAtTheDeletionBacksUpRecordsTheEventAndLeavesTheTables) {
    Global.Clock = [] { return DateTime{2026, 11, 15, 2, 36, 7}; };
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("out"));
    ExpectEnd("2 of 2", Answer::Yes);

    Click(form, "cmdOK");

    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023607/Backup.txt")[0], "EXPORT");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "EXPORT");
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(RecordCount("ZUKOrLin"), 3);
}

TEST_F(ExportScreen, AnEventThatCannotBeRecordedIsToldAndTheExportStands) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("out"));
    Operator_.Expect(T("2 of 2 records successfully exported!"));
    Operator_.Expect(::Lines(msg::DeleteExported, msg::DeleteExportedNote)).Answer(Answer::Yes).Then([] {
        WriteWholeFile(Global.DBFPath + "ZUKTotalPC.dbf", "no table");
    });
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(Exported("out.csv"), "\"A2\"\r\n\"A1\"\r\n");
}

TEST_F(ExportScreen, AFileThatCannotBeOpenedIsToldAndTheScreenStays) {
    std::filesystem::create_directory(Global.DataOutPath + "out.csv");
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("out"));
    Operator_.ExpectBeginning(msg::ExportFileCannotBeOpened).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmExport1>(), &form);
    EXPECT_TRUE(Enabled(form, "cmdOK"));
    EXPECT_TRUE(Enabled(form, "cmdCancel"));
}

TEST_F(ExportScreen, AFileOutsideTheFolderIsRefused) {
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("../out"));
    Operator_.ExpectBeginning(msg::ExportStopped).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(Exists(Global.AppPath + "out.csv"));
}

TEST_F(ExportScreen, KeepingTemplatesAsksBeforeItExports) {
    Global.TemplateEditMode = true;
    auto& form = Open<frmExport1>();
    Add(form, {Q("H_ORDCODE")});
    Type(form, "txtExpFile", Q("out"));
    Type(form, "cboSettings", Q("Mine"));
    Operator_.Expect(msg::ExportNow).With(Icon::Question).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_TRUE(Exists(Global.ExportTemplates + "Mine.xor"));
    EXPECT_FALSE(Exists(Global.DataOutPath + "out.csv"));
    EXPECT_EQ(IfLoaded<frmExport1>(), nullptr);
}

// ---- sorts and the order check ----

class ExportChecks : public ExportScreen {
protected:
    ExportChecks() {
        Global.Clock = [] { return DateTime{2026, 11, 15, 2, 36, 7}; };
        // Order A1 was uploaded twice.
        GivenRows("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A2|Bolt", "A1|Acme", "A1|Acme"});
        GivenRows("ZUKOrLin",
                  {"L_ORDCODE|L_KEY|L_QTY", "A2|A2-1|3", "A1|A1-1|1", "A1|A1-2|2", "A1|A1-1|1", "A1|A1-2|2"});
    }

    FormBehaviour& Ready(const char* box) {
        auto& form = Open<frmExport1>();
        Add(form, {Q("H_ORDCODE"), Q("L_KEY")});
        Type(form, "txtExpFile", Q("out"));
        Click(form, "optCSV");
        dynamic_cast<QAbstractButton&>(Control(form, box)).click();
        return form;
    }

    const Keys sortedHeaders_{"A1", "A1", "A2"};
    const Keys sortedLines_{"A1-1", "A1-1", "A1-2", "A1-2", "A2-1"};
};

TEST_F(ExportChecks, SortingLeavesBothTablesInTheOrderOfTheirKeys) {
    auto& form = Ready("chkSort");
    ExpectEnd("5 of 5");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), sortedHeaders_);
    EXPECT_EQ(KeysOf("ZUKOrLin", "L_KEY"), sortedLines_);
    EXPECT_EQ(Exported("out.csv"), "A1,A1-1\r\nA1,A1-1\r\nA1,A1-2\r\nA1,A1-2\r\nA2,A2-1\r\n");
}

TEST_F(ExportChecks, OrdersThatComeInWhileTheScreenIsOpenAreSortedInAndExported) {
    auto& form = Ready("chkSort");
    GivenRows("ZUKOrHdr", {"H_ORDCODE", "B1", "A2"});
    GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY", "B1|B1-1", "A2|A2-1"});
    ExpectEnd("2 of 2");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), (Keys{"A2", "B1"}));
    EXPECT_EQ(Exported("out.csv"), "A2,A2-1\r\nB1,B1-1\r\n");
}

TEST_F(ExportChecks, YesLeavesOneSetOfTheOrderAndABackupWithBoth) {
    auto& form = Ready("chkQC");
    Operator_.Expect(msg::DuplicateOrders).With(Icon::Question).Answer(Answer::Yes);
    ExpectEnd("3 of 3");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), (Keys{"A1", "A2"}));
    EXPECT_EQ(KeysOf("ZUKOrLin", "L_KEY"), (Keys{"A1-1", "A1-2", "A2-1"}));
    EXPECT_EQ(Exported("out.csv"), "A1,A1-1\r\nA1,A1-2\r\nA2,A2-1\r\n");
    const std::string backup = Global.BackupPath + "61115023607/";
    EXPECT_EQ(EngineTest::Lines(backup + "Backup.txt")[0], "QUALCHECK");
    EXPECT_EQ(TableScan(backup + "ZUKOrHdr.dbf").RecordCount(), 3);
    EXPECT_EQ(TableScan(backup + "ZUKOrLin.dbf").RecordCount(), 5);
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "QUALCHECK");
}

TEST_F(ExportChecks, WhereOrdersCannotBePutBackNoFileIsWrittenThatLacksThem) {
    auto& form = Ready("chkQC");
    WriteWholeFile(Global.DBFPath + "ZUKOrLin.dap", "no table");
    WriteWholeFile(Global.DBFPath + "SafetyCopies.txt", "");
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::CopiesNotPutBack)).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(Exists(Global.DataOutPath + "out.csv"));
    EXPECT_FALSE(form.IsGone());
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(ExportChecks, NoAtEveryQuestionLeavesBothTablesSortedAndExportsTheRepeats) {
    auto& form = Ready("chkQC");
    for (int repeat = 0; repeat < 3; ++repeat) Operator_.Expect(msg::DuplicateOrders).Answer(Answer::No);
    ExpectEnd("5 of 5");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), sortedHeaders_);
    EXPECT_EQ(KeysOf("ZUKOrLin", "L_KEY"), sortedLines_);
    EXPECT_EQ(Exported("out.csv"), "A1,A1-1\r\nA1,A1-1\r\nA1,A1-2\r\nA1,A1-2\r\nA2,A2-1\r\n");
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);
    EXPECT_TRUE(std::filesystem::is_empty(Global.BackupPath));
}

TEST_F(ExportChecks, NoForTheHeadersAndYesForTheLinesRemovesThoseThatFollow) {
    auto& form = Ready("chkQC");
    Operator_.Expect(msg::DuplicateOrders).Answer(Answer::No);
    Operator_.Expect(msg::DuplicateOrders).Answer(Answer::Yes);
    ExpectEnd("3 of 3");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), sortedHeaders_);
    EXPECT_EQ(KeysOf("ZUKOrLin", "L_KEY"), (Keys{"A1-1", "A1-2", "A2-1"}));
}

TEST_F(ExportChecks, ABackupThatFailsIsToldAndTheRepeatsGoAllTheSame) {
    std::filesystem::remove_all(Global.BackupPath);
    WriteWholeFile(Global.AppPath + "Backup", "a file where the folder should be");
    auto& form = Ready("chkQC");
    Operator_.Expect(msg::DuplicateOrders).Answer(Answer::Yes);
    const Text why =
        T("Path/File access error: " + Global.BackupPath.substr(0, Global.BackupPath.size() - 1));
    Operator_.ExpectBeginning(::Lines(::Lines(msg::FileError, msg::CannotBackUp), why)).With(Icon::Stop);
    ExpectEnd("3 of 3");

    Click(form, "cmdOK");

    EXPECT_EQ(KeysOf("ZUKOrHdr", "H_ORDCODE"), (Keys{"A1", "A2"}));
}

} // namespace
