#include "handheld/DlpServer.h"

#include "handheld/DlpRefused.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t MostInList = 20;
constexpr std::uint16_t NoIndex = 0xFFFF;
constexpr std::uint8_t RamBased = 0x40;

constexpr std::uint8_t NewSearch = 0x80;

constexpr std::uint8_t SetBackupDate = 0x80, SetModificationDate = 0x40;

void CheckName(std::string_view name) {
    if (name.empty() || name.size() > LongestDatabaseName) throw DlpRefused{DlpError::Parameter};
}

std::size_t LargestOf(const Database& database) {
    std::size_t largest = 0;
    for (const DatabaseRecord& record : database.Records) largest = std::max(largest, record.Data.size());
    for (const DatabaseResource& one : database.Resources) largest = std::max(largest, one.Data.size());
    return largest;
}

std::uint64_t DataOf(const Database& database) {
    std::uint64_t bytes = 0;
    for (const DatabaseRecord& record : database.Records) bytes += record.Data.size();
    for (const DatabaseResource& one : database.Resources) bytes += one.Data.size();
    return bytes;
}

} // namespace

// ---- the open database ----

CurrentDatabase& DlpServer::Open(std::uint8_t handle) {
    if (!open_) throw DlpRefused{DlpError::NoneOpen};
    if (handle != handle_) throw DlpRefused{DlpError::Parameter};
    return *open_;
}

CurrentDatabase& DlpServer::OpenForWriting(std::uint8_t handle) {
    CurrentDatabase& database = Open(handle);
    if ((mode_ & OpenWrite) == 0) throw DlpRefused{DlpError::ReadOnly};
    return database;
}

bool DlpServer::IsHidden(const DatabaseRecord& record) const {
    return (record.Flags & SecretRecord) != 0 && (mode_ & OpenSecret) == 0;
}

std::uint64_t DlpServer::Used() const {
    const std::uint64_t used = handheld_.Store.Used();
    if (!open_) return used;
    const DatabaseStore::Entry* const stored = handheld_.Store.Find(storedName_);
    return used - (stored ? stored->Bytes : 0) + open_->Bytes();
}

void DlpServer::CheckRoom(std::uint64_t more, std::uint64_t less) const {
    if (more > less && Used() - less + more > handheld_.Store.Memory()) throw DlpRefused{DlpError::NoSpace};
}

/// Writes the open database to its place, under the name that it has now.
void DlpServer::Keep() {
    handheld_.Store.SaveAs(storedName_, open_->Get());
    storedName_ = open_->Get().Name;
    open_->MarkSaved();
}

void DlpServer::Close() {
    if (!open_) return;
    try {
        if (open_->IsChanged()) Keep();
    } catch (...) {
        open_.reset(); // the desktop is told; what the file holds stays
        throw;
    }
    open_.reset();
}

DlpResponse DlpServer::OpenAs(DlpFunction function, Database database, std::uint8_t mode) {
    storedName_ = database.Name;
    open_.emplace(std::move(database));
    handle_ = handle_ == 0xFF ? 1 : static_cast<std::uint8_t>(handle_ + 1);
    mode_ = mode;
    cursor_ = 0;
    return {function, std::string(1, static_cast<char>(handle_))};
}

SyncActivity& DlpServer::ActivityOf(std::string_view name) {
    const auto found = std::find_if(activities_.begin(), activities_.end(),
                                    [name](const SyncActivity& activity) { return activity.Name == name; });
    if (found != activities_.end()) return *found;
    activities_.push_back({.Name = std::string(name)});
    return activities_.back();
}

/// A database has another name: what was told under it is history.
void DlpServer::MoveActivity(std::string_view from, std::string_view to) {
    SyncActivity moved = ActivityOf(from);
    moved.Name = to;
    moved.IsMade = true;
    std::erase_if(activities_, [&](const SyncActivity& one) { return one.Name == from || one.Name == to; });
    activities_.push_back(std::move(moved));
}

// ---- lists and searches ----

const DatabaseHeader& DlpServer::HeaderOf(const DatabaseStore::Entry& entry) const {
    const bool isOpen = open_ && entry.Header.Name == storedName_;
    return isOpen ? static_cast<const DatabaseHeader&>(open_->Get()) : entry.Header;
}

