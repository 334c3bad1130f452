#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: the orders come home.
class frmQuickStart6 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart6();

private slots:
    void cmdUpload_Click();
};
