#pragma once

#include "core/Text.h"

#include <string>
#include <string_view>

/// Makes a data directory that is gone, and tells the operator: "`lost` (old) is not available ...".
void EnsureDataDirectory(std::string& path, std::string_view name, MessageId lost);
