#include "handheld/HandheldTest.h"

#include "handheld/DlpServer.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

using namespace std::string_literals;

class DlpServerTest : public HandheldTest {
protected:
    /// Starts a session.
    DlpServer& Session() { return server_.emplace(Its()); }

    DlpResponse Ask(const DlpRequest& request) {
        const DlpResponse response = ReadResponse(server_->Answer(PackRequest(request)));
        EXPECT_EQ(response.Function, request.Function);
        return response;
    }
    DlpError ErrorOf(const DlpRequest& request) {
        const std::string answer = server_->Answer(PackRequest(request));
        const DlpError error = ReadResponse(answer).Error;
        constexpr std::size_t NoArguments = 4; // bytes: function, their number, the error
        EXPECT_TRUE(error == DlpError::None || (answer.size() == NoArguments && answer[1] == '\0'));
        return error;
    }
    DlpResponse Well(const DlpRequest& request) {
        const DlpResponse response = Ask(request);
        EXPECT_EQ(response.Error, DlpError::None) << WordsOf(response.Error);
        return response;
    }
    /// The data of a good answer's first argument.
    std::string Data(const DlpRequest& request) { return std::string(Well(request).Argument()); }
    std::uint8_t Open(const std::string& name, bool forWriting = true) {
        return ReadHandle(Well(PackOpenDB(name, forWriting)));
    }
    std::uint32_t Write(std::uint8_t handle, const DatabaseRecord& record) {
        const std::string id = Data(PackWriteRecord(handle, record));
        return ByteReader(id, "id").U32();
    }

    void GivenMemo(std::size_t records = 3) {
        Database database;
        database.Name = "MemoDB";
        database.Type = FourCharacters("DATA");
        database.Creator = FourCharacters("memo");
        database.AppInfo = "categories";
        for (std::size_t k = 0; k < records; ++k) {
            database.Records.push_back(
                {0, 0, static_cast<std::uint32_t>(100 + k), "memo " + std::to_string(k)});
        }
        Its().Store.Save(database);
    }
    void GivenProgram() {
        Database program;
        program.Name = "Tramble";
        program.Flags = ResourceDatabase;
        program.Type = FourCharacters("appl");
        program.Creator = FourCharacters("ZUK2");
        program.Resources = {{FourCharacters("code"), 0, "abc"}, {FourCharacters("code"), 1, "defg"}};
        Its().Store.Save(program);
    }

    std::optional<DlpServer> server_;
};

DlpRequest Request(DlpFunction function, const ByteWriter& argument, std::uint8_t id = 0x20) {
    DlpRequest request(function);
    request.Arguments.push_back({id, argument.Bytes()});
    return request;
}

ByteWriter Handle(std::uint8_t handle) {
    return ByteWriter().U8(handle);
}

std::string Answered(DlpServer& server, std::string_view request) {
    return server.Answer(request);
}

// ---- the session and the system ----

TEST_F(DlpServerTest, TellsWhichSystemItIsByteByByte) {
    GivenHandheld();

    EXPECT_EQ(Answered(Session(), "\x12\x01\x20\x04\x00\x01\x00\x04"s),
              "\x92\x02\x00\x00\x20\x0E\x04\x10\x30\x00\x00\x01\x00\x00\x00\x04\x00\x02\x00\x00"
              "\x21\x0C\x00\x01\x00\x02\x00\x03\x00\x00\x00\x00\xFF\xE1"s);
    EXPECT_EQ(Ask(DlpRequest(DlpFunction::ReadSysInfo)).Error, DlpError::None);
}

TEST_F(DlpServerTest, TheUserIsReadAndWrittenByFlags) {
    GivenHandheld();
    Session();
    UserChange change;
    change.Flags = UserChange::SetLastSyncPC | UserChange::SetName;
    change.UserId = 1;
    change.LastSyncPC = 77;
    change.Name = "Berta";

    Well(PackUserChange(change));

    const UserInfo user = ReadUserInfo(Well(DlpRequest(DlpFunction::ReadUserInfo)));
    EXPECT_EQ(user.UserId, 4711U);
    EXPECT_EQ(user.LastSyncPC, 77U);
    EXPECT_EQ(user.Name, "Berta");
    EXPECT_EQ(Again().Settings.User.Name, "Berta");
}

TEST_F(DlpServerTest, ADateThatIsNoneIsRefusedInTheUser) {
    GivenHandheld();
    Session();
    UserChange change;
    change.Flags = UserChange::SetSyncDate | UserChange::SetName;
    change.SyncDate = {2026, 13, 1, 0, 0, 0};
    change.Name = "Berta";

    EXPECT_EQ(ErrorOf(PackUserChange(change)), DlpError::Parameter);

    EXPECT_EQ(Its().Settings.User.Name, "Anna Petrow");
}

TEST_F(DlpServerTest, ADateOfAYearThatNoHandheldKnowsIsRefusedInTheUser) {
    GivenHandheld();
    Session();
    UserChange change;
    change.Flags = UserChange::SetSyncDate;
    change.SyncDate = {1900, 1, 1, 0, 0, 0};

    EXPECT_EQ(ErrorOf(PackUserChange(change)), DlpError::Parameter);

    change.Flags = UserChange::SetSyncDate | UserChange::SetLastSyncPC;
    change.SyncDate = {1904, 1, 1, 0, 0, 0};
    Well(PackUserChange(change));
    EXPECT_EQ(Again().Settings.User.LastSync, change.SyncDate);
}

TEST_F(DlpServerTest, TheClockIsToldAndSet) {
    GivenHandheld();
    Session();
    EXPECT_EQ(Data(DlpRequest(DlpFunction::GetSysDateTime)), "\x07\xEA\x03\x05\x08\x00\x00\x00"s);

    Well({DlpFunction::SetSysDateTime, PackDate({2026, 3, 5, 8, 0, 30})});

    EXPECT_EQ(ReadDate(Data(DlpRequest(DlpFunction::GetSysDateTime))), (DlpDate{2026, 3, 5, 8, 0, 30}));
    EXPECT_EQ(ErrorOf({DlpFunction::SetSysDateTime, PackDate({})}), DlpError::Parameter);
    EXPECT_EQ(ErrorOf({DlpFunction::SetSysDateTime, "\x07"s}), DlpError::ArgumentSize);
}

