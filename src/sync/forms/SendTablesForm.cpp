#include "sync/forms/SendTablesForm.h"

#include "sync/forms/StatusFile.h"

void SendTablesForm::SendTables(const std::vector<std::string>& paths) {
    session_.emplace(Control(), sessionKind_);
    session_->Tables = paths;
    session_->ShowStatus = ShowHHStatusStd;
    const FlushEnd end = FlushCommandQueue();
    AwaitProgressWindow();
    session_->WriteReceipt();
    TellEnd(end);
    Finish(end == FlushEnd::Done);
}

void SendTablesForm::HotSyncStatus(std::int32_t status) {
    if (session_) session_->SFDownload_HotSyncStatus(status);
}
