#pragma once

#include "installation/forms/QuickStartPage.h"

/// The tour: how the stages follow each other, with a label for the page of each.
class frmQuickStart2 final : public QuickStartPage {
    Q_OBJECT

public:
    frmQuickStart2();

private slots:
    void lblSetup_Click();
    void lblAdd_Click();
    void lblDownload_Click();
    void lblUpload_Click();
    void lblExport_Click();
    void lblEnter_Click();
};
