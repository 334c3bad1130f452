#pragma once

#include <functional>
#include <string>
#include <string_view>

/// Lays out an application directory from the installed set, once: `Install` with tables and
/// graphics; in `DBFFiles` every table, with one record in the company, print and setup tables;
/// `Notes.dat`; in the templates directory's root the demonstration templates and activities.
/// What stands there is never touched. A layout that was cut off is completed by the next call; one
/// that was completed is not done again, so that a table that goes missing later stays missing.
/// Both paths with or without a trailing separator. RunTimeFailure from the disk; 53 when the
/// installed set lacks a table.
void LayOutOffice(std::string_view installedSet, std::string_view office);

/// Where the installed set is another than the one that the office has been laid out from, or was renewed
/// from last: what the operator has neither changed nor removed in the office's `Install` becomes the newer
/// one's, a table that is new stands in `DBFFiles` too, and one with other fields waits in `DBFNew` for
/// UpdateTables. Nothing is done where the set lies in the office itself, or is away. To be called by the one
/// program that has the office open. A renewal that was cut off is completed by the next call. RunTimeFailure
/// from the disk.
void RenewInstall(std::string_view installedSet, std::string_view office);

/// Whether the programs in a folder are installed for everybody: the folder is the `bin` of a prefix, whose
/// `share/zuk-tramble` has the installed set. Nothing is written there, whoever starts them.
bool IsInstalledForEverybody(std::string_view programFolder);

/// Where the installed set of the programs in a folder lies: there, or in the `share` of their prefix. With a
/// trailing separator, as what the two below return.
std::string InstalledSet(std::string_view programFolder);

/// The office of a user who has no other: "ZUKTramble" in the user's data folder.
std::string UsersOffice(std::string_view userDataFolder);

/// The application directory of a program that lies in `programFolder`: that folder when it can be
/// written and is not everybody's, laid out there when an installed set lies in it; else the user's office,
/// laid out at its first use from the installed set. RunTimeFailure as LayOutOffice.
std::string ApplicationDirectory(std::string_view programFolder, std::string_view userDataFolder);

/// The start's work on the files of the office in `Global.AppPath`, once its settings are read, in
/// its order: sets and makes its folders, remakes what is remade at each start, and clears what a
/// killed run left. `downloadSelectionMissing` as TemplatePass. `updateTables` does UpdateTables, and may
/// show it. False when its tables are missing; nothing was made then. RunTimeFailure as the routines of
/// core/Directories.h and UpdateTables.
bool PrepareOffice(const std::function<void()>& downloadSelectionMissing,
                   const std::function<void()>& updateTables);
