#pragma once

#include "core/FileNumbers.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Reads a text file line by line, in blocks. Lines end in carriage return and line feed, in either
/// one alone, or at the end of the file. Text is code page 1252 and is handed on as it stands.
class TextReader {
public:
    /// Opens under a file number. RunTimeFailure as Disk::Open.
    explicit TextReader(std::string_view path);
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;
    ~TextReader();

    /// The next line without its end. False at the end of the file, `line` then empty.
    /// RunTimeFailure 52 when another has closed this file's number, 57 from the disk, 6 for a line
    /// longer than MaxLine: no text file that this program knows has one.
    bool ReadLine(std::string& line);

    /// The next line; RunTimeFailure 62 at the end of the file.
    std::string RequireLine();

    bool AtEnd();

    /// Lines read so far.
    std::int64_t LineNumber() const { return line_; }

    static constexpr std::size_t MaxLine = std::size_t{1} << 20;

private:
    bool Fill();
    bool Peek(char& c);

    std::string path_;
    FileNumbers::Claim file_;
    std::string block_;
    std::size_t at_ = 0;
    std::uint64_t offset_ = 0;
    std::int64_t line_ = 0;
};
