#include "views/TableViews.h"

#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

constexpr const char* OrdersIcon = "Orders48x48-16M.ico";

const TableView Views[] = {
    {ViewOrHdr, "ZUKORHDR.DBF", msg::GridOrHdr, msg::RecordsOrHdr, OrdersIcon, DisplayRoutine::Data,
     msg::EmptyOrders},
    {ViewOrLin, "ZUKORLIN.DBF", msg::GridOrLin, msg::RecordsOrLin, OrdersIcon, DisplayRoutine::Data,
     msg::EmptyOrders},
    {ViewOrHdrAudt, "ZUKAUDTH.DBF", msg::GridOrHdrAudt, msg::RecordsOrHdrAudt, "", DisplayRoutine::Data,
     msg::EmptyAudit},
    {ViewOrLinAudt, "ZUKAUDTL.DBF", msg::GridOrLinAudt, msg::RecordsOrLinAudt, "", DisplayRoutine::Data,
     msg::EmptyAudit},
    {ViewAudHH, "ZUKAUDHH.DBF", msg::GridAudHH, msg::RecordsAudHH, "", DisplayRoutine::Data, msg::EmptyAudit},
    {ViewCompany, "ZUKCOMP.DBF", msg::GridCompany, msg::RecordsCompany, "SetupCompanyData32x32-16M.ico",
     DisplayRoutine::Data, msg::EmptySetup},
    {ViewPrinter, "ZUKPRINT.DBF", msg::GridPrinter, msg::RecordsPrinter, "", DisplayRoutine::Data,
     msg::EmptySetup},
    {ViewSetup, "ZUKSETUP.DBF", msg::GridSetup, msg::RecordsSetup, "", DisplayRoutine::Data, msg::EmptySetup},
    {ViewCust, "ZUKCUST.DBF", msg::GridCust, msg::RecordsCust, "Customers32x32-16M.ico",
     DisplayRoutine::CustData, msg::EmptyMaster},
    {ViewItem, "ZUKITEM.DBF", msg::GridItem, msg::RecordsItem, "Items48x48-16M.ico", DisplayRoutine::ItemData,
     msg::EmptyMaster},
    {ViewBarIn, "ZUKBARIN.DBF", msg::GridBarIn, msg::RecordsBarIn, "", DisplayRoutine::Data, msg::EmptyIndex},
    {ViewTotals, "ZUKTotalPC.DBF", msg::GridTotals, msg::RecordsTotals, "", DisplayRoutine::TotalsData,
     msg::EmptyTotals},
    {ViewSTax, "ZUKSTAX.DBF", msg::GridSTax, msg::RecordsSTax, "", DisplayRoutine::STaxData, msg::EmptySetup},
    {ViewPay, "ZUKPAY.DBF", msg::GridPay, msg::RecordsPay, "", DisplayRoutine::Data, msg::EmptySetup},
    {ViewLink, "ZUKLINK.DBF", msg::GridLink, msg::RecordsLink, "UpDtHSUsers32x32-16M.ico",
     DisplayRoutine::Data, msg::EmptyLinks},
    {ViewPRN, "ZUKPRN.DBF", msg::GridPRN, msg::RecordsPRN, "", DisplayRoutine::Data, msg::EmptyAudit},
    {ViewRestore, "", msg::GridRestore, msg::GridRestore, "Restore.ico", DisplayRoutine::RestoreData,
     msg::EmptyRestore},
};
static_assert(std::size(Views) == ViewFlags);

TableColumn RecordNumberColumn() {
    return {{msg::ColumnN, SortKind::Number}, {}, -1};
}

/// A column of a chosen set: fields that a short name finds as every other lookup does.
struct ChosenColumn {
    MessageId Title;
    std::initializer_list<const char*> Fields;
    SortKind Kind = SortKind::Text;
    int Decimals = -1;
};

void Append(TableColumns& to, const TableLayout& layout, std::initializer_list<ChosenColumn> chosen) {
    for (const ChosenColumn& column : chosen) {
        std::vector<int> fields;
        for (const char* field : column.Fields) fields.push_back(layout.Find(FieldKey(field)));
        to.Columns.push_back({{column.Title, column.Kind}, std::move(fields), column.Decimals});
    }
}

TableColumns Chosen(const TableLayout& layout, std::initializer_list<ChosenColumn> chosen) {
    TableColumns columns;
    columns.Columns.push_back(RecordNumberColumn());
    Append(columns, layout, chosen);
    return columns;
}

} // namespace

const TableEntry& TableView::Table() const {
    return *FindTable(File);
}

std::span<const TableView> AllTableViews() {
    return Views;
}

void ClearViewFlags() {
    Global.View.fill(false);
    Global.SelectedRow = 0;
    Global.ViewFolder.clear();
}

const TableView* ChosenView() {
    const auto chosen = std::find(Global.View.begin(), Global.View.end(), true);
    return chosen == Global.View.end() ? nullptr : &Views[chosen - Global.View.begin()];
}

