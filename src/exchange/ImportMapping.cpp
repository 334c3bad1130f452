#include "exchange/ImportMapping.h"

#include "core/TextCompare.h"
#include "exchange/Import.h"

#include <algorithm>

namespace {

bool AnyHolds(const std::vector<std::string>& rows, std::string_view field) {
    return std::any_of(rows.begin(), rows.end(), [&](const std::string& row) {
        return FindText(row, field) != std::string_view::npos;
    });
}

} // namespace

bool ImportMapping::IsInUse(std::string_view field) const {
    const bool selected = !SameText(field, IgnoreRow) && AnyHolds(selected_, field);
    return selected || AnyHolds(literals_, field);
}

bool ImportMapping::Add(std::string_view field, std::optional<std::size_t> row) {
    if (IsInUse(field)) return false;
    if (row && *row >= selected_.size()) row.reset();
    if (andPending_) {
        andPending_ = false;
        if (!selected_.empty()) {
            selected_[row.value_or(selected_.size() - 1)] += field;
            return true;
        }
    }
    const bool before = row && *row + 1 < selected_.size();
    selected_.insert(before ? selected_.begin() + static_cast<std::ptrdiff_t>(*row) : selected_.end(),
                     std::string(field));
    return true;
}

std::optional<std::size_t> ImportMapping::And(std::optional<std::size_t> row) {
    if (selected_.empty() || andPending_) return std::nullopt;
    const std::size_t joined = row && *row < selected_.size() ? *row : selected_.size() - 1;
    selected_[joined] += RowAnd;
    andPending_ = true;
    return joined;
}

bool ImportMapping::AddLiteral(std::string_view field, std::string_view value) {
    if (value.empty() || IsInUse(field)) return false;
    literals_.push_back(std::string(field) + std::string(RowEquals) + std::string(value));
    return true;
}

void ImportMapping::RemoveSelected(std::size_t row) {
    // The "and" goes with the row at whose end it stands; no other row could take a field behind it.
    if (selected_.at(row).ends_with(RowAnd)) andPending_ = false;
    selected_.erase(selected_.begin() + static_cast<std::ptrdiff_t>(row));
}

void ImportMapping::RemoveLiteral(std::size_t row) {
    static_cast<void>(literals_.at(row)); // refuses a row that is not there
    literals_.erase(literals_.begin() + static_cast<std::ptrdiff_t>(row));
}

void ImportMapping::RemoveAll() {
    *this = {};
}

std::vector<std::string> ImportMapping::FieldsOfRow(std::string_view row) {
    std::vector<std::string> fields;
    while (true) {
        const std::size_t end = row.find(RowAnd);
        const std::string_view field = end == std::string_view::npos ? row : row.substr(0, end);
        if (!Trim(field).empty()) fields.emplace_back(Trim(field));
        if (end == std::string_view::npos) return fields;
        row.remove_prefix(end + RowAnd.size());
    }
}
