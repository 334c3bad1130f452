// The ways from the main screen to the others: menu entries, and labels that stand for them.

#include "program/forms/frmMain1.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "exchange/forms/frmConvert.h"
#include "exchange/forms/frmExport1.h"
#include "exchange/forms/frmQBClearPC.h"
#include "exchange/forms/frmQBDownload.h"
#include "exchange/forms/frmQBExport.h"
#include "exchange/forms/frmQBImport.h"
#include "exchange/forms/frmQBUpload.h"
#include "help/HTMLHelp.h"
#include "installation/forms/frmHHInstall.h"
#include "installation/forms/frmQuickStart.h"
#include "installation/forms/frmQuickStart2.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "platform/Look.h"
#include "platform/ManagerWindow.h"
#include "platform/Registry.h"
#include "quality/forms/QCRun.h"
#include "quality/forms/frmConfig.h"
#include "sync/forms/UpdateHSUsers.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "tools/forms/frmAbout.h"
#include "tools/forms/frmFindNotes.h"
#include "tools/forms/frmOptions.h"
#include "views/forms/frmView.h"
#include "views/forms/frmViewGrid.h"
#include "views/forms/frmViewSign.h"

#include <QApplication>

namespace {

constexpr const char* QualityCheckHelp = "Quality_Check_.htm";

} // namespace

void frmMain1::lblImportBtn_Click() {
    TraceEvent("frmMain1:lblImportBtn_Click");
    UnloadForms();
    The<frmQBImport>().Show();
}

void frmMain1::lblExportBtn_Click() {
    TraceEvent("frmMain1:lblExportBtn_Click");
    UnloadForms();
    The<frmQBExport>().Show();
}

void frmMain1::mnuMainImport_Click() {
    TraceEvent("frmMain1:mnuMainImport_Click");
    UnloadForms();
    The<frmConvert>().Show(ShowMode::Modal);
}

void frmMain1::lblDownloadBtn_Click() {
    TraceEvent("frmMain1:lblDownloadBtn_Click");
    UnloadForms();
    The<frmQBDownload>().Show();
}

void frmMain1::lblUploadBtn_Click() {
    TraceEvent("frmMain1:lblUploadBtn_Click");
    UnloadForms();
    The<frmQBUpload>().Show();
}

void frmMain1::mnuDownloadSelect_Click() {
    TraceEvent("frmMain1:mnuDownloadSelect_Click");
    UnloadForms();
    The<frmTableSelectDL>().Show(ShowMode::Modal);
}

void frmMain1::mnuClearSelect_Click() {
    TraceEvent("frmMain1:mnuClearSelect_Click");
    UnloadForms();
    The<frmTableSelectCL>().Show(ShowMode::Modal);
}

void frmMain1::mnuMainUpload_Click() {
    TraceEvent("frmMain1:mnuMainUpload_Click");
    UnloadForms();
    The<frmUploadSelect>().Show(ShowMode::Modal);
}

void frmMain1::mnuMainExport_Click() {
    TraceEvent("frmMain1:mnuMainExport_Click");
    UnloadForms();
    The<frmExport1>().Show(ShowMode::Modal);
}

void frmMain1::lblPCTables_Click() {
    TraceEvent("frmMain1:lblPCTables_Click");
    UnloadForms();
    The<frmView>().Show();
}

void frmMain1::lblClearPC_Click() {
    TraceEvent("frmMain1:lblClearPC_Click");
    UnloadForms();
    The<frmQBClearPC>().Show();
}

void frmMain1::lblPurgeBU_Click() {
    mnuClearPCTables_Click();
}

void frmMain1::mnuClearPCTables_Click() {
    TraceEvent("frmMain1:mnuClearPCTables_Click");
    UnloadForms();
    The<frmTableSelectPC>().Show(ShowMode::Modal);
}

void frmMain1::lblConfigurator_Click() {
    mnuConfig_Click();
}

void frmMain1::mnuConfig_Click() {
    TraceEvent("frmMain1:mnuConfig_Click");
    UnloadForms();
    The<frmConfig>().Show();
}

