#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "forms/TopicList.h"
#include "platform/GridView.h"
#include "platform/Registry.h"
#include "program/forms/frmMain1.h"
#include "store/DBFEdit.h"
#include "support/CountingDisk.h"
#include "support/TableMaker.h"
#include "views/forms/frmView.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTimer>

#include <filesystem>

namespace {

/// A key to whatever has the focus of a form, as the window system would send it.
void SendKey(QWidget& to, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             const QString& text = {}) {
    for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        QApplication::sendEvent(&to, &event);
    }
    QCoreApplication::processEvents();
}

class Browser : public FormTest {
protected:
    Browser() {
        GivenOffice();
        Global.SelectedRow = 0;
    }

    void GivenCustomers(int count) {
        std::vector<std::string> rows{"C_CODE|C_NAME|C_CITY"};
        for (int k = 1; k <= count; ++k) {
            rows.push_back("C" + std::to_string(1000 + k) + "|Name " + std::to_string(count + 1 - k) + "|" +
                           (k % 2 ? "Bern" : "Oslo"));
        }
        GivenRows("ZUKCUST", rows);
    }

    void GivenOrders(int count) {
        std::vector<std::string> rows{"H_ORDCODE"};
        for (int k = 1; k <= count; ++k) rows.push_back("M1" + std::to_string(1000 + k));
        GivenRows("ZUKORHDR", rows);
    }

    void GivenTotals() {
        GivenRows("ZUKTOTALPC",
                  {"TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_CURHEAD|TP_CURLINE|TP_CURDOL|TP_MACHINE|TP_EVENT|"
                   "TP_DATETIM|TP_HOTSYNC|TP_LSTONUM",
                   "2|5|10.5|12|15|110.5|M1|UPLOAD-ADD|2026-11-15 10:02:00|Anna|M1000002",
                   "1|3|7.25|10|10|100|M2|UPLOAD-ADD|2026-11-15 10:01:00|Ben|M2000001"});
    }

    frmViewGrid& OpenGrid(ViewFlag flag) {
        ShowTable(flag);
        Settle();
        return The<frmViewGrid>();
    }

    static GridView& Grid(FormBehaviour& form, const char* name = "FG1") {
        return dynamic_cast<GridView&>(Control(form, name));
    }

    static QStringList Headings(GridView& grid) {
        QStringList titles;
        for (int column = 0; column < grid.model()->columnCount(); ++column)
            titles << grid.model()->headerData(column, Qt::Horizontal).toString();
        return titles;
    }

    static void ClickHeading(GridView& grid, int column) {
        emit grid.horizontalHeader()->sectionClicked(column);
        Settle();
    }

    static QStringList Column(FormBehaviour& form, int column) {
        QStringList cells;
        for (const QStringList& row : GridRows(form, "FG1")) cells << row.value(column);
        return cells;
    }

    static QLineEdit& FindLine(FormBehaviour& form) {
        return dynamic_cast<QLineEdit&>(Control(form, "txtFind"));
    }

    static void Find(FormBehaviour& form, const QString& text,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        FindLine(form).setText(text);
        SendKey(FindLine(form), Qt::Key_Return, modifiers);
    }

    static std::string TitleOf(FormBehaviour& form) { return form.Window().windowTitle().toStdString(); }
};

// ---- the menu and the main screen's ways in ----

struct ButtonCase {
    const char* Button;
    ViewFlag Flag;
    const char* Caption;
    const char* Title;
    const char* Group;
};

const ButtonCase Buttons[] = {
    {"cmdOrHdr", ViewOrHdr, "Order Headers", "View Order Headers", "frOrders"},
    {"cmdOrLin", ViewOrLin, "Order Lines", "View Order Lines", "frOrders"},
    {"cmdOrHdrAudt", ViewOrHdrAudt, "Order Header Audit", "View Order Header Audit", "frAudit"},
    {"cmdOrLinAudt", ViewOrLinAudt, "Order Line Audit", "View Order Line Audit", "frAudit"},
    {"cmdAudHH", ViewAudHH, "Handheld Totals", "View Handheld Totals", "frAudit"},
    {"cmdCompany", ViewCompany, "Company Details", "View Company Details", "frSetup"},
    {"cmdPrinter", ViewPrinter, "Print Settings", "View Printer Settings", "frSetup"},
    {"cmdSetup", ViewSetup, "Setup", "View Setup", "frSetup"},
    {"cmdCust", ViewCust, "Customers", "View Customers", "frMaster"},
    {"cmdItems", ViewItem, "Items", "View Items", "frMaster"},
    {"cmdBCIndex", ViewBarIn, "Barcode Index", "View Barcode Index", "frIndex"},
    {"cmdSTax", ViewSTax, "Sales Tax", "View Sales Tax", "frSetup"},
    {"cmdPay", ViewPay, "Payments", "View Payments", "frSetup"},
    {"cmdLinks", ViewLink, "Links", "View Links", "frSetup"},
    {"cmdPRN", ViewPRN, "Print Spooler", "View Print Spooler", "frOther"},
};

