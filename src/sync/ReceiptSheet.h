#pragma once

#include "core/Dates.h"
#include "core/Text.h"
#include "core/UploadRun.h"
#include "sync/ReceiptCount.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What stands on the receipt of a session, and its words.

/// Which kind of session a receipt is for.
enum class SessionKind { Unattended, Upload, Download, Clear };

/// The transfer of one table, and how it ended.
struct ReceiptTransfer {
    bool Upload = false;
    std::string Path;
    enum class End { Well, Failed, CutOff } How = End::CutOff;
};

/// What a session noted on its way, and what was counted before its merge.
struct ReceiptNotes {
    DateTime Began;
    std::string User; ///< code page 1252
    std::vector<ReceiptTransfer> Transfers;
    std::size_t Finished = 0; ///< of Transfers
    std::vector<Text> Lines;  ///< what went wrong beside the transfers
    std::string Backup;       ///< its directory under BackupPath; empty when there was none

    bool Taken = false; ///< what follows is filled
    UploadRun Arrived;
    std::optional<OrderTally> Stated;
    std::optional<Comparison> Came; ///< nothing when it could not be counted

    bool AskedForOrders() const; ///< whether order headers were to come
    bool BrokeOff() const;       ///< whether a transfer was cut off
};

/// The receipt, in UTF-8. `merged`: what the merge put together; `now`: what the PC holds behind it, when
/// that could be counted.
std::string ReceiptSheet(SessionKind kind, const ReceiptNotes& notes, const UploadRun& merged,
                         const std::optional<OrderTally>& now);
