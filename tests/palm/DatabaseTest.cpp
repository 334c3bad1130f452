#include "palm/Database.h"

#include "palm/Converter.h"
#include "palm/Dlp.h"
#include "palm/PalmTest.h"
#include "support/DocumentedBytes.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t HeaderSize = 78;
constexpr std::size_t AppInfoAt = 52, SortInfoAt = 56, SecondListAt = 72, CountAt = 76;

/// A file put together by hand, so that its offsets can be what no careful writer makes them.
struct HandMade {
    explicit HandMade(std::size_t records = 0) : Offsets(records) {}

    std::uint32_t AppInfo = 0, SortInfo = 0;
    std::vector<std::uint32_t> Offsets; ///< of records with the ids 1, 2, 3 ...
    std::string Behind;                 ///< all bytes behind the list

    std::uint32_t ListEnd() const { return static_cast<std::uint32_t>(HeaderSize + 8 * Offsets.size()); }

    std::string File() const {
        ByteWriter file;
        file.Padded("HandMade", 32).U16(0).U16(7).U32(1).U32(2).U32(3).U32(4).U32(AppInfo).U32(SortInfo);
        file.Put("DATAtest").U32(5).U32(0).U16(static_cast<unsigned>(Offsets.size()));
        std::uint32_t id = 0;
        for (const std::uint32_t offset : Offsets) file.U32(offset).U32(++id);
        return std::move(file.Put(Behind)).Bytes();
    }
};

std::vector<std::string> DataOf(const Database& database) {
    std::vector<std::string> data;
    for (const DatabaseRecord& record : database.Records) data.push_back(record.Data);
    for (const DatabaseResource& resource : database.Resources) data.push_back(resource.Data);
    return data;
}

Database WithRecords(std::initializer_list<const char*> data) {
    Database database;
    database.Name = "Some";
    for (const char* text : data) {
        const auto id = static_cast<std::uint32_t>(database.Records.size() + 1);
        database.Records.push_back({DirtyRecord, 3, id, text});
    }
    return database;
}

Database WithResources() {
    Database database;
    database.Name = "Program";
    database.Flags = ResourceDatabase | ResetAfterInstall;
    database.Type = FourCharacters("appl");
    database.Creator = FourCharacters("ZUK2");
    database.Resources = {{FourCharacters("code"), 0, std::string("\0\0\0\x28", 4)},
                          {FourCharacters("code"), 1, "Nu"},
                          {FourCharacters("tSTR"), 1000, ""},
                          {FourCharacters("boot"), 10000, "once"}};
    return database;
}

void Set(std::string& file, std::size_t at, std::uint32_t value) {
    ByteWriter number;
    number.U32(value);
    file.replace(at, 4, number.Bytes());
}

std::size_t BytesIn(const Database& database) {
    std::size_t bytes = database.AppInfo.size() + database.SortInfo.size();
    for (const std::string& data : DataOf(database)) bytes += data.size();
    return bytes;
}

/// Whatever came in: it is refused, or what was read lay in the file and can be written and read again.
/// True when it was read.
bool IsRefusedOrReadWithoutHarm(const std::string& file) {
    return GoesWell([&] {
        const Database read = ReadDatabase(file);
        EXPECT_LE(BytesIn(read), file.size());
        EXPECT_EQ(ReadDatabase(WriteDatabase(read)), read);
    });
}

} // namespace

TEST(HandheldDatabase, TheWorkedExampleIsWrittenAndReadByteForByte) {
    const HandheldLayout layout{{{"V_MAJOR", 'C', 10, 0}}};
    Database database;
    static_cast<DatabaseHeader&>(database) = HandheldHeader("/office/DBFFiles/ZUKVER.dbf");
    database.Created = database.Modified = DlpDate{2026, 1, 1, 12, 0, 0}.Seconds();
    database.AppInfo = PackLayout(layout);
    database.Records = {{0, 0, 1, PackRecord(layout, {"100       ", {}})}};

    const std::string documented =
        DocumentedBytes(std::string(TRAMBLE_SOURCE) + "/docs/handheld-database.md");

    EXPECT_EQ(documented.size(), 120u);
    EXPECT_EQ(WriteDatabase(database), documented);
    EXPECT_EQ(ReadDatabase(documented), database);
    EXPECT_EQ(ReadLayout(ReadDatabase(documented).AppInfo), layout);
}

