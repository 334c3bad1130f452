#pragma once

#include "core/Globals.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The field of a master table by which the handheld looks its records up, and the fields from which its
/// values can come.
struct SearchField {
    struct Choice {
        const char* Value; ///< as the setup table holds it and as the lists show it
        const char* From;  ///< field of the master table
    };

    const char* Table;              ///< the master table's file
    const char* Field;              ///< its search field
    const char* Setting;            ///< the choice's field in the setup table
    std::string Globals::*InMemory; ///< the choice while the program runs
    std::span<const Choice> Choices;
};

extern const SearchField CustomerSearch;
extern const SearchField ItemSearch;

/// The choice in the first record of the setup table, trimmed; empty when it has no record.
/// RunTimeFailure as TableScan.
std::string ReadSearchChoice(const SearchField& field);

/// Puts it there; a table without a record gets one, and one that holds it already is left alone.
/// RunTimeFailure as TableRecords.
void WriteSearchChoice(const SearchField& field, std::string_view choice);

/// Gives every record of the master table the search value of a choice, records marked as deleted included:
/// the text of the field as it stands, cut at the search field's length. Returns how many records there are.
/// The table changes as a whole or not at all. RunTimeFailure 5 for a choice that there is not, 70 when
/// another program holds the table, 321 when it lacks a field; otherwise as TableRewrite.
std::int32_t UpdateSearchField(const SearchField& field, std::string_view choice);
