#include "core/TextFile.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Paths.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 17;
constexpr std::size_t LongestQuote = 80; ///< characters of a line that a failure shows

} // namespace

std::string OneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return line;
}

std::string WithoutControls(std::string_view text, char instead) {
    std::string plain(text);
    std::replace_if(
        plain.begin(), plain.end(), [](unsigned char c) { return c < ' ' || c == 127; }, instead);
    return plain;
}

RunTimeFailure FailureInLine(int number, std::string_view path, std::int64_t lineNumber,
                             std::string_view line) {
    return RunTimeFailure(number, std::string(FileNameOf(path)) + ", line " + std::to_string(lineNumber) +
                                      ": " + CodePageToUtf8(line.substr(0, LongestQuote)));
}

TextReader::TextReader(std::string_view path, std::uint64_t limit) : path_(ResolvePath(path)) {
    file_ = Global.Files.Open(*Global.TheDisk, path_, Access::Read);
    try {
        if (limit != Endless && Global.Files.Use(file_).Size() > limit) throw RunTimeFailure(6, path_);
    } catch (...) {
        Global.Files.Close(file_);
        throw;
    }
}

TextReader::~TextReader() {
    Global.Files.Close(file_);
}

bool TextReader::Fill() {
    // Whoever reads on after a failed read finds no bytes that were never in the file.
    at_ = nextReturn_ = nextFeed_ = 0;
    std::string block;
    block.swap(block_);
    block.resize(BlockSize);
    block.resize(Global.Files.Use(file_).ReadAt(offset_, block.data(), BlockSize));
    block.swap(block_);
    offset_ += block_.size();
    return !block_.empty();
}

/// Where the line at `at_` ends, or the block.
std::size_t TextReader::LineEnd() {
    // Each kind is looked for once: a file that has only one of them is not searched for the other
    // at every line.
    const auto next = [this](char end, std::size_t known) {
        if (known >= at_ && known > 0) return known;
        return std::min(block_.find(end, at_), block_.size());
    };
    nextReturn_ = next('\r', nextReturn_);
    nextFeed_ = next('\n', nextFeed_);
    return std::min(nextReturn_, nextFeed_);
}

bool TextReader::Peek(char& c) {
    if (at_ == block_.size() && !Fill()) return false;
    c = block_[at_];
    return true;
}

bool TextReader::AtEnd() {
    char c = 0;
    return !Peek(c);
}

bool TextReader::ReadLine(std::string& line) {
    line.clear();
    char c = 0;
    if (!Peek(c)) return false;
    ++line_;
    while (Peek(c)) {
        const std::size_t end = LineEnd();
        line.append(block_, at_, end - at_);
        if (line.size() > MaxLine) throw RunTimeFailure(6, path_ + ", line " + std::to_string(line_));
        at_ = end;
        if (end == block_.size()) continue;
        const char first = block_[at_++];
        if (first == '\r' && Peek(c) && c == '\n') ++at_;
        break;
    }
    return true;
}

std::string TextReader::RequireLine() {
    std::string line;
    if (!ReadLine(line)) throw RunTimeFailure(62, path_);
    return line;
}
