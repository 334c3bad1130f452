#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A piece of text in one style. Lines end in '\n'.
struct RtfRun {
    std::string Utf8;
    bool Bold = false, Italic = false;
    bool operator==(const RtfRun&) const = default;
};

/// The words of a rich text file (RTF) as its reader sees them: paragraphs and lines, tabs, bold and italic,
/// characters of code page 1252 and Unicode. Fonts, colours, pictures, fields' instructions and everything
/// else are left out. Bytes that do not begin as such a file are taken for plain text. Never fails: of a file
/// that breaks its own rules comes what stands before that, and groups nested too deep are left out.
std::vector<RtfRun> ReadRtf(std::string_view bytes);
