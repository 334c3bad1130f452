#pragma once

#include <string>
#include <string_view>

/// The install folder of a HotSync user: what lies in it is installed on the user's handheld by the next
/// session. Users are code page 1252, paths in the file system's encoding.

/// Where it lies, with a trailing separator: `managerFolder`, the user's name, "Install". RunTimeFailure 52
/// for a user whose name is no plain name of a folder, 76 without a manager's folder.
std::string InstallFolder(std::string_view managerFolder, std::string_view user);

/// The mark of an install that a program attends to, beside the install folder `folder`: while it lies there,
/// the manager installs nothing unless a program takes part in sessions. So a HotSync behind a kill of the
/// program replaces no orders on a handheld that nobody thinks of any more.
std::string InstallMark(std::string_view folder);

/// Copies a file into the install folder, over one of the same name; the folder is made when it is missing.
/// RunTimeFailure 53 for a file that is not there; else as InstallFolder, MakePath and CopyOver.
void AddInstall(std::string_view managerFolder, std::string_view file, std::string_view user);

/// Deletes every file in the install folder, and no folder. One that cannot be deleted stays. Fails as
/// InstallFolder.
void ClearHSInstallDir(std::string_view managerFolder, std::string_view user);
