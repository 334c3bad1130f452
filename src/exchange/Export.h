#pragma once

#include "core/Progress.h"
#include "exchange/Delimiter.h"
#include "exchange/OrderTables.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What one export needs.
struct ExportJob {
    std::string ExportFile; ///< full path; replaced when the export succeeds
    ::Delimiter Delimiter = ::Delimiter::Csv;
    bool AddHeadings = false;
    bool AddBlankLine = false;
    bool SortOrders = false;   ///< for PrepareOrders
    bool QualityCheck = false; ///< for PrepareOrders

    /// One row an output column: a field; "H_ORDDATE Format: mmddyyyy"; "Literal = value"; or a
    /// calculation such as "L_QTY * [1.5]".
    std::vector<std::string> Columns;
};

/// What came of an export; one that met no orders leaves a file without any.
struct ExportResult {
    std::int32_t Exported = 0;    ///< records written
    std::int32_t Walked = 0;      ///< records of the table that was walked
    std::int16_t OrphanLines = 0; ///< order lines without a header, left out; 32767 also stands for more
    bool CouldNotOpen = false;    ///< the export file cannot be written; nothing was done
};

/// True when the file gets one line for each order line: any row holds the name of a line field.
bool HasLineFields(std::span<const std::string> columns);

/// Steps of the bar for what comes behind the last record.
constexpr std::int64_t StepsBehindExport = 2;

/// Writes the orders into a text file, one line for each order header, or for each order line with
/// the values of its header. Shows the progress as the number of records; the caller begins it, with a
/// maximum of the records of the table walked and StepsBehindExport, which is shown when the file is there.
///
/// A step that fails leaves its cell as it was for the record before. The file gets its name when
/// it is complete; until then, and after a failure, what stood there stands. RunTimeFailure 61, 57,
/// 52 and 75 as SafeFile.
ExportResult ExportOrders(const ExportJob& job, const OrderTables& tables, Progress& progress);

/// The first lines that ExportOrders would write, without their ends: headings, and so many orders or
/// order lines with their blank lines.
std::vector<std::string> PreviewOrders(const ExportJob& job, const OrderTables& tables, std::int32_t records);

/// The file name with ".csv" or ".txt", by the delimiter, when it has no extension.
std::string ExportFileName(std::string_view text, Delimiter delimiter);
