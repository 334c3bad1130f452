#include "tools/FileVersion.h"

#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"

#include <cstdint>

namespace {

using namespace std::string_view_literals;

/// The key of the resource, UTF-16 with its end. Behind it two bytes fill up to a multiple of four.
constexpr std::string_view Key = "V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0"sv;
constexpr std::size_t BehindKey = Key.size() + 2;
/// Then a mark, the version of the structure, and the file version in two numbers of 32 bits.
constexpr std::string_view Mark = "\xBD\x04\xEF\xFE"sv;
constexpr std::size_t HighNumber = 8, LowNumber = 12, EndOfNumbers = 16;

std::string HalfAt(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t k) {
        return static_cast<unsigned>(static_cast<unsigned char>(bytes[k]));
    };
    return std::to_string(byte(at) | byte(at + 1) << 8);
}

} // namespace

std::string FileVersion(std::string_view path) {
    try {
        if (!FileExists(path)) return {};
        const std::string file = ReadWholeFile(path);
        if (!file.starts_with("MZ")) return {};
        const std::string_view bytes = file;
        for (std::size_t key = bytes.find(Key); key != std::string_view::npos;
             key = bytes.find(Key, key + 1)) {
            const std::string_view info = bytes.substr(key).substr(0, BehindKey + EndOfNumbers);
            if (info.size() < BehindKey + EndOfNumbers || info.substr(BehindKey, Mark.size()) != Mark)
                continue;
            const std::size_t high = BehindKey + HighNumber, low = BehindKey + LowNumber;
            return HalfAt(info, high + 2) + '.' + HalfAt(info, high) + '.' + HalfAt(info, low + 2) + '.' +
                   HalfAt(info, low);
        }
    } catch (const RunTimeFailure&) { // a program that cannot be read tells no version
    }
    return {};
}
