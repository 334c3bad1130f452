#pragma once

#include "hotsync/forms/ManagerDesk.h"
#include "hotsync/forms/Tray.h"
#include "platform/Form.h"
#include "ui_frmHSManager.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The HotSync Manager's window: its users, where it awaits handhelds, and what its log says. Closing it
/// only puts it away; the program ends by `cmdExit`.
class frmHSManager final : public Form, private Ui::frmHSManager {
    Q_OBJECT

public:
    frmHSManager();

    /// Takes another icon than its own, which may stand in another tray.
    void UseTray(std::unique_ptr<Tray> tray) { tray_ = std::move(tray); }

    /// Brings the window before the operator, from wherever it was put.
    void Open();

    /// Puts it into the tray, or where there is none, on the bar of the windows.
    void PutAway();

private slots:
    void FG1_SelChange();
    void FG1_RequestEdit();
    void cmdNew_Click();
    void cmdRename_Click();
    void cmdDelete_Click();
    void cmdStandIn_Click();
    void cmdSettings_Click();
    void cmdHide_Click();
    void cmdExit_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override { PutAway(); }

private:
    void ShowUsers();
    void ShowState();
    void ShowLog();
    const HotSyncUser* SelectedUser() const;
    bool AskName(const Text& prompt, std::uint32_t id, std::string& name);
    bool IsInSession(std::uint32_t id);
    void Change(const std::function<void()>& change);

    std::unique_ptr<Tray> tray_;
    std::vector<std::uint32_t> shown_; ///< ids of the users in the grid, by record
};