TEST_F(Browser, EachButtonOfTheMenuOpensItsTableBesideTheMenu) {
    auto& menu = Open<frmView>();
    EXPECT_EQ(TitleOf(menu), "View PC Tables");
    for (const ButtonCase& each : Buttons) {
        Global.SelectedRow = 5;
        EXPECT_EQ(TextOf(menu, each.Button).toStdString(), each.Caption);
        EXPECT_EQ(Control(menu, each.Button).parentWidget()->objectName().toStdString(), each.Group);

        Click(menu, each.Button);

        auto* grid = IfLoaded<frmViewGrid>();
        ASSERT_NE(grid, nullptr) << each.Button;
        EXPECT_EQ(TitleOf(*grid), each.Title);
        EXPECT_TRUE(grid->isVisible());
        EXPECT_FALSE(grid->isModal());
        EXPECT_EQ(std::count(Global.View.begin(), Global.View.end(), true), 1);
        EXPECT_TRUE(Global.View[each.Flag]);
        EXPECT_EQ(Global.SelectedRow, 0);
    }
    EXPECT_NE(IfLoaded<frmView>(), nullptr);
}

TEST_F(Browser, TheTotalsOpenModally) {
    auto& menu = Open<frmView>();
    bool modal = false;
    std::string title;
    QTimer::singleShot(0, qApp, [&] {
        auto& grid = The<frmViewGrid>();
        modal = grid.isModal();
        title = TitleOf(grid);
        Click(grid, "cmdOK");
    });

    Click(menu, "cmdTotals");

    EXPECT_TRUE(modal);
    EXPECT_EQ(title, "View PC Totals");
    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
}

TEST_F(Browser, EveryEntryOfTheMainScreensViewMenuOpensItsTable) {
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    const std::pair<const char*, ViewFlag> entries[] = {{"mnuTblCompany", ViewCompany},
                                                        {"mnuTblLinks", ViewLink},
                                                        {"mnuTblPayments", ViewPay},
                                                        {"mnuTblPrinter", ViewPrinter},
                                                        {"mnuTblStax", ViewSTax},
                                                        {"mnuTblSetup", ViewSetup},
                                                        {"mnuTblCust", ViewCust},
                                                        {"mnuTblItem", ViewItem},
                                                        {"mnuTblOrHdr", ViewOrHdr},
                                                        {"mnuTblOrLin", ViewOrLin},
                                                        {"mnuTblOrHdrAudt", ViewOrHdrAudt},
                                                        {"mnuTblOrLinAudt", ViewOrLinAudt},
                                                        {"mnuTblHHTotals", ViewAudHH},
                                                        {"mnuTblBarIn", ViewBarIn},
                                                        {"mnuTblPRN", ViewPRN},
                                                        {"mnuViewTotals", ViewTotals}};
    for (const auto& [entry, flag] : entries) {
        ClickMenu(main, entry);

        ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr) << entry;
        EXPECT_EQ(ChosenView()->Flag, flag) << entry;
        EXPECT_FALSE(The<frmViewGrid>().isModal());
    }
}

TEST_F(Browser, TheMainScreensButtonsOpenTheMenuAndTheTotals) {
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    bool modal = false;
    QTimer::singleShot(0, qApp, [&] {
        modal = The<frmViewGrid>().isModal();
        Click(The<frmViewGrid>(), "cmdOK");
    });
    Click(main, "cmdPCTotals");
    EXPECT_TRUE(modal);
    EXPECT_EQ(ChosenView()->Flag, ViewTotals);

    Click(main, "lblPCTables");
    EXPECT_NE(IfLoaded<frmView>(), nullptr);
}

TEST_F(Browser, AnotherTableTakesThePlaceOfTheOneThatIsOpen) {
    GivenCustomers(3);
    OpenGrid(ViewCust);

    auto& items = OpenGrid(ViewItem);

    EXPECT_EQ(TitleOf(items), "View Items");
    EXPECT_EQ(GridRows(items, "FG1").size(), 0U);
}

// ---- the grid ----

TEST_F(Browser, TheGridHoldsTheRecordsInTheirOrderWithTheirNumbers) {
    GivenCustomers(3);

    auto& form = OpenGrid(ViewCust);

    EXPECT_EQ(Headings(Grid(form)).mid(0, 4).join(QLatin1Char('|')),
              QStringLiteral("N|Code|Contact Name|Company"));
    const auto rows = GridRows(form, "FG1");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].mid(0, 4).join(QLatin1Char('|')), QStringLiteral("1|C1001||Name 3"));
    EXPECT_EQ(rows[2].mid(0, 4).join(QLatin1Char('|')), QStringLiteral("3|C1003||Name 1"));
    EXPECT_EQ(Grid(form).SelectedRecord(), 1);
}