TEST(HandheldDatabase, AnyGapBehindTheListIsRead) {
    for (const unsigned gap : {0U, 1U, 2U, 3U, 100U}) {
        HandMade file(2);
        const std::uint32_t data = file.ListEnd() + gap;
        file.Offsets = {data, data + 3};
        file.Behind = std::string(gap, '\xEE') + "oneother";

        EXPECT_EQ(DataOf(ReadDatabase(file.File())), (std::vector<std::string>{"one", "other"})) << gap;
    }
}

TEST(HandheldDatabase, AGapBelongsToNoBlock) {
    HandMade file(1);
    file.AppInfo = file.ListEnd() + 2;
    file.Offsets = {file.AppInfo + 4};
    file.Behind = std::string(2, '\0') + "infodata";

    EXPECT_EQ(ReadDatabase(file.File()).AppInfo, "info");
    EXPECT_EQ(ReadDatabase(file.File()).Records[0].Data, "data");
}

TEST(HandheldDatabase, ZeroRecordsAreADatabase) {
    for (const char* appInfo : {"", "application"}) {
        for (const char* sortInfo : {"", "sort"}) {
            Database database = WithRecords({});
            database.AppInfo = appInfo;
            database.SortInfo = sortInfo;

            const std::string file = WriteDatabase(database);

            EXPECT_EQ(file.size(), HeaderSize + 2 + BytesIn(database));
            EXPECT_EQ(ReadDatabase(file), database);
        }
    }
}

TEST(HandheldDatabase, AHeaderAloneIsADatabaseWithoutRecords) {
    EXPECT_EQ(ReadDatabase(HandMade{}.File()).Name, "HandMade");
    EXPECT_EQ(ReadDatabase(HandMade{}.File()).Records.size(), 0u);
}

TEST(HandheldDatabase, RecordsOfNoLengthStayWhereTheyStand) {
    for (const auto& data : {std::vector<const char*>{"", "a", "b"},
                             {"a", "", "b"},
                             {"a", "b", ""},
                             {"", "", "a", "", "", "b", "", ""},
                             {""},
                             {"", "", ""}}) {
        Database database = WithRecords({});
        for (const char* text : data) database.Records.push_back({0, 0, 9, text});
        for (const char* appInfo : {"", "application"}) {
            database.AppInfo = appInfo;

            EXPECT_EQ(ReadDatabase(WriteDatabase(database)), database);
        }
    }
}

TEST(HandheldDatabase, AnApplicationBlockOfNoLengthLeavesTheRecordItsBytes) {
    HandMade file(2);
    file.Offsets = {file.ListEnd(), file.ListEnd() + 3};
    file.Behind = "oneother";
    for (const std::uint32_t shared : {file.Offsets[0], file.Offsets[1], file.ListEnd() + 8}) {
        file.AppInfo = shared;

        const Database read = ReadDatabase(file.File());

        EXPECT_EQ(read.AppInfo, "");
        EXPECT_EQ(DataOf(read), (std::vector<std::string>{"one", "other"}));
    }
}

TEST(HandheldDatabase, ASortBlockOfNoLengthLeavesTheRecordItsBytes) {
    HandMade file(1);
    file.AppInfo = file.ListEnd();
    file.SortInfo = file.AppInfo + 4;
    file.Offsets = {file.SortInfo};
    file.Behind = "infodata";

    const Database read = ReadDatabase(file.File());

    EXPECT_EQ(read.AppInfo, "info");
    EXPECT_EQ(read.SortInfo, "");
    EXPECT_EQ(DataOf(read), (std::vector<std::string>{"data"}));
}

TEST(HandheldDatabase, AnApplicationBlockOfNoLengthLeavesTheSortBlockItsBytes) {
    HandMade file;
    file.AppInfo = file.SortInfo = file.ListEnd();
    file.Behind = "sort";

    EXPECT_EQ(ReadDatabase(file.File()).AppInfo, "");
    EXPECT_EQ(ReadDatabase(file.File()).SortInfo, "sort");
}

TEST(HandheldDatabase, BlocksMayStandBehindTheRecords) {
    HandMade file(1);
    file.Offsets = {file.ListEnd()};
    file.SortInfo = file.ListEnd() + 4;
    file.AppInfo = file.SortInfo + 4;
    file.Behind = "datasortinfo";

    const Database read = ReadDatabase(file.File());

    EXPECT_EQ(read.AppInfo, "info");
    EXPECT_EQ(read.SortInfo, "sort");
    EXPECT_EQ(DataOf(read), (std::vector<std::string>{"data"}));
}

