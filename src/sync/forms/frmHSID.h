#pragma once

#include "platform/Form.h"
#include "ui_frmHSID.h"

/// Asks for one of the HotSync Manager's users. Ok leaves it in Global.NewHSUser, every other way out
/// leaves that as it was.
class frmHSID final : public Form, private Ui::frmHSID {
    Q_OBJECT

public:
    frmHSID() { setupUi(this); }

    /// Asks for the default user of this office instead of one to add. There is no Cancel then, unless
    /// there is nobody to choose.
    void AskForDefault();

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
};
