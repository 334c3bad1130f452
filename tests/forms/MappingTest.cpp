#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/HeadLines.h"
#include "exchange/ImportTemplate.h"
#include "exchange/forms/frmConvert.h"
#include "exchange/forms/frmImport1.h"
#include "forms/FormTest.h"
#include "platform/Convert.h"
#include "program/forms/frmMain1.h"
#include "support/ForeignTexts.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QTableView>
#include <QTimer>
#include <QWheelEvent>

#include <filesystem>

namespace {

QString Caption(MessageId entry) {
    return QString::fromStdString(CatalogueText(entry));
}

/// Opens the mapping screen as the menu does: by way of the screen that asks for the file.
class Mapping : public FormTest {
protected:
    Mapping() { GivenOffice(); }

    void GivenData(const std::string& name, const std::string& content) {
        GivenFile("app/DataIn/" + name, content);
    }

    frmImport1& OpenFor(const QString& file, const char* option = "optCustomer") {
        auto& convert = Open<frmConvert>();
        Select(convert, "filFiles", {file});
        Click(convert, option);
        EXPECT_TRUE(Enabled(convert, "cmdOK"));
        return Open<frmImport1>();
    }

    /// Opens the screen to keep templates.
    frmImport1& OpenToEdit(const char* kind = "") {
        Global.TemplateEditMode = true;
        Global.TemplateEditKind = kind;
        return Open<frmImport1>();
    }

    /// The same, with a template of items chosen and a name for a copy of it typed.
    frmImport1& OpenToCopyItems() {
        GivenData("i.csv", "I1,Nail\n");
        GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
        auto& form = OpenToEdit();
        Choose(form, "cboSettings", QStringLiteral("A.itm"));
        Type(form, "cboSettings", QStringLiteral("Copy"));
        return form;
    }

    static void Add(FormBehaviour& form, const QStringList& fields) {
        for (const QString& field : fields) {
            Select(form, "lstAvailable", {field});
            Click(form, "cmdAdd1");
        }
    }

    static QStringList SavedSettings(FormBehaviour& form) {
        const auto& box = dynamic_cast<QComboBox&>(Control(form, "cboSettings"));
        QStringList names;
        for (int k = 0; k < box.count(); ++k) names << box.itemText(k);
        return names;
    }

    void ExpectImported(const std::string& count) {
        Operator_.Expect(T(count + " lines successfully imported!")).With(Icon::None);
    }

    static std::string TemplateOf(const std::string& file) {
        return ReadWholeFile(Global.ImportTemplates + file);
    }

