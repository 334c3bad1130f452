#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Orders, lines and money of one side of a HotSync.
struct OrderFigures {
    double Orders = 0, Lines = 0, Dollars = 0;
};

/// What a handheld said it had, and what the PC took of it.
struct StatusDetails {
    OrderFigures Handheld;
    OrderFigures PC; ///< of the newest event of this handheld; zeros when there is none
};

/// The details of one handheld's last HotSync. Nothing when its totals have never come to the PC.
/// RunTimeFailure as TableScan.
std::optional<StatusDetails> ReadStatusDetails(std::string_view id);
