#include "store/TableCatalogue.h"

#include "core/TextCompare.h"

#include <algorithm>
#include <optional>

namespace {

/// The catalogue entry of a field's label; nothing when the field has none. One without a label
/// stands in the catalogue under its own name.
std::optional<MessageId> LabelOf(const TableEntry& table, std::string_view field) {
    const int place = PlaceOf(table.Fields, field);
    if (place == 0) return std::nullopt;
    const MessageId label{static_cast<std::uint16_t>(table.FirstLabel + place)};
    const std::string_view name = table.Fields[static_cast<std::size_t>(place) - 1].Name;
    if (Text(label) == Text::Value(name)) return std::nullopt;
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

int PlaceOf(std::span<const TableField> fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const TableField& field) { return SameText(field.Name, name); });
    return found == fields.end() ? 0 : static_cast<int>(found - fields.begin()) + 1;
}

Text GetFriendlyFieldName(const TableEntry& table, std::string_view field) {
    const auto label = LabelOf(table, field);
    return label ? Text(*label) : Text::Value(field);
}

Text DisplayFriendlyFieldNames(const TableEntry& table, std::string_view field) {
    const auto label = LabelOf(table, field);
    return label ? Text(*label) + Text::Path(std::string_view(":")) : Text::Value(field);
}
