#pragma once

#include "platform/Form.h"
#include "ui_frmView.h"

/// The menu of the browser: a button for each table.
class frmView final : public Form, private Ui::frmView {
    Q_OBJECT

public:
    frmView() { setupUi(this); }

private slots:
    void cmdOrHdr_Click();
    void cmdOrLin_Click();
    void cmdOrHdrAudt_Click();
    void cmdOrLinAudt_Click();
    void cmdAudHH_Click();
    void cmdCompany_Click();
    void cmdPrinter_Click();
    void cmdSetup_Click();
    void cmdCust_Click();
    void cmdItems_Click();
    void cmdBCIndex_Click();
    void cmdTotals_Click();
    void cmdSTax_Click();
    void cmdPay_Click();
    void cmdLinks_Click();
    void cmdPRN_Click();
    void cmdOK_Click();

protected:
    void Form_Load() override;
};
