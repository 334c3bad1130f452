#pragma once

#include "quality/forms/ConfigTopic.h"
#include "ui_frmConfigItem.h"

/// Sets up the items: by what the handheld finds them, what they are, and whether they are in order.
class frmConfigItem final : public SearchTopic, private Ui::frmConfigItem {
    Q_OBJECT

public:
    frmConfigItem();

private slots:
    void cboSrchItm_Click();
    void cmdEdit_Click();
    void cmdImport_Click();
};
