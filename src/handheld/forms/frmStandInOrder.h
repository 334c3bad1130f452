#pragma once

#include "handheld/OrderBook.h"
#include "platform/Form.h"
#include "ui_frmStandInOrder.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Takes an order on a stand-in handheld, whose folder it keeps locked meanwhile.
class frmStandInOrder final : public Form, private Ui::frmStandInOrder {
    Q_OBJECT

public:
    frmStandInOrder();
    ~frmStandInOrder() override;

    /// Opens the handheld. False when no order can be taken: the operator has been told why.
    bool Begin();

    /// Called with the code of an order that was taken.
    std::function<void(const std::string& code)> Taken;

private slots:
    void cboCustomer_Click();
    void cboItem_Click();
    void FG1_SelChange();
    void cmdAdd_Click();
    void cmdRemove_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    struct Desk;

    bool OpenDesk();
    void ShowOrder();

    std::unique_ptr<Desk> desk_;
    std::vector<OrderBook::Choice> customers_, items_;
    std::vector<std::string> customerTexts_, itemTexts_; ///< as the droplists show them
    std::vector<std::size_t> chosen_;                    ///< the items of the lines
    OrderEntry entry_;
};
