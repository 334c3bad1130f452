#include "palm/Dlp.h"

#include "palm/PalmTest.h"

#include <algorithm>
#include <vector>

namespace {

/// An argument in the form of one byte, two bytes or four bytes of length, whatever its length is.
enum class Form { Tiny, Small, Long, LongWithBothBits };

std::string ArgumentIn(Form form, const DlpArgument& argument) {
    const auto size = static_cast<std::uint32_t>(argument.Data.size());
    ByteWriter bytes;
    switch (form) {
    case Form::Tiny:
        bytes.U8(argument.Id).U8(size);
        break;
    case Form::Small:
        bytes.U8(argument.Id | 0x80U).U8(0).U16(size);
        break;
    case Form::Long:
        bytes.U8(argument.Id | 0x40U).U8(0).U32(size);
        break;
    case Form::LongWithBothBits:
        bytes.U8(argument.Id | 0xC0U).U8(0).U32(size);
        break;
    }
    return std::move(bytes.Put(argument.Data)).Bytes();
}

DlpDate AnyDate(Lots& lots) {
    if (lots.Below(5) == 0) return {};
    return DlpDate::FromSeconds(AnyU32(lots) | 1);
}

DatabaseInfo AnyInfo(Lots& lots) {
    DatabaseInfo info;
    info.Name = AnyText(lots, 0, static_cast<int>(LongestDatabaseName));
    info.Flags = AnyU16(lots);
    info.Version = AnyU16(lots);
    info.Created = AnyU32(lots);
    info.Modified = AnyU32(lots);
    info.BackedUp = AnyU32(lots);
    info.ModificationNumber = AnyU32(lots);
    info.Type = AnyU32(lots);
    info.Creator = AnyU32(lots);
    info.MiscFlags = AnyU8(lots);
    info.Index = AnyU16(lots);
    return info;
}

std::vector<DlpArgument> AnyArguments(Lots& lots) {
    std::vector<DlpArgument> arguments;
    for (int k = lots.Below(4); k > 0; --k) {
        const int size = lots.Below(6) == 0 ? lots.Below(0x10000) : lots.Below(300);
        arguments.push_back({static_cast<std::uint8_t>(0x20 + arguments.size()), lots.Bytes(size)});
    }
    return arguments;
}

/// Through the line: what one side packed, as the other reads it.
DlpResponse Answered(const DlpResponse& response) {
    return ReadResponse(PackResponse(response));
}
DlpRequest Asked(const DlpRequest& request) {
    return ReadRequest(PackRequest(request));
}

void ExpectRequest(const DlpRequest& request, const std::string& bytes) {
    EXPECT_EQ(PackRequest(request), bytes);
    EXPECT_EQ(ReadRequest(bytes), request);
}

void ExpectResponse(const DlpResponse& response, const std::string& bytes) {
    EXPECT_EQ(PackResponse(response), bytes);
    EXPECT_EQ(ReadResponse(bytes), response);
}

DlpResponse WithArgument(DlpFunction function, std::string_view digits) {
    return {function, Hex(digits)};
}

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysIn(int year, int month) {
    if (month == 2) return IsLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

} // namespace

// ---- messages, byte for byte ----

TEST(DlpMessage, TheSystemIsAskedForWithTheDesktopsVersion) {
    ExpectRequest(DlpRequest(DlpFunction::ReadSysInfo, Hex("0001 0004")), Hex("12 01 20 04 0001 0004"));
}

TEST(DlpMessage, TheAnswerAboutTheSystemHasTwoArguments) {
    SysInfo info;
    info.RomVersion = 0x04103000;
    info.Localization = 0x00010000;
    info.ProductId = Hex("00020000");
    info.DlpMajor = 1;
    info.DlpMinor = 2;
    info.CompatMajor = 3;
    info.LongestRecord = 0xFFE1;
    const std::string bytes = Hex("92 02 0000 20 0E 04103000 00010000 00 04 00020000"
                                  "21 0C 0001 0002 0003 0000 0000FFE1");

    ExpectResponse(PackSysInfo(info), bytes);
    EXPECT_EQ(ReadSysInfo(ReadResponse(bytes)), info);
}

TEST(DlpMessage, AConduitIsOpened) {
    ExpectRequest(DlpRequest(DlpFunction::OpenConduit), Hex("2E00"));
    ExpectResponse(DlpResponse(DlpFunction::OpenConduit), Hex("AE000000"));
}

TEST(DlpMessage, ADatabaseIsOpenedByName) {
    ExpectRequest(DlpRequest(DlpFunction::OpenDB, Hex("00 80") + "MemoDB" + '\0'),
                  Hex("17 01 20 09 00 80") + "MemoDB" + '\0');
    EXPECT_EQ(PackRequest(PackOpenDB("MemoDB", false)), Hex("17 01 20 09 00 90") + "MemoDB" + '\0');
    EXPECT_EQ(PackRequest(PackOpenDB("MemoDB", true)), Hex("17 01 20 09 00 D0") + "MemoDB" + '\0');
    EXPECT_EQ(ReadHandle(ReadResponse(Hex("97 01 0000 20 01 01"))), 1);
}

TEST(DlpMessage, RecordsAreCounted) {
    EXPECT_EQ(PackRequest(PackReadOpenDBInfo(1)), Hex("2B 01 20 01 01"));
    EXPECT_EQ(ReadRecordCount(ReadResponse(Hex("AB 01 0000 20 02 0001"))), 1);
}

TEST(DlpMessage, AnApplicationBlockIsReadWhole) {
    const std::string block(282, 'b');
    const std::string bytes = Hex("9B 01 0000 A0 00 011C 011A") + block;

    EXPECT_EQ(PackRequest(PackReadAppBlock(1)), Hex("1B 01 20 06 01 00 0000 FFFF"));
    EXPECT_EQ(ReadBlock(ReadResponse(bytes)), block);
    EXPECT_EQ(PackResponse(DlpResponse(DlpFunction::ReadAppBlock, Hex("011A") + block)), bytes);
}

TEST(DlpMessage, IdsOfRecordsAreListed) {
    ExpectRequest(DlpRequest(DlpFunction::ReadRecordIDList, Hex("01 00 0000 01F4")),
                  Hex("31 01 20 06 01 00 0000 01F4"));
    ExpectResponse(WithArgument(DlpFunction::ReadRecordIDList, "0001 00457001"),
                   Hex("B1 01 0000 20 06 0001 00457001"));
}

TEST(DlpMessage, ARecordIsRead) {
    const std::string bytes =
        Hex("A0 01 0000 20 18 00457001 0000 000E 40 00") + std::string("Hello, world!\0", 14);
    RecordAnswer answer;
    answer.Record = {DirtyRecord, 0, 0x457001, std::string("Hello, world!\0", 14)};
    answer.Size = 14;

    ExpectRequest(DlpRequest(DlpFunction::ReadRecord, Hex("01 00 00457001 0000 FFFF")),
                  Hex("20 01 20 0A 01 00 00457001 0000 FFFF"));
    EXPECT_EQ(PackRequest(PackReadRecord(1, 0x0203)), Hex("20 01 21 08 01 00 0203 0000 FFFF"));
    EXPECT_EQ(PackRequest(PackReadRecord(1, 2, 3, 4)), Hex("20 01 21 08 01 00 0002 0003 0004"));
    EXPECT_EQ(PackResponse(PackRecord(DlpFunction::ReadRecord, answer)), bytes);
    const RecordAnswer read = ReadRecordAnswer(ReadResponse(bytes));
    EXPECT_EQ(read.Record, answer.Record);
    EXPECT_EQ(read.Index, 0);
    EXPECT_EQ(read.Size, 14);
}

TEST(DlpMessage, ADatabaseIsClosedAndTheSessionEnds) {
    EXPECT_EQ(PackRequest(PackCloseDB(1)), Hex("19 01 20 01 01"));
    ExpectResponse(DlpResponse(DlpFunction::CloseDB), Hex("99 00 0000"));
    EXPECT_EQ(PackRequest(PackEndOfSync(EndCode::Normal)), Hex("2F 01 20 02 0000"));
    EXPECT_EQ(PackRequest(PackEndOfSync(EndCode::Incompatible)), Hex("2F 01 20 02 0004"));
    ExpectResponse(DlpResponse(DlpFunction::EndOfSync), Hex("AF 00 0000"));
}

TEST(DlpMessage, AnErrorCarriesNoArguments) {
    DlpResponse failed(DlpFunction::DeleteDB, DlpError::NotFound);
    ExpectResponse(failed, Hex("9A000005"));

    failed.Arguments.push_back({0x20, "dropped"});
    EXPECT_EQ(PackResponse(failed), Hex("9A000005"));
    EXPECT_EQ(ReadResponse(Hex("9A 01 0005 20 01 07")),
              DlpResponse(DlpFunction::DeleteDB, DlpError::NotFound));
}

TEST(DlpMessage, DatabasesAreMadeDeletedAndRenamed) {
    DatabaseHeader header;
    header.Name = "Table";
    header.Creator = FourCharacters("ZUK2");
    header.Type = FourCharacters("DATA");
    header.Flags = OpenDatabase | BackupDatabase;
    header.Version = 3;

    EXPECT_EQ(PackRequest(PackCreateDB(header)),
              Hex("18 01 20 14") + "ZUK2DATA" + Hex("00 00 0008 0003") + "Table" + '\0');
    EXPECT_EQ(PackRequest(PackDeleteDB("Table")), Hex("1A 01 20 08 00 00") + "Table" + '\0');
    EXPECT_EQ(PackRequest(PackSetDBInfo(7, 0xFFFF, "New")),
              Hex("3A 01 20 2C 07 00 0000 0000 FFFF") + std::string(24 + 8, '\0') + "New" + '\0');
}

TEST(DlpMessage, BlocksRecordsAndResourcesAreWritten) {
    const DatabaseRecord record{DirtyRecord | BusyRecord | SecretRecord, 5, 0x123456, "data"};
    const DatabaseResource resource{FourCharacters("code"), 0x0102, "data"};

    EXPECT_EQ(PackRequest(PackWriteAppBlock(2, "block")), Hex("1C 01 20 09 02 00 0005") + "block");
    EXPECT_EQ(PackRequest(PackWriteSortBlock(2, "")), Hex("1E 01 20 04 02 00 0000"));
    EXPECT_EQ(PackRequest(PackWriteRecord(2, record)), Hex("21 01 20 0C 02 80 00123456 50 05") + "data");
    EXPECT_EQ(PackRequest(PackWriteResource(2, resource)),
              Hex("24 01 20 0E 02 00") + "code" + Hex("0102 0004") + "data");
}

TEST(DlpMessage, DatabasesAreListedAndFound) {
    EXPECT_EQ(PackRequest(PackListRequest(0x0102)), Hex("16 01 20 04 A0 00 0102"));
    EXPECT_EQ(PackRequest(PackFindByName("MemoDB")), Hex("39 01 20 09 80 00") + "MemoDB" + '\0');
}

TEST(DlpMessage, TheLogAndTheUserAreWritten) {
    UserChange change;
    change.Flags = UserChange::SetUserId | UserChange::SetName;
    change.UserId = 0x11223344;
    change.LastSyncPC = 5;
    change.SyncDate = {2026, 11, 21, 23, 59, 58};
    change.Name = "ANNA";

    EXPECT_EQ(PackRequest(PackSyncLog("OK\n")), Hex("2A 01 20 04") + "OK\n" + '\0');
    EXPECT_EQ(PackRequest(PackUserChange(change)),
              Hex("11 01 20 1B 11223344 00000000 00000005 07EA 0B 15 17 3B 3A 00 90 05") + "ANNA" + '\0');
}

TEST(DlpMessage, ADatabaseInAListIsThisBlock) {
    DatabaseInfo info;
    info.Name = "MemoDB";
    info.MiscFlags = 0x40;
    info.Flags = 0x0008;
    info.Type = FourCharacters("DATA");
    info.Creator = FourCharacters("memo");
    info.Version = 1;
    info.ModificationNumber = 0x0A0B0C0D;
    info.Created = info.Modified = 0xE57C1240;
    info.Index = 0x0304;
    const std::string date = Hex("07EA 01 01 0C 00 00 00");
    const std::string block = Hex("34 40 0008") + "DATAmemo" + Hex("0001 0A0B0C0D") + date + date +
                              std::string(8, '\0') + Hex("0304") + "MemoDB" + '\0' + '\0';

    EXPECT_EQ(PackDatabaseInfo(info), block);
    EXPECT_EQ(PackDatabaseList({0x0304, true, {info}}).Arguments[0].Data, Hex("0304 80 01") + block);
    EXPECT_EQ(ReadFound(DlpResponse(DlpFunction::FindDB, std::string(10, '\x07') + block)), info);
}

TEST(DlpMessage, ADateIsEightBytes) {
    EXPECT_EQ(PackDate({2026, 1, 31, 23, 59, 58}), Hex("07EA 01 1F 17 3B 3A 00"));
    EXPECT_EQ(ReadDate(Hex("07EA 01 1F 17 3B 3A 00")), (DlpDate{2026, 1, 31, 23, 59, 58}));
    EXPECT_EQ(ReadDate(Hex("0000 00 00 03 02 01 00")), DlpDate{}) << "without a year there is none";
}

// ---- arguments ----

TEST(DlpArguments, AreReadInEveryForm) {
    for (const std::size_t size : {0U, 1U, 254U, 255U, 256U, 65535U}) {
        const DlpArgument argument{0x20, std::string(size, 'x')}, second{0x21, "second"};
        for (const Form form : {Form::Tiny, Form::Small, Form::Long, Form::LongWithBothBits}) {
            if (form == Form::Tiny && size > 255) continue;
            const std::string bytes = ArgumentIn(form, argument) + ArgumentIn(form, second);

            const DlpRequest request = ReadRequest(Hex("20 02") + bytes);
            EXPECT_EQ(request.Arguments, (std::vector<DlpArgument>{argument, second}));
            const DlpResponse response = ReadResponse(Hex("A0 02 0000") + bytes);
            EXPECT_EQ(response.Arguments, (std::vector<DlpArgument>{argument, second}));
        }
    }
}

TEST(DlpArguments, AreWrittenInTheShortestForm) {
    for (const std::size_t size : {0U, 255U, 256U, 65535U}) {
        const DlpArgument argument{0x20, std::string(size, 'x')};
        const Form form = size <= 255 ? Form::Tiny : Form::Small;

        EXPECT_EQ(PackRequest(DlpRequest(DlpFunction::ReadRecord, argument.Data)),
                  Hex("20 01") + ArgumentIn(form, argument));
        EXPECT_EQ(PackResponse(DlpResponse(DlpFunction::ReadRecord, argument.Data)),
                  Hex("A0 01 0000") + ArgumentIn(form, argument));
    }
}

TEST(DlpArguments, OfMoreThan65535BytesAreRefusedBothWays) {
    const std::string tooLong(0x10000, 'x');

    EXPECT_EQ(Refusal([&] { PackRequest(DlpRequest(DlpFunction::WriteRecord, tooLong)); }),
              "an argument of 65536 bytes");
    EXPECT_EQ(Refusal([&] { PackResponse(DlpResponse(DlpFunction::ReadRecord, tooLong)); }),
              "an argument of 65536 bytes");
    EXPECT_EQ(Refusal([&] {
                  ReadRequest(Hex("20 01") + ArgumentIn(Form::Long, {0x20, tooLong}));
              }),
              "request: an argument of 65536 bytes");
    EXPECT_EQ(Refusal([] { ReadResponse(Hex("A0 01 0000 60 00 FFFFFFFF")); }),
              "answer: an argument of 4294967295 bytes");
}

TEST(DlpArguments, OfARecordOrBlockThatDoesNotFitAreRefused) {
    const std::string tooLong(0xFFFF, 'x');

    EXPECT_FALSE(GoesWell([&] { PackRequest(PackWriteRecord(1, {0, 0, 1, tooLong})); }));
    EXPECT_FALSE(GoesWell([&] { PackRequest(PackWriteResource(1, {0, 1, tooLong})); }));
    EXPECT_FALSE(GoesWell([&] { PackRequest(PackWriteAppBlock(1, tooLong)); }));
    EXPECT_TRUE(GoesWell([&] {
        PackRequest(PackWriteRecord(1, {0, 0, 1, std::string(LongestRecord, 'x')}));
    }));
    EXPECT_TRUE(GoesWell([&] { PackRequest(PackWriteAppBlock(1, std::string(LongestRecord, 'x'))); }));
}

TEST(DlpArguments, AreFoundByTheirIdsInAnyOrder) {
    DlpResponse response(DlpFunction::ReadSysInfo);
    response.Arguments = {{0x25, "unknown"}, {0x21, "second"}, {0x20, "first"}};

    const DlpResponse read = Answered(response);

    EXPECT_EQ(read.Argument(), "first");
    EXPECT_EQ(read.Argument(0x21), "second");
    EXPECT_EQ(read.Find(0x22), nullptr);
    EXPECT_EQ(Refusal([&] { read.Argument(0x22); }), "argument 34 is missing");
    EXPECT_EQ(Refusal([] { (void)DlpRequest(DlpFunction::OpenDB).Argument(); }), "argument 32 is missing");
}

TEST(DlpArguments, TwoInAnAnswerAreToldApart) {
    for (const char* product : {"", "abcd", "abc"}) {
        SysInfo info;
        info.ProductId = product;
        info.DlpMinor = 2;

        EXPECT_EQ(ReadSysInfo(Answered(PackSysInfo(info))), info);
    }
}

TEST(DlpMessage, CutOffAnywhereIsRefusedAndSoIsAnythingBehindIt) {
    const std::string request = PackRequest(PackOpenDB("MemoDB", true));
    const std::string response =
        Hex("92 02 0000 20 0E 04103000 00010000 00 04 00020000 21 0C 0001 0002 0003 0000 0000FFE1");
    for (std::size_t size = 0; size < request.size(); ++size)
        EXPECT_FALSE(GoesWell([&] { ReadRequest(request.substr(0, size)); })) << size;
    for (std::size_t size = 0; size < response.size(); ++size)
        EXPECT_FALSE(GoesWell([&] { ReadResponse(response.substr(0, size)); })) << size;

    EXPECT_EQ(Refusal([&] { ReadRequest(request + "x"); }), "request: 1 bytes behind the last argument");
    EXPECT_EQ(Refusal([&] { ReadResponse(response + "xy"); }), "answer: 2 bytes behind the last argument");
}

TEST(DlpMessage, ARequestIsNoAnswerAndAnAnswerNoRequest) {
    EXPECT_EQ(Refusal([] { ReadRequest(Hex("AE000000")); }), "request: an answer in its place");
    EXPECT_EQ(Refusal([] { ReadResponse(Hex("2E000000")); }), "answer: a request in its place");
}

TEST(DlpMessage, OfAFunctionThatNobodyKnowsIsReadAllTheSame) {
    EXPECT_EQ(static_cast<int>(ReadRequest(Hex("5C 00")).Function), 0x5C);
    EXPECT_EQ(static_cast<int>(ReadResponse(Hex("DC 00 0002")).Function), 0x5C);
}

TEST(DlpMessage, WhatIsPackedReadsTheSame) {
    Lots lots(91);
    for (int k = 0; k < 300; ++k) {
        DlpRequest request(static_cast<DlpFunction>(0x10 + lots.Below(0x2B)));
        request.Arguments = AnyArguments(lots);
        DlpResponse response(request.Function, static_cast<DlpError>(lots.Below(3) == 0 ? AnyU16(lots) : 0));
        if (response.Error == DlpError::None) response.Arguments = AnyArguments(lots);

        EXPECT_EQ(Asked(request), request);
        EXPECT_EQ(Answered(response), response);
    }
}

// ---- what the arguments hold ----

TEST(DlpContent, OfTheSystemReadsTheSame) {
    Lots lots(92);
    for (int k = 0; k < 300; ++k) {
        SysInfo info;
        info.RomVersion = AnyU32(lots);
        info.Localization = AnyU32(lots);
        info.ProductId = lots.Bytes(lots.Below(256));
        info.DlpMajor = AnyU16(lots);
        info.DlpMinor = AnyU16(lots);
        info.CompatMajor = AnyU16(lots);
        info.CompatMinor = AnyU16(lots);
        info.LongestRecord = AnyU32(lots);

        EXPECT_EQ(ReadSysInfo(Answered(PackSysInfo(info))), info);
    }
}

TEST(DlpContent, OfASystemThatTellsNoProtocolIsItsFirstVersion) {
    const SysInfo info = ReadSysInfo(WithArgument(DlpFunction::ReadSysInfo, "04103000 00010000 00 00"));

    EXPECT_EQ(info.DlpMajor, 1);
    EXPECT_EQ(info.DlpMinor, 0);
    EXPECT_EQ(info.LongestRecord, 0u);
}

TEST(DlpContent, OfASystemMayEndBehindItsProtocolsVersion) {
    DlpResponse response = WithArgument(DlpFunction::ReadSysInfo, "04103000 00010000 00 00");
    response.Arguments.push_back({0x21, Hex("0001 0002")});

    EXPECT_EQ(ReadSysInfo(response).DlpMinor, 2);
    EXPECT_EQ(ReadSysInfo(response).LongestRecord, 0u);

    response.Arguments[1].Data = Hex("0001 0002 0003 0000 00");
    EXPECT_FALSE(GoesWell([&] { ReadSysInfo(response); }));
}

TEST(DlpContent, OfTheUserReadsTheSame) {
    Lots lots(93);
    for (int k = 0; k < 300; ++k) {
        const UserInfo info{AnyU32(lots),  AnyU32(lots),  AnyU32(lots),
                            AnyDate(lots), AnyDate(lots), AnyText(lots, 0, 40)};

        EXPECT_EQ(ReadUserInfo(Answered(PackUserInfo(info))), info);
    }
}

TEST(DlpContent, OfAHandheldWithoutUserHasNoName) {
    const std::string bytes = Hex("90 01 0000 20 1E") + std::string(30, '\0');

    EXPECT_EQ(PackResponse(PackUserInfo({})), bytes);
    EXPECT_EQ(ReadUserInfo(ReadResponse(bytes)), UserInfo{});
}

TEST(DlpContent, OfTheUserEndsBeforeThePassword) {
    const std::string bytes = std::string(28, '\x01') + Hex("05 10") + "ANNA" + '\0' + std::string(16, 'p');

    EXPECT_EQ(ReadUserInfo(DlpResponse(DlpFunction::ReadUserInfo, bytes)).Name, "ANNA");
}

TEST(DlpContent, ANameOfMoreThan40BytesIsRefused) {
    const std::string name(41, 'N');
    EXPECT_EQ(Refusal([&] {
                  ReadUserInfo(DlpResponse(DlpFunction::ReadUserInfo,
                                           std::string(28, '\0') + Hex("2A 00") + name + '\0'));
              }),
              "user information: a name of more than 40 bytes");
    EXPECT_EQ(Refusal([&] {
                  ReadUserChange(DlpRequest(DlpFunction::WriteUserInfo,
                                            std::string(20, '\0') + Hex("10 2A") + name + '\0'));
              }),
              "user information: a name of more than 40 bytes");
}

TEST(DlpContent, OfAChangeOfTheUserReadsTheSame) {
    Lots lots(94);
    for (int k = 0; k < 300; ++k) {
        const UserChange change{AnyU8(lots),  AnyU32(lots),  AnyU32(lots),
                                AnyU32(lots), AnyDate(lots), AnyText(lots, 0, 40)};

        const UserChange read = ReadUserChange(Asked(PackUserChange(change)));

        EXPECT_EQ(read.Flags, change.Flags);
        EXPECT_EQ(read.UserId, change.UserId);
        EXPECT_EQ(read.ViewerId, change.ViewerId);
        EXPECT_EQ(read.LastSyncPC, change.LastSyncPC);
        EXPECT_EQ(read.SyncDate, change.SyncDate);
        EXPECT_EQ(read.Name, change.Name);
    }
}

TEST(DlpContent, OfAListReadsTheSame) {
    Lots lots(95);
    for (int k = 0; k < 200; ++k) {
        DatabaseList list{AnyU16(lots), lots.Below(2) == 0, {}};
        for (int count = lots.Below(21); count > 0; --count) list.Databases.push_back(AnyInfo(lots));

        const DatabaseList read = ReadDatabaseList(Answered(PackDatabaseList(list)));

        EXPECT_EQ(read.LastIndex, list.LastIndex);
        EXPECT_EQ(read.More, list.More);
        EXPECT_EQ(read.Databases, list.Databases);
    }
}

TEST(DlpContent, AListOfMoreDatabasesThanItsCountHoldsIsNotPacked) {
    DatabaseList list;
    list.Databases.resize(255);
    EXPECT_EQ(ReadDatabaseList(Answered(PackDatabaseList(list))).Databases.size(), 255u);

    list.Databases.resize(256);
    EXPECT_EQ(Refusal([&] { PackDatabaseList(list); }), "a list of 256 databases");
}

TEST(DlpContent, OfAListIsSteppedThroughByTheSizesThatItTells) {
    DatabaseInfo first, second;
    first.Name = "First";
    second.Name = "Second";
    std::string block = PackDatabaseInfo(first);
    block += std::string(20, 'x');
    block[0] = static_cast<char>(block.size());

    const DatabaseList read = ReadDatabaseList(
        DlpResponse(DlpFunction::ReadDBList, Hex("0001 00 02") + block + PackDatabaseInfo(second)));

    EXPECT_EQ(read.Databases, (std::vector<DatabaseInfo>{first, second}));
}

TEST(DlpContent, OfARequestForTheListReadsTheSame) {
    for (const unsigned first : {0U, 1U, 0xFFFFU}) {
        bool several = false;
        EXPECT_EQ(ReadListRequest(Asked(PackListRequest(static_cast<std::uint16_t>(first))), several), first);
        EXPECT_TRUE(several);
    }
    bool several = true;
    EXPECT_EQ(ReadListRequest(DlpRequest(DlpFunction::ReadDBList, Hex("80 00 0007")), several), 7);
    EXPECT_FALSE(several);
}

TEST(DlpContent, OfAFoundDatabaseReadsTheSame) {
    Lots lots(96);
    for (int k = 0; k < 200; ++k) {
        const DatabaseInfo info = AnyInfo(lots);

        EXPECT_EQ(ReadFound(Answered({DlpFunction::FindDB, lots.Bytes(10) + PackDatabaseInfo(info)})), info);
    }
}

TEST(DlpContent, OfARecordReadsTheSame) {
    Lots lots(97);
    for (int k = 0; k < 300; ++k) {
        RecordAnswer answer;
        answer.Record = {AnyU8(lots), static_cast<std::uint8_t>(lots.Below(16)), AnyU32(lots) & 0xFFFFFF,
                         lots.Bytes(lots.Below(lots.Below(9) == 0 ? 65505 : 50))};
        answer.Index = AnyU16(lots);
        answer.Size = std::max(AnyU16(lots), static_cast<std::uint16_t>(answer.Record.Data.size()));

        const RecordAnswer read = ReadRecordAnswer(Answered(PackRecord(DlpFunction::ReadRecord, answer)));

        EXPECT_EQ(read.Record, answer.Record);
        EXPECT_EQ(read.Index, answer.Index);
        EXPECT_EQ(read.Size, answer.Size);
    }
}

TEST(DlpContent, OfARecordWithMoreBytesThanItHasOrAnImpossibleCategoryIsRefused) {
    EXPECT_EQ(Refusal([] {
                  ReadRecordAnswer(WithArgument(DlpFunction::ReadRecord, "00000001 0000 0002 40 00 010203"));
              }),
              "record: more bytes than the record has");
    EXPECT_EQ(Refusal([] {
                  ReadRecordAnswer(WithArgument(DlpFunction::ReadRecord, "00000001 0000 0002 40 10 0102"));
              }),
              "record: category 16");
}

TEST(DlpContent, OfARecordsIdAreThe24LowBits) {
    EXPECT_EQ(ReadRecordAnswer(WithArgument(DlpFunction::ReadRecord, "AB123456 0000 0000 40 00")).Record.Id,
              0x123456u);
}

TEST(DlpContent, OfABlockOfAnotherSizeThanItSaysIsRefused) {
    EXPECT_EQ(ReadBlock(WithArgument(DlpFunction::ReadAppBlock, "0000")), "");
    EXPECT_EQ(Refusal([] { ReadBlock(WithArgument(DlpFunction::ReadAppBlock, "0003 0102")); }),
              "block: another size than it says");
    EXPECT_FALSE(GoesWell([] { ReadBlock(WithArgument(DlpFunction::ReadAppBlock, "0001 0102")); }));
}

TEST(DlpContent, CutOffAnywhereIsRefused) {
    DatabaseInfo info;
    info.Name = "Odd";
    const auto refusedUpTo = [](const std::string& whole, auto&& read) {
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_FALSE(GoesWell([&] { read(whole.substr(0, size)); })) << size;
        EXPECT_TRUE(GoesWell([&] { read(whole); }));
    };
    const auto answer = [](const std::string& bytes) { return DlpResponse(DlpFunction::ReadDBList, bytes); };

    refusedUpTo(PackDate({2026, 1, 1, 0, 0, 0}), [](const std::string& b) { ReadDate(b); });
    refusedUpTo(std::string(PackUserInfo({1, 2, 3, {}, {}, "ANNA"}).Argument()),
                [&](const std::string& b) { ReadUserInfo(answer(b)); });
    refusedUpTo(std::string(PackUserChange({1, 2, 3, 4, {}, "ANNA"}).Argument()),
                [&](const std::string& b) { ReadUserChange(DlpRequest(DlpFunction::WriteUserInfo, b)); });
    refusedUpTo(Hex("0001 00 01") + PackDatabaseInfo(info),
                [&](const std::string& b) { ReadDatabaseList(answer(b)); });
    refusedUpTo(std::string(10, '\0') + PackDatabaseInfo(info),
                [&](const std::string& b) { ReadFound(answer(b)); });
    refusedUpTo("\x01", [&](const std::string& b) { ReadHandle(answer(b)); });
    refusedUpTo(Hex("0001"), [&](const std::string& b) { ReadRecordCount(answer(b)); });
    refusedUpTo(Hex("00000001 0000 0000 40 00"), [&](const std::string& b) { ReadRecordAnswer(answer(b)); });
    refusedUpTo(Hex("04103000 00010000 00 04 00020000"),
                [&](const std::string& b) { ReadSysInfo(answer(b)); });
    refusedUpTo(Hex("80 00 0007"), [](const std::string& b) {
        bool several = false;
        ReadListRequest(DlpRequest(DlpFunction::ReadDBList, b), several);
    });
}

TEST(DlpContent, OfADatabaseInAListWithAWrongSizeOrNameIsRefused) {
    const auto refusal = [](std::string block) {
        return Refusal([&] { ReadFound(DlpResponse(DlpFunction::FindDB, std::string(10, '\0') + block)); });
    };
    DatabaseInfo info;
    info.Name = "Some";
    std::string block = PackDatabaseInfo(info);
    block[0] = 43;
    EXPECT_EQ(refusal(block), "found database: a database of 43 bytes in a list");
    block[0] = 48; // the name ends behind it
    EXPECT_EQ(refusal(block), "database in a list: a text without its end");
    const std::string name(32, 'N');
    block = PackDatabaseInfo(info).substr(0, 44) + name + '\0' + '\0';
    block[0] = static_cast<char>(block.size());
    EXPECT_EQ(refusal(block), "database in a list: a name of more than 31 bytes");
}

TEST(DlpError, EachHasWordsOfItsOwn) {
    std::vector<std::string> words;
    for (int code = 0; code <= 0x15; ++code) words.push_back(WordsOf(static_cast<DlpError>(code)));
    std::sort(words.begin(), words.end());

    EXPECT_EQ(std::adjacent_find(words.begin(), words.end()), words.end());
    EXPECT_EQ(WordsOf(DlpError::NotFound), "not found");
    EXPECT_EQ(WordsOf(static_cast<DlpError>(0x7F)), "error 127");
}

// ---- dates ----

TEST(DlpDates, From1904To2039AreTheDaysOfTheCalendar) {
    std::uint64_t midnight = 0;
    for (int year = 1904; year <= 2039; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= DaysIn(year, month); ++day) {
                for (const std::uint32_t clock : {0U, 1U, 43200U, 86399U}) {
                    const DlpDate date{static_cast<std::uint16_t>(year),
                                       static_cast<std::uint8_t>(month),
                                       static_cast<std::uint8_t>(day),
                                       static_cast<std::uint8_t>(clock / 3600),
                                       static_cast<std::uint8_t>(clock % 3600 / 60),
                                       static_cast<std::uint8_t>(clock % 60)};
                    const auto seconds = static_cast<std::uint32_t>(midnight + clock);
                    ASSERT_EQ(date.Seconds(), seconds) << year << "-" << month << "-" << day;
                    if (seconds == 0) continue; // the first of them all counts as none
                    ASSERT_EQ(DlpDate::FromSeconds(seconds), date) << seconds;
                }
                midnight += 86400;
            }
        }
    }
    EXPECT_LT(midnight, 0x100000000U);
}

