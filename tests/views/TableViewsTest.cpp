#include "views/TableViews.h"

#include "core/Messages.h"
#include "support/EngineTest.h"
#include "support/Tables.h"

namespace {

struct ViewCase {
    ViewFlag Flag;
    const char* File;
    const char* Title;
    const char* Icon;
    DisplayRoutine Display;
};

const ViewCase Cases[] = {
    {ViewOrHdr, "ZUKORHDR.DBF", "View Order Headers", "Orders48x48-16M.ico", DisplayRoutine::Data},
    {ViewOrLin, "ZUKORLIN.DBF", "View Order Lines", "Orders48x48-16M.ico", DisplayRoutine::Data},
    {ViewOrHdrAudt, "ZUKAUDTH.DBF", "View Order Header Audit", "", DisplayRoutine::Data},
    {ViewOrLinAudt, "ZUKAUDTL.DBF", "View Order Line Audit", "", DisplayRoutine::Data},
    {ViewAudHH, "ZUKAUDHH.DBF", "View Handheld Totals", "", DisplayRoutine::Data},
    {ViewCompany, "ZUKCOMP.DBF", "View Company Details", "SetupCompanyData32x32-16M.ico",
     DisplayRoutine::Data},
    {ViewPrinter, "ZUKPRINT.DBF", "View Printer Settings", "", DisplayRoutine::Data},
    {ViewSetup, "ZUKSETUP.DBF", "View Setup", "", DisplayRoutine::Data},
    {ViewCust, "ZUKCUST.DBF", "View Customers", "Customers32x32-16M.ico", DisplayRoutine::CustData},
    {ViewItem, "ZUKITEM.DBF", "View Items", "Items48x48-16M.ico", DisplayRoutine::ItemData},
    {ViewBarIn, "ZUKBARIN.DBF", "View Barcode Index", "", DisplayRoutine::Data},
    {ViewTotals, "ZUKTotalPC.DBF", "View PC Totals", "", DisplayRoutine::TotalsData},
    {ViewSTax, "ZUKSTAX.DBF", "View Sales Tax", "", DisplayRoutine::STaxData},
    {ViewPay, "ZUKPAY.DBF", "View Payments", "", DisplayRoutine::Data},
    {ViewLink, "ZUKLINK.DBF", "View Links", "UpDtHSUsers32x32-16M.ico", DisplayRoutine::Data},
    {ViewPRN, "ZUKPRN.DBF", "View Print Spooler", "", DisplayRoutine::Data},
};

class TableViewsTest : public EngineTest {
protected:
    TableViewsTest() { GivenAppDirectory(); }

    static std::vector<std::string> Titles(const TableColumns& columns) {
        std::vector<std::string> titles;
        for (const TableColumn& column : columns.Columns) titles.push_back(column.Heading.Title.CodePage());
        return titles;
    }

    /// "title field" of each column behind the record's number, with its decimals where it has any.
    static std::vector<std::string> Described(const TableColumns& columns, const TableLayout& layout) {
        std::vector<std::string> lines;
        for (const TableColumn& column : columns.Columns) {
            std::string line = column.Heading.Title.CodePage();
            for (const int field : column.Fields) line += " " + std::string(layout.PlainName(field));
            if (column.Decimals >= 0) line += " " + std::to_string(column.Decimals);
            lines.push_back(line);
        }
        return lines;
    }

