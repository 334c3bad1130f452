#include "store/TableCatalogue.h"

#include "core/TextCompare.h"

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

} // namespace

const TableEntry* FindTable(std::string_view name) {
    if (name.size() > 4 && SameText(name.substr(name.size() - 4), ".dbf")) name.remove_suffix(4);
    for (const TableEntry& table : AllTables()) {
        if (SameText(table.Name, name)) return &table;
    }
    return nullptr;
}

Text GetFriendlyFieldName(const TableEntry& table, std::string_view field) {
    const std::uint16_t place = PlaceOf(table, field);
    if (place == 0) return Text::Value(field);
    return MessageId{static_cast<std::uint16_t>(table.FirstLabel + place)};
}

Text DisplayFriendlyFieldNames(const TableEntry& table, std::string_view field) {
    const Text name = GetFriendlyFieldName(table, field);
    const bool hasLabel = name != Text::Value(field);
    return hasLabel ? name + Text::Path(std::string_view(":")) : name;
}
