#pragma once

#include "core/SafeFile.h"
#include "store/CreateTable.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Builds a table's whole new content in a work file and puts it in the table's place.
///
///     TableRewrite rewrite(path);
///     for (...) { rewrite.Append(); rewrite.Write("C_CODE", code); }
///     rewrite.Commit();
///
/// The header is that of the table as it stands, with the new number of records. The file ends with
/// one byte behind the last record. Memory holds no more than a block. A content that the table has
/// already is not written again, byte behind the last record and end of the file included. An object
/// that ends without Commit leaves the table as it was. No trace line is written here; the routines
/// below write those of the DBFEdit steps that they stand for.
class TableRewrite {
public:
    /// RunTimeFailure as Disk::Open, TableLayout::Read and SafeFile.
    explicit TableRewrite(std::string_view path);

    /// A table of these fields, in the place of whatever stands there. RunTimeFailure as EmptyTableBytes
    /// and SafeFile.
    TableRewrite(std::string_view path, std::span<const FieldDef> fields);

    /// A table built like another, in the place of whatever stands there. RunTimeFailure as SafeFile.
    TableRewrite(std::string_view path, TableLayout like);

    const TableLayout& Layout() const { return layout_; }

    /// Records begun so far.
    std::int32_t RecordCount() const { return count_; }

    /// Begins a live record of blanks. RunTimeFailure 6 at the record behind the largest number,
    /// 61 or 57 from the disk, 52 when another has closed the work file's number.
    void Append();

    /// Begins a live record with the fields of one that was read from this table, each written as
    /// Write does with its trimmed text. RunTimeFailure 5 when they are not FieldBytes() long: the
    /// table has changed its structure since. Otherwise as Append().
    void Append(std::string_view fields);

    /// Adds a whole record. `bytes` are all RecordLength - 1 bytes behind the flag, else
    /// RunTimeFailure 5. The record can still be written to.
    void AppendRaw(char flag, std::string_view bytes);

    /// Changes a field of the record that was begun last, as DBFEdit::WriteData does.
    /// RunTimeFailure 63 before the first record; 9 and 6 as TableLayout::Find.
    void Write(const FieldKey& key, std::string_view value);
    /// The same by a field's number, from 1; 0 changes nothing. RunTimeFailure 9 outside 0 to FieldCount().
    void Write(int field, std::string_view value);

    /// Makes all of the record that was begun last blank again.
    void Blank();

    /// The byte behind the last record: a blank unless told otherwise.
    void SetTrailing(char byte) { trailing_ = byte; }

    /// Puts the new content in place; no call may follow. `flush` and failures as SafeFile::Commit.
    void Commit(bool flush = true);

private:
    void BeginRecord();
    void Drain();

    TableLayout layout_;
    SafeFile file_;
    std::int32_t count_ = 0;
    char flag_ = TableLayout::Live;
    std::string fields_;
    char trailing_ = ' ';
};

/// Removes the records that are marked as deleted: what FileOpen and ReIndex do, up to the byte
/// behind the last record, with the same trace lines.
void CompactTable(std::string_view path);

/// The same, and one more record goes: what FileOpen, Go to it, DeleteRecord and ReIndex do. Nothing
/// stands marked in between, so a failure or a kill leaves the record where it was.
void RemoveRecord(std::string_view path, std::int32_t record);

/// Removes all records; the table keeps its structure. What FileOpen, Go(-1), DeleteRecord and Go(-4)
/// for each record and ReIndex do, with the same trace lines. `flush` as SafeFile::Commit.
void EmptyTable(std::string_view path, bool flush = true);

/// Makes room at the top: a record is added at the end and every record's fields move down by one,
/// record 1 being left blank. Each value goes through TableLayout::Convert on its way, so a blank
/// `N` field becomes 0, also in record 1. Flags, and bytes behind the last field, stay where they
/// are. `first` is then written to record 1, one value a field from field 1 on; RunTimeFailure 9,
/// the table left as it was, when it holds more values than there are fields.
/// Trace lines of FileOpen and FileClose.
void ShiftDown(std::string_view path, std::span<const std::string> first = {});
