#include "store/MemoryTable.h"

#include "core/Failure.h"
#include "store/TableScan.h"

#include <algorithm>
#include <limits>

void MemoryTable::Restart(std::span<const int> lengths) {
    records_.clear();
    recordCount_ = 0;
    starts_.assign(1, 0);
    for (const int length : lengths) starts_.push_back(starts_.back() + static_cast<std::size_t>(length));
}

void MemoryTable::Restart(const TableLayout& layout) {
    std::vector<int> lengths;
    for (int k = 1; k <= layout.FieldCount(); ++k) lengths.push_back(layout.FieldLength(k));
    Restart(lengths);
}

void MemoryTable::Add(std::string_view fields) {
    if (fields.size() != starts_.back()) throw RunTimeFailure(5, "record of another length");
    if (recordCount_ == std::numeric_limits<std::int32_t>::max()) throw RunTimeFailure(6);
    records_ += fields;
    ++recordCount_;
}

void MemoryTable::Put(std::int32_t record, int field, std::string_view text) {
    const Place place = PlaceOf(record, field);
    const std::size_t used = std::min(text.size(), place.Length);
    text.copy(&records_[place.At], used);
    std::fill_n(&records_[place.At + used], place.Length - used, ' ');
}

void MemoryTable::Reserve(std::int32_t records) {
    records_.reserve(static_cast<std::size_t>(records) * starts_.back());
}

void MemoryTable::Refuse(std::int32_t record, int field) {
    throw RunTimeFailure(9, "record " + std::to_string(record) + ", field " + std::to_string(field));
}

void LoadTable(MemoryTable& table, std::string_view path) {
    TableScan scan(path);
    table.Restart(scan.Layout());
    table.Reserve(scan.RecordCount());
    while (scan.Next()) table.Add(scan.Fields());
}

MemoryTable LoadTable(std::string_view path) {
    MemoryTable table;
    LoadTable(table, path);
    return table;
}
