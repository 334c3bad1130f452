#pragma once

#include "handheld/Overview.h"
#include "platform/Form.h"
#include "ui_frmStandIn.h"

#include <string>

class HotSyncLine;

/// A stand-in handheld as a person sees it: whose it is, the orders that it took, its tables and programs,
/// and the button HotSync. The handheld is that of `Global.StandInFolder`. Its folder is locked for each
/// deed, so that the commands of the program `handheld` can come between.
class frmStandIn final : public Form, private Ui::frmStandIn {
    Q_OBJECT

public:
    frmStandIn();

private slots:
    void FG1_SelChange();
    void cmdTake_Click();
    void cmdSign_Click();
    void cmdDelete_Click();
    void cmdHotSync_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    void ShowHandheld();
    void ShowOverview();
    void ShowOrders();
    void ShowDatabases();
    void EnableButtons();
    const HandheldOverview::Order* SelectedOrder() const;
    void SelectOrder(const std::string& code);
    void ShowOutcome(const std::string& why);

    HandheldOverview overview_;
    bool isThere_ = false;        ///< the handheld could be looked at
    HotSyncLine* line_ = nullptr; ///< while HotSync runs
};
