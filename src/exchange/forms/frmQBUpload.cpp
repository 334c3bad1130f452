#include "exchange/forms/frmQBUpload.h"

#include "core/Globals.h"
#include "exchange/forms/SavedTables.h"
#include "platform/Convert.h"
#include "sync/forms/frmUploadSelect.h"

void frmQBUpload::Form_Load() {
    TraceEvent("frmQBUpload:Form_Load");
    FillList();
    cboDownload->setFocus();
}

void frmQBUpload::FillList() {
    FillSavedTables(*cboDownload, Global.UploadTemplates, ".ust");
    cmdOK->setEnabled(cboDownload->currentIndex() >= 0);
}

void frmQBUpload::cboDownload_Click() {
    TraceEvent("frmQBUpload:cboDownload_Click");
    cmdOK->setEnabled(cboDownload->currentIndex() >= 0);
}

void frmQBUpload::cmdSetup_Click() {
    TraceEvent("frmQBUpload:cmdSetup_Click");
    SetUpSavedTables(".ust");
    if (!IsOver()) FillList();
}

void frmQBUpload::cmdOK_Click() {
    TraceEvent("frmQBUpload:cmdOK_Click");
    const std::string name = PathFromQt(cboDownload->currentText());
    if (!AgreedToPerform(name) || IsOver()) return;
    const bool held = PerformSavedTables<frmUploadSelect>(name);
    if (IsOver()) return;
    FillList(); // one may have been saved or deleted there
    if (held) ShowDone(*cmdCancel);
}

void frmQBUpload::cmdCancel_Click() {
    TraceEvent("frmQBUpload:cmdCancel_Click");
    Unload();
}
