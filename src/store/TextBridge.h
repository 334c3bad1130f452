#pragma once

#include "core/Progress.h"

#include <string>
#include <string_view>
#include <vector>

/// Records on their way from one table into another whose fields can differ: a text file of values,
/// matched by field name when they are read back. No value passes as bytes.
///
/// A line is a record: each field's value, trimmed, and behind each one the byte 165. A value that holds
/// this byte moves the values behind it; that is accepted.

/// The names of a table's fields in their order: position i of a line belongs to entry i.
using BridgeFields = std::vector<std::string>;

/// Writes a table's records into a text file, in their order, those marked as deleted included. `fields` then
/// holds its field names. RunTimeFailure as TableScan and SafeFile.
void DBFtoText(std::string_view source, BridgeFields& fields, std::string_view text);

/// Appends the lines of a text file to a table, behind the records that it holds, and deletes the text; an
/// empty one is left as it stands, and so is the table. A field that the table does not have is dropped, one
/// that the text does not have stays blank. The table is replaced whole. RunTimeFailure as TextReader,
/// TableScan and TableRewrite: table and text are then as they were.
void TextToDBF(std::string_view target, const BridgeFields& fields, std::string_view text,
               Progress& progress);
