#include "exchange/ImportTemplate.h"

#include "core/Catalogue.h"
#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "exchange/ImportMapping.h"

#include <exception>
#include <limits>

namespace {

constexpr std::string_view StartLineWord = "StartLine=";
constexpr std::string_view FieldsWord = "[FIELDS]";
constexpr std::string_view LiteralsWord = "[LITERALS]";

void WriteRow(SafeFile& file, std::string_view row) {
    if (row.find_first_of("\r\n") != std::string_view::npos) throw RunTimeFailure(5, CodePageToUtf8(row));
    file.WriteLine(row);
}

/// A row of fields as it stands, with the key where a column is ignored.
std::string FieldsRow(const std::string& row) {
    const bool isForeign = !SameText(row, IgnoreRow) && IsKey(row, msg::IgnoreField);
    return isForeign ? std::string(IgnoreRow) : row;
}

void ReadRows(TextReader& file, ImportTemplate& content) {
    enum class Section { Head, Fields, Literals } section = Section::Head;
    std::string line;
    while (file.ReadLine(line)) {
        if (section == Section::Literals) {
            content.Literals.push_back(line);
        } else if (section == Section::Fields) {
            if (SameText(line, LiteralsWord))
                section = Section::Literals;
            else
                content.Fields.push_back(FieldsRow(line));
        } else if (SameText(line, FieldsWord)) {
            section = Section::Fields;
        } else if (const auto delimiter = DelimiterOfWord(line)) {
            content.Delimiter = delimiter;
        } else if (SameText(Trim(std::string_view(line).substr(0, StartLineWord.size())), StartLineWord)) {
            content.StartLine = Trim(std::string_view(line).substr(StartLineWord.size()));
        }
    }
}

} // namespace

bool IsOfKind(std::string_view fileName, std::string_view extension) {
    const std::string_view letters = extension.substr(1);
    return fileName.size() >= letters.size() &&
           SameText(fileName.substr(fileName.size() - letters.size()), letters);
}

std::optional<TemplateKind> TemplateKindOf(std::string_view fileName) {
    for (const TemplateKind kind : {TemplateKind::Cust, TemplateKind::Item}) {
        if (IsOfKind(fileName, TemplateExtension(kind))) return kind;
    }
    return std::nullopt;
}

std::string_view TemplateExtension(TemplateKind kind) {
    return kind == TemplateKind::Cust ? ".cst" : ".itm";
}

std::string_view TableFileOf(TemplateKind kind) {
    return kind == TemplateKind::Cust ? "ZUKCUST.DBF" : "ZUKITEM.DBF";
}

ImportTemplateRead ReadImportTemplate(std::string_view path) noexcept {
    ImportTemplateRead result;
    try {
        TextReader file(path, TextReader::OwnFile);
        result.Opened = true;
        const std::string first = file.RequireLine();
        result.FirstLine = Trim(first);
        const std::string_view name = Trim(FileNameOf(first));
        result.BadDataFile = !IsPlainFileName(name);
        if (!result.BadDataFile) result.Template.DataFile = name;
        ReadRows(file, result.Template);
        result.Complete = true;
    } catch (const std::exception&) { // what was read so far is what the template tells
    }
    return result;
}

void WriteImportTemplate(std::string_view path, const ImportTemplate& content) {
    if (!IsPlainFileName(content.DataFile)) throw RunTimeFailure(52, CodePageToUtf8(content.DataFile));
    SafeFile file(path);
    WriteRow(file, content.DataFile);
    WriteRow(file, DelimiterWord(content.Delimiter.value_or(Delimiter::Csv)));
    WriteRow(file, std::string(StartLineWord) + content.StartLine);
    WriteRow(file, FieldsWord);
    for (const std::string& row : content.Fields) WriteRow(file, row);
    WriteRow(file, LiteralsWord);
    for (const std::string& row : content.Literals) WriteRow(file, row);
    file.Commit();
}

std::int32_t StartLineNumber(std::string_view text) {
    if (!IsNumeric(text)) return 1;
    const double line = RoundToEven(ToNumber(text));
    const bool isLine = line >= 1 && line <= std::numeric_limits<std::int32_t>::max();
    return isLine ? static_cast<std::int32_t>(line) : 1;
}
