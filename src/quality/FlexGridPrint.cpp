#include "quality/FlexGridPrint.h"

#include "core/Messages.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr PrintFont TitleFont{"Arial", 14, true};
constexpr PrintFont HeadingFont{"Arial", 8, true};
constexpr PrintFont CellFont{"Arial", 8};

constexpr int CellMargin = 60;    ///< between a box and its text, in twips
constexpr int BelowTitle = 200;   ///< from the moment of printing to the headings
constexpr int TopOfPage = 300;    ///< of a page without a title
constexpr int MostExtraLines = 2; ///< by which a row's height on the screen may exceed its need on paper

/// How far down rows may reach.
int PrintableHeight(const Printer& printer) {
    return printer.PageHeight() * 94 / 100 - 200;
}

/// The end of the longest start of `word` that fits; at least one whole character.
std::size_t FittingPart(std::string_view word, int width, Printer& printer) {
    const auto isInside = [&](std::size_t at) {
        return at < word.size() && (static_cast<unsigned char>(word[at]) & 0xC0) == 0x80;
    };
    std::size_t fits = 0;
    for (std::size_t end = 1; end <= word.size(); ++end) {
        if (isInside(end)) continue;
        if (fits > 0 && printer.TextWidth(Text::Path(word.substr(0, end))) > width) break;
        fits = end;
    }
    return fits;
}

void WrapLine(std::string_view text, int width, Printer& printer, std::vector<Text>& lines) {
    std::string line;
    for (std::string_view word : SplitText(text, " ")) {
        const std::string longer = line.empty() ? std::string(word) : line + ' ' + std::string(word);
        if (printer.TextWidth(Text::Path(std::string_view(longer))) <= width) {
            line = longer;
            continue;
        }
        if (!line.empty()) lines.push_back(Text::Path(std::string_view(line)));
        while (printer.TextWidth(Text::Path(word)) > width) {
            const std::size_t fits = FittingPart(word, width, printer);
            if (fits == word.size()) break;
            lines.push_back(Text::Path(word.substr(0, fits)));
            word.remove_prefix(fits);
        }
        line = word;
    }
    lines.push_back(Text::Path(std::string_view(line)));
}

} // namespace

std::vector<Text> WrapText(const Text& text, int width, Printer& printer) {
    std::vector<Text> lines;
    for (const std::string_view line : SplitText(text.Utf8(), "\n")) WrapLine(line, width, printer, lines);
    if (lines.empty()) lines.emplace_back();
    return lines;
}

FlexGridPrint::FlexGridPrint(PrintGrid grid, std::string_view company, const DateTime& printed)
    : grid_(std::move(grid)),
      company_(Text::Value(company)) {
    const std::string date = ShortDate(printed);
    const std::string time = Format(printed, "hh:nn AM/PM");
    moment_ = Words(msg::PrintedOn, Text::Value(std::string_view(date)), msg::PrintedAt,
                    Text::Value(std::string_view(time)));
}

Text FlexGridPrint::Title() const {
    return msg::frmConfigMsg;
}

Text FlexGridPrint::WhenPrinted() const {
    return msg::PrintingComplete;
}

FlexGridPrint::Laid FlexGridPrint::LayOut(const PrintGrid::Row& row, const PrintFont& font,
                                          Printer& printer) const {
    printer.SetFont(font);
    Laid laid;
    for (std::size_t column = 0; column < row.Cells.size(); ++column) {
        const int width = std::max(1, widths_.at(column) - 2 * CellMargin);
        laid.Cells.push_back(WrapText(row.Cells[column], width, printer));
        laid.Lines = std::max(laid.Lines, static_cast<int>(laid.Cells.back().size()));
    }
    const int needed = laid.Lines * lineHeight_ + 2 * CellMargin;
    laid.Height = std::clamp(row.Height, needed, needed + MostExtraLines * lineHeight_);
    return laid;
}

