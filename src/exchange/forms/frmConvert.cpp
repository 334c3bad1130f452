#include "exchange/forms/frmConvert.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/forms/DataDirectory.h"
#include "exchange/forms/frmImport1.h"
#include "platform/Convert.h"

frmConvert::frmConvert() {
    setupUi(this);
}

void frmConvert::Form_Load() {
    TraceEvent("frmConvert:Form_Load");
    try {
        EnsureDataDirectory(Global.DataInPath, "DataIn", msg::DataInUnavailable);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return Unload();
    }
    for (const std::string& name : FilesWithExtension(Global.DataInPath, "")) {
        filFiles->addItem(PathToQt(name));
    }
    lblNoFiles->setText(ToQt(Lines(msg::NoFiles, Text::Path(std::string_view(Global.DataInPath)))));
    lblNoFiles->setVisible(filFiles->count() == 0);
    filFiles->setVisible(filFiles->count() != 0);
    CheckOK();
}

std::string frmConvert::ImportFile() const {
    const QList<QListWidgetItem*> selected = filFiles->selectedItems();
    return selected.isEmpty() ? std::string() : Global.DataInPath + PathFromQt(selected.first()->text());
}

TemplateKind frmConvert::Kind() const {
    return optItem->isChecked() ? TemplateKind::Item : TemplateKind::Cust;
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
    mapping.Show(ShowMode::Modal);
    Unload();
}

void frmConvert::cmdCancel_Click() {
    TraceEvent("frmConvert:cmdCancel_Click");
    Unload();
}
