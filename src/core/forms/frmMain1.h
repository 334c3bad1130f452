#pragma once

#include "core/Globals.h"
#include "core/Text.h"
#include "core/forms/HHBricks.h"
#include "core/forms/UnattendedView.h"
#include "maintenance/Totals.h"
#include "platform/Form.h"
#include "sync/SessionScreen.h"
#include "ui_frmMain1.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class FoundWindow;
class QTimer;

/// The system's home: the state of the handhelds, the recent uploads, the daily activities and the
/// tools. Its load is the start of the program, its unload the end.
class frmMain1 final : public MainForm, private Ui::frmMain1 {
    Q_OBJECT

public:
    frmMain1();

    /// Fills the grid of recent uploads.
    void GetPCTotals();

    /// The newest of them; nothing when there is none.
    const std::optional<UploadRow>& NewestUpload() const { return newestUpload_; }

    /// Writes the record counts of customers, items and orders on the page "System Summary".
    void RefreshRecordCounts();

    /// Draws the bricks of a family, one for each record of the Links table, and hides the others.
    void GetHHBricks();
    void GetHHBricksStd();
    void GetHHBricksInst();

    /// Says at the foot of the screen what was done, until another screen is opened.
    void ShowOutcome(const Text& outcome);

    /// Closes every secondary form.
    void UnloadForms();

    /// Brings the screen to the armed form of unattended mode: what it does stands in place of the tools and
    /// the QuickButtons, and whatever starts something else is disabled.
    void LoadActiveRemoteSync();

    /// Brings the screen to the idle form of the mode, and enables what the other has disabled.
    void LoadInactiveRemoteSync();

    /// Whether the ways to a registration of the HotSync users are open. One at a time: it waits for windows
    /// of the other programs.
    void EnableRegistration(bool enabled);

    /// A session of the armed mode: who is in it, and how far its phases are.
    void ShowSession(const std::string& user);
    void ShowPhase(SyncPhaseImage phase, PhaseLook look);
    void ShowWaiting();

    /// A handheld that is not in the Links table has turned the mode off, which waits to be stopped.
    void ShowUnattendedOff();

    /// The mode stops when the session that runs is over, and says so.
    void StopAfterSession(const Text& message);

    /// The session is over: does what has waited for it.
    void SessionIsOver();

private slots:
    void mnuMainImport_Click();
    void mnuDownloadSelect_Click();
    void mnuClearSelect_Click();
    void mnuMainUpload_Click();
    void mnuMainExport_Click();
    void mnuExit_Click();
    void mnuClearPCTables_Click();
    void mnuHelpContents_Click();
    void mnuHelpIndex_Click();
    void mnuHelpSearch_Click();
    void mnuWhatsThis_Click();
    void mnuMainAbout_Click();
    void mnuNotes_Click();
    void lblNotes_Click();
    void mnuDarkLook_Click();
    void mnuChgComp_Click();
    void mnuChgLinks_Click();
    void mnuChgSTax_Click();
    void mnuChgCust_Click();
    void mnuChgItems_Click();
    void mnuChgPayments_Click();
    void mnuChgPrinter_Click();
    void mnuChgSetup_Click();
    void mnuTblCompany_Click();
    void mnuTblLinks_Click();
    void mnuTblPayments_Click();
    void mnuTblPrinter_Click();
    void mnuTblStax_Click();
    void mnuTblSetup_Click();
    void mnuTblCust_Click();
    void mnuTblItem_Click();
    void mnuTblOrHdr_Click();
    void mnuTblOrLin_Click();
    void mnuViewSign_Click();
    void mnuTblOrHdrAudt_Click();
    void mnuTblOrLinAudt_Click();
    void mnuTblHHTotals_Click();
    void mnuTblBarIn_Click();
    void mnuTblPRN_Click();
    void mnuViewTotals_Click();
    void mnuRestore_Click();
    void lblRestore_Click();
    void cmdPCTotals_Click();
    void cmdReset_Click();
    void cmdHHHSID_Click(int index);
    void cmdHHHSIDStd_Click(int index);
    void lblImportBtn_Click();
    void lblExportBtn_Click();
    void lblDownloadBtn_Click();
    void lblUploadBtn_Click();
    void lblPCTables_Click();
    void lblClearPC_Click();
    void lblPurgeBU_Click();
    void lblConfigurator_Click();
    void lblQC_Click();
    void mnuConfig_Click();
    void mnuQC_Click();
    void lblDemoInstall_Click();
    void lblHelpCompany_Click();
    void lblUpdateHSUsers_Click();
    void mnuUpdateReg_Click();
    void lblInstallHH_Click();
    void mnuSetupInitial_Click();
    void lblSetupPC_Click();
    void mnuPCSetup_Click();
    void lblUA_Click();
    void mnuRemoteSync_Click();
    void cmdStopRemoteSync_Click();
    void Timer2_Timer();
    void Timer3_Timer();
    void lblPrev_Click();
    void lblNext_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;
    void closeEvent(QCloseEvent* event) override;

private:
    void StartUp();
    void StopStart(const Text& reason);
    static void TellUnfinishedJobs();
    void PutBackSafetyCopies();
    static void TakeBackQueuedInstall();
    void LoadIcons();
    void SetLLQStandard();
    void SetUpTotalsGrid();
    void ShowUploads(std::vector<std::vector<Text>> rows);
    void ShowMatrix(bool shown);
    void SetHSWindow(FoundWindow& window);
    void UpdateUsers();
    void ChooseUnattended();
    void CloseInSession();
    void ShowPage(int page);
    void View(const char* handler, ViewFlag flag, ShowMode mode = ShowMode::Modeless);
    void Edit(const char* handler, ViewFlag flag);
    static void LoadSetup();

    void DrawBricks(const QString& family, const std::function<HHBricks::Face(std::size_t index)>& faceOf);
    void RestoreWindow();
    void TakeWindowPosition();
    void WriteSettings();

    QTimer* Timer2 = nullptr; ///< looks whether the HotSync Manager's progress window comes
    QTimer* Timer3 = nullptr; ///< looks whether it goes
    std::unique_ptr<HHBricks> bricks_;
    std::unique_ptr<UnattendedView> unattended_;
    std::optional<UploadRow> newestUpload_;
    QRect restored_;         ///< the place that was set from the settings, in pixels
    bool operating_ = false; ///< start-up has come to its end
    bool stopAfterSession_ = false;
    bool closeAfterSession_ = false;
};
