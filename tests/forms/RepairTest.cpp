#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/HeadLines.h"
#include "exchange/ImportTemplate.h"
#include "exchange/forms/frmConvert.h"
#include "exchange/forms/frmExport1.h"
#include "exchange/forms/frmImport1.h"
#include "forms/FormTest.h"
#include "support/RefusingDisk.h"
#include "tools/forms/frmOptions.h"

#include <QTabWidget>
#include <QTest>

namespace {

/// Screens as the report of the Quality Check opens them, for one template.
class Repair : public FormTest {
protected:
    Repair() {
        GivenOffice();
        Global.IniFile = Global.AppPath + "ZUKTramble.ini";
        GivenFile("app/DataIn/new.txt", "A\tB\tC\tD\r\n1\t2\t3\t4\r\n");
    }

    template <class F>
    F& OpenFor(const std::string& name) {
        Global.QCViewMode = true;
        Global.QCViewRecords = name;
        return Open<F>();
    }

    static ImportTemplate Mapping() {
        ImportTemplate content;
        content.DataFile = "gone.csv";
        content.Delimiter = Delimiter::CsvQuotes;
        content.StartLine = "3";
        content.Fields = {"I_ITEMCODE; I_SEARCH", "Ignore", "NO_FIELD"};
        content.Literals = {"I_UM = each"};
        return content;
    }

    static const std::string& GivenItems(const std::string& name) {
        static std::string path;
        path = Global.ImportTemplates + name;
        WriteImportTemplate(path, Mapping());
        return path;
    }
};

// ---- import templates ----

TEST_F(Repair, AnImportTemplateIsRepairedOnTheScreenThatAsksForAFile) {
    GivenItems("Items & more.ITM");

    auto& form = OpenFor<frmConvert>("Items & more.ITM");

    EXPECT_EQ(
        TextOf(form, "lblHelp"),
        Q("1. Select an import file from the list and click 'Ok' to save the new filename to the template "
          "(Items & more.ITM), or \n2. Click 'Cancel' to delete this template."));
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "optItem")).isChecked());
    EXPECT_FALSE(Enabled(form, "optItem"));
    EXPECT_FALSE(Enabled(form, "optCustomer"));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(Repair, OkSavesTheNewFileNameAndKeepsTheMappingWhateverColumnsTheFileHas) {
    const std::string path = GivenItems("Items.itm");
    auto& form = OpenFor<frmConvert>("Items.itm");
    Select(form, "filFiles", {Q("new.txt")});

    Click(form, "cmdOK");

    ImportTemplate expected = Mapping();
    expected.DataFile = "new.txt";
    const ImportTemplate read = ReadImportTemplate(path).Template;
    EXPECT_EQ(read.DataFile, expected.DataFile);
    EXPECT_EQ(read.Delimiter, expected.Delimiter);
    EXPECT_EQ(read.StartLine, expected.StartLine);
    EXPECT_EQ(read.Fields, expected.Fields);
    EXPECT_EQ(read.Literals, expected.Literals);
    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
    EXPECT_EQ(Global.QCViewRecords, "");
}

TEST_F(Repair, ACustomerTemplateWithAnAccentInItsNameIsRepairedToo) {
    const std::string path = Global.ImportTemplates + "Caf\xC3\xA9.cst";
    ImportTemplate content = Mapping();
    content.Fields = {"C_CODE"};
    WriteImportTemplate(path, content);
    auto& form = OpenFor<frmConvert>("Caf\xE9.cst");
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "optCustomer")).isChecked());
    Select(form, "filFiles", {Q("new.txt")});

    Click(form, "cmdOK");

    EXPECT_EQ(ReadImportTemplate(path).Template.DataFile, "new.txt");
}