std::optional<FaultyCells> ReportedCells() {
    struct Place {
        ViewFlag Flag;
        std::string_view Field;
        int Column; ///< from 0; the record's number stands in column 0
    };
    static constexpr std::array places{Place{ViewCust, "C_CODE", 1},    Place{ViewCust, "C_SEARCH", 13},
                                       Place{ViewCust, "C_STCODE", 12}, Place{ViewItem, "I_ITEMCODE", 1},
                                       Place{ViewItem, "I_SEARCH", 6},  Place{ViewItem, "I_PRICE", 4},
                                       Place{ViewItem, "I_BARCODE", 2}, Place{ViewSTax, "ST_CODE", 1},
                                       Place{ViewPay, "PAY_CODE", 1},   Place{ViewLink, "LK_HOTSYNC", 1}};

    if (!Global.QCViewMode || Global.QCViewRecords.empty()) return std::nullopt;
    const TableView* view = ChosenView();
    const auto place = std::find_if(places.begin(), places.end(), [&](const Place& candidate) {
        return view && candidate.Flag == view->Flag && SameText(candidate.Field, Global.QCViewField);
    });
    if (place == places.end()) return std::nullopt;

    FaultyCells cells;
    cells.Column = place->Column;
    cells.Mark = SameText(Global.QCViewSeverity, "Fatal")  ? CellMark::Fatal
                 : SameText(Global.QCViewSeverity, "Warn") ? CellMark::Warn
                                                           : CellMark::None;
    cells.Records = WholeNumbers(Global.QCViewRecords, ", ");
    std::sort(cells.Records.begin(), cells.Records.end());
    return cells;
}

TableColumns DataColumns(const TableEntry& table, const TableLayout& layout) {
    TableColumns columns;
    columns.Columns.push_back(RecordNumberColumn());
    for (int field = 1; field <= layout.FieldCount(); ++field) {
        const bool isNumber = SameText(layout.FieldType(field), "N");
        columns.Columns.push_back({{GetFriendlyFieldName(table, layout.PlainName(field)),
                                    isNumber ? SortKind::Number : SortKind::Text},
                                   {field},
                                   -1});
    }
    return columns;
}

TableColumns CustColumns(const TableLayout& layout) {
    return Chosen(layout, {{msg::ColumnCode, {"C_CODE"}},
                           {msg::ColumnContact, {"C_CONTACT"}},
                           {msg::ColumnCompany, {"C_NAME"}},
                           {msg::ColumnPhone, {"C_PHONE"}},
                           {msg::ColumnAddress1, {"C_ADDRESS1"}},
                           {msg::ColumnAddress2, {"C_ADDRESS2"}},
                           {msg::ColumnCity, {"C_CITY"}},
                           {msg::ColumnState, {"C_STATE"}},
                           {msg::ColumnZip, {"C_ZIP"}},
                           {msg::ColumnPayTerms, {"C_PAYTERMS"}},
                           {msg::ColumnShipVia, {"C_SHIPVIA"}},
                           {msg::ColumnSTaxCode, {"C_STCODE"}},
                           {msg::ColumnSearch, {"C_SEARCH"}}});
}

TableColumns ItemColumns(const TableLayout& layout) {
    return Chosen(layout, {{msg::ColumnCode, {"I_ITEMCODE"}},
                           {msg::ColumnBarcode, {"I_BARCODE"}},
                           {msg::ColumnDescription, {"I_DESC1"}},
                           {msg::ColumnPrice, {"I_PRICE"}, SortKind::Number, 2},
                           {msg::ColumnUM, {"I_UM"}},
                           {msg::ColumnSearch, {"I_SEARCH"}}});
}

TableColumns STaxColumns(const TableLayout& layout) {
    return Chosen(layout, {{msg::ColumnCode, {"ST_CODE"}},
                           {msg::ColumnDescription, {"ST_DESC"}},
                           {msg::ColumnRate, {"ST_RATE"}, SortKind::Number, 5}});
}

TableColumns TotalsColumns(const TableLayout& layout) {
    TableColumns columns;
    Append(columns, layout,
           {{msg::ColumnEvent, {"TP_EVENT"}},
            {msg::ColumnDateTime, {"TP_DATETIM", "TH_TIME"}, SortKind::Date},
            {msg::ColumnOrders, {"TP_CURHEAD"}, SortKind::Number},
            {msg::ColumnLines, {"TP_CURLINE"}, SortKind::Number},
            {msg::ColumnDollars, {"TP_CURDOL"}, SortKind::Number, 2},
            {msg::ColumnOrders, {"TP_NUMHEAD"}, SortKind::Number},
            {msg::ColumnLines, {"TP_NUMLINE"}, SortKind::Number},
            {msg::ColumnDollars, {"TP_DOL_LIN"}, SortKind::Number, 2},
            {msg::ColumnHotsyncID, {"TP_HOTSYNC"}},
            {msg::ColumnMachine, {"TP_MACHINE"}},
            {msg::ColumnLastOrder, {"TP_LSTONUM"}}});
    columns.Groups = {{msg::TotalsLastEvent, 0, 5}, {msg::TotalsTotalPC, 5, 3}, {msg::TotalsHandheld, 8, 3}};
    return columns;
}
