#pragma once

#include "views/Report.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A text on lines of at most so many characters (at least 1), broken at blanks or, inside a longer word,
/// anywhere. The further lines stand as far in as the first. Code page 1252.
std::vector<std::string> WrapColumns(std::string_view line, std::size_t columns);

/// Lines of text below a title, in a font of fixed pitch. Those that are longer than the paper is wide go on
/// below; blank ones at the end are left out. The operator is told when it has been printed.
class LinesReport final : public Report {
public:
    LinesReport(Text title, std::vector<Text> lines);

    Text Title() const override { return title_; }
    void Begin(Printer& printer) override;
    std::int32_t PageCount() const override;
    void PrintPage(std::int32_t page, Printer& printer) override;
    Text WhenPrinted() const override;
    Text WhenNotPrinted() const override;

private:
    Text title_;
    std::vector<Text> lines_;
    std::vector<Text> laid_; ///< the lines as they fit this paper, the title first
    std::size_t linesPerPage_ = 1;
};
