#pragma once

#include "installation/forms/InstallRun.h"
#include "installation/forms/QuickStartPage.h"
#include "platform/Animation.h"

#include <string>

/// The first page of the tour: what the demo company is, and its install on a handheld.
class frmQuickStart final : public QuickStartPage, private InstallScreen {
    Q_OBJECT

public:
    frmQuickStart();

private slots:
    void lblCompany_Click();
    void lblManager_Click();
    void lblInstall_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    static bool AgreesToInstall();
    bool ChooseUser();
    bool EnterInLinks();
    void InstallDemo();

    void SetActive(const Text& message) override;
    void SetActiveSync(const Text& message) override;
    void SetInactive() override;

    void Enable(bool enabled);
    void Say(const Text& message);

    QLabel *lblInstallMsg, *aniHSWait;
    QPushButton* cmdCancel;
    InstallRun run_{*this, *this};
    Animation animation_;
    bool installing_ = false; ///< Cancel ends the install, and not the tour
};
