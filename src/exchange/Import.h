#pragma once

#include "core/Progress.h"
#include "exchange/Delimiter.h"
#include "exchange/ImportText.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What joins the fields of a row of selected fields, and what parts field and value of a literal.
inline constexpr std::string_view RowAnd = "; ";
inline constexpr std::string_view RowEquals = " = ";

/// What one import needs.
struct ImportJob {
    std::string ImportFile; ///< full path of the text file
    std::string TableFile;  ///< full path of the table to fill
    ::Delimiter Delimiter = ::Delimiter::Csv;
    std::int32_t StartLine = 1; ///< the first line that holds data, from 1

    /// Row 0 is "Ignore"; row k is the name of the table's field k. See AvailableFieldsOf.
    std::vector<std::string> AvailableFields;

    /// One row a column of the file: "Ignore", a field, or several fields joined by "; ".
    std::vector<std::string> SelectedFields;

    /// Rows `field = value`: the same value in every record, unless a column feeds the field.
    std::vector<std::string> Literals;

    /// Non-empty lines of the file, as CountLines has them: the measure of the progress.
    std::int32_t LineCount = 0;

    /// Full path of the list of lines that failed, as LostLinesFile makes it; empty for none. A list
    /// that stands there goes when no line failed.
    std::string ErrorFile;
};

/// What came of an import that did not fail.
struct ImportResult {
    std::int32_t LinesRead = 0;   ///< non-empty lines taken in
    std::int16_t LinesFailed = 0; ///< of these, lines that left an empty record; 32767 also stands for more
    bool FieldCountMismatch = false; ///< the file has too few columns; the table was not touched
    bool ErrorsListed = false;       ///< the lines that failed stand in the job's ErrorFile
};

/// Replaces the whole content of a table by the lines of a text file, one record for each line that
/// is not empty. Shows the progress as 0 to 100; the caller begins it.
///
/// The table changes at the end and as a whole: any failure leaves it as it was. RunTimeFailure 62
/// when the file ends before StartLine, 6 when that line is longer than TextReader::MaxLine, and as
/// TextReader, TableLayout::Read and SafeFile. A list of lines that cannot be written stops nothing.
ImportResult ImportDataFile(const ImportJob& job, Progress& progress);

/// "Ignore" and then the names of a table's fields, from field 1 up. RunTimeFailure as TableScan.
std::vector<std::string> AvailableFieldsOf(std::string_view tablePath);
