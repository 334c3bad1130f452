#include "hotsync/HotSyncUsers.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "hotsync/PlainText.h"

#include <algorithm>
#include <charconv>
#include <random>
#include <utility>

namespace {

using NameFault = HotSyncUsers::NameFault;

constexpr std::string_view FileName = "Users.txt";
constexpr std::string_view Heading = "# id\tname\tlast sync\tcomplete or incomplete";
constexpr std::string_view Never = "never";
constexpr std::string_view Complete = "complete";
constexpr std::string_view Incomplete = "incomplete";
constexpr std::string_view MoveWord = "move";

/// What stands in the manager's folder beside the folders of the users.
constexpr std::string_view OwnFiles[] = {FileName, "HotSync.ini", "HotSync.log", "HotSync.old.log"};

bool IsFolderName(std::string_view name) {
    return name == WithoutControls(name) && name == Trim(name) && IsNameForNewFile(NameToPath(name)) &&
           !SameText(ExtensionOf(name), SafeFile::WorkExtension) &&
           std::none_of(std::begin(OwnFiles), std::end(OwnFiles),
                        [&](std::string_view own) { return SameText(own, name); });
}

/// What keeps a name from being that of any user.
NameFault FaultOf(std::string_view name) {
    if (name.empty()) return NameFault::Empty;
    if (name.size() > HotSyncUsers::LongestName) return NameFault::TooLong;
    return IsFolderName(name) ? NameFault::None : NameFault::NoFileName;
}

std::string_view Words(NameFault fault) {
    switch (fault) {
    case NameFault::Empty:
        return "a user has no name";
    case NameFault::TooLong:
        return "a name of more than 30 characters";
    case NameFault::NoFileName:
        return "a name that no folder can have";
    case NameFault::Taken:
        return "a name that another user has";
    case NameFault::None:
        break;
    }
    return {};
}

/// A line, or a piece of one, that is not what it should be; the words are code page 1252.
struct BadLine {
    std::string Why;
};

[[noreturn]] void Refuse(std::string_view why, std::string_view what) {
    throw BadLine{std::string(why) + ": " + WithoutControls(what)};
}

/// The pieces between tabs, an empty one at the end included.
std::vector<std::string_view> ColumnsOf(std::string_view line) {
    auto columns = SplitText(line, "\t");
    if (line.ends_with('\t')) columns.push_back(line.substr(line.size()));
    return columns;
}

/// Names are kept in UTF-8; one that the code page cannot hold would come back as another.
std::string ReadName(std::string_view utf8) {
    std::string name = Utf8ToCodePage(utf8);
    if (CodePageToUtf8(name) != utf8) Refuse("a name with characters that no handheld has", name);
    return name;
}

std::uint32_t ReadId(std::string_view text) {
    std::uint32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc{} || end != text.data() + text.size() || id == 0)
        Refuse("an id is a whole number from 1 to 4294967295", text);
    return id;
}

DateTime ReadLastSync(std::string_view text) {
    if (text == Never) return {};
    const auto date = CDate(text);
    if (!date || DateAndTime(*date) != text) Refuse("a last sync is 'yyyy-mm-dd hh:mm:ss' or 'never'", text);
    return *date;
}

bool ReadIncomplete(std::string_view text) {
    if (text != Complete && text != Incomplete) Refuse("neither 'complete' nor 'incomplete'", text);
    return text == Incomplete;
}

HotSyncUser ReadUser(std::string_view line) {
    const auto columns = ColumnsOf(line);
    if (columns.size() != 4) Refuse("not the four columns of a user, parted by tabs", line);
    HotSyncUser user{ReadId(columns[0]), ReadName(columns[1]), ReadLastSync(columns[2]),
                     ReadIncomplete(columns[3])};
    if (const auto fault = FaultOf(user.Name); fault != NameFault::None) Refuse(Words(fault), user.Name);
    return user;
}

