#pragma once

#include "platform/Form.h"
#include "ui_frmEventLog.h"

/// Shows the trace as it stood in `Events.log` when it was opened, newest line first; prints it, and begins a
/// message to which it can be attached.
class frmEventLog final : public Form, private Ui::frmEventLog {
    Q_OBJECT

public:
    frmEventLog() { setupUi(this); }

private slots:
    void cmdOK_Click();
    void cmdPrint_Click();
    void cmdEMail_Click();

protected:
    void Form_Load() override;
};
