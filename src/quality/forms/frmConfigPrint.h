#pragma once

#include "quality/forms/ConfigTopic.h"
#include "ui_frmConfigPrint.h"

/// Sets up what the handheld prints.
class frmConfigPrint final : public ConfigTopic, private Ui::frmConfigPrint {
    Q_OBJECT

public:
    frmConfigPrint();

private slots:
    void cmdComp_Click();
    void cmdPrinter_Click();
};