std::string LineOf(const HotSyncUser& user) {
    return std::to_string(user.Id) + '\t' + CodePageToUtf8(user.Name) + '\t' +
           (user.LastSync.IsZero() ? std::string(Never) : DateAndTime(user.LastSync)) + '\t' +
           std::string(user.Incomplete ? Incomplete : Complete);
}

bool IsFolder(const std::string& path) {
    return Global.TheDisk->IsFolder(path);
}

} // namespace

HotSyncUsers::HotSyncUsers(std::string_view folder) : folder_(AddBackslash(folder)) {}

// ---- the file ----

HotSyncUsers::Content HotSyncUsers::Read() const {
    TextReader file(folder_ + std::string(FileName), TextReader::OwnFile);
    Content content;
    for (std::string line; file.ReadLine(line);) {
        std::string_view text = line;
        if (file.LineNumber() == 1 && text.starts_with(Utf8Mark)) text.remove_prefix(Utf8Mark.size());
        try {
            TakeLine(text, content);
        } catch (const BadLine& bad) {
            throw FailureInLine(13, FileName, file.LineNumber(), bad.Why);
        }
    }
    return content;
}

void HotSyncUsers::TakeLine(std::string_view line, Content& content) {
    if (Trim(line).empty() || line == Heading) return;
    if (line.front() == '#')
        content.Comments.emplace_back(line);
    else if (line.starts_with(std::string(MoveWord) + '\t'))
        content.Pending = ReadMove(line);
    else
        TakeUser(ReadUser(line), content);
}

void HotSyncUsers::TakeUser(const HotSyncUser& user, Content& content) {
    if (!content.Ids.insert(user.Id).second) Refuse("an id that another user has", std::to_string(user.Id));
    if (!content.Names.insert(FoldCase(user.Name)).second) Refuse(Words(NameFault::Taken), user.Name);
    if (content.Users.size() == MostUsers) Refuse("more than 5000 users", user.Name);
    content.Users.push_back(user);
}

HotSyncUsers::Move HotSyncUsers::ReadMove(std::string_view line) {
    const auto columns = ColumnsOf(line);
    if (columns.size() != 3) Refuse("not the three columns of a renaming, parted by tabs", line);
    Move move{ReadName(columns[1]), ReadName(columns[2])};
    for (const std::string& name : {move.From, move.To}) {
        if (!IsFolderName(name)) Refuse(Words(NameFault::NoFileName), name);
    }
    return move;
}

void HotSyncUsers::Write(const std::vector<HotSyncUser>& users, const std::optional<Move>& pending) const {
    SafeFile file(folder_ + std::string(FileName));
    file.WriteLine(Heading);
    for (const std::string& comment : comments_) file.WriteLine(comment);
    for (const HotSyncUser& user : users) file.WriteLine(LineOf(user));
    if (pending) {
        file.WriteLine(std::string(MoveWord) + '\t' + CodePageToUtf8(pending->From) + '\t' +
                       CodePageToUtf8(pending->To));
    }
    file.Commit();
}

void HotSyncUsers::Load() {
    RemoveQuietly(folder_ + std::string(FileName) + std::string(SafeFile::WorkExtension));
    Content content;
    try {
        content = Read();
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
    Write(users, pending_);
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
    Write(users, move);
    pending_ = move;
    users.swap(users_);
    try {
        FinishMove();
    } catch (const RunTimeFailure&) {
        // When this fails too, the list stays as the file has it by now, and the folder follows later.
        Write(users, std::nullopt);
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

NameFault HotSyncUsers::WhyNotAName(std::string_view name, std::uint32_t id) const {
    const NameFault fault = FaultOf(Trim(name));
    const HotSyncUser* other = fault == NameFault::None ? FindName(Trim(name)) : nullptr;
    return other && other->Id != id ? NameFault::Taken : fault;
}

void HotSyncUsers::CheckName(std::string_view name, std::uint32_t id) const {
    const NameFault fault = WhyNotAName(name, id);
    if (fault == NameFault::None) return;
    throw RunTimeFailure(5, CodePageToUtf8(std::string(Words(fault)) + ": " + WithoutControls(name)));
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
