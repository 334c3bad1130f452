#pragma once

#include "core/FileNumbers.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// A file that is replaced whole. What is written goes to a work file beside it; Commit flushes
/// that and puts it in the file's place. Killed at any instant, the old content stands or the
/// new one. An object that ends without Commit removes its work file.
class SafeFile {
public:
    /// What becomes of a file when what is written turns out to be what it holds. `Keep` leaves it
    /// alone and flushes nothing, at the cost of reading it: the work file is made at the first
    /// difference. A file that another program puts in its place meanwhile stays when nothing differs
    /// from the one that stood there at first, and is replaced otherwise.
    enum class WhenSame { Replace, Keep };

    /// The extension of work files. Strays of a killed run are removed at the next start.
    static constexpr std::string_view WorkExtension = ".zuk~";

    /// Opens the work file under a file number of its own. `path` is resolved here.
    /// RunTimeFailure as Disk::Open; 70 when the file stands there and may not be written.
    explicit SafeFile(std::string_view path, WhenSame whenSame = WhenSame::Replace);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    ~SafeFile();

    /// Adds bytes at the end. RunTimeFailure 61 or 57 from the disk, 52 when another has closed
    /// this file's number, 75 at the first difference when another program has written into the file
    /// that would have been kept.
    void Write(std::string_view bytes);

    /// Adds a line and the line end of all text files, carriage return and line feed.
    void WriteLine(std::string_view line);

    /// Writes bytes over what was written before; `offset` plus their number lies within it.
    void Overwrite(std::uint64_t offset, std::string_view bytes);

    /// Bytes written so far.
    std::uint64_t Size() const { return written_ + pending_.size(); }

    /// Puts the new content in place. `flush` off leaves the moment of writing to the system: only for
    /// what is made again at each start. RunTimeFailure as Write, 75 from the rename.
    void Commit(bool flush = true);

    /// Commit for what is replaced hundreds of times a second, as the trace is: nothing is flushed, and
    /// after a power cut the file may be empty. Failures as Commit.
    void CommitQuickly();

private:
    void Drain();
    bool Finish(bool flush);
    void Put(std::uint64_t offset, std::string_view bytes);
    bool StandsThere(std::uint64_t offset, std::string_view bytes);
    void BeginWorkFile();
    void CopyWritten(DiskFile& from);
    void Discard() noexcept;

    std::string path_;
    std::string work_;
    FileNumbers::Claim file_;
    std::unique_ptr<DiskFile> same_; ///< the file itself, while all that was written is what it holds
    std::uint64_t version_ = 0;      ///< of that file when it was opened
    std::string pending_;
    std::uint64_t written_ = 0;
    bool done_ = false;
};

/// Replaces a file's whole content. Failures as SafeFile.
void WriteWholeFile(std::string_view path, std::string_view content, bool flush = true);

/// A file's whole content. RunTimeFailure as Disk::Open; 6 when it holds more than `limit` bytes.
std::string ReadWholeFile(std::string_view path, std::uint64_t limit = std::uint64_t{64} << 20);

/// Adds a line, with its line end, behind whatever a file holds; the file is made when there is none. A
/// last line that was cut off is ended first. Nothing is flushed, and a kill may cut the new line. Returns
/// the file's size by then. Failures as Disk.
std::uint64_t AppendLine(std::string_view path, std::string_view line);