    void GivenTemplate(const std::string& file, const std::string& dataFile,
                       const std::vector<std::string>& fields, const std::string& startLine = "1") {
        ImportTemplate content;
        content.DataFile = dataFile;
        content.Delimiter = Delimiter::Csv;
        content.StartLine = startLine;
        content.Fields = fields;
        WriteImportTemplate(Global.ImportTemplates + file, content);
    }
};

// ---- choosing the file ----

TEST_F(Mapping, AFileAndATableMustBeChosenBeforeItGoesOn) {
    GivenData("c.csv", "A1,Acme\n");
    auto& form = Open<frmConvert>();
    EXPECT_EQ(Rows(form, "filFiles"), QStringList{QStringLiteral("c.csv")});
    EXPECT_FALSE(Enabled(form, "cmdOK"));

    Click(form, "optItem");
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    Select(form, "filFiles", {QStringLiteral("c.csv")});

    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(Mapping, AFolderWithoutFilesSaysWhatToDo) {
    auto& form = Open<frmConvert>();

    EXPECT_FALSE(Visible(form, "filFiles"));
    EXPECT_TRUE(TextOf(form, "lblNoFiles").contains(QString::fromStdString(Global.DataInPath)));
}

TEST_F(Mapping, AFolderThatIsGoneIsMadeAgainAndTold) {
    std::filesystem::remove_all(Global.DataInPath);
    Operator_.ExpectBeginning(msg::DataInUnavailable).With(Icon::Information);

    Open<frmConvert>();

    EXPECT_TRUE(Exists(Global.DataInPath));
}

TEST_F(Mapping, AFolderThatCannotBeMadeIsToldAndNothingOpens) {
    std::filesystem::remove_all(Global.DataInPath);
    WriteWholeFile(Global.AppPath + "DataIn", "a file where the folder should be");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Open<frmConvert>();

    EXPECT_EQ(IfLoaded<frmConvert>(), nullptr);
    EXPECT_FALSE(Global.Ending);
}

TEST_F(Mapping, OkOpensTheMappingAndClosesBehindIt) {
    GivenData("c.csv", "A1,Acme\n");
    auto& convert = Open<frmConvert>();
    Select(convert, "filFiles", {QStringLiteral("c.csv")});
    Click(convert, "optCustomer");
    QTimer::singleShot(0, &convert, [this] {
        auto* mapping = IfLoaded<frmImport1>();
        ASSERT_NE(mapping, nullptr);
        EXPECT_EQ(TextOf(*mapping, "lblPreview"), QStringLiteral("Contents of c.csv"));
        mapping->Unload();
    });

    Click(convert, "cmdOK");

    EXPECT_EQ(IfLoaded<frmConvert>(), nullptr);
}

TEST_F(Mapping, AFileWithNoCommaOrTabCannotBeImported) {
    GivenData("c.txt", "just\nwords\n");
    auto& convert = Open<frmConvert>();
    Select(convert, "filFiles", {QStringLiteral("c.txt")});
    Click(convert, "optCustomer");
    Operator_.Expect(::Lines(msg::InvalidFormat, T(Global.DataInPath + "c.txt"))).With(Icon::Stop);

    Click(convert, "cmdOK");

    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
    EXPECT_NE(IfLoaded<frmConvert>(), nullptr) << "another file can be chosen";
}

TEST_F(Mapping, AFileThatHasGoneMeanwhileClosesTheMapping) {
    GivenData("c.csv", "A1,Acme\n");
    auto& convert = Open<frmConvert>();
    Select(convert, "filFiles", {QStringLiteral("c.csv")});
    Click(convert, "optCustomer");
    std::filesystem::remove(Global.DataInPath + "c.csv");
    Operator_.ExpectBeginning(msg::ImportFileUnreadable).With(Icon::Warning);

    Click(convert, "cmdOK");

    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
}

// ---- what it shows ----

TEST_F(Mapping, TheRowOfIgnoredColumnsIsTheKeyOfTemplatesAndSaysBesideItWhatItIsInTheLanguage) {
    GivenData("c.csv", "Code,Name\n1,Acme\n");
    UseForeignTexts();

    auto& form = OpenFor(QStringLiteral("c.csv"));

    const QListWidgetItem* ignored = dynamic_cast<QListWidget&>(Control(form, "lstAvailable")).item(0);
    EXPECT_EQ(ignored->text(), QStringLiteral("Ignore"));
    EXPECT_EQ(ignored->toolTip(), ToQt(Text(msg::IgnoreField)));
}

TEST_F(Mapping, ShowsTheTablesFieldsAndTheFilesOwnColumns) {
    GivenData("c.csv", "Code,Name\n1,Acme\n2,Bolt\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));

    EXPECT_EQ(Rows(form, "lstAvailable").value(0), QStringLiteral("Ignore"));
    EXPECT_TRUE(Rows(form, "lstAvailable").contains(QStringLiteral("C_ALTSRCH")));
    const QStringList name{QStringLiteral("2"), QStringLiteral("not imported"), QStringLiteral("Name"),
                           QStringLiteral("Acme"), QStringLiteral("Bolt")};
    EXPECT_EQ(GridRows(form, "FGPreview").at(1), name);
    EXPECT_EQ(TextOf(form, "txtStartLine"), QStringLiteral("1"));
    EXPECT_FALSE(Enabled(form, "cmdLiteral"));
    EXPECT_FALSE(Enabled(form, "cmdAnd"));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(Mapping, ACellThatLooksLikeMarkupIsShownToTheLetterInItsTip) {
    GivenData("c.csv", "<b>1</b>,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    const auto* columns = dynamic_cast<QTableView&>(Control(form, "FGPreview")).model();

    EXPECT_EQ(columns->index(0, 2).data().toString(), QStringLiteral("<b>1</b>"));
    EXPECT_EQ(columns->index(0, 2).data(Qt::ToolTipRole).toString(),
              QStringLiteral("<p>&lt;b&gt;1&lt;/b&gt;</p>"));
}

TEST_F(Mapping, TheFirstLineWithADelimiterDecides) {
    GivenData("quoted.csv", "title\n\"a\",b\n");
    GivenData("late.csv", "a,b\nc,d\n\"e\",f\n");
    GivenData("tab.txt", "a\tb\n");
    const std::pair<const char*, const char*> cases[] = {
        {"quoted.csv", "optCSVQ"}, {"late.csv", "optCSV"}, {"tab.txt", "optTAB"}};
    for (const auto& [file, option] : cases) {
        auto& form = OpenFor(QString::fromLatin1(file));

        EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, option)).isChecked()) << file;

        The<frmImport1>().Unload();
        The<frmConvert>().Unload();
        Settle();
    }
}

TEST_F(Mapping, TheColumnThatComesNextIsMarkedAndThenTheOneThatARowTakes) {
    GivenData("c.csv", "1,Acme,x\n2,Bolt,y\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    const auto marked = [&] {
        return dynamic_cast<QTableView&>(Control(form, "FGPreview"))
            .selectionModel()
            ->selectedRows()
            .value(0)
            .row();
    };
    EXPECT_EQ(marked(), 0);

    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
    EXPECT_EQ(marked(), 2);
    EXPECT_EQ(GridRows(form, "FGPreview").at(1).at(1), QStringLiteral("C_NAME"));
    Select(form, "lstSelected", {QStringLiteral("C_CODE")});

    EXPECT_EQ(marked(), 0);
}

TEST_F(Mapping, ARowBeyondTheFilesColumnsAndAFieldThatIsNoneAreShownAsWrong) {
    GivenData("c.csv", "1,Acme\n");
    GivenTemplate("Old.cst", "c.csv", {"C_CODE", "C_GONE", "C_CITY"});
    auto& form = OpenFor(QStringLiteral("c.csv"));

    Choose(form, "cboSettings", QStringLiteral("Old"));

    EXPECT_EQ(GridRows(form, "FGPreview").at(1).at(1), QStringLiteral("C_GONE is no field of the table"));
    EXPECT_EQ(GridRows(form, "FGPreview").at(2).at(1), QStringLiteral("C_CITY: the file has no such column"));
}

TEST_F(Mapping, ALineOfHeadingsIsPointedOutUntilTheStartLineLeavesItOut) {
    GivenData("c.csv", "Code,Name\n1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    EXPECT_TRUE(TextOf(form, "lblHint").contains(Caption(msg::HeadingsHint)));

    dynamic_cast<QSpinBox&>(Control(form, "UpDown1")).setValue(2);
    EXPECT_FALSE(TextOf(form, "lblHint").contains(Caption(msg::HeadingsHint)));
    EXPECT_EQ(GridRows(form, "FGPreview").at(0).mid(2),
              (QStringList{QStringLiteral("Code"), QStringLiteral("1")}));
    dynamic_cast<QSpinBox&>(Control(form, "UpDown1")).setValue(3);

    EXPECT_TRUE(TextOf(form, "lblHint").contains(Caption(msg::EndsBeforeStart)));
}

// ---- the lists ----

TEST_F(Mapping, AddingInsertsBeforeARowThatIsNotTheLastAndSaysSo) {
    GivenData("c.csv", "1,Acme,x\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_CITY")});
    EXPECT_EQ(TextOf(form, "cmdAdd1"), QStringLiteral("Add >"));

    Select(form, "lstSelected", {QStringLiteral("C_CODE")});
    EXPECT_EQ(TextOf(form, "cmdAdd1"), QStringLiteral("Insert >"));
    Select(form, "lstAvailable", {QStringLiteral("C_NAME"), QStringLiteral("C_ZIP")});
    Click(form, "cmdAdd1");

    // In the order of the list, both before the row that was selected, which still is.
    EXPECT_EQ(Rows(form, "lstSelected"), (QStringList{QStringLiteral("C_NAME"), QStringLiteral("C_ZIP"),
                                                      QStringLiteral("C_CODE"), QStringLiteral("C_CITY")}));
    EXPECT_EQ(dynamic_cast<QListWidget&>(Control(form, "lstSelected")).currentRow(), 2);
}

TEST_F(Mapping, AndJoinsTheNextFieldToTheRow) {
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    EXPECT_FALSE(Enabled(form, "cmdAnd")) << "both lists are empty";
    Add(form, {QStringLiteral("C_CODE")});

    Click(form, "cmdAnd");
    EXPECT_FALSE(Enabled(form, "cmdAnd"));
    Add(form, {QStringLiteral("C_SEARCH")});

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("C_CODE; C_SEARCH")});
    EXPECT_TRUE(Enabled(form, "cmdAnd"));
    EXPECT_EQ(GridRows(form, "FGPreview").at(0).at(1), QStringLiteral("C_CODE; C_SEARCH"));
}