void FlexGridPrint::Begin(Printer& printer) {
    printer.SetFont(TitleFont);
    const int titleHeight = printer.TextHeight();
    printer.SetFont(CellFont);
    lineHeight_ = printer.TextHeight();
    FitWidths(printer.PageWidth());
    rows_.clear();
    for (const PrintGrid::Row& row : grid_.Rows)
        rows_.push_back(LayOut(row, rows_.empty() ? HeadingFont : CellFont, printer));

    // The moment stands below the company, which stands half a line below its place.
    const int firstTop = titleHeight / 2 + 700 + titleHeight + lineHeight_ + BelowTitle;
    BreakIntoPages(firstTop, PrintableHeight(printer));
}

void FlexGridPrint::FitWidths(int pageWidth) {
    const int sum = std::accumulate(grid_.Widths.begin(), grid_.Widths.end(), 0);
    widths_ = grid_.Widths;
    if (sum <= std::max(pageWidth, 0)) return;
    for (int& width : widths_) width = static_cast<int>(std::int64_t{width} * pageWidth / sum);
}

void FlexGridPrint::BreakIntoPages(int top, int bottom) {
    pages_.clear();
    top = StartPage(top);
    for (std::size_t row = 1; row < rows_.size(); ++row) top = PlaceRow(row, top, bottom);
}

int FlexGridPrint::StartPage(int top) {
    pages_.emplace_back();
    if (rows_.empty()) return top;
    pages_.back().push_back({0, 0, rows_[0].Lines, top, rows_[0].Height});
    return top + rows_[0].Height;
}

int FlexGridPrint::PlaceRow(std::size_t row, int top, int bottom) {
    const Laid& laid = rows_[row];
    const auto isWhole = [&] { return top + laid.Height <= bottom; };
    const bool isEmptyPage = pages_.back().size() == 1;
    const bool fitsEmptyPage = TopOfPage + rows_[0].Height + laid.Height <= bottom;
    if (!isWhole() && (!isEmptyPage || (pages_.size() == 1 && fitsEmptyPage))) top = StartPage(TopOfPage);
    if (isWhole()) {
        pages_.back().push_back({row, 0, laid.Lines, top, laid.Height});
        return top + laid.Height;
    }
    // Higher than a page: as many of its lines as there is room for, whatever the room is.
    for (int line = 0; line < laid.Lines;) {
        if (line > 0) top = StartPage(TopOfPage);
        const int room = (bottom - top - 2 * CellMargin) / lineHeight_;
        const int lines = std::clamp(room, 1, laid.Lines - line);
        const int height = lines * lineHeight_ + 2 * CellMargin;
        pages_.back().push_back({row, line, lines, top, height});
        top += height;
        line += lines;
    }
    return top;
}

void FlexGridPrint::PrintTitle(Printer& printer) const {
    const auto centred = [&](const Text& text) {
        // A name wider than the page begins at its edge.
        return std::max(0, (printer.PageWidth() - printer.TextWidth(text) - 200) / 2);
    };
    printer.SetFont(TitleFont);
    const int half = printer.TextHeight() / 2;
    printer.PrintAt(centred(Title()), half + 300, Title());
    printer.PrintAt(centred(company_), half + 700, company_);
    const int below = half + 700 + printer.TextHeight();
    printer.SetFont(CellFont);
    printer.PrintAt(printer.PageWidth() - printer.TextWidth(moment_) - 500, below, moment_);
}

void FlexGridPrint::PrintPiece(const Piece& piece, Printer& printer) const {
    printer.SetFont(piece.Row == 0 ? HeadingFont : CellFont);
    int left = 0;
    const auto& cells = rows_[piece.Row].Cells;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        printer.PrintBox(left, piece.Top, widths_[column], piece.Height);
        int top = piece.Top + CellMargin;
        const int end = std::min(piece.FirstLine + piece.Lines, static_cast<int>(cells[column].size()));
        for (int line = piece.FirstLine; line < end; ++line, top += lineHeight_)
            printer.PrintAt(left + CellMargin, top, cells[column][static_cast<std::size_t>(line)]);
        left += widths_[column];
    }
}

void FlexGridPrint::PrintPage(std::int32_t page, Printer& printer) {
    if (page == 1) PrintTitle(printer);
    for (const Piece& piece : pages_.at(static_cast<std::size_t>(page) - 1)) PrintPiece(piece, printer);
}
