#include "exchange/LineSplitter.h"

#include "core/TextCompare.h"

#include <algorithm>

namespace {

/// The text from a position on, the first being 1; empty behind its end.
std::string_view From(std::string_view text, std::size_t position) {
    return position > text.size() ? std::string_view() : text.substr(position - 1);
}

std::size_t Columns(std::string_view line, char separator) {
    return static_cast<std::size_t>(std::count(line.begin(), line.end(), separator)) + 1;
}

} // namespace

std::string_view StripFieldQuotes(std::string_view text, FieldQuotes& quotes) {
    text = Trim(text);
    quotes.FieldComplete = true;
    if (!text.starts_with('"')) return text;
    quotes.FieldComplete = false;
    if (text.size() < 2 || text.back() != '"') return text;
    quotes.FieldComplete = true;
    quotes.QuotesRemoved = true;
    return text.substr(1, text.size() - 2);
}

LineSplitter::LineSplitter(Delimiter delimiter, std::size_t columnCount)
    : delimiter_(delimiter),
      cells_(std::max<std::size_t>(columnCount, 1) + 1) {}

bool LineSplitter::Split(std::string_view line) {
    return delimiter_ == Delimiter::Tab ? SplitTabs(line) : SplitCommas(line);
}

bool LineSplitter::SplitTabs(std::string_view line) {
    if (Columns(line, '\t') > ColumnCount()) return false;
    std::size_t pointer = 1;
    for (std::size_t tab = line.find('\t'); tab != std::string_view::npos; tab = line.find('\t')) {
        cells_[pointer++] = Trim(line.substr(0, tab));
        line = Trim(line.substr(tab + 1));
    }
    cells_[pointer] = Trim(line);
    return true;
}

bool LineSplitter::SplitCommas(std::string_view line) {
    if (delimiter_ == Delimiter::Csv && Columns(line, ',') > ColumnCount()) return false;
    std::size_t pointer = 1;
    for (std::size_t comma = line.find(','); comma != std::string_view::npos; comma = line.find(',')) {
        if (pointer > ColumnCount()) return false;
        std::string& cell = cells_[pointer++];
        const bool closes = TakeQuoted(line, comma, cell);
        if (!closes) {
            line = {};
        } else if (quotes_.QuotesRemoved) {
            quotes_.QuotesRemoved = false;
            line = Trim(From(line, cell.size() + 4));
        } else {
            line = Trim(From(line, cell.size() + 2));
        }
        if (cell.starts_with(' ') || cell.ends_with(' ')) cell = std::string(Trim(cell));
    }
    if (line.empty()) return true;
    if (pointer > ColumnCount()) return false;
    cells_[pointer] = Trim(line);
    return true;
}

/// Takes the first field of a line whose first comma is at `comma`. A comma inside quotes does not
/// end it. False when the quote is never closed: the cell is then the rest of the line.
bool LineSplitter::TakeQuoted(std::string_view line, std::size_t comma, std::string& cell) {
    cell = StripFieldQuotes(line.substr(0, comma), quotes_);
    while (!quotes_.FieldComplete) {
        if (comma == std::string_view::npos) return false;
        // The cell's own length says where in the line it goes on, also when blanks were cut; but
        // it always takes in one more comma, or else it would stand still.
        comma = line.find(',', comma + 1);
        const std::size_t from = cell.size();
        cell.append(line.substr(from, comma == std::string_view::npos ? comma : comma - from));
        const std::string_view stripped = StripFieldQuotes(cell, quotes_);
        if (quotes_.FieldComplete)
            cell = std::string(stripped);
        else
            cell.resize(stripped.size()); // it begins with its quote, so only its end was cut
    }
    return true;
}
