#pragma once

#include "quality/forms/ConfigTopic.h"
#include "ui_frmConfigSTax.h"

/// Sets up the sales taxes and who pays them.
class frmConfigSTax final : public ConfigTopic, private Ui::frmConfigSTax {
    Q_OBJECT

public:
    frmConfigSTax();

private slots:
    void cmdSTax_Click();
    void cmdCust_Click();
};
