#pragma once

#include "hotsync/Session.h"
#include "platform/Form.h"
#include "ui_frmHSPickUser.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

/// Asks whose a handheld is that has no HotSync user yet.
class frmHSPickUser final : public Form, private Ui::frmHSPickUser {
    Q_OBJECT

public:
    frmHSPickUser() { setupUi(this); }

    /// Whom it can belong to.
    void Fill(const std::vector<HotSyncUser>& users);

    /// Nothing while the operator has not answered; 0 for none of them.
    std::optional<std::uint32_t> Answer() const { return answer_; }

private slots:
    void lstUsers_Click();
    void lstUsers_DblClick();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void closeEvent(QCloseEvent* event) override;

private:
    std::vector<std::uint32_t> ids_; ///< by row
    std::optional<std::uint32_t> answer_;
};

/// Brings the question up, or goes on with the one that stands, and waits for the operator for at most
/// `wait`. The question goes with its answer.
SessionDesk::Picking AskForUser(const std::vector<HotSyncUser>& users, std::chrono::milliseconds wait,
                                std::uint32_t& picked);

/// Takes the question away: the handheld has gone.
void StopAskingForUser();
