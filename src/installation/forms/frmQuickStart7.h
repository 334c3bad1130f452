#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: the orders go to the accounting system, and the tables are cleared behind them.
class frmQuickStart7 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart7();

private slots:
    void cmdExport_Click();
    void cmdClear_Click();
};
