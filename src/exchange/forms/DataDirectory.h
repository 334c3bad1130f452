#pragma once

#include "core/Text.h"

#include <string>
#include <string_view>

/// Makes a data directory that is gone, and tells the operator: "`lost` (old) is not available ...".
/// RunTimeFailure as MakePath when the one in its place cannot be made either.
void EnsureDataDirectory(std::string& path, std::string_view name, MessageId lost);
