#pragma once

#include "platform/Form.h"
#include "store/TableRecords.h"
#include "store/forms/RecordMoves.h"
#include "ui_frmViewSign.h"

/// The signed orders one by one, over a working copy of the order headers.
class frmViewSign final : public Form, private Ui::frmViewSign {
    Q_OBJECT

public:
    frmViewSign();

private slots:
    void cmdOK_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void DisplayFields();
    void DisplayData();
    void ShowCount();
    void Move(std::int32_t target);

    RecordMoves* moves_ = nullptr;
    TableRecords headers_;
};
