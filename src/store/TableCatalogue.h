#pragma once

#include "core/Text.h"

#include <cstdint>
#include <span>
#include <string_view>

/// One field as an empty table is installed with it.
struct TableField {
    const char* Name;
    char Type; ///< C, N or D
    std::uint8_t Length;
    std::uint8_t Decimals;
};

/// One table of an office, by its file name without extension.
struct TableEntry {
    const char* Name;
    std::uint16_t FirstLabel; ///< catalogue number of what it is called; field k's label has k more
    std::span<const TableField> Fields;
};

/// All tables of an office, those first of which an empty twin is remade at each start.
std::span<const TableEntry> AllTables();

/// How many tables have a twin in `DBFEmpty`: the first so many of AllTables.
inline constexpr std::size_t TwinTables = 24;

/// The table of a name, any case, with or without ".dbf"; nullptr when there is none.
const TableEntry* FindTable(std::string_view name);

/// A field's place in the record by its whole name, any case, from 1; 0 when there is none of that name.
int PlaceOf(std::span<const TableField> fields, std::string_view name);

/// The label of a field as the grid of a table shows it: the whole name decides, any case. A field
/// without a label, or of another table, is shown under its own name (code page 1252).
Text GetFriendlyFieldName(const TableEntry& table, std::string_view field);

/// The same as the record viewer shows it, with a colon behind a label.
Text DisplayFriendlyFieldNames(const TableEntry& table, std::string_view field);
