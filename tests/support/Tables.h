#pragma once

#include "support/TableMaker.h"

#include <string>
#include <string_view>
#include <vector>

/// A table of the catalogue with its fields and no rows yet, made without the engine's writers.
TableMaker EmptyTableOf(std::string_view name);

/// Writes a table of the catalogue, under the catalogue's file name, into a folder (with its trailing
/// separator; it is made). Values in field order, missing ones blank. Returns the full path.
std::string GivenTable(const std::string& folder, std::string_view name,
                       const std::vector<std::vector<std::string>>& rows = {});

/// A row of a table of the catalogue by field names: those that are not told are blank.
std::vector<std::string> RowOf(std::string_view name,
                               const std::vector<std::pair<std::string, std::string>>& values);

/// The table as it stands on the disk; it fails the test when there is none.
TableContent TableAt(const std::string& path);
