#pragma once

#include "core/Progress.h"
#include "store/MemoryTable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a run that makes tables ready for a handheld does. The handheld looks its tables up by binary
/// search, so they travel in the order of their keys.
struct SortOptions {
    bool RebuildIndex = false;  ///< RebuildIndexTables behind the sorts
    bool SortContents = false;  ///< the sorts
    bool RemoveSpecial = false; ///< the sorts clean the keys of customers and items: CleanKey
};

/// The three sorts: every record anew, in the order of the first field's text. Equal keys keep their
/// order, and records marked as deleted come back as live ones. Cleaned keys may have become equal;
/// nobody is told. The table changes as a whole or not at all, with the trace lines of the DBFEdit
/// steps. Of the options only `RemoveSpecial` counts. The bar goes up with each record read and each
/// record written. RunTimeFailure as TableScan and TableRewrite.
void SortCustFile(std::string_view path, const SortOptions& options, Progress& progress);
void SortItemFile(std::string_view path, const SortOptions& options, Progress& progress);
/// A sales tax code stays as it is, whatever the options say.
void SortSTaxFile(std::string_view path, const SortOptions& options, Progress& progress);

/// The same for the Links table, which nobody watches and whose keys stay as they are.
void SortLinkFile(std::string_view path);

/// Makes the barcode index of a directory (with its trailing separator) anew: a record for the first
/// barcode of each item, empty ones too, with the item's place, which is its record number less 1.
/// Second barcodes are not in it. Trace lines and failures as the sorts; RunTimeFailure 321, both
/// tables as they were, when the index has not its two fields.
void RebuildItemIndex(std::string_view directory, Progress& progress);

/// The same in `DBFFiles`.
void RebuildIndexTables(Progress& progress);

/// A key as the handheld can look it up: capitals and digits. What TextCompare finds between "0" and
/// "9" or "A" and "Z" stays, accented letters and raised digits included; but "Ž", which comes behind
/// "Z", does not.
std::string CleanKey(std::string_view key);

/// Numbers of records, in the order in which they are to stand in a table.
using RecordOrder = std::vector<std::int32_t>;

/// All records by TextCompare of a field; those that are equal keep their order.
RecordOrder SortedByKey(const MemoryTable& table, int key);

/// Empties a table and writes records of its copy, as TableRewrite::Append(fields) does, with the trace
/// lines of those steps. The table changes as a whole or not at all. RunTimeFailure as TableRewrite;
/// 5 when the table's fields are no longer those of the copy.
void RefillTable(std::string_view path, const MemoryTable& copy, const RecordOrder& records);
