#include "views/forms/MasterEditor.h"

#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "platform/HelpLine.h"
#include "platform/Look.h"
#include "platform/LookupBox.h"
#include "platform/MainScreen.h"
#include "quality/TableChecks.h"
#include "store/forms/RecordMoves.h"
#include "views/TableViews.h"
#include "views/forms/frmViewGrid.h"

#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int HelpLines = 3; ///< of the longest text of the help line

/// What was chosen in a list, as opposed to what the record has brought there.
constexpr const char* ShownRow = "ShownRow";

QString TextIn(const QWidget& control) {
    if (const auto* line = qobject_cast<const QLineEdit*>(&control)) return line->text();
    const auto* list = qobject_cast<const QComboBox*>(&control);
    return list ? list->currentText() : QString();
}

/// The entry with a text: with the very letters, or else without regard to case, as the check has it.
int EntryWith(const QComboBox& list, const std::string& text) {
    const int exact =
        list.findText(ToQt(std::string_view(text)), Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (exact >= 0) return exact;
    for (int row = 0; row < list.count(); ++row) {
        if (SameText(FromQt(list.itemText(row)), text)) return row;
    }
    return -1;
}

void ShowText(QWidget& control, const std::string& text) {
    if (auto* line = qobject_cast<QLineEdit*>(&control)) {
        line->setText(ToQt(std::string_view(text)));
        line->setCursorPosition(0);
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        list->setCurrentIndex(EntryWith(*list, text));
        list->setProperty(ShownRow, list->currentIndex());
    }
}

constexpr RecordRules QualityRules{FieldsWithoutRepeats, FirstObjection};

} // namespace

MasterEditor::MasterEditor(const MasterKind& kind) : kind_(kind), table_(kind, QualityRules) {}

void MasterEditor::Bind(const std::vector<Help>& help, MessageId lookup) {
    const auto bind = [this](auto*& control, const char* name) {
        control = findChild<std::remove_pointer_t<std::remove_reference_t<decltype(control)>>*>(
            QLatin1String(name));
    };
    bind(cmdFirst, "cmdFirst");
    bind(cmdPrevious, "cmdPrevious");
    bind(cmdNext, "cmdNext");
    bind(cmdLast, "cmdLast");
    bind(cmdAdd, "cmdAdd");
    bind(cmdDelete, "cmdDelete");
    bind(cmdView, "cmdView");
    bind(cmdOK, "cmdOK");
    bind(cmdCancel, "cmdCancel");
    bind(cboLookup, "cboLookup");
    bind(frFind, "frFind");
    bind(frFields, "frFields");
    bind(lblWarning, "lblWarning");
    bind(lblHelp, "lblHelp");
    for (auto* control : frFields->findChildren<QWidget*>()) {
        if (!qobject_cast<QLineEdit*>(control) && !qobject_cast<QComboBox*>(control)) continue;
        bool isNumber = false;
        const int place = control->property("Tag").toString().toInt(&isNumber);
        if (isNumber) bound_.push_back({control, place});
    }
    std::sort(bound_.begin(), bound_.end(), [](const Bound& a, const Bound& b) { return a.Place < b.Place; });

    moves_ = new RecordMoves(*this, [this](std::int32_t target) { Move(target); });
    moves_->UseKeys(Qt::CTRL | Qt::Key_Home, Qt::CTRL | Qt::Key_End);
    auto* line = new HelpLine(*lblHelp, msg::MoveMouse);
    for (const auto& [control, text] : help) line->Add(*control, text);
    line->Add(*cboLookup, lookup);
    const std::pair<QWidget*, MessageId> buttons[] = {
        {cmdFirst, msg::HelpFirst},  {cmdPrevious, msg::HelpPrevious}, {cmdNext, msg::HelpNext},
        {cmdLast, msg::HelpLast},    {cmdAdd, msg::HelpAdd},           {cmdDelete, msg::HelpDelete},
        {cmdOK, msg::HelpSaveClose}, {cmdCancel, msg::HelpDropClose},  {cmdView, msg::HelpViewTable}};
    for (const auto& [control, text] : buttons) line->Add(*control, text);
    lblHelp->setMinimumHeight(HelpLines * lblHelp->fontMetrics().lineSpacing());
    lblWarning->setMinimumHeight(2 * lblWarning->fontMetrics().lineSpacing());
}

