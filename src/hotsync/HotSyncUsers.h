#pragma once

#include "hotsync/HotSyncUsersFile.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The users that the HotSync Manager knows, in the order in which they came, and their folders: the
/// file `Users.txt` of the manager's folder, see docs/files.md.
///
/// A change is in the file when its routine returns. A routine that fails has changed nothing but for an
/// empty folder; the failure's words say why. (When a folder cannot be renamed, and the file cannot be
/// brought back, the user keeps the new name, and the folder follows at the next Load.) Ids that no user
/// has are RunTimeFailure 5, a file that cannot be written fails as SafeFile. Pointers and references to
/// users hold until the next change.
class HotSyncUsers {
public:
    /// The width of the Links table's field for a HotSync id.
    static constexpr std::size_t LongestName = 30;

    /// As many as one message to the programs on the desk can name.
    static constexpr std::size_t MostUsers = 5000;

    /// `folder` is the manager's, in the file system's encoding.
    explicit HotSyncUsers(std::string_view folder);

    /// Reads the file; without one there are no users. Puts away what a killed run has left, and brings a
    /// renaming to its end that was cut off.
    /// RunTimeFailure 13 with file, line and reason for a line that is none; otherwise as TextReader.
    void Load();

    const std::vector<HotSyncUser>& All() const { return users_; }
    const HotSyncUser* FindId(std::uint32_t id) const;
    const HotSyncUser* FindName(std::string_view name) const; ///< without regard to case

    /// Adds a user under a new random id, and makes its install folder. A folder that stands there is
    /// taken as it is. RunTimeFailure 5 for a name that cannot be one, see WhyNotAName, or too many users.
    const HotSyncUser& New(std::string_view name);

    /// The user's folder goes along. RunTimeFailure 5 for a name that cannot be one, or when a folder of
    /// the new name stands there already.
    void Rename(std::uint32_t id, std::string_view name);

    /// The user's folder stays, as "NAME.deleted" or, when that is taken, "NAME.deleted-2" and so on: its
    /// files are not lost, and do not reach a later user of the same name.
    void Delete(std::uint32_t id);

    /// The user gets the id of the handheld that carries its name. RunTimeFailure 5 for 0 and for the id
    /// of another user.
    void TakeHandheld(std::uint32_t userId, std::uint32_t handheldId);

    /// A session of the user ended at `when`; `complete` is false when it broke off.
    void Synced(std::uint32_t id, DateTime when, bool complete);

    /// The manager's folder, with its trailing separator.
    const std::string& Folder() const { return folder_; }

    /// Where the files wait that the user's next session installs: the folder, the user's name and
    /// "Install", with a separator at the end.
    std::string InstallFolder(const HotSyncUser& user) const;

    /// Whether a program has begun an install for the user, and it is not over.
    bool InstallWaits(const HotSyncUser& user) const;

    /// Where the user's stand-in handheld lies, if there is one: the folder, the user's name and "Handheld",
    /// with a separator at the end.
    std::string StandInFolder(const HotSyncUser& user) const;

    using NameFault = UserNameFault;

    /// What keeps a name, its blanks at both ends cut, from becoming that of the user with this id, or of a
    /// new one (id 0). The manager's own files have names, too, that no user can bear.
    NameFault WhyNotAName(std::string_view name, std::uint32_t id = 0) const;

    /// Called behind each change that is in the file, and behind Load.
    std::function<void()> Changed;

private:
    using Move = HotSyncUsersFile::Move;

    void Take(std::vector<HotSyncUser> users);
    void TakeWithFolder(std::vector<HotSyncUser> users, const Move& move);
    void FinishMove();
    bool StandsInTheWay(const Move& move) const;
    void CheckName(std::string_view name, std::uint32_t id) const;
    std::uint32_t FreeId() const;
    std::size_t PlaceOf(std::uint32_t id) const;
    std::string FolderNamed(std::string_view name) const;
    std::string NameForDeleted(std::string_view name) const;

    std::string folder_;
    std::vector<std::string> comments_; ///< lines of the operator's own, kept at the file's head
    std::vector<HotSyncUser> users_;
    std::optional<Move> pending_;
};

/// The machine id of a stand-in handheld that is made for the user with this id: a letter and three letters
/// or digits. Order codes begin with it, so it goes by the id, which no later user gets: a place in the list
/// would be that of another user as soon as one is deleted.
std::string StandInMachine(std::uint32_t id);
