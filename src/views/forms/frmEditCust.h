#pragma once

#include "ui_frmEditCust.h"
#include "views/forms/MasterEditor.h"

/// The editor of the customers.
class frmEditCust final : public MasterEditor, private Ui::frmEditCust {
    Q_OBJECT

public:
    frmEditCust();

private slots:
    void cboC_STCode_Click();

protected:
    void Form_Load() override;
    Text OwnWarning(const MasterTable& table) const override;
};
