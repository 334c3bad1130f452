#pragma once

#include <string>
#include <string_view>

/// Engine text is bytes in code page 1252. These routines are its edge to UTF-8 and its letter
/// case. The five bytes that the page leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) stand for
/// the control characters U+0081, U+008D, U+008F, U+0090 and U+009D, so that any bytes survive
/// the way to UTF-8 and back. Nothing here fails.

/// One byte for each character. A character that the page lacks becomes one '?', and so does
/// each longest piece of a malformed sequence. A mark at the start (U+FEFF) is such a character:
/// whoever reads a file cuts it off first.
std::string Utf8ToCodePage(std::string_view utf8);

/// Well-formed UTF-8 for any bytes.
std::string CodePageToUtf8(std::string_view text);

/// Strict: no overlong form, no surrogate, nothing above U+10FFFF, nothing cut off. The empty
/// text is valid.
bool IsValidUtf8(std::string_view bytes);

/// True if a byte above 127 is among them.
bool HasHighBytes(std::string_view bytes);

/// The other case of one character of the page, or the character itself where the page has
/// none: ß, ƒ and µ stay.
constexpr char ToUpper(char c) {
    const unsigned byte = static_cast<unsigned char>(c);
    if (byte >= 'a' && byte <= 'z') return static_cast<char>(byte - 0x20);
    if (byte >= 0xE0 && byte <= 0xFE && byte != 0xF7) return static_cast<char>(byte - 0x20);
    if (byte == 0x9A || byte == 0x9C || byte == 0x9E) return static_cast<char>(byte - 0x10);
    if (byte == 0xFF) return static_cast<char>(0x9F);
    return c;
}
constexpr char ToLower(char c) {
    const unsigned byte = static_cast<unsigned char>(c);
    if (byte >= 'A' && byte <= 'Z') return static_cast<char>(byte + 0x20);
    if (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7) return static_cast<char>(byte + 0x20);
    if (byte == 0x8A || byte == 0x8C || byte == 0x8E) return static_cast<char>(byte + 0x10);
    if (byte == 0x9F) return static_cast<char>(0xFF);
    return c;
}

/// Each character by ToUpper or ToLower; the length never changes.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
