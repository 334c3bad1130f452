#include "sync/forms/TableSelectForm.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/TemplateToRepair.h"
#include "exchange/forms/Lists.h"
#include "maintenance/ClearTables.h"
#include "platform/Convert.h"
#include "platform/HelpLine.h"
#include "store/TableCatalogue.h"
#include "store/TableLock.h"
#include "store/TableScan.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

Text PathText(std::string_view path) {
    return Text::Path(path);
}

/// What a table is called, with the number of its records where it can be read.
Text NameOf(std::string_view table, bool counted) {
    const TableEntry* entry = FindTable(table);
    Text name = entry ? Text(MessageId{entry->FirstLabel}) : Text::Value(table);
    if (!counted) return name;
    try {
        return Counted(name, TableScan(Global.DBFPath + std::string(table) + ".DBF").RecordCount());
    } catch (const RunTimeFailure&) {
        return name; // the step that needs the table tells what is wrong with it
    }
}

} // namespace

// ---- opening ----

void TableSelectForm::Bind(std::vector<Group> groups, const Hints& hints, bool counted) {
    const auto bind = [this](auto*& control, const char* name) {
        control = findChild<std::remove_pointer_t<std::remove_reference_t<decltype(control)>>*>(
            QLatin1String(name));
    };
    bind(cboSettings, "cboSettings");
    bind(cmdSave, "cmdSave");
    bind(cmdDelete, "cmdDelete");
    bind(cmdSelectAll, "cmdSelectAll");
    bind(cmdClear, "cmdClear");
    bind(cmdOK, "cmdOK");
    bind(cmdCancel, "cmdCancel");
    bind(lblNothing, "lblNothing");
    bind(lblInfo, "lblInfo");
    bind(pnlSelection, "pnlSelection");
    groups_ = std::move(groups);
    hints_ = hints;
    counted_ = counted;

    for (const Group& group : groups_)
        connect(group.Box, &QCheckBox::toggled, this, [this] { ShowChoice(); });
    // A button that deletes what is named has nothing to do without a name.
    connect(cboSettings, &QComboBox::editTextChanged, cmdDelete,
            [this](const QString& name) { cmdDelete->setEnabled(!name.trimmed().isEmpty()); });
    cmdDelete->setEnabled(false);
}

void TableSelectForm::Form_Load() {
    Trace("Form_Load");
    repair_ = TemplateToRepair({kind_.Extension});
    keeps_ = Global.TemplateEditMode || !repair_.empty();
    fromConfigurator_ = Global.FromConfigurator;
    for (const std::string& name : NamesWithExtension(*kind_.Folder, kind_.Extension))
        cboSettings->addItem(PathToQt(name));
    cboSettings->setCurrentIndex(-1);
    cboSettings->lineEdit()->setPlaceholderText(ToQt(Text(msg::NameHint)));
    ShowTables();
    ShowChoice();
    // Room for the longest hint from the first, so that nothing moves.
    lblInfo->setMinimumHeight(3 * lblInfo->fontMetrics().lineSpacing());
    AddHints();
    groups_.front().Box->setFocus();
    if (repair_.empty()) return;
    cboSettings->setCurrentIndex(cboSettings->findText(
        PathToQt(repair_.substr(0, repair_.size() - kind_.Extension.size())), Qt::MatchFixedString));
    LoadSettings();
}

void TableSelectForm::Drive(const std::string& settings, bool& performed) {
    drive_ = settings;
    performed_ = &performed;
}

void TableSelectForm::SetPerformed() {
    if (performed_) *performed_ = true;
}

void TableSelectForm::Form_GotFocus() {
    if (drive_.empty() || busy_) return;
    cboSettings->setEditText(PathToQt(std::exchange(drive_, {})));
    if (LoadSettings()) {
        driven_ = true;
        cmdOK_Click();
        driven_ = false;
    }
    if (!IsGone()) EndDrive();
}

void TableSelectForm::Form_Unload() {
    Trace("Form_Unload");
    if (!repair_.empty()) EndRepair();
}

void TableSelectForm::ShowTables() {
    for (const Group& group : groups_) {
        Text names;
        for (const std::string_view table : group.Names) {
            if (!names.IsEmpty()) names += PathText(std::string_view(", "));
            names += NameOf(table, counted_);
        }
        group.Tables->setText(ToQt(names));
    }
}

// ---- the selection ----

bool TableSelectForm::NothingChosen() const {
    return std::none_of(groups_.begin(), groups_.end(),
                        [](const Group& group) { return group.Box->isChecked(); });
}

