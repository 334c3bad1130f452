#include "core/CodePage.h"
#include "palm/Converter.h"
#include "palm/Database.h"
#include "palm/Dlp.h"
#include "palm/PalmTest.h"
#include "support/DocumentedBytes.h"
#include "support/EngineTest.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

using Rows = std::vector<std::string>;

std::string HexOf(std::string_view bytes) {
    if (bytes.empty()) return "-";
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        hex += digits[static_cast<unsigned char>(c) >> 4];
        hex += digits[static_cast<unsigned char>(c) & 15];
    }
    return hex;
}

std::string FourOf(std::uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift & 0xFF);
    return text;
}

/// A moment as JavaScript writes it; none is where the count begins.
std::string MomentOf(std::uint32_t seconds) {
    if (seconds == 0) return "1904-01-01T00:00:00.000Z";
    const DlpDate date = DlpDate::FromSeconds(seconds);
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.000Z", date.Year, date.Month,
                  date.Day, date.Hour, date.Minute, date.Second);
    return text.data();
}

std::string FlagsOf(unsigned flags, const std::vector<std::pair<unsigned, const char*>>& names) {
    std::string text;
    for (const auto& [flag, name] : names) {
        if ((flags & flag) != 0) text += (text.empty() ? "" : ",") + std::string(name);
    }
    return text.empty() ? "-" : text;
}

std::string FlagsOf(const Database& database) {
    return FlagsOf(database.Flags, {{0x0001, "resDB"},
                                    {0x0002, "readOnly"},
                                    {0x0004, "appInfoDirty"},
                                    {0x0008, "backup"},
                                    {0x0010, "okToInstallNewer"},
                                    {0x0020, "resetAfterInstall"},
                                    {0x0040, "copyPrevention"},
                                    {0x0080, "stream"},
                                    {0x0100, "hidden"},
                                    {0x0200, "launchableData"},
                                    {0x0400, "recyclable"},
                                    {0x0800, "bundle"}});
}

std::string FlagsOf(const DatabaseRecord& record) {
    return FlagsOf(record.Flags, {{0x80, "delete"}, {0x40, "dirty"}, {0x20, "busy"}, {0x10, "secret"}});
}

/// A database in the lines of independent/palmpdb.js.
Rows Told(const std::string& path, const Database& database) {
    Rows lines = {"file " + path,
                  std::string("kind ") + (database.IsResource() ? "PRC" : "PDB"),
                  "name " + CodePageToUtf8(database.Name),
                  "flags " + FlagsOf(database),
                  "version " + std::to_string(database.Version),
                  "created " + MomentOf(database.Created),
                  "modified " + MomentOf(database.Modified),
                  "backup " + MomentOf(database.BackedUp),
                  "modification " + std::to_string(database.ModificationNumber),
                  "type " + FourOf(database.Type),
                  "creator " + FourOf(database.Creator),
                  "seed " + std::to_string(database.IdSeed),
                  "appinfo " + HexOf(database.AppInfo),
                  "sortinfo " + HexOf(database.SortInfo)};
    for (const DatabaseRecord& record : database.Records) {
        lines.push_back("record " + std::to_string(record.Id) + " " + std::to_string(record.Category) + " " +
                        FlagsOf(record) + " " + HexOf(record.Data));
    }
    for (const DatabaseResource& resource : database.Resources) {
        lines.push_back("resource " + FourOf(resource.Type) + " " + std::to_string(resource.Id) + " " +
                        HexOf(resource.Data));
    }
    return lines;
}

/// Within what palm-pdb takes as we do: it reads a date below the middle of the range as one of 1970 and
/// later, takes types for text, and gives the category of a deleted or busy record another meaning.
Database AnyDatabaseOfBoth(Lots& lots) {
    const auto moment = [&] { return lots.Below(4) == 0 ? 0 : AnyU32(lots) | 0x80000000; };
    const auto four = [&] {
        std::string text;
        for (int k = 0; k < 4; ++k) text += static_cast<char>('A' + lots.Below(26));
        return FourCharacters(text);
    };
    Database database = AnyDatabase(lots);
    for (char& c : database.Name) c = static_cast<char>(0xA1 + static_cast<unsigned char>(c) % 0x5F);
    database.Flags &= 0x0FFF;
    database.Created = moment();
    database.Modified = moment();
    database.BackedUp = moment();
    database.Type = four();
    database.Creator = four();
    for (DatabaseRecord& record : database.Records) {
        if ((record.Flags & (DeletedRecord | BusyRecord)) != 0) record.Category = 0;
    }
    for (DatabaseResource& resource : database.Resources) resource.Type = four();
    return database;
}

