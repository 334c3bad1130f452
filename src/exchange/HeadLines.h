#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The lines of a data file above the one at which its data starts: mostly the headings of its
/// columns. When they change from one import to the next, the columns may have moved.
struct HeadLines {
    std::int32_t StartLine = 1;     ///< the line at which the data starts, from 1
    std::vector<std::string> Lines; ///< the last so many before it, in code page 1252, without ends

    static constexpr std::int32_t MaxLines = 50;

    bool operator==(const HeadLines&) const = default;
};

/// Reads them out of a data file. RunTimeFailure as TextReader.
HeadLines ReadHeadLines(std::string_view dataFile, std::int32_t startLine);

/// The lines that were there when a template was last used, kept in a file beside it: its name and
/// ".head". Nothing when there is no such file, or when it cannot be read.
std::optional<HeadLines> RememberedHeadLines(std::string_view templateFile) noexcept;

/// Keeps the lines beside a template. A file that cannot be written stops nothing: the next import
/// has then nothing to compare with.
void RememberHeadLines(std::string_view templateFile, const HeadLines& lines) noexcept;

/// For a template that goes.
void ForgetHeadLines(std::string_view templateFile) noexcept;

/// A line that has changed, as it was and as it is; empty where one side has fewer lines.
struct ChangedLine {
    std::string Before, Now;
};

/// The first line that differs. Nothing when all agree, when nothing is remembered, and when the
/// data starts at another line than before: then the operator has moved it himself.
std::optional<ChangedLine> FirstChange(const std::optional<HeadLines>& remembered, const HeadLines& lines);
