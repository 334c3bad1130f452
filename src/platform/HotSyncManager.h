#pragma once

#include <string>
#include <string_view>

/// The HotSync Manager that is registered on this machine: the program that the registry value "HotSyncPath"
/// names.

/// The folder of the manager's program, with a trailing separator; empty when none is registered.
std::string HotSyncManagerFolder();

/// Starts the manager, minimised, and returns true; false when none is registered. One that runs already
/// stays the only one. A program that cannot be started changes nothing in the answer: the trace says so,
/// once for each path.
bool IsHotSyncActive();

/// The same, and when none is registered the operator is told what that means: the caller stops then.
bool IsHotSyncActiveOrTell();

/// Deletes every file in the install folder of a user; see sync/InstallFolder.h.
void ClearHSInstallDir(std::string_view user);
