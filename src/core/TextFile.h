#pragma once

#include "core/Failure.h"
#include "core/FileNumbers.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The text with a blank in the place of each line end: what is to stand on one line of a file,
/// whatever it came from.
std::string OneLine(std::string_view text);

/// The text with `instead` in the place of each control character: what may stand on paper.
std::string WithoutControls(std::string_view text, char instead);

/// A failure over a line of a text file: it names the file and the line's number, and quotes its
/// beginning. `line` is code page 1252.
RunTimeFailure FailureInLine(int number, std::string_view path, std::int64_t lineNumber,
                             std::string_view line);

/// Reads a text file line by line, in blocks. Lines end in carriage return and line feed, in either
/// one alone, or at the end of the file. Text is code page 1252 and is handed on as it stands.
class TextReader {
public:
    /// Opens under a file number. RunTimeFailure as Disk::Open; 6 when the file has more than `limit`
    /// bytes.
    explicit TextReader(std::string_view path, std::uint64_t limit = Endless);
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;
    ~TextReader();

    /// The next line without its end. False at the end of the file, `line` then empty.
    /// RunTimeFailure 52 when another has closed this file's number, 57 from the disk, 6 for a line
    /// longer than MaxLine: no text file that this program knows has one. `line` then holds its
    /// beginning, and the next call goes on inside it.
    bool ReadLine(std::string& line);

    /// The next line; RunTimeFailure 62 at the end of the file.
    std::string RequireLine();

    /// Whether no line is left. RunTimeFailure 52 and 57 as ReadLine.
    bool AtEnd();

    /// Lines read so far.
    std::int64_t LineNumber() const { return line_; }

    static constexpr std::size_t MaxLine = std::size_t{1} << 20;

    /// Limits of a file that is taken line by line, and of one whose lines are all kept in memory:
    /// settings, templates, statuses.
    static constexpr std::uint64_t Endless = ~std::uint64_t{0};
    static constexpr std::uint64_t OwnFile = std::uint64_t{1} << 22;

private:
    bool Fill();
    bool Peek(char& c);
    std::size_t LineEnd();

    std::string path_;
    FileNumbers::Claim file_;
    std::string block_;
    std::size_t at_ = 0;
    std::size_t nextReturn_ = 0; ///< the first line end of each kind at `at_` or behind; the block's size
    std::size_t nextFeed_ = 0;   ///< for none; to be looked for when it lies before `at_`, or is 0
    std::uint64_t offset_ = 0;
    std::int64_t line_ = 0;
};
