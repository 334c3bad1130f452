#include "hotsync/HotSyncUsers.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "hotsync/PlainText.h"
#include "sync/InstallFolder.h"

#include <algorithm>
#include <random>
#include <utility>

namespace {

bool IsFolder(const std::string& path) {
    return Global.TheDisk->IsFolder(path);
}

} // namespace

HotSyncUsers::HotSyncUsers(std::string_view folder) : folder_(AddBackslash(folder)) {}

// ---- the file ----

void HotSyncUsers::Load() {
    RemoveQuietly(folder_ + std::string(HotSyncUsersFile::Name) + std::string(SafeFile::WorkExtension));
    HotSyncUsersFile content;
    try {
        content = HotSyncUsersFile::Read(folder_);
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() != 53) throw;
    }
    comments_ = std::move(content.Comments);
    users_ = std::move(content.Users);
    pending_ = std::move(content.Pending);
    try {
        FinishMove();
    } catch (const RunTimeFailure&) { // the next renaming tells of it, or the next Load has it done
    }
    if (Changed) Changed();
}

void HotSyncUsers::Take(std::vector<HotSyncUser> users) {
    HotSyncUsersFile{comments_, users, pending_}.Write(folder_);
    users_ = std::move(users);
    if (Changed) Changed();
}

// ---- folders that go along ----

std::string HotSyncUsers::FolderNamed(std::string_view name) const {
    return folder_ + NameToPath(name);
}

std::string HotSyncUsers::InstallFolder(const HotSyncUser& user) const {
    return AddBackslash(AddBackslash(FolderNamed(user.Name)) + "Install");
}

bool HotSyncUsers::InstallWaits(const HotSyncUser& user) const {
    return FileExists(InstallMark(InstallFolder(user)));
}

std::string HotSyncUsers::StandInFolder(const HotSyncUser& user) const {
    return AddBackslash(AddBackslash(FolderNamed(user.Name)) + "Handheld");
}

/// Whether something bears the new name. One that differs from the old name only in case is the same folder.
bool HotSyncUsers::StandsInTheWay(const Move& move) const {
    const std::string to = FolderNamed(move.To);
    const std::string there = SameText(move.From, move.To) ? to : ResolvePath(to);
    return IsFolder(there) || Global.TheDisk->IsFile(there);
}

void HotSyncUsers::FinishMove() {
    if (!pending_) return;
    const std::string from = ResolvePath(FolderNamed(pending_->From));
    if (IsFolder(from) && !StandsInTheWay(*pending_)) {
        Global.TheDisk->Rename(from, FolderNamed(pending_->To));
        Global.TheDisk->FlushFolder(folder_);
    }
    pending_.reset();
}

/// The file names the folder's new name before the folder has it: Load finishes what is cut off between.
void HotSyncUsers::TakeWithFolder(std::vector<HotSyncUser> users, const Move& move) {
    if (!IsFolder(ResolvePath(FolderNamed(move.From)))) return Take(std::move(users));
    HotSyncUsersFile{comments_, users, move}.Write(folder_);
    pending_ = move;
    users.swap(users_);
    try {
        FinishMove();
    } catch (const RunTimeFailure&) {
        // When this fails too, the list stays as the file has it by now, and the folder follows later.
        HotSyncUsersFile{comments_, users, std::nullopt}.Write(folder_);
        users.swap(users_);
        pending_.reset();
        throw;
    }
    if (Changed) Changed();
}

std::string HotSyncUsers::NameForDeleted(std::string_view name) const {
    const std::string first = std::string(name) + ".deleted";
    std::string free = first;
    for (int number = 2; FindName(free) || StandsInTheWay({std::string(name), free}); ++number)
        free = first + '-' + std::to_string(number);
    return free;
}

// ---- users ----

const HotSyncUser* HotSyncUsers::FindId(std::uint32_t id) const {
    const auto found =
        std::find_if(users_.begin(), users_.end(), [&](const HotSyncUser& user) { return user.Id == id; });
    return found == users_.end() ? nullptr : &*found;
}

const HotSyncUser* HotSyncUsers::FindName(std::string_view name) const {
    const auto found = std::find_if(users_.begin(), users_.end(),
                                    [&](const HotSyncUser& user) { return SameText(user.Name, name); });
    return found == users_.end() ? nullptr : &*found;
}

