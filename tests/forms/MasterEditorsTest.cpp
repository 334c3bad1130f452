#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "platform/GridView.h"
#include "platform/LookupBox.h"
#include "program/forms/frmMain1.h"
#include "store/SortTables.h"
#include "views/forms/frmEditCust.h"
#include "views/forms/frmEditItem.h"
#include "views/forms/frmEditSTax.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

class MasterEditors : public FormTest {
protected:
    MasterEditors() { GivenOffice(); }
    ~MasterEditors() override { FormRegistry::Instance().Clear(); }

    void GivenThree() {
        GivenRows("ZUKSTAX", {"ST_CODE|ST_DESC|ST_RATE", "NY|New York|8.25", "CA|California|7"});
        GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME|C_CITY|C_STCODE|C_ALTSRCH", "S3|C1|Acme|Bern|NY|alt",
                              "S2|C2|Bolt|Oslo|ny|", "S1|C3|Cole|Rome||"});
    }

    static std::string Shown(FormBehaviour& form) {
        return (TextOf(form, "lblCount") + QLatin1Char(' ') + TextOf(form, "txtField_2")).toStdString();
    }

    static std::string Warning(FormBehaviour& form) { return TextOf(form, "lblWarning").toStdString(); }

    static LookupBox& Lookup(FormBehaviour& form) {
        return dynamic_cast<LookupBox&>(Control(form, "cboLookup"));
    }

    static bool Writable(FormBehaviour& form, const char* name) { return Control(form, name).isEnabled(); }
};

TEST_F(MasterEditors, AMoveSavesTheRecordAndABlankCodeStopsIt) {
    GivenThree();
    auto& form = Open<frmEditCust>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Edit Customers"));
    EXPECT_EQ(Shown(form), "1 of 3 C1");
    EXPECT_EQ(TextOf(form, "cboC_STCode"), QStringLiteral("NY"));
    EXPECT_EQ(TextOf(form, "cboLookup"), QStringLiteral("S3 : Acme"));
    EXPECT_FALSE(Enabled(form, "cmdFirst"));
    EXPECT_FALSE(Enabled(form, "cmdPrevious"));

    Type(form, "txtField_4", QStringLiteral("Acme & Co"));
    Click(form, "cmdNext");
    EXPECT_EQ(Shown(form), "2 of 3 C2");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_NAME"), "Acme & Co");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_ALTSRCH"), "alt");
    EXPECT_EQ(Lookup(form).itemText(0), QStringLiteral("S3 : Acme & Co"));
    EXPECT_EQ(TextOf(form, "cboC_STCode"), QStringLiteral("NY")); // also in small letters

    Type(form, "txtField_2", QString());
    const int moves = 7;
    for (int k = 0; k < moves; ++k) Operator_.Expect(msg::CustCodeEmpty).With(Icon::Warning);
    for (const char* move : {"cmdNext", "cmdPrevious", "cmdFirst", "cmdLast", "cmdAdd", "cmdOK"}) {
        Click(form, move);
        EXPECT_EQ(Shown(form), "2 of 3 ") << move;
        EXPECT_EQ(form.focusWidget(), &Control(form, "txtField_2")) << move;
    }
    Choose(form, "cboLookup", QStringLiteral("S1 : Cole"));
    EXPECT_EQ(Shown(form), "2 of 3 ");
    EXPECT_EQ(TextOf(form, "cboLookup"), QStringLiteral("S2 : Bolt"));

    Click(form, "cmdCancel");
    EXPECT_EQ(IfLoaded<frmEditCust>(), nullptr);
    EXPECT_EQ(Cell("ZUKCUST", 2, "C_CODE"), "C2");
    EXPECT_EQ(RecordCount("ZUKCUST"), 3);
}

TEST_F(MasterEditors, AfterADeletionTheRecordBeforeItIsShownAndAfterTheLastOneOnlyAddIsLeft) {
    GivenThree();
    Global.SelectedRow = 3;
    auto& form = Open<frmEditCust>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::No);
    for (int k = 0; k < 3; ++k)
        Operator_.Expect(msg::DeleteCurrentLink).With(Icon::Question).Answer(Answer::Yes);

    Click(form, "cmdDelete");
    EXPECT_EQ(Shown(form), "3 of 3 C3");
    Click(form, "cmdDelete");
    EXPECT_EQ(Shown(form), "2 of 2 C2");
    Click(form, "cmdDelete");
    Click(form, "cmdDelete");

    EXPECT_EQ(Shown(form), "No records to display! ");
    for (const char* control : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast", "cmdDelete", "txtField_1",
                                "txtField_12", "cboC_STCode", "cboLookup"})
        EXPECT_FALSE(Enabled(form, control)) << control;
    EXPECT_EQ(form.focusWidget(), &Control(form, "cmdAdd"));

    Click(form, "cmdAdd"); // asks for no save first
    EXPECT_EQ(Shown(form), "1 of 1 ");
    EXPECT_EQ(form.focusWidget(), &Control(form, "txtField_1"));
    Type(form, "txtField_2", QStringLiteral("C9"));
    Click(form, "cmdOK");
    EXPECT_EQ(IfLoaded<frmEditCust>(), nullptr);
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_CODE"), "C9");
}

