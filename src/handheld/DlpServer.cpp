#include "handheld/DlpServer.h"

#include "core/Failure.h"
#include "handheld/DlpRefused.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::uint32_t RomVersion = 0x04103000; // Palm OS 4.1.0
constexpr std::uint32_t Localization = 0x00010000;
constexpr std::string_view ProductId{"\0\x02\0\0", 4};
constexpr std::uint32_t LongestWireRecord = LongestRecord;

constexpr std::uint32_t SystemFeatures = FourCharacters("psys");
constexpr std::uint16_t RomVersionFeature = 1;

constexpr std::string_view CardName = "Stand-in";
constexpr std::string_view Manufacturer = "ZUK Tramble";

constexpr int DiskFull = 61;

/// A date of the wire that may be none, but nothing else that the settings could not be read with.
DlpDate CheckedDate(const DlpDate& date) {
    const bool isDate = date.Year >= HandheldSettings::FirstYear && !ToDateTime(date).IsZero();
    if (date.Year != 0 && !isDate) throw DlpRefused{DlpError::Parameter};
    return date;
}

std::string_view UpToNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

} // namespace

DlpServer::Handler DlpServer::HandlerOf(DlpFunction function) {
    static constexpr std::array<std::pair<DlpFunction, Handler>, 37> Handlers{{
        {DlpFunction::ReadUserInfo, &DlpServer::ReadUserInfo},
        {DlpFunction::WriteUserInfo, &DlpServer::WriteUserInfo},
        {DlpFunction::ReadSysInfo, &DlpServer::ReadSysInfo},
        {DlpFunction::GetSysDateTime, &DlpServer::GetSysDateTime},
        {DlpFunction::SetSysDateTime, &DlpServer::SetSysDateTime},
        {DlpFunction::ReadStorageInfo, &DlpServer::ReadStorageInfo},
        {DlpFunction::ReadDBList, &DlpServer::ReadDBList},
        {DlpFunction::OpenDB, &DlpServer::OpenDB},
        {DlpFunction::CreateDB, &DlpServer::CreateDB},
        {DlpFunction::CloseDB, &DlpServer::CloseDB},
        {DlpFunction::DeleteDB, &DlpServer::DeleteDB},
        {DlpFunction::ReadAppBlock, &DlpServer::ReadAppBlock},
        {DlpFunction::WriteAppBlock, &DlpServer::WriteAppBlock},
        {DlpFunction::ReadSortBlock, &DlpServer::ReadSortBlock},
        {DlpFunction::WriteSortBlock, &DlpServer::WriteSortBlock},
        {DlpFunction::ReadNextModifiedRec, &DlpServer::ReadNextModifiedRec},
        {DlpFunction::ReadRecord, &DlpServer::ReadRecord},
        {DlpFunction::WriteRecord, &DlpServer::WriteRecord},
        {DlpFunction::DeleteRecord, &DlpServer::DeleteRecord},
        {DlpFunction::ReadResource, &DlpServer::ReadResource},
        {DlpFunction::WriteResource, &DlpServer::WriteResource},
        {DlpFunction::DeleteResource, &DlpServer::DeleteResource},
        {DlpFunction::CleanUpDatabase, &DlpServer::CleanUpDatabase},
        {DlpFunction::ResetSyncFlags, &DlpServer::ResetSyncFlags},
        {DlpFunction::ResetSystem, &DlpServer::ResetSystem},
        {DlpFunction::AddSyncLogEntry, &DlpServer::AddSyncLogEntry},
        {DlpFunction::ReadOpenDBInfo, &DlpServer::ReadOpenDBInfo},
        {DlpFunction::MoveCategory, &DlpServer::MoveCategory},
        {DlpFunction::OpenConduit, &DlpServer::OpenConduit},
        {DlpFunction::EndOfSync, &DlpServer::EndOfSync},
        {DlpFunction::ResetRecordIndex, &DlpServer::ResetRecordIndex},
        {DlpFunction::ReadRecordIDList, &DlpServer::ReadRecordIDList},
        {DlpFunction::ReadNetSyncInfo, &DlpServer::ReadNetSyncInfo},
        {DlpFunction::WriteNetSyncInfo, &DlpServer::WriteNetSyncInfo},
        {DlpFunction::ReadFeature, &DlpServer::ReadFeature},
        {DlpFunction::FindDB, &DlpServer::FindDB},
        {DlpFunction::SetDBInfo, &DlpServer::SetDBInfo},
    }};
    for (const auto& [known, handler] : Handlers) {
        if (known == function) return handler;
    }
    return nullptr;
}