void frmMain1::lblQC_Click() {
    mnuQC_Click();
}

void frmMain1::mnuQC_Click() {
    TraceEvent("frmMain1:mnuQC_Click");
    UnloadForms();
    if (Global.TheOperator->Ask({msg::QCAllQuestion, msg::Yes, msg::No, QualityCheckHelp}))
        CheckAllProcesses();
}

void frmMain1::EnableRegistration(bool enabled) {
    for (QWidget* label : {lblUpdateHSUsers, lblUA, lblDemoInstall, lblHelpCompany})
        label->setEnabled(enabled);
    for (QAction* entry : {mnuUpdateReg, mnuRemoteSync}) entry->setEnabled(enabled);
}

void frmMain1::UpdateUsers() {
    UnloadForms();
    EnableRegistration(false); // while the question stands too
    UpdateHSUsers(*this);
    EnableRegistration(true);
}

void frmMain1::lblDemoInstall_Click() {
    TraceEvent("frmMain1:lblDemoInstall_Click");
    UnloadForms();
    The<frmQuickStart>().Show();
}

void frmMain1::lblHelpCompany_Click() {
    TraceEvent("frmMain1:lblHelpCompany_Click");
    UnloadForms();
    The<frmQuickStart2>().Show();
}

void frmMain1::lblUpdateHSUsers_Click() {
    TraceEvent("frmMain1:lblUpdateHSUsers_Click");
    UpdateUsers();
}

void frmMain1::mnuUpdateReg_Click() {
    TraceEvent("frmMain1:mnuUpdateReg_Click");
    UpdateUsers();
}

void frmMain1::mnuManager_Click() {
    TraceEvent("frmMain1:mnuManager_Click");
    ShowHotSyncManager(*this);
}

void frmMain1::lblInstallHH_Click() {
    mnuSetupInitial_Click();
}

void frmMain1::mnuSetupInitial_Click() {
    TraceEvent("frmMain1:mnuSetupInitial_Click");
    UnloadForms();
    The<frmHHInstall>().Show(ShowMode::Modal);
}

void frmMain1::lblSetupPC_Click() {
    TraceEvent("frmMain1:lblSetupPC_Click");
    UnloadForms();
    The<frmOptions>().Show(ShowMode::Modal);
}

void frmMain1::mnuPCSetup_Click() {
    TraceEvent("frmMain1:mnuPCSetup_Click");
    UnloadForms();
    The<frmOptions>().Show(ShowMode::Modal);
}

void frmMain1::View(const char* handler, ViewFlag flag, ShowMode mode) {
    TraceEvent(std::string("frmMain1:") + handler);
    UnloadForms();
    ShowTable(flag, mode);
}

void frmMain1::Edit(const char* handler, ViewFlag flag) {
    TraceEvent(std::string("frmMain1:") + handler);
    UnloadForms();
    EditTable(flag);
}

void frmMain1::mnuChgComp_Click() {
    Edit("mnuChgComp_Click", ViewCompany);
}

void frmMain1::mnuChgLinks_Click() {
    Edit("mnuChgLinks_Click", ViewLink);
}

void frmMain1::mnuChgSTax_Click() {
    Edit("mnuChgSTax_Click", ViewSTax);
}

void frmMain1::mnuChgCust_Click() {
    Edit("mnuChgCust_Click", ViewCust);
}

void frmMain1::mnuChgItems_Click() {
    Edit("mnuChgItems_Click", ViewItem);
}

void frmMain1::mnuChgPayments_Click() {
    Edit("mnuChgPayments_Click", ViewPay);
}

void frmMain1::mnuChgPrinter_Click() {
    Edit("mnuChgPrinter_Click", ViewPrinter);
}

void frmMain1::mnuChgSetup_Click() {
    Edit("mnuChgSetup_Click", ViewSetup);
}

void frmMain1::cmdPCTotals_Click() {
    View("cmdPCTotals_Click", ViewTotals, ShowMode::Modal);
}

