#pragma once

#include "views/GridData.h"
#include "views/Report.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// The words and places of a report of boxes.
struct BoxForm {
    MessageId Title;
    int BlanksBeforeTitle;
    int Width; ///< of the report, in characters; the head lines are as wide
    int BlanksBeforeContinued;
    int BlanksBeforeEnd;
    std::vector<MessageId> Head; ///< between the bars of its last line lie the boxes
    int FirstColumn;             ///< of the grid that goes into a box, from 0
    int UserBox;                 ///< from 0: stays empty when the grid has no column for it; -1 none
};

// The four reports of the table browser.
const BoxForm& TotalsForm();
const BoxForm& OrHdrAudtForm();
const BoxForm& OrLinAudtForm();
const BoxForm& AudtHHForm();

/// The page length that a report takes where the print settings have none of use.
inline constexpr int UsualPageLength = 60;

/// The lines of a page by the print settings; UsualPageLength for less than 20, which would be hardly more
/// than the page's head.
int PageLengthFrom(std::int16_t lineMax);

/// The rows of a grid, in the order in which it holds them, as lines of boxes.
///
/// A page has as many lines as the print settings say, or as many less as the paper has, and below them the
/// line that leads to the next page or ends the report. A value longer than its box is not cut: the boxes
/// behind it move, until blanks have made up for it.
///
/// Where the rows are sorted, pages that are printed one behind the other have their lines made ahead, so
/// many at a time and in the order of the records: the table is read once for these, and not a block for each
/// row. They take about 12 MB, more only where values are longer than their boxes.
class BoxReport final : public Report {
public:
    /// `pageLength` as from PageLengthFrom.
    BoxReport(const BoxForm& form, std::unique_ptr<GridData> rows, int pageLength);

    Text Title() const override { return form_.Title; }
    void Begin(Printer& printer) override;
    std::int32_t PageCount() const override;
    void PrintPage(std::int32_t page, Printer& printer) override;
    bool HasChanged() override { return rows_->CheckChanged(); }

private:
    void PageBreak(std::int32_t page, Printer& printer) const;
    std::string LineOf(std::int32_t row);
    std::string NextLine(std::int32_t row);
    void MakeAhead(std::int32_t first);

    struct Box {
        std::size_t End = 0; ///< position of the bar behind it, from 0
        int Column = -1;     ///< of the grid; -1 none
    };

    const BoxForm& form_;
    std::unique_ptr<GridData> rows_;
    int pageLength_;
    std::int32_t rowsPerPage_ = 1;
    std::vector<Box> boxes_;
    std::int32_t nextPage_ = 0;      ///< behind the one that was printed last; 0 none
    std::vector<std::string> ahead_; ///< lines of the rows from firstAhead_ on
    std::int32_t firstAhead_ = 0;
};
