#include "quality/ReportGrid.h"

#include "core/Messages.h"
#include "core/TextCompare.h"
#include "quality/ReportCsv.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::array Widths = {80, 190, 95, 190, 192}; ///< of the columns, in pixels
constexpr std::size_t LongestList = 300;               ///< that a cell shows, in bytes

constexpr std::string_view Ellipsis = "...";

enum Column { SeverityColumn, GroupColumn, ProblemColumn, IssueColumn, CorrectionColumn };

/// An issue whose lines have not more than a list's share of a cell.
Text ShortIssue(const Text& issue) {
    Text shown;
    for (const std::string_view line : SplitText(issue.Utf8(), "\n")) {
        const Text cut = ShortList(line, LongestList);
        shown = shown.IsEmpty() ? cut : Lines(shown, cut);
    }
    return shown;
}

} // namespace

Text ShortList(std::string_view list, std::size_t bytes) {
    if (list.size() <= bytes) return Text::Path(list);
    const std::size_t fits = list.rfind(ListSeparator, bytes);
    const std::size_t end =
        fits != std::string_view::npos ? fits : std::min(list.find(ListSeparator), list.size());
    Text shown = Text::Path(list.substr(0, end));
    if (end > bytes) {
        while (bytes > 0 && (static_cast<unsigned char>(list[bytes]) & 0xC0) == 0x80)
            --bytes; // inside a character
        shown = Text::Path(list.substr(0, bytes)) + Text::Path(Ellipsis);
    }
    if (end == list.size()) return shown;
    const auto left = SplitText(list.substr(end + ListSeparator.size()), ListSeparator).size();
    return Words(shown, msg::MoreInList, Text::Value(static_cast<std::int64_t>(left)));
}

ReportGrid::ReportGrid(std::vector<ProblemRow> rows) : rows_(std::move(rows)), watch_(rows_) {
    const std::vector<Text> titles = ReportHeadings();
    for (std::size_t column = 0; column < titles.size(); ++column)
        headings_.push_back({titles[column], SortKind::Text, Widths.at(column)});
    issues_.reserve(rows_.size());
    for (const ProblemRow& row : rows_) issues_.push_back(ShortIssue(row.Issue));
}

const GridHeading& ReportGrid::Heading(int column) const {
    return headings_.at(static_cast<std::size_t>(column));
}

Text ReportGrid::CellOf(std::int32_t record, int column) const {
    const ProblemRow& row = Row(record);
    switch (column) {
    case SeverityColumn:
        return SeverityText(row.Severity);
    case GroupColumn:
        return row.Group;
    case ProblemColumn:
        return row.Problem;
    case IssueColumn:
        return issues_.at(static_cast<std::size_t>(record) - 1);
    default:
        return watch_.HasChanged(static_cast<std::size_t>(record) - 1)
                   ? Lines(row.Correction, msg::RowChanged)
                   : row.Correction;
    }
}

Text ReportGrid::Cell(std::int32_t row, int column) {
    return CellOf(RecordOf(row), column);
}

std::string ReportGrid::Raw(std::int32_t record, int column) {
    return CellOf(record, column).CodePage();
}

CellMark ReportGrid::MarkOf(std::int32_t row, int) const {
    return watch_.HasChanged(static_cast<std::size_t>(RecordOf(row)) - 1) ? CellMark::Past : CellMark::None;
}

bool ReportGrid::CheckChanged() {
    if (watch_.Look()) outdated_ = true;
    return outdated_;
}
