#include "store/TableCatalogue.h"

#include "core/TextCompare.h"

#include <optional>

namespace {

/// The field's place in the record from 1 on; 0 when the table has no such field.
std::uint16_t PlaceOf(const TableEntry& table, std::string_view field) {
    std::uint16_t place = 0;
    for (const TableField& each : table.Fields) {
        ++place;
        if (SameText(each.Name, field)) return place;
    }
    return 0;
}

/// The catalogue entry of a field's label; nothing when the field has none. One without a label
/// stands in the catalogue under its own name.
std::optional<MessageId> LabelOf(const TableEntry& table, std::string_view field) {
    const std::uint16_t place = PlaceOf(table, field);
    if (place == 0) return std::nullopt;
    const MessageId label{static_cast<std::uint16_t>(table.FirstLabel + place)};
    if (Text(label) == Text::Value(std::string_view(table.Fields[place - 1u].Name))) return std::nullopt;
    return label;
}

} // namespace

const TableEntry* FindTable(std::string_view name) {
    if (name.size() > 4 && SameText(name.substr(name.size() - 4), ".dbf")) name.remove_suffix(4);
    for (const TableEntry& table : AllTables()) {
        if (SameText(table.Name, name)) return &table;
    }
    return nullptr;
}

Text GetFriendlyFieldName(const TableEntry& table, std::string_view field) {
    const auto label = LabelOf(table, field);
    return label ? Text(*label) : Text::Value(field);
}

Text DisplayFriendlyFieldNames(const TableEntry& table, std::string_view field) {
    const auto label = LabelOf(table, field);
    return label ? Text(*label) + Text::Path(std::string_view(":")) : Text::Value(field);
}
