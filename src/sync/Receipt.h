#pragma once

#include "sync/StatusDetails.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The receipt of a session: a text file in the handheld's directory under HHTotalsPath that sets what the
/// handheld says it had against what arrived and what the PC holds now, and says whether they balance.

/// The transfer of one table, and how it ended.
struct ReceiptTransfer {
    bool Upload = false;
    std::string Path;
    enum class End { Well, Failed, CutOff } How = End::CutOff;
};

/// The newest receipts of a handheld are kept, so many.
inline constexpr std::size_t ReceiptsKept = 50;

/// The text of a handheld's last receipt, in UTF-8 or ASCII as it stands in the file; nothing when it has
/// none.
std::optional<std::string> LastReceipt(std::string_view id);
