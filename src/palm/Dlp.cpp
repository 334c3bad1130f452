#include "palm/Dlp.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::uint8_t FirstArgument = 0x20;
constexpr std::uint8_t AnswerBit = 0x80;
constexpr std::uint8_t LongForm = 0x40;
constexpr std::uint8_t SmallForm = 0x80;
constexpr std::uint8_t IdMask = 0x3F;
constexpr std::size_t LongestArgument = 0xFFFF;

/// A database in a list, before its name.
constexpr std::size_t DatabaseBlock = 44;

void PackArguments(ByteWriter& to, const std::vector<DlpArgument>& arguments) {
    for (const DlpArgument& argument : arguments) {
        const std::size_t size = argument.Data.size();
        if (size > LongestArgument) throw PalmFailure("an argument of " + std::to_string(size) + " bytes");
        if (size <= 0xFF) {
            to.U8(argument.Id).U8(static_cast<unsigned>(size));
        } else {
            to.U8(argument.Id | SmallForm).U8(0).U16(static_cast<unsigned>(size));
        }
        to.Put(argument.Data);
    }
}

std::vector<DlpArgument> ReadArguments(ByteReader& from, std::size_t count) {
    std::vector<DlpArgument> arguments;
    for (std::size_t k = 0; k < count; ++k) {
        const std::uint8_t id = from.U8();
        std::size_t size = 0;
        if ((id & LongForm) != 0) {
            from.Skip(1);
            size = from.U32();
            if (size > LongestArgument) from.Fail("an argument of " + std::to_string(size) + " bytes");
        } else if ((id & SmallForm) != 0) {
            from.Skip(1);
            size = from.U16();
        } else {
            size = from.U8();
        }
        arguments.push_back({static_cast<std::uint8_t>(id & IdMask), std::string(from.Take(size))});
    }
    if (from.Left() != 0) from.Fail(std::to_string(from.Left()) + " bytes behind the last argument");
    return arguments;
}

const DlpArgument* FindArgument(const std::vector<DlpArgument>& arguments, std::uint8_t id) {
    const auto found = std::find_if(arguments.begin(), arguments.end(),
                                    [id](const DlpArgument& argument) { return argument.Id == id; });
    return found == arguments.end() ? nullptr : &*found;
}

std::string_view ArgumentOf(const std::vector<DlpArgument>& arguments, std::uint8_t id) {
    const DlpArgument* const argument = FindArgument(arguments, id);
    if (!argument) throw PalmFailure("argument " + std::to_string(id) + " is missing");
    return argument->Data;
}

void PutDate(ByteWriter& to, const DlpDate& date) {
    to.U16(date.Year).U8(date.Month).U8(date.Day).U8(date.Hour).U8(date.Minute).U8(date.Second).U8(0);
}

DlpDate TakeDate(ByteReader& from) {
    DlpDate date;
    date.Year = from.U16();
    date.Month = from.U8();
    date.Day = from.U8();
    date.Hour = from.U8();
    date.Minute = from.U8();
    date.Second = from.U8();
    from.Skip(1);
    // Handhelds leave what they like behind a year of 0.
    return date.Year == 0 ? DlpDate{} : date;
}

// Days since 1904-01-01 and back, in the calendar of today; years 1904 to 2039 fit 32 bits of seconds.
constexpr std::int64_t DaysBefore1904 = 695361; // of 0000-03-01

std::int64_t DaysOf(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t m = (month + 9) % 12;
    return 365 * y + y / 4 - y / 100 + y / 400 + (153 * m + 2) / 5 + day - 1 - DaysBefore1904;
}

int DaysIn(int year, int month) {
    constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapDay = month == 2 && ((year % 4 == 0 && year % 100 != 0) || year % 400 == 0);
    return days.at(static_cast<std::size_t>(month - 1)) + (isLeapDay ? 1 : 0);
}

std::string_view CutName(std::string_view name) {
    return name.substr(0, LongestDatabaseName);
}

/// The numbers that both messages about the user begin with.
template <typename User>
void PutUserIds(ByteWriter& to, const User& user) {
    to.U32(user.UserId).U32(user.ViewerId).U32(user.LastSyncPC);
}

template <typename User>
void TakeUserIds(ByteReader& from, User& user) {
    user.UserId = from.U32();
    user.ViewerId = from.U32();
    user.LastSyncPC = from.U32();
}

std::string_view CutUserName(std::string_view name) {
    return name.substr(0, LongestUserName);
}

