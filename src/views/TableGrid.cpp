#include "views/TableGrid.h"

#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"

#include <algorithm>

namespace {

/// The characters of a column out of a record's fields.
std::string RawOf(const TableColumn& column, const TableLayout& layout, std::string_view record) {
    std::string raw;
    for (std::size_t k = 0; k < column.Fields.size(); ++k) {
        if (k > 0) raw += ' ';
        raw += Trim(layout.Get(column.Fields[k], record));
    }
    return std::string(TrimRight(raw));
}

} // namespace

TableGrid::TableGrid(std::string_view path, ColumnsOf columnsOf)
    : reader_(path),
      columnsOf_(std::move(columnsOf)),
      columns_(columnsOf_(reader_.Layout())) {}

void TableGrid::Reload() {
    ForgetOrder();
    readable_ = false;
    reader_.Reopen();
    columns_ = columnsOf_(reader_.Layout());
    readable_ = true;
}

CellMark TableGrid::MarkOf(std::int32_t row, int column) const {
    if (column != faulty_.Column) return CellMark::None;
    const bool isFaulty = std::binary_search(faulty_.Records.begin(), faulty_.Records.end(), RecordOf(row));
    return isFaulty ? faulty_.Mark : CellMark::None;
}

std::string TableGrid::Raw(std::int32_t record, int column) {
    const TableColumn& shown = At(column);
    if (shown.Fields.empty()) return std::to_string(record);
    return RawOf(shown, reader_.Layout(), reader_.Record(record));
}

std::string TableGrid::Shown(std::string_view raw, int column) const {
    const int decimals = At(column).Decimals;
    if (decimals < 0 || !IsNumeric(raw)) return std::string(raw);
    return FixedDecimals(ToNumber(raw), decimals);
}

void TableGrid::ForEach(int column, const Visitor& visit) {
    const TableColumn& shown = At(column);
    if (shown.Fields.empty()) return GridData::ForEach(column, visit);
    TableScan scan(Path());
    // Of another table by now the records are not those that the grid shows: none is looked at.
    const bool same = !reader_.CheckChanged();
    std::int32_t record = 0;
    if (shown.Fields.size() == 1) {
        const int field = shown.Fields.front();
        while (same && record < RowCount() && scan.Next()) visit(++record, scan.Trimmed(field));
    } else {
        while (same && record < RowCount() && scan.Next())
            visit(++record, RawOf(shown, scan.Layout(), scan.Record()));
    }
    while (record < RowCount()) visit(++record, {});
}
