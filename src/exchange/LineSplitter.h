#pragma once

#include "exchange/Delimiter.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What StripFieldQuotes tells of a piece of a line.
struct FieldQuotes {
    bool FieldComplete = false; ///< no, while the piece opens a quote that it does not close
    bool QuotesRemoved = false; ///< stays until the splitter clears it
};

/// The text without blanks at both ends, and without the double quotes around it. A text that begins
/// with a quote and does not end with another one comes back with it, and is not complete.
std::string_view StripFieldQuotes(std::string_view text, FieldQuotes& quotes);

/// Splits the lines of one file into cells. The cells are not cleared between lines: a line with
/// fewer columns takes those that it lacks from the line before, and that is meant.
class LineSplitter {
public:
    /// `columnCount`: columns of the file, 1 or more.
    LineSplitter(Delimiter delimiter, std::size_t columnCount);

    /// False for a line that is refused, or that runs past the last column: the cells before that
    /// point then hold the new values, the others the old ones.
    bool Split(std::string_view line);

    std::size_t ColumnCount() const { return cells_.size() - 1; }

    /// Column from 1 to ColumnCount().
    const std::string& Cell(std::size_t column) const { return cells_[column]; }

private:
    bool SplitCommas(std::string_view line);
    bool SplitTabs(std::string_view line);
    bool TakeQuoted(std::string_view line, std::size_t comma, std::string& cell);

    Delimiter delimiter_;
    std::vector<std::string> cells_; ///< entry 0 is not used
    FieldQuotes quotes_;
};
