#pragma once

#include "platform/Form.h"
#include "ui_frmQBDownload.h"

/// Performs a saved download, or a saved clearing of handhelds, with one confirmation.
class frmQBDownload final : public Form, private Ui::frmQBDownload {
    Q_OBJECT

public:
    frmQBDownload() { setupUi(this); }

private slots:
    void cboDownload_Click();
    void cboClear_Click();
    void cmdSetupDL_Click();
    void cmdSetupCL_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    void FillLists();
    void CheckOK();
};
