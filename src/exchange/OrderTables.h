#pragma once

#include "store/MemoryTable.h"

#include <string_view>

/// The copies of the order tables that an export works on.
struct OrderTables {
    MemoryTable FGHdr; ///< ZUKORHDR
    MemoryTable FGLin; ///< ZUKORLIN
};

/// Reads both tables. RunTimeFailure as LoadTable.
inline OrderTables LoadOrderTables(std::string_view headerFile, std::string_view lineFile) {
    return {LoadTable(headerFile), LoadTable(lineFile)};
}