void MasterEditor::Form_Load() {
    Trace("Form_Load");
    if (const char* icon = AllTableViews()[kind_.Flag].Icon; *icon) setWindowIcon(Picture(icon));
    QPalette tone = lblWarning->palette();
    tone.setColor(QPalette::WindowText, WarningTone());
    lblWarning->setPalette(tone);
    if (!Try([&] { table_.Open(Global.SelectedRow); })) return Unload();
    for (const auto& [control, place] : bound_) {
        const int length = table_.FieldLength(place);
        if (length == 0) {
            control->setEnabled(false);
            control->setToolTip(PlainTip(
                ToQt(Words(msg::FieldMissing, Text::Value(std::string_view(table_.FieldName(place)))))));
        }
        control->installEventFilter(this);
        if (auto* line = qobject_cast<QLineEdit*>(control)) line->setMaxLength(length);
    }
    UpdateLookup();
    DisplayData();
    (table_.RecordCount() > 0 ? bound_.front().Control : cmdAdd)->setFocus();
}

/// The keys that move in a line to its ends move in the table here.
bool MasterEditor::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && qobject_cast<QLineEdit*>(object)) {
        const auto* key = static_cast<const QKeyEvent*>(event);
        if (key->modifiers() == Qt::ControlModifier &&
            (key->key() == Qt::Key_Home || key->key() == Qt::Key_End))
            return true;
    }
    return Form::eventFilter(object, event);
}

// ---- the screen ----

void MasterEditor::UpdateLookup() {
    Trace("UpdateLookup");
    cboLookup->Show(table_.Lookup());
}

void MasterEditor::DisplayData() {
    Trace("DisplayData");
    Loading = true;
    for (const auto& [control, place] : bound_) ShowText(*control, table_.Trimmed(place));
    ShowCount();
    Loading = false;
    ShowWarning();
}

void MasterEditor::ShowCount() {
    moves_->Show(table_.RecordNumber(), table_.RecordCount(), {frFields, frFind, cmdDelete},
                 {bound_.front().Control, cmdAdd});
    cboLookup->Stand(table_.RecordNumber() - 1);
}

MasterTable::Cells MasterEditor::Cells() const {
    MasterTable::Cells cells;
    for (const auto& [control, place] : bound_) cells[place] = FromQt(TextIn(*control));
    return cells;
}

Text MasterEditor::OwnWarning(const MasterTable&) const {
    return {};
}

Text MasterEditor::Warning() const {
    if (table_.RecordCount() == 0) return {};
    const bool isKept = std::all_of(bound_.begin(), bound_.end(), [](const Bound& each) {
        const QString text = TextIn(*each.Control);
        return ToQt(std::string_view(FromQt(text))) == text;
    });
    if (!isKept) return msg::RecordCharactersLost;
    const Text own = OwnWarning(table_);
    return own.IsEmpty() ? table_.Warning(Cells()) : own;
}

void MasterEditor::ShowWarning() {
    if (!Loading) lblWarning->setText(ToQt(Warning()));
}

void MasterEditor::txtField_Change(int) {
    ShowWarning();
}

bool MasterEditor::IsModified() const {
    return std::any_of(bound_.begin(), bound_.end(), [](const Bound& each) {
        if (const auto* line = qobject_cast<const QLineEdit*>(each.Control)) return line->isModified();
        const auto* list = qobject_cast<const QComboBox*>(each.Control);
        return list->currentIndex() != list->property(ShownRow).toInt();
    });
}

