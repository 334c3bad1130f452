#pragma once

#include "store/TableRecords.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The fields of a handheld's record that its editor shows.
struct LinkFields {
    std::string HotSync; ///< the HotSync id, the key of the table
    std::string Serial;
    std::string SFUser; ///< carried unchanged by all but the editor
};

/// The Links table in the hands of its editor: open from Open to Close, one record current.
///
/// Changes and failures as TableRecords.
class LinkTable {
public:
    /// Opens the table of the tables directory at a record, or at the nearest that there is.
    /// RunTimeFailure 321 when it has no field for the id.
    void Open(std::int32_t record);
    void Close() { links_.Close(); }
    bool IsOpen() const { return links_.IsOpen(); }

    std::int32_t RecordCount() const { return links_.RecordCount(); }
    std::int32_t RecordNumber() const { return links_.RecordNumber(); } ///< 0 in an empty table

    /// The ids of all records in their order, trimmed. They stay when the table is closed.
    const std::vector<std::string>& IDs() const { return ids_; }

    /// The current record, as long as its fields are; blank in an empty table.
    LinkFields Padded() const;
    LinkFields Trimmed() const;

    /// A record's number or a target of DBFEdit.
    void Go(std::int32_t target) { links_.Go(target); }

    /// Changes the current record; the values are trimmed.
    void Write(const LinkFields& fields);

    /// Adds a blank record behind the last one, and goes to it.
    void Append();

    /// The current record was added and has never been written.
    bool IsNew() const { return links_.IsNew(); }

    /// Removes the current record. The next one takes its number, or else the last one is current.
    void Delete();

    /// The number of the first other record whose id is the same without regard to case; 0 for none.
    std::int32_t OtherWith(std::string_view id) const;

private:
    TableRecords links_;
    std::vector<std::string> ids_;
};

/// Enters a handheld by its HotSync id in the Links table, in the order of the ids, its other fields blank.
/// False when it stands there already, whatever the case. RunTimeFailure 5 for a blank id, 6 for one that is
/// longer than its field, 70 when another program has the table, 321 when that has no field for the id, else
/// as TableScan and TableRewrite. The table is as it was then.
bool AddLink(std::string_view id);
