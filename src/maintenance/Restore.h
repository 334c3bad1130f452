#pragma once

#include "core/Progress.h"
#include "maintenance/Backup.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What has become of the tables of a backup.
enum class BackupFiles {
    Complete,   ///< all there, as far as they have been compared
    NotChecked, ///< there; nothing says what they were, as in a backup of an older program
    Changed,    ///< some are others than they were, or missing
    Deleted     ///< none is there, as behind a purge
};

/// A backup as its `Backup.txt` tells it, whose text is never trusted.
struct BackupPoint {
    static constexpr std::size_t Lines = 8;

    std::string Folder;                    ///< name of its directory
    std::array<std::string, Lines> Values; ///< the text's first lines, as far as they go
    std::vector<SavedTable> Tables;        ///< what its further lines tell
    bool TextIsBroken = false;             ///< a further line tells nothing, or the text cannot be read

    BackupFiles Files = BackupFiles::NotChecked;
    std::vector<std::string> Changed, Missing; ///< names of files, `Backup.txt` among them
    bool SumsCompared = false;
};

/// All directories of backups that hold a `Backup.txt`, the newest event first; those whose text tells no
/// moment come last. Sizes have been compared, checksums have not.
std::vector<BackupPoint> ReadBackups(Progress& progress);

/// Compares every byte of a backup's tables with its checksums. Never fails: a file that cannot be read has
/// changed.
void CompareSums(BackupPoint& point);

/// The directory of the backup of an event, with a trailing separator, by the event's date and time as the
/// list shows it. Empty when there is none that holds a table.
std::string FindBackup(std::string_view dateAndTime);

/// The name of a directory, whose path ends in a separator or not.
std::string NameOfFolder(std::string_view path);

/// How a restore ended.
struct RestoreResult {
    enum class End {
        Restored,
        NotFound,     ///< the directory holds no table
        ThisMoment,   ///< the copy of the present tables would replace the very backup
        CopiesStay,   ///< what the PC held before an upload is still to be put back, and cannot be
        NoSafetyCopy, ///< there is no copy of the present tables
        Unusable, ///< a table of the backup cannot be read, one of the office is locked, or no mark can be
                  ///< set
        Stopped   ///< a table could not be written
    };
    End How = End::Restored;
    std::vector<std::string> Done; ///< names of the tables that were restored
    std::vector<std::string> Left; ///< when it stopped: those that were not, and are as they were
    std::string Why;               ///< UTF-8: of CopiesStay, Unusable and Stopped
};

/// Puts the tables of a backup's directory in the place of those of the same names: `copyTable` copies one
/// over the other as CopySingleTable does, and may show it. All of them are looked at first, what an upload
/// has left to be put back is put back, and the present tables are backed up under "RESTORE": a restore that
/// ends before `copyTable` is called has replaced no table. Whatever happens, each table is the old one or
/// the restored one, and the restore can be run again; when only some are restored ones, a mark says so
/// (UnfinishedJobs.h).
RestoreResult
RestoreTables(const std::string& folder,
              const std::function<void(const std::string& oldTable, const std::string& newTable)>& copyTable);
