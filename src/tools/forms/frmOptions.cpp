#include "tools/forms/frmOptions.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Languages.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "exchange/Activity.h"
#include "exchange/TemplateToRepair.h"
#include "exchange/forms/Lists.h"
#include "exchange/forms/frmExport1.h"
#include "exchange/forms/frmImport1.h"
#include "maintenance/Backup.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "platform/Convert.h"
#include "platform/Registry.h"
#include "platform/Translation.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"

#include <QDate>
#include <QLineEdit>

#include <set>

namespace {

constexpr std::int16_t UsualPurgeDays[] = {1, 2, 3, 5, 7, 10, 14, 21, 30, 60, 90, 180, 365};

enum Kind { Import, Export, ClearPC }; ///< of activities, in the order of the screen

Text PathText(const std::string& path) {
    return Text::Path(std::string_view(path));
}

/// The template that a droplist shows, in the file system's encoding.
std::string TemplateIn(const QComboBox& box) {
    return PathFromQt(box.currentText());
}

/// Chooses a template in a droplist; the first row is none. Where none can be shown, the list says why.
void ChooseTemplate(QComboBox& box, const QString& name) {
    const bool none = name.isEmpty() && box.count() == 1;
    box.setCurrentIndex(none ? -1 : box.findText(name, Qt::MatchFixedString));
    box.setPlaceholderText(
        ToQt(none ? Text(msg::NoTemplatesYet) : Words(PathText(PathFromQt(name)), msg::IsMissing)));
}

/// Fills a droplist behind an empty row; what was chosen stays chosen.
void FillTemplates(QComboBox& box, const std::vector<std::string>& names) {
    const QString chosen = box.currentText();
    box.clear();
    box.addItem(QString());
    for (const std::string& name : names) box.addItem(PathToQt(name));
    ChooseTemplate(box, chosen);
}

/// False for a name that comes back as another from a line, which ends at one of `ends`.
bool IsKept(const std::string& name, std::string_view ends) {
    const std::string written = PathToName(name);
    return NameToPath(written) == name && Trim(written) == written &&
           written.find_first_of(ends) == std::string::npos;
}

} // namespace

std::string frmOptions::Files::Name() const {
    return PathFromQt(Box->currentText().trimmed());
}

std::string frmOptions::Files::Path() const {
    return *Folder + Name() + std::string(Extension);
}

frmOptions::frmOptions() {
    setupUi(this);
    unattended_ = {cboRemoteSettings, UnattendedExtension, &Global.UnattendedTemplates, {}};
    const std::string* folder = &Global.QuickButtonTemplates;
    activities_ = {Activities{{cboImpAct, ImportActivities, folder, {}}, {cboImpSS1, cboImpSS2}},
                   Activities{{cboExpAct, ExportActivities, folder, {}}, {cboExpSS1, cboExpSS2}},
                   Activities{{cboPCAct, ClearPCActivities, folder, {}}, {cboPCSS1, cboPCSS2}}};
    SSTab1->setAccessibleName(ToQt(Text(msg::frmOptions)));
    DTPicker3->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));

    // A button that deletes what is named has nothing to do without a name, and an option that is
    // off has no template to choose.
    const std::pair<QComboBox*, QPushButton*> named[] = {{cboImpAct, cmdDelImpAct},
                                                         {cboExpAct, cmdDelExpAct},
                                                         {cboPCAct, cmdDelPCAct},
                                                         {cboRemoteSettings, cmdDelete}};
    for (const auto& [box, button] : named) {
        connect(box, &QComboBox::editTextChanged, button,
                [button = button](const QString& name) { button->setEnabled(!name.trimmed().isEmpty()); });
        button->setEnabled(false);
    }
    const std::pair<QRadioButton*, QComboBox*> options[] = {{optRemoteSelect, cboSettings},
                                                            {optUploadSelect, cboULSettings},
                                                            {optRemoteClearSelect, cboClearSettings}};
    for (const auto& [option, box] : options)
        connect(option, &QRadioButton::toggled, box, &QWidget::setEnabled);
}

// ---- opening ----

std::string frmOptions::HelpTopic() const {
    return SSTab1->currentWidget()->property("HelpTopic").toString().toStdString();
}

