#include "palm/NetSync.h"

#include <cstddef>

namespace {

constexpr std::size_t HeaderSize = 6;
constexpr std::uint8_t HandshakeTransaction = 0xFF;
constexpr std::uint8_t LastTransaction = 0xFE;

// The messages of the handshake: the first byte of each, and how long those of a handheld are.
constexpr std::uint8_t Hello = 0x90, Preferences = 0x12, PreferencesAnswer = 0x92, Complete = 0x13,
                       CompleteAnswer = 0x93;
constexpr std::size_t HelloSize = 22;
constexpr std::size_t LeastMessage = 8;

constexpr std::uint16_t LookupMagic = 0xFADE;
constexpr std::size_t LookupSize = 13;

std::string HandshakeMessage(std::uint8_t id, std::string_view argument) {
    ByteWriter message;
    message.U8(id).U8(argument.empty() ? 0 : 1).U16(0).U32(0);
    if (!argument.empty()) message.U16(0x0020).U32(static_cast<std::uint32_t>(argument.size())).Put(argument);
    return std::move(message).Bytes();
}

/// The block of preferences that both sides send: what they mean nobody tells; both go by the constants
/// that have always been sent.
std::string PreferenceBlock(std::uint32_t limits, std::uint32_t flags, std::uint32_t kind,
                            std::uint32_t address, unsigned port) {
    ByteWriter block;
    block.U32(0xFFFFFFFF).U32(limits).U32(flags).U32(kind).U32(address).U16(port);
    block.U16(0).U32(0).U32(0).U32(0);
    return std::move(block).Bytes();
}

bool Begins(const NetPacket& packet, std::uint8_t id) {
    return packet.Type == NetPacket::Data && packet.Payload.size() >= LeastMessage &&
           static_cast<std::uint8_t>(packet.Payload.front()) == id;
}

/// Two requests of a session begin with the same bytes as the desktop's messages of the handshake, but
/// go on with their arguments where those have an error number and four bytes more of 0.
bool IsHandshake(const NetPacket& request, std::uint8_t id) {
    constexpr std::string_view zeros("\0\0\0\0\0\0", 6);
    return Begins(request, id) && request.Payload.compare(2, zeros.size(), zeros) == 0;
}

} // namespace

std::string PackPacket(const NetPacket& packet) {
    ByteWriter bytes;
    bytes.U8(packet.Type).U8(packet.Transaction);
    bytes.U32(static_cast<std::uint32_t>(packet.Payload.size())).Put(packet.Payload);
    return std::move(bytes).Bytes();
}

void PacketReader::Feed(std::string_view bytes) {
    pending_.erase(0, at_);
    at_ = 0;
    pending_.append(bytes);
}

std::optional<NetPacket> PacketReader::Next() {
    const std::string_view left = std::string_view(pending_).substr(at_);
    if (left.empty()) return std::nullopt;
    NetPacket packet;
    if (first_ && static_cast<std::uint8_t>(left.front()) == Hello) {
        if (left.size() < HelloSize) return std::nullopt;
        packet.Transaction = HandshakeTransaction;
        packet.Payload = left.substr(0, HelloSize);
        at_ += HelloSize;
    } else {
        const auto type = static_cast<std::uint8_t>(left.front());
        if (type != NetPacket::Data && type != NetPacket::Tickle) {
            throw PalmFailure("a packet of type " + std::to_string(type));
        }
        if (left.size() < HeaderSize) return std::nullopt;
        ByteReader header(left.substr(1, HeaderSize - 1), "packet");
        packet.Type = static_cast<NetPacket::Kind>(type);
        packet.Transaction = header.U8();
        const std::uint32_t size = header.U32();
        if (size > LongestPayload || (type == NetPacket::Tickle && size != 0)) {
            throw PalmFailure("a packet of " + std::to_string(size) + " bytes");
        }
        if (left.size() < HeaderSize + size) return std::nullopt;
        packet.Payload = left.substr(HeaderSize, size);
        at_ += HeaderSize + size;
    }
    first_ = false;
    return packet;
}

NetPacket HandheldHello() {
    return {NetPacket::Data, HandshakeTransaction,
            HandshakeMessage(Hello, std::string("\x02\0\0\0\0\0\0\0", 8))};
}

std::optional<NetPacket> HandheldAnswer(const NetPacket& request, std::uint32_t address, std::uint16_t port) {
    if (IsHandshake(request, Preferences)) {
        const std::string block = PreferenceBlock(0x003C003C, 0x40000000, 0x02000000, address, port);
        return NetPacket{NetPacket::Data, request.Transaction, HandshakeMessage(PreferencesAnswer, block)};
    }
    if (IsHandshake(request, Complete)) {
        return NetPacket{NetPacket::Data, request.Transaction, HandshakeMessage(CompleteAnswer, {})};
    }
    return std::nullopt;
}

bool IsLastOfHandshake(const NetPacket& request) {
    return IsHandshake(request, Complete);
}

std::optional<NetPacket> DesktopHandshake::Take(const NetPacket& packet) {
    constexpr std::array<std::uint8_t, 3> expected{Hello, PreferencesAnswer, CompleteAnswer};
    if (IsDone() || !Begins(packet, expected[static_cast<std::size_t>(step_)])) {
        throw PalmFailure("no packet of a HotSync handshake, step " + std::to_string(step_ + 1));
    }
    ++step_;
    if (step_ == 1) {
        constexpr unsigned captured = 0x0427; // the port as it has always been sent
        const std::string block = PreferenceBlock(0x3C003C00, 0, 0, address_, captured);
        return NetPacket{NetPacket::Data, 1, HandshakeMessage(Preferences, block)};
    }
    if (step_ == 2) {
        ByteWriter block;
        block.U32(0xFFFFFFFF).U32(0x003C003C).U32(0).U32(1).U32(0).U32(0).U32(0).U32(0);
        return NetPacket{NetPacket::Data, 2, HandshakeMessage(Complete, block.Bytes())};
    }
    return std::nullopt;
}

std::uint8_t NextTransaction(std::uint8_t transaction) {
    return transaction >= LastTransaction ? 1 : static_cast<std::uint8_t>(transaction + 1);
}

std::string PackLookup(const NetLookup& lookup) {
    ByteWriter bytes;
    bytes.U16(LookupMagic).U8(lookup.IsAnswer ? 2 : 1).U8(lookup.Unknown);
    bytes.U32(lookup.Address).U32(lookup.Mask).Text(lookup.Name);
    return std::move(bytes).Bytes();
}

std::optional<NetLookup> ReadLookup(std::string_view datagram) {
    if (datagram.size() < LookupSize || datagram.back() != '\0') return std::nullopt;
    ByteReader from(datagram, "lookup");
    if (from.U16() != LookupMagic) return std::nullopt;
    const std::uint8_t kind = from.U8();
    if (kind != 1 && kind != 2) return std::nullopt;
    NetLookup lookup;
    lookup.IsAnswer = kind == 2;
    lookup.Unknown = from.U8();
    lookup.Address = from.U32();
    lookup.Mask = from.U32();
    lookup.Name = from.TakeText();
    return lookup;
}
