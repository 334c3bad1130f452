#pragma once

#include "platform/Form.h"
#include "tools/forms/NamedFiles.h"

#include <array>
#include <string_view>

namespace Ui {
class frmOptions;
}

/// The page of frmOptions with the activities of the QuickButtons: imports, exports, and clearings of the PC.
class ActivitiesPage final : public FormPart {
    Q_OBJECT

public:
    /// The controls are made; the page belongs to the form.
    ActivitiesPage(Form& form, const Ui::frmOptions& controls);

    /// Lists the activities and the templates, nothing chosen.
    void Fill();

    /// Turns to the activities of an extension and chooses one of them. Nothing for another extension.
    void TurnTo(std::string_view extension, const QString& name);

    // False when it cannot be done: the operator has been told.
    bool NamesCanBeSaved() const;
    bool Save();

private slots:
    void cboImpAct_Click();
    void cboExpAct_Click();
    void cboPCAct_Click();
    void cmdEdtImp_Click();
    void cmdEdtExp_Click();
    void cmdEdtPC_Click();
    void cmdDelImpAct_Click();
    void cmdDelExpAct_Click();
    void cmdDelPCAct_Click();

private:
    /// The activities of a kind, and the droplists of the templates that one of them runs.
    struct Activities : NamedFiles {
        std::array<QComboBox*, 2> Templates;
    };

    void PopImport();
    void PopExport();
    void PopPCCLear();
    static void ShowActivity(Activities& kind);
    static void DeleteActivity(Activities& kind);
    static bool SaveActivity(Activities& kind);

    std::array<Activities, 3> activities_;
};