TEST_F(Mapping, ALiteralIsAskedForEachFieldUntilAnEmptyAnswer) {
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Select(form, "lstAvailable", {QStringLiteral("Ignore")});
    EXPECT_FALSE(Enabled(form, "cmdLiteral"));
    Select(form, "lstAvailable",
           {QStringLiteral("C_CITY"), QStringLiteral("C_STATE"), QStringLiteral("C_SHIPVIA")});
    Operator_.Expect(T("Enter literal value for field: C_CITY")).Type("Oslo");
    Operator_.Expect(T("Enter literal value for field: C_STATE")).Type("");

    Click(form, "cmdLiteral");

    EXPECT_EQ(Rows(form, "lstLiteral"), QStringList{QStringLiteral("C_CITY = Oslo")});
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(Mapping, TheTwoListsNeverHaveARowSelectedBoth) {
    GivenData("c.csv", "1,Acme,x\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
    Select(form, "lstAvailable", {QStringLiteral("C_CITY")});
    Operator_.Expect(T("Enter literal value for field: C_CITY")).Type("Oslo");
    Click(form, "cmdLiteral");

    Select(form, "lstSelected", {QStringLiteral("C_CODE")});
    Select(form, "lstLiteral", {QStringLiteral("C_CITY = Oslo")});

    EXPECT_TRUE(dynamic_cast<QListWidget&>(Control(form, "lstSelected")).selectedItems().isEmpty());
    EXPECT_EQ(TextOf(form, "cmdAdd1"), QStringLiteral("Add >"));
    Click(form, "cmdRemove1");
    EXPECT_EQ(Rows(form, "lstSelected").size(), 2);
    EXPECT_EQ(Rows(form, "lstLiteral").size(), 0);
}

TEST_F(Mapping, DoubleClicksAndKeysAddAndRemove) {
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));

    DoubleClick(form, "lstAvailable", QStringLiteral("C_CODE"));
    Select(form, "lstAvailable", {QStringLiteral("C_NAME")});
    Press(form, "lstAvailable", Qt::Key_Return);
    EXPECT_EQ(Rows(form, "lstSelected"), (QStringList{QStringLiteral("C_CODE"), QStringLiteral("C_NAME")}));
    DoubleClick(form, "lstSelected", QStringLiteral("C_CODE"));
    Select(form, "lstSelected", {QStringLiteral("C_NAME")});
    Press(form, "lstSelected", Qt::Key_Delete);

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList());
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    EXPECT_FALSE(Enabled(form, "cmdSaveSettings"));
}

