#include "views/LinesReport.h"

#include "core/Messages.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <algorithm>
#include <utility>

namespace {

constexpr PrintFont Plain{"Courier New", 10};
constexpr PrintFont Bold{"Courier New", 10, true};

/// Of this paper's width. A whole line is measured, since one character's width is a rounded number.
std::size_t ColumnsOf(Printer& printer) {
    constexpr std::size_t measured = 100;
    const int width = printer.TextWidth(Text::Value(std::string_view(std::string(measured, '0'))));
    const int paper = std::max(1, printer.PageWidth());
    return std::max<std::size_t>(1, static_cast<std::size_t>(paper) * measured /
                                        static_cast<std::size_t>(std::max(1, width)));
}

} // namespace

std::vector<std::string> WrapColumns(std::string_view line, std::size_t columns) {
    const std::size_t blanks = line.size() - TrimLeft(line).size();
    const std::string indent(blanks < columns ? blanks : 0, ' ');
    std::vector<std::string> lines;
    std::string rest(TrimRight(line));
    while (rest.size() > columns) {
        // A blank directly behind the last column is as good as one before it.
        std::size_t cut = rest.rfind(' ', columns);
        if (cut == std::string::npos || cut < indent.size() || Trim(rest.substr(0, cut)).empty())
            cut = columns;
        const std::string part = rest.substr(0, cut);
        lines.emplace_back(TrimRight(part));
        rest.replace(0, rest.size() - TrimLeft(std::string_view(rest).substr(cut)).size(), indent);
    }
    lines.push_back(rest);
    return lines;
}

LinesReport::LinesReport(Text title, std::vector<Text> lines)
    : title_(std::move(title)),
      lines_(std::move(lines)) {}

void LinesReport::Begin(Printer& printer) {
    printer.SetFont(Plain);
    while (!lines_.empty() && Trim(lines_.back().Utf8()).empty()) lines_.pop_back();
    linesPerPage_ = static_cast<std::size_t>(std::max(1, printer.LinesPerPage()));
    const std::size_t columns = ColumnsOf(printer);
    laid_ = {title_, Text()};
    for (const Text& line : lines_) {
        for (const std::string& part : WrapColumns(OneLine(line.CodePage()), columns))
            laid_.push_back(Text::Value(std::string_view(part)));
    }
}

std::int32_t LinesReport::PageCount() const {
    return std::max(1, static_cast<std::int32_t>((laid_.size() + linesPerPage_ - 1) / linesPerPage_));
}

void LinesReport::PrintPage(std::int32_t page, Printer& printer) {
    const std::size_t first = static_cast<std::size_t>(page - 1) * linesPerPage_;
    const std::size_t end = std::min(laid_.size(), first + linesPerPage_);
    for (std::size_t line = first; line < end; ++line) {
        printer.SetFont(line == 0 ? Bold : Plain);
        printer.Print(laid_[line]);
    }
}

Text LinesReport::WhenPrinted() const {
    return msg::PrintingComplete;
}

Text LinesReport::WhenNotPrinted() const {
    return msg::PrinterFailed;
}