TEST(HandheldDatabase, SixtyFiveThousandRecordsAreTheMost) {
    Database database = WithRecords({});
    for (std::uint32_t id = 1; id <= MostRecords; ++id)
        database.Records.push_back({0, 0, id, std::string(id % 3, static_cast<char>(id))});

    EXPECT_EQ(ReadDatabase(WriteDatabase(database)), database);

    database.Records.push_back({0, 0, 1, "one too many"});
    EXPECT_EQ(Refusal([&] { WriteDatabase(database); }),
              "handheld database: 65536 records are more than 65535");
}

TEST(HandheldDatabase, ResourcesAreKeptWithTypeAndId) {
    const Database database = WithResources();
    const std::string file = WriteDatabase(database);

    EXPECT_EQ(file.substr(HeaderSize, 6), std::string("code\0\0", 6));
    EXPECT_EQ(file.substr(HeaderSize + 30, 10), "boot" + Hex("2710 0000007E"));
    EXPECT_EQ(ReadDatabase(file), database);
}

TEST(HandheldDatabase, AnyDateIsKept) {
    for (const std::uint32_t date : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        Database database = WithRecords({"a"});
        database.Created = date;
        database.Modified = ~date;
        database.BackedUp = date;

        EXPECT_EQ(ReadDatabase(WriteDatabase(database)), database);
    }
}

TEST(HandheldDatabase, FlagsAndCategoryShareAByte) {
    Database database = WithRecords({"a"});
    database.Records[0] = {DeletedRecord | SecretRecord, 11, 0xABCDEF, "a"};

    const std::string file = WriteDatabase(database);

    EXPECT_EQ(file.substr(HeaderSize + 4, 4), Hex("9B ABCDEF"));
    EXPECT_EQ(ReadDatabase(file), database);
}

TEST(HandheldDatabase, TheFlagOfAnOpenOneIsNeitherReadNorWritten) {
    Database database = WithRecords({});
    database.Flags = OpenDatabase | BackupDatabase;
    std::string file = WriteDatabase(database);
    EXPECT_EQ(file.substr(32, 2), Hex("0008"));

    file[32] = '\x80';
    EXPECT_EQ(ReadDatabase(file).Flags, BackupDatabase);
}

TEST(HandheldDatabase, TheLongestNameAndTheLongestBlocksAreKept) {
    Database database = WithRecords({""});
    database.Name = std::string(LongestDatabaseName, 'N');
    database.AppInfo = std::string(LongestRecord, 'a');
    database.SortInfo = std::string(LongestRecord, 's');
    database.Records[0].Data = std::string(LongestRecord, 'r');

    EXPECT_EQ(ReadDatabase(WriteDatabase(database)), database);
}

TEST(HandheldDatabase, WhatIsBeyondALimitIsNotWritten) {
    const std::string tooLong(LongestRecord + 1, 'x');
    const auto refusal = [](auto&& change) {
        Database database = WithRecords({"a"});
        change(database);
        return Refusal([&] { WriteDatabase(database); });
    };
    const std::string tooLongBlock = "handheld database: a block of 65506 bytes";
    EXPECT_EQ(refusal([&](Database& d) { d.AppInfo = tooLong; }), tooLongBlock);
    EXPECT_EQ(refusal([&](Database& d) { d.SortInfo = tooLong; }), tooLongBlock);
    EXPECT_EQ(refusal([&](Database& d) { d.Records[0].Data = tooLong; }), tooLongBlock);
    EXPECT_EQ(refusal([&](Database& d) { d.Name = ""; }),
              "handheld database: the name \"\" has not 1 to 31 characters");
    EXPECT_NE(refusal([](Database& d) { d.Name = std::string(32, 'N'); }), "");
    EXPECT_NE(refusal([](Database& d) { d.Name = std::string("a\0b", 3); }), "");
    EXPECT_NE(refusal([&](Database& d) {
                  d = WithResources();
                  d.Resources[0].Data = tooLong;
              }),
              "");
}

TEST(HandheldDatabase, ABlockOutsideTheFileOrInsideTheListsIsRefused) {
    const std::string good = WriteDatabase(WithRecords({"one", "other"}));
    const std::size_t list = HeaderSize;
    for (const std::size_t at : {AppInfoAt, SortInfoAt, list, list + 8}) {
        for (const std::size_t offset :
             {std::size_t{1}, HeaderSize, HeaderSize + 15, good.size() + 1, std::size_t{0xFFFFFFFF}}) {
            std::string file = good;
            Set(file, at, static_cast<std::uint32_t>(offset));

            EXPECT_EQ(Refusal([&] { ReadDatabase(file); }),
                      "handheld database: a block at " + std::to_string(offset) + " lies outside");
        }
    }
}

