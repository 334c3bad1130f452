#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: whom the company sells to, and what.
class frmQuickStart4 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart4();

private slots:
    void cmdCust_Click();
    void cmdItems_Click();
    void cmdQC_Click();
};
