#include "store/SortTables.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/TextCompare.h"
#include "core/Trace.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int SortField = 1; ///< the key, whatever it is called

/// A bar that goes up by one.
class Bar {
public:
    Bar(Progress& progress, const Text& label, std::int64_t maximum) : progress_(progress) {
        progress.Begin(label, maximum);
    }
    void Up() { progress_.Show(++value_); }

private:
    Progress& progress_;
    std::int64_t value_ = 0;
};

/// The end of a table's steps: `append` adds the records, then the new content is put in place.
template <typename Append>
void Fill(const std::string& path, TableRewrite& table, Append&& append) {
    TraceEvent("DBFEdit:FileOpen " + path);
    append(table);
    TraceEvent("DBFEdit:FileClose");
    table.Commit();
}

template <typename Append>
void EmptyAndFill(const std::string& path, Append&& append) {
    TraceEvent("DBFEdit:FileOpen " + path);
    TableRewrite table(path);
    TraceEvent("DBFEdit:ReIndex " + path);
    TraceEvent("DBFEdit:FileClose");
    Fill(path, table, append);
}

enum class Keys { Stay, Clean };

Keys KeysBy(const SortOptions& options) {
    return options.RemoveSpecial ? Keys::Clean : Keys::Stay;
}

void SortTable(const std::string& path, Keys keys, const Text& label, Progress& progress) {
    TableScan scan(path);
    MemoryTable copy(scan.Layout());
    copy.Reserve(scan.RecordCount());
    const bool clean = keys == Keys::Clean && copy.FieldCount() >= SortField;
    Bar bar(progress, label, 2 * std::int64_t{scan.RecordCount()} + 4);
    while (scan.Next()) {
        const std::int32_t record = scan.RecordNumber();
        copy.Add(scan.Fields());
        if (clean) copy.Put(record, SortField, CleanKey(copy.Cell(record, SortField)));
        bar.Up();
    }
    const RecordOrder order = SortedByKey(copy, SortField);

    TableRewrite rewrite(path);
    TraceEvent("DBFEdit:ReIndex " + path);
    scan.Close();
    Fill(path, rewrite, [&](TableRewrite& table) {
        for (const std::int32_t record : order) {
            table.Append(copy.Record(record));
            bar.Up();
        }
    });
}

} // namespace

void SortCustFile(std::string_view path, const SortOptions& options, Progress& progress) {
    SortTable(std::string(path), KeysBy(options), msg::SortingCustomers, progress);
}

void SortItemFile(std::string_view path, const SortOptions& options, Progress& progress) {
    SortTable(std::string(path), KeysBy(options), msg::SortingItems, progress);
}

void SortSTaxFile(std::string_view path, const SortOptions&, Progress& progress) {
    SortTable(std::string(path), Keys::Stay, msg::SortingSalesTax, progress);
}

void SortLinkFile(std::string_view path) {
    NoProgress nobody;
    SortTable(std::string(path), Keys::Stay, {}, nobody);
}

void RebuildItemIndex(std::string_view directory, Progress& progress) {
    TableScan items(std::string(directory) + "ZUKItem.dbf");
    const int barcode = items.Layout().Find("I_BARCODE");
    MemoryTable barcodes(std::array{static_cast<int>(items.Field(barcode).size())}); // 0 without the field
    // It ends at two thirds: the last one stands for the second barcodes, which no index holds.
    Bar bar(progress, msg::RebuildingIndex, 3 * std::int64_t{items.RecordCount()});
    while (items.Next()) {
        barcodes.Add(items.Field(barcode));
        bar.Up();
    }
    items.Close();
    const RecordOrder order = SortedByKey(barcodes, SortField);

    EmptyAndFill(std::string(directory) + "ZUKBarin.dbf", [&](TableRewrite& index) {
        const TableLayout& layout = index.Layout();
        if (layout.FieldCount() != 2) {
            throw RunTimeFailure(321, "ZUKBarin.dbf: " + std::to_string(layout.FieldCount()) +
                                          " fields in the place of 2");
        }
        const int code = layout.Find(FieldKey(layout.FieldName(1)));
        const int place = layout.Find(FieldKey(layout.FieldName(2)));
        for (const std::int32_t item : order) {
            index.Append();
            index.Write(code, barcodes.Cell(item, SortField));
            index.Write(place, std::to_string(item - 1)); // the handheld counts records from 0
            bar.Up();
        }
    });
}

void RebuildIndexTables(Progress& progress) {
    RebuildItemIndex(Global.DBFPath, progress);
}

std::string CleanKey(std::string_view key) {
    std::string clean = UpperCase(key);
    std::erase_if(clean, [](char c) { return !IsKeyCharacter(c); });
    return clean;
}

RecordOrder SortedByKey(const MemoryTable& table, int key) {
    std::vector<std::pair<std::string, std::int32_t>> keyed;
    keyed.reserve(static_cast<std::size_t>(table.RecordCount()));
    for (std::int32_t record = 1; record <= table.RecordCount(); ++record)
        keyed.emplace_back(SortKey(table.CellOrEmpty(record, key)), record);
    std::sort(keyed.begin(), keyed.end()); // equal keys by their records' numbers
    RecordOrder order;
    order.reserve(keyed.size());
    for (const auto& [text, record] : keyed) order.push_back(record);
    return order;
}

void RefillTable(std::string_view path, const MemoryTable& copy, const RecordOrder& records) {
    EmptyAndFill(std::string(path), [&](TableRewrite& table) {
        for (const std::int32_t record : records) table.Append(copy.Record(record));
    });
}
