#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The settings of the HotSync Manager.
struct ManagerSettings {
    std::string Address =
        "127.0.0.1";            ///< where handhelds are awaited: IPv4 or IPv6 in numbers, or "*" for all
    std::uint16_t Port = 14238; ///< TCP; 0: any free one
    std::uint16_t LookupPort = 14237; ///< UDP, where handhelds ask for this computer by name; 0: any free one
    bool Lookup = true;               ///< whether they are answered
    std::int32_t HandshakeSeconds = 20;
    std::int32_t AnswerSeconds = 60; ///< how long a handheld may take for an answer
    std::int32_t SessionMinutes = 30;
    std::int32_t KeepAliveSeconds = 8; ///< between signs of life while the office is busy
    std::int32_t WaitingCallers = 4;   ///< handhelds that may wait for the end of a session
    std::int32_t LargestTableMB = 64;
    std::int32_t LargestFileMB = 16;
    std::uint32_t PCId = 0; ///< what handhelds remember this office by; never 0 once read

    bool operator==(const ManagerSettings&) const = default;
};

/// What a setting that is a whole number may be.
struct ManagerSettingRange {
    std::int64_t Least = 0, Most = 0;
};

/// Nothing for a setting that is no whole number. RunTimeFailure 5 for a key that is none.
std::optional<ManagerSettingRange> RangeOfManagerSetting(std::string_view key);

/// A setting by its key, as the file has it, and back. RunTimeFailure 13 with the reason for a value that
/// cannot be it, 5 for a key that is none. Keys are taken in any case.
std::string ManagerSettingText(const ManagerSettings& settings, std::string_view key);
void SetManagerSetting(ManagerSettings& settings, std::string_view key, std::string_view text);

/// Reads `HotSync.ini` of the manager's folder, see docs/files.md. A missing file or key has the default. The
/// id of this office is made and written when there is none; what a killed run has left is put away.
/// RunTimeFailure 13 with file, line and reason for a line that is none and a value that cannot be, otherwise
/// as TextReader and WriteManagerSettings.
ManagerSettings ReadManagerSettings(std::string_view folder);

/// Writes the settings into the file; whatever else stands in it stays in its place. RunTimeFailure as
/// SetManagerSetting and SafeFile.
void WriteManagerSettings(std::string_view folder, const ManagerSettings& settings);
