#include "views/GridData.h"

#include "core/Dates.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace {

/// A date as a number that grows with time; 0 for no date.
std::int64_t DateKey(std::string_view text) {
    const auto date = CDate(text);
    if (!date) return 0;
    std::int64_t key = date->Year;
    for (const auto& [part, range] :
         {std::pair{date->Month, 13}, std::pair{date->Day, 32}, std::pair{date->Hour, 24},
          std::pair{date->Minute, 60}, std::pair{date->Second, 60}}) {
        key = key * range + part;
    }
    return key;
}

/// Sorts record numbers by one key a record, which is made once.
template <typename Key>
class KeyedOrder {
public:
    explicit KeyedOrder(std::int32_t count) { keys_.reserve(static_cast<std::size_t>(count)); }

    void Add(Key key) { keys_.push_back(std::move(key)); }

    std::vector<std::int32_t> Sorted(bool descending) const {
        std::vector<std::int32_t> order(keys_.size());
        std::iota(order.begin(), order.end(), 1);
        const auto key = [&](std::int32_t record) -> const Key& {
            return keys_[static_cast<std::size_t>(record) - 1];
        };
        if (descending) {
            std::stable_sort(order.begin(), order.end(),
                             [&](std::int32_t a, std::int32_t b) { return key(b) < key(a); });
        } else {
            std::stable_sort(order.begin(), order.end(),
                             [&](std::int32_t a, std::int32_t b) { return key(a) < key(b); });
        }
        return order;
    }

private:
    std::vector<Key> keys_;
};

} // namespace

const std::vector<GridGroup>& GridData::Groups() const {
    static const std::vector<GridGroup> none;
    return none;
}

std::string GridData::Shown(std::string_view raw, int) const {
    return std::string(raw);
}

Text GridData::Cell(std::int32_t row, int column) {
    return Text::Value(std::string_view(Shown(Raw(RecordOf(row), column), column)));
}

std::int32_t GridData::RecordOf(std::int32_t row) const {
    return order_.empty() ? row + 1 : order_.at(static_cast<std::size_t>(row));
}

std::optional<std::int32_t> GridData::RowOf(std::int32_t record) const {
    if (record < 1 || record > RowCount()) return std::nullopt;
    if (order_.empty()) return record - 1;
    return static_cast<std::int32_t>(std::find(order_.begin(), order_.end(), record) - order_.begin());
}

void GridData::ForEach(int column, const Visitor& visit) {
    for (std::int32_t record = 1; record <= RowCount(); ++record) visit(record, Raw(record, column));
}

void GridData::Sort(int column, bool descending) {
    const std::int32_t count = RowCount();
    if (IsRecordNumber(column)) {
        order_.clear();
        if (!descending) return;
        order_.resize(static_cast<std::size_t>(count));
        std::iota(order_.rbegin(), order_.rend(), 1);
        return;
    }
    switch (Heading(column).Kind) {
    case SortKind::Number: {
        KeyedOrder<double> keys(count);
        ForEach(column, [&](std::int32_t, std::string_view raw) { keys.Add(ToNumber(raw)); });
        order_ = keys.Sorted(descending);
        break;
    }
    case SortKind::Date: {
        KeyedOrder<std::int64_t> keys(count);
        ForEach(column, [&](std::int32_t, std::string_view raw) { keys.Add(DateKey(raw)); });
        order_ = keys.Sorted(descending);
        break;
    }
    case SortKind::Text: {
        KeyedOrder<std::string> keys(count);
        ForEach(column, [&](std::int32_t, std::string_view raw) { keys.Add(SortKey(raw)); });
        order_ = keys.Sorted(descending);
        break;
    }
    }
}

bool GridData::Contains(std::string_view raw, int column, std::string_view text) const {
    return FindText(Shown(raw, column), text) != std::string_view::npos;
}

std::optional<std::int32_t> GridData::Find(int column, std::string_view text, std::int32_t from,
                                           bool backwards) {
    const std::int64_t count = RowCount();
    if (count == 0 || text.empty()) return std::nullopt;
    // How many steps lie between `from` and a row; `from` itself is the last to be reached.
    const auto start = static_cast<std::int64_t>(from < 0 && backwards ? 0 : from);
    const auto rowAt = [&](std::int64_t step) {
        return ((backwards ? start - step : start + step) % count + count) % count;
    };
    if (order_.empty()) {
        for (std::int64_t step = 1; step <= count; ++step) {
            const auto row = static_cast<std::int32_t>(rowAt(step));
            if (Contains(Raw(row + 1, column), column, text)) return row;
        }
        return std::nullopt;
    }
    // The records lie all over the file: they are read in their own order, and the nearest one counts.
    std::vector<std::int32_t> rows(static_cast<std::size_t>(count) + 1);
    for (std::int32_t row = 0; row < count; ++row) rows[static_cast<std::size_t>(RecordOf(row))] = row;
    std::int64_t nearest = std::numeric_limits<std::int64_t>::max();
    ForEach(column, [&](std::int32_t record, std::string_view raw) {
        const std::int64_t row = rows[static_cast<std::size_t>(record)];
        const std::int64_t step = (((backwards ? start - row : row - start) - 1) % count + count) % count + 1;
        if (step < nearest && Contains(raw, column, text)) nearest = step;
    });
    if (nearest > count) return std::nullopt;
    return static_cast<std::int32_t>(rowAt(nearest));
}

ListGrid::ListGrid(std::vector<GridHeading> headings, std::vector<std::vector<Text>> rows)
    : headings_(std::move(headings)),
      rows_(std::move(rows)) {}

const GridHeading& ListGrid::Heading(int column) const {
    return headings_.at(static_cast<std::size_t>(column));
}

const Text& ListGrid::At(std::int32_t record, int column) const {
    return rows_.at(static_cast<std::size_t>(record) - 1).at(static_cast<std::size_t>(column));
}

CellMark ListGrid::MarkOf(std::int32_t row, int column) const {
    const auto mark = marks_.find({RecordOf(row), column});
    return mark == marks_.end() ? CellMark::None : mark->second;
}

void ListGrid::SetCell(std::int32_t record, int column, Text text, CellMark mark) {
    rows_.at(static_cast<std::size_t>(record) - 1).at(static_cast<std::size_t>(column)) = std::move(text);
    marks_[{record, column}] = mark;
}

std::string ListGrid::Raw(std::int32_t record, int column) {
    return At(record, column).CodePage();
}
