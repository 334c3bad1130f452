#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A text file of rows, UTF-8: columns parted by tabs, its first line the names of the fields, then a row
/// a line. Cells are in code page 1252.
struct RowFile {
    std::string File;
    std::vector<std::string> Fields;
    std::vector<std::vector<std::string>> Rows; ///< each with a cell for each field
};

/// RunTimeFailure 13 with file and line for a row of another number of columns; otherwise as TextReader.
RowFile ReadRowFile(const std::string& file);

/// Makes the rows a table's only records. RunTimeFailure 13 with the file when the table lacks a field;
/// otherwise as TableRewrite.
void FillTable(const std::string& table, const RowFile& rows);