TEST_F(Browser, WhatHasNoScreenYetIsDisabled) {
    auto& form = OpenGrid(ViewOrHdr);

    EXPECT_FALSE(Enabled(form, "cmdEdit"));
    EXPECT_FALSE(Enabled(form, "cmdPrint")); // there is no report of it
    EXPECT_FALSE(Visible(form, "cmdPreview"));
    EXPECT_TRUE(Enabled(form, "cmdDataView"));
    EXPECT_EQ(TextOf(form, "cmdDataView"), QStringLiteral("View Records"));
    EXPECT_EQ(TextOf(form, "cmdEdit"), QStringLiteral("Edit"));
    EXPECT_EQ(TextOf(form, "cmdPrint"), QStringLiteral("Print"));
    EXPECT_EQ(TextOf(form, "cmdOK"), QStringLiteral("Ok"));
}

TEST_F(Browser, ACellThatLooksLikeMarkupIsShownToTheLetter) {
    GivenRows("ZUKCUST", {"C_CODE|C_NAME", "A1|<b>Bold</b> & Co"});
    auto& form = OpenGrid(ViewCust);
    const QModelIndex name = Grid(form).model()->index(0, 3);

    EXPECT_EQ(name.data().toString(), QStringLiteral("<b>Bold</b> & Co"));
    EXPECT_EQ(name.data(Qt::ToolTipRole).toString(),
              QStringLiteral("<p>&lt;b&gt;Bold&lt;/b&gt; &amp; Co</p>"));
    EXPECT_EQ(Grid(form).accessibleDescription(), QString());
}

TEST_F(Browser, AHeadingSortsAndTheSecondTimeDownwards) {
    GivenCustomers(4);
    auto& form = OpenGrid(ViewCust);

    ClickHeading(Grid(form), 3);
    EXPECT_EQ(Column(form, 0).join(QString()), QStringLiteral("4321"));
    ClickHeading(Grid(form), 3);
    EXPECT_EQ(Column(form, 0).join(QString()), QStringLiteral("1234"));
    ClickHeading(Grid(form), 7);
    EXPECT_EQ(Column(form, 0).join(QString()), QStringLiteral("1324"));
    ClickHeading(Grid(form), 7);
    EXPECT_EQ(Column(form, 0).join(QString()), QStringLiteral("2413"));
    EXPECT_EQ(Grid(form).horizontalHeader()->sortIndicatorSection(), 7);
}

TEST_F(Browser, ASortKeepsTheSelectedRecord) {
    GivenCustomers(4);
    auto& form = OpenGrid(ViewCust);
    Grid(form).SelectRecord(2);

    ClickHeading(Grid(form), 3);

    EXPECT_EQ(Grid(form).SelectedRecord(), 2);
    EXPECT_EQ(Grid(form).currentIndex().row(), 2);
}

TEST_F(Browser, TheLastRecordsNumberFitsItsColumn) {
    std::vector<std::string> rows{"C_CODE"};
    for (int k = 0; k < 12000; ++k) rows.push_back("C" + std::to_string(k));
    GivenRows("ZUKCUST", rows);

    auto& form = OpenGrid(ViewCust);

    EXPECT_GT(Grid(form).columnWidth(0),
              Grid(form).fontMetrics().horizontalAdvance(QStringLiteral("12000")) + 5);
}

TEST_F(Browser, AnEmptyTableShowsAnEmptyGridThatSaysWhatToDo) {
    auto& form = OpenGrid(ViewCust);

    EXPECT_TRUE(GridRows(form, "FG1").empty());
    EXPECT_EQ(
        Grid(form).accessibleDescription(),
        QStringLiteral("This table has no records yet. Use File > Import to fill it, or press 'Edit' to "
                       "type them in."));
    EXPECT_TRUE(Enabled(form, "cmdDataView"));
}

TEST_F(Browser, ATableThatIsMissingOrBrokenIsToldAndNothingOpens) {
    Global.TheDisk->Remove(Global.DBFPath + "ZUKCust.dbf");
    WriteWholeFile(Global.DBFPath + "ZUKItem.dbf", "no table");
    for (const ViewFlag flag : {ViewCust, ViewItem}) {
        Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

        ShowTable(flag);
        Settle();

        EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
        EXPECT_FALSE(Global.Ending);
    }
}

