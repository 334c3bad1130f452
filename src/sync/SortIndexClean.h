#pragma once

#include "core/Progress.h"

/// Makes the tables that are chosen for automatic downloads ready for a handheld, when `RemoteSelect`
/// is on: those that the download template `RemoteSelSettings` turns on are sorted, their keys cleaned,
/// in the order of its lines, and the barcode index is made anew whatever it says.
/// RunTimeFailure 53 for a template that is not there, 52 when its name is no plain file name, otherwise
/// as TextReader, the sorts and RebuildIndexTables; what was sorted before stays sorted.
void SortIndexCleanFiles(Progress& progress);
