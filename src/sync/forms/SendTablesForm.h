#pragma once

#include "sync/DownloadSession.h"
#include "sync/forms/TransferForm.h"

#include <optional>

/// What the two screens that send tables to the handheld share: the session.
class SendTablesForm : public TransferForm {
protected:
    SendTablesForm(Kind kind, SessionKind session) : TransferForm(kind), sessionKind_(session) {}

    void HotSyncStatus(std::int32_t status) final;

    /// Sends tables to the next handheld that presses HotSync, and closes the screen when one did.
    void SendTables(const std::vector<std::string>& paths);

private:
    SessionKind sessionKind_;
    std::optional<DownloadSession> session_;
};
