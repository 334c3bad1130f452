#pragma once

#include "core/Progress.h"
#include "quality/Problems.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The checks of the tables in the tables directory. Each sorts and loads the tables that it needs,
/// runs all its tests in their order, and adds a row for each test that has found something.
///
/// Tables are never changed but by the sorts, which leave every key as it is. RunTimeFailure of the
/// sorts and as LoadTable; the rows that were added before stay. The two that sort no long table show no
/// progress.

void QCCust(ProblemList& problems, Progress& progress);
/// Rebuilds the barcode index too, as the check of the bar codes does.
void QCItems(ProblemList& problems, Progress& progress);
void QCBarcode(ProblemList& problems, Progress& progress);
void QCSTax(ProblemList& problems, Progress& progress);
void QCPay(ProblemList& problems);
/// `users`: the names that the HotSync Manager knows, in code page 1252.
void QCLinks(ProblemList& problems, const std::vector<std::string>& users);

// The same rules for one record that is being changed. Fields go by their place, from 1.

/// The fields of a table in which the check looks for repeats; none for a table that has no check.
std::vector<int> FieldsWithoutRepeats(std::string_view file);

/// The first thing that the check of a table would find in a record, Fatal before Warn; empty when there is
/// none. `cell` gives the record's trimmed texts; `otherWith` the number of another record with the same text
/// in a field, 0 for none. Left out is what hangs on other records alone: tax codes that nobody knows, and
/// bar codes that are blank.
Text FirstObjection(std::string_view file, const std::function<std::string(int place)>& cell,
                    const std::function<std::int32_t(int place, std::string_view text)>& otherWith);
