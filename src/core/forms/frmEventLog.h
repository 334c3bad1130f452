#pragma once

#include "platform/Form.h"
#include "ui_frmEventLog.h"

/// Shows the trace as it stands in `Events.log`, newest line first.
class frmEventLog final : public Form, private Ui::frmEventLog {
    Q_OBJECT

public:
    frmEventLog() { setupUi(this); }

private slots:
    void cmdOK_Click();

protected:
    void Form_Load() override;
};
