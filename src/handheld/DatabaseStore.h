#pragma once

#include "palm/Database.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The databases of a handheld: a folder with a file each, ".pdb" or ".prc", byte by byte as a desktop
/// would install it. The name inside a file counts, byte-exactly; the file's own name is that name as far
/// as every file system can write it. Headers are read at the start, what is in them only when it is asked
/// for. A kill at any instant leaves the old or the new one.
class DatabaseStore {
public:
    struct Entry {
        DatabaseHeader Header;
        std::string File;        ///< its name in the folder
        std::uint64_t Bytes = 0; ///< as BytesOf
    };

    /// `folder` with its trailing separator; `memory` is how many bytes the databases may have together.
    /// Refusal that names the file for one whose header is damaged, and for two of one name.
    DatabaseStore(std::string folder, std::uint64_t memory);

    /// Those of the folder in the order of their files' names, and behind them what has come since.
    const std::vector<Entry>& Entries() const { return entries_; }
    /// nullptr when there is none.
    const Entry* Find(std::string_view name) const;
    bool Has(std::string_view name) const { return Find(name) != nullptr; }

    /// Refusal that names the file when the database is not there or damaged.
    Database Load(std::string_view name) const;

    /// Adds a database or replaces the one of its name. Refusal when the memory does not hold it, and the
    /// failures of SafeFile.
    void Save(const Database& database);
    /// The same for several of different names, one after the other; when the memory does not hold all of
    /// them, none is written.
    void SaveAll(std::span<const Database* const> databases);
    /// Refusal when SaveAll would be refused for want of memory.
    void CheckRoomFor(std::span<const Database* const> databases) const;
    /// Saves a database under the name that it has now, in the place of the one of its old name, which goes
    /// when the new one is there: a kill between leaves both. Failures as Save and Remove.
    void SaveAs(std::string_view oldName, const Database& database);
    /// Nothing happens when it is not there. RunTimeFailure as Disk::Remove.
    void Remove(std::string_view name);
    /// The last one first. A failure as Remove leaves the others.
    void RemoveAll();

    std::uint64_t Memory() const { return memory_; }
    std::uint64_t Used() const { return used_; }

    /// The bytes of a database: those of its file.
    static std::uint64_t BytesOf(const Database& database);

private:
    Entry ReadEntry(const std::string& file) const;
    void CheckRoom(std::uint64_t used) const;
    std::string NewFileName(const DatabaseHeader& header) const;
    void Write(const Database& database);

    std::string folder_;
    std::uint64_t memory_;
    std::uint64_t used_ = 0;
    std::vector<Entry> entries_;
};

/// The name of a database as every file system can write it, without an extension: what is no letter,
/// digit or one of `_-#$~. ` is %XX, and so are a point and a blank at either end.
std::string EscapedName(std::string_view name);

/// The id for a new record of a database: behind its seed, which takes it on; round again behind 24 bits.
/// `isUsed` says whether a record has an id.
template <typename IsUsed>
std::uint32_t NewRecordId(Database& database, IsUsed&& isUsed) {
    do {
        database.IdSeed = database.IdSeed >= LastRecordId ? 1 : database.IdSeed + 1;
    } while (isUsed(database.IdSeed)); // ends: a database has fewer records than there are ids
    return database.IdSeed;
}
