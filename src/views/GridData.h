#pragma once

#include "core/Text.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// By what a column of a grid is put in order.
enum class SortKind : char {
    Text = 'T',   ///< TextCompare
    Number = 'N', ///< ToNumber; what begins with no number counts as 0
    Date = 'D',   ///< CDate; what is no date comes before every date
};

/// What stands above a column of a grid.
struct GridHeading {
    Text Title;
    SortKind Kind = SortKind::Text;
    int Width = 0; ///< of the column at first, in pixels; 0: as wide as its cells
};

/// How a cell stands out from the others.
enum class CellMark : char {
    None,
    Fatal, ///< a fault that blocks a download: on red
    Warn,  ///< a fault that does not: on yellow
    Past   ///< no longer so: in grey
};

/// A title over several columns.
struct GridGroup {
    Text Title;
    int First = 0; ///< column, from 0
    int Columns = 1;
};

/// What a grid shows: columns with headings, and rows of texts in an order that can be changed.
///
/// Rows and columns count from 0. A row's record number counts from 1 and does not change with the
/// order. Indexes outside RowCount() and ColumnCount() are not allowed.
class GridData {
public:
    GridData() = default;
    GridData(const GridData&) = delete;
    GridData& operator=(const GridData&) = delete;
    virtual ~GridData() = default;

    /// These three change by Reload alone.
    virtual int ColumnCount() const = 0;
    virtual const GridHeading& Heading(int column) const = 0;
    virtual std::int32_t RowCount() const = 0;

    /// Titles over the columns; where there are any, the grid shows them and the columns' titles in
    /// two rows of their own above the first one.
    virtual const std::vector<GridGroup>& Groups() const;

    /// As it is shown. RunTimeFailure when it cannot be read.
    virtual Text Cell(std::int32_t row, int column);

    virtual CellMark MarkOf(std::int32_t /*row*/, int /*column*/) const { return CellMark::None; }

    /// The number of the record that stands in a row.
    std::int32_t RecordOf(std::int32_t row) const;
    /// Nothing for a record that the grid does not hold. Linear while the rows are sorted.
    std::optional<std::int32_t> RowOf(std::int32_t record) const;

    /// Puts the rows in the order of a column by its kind. Rows with equal cells keep the order of
    /// their records, also downwards. Reads each record once. RunTimeFailure as reading fails.
    void Sort(int column, bool descending);

    /// Whether the rows stand in another order than that of their records.
    bool IsSorted() const { return !order_.empty(); }

    /// The nearest row behind `from` (before it when `backwards`) whose cell contains a text (code
    /// page 1252) without regard to case. It goes on at the other end, and looks at `from` itself
    /// last; `from` may be -1. Nothing is found for an empty text. RunTimeFailure as reading fails.
    std::optional<std::int32_t> Find(int column, std::string_view text, std::int32_t from,
                                     bool backwards = false);

    /// Whether what is shown is no longer what stands in the file, as far as reading has found out.
    virtual bool HasChanged() const { return false; }
    /// Looks, and says the same.
    virtual bool CheckChanged() { return false; }
    /// Takes the content as it stands now; columns and rows may be others, and the order is that of
    /// the records. RunTimeFailure when it cannot be read: there are no rows then.
    virtual void Reload() {}

protected:
    /// The characters of a record's cell (code page 1252), before they are brought into their form.
    virtual std::string Raw(std::int32_t record, int column) = 0;
    /// Raw characters in the form in which the cell shows them.
    virtual std::string Shown(std::string_view raw, int column) const;

    /// Calls a routine with each record's raw characters in the order of the records. By default
    /// through Raw.
    using Visitor = std::function<void(std::int32_t record, std::string_view raw)>;
    virtual void ForEach(int column, const Visitor& visit);

    /// True for a column that holds the record numbers: it needs no reading to be sorted.
    virtual bool IsRecordNumber(int) const { return false; }

    void ForgetOrder() { order_.clear(); }

private:
    bool Contains(std::string_view raw, int column, std::string_view text) const;

    std::vector<std::int32_t> order_; ///< record numbers by row; empty: as the records stand
};

/// A grid of a few rows that are held as they are.
class ListGrid final : public GridData {
public:
    /// Each row has a text for each heading.
    ListGrid(std::vector<GridHeading> headings, std::vector<std::vector<Text>> rows);

    int ColumnCount() const override { return static_cast<int>(headings_.size()); }
    const GridHeading& Heading(int column) const override;
    std::int32_t RowCount() const override { return static_cast<std::int32_t>(rows_.size()); }
    Text Cell(std::int32_t row, int column) override { return At(RecordOf(row), column); }
    CellMark MarkOf(std::int32_t row, int column) const override;

    /// Changes a cell, and marks it or lets it stand out no more.
    void SetCell(std::int32_t record, int column, Text text, CellMark mark);

protected:
    std::string Raw(std::int32_t record, int column) override;

private:
    const Text& At(std::int32_t record, int column) const;

    std::vector<GridHeading> headings_;
    std::vector<std::vector<Text>> rows_;
    std::map<std::pair<std::int32_t, int>, CellMark> marks_; ///< by record and column
};
