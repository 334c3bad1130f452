#pragma once

#include "core/Dates.h"
#include "views/Report.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A grid that is only printed. Row 0 is its fixed one, the headings. Each row has a text for each width.
struct PrintGrid {
    std::vector<int> Widths; ///< of the columns, in twips
    struct Row {
        std::vector<Text> Cells;
        int Height = 0; ///< in twips, as on the screen; more where the paper needs more for the same words
    };
    std::vector<Row> Rows;
};

/// A text on lines that fit a width, broken at blanks and line feeds, and inside a word that is wider than
/// a line. At least one line.
std::vector<Text> WrapText(const Text& text, int width, Printer& printer);

/// The rows of the Quality Check as they stand on the screen, with word-wrapped cells. The headings come
/// first on each page; a row that is higher than a page goes on over as many as it needs.
class FlexGridPrint final : public Report {
public:
    /// `company` in code page 1252. `printed` is what the pages name as the moment.
    FlexGridPrint(PrintGrid grid, std::string_view company, const DateTime& printed);

    Text Title() const override;
    void Begin(Printer& printer) override;
    std::int32_t PageCount() const override { return static_cast<std::int32_t>(pages_.size()); }
    void PrintPage(std::int32_t page, Printer& printer) override;
    Text WhenPrinted() const override;

private:
    /// A row as it is drawn.
    struct Laid {
        std::vector<std::vector<Text>> Cells; ///< their lines
        int Lines = 1;                        ///< of the highest cell
        int Height = 0;
    };
    /// Some lines of a row, on one page.
    struct Piece {
        std::size_t Row;
        int FirstLine, Lines;
        int Top, Height;
    };

    void FitWidths(int pageWidth);
    Laid LayOut(const PrintGrid::Row& row, const PrintFont& font, Printer& printer) const;
    void BreakIntoPages(int top, int bottom);
    // Both return where the next row begins.
    int StartPage(int top);
    int PlaceRow(std::size_t row, int top, int bottom);
    void PrintTitle(Printer& printer) const;
    void PrintPiece(const Piece& piece, Printer& printer) const;

    PrintGrid grid_;
    Text company_;
    Text moment_;
    std::vector<int> widths_; ///< of the columns on this paper
    std::vector<Laid> rows_;
    std::vector<std::vector<Piece>> pages_{{}};
    int lineHeight_ = 1;
};
