#pragma once

#include "store/MemoryTable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A table in memory as the checks walk it: its rows can be put in the order of a field, and know
/// from which record they came.
///
/// Rows and fields count from 1. A field that the table lacks is empty in every row.
class ScratchGrid {
public:
    /// Loads a table. RunTimeFailure as LoadTable.
    explicit ScratchGrid(std::string_view path);

    std::int32_t RowCount() const { return table_.RecordCount(); }

    /// The number of a row's record. RunTimeFailure 9 for a row that is not there; Cell too.
    std::int32_t Record(std::int32_t row) const;

    /// A trimmed cell. Valid as long as the grid.
    std::string_view Cell(std::int32_t row, int field) const {
        return table_.CellOrEmpty(Record(row), field);
    }

    /// Puts the rows in ascending order of a field, as text. Rows with equal cells keep the order in
    /// which they stand.
    void SortOn(int field);

private:
    MemoryTable table_;
    std::vector<std::int32_t> order_; ///< record of each row
};
