#include "views/forms/frmCompany.h"

#include "platform/Look.h"

void frmCompany::Form_Load() {
    setWindowIcon(Picture("SetupCompanyData32x32-16M.ico"));
    SetupForm::Form_Load();
}

std::vector<QWidget*> frmCompany::Controls() const {
    return {txtField_1, txtField_2, txtField_3, txtField_4, txtField_5,
            txtField_6, txtField_7, txtField_8, txtField_9};
}

void frmCompany::DisplayData() {
    SetupForm::DisplayData();
    KeepCompanyName();
}

bool frmCompany::Save() {
    if (!UpdateData()) return false;
    KeepCompanyName();
    return true;
}

/// For the heads of reports.
void frmCompany::KeepCompanyName() {
    Global.CompanyName = records_.Trimmed(CompanyTable.Key());
}
