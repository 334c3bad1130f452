#pragma once

#include "core/Text.h"
#include "sync/StatusStore.h"

#include <string>
#include <string_view>
#include <vector>

/// The list of what was installed on each handheld: the rows of the installation family, in memory in
/// Global.HHSyncID and its companions (sync/Status.h). RunTimeFailure when the Links table cannot be read, or
/// 75 the store not be written: it then holds what it held.

/// A handheld of the list. Texts are code page 1252 and trimmed; the latter two are empty for a handheld that
/// was never installed.
struct InstallRow {
    std::string HHSyncID;
    std::string HHStatusDT;
    std::string HHStatusType;

    bool operator==(const InstallRow&) const = default;
};

/// Brings the list to the handhelds of the Links table and their order, and reads it: a handheld that was
/// added there comes in without an install, and one that was removed leaves.
void TakeInLinks(StatusStore& store);

/// What was installed, as the operator reads it.
Text ShownType(const InstallRow& row);

/// The list as it is stored.
std::vector<InstallRow> GetList(const StatusStore& store);

/// Notes an install, with the present moment, for every handheld whose id is the user, without regard to
/// case. `type` is kept as its key.
void RecordInstall(StatusStore& store, std::string_view user, MessageId type);

/// Forgets all installs: the list has the handhelds of the Links table alone.
void ResetInstalls(StatusStore& store);
