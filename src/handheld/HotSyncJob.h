#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

class Handheld;

/// How to press HotSync.
struct HotSyncJob {
    std::string Host;
    std::uint16_t Port = 0;
    std::optional<std::string> Lookup;        ///< the desktop's name, to be asked for before the connection
    std::uint16_t LookupPort = 0;             ///< UDP
    std::optional<std::uint64_t> CancelAfter; ///< packets, after which the user cancels
    std::optional<std::uint64_t> CutAfter;    ///< packets, after which the line is cut
    std::uint64_t BytesPerSecond = 0;         ///< of a slow line, each way; 0: as fast as it goes
    bool Split = false;                       ///< packets are sent in several pieces
    int Patience = 30;                        ///< seconds to wait for the desktop
};

/// Takes host and port from HOST or HOST:PORT, in UTF-8; a host with colons in it, an IPv6 address, stands in
/// brackets, and without a port it is NetSyncPort. Misuse for anything else.
void TakePlace(const std::string& where, HotSyncJob& job);

/// What a handheld does before it presses HotSync: writes the totals, and the count of the Links table, which
/// the HotSync may take away and not replace. Neither a damaged table nor a full disk keeps it from the
/// HotSync that brings its orders home; they are told on `err`.
void WriteDownOrders(Handheld& handheld, std::ostream& err);
