#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// One field of a table that is to be made.
struct FieldDef {
    std::string Name;          ///< 1 to 10 characters: letters, digits and underscores, a letter first
    char Type = 'C';           ///< C, N, D or L
    std::uint8_t Length = 0;   ///< C 1 to 255, N 1 to 20, D 8, L 1
    std::uint8_t Decimals = 0; ///< N only: at most Length - 2
};

/// The file of a table without records. Always the same bytes for the same fields: the header's date is
/// 2026-01-01. RunTimeFailure 5 when there is no field or more than 255, for a field that breaks the
/// ranges above, for a name that comes twice (without regard to case) and for a record of more than 4000
/// bytes.
std::string EmptyTableBytes(std::span<const FieldDef> fields);

/// Makes a table without records, or replaces one. Failures as above, and of the disk as SafeFile.
void CreateTable(std::string_view path, std::span<const FieldDef> fields);
