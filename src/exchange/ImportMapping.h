#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The row of the available fields that leaves a column out.
inline constexpr std::string_view IgnoreRow = "Ignore";

/// How the columns of a text file feed the fields of a table, while an operator lays it out. Text is
/// code page 1252. Rows count from 0; a row that is selected may be missing.
class ImportMapping {
public:
    ImportMapping() = default;
    ImportMapping(std::vector<std::string> selected, std::vector<std::string> literals)
        : selected_(std::move(selected)),
          literals_(std::move(literals)) {}

    /// One row a column of the file, as ImportJob::SelectedFields.
    const std::vector<std::string>& Selected() const { return selected_; }

    /// Rows `field = value`.
    const std::vector<std::string>& Literals() const { return literals_; }

    bool IsEmpty() const { return selected_.empty() && literals_.empty(); }

    /// An "and" stands at the end of a row, and the next field added is joined to it.
    bool AndPending() const { return andPending_; }

    /// True for a field that a row of either list holds, also as a part of a longer name; "Ignore"
    /// may be selected again and again.
    bool IsInUse(std::string_view field) const;

    /// Adds a field: joined to the row that is selected, or to the last one, when an "and" is
    /// pending; otherwise before the row that is selected unless that is the last, or at the end.
    /// False, and nothing is changed, for a field in use.
    bool Add(std::string_view field, std::optional<std::size_t> row);

    /// Puts the "and" at the end of the row that is selected, or of the last one, and tells which.
    /// Nothing without a row, or while one is pending.
    std::optional<std::size_t> And(std::optional<std::size_t> row);

    /// False, and nothing is changed, for a field in use or an empty value.
    bool AddLiteral(std::string_view field, std::string_view value);

    /// Takes a row out, and with it an "and" that is pending at its end. std::out_of_range for a row that is
    /// not there.
    void RemoveSelected(std::size_t row);
    /// std::out_of_range for a literal that is not there.
    void RemoveLiteral(std::size_t row);
    /// As a new object: nothing is pending either.
    void RemoveAll();

    /// The fields that a row names: one, or several that are joined.
    static std::vector<std::string> FieldsOfRow(std::string_view row);

private:
    std::vector<std::string> selected_;
    std::vector<std::string> literals_;
    bool andPending_ = false;
};
