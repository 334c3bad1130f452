#include "handheld/Totals.h"

#include "core/Dates.h"
#include "core/Numbers.h"
#include "handheld/Decimal.h"

#include <optional>

namespace {

constexpr int FourDecimals = 4;

std::int64_t DollarsIn(std::string_view text) {
    if (const std::optional<std::int64_t> exact = ReadDecimal(text, FourDecimals)) return *exact;
    return ToFixed4(ToNumber(text)); // as the office reads it
}

} // namespace

HandheldTotals CountTotals(const HandheldTable* headers, const HandheldTable* lines,
                           const OrderNumbers& numbers) {
    HandheldTotals totals;
    totals.Headers = headers ? headers->Count() : 0;
    totals.Lines = lines ? lines->Count() : 0;
    if (lines && lines->Count() > 0) {
        const std::size_t price = lines->Field("L_TOTPRICE");
        for (std::size_t row = 0; row < lines->Count(); ++row) {
            totals.Dollars = Sum(totals.Dollars, DollarsIn(lines->Get(row, price))).value_or(totals.Dollars);
        }
    }
    totals.Machine = numbers.Machine();
    totals.LastOrder = numbers.LastCode();
    return totals;
}

void PutTotals(HandheldTable& totals, const HandheldTotals& counted, std::string_view event,
               const DateTime& at) {
    std::string fields = totals.NewFields();
    totals.Put(fields, "TH_NUMHEAD", std::to_string(counted.Headers));
    totals.Put(fields, "TH_NUMLINE", std::to_string(counted.Lines));
    totals.Put(fields, "TH_DOL_LIN", DecimalText(counted.Dollars, FourDecimals));
    totals.Put(fields, "TH_MACHINE", counted.Machine);
    totals.Put(fields, "TH_LASTONU", counted.LastOrder);
    totals.Put(fields, "TH_DATE", YyyyMmDd(at));
    totals.Put(fields, "TH_TIME", Format(at, "hh:nn:ss"));
    totals.Put(fields, "TH_EVENT", event);
    totals.Clear();
    totals.Append(fields);
}

HandheldTotals RewriteTotals(Handheld& handheld, std::string_view event) {
    const auto openIfAny = [&](std::string_view table) {
        return HandheldTable::Has(handheld.Store, table)
                   ? std::optional<HandheldTable>(std::in_place, handheld.Store, table)
                   : std::nullopt;
    };
    const std::optional<HandheldTable> headers = openIfAny("ZUKORHDR"), lines = openIfAny("ZUKORLIN");
    const OrderNumbers numbers(handheld);
    HandheldTotals counted = CountTotals(headers ? &*headers : nullptr, lines ? &*lines : nullptr, numbers);
    if (!headers && !lines && !HandheldTable::Has(handheld.Store, "ZUKAUDHH")) return counted;
    const DateTime at = handheld.Clock();
    const std::uint32_t now = ToDlpDate(at).Seconds();
    HandheldTable totals =
        HandheldTable::OpenOrMake(handheld.Store, "ZUKAUDHH", handheld.Settings.IdSeed, now);
    PutTotals(totals, counted, event, at);
    handheld.Store.Save(totals.Changed(now));
    return counted;
}
