#pragma once

#include "quality/forms/ConfigTopic.h"
#include "ui_frmConfigCust.h"

/// Sets up the customers: by what the handheld finds them, what they are, and whether they are in order.
class frmConfigCust final : public SearchTopic, private Ui::frmConfigCust {
    Q_OBJECT

public:
    frmConfigCust();

private slots:
    void cboSrchCus_Click();
    void cmdEdit_Click();
    void cmdImport_Click();
};
