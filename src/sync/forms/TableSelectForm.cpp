#include "sync/forms/TableSelectForm.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/TemplateToRepair.h"
#include "exchange/forms/Lists.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/HotSyncControl.h"
#include "platform/TitledWindow.h"
#include "store/TableCatalogue.h"
#include "store/TableLock.h"
#include "store/TableScan.h"
#include "sync/forms/frmMainSync.h"
#include "views/GridData.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

constexpr const char* ProgressWindow = "Hotsync Progress";
constexpr std::string_view LinkColumns[] = {"LK_HOTSYNC", "LK_MACH_ID", "LK_LSTONUM"};

Text PathText(std::string_view path) {
    return Text::Path(path);
}

/// What a table is called, with the number of its records where it can be read.
Text NameOf(std::string_view table, bool counted) {
    const TableEntry* entry = FindTable(table);
    const Text name = entry ? Text(MessageId{entry->FirstLabel}) : Text::Value(table);
    if (!counted) return name;
    try {
        const std::int64_t records = TableScan(Global.DBFPath + std::string(table) + ".DBF").RecordCount();
        return Words(name, PathText("(" + std::to_string(records) + ")"));
    } catch (const RunTimeFailure&) {
        return name; // the step that needs the table tells what is wrong with it
    }
}

} // namespace

void TableSelectForm::Trace(std::string_view routine) const {
    TraceEvent(std::string(metaObject()->className()) + ":" + std::string(routine));
}

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
    bind(FG1, "FG1");
    groups_ = std::move(groups);
    hints_ = hints;
    counted_ = counted;

    std::vector<QWidget*> hinted{cboSettings, cmdSave, cmdDelete, cmdSelectAll, cmdClear, cmdOK, cmdCancel};
    for (const Group& group : groups_) hinted.push_back(group.Box);
    for (QWidget* control : hinted) control->installEventFilter(this);
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
    control_ = NewSFrmAX40();
    control_->HotSyncStatus = [this](std::int32_t status) {
        if (!IsOver()) Run([this, status] { OnStatus(status); });
    };
    for (const std::string& name : NamesWithExtension(*kind_.Folder, kind_.Extension))
        cboSettings->addItem(PathToQt(name));
    cboSettings->setCurrentIndex(-1);
    cboSettings->lineEdit()->setPlaceholderText(ToQt(Text(msg::NameHint)));
    DisplayLinkData();
    DisplayData();
    ShowTables();
    ShowChoice();
    // Room for the longest hint from the first, so that nothing moves.
    lblInfo->setMinimumHeight(3 * lblInfo->fontMetrics().lineSpacing());
    ShowHint(nullptr);
    groups_.front().Box->setFocus();
    if (repair_.empty()) return;
    cboSettings->setCurrentIndex(cboSettings->findText(
        PathToQt(repair_.substr(0, repair_.size() - kind_.Extension.size())), Qt::MatchFixedString));
    LoadSettings();
}

void TableSelectForm::Drive(const std::string& settings, bool& held) {
    drive_ = settings;
    held_ = &held;
}

void TableSelectForm::Form_GotFocus() {
    standing_ = true;
    if (drive_.empty() || busy_) return;
    cboSettings->setEditText(PathToQt(std::exchange(drive_, {})));
    if (!LoadSettings()) return;
    driven_ = true;
    cmdOK_Click();
    driven_ = false;
}

void TableSelectForm::Form_Unload() {
    Trace("Form_Unload");
    if (!repair_.empty()) EndRepair();
    if (control_) control_->SetEnabled(false); // the object lives on until its handlers have returned
    LoadMainSync();
}

/// What the Links table says of the handhelds.
void TableSelectForm::DisplayLinkData() {
    Trace("DisplayLinkData");
    FGLink.clear();
    try {
        TableScan links(Global.DBFPath + "ZUKLINK.DBF");
        while (links.Next()) {
            if (links.Deleted()) continue;
            std::vector<Text> row;
            for (const std::string_view field : LinkColumns) {
                const int column = links.Layout().Find(FieldKey(field));
                row.push_back(column > 0 ? Text::Value(links.Trimmed(column)) : Text());
            }
            FGLink.push_back(std::move(row));
        }
    } catch (const RunTimeFailure& failure) {
        FGLink.clear();
        FG1->SetEmptyText(Lines(msg::FileError, PathText(failure.what())));
        return;
    }
    FG1->SetEmptyText(msg::lblNoHandhelds);
}