void MasterEditor::Form_GotFocus() {
    if (!table_.IsOpen()) return;
    // What was typed stays, and is looked at when it is saved.
    if (IsModified()) return ShowCount();
    bool renewed = false;
    if (!Try([&] { renewed = table_.Renew(); })) return;
    if (!renewed) return ShowCount();
    UpdateLookup();
    DisplayData();
}

// ---- saving ----

/// A record that is no longer in the table is not saved into another one: the operator is told, and sees
/// the one that has its number now.
bool MasterEditor::StillThere(bool there) {
    if (there) return true;
    Tell(msg::RecordGone, Icon::Warning);
    if (IsOver()) return false;
    UpdateLookup();
    DisplayData();
    return false;
}

void MasterEditor::UpdateData(bool& ok) {
    Trace("UpdateData");
    ok = false;
    if (Loading) return;
    MasterTable::Cells cells = Cells();
    for (const auto& [control, place] : bound_) {
        if (!table_.IsKey(place) || !Trim(cells[place]).empty()) continue;
        Tell(kind_.KeyEmpty, Icon::Warning);
        return control->setFocus();
    }
    // A field that the screen could not show stays as it is.
    for (const auto& [control, place] : bound_) {
        if (!control->isEnabled()) cells.erase(place);
    }
    bool there = true;
    const std::size_t entries = table_.Lookup().size();
    const std::int32_t record = table_.RecordNumber();
    if (!Try([&] { there = table_.Write(cells); }) || !StillThere(there)) return;
    if (table_.Lookup().size() == entries && table_.RecordNumber() == record)
        cboLookup->Refresh(record - 1);
    else
        UpdateLookup();
    ok = true;
}

/// Whether the step that is under way may go on: the record on the screen is in the table.
bool MasterEditor::Saved() {
    if (table_.RecordCount() == 0) return true;
    bool ok = false;
    UpdateData(ok);
    return ok && !IsOver();
}

// ---- moving ----

void MasterEditor::Move(std::int32_t target) {
    if (Saved() && Try([&] { table_.Go(target); })) return DisplayData();
    if (!IsOver() && table_.IsOpen()) cboLookup->Stand(table_.RecordNumber() - 1);
}

void MasterEditor::GoTo(std::int32_t record) {
    if (record > 0 && record <= table_.RecordCount()) Move(record);
}

void MasterEditor::cboLookup_Click() {
    Trace("cboLookup_Click");
    GoTo(cboLookup->currentIndex() + 1);
}

// ---- the other buttons ----

void MasterEditor::cmdAdd_Click() {
    Trace("cmdAdd_Click");
    bool there = true;
    if (!Saved() || !Try([&] { there = table_.Append(); }) || !StillThere(there)) return;
    UpdateLookup();
    DisplayData();
    bound_.front().Control->setFocus();
}

void MasterEditor::cmdDelete_Click() {
    Trace("cmdDelete_Click");
    if (!AskYesNo(msg::DeleteCurrentLink) || IsOver()) return;
    bool there = true;
    if (!Try([&] { there = table_.Delete(); }) || !StillThere(there)) return;
    UpdateLookup();
    DisplayData();
}

void MasterEditor::cmdView_Click() {
    Trace("cmdView_Click");
    // The view shows what is in the table, and what was typed would go without a word.
    if (IsModified() && AskYesNo(msg::SaveBeforeView) && !Saved()) return;
    if (IsOver()) return;
    ShowTable(kind_.Flag, ShowMode::Modeless, table_.RecordNumber());
    if (IfLoaded<frmViewGrid>()) Unload();
}

void MasterEditor::cmdOK_Click() {
    Trace("cmdOK_Click");
    if (Saved()) cmdCancel_Click();
}

void MasterEditor::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

void MasterEditor::Form_Unload() {
    Trace("Form_Unload");
    table_.Close();
    if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
}
