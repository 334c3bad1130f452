#include "handheld/TableSearch.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/Decimal.h"
#include "handheld/Refusal.h"

namespace {

constexpr std::size_t KeyField = 0;
constexpr std::size_t PlaceField = 1;

/// The first row from `first` on that `isBefore` does not hold for.
template <typename IsBefore>
std::size_t Boundary(std::size_t first, std::size_t end, IsBefore&& isBefore) {
    while (first < end) {
        const std::size_t middle = first + (end - first) / 2;
        if (isBefore(middle)) {
            first = middle + 1;
        } else {
            end = middle;
        }
    }
    return first;
}

} // namespace

RowRange FindKey(const HandheldTable& table, std::string_view key) {
    key = Trim(key);
    const auto compare = [&](std::size_t row) { return TextCompare(table.Get(row, KeyField), key); };
    RowRange range;
    range.First = Boundary(0, table.Count(), [&](std::size_t row) { return compare(row) < 0; });
    range.End = Boundary(range.First, table.Count(), [&](std::size_t row) { return compare(row) <= 0; });
    return range;
}

std::optional<std::size_t> FirstOutOfOrder(const HandheldTable& table) {
    for (std::size_t row = 1; row < table.Count(); ++row) {
        if (TextCompare(table.Get(row - 1, KeyField), table.Get(row, KeyField)) > 0) return row;
    }
    return std::nullopt;
}

std::string OrderHint(const HandheldTable& table) {
    const std::optional<std::size_t> row = FirstOutOfOrder(table);
    if (!row) return {};
    return "; the table " + table.Name() + " is not in the order of " + table.Layout().Fields.front().Name +
           ": record " + std::to_string(*row + 1) + " comes before the one above it";
}

std::size_t FindBarcode(const HandheldTable& index, const HandheldTable& items, std::string_view code) {
    const std::string name = "the barcode " + CodePageToUtf8(code);
    if (Trim(code).empty()) throw Refusal("an empty barcode");
    if (index.Layout().Fields.size() < 2) throw Refusal("the table " + index.Name() + " has not two fields");
    const RowRange range = FindKey(index, code);
    if (range.IsEmpty()) throw Refusal(name + " is not in " + index.Name() + OrderHint(index));
    for (std::size_t row = range.First; row < range.End; ++row) {
        const std::optional<std::int64_t> place = ReadDecimal(index.Get(row, PlaceField), 0);
        if (!place || *place < 0 || static_cast<std::uint64_t>(*place) >= items.Count()) continue;
        const auto item = static_cast<std::size_t>(*place);
        if (SameText(items.Get(item, "I_BARCODE"), Trim(code))) return item;
    }
    throw Refusal(name + ": index out of date; " + index.Name() + " tells the place \"" +
                  CodePageToUtf8(index.Get(range.First, PlaceField)) +
                  "\", where no item with that barcode stands");
}
