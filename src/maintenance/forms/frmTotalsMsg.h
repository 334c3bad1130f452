#pragma once

#include "platform/Form.h"
#include "ui_frmTotalsMsg.h"

/// What the last upload has brought and what the PC now holds, as Global has them. Loaded while
/// Global.UploadClosing stands, it shows the difference that an upload made; else all of it counts as the
/// upload.
class frmTotalsMsg final : public Form, private Ui::frmTotalsMsg {
    Q_OBJECT

public:
    frmTotalsMsg() { setupUi(this); }

private slots:
    void cmdOK_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
};
