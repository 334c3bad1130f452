#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Whole numbers as a table's header holds them: two's complement, the lowest byte first. A number that is
/// read lies within `bytes`: the caller has looked.

inline std::int16_t Int16At(std::string_view bytes, std::size_t offset) {
    const auto low = static_cast<unsigned char>(bytes[offset]);
    const auto high = static_cast<unsigned char>(bytes[offset + 1]);
    return static_cast<std::int16_t>(low | high << 8);
}

inline std::int32_t Int32At(std::string_view bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t k = 4; k-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + k]);
    return static_cast<std::int32_t>(value);
}

inline std::string BytesOfInt16(std::int16_t value) {
    const auto bits = static_cast<std::uint16_t>(value);
    return {static_cast<char>(bits & 0xFF), static_cast<char>(bits >> 8)};
}

inline std::string BytesOfInt32(std::int32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(static_cast<std::uint32_t>(value) >> shift & 0xFF);
    }
    return bytes;
}