void TableSelectForm::DisplayData() {
    Trace("DisplayData");
    std::vector<GridHeading> headings;
    for (const std::string_view field : LinkColumns)
        headings.push_back({GetFriendlyFieldName(*FindTable("ZUKLINK"), field)});
    FG1->SetContent(std::make_unique<ListGrid>(std::move(headings), FGLink));
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
    lblNothing->setText(NothingChosen() ? ToQt(Text(msg::NothingTicked)) : QString());
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

Text TableSelectForm::HintFor(const QObject* control) const {
    const std::pair<const QObject*, MessageId> hints[] = {
        {cboSettings, msg::HintSettings},
        {cmdSave, msg::HintSave},
        {cmdDelete, msg::HintDelete},
        {cmdSelectAll, msg::HintSelectAll},
        {cmdClear, msg::HintClear},
        {cmdOK, keeps_ ? msg::HintSaveOnly : hints_.OK},
        {cmdCancel, keeps_ ? msg::HintCancelKeep : hints_.Cancel}};
    for (const auto& [each, hint] : hints) {
        if (each == control) return hint;
    }
    return control ? hints_.Boxes : msg::HintRest;
}

void TableSelectForm::ShowHint(const QObject* control) {
    if (!busy_) lblInfo->setText(ToQt(HintFor(control)));
}

bool TableSelectForm::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Enter) ShowHint(object);
    if (event->type() == QEvent::Leave) ShowHint(nullptr);
    // Whoever comes by a key reads what the cursor would show. A dialog that opens says the same of its first
    // control, where nobody has pressed a key.
    if (standing_ && event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
            reason == Qt::ShortcutFocusReason)
            ShowHint(object);
    }
    return Form::eventFilter(object, event);
}

void TableSelectForm::SetBusy(const Text& why, WayOut way) {
    busy_ = !why.IsEmpty();
    pnlSelection->setEnabled(!busy_);
    cmdOK->setEnabled(!busy_);
    cmdCancel->setEnabled(way == WayOut::Open);
    if (busy_)
        lblInfo->setText(ToQt(why));
    else
        ShowHint(nullptr);
}

// ---- Ok ----

void TableSelectForm::cmdOK_Click() {
    Trace("cmdOK_Click");
    // What was ticked without a name would be lost with a screen that only saves.
    const bool toSave = !SettingsName().empty() || (keeps_ && !NothingChosen());
    if (toSave && !Save()) return;
    if (keeps_) return Unload();
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

FlushEnd TableSelectForm::FlushCommandQueue() {
    const Busy busy(*this, msg::WaitForHandheld, WayOut::Open);
    Global.ManualUploadActive = true;
    control_->SetEnabled(true);
    const FlushEnd end = SF_FlushCommandQueue(Text(msg::SynchronizingData) + msg::SynchronizingDots,
                                              [this] { return !IsGone(); });
    Global.ManualUploadActive = false;
    control_->SetEnabled(false);
    return end;
}

void TableSelectForm::OnStatus(std::int32_t status) {
    // From its beginning on a session cannot be given up here: tables would stay half sent.
    if (Global.ManualUploadActive && status == SessionBegun) SetBusy(msg::SessionRuns, WayOut::Shut);
    HotSyncStatus(status);
}

void TableSelectForm::AwaitProgressWindow() {
    const Busy busy(*this, msg::SessionRuns, WayOut::Shut);
    LookUntil(*this, [] { return !FindWindow(QString::fromLatin1(ProgressWindow)); });
}

void TableSelectForm::TellEnd(FlushEnd end) {
    if (end == FlushEnd::Refused) Tell(msg::HotSyncRefused, Icon::Warning);
    if (end == FlushEnd::NoManager) Tell(msg::HotSyncNotReached, Icon::Warning);
    if (end == FlushEnd::Lost) Tell(msg::HotSyncLost, Icon::Warning);
}

void TableSelectForm::Finish(bool held) {
    if (held_ && held) *held_ = true;
    if (held || driven_) Unload();
}
