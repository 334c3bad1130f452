#pragma once

#include <cstdint>
#include <string>

/// Fills every table of an office with invented records, always the same for the same count: codes are
/// unique, masters and orders refer to each other. 0 empties them. The company's, the print and the setup
/// table have one record at most, and the Links table not more handhelds than an office has. `tables` is its
/// tables directory. RunTimeFailure as TableRewrite.
void FillAllTables(const std::string& tables, std::int32_t records);

inline constexpr std::int32_t MostHandhelds = 200;
