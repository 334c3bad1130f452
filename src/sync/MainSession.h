#pragma once

#include "core/UploadRun.h"
#include "sync/Arrivals.h"
#include "sync/Receipt.h"
#include "sync/SFrmAX40.h"
#include "sync/SessionScreen.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// An unattended session: the machine behind `frmMainSync`, driven by the statuses of its control.
///
/// It moves no data. It queues transfers at the control and counts them; what comes of them is merged and
/// compared when the session has ended. The whole state but that below is in Global (UnattendedActive,
/// HSUserName, HHUserDir and their neighbours), and stays there from one session to the next: a handheld
/// whose own Links table does not name it inherits what the one before it told. The flags BackupOrders to
/// BackupItems are never cleared here.
class MainSession {
public:
    MainSession(SFrmAX40& control, SessionScreen& screen) : SFMain(control), screen_(screen) {}
    MainSession(const MainSession&) = delete;
    MainSession& operator=(const MainSession&) = delete;

    /// The control's event. RunTimeFailure for a failed safety copy, for a template that cannot be read, and
    /// as the tables; nothing was queued then beyond what stands in the queue already.
    void SFMain_HotSyncStatus(std::int32_t status);

    /// What the merge has to do: tables that were queued for upload and have come.
    UploadRun Arrived() const;

    // Where the session stands, for its form, the trace and the tests.
    std::string SyncStage;              ///< "A>B", "B>C", "C>D", "End"; empty before the first session
    std::string SyncPhase;              ///< "HSStart", "HSUpload", "HSClear", "HSDownload", "HSEnd"
    std::int16_t PendingOps = 0;        ///< queued and not reported finished; below zero in places
    std::string LastQueuedTable;        ///< path
    std::string LinkTablePath;          ///< path
    bool SessionClosing = false;        ///< the end of a session is being worked off
    std::string Label1, Label2, Label3; ///< "Y": orders, audits, handheld totals were queued for upload

private:
    bool HSStart();
    void StageStep();
    bool HSUpload();
    void HSClear();
    void HSDownload();
    void HSEnd();

    bool UploadByTemplate();
    void UploadFixedList();
    void QueueGroup(std::span<const std::string_view> tables, std::string MainSession::*label);
    void QueueTotalsOfHandheld();
    void QueueUpload(const std::string& path);
    void QueueDownload(const std::string& path);
    void RefreshUser();

    void UpdateLinks();
    void MergeUpload();
    void DeleteCopies();
    std::string GetSyncStatus();
    void StoreStatus(const std::string& letter);

    SFrmAX40& SFMain;
    SessionScreen& screen_;
    Arrivals arrivals_;
    SessionReceipt receipt_{SessionKind::Unattended};
    UploadRun arrived_;       ///< while the session is closed
    bool totalsCame_ = false; ///< the handheld's own totals came in this session
    bool copiesMade_ = false; ///< this session has its safety copies and old totals
};
