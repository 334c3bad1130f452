#include "handheld/Overview.h"

#include "core/Numbers.h"
#include "handheld/HandheldTable.h"
#include "handheld/OrderNumbers.h"
#include "handheld/Settings.h"

#include <algorithm>
#include <tuple>

namespace {

using Entry = HandheldOverview::Entry;

constexpr std::string_view HeaderTable = "ZUKORHDR";

std::vector<HandheldOverview::Order> OrdersOf(const HandheldTable& headers) {
    std::vector<HandheldOverview::Order> orders;
    for (std::size_t row = 0; row < headers.Count(); ++row) {
        const auto get = [&](std::string_view field) { return std::string(headers.Get(row, field)); };
        const std::string date = get("H_ORDDATE");
        const std::optional<DateTime> day = CDate(date);
        orders.push_back({get("H_ORDCODE"), get("H_BILLNAME"),
                          (day ? ShortDate(*day) : date) + ' ' + get("H_ORDTIME"), get("H_NUMLINES"),
                          Money(ToNumber(get("H_TOTTOTAL"))), headers.IsSigned(row)});
    }
    return orders;
}

Entry EntryOf(const DatabaseStore& store, const DatabaseHeader& header) {
    const std::string table = TableOfDatabase(header.Name);
    if (!table.empty() && !header.IsResource())
        return {table, Entry::Kind::Table, HandheldTable(store, table).Count()};
    const Database database = store.Load(header.Name);
    if (header.IsResource()) return {header.Name, Entry::Kind::Program, database.Resources.size()};
    return {header.Name, Entry::Kind::Data, database.Records.size()};
}

} // namespace

HandheldOverview LookAt(const Handheld& handheld) {
    HandheldOverview overview;
    overview.User = handheld.Settings.User.Name;
    overview.Machine = OrderNumbers(handheld).Machine();
    overview.LastSync = ToDateTime(handheld.Settings.User.LastSync);
    overview.LastEnd = handheld.Settings.LastEnd;
    if (HandheldTable::Has(handheld.Store, HeaderTable))
        overview.Orders = OrdersOf(HandheldTable(handheld.Store, HeaderTable));
    for (const DatabaseStore::Entry& entry : handheld.Store.Entries())
        overview.Databases.push_back(EntryOf(handheld.Store, entry.Header));
    std::sort(overview.Databases.begin(), overview.Databases.end(), [](const Entry& a, const Entry& b) {
        return std::tie(a.What, a.Name) < std::tie(b.What, b.Name);
    });
    return overview;
}
