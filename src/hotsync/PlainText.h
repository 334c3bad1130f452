#pragma once

#include <string>
#include <string_view>

/// The mark that some editors put before UTF-8.
inline constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";

/// A text in code page 1252 with '?' for each control character, tabs, line ends and the five characters
/// that the page does not have among them: what can stand on one line of a log or a screen.
std::string WithoutControls(std::string_view text);
