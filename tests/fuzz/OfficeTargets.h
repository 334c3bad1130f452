#pragma once

#include <string_view>

// The small files of an office, which its own programs write and anybody can change.

void FuzzSettings(std::string_view bytes);       ///< ZUKTramble.ini
void FuzzStatus(std::string_view bytes);         ///< HSStatus.dat
void FuzzNotes(std::string_view bytes);          ///< Notes.dat
void FuzzMessages(std::string_view bytes);       ///< Messages.tsv
void FuzzSupportDesk(std::string_view bytes);    ///< Support.ini
void FuzzBackups(std::string_view bytes);        ///< Backup.txt
void FuzzUnfinishedJobs(std::string_view bytes); ///< UnfinishedJobs.txt
void FuzzInstallMark(std::string_view bytes);    ///< InstallBegun.txt
void FuzzSelections(std::string_view bytes);     ///< *.ust, *.dst, *.dct, *.pct
void FuzzHotSyncLog(std::string_view bytes);     ///< HotSync.log
void FuzzHandheldFile(std::string_view bytes);   ///< Handheld.txt
void FuzzUpdateText(std::string_view bytes);     ///< UpdateReadMe.rtf
void FuzzFileVersion(std::string_view bytes);    ///< a Windows program's version