TEST_F(DlpServerTest, TheOneCardTellsItsMemory) {
    GivenHandheld();
    GivenMemo();
    Session();

    const std::string cardBytes = Data({DlpFunction::ReadStorageInfo, "\0\0"s});
    ByteReader card(cardBytes, "card");
    card.Skip(4);
    const std::size_t size = card.U8();
    EXPECT_EQ(size, card.Left() + 1);
    EXPECT_EQ(size % 2, 0U);
    card.Skip(1 + 2 + 8 + 4);
    EXPECT_EQ(card.U32(), 16U << 20);
    EXPECT_EQ(card.U32(), (16U << 20) - Its().Store.Used());

    EXPECT_EQ(ErrorOf({DlpFunction::ReadStorageInfo, "\1\0"s}), DlpError::NotFound);
}

TEST_F(DlpServerTest, OpenConduitGoesOnUntilTheUserCancels) {
    GivenHandheld();
    Session();
    EXPECT_EQ(ErrorOf(DlpRequest(DlpFunction::OpenConduit)), DlpError::None);

    server_->Cancel();

    EXPECT_EQ(Answered(*server_, "\x2E\x00"s), "\xAE\x00\x00\x12"s);
    EXPECT_EQ(ErrorOf(DlpRequest(DlpFunction::ReadUserInfo)), DlpError::None);
}

TEST_F(DlpServerTest, TheFirstEntryOfASessionWipesTheLogBefore) {
    GivenHandheld();
    Its().WriteLog("of yesterday");
    Session();

    Well(PackSyncLog("one\n"));
    Well(PackSyncLog("\xC4two\n"));

    EXPECT_EQ(Bytes(Place() + "log.txt"), "one\n\xC3\x84two\n");
}

TEST_F(DlpServerTest, ASessionWithoutAnEntryWipesTheLogAtItsEnd) {
    GivenHandheld();
    Its().WriteLog("of yesterday");
    Session();

    Well(PackEndOfSync(EndCode::Normal));

    EXPECT_EQ(Bytes(Place() + "log.txt"), "");
}

TEST_F(DlpServerTest, ALogBeyondItsLimitIsRefused) {
    GivenHandheld();
    Session();
    Well(PackSyncLog(std::string(2000, 'a')));

    EXPECT_EQ(ErrorOf(PackSyncLog(std::string(48, 'b'))), DlpError::LimitExceeded);
    EXPECT_EQ(ErrorOf(PackSyncLog(std::string(47, 'b'))), DlpError::None);
}

TEST_F(DlpServerTest, AGoodEndIsWrittenDownAsTheLastGoodSync) {
    GivenHandheld();
    Session();

    Well(PackEndOfSync(EndCode::Normal));

    EXPECT_EQ(server_->Ended(), EndCode::Normal);
    EXPECT_EQ(Again().Settings.User.LastGoodSync, (DlpDate{2026, 3, 5, 8, 0, 0}));
    EXPECT_EQ(Its().Settings.User.LastSync, (DlpDate{2026, 3, 5, 8, 0, 0}));
    EXPECT_EQ(Its().Settings.LastEnd, "done");
}

TEST_F(DlpServerTest, AnEndByTheDesktopIsNoGoodSync) {
    GivenHandheld();
    Session();

    Well(PackEndOfSync(EndCode::Cancelled));

    EXPECT_EQ(Again().Settings.User.LastGoodSync, DlpDate{});
    EXPECT_EQ(Its().Settings.User.LastSync, (DlpDate{2026, 3, 5, 8, 0, 0}));
    EXPECT_EQ(Its().Settings.LastEnd, "ended by the desktop, code 2");
}

TEST_F(DlpServerTest, BehindTheEndNothingIsAnswered) {
    GivenHandheld();
    Session();
    Well(PackEndOfSync(EndCode::Normal));

    EXPECT_EQ(ErrorOf(DlpRequest(DlpFunction::ReadUserInfo)), DlpError::System);
}

TEST_F(DlpServerTest, ARestartIsPutOffToTheEnd) {
    GivenHandheld();
    Session();
    EXPECT_FALSE(server_->IsRestartAsked());

    Well(DlpRequest(DlpFunction::ResetSystem));

    EXPECT_TRUE(server_->IsRestartAsked());
    EXPECT_EQ(ErrorOf(DlpRequest(DlpFunction::ReadUserInfo)), DlpError::None);
}

TEST_F(DlpServerTest, TheDesktopsAddressIsWrittenByFlagsAndReadBack) {
    GivenHandheld();
    Session();
    ByteWriter change;
    change.U8(0x80 | 0x40 | 0x20).U8(1).Put(std::string(16, '\0')).U16(5).U16(12).U16(9);
    change.Text("desk").Text("192.168.2.4").Text("nothing!");

    Well(Request(DlpFunction::WriteNetSyncInfo, change));

    const std::string infoBytes = Data(DlpRequest(DlpFunction::ReadNetSyncInfo));
    ByteReader info(infoBytes, "info");
    EXPECT_EQ(info.U8(), 1U);
    info.Skip(1 + 16);
    EXPECT_EQ(info.U16(), 5U);
    EXPECT_EQ(info.U16(), 12U);
    EXPECT_EQ(info.U16(), 0U);
    EXPECT_EQ(info.Rest(), "desk\0"s
                           "192.168.2.4\0"s);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::WriteNetSyncInfo,
                              ByteWriter().U8(0xF0).U8(1).Put(std::string(16, '\0')).U16(500).U16(0).U16(0))),
              DlpError::ArgumentSize);
}