TEST_F(Browser, TheKeysGoToBothEndsAndEnterOpensTheRecordOfATableWithoutAnEditor) {
    GivenOrders(60);
    auto& form = OpenGrid(ViewOrHdr);
    GridView& grid = Grid(form);

    SendKey(grid, Qt::Key_End);
    EXPECT_EQ(grid.SelectedRecord(), 60);
    SendKey(grid, Qt::Key_Home);
    EXPECT_EQ(grid.SelectedRecord(), 1);
    SendKey(grid, Qt::Key_PageDown);
    EXPECT_GT(grid.SelectedRecord(), 5);
    SendKey(grid, Qt::Key_PageUp);
    EXPECT_EQ(grid.SelectedRecord(), 1);
    SendKey(grid, Qt::Key_Down);
    SendKey(grid, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));

    ASSERT_NE(IfLoaded<frmViewData>(), nullptr);
    EXPECT_EQ(TextOf(The<frmViewData>(), "lblCount"), QStringLiteral("2 of 60"));
    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
}

TEST_F(Browser, ADoubleClickOpensTheRecordOfATableWithoutAnEditor) {
    GivenOrders(3);
    auto& form = OpenGrid(ViewOrHdr);
    Grid(form).SelectRecord(3);

    emit Grid(form).doubleClicked(Grid(form).currentIndex());
    Settle();

    ASSERT_NE(IfLoaded<frmViewData>(), nullptr);
    EXPECT_EQ(TextOf(The<frmViewData>(), "lblCount"), QStringLiteral("3 of 3"));
}

TEST_F(Browser, TheSelectedRecordIsOpenedInEveryOrder) {
    GivenCustomers(3);
    auto& form = OpenGrid(ViewCust);
    ClickHeading(Grid(form), 3); // 3, 2, 1
    SendKey(Grid(form), Qt::Key_Home);

    Click(form, "cmdDataView");

    EXPECT_EQ(Global.SelectedRow, 3);
    EXPECT_EQ(TextOf(The<frmViewData>(), "lblCount"), QStringLiteral("3 of 3"));
}

TEST_F(Browser, SelectedRowsAreCopiedWithTheirHeadings) {
    GivenRows("ZUKSTAX", {"ST_CODE|ST_DESC|ST_RATE", "A|Town\there|6.5", "B|City|7", "C|None|0"});
    auto& form = OpenGrid(ViewSTax);
    GridView& grid = Grid(form);
    SendKey(grid, Qt::Key_Down, Qt::ShiftModifier);

    grid.CopyRows();

    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "N\tCode\tDescription\tRate\n1\tA\tTown here\t6.50000\n2\tB\tCity\t7.00000\n");
}