void frmMain1::mnuTblCompany_Click() {
    View("mnuTblCompany_Click", ViewCompany);
}

void frmMain1::mnuTblLinks_Click() {
    View("mnuTblLinks_Click", ViewLink);
}

void frmMain1::mnuTblPayments_Click() {
    View("mnuTblPayments_Click", ViewPay);
}

void frmMain1::mnuTblPrinter_Click() {
    View("mnuTblPrinter_Click", ViewPrinter);
}

void frmMain1::mnuTblStax_Click() {
    View("mnuTblStax_Click", ViewSTax);
}

void frmMain1::mnuTblSetup_Click() {
    View("mnuTblSetup_Click", ViewSetup);
}

void frmMain1::mnuTblCust_Click() {
    View("mnuTblCust_Click", ViewCust);
}

void frmMain1::mnuTblItem_Click() {
    View("mnuTblItem_Click", ViewItem);
}

void frmMain1::mnuTblOrHdr_Click() {
    View("mnuTblOrHdr_Click", ViewOrHdr);
}

void frmMain1::mnuTblOrLin_Click() {
    View("mnuTblOrLin_Click", ViewOrLin);
}

void frmMain1::mnuViewSign_Click() {
    TraceEvent("frmMain1:mnuViewSign_Click");
    UnloadForms();
    ClearViewFlags();
    Global.View[ViewOrHdr] = true;
    The<frmViewSign>().Show();
}

void frmMain1::mnuTblOrHdrAudt_Click() {
    View("mnuTblOrHdrAudt_Click", ViewOrHdrAudt);
}

void frmMain1::mnuTblOrLinAudt_Click() {
    View("mnuTblOrLinAudt_Click", ViewOrLinAudt);
}

void frmMain1::mnuTblHHTotals_Click() {
    View("mnuTblHHTotals_Click", ViewAudHH);
}

void frmMain1::mnuTblBarIn_Click() {
    View("mnuTblBarIn_Click", ViewBarIn);
}

void frmMain1::mnuTblPRN_Click() {
    View("mnuTblPRN_Click", ViewPRN);
}

void frmMain1::mnuRestore_Click() {
    View("mnuRestore_Click", ViewRestore);
}

void frmMain1::lblRestore_Click() {
    View("lblRestore_Click", ViewRestore);
}

void frmMain1::mnuViewTotals_Click() {
    View("mnuViewTotals_Click", ViewTotals);
}

void frmMain1::mnuHelpContents_Click() {
    TraceEvent("frmMain1:mnuHelpContents_Click");
    Global.TheHelp->HHDisplayContents();
}

void frmMain1::mnuHelpIndex_Click() {
    TraceEvent("frmMain1:mnuHelpIndex_Click");
    Global.TheHelp->HHDisplayIndex();
}

void frmMain1::mnuHelpSearch_Click() {
    TraceEvent("frmMain1:mnuHelpSearch_Click");
    Global.TheHelp->HHDisplaySearch();
}

void frmMain1::mnuWhatsThis_Click() {
    TraceEvent("frmMain1:mnuWhatsThis_Click");
    Global.TheHelp->HHInvokeWhatsThisHelp();
}

void frmMain1::mnuMainAbout_Click() {
    TraceEvent("frmMain1:mnuMainAbout_Click");
    UnloadForms();
    The<frmAbout>().Show(ShowMode::Modal);
}

void frmMain1::mnuNotes_Click() {
    TraceEvent("frmMain1:mnuNotes_Click");
    UnloadForms();
    The<frmFindNotes>().Show(ShowMode::Modal);
}

void frmMain1::lblNotes_Click() {
    TraceEvent("frmMain1:lblNotes_Click");
    UnloadForms();
    The<frmFindNotes>().Show(ShowMode::Modal);
}

void frmMain1::mnuDarkLook_Click() {
    TraceEvent("frmMain1:mnuDarkLook_Click");
    Registry::SetDarkLook(mnuDarkLook->isChecked());
    ApplyLook(mnuDarkLook->isChecked());
}
