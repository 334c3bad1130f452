#pragma once

#include "handheld/DatabaseStore.h"
#include "palm/Converter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

/// A table of the handheld in memory. Rows count from 0, as the barcode index counts them; records that are
/// marked as deleted are none. A row is below Count(), a field below the number of the layout's. Texts are in
/// code page 1252, and come without their padding. A packed table is for looking things up: what would change
/// it is a Refusal.
class HandheldTable {
public:
    /// Reads a table, by its name as in "ZUKCUST". Refusal when the handheld has none of that name, and for
    /// one that is damaged, with the file and the record.
    HandheldTable(const DatabaseStore& store, std::string_view table);

    /// The same; one that is missing is made, without rows, with the layout that an office installs. It is
    /// in the store only once it has been saved. `idSeed` and `now` (seconds since 1904) are for a new one.
    static HandheldTable OpenOrMake(const DatabaseStore& store, std::string_view table, std::uint32_t idSeed,
                                    std::uint32_t now);

    /// Whether the store has a database of the table, sound or not.
    static bool Has(const DatabaseStore& store, std::string_view table);

    const std::string& Name() const { return name_; } ///< of the table, in capitals
    const HandheldLayout& Layout() const { return layout_; }
    const Database& Data() const { return data_; }
    /// Since it was read, or since MarkSaved.
    bool IsChanged() const { return changed_; }

    /// Refusal when the table is packed.
    void RequireChangeable() const;

    std::size_t Count() const { return rows_.size(); }
    bool HasField(std::string_view name) const { return layout_.Find(name) < layout_.Fields.size(); }
    /// A field's place from 0. Refusal that names the table when it has none of that name.
    std::size_t Field(std::string_view name) const;
    /// `row` is below Count(), `field` one of Field: neither is looked at again.
    std::string_view Get(std::size_t row, std::size_t field) const;
    /// Empty when the table has no such field.
    std::string_view Get(std::size_t row, std::string_view field) const;
    /// Whether there is ink; SignatureOf is 0 by 0 without.
    bool IsSigned(std::size_t row) const;
    Ink SignatureOf(std::size_t row) const;

    /// A record's fields, all blank.
    std::string NewFields() const { return std::string(layout_.RecordBytes(), ' '); }
    /// Puts a value into them. A field that the table lacks is passed over; Refusal when the value is longer
    /// than the field.
    void Put(std::string& fields, std::string_view field, std::string_view value) const;
    /// The same for words that may be cut.
    void PutCut(std::string& fields, std::string_view field, std::string_view value) const;

    /// Adds a row at the end, marked as new for the next HotSync; its number. Refusal when a handheld's
    /// database holds no more.
    std::size_t Append(const std::string& fields);
    /// Gives a row another value in one field.
    void Set(std::size_t row, std::string_view field, std::string_view value);
    /// PalmFailure for ink beyond its limits.
    void Sign(std::size_t row, const Ink& ink);
    /// A flag for each row: those that go.
    void RemoveRows(const std::vector<bool>& gone);
    void Clear() { RemoveRows(std::vector<bool>(Count(), true)); }

    /// The database as it is now, with the moment as that of its change.
    const Database& Changed(std::uint32_t now);
    void MarkSaved() { changed_ = false; }

private:
    HandheldTable(std::string_view table, Database data);
    void Arrange();
    void Write(std::size_t row, const HandheldRecord& record);
    DatabaseRecord& Record(std::size_t row) { return data_.Records[rows_[row].Record]; }
    const DatabaseRecord& Record(std::size_t row) const { return data_.Records[rows_[row].Record]; }

    struct Place {
        std::size_t Record = 0, Offset = 0; ///< the record, and where in it the row begins
    };

    std::string name_;
    Database data_;
    HandheldLayout layout_;
    std::vector<std::size_t> offsets_; ///< of the fields
    std::vector<Place> rows_;
    std::unordered_set<std::uint32_t> ids_;
    bool changed_ = false;
};
