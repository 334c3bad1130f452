#pragma once

#include "platform/Form.h"
#include "sync/UnattendedSettings.h"
#include "ui_frmOptions.h"

#include <array>
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
    void cboImpAct_Click();
    void cboExpAct_Click();
    void cboPCAct_Click();
    void cmdEdtImp_Click();
    void cmdEdtExp_Click();
    void cmdEdtPC_Click();
    void cmdDelImpAct_Click();
    void cmdDelExpAct_Click();
    void cmdDelPCAct_Click();
    void cboRemoteSettings_Click();
    void cmdDelete_Click();
    void cmdSUDownload_Click();
    void cmdSUUpload_Click();
    void cmdSUClear_Click();
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
    /// A list of files that is typed into, and which of them is on the screen.
    struct Files {
        QComboBox* Box;
        std::string_view Extension;
        const std::string* Folder;
        QString Loaded; ///< a typed name that is another's is not that file

        std::string Name() const;
        std::string Path() const;
    };

    /// The activities of a kind, and the droplists of the templates that one of them runs.
    struct Activities : Files {
        std::array<QComboBox*, 2> Templates;
    };

    void PopImport();
    void PopExport();
    void PopPCCLear();
    void PopDownload();
    void PopUpload();
    void PopClear();
    void FillPurgeDays();
    static void FillNames(Files& files);

    void ShowActivity(Activities& kind);
    void DeleteActivity(Activities& kind);
    bool SaveActivity(Activities& kind);
    template <class F>
    bool EditTemplates();

    UnattendedSettings Unattended() const;
    void ShowUnattended(const UnattendedSettings& settings);
    bool SaveUnattended();

    bool SelectionsAreThere();
    bool NamesCanBeSaved();
    bool NameCanBeSaved(const Files& files);
    bool NameIsKept(QComboBox& box, const std::string& name, std::string_view ends = {});
    void TakeOptions() const;
    static bool SaveSettings();
    void PopLanguages();
    bool SaveLanguage();
    void GoTo(QWidget& control);

    std::string repair_; ///< the file that the report of the Quality Check has sent the operator to
    Files unattended_;
    std::array<Activities, 3> activities_;
};
