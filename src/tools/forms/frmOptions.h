#pragma once

#include "platform/Form.h"
#include "tools/forms/ActivitiesPage.h"
#include "tools/forms/UnattendedPage.h"
#include "ui_frmOptions.h"

#include <string>
#include <string_view>

/// The options of the PC: the activities of the QuickButtons, what unattended mode does, backups and
/// updates.
class frmOptions final : public Form, private Ui::frmOptions {
    Q_OBJECT

public:
    frmOptions();

    /// Turns to what keeps files of this name's extension ("Morning.ipm", "Evening.uhs") and chooses
    /// that file; an extension alone chooses none, nor does a selection of tables, which has a screen of
    /// its own. In the file system's encoding.
    void TurnTo(std::string_view file);
    void TurnToBackup() { GoTo(*optPurge); }

    /// That of the tab at hand.
    std::string HelpTopic() const override;

private slots:
    void optPurge_Click();
    void optNoPurge_Click();
    void optDelBackup_Click();
    void cmdDelBU_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void FillPurgeDays();
    void TakeOptions() const;
    void PopLanguages();
    bool SaveLanguage();

    std::string repair_; ///< the file that the report of the Quality Check has sent the operator to
    ActivitiesPage* activities_;
    UnattendedPage* unattended_;
};