TEST(DlpDates, OfTheUnixEpochAndTheLastSecondAreKnown) {
    EXPECT_EQ((DlpDate{1970, 1, 1, 0, 0, 0}.Seconds()), 2082844800u);
    EXPECT_EQ(DlpDate::FromSeconds(0xFFFFFFFF), (DlpDate{2040, 2, 6, 6, 28, 15}));
    EXPECT_EQ((DlpDate{2040, 2, 6, 6, 28, 15}.Seconds()), 0xFFFFFFFFu);
    EXPECT_EQ((DlpDate{2040, 2, 6, 6, 28, 16}.Seconds()), 0u);
}

TEST(DlpDates, NoneIsZeroBothWays) {
    EXPECT_EQ(DlpDate{}.Seconds(), 0u);
    EXPECT_EQ(DlpDate::FromSeconds(0), DlpDate{});
}

TEST(DlpDates, OfNoDayAreNone) {
    for (const DlpDate& date :
         {DlpDate{1903, 12, 31, 23, 59, 59}, DlpDate{2026, 0, 1, 0, 0, 0}, DlpDate{2026, 13, 1, 0, 0, 0},
          DlpDate{2026, 1, 0, 0, 0, 0}, DlpDate{2026, 1, 32, 0, 0, 0}, DlpDate{2026, 2, 29, 0, 0, 0},
          DlpDate{2000, 2, 30, 0, 0, 0}, DlpDate{2026, 4, 31, 0, 0, 0}, DlpDate{2026, 1, 1, 24, 0, 0},
          DlpDate{2026, 1, 1, 0, 60, 0}, DlpDate{2026, 1, 1, 0, 0, 60}, DlpDate{65535, 12, 31, 0, 0, 0},
          DlpDate{2100, 2, 28, 0, 0, 0}}) {
        EXPECT_EQ(date.Seconds(), 0u) << PackDate(date);
    }
    EXPECT_NE((DlpDate{2028, 2, 29, 0, 0, 0}.Seconds()), 0u);
    EXPECT_NE((DlpDate{2000, 2, 29, 0, 0, 0}.Seconds()), 0u);
}

TEST(DlpDates, OfAnySecondComeBack) {
    Lots lots(98);
    for (int k = 0; k < 20000; ++k) {
        const std::uint32_t seconds = AnyU32(lots);

        ASSERT_EQ(DlpDate::FromSeconds(seconds).Seconds(), seconds);
        ASSERT_EQ(ReadDate(PackDate(DlpDate::FromSeconds(seconds))), DlpDate::FromSeconds(seconds));
    }
}
