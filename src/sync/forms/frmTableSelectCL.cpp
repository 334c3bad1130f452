#include "sync/forms/frmTableSelectCL.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/HotSyncManager.h"
#include "sync/TableTemplates.h"
#include "sync/forms/frmMainSync.h"

frmTableSelectCL::frmTableSelectCL()
    : SendTablesForm({&Global.DownloadTemplates, ".dct"}, SessionKind::Clear) {
    setupUi(this);
    Bind({{chkOrHdr, lblOrHdr, {"ZUKORHDR", "ZUKORLIN"}},
          {chkAudtH, lblAudtH, {"ZUKAUDTH", "ZUKAUDTL"}},
          {chkAudHH, lblAudHH, {"ZUKAUDHH"}}},
         {msg::HintTablesCL, msg::HintOKCL, msg::HintCancelCL, msg::NothingTicked}, false);
}

ClearChoice frmTableSelectCL::Choice() const {
    return {chkOrHdr->isChecked(), chkAudtH->isChecked(), chkAudHH->isChecked()};
}

void frmTableSelectCL::ReadSettings(const std::string& path) {
    ClearChoice choice = Choice();
    ReadTemplate(path, choice);
    chkOrHdr->setChecked(choice.Orders);
    chkAudtH->setChecked(choice.Audits);
    chkAudHH->setChecked(choice.HHTotals);
}

void frmTableSelectCL::WriteSettings(const std::string& path) {
    WriteTemplate(path, Choice());
}

void frmTableSelectCL::Perform() {
    if (!IsDriven() && !AskYesNo(msg::DownloadNow)) return Unload();
    if (!IsHotSyncActiveOrTell()) return;
    // Asked of a QuickButton too: what the handheld holds is nowhere else.
    if (!AskYesNo(msg::ClearWarning, Icon::Warning)) return Unload();
    UnloadMainSync();
    SendTables(TablesOf(Choice()));
}
