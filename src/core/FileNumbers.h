#pragma once

#include "core/Disk.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The process-wide table of open files, by number from 1 upward. Tables and text files share it,
/// so that whoever closes "all numbers down to 1" closes the files of others too.
class FileNumbers {
public:
    /// A number and whose it is: a number that was closed and given out again is another file.
    struct Claim {
        std::int16_t Number = 0; ///< 0: none
        std::uint64_t Ticket = 0;
    };

    /// Opens under the lowest free number, at most 32767. Failures are those of Disk::Open; RunTimeFailure 52
    /// when all numbers are taken; the disk is not asked then.
    Claim Open(Disk& disk, const std::string& path, Access access);

    /// The open file of a claim. RunTimeFailure 52 when its number has been closed since.
    DiskFile& Use(const Claim& claim);
    /// False for the claim of nothing too.
    bool IsOpen(const Claim& claim) const;

    /// Closes a number, whoever owns it. A number that is not open is no failure.
    void Close(std::int16_t number);
    void Close(const Claim& claim) {
        if (IsOpen(claim)) Close(claim.Number);
    }

    /// How many numbers are open.
    int Count() const;

private:
    struct Entry {
        std::unique_ptr<DiskFile> File;
        std::uint64_t Ticket = 0;
    };
    std::vector<Entry> entries_;
    std::ptrdiff_t lowest_ = 0; ///< all entries before it are open
    std::uint64_t tickets_ = 0;
};
