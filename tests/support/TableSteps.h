#pragma once

#include "store/DBFEdit.h"

#include <string>
#include <vector>

// Whole-table work as its record-by-record steps: what the routines over whole tables are held against.

/// Opens a table, marks every record as deleted and compacts it. `table` is left closed.
void EmptyStepByStep(DBFEdit& table, const std::string& path);

/// Makes an open table ready for the first of several appended records.
void BeginAppending(DBFEdit& table);

/// Appends a record: the values from field 1 on, those that are not empty.
void AppendStepByStep(DBFEdit& table, const std::vector<std::string>& values);

/// Trace lines since the last call that speak of tables, oldest first.
std::vector<std::string> TableTrace();
