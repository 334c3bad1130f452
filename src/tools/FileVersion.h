#pragma once

#include <string>
#include <string_view>

/// The file version of a Windows program, such as "6.2.0.1", from its version resource; empty when there is
/// no such file, it cannot be read, or it says none. Never fails.
std::string FileVersion(std::string_view path);