DatabaseInfo DlpServer::InfoOf(const DatabaseStore::Entry& entry, std::size_t index) const {
    DatabaseInfo info;
    static_cast<DatabaseHeader&>(info) = HeaderOf(entry);
    info.MiscFlags = RamBased;
    info.Index = static_cast<std::uint16_t>(index);
    return info;
}

DlpResponse DlpServer::ReadDBList(const DlpRequest& request) {
    ByteReader from = Reading(request);
    const std::uint8_t flags = from.U8();
    const std::uint8_t card = from.U8();
    const std::size_t first = from.U16();
    const std::vector<DatabaseStore::Entry>& entries = handheld_.Store.Entries();
    // Nothing lies in ROM.
    if (card != 0 || (flags & ListRam) == 0 || first >= entries.size()) throw DlpRefused{DlpError::NotFound};

    const std::size_t most = (flags & ListSeveral) != 0 ? MostInList : 1;
    const std::size_t end = std::min(entries.size(), first + most);
    DatabaseList list;
    for (std::size_t at = first; at < end; ++at) list.Databases.push_back(InfoOf(entries[at], at));
    list.LastIndex = static_cast<std::uint16_t>(end - 1);
    list.More = end < entries.size();
    return PackDatabaseList(list);
}

DlpResponse DlpServer::FindDB(const DlpRequest& request) {
    if (request.Arguments.size() > 1) throw DlpRefused{DlpError::Parameter};
    const std::vector<DatabaseStore::Entry>& entries = handheld_.Store.Entries();
    const auto placeOf = [&](std::string_view name) {
        const auto found =
            std::find_if(entries.begin(), entries.end(),
                         [&](const DatabaseStore::Entry& entry) { return entry.Header.Name == name; });
        if (found == entries.end()) throw DlpRefused{DlpError::NotFound};
        return static_cast<std::size_t>(found - entries.begin());
    };
    if (request.Find(0x20)) {
        ByteReader from = Reading(request);
        const std::uint8_t options = from.U8();
        CheckCard(from.U8());
        // What is found by its name tells no sizes of its blocks and records.
        return Found(placeOf(from.TakeText()), static_cast<std::uint8_t>(options & ~FindLargest));
    }
    if (request.Find(0x21)) {
        ByteReader from = Reading(request, 0x21);
        const std::uint8_t options = from.U8();
        Open(from.U8());
        return Found(placeOf(storedName_), options);
    }
    ByteReader from = Reading(request, 0x22);
    const std::uint8_t options = from.U8();
    const std::uint8_t flags = from.U8();
    const std::uint32_t type = from.U32();
    const std::uint32_t creator = from.U32();
    if ((flags & NewSearch) != 0) search_ = 0;
    for (; search_ < entries.size(); ++search_) {
        const DatabaseHeader& header = HeaderOf(entries[search_]);
        if ((type == 0 || header.Type == type) && (creator == 0 || header.Creator == creator)) {
            return Found(search_++, static_cast<std::uint8_t>(options & ~FindLargest));
        }
    }
    throw DlpRefused{DlpError::NotFound};
}

DlpResponse DlpServer::Found(std::size_t entry, std::uint8_t options) {
    DlpResponse response(DlpFunction::FindDB);
    const DatabaseStore::Entry& found = handheld_.Store.Entries().at(entry);
    const bool isOpen = open_ && found.Header.Name == storedName_;
    if ((options & FindAttributes) != 0) {
        ByteWriter bytes;
        bytes.U8(0).U8(0).U32(static_cast<std::uint32_t>(entry + 1)).U32(isOpen ? handle_ : 0);
        bytes.Put(PackDatabaseInfo(InfoOf(found, NoIndex)));
        response.Arguments.push_back({0x20, std::move(bytes).Bytes()});
    }
    if ((options & (FindSizes | FindLargest)) != 0)
        response.Arguments.push_back({0x21, SizesOf(entry, options)});
    return response;
}

