#include "exchange/ImportPreview.h"

#include "exchange/ImportText.h"
#include "exchange/LineSplitter.h"

#include <algorithm>

namespace {

constexpr std::size_t DataLines = 3;
constexpr std::size_t LongestLine = 2000; ///< characters that are shown of a line
constexpr std::size_t LongestCell = 200;  ///< and of a cell
constexpr std::size_t MostColumns = 2000; ///< more than any table has fields

bool BeginsWithDigit(const std::string& cell) {
    return !cell.empty() && cell.front() >= '0' && cell.front() <= '9';
}

/// Headings: every column has one, none begins with a digit, and something in the line below does.
bool LookLikeHeadings(const PreviewLine& line, const PreviewLine& below) {
    return std::none_of(line.Cells.begin(), line.Cells.end(),
                        [](const std::string& cell) { return cell.empty() || BeginsWithDigit(cell); }) &&
           std::any_of(below.Cells.begin(), below.Cells.end(), BeginsWithDigit);
}

PreviewLine Split(const std::string& line, std::int64_t number, Delimiter delimiter) {
    // Each line for itself: one that is shorter than its neighbour shows what it lacks.
    LineSplitter splitter(delimiter, CountColumns(line, delimiter));
    splitter.Split(line);
    PreviewLine split{number, {}};
    const std::size_t columns = std::min(splitter.ColumnCount(), MostColumns);
    for (std::size_t k = 1; k <= columns; ++k) split.Cells.push_back(splitter.Cell(k).substr(0, LongestCell));
    return split;
}

} // namespace

ImportPreview::ImportPreview(std::string_view path) : path_(path), utf8_(SurveyImportFile(path).Utf8) {
    ImportReader file(path_, utf8_);
    for (std::string line; ReadOrPass(file, line);) {
        hasMore_ = lines_.size() == MaxLines;
        if (hasMore_) return;
        lines_.push_back(line.substr(0, LongestLine));
    }
}

PreviewColumns ImportPreview::Columns(Delimiter delimiter, std::int32_t startLine) const {
    PreviewColumns columns;
    if (path_.empty()) return columns;
    ImportReader file(path_, utf8_);
    std::string line;
    while (columns.Data.size() < DataLines && ReadOrPass(file, line)) {
        const std::int64_t number = file.LineNumber();
        if (number == startLine) columns.Count = std::min(::CountColumns(line, delimiter), MostColumns);
        if (number == startLine - 1)
            columns.Above.push_back(Split(line, number, delimiter));
        else if (number >= startLine && !line.empty())
            columns.Data.push_back(Split(line, number, delimiter));
    }
    columns.StartsWithHeadings = startLine == 1 && columns.Data.size() > 1 && columns.Count > 1 &&
                                 LookLikeHeadings(columns.Data[0], columns.Data[1]);
    return columns;
}