TEST_F(Mapping, ArrowsReachTheFirstRowAndGoOnFromAFieldThatWasAdded) {
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    const auto selected = [&] {
        const auto& list = dynamic_cast<QListWidget&>(Control(form, "lstAvailable"));
        return list.selectedItems().isEmpty() ? QString() : list.selectedItems().first()->text();
    };
    Press(form, "lstAvailable", Qt::Key_Down);
    EXPECT_EQ(selected(), QStringLiteral("Ignore"));

    Press(form, "lstAvailable", Qt::Key_Down);
    Press(form, "lstAvailable", Qt::Key_Return);
    Press(form, "lstAvailable", Qt::Key_Down);

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("C_SEARCH")});
    EXPECT_EQ(selected(), QStringLiteral("C_CODE"));
}

// ---- templates ----

TEST_F(Mapping, RemovingARowByKeyNeverLeadsToRemovingAll) {
    auto& form = OpenToEdit(".cst");
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
    EXPECT_TRUE(Control(form, "lstAvailable").hasFocus());
    Operator_.Expect(T("Enter literal value for field: C_CITY")).Type("Oslo");
    Select(form, "lstAvailable", {QStringLiteral("C_CITY")});
    Click(form, "cmdLiteral");
    EXPECT_TRUE(Control(form, "lstAvailable").hasFocus());

    for (const char* list : {"lstSelected", "lstLiteral"}) {
        Select(form, list, {Rows(form, list).last()});
        Press(form, "cmdRemove1", Qt::Key_Space);
        EXPECT_TRUE(Control(form, list).hasFocus());
    }

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("C_CODE")});
    EXPECT_EQ(Rows(form, "lstLiteral"), QStringList());
}

TEST_F(Mapping, TheFirstImportWithANewNameLeavesATemplateThatIsListedFromThenOn) {
    GivenData("c.csv", "1,Acme\n2,Bolt\n");
    {
        auto& form = OpenFor(QStringLiteral("c.csv"));
        Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
        Type(form, "cboSettings", QStringLiteral("Mine"));
        ExpectImported("2 of 2");
        Click(form, "cmdOK");
        The<frmConvert>().Unload();
        Settle();
    }

    // Only the file's name, so that templates move between installations.
    EXPECT_EQ(TemplateOf("Mine.cst"),
              "c.csv\r\nCSV\r\nStartLine=1\r\n[FIELDS]\r\nC_CODE\r\nC_NAME\r\n[LITERALS]\r\n");
    EXPECT_TRUE(SavedSettings(OpenFor(QStringLiteral("c.csv"))).contains(QStringLiteral("Mine")));
}

TEST_F(Mapping, AnImportFillsTheTableAndCloses) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenData("c.csv", "Code,Name\n1,Acme\n2,Bolt\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    dynamic_cast<QSpinBox&>(Control(form, "UpDown1")).setValue(2);
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
    ExpectImported("2 of 2");

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKCust"), 2);
    EXPECT_EQ(Cell("ZUKCust", 2, "C_NAME"), "Bolt");
    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
}