std::string DlpServer::Answer(std::string_view request) {
    const auto refusal = [request](DlpError error) {
        const unsigned id = request.empty() ? 0 : static_cast<unsigned char>(request.front());
        return PackResponse(DlpResponse(static_cast<DlpFunction>(id & 0x7F), error));
    };
    try {
        return PackResponse(Dispatch(request));
    } catch (const DlpRefused& refused) {
        return refusal(refused.Error);
    } catch (const PalmFailure&) { // a handler has asked an argument for more than it holds
        return refusal(DlpError::ArgumentSize);
    } catch (const Refusal&) {
        return refusal(DlpError::System);
    } catch (const RunTimeFailure& failure) {
        return refusal(failure.Number() == DiskFull ? DlpError::NoSpace : DlpError::System);
    }
}

DlpResponse DlpServer::Dispatch(std::string_view message) {
    if (message.empty()) throw DlpRefused{DlpError::BadArgument};
    const Handler handler = HandlerOf(static_cast<DlpFunction>(message.front()));
    if (!handler) throw DlpRefused{DlpError::UnknownFunction};
    if (ended_) throw DlpRefused{DlpError::System};
    DlpRequest request;
    try {
        request = ReadRequest(message);
    } catch (const PalmFailure&) {
        throw DlpRefused{DlpError::BadArgument};
    }
    return (this->*handler)(request);
}

void DlpServer::EndWithout(std::string_view words) {
    HandheldSettings& settings = handheld_.Settings;
    settings.LastEnd = words.substr(0, HandheldSettings::LongestEnd);
    settings.User.LastSync = ToDlpDate(handheld_.Clock());
    // The data first: the end that cannot be written down loses nothing.
    try {
        Close();
    } catch (...) {
        handheld_.SaveSettings();
        throw;
    }
    handheld_.SaveSettings();
}

DlpResponse DlpServer::ReadUserInfo(const DlpRequest&) {
    return PackUserInfo(handheld_.Settings.User);
}