/// A user's name out of a place that may be longer.
std::string TakeUserName(ByteReader& from, std::size_t size) {
    const std::string_view place = from.Take(size);
    const std::string_view name = place.substr(0, place.find('\0'));
    if (name.size() > LongestUserName) from.Fail("a name of more than 40 bytes");
    return std::string(name);
}

DatabaseInfo TakeDatabaseInfo(ByteReader& from) {
    const std::size_t size = from.U8();
    if (size < DatabaseBlock) from.Fail("a database of " + std::to_string(size) + " bytes in a list");
    ByteReader block(from.Take(size - 1), "database in a list");
    DatabaseInfo info;
    info.MiscFlags = block.U8();
    info.Flags = block.U16();
    info.Type = block.U32();
    info.Creator = block.U32();
    info.Version = block.U16();
    info.ModificationNumber = block.U32();
    info.Created = TakeDate(block).Seconds();
    info.Modified = TakeDate(block).Seconds();
    info.BackedUp = TakeDate(block).Seconds();
    info.Index = block.U16();
    info.Name = block.TakeText();
    if (info.Name.size() > LongestDatabaseName) block.Fail("a name of more than 31 bytes");
    return info;
}

} // namespace

std::string WordsOf(DlpError error) {
    switch (error) {
    case DlpError::None:
        return "no error";
    case DlpError::System:
        return "general error of the handheld";
    case DlpError::UnknownFunction:
        return "request that the handheld does not know";
    case DlpError::Memory:
        return "not enough memory";
    case DlpError::Parameter:
        return "invalid parameter";
    case DlpError::NotFound:
        return "not found";
    case DlpError::NoneOpen:
        return "no database is open";
    case DlpError::AlreadyOpen:
        return "the database is open already";
    case DlpError::TooManyOpen:
        return "too many databases are open";
    case DlpError::Exists:
        return "it is there already";
    case DlpError::CannotOpen:
        return "cannot be opened";
    case DlpError::RecordDeleted:
        return "the record is deleted";
    case DlpError::RecordBusy:
        return "the record is busy";
    case DlpError::NotSupported:
        return "not supported for this database";
    case DlpError::ReadOnly:
        return "read only";
    case DlpError::NoSpace:
        return "not enough storage space";
    case DlpError::LimitExceeded:
        return "limit exceeded";
    case DlpError::Cancelled:
        return "cancelled on the handheld";
    case DlpError::BadArgument:
        return "bad argument";
    case DlpError::ArgumentMissing:
        return "an argument is missing";
    case DlpError::ArgumentSize:
        return "an argument of the wrong size";
    }
    return "error " + std::to_string(static_cast<unsigned>(error));
}

const DlpArgument* DlpRequest::Find(std::uint8_t id) const {
    return FindArgument(Arguments, id);
}

std::string_view DlpRequest::Argument(std::uint8_t id) const {
    return ArgumentOf(Arguments, id);
}

const DlpArgument* DlpResponse::Find(std::uint8_t id) const {
    return FindArgument(Arguments, id);
}

std::string_view DlpResponse::Argument(std::uint8_t id) const {
    return ArgumentOf(Arguments, id);
}

std::string PackRequest(const DlpRequest& request) {
    ByteWriter message;
    message.U8(static_cast<unsigned>(request.Function)).U8(static_cast<unsigned>(request.Arguments.size()));
    PackArguments(message, request.Arguments);
    return std::move(message).Bytes();
}

DlpRequest ReadRequest(std::string_view message) {
    ByteReader from(message, "request");
    const std::uint8_t function = from.U8();
    if ((function & AnswerBit) != 0) from.Fail("an answer in its place");
    DlpRequest request(static_cast<DlpFunction>(function));
    const std::size_t count = from.U8();
    request.Arguments = ReadArguments(from, count);
    return request;
}

std::string PackResponse(const DlpResponse& response) {
    const bool failed = response.Error != DlpError::None;
    ByteWriter message;
    message.U8(static_cast<unsigned>(response.Function) | AnswerBit);
    message.U8(failed ? 0 : static_cast<unsigned>(response.Arguments.size()));
    message.U16(static_cast<unsigned>(response.Error));
    if (!failed) PackArguments(message, response.Arguments);
    return std::move(message).Bytes();
}

DlpResponse ReadResponse(std::string_view message) {
    ByteReader from(message, "answer");
    const std::uint8_t function = from.U8();
    if ((function & AnswerBit) == 0) from.Fail("a request in its place");
    DlpResponse response(static_cast<DlpFunction>(function & ~AnswerBit));
    const std::size_t count = from.U8();
    response.Error = static_cast<DlpError>(from.U16());
    response.Arguments = ReadArguments(from, count);
    if (response.Error != DlpError::None) response.Arguments.clear();
    return response;
}

