#include "core/Checksum.h"

#include "core/Globals.h"
#include "core/Paths.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace {

constexpr std::size_t Slices = 8;
using Tables = std::array<std::array<std::uint64_t, 256>, Slices>;

/// Table k is what a byte becomes that k zero bytes follow: eight bytes are taken at once.
constexpr Tables MakeTables() {
    constexpr std::uint64_t Reflected = 0xC96C5795D7870F42;
    Tables tables{};
    for (std::uint64_t byte = 0; byte < 256; ++byte) {
        std::uint64_t value = byte;
        for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? value >> 1 ^ Reflected : value >> 1;
        tables[0][byte] = value;
    }
    for (std::size_t k = 1; k < Slices; ++k) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t before = tables[k - 1][byte];
            tables[k][byte] = before >> 8 ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr Tables Table = MakeTables();

std::uint64_t ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

} // namespace

void Checksum::Add(std::string_view bytes) {
    std::uint64_t state = state_;
    while (bytes.size() >= Slices) {
        std::uint64_t next = 0;
        for (std::size_t k = 0; k < Slices; ++k)
            next ^= Table[Slices - 1 - k][(state >> (8 * k) ^ ByteAt(bytes, k)) & 0xFF];
        state = next;
        bytes.remove_prefix(Slices);
    }
    for (std::size_t k = 0; k < bytes.size(); ++k)
        state = state >> 8 ^ Table[0][(state ^ ByteAt(bytes, k)) & 0xFF];
    state_ = state;
}

FileSum SumOfFile(std::string_view path) {
    const auto file = Global.TheDisk->Open(ResolvePath(path), Access::Read);
    Checksum sum;
    FileSum total;
    std::string block(std::size_t{1} << 18, '\0');
    while (const std::size_t got = file->ReadAt(total.Size, block.data(), block.size())) {
        sum.Add(std::string_view(block.data(), got));
        total.Size += got;
    }
    total.Sum = sum.Value();
    return total;
}

std::string SumText(std::uint64_t sum) {
    std::string text(16, '0');
    for (std::size_t k = 16; k-- > 0; sum >>= 4) text[k] = "0123456789abcdef"[sum & 15];
    return text;
}

std::optional<std::uint64_t> SumFromText(std::string_view text) {
    std::uint64_t sum = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), sum, 16);
    if (text.size() != 16 || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return sum;
}
