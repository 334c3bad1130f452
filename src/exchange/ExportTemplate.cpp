#include "exchange/ExportTemplate.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <exception>

namespace {

constexpr std::string_view FileNameWord = "Filename=";
constexpr std::string_view HeadingsWord = "HDR=";
constexpr std::string_view BlankLineWord = "Add Blank Line between Orders";
constexpr std::string_view SortWord = "Sort Orders";
constexpr std::string_view CheckWord = "Quality Check";
constexpr std::string_view FilterWord = "Filter:";

bool Flag(std::string_view line, std::string_view word) {
    return Trim(line.substr(word.size())) == "1";
}

bool IsFileNameLine(std::string_view line) {
    return SameText(Trim(line.substr(0, FileNameWord.size())), FileNameWord);
}

void TakeFileName(std::string_view text, ExportTemplateRead& result) {
    const std::string_view name = Trim(FileNameOf(text));
    result.HasFileName = !Trim(text).empty();
    result.BadFileName = !name.empty() && !IsPlainFileName(name);
    result.Template.FileName = result.BadFileName ? std::string_view() : name;
}

/// The order of the tests decides: a line that begins with "CSV" is never a column.
void TakeLine(const std::string& line, ExportTemplateRead& result) {
    ExportTemplate& content = result.Template;
    const std::string_view view = line;
    if (IsFileNameLine(line))
        TakeFileName(view.substr(FileNameWord.size()), result);
    else if (BeginsWith(line, DelimiterWord(Delimiter::CsvQuotes)))
        content.Delimiter = Delimiter::CsvQuotes;
    else if (BeginsWith(line, DelimiterWord(Delimiter::Csv)))
        content.Delimiter = Delimiter::Csv;
    else if (BeginsWith(line, DelimiterWord(Delimiter::Tab)))
        content.Delimiter = Delimiter::Tab;
    else if (BeginsWith(line, HeadingsWord))
        content.AddHeadings = Flag(line, HeadingsWord);
    else if (BeginsWith(line, BlankLineWord))
        content.AddBlankLine = Flag(line, BlankLineWord);
    else if (BeginsWith(line, SortWord))
        content.SortOrders = Flag(line, SortWord);
    else if (BeginsWith(line, CheckWord))
        content.QualityCheck = Flag(line, CheckWord);
    else if (BeginsWith(line, FilterWord))
        content.Filter = Trim(view.substr(FilterWord.size()));
    else
        content.Columns.push_back(line);
}

} // namespace

ExportTemplateRead ReadExportTemplate(std::string_view path) noexcept {
    ExportTemplateRead result;
    try {
        TextReader file(path, TextReader::OwnFile);
        result.Opened = true;
        std::string line;
        for (bool first = true; file.ReadLine(line); first = false) {
            if (first) result.BeginsWithFileName = IsFileNameLine(line);
            TakeLine(line, result);
        }
        result.Complete = true;
    } catch (const std::exception&) { // the columns stay as far as they got
    }
    return result;
}

void WriteExportTemplate(std::string_view path, const ExportTemplate& content) {
    SafeFile file(path);
    const auto write = [&](std::string_view word, std::string_view value) {
        if (value.find_first_of("\r\n") != std::string_view::npos)
            throw RunTimeFailure(5, CodePageToUtf8(value));
        file.WriteLine(std::string(word) + std::string(value));
    };
    const auto writeFlag = [&](std::string_view word, bool on) { write(word, on ? "1" : "0"); };
    write(FileNameWord, content.FileName);
    write(DelimiterWord(content.Delimiter.value_or(Delimiter::Csv)), "");
    writeFlag(SortWord, content.SortOrders);
    writeFlag(BlankLineWord, content.AddBlankLine);
    writeFlag(CheckWord, content.QualityCheck);
    writeFlag(HeadingsWord, content.AddHeadings);
    for (const std::string& row : content.Columns) write("", row);
    file.Commit();
}
