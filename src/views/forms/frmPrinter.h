#pragma once

#include "ui_frmPrinter.h"
#include "views/forms/SetupForm.h"

/// The editor of the print settings.
class frmPrinter final : public SetupForm, private Ui::frmPrinter {
    Q_OBJECT

public:
    frmPrinter() : SetupForm(ViewPrinter, PrinterTable) { setupUi(this); }

private slots:
    void cboPrinter_Click();
    void cboContForm_Click();

protected:
    std::vector<QWidget*> Controls() const override;
    void DisplayData() override;
    bool Save() override;

private:
    void EnableByPrinter();
    void EnableByContForm();
};
