#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "ui_frmRemoteSync.h"

#include <string>

/// The window that stands open while unattended mode is armed: what each handheld gets, and which one is
/// served. To load it arms the mode, with the settings that Global.RemoteSyncSettings names; where they
/// cannot be used, the operator is told, and it goes again at once.
class frmRemoteSync final : public Form, private Ui::frmRemoteSync {
    Q_OBJECT

public:
    frmRemoteSync() { setupUi(this); }

    /// Not while the mode is armed: then only a stop closes it.
    bool IsSecondary() const override;

    void ShowSession(const std::string& user);
    void ShowWaiting();
    /// What has become of the mode, in place of what it does.
    void ShowMessage(const Text& message);
    /// A stop has been asked for and comes: nothing more can be asked for here.
    void ShowStopping(const Text& message);

private slots:
    void chkOnTop_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;
    void closeEvent(QCloseEvent* event) override;
};
