#include "support/DocumentedBytes.h"

#include <cctype>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>

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

std::string DocumentedText(const std::string& heading, int which) {
    constexpr std::string_view Arrow = "\xE2\x86\x92";
    std::ifstream file(TRAMBLE_SOURCE "/docs/files.md");
    std::string example;
    int found = 0;
    bool isUnder = false, isInside = false;
    std::string blanks; // lines that belong to the example when it goes on behind them
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("## ")) isUnder = line.find(heading) != std::string::npos;
        if (line.empty()) {
            blanks += "\r\n";
            continue;
        }
        const bool wasInside = std::exchange(isInside, isUnder && line.starts_with("    "));
        if (isInside && !wasInside) ++found;
        if (isInside && found == which) {
            if (wasInside) example += blanks;
            line.erase(0, 4);
            for (std::size_t at = 0; (at = line.find(Arrow)) != std::string::npos;)
                line.replace(at, Arrow.size(), "\t");
            example += line + "\r\n";
        }
        blanks.clear();
    }
    return example;
}
