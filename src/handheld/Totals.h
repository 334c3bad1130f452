#pragma once

#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "handheld/OrderNumbers.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// What a handheld says that it holds: the one record of ZUKAUDHH.
struct HandheldTotals {
    std::size_t Headers = 0, Lines = 0;
    std::int64_t Dollars = 0; ///< of the lines' L_TOTPRICE, in ten-thousandths
    std::string Machine, LastOrder;
};

/// Counts them; nullptr stands for a table that the handheld lacks.
HandheldTotals CountTotals(const HandheldTable* headers, const HandheldTable* lines,
                           const OrderNumbers& numbers);

/// Makes the record of the totals table tell them: it is its only one.
void PutTotals(HandheldTable& totals, const HandheldTotals& counted, std::string_view event,
               const DateTime& at);

/// Counts the tables of the store and writes the record there, for what happened just now. Nothing happens
/// when the handheld has neither orders nor a totals table. The totals.
HandheldTotals RewriteTotals(Handheld& handheld, std::string_view event);
