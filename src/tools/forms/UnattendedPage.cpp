#include "tools/forms/UnattendedPage.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "ui_frmOptions.h"

UnattendedPage::UnattendedPage(Form& form, const Ui::frmOptions& controls)
    : FormPart(form),
      controls_(controls),
      files_{controls.cboRemoteSettings, UnattendedExtension, &Global.UnattendedTemplates, {}} {
    // An option that is off has no template to choose.
    const std::pair<QRadioButton*, QComboBox*> options[] = {
        {controls.optRemoteSelect, controls.cboSettings},
        {controls.optUploadSelect, controls.cboULSettings},
        {controls.optRemoteClearSelect, controls.cboClearSettings}};
    for (const auto& [option, box] : options)
        connect(option, &QRadioButton::toggled, box, &QWidget::setEnabled);
}

void UnattendedPage::Fill() {
    PopDownload();
    PopUpload();
    PopClear();
    files_.Fill();
    files_.Box->setCurrentIndex(
        files_.Box->findText(ToQt(std::string_view(Global.RemoteSyncSettings)), Qt::MatchFixedString));
    files_.Loaded = files_.Box->currentText();
    Show(SelectionsInForce());
}

void UnattendedPage::TurnTo(std::string_view extension, const QString& name) {
    if (SameText(extension, files_.Extension) && files_.Choose(name)) cboRemoteSettings_Click();
    const std::pair<std::string_view, QWidget*> selections[] = {
        {".dst", controls_.cmdSUDownload}, {".ust", controls_.cmdSUUpload}, {".dct", controls_.cmdSUClear}};
    for (const auto& [kind, button] : selections) {
        if (SameText(extension, kind)) GoTo(*button);
    }
}

void UnattendedPage::PopDownload() {
    Owner().Trace("PopDownload");
    FillTemplates(*controls_.cboSettings, NamesWithExtension(Global.DownloadTemplates, ".dst"));
}

void UnattendedPage::PopUpload() {
    Owner().Trace("PopUpload");
    FillTemplates(*controls_.cboULSettings, NamesWithExtension(Global.UploadTemplates, ".ust"));
}

void UnattendedPage::PopClear() {
    Owner().Trace("PopClear");
    FillTemplates(*controls_.cboClearSettings, NamesWithExtension(Global.DownloadTemplates, ".dct"));
}

UnattendedSettings UnattendedPage::Chosen() const {
    return {controls_.optRemoteSelect->isChecked(),      PathToName(TemplateIn(*controls_.cboSettings)),
            controls_.optUploadSelect->isChecked(),      PathToName(TemplateIn(*controls_.cboULSettings)),
            controls_.optRemoteClearSelect->isChecked(), PathToName(TemplateIn(*controls_.cboClearSettings))};
}

void UnattendedPage::Show(const UnattendedSettings& settings) {
    (settings.Download ? controls_.optRemoteSelect : controls_.optNoDownload)->setChecked(true);
    (settings.Upload ? controls_.optUploadSelect : controls_.optNoUpload)->setChecked(true);
    (settings.Clear ? controls_.optRemoteClearSelect : controls_.optRemoteNoClear)->setChecked(true);
    ChooseTemplate(*controls_.cboSettings, ToQt(std::string_view(settings.DownloadTemplate)));
    ChooseTemplate(*controls_.cboULSettings, ToQt(std::string_view(settings.UploadTemplate)));
    ChooseTemplate(*controls_.cboClearSettings, ToQt(std::string_view(settings.ClearTemplate)));
}

void UnattendedPage::cboRemoteSettings_Click() {
    Owner().Trace("cboRemoteSettings_Click");
    files_.Loaded = controls_.cboRemoteSettings->currentText();
    try {
        Show(ReadUnattendedSettings(files_.Path(), Chosen()));
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
}

void UnattendedPage::cmdDelete_Click() {
    Owner().Trace("cmdDelete_Click");
    const std::string name = files_.Name();
    if (IsPlainFileName(name)) RemoveQuietly(files_.Path());
    files_.Forget();
    // What has gone is not to be chosen at the next start, also when nothing else here is saved.
    if (!SameText(Global.RemoteSyncSettings, PathToName(name))) return;
    Global.RemoteSyncSettings.clear();
    SaveSettings();
}

void UnattendedPage::cmdSUDownload_Click() {
    Owner().Trace("cmdSUDownload_Click");
    if (EditTemplates<frmTableSelectDL>(Owner())) PopDownload();
}

void UnattendedPage::cmdSUUpload_Click() {
    Owner().Trace("cmdSUUpload_Click");
    if (EditTemplates<frmUploadSelect>(Owner())) PopUpload();
}

void UnattendedPage::cmdSUClear_Click() {
    Owner().Trace("cmdSUClear_Click");
    if (EditTemplates<frmTableSelectCL>(Owner())) PopClear();
}

/// Tells of the first activity of unattended mode that is on without a template.
bool UnattendedPage::SelectionsAreThere() const {
    const std::tuple<QRadioButton*, QComboBox*, MessageId> selections[] = {
        {controls_.optRemoteSelect, controls_.cboSettings, msg::NoDownloadSelected},
        {controls_.optUploadSelect, controls_.cboULSettings, msg::NoUploadSelected},
        {controls_.optRemoteClearSelect, controls_.cboClearSettings, msg::NoClearSelected}};
    for (const auto& [option, box, warning] : selections) {
        if (!option->isChecked() || !TemplateIn(*box).empty()) continue;
        Tell(warning, Icon::Warning);
        GoTo(*box);
        return false;
    }
    return true;
}

bool UnattendedPage::NamesCanBeSaved() const {
    for (QComboBox* box : {controls_.cboSettings, controls_.cboULSettings, controls_.cboClearSettings}) {
        if (!NameIsKept(*box, TemplateIn(*box))) return false;
    }
    // The settings of the PC hold the name of the file.
    const std::string name = files_.Name();
    return name.empty() || (files_.NameCanBeSaved() && NameIsKept(*files_.Box, name));
}

bool UnattendedPage::Save() {
    if (files_.Name().empty()) return true;
    try {
        SaveUA(files_.Path(), Chosen());
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedNotSaved, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        GoTo(*controls_.cboRemoteSettings);
        return false;
    }
    files_.Loaded = PathToQt(files_.Name());
    return true;
}

void UnattendedPage::PutInForce() const {
    Global.RemoteSyncSettings = PathToName(files_.Name());
    ::PutInForce(Chosen());
}
