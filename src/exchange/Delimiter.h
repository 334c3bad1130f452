#pragma once

#include <optional>
#include <string_view>

/// How the columns of a text file are parted.
enum class Delimiter {
    Csv,       ///< commas
    CsvQuotes, ///< commas, texts in double quotes
    Tab,       ///< tab characters
};

/// The word by which templates name it: "CSV", "CSV Quotes" or "TAB".
std::string_view DelimiterWord(Delimiter delimiter);

/// The delimiter that a whole line of a template names, any case; nothing for any other line.
std::optional<Delimiter> DelimiterOfWord(std::string_view word);

/// What stands between two columns: "," or a tab character.
std::string_view DelimiterText(Delimiter delimiter);