std::uint32_t DlpDate::Seconds() const {
    if (Year < 1904 || Month < 1 || Month > 12 || Day < 1 || Day > DaysIn(Year, Month)) return 0;
    if (Hour > 23 || Minute > 59 || Second > 59) return 0;
    const std::int64_t seconds = ((DaysOf(Year, Month, Day) * 24 + Hour) * 60 + Minute) * 60 + Second;
    return seconds > 0xFFFFFFFF ? 0 : static_cast<std::uint32_t>(seconds);
}

DlpDate DlpDate::FromSeconds(std::uint32_t seconds) {
    if (seconds == 0) return {};
    const std::int64_t day = seconds / 86400 + DaysBefore1904;
    std::int64_t year = (10000 * day + 14780) / 3652425;
    const auto rest = [&] { return day - (365 * year + year / 4 - year / 100 + year / 400); };
    if (rest() < 0) --year;
    const std::int64_t month = (100 * rest() + 52) / 3060;
    DlpDate date;
    date.Day = static_cast<std::uint8_t>(rest() - (month * 306 + 5) / 10 + 1);
    date.Month = static_cast<std::uint8_t>((month + 2) % 12 + 1);
    date.Year = static_cast<std::uint16_t>(year + (month + 2) / 12);
    date.Hour = static_cast<std::uint8_t>(seconds / 3600 % 24);
    date.Minute = static_cast<std::uint8_t>(seconds / 60 % 60);
    date.Second = static_cast<std::uint8_t>(seconds % 60);
    return date;
}

std::string PackDate(const DlpDate& date) {
    ByteWriter bytes;
    PutDate(bytes, date);
    return std::move(bytes).Bytes();
}

DlpDate ReadDate(std::string_view bytes) {
    ByteReader from(bytes, "date");
    return TakeDate(from);
}

DlpResponse PackSysInfo(const SysInfo& info) {
    ByteWriter system, protocol;
    system.U32(info.RomVersion).U32(info.Localization).U8(0).U8(static_cast<unsigned>(info.ProductId.size()));
    system.Put(info.ProductId);
    protocol.U16(info.DlpMajor).U16(info.DlpMinor).U16(info.CompatMajor).U16(info.CompatMinor);
    protocol.U32(info.LongestRecord);
    DlpResponse response(DlpFunction::ReadSysInfo, std::move(system).Bytes());
    response.Arguments.push_back({FirstArgument + 1, std::move(protocol).Bytes()});
    return response;
}

SysInfo ReadSysInfo(const DlpResponse& response) {
    SysInfo info;
    ByteReader system(response.Argument(), "system information");
    info.RomVersion = system.U32();
    info.Localization = system.U32();
    system.Skip(1);
    info.ProductId = system.Take(system.U8());
    if (const DlpArgument* const argument = response.Find(FirstArgument + 1)) {
        ByteReader protocol(argument->Data, "protocol information");
        info.DlpMajor = protocol.U16();
        info.DlpMinor = protocol.U16();
        if (protocol.Left() > 0) { // older handhelds end here
            info.CompatMajor = protocol.U16();
            info.CompatMinor = protocol.U16();
            info.LongestRecord = protocol.U32();
        }
    }
    return info;
}

DlpResponse PackUserInfo(const UserInfo& info) {
    const std::string_view name = CutUserName(info.Name);
    ByteWriter bytes;
    PutUserIds(bytes, info);
    PutDate(bytes, info.LastGoodSync);
    PutDate(bytes, info.LastSync);
    bytes.U8(name.empty() ? 0 : static_cast<unsigned>(name.size() + 1)).U8(0);
    if (!name.empty()) bytes.Text(name);
    return {DlpFunction::ReadUserInfo, std::move(bytes).Bytes()};
}

UserInfo ReadUserInfo(const DlpResponse& response) {
    ByteReader from(response.Argument(), "user information");
    UserInfo info;
    TakeUserIds(from, info);
    info.LastGoodSync = TakeDate(from);
    info.LastSync = TakeDate(from);
    const std::size_t nameSize = from.U8();
    from.Skip(1); // of the password, which is nobody's business here
    info.Name = TakeUserName(from, nameSize);
    return info;
}

