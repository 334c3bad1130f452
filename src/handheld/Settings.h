#pragma once

#include "core/Dates.h"
#include "palm/Dlp.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What a handheld knows of itself beside its databases: the file Handheld.txt. Texts are in code page 1252.
struct HandheldSettings {
    UserInfo User;
    std::string Machine = "H1";           ///< used when the Links table has no row of the user
    std::string LastOrder;                ///< up to 8 digits; its own count of orders, likewise
    std::uint64_t Memory = DefaultMemory; ///< bytes for databases
    std::int64_t ClockOffset = 0;         ///< seconds that its clock is ahead of the computer's
    std::uint32_t IdSeed = 0; ///< up to LastRecordId; where the record ids of a new database begin
    bool LanSync = false;     ///< network HotSync is on
    std::string PCName, PCAddress, PCMask; ///< the desktop that it looks for
    std::string LastEnd;                   ///< how the last HotSync ended, in up to LongestEnd characters

    static constexpr std::uint64_t DefaultMemory = std::uint64_t{16} << 20;
    static constexpr std::uint64_t MostMemory = std::uint64_t{1} << 30;
    static constexpr std::int64_t MostClockOffset = std::int64_t{150} * 366 * 86400; ///< either way
    static constexpr std::size_t LongestMachine = 4; ///< as the order code has room for it
    static constexpr std::size_t LongestEnd = 200;
    static constexpr std::size_t LongestHostName = 255; ///< and of an address and a mask
    static constexpr int FirstYear = 1904;              ///< of the moments of a HotSync

    friend bool operator==(const HandheldSettings&, const HandheldSettings&) = default;
};

/// The lines of Handheld.txt, UTF-8.
std::string WriteSettings(const HandheldSettings& settings);

/// Reads them; what has no line keeps its default. Refusal that begins with `file` and the line's number
/// for a line that is none, a key that is not known or comes twice, and a value out of its range.
HandheldSettings ReadSettings(std::string_view text, std::string_view file);

/// A moment as the wire has it, and back. What is no valid date is no date.
DlpDate ToDlpDate(const DateTime& date);
DateTime ToDateTime(const DlpDate& date);
