#pragma once

#include <cstdint>
#include <string>

/// Fills every table of an office with invented records, always the same for the same count: codes are
/// unique, masters and orders refer to each other. 0 empties them. `tables` is its tables directory.
/// RunTimeFailure as TableRewrite.
void FillAllTables(const std::string& tables, std::int32_t records);
