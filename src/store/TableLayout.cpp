#include "store/TableLayout.h"

#include "core/CodePage.h"
#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableBytes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t BlockSize = 32; ///< the fixed part of the header, and each descriptor
constexpr std::size_t NameSize = 11;

[[noreturn]] void Refuse(std::string_view path, const std::string& fault) {
    throw RunTimeFailure(321, std::string(FileNameOf(path)) + ": " + fault);
}

bool EndsTheList(char first) {
    return static_cast<unsigned char>(first) < 32;
}

} // namespace

TableLayout::TableLayout() {
    Field none;
    none.Length = 2;
    fields_.push_back(none);
}

TableLayout TableLayout::Read(DiskFile& file, std::string_view path) {
    std::string bytes(BlockSize * (MaxFields + 2), '\0');
    bytes.resize(file.ReadAt(0, bytes.data(), bytes.size()));
    return ReadStart(std::move(bytes), file.Size(), path);
}

TableLayout TableLayout::ReadBytes(std::string bytes, std::string_view path) {
    const std::uint64_t size = bytes.size();
    return ReadStart(std::move(bytes), size, path);
}

TableLayout TableLayout::ReadStart(std::string bytes, std::uint64_t size, std::string_view path) {
    if (bytes.size() < BlockSize + 1) {
        Refuse(path, "the file is " + std::to_string(bytes.size()) + " bytes long, too short for a table");
    }

    TableLayout layout;
    layout.recordCount_ = Int32At(bytes, 4);
    layout.headerLength_ = Int16At(bytes, 8);
    layout.recordLength_ = Int16At(bytes, 10);
    if (layout.recordCount_ < 0) {
        Refuse(path, "the number of records is " + std::to_string(layout.recordCount_));
    }
    if (layout.recordLength_ < 1) {
        Refuse(path, "the record length is " + std::to_string(layout.recordLength_));
    }

    std::size_t at = BlockSize;
    for (; at < bytes.size() && !EndsTheList(bytes[at]); at += BlockSize) {
        if (layout.FieldCount() == MaxFields) throw RunTimeFailure(6, std::string(path));
        if (bytes.size() - at < BlockSize) break;
        layout.AddField(std::string_view(bytes).substr(at, BlockSize), path);
    }
    if (at >= bytes.size() || !EndsTheList(bytes[at])) Refuse(path, "the list of fields does not end");
    if (layout.fieldBytes_ + 1 > layout.recordLength_) {
        Refuse(path, "the fields need " + std::to_string(layout.fieldBytes_ + 1) +
                         " bytes and the record length is " + std::to_string(layout.recordLength_));
    }
    const auto needed = layout.RecordsAt() + static_cast<std::uint64_t>(layout.recordCount_) *
                                                 static_cast<std::uint64_t>(layout.recordLength_);
    if (needed > size) {
        Refuse(path, std::to_string(layout.recordCount_) + " records need " + std::to_string(needed) +
                         " bytes and the file has " + std::to_string(size));
    }
    bytes.resize(at + 1);
    layout.header_ = std::move(bytes);
    return layout;
}

void TableLayout::AddField(std::string_view descriptor, std::string_view path) {
    const int start = FieldCount() == 0 ? 1 : fields_.back().Start + fields_.back().Length;
    if (start > std::numeric_limits<std::int16_t>::max()) throw RunTimeFailure(6, std::string(path));

    Field field;
    field.Name = Trim(descriptor.substr(0, NameSize));
    field.Type = Trim(descriptor.substr(11, 1));
    field.Length = static_cast<std::uint8_t>(descriptor[16]);
    field.Decimals = static_cast<std::uint8_t>(descriptor[17]);
    field.Start = static_cast<std::int16_t>(start);
    if (SameText(field.Type, "D")) field.Conversion = Kind::Date;
    if (SameText(field.Type, "N")) field.Conversion = Kind::Number;
    fieldBytes_ += field.Length;
    fields_.push_back(std::move(field));
}

