#pragma once

#include "ui_frmCompany.h"
#include "views/forms/SetupForm.h"

/// The editor of the company's name, address and footnotes.
class frmCompany final : public SetupForm, private Ui::frmCompany {
    Q_OBJECT

public:
    frmCompany() : SetupForm(ViewCompany, CompanyTable) { setupUi(this); }

protected:
    std::vector<QWidget*> Controls() const override;
    void Form_Load() override;
    void DisplayData() override;
    bool Save() override;

private:
    void KeepCompanyName();
};