DlpRequest PackUserChange(const UserChange& change) {
    const std::string_view name = CutUserName(change.Name);
    ByteWriter bytes;
    PutUserIds(bytes, change);
    PutDate(bytes, change.SyncDate);
    bytes.U8(change.Flags).U8(static_cast<unsigned>(name.size() + 1)).Text(name);
    return {DlpFunction::WriteUserInfo, std::move(bytes).Bytes()};
}

UserChange ReadUserChange(const DlpRequest& request) {
    ByteReader from(request.Argument(), "user information");
    UserChange change;
    TakeUserIds(from, change);
    change.SyncDate = TakeDate(from);
    change.Flags = from.U8();
    const std::size_t nameSize = from.U8();
    change.Name = TakeUserName(from, nameSize);
    return change;
}

std::string PackDatabaseInfo(const DatabaseInfo& info) {
    const std::string_view name = CutName(info.Name);
    const std::size_t size = DatabaseBlock + name.size() + 1;
    ByteWriter block;
    block.U8(static_cast<unsigned>(size + size % 2)).U8(info.MiscFlags).U16(info.Flags).U32(info.Type);
    block.U32(info.Creator).U16(info.Version).U32(info.ModificationNumber);
    PutDate(block, DlpDate::FromSeconds(info.Created));
    PutDate(block, DlpDate::FromSeconds(info.Modified));
    PutDate(block, DlpDate::FromSeconds(info.BackedUp));
    block.U16(info.Index).Text(name);
    if (size % 2 != 0) block.U8(0);
    return std::move(block).Bytes();
}

DlpRequest PackListRequest(std::uint16_t first) {
    ByteWriter bytes;
    bytes.U8(ListRam | ListSeveral).U8(0).U16(first);
    return {DlpFunction::ReadDBList, std::move(bytes).Bytes()};
}

std::uint16_t ReadListRequest(const DlpRequest& request, bool& several) {
    ByteReader from(request.Argument(), "request for the list of databases");
    several = (from.U8() & ListSeveral) != 0;
    from.Skip(1);
    return from.U16();
}

DlpResponse PackDatabaseList(const DatabaseList& list) {
    if (list.Databases.size() > 0xFF) {
        throw PalmFailure("a list of " + std::to_string(list.Databases.size()) + " databases");
    }
    ByteWriter bytes;
    bytes.U16(list.LastIndex).U8(list.More ? ListMore : 0).U8(static_cast<unsigned>(list.Databases.size()));
    for (const DatabaseInfo& info : list.Databases) bytes.Put(PackDatabaseInfo(info));
    return {DlpFunction::ReadDBList, std::move(bytes).Bytes()};
}

DatabaseList ReadDatabaseList(const DlpResponse& response) {
    ByteReader from(response.Argument(), "list of databases");
    DatabaseList list;
    list.LastIndex = from.U16();
    list.More = (from.U8() & ListMore) != 0;
    const std::size_t count = from.U8();
    for (std::size_t k = 0; k < count; ++k) list.Databases.push_back(TakeDatabaseInfo(from));
    return list;
}

DlpRequest PackFindByName(std::string_view name) {
    ByteWriter bytes;
    bytes.U8(FindAttributes).U8(0).Text(name);
    return {DlpFunction::FindDB, std::move(bytes).Bytes()};
}

DatabaseInfo ReadFound(const DlpResponse& response) {
    ByteReader from(response.Argument(), "found database");
    from.Skip(2 + 4 + 4);
    return TakeDatabaseInfo(from);
}

DlpRequest PackOpenDB(std::string_view name, bool forWriting) {
    ByteWriter bytes;
    bytes.U8(0).U8(static_cast<unsigned>(OpenRead | OpenSecret | (forWriting ? OpenWrite : 0))).Text(name);
    return {DlpFunction::OpenDB, std::move(bytes).Bytes()};
}

DlpRequest PackCreateDB(const DatabaseHeader& header) {
    ByteWriter bytes;
    bytes.U32(header.Creator).U32(header.Type).U8(0).U8(0);
    bytes.U16(header.Flags & ~OpenDatabase & 0xFFFF).U16(header.Version).Text(header.Name);
    return {DlpFunction::CreateDB, std::move(bytes).Bytes()};
}

std::uint8_t ReadHandle(const DlpResponse& response) {
    return ByteReader(response.Argument(), "handle").U8();
}

DlpRequest PackCloseDB(std::uint8_t handle) {
    return {DlpFunction::CloseDB, std::string(1, static_cast<char>(handle))};
}

DlpRequest PackDeleteDB(std::string_view name) {
    ByteWriter bytes;
    bytes.U8(0).U8(0).Text(name);
    return {DlpFunction::DeleteDB, std::move(bytes).Bytes()};
}

