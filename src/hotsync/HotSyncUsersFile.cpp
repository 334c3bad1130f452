#include "hotsync/HotSyncUsersFile.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/PlainText.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <set>
#include <utility>

namespace {

constexpr std::string_view FileName = HotSyncUsersFile::Name;
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
    if (const auto fault = FaultOfUserName(user.Name); fault != UserNameFault::None)
        Refuse(WordsOf(fault), user.Name);
    return user;
}

std::string LineOf(const HotSyncUser& user) {
    return std::to_string(user.Id) + '\t' + CodePageToUtf8(user.Name) + '\t' +
           (user.LastSync.IsZero() ? std::string(Never) : DateAndTime(user.LastSync)) + '\t' +
           std::string(user.Incomplete ? Incomplete : Complete);
}

HotSyncUsersFile::Move ReadMove(std::string_view line) {
    const auto columns = ColumnsOf(line);
    if (columns.size() != 3) Refuse("not the three columns of a renaming, parted by tabs", line);
    HotSyncUsersFile::Move move{ReadName(columns[1]), ReadName(columns[2])};
    for (const std::string& name : {move.From, move.To}) {
        if (!IsFolderName(name)) Refuse(WordsOf(UserNameFault::NoFileName), name);
    }
    return move;
}

/// Takes the file's lines, and refuses a user who stands there already.
class LineTaker {
public:
    void Take(std::string_view line) {
        if (Trim(line).empty() || line == Heading) return;
        if (line.front() == '#')
            Content.Comments.emplace_back(line);
        else if (line.starts_with(std::string(MoveWord) + '\t'))
            Content.Pending = ReadMove(line);
        else
            TakeUser(ReadUser(line));
    }

    HotSyncUsersFile Content;

private:
    void TakeUser(const HotSyncUser& user) {
        if (!ids_.insert(user.Id).second) Refuse("an id that another user has", std::to_string(user.Id));
        if (!names_.insert(FoldCase(user.Name)).second) Refuse(WordsOf(UserNameFault::Taken), user.Name);
        if (Content.Users.size() == HotSyncUsers::MostUsers) Refuse("more than 5000 users", user.Name);
        Content.Users.push_back(user);
    }

    std::set<std::uint32_t> ids_;
    std::set<std::string> names_; ///< by FoldCase
};

} // namespace

UserNameFault FaultOfUserName(std::string_view name) {
    if (name.empty()) return UserNameFault::Empty;
    if (name.size() > HotSyncUsers::LongestName) return UserNameFault::TooLong;
    return IsFolderName(name) ? UserNameFault::None : UserNameFault::NoFileName;
}

std::string_view WordsOf(UserNameFault fault) {
    switch (fault) {
    case UserNameFault::Empty:
        return "a user has no name";
    case UserNameFault::TooLong:
        return "a name of more than 30 characters";
    case UserNameFault::NoFileName:
        return "a name that no folder can have";
    case UserNameFault::Taken:
        return "a name that another user has";
    case UserNameFault::None:
        break;
    }
    return {};
}

HotSyncUsersFile HotSyncUsersFile::Read(const std::string& folder) {
    TextReader file(folder + std::string(FileName), TextReader::OwnFile);
    LineTaker taker;
    for (std::string line; file.ReadLine(line);) {
        std::string_view text = line;
        if (file.LineNumber() == 1 && text.starts_with(Utf8Mark)) text.remove_prefix(Utf8Mark.size());
        try {
            taker.Take(text);
        } catch (const BadLine& bad) {
            throw FailureInLine(13, FileName, file.LineNumber(), bad.Why);
        }
    }
    return std::move(taker.Content);
}

void HotSyncUsersFile::Write(const std::string& folder) const {
    SafeFile file(folder + std::string(FileName));
    file.WriteLine(Heading);
    for (const std::string& comment : Comments) file.WriteLine(comment);
    for (const HotSyncUser& user : Users) file.WriteLine(LineOf(user));
    if (Pending) {
        file.WriteLine(std::string(MoveWord) + '\t' + CodePageToUtf8(Pending->From) + '\t' +
                       CodePageToUtf8(Pending->To));
    }
    file.Commit();
}