void frmOptions::Form_Load() {
    TraceEvent("frmOptions:Form_Load");
    PopImport();
    PopExport();
    PopPCCLear();
    PopDownload();
    PopUpload();
    PopClear();
    for (Activities& kind : activities_) FillNames(kind);
    FillNames(unattended_);
    cboRemoteSettings->setCurrentIndex(
        cboRemoteSettings->findText(ToQt(std::string_view(Global.RemoteSyncSettings)), Qt::MatchFixedString));
    unattended_.Loaded = cboRemoteSettings->currentText();
    ShowUnattended(SelectionsInForce());
    FillPurgeDays();
    (Global.PurgeBackup ? optPurge : optNoPurge)->click();
    chkDemoTemplates->setChecked(Global.UpdateDemoTemplates);
    PopLanguages();

    repair_ = TemplateToRepair({ImportActivities, ExportActivities, ClearPCActivities, UnattendedExtension});
    if (!repair_.empty()) TurnTo(repair_);
}

void frmOptions::Form_Unload() {
    if (!repair_.empty()) EndRepair();
}

void frmOptions::PopImport() {
    TraceEvent("frmOptions:PopImport");
    std::vector<std::string> names = FilesWithExtension(Global.ImportTemplates, ".cst");
    const std::vector<std::string> items = FilesWithExtension(Global.ImportTemplates, ".itm");
    names.insert(names.end(), items.begin(), items.end());
    for (QComboBox* box : activities_[Import].Templates) FillTemplates(*box, names);
}

void frmOptions::PopExport() {
    TraceEvent("frmOptions:PopExport");
    for (QComboBox* box : activities_[Export].Templates)
        FillTemplates(*box, FilesWithExtension(Global.ExportTemplates, ".xor"));
}

void frmOptions::PopPCCLear() {
    TraceEvent("frmOptions:PopPCCLear");
    for (QComboBox* box : activities_[ClearPC].Templates)
        FillTemplates(*box, FilesWithExtension(Global.ClearPCTemplates, ".pct"));
}

void frmOptions::PopDownload() {
    TraceEvent("frmOptions:PopDownload");
    FillTemplates(*cboSettings, NamesWithExtension(Global.DownloadTemplates, ".dst"));
}

void frmOptions::PopUpload() {
    TraceEvent("frmOptions:PopUpload");
    FillTemplates(*cboULSettings, NamesWithExtension(Global.UploadTemplates, ".ust"));
}

void frmOptions::PopClear() {
    TraceEvent("frmOptions:PopClear");
    FillTemplates(*cboClearSettings, NamesWithExtension(Global.DownloadTemplates, ".dct"));
}

void frmOptions::FillNames(Files& files) {
    for (const std::string& name : NamesWithExtension(*files.Folder, files.Extension)) {
        files.Box->addItem(PathToQt(name));
    }
    files.Box->setCurrentIndex(-1);
    files.Box->lineEdit()->setPlaceholderText(ToQt(Text(msg::NameHint)));
}

/// The days that are usual, and those that the settings have.
void frmOptions::FillPurgeDays() {
    std::set<std::int16_t> rows(std::begin(UsualPurgeDays), std::end(UsualPurgeDays));
    rows.insert(Global.PurgeDays);
    for (const std::int16_t days : rows) cboPurge->addItem(QString::number(days), days);
    cboPurge->setCurrentIndex(cboPurge->findData(Global.PurgeDays));
}

/// The languages that there are. One that was chosen and has gone stays chosen until another is.
void frmOptions::PopLanguages() {
    cboLanguage->addItem(PathToQt(English));
    for (const std::string& language : Languages(LanguageFolders(Global.AppPath)))
        cboLanguage->addItem(PathToQt(language));
    const std::string chosen = Registry::Language(Global.AppPath);
    ChooseTemplate(*cboLanguage, PathToQt(chosen.empty() ? English : std::string_view(chosen)));
}

/// Turns to the tab that a control stands on, and to the control.
void frmOptions::GoTo(QWidget& control) {
    for (QWidget* page : {pageQuickButtons, pageUnattended, pageBackup}) {
        if (page->isAncestorOf(&control)) SSTab1->setCurrentWidget(page);
    }
    control.setFocus();
}

