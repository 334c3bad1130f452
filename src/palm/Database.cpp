#include "palm/Database.h"

#include <algorithm>
#include <unordered_map>

namespace {

constexpr const char* What = "handheld database";
constexpr std::size_t NameSize = 32;

/// The blocks of a file: each ends where the next one begins.
class Blocks {
public:
    Blocks(std::string_view file, std::size_t first) : file_(file), first_(first) {}

    void Add(std::uint32_t offset) {
        if (offset == 0) return;
        if (offset < first_ || offset > file_.size()) {
            throw PalmFailure(std::string(What) + ": a block at " + std::to_string(offset) + " lies outside");
        }
        begins_.push_back(offset);
    }
    void Sort() { std::sort(begins_.begin(), begins_.end()); }

    /// `shared`: another block that begins there holds the bytes, and this one none.
    std::string At(std::uint32_t offset, bool shared = false) const {
        if (offset == 0 || shared) return {};
        const auto next = std::upper_bound(begins_.begin(), begins_.end(), offset);
        const std::size_t end = next == begins_.end() ? file_.size() : *next;
        return std::string(file_.substr(offset, end - offset));
    }

private:
    std::string_view file_;
    std::size_t first_;
    std::vector<std::uint32_t> begins_;
};

void CheckBlock(std::string_view block) {
    if (block.size() > LongestRecord) {
        throw PalmFailure(std::string(What) + ": a block of " + std::to_string(block.size()) + " bytes");
    }
}

/// Where the blocks of a file begin. 0 is none.
struct Places {
    std::uint32_t AppInfo = 0, SortInfo = 0;
    std::vector<std::uint32_t> Entries; ///< one a record or resource, never 0
};

/// All that the header says; of the entries, `places` has the number.
Database ReadHeader(ByteReader& header, Places& places) {
    Database database;
    const std::string_view name = header.Take(NameSize);
    if (name.find('\0') == std::string_view::npos) header.Fail("a name without its end");
    database.Name = name.substr(0, name.find('\0'));
    if (database.Name.empty()) header.Fail("a name without a character");
    database.Flags = static_cast<std::uint16_t>(header.U16() & ~OpenDatabase);
    database.Version = header.U16();
    database.Created = header.U32();
    database.Modified = header.U32();
    database.BackedUp = header.U32();
    database.ModificationNumber = header.U32();
    places.AppInfo = header.U32();
    places.SortInfo = header.U32();
    database.Type = header.U32();
    database.Creator = header.U32();
    database.IdSeed = header.U32() & LastRecordId;
    if (header.U32() != 0) header.Fail("a second list of records");
    places.Entries.resize(header.U16());
    return database;
}

/// An entry for each record or resource: all but its block.
void ReadList(ByteReader list, Database& database, Places& places) {
    for (std::uint32_t& offset : places.Entries) {
        if (database.IsResource()) {
            DatabaseResource& resource = database.Resources.emplace_back();
            resource.Type = list.U32();
            resource.Id = list.U16();
            offset = list.U32();
        } else {
            DatabaseRecord& record = database.Records.emplace_back();
            offset = list.U32();
            const std::uint32_t rest = list.U32();
            record.Flags = static_cast<std::uint8_t>(rest >> 24 & 0xF0);
            record.Category = static_cast<std::uint8_t>(rest >> 24 & 0x0F);
            record.Id = rest & LastRecordId;
        }
        if (offset == 0) list.Fail("an entry without a block");
    }
}

/// The bytes of each block, those of the whole database first.
void ReadBlocks(Blocks blocks, const Places& places, Database& database) {
    blocks.Add(places.AppInfo);
    blocks.Add(places.SortInfo);
    for (const std::uint32_t offset : places.Entries) blocks.Add(offset);
    blocks.Sort();
    // Of several that begin at one place the last in the list has the bytes, and the others have none.
    std::unordered_map<std::uint32_t, std::size_t> holders;
    for (std::size_t at = 0; at < places.Entries.size(); ++at) holders[places.Entries[at]] = at;
    const auto holdsRecord = [&](std::uint32_t offset) { return holders.contains(offset); };
    database.AppInfo =
        blocks.At(places.AppInfo, places.AppInfo == places.SortInfo || holdsRecord(places.AppInfo));
    database.SortInfo = blocks.At(places.SortInfo, holdsRecord(places.SortInfo));
    for (std::size_t at = 0; at < places.Entries.size(); ++at) {
        const std::uint32_t offset = places.Entries[at];
        std::string data = blocks.At(offset, holders[offset] != at);
        CheckBlock(data);
        (database.IsResource() ? database.Resources[at].Data : database.Records[at].Data) = std::move(data);
    }
    CheckBlock(database.AppInfo);
    CheckBlock(database.SortInfo);
}

std::size_t EntryBytes(const Database& database) {
    return database.IsResource() ? ResourceEntryBytes : RecordEntryBytes;
}

} // namespace