TEST_F(MasterEditors, ARecordThatWasAddedStaysWhenTheAddIsCancelledAndTheMainScreenCountsIt) {
    GivenThree();
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    main.RefreshRecordCounts();
    EXPECT_EQ(TextOf(main, "lblSysCust1"), QStringLiteral("3"));
    auto& form = Open<frmEditCust>();

    Click(form, "cmdAdd");
    Type(form, "txtField_2", QStringLiteral("C9"));
    Click(form, "cmdCancel");

    EXPECT_EQ(RecordCount("ZUKCUST"), 4);
    EXPECT_EQ(Cell("ZUKCUST", 4, "C_CODE"), "");
    EXPECT_EQ(TextOf(main, "lblSysCust1"), QStringLiteral("4"));
}

TEST_F(MasterEditors, ATaxCodeThatIsNotInTheListIsWarnedOfAndEmptiedByTheNextSave) {
    GivenThree();
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_STCODE", "S1|C1|TX", "S2|C2|"});
    auto& form = Open<frmEditCust>();
    EXPECT_EQ(TextOf(form, "cboC_STCode"), QString());
    EXPECT_EQ(Warning(form),
              Words(msg::TaxCodeNotInList, Text::Value(std::string_view(std::string("TX")))).Utf8());

    Choose(form, "cboC_STCode", QStringLiteral("CA"));
    EXPECT_EQ(Warning(form), "");
    Click(form, "cmdCancel");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_STCODE"), "TX");

    auto& again = Open<frmEditCust>();
    Click(again, "cmdNext");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_STCODE"), "");
    EXPECT_EQ(Warning(again), "");

    // Without the list nothing could be shown, and nothing is written.
    again.Unload();
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_STCODE", "S1|C1|NY", "S2|C2|"});
    Global.TheDisk->Remove(Global.DBFPath + "ZUKSTAX.dbf");
    Operator_.ExpectBeginning(msg::ListUnreadable);
    auto& unlisted = Open<frmEditCust>();
    EXPECT_FALSE(Writable(unlisted, "cboC_STCode"));
    Click(unlisted, "cmdNext");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_STCODE"), "NY");
}

TEST_F(MasterEditors, TypingFindsARecordAndTheKeysMove) {
    GivenThree();
    auto& form = Open<frmEditCust>();
    form.activateWindow();
    LookupBox& lookup = Lookup(form);
    lookup.setFocus(Qt::TabFocusReason);
    Type(form, "cboLookup", QStringLiteral("col"));
    QTest::keyClick(&lookup, Qt::Key_Return);
    Settle();
    EXPECT_EQ(Shown(form), "3 of 3 C3");
    EXPECT_EQ(lookup.currentText(), QStringLiteral("S1 : Cole"));

    Type(form, "cboLookup", QStringLiteral("nobody"));
    QTest::keyClick(&lookup, Qt::Key_Return);
    EXPECT_EQ(Shown(form), "3 of 3 C3");
    EXPECT_EQ(lookup.currentText(), QStringLiteral("S1 : Cole"));
    Type(form, "cboLookup", QStringLiteral("bol"));
    lookup.completer()->popup()->hide(); // as a click beside it does
    Control(form, "txtField_1").setFocus(Qt::TabFocusReason);
    EXPECT_EQ(lookup.currentText(), QStringLiteral("S1 : Cole"));

    QWidget& line = Control(form, "txtField_1");
    const auto key = [&](Qt::Key which, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(&line, which, with);
        Settle();
        return Shown(form);
    };
    EXPECT_EQ(key(Qt::Key_Home, Qt::ControlModifier), "1 of 3 C1");
    EXPECT_EQ(key(Qt::Key_PageDown), "2 of 3 C2");
    EXPECT_EQ(key(Qt::Key_End, Qt::ControlModifier), "3 of 3 C3");
    EXPECT_EQ(key(Qt::Key_PageUp), "2 of 3 C2");
}