DlpRequest PackReadOpenDBInfo(std::uint8_t handle) {
    return {DlpFunction::ReadOpenDBInfo, std::string(1, static_cast<char>(handle))};
}

std::uint16_t ReadRecordCount(const DlpResponse& response) {
    return ByteReader(response.Argument(), "number of records").U16();
}

DlpRequest PackSetDBInfo(std::uint8_t handle, std::uint16_t version, std::string_view name) {
    ByteWriter bytes;
    bytes.U8(handle).U8(0).U16(0).U16(0).U16(version);
    for (int k = 0; k < 3; ++k) PutDate(bytes, {});
    bytes.U32(0).U32(0).Text(name);
    return {DlpFunction::SetDBInfo, std::move(bytes).Bytes()};
}

DlpRequest PackReadAppBlock(std::uint8_t handle) {
    ByteWriter bytes;
    bytes.U8(handle).U8(0).U16(0).U16(ToTheEnd);
    return {DlpFunction::ReadAppBlock, std::move(bytes).Bytes()};
}

std::string ReadBlock(const DlpResponse& response) {
    ByteReader from(response.Argument(), "block");
    const std::size_t size = from.U16();
    std::string block(from.Rest());
    if (block.size() != size) from.Fail("another size than it says");
    return block;
}

DlpRequest PackWriteAppBlock(std::uint8_t handle, std::string_view block) {
    ByteWriter bytes;
    bytes.U8(handle).U8(0).U16(static_cast<unsigned>(block.size())).Put(block);
    return {DlpFunction::WriteAppBlock, std::move(bytes).Bytes()};
}

DlpRequest PackWriteSortBlock(std::uint8_t handle, std::string_view block) {
    DlpRequest request = PackWriteAppBlock(handle, block);
    request.Function = DlpFunction::WriteSortBlock;
    return request;
}

DlpRequest PackReadRecord(std::uint8_t handle, std::uint16_t index, std::uint16_t offset,
                          std::uint16_t count) {
    ByteWriter bytes;
    bytes.U8(handle).U8(0).U16(index).U16(offset).U16(count);
    DlpRequest request(DlpFunction::ReadRecord);
    request.Arguments.push_back({FirstArgument + 1, std::move(bytes).Bytes()});
    return request;
}

DlpResponse PackRecord(DlpFunction function, const RecordAnswer& answer) {
    ByteWriter bytes;
    bytes.U32(answer.Record.Id).U16(answer.Index).U16(answer.Size);
    bytes.U8(answer.Record.Flags).U8(answer.Record.Category).Put(answer.Record.Data);
    return {function, std::move(bytes).Bytes()};
}

RecordAnswer ReadRecordAnswer(const DlpResponse& response) {
    ByteReader from(response.Argument(), "record");
    RecordAnswer answer;
    answer.Record.Id = from.U32() & LastRecordId;
    answer.Index = from.U16();
    answer.Size = from.U16();
    answer.Record.Flags = from.U8();
    answer.Record.Category = from.U8();
    if (answer.Record.Category > LastCategory) {
        from.Fail("category " + std::to_string(answer.Record.Category));
    }
    answer.Record.Data = from.Rest();
    if (answer.Record.Data.size() > answer.Size) from.Fail("more bytes than the record has");
    return answer;
}

DlpRequest PackWriteRecord(std::uint8_t handle, const DatabaseRecord& record) {
    ByteWriter bytes;
    bytes.U8(handle).U8(DataIncluded).U32(record.Id);
    bytes.U8(static_cast<unsigned>(record.Flags & ~BusyRecord)).U8(record.Category).Put(record.Data);
    return {DlpFunction::WriteRecord, std::move(bytes).Bytes()};
}

DlpRequest PackWriteResource(std::uint8_t handle, const DatabaseResource& resource) {
    ByteWriter bytes;
    bytes.U8(handle).U8(0).U32(resource.Type).U16(resource.Id);
    bytes.U16(static_cast<unsigned>(resource.Data.size())).Put(resource.Data);
    return {DlpFunction::WriteResource, std::move(bytes).Bytes()};
}

DlpRequest PackEndOfSync(EndCode code) {
    ByteWriter bytes;
    bytes.U16(static_cast<unsigned>(code));
    return {DlpFunction::EndOfSync, std::move(bytes).Bytes()};
}

DlpRequest PackSyncLog(std::string_view text) {
    ByteWriter bytes;
    bytes.Text(text);
    return {DlpFunction::AddSyncLogEntry, std::move(bytes).Bytes()};
}
