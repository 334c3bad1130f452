#include "sync/forms/frmTableSelectDL.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/HotSyncManager.h"
#include "quality/forms/QCRun.h"
#include "sync/TableTemplates.h"
#include "sync/forms/frmMainSync.h"

frmTableSelectDL::frmTableSelectDL()
    : SendTablesForm({&Global.DownloadTemplates, ".dst"}, SessionKind::Download) {
    setupUi(this);
    Bind({{chkCust, lblCust, {"ZUKCUST"}},
          {chkItem, lblItem, {"ZUKITEM", "ZUKBARIN"}},
          {chkSetup,
           lblSetup,
           {"ZUKSETUP", "ZUKCOMP", "ZUKHELP", "ZUKPRINT", "ZUKSTAX", "ZUKPAY", "ZUKLINK"}}},
         {msg::HintTablesDL, msg::HintOKDL, msg::HintCancelDL, msg::NothingTicked}, true);
}

DownloadChoice frmTableSelectDL::Choice() const {
    return {chkCust->isChecked(), chkItem->isChecked(), chkSetup->isChecked()};
}

void frmTableSelectDL::ReadSettings(const std::string& path) {
    DownloadChoice choice = Choice();
    ReadTemplate(path, choice);
    chkCust->setChecked(choice.Customers);
    chkItem->setChecked(choice.Items);
    chkSetup->setChecked(choice.Setup);
}

void frmTableSelectDL::WriteSettings(const std::string& path) {
    WriteTemplate(path, Choice());
}

/// The check sorts the tables too, into the order that the handheld relies on.
bool frmTableSelectDL::PassGate() {
    const Busy busy(*this, msg::CheckRuns, WayOut::Shut);
    return PassQualityCheck(*this);
}

void frmTableSelectDL::Perform() {
    const bool asks = !IsDriven() && !IsFromConfigurator();
    if (asks && !AskYesNo(msg::DownloadNow)) return Unload();
    if (!IsHotSyncActiveOrTell()) return;
    if (!PassGate()) {
        if (!IsOver()) Tell(msg::FatalHotsync, Icon::Warning);
        return;
    }
    UnloadMainSync();
    const std::vector<std::string> tables = TablesOf(Choice());
    if (!TablesAreFree(tables)) return;
    SendTables(tables);
}
