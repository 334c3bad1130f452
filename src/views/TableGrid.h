#pragma once

#include "store/TableReader.h"
#include "views/GridData.h"

#include <functional>

/// One column of a table as a grid shows it.
struct TableColumn {
    GridHeading Heading;
    /// Places of the fields whose characters it shows, without the blanks at their ends and with one
    /// blank between them. None: the record's number. A field that the table lacks has place 0 and is
    /// empty.
    std::vector<int> Fields;
    /// Digits behind the point in which a number is written; -1 leaves it as it stands. What is no
    /// number always stays as it stands.
    int Decimals = -1;
};

/// What a view shows of a table of this layout.
struct TableColumns {
    std::vector<TableColumn> Columns;
    std::vector<GridGroup> Groups;
};
using ColumnsOf = std::function<TableColumns(const TableLayout&)>;

/// Records of a table whose cell in one column is faulty.
struct FaultyCells {
    std::vector<std::int32_t> Records; ///< ascending
    int Column = 0;                    ///< from 0
    CellMark Mark = CellMark::None;
};

/// A grid over a table: row r is the r-th record of the file, deleted ones too, until it is sorted.
/// Only what is shown is read; a sort or a search in a sorted grid reads the table once.
class TableGrid final : public GridData {
public:
    /// RunTimeFailure as TableReader.
    TableGrid(std::string_view path, ColumnsOf columnsOf);

    const std::string& Path() const { return reader_.Path(); }

    /// Marks cells, in the place of those that were marked before.
    void MarkFaulty(FaultyCells cells) { faulty_ = std::move(cells); }
    CellMark MarkOf(std::int32_t row, int column) const override;

    int ColumnCount() const override { return static_cast<int>(columns_.Columns.size()); }
    const GridHeading& Heading(int column) const override { return At(column).Heading; }
    std::int32_t RowCount() const override { return readable_ ? reader_.RecordCount() : 0; }
    const std::vector<GridGroup>& Groups() const override { return columns_.Groups; }

    bool HasChanged() const override { return reader_.HasChanged(); }
    bool CheckChanged() override { return reader_.CheckChanged(); }
    void Reload() override;

protected:
    std::string Raw(std::int32_t record, int column) override;
    std::string Shown(std::string_view raw, int column) const override;
    void ForEach(int column, const Visitor& visit) override;
    bool IsRecordNumber(int column) const override { return At(column).Fields.empty(); }

private:
    const TableColumn& At(int column) const { return columns_.Columns.at(static_cast<std::size_t>(column)); }

    TableReader reader_;
    ColumnsOf columnsOf_;
    TableColumns columns_;
    FaultyCells faulty_;
    bool readable_ = true;
};
