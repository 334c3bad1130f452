#pragma once

#include "platform/Form.h"
#include "ui_frmQBUpload.h"

/// Performs a saved upload with one confirmation.
class frmQBUpload final : public Form, private Ui::frmQBUpload {
    Q_OBJECT

public:
    frmQBUpload() { setupUi(this); }

private slots:
    void cboDownload_Click();
    void cmdSetup_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    void FillList();
};
