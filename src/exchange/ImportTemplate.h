#pragma once

#include "exchange/Delimiter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The two tables that an import template can be for.
enum class TemplateKind { Cust, Item };

/// Whether a template's file name is of a kind: by the letters of its extension alone, any case, with a point
/// before them or not. `extension` has one.
bool IsOfKind(std::string_view fileName, std::string_view extension);

/// As IsOfKind; nothing for another name.
std::optional<TemplateKind> TemplateKindOf(std::string_view fileName);

/// ".cst" or ".itm".
std::string_view TemplateExtension(TemplateKind kind);

/// "ZUKCUST.DBF" or "ZUKITEM.DBF".
std::string_view TableFileOf(TemplateKind kind);

/// How the columns of a text file feed the fields of a table. Text is code page 1252.
struct ImportTemplate {
    std::string DataFile;                 ///< a plain file name; looked for in the folder of incoming files
    std::optional<::Delimiter> Delimiter; ///< nothing when the template names none
    std::string StartLine;                ///< the text as it was typed; empty when the template has none
    std::vector<std::string> Fields;      ///< rows as ImportJob::SelectedFields
    std::vector<std::string> Literals;    ///< rows `field = value`
};

/// A template that was read, and how far. Not Opened: it is as a new template.
struct ImportTemplateRead {
    ImportTemplate Template; ///< what was read, as far as the reading got
    bool Opened = false;
    bool Complete = false;    ///< read to the end of the file
    std::string FirstLine;    ///< as it stands, a directory included, without blanks around
    bool BadDataFile = false; ///< line 1 names no file; Template.DataFile is then empty
};

/// Reads a template file. A directory in line 1 is dropped. Nothing fails: an error while reading
/// ends it, and the result says so.
ImportTemplateRead ReadImportTemplate(std::string_view path) noexcept;

/// Writes a template file from scratch; a template without a delimiter is written as CSV.
/// RunTimeFailure 52 when DataFile is not a plain file name, 5 for a row that holds a line end,
/// otherwise as SafeFile.
void WriteImportTemplate(std::string_view path, const ImportTemplate& content);

/// The number of the first line that holds data; 1 for a text that is no number of a line.
std::int32_t StartLineNumber(std::string_view text);
