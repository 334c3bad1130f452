#pragma once

#include "sync/Receipt.h"
#include "sync/SFrmAX40.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What the boxes of the download screen, or the lines of a download template (`*.dst`), choose.
struct DownloadChoice {
    bool Customers = false, Items = false, Setup = false;

    bool operator==(const DownloadChoice&) const = default;
};

/// What the boxes of the clear screen, or the lines of a clear template (`*.dct`), choose.
struct ClearChoice {
    bool Orders = false, Audits = false, HHTotals = false;

    bool operator==(const ClearChoice&) const = default;
};

/// The paths of the tables that a choice sends to the handheld, in the order in which they are queued: of the
/// tables directory, or of the empty twins for a clearing.
std::vector<std::string> TablesOf(const DownloadChoice& choice);
std::vector<std::string> TablesOf(const ClearChoice& choice);

/// A download or a clearing that the operator has started on `frmTableSelectDL` or `frmTableSelectCL`: the
/// machine behind its control. Acts only while Global.ManualUploadActive. The first event of a session
/// takes it to its end: it counts nothing, and the handheld's mark says that a download was asked for.
class DownloadSession {
public:
    /// `kind`: Download or Clear, for the receipt.
    explicit DownloadSession(SFrmAX40& control, SessionKind kind = SessionKind::Download)
        : SFDownload(control),
          receipt_(kind) {}
    DownloadSession(const DownloadSession&) = delete;
    DownloadSession& operator=(const DownloadSession&) = delete;

    /// The control's event.
    void SFDownload_HotSyncStatus(std::int32_t status);

    /// Writes the receipt, when the session is over. Nothing when none has begun.
    void WriteReceipt();

    std::vector<std::string> Tables;  ///< paths to send, set before the HotSync
    std::function<void()> ShowStatus; ///< a mark of the status list has changed

    std::string SyncStage; ///< "A>B", "B>C", "C>D", "end"
    std::int16_t PendingOps = 0;

private:
    SFrmAX40& SFDownload;
    SessionReceipt receipt_;
};
