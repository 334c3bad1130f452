#include "views/BoxReport.h"

#include "core/Messages.h"
#include "core/TextFile.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr PrintFont Plain{"Courier New", 8};
constexpr PrintFont Bold{"Courier New", 8, true};

constexpr int ShortestPage = 20;

/// Lines of a page's head beside those of the boxes: two empty ones, an empty one, title and dashes, the
/// page's number, an empty one, and the dashes around the boxes' head.
constexpr int LinesOfHead = 9;

/// Rows whose lines are made ahead.
constexpr std::int32_t RowsAhead = 65'536;

std::string Blanks(int count) {
    return std::string(static_cast<std::size_t>(count), ' ');
}

std::string Dashes(std::size_t count) {
    return std::string(count, '-');
}

void Print(Printer& printer, std::string_view line) {
    printer.Print(Text::Value(line));
}

void PadTo(std::string& line, std::size_t length) {
    if (line.size() < length) line.resize(length, ' ');
}

} // namespace

const BoxForm& TotalsForm() {
    static const BoxForm form{
        msg::PrintDataTitle, 49, 116, 29, 47, {msg::PrintDataGroups, msg::PrintDataHead}, 0, -1};
    return form;
}

const BoxForm& OrHdrAudtForm() {
    static const BoxForm form{msg::PrintDataOrHdrAudtTitle,  44, 112, 29, 45,
                              {msg::PrintDataOrHdrAudtHead}, 1,  4};
    return form;
}

const BoxForm& OrLinAudtForm() {
    static const BoxForm form{msg::PrintDataOrLinAudtTitle,  28, 75, 7, 30,
                              {msg::PrintDataOrLinAudtHead}, 1,  2};
    return form;
}

const BoxForm& AudtHHForm() {
    static const BoxForm form{msg::PrintDataAudtHHTitle,
                              36,
                              88,
                              14,
                              30,
                              {msg::PrintDataAudtHHHead1, msg::PrintDataAudtHHHead2},
                              1,
                              3};
    return form;
}

int PageLengthFrom(std::int16_t lineMax) {
    return lineMax < ShortestPage ? UsualPageLength : lineMax;
}

BoxReport::BoxReport(const BoxForm& form, std::unique_ptr<GridData> rows, int pageLength)
    : form_(form),
      rows_(std::move(rows)),
      pageLength_(pageLength) {
    const std::string head = Text(form.Head.back()).CodePage();
    for (std::size_t bar = head.find('|', 1); bar != std::string::npos; bar = head.find('|', bar + 1))
        boxes_.push_back({bar});
    const int lacking = static_cast<int>(boxes_.size()) - (rows_->ColumnCount() - form.FirstColumn);
    int column = form.FirstColumn;
    for (int box = 0; box < static_cast<int>(boxes_.size()); ++box) {
        const bool stays = column >= rows_->ColumnCount() || (lacking > 0 && box == form.UserBox);
        if (!stays) boxes_[static_cast<std::size_t>(box)].Column = column++;
    }
}

void BoxReport::Begin(Printer& printer) {
    printer.SetFont(Plain);
    // The last line of a page stands below those that are counted.
    const int lines = std::min(pageLength_, printer.LinesPerPage() - 1);
    rowsPerPage_ = std::max(1, lines - LinesOfHead - static_cast<int>(form_.Head.size()));
    nextPage_ = 0;
    ahead_ = {};
}

std::int32_t BoxReport::PageCount() const {
    const std::int32_t rows = rows_->RowCount();
    return std::max(1, rows / rowsPerPage_ + (rows % rowsPerPage_ > 0 ? 1 : 0));
}

void BoxReport::PageBreak(std::int32_t page, Printer& printer) const {
    printer.SetFont(Plain);
    Print(printer, {});
    Print(printer, {});
    printer.SetFont(Bold);
    const std::string title = Text(form_.Title).CodePage();
    Print(printer, {});
    Print(printer, Blanks(form_.BlanksBeforeTitle) + title);
    Print(printer, Blanks(form_.BlanksBeforeTitle) + Dashes(title.size()));
    printer.SetFont(Plain);
    const std::string label = Text(msg::ReportPage).CodePage() + std::to_string(page);
    Print(printer, Blanks(std::max(0, form_.Width - static_cast<int>(label.size()))) + label);
    Print(printer, {});
    const std::string dashes = Dashes(static_cast<std::size_t>(form_.Width));
    Print(printer, dashes);
    for (const MessageId line : form_.Head) printer.Print(line);
    Print(printer, dashes);
}

std::string BoxReport::LineOf(std::int32_t row) {
    std::string line = "|";
    for (const Box& box : boxes_) {
        if (box.Column >= 0) {
            const std::string value = WithoutControls(rows_->Cell(row, box.Column).CodePage(), ' ');
            const bool isNumber = rows_->Heading(box.Column).Kind == SortKind::Number;
            if (isNumber && value.size() < box.End) PadTo(line, box.End - value.size());
            line += value;
        }
        PadTo(line, box.End);
        line += '|';
    }
    return line;
}

/// The line of a row when the row behind it comes next.
std::string BoxReport::NextLine(std::int32_t row) {
    if (row < firstAhead_ || row >= firstAhead_ + static_cast<std::int32_t>(ahead_.size())) MakeAhead(row);
    return std::move(ahead_[static_cast<std::size_t>(row - firstAhead_)]);
}

void BoxReport::MakeAhead(std::int32_t first) {
    std::vector<std::int32_t> rows(static_cast<std::size_t>(std::min(RowsAhead, rows_->RowCount() - first)));
    std::iota(rows.begin(), rows.end(), first);
    std::sort(rows.begin(), rows.end(),
              [this](std::int32_t a, std::int32_t b) { return rows_->RecordOf(a) < rows_->RecordOf(b); });
    ahead_.clear();
    ahead_.resize(rows.size());
    firstAhead_ = first;
    for (const std::int32_t row : rows) ahead_[static_cast<std::size_t>(row - first)] = LineOf(row);
}

void BoxReport::PrintPage(std::int32_t page, Printer& printer) {
    PageBreak(page, printer);
    const std::int32_t first = (page - 1) * rowsPerPage_;
    const std::int32_t rows = std::clamp(rows_->RowCount() - first, 0, rowsPerPage_);
    const bool goesOn = rows_->IsSorted() && page == nextPage_;
    if (!goesOn) ahead_ = {}; // they were taken, or are not wanted
    for (std::int32_t row = first; row < first + rows; ++row)
        Print(printer, goesOn ? NextLine(row) : LineOf(row));
    nextPage_ = page < PageCount() ? page + 1 : 0;
    if (nextPage_ == 0) ahead_ = {};
    if (page < PageCount()) {
        return Print(printer, Blanks(form_.BlanksBeforeContinued) + Text(msg::ReportContinued).CodePage() +
                                  std::to_string(page + 1) + Text(msg::ReportContinuedEnd).CodePage());
    }
    Print(printer, Blanks(form_.BlanksBeforeEnd) + Text(msg::EndOfReport).CodePage());
}
