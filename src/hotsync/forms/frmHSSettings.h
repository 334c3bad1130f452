#pragma once

#include "hotsync/forms/ManagerDesk.h"
#include "platform/Form.h"
#include "ui_frmHSSettings.h"

#include <string_view>

/// The HotSync Manager's settings. Each input bears the key of its setting: `txtPort`.
class frmHSSettings final : public Form, private Ui::frmHSSettings {
    Q_OBJECT

public:
    frmHSSettings() { setupUi(this); }

private slots:
    void chkLookup_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    QLineEdit& InputOf(std::string_view key) const;
    bool TakeInputs(ManagerSettings& settings);
};
