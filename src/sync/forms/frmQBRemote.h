#pragma once

#include "platform/Form.h"
#include "ui_frmQBRemote.h"

/// Starts unattended mode with settings that are saved.
class frmQBRemote final : public Form, private Ui::frmQBRemote {
    Q_OBJECT

public:
    frmQBRemote() { setupUi(this); }

private slots:
    void cboUnattended_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdSetup_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void StartUnattended();
    void FillSettings(const QString& chosen);
};
