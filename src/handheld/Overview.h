#pragma once

#include "core/Dates.h"
#include "handheld/Handheld.h"

#include <cstddef>
#include <string>
#include <vector>

/// What can be seen of a handheld from outside. Texts are in code page 1252.
struct HandheldOverview {
    struct Order {
        std::string Code;
        std::string Customer; ///< by name
        std::string Taken;    ///< date and time
        std::string Lines;    ///< how many
        std::string Total;    ///< money with two decimals
        bool IsSigned = false;
    };
    struct Entry {
        enum class Kind { Table, Program, Data };

        std::string Name; ///< a table's own, in capitals, else the database's
        Kind What = Kind::Data;
        std::size_t Records = 0; ///< rows of a table, records or resources of another
    };

    std::string User, Machine; ///< User empty: none yet
    DateTime LastSync;         ///< zero: never
    std::string LastEnd;       ///< how it ended
    std::vector<Order> Orders;
    std::vector<Entry> Databases; ///< tables first, each kind by name
};

/// Refusal for a damaged table or database, with its name.
HandheldOverview LookAt(const Handheld& handheld);
