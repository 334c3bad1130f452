#pragma once

#include "store/DBFEdit.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A table in the hands of an editor: open from Open to Close, one record current.
///
/// A change is in the file when its routine returns. A table that another program holds a lock on is neither
/// opened nor changed: RunTimeFailure 70. After a RunTimeFailure (as DBFEdit and TableRewrite)
/// the record that was current is so again, as it stands in the file by then; where even that cannot be had
/// the table is closed, and the next routine opens it first.
/// A step after which another has written into the table, or has put another file in its place, begins with
/// the record as it stands there by now; when that is gone, or has another key, the step is
/// RunTimeFailure 63.
class TableRecords {
public:
    /// Fields by name, each with the value that it gets.
    using Values = std::vector<std::pair<const char*, std::string>>;

    TableRecords() = default;
    TableRecords(const TableRecords&) = delete;
    TableRecords& operator=(const TableRecords&) = delete;
    ~TableRecords() { Close(); }

    /// Opens a table at a record, or at the nearest that there is. RunTimeFailure 321 when it has no field
    /// of the name `key`.
    void Open(std::string_view path, const char* key, std::int32_t record);
    /// Also of a table that is not open. What the routines changed is in the file already.
    void Close();
    bool IsOpen() const { return open_; }

    const std::string& Path() const { return path_; }
    std::int32_t RecordCount() const { return table_.RecordCount; }
    std::int32_t RecordNumber() const { return record_; } ///< 0 in an empty table

    /// A field of the current record, as long as the field is; blank in an empty table. Empty when the
    /// table has no such field.
    std::string Padded(const char* field) const { return table_.GetData(field); }
    /// The same without blanks around.
    std::string Trimmed(const char* field) const;

    /// A record's number or a target of DBFEdit.
    void Go(std::int32_t target);

    /// Changes these fields of the current record, and no others; the values are trimmed. In an empty table
    /// it appends a record first.
    void Write(const Values& values);

    /// Adds a blank record behind the last one, and goes to it.
    void Append();

    /// The current record was added and has never been written.
    bool IsNew() const { return new_; }

    /// Which record is current after a deletion: the one that takes the number of the deleted one, or the
    /// one before it. Where there is none, the nearest.
    enum class Then { Next, Previous };

    /// Removes the current record, and those that another program has marked as deleted.
    void Delete(Then then);

private:
    void Attempt(const std::function<void()>& step);
    void Reopen(std::int32_t record);
    void TakeUp();
    void ReadAgain();
    void Remember();

    DBFEdit table_;
    std::string path_;
    const char* key_ = "";
    std::int32_t record_ = 0;
    std::string shown_;         ///< the current record's key behind the last step
    std::uint64_t version_ = 0; ///< the file's, then
    bool open_ = false;
    bool new_ = false;
};
