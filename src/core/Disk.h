#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// How a file is opened.
enum class Access {
    Read,      ///< must exist
    ReadWrite, ///< must exist; shared with whoever has it open
    Create,    ///< made, or emptied when it exists
};

/// One open file. Offsets count from 0, in bytes. Ends with its object; nothing is flushed then.
class DiskFile {
public:
    virtual ~DiskFile() = default;

    /// Reads up to `size` bytes at `offset`; the number read, less than `size` only at the end.
    /// RunTimeFailure 57.
    virtual std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) = 0;

    /// Writes all of `bytes`. RunTimeFailure 61 on a full disk, 57 on any other error.
    virtual void WriteAt(std::uint64_t offset, std::string_view bytes) = 0;

    /// Bytes, as it is now. RunTimeFailure 57.
    virtual std::uint64_t Size() = 0;

    /// A number that is another one when the file has been written since, or when another file stands
    /// under its name, as far as the system can tell: a write within the tick of its clock may pass.
    virtual std::uint64_t Version() { return Size(); }

    /// Returns when the bytes are on the medium. RunTimeFailure 57 (or 61) when they are not.
    virtual void Flush() = 0;
};

/// What the standard library lacks of the operating system's files, and the only way to change
/// one. Paths are texts in the file system's encoding, already resolved (core/Paths.h).
/// Tests put one of their own in its place to see what a failing disk does.
class Disk {
public:
    virtual ~Disk() = default;

    /// RunTimeFailure 53 file not found, 76 path not found, 70 permission denied, 75 any other, also
    /// for what is no file: a folder, a pipe, a device.
    virtual std::unique_ptr<DiskFile> Open(const std::string& path, Access access) = 0;

    /// Puts `from` in the place of `to` in one step; `to` may exist. RunTimeFailure 75.
    virtual void Rename(const std::string& from, const std::string& to) = 0;

    /// As Rename, as quickly as the system can, for a file that nobody flushes: a kill leaves the old
    /// content or the new one, a power cut may leave none. Killed in between, `from` may stay and hold what
    /// stood in `to`. RunTimeFailure 75.
    virtual void RenameQuickly(const std::string& from, const std::string& to) { Rename(from, to); }

    /// Makes the last renames and removals in a folder lasting. Failures are passed over: not
    /// every file system can do it.
    virtual void FlushFolder(const std::string& folder) = 0;

    /// False when there was no such file. RunTimeFailure 75 when it cannot be removed.
    virtual bool Remove(const std::string& path) = 0;

    /// Makes one folder, whose parent exists. Nothing happens when it is there. RunTimeFailure 75.
    virtual void MakeFolder(const std::string& path) = 0;

    /// Removes an empty folder. False when it is not empty, not there or not ours to remove.
    virtual bool RemoveFolder(const std::string& path) = 0;

    /// What a link leads to counts. False also for what cannot be looked at; neither fails.
    virtual bool IsFile(const std::string& path) = 0;
    virtual bool IsFolder(const std::string& path) = 0;

    /// Names, not paths, of what a folder holds, in byte order; empty when it cannot be read.
    virtual std::vector<std::string> FilesIn(const std::string& folder) = 0;
    virtual std::vector<std::string> FoldersIn(const std::string& folder) = 0;

    /// True when a process other than this one holds a lock on the file, or an office program's
    /// lock file (".~lock.NAME#") stands beside it.
    virtual bool LockedByAnother(const std::string& path) = 0;
};

/// The operating system's own files.
Disk& NativeDisk();
