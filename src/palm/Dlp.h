#pragma once

#include "palm/Database.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The Desktop Link Protocol, version 1.2: what a desktop asks a handheld over any line, and what the
/// handheld answers. Bytes in, bytes out. Each pair of Pack... and Read... serves one side each; whatever
/// is read is checked: a missing argument, one that is too short, or one that says what cannot be, is a
/// PalmFailure. What is packed is the caller's to keep within the limits told here, but for what is cut.

enum class DlpFunction : std::uint8_t {
    ReadUserInfo = 0x10,
    WriteUserInfo = 0x11,
    ReadSysInfo = 0x12,
    GetSysDateTime = 0x13,
    SetSysDateTime = 0x14,
    ReadStorageInfo = 0x15,
    ReadDBList = 0x16,
    OpenDB = 0x17,
    CreateDB = 0x18,
    CloseDB = 0x19,
    DeleteDB = 0x1A,
    ReadAppBlock = 0x1B,
    WriteAppBlock = 0x1C,
    ReadSortBlock = 0x1D,
    WriteSortBlock = 0x1E,
    ReadNextModifiedRec = 0x1F,
    ReadRecord = 0x20,
    WriteRecord = 0x21,
    DeleteRecord = 0x22,
    ReadResource = 0x23,
    WriteResource = 0x24,
    DeleteResource = 0x25,
    CleanUpDatabase = 0x26,
    ResetSyncFlags = 0x27,
    ResetSystem = 0x29,
    AddSyncLogEntry = 0x2A,
    ReadOpenDBInfo = 0x2B,
    MoveCategory = 0x2C,
    OpenConduit = 0x2E,
    EndOfSync = 0x2F,
    ResetRecordIndex = 0x30,
    ReadRecordIDList = 0x31,
    ReadNetSyncInfo = 0x36,
    WriteNetSyncInfo = 0x37,
    ReadFeature = 0x38,
    FindDB = 0x39,
    SetDBInfo = 0x3A,
};

enum class DlpError : std::uint16_t {
    None = 0x00,
    System = 0x01,
    UnknownFunction = 0x02,
    Memory = 0x03,
    Parameter = 0x04,
    NotFound = 0x05,
    NoneOpen = 0x06,
    AlreadyOpen = 0x07,
    TooManyOpen = 0x08,
    Exists = 0x09,
    CannotOpen = 0x0A,
    RecordDeleted = 0x0B,
    RecordBusy = 0x0C,
    NotSupported = 0x0D,
    ReadOnly = 0x0F,
    NoSpace = 0x10,
    LimitExceeded = 0x11,
    Cancelled = 0x12,
    BadArgument = 0x13,
    ArgumentMissing = 0x14,
    ArgumentSize = 0x15,
};

/// The meaning of an error in English, such as "not found"; its number for one that is not listed.
std::string WordsOf(DlpError error);

/// Why a desktop ends a session.
enum class EndCode : std::uint16_t {
    Normal = 0,
    OutOfMemory = 1,
    Cancelled = 2,
    Other = 3,
    Incompatible = 4
};

/// A piece of a message.
struct DlpArgument {
    std::uint8_t Id = 0x20; ///< 0x20 the first, then 0x21, 0x22
    std::string Data;       ///< at most 65535 bytes

    friend bool operator==(const DlpArgument&, const DlpArgument&) = default;
};

/// What is asked. Arguments stand in the order of their ids, at most 255.
struct DlpRequest {
    DlpFunction Function{};
    std::vector<DlpArgument> Arguments;

    DlpRequest() = default;
    explicit DlpRequest(DlpFunction function) : Function(function) {}
    DlpRequest(DlpFunction function, std::string argument)
        : Function(function),
          Arguments{{0x20, std::move(argument)}} {}

    /// The argument of an id; nullptr when there is none.
    const DlpArgument* Find(std::uint8_t id) const;
    /// Its data; PalmFailure when there is none.
    std::string_view Argument(std::uint8_t id = 0x20) const;

    friend bool operator==(const DlpRequest&, const DlpRequest&) = default;
};