TEST(HandheldDatabase, ARecordWithoutABlockIsRefused) {
    std::string file = WriteDatabase(WithRecords({"one"}));
    Set(file, HeaderSize, 0);

    EXPECT_EQ(Refusal([&] { ReadDatabase(file); }), "handheld database: an entry without a block");
}

TEST(HandheldDatabase, BlocksMayStandInAnotherOrderThanTheirList) {
    HandMade file(2);
    file.Offsets = {file.ListEnd() + 3, file.ListEnd()};
    file.Behind = "oneother";

    const Database database = ReadDatabase(file.File());

    ASSERT_EQ(database.Records.size(), 2U);
    EXPECT_EQ(database.Records[0].Data, "other");
    EXPECT_EQ(database.Records[1].Data, "one");
}

TEST(HandheldDatabase, ASecondListIsRefused) {
    std::string file = WriteDatabase(WithRecords({"one"}));
    Set(file, SecondListAt, 200);

    EXPECT_EQ(Refusal([&] { ReadDatabase(file); }), "handheld database: a second list of records");
}

TEST(HandheldDatabase, ANameWithoutEndOrWithoutACharacterIsRefused) {
    std::string file = WriteDatabase(WithRecords({"one"}));
    EXPECT_EQ(Refusal([&] { ReadDatabase(file.replace(0, 32, std::string(32, 'N'))); }),
              "handheld database: a name without its end");
    EXPECT_EQ(Refusal([&] { ReadDatabase(file.replace(0, 32, std::string(32, '\0'))); }),
              "handheld database: a name without a character");
}

TEST(HandheldDatabase, WhatStandsBehindTheNamesEndIsNoPartOfIt) {
    std::string file = WriteDatabase(WithRecords({"one"}));
    file[31] = 'x';

    EXPECT_EQ(ReadDatabase(file).Name, "Some");
}

TEST(HandheldDatabase, ACountThatTheFileCannotHoldIsRefused) {
    std::string file = WriteDatabase(WithRecords({"one"}));
    file.replace(CountAt, 2, "\xFF\xFF");

    EXPECT_EQ(Refusal([&] { ReadDatabase(file); }),
              "handheld database: cut off: 524280 bytes wanted, 13 there");
}

TEST(HandheldDatabase, ARecordBeyondTheLongestIsRefused) {
    HandMade file(1);
    file.Offsets = {file.ListEnd()};
    file.Behind = std::string(LongestRecord + 1, 'x');

    EXPECT_EQ(Refusal([&] { ReadDatabase(file.File()); }), "handheld database: a block of 65506 bytes");
}

TEST(HandheldDatabase, AFileCutOffBeforeItsLastRecordIsRefusedAndAnyOtherLosesOnlyItsEnd) {
    Database database = WithRecords({"first", "", "last one"});
    database.AppInfo = "application";
    database.SortInfo = "sort";
    const std::string file = WriteDatabase(database);
    const std::size_t last = file.size() - 8;
    for (std::size_t size = 0; size < file.size(); ++size) {
        const std::string cut = file.substr(0, size);
        EXPECT_EQ(IsRefusedOrReadWithoutHarm(cut), size >= last) << size;
        if (size < last) continue;
        database.Records[2].Data = cut.substr(last);
        EXPECT_EQ(ReadDatabase(cut), database) << size;
    }
}

TEST(HandheldDatabase, ACutOffFileOfResourcesIsRefusedOrLosesOnlyItsEnd) {
    const std::string file = WriteDatabase(WithResources());
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_EQ(IsRefusedOrReadWithoutHarm(file.substr(0, size)), size >= file.size() - 4) << size;
}

TEST(HandheldDatabase, AFileWithAnyByteChangedIsRefusedOrReadWithoutHarm) {
    Database records = WithRecords({"first", "", "last one"});
    records.AppInfo = "application";
    records.SortInfo = "sort";
    for (const Database& database : {records, WithResources()}) {
        const std::string good = WriteDatabase(database);
        int read = 0, refused = 0;
        for (std::size_t at = 0; at < good.size(); ++at) {
            for (int change = 1; change < 256; ++change) {
                std::string file = good;
                file[at] = static_cast<char>(file[at] ^ change);
                ++(IsRefusedOrReadWithoutHarm(file) ? read : refused);
            }
        }
        EXPECT_GT(read, 0);
        EXPECT_GT(refused, 0);
    }
}

TEST(HandheldDatabase, WhatIsWrittenReadsTheSame) {
    Lots lots(38);
    for (int k = 0; k < 400; ++k) {
        const Database database = AnyDatabase(lots);

        EXPECT_EQ(ReadDatabase(WriteDatabase(database)), database) << k;
    }
}
