#pragma once

#include "store/forms/RecordMoves.h"
#include "ui_frmPay.h"
#include "views/forms/SetupForm.h"

/// The editor of the payment types, one record each. A move asks before it saves; an added record stays in
/// the table, whatever becomes of what was typed into it.
class frmPay final : public SetupForm, private Ui::frmPay {
    Q_OBJECT

public:
    frmPay();

    /// Moves to a record, or to the nearest that there is.
    void GoTo(std::int32_t record);

private slots:
    void optCash_Click();
    void optCheck_Click();
    void optCard_Click();
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdUpdate_Click();

protected:
    std::vector<QWidget*> Controls() const override;
    std::int32_t FirstShown() const override { return Global.SelectedRow; }
    void Put(std::size_t field, const std::string& text) override;
    std::string Held(std::size_t field) const override;
    void Form_Load() override;
    void Form_GotFocus() override;
    void DisplayData() override;
    bool Save() override { return CheckUpdate(); }

private:
    void CheckCard();
    bool CheckUpdate();
    bool HasType();
    void ShowCount();
    void Move(std::int32_t target);

    RecordMoves* moves_ = nullptr;
};