TEST_F(Mapping, ItemsGoIntoTheirTable) {
    GivenData("i.txt", "I1\tNail\n");
    auto& form = OpenFor(QStringLiteral("i.txt"), "optItem");
    Add(form, {QStringLiteral("I_ITEMCODE"), QStringLiteral("I_DESC1")});
    Type(form, "cboSettings", QStringLiteral("Nails"));
    ExpectImported("1 of 1");

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKItem", 1, "I_DESC1"), "Nail");
    EXPECT_TRUE(Exists(Global.ImportTemplates + "Nails.itm"));
}

TEST_F(Mapping, ATemplateThatIsChosenFillsTheScreen) {
    GivenData("c.csv", "Code,Name\n1,Acme\n");
    WriteWholeFile(Global.ImportTemplates + "Mine.cst",
                   "old.csv\r\nCSV Quotes\r\nStartLine=2\r\n[FIELDS]\r\nC_CODE; C_SEARCH\r\nIgnore\r\n"
                   "[LITERALS]\r\nC_CITY = Oslo\r\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));

    Choose(form, "cboSettings", QStringLiteral("Mine"));

    EXPECT_EQ(Rows(form, "lstSelected"),
              (QStringList{QStringLiteral("C_CODE; C_SEARCH"), QStringLiteral("Ignore")}));
    EXPECT_EQ(Rows(form, "lstLiteral"), QStringList{QStringLiteral("C_CITY = Oslo")});
    EXPECT_EQ(TextOf(form, "txtStartLine"), QStringLiteral("2"));
    EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(form, "optCSVQ")).isChecked());
    EXPECT_EQ(TextOf(form, "lblPreview"), QStringLiteral("Contents of c.csv"))
        << "the file that was chosen stays";
    EXPECT_TRUE(Enabled(form, "cmdSaveSettings"));
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(Mapping, ANameThatIsTypedLoadsNothingAlsoWhenThereIsSuchATemplate) {
    GivenData("c.csv", "1,Acme\n");
    GivenTemplate("Mine.cst", "c.csv", {"C_CITY"});
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE")});

    Type(form, "cboSettings", QStringLiteral("Mine"));

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("C_CODE")});
}

TEST_F(Mapping, AWheelThatPassesOverTheTemplatesOrTheStartLineChangesNothing) {
    GivenTemplate("A.cst", "c.csv", {"C_CODE"});
    GivenTemplate("B.cst", "c.csv", {"C_CODE"});
    auto& form = OpenToEdit(".cst");
    Add(form, {QStringLiteral("C_NAME")});
    dynamic_cast<QSpinBox&>(Control(form, "UpDown1")).setValue(3);

    for (const char* name : {"cboSettings", "UpDown1"}) {
        QWidget& control = Control(form, name);
        const QPoint middle = control.rect().center();
        QWheelEvent wheel(middle, control.mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&control, &wheel);
        Settle();
    }

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("C_NAME")});
    EXPECT_EQ(TextOf(form, "cboSettings"), QString());
    EXPECT_EQ(TextOf(form, "txtStartLine"), QStringLiteral("3"));
}

TEST_F(Mapping, SavingTwiceReplacesTheTemplateAndListsItOnce) {
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE")});
    Type(form, "cboSettings", QStringLiteral("Mine"));
    Click(form, "cmdSaveSettings");
    Add(form, {QStringLiteral("C_NAME")});

    Click(form, "cmdSaveSettings");

    EXPECT_EQ(SavedSettings(form).count(QStringLiteral("Mine")), 1);
    EXPECT_TRUE(TemplateOf("Mine.cst").find("C_NAME") != std::string::npos);
    EXPECT_EQ(TextOf(form, "cboSettings"), QStringLiteral("Mine"));
}

TEST_F(Mapping, ANameThatIsNoFileNameIsToldAndNothingIsImported) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE")});
    Type(form, "cboSettings", QStringLiteral("../Mine"));
    Operator_.ExpectBeginning(msg::TemplateNotSaved).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
    EXPECT_FALSE(Exists(Global.TemplatesPath + "Mine.cst"));
}

TEST_F(Mapping, DeletingRemovesTheFileTheNameAndWhatTheListsHold) {
    GivenData("c.csv", "Code\n1,Acme\n");
    GivenTemplate("Mine.cst", "c.csv", {"C_CODE"}, "2");
    RememberHeadLines(Global.ImportTemplates + "Mine.cst", {2, {"Code"}});
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Choose(form, "cboSettings", QStringLiteral("Mine"));

    Click(form, "cmdDelSettings");

    EXPECT_FALSE(Exists(Global.ImportTemplates + "Mine.cst"));
    EXPECT_FALSE(Exists(Global.ImportTemplates + "Mine.cst.head"));
    EXPECT_FALSE(SavedSettings(form).contains(QStringLiteral("Mine")));
    EXPECT_EQ(Rows(form, "lstSelected"), QStringList());
    EXPECT_EQ(TextOf(form, "cboSettings"), QString());
}

