#include "tools/forms/frmOptions.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Languages.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/Activity.h"
#include "exchange/TemplateToRepair.h"
#include "maintenance/Backup.h"
#include "platform/Convert.h"
#include "platform/Registry.h"
#include "platform/Translation.h"

#include <QDate>
#include <QLineEdit>

#include <set>

namespace {

constexpr std::int16_t UsualPurgeDays[] = {1, 2, 3, 5, 7, 10, 14, 21, 30, 60, 90, 180, 365};

} // namespace

frmOptions::frmOptions() {
    setupUi(this);
    activities_ = new ActivitiesPage(*this, *this);
    unattended_ = new UnattendedPage(*this, *this);
    SSTab1->setAccessibleName(ToQt(Text(msg::frmOptions)));
    DTPicker3->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));

    // A button that deletes what is named has nothing to do without a name.
    const std::pair<QComboBox*, QPushButton*> named[] = {{cboImpAct, cmdDelImpAct},
                                                         {cboExpAct, cmdDelExpAct},
                                                         {cboPCAct, cmdDelPCAct},
                                                         {cboRemoteSettings, cmdDelete}};
    for (const auto& [box, button] : named) {
        connect(box, &QComboBox::editTextChanged, button,
                [button = button](const QString& name) { button->setEnabled(!name.trimmed().isEmpty()); });
        button->setEnabled(false);
    }
}

// ---- opening ----

std::string frmOptions::HelpTopic() const {
    return SSTab1->currentWidget()->property("HelpTopic").toString().toStdString();
}

void frmOptions::Form_Load() {
    TraceEvent("frmOptions:Form_Load");
    activities_->Fill();
    unattended_->Fill();
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

void frmOptions::TurnTo(std::string_view file) {
    const std::string_view extension = ExtensionOf(file);
    const QString name = PathToQt(file.substr(0, file.size() - extension.size()));
    activities_->TurnTo(extension, name);
    unattended_->TurnTo(extension, name);
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

void frmOptions::TakeOptions() const {
    unattended_->PutInForce();
    // To delete backups now says nothing about those to come.
    if (!optDelBackup->isChecked()) Global.PurgeBackup = optPurge->isChecked();
    if (optPurge->isChecked()) Global.PurgeDays = static_cast<std::int16_t>(cboPurge->currentData().toInt());
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
    if (!unattended_->SelectionsAreThere()) return;
    if (!activities_->NamesCanBeSaved() || !unattended_->NamesCanBeSaved()) return;
    TakeOptions();
    if (!activities_->Save() || !unattended_->Save()) return;
    Global.UpdateDemoTemplates = chkDemoTemplates->isChecked();
    if (SaveSettings() && SaveLanguage()) cmdCancel_Click();
}

void frmOptions::cmdCancel_Click() {
    TraceEvent("frmOptions:cmdCancel_Click");
    Unload();
}
