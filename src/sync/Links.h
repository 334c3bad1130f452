#pragma once

#include "store/DBFEdit.h"

#include <cstdint>
#include <functional>
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
/// A change is in the file when its routine returns. After a RunTimeFailure (as DBFEdit and
/// TableRewrite) the record that was current is so again, as it stands in the file by then; where even
/// that cannot be had the table is closed, and the next routine opens it first.
class LinkTable {
public:
    LinkTable() = default;
    LinkTable(const LinkTable&) = delete;
    LinkTable& operator=(const LinkTable&) = delete;
    ~LinkTable() { Close(); }

    /// Opens the table of the tables directory at a record, or at the nearest that there is.
    /// RunTimeFailure 321 when it has no field for the id.
    void Open(std::int32_t record);
    void Close();
    bool IsOpen() const { return open_; }

    std::int32_t RecordCount() const { return links_.RecordCount; }
    std::int32_t RecordNumber() const { return record_; } ///< 0 in an empty table

    /// The ids of all records in their order, trimmed. They stay when the table is closed.
    const std::vector<std::string>& IDs() const { return ids_; }

    /// The current record, as long as its fields are; blank in an empty table.
    LinkFields Padded() const;
    LinkFields Trimmed() const;

    /// A record's number or a target of DBFEdit.
    void Go(std::int32_t target);

    /// Changes the current record; the values are trimmed.
    void Write(const LinkFields& fields);

    /// Adds a blank record behind the last one, and goes to it.
    void Append();

    /// The current record was added and has never been written.
    bool IsNew() const { return new_; }

    /// Removes the current record. The next one takes its number, or else the last one is current.
    void Delete();

    /// The number of the first other record whose id is the same without regard to case; 0 for none.
    std::int32_t OtherWith(std::string_view id) const;

private:
    void Attempt(const std::function<void()>& step);
    std::vector<std::string> ReadIDs();

    DBFEdit links_;
    std::int32_t record_ = 0;
    std::vector<std::string> ids_;
    bool open_ = false;
    bool new_ = false;
};
