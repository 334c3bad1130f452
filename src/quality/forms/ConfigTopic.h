#pragma once

#include "core/Text.h"
#include "exchange/ImportTemplate.h"
#include "platform/Form.h"
#include "quality/Checks.h"
#include "quality/SearchField.h"

#include <utility>
#include <vector>

class HelpLine;
class QComboBox;
class QLabel;

/// The screens that walk the operator through one topic of the Configurator: some steps, and the check of
/// the topic as the last one.
class ConfigTopic : public Form {
    Q_OBJECT

private slots:
    void cmdQC_Click();
    void cmdCancel_Click();

protected:
    explicit ConfigTopic(Check check) : check_(check) {}

    /// What the help line says of a control.
    using Help = std::pair<QWidget*, MessageId>;

    /// After setupUi.
    void Bind(const std::vector<Help>& help);

    void Form_Load() override;
    void Form_Unload() override;

    /// Says something in the place of the help, until a control is looked at.
    void Say(const Text& text);

private:
    const Check check_;
    QLabel* lblHelp = nullptr;
};

/// Those whose first step is the choice of a search field.
class SearchTopic : public ConfigTopic {
protected:
    SearchTopic(Check check, const SearchField& field) : ConfigTopic(check), field_(field) {}

    void BindSearch(QComboBox& list) { list_ = &list; }

    void Form_Load() override;
    void Form_Unload() override;

    /// A value was chosen: on Yes to `question` every record gets its search value from there.
    void ChooseSearch(MessageId question);

    /// Opens the import screen for that table.
    static void Import(TemplateKind kind);

private:
    void ShowChoice();

    const SearchField& field_;
    QComboBox* list_ = nullptr;
    bool Loading = false;
    bool known_ = false; ///< the setup table could be read
};
