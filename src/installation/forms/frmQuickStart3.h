#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: the tables that are set up once.
class frmQuickStart3 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart3();

private slots:
    void cmdCompany_Click();
    void cmdSTax_Click();
    void cmdPrinters_Click();
    void cmdPayments_Click();
    void cmdLinks_Click();
};