std::size_t HotSyncUsers::PlaceOf(std::uint32_t id) const {
    const HotSyncUser* user = FindId(id);
    if (!user) throw RunTimeFailure(5, "no HotSync user has the id " + std::to_string(id));
    return static_cast<std::size_t>(user - users_.data());
}

HotSyncUsers::NameFault HotSyncUsers::WhyNotAName(std::string_view name, std::uint32_t id) const {
    const NameFault fault = FaultOfUserName(Trim(name));
    const HotSyncUser* other = fault == NameFault::None ? FindName(Trim(name)) : nullptr;
    return other && other->Id != id ? NameFault::Taken : fault;
}

void HotSyncUsers::CheckName(std::string_view name, std::uint32_t id) const {
    const NameFault fault = WhyNotAName(name, id);
    if (fault == NameFault::None) return;
    throw RunTimeFailure(5, CodePageToUtf8(std::string(WordsOf(fault)) + ": " + WithoutControls(name)));
}

std::uint32_t HotSyncUsers::FreeId() const {
    std::random_device random;
    std::uniform_int_distribution<std::uint32_t> any(1);
    std::uint32_t id = any(random);
    while (FindId(id)) id = any(random);
    return id;
}

const HotSyncUser& HotSyncUsers::New(std::string_view name) {
    CheckName(name, 0);
    if (users_.size() >= MostUsers) throw RunTimeFailure(5, "there are 5000 HotSync users already");
    FinishMove();
    const HotSyncUser user{FreeId(), std::string(Trim(name)), {}, false};
    MakePath(InstallFolder(user));
    auto users = users_;
    users.push_back(user);
    Take(std::move(users));
    return users_.back();
}

void HotSyncUsers::Rename(std::uint32_t id, std::string_view name) {
    const std::size_t place = PlaceOf(id);
    CheckName(name, id);
    FinishMove();
    const Move move{users_[place].Name, std::string(Trim(name))};
    if (move.From == move.To) return;
    if (InstallWaits(users_[place]))
        throw RunTimeFailure(5, "an installation waits for the user " + CodePageToUtf8(move.From));
    if (StandsInTheWay(move))
        throw RunTimeFailure(5, "a folder of this name stands there already: " + FolderNamed(move.To));
    auto users = users_;
    users[place].Name = move.To;
    TakeWithFolder(std::move(users), move);
}

void HotSyncUsers::Delete(std::uint32_t id) {
    const std::size_t place = PlaceOf(id);
    FinishMove();
    const Move move{users_[place].Name, NameForDeleted(users_[place].Name)};
    auto users = users_;
    users.erase(users.begin() + static_cast<std::ptrdiff_t>(place));
    TakeWithFolder(std::move(users), move);
}

void HotSyncUsers::TakeHandheld(std::uint32_t userId, std::uint32_t handheldId) {
    const std::size_t place = PlaceOf(userId);
    if (userId == handheldId) return;
    if (handheldId == 0) throw RunTimeFailure(5, "a handheld without a user has the id 0");
    if (const HotSyncUser* other = FindId(handheldId)) {
        throw RunTimeFailure(5, "the handheld's id " + std::to_string(handheldId) + " is that of the user " +
                                    CodePageToUtf8(other->Name));
    }
    auto users = users_;
    users[place].Id = handheldId;
    Take(std::move(users));
}

void HotSyncUsers::Synced(std::uint32_t id, DateTime when, bool complete) {
    const std::size_t place = PlaceOf(id);
    if (!IsValid(when)) throw RunTimeFailure(5, "a session without a date");
    auto users = users_;
    users[place].LastSync = when;
    users[place].Incomplete = !complete;
    Take(std::move(users));
}

std::string StandInMachine(std::uint32_t id) {
    constexpr std::string_view signs = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    constexpr std::uint32_t letters = 26;
    std::string machine(1, signs[id % letters]);
    id /= letters;
    for (int k = 0; k < 3; ++k, id /= static_cast<std::uint32_t>(signs.size()))
        machine += signs[id % signs.size()];
    return machine;
}