const TableLayout::Field& TableLayout::At(int field) const {
    if (field < 0 || field > FieldCount()) throw RunTimeFailure(9, "field " + std::to_string(field));
    return fields_[static_cast<std::size_t>(field)];
}

std::string_view TableLayout::PlainName(int field) const {
    const std::string_view name = At(field).Name;
    return Trim(name.substr(0, name.find('\0')));
}

int TableLayout::Find(FieldKey& key) const {
    if (key.IsIndex()) {
        At(key.Index());
        return key.Index();
    }
    if (IsNumeric(key.Text())) {
        // Compared before it is made a whole number: the text may hold one of any size.
        const double index = std::nearbyint(ToNumber(key.Text()));
        if (!(index >= 0 && index <= FieldCount())) throw RunTimeFailure(9, "field " + key.Text());
        return static_cast<int>(index);
    }
    key.SetText(UpperCase(Trim(key.Text())));
    for (int k = 1; k <= FieldCount(); ++k) {
        if (BeginsWith(fields_[static_cast<std::size_t>(k)].Name, key.Text())) return k;
    }
    if (FieldCount() == MaxFields) throw RunTimeFailure(6, "field " + CodePageToUtf8(key.Text()));
    return 0;
}

int TableLayout::Find(const FieldKey& key) const {
    FieldKey own = key;
    return Find(own);
}

void TableLayout::Convert(int field, std::string& value) const {
    switch (At(field).Conversion) {
    case Kind::Date:
        if (value.empty()) return;
        if (const auto date = CDate(value)) value = YyyyMmDd(*date);
        return;
    case Kind::Number:
        if (!IsNumeric(value)) value = "0";
        return;
    case Kind::Text:
        return;
    }
}

void TableLayout::Put(int field, std::string& value, std::string& fields) const {
    Convert(field, value);
    if (field > 0) PutText(At(field), value, fields);
}

void TableLayout::Fit(int field, std::string_view value, std::string& fields) const {
    const Field& to = At(field);
    if (field == 0) return;
    if (to.Conversion == Kind::Text) return PutText(to, value, fields);
    if (to.Conversion == Kind::Number) return PutText(to, IsNumeric(value) ? value : "0", fields);
    // Eight digits are the form that is wanted, or no date.
    if (value.size() == 8 && value.find_first_not_of("0123456789") == std::string_view::npos)
        return PutText(to, value, fields);
    std::string date(value);
    Convert(field, date);
    PutText(to, date, fields);
}

void TableLayout::FitAll(std::string& fields) const {
    if (fields.size() < static_cast<std::size_t>(fieldBytes_)) throw RunTimeFailure(5, "record too short");
    for (int k = 1; k <= FieldCount(); ++k) {
        const Field& field = fields_[static_cast<std::size_t>(k)];
        const auto text =
            std::string_view(fields).substr(static_cast<std::size_t>(field.Start - 1), field.Length);
        const bool inPlace = !text.starts_with(' ');
        if (inPlace && field.Conversion == Kind::Text) continue;
        const std::string_view trimmed = Trim(text);
        if (inPlace && field.Conversion == Kind::Number && IsNumeric(trimmed)) continue;
        if (trimmed.empty() && field.Conversion != Kind::Number) continue;
        Fit(k, std::string(trimmed), fields);
    }
}

void TableLayout::PutText(const Field& to, std::string_view text, std::string& fields) const {
    if (fields.size() < static_cast<std::size_t>(fieldBytes_)) throw RunTimeFailure(5, "record too short");
    const auto begin = fields.begin() + (to.Start - 1);
    const auto used = static_cast<std::ptrdiff_t>(std::min<std::size_t>(text.size(), to.Length));
    const auto end = std::copy_n(text.begin(), used, begin);
    std::fill(end, begin + to.Length, ' ');
}

std::string_view TableLayout::Get(int field, std::string_view fields) const {
    const Field& from = At(field);
    if (field == 0) return {};
    if (fields.size() < static_cast<std::size_t>(fieldBytes_)) throw RunTimeFailure(5, "record too short");
    return fields.substr(static_cast<std::size_t>(from.Start - 1), from.Length);
}