TEST_F(DlpServerTest, TheRomsVersionIsTheOnlyFeature) {
    GivenHandheld();
    Session();

    EXPECT_EQ(Data({DlpFunction::ReadFeature, "psys\0\1"s}), "\x04\x10\x30\x00"s);
    EXPECT_EQ(ErrorOf({DlpFunction::ReadFeature, "psys\0\2"s}), DlpError::NotFound);
    EXPECT_EQ(ErrorOf({DlpFunction::ReadFeature, "ZUK2\0\1"s}), DlpError::NotFound);
}

// ---- malformed and unknown requests ----

TEST_F(DlpServerTest, WhatItDoesNotKnowIsAnsweredSo) {
    GivenHandheld();
    Session();
    const std::string known =
        "\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F\x20\x21\x22\x23\x24"
        "\x25\x26\x27\x29\x2A\x2B\x2C\x2E\x2F\x30\x31\x36\x37\x38\x39\x3A";
    for (unsigned id = 0; id < 0x80; ++id) {
        const std::string request{static_cast<char>(id), '\0'};
        const std::string answer = server_->Answer(request);
        const std::string unknown = static_cast<char>(id | 0x80) + "\x00\x00\x02"s;
        EXPECT_EQ(answer != unknown, known.find(static_cast<char>(id)) != std::string::npos) << id;
        EXPECT_FALSE(server_->Ended());
    }
}

TEST_F(DlpServerTest, ABadWrapperAMissingAndAShortArgumentAreToldApart) {
    GivenHandheld();
    GivenMemo();
    Session();

    EXPECT_EQ(Answered(*server_, ""), "\x80\x00\x00\x13"s);
    EXPECT_EQ(Answered(*server_, "\x17"), "\x97\x00\x00\x13"s);
    EXPECT_EQ(Answered(*server_, "\x17\x01\x20\x09\x00"s), "\x97\x00\x00\x13"s);
    EXPECT_EQ(Answered(*server_, "\x17\x00more"s), "\x97\x00\x00\x13"s);
    EXPECT_EQ(Answered(*server_, "\x17\x00"s), "\x97\x00\x00\x14"s);
    EXPECT_EQ(Answered(*server_, "\x17\x01\x21\x00"s), "\x97\x00\x00\x14"s);
    EXPECT_EQ(Answered(*server_, "\x17\x01\x20\x01\x00"s), "\x97\x00\x00\x15"s);
    EXPECT_EQ(Answered(*server_, "\x17\x01\x20\x04\x00\x80zz"s), "\x97\x00\x00\x15"s);
}

TEST_F(DlpServerTest, EveryRequestThatNeedsAnArgumentAsksForIt) {
    GivenHandheld();
    GivenMemo();
    Session();
    Open("MemoDB");
    const std::string without = "\x10\x12\x13\x29\x2E\x36";
    const std::string with =
        "\x11\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F\x20\x21\x22\x23\x24\x25\x26\x27\x2A\x2B"
        "\x2C\x2F\x30\x31\x37\x38\x39\x3A";
    for (const char id : without)
        EXPECT_EQ(ErrorOf(DlpRequest(static_cast<DlpFunction>(id))), DlpError::None);
    for (const char id : with) {
        EXPECT_EQ(ErrorOf(DlpRequest(static_cast<DlpFunction>(id))), DlpError::ArgumentMissing) << int{id};
        // ReadOpenDBInfo and its like ask for a handle alone; none at all is too short for all of them.
        EXPECT_EQ(ErrorOf({static_cast<DlpFunction>(id), {}}), DlpError::ArgumentSize) << int{id};
    }
}

TEST_F(DlpServerTest, AnArgumentInAnyFormIsRead) {
    GivenHandheld();
    GivenMemo();
    Session();

    const std::string answer = server_->Answer("\x17\x01\xA0\x00\x00\x09\x00\x80MemoDB\0"s);
    EXPECT_EQ(answer, "\x97\x01\x00\x00\x20\x01\x01"s);
    EXPECT_EQ(server_->Answer("\x19\x01\x60\x00\x00\x00\x00\x01\x01"s), "\x99\x00\x00\x00"s);
}

// ---- databases ----

TEST_F(DlpServerTest, TheListComesTwentyAPieceOrOneByOne) {
    GivenHandheld();
    for (int k = 0; k < 45; ++k) {
        Database database;
        database.Name = "DB" + std::to_string(100 + k);
        database.Version = static_cast<std::uint16_t>(k);
        Its().Store.Save(database);
    }
    Again();
    Session();

    std::vector<std::size_t> pieces;
    std::vector<std::string> names;
    for (std::uint16_t next = 0;;) {
        const DlpResponse response = Ask(PackListRequest(next));
        if (response.Error == DlpError::NotFound) break;
        const DatabaseList list = ReadDatabaseList(response);
        pieces.push_back(list.Databases.size());
        for (const DatabaseInfo& info : list.Databases) names.push_back(info.Name);
        EXPECT_EQ(list.More, names.size() < 45);
        next = static_cast<std::uint16_t>(list.LastIndex + 1);
    }

    EXPECT_EQ(pieces, (std::vector<std::size_t>{20, 20, 5}));
    EXPECT_EQ(names.size(), 45U);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    const DatabaseList one = ReadDatabaseList(Well({DlpFunction::ReadDBList, "\x80\x00\x00\x07"s}));
    ASSERT_EQ(one.Databases.size(), 1U);
    EXPECT_EQ(one.Databases[0].Index, 7U);
    EXPECT_EQ(one.Databases[0].Version, 7U);
    EXPECT_EQ(ErrorOf({DlpFunction::ReadDBList, "\x40\x00\x00\x00"s}), DlpError::NotFound);
}

