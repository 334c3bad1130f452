#include "handheld/DatabaseStore.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <array>

namespace {

/// A file is read up to here even when the handheld's memory was made smaller since.
constexpr std::uint64_t LeastReadLimit = std::uint64_t{64} << 20;

bool IsDatabaseFile(std::string_view file) {
    const std::string_view extension = ExtensionOf(file);
    return SameText(extension, ".pdb") || SameText(extension, ".prc");
}

std::string Quoted(std::string_view name) {
    return '"' + CodePageToUtf8(name) + '"';
}

/// The first bytes of a file as that of a database without anything in it.
DatabaseHeader HeaderOf(std::string bytes) {
    bytes.resize(std::min(bytes.size(), DatabaseHeaderBytes));
    // Where the blocks and the list would be does not matter here.
    if (bytes.size() == DatabaseHeaderBytes) bytes.replace(52, 8, 8, '\0').replace(68, 10, 10, '\0');
    return static_cast<const DatabaseHeader&>(ReadDatabase(bytes));
}

} // namespace

std::string EscapedName(std::string_view name) {
    constexpr std::string_view hex = "0123456789ABCDEF";
    constexpr std::string_view kept = "_-#$~. ";
    std::string escaped;
    const auto escape = [&](unsigned char c) {
        escaped += '%';
        escaped += hex[c >> 4];
        escaped += hex[c & 15];
    };
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char c = name[at];
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        const bool atEnd = at == 0 || at + 1 == name.size();
        const bool isPlain =
            isLetter || (kept.find(c) != std::string_view::npos && !(atEnd && (c == '.' || c == ' ')));
        if (isPlain) {
            escaped += c;
        } else {
            escape(static_cast<unsigned char>(c));
        }
    }
    // A name that some system keeps for a device.
    if (!escaped.empty() && !IsNameForNewFile(escaped)) {
        const auto first = static_cast<unsigned char>(escaped.front());
        const std::string rest = escaped.substr(1);
        escaped.clear();
        escape(first);
        escaped += rest;
    }
    return escaped;
}

DatabaseStore::DatabaseStore(std::string folder, std::uint64_t memory)
    : folder_(std::move(folder)),
      memory_(memory) {
    for (const std::string& file : Global.TheDisk->FilesIn(folder_)) {
        if (!IsDatabaseFile(file)) continue;
        Entry entry = ReadEntry(file);
        if (const Entry* const other = Find(entry.Header.Name)) {
            throw Refusal(folder_ + file + ": " + other->File + " is the database " +
                          Quoted(entry.Header.Name) + " too");
        }
        used_ += entry.Bytes;
        entries_.push_back(std::move(entry));
    }
}

DatabaseStore::Entry DatabaseStore::ReadEntry(const std::string& file) const {
    const auto opened = Global.TheDisk->Open(folder_ + file, Access::Read);
    std::string head(DatabaseHeaderBytes, '\0');
    head.resize(opened->ReadAt(0, head.data(), head.size()));
    try {
        return {HeaderOf(head), file, opened->Size()};
    } catch (const PalmFailure& failure) {
        throw Refusal(folder_ + file + ": " + failure.what());
    }
}

const DatabaseStore::Entry* DatabaseStore::Find(std::string_view name) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [name](const Entry& entry) { return entry.Header.Name == name; });
    return found == entries_.end() ? nullptr : &*found;
}

Database DatabaseStore::Load(std::string_view name) const {
    const Entry* const entry = Find(name);
    if (!entry) throw Refusal("the handheld has no database " + Quoted(name));
    const std::string path = folder_ + entry->File;
    try {
        return ReadDatabase(ReadWholeFile(path, std::max(memory_, LeastReadLimit)));
    } catch (const PalmFailure& failure) {
        throw Refusal(path + ": " + failure.what());
    }
}

std::uint64_t DatabaseStore::BytesOf(const Database& database) {
    std::uint64_t bytes =
        DatabaseHeaderBytes + ListGapBytes + database.AppInfo.size() + database.SortInfo.size();
    if (database.IsResource()) {
        for (const DatabaseResource& resource : database.Resources)
            bytes += ResourceEntryBytes + resource.Data.size();
    } else {
        for (const DatabaseRecord& record : database.Records) bytes += RecordEntryBytes + record.Data.size();
    }
    return bytes;
}

void DatabaseStore::Save(const Database& database) {
    const std::array<const Database*, 1> one{&database};
    SaveAll(one);
}

void DatabaseStore::SaveAll(std::span<const Database* const> databases) {
    CheckRoomFor(databases);
    for (const Database* const database : databases) Write(*database);
}

void DatabaseStore::CheckRoomFor(std::span<const Database* const> databases) const {
    std::uint64_t used = used_;
    for (const Database* const database : databases) {
        const Entry* const entry = Find(database->Name);
        used += BytesOf(*database);
        used -= entry ? entry->Bytes : 0;
    }
    CheckRoom(used);
}

void DatabaseStore::SaveAs(std::string_view oldName, const Database& database) {
    const Entry* const old = Find(oldName);
    CheckRoom(used_ - (old ? old->Bytes : 0) + BytesOf(database));
    Write(database);
    if (oldName != database.Name) Remove(oldName);
}

void DatabaseStore::CheckRoom(std::uint64_t used) const {
    if (used <= memory_ || used <= used_) return;
    throw Refusal("the handheld's memory is full: " + std::to_string(used - used_) + " bytes are wanted, " +
                  std::to_string(memory_ - std::min(used_, memory_)) + " are free");
}

void DatabaseStore::Write(const Database& database) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.Header.Name == database.Name; });
    Entry entry{static_cast<const DatabaseHeader&>(database),
                found == entries_.end() ? NewFileName(database) : found->File, BytesOf(database)};
    entry.Header.Flags = static_cast<std::uint16_t>(entry.Header.Flags & ~OpenDatabase);
    WriteWholeFile(folder_ + entry.File, WriteDatabase(database), false);
    used_ += entry.Bytes;
    if (found == entries_.end()) {
        entries_.push_back(std::move(entry));
    } else {
        used_ -= found->Bytes;
        *found = std::move(entry);
    }
}

std::string DatabaseStore::NewFileName(const DatabaseHeader& header) const {
    // Names that differ only in case are two databases, and one file on some systems.
    const std::string name = EscapedName(header.Name);
    for (int more = 1;; ++more) {
        std::string file =
            name + (more == 1 ? "" : "%_" + std::to_string(more)) + (header.IsResource() ? ".prc" : ".pdb");
        const bool isTaken = std::any_of(entries_.begin(), entries_.end(),
                                         [&](const Entry& entry) { return SameText(entry.File, file); });
        if (!isTaken) return file;
    }
}

void DatabaseStore::Remove(std::string_view name) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [name](const Entry& entry) { return entry.Header.Name == name; });
    if (found == entries_.end()) return;
    Global.TheDisk->Remove(folder_ + found->File);
    Global.TheDisk->FlushFolder(folder_);
    used_ -= found->Bytes;
    entries_.erase(found);
}

void DatabaseStore::RemoveAll() {
    while (!entries_.empty()) Remove(std::string(entries_.back().Header.Name));
}
