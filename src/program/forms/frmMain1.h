#pragma once

#include "core/Globals.h"
#include "core/Text.h"
#include "maintenance/Totals.h"
#include "platform/MainScreen.h"
#include "program/forms/HHBricks.h"
#include "program/forms/UnattendedView.h"
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
class frmMain1 final : public MainScreen, private Ui::frmMain1 {
    Q_OBJECT

public:
    frmMain1();

    void GetPCTotals() override;
    const UploadRow* NewestUpload() const override { return newestUpload_ ? &*newestUpload_ : nullptr; }
    void RefreshRecordCounts() override;
    void GetHHBricks() override;
    void GetHHBricksStd() override;
    void GetHHBricksInst() override;
    void ShowOutcome(const Text& outcome) override;
    void LoadActiveRemoteSync() override;
    void LoadInactiveRemoteSync() override;
    void EnableRegistration(bool enabled) override;
    void ShowSession(const std::string& user) override;
    void ShowPhase(SyncPhaseImage phase, PhaseLook look) override;
    void ShowWaiting() override;
    void ShowUnattendedOff() override;
    void StopAfterSession(const Text& message) override;
    void SessionIsOver() override;

    /// Closes every secondary form.
    void UnloadForms();

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
    void mnuManager_Click();
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
    static void RenewOffice();
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
    bool stands_ = false;    ///< on the screen, at that place
    bool operating_ = false; ///< start-up has come to its end
    bool stopAfterSession_ = false;
    bool closeAfterSession_ = false;
};
