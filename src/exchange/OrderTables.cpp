#include "exchange/OrderTables.h"

#include "core/Failure.h"
#include "store/TableScan.h"

#include <limits>

void OrderTable::Restart(std::span<const int> lengths) {
    records_.clear();
    recordCount_ = 0;
    starts_.assign(1, 0);
    for (const int length : lengths) starts_.push_back(starts_.back() + static_cast<std::size_t>(length));
}

void OrderTable::Add(std::string_view fields) {
    if (fields.size() != starts_.back()) throw RunTimeFailure(5, "record of another length");
    if (recordCount_ == std::numeric_limits<std::int32_t>::max()) throw RunTimeFailure(6);
    records_ += fields;
    ++recordCount_;
}

void OrderTable::Reserve(std::int32_t records) {
    records_.reserve(static_cast<std::size_t>(records) * starts_.back());
}

void OrderTable::Refuse(std::int32_t record, int field) {
    throw RunTimeFailure(9, "record " + std::to_string(record) + ", field " + std::to_string(field));
}

void LoadOrderTable(OrderTable& table, std::string_view path) {
    TableScan scan(path);
    std::vector<int> lengths;
    for (int k = 1; k <= scan.Layout().FieldCount(); ++k) lengths.push_back(scan.Layout().FieldLength(k));
    const auto fieldBytes = static_cast<std::size_t>(scan.Layout().FieldBytes());
    table.Restart(lengths);
    table.Reserve(scan.RecordCount());
    while (scan.Next()) table.Add(scan.Record().substr(0, fieldBytes));
}

OrderTable LoadOrderTable(std::string_view path) {
    OrderTable table;
    LoadOrderTable(table, path);
    return table;
}

OrderTables LoadOrderTables(std::string_view headerFile, std::string_view lineFile) {
    return {LoadOrderTable(headerFile), LoadOrderTable(lineFile)};
}
