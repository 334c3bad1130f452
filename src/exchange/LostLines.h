#pragma once

#include "core/SafeFile.h"
#include "core/Text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Where the list of a data file's lost lines lies: "Errors/<data file's name>.txt" in the folder of
/// incoming files. The name is kept whole, since customers.csv and customers.txt are two files.
std::string LostLinesFile(std::string_view dataIn, std::string_view dataFile);

/// The lines of a data file that an import could not take in: a text file in code page 1252 with a
/// head that says of which file and when, then a line each: number, reason and the line itself,
/// parted by tab characters. A list that cannot be written is given up and stops nobody.
class LostLines {
public:
    /// `listFile`: full path, empty for no list. Nothing is made before the first line.
    LostLines(std::string listFile, std::string_view dataFile);

    /// `number` counts from 1. A very long line is cut.
    void Add(std::int64_t number, const Text& reason, std::string_view line) noexcept;

    /// Puts the list in place of the one that stood there, or removes that one when no line was
    /// added. True when there is a list.
    bool Commit() noexcept;

private:
    void Begin();

    std::string listFile_;
    std::string dataFile_;
    std::optional<SafeFile> file_;
    bool givenUp_ = false;
};
