#pragma once

#include "platform/Form.h"
#include "sync/MainSession.h"
#include "sync/SFrmAX40.h"
#include "sync/SessionScreen.h"
#include "ui_frmMainSync.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The hidden form that holds the control of the unattended sessions as long as the program runs, but for
/// the time that another screen has a control of its own. Shows a session on the main screen and on
/// `frmRemoteSync`, where they are loaded.
class frmMainSync final : public Form, private Ui::frmMainSync, private SessionScreen {
    Q_OBJECT

public:
    frmMainSync() { setupUi(this); }

    bool IsSecondary() const override { return false; }

    /// A handheld is in session, or the end of its session is being worked off.
    bool InSession() const;

    /// Hears a manager that has started a moment ago without waiting for the next look for it.
    void LookForManager() const;

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void SFMain_HotSyncStatus(std::int32_t status);

    void TellUnknownHandheld() override;
    void TellBackupFailed() override;
    void ShowBegun(const std::string& user) override;
    void ShowPhase(SyncPhaseImage phase, PhaseLook look) override;
    void ShowEnded() override;
    void Merge() override;
    void RecordUpload() override;
    void GetPCTotals() override;
    std::optional<Upload> NewestUpload() const override;
    void RefreshRecordCounts() override;
    void ShowHHStatus() override;

    std::unique_ptr<SFrmAX40> SFMain;
    std::optional<MainSession> session_;
};

/// Unloads `frmMainSync`, so that one control is alive at a time, and loads it again when the screen that
/// had its own has done with it. Not loaded without a main screen, and not while the program ends.
void UnloadMainSync();
void LoadMainSync();