TEST_F(DlpServerTest, OneDatabaseIsOpenAtATime) {
    GivenHandheld();
    GivenMemo();
    GivenProgram();
    Session();
    EXPECT_EQ(ErrorOf(PackReadOpenDBInfo(1)), DlpError::NoneOpen);

    const std::uint8_t handle = Open("MemoDB");

    DatabaseHeader other;
    other.Name = "Other";
    EXPECT_EQ(handle, 1U);
    EXPECT_EQ(ErrorOf(PackOpenDB("Tramble", false)), DlpError::TooManyOpen);
    EXPECT_EQ(ErrorOf(PackCreateDB(other)), DlpError::TooManyOpen);
    EXPECT_EQ(ErrorOf(PackOpenDB("Nothing", false)), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(PackReadOpenDBInfo(2)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(PackDeleteDB("MemoDB")), DlpError::AlreadyOpen);
    EXPECT_EQ(ReadRecordCount(Well(PackReadOpenDBInfo(handle))), 3U);
    Well(PackCloseDB(handle));
    EXPECT_EQ(ErrorOf(PackCloseDB(handle)), DlpError::NoneOpen);
    EXPECT_EQ(Open("Tramble"), 2U);
}

TEST_F(DlpServerTest, CloseAllClosesAndIsContentWithNothing) {
    GivenHandheld();
    GivenMemo();
    Session();
    Open("MemoDB");

    Well(Request(DlpFunction::CloseDB, {}, 0x21));
    Well(Request(DlpFunction::CloseDB, {}, 0x21));

    EXPECT_EQ(ErrorOf(PackReadOpenDBInfo(1)), DlpError::NoneOpen);
}

TEST_F(DlpServerTest, ADatabaseThatIsMadeIsThereAtOnceAndItsRecordsWhenItIsClosed) {
    GivenHandheld();
    Session();
    DatabaseHeader header;
    header.Name = "New";
    header.Type = FourCharacters("DATA");
    header.Creator = FourCharacters("ZUK2");
    header.Version = 5;
    header.Flags = BackupDatabase;

    const std::uint8_t handle = ReadHandle(Well(PackCreateDB(header)));
    const std::uint32_t id = Write(handle, {DirtyRecord, 3, 0, "first"});

    EXPECT_EQ(ErrorOf(PackCreateDB(header)), DlpError::TooManyOpen);
    EXPECT_TRUE(Handheld(Place()).Store.Load("New").Records.empty());
    Well(PackCloseDB(handle));
    const Database kept = Handheld(Place()).Store.Load("New");
    EXPECT_EQ(kept.Records, (std::vector<DatabaseRecord>{{DirtyRecord, 3, id, "first"}}));
    EXPECT_EQ(id, 0x1001U);
    EXPECT_EQ(kept.Creator, FourCharacters("ZUK2"));
    EXPECT_EQ(kept.Version, 5U);
    EXPECT_EQ(kept.Flags, BackupDatabase);
    EXPECT_EQ(DlpDate::FromSeconds(kept.Created), (DlpDate{2026, 3, 5, 8, 0, 0}));
    EXPECT_EQ(ErrorOf(PackCreateDB(header)), DlpError::Exists);
}

TEST_F(DlpServerTest, ANameOfNothingOrOfTooMuchIsRefused) {
    GivenHandheld();
    Session();
    ByteWriter empty, longer;
    empty.U32(0).U32(0).U8(0).U8(0).U16(0).U16(0).Text("");
    longer.U32(0).U32(0).U8(0).U8(0).U16(0).U16(0).Text(std::string(32, 'x'));

    EXPECT_EQ(ErrorOf(Request(DlpFunction::CreateDB, empty)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::CreateDB, longer)), DlpError::Parameter);
}

TEST_F(DlpServerTest, ADeletedDatabaseIsGone) {
    GivenHandheld();
    GivenMemo();
    Session();

    Well(PackDeleteDB("MemoDB"));

    EXPECT_EQ(ErrorOf(PackDeleteDB("MemoDB")), DlpError::NotFound);
    EXPECT_FALSE(Exists(Place() + "databases/MemoDB.pdb"));
}

TEST_F(DlpServerTest, ATableIsReplacedUnderAnotherNameAndRenamed) {
    GivenHandheld();
    GivenMemo();
    Session();
    DatabaseHeader header;
    header.Name = "MemoDB~";
    const std::uint8_t handle = ReadHandle(Well(PackCreateDB(header)));
    Write(handle, {0, 0, 0, "new"});

    Well(PackSetDBInfo(handle, 1, ""));
    EXPECT_EQ(ErrorOf(PackSetDBInfo(handle, 0xFFFF, "MemoDB")), DlpError::Exists);
    Well(PackDeleteDB("MemoDB"));
    Well(PackSetDBInfo(handle, 0xFFFF, "MemoDB"));
    Well(PackCloseDB(handle));

    const Handheld now(Place());
    EXPECT_EQ(now.Store.Entries().size(), 1U);
    EXPECT_EQ(now.Store.Load("MemoDB").Version, 1U);
    EXPECT_EQ(now.Store.Load("MemoDB").Records[0].Data, "new");
    ASSERT_EQ(server_->Activities().size(), 1U);
    EXPECT_EQ(server_->Activities()[0].Name, "MemoDB");
    EXPECT_EQ(server_->Activities()[0].Written, 1U);
    EXPECT_FALSE(server_->Activities()[0].IsDeleted);
}

TEST_F(DlpServerTest, ARenamingNeedsNoRoomForBoth) {
    HandheldSettings settings = Anna();
    settings.Memory = 3000;
    GivenHandheld(settings);
    Session();
    DatabaseHeader header;
    header.Name = "Old";
    const std::uint8_t handle = ReadHandle(Well(PackCreateDB(header)));
    Write(handle, {0, 0, 0, std::string(2500, 'x')});

    Well(PackSetDBInfo(handle, 0xFFFF, "New"));

    EXPECT_EQ(Handheld(Place()).Store.Load("New").Records[0].Data.size(), 2500U);
    EXPECT_FALSE(Handheld(Place()).Store.Has("Old"));
}

