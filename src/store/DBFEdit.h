#pragma once

#include "core/FileNumbers.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <string>
#include <string_view>

/// One open dBASE table, a current record in a text buffer.
///
/// Record numbers count from 1 and include records marked as deleted. Text is bytes in code page
/// 1252. The buffer holds the current record's fields and, as its last character, the byte behind
/// the record, which is the next record's flag: UpDate writes it back with them. What is not in the
/// file reads as blanks, and so does all of record 0.
///
/// Nothing is created, locked or cached; every change is in the file when the routine that writes
/// it returns. Two objects may have one file open and do not see each other's record count. Ending
/// an object closes nothing. After its file number has been closed, by whomever, any use of the
/// file is RunTimeFailure 52.
class DBFEdit {
public:
    std::int64_t Spare = 0; ///< used by nothing
    std::int32_t RecordCount = 0;
    std::int16_t RecordLength = 0; ///< with the flag byte; RunTimeFailure 5 when set below the fields

    /// Copies the bitmap that stands in a block of a memo file (512 bytes a block, from 0) to
    /// `temp.bmp` in the application directory. A block that holds no bitmap writes nothing.
    /// RunTimeFailure 63 for a block below 0, 5 for a bitmap of no blocks.
    void GetDBTImage(std::string_view path, std::int32_t block);

    /// Opens a table for reading and writing under a free file number. The record number stays as
    /// it was and no record is read. A file that was open before stays open under its number.
    /// RunTimeFailure as Disk::Open and TableLayout::Read; the object is then as it was before.
    void FileOpen(std::string_view path);

    /// Closes the object's file number and lowers it by one, so that a second call closes the next
    /// lower number, whoever owns it.
    void FileClose();

    /// Closes every file number from the object's own down to 1, whoever owns it.
    void CloseAllFiles();

    int NoFields() const { return layout_.FieldCount(); }

    /// By index, 0 to NoFields(): RunTimeFailure 9 outside. Entry 0 is empty, its length "2".
    /// A name keeps its NUL bytes; see TableLayout::PlainName.
    std::string FieldName(std::int16_t index) const { return layout_.FieldName(index); }
    std::string FieldLength(std::int16_t index) const { return std::to_string(layout_.FieldLength(index)); }
    std::string GetFieldType(std::int16_t index) const { return layout_.FieldType(index); }

    /// The field's characters as they stand, padding kept. Empty when no field's name begins with
    /// `key`; a text key comes back in capitals. RunTimeFailure 9 and 6 as TableLayout::Find.
    std::string GetData(FieldKey& key) const;
    std::string GetData(const FieldKey& key) const;

    /// Changes a field in the buffer, nothing in the file. `value` comes back as TableLayout::Convert
    /// made it. Nothing is written when no field's name begins with `key`.
    void WriteData(FieldKey& key, std::string& value);
    void WriteData(const FieldKey& key, std::string value);

    /// What Go takes beside a record number.
    enum Target : std::int32_t { First = -1, Last = -2, Previous = -3, Next = -4, Append = -5 };

    /// Moves to a record and reads it. Previous and Next at either end read the same record again.
    /// Append adds a blank record, at once and with one blank behind it; its flag is the byte that
    /// stood there, so Go(Last) and KillEOFFlag come before the first one. Any other target does
    /// nothing.
    void Go(std::int32_t target);

    /// Writes the buffer at the current record. RunTimeFailure 63 at record 0 or below.
    void UpDate();

    std::int32_t RecordNumber() const { return currentRecord_; }

    /// Rewrites the table without the records that are marked as deleted, by a work file beside it
    /// whose name ends in "idx", and closes it. `path` is the one it was opened with. A failure
    /// leaves the table as it was and no work file; the object is closed all the same.
    void ReIndex(std::string_view path);

    /// Sorts the records in the file by the characters of a field, without regard to case,
    /// downwards when `descending` is -1. The last record keeps its place; downwards, records 1 and
    /// 2 are compared once only; a swap of two records also swaps the flags of the second of them
    /// and the one behind it. All three are meant. Only for very small tables.
    void SortFile(FieldKey& key, std::int16_t descending);
    void SortFile(const FieldKey& key, std::int16_t descending);

    /// Marks the current record as deleted. RunTimeFailure 63 at record 0 or below.
    void DeleteRecord();

    /// Puts a blank behind the current record, over the end-of-file mark when it is the last one.
    /// At record 0 that is record 1's flag; RunTimeFailure 63 below.
    void KillEOFFlag();

private:
    DiskFile& File() const;
    std::size_t BufferSize() const;
    std::uint64_t FlagAt(std::int64_t record) const;
    void ReadRecord();
    std::int32_t Skip(std::int32_t offset);
    void WriteRecordCount();
    void AppendBlank();
    void WriteCompacted(DiskFile& work);

    TableLayout layout_;
    std::string recordBuffer_;
    std::int32_t currentRecord_ = 0;
    std::int16_t fileNumber_ = 0;
    FileNumbers::Claim file_;
    std::string path_; ///< for messages
};