std::string DlpServer::SizesOf(std::size_t entry, std::uint8_t options) const {
    const DatabaseStore::Entry& found = handheld_.Store.Entries().at(entry);
    const bool isOpen = open_ && found.Header.Name == storedName_;
    const Database loaded = isOpen ? Database{} : handheld_.Store.Load(found.Header.Name);
    const Database& database = isOpen ? open_->Get() : loaded;
    const auto u32 = [](std::uint64_t value) { return static_cast<std::uint32_t>(value); };
    const std::size_t count = database.IsResource() ? database.Resources.size() : database.Records.size();
    ByteWriter bytes;
    bytes.U32(u32(count)).U32(u32(DatabaseStore::BytesOf(database))).U32(u32(DataOf(database)));
    bytes.U32(isOpen ? u32(database.AppInfo.size()) : 0).U32(isOpen ? u32(database.SortInfo.size()) : 0);
    bytes.U32((options & FindLargest) != 0 ? u32(LargestOf(database)) : 0);
    return std::move(bytes).Bytes();
}

// ---- opening, making, closing ----

DlpResponse DlpServer::OpenDB(const DlpRequest& request) {
    ByteReader from = Reading(request);
    CheckCard(from.U8());
    const std::uint8_t mode = from.U8();
    const std::string_view name = from.TakeText();
    if ((mode & (OpenRead | OpenWrite)) == 0) throw DlpRefused{DlpError::Parameter};
    const DatabaseStore::Entry* const entry = handheld_.Store.Find(name);
    if (!entry) throw DlpRefused{DlpError::NotFound};
    if (open_) throw DlpRefused{DlpError::TooManyOpen};
    if ((entry->Header.Flags & ReadOnlyDatabase) != 0 && (mode & OpenWrite) != 0) {
        throw DlpRefused{DlpError::ReadOnly};
    }
    Database database;
    try {
        database = handheld_.Store.Load(name);
    } catch (const Refusal&) {
        throw DlpRefused{DlpError::CannotOpen};
    }
    ActivityOf(name).IsOpened = true;
    return OpenAs(request.Function, std::move(database), mode);
}

DlpResponse DlpServer::CreateDB(const DlpRequest& request) {
    ByteReader from = Reading(request);
    Database database;
    database.Creator = from.U32();
    database.Type = from.U32();
    CheckCard(from.U8());
    from.Skip(1);
    database.Flags = static_cast<std::uint16_t>(from.U16() & ~OpenDatabase);
    database.Version = from.U16();
    database.Name = from.TakeText();
    CheckName(database.Name);
    if (open_) throw DlpRefused{DlpError::TooManyOpen};
    if (handheld_.Store.Has(database.Name)) throw DlpRefused{DlpError::Exists};
    CheckRoom(DatabaseStore::BytesOf(database));
    if (handheld_.Store.Entries().size() >= NoIndex) throw DlpRefused{DlpError::LimitExceeded};

    database.Created = database.Modified = ToDlpDate(handheld_.Clock()).Seconds();
    database.IdSeed = handheld_.Settings.IdSeed;
    handheld_.Store.Save(database);
    ActivityOf(database.Name).IsMade = true;
    return OpenAs(request.Function, std::move(database), OpenRead | OpenWrite | OpenSecret);
}

