#pragma once

#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"

#include <cstddef>
#include <optional>
#include <string>

/// Who a handheld is and how far it has counted its orders: the row of its user in the Links table
/// (LK_MACH_ID, LK_LSTONUM), or its own settings when there is none.
class OrderNumbers {
public:
    /// Reads them. Refusal for a number that is not of digits, and for a damaged Links table.
    explicit OrderNumbers(const Handheld& handheld);

    const std::string& Machine() const { return machine_; }
    /// The last order number without the machine id, as it stands; empty before the first order.
    const std::string& Last() const { return last_; }
    /// Both together; empty before the first order.
    std::string LastCode() const { return last_.empty() ? std::string() : machine_ + last_; }

    /// Counts on by one: the code of the next order. A number keeps its width, with zeros in front; the
    /// first one has six digits. Refusal when the number no longer fits into LK_LSTONUM.
    std::string Next();

    /// The Links table with the number in its row, when it has changed; nullptr otherwise. A table without a
    /// row of the user, as one that came with an install, gets one.
    HandheldTable* ChangedLinks();
    /// Keeps the number in the settings. The handheld's own count goes along with that of a Links row and
    /// never back, so that no number is given again when the Links table is gone for a while.
    void KeepIn(HandheldSettings& settings) const;

private:
    bool AddRow();

    std::string user_;
    std::optional<HandheldTable> links_;
    std::size_t row_ = 0;
    bool hasRow_ = false;
    bool counted_ = false;
    std::string machine_, last_;
};