// ---- what stops an import, and what it loses ----

TEST_F(Mapping, AfterAMismatchTheScreenStaysWithItsMapping) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME"), QStringLiteral("C_CITY")});
    Operator_.ExpectBeginning(msg::FieldsDoNotMatch).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmImport1>(), &form);
    EXPECT_EQ(Rows(form, "lstSelected").size(), 3);
    EXPECT_TRUE(Enabled(form, "cmdOK"));
    EXPECT_TRUE(Enabled(form, "cmdCancel"));
    EXPECT_FALSE(Visible(form, "pgbProgress"));
    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
}

TEST_F(Mapping, LinesThatAreLostAreNamedOnTheSecondLineOfTheCountBox) {
    GivenData("c.csv", "1,Acme\n2,Bolt,x\n3,Cog\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE"), QStringLiteral("C_NAME")});
    const std::string list = Global.DataInPath + "Errors" + Global.DataInPath.back() + "c.csv.txt";
    Operator_.Expect(T("2 of 3 lines successfully imported!\nThe lines that failed are listed in " + list));

    Click(form, "cmdOK");

    EXPECT_EQ(EngineTest::Lines(list).at(1), "2\tmore than the 2 columns of line 1\t2,Bolt,x");
    EXPECT_EQ(RecordCount("ZUKCust"), 3);
}

TEST_F(Mapping, AFileThatEndsBeforeItsStartLineIsToldAndTheTableStays) {
    GivenRows("ZUKCust", {"C_CODE", "OLD"});
    GivenData("c.csv", "1,Acme\n");
    auto& form = OpenFor(QStringLiteral("c.csv"));
    Add(form, {QStringLiteral("C_CODE")});
    dynamic_cast<QSpinBox&>(Control(form, "UpDown1")).setValue(9);
    Operator_.ExpectBeginning(msg::ImportStopped).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "OLD");
    EXPECT_TRUE(Enabled(form, "cmdCancel"));
}

// ---- columns that have moved ----

class MovedColumns : public Mapping {
protected:
    MovedColumns() {
        GivenRows("ZUKCust", {"C_CODE", "OLD"});
        GivenData("c.csv", "Code,Name\n1,Acme\n");
        GivenTemplate("Mine.cst", "c.csv", {"C_CODE", "C_NAME"}, "2");
        auto& form = OpenFor(QStringLiteral("c.csv"));
        Choose(form, "cboSettings", QStringLiteral("Mine"));
        ExpectImported("1 of 1");
        Click(form, "cmdOK");
        The<frmConvert>().Unload();
        Settle();
        GivenData("c.csv", "Code,Group,Name\n2,G,Bolt\n");
    }

    static Text Question() {
        return T(
            "The lines above the data have changed since this template was last used, so the columns may "
            "have moved.\nBefore: Code,Name\nNow: Code,Group,Name\nImport all the same?");
    }

    frmImport1& Again() {
        auto& form = OpenFor(QStringLiteral("c.csv"));
        Choose(form, "cboSettings", QStringLiteral("Mine"));
        return form;
    }
};

TEST_F(MovedColumns, AreAskedAboutBeforeAnythingIsEmptied) {
    auto& form = Again();
    Operator_.Expect(Question()).With(Icon::Warning).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "1");
    EXPECT_EQ(IfLoaded<frmImport1>(), &form) << "the mapping can be mended";
}

TEST_F(MovedColumns, AreAskedAboutOnceWhenTheAnswerIsYes) {
    {
        auto& form = Again();
        Operator_.Expect(Question()).Answer(Answer::Yes);
        ExpectImported("1 of 1");
        Click(form, "cmdOK");
        EXPECT_EQ(Cell("ZUKCust", 1, "C_NAME"), "G");
        The<frmConvert>().Unload();
        Settle();
    }
    auto& form = Again();
    ExpectImported("1 of 1");

    Click(form, "cmdOK");

    EXPECT_TRUE(Operator_.AllCame());
}

// ---- keeping templates ----

TEST_F(Mapping, EditingTemplatesListsBothKindsWithTheirExtensions) {
    GivenTemplate("B.cst", "c.csv", {"C_CODE"});
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit();

    const QStringList settings = SavedSettings(form);

    EXPECT_EQ(form.windowTitle(), QStringLiteral("Edit Import Template"));
    EXPECT_LT(settings.indexOf(QStringLiteral("B.cst")), settings.indexOf(QStringLiteral("A.itm")));
    EXPECT_EQ(TextOf(form, "lblPreview"), QString());
    EXPECT_EQ(Rows(form, "lstAvailable"), QStringList());
}

