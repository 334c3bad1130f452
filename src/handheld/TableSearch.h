#pragma once

#include "handheld/HandheldTable.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// How a handheld looks things up: by binary search on the first field of a table, which relies on the
/// order that the office puts its tables in (TextCompare). In a table that is out of order a row may not be
/// found that is there.

/// Rows from First up to End, End left out; none when both are equal, and then they tell where the key
/// would stand.
struct RowRange {
    std::size_t First = 0, End = 0;

    bool IsEmpty() const { return First == End; }
};
/// Blanks around the key do not count.
RowRange FindKey(const HandheldTable& table, std::string_view key);

/// The first row whose key comes before that of the row before it.
std::optional<std::size_t> FirstOutOfOrder(const HandheldTable& table);

/// Words for behind "not found": that the table is out of order and where, or nothing.
std::string OrderHint(const HandheldTable& table);

/// The item of a barcode, by the barcode index and the place that it tells. Refusal when the index has
/// no such code, or only places at which no item of that code stands: "index out of date".
std::size_t FindBarcode(const HandheldTable& index, const HandheldTable& items, std::string_view code);
