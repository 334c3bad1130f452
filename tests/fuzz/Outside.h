#pragma once

#include "core/Failure.h"
#include "core/Globals.h"
#include "fuzz/MemoryDisk.h"

#include <stdexcept>
#include <string>
#include <string_view>

/// Ends a target's input as one that breaks a rule.
inline void Require(bool holds, const char* rule) {
    if (!holds) throw std::logic_error(rule);
}

/// Does something that may end in a failure that the caller is told; no file may stay open after it.
template <typename Deed>
void Attempt(Deed&& deed) {
    try {
        deed();
    } catch (const RunTimeFailure&) { // being told is all that is asked
    }
    Require(Global.Files.Count() == 0, "a file was left open");
}

inline const std::string Folder = "/fuzz/";

/// A fresh program over a disk in memory, with one file that came from outside, or none.
class Outside {
public:
    Outside() {
        Global = Globals{};
        Global.TheDisk = &Disk;
    }
    explicit Outside(std::string_view content, std::string_view file = "outside.dat") : Outside() {
        File = Folder + std::string(file);
        Disk.Put(File, std::string(content));
    }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;
    ~Outside() { Global = Globals{}; }

    std::string Content(std::string_view file) const { return Disk.Content(Folder + std::string(file)); }
    bool Has(std::string_view file) { return Disk.IsFile(Folder + std::string(file)); }

    MemoryDisk Disk;
    std::string File; ///< full path
};
