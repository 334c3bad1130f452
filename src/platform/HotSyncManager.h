#pragma once

#include <string>
#include <string_view>

/// The HotSync Manager that is registered on this machine: the program that the registry value "HotSyncPath"
/// names.

/// The folder in which the manager keeps its files (FolderOfManager in platform/Installation.h), with a
/// trailing separator; empty when none is registered.
std::string HotSyncManagerFolder();

/// The manager's version, such as "1.0.0": of a Windows program its file version, else what it answers when
/// it is run with "--version", which may take it three seconds. Empty when none is registered, or it says
/// none.
std::string HotSyncManagerVersion();

/// The file version of `Palm.exe` in the folder that the registry value "Path" names; empty when it is not
/// there.
std::string PalmDesktopVersion();

/// Starts the manager, minimised, and returns true; false when none is registered. One that runs already
/// stays the only one. A program that cannot be started changes nothing in the answer: the trace says so,
/// once for each path.
bool IsHotSyncActive();

/// The same, and when none is registered the operator is told what that means: the caller stops then.
bool IsHotSyncActiveOrTell();

/// Deletes every file in the install folder of a user; see sync/InstallFolder.h.
void ClearHSInstallDir(std::string_view user);
