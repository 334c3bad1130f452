#include "store/CreateTable.h"

#include "core/Failure.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "store/TableBytes.h"
#include "store/TableLayout.h"

#include <algorithm>

namespace {

constexpr int MaxRecord = 4000;

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsGoodName(std::string_view name) {
    if (name.empty() || name.size() > 10 || !IsLetter(name.front())) return false;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '_'; });
}

bool IsGoodSize(const FieldDef& field) {
    switch (field.Type) {
    case 'C':
        return field.Length >= 1 && field.Decimals == 0;
    case 'N':
        return field.Length >= 1 && field.Length <= 20 &&
               (field.Decimals == 0 || field.Decimals + 2 <= field.Length);
    case 'D':
        return field.Length == 8 && field.Decimals == 0;
    case 'L':
        return field.Length == 1 && field.Decimals == 0;
    default:
        return false;
    }
}

void Check(std::span<const FieldDef> fields) {
    if (fields.empty() || fields.size() > TableLayout::MaxFields) {
        throw RunTimeFailure(5, std::to_string(fields.size()) + " fields");
    }
    int record = 1;
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        const bool twice = std::any_of(
            fields.begin(), field, [&](const FieldDef& other) { return SameText(other.Name, field->Name); });
        if (!IsGoodName(field->Name) || !IsGoodSize(*field) || twice) {
            throw RunTimeFailure(5, "field " + field->Name);
        }
        record += field->Length;
    }
    if (record > MaxRecord) throw RunTimeFailure(5, "record of " + std::to_string(record) + " bytes");
}

} // namespace

std::string EmptyTableBytes(std::span<const FieldDef> fields) {
    Check(fields);
    int record = 1;
    std::string descriptors;
    for (const FieldDef& field : fields) {
        std::string descriptor(32, '\0');
        std::copy(field.Name.begin(), field.Name.end(), descriptor.begin());
        descriptor[11] = field.Type;
        descriptor[16] = static_cast<char>(field.Length);
        descriptor[17] = static_cast<char>(field.Decimals);
        descriptors += descriptor;
        record += field.Length;
    }
    std::string content = {3, 126, 1, 1}; // dBASE III, 2026-01-01
    content += BytesOfInt32(0);
    content += BytesOfInt16(static_cast<std::int16_t>(descriptors.size() + 33));
    content += BytesOfInt16(static_cast<std::int16_t>(record));
    return content + std::string(20, '\0') + descriptors + "\x0D\x1A";
}

void CreateTable(std::string_view path, std::span<const FieldDef> fields) {
    WriteWholeFile(path, EmptyTableBytes(fields));
}
