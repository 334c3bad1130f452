#pragma once

#include "core/Dates.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Somebody with a handheld.
struct HotSyncUser {
    std::uint32_t Id = 0;    ///< never 0; the user's handheld carries it too
    std::string Name;        ///< code page 1252; the name of a folder, too
    DateTime LastSync;       ///< zero: has had no handheld yet
    bool Incomplete = false; ///< the last session broke off

    bool operator==(const HotSyncUser&) const = default;
};

enum class UserNameFault { None, Empty, TooLong, NoFileName, Taken };

/// What keeps a name from being that of any user; never Taken.
UserNameFault FaultOfUserName(std::string_view name);
/// In code page 1252; empty for None.
std::string_view WordsOf(UserNameFault fault);

/// What stands in `Users.txt` of the manager's folder, see docs/files.md.
struct HotSyncUsersFile {
    static constexpr std::string_view Name = "Users.txt";

    /// A folder that is to get another name. Written down before it has it.
    struct Move {
        std::string From, To; ///< code page 1252
    };

    std::vector<std::string> Comments; ///< lines of the operator's own, kept at the file's head
    std::vector<HotSyncUser> Users;    ///< no id and no name twice
    std::optional<Move> Pending;

    /// `folder` with a separator at its end. RunTimeFailure 13 with file, line and reason for a line that is
    /// none; otherwise as TextReader.
    static HotSyncUsersFile Read(const std::string& folder);

    /// RunTimeFailure as SafeFile.
    void Write(const std::string& folder) const;
};