TEST_F(DlpServerTest, AVersionThatIsSetIsKeptAtOnceWithWhatWasWritten) {
    GivenHandheld();
    Session();
    DatabaseHeader header;
    header.Name = "T";
    const std::uint8_t handle = ReadHandle(Well(PackCreateDB(header)));
    Write(handle, {0, 0, 0, "row"});

    Well(PackSetDBInfo(handle, 1, ""));

    EXPECT_EQ(Handheld(Place()).Store.Load("T").Version, 1U);
    EXPECT_EQ(Handheld(Place()).Store.Load("T").Records.size(), 1U);
}

TEST_F(DlpServerTest, ADatabaseIsFoundByNameByHandleAndByItsKind) {
    GivenHandheld();
    GivenMemo();
    GivenProgram();
    Session();

    EXPECT_EQ(ReadFound(Well(PackFindByName("Tramble"))).Creator, FourCharacters("ZUK2"));
    EXPECT_EQ(ErrorOf(PackFindByName("tramble")), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::FindDB, ByteWriter().U8(0x80).U8(1), 0x21)), DlpError::NoneOpen);

    const std::uint8_t handle = Open("MemoDB");
    const DlpResponse sizes = Well(Request(DlpFunction::FindDB, ByteWriter().U8(0xE0).U8(handle), 0x21));
    EXPECT_EQ(ReadFound(sizes).Name, "MemoDB");
    EXPECT_EQ(ReadFound(sizes).Index, 0xFFFFU);
    ByteReader counts(sizes.Argument(0x21), "sizes");
    EXPECT_EQ(counts.U32(), 3U);
    EXPECT_EQ(counts.U32(), 78U + 3 * 8 + 2 + 10 + 3 * 6);
    EXPECT_EQ(counts.U32(), 18U);
    EXPECT_EQ(counts.U32(), 10U);
    EXPECT_EQ(counts.U32(), 0U);
    EXPECT_EQ(counts.U32(), 6U);

    const auto search = [&](std::uint8_t flags, std::uint32_t type, std::uint32_t creator) {
        return Request(DlpFunction::FindDB, ByteWriter().U8(0x80).U8(flags).U32(type).U32(creator), 0x22);
    };
    EXPECT_EQ(ReadFound(Well(search(0x80, 0, 0))).Name, "MemoDB");
    EXPECT_EQ(ReadFound(Well(search(0, 0, 0))).Name, "Tramble");
    EXPECT_EQ(ErrorOf(search(0, 0, 0)), DlpError::NotFound);
    EXPECT_EQ(ReadFound(Well(search(0x80, FourCharacters("appl"), 0))).Name, "Tramble");
    EXPECT_EQ(ErrorOf(search(0x80, FourCharacters("appl"), FourCharacters("memo"))), DlpError::NotFound);
}

TEST_F(DlpServerTest, DatesFlagsAndKindOfAnOpenDatabaseAreSet) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    ByteWriter change;
    change.U8(handle).U8(0).U16(0).U16(BackupDatabase).U16(9);
    change.Put(PackDate({2000, 1, 2, 3, 4, 5})).Put(PackDate({})).Put(PackDate({2001, 1, 1, 0, 0, 0}));
    change.U32(FourCharacters("TYPE")).U32(0).Text("");
    ByteWriter toResources;
    toResources.U8(handle)
        .U8(0)
        .U16(0)
        .U16(ResourceDatabase)
        .U16(0xFFFF)
        .Put(std::string(24, '\0'))
        .U32(0)
        .U32(0)
        .Text("");

    Well(Request(DlpFunction::SetDBInfo, change));

    const Database kept = Handheld(Place()).Store.Load("MemoDB");
    EXPECT_EQ(kept.Flags, BackupDatabase);
    EXPECT_EQ(kept.Version, 9U);
    EXPECT_EQ(DlpDate::FromSeconds(kept.Created), (DlpDate{2000, 1, 2, 3, 4, 5}));
    EXPECT_EQ(DlpDate::FromSeconds(kept.BackedUp), (DlpDate{2001, 1, 1, 0, 0, 0}));
    EXPECT_EQ(kept.Type, FourCharacters("TYPE"));
    EXPECT_EQ(kept.Creator, FourCharacters("memo"));
    EXPECT_EQ(ErrorOf(Request(DlpFunction::SetDBInfo, toResources)), DlpError::Parameter);
}

TEST_F(DlpServerTest, BlocksAreReadInPiecesWrittenAndFreed) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    const auto piece = [&](unsigned offset, unsigned count) {
        return Request(DlpFunction::ReadAppBlock, ByteWriter().U8(handle).U8(0).U16(offset).U16(count));
    };

    EXPECT_EQ(ReadBlock(Well(PackReadAppBlock(handle))), "categories");
    EXPECT_EQ(Data(piece(2, 3)), "\x00\x0Ateg"s);
    EXPECT_EQ(Data(piece(10, 0xFFFF)), "\x00\x0A"s);
    EXPECT_EQ(ErrorOf(piece(11, 1)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::ReadSortBlock, ByteWriter().U8(handle).U8(0).U16(0).U16(0xFFFF))),
              DlpError::NotFound);
    Well(PackWriteSortBlock(handle, "order"));
    Well(PackWriteAppBlock(handle, ""));
    EXPECT_EQ(ErrorOf(PackReadAppBlock(handle)), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::WriteAppBlock, ByteWriter().U8(handle).U8(0).U16(5).Put("four"))),
              DlpError::ArgumentSize);
    Well(PackCloseDB(handle));
    EXPECT_EQ(Again().Store.Load("MemoDB").SortInfo, "order");
    EXPECT_EQ(Its().Store.Load("MemoDB").AppInfo, "");
}

