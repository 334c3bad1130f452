#pragma once

#include "sync/StatusStore.h"

#include <string>
#include <string_view>
#include <vector>

/// The status of each handheld, in memory in Global.HHSyncID and its companions, on disk in
/// `HSStatus.dat` in the install directory: a line a handheld, its HotSync id in columns 1 to 30,
/// its status in 31 to 60, its mark of a manual download from 61 on.

/// Writes `HSStatus.dat` anew from the Links table, the ids alone. RunTimeFailure when the file
/// cannot be written: the caller tells the operator and ends the program.
void MakeHHStatusFile();

/// Reads the file into the status list; makes it first when it is not there. RunTimeFailure as
/// MakeHHStatusFile and TextReader; the list is then as it was.
void GetHHStatus();

/// Writes the status list to the file. RunTimeFailure as MakeHHStatusFile.
void UpdateHHStatus();

/// Sets the entry of the first handheld with this id, without regard to case, in one of those lists
/// (Global.HHStatus, HHStatusStd); nothing when there is none.
void StoreHHStatus(std::vector<std::string>& list, std::string_view id, const std::string& value);

/// Empties the status and the mark of each handheld in memory.
void ClearHHStatus();

/// The HotSync ids of the Links table in its order, trimmed. No id when there is no such table.
std::vector<std::string> LinkIDs();

// The rows of the installation family. Those that write fail as StatusStore::Replace.

/// Writes the rows anew from the Links table, their other keys empty. RunTimeFailure as LinkIDs.
void MakeHHStatus(StatusStore& store);

/// Reads those rows into the status list, or makes them first when there is none.
void GetHHStatusInst(StatusStore& store);

/// Writes them back.
void UpdateHHStatusInst(StatusStore& store);
