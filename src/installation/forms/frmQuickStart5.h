#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: the tables go to the handhelds.
class frmQuickStart5 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart5();

private slots:
    void cmdDownload_Click();
    void cmdQC_Click();
};