TEST_F(DlpServerTest, WhatIsOpenForReadingIsNotWritten) {
    GivenHandheld();
    GivenMemo();
    GivenProgram();
    Session();
    std::uint8_t handle = Open("MemoDB", false);

    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, "x"})), DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(PackWriteAppBlock(handle, "x")), DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(PackSetDBInfo(handle, 1, "")), DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::DeleteRecord, ByteWriter().U8(handle).U8(0x80).U32(0))),
              DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::CleanUpDatabase, Handle(handle))), DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::MoveCategory, ByteWriter().U8(handle).U8(0).U8(1).U8(0))),
              DlpError::ReadOnly);
    Well(PackCloseDB(handle));
    handle = Open("Tramble", false);
    EXPECT_EQ(ErrorOf(PackWriteResource(handle, {1, 1, "x"})), DlpError::ReadOnly);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::DeleteResource, ByteWriter().U8(handle).U8(0x80).U32(0).U16(0))),
              DlpError::ReadOnly);
}

TEST_F(DlpServerTest, ADamagedDatabaseCannotBeOpened) {
    GivenHandheld();
    GivenMemo();
    std::string bytes = Bytes(Place() + "databases/MemoDB.pdb");
    bytes.resize(90);
    GivenFile("handheld/databases/MemoDB.pdb", bytes);
    Again();
    Session();

    EXPECT_EQ(ErrorOf(PackOpenDB("MemoDB", false)), DlpError::CannotOpen);
    EXPECT_EQ(ErrorOf(PackCloseDB(1)), DlpError::NoneOpen);
}

// ---- records ----

TEST_F(DlpServerTest, ARecordIsReadByIndexByIdAndInPieces) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");

    const RecordAnswer whole = ReadRecordAnswer(Well(PackReadRecord(handle, 1)));
    EXPECT_EQ(whole.Record, (DatabaseRecord{0, 0, 101, "memo 1"}));
    EXPECT_EQ(whole.Index, 1U);
    const RecordAnswer piece = ReadRecordAnswer(Well(PackReadRecord(handle, 1, 2, 3)));
    EXPECT_EQ(piece.Record.Data, "mo ");
    EXPECT_EQ(piece.Size, 6U);
    const DlpResponse byId =
        Well(Request(DlpFunction::ReadRecord, ByteWriter().U8(handle).U8(0).U32(102).U16(0).U16(0)));
    EXPECT_EQ(ReadRecordAnswer(byId).Index, 2U);
    EXPECT_EQ(ReadRecordAnswer(byId).Record.Data, "");
    EXPECT_EQ(ErrorOf(PackReadRecord(handle, 3)), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(PackReadRecord(handle, 0, 7)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::ReadRecord, ByteWriter().U8(handle).U8(0).U32(7).U16(0).U16(0))),
              DlpError::NotFound);
}

TEST_F(DlpServerTest, AtMostFiveHundredIdsComeInOneAnswer) {
    GivenHandheld();
    GivenMemo(1100);
    Session();
    const std::uint8_t handle = Open("MemoDB");
    const auto ids = [&](unsigned first, unsigned most) {
        return Request(DlpFunction::ReadRecordIDList, ByteWriter().U8(handle).U8(0).U16(first).U16(most));
    };

    const std::string listBytes = Data(ids(500, 0xFFFF));
    ByteReader list(listBytes, "ids");
    EXPECT_EQ(list.U16(), 500U);
    EXPECT_EQ(list.U32(), 600U);
    EXPECT_EQ(Data(ids(1000, 0xFFFF)).size(), 2 + 4 * 100U);
    EXPECT_EQ(Data(ids(0, 7)).size(), 2 + 4 * 7U);
    EXPECT_EQ(ErrorOf(ids(1100, 1)), DlpError::NotFound);
}

TEST_F(DlpServerTest, ARecordOfAnIdIsReplacedInItsPlaceAndAnUnknownIdIsKept) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");

    EXPECT_EQ(Write(handle, {DirtyRecord | SecretRecord, 4, 101, "other"}), 101U);
    EXPECT_EQ(Write(handle, {0, 0, 0x6F8000, "kept"}), 0x6F8000U);
    const std::uint32_t made = Write(handle, {BusyRecord, 0, 0, "made"});
    Well(PackCloseDB(handle));

    const Database kept = Again().Store.Load("MemoDB");
    EXPECT_EQ(kept.Records, (std::vector<DatabaseRecord>{{0, 0, 100, "memo 0"},
                                                         {DirtyRecord | SecretRecord, 4, 101, "other"},
                                                         {0, 0, 102, "memo 2"},
                                                         {0, 0, 0x6F8000, "kept"},
                                                         {0, 0, made, "made"}}));
    EXPECT_NE(made, 0U);
}

TEST_F(DlpServerTest, WhatIsNoRecordIsNotWritten) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    const auto write = [&](unsigned flags, std::uint32_t id, unsigned category) {
        return Request(DlpFunction::WriteRecord,
                       ByteWriter().U8(handle).U8(flags).U32(id).U8(0).U8(category).Put("data"));
    };

    EXPECT_EQ(ErrorOf(write(0x00, 0, 0)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(write(0x80, 0x1000000, 0)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(write(0x80, 0, 16)), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, std::string(65506, 'x')})), DlpError::LimitExceeded);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, std::string(65505, 'x')})), DlpError::None);
    EXPECT_EQ(ReadRecordCount(Well(PackReadOpenDBInfo(handle))), 4U);
}

TEST_F(DlpServerTest, NoSpaceIsToldAndChangesNothing) {
    HandheldSettings settings = Anna();
    settings.Memory = 1000;
    GivenHandheld(settings);
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    const std::size_t used = Its().Store.Used();

    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, std::string(1000 - used - 7, 'x')})),
              DlpError::NoSpace);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 100, std::string(1000 - used + 7, 'x')})),
              DlpError::NoSpace);
    EXPECT_EQ(ErrorOf(PackWriteAppBlock(handle, std::string(1000 - used + 11, 'x'))), DlpError::NoSpace);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, std::string(1000 - used - 8, 'x')})), DlpError::None);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, ""})), DlpError::NoSpace);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 100, "memo"})), DlpError::None);
    Well(PackCloseDB(handle));
    DatabaseHeader header;
    header.Name = "More";
    EXPECT_EQ(ErrorOf(PackCreateDB(header)), DlpError::NoSpace);
}

