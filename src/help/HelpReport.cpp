#include "help/HelpReport.h"

#include <string_view>

namespace {

constexpr PrintFont Plain{"Arial", 10}, Heading{"Arial", 13, true};

Text Part(std::string_view utf8) {
    return Text::Path(utf8);
}

/// A paragraph in lines that are no wider than a page, broken at blanks; a word that is wider stands alone.
std::vector<Text> Broken(const Text& paragraph, Printer& printer) {
    std::vector<Text> lines;
    std::string line;
    std::string_view rest = paragraph.Utf8();
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        const std::string_view word = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::string longer = line.empty() ? std::string(word) : line + ' ' + std::string(word);
        if (!line.empty() && printer.TextWidth(Part(std::string_view(longer))) > printer.PageWidth()) {
            lines.push_back(Part(std::string_view(line)));
            line = word;
        } else {
            line = longer;
        }
    }
    lines.push_back(Part(std::string_view(line)));
    return lines;
}

} // namespace

void HelpReport::Begin(Printer& printer) {
    pages_.assign(1, {});
    int top = 0;
    for (const HelpParagraph& paragraph : paragraphs_) {
        printer.SetFont(paragraph.IsHeading ? Heading : Plain);
        const int height = printer.TextHeight();
        if (top > 0) top += height / 2;
        for (Text& line : Broken(paragraph.Words, printer)) {
            if (top + height > printer.PageHeight() && top > 0) {
                pages_.emplace_back();
                top = 0;
            }
            pages_.back().push_back({std::move(line), paragraph.IsHeading, top});
            top += height;
        }
    }
}

void HelpReport::PrintPage(std::int32_t page, Printer& printer) {
    for (const Line& line : pages_.at(static_cast<std::size_t>(page) - 1)) {
        printer.SetFont(line.IsHeading ? Heading : Plain);
        printer.PrintAt(0, line.Top, line.Words);
    }
}
