#include "palm/Bytes.h"

#include <algorithm>

std::string_view ByteReader::Take(std::size_t size) {
    if (size > bytes_.size()) {
        Fail("cut off: " + std::to_string(size) + " bytes wanted, " + std::to_string(bytes_.size()) +
             " there");
    }
    const std::string_view piece = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return piece;
}

std::string_view ByteReader::TakeText() {
    const std::size_t end = bytes_.find('\0');
    if (end == std::string_view::npos) Fail("a text without its end");
    const std::string_view text = bytes_.substr(0, end);
    bytes_.remove_prefix(end + 1);
    return text;
}

void ByteReader::Fail(const std::string& problem) const {
    throw PalmFailure(std::string(what_) + ": " + problem);
}

std::uint32_t ByteReader::Number(std::size_t size) {
    std::uint32_t value = 0;
    for (const char c : Take(size)) value = value << 8 | static_cast<unsigned char>(c);
    return value;
}

ByteWriter& ByteWriter::U8(unsigned value) {
    bytes_ += static_cast<char>(value & 0xFF);
    return *this;
}

ByteWriter& ByteWriter::U16(unsigned value) {
    return U8(value >> 8).U8(value);
}

ByteWriter& ByteWriter::U32(std::uint32_t value) {
    return U16(value >> 16).U16(value & 0xFFFF);
}

ByteWriter& ByteWriter::Put(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

ByteWriter& ByteWriter::Text(std::string_view text) {
    bytes_ += text;
    bytes_ += '\0';
    return *this;
}

ByteWriter& ByteWriter::Padded(std::string_view text, std::size_t size) {
    const std::size_t kept = std::min(text.size(), size > 0 ? size - 1 : 0);
    bytes_ += text.substr(0, kept);
    bytes_.append(size - kept, '\0');
    return *this;
}