TEST_F(DlpServerTest, RecordsGoByIdByCategoryAndAllAtOnce) {
    GivenHandheld();
    GivenMemo(5);
    Session();
    const std::uint8_t handle = Open("MemoDB");
    const auto remove = [&](unsigned flags, std::uint32_t id) {
        return Request(DlpFunction::DeleteRecord, ByteWriter().U8(handle).U8(flags).U32(id));
    };
    Write(handle, {0, 2, 104, "of category 2"});

    Well(remove(0x00, 101));
    EXPECT_EQ(ErrorOf(remove(0x00, 101)), DlpError::NotFound);
    Well(remove(0x40, 2));
    EXPECT_EQ(ReadRecordCount(Well(PackReadOpenDBInfo(handle))), 3U);
    EXPECT_EQ(ReadRecordAnswer(Well(PackReadRecord(handle, 1))).Record.Id, 102U);
    Well(remove(0x80, 0));
    EXPECT_EQ(ReadRecordCount(Well(PackReadOpenDBInfo(handle))), 0U);
}

TEST_F(DlpServerTest, ModifiedRecordsComeOneByOneUntilTheIndexIsReset) {
    GivenHandheld();
    GivenMemo(4);
    Session();
    const std::uint8_t handle = Open("MemoDB");
    Write(handle, {DirtyRecord, 0, 101, "changed"});
    Write(handle, {DirtyRecord | DeletedRecord, 0, 103, ""});
    const DlpRequest next = Request(DlpFunction::ReadNextModifiedRec, Handle(handle));

    EXPECT_EQ(ReadRecordAnswer(Well(next)).Record.Id, 101U);
    EXPECT_EQ(ReadRecordAnswer(Well(next)).Record.Flags, DirtyRecord | DeletedRecord);
    EXPECT_EQ(ErrorOf(next), DlpError::NotFound);
    Well(Request(DlpFunction::ResetRecordIndex, Handle(handle)));
    EXPECT_EQ(ReadRecordAnswer(Well(next)).Record.Id, 101U);
    Well(Request(DlpFunction::ResetSyncFlags, Handle(handle)));
    EXPECT_EQ(ErrorOf(next), DlpError::NotFound);
    Well(PackCloseDB(handle));
    EXPECT_EQ(DlpDate::FromSeconds(Again().Store.Load("MemoDB").BackedUp), (DlpDate{2026, 3, 5, 8, 0, 0}));
}

TEST_F(DlpServerTest, CleaningUpDropsDeletedAndArchivedRecords) {
    GivenHandheld();
    GivenMemo(4);
    GivenProgram();
    Session();
    std::uint8_t handle = Open("MemoDB");
    Write(handle, {DeletedRecord, 0, 100, ""});
    Write(handle, {0x08, 0, 102, "archived"});

    Well(Request(DlpFunction::CleanUpDatabase, Handle(handle)));
    Well(PackCloseDB(handle));

    EXPECT_EQ(Again().Store.Load("MemoDB").Records,
              (std::vector<DatabaseRecord>{{0, 0, 101, "memo 1"}, {0, 0, 103, "memo 3"}}));
    Session();
    handle = Open("Tramble");
    EXPECT_EQ(ErrorOf(Request(DlpFunction::CleanUpDatabase, Handle(handle))), DlpError::NotSupported);
}

TEST_F(DlpServerTest, ACategoryIsMoved) {
    GivenHandheld();
    GivenMemo(2);
    Session();
    const std::uint8_t handle = Open("MemoDB");
    Write(handle, {0, 3, 101, "x"});

    Well(Request(DlpFunction::MoveCategory, ByteWriter().U8(handle).U8(3).U8(5).U8(0)));

    EXPECT_EQ(ReadRecordAnswer(Well(PackReadRecord(handle, 1))).Record.Category, 5U);
    EXPECT_EQ(ReadRecordAnswer(Well(PackReadRecord(handle, 1))).Record.Flags, DirtyRecord);
    EXPECT_EQ(ReadRecordAnswer(Well(PackReadRecord(handle, 0))).Record.Category, 0U);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::MoveCategory, ByteWriter().U8(handle).U8(3).U8(16).U8(0))),
              DlpError::Parameter);
}

TEST_F(DlpServerTest, PrivateRecordsAreReadOnlyByWhoAskedForThem) {
    GivenHandheld();
    GivenMemo(2);
    Session();
    std::uint8_t handle = Open("MemoDB");
    Write(handle, {SecretRecord, 0, 101, "private"});
    EXPECT_EQ(ReadRecordAnswer(Well(PackReadRecord(handle, 1))).Record.Data, "private");
    Well(PackCloseDB(handle));

    handle = ReadHandle(Well(Request(DlpFunction::OpenDB, ByteWriter().U8(0).U8(0x80).Text("MemoDB"))));

    EXPECT_EQ(ErrorOf(PackReadRecord(handle, 1)), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(PackReadRecord(handle, 0)), DlpError::None);
}

// ---- resources ----

