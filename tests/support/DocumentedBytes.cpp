#include "support/DocumentedBytes.h"

#include <cctype>
#include <fstream>
#include <sstream>

namespace {

bool IsHex(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool IsDump(const std::string& line) {
    return line.size() > 10 && line.starts_with("    ") && IsHex(line[4]) && IsHex(line[5]) &&
           line.compare(6, 2, "  ") == 0;
}

} // namespace

std::string DocumentedBytes(const std::string& document) {
    constexpr std::size_t begin = 8, length = 49; // of the 16 bytes in a line
    std::ifstream file(document);
    std::string bytes;
    for (std::string line; std::getline(file, line);) {
        if (!IsDump(line)) continue;
        std::istringstream words(line.substr(begin, length));
        for (std::string word; words >> word && word.size() == 2;)
            bytes += static_cast<char>(std::stoi(word, nullptr, 16));
    }
    return bytes;
}
