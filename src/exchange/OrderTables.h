#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A table's records in memory: every field's text, trimmed. Records and fields count from 1.
class OrderTable {
public:
    OrderTable() = default;
    explicit OrderTable(int fieldCount) : fieldCount_(fieldCount) {}

    std::int32_t RecordCount() const { return recordCount_; }
    int FieldCount() const { return fieldCount_; }

    /// Adds a record: a field after the other by AddCell, then EndRecord.
    void AddCell(std::string_view trimmed);
    /// RunTimeFailure 5 when the record has not as many fields as the table.
    void EndRecord();

    /// RunTimeFailure 9 for a record or a field that is not there. Valid until the next AddCell.
    std::string_view Cell(std::int32_t record, int field) const;

    /// The same, but empty when there is no such field.
    std::string_view CellOrEmpty(std::int32_t record, int field) const;

private:
    int fieldCount_ = 0;
    std::int32_t recordCount_ = 0;
    std::string text_;
    std::vector<std::uint64_t> ends_; ///< of each cell in `text_`, record after record
};

/// The copies of the order tables that an export works on.
struct OrderTables {
    OrderTable FGHdr; ///< ZUKORHDR
    OrderTable FGLin; ///< ZUKORLIN
};

/// Reads a table: every record that its header counts, those marked as deleted included.
/// RunTimeFailure as TableScan.
OrderTable LoadOrderTable(std::string_view path);

OrderTables LoadOrderTables(std::string_view headerFile, std::string_view lineFile);
