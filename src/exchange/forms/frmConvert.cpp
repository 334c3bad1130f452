#include "exchange/forms/frmConvert.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/HeadLines.h"
#include "exchange/TemplateToRepair.h"
#include "exchange/forms/DataDirectory.h"
#include "exchange/forms/frmImport1.h"
#include "platform/Convert.h"

frmConvert::frmConvert() {
    setupUi(this);
}

void frmConvert::Form_Load() {
    TraceEvent("frmConvert:Form_Load");
    repair_ =
        TemplateToRepair({TemplateExtension(TemplateKind::Cust), TemplateExtension(TemplateKind::Item)});
    if (!Try([] { EnsureDataDirectory(Global.DataInPath, "DataIn", msg::DataInUnavailable); }))
        return Unload();
    for (const std::string& name : FilesWithExtension(Global.DataInPath, "")) {
        filFiles->addItem(PathToQt(name));
    }
    lblNoFiles->setText(ToQt(Lines(msg::NoFiles, Text::Path(std::string_view(Global.DataInPath)))));
    lblNoFiles->setVisible(filFiles->count() == 0);
    filFiles->setVisible(filFiles->count() != 0);
    if (!repair_.empty()) ShowRepair();
    CheckOK();
}

void frmConvert::Form_Unload() {
    if (!repair_.empty()) EndRepair();
}

void frmConvert::ShowRepair() {
    lblHelp->setText(ToQt(Lines(
        Text(msg::RepairSelect) + Text::Path(std::string_view(repair_)) + msg::RepairOr, msg::RepairCancel)));
    TurnTo(TemplateKindOf(repair_).value_or(TemplateKind::Cust));
    for (QRadioButton* option : {optCustomer, optItem}) option->setEnabled(false);
}

std::string frmConvert::ImportFile() const {
    const QList<QListWidgetItem*> selected = filFiles->selectedItems();
    return selected.isEmpty() ? std::string() : Global.DataInPath + PathFromQt(selected.first()->text());
}

TemplateKind frmConvert::Kind() const {
    return optItem->isChecked() ? TemplateKind::Item : TemplateKind::Cust;
}

void frmConvert::TurnTo(TemplateKind kind) {
    (kind == TemplateKind::Item ? optItem : optCustomer)->setChecked(true);
    CheckOK();
}

void frmConvert::CheckOK() {
    cmdOK->setEnabled(!ImportFile().empty() && (optCustomer->isChecked() || optItem->isChecked()));
}

void frmConvert::filFiles_Click() {
    CheckOK();
}

void frmConvert::filFiles_DblClick() {
    if (cmdOK->isEnabled()) cmdOK_Click();
}

void frmConvert::optCustomer_Click() {
    CheckOK();
}

void frmConvert::optItem_Click() {
    CheckOK();
}

void frmConvert::cmdOK_Click() {
    TraceEvent("frmConvert:cmdOK_Click");
    auto& mapping = The<frmImport1>();
    // It told why it will not open; another file can be chosen here.
    if (mapping.IsGone()) return;
    if (repair_.empty()) {
        mapping.Show(ShowMode::Modal);
    } else {
        const bool saved = mapping.SaveAnew(repair_);
        mapping.Unload();
        if (!saved) return;
    }
    Unload();
}

void frmConvert::cmdCancel_Click() {
    TraceEvent("frmConvert:cmdCancel_Click");
    if (!repair_.empty()) DeleteTemplate();
    Unload();
}

void frmConvert::DeleteTemplate() const {
    const std::string path = Global.ImportTemplates + repair_;
    try {
        Global.TheDisk->Remove(ResolvePath(path));
        ForgetHeadLines(path);
    } catch (const RunTimeFailure& failure) {
        Tell(Words(msg::CouldNotDelete, Text::Path(std::string_view(repair_))) + msg::CouldNotDeleteEnd +
             Text::Path(std::string_view(failure.what())));
    }
}

void frmConvert::reject() {
    if (repair_.empty()) return Form::reject();
    Unload();
}
