#include "exchange/OrderTables.h"

#include "core/Failure.h"
#include "store/TableScan.h"

#include <limits>

void OrderTable::AddCell(std::string_view trimmed) {
    text_ += trimmed;
    ends_.push_back(text_.size());
}

void OrderTable::EndRecord() {
    if (recordCount_ == std::numeric_limits<std::int32_t>::max()) throw RunTimeFailure(6);
    ++recordCount_;
    if (ends_.size() != static_cast<std::size_t>(recordCount_) * static_cast<std::size_t>(fieldCount_)) {
        throw RunTimeFailure(5, "record of another number of fields");
    }
}

std::string_view OrderTable::Cell(std::int32_t record, int field) const {
    if (record < 1 || record > recordCount_ || field < 1 || field > fieldCount_) {
        throw RunTimeFailure(9, "record " + std::to_string(record) + ", field " + std::to_string(field));
    }
    const std::size_t cell = static_cast<std::size_t>(record - 1) * static_cast<std::size_t>(fieldCount_) +
                             static_cast<std::size_t>(field - 1);
    const std::uint64_t begin = cell == 0 ? 0 : ends_[cell - 1];
    return std::string_view(text_).substr(begin, ends_[cell] - begin);
}

std::string_view OrderTable::CellOrEmpty(std::int32_t record, int field) const {
    return field < 1 || field > fieldCount_ ? std::string_view() : Cell(record, field);
}

OrderTable LoadOrderTable(std::string_view path) {
    TableScan scan(path);
    OrderTable table(scan.Layout().FieldCount());
    while (scan.Next()) {
        for (int k = 1; k <= table.FieldCount(); ++k) table.AddCell(scan.Trimmed(k));
        table.EndRecord();
    }
    return table;
}

OrderTables LoadOrderTables(std::string_view headerFile, std::string_view lineFile) {
    return {LoadOrderTable(headerFile), LoadOrderTable(lineFile)};
}
