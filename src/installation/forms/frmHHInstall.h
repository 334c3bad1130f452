#pragma once

#include "installation/forms/InstallRun.h"
#include "platform/Animation.h"
#include "platform/Form.h"
#include "ui_frmHHInstall.h"

#include <string>

class HelpLine;

/// Puts the handheld application and its data on a handheld, and shows what was installed on which.
class frmHHInstall final : public Form, public InstallScreen, private Ui::frmHHInstall {
    Q_OBJECT

public:
    frmHHInstall();

private slots:
    void cboHSUsers_Click();
    void cmdDemo_Click();
    void cmdLive_Click();
    void cmdProgram_Click();
    void cmdLinks_Click();
    void cmdManager_Click();
    void cmdReset_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void InstallDemo();
    void InstallLive();
    void InstallProgram();
    void Install(InstallKind kind);

    void SetActive(const Text& message) override;
    void SetActiveSync(const Text& message) override;
    void SetInactive() override;

    bool LoadUsers();
    void GetList();
    void ShowList();
    void ShowReady();
    void Enable(bool enabled);

    InstallRun run_{*this, *this};
    Animation waiting_, syncing_; ///< play in aniHSWait and in aniHS
    HelpLine* help_ = nullptr;
    std::string user_; ///< the one that is chosen; empty for none
    bool busy_ = false;
};