class PalmPdb : public EngineTest {
protected:
    Rows Script(const std::string& arguments) {
        const std::string line = "NODE_PATH='" PALM_PDB "/node_modules' node '" TRAMBLE_SOURCE
                                 "/tests/palm/independent/palmpdb.js' " +
                                 arguments + " > '" + Folder() + "out.txt' 2> '" + Folder() + "err.txt'";
        EXPECT_EQ(std::system(line.c_str()), 0) << Bytes(Folder() + "err.txt");
        return Lines(Folder() + "out.txt");
    }

    /// Writes the databases, has them read, and compares database by database.
    void ExpectReadThere(const std::vector<Database>& databases) {
        std::string paths;
        Rows expected;
        for (const Database& database : databases) {
            const std::string name = std::to_string(expected.size()) + ".pdb";
            const std::string path = GivenFile(name, WriteDatabase(database));
            const Rows told = Told(path, database);
            expected.insert(expected.end(), told.begin(), told.end());
            paths += " '" + path + "'";
        }
        EXPECT_EQ(Script("tell" + paths), expected);
    }

    /// Has the databases written, and reads them.
    void ExpectReadHere(const std::vector<Database>& databases) {
        std::string lines;
        for (std::size_t k = 0; k < databases.size(); ++k) {
            for (const std::string& line : Told(Folder() + std::to_string(k) + ".pdb", databases[k]))
                lines += line + "\n";
        }
        Script("make '" + GivenFile("make.txt", lines) + "'");
        for (std::size_t k = 0; k < databases.size(); ++k) {
            EXPECT_EQ(ReadDatabase(Bytes(Folder() + std::to_string(k) + ".pdb")), databases[k]) << k;
        }
    }

    static std::vector<Database> AnyDatabases(unsigned seed) {
        Lots lots(seed);
        std::vector<Database> databases;
        for (int k = 0; k < 60; ++k) databases.push_back(AnyDatabaseOfBoth(lots));
        return databases;
    }

    static Database ATable() {
        const HandheldLayout layout{{{"O_CODE", 'C', 8, 0}, {"O_TOTAL", 'N', 10, 2}}};
        Database database;
        static_cast<DatabaseHeader&>(database) = HandheldHeader("ZUKORHDR.DBF");
        database.Created = database.Modified = DlpDate{2026, 11, 22, 8, 30, 15}.Seconds();
        database.AppInfo = PackLayout(layout);
        database.Records = {{0, 0, 1, PackRecord(layout, {"A1      12.50     ", {}})},
                            {0, 0, 2, PackRecord(layout, {"A2      0.99      ", {9, 1, Hex("FF80")}})}};
        return database;
    }
};

} // namespace

TEST_F(PalmPdb, ReadsTheWorkedExample) {
    const std::string path =
        GivenFile("ver.pdb", DocumentedBytes(std::string(TRAMBLE_SOURCE) + "/docs/handheld-database.md"));

    EXPECT_EQ(Script("tell '" + path + "'"),
              (Rows{"file " + path, "kind PDB", "name TZUK20000_ZUKVER", "flags -", "version 1",
                    "created 2026-01-01T12:00:00.000Z", "modified 2026-01-01T12:00:00.000Z",
                    "backup 1904-01-01T00:00:00.000Z", "modification 0", "type DATA", "creator ZUK2",
                    "seed 0", "appinfo 5a554b5400010001565f4d414a4f52000000430a0000", "sortinfo -",
                    "record 1 0 - 31303020202020202020"}));
}

TEST_F(PalmPdb, ReadsOurTables) {
    ExpectReadThere({ATable()});
}

TEST_F(PalmPdb, ReadsEachFileThatAnOfficeInstallsOnAHandheld) {
    std::string paths;
    Rows expected;
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(TRAMBLE_INSTALLED "/Install")) {
        const std::string path = entry.path();
        if (!path.ends_with(".pdb") && !path.ends_with(".prc")) continue;
        const Rows told = Told(path, ReadDatabase(Bytes(path)));
        expected.insert(expected.end(), told.begin(), told.end());
        paths += " '" + path + "'";
        ++files;
    }

    EXPECT_EQ(files, 47U);
    EXPECT_EQ(Script("tell" + paths), expected);
}

TEST_F(PalmPdb, ReadsWhateverDatabasesWeWrite) {
    ExpectReadThere(AnyDatabases(301));
}

TEST_F(PalmPdb, WritesTablesThatWeRead) {
    ExpectReadHere({ATable()});
}

TEST_F(PalmPdb, WritesWhateverDatabasesWeRead) {
    ExpectReadHere(AnyDatabases(302));
}
