#include "sync/forms/frmQBRemote.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "quality/forms/QCRun.h"
#include "sync/forms/UnattendedMode.h"
#include "sync/forms/frmRemoteSync.h"
#include "tools/forms/frmOptions.h"

void frmQBRemote::Form_Load() {
    TraceEvent("frmQBRemote:Form_Load");
    setWindowIcon(Picture("tool-unattended"));
    FillSettings(ToQt(std::string_view(Global.RemoteSyncSettings)));
    cboUnattended->setFocus();
}

void frmQBRemote::Form_Unload() {
    TraceEvent("frmQBRemote:Form_Unload");
    Global.QCHotsyncPending = false;
}

/// The saved settings, and those that are chosen, if they are among them.
void frmQBRemote::FillSettings(const QString& chosen) {
    cboUnattended->clear();
    for (const std::string& name : NamesWithExtension(Global.UnattendedTemplates, UnattendedExtension))
        cboUnattended->addItem(PathToQt(name));
    cboUnattended->setCurrentIndex(chosen.isEmpty() ? -1
                                                    : cboUnattended->findText(chosen, Qt::MatchFixedString));
    cboUnattended_Click();
}

void frmQBRemote::cboUnattended_Click() {
    TraceEvent("frmQBRemote:cboUnattended_Click");
    const bool chosen = cboUnattended->currentIndex() >= 0;
    const std::string file = Global.UnattendedTemplates + PathFromQt(cboUnattended->currentText()) +
                             std::string(UnattendedExtension);
    // What they really do is read when the mode is started, and told if it cannot be.
    ShowUnattendedActivities(*this, chosen ? GlanceAtUnattendedSettings(file) : UnattendedSettings());
    if (!chosen) {
        for (QLabel* label : {lblULActive, lblCLActive, lblDLActive}) label->clear();
    }
    cmdOK->setEnabled(chosen);
}

void frmQBRemote::cmdOK_Click() {
    TraceEvent("frmQBRemote:cmdOK_Click");
    const std::string name = PathFromQt(cboUnattended->currentText());
    if (!AskYesNo(Words(msg::Perform, Text::Path(std::string_view(name))) + msg::IsThatCorrect)) return;
    if (IsOver()) return;
    Global.RemoteSyncSettings = PathToName(name);
    StartUnattended();
}

void frmQBRemote::StartUnattended() {
    TraceEvent("frmQBRemote:StartUnattended");
    if (!UnattendedSettingsCanBeUsed()) return;
    if (Global.RemoteSelect.ByTemplate()) {
        setEnabled(false); // one start at a time
        if (!PassQualityCheck(*this)) return Unload();
    }
    The<frmRemoteSync>().Show();
    Unload();
}

void frmQBRemote::cmdSetup_Click() {
    TraceEvent("frmQBRemote:cmdSetup_Click");
    const QString chosen = cboUnattended->currentText();
    Global.TemplateEditMode = true;
    auto& options = The<frmOptions>();
    options.TurnTo(PathFromQt(chosen) + std::string(UnattendedExtension));
    options.Show(ShowMode::Modal);
    Global.TemplateEditMode = false;
    if (!IsOver()) FillSettings(chosen);
}

void frmQBRemote::cmdCancel_Click() {
    TraceEvent("frmQBRemote:cmdCancel_Click");
    Unload();
}
