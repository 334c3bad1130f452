#pragma once

#include <string>
#include <string_view>

/// Where the programs of the system find what belongs to them, whether they were unpacked into one folder or
/// installed for everybody. Paths are in the file system's encoding; those of folders end with a separator.

/// The user's folder for what programs keep.
std::string UserDataFolder();

/// The folder in which a HotSync Manager keeps its files: that of its program; `HotSync` in the user's own
/// office when it is installed for everybody or its folder cannot be written. `program` is its full path.
/// Nothing is made.
std::string FolderOfManager(std::string_view program);

/// The office that a program belongs to which lies in one of its folders, as the HotSync Manager does.
std::string OfficeOfProgram(std::string_view program);

/// The HotSync Manager that came with the PC program in `programFolder` becomes that of this user, with the
/// conduit of the PC program. Nothing happens when one is registered already and is there, or none came
/// with it. RunTimeFailure 75 when the registry cannot be written, and as RegisterConduit.
void RegisterOwnManager(std::string_view programFolder);
