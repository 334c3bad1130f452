#pragma once

#include "core/Disk.h"
#include "store/TableLayout.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Any record of a table at any time, read in blocks of about 32 KB, the last 64 of which are kept.
///
/// Opening reads the header and nothing else. Between reads the file is closed, so that other parts of
/// the program can put a new table in its place at any time. What is read is always the table that was
/// opened: as soon as a read finds another file or another content under the name, HasChanged is true
/// and every record is blank until Reopen. It leaves the trace lines of DBFEdit's FileOpen and
/// FileClose. A view that a routine returns is valid until the next call.
class TableReader {
public:
    /// RunTimeFailure as Disk::Open and TableLayout::Read.
    explicit TableReader(std::string_view path);
    TableReader(const TableReader&) = delete;
    TableReader& operator=(const TableReader&) = delete;
    ~TableReader();

    const std::string& Path() const { return path_; }
    const TableLayout& Layout() const { return layout_; }
    std::int32_t RecordCount() const { return layout_.RecordCount(); }

    /// All bytes of a record behind its flag, deleted records too. Blank for a number outside 1 to
    /// RecordCount(), for a table that has changed or can no longer be read, and where the file ends
    /// too soon. Never fails.
    std::string_view Record(std::int32_t number);

    /// A field of a record without the blanks at its ends. RunTimeFailure 9 outside 0 to FieldCount().
    std::string_view Trimmed(std::int32_t number, int field);

    /// Whether the table is no longer the one that was opened, as far as reading has found out.
    bool HasChanged() const { return changed_; }

    /// Looks at the file and says the same. Never fails: a table that is gone has changed.
    bool CheckChanged();

    /// Reads the header anew and forgets all records. A failure, as from the constructor, leaves a
    /// table that has changed.
    void Reopen();

private:
    struct Block {
        std::int32_t First = 0; ///< number of its first record; 0: nothing read
        std::uint64_t Used = 0; ///< when it was last asked for
        std::string Bytes;
    };

    void Open();
    std::unique_ptr<DiskFile> SameFile();
    const Block* BlockOf(std::int32_t number);
    void Read(Block& block, std::int32_t first);

    std::string path_;
    std::string resolved_;
    TableLayout layout_;
    std::uint64_t version_ = 0;
    bool changed_ = false;
    std::int32_t perBlock_ = 1; ///< records in a block
    std::vector<Block> blocks_;
    std::size_t last_ = 0; ///< the block of the last record
    std::uint64_t uses_ = 0;
    std::string blank_;
};
