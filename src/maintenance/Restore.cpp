#include "maintenance/Restore.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/UnfinishedJobs.h"
#include "maintenance/VersionUpdate.h"
#include "store/TableLock.h"
#include "store/TableScan.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <optional>

namespace {

constexpr std::string_view About = "Backup.txt";

/// More tables than a backup can have.
constexpr std::size_t MostLines = 100;
/// Characters of a value that are shown.
constexpr std::size_t LongestValue = 200;

std::string FolderOfBackup(std::string_view name) {
    return AddBackslash(Global.BackupPath + std::string(name));
}

DateTime MomentOf(const BackupPoint& point) {
    return CDate(point.Values[1]).value_or(DateTime{});
}

void ReadAbout(BackupPoint& point) {
    try {
        TextReader text(FolderOfBackup(point.Folder) + std::string(About), TextReader::OwnFile);
        std::string line;
        for (std::size_t k = 0; k < MostLines && text.ReadLine(line); ++k) {
            if (k < BackupPoint::Lines) {
                point.Values[k] = line.substr(0, LongestValue);
            } else if (auto table = SavedTable::FromLine(line)) {
                point.Tables.push_back(*std::move(table));
            } else {
                point.TextIsBroken = true;
            }
        }
    } catch (const RunTimeFailure&) {
        point.TextIsBroken = true;
    }
}

/// The names of the tables that a folder holds.
std::vector<std::string> TablesIn(const std::string& folder) {
    return FilesWithExtension(folder, ".dbf");
}

/// Compares each table with what the text says of it, by a question: whether the file at a path is it.
void Compare(BackupPoint& point,
             const std::function<bool(const std::string& path, const SavedTable& table)>& isSame) {
    const std::string folder = FolderOfBackup(point.Folder);
    const std::vector<std::string> there = TablesIn(folder);
    point.Changed.clear();
    point.Missing.clear();
    for (const SavedTable& table : point.Tables) {
        const bool found = std::any_of(there.begin(), there.end(),
                                       [&](const std::string& name) { return SameText(name, table.Name); });
        if (!found)
            point.Missing.push_back(table.Name);
        else if (!isSame(folder + table.Name, table))
            point.Changed.push_back(table.Name);
    }
    // What the text does not name is of another backup, or nobody knows of what: it would be restored too.
    for (const std::string& name : there) {
        const bool told = std::any_of(point.Tables.begin(), point.Tables.end(),
                                      [&](const SavedTable& table) { return SameText(table.Name, name); });
        if (!told && !point.Tables.empty()) point.Changed.push_back(name);
    }
    if (point.TextIsBroken) point.Changed.emplace_back(About);

    if (there.empty())
        point.Files = BackupFiles::Deleted;
    else if (!point.Changed.empty() || !point.Missing.empty())
        point.Files = BackupFiles::Changed;
    else
        point.Files = point.Tables.empty() ? BackupFiles::NotChecked : BackupFiles::Complete;
}

bool HasSize(const std::string& path, const SavedTable& table) {
    try {
        return Global.TheDisk->Open(ResolvePath(path), Access::Read)->Size() == table.Content.Size;
    } catch (const RunTimeFailure&) {
        return false;
    }
}

bool HasContent(const std::string& path, const SavedTable& table) {
    try {
        return SumOfFile(path) == table.Content && TableScan(path).RecordCount() == table.Records;
    } catch (const RunTimeFailure&) {
        return false;
    }
}

/// What forbids that a table is restored; empty for nothing.
std::string Obstacle(const std::string& oldTable, const std::string& newTable) {
    try {
        const TableLayout saved = StructureOf(oldTable);
        if (!FileExists(newTable)) return {};
        if (TableIsLocked(newTable)) throw RunTimeFailure(70, newTable);
        RefuseForeign(saved, oldTable, StructureOf(newTable), newTable);
        return {};
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

} // namespace

std::vector<BackupPoint> ReadBackups(Progress& progress) {
    const std::vector<std::string> folders = Global.TheDisk->FoldersIn(ResolvePath(Global.BackupPath));
    progress.Begin(msg::ReadingBackups, static_cast<std::int64_t>(folders.size()));
    std::vector<BackupPoint> points;
    std::int64_t read = 0;
    for (const std::string& name : folders) {
        progress.Show(++read);
        if (!Global.TheDisk->IsFile(ResolvePath(FolderOfBackup(name) + std::string(About)))) continue;
        BackupPoint point;
        point.Folder = name;
        ReadAbout(point);
        Compare(point, HasSize);
        points.push_back(std::move(point));
    }
    std::stable_sort(points.begin(), points.end(),
                     [](const BackupPoint& a, const BackupPoint& b) { return MomentOf(b) < MomentOf(a); });
    return points;
}

void CompareSums(BackupPoint& point) {
    Compare(point, HasContent);
    point.SumsCompared = true;
}

std::string NameOfFolder(std::string_view path) {
    return std::string(FileNameOf(path.substr(0, path.find_last_not_of("/\\") + 1)));
}

std::string FindBackup(std::string_view dateAndTime) {
    const auto moment = CDate(dateAndTime);
    if (!moment) return {};
    std::string folder = FolderOfBackup(BackupName(*moment));
    return TablesIn(folder).empty() ? std::string() : folder;
}

RestoreResult RestoreTables(
    const std::string& folder,
    const std::function<void(const std::string& oldTable, const std::string& newTable)>& copyTable) {
    using End = RestoreResult::End;
    const DateTime moment = Now();
    RestoreResult result;
    const auto endedBy = [&result](End how, const std::string& why = {}) {
        result.How = how;
        result.Why = why;
        return result;
    };
    const std::vector<std::string> tables = TablesIn(folder);
    if (folder.empty() || tables.empty()) return endedBy(End::NotFound);
    if (SameText(AddBackslash(Global.BackupPath + BackupName(moment)), folder))
        return endedBy(End::ThisMoment);
    for (const std::string& table : tables) {
        const std::string obstacle = Obstacle(folder + table, Global.DBFPath + table);
        if (!obstacle.empty()) return endedBy(End::Unusable, obstacle);
    }
    try {
        RecoverBeforeReplacing(tables);
    } catch (const RunTimeFailure& failure) {
        return endedBy(End::CopiesStay, failure.what());
    }
    // Also a table that backups hold only at times is not to be replaced without a copy.
    std::vector<std::string> replaced;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(replaced),
                 [](const std::string& table) { return FileExists(Global.DBFPath + table); });
    if (!MakeBackup("RESTORE", replaced, moment)) return endedBy(End::NoSafetyCopy, Global.BackupFault);

    try {
        TableJob job(JobKind::Restore, NameOfFolder(folder), tables);
        result.Left = tables;
        while (!result.Left.empty()) {
            const std::string table = result.Left.front();
            copyTable(folder + table, Global.DBFPath + table);
            result.Done.push_back(table);
            result.Left.erase(result.Left.begin());
        }
        job.Finish();
    } catch (const std::exception& failure) {
        // Without a mark nothing has been begun.
        return endedBy(result.Left.empty() ? End::Unusable : End::Stopped, failure.what());
    }
    return result;
}
