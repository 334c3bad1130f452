#pragma once

#include <string>

/// The bytes of the worked example in a document: lines of four blanks, an address of two digits, and up
/// to 16 bytes in hex, whatever is said behind them.
std::string DocumentedBytes(const std::string& document);
