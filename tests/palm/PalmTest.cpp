#include "palm/PalmTest.h"

#include <cctype>

namespace {

std::uint32_t Any(Lots& lots, std::uint32_t largest) {
    switch (lots.Below(8)) {
    case 0:
        return 0;
    case 1:
        return largest;
    default:
        return (static_cast<std::uint32_t>(lots.Below(0x10000)) << 16 |
                static_cast<std::uint32_t>(lots.Below(0x10000))) &
               largest;
    }
}

/// Mostly short, now and then of no length, seldom long.
std::string AnyBlock(Lots& lots) {
    switch (lots.Below(8)) {
    case 0:
    case 1:
        return {};
    case 2:
        return lots.Bytes(lots.Below(3000));
    default:
        return lots.Bytes(1 + lots.Below(40));
    }
}

} // namespace

std::string Hex(std::string_view digits) {
    std::string pair, bytes;
    for (const char c : digits) {
        if (c == ' ' || c == '|' || c == '\n') continue;
        EXPECT_TRUE(std::isxdigit(static_cast<unsigned char>(c))) << digits;
        pair += c;
        if (pair.size() < 2) continue;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
        pair.clear();
    }
    EXPECT_TRUE(pair.empty()) << digits;
    return bytes;
}

std::uint8_t AnyU8(Lots& lots) {
    return static_cast<std::uint8_t>(Any(lots, 0xFF));
}

std::uint16_t AnyU16(Lots& lots) {
    return static_cast<std::uint16_t>(Any(lots, 0xFFFF));
}

std::uint32_t AnyU32(Lots& lots) {
    return Any(lots, 0xFFFFFFFF);
}

std::string AnyText(Lots& lots, int shortest, int longest) {
    return lots.Bytes(shortest + lots.Below(longest - shortest + 1), 1);
}

Database AnyDatabase(Lots& lots) {
    Database database;
    database.Name = AnyText(lots, 1, static_cast<int>(LongestDatabaseName));
    database.Flags = AnyU16(lots) & 0x7FFF;
    database.Version = AnyU16(lots);
    database.Created = AnyU32(lots);
    database.Modified = AnyU32(lots);
    database.BackedUp = AnyU32(lots);
    database.ModificationNumber = AnyU32(lots);
    database.Type = AnyU32(lots);
    database.Creator = AnyU32(lots);
    database.IdSeed = AnyU32(lots) & 0xFFFFFF;
    database.AppInfo = AnyBlock(lots);
    database.SortInfo = AnyBlock(lots);
    for (int k = lots.Below(lots.Below(5) == 0 ? 200 : 8); k > 0; --k) {
        if (database.IsResource()) {
            database.Resources.push_back({AnyU32(lots), AnyU16(lots), AnyBlock(lots)});
        } else {
            database.Records.push_back({static_cast<std::uint8_t>(AnyU8(lots) & 0xF0),
                                        static_cast<std::uint8_t>(lots.Below(16)), AnyU32(lots) & 0xFFFFFF,
                                        AnyBlock(lots)});
        }
    }
    return database;
}
