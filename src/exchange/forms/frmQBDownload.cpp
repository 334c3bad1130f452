#include "exchange/forms/frmQBDownload.h"

#include "core/Globals.h"
#include "exchange/forms/SavedTables.h"
#include "platform/Convert.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"

void frmQBDownload::Form_Load() {
    TraceEvent("frmQBDownload:Form_Load");
    FillLists();
    cboDownload->setFocus();
}

void frmQBDownload::FillLists() {
    FillSavedTables(*cboDownload, Global.DownloadTemplates, ".dst");
    FillSavedTables(*cboClear, Global.DownloadTemplates, ".dct");
    CheckOK();
}

void frmQBDownload::CheckOK() {
    cmdOK->setEnabled(cboDownload->currentIndex() >= 0 || cboClear->currentIndex() >= 0);
}

void frmQBDownload::cboDownload_Click() {
    TraceEvent("frmQBDownload:cboDownload_Click");
    cboClear->setCurrentIndex(-1);
    CheckOK();
}

void frmQBDownload::cboClear_Click() {
    TraceEvent("frmQBDownload:cboClear_Click");
    cboDownload->setCurrentIndex(-1);
    CheckOK();
}

void frmQBDownload::cmdSetupDL_Click() {
    TraceEvent("frmQBDownload:cmdSetupDL_Click");
    SetUpSavedTables(".dst");
    if (!IsOver()) FillLists();
}

void frmQBDownload::cmdSetupCL_Click() {
    TraceEvent("frmQBDownload:cmdSetupCL_Click");
    SetUpSavedTables(".dct");
    if (!IsOver()) FillLists();
}

void frmQBDownload::cmdOK_Click() {
    TraceEvent("frmQBDownload:cmdOK_Click");
    const bool downloads = cboDownload->currentIndex() >= 0;
    const std::string name = PathFromQt((downloads ? cboDownload : cboClear)->currentText());
    if (!AgreedToPerform(name) || IsOver()) return;
    const bool held =
        downloads ? PerformSavedTables<frmTableSelectDL>(name) : PerformSavedTables<frmTableSelectCL>(name);
    if (IsOver()) return;
    FillLists(); // one may have been saved or deleted there
    if (held) ShowDone(*cmdCancel);
}

void frmQBDownload::cmdCancel_Click() {
    TraceEvent("frmQBDownload:cmdCancel_Click");
    Unload();
}
