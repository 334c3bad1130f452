#pragma once

#include "core/Progress.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// PC totals: what the order tables held after each operation that changed them, in
/// `ZUKTOTALPC.DBF`, newest first.

/// What a pair of order tables holds.
struct OrderTotals {
    std::int32_t Headers = 0, Lines = 0;
    double Dollars = 0; ///< the sum of L_TOTPRICE over all lines
    bool operator==(const OrderTotals&) const = default;
};

/// Counts the order tables of a folder. RunTimeFailure 53 when one of them is not there.
OrderTotals ReadOrderTotals(const std::string& folder, Progress& progress);

/// Counts the order tables into Global.CurHeaders, CurLines and CurDollars (the sum of L_TOTPRICE
/// over all lines). RunTimeFailure 53 when one of the tables is not there.
void CountOrders(Progress& progress);

/// Counts the order tables into Global.OldOrderCount, OldLineCount and OldLineTotal: what they hold before
/// an upload. RunTimeFailure as CountOrders.
void CalcOldPCTotals();

/// Empties the old totals, HHLastOrder and CurrentHotSyncID.
void ZeroTotalsBlock();

/// Adds the record of an event, or for a second half ("IMPORT2REPLACE", "CLEAR2", "IMPORT2ADD")
/// completes record 1. The other events: "UPLOAD-ADD", "UPLOAD-REPLACE", "IMPORT-ADD",
/// "IMPORT-REPLACE", "EXPORT", "QUALCHECK", "CLEAR", "RESTORE". The event's time is that of the
/// operation's backup where it made one, else the present; HotSync id, machine and last order
/// number belong to uploads alone. RunTimeFailure as CountOrders, also for `ZUKTOTALPC.DBF`.
void CalcPCTotals(std::string_view event, Progress& progress);

/// The machine id that the Links table has for a HotSync id, without regard to case; empty when it
/// has none, and for an empty id. RunTimeFailure 53 when there is no Links table.
std::string MachineOf(std::string_view hotSyncID);

/// A row of the recent uploads, texts trimmed, the money with two decimals.
struct UploadRow {
    std::string HotSyncID, DateTime, Orders, Lines, Dollars;
};

inline constexpr std::size_t MaxUploadRows = 7;

/// The newest uploads since the last reset, at most seven, newest first.
/// RunTimeFailure 53 when there is no totals table.
std::vector<UploadRow> GetPCTotals();