TEST_F(MasterEditors, TheHelpLineSaysWhatTheControlAtHandIsFor) {
    GivenThree();
    auto& form = Open<frmEditCust>();
    const auto help = [&](const char* name) {
        QEnterEvent enter({}, {}, {});
        QApplication::sendEvent(&Control(form, name), &enter);
        return TextOf(form, "lblHelp").toStdString();
    };
    EXPECT_EQ(TextOf(form, "lblHelp").toStdString(),
              "Move the mouse cursor over an option to see more information...");
    EXPECT_EQ(help("txtField_3"), "Customer telephone number");
    EXPECT_EQ(help("txtField_2"),
              "Unique code for each customer. This field is often called the \"Account Number\".");
    EXPECT_EQ(help("cboC_STCode"), "Customer Sales Tax Code. This code should match a Sales Tax Code in the "
                                   "Sales Tax Table (ZUKSTAX).");
    EXPECT_EQ(help("cmdAdd"), "Create a new record.");
    EXPECT_EQ(help("cmdPrevious"), "Update changes to the current record, then move to the previous record");
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&Control(form, "cmdAdd"), &leave);
    EXPECT_EQ(TextOf(form, "lblHelp").toStdString(),
              "Move the mouse cursor over an option to see more information...");

    // Every control that takes something says what for.
    for (const auto* control : form.findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || control->objectName() == QLatin1String("cmdHelp") ||
            control->objectName().isEmpty() || control->objectName().startsWith(QLatin1String("qt_")))
            continue;
        EXPECT_FALSE(control->accessibleDescription().isEmpty()) << control->objectName().toStdString();
    }
}

TEST_F(MasterEditors, TheItemsAndTheSalesTaxesHaveTheirOwnFieldsAndWords) {
    GivenRows("ZUKITEM",
              {"I_SEARCH|I_ITEMCODE|I_BARCODE|I_DESC1|I_UM|I_PRICE", "HAM|H1|77|Hammer|Each|12.50"});
    auto& item = Open<frmEditItem>();
    EXPECT_EQ(item.windowTitle(), QStringLiteral("Edit Items"));
    EXPECT_EQ(TextOf(item, "cboLookup"), QStringLiteral("HAM : Hammer"));
    Type(item, "txtField_6", QStringLiteral("about 12"));
    EXPECT_EQ(Warning(item), CatalogueText(msg::ItemPriceInvalid));
    Type(item, "txtField_4", QStringLiteral("Hammer \u0141"));
    EXPECT_EQ(Warning(item), CatalogueText(msg::RecordCharactersLost));
    Type(item, "txtField_2", QString());
    Operator_.Expect(msg::ItemCodeEmpty);
    Click(item, "cmdOK");
    Type(item, "txtField_2", QStringLiteral("H2"));
    Type(item, "txtField_4", QStringLiteral("Hammer"));
    Click(item, "cmdOK"); // no warning keeps it from being saved
    EXPECT_EQ(Cell("ZUKITEM", 1, "I_PRICE"), "about 12");
    EXPECT_EQ(Cell("ZUKITEM", 1, "I_ITEMCODE"), "H2");

    GivenRows("ZUKSTAX", {"ST_CODE|ST_TYPE|ST_DESC|ST_RATE", "NY|State|New York|8.25"});
    auto& tax = Open<frmEditSTax>();
    EXPECT_EQ(tax.windowTitle(), QStringLiteral("Edit Sales Tax"));
    EXPECT_EQ(TextOf(tax, "cboLookup"), QStringLiteral("NY : New York"));
    EXPECT_EQ(TextOf(tax, "txtField_4"), QStringLiteral("8.25"));
    Type(tax, "txtField_4", QStringLiteral("8.12345"));
    Type(tax, "txtField_1", QString());
    Operator_.Expect(msg::TaxCodeEmpty);
    Click(tax, "cmdOK");
    Type(tax, "txtField_1", QStringLiteral("NYC"));
    Click(tax, "cmdOK");
    EXPECT_EQ(Cell("ZUKSTAX", 1, "ST_RATE"), "8.12345");
    EXPECT_EQ(Cell("ZUKSTAX", 1, "ST_TYPE"), "State");
}

TEST_F(MasterEditors, ABlankItemOrTaxCodeStopsEveryMoveToo) {
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "A|I1|Awl|1", "S|I2|Saw|2", "N|I3|Nail|3"});
    GivenRows("ZUKSTAX", {"ST_CODE|ST_DESC|ST_RATE", "AK|Alaska|1", "TX|Texas|2", "NY|New York|3"});
    const auto stops = [&](FormBehaviour& form, const char* key, MessageId words) {
        Type(form, key, QStringLiteral("  "));
        for (const char* move : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast", "cmdAdd", "cmdOK"}) {
            Operator_.Expect(words).With(Icon::Warning);
            Click(form, move);
            EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("2 of 3")) << move;
            EXPECT_EQ(form.Window().focusWidget(), &Control(form, key)) << move;
        }
        Click(form, "cmdCancel");
    };
    Global.SelectedRow = 2;
    stops(Open<frmEditItem>(), "txtField_2", msg::ItemCodeEmpty);
    EXPECT_EQ(Cell("ZUKITEM", 2, "I_ITEMCODE"), "I2");
    EXPECT_EQ(RecordCount("ZUKITEM"), 3);

    Global.SelectedRow = 2;
    stops(Open<frmEditSTax>(), "txtField_1", msg::TaxCodeEmpty);
    EXPECT_EQ(Cell("ZUKSTAX", 2, "ST_CODE"), "TX");
    EXPECT_EQ(RecordCount("ZUKSTAX"), 3);
}