/// What is answered, arguments as there.
struct DlpResponse {
    DlpFunction Function{};
    DlpError Error = DlpError::None;
    std::vector<DlpArgument> Arguments; ///< none beside an error

    DlpResponse() = default;
    explicit DlpResponse(DlpFunction function, DlpError error = DlpError::None)
        : Function(function),
          Error(error) {}
    DlpResponse(DlpFunction function, std::string argument)
        : Function(function),
          Arguments{{0x20, std::move(argument)}} {}

    /// Both as in DlpRequest.
    const DlpArgument* Find(std::uint8_t id) const;
    std::string_view Argument(std::uint8_t id = 0x20) const;

    friend bool operator==(const DlpResponse&, const DlpResponse&) = default;
};

/// One message each. Arguments are read in every form and written in the shortest. An argument longer
/// than 65535 bytes is a PalmFailure both ways, and so is anything behind the last argument.
std::string PackRequest(const DlpRequest& request);
DlpRequest ReadRequest(std::string_view message);
std::string PackResponse(const DlpResponse& response);
DlpResponse ReadResponse(std::string_view message);

// ---- what the arguments hold ----

/// Of ReadDBList, in the request and in the answer.
inline constexpr std::uint8_t ListRam = 0x80, ListSeveral = 0x20, ListMore = 0x80;
/// How a database is opened.
inline constexpr std::uint8_t OpenRead = 0x80, OpenWrite = 0x40, OpenSecret = 0x10;
/// What FindDB is to tell: LongestRecord only of an open database.
inline constexpr std::uint8_t FindAttributes = 0x80, FindSizes = 0x40, FindLargest = 0x20;
/// Stands in every WriteRecord.
inline constexpr std::uint8_t DataIncluded = 0x80;
/// A mark of records that files have no place for, beside those of RecordFlag.
inline constexpr std::uint8_t ArchivedRecord = 0x08;
/// A number of bytes or records: as many as there are.
inline constexpr std::uint16_t ToTheEnd = 0xFFFF;
/// The version of SetDBInfo that leaves a database's as it is.
inline constexpr std::uint16_t KeepVersion = 0xFFFF;

/// A moment of the handheld's own clock; year 0 is none.
struct DlpDate {
    std::uint16_t Year = 0;
    std::uint8_t Month = 0, Day = 0, Hour = 0, Minute = 0, Second = 0;

    /// Seconds since 1904-01-01 00:00; 0 for none and for what is no date.
    std::uint32_t Seconds() const;
    /// Years 1904 to 2040; 0 is none.
    static DlpDate FromSeconds(std::uint32_t seconds);

    friend bool operator==(const DlpDate&, const DlpDate&) = default;
};
/// Eight bytes.
std::string PackDate(const DlpDate& date);
DlpDate ReadDate(std::string_view bytes);

/// What a handheld tells of itself.
struct SysInfo {
    std::uint32_t RomVersion = 0, Localization = 0;
    std::string ProductId;                    ///< at most 255 bytes
    std::uint16_t DlpMajor = 1, DlpMinor = 0; ///< 1.0 when the handheld tells none
    std::uint16_t CompatMajor = 0, CompatMinor = 0;
    std::uint32_t LongestRecord = 0; ///< bytes; 0 when the handheld tells none

    friend bool operator==(const SysInfo&, const SysInfo&) = default;
};
DlpResponse PackSysInfo(const SysInfo& info);
SysInfo ReadSysInfo(const DlpResponse& response);

/// Bytes of a user's name, without its NUL.
inline constexpr std::size_t LongestUserName = 40;

/// Whose handheld it is.
struct UserInfo {
    std::uint32_t UserId = 0; ///< 0: the handheld has no user
    std::uint32_t ViewerId = 0, LastSyncPC = 0;
    DlpDate LastGoodSync, LastSync;
    std::string Name; ///< in the handheld's characters, without NUL; cut at LongestUserName

    friend bool operator==(const UserInfo&, const UserInfo&) = default;
};
DlpResponse PackUserInfo(const UserInfo& info);
UserInfo ReadUserInfo(const DlpResponse& response);

