#include "handheld/DlpServer.h"

#include "handheld/DlpRefused.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint8_t WritableFlags = DeletedRecord | DirtyRecord | SecretRecord | ArchivedRecord;
constexpr std::uint8_t DeleteAll = 0x80, DeleteCategory = 0x40;
constexpr std::size_t MostIds = 500;

std::uint8_t Category(unsigned number) {
    if (number > LastCategory) throw DlpRefused{DlpError::Parameter};
    return static_cast<std::uint8_t>(number);
}

/// The piece of a record or resource that was asked for.
std::string_view Piece(std::string_view data, std::size_t offset, std::size_t count) {
    if (offset > data.size()) throw DlpRefused{DlpError::Parameter};
    return data.substr(offset, count == ToTheEnd ? data.size() : count);
}

} // namespace

CurrentDatabase& DlpServer::RecordsOf(std::uint8_t handle) {
    CurrentDatabase& database = Open(handle);
    if (database.Get().IsResource()) throw DlpRefused{DlpError::NotSupported};
    return database;
}

CurrentDatabase& DlpServer::ResourcesOf(std::uint8_t handle) {
    CurrentDatabase& database = Open(handle);
    if (!database.Get().IsResource()) throw DlpRefused{DlpError::NotSupported};
    return database;
}

DlpResponse DlpServer::RecordAt(DlpFunction function, std::size_t index, std::uint16_t offset,
                                std::uint16_t count) {
    const std::vector<DatabaseRecord>& records = open_->Get().Records;
    if (index >= records.size() || IsHidden(records[index])) throw DlpRefused{DlpError::NotFound};
    const DatabaseRecord& record = records[index];
    RecordAnswer answer;
    answer.Record = {record.Flags, record.Category, record.Id,
                     std::string(Piece(record.Data, offset, count))};
    answer.Index = static_cast<std::uint16_t>(index);
    answer.Size = static_cast<std::uint16_t>(record.Data.size());
    if (offset == 0 && count != 0) ++ActivityOf(open_->Get().Name).Read;
    return PackRecord(function, answer);
}

DlpResponse DlpServer::ReadRecord(const DlpRequest& request) {
    const bool byId = request.Find(0x20) != nullptr;
    ByteReader from = Reading(request, byId ? 0x20 : 0x21);
    CurrentDatabase& database = RecordsOf(from.U8());
    from.Skip(1);
    const std::size_t index = byId ? database.FindRecord(from.U32()) : from.U16();
    const std::uint16_t offset = from.U16();
    return RecordAt(request.Function, index, offset, from.U16());
}

DlpResponse DlpServer::ReadNextModifiedRec(const DlpRequest& request) {
    const std::vector<DatabaseRecord>& records = RecordsOf(Reading(request).U8()).Get().Records;
    for (; cursor_ < records.size(); ++cursor_) {
        const DatabaseRecord& record = records[cursor_];
        if ((record.Flags & DirtyRecord) != 0 && !IsHidden(record)) {
            return RecordAt(request.Function, cursor_++, 0, ToTheEnd);
        }
    }
    throw DlpRefused{DlpError::NotFound};
}

