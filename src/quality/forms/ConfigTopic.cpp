#include "quality/forms/ConfigTopic.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "exchange/forms/frmConvert.h"
#include "platform/Convert.h"
#include "platform/HelpLine.h"
#include "quality/forms/QCRun.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int HelpLines = 4; ///< of the longest text of the help line

} // namespace

void ConfigTopic::Bind(const std::vector<Help>& help) {
    lblHelp = findChild<QLabel*>(QStringLiteral("lblHelp"));
    auto* line = new HelpLine(*lblHelp, msg::MoveMouse);
    for (const auto& [control, text] : help) line->Add(*control, text);
    line->Add(*findChild<QPushButton*>(QStringLiteral("cmdQC")), msg::TipCheck);
    line->Add(*findChild<QPushButton*>(QStringLiteral("cmdCancel")), msg::TipClose);
    lblHelp->setMinimumHeight(HelpLines * lblHelp->fontMetrics().lineSpacing());
}

void ConfigTopic::Say(const Text& text) {
    lblHelp->setText(ToQt(text));
}

void ConfigTopic::Form_Load() {
    Trace("Form_Load");
}

void ConfigTopic::Form_Unload() {
    Trace("Form_Unload");
    Global.FromConfigurator = false;
}

void ConfigTopic::cmdQC_Click() {
    Trace("cmdQC_Click");
    RunSingleCheck(check_);
}

void ConfigTopic::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

// ---- the choice of a search field ----

void SearchTopic::Form_Load() {
    ConfigTopic::Form_Load();
    Loading = true;
    for (const SearchField::Choice& choice : field_.Choices)
        list_->addItem(ToQt(std::string_view(choice.Value)));
    known_ = Try([this] { Global.*field_.InMemory = ReadSearchChoice(field_); });
    ShowChoice();
    Loading = false;
}

/// The choice in force; a value that there is not leaves the list without one.
void SearchTopic::ShowChoice() {
    list_->setCurrentIndex(
        list_->findText(ToQt(std::string_view(Global.*field_.InMemory)), Qt::MatchFixedString));
}

void SearchTopic::ChooseSearch(MessageId question) {
    if (Loading || list_->currentIndex() < 0) return;
    const std::string value = field_.Choices[static_cast<std::size_t>(list_->currentIndex())].Value;
    if (!AskYesNo(question) || IsOver()) return;
    try {
        const std::int32_t records = UpdateSearchField(field_, value);
        Global.*field_.InMemory = value;
        known_ = true;
        Say(Words(Text::Value(std::int64_t{records}), msg::SearchFieldUpdated));
    } catch (const RunTimeFailure& failure) {
        ShowChoice();
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

void SearchTopic::Import(TemplateKind kind) {
    auto& convert = The<frmConvert>();
    if (convert.IsGone()) return;
    convert.TurnTo(kind);
    convert.Show(ShowMode::Modal);
}

void SearchTopic::Form_Unload() {
    // A choice that could not be read is not overwritten by one that nobody has made.
    if (known_ && !(Global.*field_.InMemory).empty())
        Try([this] { WriteSearchChoice(field_, Global.*field_.InMemory); });
    ConfigTopic::Form_Unload();
}
