#pragma once

#include "core/FileNumbers.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Reads a whole table forward, in blocks of about 256 KB.
///
///     TableScan scan(path);
///     const int code = scan.Layout().Find("C_CODE");
///     while (scan.Next()) Use(scan.Trimmed(code));
///
/// It sees the records that the header counted when it was opened, deleted ones included, and the
/// table as it is at the moment of each block. Bytes that are not there read as blanks. It holds a
/// file number and leaves the trace lines of DBFEdit's FileOpen and FileClose.
class TableScan {
public:
    /// RunTimeFailure as Disk::Open and TableLayout::Read.
    explicit TableScan(std::string_view path);
    TableScan(const TableScan&) = delete;
    TableScan& operator=(const TableScan&) = delete;
    /// Closes, without a trace line when a failure is on its way: it would hide where that began.
    ~TableScan();

    const TableLayout& Layout() const { return layout_; }
    std::int32_t RecordCount() const { return layout_.RecordCount(); }

    /// Moves to the next record; false behind the last one, which then stays current.
    /// RunTimeFailure 52 when the file number has been closed, 57 from the disk.
    bool Next();

    /// Back to before record 1.
    void Restart();

    std::int32_t RecordNumber() const { return record_; } ///< from 1; 0 before the first Next

    /// What follows is valid until the next Next, Restart or Close, and blank before the first Next.

    /// The flag byte: a blank, or an asterisk for a deleted record.
    char Flag() const { return flag_; }
    bool Deleted() const { return flag_ == TableLayout::Deleted; }
    /// All bytes behind the flag: the fields, and what lies behind the last one.
    std::string_view Record() const { return fields_; }
    /// The bytes of the fields alone.
    std::string_view Fields() const {
        return fields_.substr(0, static_cast<std::size_t>(layout_.FieldBytes()));
    }
    /// Padding kept; empty for field 0. RunTimeFailure 9 outside 0 to FieldCount().
    std::string_view Field(int field) const { return layout_.Get(field, fields_); }
    /// Blanks cut at both ends.
    std::string_view Trimmed(int field) const;

    /// The byte behind the last counted record, a blank when there is none.
    char Trailing();

    /// Closes the file and writes the trace line; nothing the second time. Next then fails with 52.
    void Close();

private:
    void Fill();

    TableLayout layout_;
    FileNumbers::Claim file_;
    bool open_ = true;
    int unwinding_;
    std::string block_;
    std::int32_t blockFirst_ = 0; ///< number of the block's first record; 0: nothing read
    std::int32_t blockCount_ = 0;
    std::int32_t record_ = 0;
    char flag_ = TableLayout::Live;
    std::string blank_;
    std::string_view fields_;
};