DlpResponse DlpServer::WriteUserInfo(const DlpRequest& request) {
    RequiredArgument(request);
    const UserChange change = ReadUserChange(request);
    const auto isSet = [&](std::uint8_t flag) { return (change.Flags & flag) != 0; };
    UserInfo& user = handheld_.Settings.User;
    if (isSet(UserChange::SetSyncDate)) user.LastSync = CheckedDate(change.SyncDate);
    if (isSet(UserChange::SetUserId)) user.UserId = change.UserId;
    if (isSet(UserChange::SetLastSyncPC)) user.LastSyncPC = change.LastSyncPC;
    if (isSet(UserChange::SetName)) user.Name = change.Name;
    if (isSet(UserChange::SetViewerId)) user.ViewerId = change.ViewerId;
    handheld_.SaveSettings();
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadSysInfo(const DlpRequest&) {
    // Desktops of the first version send no argument, so none is asked for.
    return PackSysInfo({RomVersion, Localization, std::string(ProductId), 1, 2, 3, 0, LongestWireRecord});
}

DlpResponse DlpServer::GetSysDateTime(const DlpRequest& request) {
    return {request.Function, PackDate(ToDlpDate(handheld_.Clock()))};
}

DlpResponse DlpServer::SetSysDateTime(const DlpRequest& request) {
    const DlpDate date = ReadDate(RequiredArgument(request));
    if (ToDateTime(date).IsZero() || date.Seconds() == 0) throw DlpRefused{DlpError::Parameter};
    handheld_.SetClock(ToDateTime(date));
    handheld_.SaveSettings();
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadStorageInfo(const DlpRequest& request) {
    if (Reading(request).U8() != 0) throw DlpRefused{DlpError::NotFound};
    const std::uint64_t memory = handheld_.Store.Memory();
    const std::uint64_t left = memory - std::min(memory, Used());
    const std::size_t size = 26 + CardName.size() + Manufacturer.size();

    ByteWriter bytes;
    bytes.U8(0).U8(1).U8(0).U8(1); // handhelds say that more follows also when none does
    bytes.U8(static_cast<unsigned>(size + size % 2)).U8(0).U16(1);
    bytes.Put(PackDate({}))
        .U32(0)
        .U32(static_cast<std::uint32_t>(memory))
        .U32(static_cast<std::uint32_t>(left));
    bytes.U8(static_cast<unsigned>(CardName.size())).U8(static_cast<unsigned>(Manufacturer.size()));
    bytes.Put(CardName).Put(Manufacturer).Put(std::string(size % 2, '\0'));
    DlpResponse response(request.Function, std::move(bytes).Bytes());

    ByteWriter counts;
    counts.U16(0).U16(static_cast<unsigned>(handheld_.Store.Entries().size())).U32(0).U32(0).U32(0).U32(0);
    response.Arguments.push_back({0x21, std::move(counts).Bytes()});
    return response;
}

DlpResponse DlpServer::OpenConduit(const DlpRequest& request) {
    if (cancelled_) throw DlpRefused{DlpError::Cancelled};
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::AddSyncLogEntry(const DlpRequest& request) {
    const std::string_view text = Reading(request).TakeText();
    if (log_.size() + text.size() + 1 > LongestLog) throw DlpRefused{DlpError::LimitExceeded};
    log_ += text;
    hasLog_ = true;
    handheld_.WriteLog(log_);
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ResetSystem(const DlpRequest& request) {
    restart_ = true;
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::EndOfSync(const DlpRequest& request) {
    const std::uint16_t code = Reading(request).U16();
    if (code > static_cast<std::uint16_t>(EndCode::Incompatible)) throw DlpRefused{DlpError::Parameter};
    Close();
    ended_ = static_cast<EndCode>(code);
    HandheldSettings& settings = handheld_.Settings;
    const DlpDate now = ToDlpDate(handheld_.Clock());
    settings.User.LastSync = now;
    if (ended_ == EndCode::Normal) settings.User.LastGoodSync = now;
    settings.LastEnd =
        ended_ == EndCode::Normal ? "done" : "ended by the desktop, code " + std::to_string(code);
    if (!hasLog_) handheld_.WriteLog({});
    handheld_.SaveSettings();
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadNetSyncInfo(const DlpRequest& request) {
    const HandheldSettings& settings = handheld_.Settings;
    const std::array<std::string_view, 3> texts{settings.PCName, settings.PCAddress, settings.PCMask};
    ByteWriter bytes;
    bytes.U8(settings.LanSync ? 1 : 0).U8(0).U32(0).U32(0).U32(0).U32(0);
    for (const std::string_view text : texts)
        bytes.U16(text.empty() ? 0 : static_cast<unsigned>(text.size() + 1));
    for (const std::string_view text : texts) {
        if (!text.empty()) bytes.Text(text);
    }
    return {request.Function, std::move(bytes).Bytes()};
}

DlpResponse DlpServer::WriteNetSyncInfo(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t flags = from.U8();
    const bool isOn = from.U8() != 0;
    from.Skip(16);
    std::array<std::size_t, 3> sizes{};
    for (std::size_t& size : sizes) size = from.U16();
    std::array<std::string, 3> texts;
    for (std::size_t at = 0; at < texts.size(); ++at) {
        texts.at(at) = UpToNul(from.Take(sizes.at(at)));
        if (texts.at(at).size() > HandheldSettings::LongestHostName) throw DlpRefused{DlpError::Parameter};
    }
    HandheldSettings& settings = handheld_.Settings;
    if ((flags & 0x80) != 0) settings.LanSync = isOn;
    if ((flags & 0x40) != 0) settings.PCName = texts[0];
    if ((flags & 0x20) != 0) settings.PCAddress = texts[1];
    if ((flags & 0x10) != 0) settings.PCMask = texts[2];
    handheld_.SaveSettings();
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadFeature(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint32_t creator = from.U32();
    if (from.U16() != RomVersionFeature || creator != SystemFeatures) throw DlpRefused{DlpError::NotFound};
    return {request.Function, ByteWriter().U32(RomVersion).Bytes()};
}
