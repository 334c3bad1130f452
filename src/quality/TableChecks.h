#pragma once

#include "core/Progress.h"
#include "quality/Problems.h"

#include <string>
#include <vector>

/// The checks of the tables in the tables directory. Each sorts and loads the tables that it needs,
/// runs all its tests in their order, and adds a row for each test that has found something.
///
/// Tables are never changed but by the sorts, which leave every key as it is. RunTimeFailure of the
/// sorts and as LoadTable; the rows that were added before stay.

void QCCust(ProblemList& problems, Progress& progress);
/// Rebuilds the barcode index too, as the check of the bar codes does.
void QCItems(ProblemList& problems, Progress& progress);
void QCBarcode(ProblemList& problems, Progress& progress);
void QCSTax(ProblemList& problems, Progress& progress);
void QCPay(ProblemList& problems);
/// `users`: the names that the HotSync Manager knows, in code page 1252.
void QCLinks(ProblemList& problems, const std::vector<std::string>& users);
