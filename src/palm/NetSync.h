#pragma once

#include "palm/Bytes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The packets of Network HotSync and the handshake at the start of a connection, both sides. Bytes in,
/// bytes out; who carries them is somebody else's matter.

inline constexpr std::uint16_t NetSyncPort = 14238;       ///< TCP
inline constexpr std::uint16_t NetSyncLookupPort = 14237; ///< UDP

struct NetPacket {
    enum Kind : std::uint8_t { Data = 1, Tickle = 2 };

    Kind Type = Data;
    std::uint8_t Transaction = 0; ///< 255 in the handshake, then 1 to 254; an answer has its request's
    std::string Payload;          ///< one whole handshake or DLP message; empty for a tickle

    friend bool operator==(const NetPacket&, const NetPacket&) = default;
};

/// A packet as it goes over the line, six bytes of header and the payload.
std::string PackPacket(const NetPacket& packet);

/// Puts the pieces in which a line delivers its bytes together to packets. A first packet that comes
/// without its header, as from some cradles, is taken too.
class PacketReader {
public:
    /// The largest message that version 1 of the protocol allows, with room for its headers. A longer
    /// one is refused before anything is kept of it.
    static constexpr std::uint32_t LongestPayload = 128 * 1024;

    /// Takes bytes as they came: a piece of a packet, or several.
    void Feed(std::string_view bytes);

    /// The next whole packet, or nothing yet. PalmFailure for another type than the two and for a
    /// payload that is too long: the line is not to be used further.
    std::optional<NetPacket> Next();

    /// True when bytes of a packet have come that is not whole.
    bool IsInside() const { return at_ < pending_.size(); }

private:
    std::string pending_;
    std::size_t at_ = 0; ///< where the next packet begins; what stands before it goes with the next Feed
    bool first_ = true;
};

/// The handheld's first packet, and its answers to the desktop's two.
NetPacket HandheldHello();
/// The answer to a packet of the desktop's handshake, with its transaction number; nothing when the
/// packet belongs to no handshake. `address` and `port` are the handheld's own, for what they are worth.
std::optional<NetPacket> HandheldAnswer(const NetPacket& request, std::uint32_t address, std::uint16_t port);
/// True for the desktop's last packet of the handshake: behind its answer the handheld serves requests.
bool IsLastOfHandshake(const NetPacket& request);

/// The desktop's side of the handshake: what to send, packet by packet.
class DesktopHandshake {
public:
    explicit DesktopHandshake(std::uint32_t address) : address_(address) {}

    /// Takes the handheld's next packet and gives the one to send; nothing once the handshake is done.
    /// PalmFailure for a packet that has no place in it. Tickles are passed over by the caller.
    std::optional<NetPacket> Take(const NetPacket& packet);

    bool IsDone() const { return step_ == 3; }

private:
    std::uint32_t address_;
    int step_ = 0;
};

/// The transaction number behind another: 1 to 254 and round again.
std::uint8_t NextTransaction(std::uint8_t transaction);

/// What a handheld asks on the lookup port, and what it is answered.
struct NetLookup {
    bool IsAnswer = false;
    std::uint8_t Unknown = 0; ///< an answer repeats the question's
    std::uint32_t Address = 0, Mask = 0;
    std::string Name; ///< of the desktop that is looked for, without NUL

    friend bool operator==(const NetLookup&, const NetLookup&) = default;
};
/// One datagram; the name is not cut.
std::string PackLookup(const NetLookup& lookup);
/// Nothing for a datagram that is none.
std::optional<NetLookup> ReadLookup(std::string_view datagram);
