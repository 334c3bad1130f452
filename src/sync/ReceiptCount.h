#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a receipt counts in order tables: each is read once, and orders are matched by hashing, so the cost
/// grows with the records and no faster.

/// Orders, lines and money, the money in ten-thousandths.
struct OrderTally {
    std::int64_t Orders = 0, Lines = 0, Money = 0;

    bool operator==(const OrderTally&) const = default;
};
OrderTally operator+(const OrderTally& a, const OrderTally& b);
OrderTally operator-(const OrderTally& a, const OrderTally& b);

/// Paths of a pair of order tables; an empty one stands for a table that holds nothing.
struct OrderPair {
    std::string Headers, Lines;
};

/// All records count, those marked as deleted too, as the PC totals have it. RunTimeFailure as TableScan; 6
/// when the money is beyond 64 bits.
OrderTally CountTally(const OrderPair& tables);

/// What arrived, set against what the PC held before. Codes as they stand in the tables, trimmed, in the
/// order of their first appearance; equal ones without regard to case are one order.
struct Comparison {
    OrderTally Arrived, Before;
    std::vector<std::string> Codes; ///< of all orders that arrived
    /// Of those, the ones that the PC held already: header and lines the same, whatever their order; changed;
    /// and not to be compared, since one of the tables did not arrive.
    std::vector<std::string> Again, Changed, InPart;
    /// Of those, the ones without a header, and without a line: among what arrived, or among what the PC held
    /// where that table did not arrive.
    std::vector<std::string> LinesAlone, NoLines;
};

/// RunTimeFailure as CountTally.
Comparison Compare(const OrderPair& arrived, const OrderPair& before);

/// What the first record of a table of handheld totals states, by its first three fields. False when it has
/// no record. RunTimeFailure as TableScan; 6 for numbers beyond 64 bits.
bool ReadStated(const std::string& path, OrderTally& stated);