DlpResponse DlpServer::ResetRecordIndex(const DlpRequest& request) {
    RecordsOf(Reading(request).U8());
    cursor_ = 0;
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadRecordIDList(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::vector<DatabaseRecord>& records = RecordsOf(from.U8()).Get().Records;
    from.Skip(1); // the order is that of the records; no application stands by that could sort them
    const std::size_t first = from.U16(), most = std::min<std::size_t>(from.U16(), MostIds);
    if (first >= records.size()) throw DlpRefused{DlpError::NotFound};
    const std::size_t end = std::min(records.size(), first + most);
    ByteWriter bytes;
    bytes.U16(static_cast<unsigned>(end - first));
    for (std::size_t at = first; at < end; ++at) bytes.U32(records[at].Id);
    return {request.Function, std::move(bytes).Bytes()};
}

DlpResponse DlpServer::WriteRecord(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t handle = from.U8();
    RecordsOf(handle);
    CurrentDatabase& database = OpenForWriting(handle);
    if ((from.U8() & DataIncluded) == 0) throw DlpRefused{DlpError::Parameter};
    DatabaseRecord record;
    record.Id = from.U32();
    if (record.Id > LastRecordId) throw DlpRefused{DlpError::Parameter};
    record.Flags = static_cast<std::uint8_t>(from.U8() & WritableFlags);
    record.Category = Category(from.U8());
    record.Data = from.Rest();
    if (record.Data.size() > LongestRecord) throw DlpRefused{DlpError::LimitExceeded};

    const std::size_t index = record.Id == 0 ? CurrentDatabase::None : database.FindRecord(record.Id);
    const bool isNew = index == CurrentDatabase::None;
    if (isNew && database.Count() >= MostRecords) throw DlpRefused{DlpError::LimitExceeded};
    CheckRoom(record.Data.size() + (isNew ? RecordEntryBytes : 0),
              isNew ? 0 : database.Get().Records[index].Data.size());
    const std::uint32_t id = database.PutRecord(std::move(record));
    ++ActivityOf(database.Get().Name).Written;
    return {request.Function, ByteWriter().U32(id).Bytes()};
}

DlpResponse DlpServer::DeleteRecord(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t handle = from.U8();
    RecordsOf(handle);
    CurrentDatabase& database = OpenForWriting(handle);
    const std::uint8_t flags = from.U8();
    const std::uint32_t id = from.U32();
    if ((flags & DeleteAll) != 0) {
        database.RemoveRecordsIf([](const DatabaseRecord&) { return true; });
    } else if ((flags & DeleteCategory) != 0) {
        const std::uint8_t category = Category(id & 0xFF);
        database.RemoveRecordsIf([&](const DatabaseRecord& record) { return record.Category == category; });
    } else {
        const std::size_t index = database.FindRecord(id);
        if (index == CurrentDatabase::None) throw DlpRefused{DlpError::NotFound};
        database.RemoveRecord(index);
        if (index < cursor_) --cursor_;
        return DlpResponse(request.Function);
    }
    cursor_ = 0;
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::CleanUpDatabase(const DlpRequest& request) {
    const std::uint8_t handle = Reading(request).U8();
    RecordsOf(handle);
    OpenForWriting(handle).RemoveRecordsIf(
        [](const DatabaseRecord& record) { return (record.Flags & (DeletedRecord | ArchivedRecord)) != 0; });
    cursor_ = 0;
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ResetSyncFlags(const DlpRequest& request) {
    CurrentDatabase& database = Open(Reading(request).U8());
    database.ForEachRecord([](DatabaseRecord& record) {
        record.Flags = static_cast<std::uint8_t>(record.Flags & ~DirtyRecord);
    });
    const std::uint32_t now = ToDlpDate(handheld_.Clock()).Seconds();
    database.ChangeHeader([&](DatabaseHeader& header) { header.BackedUp = now; });
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::MoveCategory(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t handle = from.U8();
    RecordsOf(handle);
    CurrentDatabase& database = OpenForWriting(handle);
    const std::uint8_t source = Category(from.U8()), target = Category(from.U8());
    database.ForEachRecord([&](DatabaseRecord& record) {
        if (record.Category != source) return;
        record.Category = target;
        record.Flags |= DirtyRecord;
    });
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadResource(const DlpRequest& request) {
    const bool byIndex = request.Find(0x20) != nullptr;
    ByteReader from = Reading(request, byIndex ? 0x20 : 0x21);
    const CurrentDatabase& database = ResourcesOf(from.U8());
    from.Skip(1);
    std::size_t index = 0;
    if (byIndex) {
        index = from.U16();
    } else {
        const std::uint32_t type = from.U32();
        index = database.FindResource(type, from.U16());
    }
    const std::size_t offset = from.U16(), count = from.U16();
    if (index >= database.Count()) throw DlpRefused{DlpError::NotFound};
    const DatabaseResource& resource = database.Get().Resources[index];
    ByteWriter bytes;
    bytes.U32(resource.Type).U16(resource.Id).U16(static_cast<unsigned>(index));
    bytes.U16(static_cast<unsigned>(resource.Data.size())).Put(Piece(resource.Data, offset, count));
    if (offset == 0 && count != 0) ++ActivityOf(database.Get().Name).Read;
    return {request.Function, std::move(bytes).Bytes()};
}

DlpResponse DlpServer::WriteResource(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t handle = from.U8();
    ResourcesOf(handle);
    CurrentDatabase& database = OpenForWriting(handle);
    from.Skip(1);
    DatabaseResource resource;
    resource.Type = from.U32();
    resource.Id = from.U16();
    const std::size_t size = from.U16();
    resource.Data = from.Rest();
    if (resource.Data.size() != size) throw DlpRefused{DlpError::ArgumentSize};
    if (size == 0) throw DlpRefused{DlpError::Parameter};
    if (size > LongestRecord) throw DlpRefused{DlpError::LimitExceeded};

    const std::size_t index = database.FindResource(resource.Type, resource.Id);
    const bool isNew = index == CurrentDatabase::None;
    if (isNew && database.Count() >= MostRecords) throw DlpRefused{DlpError::LimitExceeded};
    CheckRoom(size + (isNew ? ResourceEntryBytes : 0),
              isNew ? 0 : database.Get().Resources[index].Data.size());
    database.PutResource(std::move(resource));
    ++ActivityOf(database.Get().Name).Written;
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::DeleteResource(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t handle = from.U8();
    ResourcesOf(handle);
    CurrentDatabase& database = OpenForWriting(handle);
    const bool all = (from.U8() & DeleteAll) != 0;
    const std::uint32_t type = from.U32();
    const std::size_t index = database.FindResource(type, from.U16());
    if (all) {
        database.RemoveAllResources();
    } else {
        if (index == CurrentDatabase::None) throw DlpRefused{DlpError::NotFound};
        database.RemoveResource(index);
    }
    return DlpResponse(request.Function);
}
