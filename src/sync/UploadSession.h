#pragma once

#include "core/UploadRun.h"
#include "sync/Arrivals.h"
#include "sync/Receipt.h"
#include "sync/SFrmAX40.h"

#include <cstdint>
#include <functional>
#include <string>

/// What the boxes of an upload screen, or the lines of an upload template (`*.ust`), choose.
struct UploadChoice {
    bool Orders = false, Audits = false, HHTotals = false, PrintSpooler = false, Customers = false,
         Items = false;

    bool operator==(const UploadChoice&) const = default;
};

/// An upload that the operator has started on `frmUploadSelect`: the machine behind its control. Acts only
/// while Global.ManualUploadActive.
class UploadSession {
public:
    explicit UploadSession(SFrmAX40& control) : SFUpload(control) {}
    UploadSession(const UploadSession&) = delete;
    UploadSession& operator=(const UploadSession&) = delete;

    /// The control's event. RunTimeFailure as the tables.
    void SFUpload_HotSyncStatus(std::int32_t status);

    /// What the merge has to do, as MainSession::Arrived.
    UploadRun Arrived() const;

    /// Counts what has arrived for the receipt, and lays it out for the merge in Global.UploadScreenRun: to
    /// be called right before that.
    void TakeArrived();

    /// Writes the receipt: when the merge is done, or when there is none, and before the safety copies go.
    /// Nothing when no session has begun.
    void WriteReceipt();

    UploadChoice Chosen;              ///< the boxes, set before the HotSync
    std::function<void()> ShowStatus; ///< a letter of the status list has changed

    std::string SyncStage; ///< "A>B", "B>C", "C>D", "end"
    std::int16_t PendingOps = 0;
    bool SyncRunning = false; ///< from the end of the Links work to the last transfer's end
    bool SyncDone = false;    ///< the session has gone through

private:
    void Begin();
    void RefreshUser();
    void UpdateLinks();
    void QueueUpload(const std::string& path);

    SFrmAX40& SFUpload;
    Arrivals arrivals_;
    UploadRun merged_; ///< what the merge behind TakeArrived puts together
    SessionReceipt receipt_{SessionKind::Upload};
};
