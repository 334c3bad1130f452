#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The operators of a calculation, with the blanks by which they are known in a row.
inline constexpr std::array<std::string_view, 4> Operators{" + ", " - ", " * ",
                                                           " / "}; ///< in the order they are looked for

/// The format of a date that nobody gave one for.
inline constexpr std::string_view UsualDateFormat = "mmddyyyy";

/// The columns of an export, while an operator lays them out. Text is code page 1252. Rows count
/// from 0; a row that is selected may be missing.
class ExportColumns {
public:
    ExportColumns() = default;
    explicit ExportColumns(std::vector<std::string> rows) : rows_(std::move(rows)) {}

    /// As ExportJob::Columns.
    const std::vector<std::string>& Rows() const { return rows_; }

    /// An operator stands at the end of a row, and what is added next is its right operand.
    bool CalcPending() const { return calcPending_; }

    /// True for the two fields whose dates get a format: that of the order and that of the shipment.
    static bool IsDate(std::string_view field);

    /// Adds a field: as the operand that is awaited, to the row that is selected or to the last one;
    /// otherwise before the row that is selected unless that is the last, or at the end, a date with
    /// its format (an empty one is the usual). A field can be added any number of times.
    void Add(std::string_view field, std::string_view dateFormat, std::optional<std::size_t> row);

    /// Adds a text that is the same in every line. Nothing while an operand is awaited, or when empty.
    void AddLiteral(std::string_view value);

    /// Puts an operator at the end of the row that is selected, or of the last one, and tells which.
    /// Nothing without a row, while an operand is awaited, or when the row has an operator already.
    std::optional<std::size_t> Operate(std::string_view operation, std::optional<std::size_t> row);

    /// Adds a number: as the operand that is awaited, or as a row of its own at the end. False, and
    /// nothing is changed, for a text that is no number.
    bool AddNumber(std::string_view number, std::optional<std::size_t> row);

    /// Takes a row out, and with it an operator at its end that awaits an operand. std::out_of_range for a
    /// row that is not there.
    void Remove(std::size_t row);
    /// As a new object: nothing is awaited either.
    void RemoveAll();

private:
    std::size_t RowOrLast(std::optional<std::size_t> row) const;
    void AddOperand(std::string_view operand, std::optional<std::size_t> row);

    std::vector<std::string> rows_;
    bool calcPending_ = false;
};
