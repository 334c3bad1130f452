#pragma once

#include "platform/Form.h"
#include "ui_frmUpdateMsg.h"

/// Says what is new in an update, for an installer to ask whether it is to go on:
/// Global.UpdateCancelled is the answer.
class frmUpdateMsg final : public Form, private Ui::frmUpdateMsg {
    Q_OBJECT

public:
    frmUpdateMsg() { setupUi(this); }

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
};
