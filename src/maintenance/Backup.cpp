#include "maintenance/Backup.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/Totals.h"
#include "store/TableLock.h"
#include "store/TableScan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<std::string> TablesOfABackup(const std::vector<std::string>& further) {
    std::vector<std::string> tables = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf",
                                       "ZUKAudHH.dbf"};
    if (Global.BackupCustomers) tables.emplace_back("ZUKCust.dbf");
    if (Global.BackupItems) tables.emplace_back("ZUKItem.dbf");
    for (const std::string& table : further) {
        const auto isIt = [&table](const std::string& each) { return SameText(each, table); };
        if (std::none_of(tables.begin(), tables.end(), isIt)) tables.push_back(table);
    }
    return tables;
}

std::string TwoDigits(int value) {
    return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

/// Copies a table and reads the copy again. RunTimeFailure 57 when it is another than the table by now.
SavedTable CopyTable(const std::string& from, const std::string& to) {
    CopyOver(from, to);
    SavedTable saved;
    saved.Name = FileNameOf(to);
    saved.Content = SumOfFile(to);
    if (saved.Content != SumOfFile(from)) throw RunTimeFailure(57, to);
    saved.Records = TableScan(to).RecordCount();
    return saved;
}

void CopyTables(std::string_view event, const std::vector<std::string>& tables) {
    const std::string folder = AddBackslash(Global.BackupPath + BackupName(Global.BackupTime));
    MakePath(folder);
    RemoveQuietly(folder + "Backup.txt"); // of a backup in the same second, whose tables go
    std::vector<SavedTable> saved;
    saved.reserve(tables.size());
    for (const std::string& table : tables)
        saved.push_back(CopyTable(Global.DBFPath + table, folder + table));

    NoProgress silent;
    CountOrders(silent);
    if (ReadOrderTotals(folder, silent) != OrderTotals{Global.CurHeaders, Global.CurLines, Global.CurDollars})
        throw RunTimeFailure(57, folder);
    SafeFile about(folder + "Backup.txt");
    about.WriteLine(event);
    about.WriteLine(DateAndTime(Global.BackupTime));
    about.WriteLine(std::to_string(Global.CurHeaders));
    about.WriteLine(std::to_string(Global.CurLines));
    about.WriteLine(NumberToText(Global.CurDollars));
    about.WriteLine(OneLine(Global.CurrentHotSyncID));
    about.WriteLine(event == "EXPORT" ? std::string() : MachineOf(Global.CurrentHotSyncID));
    about.WriteLine(OneLine(Global.HHLastOrder));
    for (const SavedTable& table : saved) about.WriteLine(table.Line());
    about.Commit();
    Global.CurHeaders = Global.CurLines = 0;
    Global.CurDollars = 0;
}

/// A text of digits and nothing else as a number.
template <typename Number>
std::optional<Number> WholeNumber(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < 0) return std::nullopt;
    return number;
}

/// A directory's name as a number; nothing when it is none.
std::optional<std::int64_t> NumberOf(std::string_view name) {
    return WholeNumber<std::int64_t>(name);
}

} // namespace

std::string SavedTable::Line() const {
    return Name + '\t' + std::to_string(Content.Size) + '\t' + std::to_string(Records) + '\t' +
           SumText(Content.Sum);
}

std::optional<SavedTable> SavedTable::FromLine(std::string_view line) {
    std::array<std::string_view, 4> parts;
    for (std::size_t k = 0; k < parts.size(); ++k) {
        const std::size_t end = k + 1 < parts.size() ? line.find('\t') : line.size();
        if (end == std::string_view::npos) return std::nullopt;
        parts[k] = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    const auto size = WholeNumber<std::uint64_t>(parts[1]);
    const auto records = WholeNumber<std::int32_t>(parts[2]);
    const auto sum = SumFromText(parts[3]);
    if (!IsPlainFileName(parts[0]) || !size || !records || !sum) return std::nullopt;
    return SavedTable{std::string(parts[0]), {*size, *sum}, *records};
}

std::string BackupName(const DateTime& moment) {
    std::string name{static_cast<char>('0' + moment.Year % 10)};
    for (const int part : {moment.Month, moment.Day, moment.Hour, moment.Minute, moment.Second})
        name += TwoDigits(part);
    return name;
}

bool MakeBackup(std::string_view event, const std::vector<std::string>& further,
                std::optional<DateTime> moment) {
    TraceEvent("basCommon:MakeBackup");
    const std::vector<std::string> tables = TablesOfABackup(further);
    Global.BackupFault.clear();
    for (const std::string& table : tables) {
        if (!TableIsLocked(Global.DBFPath + table)) continue;
        const std::string path = Global.DBFPath + table;
        Global.BackupFault = FileExists(path) ? path : RunTimeFailure(53, path).what();
        TraceEvent("basCommon:MakeBackup " + Global.BackupFault);
        return false;
    }
    Global.BackupTime = moment ? *moment : Now();
    Global.BackupEvent = event;
    try {
        CopyTables(event, tables);
        return true;
    } catch (const std::exception& failure) {
        Global.BackupTime = {};
        Global.BackupEvent.clear();
        Global.BackupFault = failure.what();
        TraceEvent("basCommon:MakeBackup " + Global.BackupFault);
        return false;
    }
}

bool HasBackupOfThisSecond() {
    return FileExists(AddBackslash(Global.BackupPath + BackupName(Now())) + "Backup.txt");
}

int PurgeBackups(const DateTime& limit, const std::function<void(std::string_view)>& cannotDelete) {
    const std::int64_t last = NumberOf(BackupName(limit)).value_or(0);
    int deleted = 0;
    for (const std::string& name : Global.TheDisk->FoldersIn(ResolvePath(Global.BackupPath))) {
        const auto number = NumberOf(name);
        if (!number || *number > last) continue;
        const std::string folder = AddBackslash(Global.BackupPath + name);
        for (const std::string& table : FilesWithExtension(folder, ".dbf")) {
            try {
                deleted += Global.TheDisk->Remove(ResolvePath(folder + table)) ? 1 : 0;
            } catch (const RunTimeFailure&) {
                cannotDelete(folder + table);
            }
        }
        Global.TheDisk->RemoveFolder(ResolvePath(folder.substr(0, folder.size() - 1)));
    }
    return deleted;
}

void DeleteBackupTables(const std::function<void(std::string_view)>& cannotDelete) {
    TraceEvent("frmMain1:DeleteBackupTables");
    PurgeBackups(AddDays(Now(), -Global.PurgeDays), cannotDelete);
}
