#include "handheld/HandheldTable.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/Refusal.h"
#include "store/TableCatalogue.h"

#include <utility>

namespace {

std::string DatabaseOf(std::string_view table) {
    try {
        return HandheldDatabaseName(table);
    } catch (const PalmFailure& failure) {
        throw Refusal(CodePageToUtf8(failure.what()));
    }
}

/// A table without rows, as an office installs it.
Database EmptyTable(std::string_view table) {
    const TableEntry* const entry = FindTable(table);
    if (!entry) throw Refusal("there is no table " + CodePageToUtf8(table));
    HandheldLayout layout;
    for (const TableField& field : entry->Fields) {
        layout.Fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    Database data;
    static_cast<DatabaseHeader&>(data) = HandheldHeader(table);
    data.AppInfo = PackLayout(layout);
    return data;
}

} // namespace

HandheldTable::HandheldTable(std::string_view table, Database data)
    : name_(TableOfDatabase(DatabaseOf(table))),
      data_(std::move(data)) {
    try {
        layout_ = ReadLayout(data_.AppInfo);
    } catch (const PalmFailure& failure) {
        throw Refusal(CodePageToUtf8(data_.Name) + ": " + failure.what());
    }
    std::size_t offset = 0;
    for (const HandheldField& field : layout_.Fields) {
        offsets_.push_back(offset);
        offset += field.Length;
    }
    Arrange();
}

HandheldTable::HandheldTable(const DatabaseStore& store, std::string_view table)
    : HandheldTable(table, [&] {
          const std::string name = DatabaseOf(table);
          if (!store.Has(name))
              throw Refusal("the handheld has no table " + CodePageToUtf8(table) + " (" +
                            CodePageToUtf8(name) + ")");
          return store.Load(name);
      }()) {}

HandheldTable HandheldTable::OpenOrMake(const DatabaseStore& store, std::string_view table,
                                        std::uint32_t idSeed, std::uint32_t now) {
    if (Has(store, table)) return {store, table};
    Database data = EmptyTable(table);
    data.Created = data.Modified = now;
    data.IdSeed = idSeed;
    HandheldTable made(table, std::move(data));
    made.changed_ = true;
    return made;
}

bool HandheldTable::Has(const DatabaseStore& store, std::string_view table) {
    return store.Has(DatabaseOf(table));
}

/// Where the rows are. Each record is looked at, so that whoever takes a field of it need not.
void HandheldTable::Arrange() {
    rows_.clear();
    ids_.clear();
    RowReader reader(layout_);
    const std::size_t rowBytes = layout_.RecordBytes();
    for (std::size_t at = 0; at < data_.Records.size(); ++at) {
        ids_.insert(data_.Records[at].Id);
        if ((data_.Records[at].Flags & DeletedRecord) != 0) continue;
        try {
            const std::size_t count = reader.Read(data_.Records[at].Data).size();
            for (std::size_t row = 0; row < count; ++row) rows_.push_back({at, row * rowBytes});
        } catch (const PalmFailure& failure) {
            throw Refusal(CodePageToUtf8(data_.Name) + ", record " + std::to_string(at + 1) + ": " +
                          failure.what());
        }
    }
}

std::size_t HandheldTable::Field(std::string_view name) const {
    const std::size_t field = layout_.Find(name);
    if (field == layout_.Fields.size())
        throw Refusal("the table " + name_ + " has no field " + CodePageToUtf8(name));
    return field;
}

std::string_view HandheldTable::Get(std::size_t row, std::size_t field) const {
    const std::size_t at = rows_[row].Offset + offsets_[field];
    return Trim(std::string_view(Record(row).Data).substr(at, layout_.Fields[field].Length));
}

std::string_view HandheldTable::Get(std::size_t row, std::string_view field) const {
    return HasField(field) ? Get(row, layout_.Find(field)) : std::string_view();
}

bool HandheldTable::IsSigned(std::size_t row) const {
    return !layout_.IsPacked() && Record(row).Data.size() > layout_.RecordBytes();
}

Ink HandheldTable::SignatureOf(std::size_t row) const {
    if (!IsSigned(row)) return {};
    return ReadRecord(layout_, Record(row).Data).Signature;
}

void HandheldTable::Put(std::string& fields, std::string_view field, std::string_view value) const {
    const std::size_t at = layout_.Find(field);
    if (at == layout_.Fields.size()) return;
    const std::size_t length = layout_.Fields[at].Length;
    if (value.size() > length) {
        throw Refusal('"' + CodePageToUtf8(value) + "\" is longer than the " + std::to_string(length) +
                      " characters of " + std::string(field));
    }
    layout_.Put(at, value, fields);
}

void HandheldTable::PutCut(std::string& fields, std::string_view field, std::string_view value) const {
    const std::size_t at = layout_.Find(field);
    if (at < layout_.Fields.size()) layout_.Put(at, value, fields);
}

void HandheldTable::RequireChangeable() const {
    if (layout_.IsPacked())
        throw Refusal("the table " + name_ + " is packed, " + std::to_string(layout_.RowsInRecord) +
                      " rows in a record: it can be read and not changed");
}

std::size_t HandheldTable::Append(const std::string& fields) {
    RequireChangeable();
    if (data_.Records.size() >= MostRecords) throw Refusal("the table " + name_ + " is full");
    DatabaseRecord record;
    record.Flags = DirtyRecord;
    record.Id = NewRecordId(data_, [this](std::uint32_t id) { return ids_.contains(id); });
    record.Data = PackRecord(layout_, {fields, {}});
    ids_.insert(record.Id);
    rows_.push_back({data_.Records.size(), 0});
    data_.Records.push_back(std::move(record));
    changed_ = true;
    return rows_.size() - 1;
}

void HandheldTable::Set(std::size_t row, std::string_view field, std::string_view value) {
    RequireChangeable();
    HandheldRecord record = ReadRecord(layout_, Record(row).Data);
    Put(record.Fields, field, value);
    Write(row, record);
}

void HandheldTable::Sign(std::size_t row, const Ink& ink) {
    RequireChangeable();
    HandheldRecord record = ReadRecord(layout_, Record(row).Data);
    record.Signature = ink;
    Write(row, record);
}

void HandheldTable::Write(std::size_t row, const HandheldRecord& record) {
    Record(row).Data = PackRecord(layout_, record);
    Record(row).Flags |= DirtyRecord;
    changed_ = true;
}

void HandheldTable::RemoveRows(const std::vector<bool>& gone) {
    RequireChangeable();
    std::vector<bool> recordGone(data_.Records.size(), false);
    for (std::size_t row = 0; row < rows_.size(); ++row) recordGone[rows_[row].Record] = gone[row];
    std::vector<DatabaseRecord> kept;
    for (std::size_t at = 0; at < data_.Records.size(); ++at) {
        if (!recordGone[at]) kept.push_back(std::move(data_.Records[at]));
    }
    data_.Records = std::move(kept);
    changed_ = true;
    Arrange();
}

const Database& HandheldTable::Changed(std::uint32_t now) {
    data_.Modified = now;
    ++data_.ModificationNumber;
    return data_;
}