TEST_F(Repair, AFileThatIsNoDataFileIsToldAndAnotherCanBeChosen) {
    const std::string path = GivenItems("Items.itm");
    GivenFile("app/DataIn/letter.txt", "Dear Sirs\r\n");
    auto& form = OpenFor<frmConvert>("Items.itm");
    Select(form, "filFiles", {Q("letter.txt")});
    Operator_.ExpectBeginning(msg::InvalidFormat).With(Icon::Stop);
    Click(form, "cmdOK");
    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(ReadImportTemplate(path).Template.DataFile, "gone.csv");
    Select(form, "filFiles", {Q("new.txt")});

    Click(form, "cmdOK");

    EXPECT_EQ(ReadImportTemplate(path).Template.DataFile, "new.txt");
}

TEST_F(Repair, ATemplateThatCannotBeWrittenIsToldAndStaysAsItWas) {
    const std::string path = GivenItems("Items.itm");
    const std::string before = Bytes(path);
    RefusingDisk disk(path, Access::Create);
    auto& form = OpenFor<frmConvert>("Items.itm");
    Select(form, "filFiles", {Q("new.txt")});
    Operator_.ExpectBeginning(msg::TemplateNotSaved).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(path), before);
    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
}

TEST_F(Repair, ATemplateOfWhichOnlyAPartCanBeReadIsNotWrittenWithThatPart) {
    const std::string path = GivenItems("Items.itm");
    auto& form = OpenFor<frmConvert>("Items.itm");
    Select(form, "filFiles", {Q("new.txt")});
    const std::string broken = Bytes(path) + std::string(std::size_t{2} << 20, 'x');
    WriteWholeFile(path, broken);
    Operator_.Expect(T("Error opening Items.itm. Please make sure the file exists.")).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(path), broken);
    EXPECT_FALSE(form.IsGone());
}

TEST_F(Repair, CancelDeletesTheTemplateAndWhatIsRememberedOfItsFile) {
    const std::string path = GivenItems("Items.itm");
    RememberHeadLines(path, ReadHeadLines(Global.DataInPath + "new.txt", 2));
    ASSERT_TRUE(Exists(path + ".head"));
    auto& form = OpenFor<frmConvert>("Items.itm");

    Click(form, "cmdCancel");

    EXPECT_FALSE(Exists(path));
    EXPECT_FALSE(Exists(path + ".head"));
    EXPECT_TRUE(form.IsGone());
}

TEST_F(Repair, ATemplateThatCannotBeDeletedIsToldAndTheScreenClosesAllTheSame) {
    const std::string path = GivenItems("Items.itm");
    KeepingDisk disk("Items.itm");
    auto& form = OpenFor<frmConvert>("Items.itm");
    Operator_.ExpectBeginning(T("Could not delete Items.itm! "));
    Global.TheDisk = &disk;

    Click(form, "cmdCancel");

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(Exists(path));
    EXPECT_TRUE(form.IsGone());
}

TEST_F(Repair, EnterOnTheFreshScreenDeletesNothing) {
    const std::string path = GivenItems("Items.itm");
    auto& form = OpenFor<frmConvert>("Items.itm");
    EXPECT_EQ(form.focusWidget(), &Control(form, "filFiles"));

    QTest::keyClick(form.focusWidget(), Qt::Key_Return);

    EXPECT_FALSE(form.IsGone());
    EXPECT_TRUE(Exists(path));
}

TEST_F(Repair, EscAndTheWindowsCrossDeleteNothing) {
    const std::string path = GivenItems("Items.itm");
    for (const bool escape : {true, false}) {
        auto& form = OpenFor<frmConvert>("Items.itm");

        if (escape)
            QTest::keyClick(&form, Qt::Key_Escape);
        else
            form.close();

        EXPECT_TRUE(form.IsGone());
        EXPECT_TRUE(Exists(path));
        Settle();
    }
}

TEST_F(Repair, AnImportThatIsOpenedWhileTheReportStandsIsNoRepair) {
    const std::string path = GivenItems("Items.itm");
    OpenFor<frmConvert>("Items.itm").Unload();
    auto& form = Open<frmConvert>();
    EXPECT_TRUE(Enabled(form, "optCustomer"));

    Click(form, "cmdCancel");

    EXPECT_TRUE(Exists(path));
}

