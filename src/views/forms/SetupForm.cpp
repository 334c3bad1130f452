#include "views/forms/SetupForm.h"

#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "views/forms/frmViewGrid.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>

#include <algorithm>

namespace {

bool IsWhole(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

} // namespace

void SetupForm::Form_Load() {
    Trace("Form_Load");
    if (!Try([&] { records_.Open(table_.Path(), table_.Key(), FirstShown()); })) return Unload();
    lblWarning_ = findChild<QLabel*>(QStringLiteral("lblWarning"));
    controls_ = Controls();
    for (std::size_t k = 0; k < controls_.size(); ++k) {
        if (auto* list = qobject_cast<QComboBox*>(controls_[k])) Fill(*list, table_.Fields[k]);
        if (auto* line = qobject_cast<QLineEdit*>(controls_[k])) SetUp(*line, table_.Fields[k]);
    }
    DisplayData();
}

/// An older table may lack the field; then there is nothing to choose.
void SetupForm::Fill(QComboBox& list, const SetupField& field) const {
    if (records_.Padded(field.Name).empty()) return;
    for (const char* entry : field.Entries) list.addItem(ToQt(std::string_view(entry)));
}

void SetupForm::SetUp(QLineEdit& line, const SetupField& field) {
    line.setMaxLength(static_cast<int>(records_.Padded(field.Name).size()));
    if (field.Control == SetupControl::Number)
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), &line);
    connect(&line, &QLineEdit::textChanged, this, [this] { ShowWarning(); });
}

// ---- the screen ----

void SetupForm::Put(std::size_t field, const std::string& text) {
    const QString words = ToQt(std::string_view(text));
    if (auto* list = qobject_cast<QComboBox*>(controls_.at(field)))
        list->setCurrentIndex(text.empty() ? -1 : list->findText(words));
    auto* line = qobject_cast<QLineEdit*>(controls_.at(field));
    if (!line) return;
    if (table_.Fields[field].Control == SetupControl::Number) {
        // A number of another kind that stands there has to be workable too.
        line->setValidator(IsWhole(words) ? line->findChild<QValidator*>() : nullptr);
    }
    line->setText(words);
    line->setCursorPosition(0);
}

std::string SetupForm::Held(std::size_t field) const {
    if (const auto* list = qobject_cast<const QComboBox*>(controls_.at(field)))
        return FromQt(list->currentText());
    const auto* line = qobject_cast<const QLineEdit*>(controls_.at(field));
    if (!line) return {};
    const std::string text = FromQt(line->text());
    return std::string(Trim(text));
}

SetupTexts SetupForm::Held() const {
    SetupTexts texts;
    for (std::size_t field = 0; field < controls_.size(); ++field) texts.push_back(Held(field));
    return texts;
}

void SetupForm::DisplayData() {
    Trace("DisplayData");
    const SetupTexts texts = TextsOf(table_, records_);
    for (std::size_t field = 0; field < texts.size(); ++field) Put(field, texts[field]);
    ShowWarning();
}

/// What the code page lacks is no reason to refuse a text.
void SetupForm::ShowWarning() {
    if (!lblWarning_) return;
    const bool lost = std::any_of(controls_.begin(), controls_.end(), [](const QWidget* control) {
        const auto* line = qobject_cast<const QLineEdit*>(control);
        return line && ToQt(std::string_view(FromQt(line->text()))) != line->text();
    });
    lblWarning_->setText(lost ? ToQt(Text(msg::CharactersNotKept)) : QString());
}

// ---- saving and leaving ----

bool SetupForm::UpdateData() {
    Trace("UpdateData");
    return Try([&] { records_.Write(ValuesOf(table_, Held())); });
}

void SetupForm::cmdView_Click() {
    Trace("cmdView_Click");
    if (Differs() && AskYesNo(msg::UpdateChanged) && !Save()) return;
    if (IsOver()) return;
    ShowTable(view_, ShowMode::Modeless, records_.RecordNumber());
    if (IfLoaded<frmViewGrid>()) Unload();
}

void SetupForm::cmdOK_Click() {
    Trace("cmdOK_Click");
    if (Save() && !IsOver()) Unload();
}

void SetupForm::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

void SetupForm::Form_Unload() {
    Trace("Form_Unload");
    records_.Close();
}
