#pragma once

#include "exchange/Delimiter.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The columns and the settings of an export. Text is code page 1252.
struct ExportTemplate {
    std::string FileName;                 ///< a plain file name, or empty
    std::optional<::Delimiter> Delimiter; ///< nothing when the template names none
    bool SortOrders = false;
    bool AddBlankLine = false;
    bool QualityCheck = false;
    bool AddHeadings = false;
    std::string Filter;               ///< behind "Filter:" in templates from elsewhere; has no effect
    std::vector<std::string> Columns; ///< rows as ExportJob::Columns
};

/// A template that was read, and how far. Not Opened: it is as a new template.
struct ExportTemplateRead {
    ExportTemplate Template; ///< what was read, as far as the reading got
    bool Opened = false;
    bool Complete = false;           ///< read to the end of the file
    bool BeginsWithFileName = false; ///< the first line begins with "Filename="
    bool HasFileName = false;        ///< something stands behind "Filename=", if only a directory
    bool BadFileName = false;        ///< it names no file; Template.FileName is then empty
};

/// Reads a template file, each line by its beginning. A directory before the file name is dropped.
/// Nothing fails: an error while reading ends it, and the result says so.
ExportTemplateRead ReadExportTemplate(std::string_view path) noexcept;

/// Writes a template file from scratch, without the filter; a template without a delimiter is
/// written as CSV. RunTimeFailure 5 for a text that holds a line end, otherwise as SafeFile.
void WriteExportTemplate(std::string_view path, const ExportTemplate& content);
