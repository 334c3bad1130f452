#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The checksum of files: the CRC of 64 bits that .xz files carry (polynomial 42F0E1EBA9EA3693, bits
/// reflected, start and end inverted). It finds every change of up to 64 bits in a row, and any other but
/// one in 1.8e19. It is against accidents, not against somebody who means to deceive.
class Checksum {
public:
    void Add(std::string_view bytes);
    std::uint64_t Value() const { return ~state_; }

private:
    std::uint64_t state_ = ~std::uint64_t{0};
};

/// What can be said of a file's content without keeping it.
struct FileSum {
    std::uint64_t Size = 0; ///< bytes
    std::uint64_t Sum = 0;  ///< Checksum of all of them
    bool operator==(const FileSum&) const = default;
};

/// Reads a whole file, in blocks. RunTimeFailure as Disk::Open, and 57.
FileSum SumOfFile(std::string_view path);

/// A checksum as 16 small hexadecimal digits; and back, nothing for any other text.
std::string SumText(std::uint64_t sum);
std::optional<std::uint64_t> SumFromText(std::string_view text);