TEST_F(Browser, FindGoesFromRowToRowInTheColumnAtHand) {
    GivenCustomers(5);
    auto& form = OpenGrid(ViewCust);
    GridView& grid = Grid(form);
    grid.setCurrentIndex(grid.model()->index(0, 7));
    grid.ShowFindBar();

    Find(form, QStringLiteral("oslo"));
    EXPECT_EQ(grid.SelectedRecord(), 2);
    SendKey(FindLine(form), Qt::Key_F3);
    EXPECT_EQ(grid.SelectedRecord(), 4);
    SendKey(FindLine(form), Qt::Key_F3);
    EXPECT_EQ(grid.SelectedRecord(), 2);
    SendKey(FindLine(form), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(grid.SelectedRecord(), 4);
    EXPECT_FALSE(Visible(form, "lblNotFound"));
    EXPECT_EQ(TextOf(form, "lblFind"), QStringLiteral("Find in City:"));
}

TEST_F(Browser, TypingInTheGridBeginsToFindAndReadsNothing) {
    GivenCustomers(5);
    auto& form = OpenGrid(ViewCust);
    CountingDisk disk;
    Global.TheDisk = &disk;

    SendKey(Grid(form), Qt::Key_C, Qt::NoModifier, QStringLiteral("c"));
    Global.TheDisk = &NativeDisk();

    EXPECT_EQ(FindLine(form).text(), QStringLiteral("c"));
    EXPECT_EQ(disk.Opened, 0U);
    SendKey(FindLine(form), Qt::Key_Return);
    EXPECT_EQ(Grid(form).SelectedRecord(), 2);
}

TEST_F(Browser, FindSaysWhenThereIsNothingAndEscClosesOnlyTheLine) {
    GivenCustomers(2);
    auto& form = OpenGrid(ViewCust);
    Grid(form).ShowFindBar();

    Find(form, QStringLiteral("Nowhere"));
    EXPECT_TRUE(Visible(form, "lblNotFound"));
    Find(form, QStringLiteral("\u65E5"));
    EXPECT_TRUE(Visible(form, "lblNotFound"));
    SendKey(FindLine(form), Qt::Key_Escape);

    EXPECT_NE(IfLoaded<frmViewGrid>(), nullptr);
    EXPECT_FALSE(Control(form, "txtFind").isVisible());
}

TEST_F(Browser, DrawnWidthsAreKeptForTheTableAndOthersAreFitted) {
    GivenCustomers(2);
    {
        auto& form = OpenGrid(ViewCust);
        Grid(form).setColumnWidth(3, 333);
        Click(form, "cmdOK");
    }

    auto& customers = OpenGrid(ViewCust);
    EXPECT_EQ(Grid(customers).columnWidth(3), 333);
    auto& items = OpenGrid(ViewItem);
    EXPECT_NE(Grid(items).columnWidth(3), 333);
}

TEST_F(Browser, KeptWidthsThatCannotBeTrueAreNotTaken) {
    GivenCustomers(2);
    const QString name = QStringLiteral("frmViewGrid ZUKCUST.DBF");
    int fitted = 0;
    {
        auto& form = OpenGrid(ViewCust);
        fitted = Grid(form).columnWidth(3);
        Click(form, "cmdOK");
    }

    Registry::SetColumnWidths(name, {100, 200});
    EXPECT_EQ(Grid(OpenGrid(ViewCust)).columnWidth(3), fitted);
    Registry::SetColumnWidths(name, QList<int>(14, -5));
    EXPECT_GT(Grid(OpenGrid(ViewCust)).columnWidth(3), 0);
    Registry::SetColumnWidths(name, QList<int>(14, 2'000'000'000));
    EXPECT_LT(Grid(OpenGrid(ViewCust)).columnWidth(3), 5000);
    EXPECT_EQ(Registry::ColumnWidths(name).size(), 14);
    EXPECT_TRUE(Registry::ColumnWidths(QStringLiteral("another")).isEmpty());
}

TEST_F(Browser, ATableThatIsReplacedWhileItIsShownIsShownAnew) {
    GivenCustomers(3);
    auto& form = OpenGrid(ViewCust);
    ClickHeading(Grid(form), 1);
    ClickHeading(Grid(form), 1); // downwards
    Grid(form).SelectRecord(2);
    GivenCustomers(2);

    Grid(form).Refresh();

    EXPECT_EQ(GridRows(form, "FG1").size(), static_cast<std::size_t>(RecordCount("ZUKCUST")));
    EXPECT_EQ(Grid(form).SelectedRecord(), 2);
    EXPECT_EQ(Column(form, 1).join(QLatin1Char(' ')), QStringLiteral("C1002 C1001"));
}

TEST_F(Browser, ATableThatGoesWhileItIsShownLeavesAGridThatSaysSo) {
    GivenCustomers(3);
    auto& form = OpenGrid(ViewCust);
    Global.TheDisk->Remove(Global.DBFPath + "ZUKCust.dbf");

    Grid(form).Refresh();

    EXPECT_TRUE(GridRows(form, "FG1").empty());
    EXPECT_TRUE(Grid(form).accessibleDescription().startsWith(QStringLiteral("The table cannot be read:")));
    EXPECT_FALSE(Global.Ending);
}

TEST_F(Browser, AGridThatReadsAnotherTableLoadsItByItself) {
    std::vector<std::string> rows{"C_CODE"};
    for (int k = 0; k < 2000; ++k) rows.push_back("C" + std::to_string(k));
    GivenRows("ZUKCUST", rows);
    auto& form = OpenGrid(ViewCust);
    std::filesystem::copy(Global.DBFEmptyPath + "ZUKCust.dbf", Global.DBFPath + "ZUKCust.dbf",
                          std::filesystem::copy_options::overwrite_existing);

    // A row that was not on the screen before.
    Grid(form).model()->index(1500, 1).data();
    Settle();

    EXPECT_TRUE(GridRows(form, "FG1").empty());
}

// ---- the totals ----

TEST_F(Browser, TheTotalsStandUnderTwoHeadingRows) {
    GivenTotals();

    auto& form = OpenGrid(ViewTotals);

    const auto rows = GridRows(form, "FG1");
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0].join(QLatin1Char('|')), QStringLiteral("LAST EVENT|||||TOTAL PC|||Handheld||"));
    EXPECT_EQ(rows[1].join(QLatin1Char('|')),
              QStringLiteral("Event|Date / Time|#Orders|#Lines|$Total|#Orders|#Lines|$Total|Hotsync ID|Mach#|"
                             "Last Order #"));
    EXPECT_EQ(rows[2].join(QLatin1Char('|')),
              QStringLiteral("UPLOAD-ADD|2026-11-15 10:02:00|12|15|110.50|2|5|10.50|Anna|M1|M1000002"));
    const auto* model = Grid(form).model();
    EXPECT_EQ(model->index(0, 0).data(Qt::BackgroundRole).value<QBrush>().color(),
              QApplication::palette().color(QPalette::Button));
    EXPECT_EQ(model->index(1, 3).data(Qt::ForegroundRole).value<QBrush>().color(),
              QApplication::palette().color(QPalette::ButtonText));
}

TEST_F(Browser, TheHeadingRowsOfTheTotalsCanNotBePrintedOrViewedSingly) {
    GivenTotals();
    auto& form = OpenGrid(ViewTotals);
    GridView& grid = Grid(form);
    EXPECT_EQ(grid.currentIndex().row(), 2);
    EXPECT_TRUE(Enabled(form, "cmdDataView"));
    EXPECT_TRUE(Enabled(form, "cmdPrint"));

    for (const int row : {0, 1}) {
        grid.setCurrentIndex(grid.model()->index(row, 0));
        EXPECT_FALSE(Enabled(form, "cmdDataView"));
        EXPECT_FALSE(Enabled(form, "cmdPrint"));
        EXPECT_FALSE(Enabled(form, "cmdPreview"));
        emit grid.doubleClicked(grid.currentIndex());
        Settle();
        EXPECT_EQ(IfLoaded<frmViewData>(), nullptr);
    }
    grid.setCurrentIndex(grid.model()->index(3, 0));
    EXPECT_TRUE(Enabled(form, "cmdDataView"));
    EXPECT_TRUE(Enabled(form, "cmdPrint"));
}

TEST_F(Browser, CopyingAHeadingRowAloneLeavesTheClipboard) {
    GivenTotals();
    auto& form = OpenGrid(ViewTotals);
    QApplication::clipboard()->setText(QStringLiteral("mine"));
    Grid(form).setCurrentIndex(Grid(form).model()->index(1, 0));

    Grid(form).CopyRows();

    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("mine"));
}

