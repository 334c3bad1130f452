#pragma once

#include <string_view>

/// True when a table cannot be opened for reading and writing, or another program holds a lock on
/// it. What this program has open itself does not count. Never fails.
bool TableIsLocked(std::string_view path) noexcept;