TEST_F(DlpServerTest, ResourcesAreReadByIndexAndByTypeReplacedAndDeleted) {
    GivenHandheld();
    GivenProgram();
    Session();
    const std::uint8_t handle = Open("Tramble");
    const auto byIndex = [&](unsigned index) {
        return Request(DlpFunction::ReadResource,
                       ByteWriter().U8(handle).U8(0).U16(index).U16(0).U16(0xFFFF));
    };
    const auto byType = [&](std::string_view type, unsigned id) {
        return Request(DlpFunction::ReadResource,
                       ByteWriter().U8(handle).U8(0).U32(FourCharacters(type)).U16(id).U16(1).U16(2), 0x21);
    };

    EXPECT_EQ(Data(byIndex(1)), "code\x00\x01\x00\x01\x00\x04"
                                "defg"s);
    EXPECT_EQ(Data(byType("code", 1)), "code\x00\x01\x00\x01\x00\x04"
                                       "ef"s);
    EXPECT_EQ(ErrorOf(byIndex(2)), DlpError::NotFound);
    EXPECT_EQ(ErrorOf(byType("data", 1)), DlpError::NotFound);
    Well(PackWriteResource(handle, {FourCharacters("code"), 0, "replaced"}));
    Well(PackWriteResource(handle, {FourCharacters("data"), 9, "added"}));
    EXPECT_EQ(ReadRecordCount(Well(PackReadOpenDBInfo(handle))), 3U);
    Well(Request(DlpFunction::DeleteResource,
                 ByteWriter().U8(handle).U8(0).U32(FourCharacters("code")).U16(1)));
    EXPECT_EQ(ErrorOf(Request(DlpFunction::DeleteResource,
                              ByteWriter().U8(handle).U8(0).U32(FourCharacters("code")).U16(1))),
              DlpError::NotFound);
    EXPECT_EQ(ErrorOf(PackWriteResource(handle, {1, 1, ""})), DlpError::Parameter);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::WriteResource,
                              ByteWriter().U8(handle).U8(0).U32(1).U16(1).U16(9).Put("short"))),
              DlpError::ArgumentSize);
    Well(PackCloseDB(handle));
    EXPECT_EQ(Again().Store.Load("Tramble").Resources,
              (std::vector<DatabaseResource>{{FourCharacters("code"), 0, "replaced"},
                                             {FourCharacters("data"), 9, "added"}}));
}

TEST_F(DlpServerTest, RecordsAndResourcesAreNotMixed) {
    GivenHandheld();
    GivenMemo();
    GivenProgram();
    Session();
    std::uint8_t handle = Open("Tramble");
    EXPECT_EQ(ErrorOf(PackReadRecord(handle, 0)), DlpError::NotSupported);
    EXPECT_EQ(ErrorOf(PackWriteRecord(handle, {0, 0, 0, "x"})), DlpError::NotSupported);
    Well(PackCloseDB(handle));

    handle = Open("MemoDB");

    EXPECT_EQ(ErrorOf(PackWriteResource(handle, {1, 1, "x"})), DlpError::NotSupported);
    EXPECT_EQ(ErrorOf(Request(DlpFunction::ReadResource, ByteWriter().U8(handle).U8(0).U16(0).U16(0).U16(0))),
              DlpError::NotSupported);
}

// ---- what stays when the line goes ----

TEST_F(DlpServerTest, WhatWasWrittenStaysWhenTheLineGoes) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    Write(handle, {0, 0, 101, "changed"});

    server_->EndWithout("the line was lost");

    EXPECT_EQ(Again().Store.Load("MemoDB").Records[1].Data, "changed");
    EXPECT_EQ(Its().Settings.LastEnd, "the line was lost");
    EXPECT_EQ(Its().Settings.User.LastGoodSync, DlpDate{});
}

TEST_F(DlpServerTest, WhatWasWrittenStaysAlsoWhenTheEndCannotBeWrittenDown) {
    GivenHandheld();
    GivenMemo();
    Session();
    Write(Open("MemoDB"), {0, 0, 101, "changed"});
    RefusingDisk disk(Place() + "Handheld.txt", Access::Create);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([&] { server_->EndWithout("the line was lost"); }), 70);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Again().Store.Load("MemoDB").Records[1].Data, "changed");
}

TEST_F(DlpServerTest, AnEndInManyWordsIsCutAndLeavesAHandheldThatCanBeRead) {
    GivenHandheld();
    Session();

    server_->EndWithout("no connection to " + std::string(500, 'x') + ": ...");

    EXPECT_EQ(Again().Settings.LastEnd.substr(0, 20), "no connection to xxx");
    EXPECT_EQ(Its().Settings.LastEnd.size(), HandheldSettings::LongestEnd);
}

TEST_F(DlpServerTest, TheEndClosesWhatIsOpen) {
    GivenHandheld();
    GivenMemo();
    Session();
    Write(Open("MemoDB"), {0, 0, 101, "changed"});

    Well(PackEndOfSync(EndCode::Other));

    EXPECT_EQ(Again().Store.Load("MemoDB").Records[1].Data, "changed");
}

TEST_F(DlpServerTest, ADatabaseThatCannotBeWrittenIsToldOfAndStaysAsItWas) {
    GivenHandheld();
    GivenMemo();
    Session();
    const std::uint8_t handle = Open("MemoDB");
    Write(handle, {0, 0, 101, "changed"});
    RefusingDisk disk(Place() + "databases/", Access::Create);
    Global.TheDisk = &disk;

    EXPECT_EQ(ErrorOf(PackCloseDB(handle)), DlpError::System);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Again().Store.Load("MemoDB").Records[1].Data, "memo 1");
    EXPECT_EQ(ErrorOf(PackCloseDB(handle)), DlpError::NoneOpen);
}

TEST_F(DlpServerTest, AnIdIsNeverGivenTwice) {
    GivenHandheld();
    GivenMemo(0);
    Session();
    std::uint8_t handle = Open("MemoDB");
    Write(handle, {0, 0, 2, "taken"});
    EXPECT_EQ(Write(handle, {0, 0, 0, "a"}), 1U);
    EXPECT_EQ(Write(handle, {0, 0, 0, "b"}), 3U);
    Well(Request(DlpFunction::DeleteRecord, ByteWriter().U8(handle).U8(0).U32(3)));
    Well(PackCloseDB(handle));

    handle = Open("MemoDB");

    EXPECT_EQ(Write(handle, {0, 0, 0, "c"}), 4U);
}

} // namespace