Database ReadDatabase(std::string_view file) {
    ByteReader header(file, What);
    Places places;
    Database database = ReadHeader(header, places);
    const std::size_t listBytes = places.Entries.size() * EntryBytes(database);
    ReadList(ByteReader(header.Take(listBytes), What), database, places);
    ReadBlocks(Blocks(file, DatabaseHeaderBytes + listBytes), places, database);
    return database;
}

std::string WriteDatabase(const Database& database) {
    const auto refuse = [](const std::string& problem) {
        throw PalmFailure(std::string(What) + ": " + problem);
    };
    const std::size_t count = database.IsResource() ? database.Resources.size() : database.Records.size();
    if (database.Name.empty() || database.Name.size() > LongestDatabaseName ||
        database.Name.find('\0') != std::string::npos) {
        refuse("the name \"" + database.Name + "\" has not 1 to 31 characters");
    }
    if (count > MostRecords) refuse(std::to_string(count) + " records are more than 65535");
    CheckBlock(database.AppInfo);
    CheckBlock(database.SortInfo);

    std::size_t at = DatabaseHeaderBytes + count * EntryBytes(database) + ListGapBytes;
    const auto place = [&](std::string_view block) {
        const std::size_t offset = at;
        at += block.size();
        if (at > 0xFFFFFFFF) refuse("more than 4 gigabytes");
        return static_cast<std::uint32_t>(offset);
    };
    ByteWriter file;
    file.Padded(database.Name, NameSize).U16(database.Flags & ~OpenDatabase & 0xFFFF).U16(database.Version);
    file.U32(database.Created).U32(database.Modified).U32(database.BackedUp);
    file.U32(database.ModificationNumber);
    file.U32(database.AppInfo.empty() ? 0 : place(database.AppInfo));
    file.U32(database.SortInfo.empty() ? 0 : place(database.SortInfo));
    file.U32(database.Type).U32(database.Creator).U32(database.IdSeed & LastRecordId).U32(0);
    file.U16(static_cast<unsigned>(count));
    for (const DatabaseResource& resource : database.Resources) {
        CheckBlock(resource.Data);
        if (database.IsResource()) file.U32(resource.Type).U16(resource.Id).U32(place(resource.Data));
    }
    for (const DatabaseRecord& record : database.Records) {
        CheckBlock(record.Data);
        if (database.IsResource()) continue;
        const std::uint32_t attributes = (record.Flags & 0xF0U) | (record.Category & 0x0FU);
        file.U32(place(record.Data)).U32(attributes << 24 | (record.Id & LastRecordId));
    }
    file.U16(0).Put(database.AppInfo).Put(database.SortInfo);
    if (database.IsResource()) {
        for (const DatabaseResource& resource : database.Resources) file.Put(resource.Data);
    } else {
        for (const DatabaseRecord& record : database.Records) file.Put(record.Data);
    }
    return std::move(file).Bytes();
}