TEST_F(Browser, InTheTotalsTheThirdRowStandsInForNone) {
    GivenTotals();
    auto& form = OpenGrid(ViewTotals);

    Grid(form).setCurrentIndex({});

    EXPECT_EQ(Grid(form).currentIndex().row(), 2);
}

TEST_F(Browser, TotalsWithoutAnEventHaveOnlyTheirHeadings) {
    auto& form = OpenGrid(ViewTotals);

    EXPECT_EQ(GridRows(form, "FG1").size(), 2U);
    EXPECT_FALSE(Enabled(form, "cmdDataView"));
}

TEST_F(Browser, AClickOnATitleOfTheTotalsSortsTheRowsBelow) {
    GivenTotals();
    auto& form = OpenGrid(ViewTotals);
    GridView& grid = Grid(form);

    grid.setCurrentIndex(grid.model()->index(1, 4));
    emit grid.clicked(grid.currentIndex());
    Settle();

    const auto rows = GridRows(form, "FG1");
    EXPECT_TRUE(rows[1][4].startsWith(QStringLiteral("$Total")));
    EXPECT_EQ(rows[2][4], QStringLiteral("100.00"));
    EXPECT_EQ(rows[3][4], QStringLiteral("110.50"));
}

TEST_F(Browser, ARowOfTheTotalsOpensItsRecord) {
    GivenTotals();
    auto& form = OpenGrid(ViewTotals);
    Grid(form).setCurrentIndex(Grid(form).model()->index(3, 0));

    Click(form, "cmdDataView");

    auto& records = The<frmViewData>();
    EXPECT_EQ(TextOf(records, "lblCount"), QStringLiteral("2 of 2"));
    EXPECT_EQ(TextOf(records, "txtOrHdr_10"), QStringLiteral("Ben"));
    EXPECT_EQ(TitleOf(records), "View PC Totals");
}

// ---- the record viewer ----

TEST_F(Browser, TheRecordViewerShowsEveryFieldUnderItsLabel) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_SERIAL|LK_SFUSER", " Anna Berg|S1|x", "Ben|S2|y"});
    auto& grid = OpenGrid(ViewLink);

    Click(grid, "cmdDataView");

    auto& form = The<frmViewData>();
    EXPECT_EQ(TitleOf(form), "View Links");
    EXPECT_EQ(TextOf(form, "lblOrHdr_1"), QStringLiteral("Handheld Hotsync ID:"));
    EXPECT_EQ(TextOf(form, "txtOrHdr_1"), QStringLiteral("Anna Berg"));
    EXPECT_EQ(TextOf(form, "lblOrHdr_7"), QStringLiteral("LK_SFUSER"));
    EXPECT_EQ(TextOf(form, "txtOrHdr_7"), QStringLiteral("x"));
    EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("1 of 2"));
    EXPECT_TRUE(Enabled(form, "cmdEdit"));
}

TEST_F(Browser, TheRecordViewerOpensTheTopicOfItsTable) {
    TopicList help;
    const std::pair<ViewFlag, const char*> topics[] = {
        {ViewOrHdrAudt, "Auditing_Sales_Orders.htm"},
        {ViewAudHH, "Auditing_Sales_Orders.htm"},
        {ViewCompany, "Change_the_Setup_Tables_to_Match_Your_Company._.htm"},
        {ViewLink, "Change_the_Setup_Tables_to_Match_Your_Company._.htm"},
        {ViewOrHdr, "INTRODUCTION.htm"},
        {ViewTotals, "INTRODUCTION.htm"}};
    for (const auto& [flag, topic] : topics) {
        ClearViewFlags();
        Global.View[flag] = true;
        auto& form = Open<frmViewData>();
        Click(form, "cmdHelp");
        EXPECT_EQ(help.Opened(), std::vector<std::string>{topic});
        form.Unload();
    }
}

