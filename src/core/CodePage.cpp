#include "core/CodePage.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

/// What the page holds at 0x80 to 0x9F; everything else has its own code.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr unsigned Byte(char c) {
    return static_cast<unsigned char>(c);
}

constexpr char Char(unsigned byte) {
    return static_cast<char>(static_cast<unsigned char>(byte));
}

/// What stands at the start of a UTF-8 text.
struct Sequence {
    char32_t Code = 0;
    std::size_t Length = 1; ///< bytes it takes, those of a malformed piece included
    bool Valid = false;
};

/// `text` is not empty.
Sequence FirstSequence(std::string_view text) {
    const unsigned lead = Byte(text[0]);
    if (lead < 0x80) return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4) return {};

    // The bounds of the second byte shut out overlong forms, surrogates and what lies too high.
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;

    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size()) return {0, i, false};
        const unsigned byte = Byte(text[i]);
        if (byte < low || byte > high) return {0, i, false};
        code = (code << 6) | (byte & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return {code, length, true};
}

char FromCode(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return Char(static_cast<unsigned>(code));
    const auto found = std::find(kUpperControls.begin(), kUpperControls.end(), code);
    if (found == kUpperControls.end()) return '?';
    return Char(0x80U + static_cast<unsigned>(found - kUpperControls.begin()));
}

/// The number of bytes below 128 at the start.
std::size_t PlainLength(std::string_view bytes) {
    constexpr std::size_t Step = 32;
    std::size_t plain = 0;
    while (plain + Step <= bytes.size() && !HasHighBytes(bytes.substr(plain, Step))) plain += Step;
    while (plain < bytes.size() && Byte(bytes[plain]) < 0x80) ++plain;
    return plain;
}

} // namespace

std::string Utf8ToCodePage(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    while (true) {
        const std::size_t plain = PlainLength(utf8);
        text += utf8.substr(0, plain);
        utf8.remove_prefix(plain);
        if (utf8.empty()) return text;
        const Sequence sequence = FirstSequence(utf8);
        text += sequence.Valid ? FromCode(sequence.Code) : '?';
        utf8.remove_prefix(sequence.Length);
    }
}

std::string CodePageToUtf8(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (const char c : text) {
        const unsigned byte = Byte(c);
        const unsigned code = byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : byte;
        if (code < 0x80) {
            utf8 += c;
        } else if (code < 0x800) {
            utf8 += Char(0xC0 | (code >> 6));
            utf8 += Char(0x80 | (code & 0x3F));
        } else {
            utf8 += Char(0xE0 | (code >> 12));
            utf8 += Char(0x80 | ((code >> 6) & 0x3F));
            utf8 += Char(0x80 | (code & 0x3F));
        }
    }
    return utf8;
}

bool IsValidUtf8(std::string_view bytes) {
    while (true) {
        bytes.remove_prefix(PlainLength(bytes));
        if (bytes.empty()) return true;
        const Sequence sequence = FirstSequence(bytes);
        if (!sequence.Valid) return false;
        bytes.remove_prefix(sequence.Length);
    }
}

bool HasHighBytes(std::string_view bytes) {
    unsigned char all = 0; // without a way out, so that the compiler takes many bytes at once
    for (const char c : bytes) all |= static_cast<unsigned char>(c);
    return all >= 0x80;
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = ToUpper(c);
    return upper;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = ToLower(c);
    return lower;
}
