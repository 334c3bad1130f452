#pragma once

#include "core/Progress.h"
#include "store/TableLayout.h"

#include <string>
#include <string_view>
#include <vector>

/// Tables that move into another structure, by the text `DBFCOPY.TXT` in the tables directory.

/// A table's fields and number of records. RunTimeFailure as TableScan; it names the full path.
TableLayout StructureOf(std::string_view path);

/// RunTimeFailure 321, with both paths, when a table with records has not one field of the structure that
/// they are to move into: no record would keep a value.
void RefuseForeign(const TableLayout& records, std::string_view recordsOf, const TableLayout& structure,
                   std::string_view structureOf);

/// Copies a table over another: `oldTable` and `newTable` are full paths. Where both have the same fields
/// the file is copied byte by byte, and so it is where there is no new table yet. Else the records of the old
/// one move into the fields of the new one (TextToNewDBF), in the place of the records that it holds. The new
/// table is what it was until it is whole. RunTimeFailure as TextToNewDBF and CopyOver.
void CopySingleTable(std::string_view oldTable, std::string_view newTable, Progress& progress);

/// The tables that an update has dropped into `DBFNew` and that the next start takes over.
std::vector<std::string> NewTables();

/// Takes over the tables of `DBFNew`, which is made when it is missing: the records of each table of the
/// tables directory move into the structure of the new one, a table that is not there yet is placed as it
/// is, and the file in `DBFNew` goes. The table's twins in `Install` and `DBFEmpty` get the new structure
/// too, or the next clearing would bring the old one back.
///
/// All of them are looked at first. RunTimeFailure with the file's name when one is no table, when it has
/// not one field of a table with records that it is to replace, and 70 when a table is locked: nothing has
/// been changed then. Killed or failed in the middle, each table is the old one or the new one, and the
/// next call goes on.
void UpdateTables(Progress& progress);
