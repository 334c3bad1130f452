#pragma once

#include "core/Text.h"

#include <string>
#include <vector>

/// What is put on a handheld: program files with prepared data, program files and then the tables of the
/// office, or program files alone.
enum class InstallKind { Demo, Live, Program };

/// The files of an install by their names in the install directory, in the order in which they are queued.
std::vector<std::string> ProgramSet(); ///< every install has it
std::vector<std::string> DemoSet();    ///< prepared data, behind the program set
std::vector<std::string> RuntimeSet(); ///< runtime and printing, at the end of every install

/// All files of an install, those of its three sets in their order.
std::vector<std::string> FilesOf(InstallKind kind);

/// The tables that a live install sends to the handheld, by their full paths in the tables directory, in the
/// order in which they are queued.
std::vector<std::string> LiveTables();

/// Opens and closes each of those tables. RunTimeFailure for the first one that is not there or cannot be
/// read.
void OpenLiveTables();

/// What the list of installs calls an install.
MessageId InstallType(InstallKind kind);
