#include "tools/forms/ActivitiesPage.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "exchange/Activity.h"
#include "exchange/forms/frmExport1.h"
#include "exchange/forms/frmImport1.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "platform/Convert.h"
#include "ui_frmOptions.h"

namespace {

enum Kind { Import, Export, ClearPC }; ///< of activities, in the order of the screen

} // namespace

ActivitiesPage::ActivitiesPage(Form& form, const Ui::frmOptions& controls) : FormPart(form) {
    const std::string* folder = &Global.QuickButtonTemplates;
    activities_ = {Activities{{controls.cboImpAct, ImportActivities, folder, {}},
                              {controls.cboImpSS1, controls.cboImpSS2}},
                   Activities{{controls.cboExpAct, ExportActivities, folder, {}},
                              {controls.cboExpSS1, controls.cboExpSS2}},
                   Activities{{controls.cboPCAct, ClearPCActivities, folder, {}},
                              {controls.cboPCSS1, controls.cboPCSS2}}};
}

void ActivitiesPage::Fill() {
    PopImport();
    PopExport();
    PopPCCLear();
    for (const Activities& kind : activities_) kind.Fill();
}

void ActivitiesPage::TurnTo(std::string_view extension, const QString& name) {
    for (Activities& kind : activities_) {
        if (SameText(extension, kind.Extension) && kind.Choose(name)) ShowActivity(kind);
    }
}

void ActivitiesPage::PopImport() {
    Owner().Trace("PopImport");
    std::vector<std::string> names = FilesWithExtension(Global.ImportTemplates, ".cst");
    const std::vector<std::string> items = FilesWithExtension(Global.ImportTemplates, ".itm");
    names.insert(names.end(), items.begin(), items.end());
    for (QComboBox* box : activities_[Import].Templates) FillTemplates(*box, names);
}

void ActivitiesPage::PopExport() {
    Owner().Trace("PopExport");
    for (QComboBox* box : activities_[Export].Templates)
        FillTemplates(*box, FilesWithExtension(Global.ExportTemplates, ".xor"));
}

void ActivitiesPage::PopPCCLear() {
    Owner().Trace("PopPCCLear");
    for (QComboBox* box : activities_[ClearPC].Templates)
        FillTemplates(*box, FilesWithExtension(Global.ClearPCTemplates, ".pct"));
}

void ActivitiesPage::ShowActivity(Activities& kind) {
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

void ActivitiesPage::cboImpAct_Click() {
    Owner().Trace("cboImpAct_Click");
    ShowActivity(activities_[Import]);
}

void ActivitiesPage::cboExpAct_Click() {
    Owner().Trace("cboExpAct_Click");
    ShowActivity(activities_[Export]);
}

void ActivitiesPage::cboPCAct_Click() {
    Owner().Trace("cboPCAct_Click");
    ShowActivity(activities_[ClearPC]);
}

void ActivitiesPage::DeleteActivity(Activities& kind) {
    const std::string name = kind.Name();
    if (name.empty() || !AskYesNo(Words(msg::SureToDelete, PathText(name)))) return;
    if (IsPlainFileName(name)) RemoveQuietly(kind.Path());
    kind.Forget();
    for (QComboBox* box : kind.Templates) ChooseTemplate(*box, QString());
}

void ActivitiesPage::cmdDelImpAct_Click() {
    Owner().Trace("cmdDelImpAct_Click");
    DeleteActivity(activities_[Import]);
}

void ActivitiesPage::cmdDelExpAct_Click() {
    Owner().Trace("cmdDelExpAct_Click");
    DeleteActivity(activities_[Export]);
}

void ActivitiesPage::cmdDelPCAct_Click() {
    Owner().Trace("cmdDelPCAct_Click");
    DeleteActivity(activities_[ClearPC]);
}

void ActivitiesPage::cmdEdtImp_Click() {
    Owner().Trace("cmdEdtImp_Click");
    if (EditTemplates<frmImport1>(Owner())) PopImport();
}

void ActivitiesPage::cmdEdtExp_Click() {
    Owner().Trace("cmdEdtExp_Click");
    if (EditTemplates<frmExport1>(Owner())) PopExport();
}

void ActivitiesPage::cmdEdtPC_Click() {
    Owner().Trace("cmdEdtPC_Click");
    if (EditTemplates<frmTableSelectPC>(Owner())) PopPCCLear();
}

bool ActivitiesPage::NamesCanBeSaved() const {
    for (const Activities& kind : activities_) {
        if (kind.Name().empty()) continue;
        if (!kind.NameCanBeSaved()) return false;
        for (QComboBox* box : kind.Templates) {
            if (!NameIsKept(*box, TemplateIn(*box), ";")) return false;
        }
    }
    return true;
}

bool ActivitiesPage::Save() {
    for (Activities& kind : activities_) {
        if (!SaveActivity(kind)) return false;
    }
    return true;
}

bool ActivitiesPage::SaveActivity(Activities& kind) {
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