TEST_F(Repair, NothingElseIsTakenForATemplateToRepair) {
    GivenFile("app/Items.itm", "x");
    for (const char* name :
         {"../../Items.itm", "..\\..\\Items.itm", "1, 2, 3", "Orders.xor", "", "Items.itm.txt"}) {
        auto& form = OpenFor<frmConvert>(name);
        EXPECT_TRUE(Enabled(form, "optItem")) << name;

        Click(form, "cmdCancel");
    }
    EXPECT_TRUE(Exists(Global.AppPath + "Items.itm"));

    Global.QCViewMode = false;
    Global.QCViewRecords = "DemoItems.itm";
    Click(Open<frmConvert>(), "cmdCancel");
    EXPECT_TRUE(Exists(Global.ImportTemplates + "DemoItems.itm"));
}

// ---- export templates ----

class ExportRepair : public Repair {
protected:
    ExportRepair() {
        ExportTemplate content;
        content.Delimiter = Delimiter::Tab;
        content.AddHeadings = true;
        content.Columns = {"H_ORDCODE", "L_QTY * [2]"};
        WriteExportTemplate(path_, content);
    }

    const std::string path_ = Global.ExportTemplates + "Nameless.xor";
};

TEST_F(ExportRepair, TheTemplateIsChosenAndTheFileNameIsWhatIsAskedFor) {
    auto& form = OpenFor<frmExport1>("Nameless.xor");

    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Nameless"));
    EXPECT_EQ(Rows(form, "lstSelected"), (QStringList{Q("H_ORDCODE"), Q("L_QTY * [2]")}));
    EXPECT_EQ(form.focusWidget(), &Control(form, "txtExpFile"));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(ExportRepair, OkSavesTheTemplateAndExportsNothing) {
    auto& form = OpenFor<frmExport1>("Nameless.xor");
    Type(form, "txtExpFile", Q("orders.txt"));

    Click(form, "cmdOK");

    const ExportTemplate read = ReadExportTemplate(path_).Template;
    EXPECT_EQ(read.FileName, "orders.txt");
    EXPECT_EQ(read.Delimiter, Delimiter::Tab);
    EXPECT_TRUE(read.AddHeadings);
    EXPECT_EQ(read.Columns, (std::vector<std::string>{"H_ORDCODE", "L_QTY * [2]"}));
    EXPECT_TRUE(form.IsGone());
    EXPECT_FALSE(Exists(Global.DataOutPath + "orders.txt"));
}

TEST_F(ExportRepair, CancelLeavesTheTemplate) {
    const std::string before = Bytes(path_);
    auto& form = OpenFor<frmExport1>("Nameless.xor");
    Type(form, "txtExpFile", Q("orders.txt"));

    Click(form, "cmdCancel");

    EXPECT_EQ(Bytes(path_), before);
}

// ---- activities and unattended settings ----

TEST_F(Repair, AnActivityIsChosenInItsGroup) {
    for (const auto& [extension, box] :
         {std::pair{".ipm", "cboImpAct"}, {".xpm", "cboExpAct"}, {".ctm", "cboPCAct"}}) {
        WriteActivity(Global.QuickButtonTemplates + "Blank" + extension, {});

        auto& form = OpenFor<frmOptions>(std::string("Blank") + extension);

        EXPECT_EQ(TextOf(form, box), Q("Blank"));
        EXPECT_EQ(form.focusWidget(), &Control(form, box));
        Click(form, "cmdCancel");
        EXPECT_EQ(Global.QCViewRecords, "");
        EXPECT_TRUE(Exists(Global.QuickButtonTemplates + "Blank" + extension));
    }
}

TEST_F(Repair, UnattendedSettingsAreChosenAndShown) {
    SaveUA(Global.UnattendedTemplates + "Evening.uhs", {false, "", true, "Gone", false, ""});

    auto& form = OpenFor<frmOptions>("Evening.uhs");

    EXPECT_EQ(TextOf(form, "cboRemoteSettings"), Q("Evening"));
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "optUploadSelect")).isChecked());
    EXPECT_EQ(dynamic_cast<QTabWidget&>(Control(form, "SSTab1")).currentIndex(), 1);
}

} // namespace
