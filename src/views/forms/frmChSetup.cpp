#include "views/forms/frmChSetup.h"

#include "core/Messages.h"
#include "platform/HelpLine.h"

void frmChSetup::Form_Load() {
    if (Global.SetupOnly) {
        Trace("Form_Load");
        return ReadSearchFields();
    }
    SetupForm::Form_Load();
    auto* help = new HelpLine(*lblHelp, msg::MoveMouse);
    help->Add(*cboHHBackup, msg::HelpHHBackup);
    for (QWidget* list : {cboSrchCus, cboSrchItm}) help->Add(*list, msg::HelpSearchField);
    help->Add(*cmdOK, msg::HelpSaveAndClose);
    help->Add(*cmdCancel, msg::HelpAbortAndClose);
}

std::vector<QWidget*> frmChSetup::Controls() const {
    return {cboHHBackup, cboSrchCus, cboSrchItm};
}

bool frmChSetup::Save() {
    if (!UpdateData()) return false;
    Global.SearchCustomers = records_.Trimmed("SU_SRCHCUS");
    Global.SearchItems = records_.Trimmed("SU_SRCHITM");
    return true;
}
