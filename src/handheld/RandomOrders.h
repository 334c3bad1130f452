#pragma once

#include "handheld/OrderBook.h"

#include <cstdint>
#include <string>
#include <vector>

/// Takes so many orders of `lines` lines each, or of 1 to 10 when it is 0, over the handheld's own customers
/// and items, a few minutes apart, now and then with a discount, a charge, a ship date or a signature. The
/// same seed and the same start over the same tables give the same orders. Their codes; nothing is saved.
/// Refusal when there is no customer or no item with a price.
std::vector<std::string> TakeRandomOrders(OrderBook& book, std::size_t count, std::uint32_t seed,
                                          const DateTime& from, std::size_t lines = 0);
