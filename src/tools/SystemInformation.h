#pragma once

#include "core/Text.h"

#include <string_view>
#include <vector>

/// What the programs and the system say of themselves. What is not to be had is empty.
struct MachineFacts {
    Text ZUKVersion, OSName, OSVersion, PalmDesktopVersion, HotsyncVersion;
};

/// The system information as it goes into a file, onto paper and into a message: a label from the
/// catalogue, blanks up to column 30, and the value, for the facts and the paths in use.
/// RunTimeFailure 5, naming the label, for one of 30 characters or more: no blanks are left for it.
std::vector<Text> SystemInformation(const MachineFacts& facts);

/// Writes the lines into `SysInfo.txt` of the application directory, in UTF-8, and returns its path.
/// RunTimeFailure as SystemInformation and SafeFile.
std::string WriteSysInfo(const MachineFacts& facts);

/// Lines as a message has them: each with its line end, code page 1252.
std::string MailBody(const std::vector<Text>& lines);

/// The system information as the body of a message, below its title. RunTimeFailure as SystemInformation.
std::string SystemInformationMail(const MachineFacts& facts);
