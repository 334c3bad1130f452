#pragma once

#include "platform/Form.h"
#include "tools/SystemInformation.h"
#include "ui_frmAbout.h"

#include <string>

/// What a support call needs: versions and the paths in use; to a file, to paper, into a message.
class frmAbout final : public Form, private Ui::frmAbout {
    Q_OBJECT

public:
    frmAbout() { setupUi(this); }

private slots:
    void cmdOK_Click();
    void cmdLog_Click();
    void cmdPrint_Click();
    void cmdEMail_Click();
    void cmdEventLog_Click();
    void lblWeb_Click();

protected:
    void Form_Load() override;

private:
    void ShowWeb();

    MachineFacts facts_;
    std::string web_; ///< the support desk's page; empty for none
};