/// What a desktop writes of it, by flags.
struct UserChange {
    static constexpr std::uint8_t SetUserId = 0x80, SetLastSyncPC = 0x40, SetSyncDate = 0x20, SetName = 0x10,
                                  SetViewerId = 0x08;
    std::uint8_t Flags = 0;
    std::uint32_t UserId = 0, ViewerId = 0, LastSyncPC = 0;
    DlpDate SyncDate;
    std::string Name; ///< cut at LongestUserName
};
DlpRequest PackUserChange(const UserChange& change);
UserChange ReadUserChange(const DlpRequest& request);

/// A database as lists and searches tell of it.
struct DatabaseInfo : DatabaseHeader {
    std::uint8_t MiscFlags = 0;
    std::uint16_t Index = 0;

    friend bool operator==(const DatabaseInfo&, const DatabaseInfo&) = default;
};

/// A piece of the list of databases, as ReadDBList tells it. `LastIndex` is that of its last one.
struct DatabaseList {
    std::uint16_t LastIndex = 0;
    bool More = false;
    std::vector<DatabaseInfo> Databases; ///< at most 255, else PalmFailure
};
/// Asks for several at once, from an index on. `several`: whether the request does.
DlpRequest PackListRequest(std::uint16_t first);
std::uint16_t ReadListRequest(const DlpRequest& request, bool& several);
DlpResponse PackDatabaseList(const DatabaseList& list);
DatabaseList ReadDatabaseList(const DlpResponse& response);

/// FindDB by name, and its answer with the attributes.
DlpRequest PackFindByName(std::string_view name);
DatabaseInfo ReadFound(const DlpResponse& response);
/// A database as lists and answers hold it. Its name is cut at LongestDatabaseName.
std::string PackDatabaseInfo(const DatabaseInfo& info);

/// Names in these requests are at most LongestDatabaseName bytes, without NUL.
DlpRequest PackOpenDB(std::string_view name, bool forWriting);
DlpRequest PackCreateDB(const DatabaseHeader& header);
/// What OpenDB and CreateDB answer: the number by which the open database goes from here on.
std::uint8_t ReadHandle(const DlpResponse& response);
DlpRequest PackCloseDB(std::uint8_t handle);
DlpRequest PackDeleteDB(std::string_view name);
DlpRequest PackReadOpenDBInfo(std::uint8_t handle);
/// Records, or resources, of the open database, as ReadOpenDBInfo answers.
std::uint16_t ReadRecordCount(const DlpResponse& response);

/// Gives an open database another version and name; with KeepVersion or an empty name those stay.
DlpRequest PackSetDBInfo(std::uint8_t handle, std::uint16_t version, std::string_view name);

/// The application block and the sort block, at most 65531 bytes. ReadBlock is for what is answered.
DlpRequest PackReadAppBlock(std::uint8_t handle);
std::string ReadBlock(const DlpResponse& response);
DlpRequest PackWriteAppBlock(std::uint8_t handle, std::string_view block);
DlpRequest PackWriteSortBlock(std::uint8_t handle, std::string_view block);

/// A record as ReadRecord answers it; `Data` may be less than `Size` when less was asked for.
struct RecordAnswer {
    DatabaseRecord Record;
    std::uint16_t Index = 0;
    std::uint16_t Size = 0; ///< of the whole record
};
/// Reading by index from 0; `offset` and `count` are bytes of the record. Writing: id 0 is a new record.
DlpRequest PackReadRecord(std::uint8_t handle, std::uint16_t index, std::uint16_t offset = 0,
                          std::uint16_t count = ToTheEnd);
DlpResponse PackRecord(DlpFunction function, const RecordAnswer& answer);
RecordAnswer ReadRecordAnswer(const DlpResponse& response);
DlpRequest PackWriteRecord(std::uint8_t handle, const DatabaseRecord& record);
DlpRequest PackWriteResource(std::uint8_t handle, const DatabaseResource& resource);

DlpRequest PackEndOfSync(EndCode code);
/// Adds to the log on the handheld: at most 65534 bytes, without NUL.
DlpRequest PackSyncLog(std::string_view text);
