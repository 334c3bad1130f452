#pragma once

#include "palm/Database.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A table as a handheld holds it. docs/handheld-database.md tells the layout byte by byte, with an
/// example. Nothing here opens a file: records come in and go out as the bytes of their fields.

inline constexpr std::string_view HandheldPrefix = "TZUK20000_";
inline constexpr std::uint32_t HandheldCreator = FourCharacters("ZUK2");
inline constexpr std::uint32_t HandheldType = FourCharacters("DATA");

/// A table of a handheld carries this version once it is whole; while it is being written it has 0.
inline constexpr std::uint16_t WholeTable = 1;

struct HandheldField {
    std::string Name; ///< 1 to 10 characters without NUL
    char Type = 'C';
    std::uint8_t Length = 0; ///< 1 to 255
    std::uint8_t Decimals = 0;

    friend bool operator==(const HandheldField&, const HandheldField&) = default;
};

/// The fields of a table in their order, 1 to 255 of them, 1 to 32767 bytes together, no name twice; and how
/// its rows lie in the records.
struct HandheldLayout {
    std::vector<HandheldField> Fields;
    /// Above 1 in a table of more rows than a database has records: it is packed. Each record then holds so
    /// many rows one behind the other, the last one 1 to so many, and none has ink. Times RecordBytes() it is
    /// at most LongestRecord.
    std::uint16_t RowsInRecord = 1;

    bool IsPacked() const { return RowsInRecord > 1; }
    /// The bytes of one row.
    std::size_t RecordBytes() const;
    /// A field's place from 0 by its whole name, capitals or not; Fields.size() when there is none.
    std::size_t Find(std::string_view name) const;
    /// A field's bytes out of a row of at least RecordBytes() bytes, padding kept. `field` is below
    /// Fields.size(), here and in Put.
    std::string_view Get(std::size_t field, std::string_view record) const;
    /// Puts a value into a row: left-aligned, blanks behind it, cut at the field's length.
    void Put(std::size_t field, std::string_view value, std::string& record) const;

    friend bool operator==(const HandheldLayout&, const HandheldLayout&) = default;
};

/// The application block of a table's database, and back. PalmFailure for a layout beyond its limits, for
/// a block that has another mark or a version that is not known, and for one that is cut off or too long.
std::string PackLayout(const HandheldLayout& layout);
HandheldLayout ReadLayout(std::string_view block);

/// What RowsInRecord is to be for a table of so many rows: 1 as long as a record is left for each.
/// PalmFailure when no database holds them.
std::uint16_t RowsInRecordFor(const HandheldLayout& layout, std::size_t rows);

/// The name of the database that belongs to a table: its file name in capitals, without extension, behind
/// the prefix. PalmFailure for a table's name that is not 1 to 20 letters, digits and underscores.
std::string HandheldDatabaseName(std::string_view tableFile);

/// The table's name in capitals out of a database's; empty when it belongs to no table.
std::string TableOfDatabase(std::string_view databaseName);

/// Ink that was taken on a handheld: black on white, `Height` rows of `(Width + 7) / 8` bytes, the leftmost
/// dot in the highest bit.
struct Ink {
    std::uint16_t Width = 0, Height = 0; ///< each 1 to 320
    std::string Rows;

    friend bool operator==(const Ink&, const Ink&) = default;
};

/// One row of a table: the fields' bytes, and behind them the ink of a signed order.
struct HandheldRecord {
    std::string Fields;
    Ink Signature; ///< Width 0: none

    bool IsSigned() const { return Signature.Width != 0; }
    friend bool operator==(const HandheldRecord&, const HandheldRecord&) = default;
};

/// PalmFailure when `record` has another length than the layout, ink beyond its limits, or ink in a packed
/// table.
std::string PackRecord(const HandheldLayout& layout, const HandheldRecord& record);
/// A record of a table that is not packed. PalmFailure for one that is cut off, and for one with something
/// else behind its fields than ink.
HandheldRecord ReadRecord(const HandheldLayout& layout, std::string_view data);

/// Reads the records of a table, packed or not, in their order.
class RowReader {
public:
    explicit RowReader(const HandheldLayout& layout);

    /// The rows of the next record. PalmFailure as ReadRecord; in a packed table for a record without a row,
    /// with a row that is cut off or with more rows than the layout says, and for any record behind one with
    /// fewer.
    std::vector<HandheldRecord> Read(std::string_view data);

private:
    const HandheldLayout& layout_;
    std::size_t rowBytes_;
    bool ended_ = false;
};

/// The ink as a bitmap file (Windows BMP, two colours).
std::string InkBitmap(const Ink& ink);

/// The header of a table's database, whole.
DatabaseHeader HandheldHeader(std::string_view tableFile);
