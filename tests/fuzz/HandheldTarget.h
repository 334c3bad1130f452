#pragma once

#include <string_view>

/// The bytes as what a desktop sends to a handheld: requests, each behind a byte with its length. No bytes
/// bring it down, every answer can be read and answers what was asked, and what it keeps can be read again.
void HandheldServer(std::string_view bytes);