TEST_F(Mapping, EditingOneKindListsItsTemplatesAlone) {
    GivenTemplate("B.cst", "c.csv", {"C_CODE"});
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});

    auto& form = OpenToEdit(".itm");

    EXPECT_TRUE(SavedSettings(form).contains(QStringLiteral("A")));
    EXPECT_FALSE(SavedSettings(form).contains(QStringLiteral("B")));
    EXPECT_TRUE(Rows(form, "lstAvailable").contains(QStringLiteral("I_PRICE")));
}

TEST_F(Mapping, ATemplateThatIsEditedBringsItsFileAndItsTable) {
    GivenData("i.csv", "I1,Nail\n");
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit();

    Choose(form, "cboSettings", QStringLiteral("A.itm"));

    EXPECT_EQ(TextOf(form, "lblPreview"), QStringLiteral("Contents of i.csv"));
    EXPECT_TRUE(Rows(form, "lstAvailable").contains(QStringLiteral("I_PRICE")));
    EXPECT_EQ(GridRows(form, "FGPreview").at(0).at(1), QStringLiteral("I_ITEMCODE"));
}

TEST_F(Mapping, ATemplateWhoseFileIsGoneIsToldAndStaysOpen) {
    GivenTemplate("A.itm", "gone.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit();
    Operator_.ExpectBeginning(msg::ImportFileUnreadable).With(Icon::Warning);

    Choose(form, "cboSettings", QStringLiteral("A.itm"));

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList{QStringLiteral("I_ITEMCODE")});
}

TEST_F(Mapping, ATemplateWhoseTableCannotBeReadDoesNotTakeTheMappingOfAnother) {
    GivenData("c.csv", "1,Acme\n");
    GivenTemplate("B.cst", "c.csv", {"C_CODE"});
    GivenTemplate("A.itm", "c.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit();
    Choose(form, "cboSettings", QStringLiteral("B.cst"));
    Select(form, "lstAvailable", {QStringLiteral("C_NAME")});
    std::filesystem::remove(ResolvePath(Global.DBFPath + "ZUKITEM.DBF"));
    Operator_.ExpectBeginning(msg::TablesUnreadable).With(Icon::Stop);

    Choose(form, "cboSettings", QStringLiteral("A.itm"));

    EXPECT_EQ(Rows(form, "lstSelected"), QStringList());
    EXPECT_EQ(Rows(form, "lstAvailable"), QStringList());
    EXPECT_FALSE(Enabled(form, "cmdSaveSettings"));
    EXPECT_FALSE(Enabled(form, "cmdLiteral"));
}

TEST_F(Mapping, ATemplateWhoseFileIsGoneCanBeSaved) {
    GivenTemplate("A.itm", "gone.csv", {"I_ITEMCODE"}, "2");
    auto& form = OpenToEdit();
    Operator_.ExpectBeginning(msg::ImportFileUnreadable).With(Icon::Warning);
    Choose(form, "cboSettings", QStringLiteral("A.itm"));
    Add(form, {QStringLiteral("I_DESC1")});

    Click(form, "cmdSaveSettings");

    EXPECT_NE(TemplateOf("A.itm").find("I_DESC1"), std::string::npos);
    EXPECT_TRUE(Operator_.AllCame());
}

TEST_F(Mapping, NoAtTheQuestionKeepsTheTemplateAndLeavesTheTable) {
    GivenRows("ZUKItem", {"I_ITEMCODE", "OLD"});
    GivenData("i.csv", "I1,Nail\n");
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit();
    Choose(form, "cboSettings", QStringLiteral("A.itm"));
    Add(form, {QStringLiteral("I_DESC1")});
    Operator_.Expect(msg::ImportNow).With(Icon::Question).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmImport1>(), nullptr);
    EXPECT_NE(TemplateOf("A.itm").find("I_DESC1"), std::string::npos);
    EXPECT_FALSE(Exists(Global.ImportTemplates + "A.itm.itm")) << "no second extension";
    EXPECT_EQ(Cell("ZUKItem", 1, "I_ITEMCODE"), "OLD");
}

TEST_F(Mapping, YesAtTheQuestionImportsByTheTemplate) {
    GivenData("i.csv", "I1,Nail\n");
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
    auto& form = OpenToEdit(".itm");
    Choose(form, "cboSettings", QStringLiteral("A"));
    Operator_.Expect(msg::ImportNow).Answer(Answer::Yes);
    ExpectImported("1 of 1");

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKItem", 1, "I_ITEMCODE"), "I1");
}

TEST_F(Mapping, ANewNameInTheListOfBothKindsIsListedWithItsExtension) {
    auto& form = OpenToCopyItems();

    Click(form, "cmdSaveSettings");

    EXPECT_TRUE(SavedSettings(form).contains(QStringLiteral("Copy.itm")));
    EXPECT_TRUE(Exists(Global.ImportTemplates + "Copy.itm"));
}