TEST_F(MasterEditors, TheGridOpensTheEditorAtItsRowAndTheEditorGoesBackToIt) {
    GivenThree();
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    ClickMenu(main, "mnuChgCust");
    auto* grid = &The<frmViewGrid>();
    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(*grid, "cmdEdit")).isDefault());
    dynamic_cast<GridView&>(Control(*grid, "FG1")).SelectRecord(2);
    Press(*grid, "FG1", Qt::Key_Return);
    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
    auto& form = The<frmEditCust>();
    EXPECT_EQ(Shown(form), "2 of 3 C2");

    // What was typed does not go without a word.
    Type(form, "txtField_4", QStringLiteral("Bolt & Co"));
    Operator_.Expect(msg::SaveBeforeView).Answer(Answer::Yes);
    Click(form, "cmdView");
    EXPECT_EQ(IfLoaded<frmEditCust>(), nullptr);
    EXPECT_EQ(Cell("ZUKCUST", 2, "C_NAME"), "Bolt & Co");
    grid = &The<frmViewGrid>();
    EXPECT_EQ(dynamic_cast<GridView&>(Control(*grid, "FG1")).SelectedRecord(), 2);

    // Beside an editor that is open, the grid's Edit saves and moves that one.
    auto& open = Open<frmEditCust>();
    Type(open, "txtField_8", QStringLiteral("Lima"));
    ShowTable(ViewCust, ShowMode::Modeless, 3);
    Click(The<frmViewGrid>(), "cmdDataView");
    Click(The<frmViewData>(), "cmdEdit");
    EXPECT_EQ(&The<frmEditCust>(), &open);
    EXPECT_EQ(Shown(open), "3 of 3 C3");
    EXPECT_EQ(Cell("ZUKCUST", 2, "C_CITY"), "Lima");

    // A check puts the table in order while the editor stands: the save finds its record.
    NoProgress silent;
    SortCustFile(Global.DBFPath + "ZUKCUST.DBF", {}, silent);
    Type(open, "txtField_8", QStringLiteral("Nice"));
    Click(open, "cmdOK");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_CODE"), "C3");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_CITY"), "Nice");

    ClickMenu(main, "mnuChgItems");
    EXPECT_EQ(The<frmViewGrid>().windowTitle(), QStringLiteral("View Items"));
    EXPECT_TRUE(Enabled(The<frmViewGrid>(), "cmdEdit"));
    ClickMenu(main, "mnuChgSTax");
    EXPECT_EQ(The<frmViewGrid>().windowTitle(), QStringLiteral("View Sales Tax"));
    EXPECT_TRUE(Enabled(The<frmViewGrid>(), "cmdEdit"));
}

TEST_F(MasterEditors, ATableThatAnotherProgramHoldsOrThatIsGoneIsToldAndNothingIsLost) {
    GivenThree();
    ShowTable(ViewCust);
    Settle();
    WriteWholeFile(Global.DBFPath + ".~lock.ZUKCust.dbf#", "office");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    Click(The<frmViewGrid>(), "cmdEdit");
    EXPECT_EQ(IfLoaded<frmEditCust>(), nullptr);
    EXPECT_NE(IfLoaded<frmViewGrid>(), nullptr);
    Global.TheDisk->Remove(Global.DBFPath + ".~lock.ZUKCust.dbf#");

    auto& form = Open<frmEditCust>();
    Type(form, "txtField_4", QStringLiteral("Acme & Co"));
    WriteWholeFile(Global.DBFPath + ".~lock.ZUKCust.dbf#", "office");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    Click(form, "cmdNext");
    EXPECT_EQ(Shown(form), "1 of 3 C1");
    EXPECT_EQ(TextOf(form, "txtField_4"), QStringLiteral("Acme & Co"));
    Global.TheDisk->Remove(Global.DBFPath + ".~lock.ZUKCust.dbf#");

    // Another table stands there now, without this record.
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "N1|N1|New"});
    Operator_.Expect(msg::RecordGone).With(Icon::Warning);
    Click(form, "cmdNext");
    EXPECT_EQ(Shown(form), "1 of 1 N1");
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_NAME"), "New");
}

} // namespace
