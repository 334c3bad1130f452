#pragma once

#include "platform/Form.h"
#include "ui_frmAbout.h"

/// What a support call needs: versions and the paths in use.
class frmAbout final : public Form, private Ui::frmAbout {
    Q_OBJECT

public:
    frmAbout() { setupUi(this); }

private slots:
    void cmdOK_Click();
    void cmdEventLog_Click();

protected:
    void Form_Load() override;
};