TEST_F(Mapping, ANewNameInTheListOfBothKindsCanBeDeletedAgain) {
    auto& form = OpenToCopyItems();
    Click(form, "cmdSaveSettings");

    Click(form, "cmdDelSettings");

    EXPECT_FALSE(SavedSettings(form).contains(QStringLiteral("Copy.itm")));
    EXPECT_FALSE(Exists(Global.ImportTemplates + "Copy.itm"));
}

TEST_F(Mapping, ATemplateOfTheOtherKindCanBeDeletedByItsName) {
    GivenData("i.csv", "I1,Nail\n");
    GivenTemplate("A.itm", "i.csv", {"I_ITEMCODE"});
    GivenTemplate("B.cst", "i.csv", {"C_CODE"});
    GivenTemplate("C.cst", "i.csv", {"C_CODE"});
    auto& form = OpenToEdit();
    Type(form, "cboSettings", QStringLiteral("C.cst"));
    Click(form, "cmdDelSettings");
    EXPECT_FALSE(Exists(Global.ImportTemplates + "C.cst")) << "nothing was loaded";
    Choose(form, "cboSettings", QStringLiteral("A.itm"));
    Type(form, "cboSettings", QStringLiteral("B.cst"));

    Click(form, "cmdDelSettings");

    EXPECT_FALSE(Exists(Global.ImportTemplates + "B.cst"));
    EXPECT_TRUE(Exists(Global.ImportTemplates + "A.itm"));
    EXPECT_FALSE(SavedSettings(form).contains(QStringLiteral("B.cst")));
}

TEST_F(Mapping, RemovingTakesTheLiteralThatIsSelectedAlsoWhenAnotherHasTheFrame) {
    auto& form = OpenToEdit(".cst");
    Operator_.Expect(T("Enter literal value for field: C_CODE")).Type("1");
    Operator_.Expect(T("Enter literal value for field: C_NAME")).Type("2");
    for (const char* field : {"C_CODE", "C_NAME"}) {
        Select(form, "lstAvailable", {QString::fromLatin1(field)});
        Click(form, "cmdLiteral");
    }
    Select(form, "lstLiteral", {QStringLiteral("C_CODE = 1")});
    dynamic_cast<QListWidget&>(Control(form, "lstLiteral")).setCurrentRow(1, QItemSelectionModel::NoUpdate);

    Click(form, "cmdRemove1");

    EXPECT_EQ(Rows(form, "lstLiteral"), QStringList{QStringLiteral("C_NAME = 2")});
}

TEST_F(Mapping, ANameOfBlanksIsNone) {
    auto& form = OpenToEdit(".cst");
    Add(form, {QStringLiteral("C_CODE")});
    Type(form, "cboSettings", QStringLiteral("  "));
    Operator_.Expect(msg::TypeTemplateName).With(Icon::Warning);

    Click(form, "cmdSaveSettings");

    EXPECT_TRUE(Control(form, "cboSettings").hasFocus());
}

TEST_F(Mapping, ANewTemplateNeedsADataFile) {
    auto& form = OpenToEdit(".cst");
    Add(form, {QStringLiteral("C_CODE")});
    Type(form, "cboSettings", QStringLiteral("Mine"));
    Operator_.Expect(msg::NoDataFile).With(Icon::Warning);

    Click(form, "cmdSaveSettings");

    EXPECT_FALSE(Exists(Global.ImportTemplates + "Mine.cst"));
}

TEST_F(Mapping, AFileWhoseNameATemplateCannotKeepIsImportedWithoutOne) {
    GivenData("\xC5\x82.csv", "1,Acme\n");
    auto& form = OpenFor(QString::fromUtf8("\xC5\x82.csv"));
    Add(form, {QStringLiteral("C_CODE")});
    Type(form, "cboSettings", QStringLiteral("Mine"));
    Operator_.ExpectBeginning(msg::NameNotKept).With(Icon::Warning);
    Click(form, "cmdOK");
    EXPECT_FALSE(Exists(Global.ImportTemplates + "Mine.cst"));

    Type(form, "cboSettings", QString());
    ExpectImported("1 of 1");
    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKCust", 1, "C_CODE"), "1");
}

TEST_F(Mapping, AnEmptyNameOrAnEmptyMappingSavesNothing) {
    auto& form = OpenToEdit(".cst");
    Select(form, "lstAvailable", {QStringLiteral("C_CODE")});
    Click(form, "cmdAdd1");

    EXPECT_FALSE(Enabled(form, "cmdSaveSettings")) << "no name";
    Type(form, "cboSettings", QStringLiteral("Mine"));
    EXPECT_TRUE(Enabled(form, "cmdSaveSettings"));
    Click(form, "cmdRemoveAll");

    EXPECT_FALSE(Enabled(form, "cmdSaveSettings")) << "no field";
}

} // namespace
