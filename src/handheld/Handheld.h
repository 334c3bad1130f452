#pragma once

#include "handheld/DatabaseStore.h"
#include "handheld/Settings.h"

#include <string>
#include <string_view>

/// A handheld in a folder: Handheld.txt, its databases in `databases`, and the log of its last HotSync,
/// log.txt. Whoever opens one has locked the folder.
class Handheld {
public:
    /// Refusal when the folder holds none or something in it is damaged; failures of the disk.
    explicit Handheld(std::string_view folder);

    /// Makes a new one in the folder, which is made too. Refusal when one is there.
    static void Make(std::string_view folder, const HandheldSettings& settings);

    HandheldSettings Settings;
    DatabaseStore Store;

    /// The moment by the handheld's own clock; always one that the wire can tell.
    DateTime Clock() const;
    /// Changes Settings; SaveSettings keeps it.
    void SetClock(const DateTime& moment);

    /// Failures as SafeFile.
    void SaveSettings() const;

    /// The log of a HotSync, in code page 1252 here and UTF-8 in the file. Failures as SafeFile.
    void WriteLog(std::string_view text) const;
    /// The log of the last HotSync, UTF-8; empty when there was none.
    std::string Log() const;

    /// Everything goes: databases, user, log. The memory stays as large as it is.
    void Reset();

    const std::string& Folder() const { return folder_; }

private:
    std::string folder_; ///< with its trailing separator
};
