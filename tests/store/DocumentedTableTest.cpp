#include "support/EngineTest.h"

#include <cctype>
#include <sstream>

namespace {

/// The bytes of the worked example in docs/files.md: lines of an address and up to 16 bytes in hex.
std::string DocumentedBytes(const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) {
        const bool isDump = line.size() > 10 && line.starts_with("    ") && std::isxdigit(line[4]) &&
                            std::isxdigit(line[5]) && line.compare(6, 2, "  ") == 0;
        if (!isDump) continue;
        std::istringstream words(line.substr(8, 49));
        for (std::string word; words >> word && word.size() == 2;) {
            bytes += static_cast<char>(std::stoi(word, nullptr, 16));
        }
    }
    return bytes;
}

class DocumentedTable : public EngineTest {};

TEST_F(DocumentedTable, TheWorkedExampleIsTheInstalledTable) {
    const std::string documented = DocumentedBytes(Lines(std::string(TRAMBLE_SOURCE) + "/docs/files.md"));

    EXPECT_EQ(documented, Bytes(std::string(TRAMBLE_INSTALLED) + "/Install/ZUKVER.dbf"));
}

} // namespace
