#include "exchange/ExportColumns.h"

#include "core/Numbers.h"
#include "core/TextCompare.h"

#include <algorithm>

bool ExportColumns::IsDate(std::string_view field) {
    return SameText(field, "H_ORDDATE") || SameText(field, "H_SHIPDATE");
}

std::size_t ExportColumns::RowOrLast(std::optional<std::size_t> row) const {
    return row && *row < rows_.size() ? *row : rows_.size() - 1;
}

void ExportColumns::AddOperand(std::string_view operand, std::optional<std::size_t> row) {
    calcPending_ = false;
    rows_[RowOrLast(row)] += operand;
}

void ExportColumns::Add(std::string_view field, std::string_view dateFormat, std::optional<std::size_t> row) {
    if (calcPending_) return AddOperand(field, row);
    std::string text(field);
    if (IsDate(field)) {
        text += " Format: ";
        text += dateFormat.empty() ? UsualDateFormat : dateFormat;
    }
    const bool before = row && *row + 1 < rows_.size();
    rows_.insert(before ? rows_.begin() + static_cast<std::ptrdiff_t>(*row) : rows_.end(), std::move(text));
}

void ExportColumns::AddLiteral(std::string_view value) {
    if (calcPending_ || value.empty()) return;
    rows_.push_back("Literal = " + std::string(value));
}

std::optional<std::size_t> ExportColumns::Operate(std::string_view operation,
                                                  std::optional<std::size_t> row) {
    if (rows_.empty() || calcPending_) return std::nullopt;
    const std::size_t place = RowOrLast(row);
    const bool hasOne = std::any_of(Operators.begin(), Operators.end(), [&](std::string_view each) {
        return rows_[place].find(each) != std::string::npos;
    });
    if (hasOne) return std::nullopt;
    rows_[place] += operation;
    calcPending_ = true;
    return place;
}

bool ExportColumns::AddNumber(std::string_view number, std::optional<std::size_t> row) {
    if (!IsNumeric(number)) return false;
    const std::string operand = "[" + std::string(Trim(number)) + "]";
    if (calcPending_)
        AddOperand(operand, row);
    else
        rows_.push_back(operand);
    return true;
}

void ExportColumns::Remove(std::size_t row) {
    // The operator goes with the row at whose end it stands; no other row awaits an operand.
    const bool awaits = std::any_of(Operators.begin(), Operators.end(),
                                    [&](std::string_view each) { return rows_.at(row).ends_with(each); });
    if (awaits) calcPending_ = false;
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
}

void ExportColumns::RemoveAll() {
    *this = ExportColumns();
}