    TableLayout LayoutOf(const char* table) {
        return TableReader(GivenTable(Global.DBFPath, table)).Layout();
    }
};

TEST_F(TableViewsTest, EachFlagOpensItsTableUnderItsTitleWithItsIcon) {
    ASSERT_EQ(AllTableViews().size(), std::size(Cases) + 1); // the list of backups is none
    for (const ViewCase& each : Cases) {
        ClearViewFlags();
        Global.View[each.Flag] = true;

        const TableView* view = ChosenView();

        ASSERT_NE(view, nullptr);
        EXPECT_EQ(view->Flag, each.Flag);
        EXPECT_EQ(view->Path(), Global.DBFPath + each.File);
        EXPECT_EQ(Text(view->GridTitle).CodePage(), each.Title);
        EXPECT_EQ(Text(view->RecordTitle).CodePage(), each.Title);
        EXPECT_STREQ(view->Icon, each.Icon);
        EXPECT_EQ(view->Display, each.Display) << each.File;
        EXPECT_GT(Text(view->WhenEmpty).Utf8().size(), 40U);
        EXPECT_EQ(&view->Table(), FindTable(each.File));
    }
}

TEST_F(TableViewsTest, TheListOfBackupsIsNoTable) {
    ClearViewFlags();
    Global.View[ViewRestore] = true;

    const TableView* view = ChosenView();

    ASSERT_NE(view, nullptr);
    EXPECT_STREQ(view->File, "");
    EXPECT_EQ(Text(view->GridTitle).CodePage(), "Restore Orders");
    EXPECT_STREQ(view->Icon, "Restore.ico");
    EXPECT_EQ(view->Display, DisplayRoutine::RestoreData);
}

TEST_F(TableViewsTest, TheFirstFlagThatIsSetCounts) {
    EXPECT_EQ(ChosenView(), nullptr);
    Global.View[ViewLink] = true;
    Global.View[ViewCust] = true;

    EXPECT_EQ(ChosenView()->Flag, ViewCust);
}

TEST_F(TableViewsTest, ClearingForgetsEveryFlagAndTheSelectedRow) {
    Global.View.fill(true);
    Global.SelectedRow = 7;

    ClearViewFlags();

    EXPECT_EQ(ChosenView(), nullptr);
    EXPECT_EQ(Global.SelectedRow, 0);
}

TEST_F(TableViewsTest, AnyTableShowsItsRecordNumberAndEveryFieldUnderItsLabel) {
    const TableLayout layout = LayoutOf("ZUKLINK");

    const TableColumns columns = DataColumns(*FindTable("ZUKLINK"), layout);

    EXPECT_EQ(Titles(columns),
              (std::vector<std::string>{"N", "Handheld Hotsync ID", "Handheld Serial Number", "Machine ID",
                                        "Last Order Number", "Use Barcode Scanner", "Scan Last Digit",
                                        "LK_SFUSER", "Link Field"}));
    EXPECT_TRUE(columns.Groups.empty());
}

TEST_F(TableViewsTest, NumericFieldsSortByNumberAndOthersByText) {
    const TableLayout layout = LayoutOf("ZUKAudHH");

    const TableColumns columns = DataColumns(*FindTable("ZUKAudHH"), layout);

    std::string kinds;
    for (const TableColumn& column : columns.Columns) kinds += static_cast<char>(column.Heading.Kind);
    EXPECT_EQ(kinds, "NNNNTTTTT");
}

TEST_F(TableViewsTest, AFieldThatTheCatalogueLacksIsShownUnderItsOwnName) {
    const std::string path = GivenFile("T.DBF", TableMaker({{"C_CODE", 'C', 4}, {"EXTRA", 'C', 4}}).Bytes());

    const TableColumns columns = DataColumns(*FindTable("ZUKCUST"), TableReader(path).Layout());

    EXPECT_EQ(Titles(columns), (std::vector<std::string>{"N", "Code", "EXTRA"}));
}

TEST_F(TableViewsTest, CustomersHaveThirteenChosenColumns) {
    const TableLayout layout = LayoutOf("ZUKCUST");

    EXPECT_EQ(
        Described(CustColumns(layout), layout),
        (std::vector<std::string>{"N", "Code C_CODE", "Contact Name C_CONTACT", "Company C_NAME",
                                  "Phone C_PHONE", "Address 1 C_ADDRESS1", "Address 2 C_ADDRESS2",
                                  "City C_CITY", "State C_STATE", "Zip C_ZIP", "Payment Terms C_PAYTERMS",
                                  "Ship Via C_SHIPVIA", "Sales Tax Code C_STCODE", "Search Value C_SEARCH"}));
}

TEST_F(TableViewsTest, ItemsAndSalesTaxHaveTheirColumnsAndDecimals) {
    const TableLayout items = LayoutOf("ZUKITEM");
    const TableLayout taxes = LayoutOf("ZUKSTAX");

    EXPECT_EQ(Described(ItemColumns(items), items),
              (std::vector<std::string>{"N", "Code I_ITEMCODE", "Barcode I_BARCODE", "Description I_DESC1",
                                        "Price per UM I_PRICE 2", "Unit of Measure I_UM",
                                        "Search Value I_SEARCH"}));
    EXPECT_EQ(Described(STaxColumns(taxes), taxes),
              (std::vector<std::string>{"N", "Code ST_CODE", "Description ST_DESC", "Rate ST_RATE 5"}));
}

TEST_F(TableViewsTest, TotalsHaveElevenColumnsUnderThreeTitles) {
    const TableLayout layout = LayoutOf("ZUKTOTALPC");

    const TableColumns columns = TotalsColumns(layout);

    EXPECT_EQ(Described(columns, layout),
              (std::vector<std::string>{"Event TP_EVENT", "Date / Time TP_DATETIM ", "#Orders TP_CURHEAD",
                                        "#Lines TP_CURLINE", "$Total TP_CURDOL 2", "#Orders TP_NUMHEAD",
                                        "#Lines TP_NUMLINE", "$Total TP_DOL_LIN 2", "Hotsync ID TP_HOTSYNC",
                                        "Mach# TP_MACHINE", "Last Order # TP_LSTONUM"}));
    ASSERT_EQ(columns.Groups.size(), 3U);
    EXPECT_EQ(columns.Groups[0].Title.CodePage(), "LAST EVENT");
    EXPECT_EQ(columns.Groups[1].Title.CodePage(), "TOTAL PC");
    EXPECT_EQ(columns.Groups[2].Title.CodePage(), "Handheld");
    int next = 0;
    for (const GridGroup& group : columns.Groups) {
        EXPECT_EQ(group.First, next);
        next += group.Columns;
    }
    EXPECT_EQ(next, 11);
}

TEST_F(TableViewsTest, ThePriceIsShownWithTwoDecimalsAndTheRateWithFive) {
    TableGrid items(GivenTable(Global.DBFPath, "ZUKITEM",
                               {RowOf("ZUKITEM", {{"I_ITEMCODE", "I1"}, {"I_PRICE", "12.345"}})}),
                    ItemColumns);
    TableGrid taxes(
        GivenTable(Global.DBFPath, "ZUKSTAX", {RowOf("ZUKSTAX", {{"ST_CODE", "VT"}, {"ST_RATE", "6.5"}})}),
        STaxColumns);

    EXPECT_EQ(items.Cell(0, 4).CodePage(), "12.35");
    EXPECT_EQ(taxes.Cell(0, 3).CodePage(), "6.50000");
}

// ---- what the Quality Check's report sends the grid to show ----

struct FaultCase {
    ViewFlag Flag;
    const char* Table;
    const char* Field;
    int Column; ///< from 1, as the record's number is the first
};

const FaultCase Faults[] = {
    {ViewCust, "ZUKCUST", "C_CODE", 2},    {ViewCust, "ZUKCUST", "C_SEARCH", 14},
    {ViewCust, "ZUKCUST", "C_STCODE", 13}, {ViewItem, "ZUKITEM", "I_ITEMCODE", 2},
    {ViewItem, "ZUKITEM", "I_SEARCH", 7},  {ViewItem, "ZUKITEM", "I_PRICE", 5},
    {ViewItem, "ZUKITEM", "I_BARCODE", 3}, {ViewSTax, "ZUKSTAX", "ST_CODE", 2},
    {ViewPay, "ZUKPAY", "PAY_CODE", 2},    {ViewLink, "ZUKLINK", "LK_HOTSYNC", 2},
};

class ReportedCellsTest : public TableViewsTest {
protected:
    static void GivenReport(ViewFlag flag, const char* field, const char* records, const char* severity) {
        ClearViewFlags();
        Global.View[flag] = true;
        Global.QCViewMode = true;
        Global.QCViewRecords = records;
        Global.QCViewField = field;
        Global.QCViewSeverity = severity;
    }