void frmOptions::TurnTo(std::string_view file) {
    const std::string_view extension = ExtensionOf(file);
    const QString name = PathToQt(file.substr(0, file.size() - extension.size()));
    const auto choose = [&](Files& files) {
        if (!SameText(extension, files.Extension)) return false;
        GoTo(*files.Box);
        const int row = files.Box->findText(name, Qt::MatchFixedString);
        if (row >= 0) files.Box->setCurrentIndex(row);
        return row >= 0;
    };
    for (Activities& kind : activities_) {
        if (choose(kind)) ShowActivity(kind);
    }
    if (choose(unattended_)) cboRemoteSettings_Click();
    const std::pair<std::string_view, QWidget*> selections[] = {
        {".dst", cmdSUDownload}, {".ust", cmdSUUpload}, {".dct", cmdSUClear}};
    for (const auto& [kind, button] : selections) {
        if (SameText(extension, kind)) GoTo(*button);
    }
}

// ---- activities ----

void frmOptions::ShowActivity(Activities& kind) {
    for (QComboBox* box : kind.Templates) ChooseTemplate(*box, QString());
    kind.Loaded = kind.Box->currentText();
    try {
        const Activity activity = ReadActivity(kind.Path());
        for (std::size_t row = 0; row < activity.Rows.size(); ++row) {
            ChooseTemplate(*kind.Templates[row], PathToQt(NameToPath(activity.Rows[row].Template)));
        }
    } catch (const RunTimeFailure& failure) {
        // The name stays: with templates chosen anew, Ok writes the file that cannot be read.
        Tell(Lines(msg::ActivityError, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
}

void frmOptions::cboImpAct_Click() {
    TraceEvent("frmOptions:cboImpAct_Click");
    ShowActivity(activities_[Import]);
}

void frmOptions::cboExpAct_Click() {
    TraceEvent("frmOptions:cboExpAct_Click");
    ShowActivity(activities_[Export]);
}

void frmOptions::cboPCAct_Click() {
    TraceEvent("frmOptions:cboPCAct_Click");
    ShowActivity(activities_[ClearPC]);
}

void frmOptions::DeleteActivity(Activities& kind) {
    const std::string name = kind.Name();
    if (name.empty() || !AskYesNo(Words(msg::SureToDelete, PathText(name)))) return;
    if (IsPlainFileName(name)) RemoveQuietly(kind.Path());
    UnlistName(*kind.Box, PathToQt(name));
    kind.Loaded.clear();
    for (QComboBox* box : kind.Templates) ChooseTemplate(*box, QString());
}

void frmOptions::cmdDelImpAct_Click() {
    TraceEvent("frmOptions:cmdDelImpAct_Click");
    DeleteActivity(activities_[Import]);
}

void frmOptions::cmdDelExpAct_Click() {
    TraceEvent("frmOptions:cmdDelExpAct_Click");
    DeleteActivity(activities_[Export]);
}

void frmOptions::cmdDelPCAct_Click() {
    TraceEvent("frmOptions:cmdDelPCAct_Click");
    DeleteActivity(activities_[ClearPC]);
}

/// Opens a screen to keep its templates; false when this one has gone meanwhile.
template <class F>
bool frmOptions::EditTemplates() {
    Global.TemplateEditMode = true;
    Global.TemplateEditKind.clear();
    The<F>().Show(ShowMode::Modal);
    Global.TemplateEditMode = false;
    return !IsOver();
}

void frmOptions::cmdEdtImp_Click() {
    TraceEvent("frmOptions:cmdEdtImp_Click");
    if (EditTemplates<frmImport1>()) PopImport();
}

void frmOptions::cmdEdtExp_Click() {
    TraceEvent("frmOptions:cmdEdtExp_Click");
    if (EditTemplates<frmExport1>()) PopExport();
}

void frmOptions::cmdEdtPC_Click() {
    TraceEvent("frmOptions:cmdEdtPC_Click");
    if (EditTemplates<frmTableSelectPC>()) PopPCCLear();
}

// ---- unattended mode ----

UnattendedSettings frmOptions::Unattended() const {
    return {optRemoteSelect->isChecked(),      PathToName(TemplateIn(*cboSettings)),
            optUploadSelect->isChecked(),      PathToName(TemplateIn(*cboULSettings)),
            optRemoteClearSelect->isChecked(), PathToName(TemplateIn(*cboClearSettings))};
}

void frmOptions::ShowUnattended(const UnattendedSettings& settings) {
    (settings.Download ? optRemoteSelect : optNoDownload)->setChecked(true);
    (settings.Upload ? optUploadSelect : optNoUpload)->setChecked(true);
    (settings.Clear ? optRemoteClearSelect : optRemoteNoClear)->setChecked(true);
    ChooseTemplate(*cboSettings, ToQt(std::string_view(settings.DownloadTemplate)));
    ChooseTemplate(*cboULSettings, ToQt(std::string_view(settings.UploadTemplate)));
    ChooseTemplate(*cboClearSettings, ToQt(std::string_view(settings.ClearTemplate)));
}

void frmOptions::cboRemoteSettings_Click() {
    TraceEvent("frmOptions:cboRemoteSettings_Click");
    unattended_.Loaded = cboRemoteSettings->currentText();
    try {
        ShowUnattended(ReadUnattendedSettings(unattended_.Path(), Unattended()));
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
}

void frmOptions::cmdDelete_Click() {
    TraceEvent("frmOptions:cmdDelete_Click");
    const std::string name = unattended_.Name();
    if (IsPlainFileName(name)) RemoveQuietly(unattended_.Path());
    UnlistName(*cboRemoteSettings, PathToQt(name));
    unattended_.Loaded.clear();
    // What has gone is not to be chosen at the next start, also when nothing else here is saved.
    if (!SameText(Global.RemoteSyncSettings, PathToName(name))) return;
    Global.RemoteSyncSettings.clear();
    SaveSettings();
}

void frmOptions::cmdSUDownload_Click() {
    TraceEvent("frmOptions:cmdSUDownload_Click");
    if (EditTemplates<frmTableSelectDL>()) PopDownload();
}

void frmOptions::cmdSUUpload_Click() {
    TraceEvent("frmOptions:cmdSUUpload_Click");
    if (EditTemplates<frmUploadSelect>()) PopUpload();
}

void frmOptions::cmdSUClear_Click() {
    TraceEvent("frmOptions:cmdSUClear_Click");
    if (EditTemplates<frmTableSelectCL>()) PopClear();
}

// ---- backups ----

void frmOptions::optPurge_Click() {
    TraceEvent("frmOptions:optPurge_Click");
    cboPurge->setCurrentIndex(cboPurge->findData(Global.PurgeDays));
    optDelBackup_Click();
}

void frmOptions::optNoPurge_Click() {
    TraceEvent("frmOptions:optNoPurge_Click");
    optDelBackup_Click();
}

void frmOptions::optDelBackup_Click() {
    TraceEvent("frmOptions:optDelBackup_Click");
    cboPurge->setEnabled(optPurge->isChecked());
    const bool shown = optDelBackup->isChecked();
    const DateTime today = Today();
    if (shown) DTPicker3->setDate(QDate(today.Year, today.Month, today.Day));
    DTPicker3->setVisible(shown);
    cmdDelBU->setVisible(shown);
}

void frmOptions::cmdDelBU_Click() {
    TraceEvent("frmOptions:cmdDelBU_Click");
    const QDate date = DTPicker3->date();
    const DateTime limit{date.year(), date.month(), date.day()};
    if (!AskYesNo(Words(msg::DeleteBackupsBefore, PathText(LongDate(limit)), msg::FromAllBackups),
                  Icon::Warning))
        return;
    const int deleted = PurgeBackups(limit, [](std::string_view file) {
        Tell(Words(msg::CannotDelete, Text::Path(file)), Icon::Information);
    });
    Tell(Words(msg::ATotalOf, Text::Value(deleted), msg::BackupTablesDeleted), Icon::Information);
}

// ---- Ok ----

/// Tells of the first activity of unattended mode that is on without a template.
bool frmOptions::SelectionsAreThere() {
    const std::tuple<QRadioButton*, QComboBox*, MessageId> selections[] = {
        {optRemoteSelect, cboSettings, msg::NoDownloadSelected},
        {optUploadSelect, cboULSettings, msg::NoUploadSelected},
        {optRemoteClearSelect, cboClearSettings, msg::NoClearSelected}};
    for (const auto& [option, box, warning] : selections) {
        if (!option->isChecked() || !TemplateIn(*box).empty()) continue;
        Tell(warning, Icon::Warning);
        GoTo(*box);
        return false;
    }
    return true;
}

bool frmOptions::NamesCanBeSaved() {
    for (const Activities& kind : activities_) {
        if (kind.Name().empty()) continue;
        if (!NameCanBeSaved(kind)) return false;
        for (QComboBox* box : kind.Templates) {
            if (!NameIsKept(*box, TemplateIn(*box), ";")) return false;
        }
    }
    for (QComboBox* box : {cboSettings, cboULSettings, cboClearSettings}) {
        if (!NameIsKept(*box, TemplateIn(*box))) return false;
    }
    if (unattended_.Name().empty()) return true;
    // The settings of the PC hold the name of this one.
    return NameCanBeSaved(unattended_) && NameIsKept(*cboRemoteSettings, unattended_.Name());
}

/// A name that was typed must do for a new file, and replaces another one only after a question.
bool frmOptions::NameCanBeSaved(const Files& files) {
    const std::string name = files.Name();
    if (files.Loaded.compare(PathToQt(name), Qt::CaseInsensitive) == 0) return true;
    bool saved = IsNameForNewFile(name);
    if (!saved)
        Tell(Lines(msg::NotAFileName, PathText(name)), Icon::Warning);
    else if (FileExists(files.Path()))
        saved = AskYesNo(Words(PathText(name), msg::ReplaceNamed), Icon::Warning);
    if (!saved) GoTo(*files.Box);
    return saved;
}

bool frmOptions::NameIsKept(QComboBox& box, const std::string& name, std::string_view ends) {
    if (IsKept(name, ends)) return true;
    Tell(Lines(msg::NameNotKeptInSettings, PathText(name)), Icon::Warning);
    GoTo(box);
    return false;
}

void frmOptions::TakeOptions() const {
    Global.RemoteSyncSettings = PathToName(unattended_.Name());
    PutInForce(Unattended());
    // To delete backups now says nothing about those to come.
    if (!optDelBackup->isChecked()) Global.PurgeBackup = optPurge->isChecked();
    if (optPurge->isChecked()) Global.PurgeDays = static_cast<std::int16_t>(cboPurge->currentData().toInt());
}

bool frmOptions::SaveActivity(Activities& kind) {
    if (kind.Name().empty()) return true;
    Activity activity;
    for (std::size_t row = 0; row < activity.Rows.size(); ++row) {
        activity.Rows[row].Template = PathToName(TemplateIn(*kind.Templates[row]));
    }
    try {
        WriteActivity(kind.Path(), activity);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ActivityNotSaved, Text::Path(std::string_view(failure.what()))), Icon::Warning);
        kind.Box->setCurrentIndex(-1);
        kind.Box->clearEditText();
        GoTo(*kind.Box);
        return false;
    }
    kind.Loaded = PathToQt(kind.Name());
    return true;
}

bool frmOptions::SaveUnattended() {
    if (unattended_.Name().empty()) return true;
    try {
        SaveUA(unattended_.Path(), Unattended());
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedNotSaved, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        GoTo(*cboRemoteSettings);
        return false;
    }
    unattended_.Loaded = PathToQt(unattended_.Name());
    return true;
}

bool frmOptions::SaveSettings() {
    try {
        UpdateIniFile();
        GetIniFile();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ConfigurationError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

/// False when it could not be saved: the operator has been told.
bool frmOptions::SaveLanguage() {
    const std::string shown = PathFromQt(cboLanguage->currentText());
    const std::string language = shown == English ? std::string() : shown;
    if (cboLanguage->currentIndex() < 0 || language == Registry::Language(Global.AppPath)) return true;
    try {
        Registry::SetLanguage(language);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::LanguageNotSaved, PathText(failure.what())), Icon::Stop);
        GoTo(*cboLanguage);
        return false;
    }
    Tell(msg::LanguageFromNextStart, Icon::Information);
    return true;
}

void frmOptions::cmdOK_Click() {
    TraceEvent("frmOptions:cmdOK_Click");
    if (!SelectionsAreThere() || !NamesCanBeSaved()) return;
    TakeOptions();
    for (Activities& kind : activities_) {
        if (!SaveActivity(kind)) return;
    }
    if (!SaveUnattended()) return;
    Global.UpdateDemoTemplates = chkDemoTemplates->isChecked();
    if (SaveSettings() && SaveLanguage()) cmdCancel_Click();
}

void frmOptions::cmdCancel_Click() {
    TraceEvent("frmOptions:cmdCancel_Click");
    Unload();
}
