#pragma once

#include "palm/Bytes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a handheld database is marked with. The layout of the files is that of the Palm File Format.
enum DatabaseFlag : std::uint16_t {
    ResourceDatabase = 0x0001,
    ReadOnlyDatabase = 0x0002,
    BackupDatabase = 0x0008,
    ResetAfterInstall = 0x0020,
    OpenDatabase = 0x8000, ///< never written
};

/// What a record is marked with.
enum RecordFlag : std::uint8_t {
    DeletedRecord = 0x80,
    DirtyRecord = 0x40,
    BusyRecord = 0x20,
    SecretRecord = 0x10,
};

/// The most records or resources of one database, and the most bytes of one of them.
inline constexpr std::size_t MostRecords = 65535;
inline constexpr std::size_t LongestRecord = 65505;
/// The longest name of a database, without its NUL.
inline constexpr std::size_t LongestDatabaseName = 31;
inline constexpr std::uint32_t LastRecordId = 0xFFFFFF;
inline constexpr unsigned LastCategory = 15;

/// Bytes of a file beside those of its blocks: the header, an entry of its list for each record or
/// resource, and what all writers leave behind the list.
inline constexpr std::size_t DatabaseHeaderBytes = 78, RecordEntryBytes = 8, ResourceEntryBytes = 10,
                             ListGapBytes = 2;

struct DatabaseRecord {
    std::uint8_t Flags = 0;    ///< RecordFlag
    std::uint8_t Category = 0; ///< 0 to LastCategory
    std::uint32_t Id = 0;      ///< up to LastRecordId
    std::string Data;          ///< at most LongestRecord bytes

    friend bool operator==(const DatabaseRecord&, const DatabaseRecord&) = default;
};

/// A resource of a database, known by its type and id.
struct DatabaseResource {
    std::uint32_t Type = 0; ///< as FourCharacters
    std::uint16_t Id = 0;
    std::string Data; ///< at most LongestRecord bytes

    friend bool operator==(const DatabaseResource&, const DatabaseResource&) = default;
};

/// What one is and is called, without what it holds.
struct DatabaseHeader {
    std::string Name; ///< at most LongestDatabaseName bytes, in the handheld's characters
    std::uint16_t Flags = 0;
    std::uint16_t Version = 0;
    std::uint32_t Created = 0, Modified = 0, BackedUp = 0; ///< seconds since 1904-01-01 00:00, local; 0 never
    std::uint32_t ModificationNumber = 0;
    std::uint32_t Type = 0, Creator = 0;

    bool IsResource() const { return (Flags & ResourceDatabase) != 0; }

    friend bool operator==(const DatabaseHeader&, const DatabaseHeader&) = default;
};

/// One handheld database: records, or resources when its header says so.
struct Database : DatabaseHeader {
    std::uint32_t IdSeed = 0;      ///< 24 bits
    std::string AppInfo, SortInfo; ///< empty: none
    std::vector<DatabaseRecord> Records;
    std::vector<DatabaseResource> Resources;

    friend bool operator==(const Database&, const Database&) = default;
};

/// Reads a PDB or PRC file; its blocks may stand in any order. PalmFailure for a header that is cut off, a
/// name without an end or of no length, a count that the file cannot hold, and a block that lies outside the
/// file or inside its lists, or is longer than LongestRecord.
Database ReadDatabase(std::string_view file);

/// The file of a database. PalmFailure for a name, a count or a block beyond its limit.
std::string WriteDatabase(const Database& database);