void TableSelectForm::ShowChoice() {
    lblNothing->setText(NothingChosen() ? ToQt(Text(hints_.Nothing)) : QString());
}

void TableSelectForm::cmdSelectAll_Click() {
    Trace("cmdSelectAll_Click");
    for (const Group& group : groups_) group.Box->setChecked(true);
}

void TableSelectForm::cmdClear_Click() {
    Trace("cmdClear_Click");
    for (const Group& group : groups_) group.Box->setChecked(false);
}

// ---- saved selections ----

/// In the file system's encoding.
std::string TableSelectForm::SettingsName() const {
    return PathFromQt(cboSettings->currentText().trimmed());
}

std::string TableSelectForm::SettingsPath() const {
    return *kind_.Folder + SettingsName() + std::string(kind_.Extension);
}

void TableSelectForm::cboSettings_Click() {
    Trace("cboSettings_Click");
    if (!SettingsName().empty()) LoadSettings();
}

/// False when the selection cannot be read: the operator has been told.
bool TableSelectForm::LoadSettings() {
    try {
        if (!IsPlainFileName(SettingsName())) throw RunTimeFailure(52, SettingsName());
        ReadSettings(SettingsPath());
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedUnreadable, PathText(failure.what())), Icon::Warning);
        return false;
    }
}

void TableSelectForm::cmdSave_Click() {
    Trace("cmdSave_Click");
    Save();
}

/// False when there is no name or nothing could be saved: the operator has been told.
bool TableSelectForm::Save() {
    const std::string name = SettingsName();
    const bool listed = cboSettings->findText(PathToQt(name), Qt::MatchFixedString) >= 0;
    try {
        if (name.empty())
            Tell(msg::TypeTemplateName, Icon::Warning);
        else if (!IsPlainFileName(name) || !(listed || IsNameForNewFile(name)))
            Tell(Lines(msg::NotAFileName, PathText(name)), Icon::Warning);
        else {
            WriteSettings(SettingsPath());
            ListName(*cboSettings, PathToQt(name));
            return true;
        }
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::TemplateNotSaved, PathText(failure.what())), Icon::Stop);
    }
    cboSettings->setFocus();
    return false;
}

void TableSelectForm::cmdDelete_Click() {
    Trace("cmdDelete_Click");
    const std::string name = SettingsName();
    if (IsPlainFileName(name)) {
        RemoveQuietly(SettingsPath());
        if (FileExists(SettingsPath())) return Tell(Words(msg::CannotDelete, PathText(name)), Icon::Warning);
    }
    UnlistName(*cboSettings, PathToQt(name));
}

// ---- hints ----

void TableSelectForm::AddHints() {
    help_ = new HelpLine(*lblInfo, msg::HintRest);
    const std::pair<QWidget*, MessageId> hints[] = {
        {cboSettings, msg::HintSettings},
        {cmdSave, msg::HintSave},
        {cmdDelete, msg::HintDelete},
        {cmdSelectAll, msg::HintSelectAll},
        {cmdClear, msg::HintClear},
        {cmdOK, OnlySaves() ? msg::HintSaveOnly : hints_.OK},
        {cmdCancel, keeps_ ? msg::HintCancelKeep : hints_.Cancel}};
    for (const auto& [control, hint] : hints) help_->Add(*control, hint);
    for (const Group& group : groups_) help_->Add(*group.Box, group.Hint.value_or(hints_.Boxes));
}

void TableSelectForm::SetBusy(const Text& why, WayOut way) {
    busy_ = !why.IsEmpty();
    pnlSelection->setEnabled(!busy_);
    cmdOK->setEnabled(!busy_);
    cmdCancel->setEnabled(way == WayOut::Open);
    if (busy_)
        help_->Hold(why);
    else
        help_->Rest();
}

// ---- Ok ----

void TableSelectForm::cmdOK_Click() {
    Trace("cmdOK_Click");
    // What was ticked without a name would be lost with a screen that only saves.
    const bool toSave = !SettingsName().empty() || (OnlySaves() && !NothingChosen());
    if (toSave && !Save()) return;
    if (OnlySaves()) return Unload();
    Perform();
}

void TableSelectForm::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

bool TableSelectForm::TablesAreFree(const std::vector<std::string>& paths) {
    const auto locked =
        std::find_if(paths.begin(), paths.end(), [](const std::string& path) { return TableIsLocked(path); });
    if (locked == paths.end()) return true;
    Tell(Lines(Lines(msg::FileError, msg::TransferAborted), PathText(*locked)), Icon::Stop);
    return false;
}
