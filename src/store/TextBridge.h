#pragma once

#include "core/Progress.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Records on their way from one table into another whose fields can differ: a text file of values,
/// matched by field name when they are read back. No value passes as bytes.
///
/// A line is a record: each field's value, trimmed, and behind each one the byte 165. A value that holds
/// this byte moves the values behind it; that is accepted. A line end inside a value is written as blanks, or
/// one record would come back as two.

/// The names of a table's fields in their order: position i of a line belongs to entry i.
using BridgeFields = std::vector<std::string>;

/// Writes a table's records into a text file, in their order, those marked as deleted included. `fields` then
/// holds the names of its fields. RunTimeFailure as TableScan and SafeFile; there is no new text then.
void DBFtoText(std::string_view source, BridgeFields& fields, std::string_view text);

/// Appends the lines of a text file to a table, behind the records that it holds, and deletes the text. A
/// text without lines stays and adds nothing. A field that the table does not have is dropped, one that the
/// text does not have stays blank. The table is replaced whole, and ends in a blank. RunTimeFailure as
/// TextReader, TableScan, TableLayout::Find and TableRewrite, and 321 for a line of fewer values than there
/// are fields; table and text are then as they were.
void TextToDBF(std::string_view target, const BridgeFields& fields, std::string_view text,
               Progress& progress);

// Whole tables, into a structure that a new release has brought or that has become another since.

/// As DBFtoText. The progress begins here, with the table's name, and reaches half of its maximum.
void OldDBFtoText(std::string_view source, BridgeFields& fields, std::string_view text, Progress& progress);

/// The lines of a text as all records of a table of this structure, in the place of whatever stands there:
/// what PrepareNewDBF leaves of the new table, which is none of its records, and a record a line behind it.
/// Fields are matched by their whole names without regard to case; then each value goes to the first field
/// whose name begins so, as every lookup by name does. The text is deleted before the table
/// is put in its place, also one without lines. RunTimeFailure as TextToDBF and Disk::Remove; what stands
/// there is then as it was.
void TextToNewDBF(std::string_view target, const TableLayout& structure, const BridgeFields& fields,
                  std::string_view text, Progress& progress);

/// Whether two tables have the same fields, so that a record of one is one of the other byte by byte.
bool HaveSameFields(const TableLayout& a, const TableLayout& b);

/// Appends the records of another table that a table does not hold yet, in their order and as the bridge
/// appends them; how many. A record that is there more often than in the table is appended as often as it is
/// missing. None where the table holds all of them in whatever order: TextToDBF behind DBFtoText has been
/// done already, also when the table was sorted since. Marks of deletion make no difference. The table is
/// then as it was, and replaced whole otherwise. The source's records are in memory meanwhile. RunTimeFailure
/// as TableScan, TableLayout::Find and TableRewrite.
std::int32_t AppendMissing(std::string_view target, std::string_view source);

/// Whether two tables have the same fields and the same records, marks of deletion included. RunTimeFailure
/// as TableScan.
bool HoldTheSame(std::string_view table, std::string_view other);
