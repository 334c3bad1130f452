#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: what makes the daily work shorter, and the way back from a mistake.
class frmQuickStart8 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart8();

private slots:
    void cmdQB_Click();
    void cmdUA_Click();
    void cmdRestore_Click();
};
