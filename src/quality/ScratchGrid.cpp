#include "quality/ScratchGrid.h"

#include "core/Failure.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <numeric>

ScratchGrid::ScratchGrid(std::string_view path)
    : table_(LoadTable(path)),
      order_(static_cast<std::size_t>(table_.RecordCount())) {
    std::iota(order_.begin(), order_.end(), 1);
}

std::int32_t ScratchGrid::Record(std::int32_t row) const {
    if (row < 1 || row > RowCount()) throw RunTimeFailure(9);
    return order_[static_cast<std::size_t>(row) - 1];
}

void ScratchGrid::SortOn(int field) {
    std::vector<std::string> keys(order_.size());
    for (const std::int32_t record : order_)
        keys[static_cast<std::size_t>(record) - 1] = SortKey(table_.CellOrEmpty(record, field));
    std::stable_sort(order_.begin(), order_.end(), [&](std::int32_t a, std::int32_t b) {
        return keys[static_cast<std::size_t>(a) - 1] < keys[static_cast<std::size_t>(b) - 1];
    });
}
