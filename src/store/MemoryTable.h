#pragma once

#include "core/TextCompare.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A table's records in memory. Records and fields count from 1.
class MemoryTable {
public:
    MemoryTable() = default;
    /// `lengths`: of the fields, in bytes.
    explicit MemoryTable(std::span<const int> lengths) { Restart(lengths); }
    /// With the fields of a table on the disk, and no records yet.
    explicit MemoryTable(const TableLayout& layout) { Restart(layout); }

    /// Begins anew with other fields and no records; the memory is kept for what comes.
    void Restart(std::span<const int> lengths);
    void Restart(const TableLayout& layout);

    std::int32_t RecordCount() const { return recordCount_; }
    int FieldCount() const { return static_cast<int>(starts_.size()) - 1; }

    /// Adds a record: its fields one behind the other, padding and all. RunTimeFailure 5 when they
    /// are not as long as the table's fields, 6 at the record behind the largest number.
    void Add(std::string_view fields);

    /// Changes a field: the text, blanks behind it, cut at the field's length. RunTimeFailure 9 for
    /// a record or a field that is not there.
    void Put(std::int32_t record, int field, std::string_view text);

    /// Makes room for so many records at once, at least 0; more can still be added.
    void Reserve(std::int32_t records);

    /// A field's text, trimmed. RunTimeFailure 9 for a record or a field that is not there. Valid
    /// until the next Add or Put.
    std::string_view Cell(std::int32_t record, int field) const {
        const Place place = PlaceOf(record, field);
        return Trim(std::string_view(records_).substr(place.At, place.Length));
    }

    /// The same, but empty when there is no such field.
    std::string_view CellOrEmpty(std::int32_t record, int field) const {
        return field < 1 || field > FieldCount() ? std::string_view() : Cell(record, field);
    }

    /// All fields of a record, as they were added. RunTimeFailure 9 for a record that is not there.
    std::string_view Record(std::int32_t record) const {
        if (record < 1 || record > recordCount_) Refuse(record, 1);
        const std::size_t length = starts_.back();
        return std::string_view(records_).substr(static_cast<std::size_t>(record - 1) * length, length);
    }

    /// The same fields with the same texts in the same order.
    bool operator==(const MemoryTable&) const = default;

private:
    struct Place {
        std::size_t At, Length;
    };
    Place PlaceOf(std::int32_t record, int field) const {
        if (record < 1 || record > recordCount_ || field < 1 || field > FieldCount()) Refuse(record, field);
        const std::size_t begin = starts_[static_cast<std::size_t>(field) - 1];
        const std::size_t end = starts_[static_cast<std::size_t>(field)];
        return {static_cast<std::size_t>(record - 1) * starts_.back() + begin, end - begin};
    }
    [[noreturn]] static void Refuse(std::int32_t record, int field);

    std::vector<std::size_t> starts_{0}; ///< of each field in a record, and the record's length
    std::int32_t recordCount_ = 0;
    std::string records_;
};

/// Reads a table in the place of what `table` held: every record that its header counts, those
/// marked as deleted included. RunTimeFailure as TableScan; `table` then holds what was read so far.
void LoadTable(MemoryTable& table, std::string_view path);
MemoryTable LoadTable(std::string_view path);
