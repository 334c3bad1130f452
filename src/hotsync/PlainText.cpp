#include "hotsync/PlainText.h"

#include <algorithm>

namespace {

bool IsControl(char c) {
    const unsigned byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 ||
           byte == 0x9D;
}

} // namespace

std::string WithoutControls(std::string_view text) {
    std::string plain(text);
    std::replace_if(plain.begin(), plain.end(), IsControl, '?');
    return plain;
}
