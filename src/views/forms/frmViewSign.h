#pragma once

#include "platform/Form.h"
#include "store/TableRecords.h"
#include "ui_frmViewSign.h"

/// The signed orders one by one, over a working copy of the order headers.
class frmViewSign final : public Form, private Ui::frmViewSign {
    Q_OBJECT

public:
    frmViewSign() { setupUi(this); }

private slots:
    void cmdFirst_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdLast_Click();
    void cmdOK_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void DisplayFields();
    void DisplayData();
    void ShowCount();
    void Go(const char* handler, std::int32_t target);

    TableRecords headers_;
};
