#pragma once

#include <string>
#include <string_view>

/// A yes/no value as it stands in a file of settings: "True" or "False"; read in any case, or as a
/// number. RunTimeFailure 13 for another text.
std::string_view YesNoText(bool value);
bool ReadYesNo(std::string_view text);

/// The settings file `ZUKTramble.ini` of the application directory: lines "Key=value" under
/// section lines, always rewritten whole. The live settings are those in Global.

/// Writes a new file from the defaults, and takes them over. The window's geometry is what Global
/// holds. RunTimeFailure when the file cannot be written: the caller tells the operator and ends.
void MakeIniFile();

/// Reads the file into Global; makes it first when it cannot be opened. A key counts wherever it
/// stands and whatever its case; a missing one has its default. RunTimeFailure 13 for a yes/no key
/// or a count that is none, named with file and line.
void GetIniFile();

/// Writes the file from Global. A window that stands off the screen (top above 8500 or below 0,
/// left above 11550 or below 0, in twips) is brought back to 0 first. Failures as MakeIniFile.
void UpdateIniFile();

/// Writes the file with the selections of download, clear and upload templates turned off, as when
/// a template that they name is gone. Global keeps its values until GetIniFile. Failures as MakeIniFile.
void DeselectRemoteSelect();