TEST_F(Browser, TheRecordViewerWalksAndStopsAtBothEnds) {
    GivenCustomers(3);
    Click(OpenGrid(ViewCust), "cmdDataView");
    auto& form = The<frmViewData>();
    const auto after = [&](const char* button) {
        Click(form, button);
        return (TextOf(form, "lblCount") + QLatin1Char(' ') + TextOf(form, "txtOrHdr_2")).toStdString();
    };

    EXPECT_EQ(after("cmdNext"), "2 of 3 C1002");
    EXPECT_EQ(after("cmdNext"), "3 of 3 C1003");
    EXPECT_EQ(after("cmdNext"), "3 of 3 C1003");
    EXPECT_EQ(after("cmdPrevious"), "2 of 3 C1002");
    EXPECT_EQ(after("cmdFirst"), "1 of 3 C1001");
    EXPECT_EQ(after("cmdPrevious"), "1 of 3 C1001");
    EXPECT_EQ(after("cmdLast"), "3 of 3 C1003");
}

TEST_F(Browser, AnEmptyTableHasNoRecordsToDisplay) {
    Click(OpenGrid(ViewCust), "cmdDataView");

    auto& form = The<frmViewData>();
    EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("No records to display!"));
    EXPECT_EQ(TextOf(form, "txtOrHdr_1"), QString());
    for (const char* button : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"})
        EXPECT_FALSE(Enabled(form, button));

    Click(form, "cmdGridView");
    EXPECT_NE(IfLoaded<frmViewGrid>(), nullptr);
}

TEST_F(Browser, TheGridComesBackOnTheSameRow) {
    GivenCustomers(40);
    auto& grid = OpenGrid(ViewCust);
    Grid(grid).SelectRecord(30);
    Click(grid, "cmdDataView");
    Click(The<frmViewData>(), "cmdNext");

    Click(The<frmViewData>(), "cmdGridView");

    ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr);
    EXPECT_EQ(IfLoaded<frmViewData>(), nullptr);
    EXPECT_EQ(Grid(The<frmViewGrid>()).SelectedRecord(), 31);
    EXPECT_EQ(ChosenView()->Flag, ViewCust);
}

TEST_F(Browser, FromEachEditorTheGridComesBackOnTheSameRecordAlsoWhenItWasSorted) {
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "A|I1|Awl|1", "S|I2|Saw|2", "N|I3|Nail|3"});
    GivenRows("ZUKSTAX", {"ST_CODE|ST_DESC|ST_RATE", "AK|Alaska|1", "TX|Texas|2", "NY|New York|3"});
    GivenRows("ZUKPAY", {"PAY_CODE|PAY_CDESC", "CARD|Amex", "CASH|", "CHECK|"});
    for (const ViewFlag flag : {ViewItem, ViewSTax, ViewPay}) {
        SCOPED_TRACE(flag);
        auto& grid = OpenGrid(flag);
        ClickHeading(Grid(grid), 1);
        ClickHeading(Grid(grid), 1); // downwards
        Grid(grid).SelectRecord(2);
        Click(grid, "cmdEdit");
        ASSERT_EQ(IfLoaded<frmViewGrid>(), nullptr);
        auto* editor = FormRegistry::Instance().Find(flag == ViewItem   ? "frmEditItem"
                                                     : flag == ViewSTax ? "frmEditSTax"
                                                                        : "frmPay");
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(TextOf(*editor, "lblCount"), QStringLiteral("2 of 3"));

        Click(*editor, "cmdView");
        Settle();

        ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr);
        EXPECT_EQ(Grid(The<frmViewGrid>()).SelectedRecord(), 2);
        The<frmViewGrid>().Unload();
    }
}

TEST_F(Browser, ARowThatIsNoLongerThereIsNotSelectedAgain) {
    GivenCustomers(3);
    ClearViewFlags();
    Global.View[ViewCust] = true;
    Global.SelectedRow = 9;

    auto& grid = Open<frmViewGrid>();

    EXPECT_EQ(Grid(grid).SelectedRecord(), 1);
}

