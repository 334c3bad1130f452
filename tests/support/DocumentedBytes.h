#pragma once

#include <string>

/// The bytes of the worked example in a document: lines of four blanks, an address of two digits, and up
/// to 16 bytes in hex, whatever is said behind them.
std::string DocumentedBytes(const std::string& document);

/// The worked example under a heading of docs/files.md that contains these words, as it stands in the file:
/// its lines are those that are indented by four blanks, an arrow is a tab, and lines end in carriage return
/// and line feed. `which`, from 1, of several that words part. Empty when there is none.
std::string DocumentedText(const std::string& heading, int which = 1);
