#pragma once

#include <string>
#include <string_view>

/// The install folder of a HotSync user: what lies in it is installed on the user's handheld by the next
/// session. Users are code page 1252, paths in the file system's encoding.

/// Where it lies, with a trailing separator: `managerFolder`, the user's name, "Install". RunTimeFailure 52
/// for a user whose name is no plain name of a folder, 76 without a manager's folder.
std::string InstallFolder(std::string_view managerFolder, std::string_view user);

/// Copies a file into the install folder, over one of the same name; the folder is made when it is missing.
/// RunTimeFailure 53 for a file that is not there; else as InstallFolder, MakePath and CopyOver.
void AddInstall(std::string_view managerFolder, std::string_view file, std::string_view user);

/// Deletes every file in the install folder, and no folder. One that cannot be deleted stays. Fails as
/// InstallFolder.
void ClearHSInstallDir(std::string_view managerFolder, std::string_view user);