TEST_F(Browser, AChangeOfTheRecordShowsWhenTheFormHasTheFocusAgain) {
    GivenCustomers(2);
    Click(OpenGrid(ViewCust), "cmdDataView");
    auto& form = The<frmViewData>();
    DBFEdit table;
    table.FileOpen(Global.DBFPath + "ZUKCust.dbf");
    table.Go(1);
    table.WriteData(FieldKey("C_CODE"), "NEW");
    table.UpDate();
    table.Go(DBFEdit::Append);
    table.FileClose();
    auto& above = Open<frmView>();

    above.Unload();
    Settle();

    EXPECT_EQ(TextOf(form, "txtOrHdr_2"), QStringLiteral("NEW"));
    EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("1 of 3"));
}

TEST_F(Browser, ATableThatGoesUnderTheRecordViewerIsToldAndClosesIt) {
    GivenCustomers(2);
    Click(OpenGrid(ViewCust), "cmdDataView");
    Global.TheDisk->Remove(Global.DBFPath + "ZUKCust.dbf");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(The<frmViewData>(), "cmdNext");

    EXPECT_EQ(IfLoaded<frmViewData>(), nullptr);
    EXPECT_FALSE(Global.Ending);
}

TEST_F(Browser, TheRecordViewerShowsLongFieldsWholeAndAllOfAHeadersFields) {
    GivenRows("ZUKPRN", {"PRN_ORDCOD|PRN_LINE", "M1000001|a line of the order"});
    Click(OpenGrid(ViewPRN), "cmdDataView");
    EXPECT_EQ(Control(The<frmViewData>(), "lblOrHdr_1").parentWidget(),
              The<frmViewData>().findChild<QWidget*>("picFields"));

    Click(OpenGrid(ViewOrHdr), "cmdDataView");

    auto& form = The<frmViewData>();
    EXPECT_EQ(TextOf(form, "lblOrHdr_56"), QStringLiteral("Time Printed:"));
    EXPECT_LE(form.width(), 1024);
    EXPECT_LE(form.height(), 768);
}

TEST_F(Browser, AWideStrangeTableIsShownToo) {
    TableMaker maker = [] {
        std::vector<TableMaker::Column> columns;
        for (int k = 1; k <= 255; ++k) columns.push_back({"F" + std::to_string(k), 'C', k == 7 ? 200 : 3});
        return TableMaker(columns);
    }();
    WriteWholeFile(Global.DBFPath + "ZUKPAY.dbf", maker.Row(std::vector<std::string>(255, "abc")).Bytes());

    auto& grid = OpenGrid(ViewPay);
    EXPECT_EQ(Headings(Grid(grid)).size(), 256);
    Click(grid, "cmdDataView");

    auto& form = The<frmViewData>();
    EXPECT_EQ(TextOf(form, "txtOrHdr_255"), QStringLiteral("abc"));
    EXPECT_EQ(dynamic_cast<QPlainTextEdit&>(Control(form, "txtOrHdr_7")).toPlainText(),
              QStringLiteral("abc"));
}

TEST_F(Browser, AMillionRecordsOpenAndScrollByWhatIsOnTheScreen) {
    TableMaker maker({{"PAY_CODE", 'C', 10}, {"PAY_REF", 'C', 9}});
    std::string bytes = maker.ClaimCount(1'000'000).End("").Bytes();
    const std::string record = std::string(" ") + "CODE      " + "REFERENCE";
    bytes.reserve(bytes.size() + 1'000'000 * record.size());
    for (int k = 0; k < 1'000'000; ++k) bytes += record;
    WriteWholeFile(Global.DBFPath + "ZUKPAY.dbf", bytes);
    CountingDisk disk;
    Global.TheDisk = &disk;
    const auto back = qScopeGuard([] {
        The<frmViewGrid>().Unload();
        Global.TheDisk = &NativeDisk();
    });

    auto& form = OpenGrid(ViewPay);
    GridView& grid = Grid(form);
    EXPECT_EQ(grid.model()->rowCount(), 1'000'000);
    EXPECT_LT(disk.BytesRead, 100'000U);
    SendKey(grid, Qt::Key_End);
    EXPECT_EQ(grid.SelectedRecord(), 1'000'000);
    for (int k = 0; k < 20; ++k) SendKey(grid, Qt::Key_PageUp);

    EXPECT_LT(disk.BytesRead, 300'000U);
}

TEST_F(Browser, TheRowsStandStillWhenTheTableIsReadAnew) {
    GivenCustomers(300);
    auto& grid = Grid(OpenGrid(ViewCust));
    grid.SelectRecord(150);
    grid.verticalScrollBar()->setValue(145);

    GivenCustomers(301);
    grid.Refresh();

    EXPECT_EQ(grid.model()->rowCount(), 301);
    EXPECT_EQ(grid.SelectedRecord(), 150);
    EXPECT_EQ(grid.verticalScrollBar()->value(), 145);

    grid.verticalScrollBar()->setValue(10); // the selected row is out of sight, and may stay there
    GivenCustomers(302);
    grid.Refresh();

    EXPECT_EQ(grid.verticalScrollBar()->value(), 10);
}

} // namespace
