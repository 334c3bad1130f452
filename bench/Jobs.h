#pragma once

#include "core/Progress.h"
#include "exchange/Export.h"
#include "exchange/Import.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The jobs that are measured, on the tables of the office that is open.

/// A customer file into a table of customers: 13 of its 14 columns feed the table's 14 fields.
ImportJob CustomerImport(const std::string& file);

/// Order lines with the values of their headers, in 20 columns: fields, a date by a format, a
/// literal and a calculation.
ExportJob OrderExport(const std::string& file);

std::string HeaderTable();
std::string LineTable();

/// The sum of L_TOTPRICE over a table of order lines.
double SumOfLines(std::string_view table);