DlpResponse DlpServer::CloseDB(const DlpRequest& request) {
    if (request.Find(0x21)) {
        Close();
        return DlpResponse(request.Function);
    }
    const bool hasOptions = request.Find(0x20) == nullptr;
    ByteReader from = Reading(request, hasOptions ? 0x22 : 0x20);
    CurrentDatabase& database = Open(from.U8());
    const std::uint8_t options = hasOptions ? from.U8() : 0;
    const std::uint32_t now = ToDlpDate(handheld_.Clock()).Seconds();
    if (database.IsChanged() || (options & SetModificationDate) != 0) {
        database.ChangeHeader([&](DatabaseHeader& header) { header.Modified = now; });
    }
    if ((options & SetBackupDate) != 0) {
        database.ChangeHeader([&](DatabaseHeader& header) { header.BackedUp = now; });
    }
    Close();
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::DeleteDB(const DlpRequest& request) {
    ByteReader from = Reading(request);
    CheckCard(from.U8());
    from.Skip(1);
    const std::string_view name = from.TakeText();
    if (!handheld_.Store.Has(name)) throw DlpRefused{DlpError::NotFound};
    if (open_ && name == storedName_) throw DlpRefused{DlpError::AlreadyOpen};
    handheld_.Store.Remove(name);
    SyncActivity& activity = ActivityOf(name);
    activity = {
        .Name = activity.Name, .Read = activity.Read, .IsOpened = activity.IsOpened, .IsDeleted = true};
    return DlpResponse(request.Function);
}

DlpResponse DlpServer::ReadOpenDBInfo(const DlpRequest& request) {
    const std::size_t count = Open(Reading(request).U8()).Count();
    return {request.Function, ByteWriter().U16(static_cast<unsigned>(count)).Bytes()};
}

DlpResponse DlpServer::SetDBInfo(const DlpRequest& request) {
    ByteReader from = Reading(request);
    CurrentDatabase& database = OpenForWriting(from.U8());
    from.Skip(1);
    const std::uint16_t clear = from.U16(), set = from.U16(), version = from.U16();
    const auto seconds = [&](std::uint32_t kept) {
        const DlpDate date = ReadDate(from.Take(8));
        return date.Seconds() == 0 ? kept : date.Seconds();
    };
    auto header = static_cast<const DatabaseHeader&>(database.Get());
    header.Created = seconds(header.Created);
    header.Modified = seconds(header.Modified);
    header.BackedUp = seconds(header.BackedUp);
    const std::uint32_t type = from.U32(), creator = from.U32();
    const std::string_view name = from.TakeText();

    // What a database holds does not change by a flag.
    if (((clear | set) & ResourceDatabase) != 0) throw DlpRefused{DlpError::Parameter};
    header.Flags = static_cast<std::uint16_t>(((header.Flags & ~clear) | set) & ~OpenDatabase);
    if (version != KeepVersion) header.Version = version;
    if (type != 0) header.Type = type;
    if (creator != 0) header.Creator = creator;
    if (!name.empty() && name != header.Name) {
        CheckName(name);
        if (handheld_.Store.Has(name)) throw DlpRefused{DlpError::Exists};
        MoveActivity(header.Name, name);
        header.Name = name;
    }
    database.ChangeHeader([&](DatabaseHeader& own) { own = header; });
    Keep();
    return DlpResponse(request.Function);
}

// ---- blocks ----

DlpResponse DlpServer::ReadAppBlock(const DlpRequest& request) {
    return ReadBlock(request.Function, request, false);
}

DlpResponse DlpServer::ReadSortBlock(const DlpRequest& request) {
    return ReadBlock(request.Function, request, true);
}

DlpResponse DlpServer::ReadBlock(DlpFunction function, const DlpRequest& request, bool sort) {
    ByteReader from = Reading(request);
    const Database& database = Open(from.U8()).Get();
    from.Skip(1);
    const std::size_t offset = from.U16(), count = from.U16();
    const std::string& block = sort ? database.SortInfo : database.AppInfo;
    if (block.empty()) throw DlpRefused{DlpError::NotFound};
    if (offset > block.size()) throw DlpRefused{DlpError::Parameter};
    ByteWriter bytes;
    bytes.U16(static_cast<unsigned>(block.size()));
    bytes.Put(std::string_view(block).substr(offset, count == ToTheEnd ? block.size() : count));
    return {function, std::move(bytes).Bytes()};
}

DlpResponse DlpServer::WriteAppBlock(const DlpRequest& request) {
    return WriteBlock(request.Function, request, false);
}

DlpResponse DlpServer::WriteSortBlock(const DlpRequest& request) {
    return WriteBlock(request.Function, request, true);
}

DlpResponse DlpServer::WriteBlock(DlpFunction function, const DlpRequest& request, bool sort) {
    ByteReader from = Reading(request);
    CurrentDatabase& database = OpenForWriting(from.U8());
    from.Skip(1);
    const std::size_t size = from.U16();
    const std::string_view block = from.Rest();
    if (block.size() != size) throw DlpRefused{DlpError::ArgumentSize};
    if (size > LongestRecord) throw DlpRefused{DlpError::LimitExceeded};
    CheckRoom(size, (sort ? database.Get().SortInfo : database.Get().AppInfo).size());
    if (sort) {
        database.SetSortInfo(std::string(block));
    } else {
        database.SetAppInfo(std::string(block));
    }
    return DlpResponse(function);
}
