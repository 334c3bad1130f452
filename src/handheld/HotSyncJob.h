#pragma once

#include <cstdint>
#include <optional>
#include <string>

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
