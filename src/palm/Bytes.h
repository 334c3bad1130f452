#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// Bytes from a handheld, a file or a line that are not what they should be. `what()` is ASCII and says
/// what was read and what is wrong with it.
class PalmFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Takes big-endian numbers and pieces from the front of bytes. Whatever asks for more than there is
/// fails with a PalmFailure that begins with `what`.
class ByteReader {
public:
    ByteReader(std::string_view bytes, const char* what) : bytes_(bytes), what_(what) {}

    std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
    std::uint32_t U32() { return Number(4); }
    /// A piece of the bytes, and valid as long as they are; Rest likewise.
    std::string_view Take(std::size_t size);
    void Skip(std::size_t size) { Take(size); }
    /// Up to a NUL, which is taken too. PalmFailure when none comes.
    std::string_view TakeText();
    std::string_view Rest() { return Take(Left()); }

    std::size_t Left() const { return bytes_.size(); }

    /// PalmFailure with `what` and the problem.
    [[noreturn]] void Fail(const std::string& problem) const;

private:
    std::uint32_t Number(std::size_t size);

    std::string_view bytes_;
    const char* what_;
};

/// Puts big-endian numbers and pieces behind each other.
class ByteWriter {
public:
    /// The low 8 bits of the value, and the low 16.
    ByteWriter& U8(unsigned value);
    ByteWriter& U16(unsigned value);
    ByteWriter& U32(std::uint32_t value);
    ByteWriter& Put(std::string_view bytes);
    /// The text and a NUL behind it.
    ByteWriter& Text(std::string_view text);
    /// A text in a field of `size` bytes, NULs behind it; cut so that one NUL remains.
    ByteWriter& Padded(std::string_view text, std::size_t size);

    std::size_t Size() const { return bytes_.size(); }
    const std::string& Bytes() const& { return bytes_; }
    std::string Bytes() && { return std::move(bytes_); }

private:
    std::string bytes_;
};

/// Four characters as a number, the first the highest byte, as types and creators are kept. Missing
/// characters count as blanks.
constexpr std::uint32_t FourCharacters(std::string_view text) {
    std::uint32_t value = 0;
    for (std::size_t at = 0; at < 4; ++at) {
        value = value << 8 | static_cast<unsigned char>(at < text.size() ? text[at] : ' ');
    }
    return value;
}
