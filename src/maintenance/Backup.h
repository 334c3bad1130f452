#pragma once

#include "core/Checksum.h"
#include "core/Dates.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Copies the order and audit tables, and the customers and items when Global.BackupCustomers and
/// BackupItems say so, into a new directory under `Backup`, with a `Backup.txt` that says what
/// happened. Keeps the moment and the event in Global for the totals event of the same operation,
/// and when it succeeds leaves CurHeaders, CurLines and CurDollars at 0.
/// Each copy is read again before `Backup.txt` is written: it must have the bytes of the table and be one
/// that can be opened, and the order tables must hold the counts and the total that stand in the text.
/// Events: "EXPORT", "QUALCHECK", "RESTORE", "UPLOAD-ADD", "CLEAR". False when a table is locked or
/// missing, before anything was made, or for any failure after that, a copy that differs among them; a
/// directory that was made then has no `Backup.txt`. Global.BackupFault then says which file it was.
/// `further` are the file names of other tables that the operation replaces, copied too. `moment` is the
/// event's, the present when it is not given.
bool MakeBackup(std::string_view event, const std::vector<std::string>& further = {},
                std::optional<DateTime> moment = {});

/// Whether a backup of this very second stands, whose place another one would take.
bool HasBackupOfThisSecond();

/// A table of a backup as a line behind the eighth of `Backup.txt` tells it: name, bytes, records and
/// checksum, parted by tabs.
struct SavedTable {
    std::string Name; ///< a plain file name
    FileSum Content;
    std::int32_t Records = 0;

    /// As it stands there, without a line end.
    std::string Line() const;
    /// Nothing for a line that was not written so.
    static std::optional<SavedTable> FromLine(std::string_view line);
};

/// The directory's name for a moment: the year's last digit, then month, day, hour, minute and
/// second with two digits each.
std::string BackupName(const DateTime& moment);

/// Deletes the tables of all backups up to `limit`, then each directory that is empty after it; one
/// that still holds its `Backup.txt` stays. `cannotDelete` is told the name of each file that could
/// not go. Returns how many tables were deleted. A directory whose name is no number is passed over.
int PurgeBackups(const DateTime& limit, const std::function<void(std::string_view)>& cannotDelete);

/// PurgeBackups up to the present less Global.PurgeDays days.
void DeleteBackupTables(const std::function<void(std::string_view)>& cannotDelete);