    static TableColumns ColumnsOf(const FaultCase& each, const TableLayout& layout) {
        switch (each.Flag) {
        case ViewCust:
            return CustColumns(layout);
        case ViewItem:
            return ItemColumns(layout);
        case ViewSTax:
            return STaxColumns(layout);
        default:
            return DataColumns(*FindTable(each.Table), layout);
        }
    }
};

TEST_F(ReportedCellsTest, TheFieldOfTheRowIsMarkedInItsColumn) {
    for (const FaultCase& each : Faults) {
        GivenReport(each.Flag, each.Field, "1, 3", "Fatal");

        const auto cells = ReportedCells();

        ASSERT_TRUE(cells) << each.Field;
        EXPECT_EQ(cells->Column, each.Column - 1) << each.Field;
        EXPECT_EQ(cells->Records, (std::vector<std::int32_t>{1, 3}));
        EXPECT_EQ(cells->Mark, CellMark::Fatal);
        const TableLayout layout = LayoutOf(each.Table);
        const TableColumns columns = ColumnsOf(each, layout);
        const auto& shown = columns.Columns.at(static_cast<std::size_t>(cells->Column));
        ASSERT_EQ(shown.Fields.size(), 1U) << each.Field;
        EXPECT_EQ(layout.PlainName(shown.Fields[0]), each.Field) << "that column shows the field";
    }
}

TEST_F(ReportedCellsTest, ListsOfTwoRecordsMarkExactlyTwoCells) {
    GivenTable(Global.DBFPath, "ZUKCUST",
               {{"A", "A1"}, {"B", ""}, {"C", "C1"}, {"D", ""}}); // records 2 and 4 have no code
    for (const auto& [severity, mark] :
         {std::pair{"Fatal", CellMark::Fatal}, std::pair{"Warn", CellMark::Warn},
          std::pair{"Other", CellMark::None}}) {
        GivenReport(ViewCust, "C_CODE", "2, 4", severity);
        TableGrid grid(Global.DBFPath + "ZUKCUST.DBF", CustColumns);
        grid.MarkFaulty(ReportedCells().value());

        for (std::int32_t row = 0; row < grid.RowCount(); ++row) {
            for (int column = 0; column < grid.ColumnCount(); ++column) {
                const bool isListed = column == 1 && (row == 1 || row == 3);
                EXPECT_EQ(grid.MarkOf(row, column), isListed ? mark : CellMark::None) << row << " " << column;
            }
        }
    }
}

TEST_F(ReportedCellsTest, MarksGoWithTheirRecordsIntoAnotherOrder) {
    GivenTable(Global.DBFPath, "ZUKCUST", {{"A", "C1"}, {"B", "A1"}, {"C", "B1"}});
    GivenReport(ViewCust, "C_CODE", "1", "Warn");
    TableGrid grid(Global.DBFPath + "ZUKCUST.DBF", CustColumns);
    grid.MarkFaulty(ReportedCells().value());

    grid.Sort(1, false);

    EXPECT_EQ(grid.MarkOf(2, 1), CellMark::Warn);
    EXPECT_EQ(grid.MarkOf(0, 1), CellMark::None);
}

TEST_F(ReportedCellsTest, RecordsThatAreNamedTwiceOrAreNotThereDoNoHarm) {
    GivenTable(Global.DBFPath, "ZUKCUST", {{"A", "K"}, {"B", "K"}, {"C", "K"}});
    GivenReport(ViewCust, "C_CODE", "3, 2, 2, 1, 99, 99999999999999999999, All.dst", "Fatal");
    TableGrid grid(Global.DBFPath + "ZUKCUST.DBF", CustColumns);
    grid.MarkFaulty(ReportedCells().value());

    for (std::int32_t row = 0; row < 3; ++row) EXPECT_EQ(grid.MarkOf(row, 1), CellMark::Fatal);
}

TEST_F(ReportedCellsTest, NothingIsMarkedOutsideTheReportsView) {
    GivenReport(ViewCust, "C_CODE", "1", "Fatal");
    Global.QCViewMode = false;
    EXPECT_FALSE(ReportedCells());

    GivenReport(ViewPay, "", "", "Warn");
    EXPECT_FALSE(ReportedCells()) << "a table without records";

    GivenReport(ViewItem, "C_CODE", "1", "Fatal");
    EXPECT_FALSE(ReportedCells()) << "a field of another table";

    GivenReport(ViewCust, "C_CODE", "1", "Fatal");
    ClearViewFlags();
    EXPECT_FALSE(ReportedCells()) << "no table";
}

} // namespace
