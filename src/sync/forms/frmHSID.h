#pragma once

#include "platform/Form.h"
#include "sync/SFrmAX40.h"
#include "ui_frmHSID.h"

#include <memory>
#include <string>
#include <vector>

/// Asks for one of the HotSync Manager's users, of whom it shows those that there are at any moment. Ok
/// leaves it in Global.NewHSUser, every other way out leaves that as it was.
class frmHSID final : public Form, private Ui::frmHSID {
    Q_OBJECT

public:
    frmHSID();

    /// Asks for the default user of this office instead of one to add. There is no Cancel then, unless
    /// there is nobody to choose.
    void AskForDefault();

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdManager_Click();
    void TimerLook_Timer();

protected:
    void Form_Load() override;

private:
    void ShowUsers();
    void ShowState();

    std::unique_ptr<SFrmAX40> control_;
    std::vector<std::string> users_; ///< as they are listed
    bool forDefault_ = false;
};
