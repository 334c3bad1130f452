#include "handheld/CommandTable.h"

#include "core/CodePage.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "handheld/OrderNumbers.h"
#include "handheld/Refusal.h"
#include "palm/Converter.h"

#include <array>
#include <limits>
#include <set>

namespace {

/// A number out of a name, the same on every system.
std::uint32_t NumberOf(std::string_view text) {
    std::uint32_t hash = 2166136261U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash;
}

/// Four characters of a type or creator, a point for each that cannot be shown.
std::string Characters(std::uint32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>(code >> shift & 0xFF);
        text += c >= ' ' && c <= '~' ? c : '.';
    }
    return text;
}

std::string Moment(const DlpDate& date) {
    const DateTime moment = ToDateTime(date);
    return moment.IsZero() ? "never" : DateAndTime(moment);
}

Outcome New(const CommandRun& run) {
    const bool hasUser = run.Line.Has("--user");
    if (hasUser == run.Line.Has("--no-user")) throw Misuse("one of --user and --no-user");
    if (!hasUser && run.Line.Has("--id")) throw Misuse("--id goes with --user");
    HandheldSettings settings;
    settings.User.Name = Utf8ToCodePage(run.Line.Value("--user"));
    if (hasUser && Trim(settings.User.Name).empty()) throw Misuse("--user is empty");
    if (settings.User.Name.size() > LongestUserName) throw Misuse("--user has more than 40 characters");
    if (run.Line.Has("--id")) {
        settings.User.UserId =
            static_cast<std::uint32_t>(run.Line.Number("--id", 0, std::numeric_limits<std::uint32_t>::max()));
    } else if (hasUser) {
        settings.User.UserId = NumberOf(settings.User.Name) | 1U;
    }
    if (run.Line.Has("--machine")) {
        settings.Machine = Utf8ToCodePage(run.Line.Value("--machine"));
        if (settings.Machine.empty() || settings.Machine.size() > HandheldSettings::LongestMachine ||
            Trim(settings.Machine) != settings.Machine) {
            throw Misuse("--machine has not 1 to 4 characters");
        }
    }
    if (run.Line.Has("--memory")) {
        settings.Memory = run.Line.Number("--memory", 1, HandheldSettings::MostMemory);
    }
    // So that records of two handhelds do not look alike.
    settings.IdSeed = NumberOf(settings.User.Name + '\n' + settings.Machine) & LastRecordId & ~0xFFFU;
    Handheld::Make(run.Folder, settings);
    run.Out() << "A handheld stands in " << run.Folder << ", ";
    if (hasUser) {
        run.Out() << "user " << CodePageToUtf8(settings.User.Name) << ", id " << settings.User.UserId << '\n';
    } else {
        run.Out() << "without a user\n";
    }
    return Outcome::Done;
}

Outcome Info(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    const HandheldSettings& settings = handheld.Settings;
    const UserInfo& user = settings.User;
    const OrderNumbers numbers(handheld);
    const std::uint64_t used = handheld.Store.Used();
    const std::string last = numbers.LastCode();
    std::ostream& out = run.Out();
    out << "This stands in for a handheld; no real one is behind it.\n"
        << "User:            " << (user.Name.empty() ? "none" : CodePageToUtf8(user.Name)) << '\n'
        << "User id:         " << user.UserId << '\n'
        << "Machine id:      " << CodePageToUtf8(numbers.Machine()) << '\n'
        << "Last order:      " << (last.empty() ? "none" : CodePageToUtf8(last)) << '\n'
        << "Last HotSync:    " << Moment(user.LastSync) << (settings.LastEnd.empty() ? "" : ", ")
        << CodePageToUtf8(settings.LastEnd) << '\n'
        << "Last good one:   " << Moment(user.LastGoodSync) << '\n'
        << "Last desktop id: " << user.LastSyncPC << '\n'
        << "Memory:          " << settings.Memory << " bytes, " << used << " used\n"
        << "Databases:       " << handheld.Store.Entries().size() << '\n'
        << "Clock:           " << DateAndTime(handheld.Clock()) << '\n';
    return Outcome::Done;
}

Outcome Programs(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    std::size_t count = 0;
    for (const DatabaseStore::Entry& entry : handheld.Store.Entries()) {
        if (!entry.Header.IsResource()) continue;
        ++count;
        run.Out() << CodePageToUtf8(entry.Header.Name) << ": version " << entry.Header.Version << ", type "
                  << Characters(entry.Header.Type) << ", creator " << Characters(entry.Header.Creator) << ", "
                  << handheld.Store.Load(entry.Header.Name).Resources.size() << " resources, " << entry.Bytes
                  << " bytes\n";
    }
    run.Out() << count << " program files\n";
    return Outcome::Done;
}

/// Gives ids to the records of a file that have none, or one that another has.
void GiveIds(Database& database, std::uint32_t seed) {
    if (database.IdSeed == 0) database.IdSeed = seed;
    std::set<std::uint32_t> used;
    for (const DatabaseRecord& record : database.Records) used.insert(record.Id);
    std::set<std::uint32_t> seen{0};
    for (DatabaseRecord& record : database.Records) {
        if (seen.insert(record.Id).second) continue;
        record.Id = NewRecordId(database, [&](std::uint32_t id) { return used.contains(id); });
        used.insert(record.Id);
        seen.insert(record.Id);
    }
}

Outcome Install(const CommandRun& run) {
    Handheld handheld(run.Folder);
    std::vector<Database> databases;
    for (const std::string& file : run.Line.Operands()) {
        try {
            Database& database = databases.emplace_back(ReadDatabase(ReadWholeFile(file)));
            if (!database.IsResource()) GiveIds(database, handheld.Settings.IdSeed);
        } catch (const PalmFailure& failure) {
            throw Refusal(file + ": " + failure.what());
        }
    }
    for (const Database& database : databases) {
        handheld.Store.Save(database);
        run.Out() << CodePageToUtf8(database.Name) << ": "
                  << (database.IsResource() ? database.Resources.size() : database.Records.size())
                  << (database.IsResource() ? " resources\n" : " records\n");
    }
    return Outcome::Done;
}

Outcome Reset(const CommandRun& run) {
    Handheld handheld(run.Folder);
    const std::size_t databases = handheld.Store.Entries().size();
    handheld.Reset();
    run.Out() << "Reset: " << databases << " databases and the user are gone\n";
    return Outcome::Done;
}

constexpr std::array<OptionDef, 5> NewOptions{
    {{"--user"}, {"--no-user", false}, {"--id"}, {"--machine"}, {"--memory"}}};

constexpr std::array<CommandDef, 5> Commands{{
    {NewCommand, "--user NAME [--id N] [--machine ID] [--memory BYTES]",
     "Makes a handheld in FOLDER. --no-user in place of --user makes one that was never named: user id 0.\n"
     "Without --id the user's id is made from the name. The machine id, up to 4 characters, counts as long\n"
     "as the Links table has no row of the user; it is H1 when it is not given. The memory is 16 MB.\n",
     NewOptions, 0, 0, New},
    {"info", "", "Tells who the handheld is and how full it is.\n", {}, 0, 0, Info},
    {"programs", "", "Lists the program files that it has.\n", {}, 0, 0, Programs},
    {"install",
     "FILE...",
     "Takes .pdb and .prc files, without a HotSync. One of a name that is there is replaced.\n",
     {},
     1,
     std::numeric_limits<std::size_t>::max(),
     Install},
    {"reset", "", "A hard reset: all databases, the user and the log are gone.\n", {}, 0, 0, Reset},
}};

} // namespace

std::span<const CommandDef> FolderCommands() {
    return Commands;
}
