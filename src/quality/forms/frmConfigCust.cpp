#include "quality/forms/frmConfigCust.h"

#include "core/Messages.h"
#include "views/forms/frmViewGrid.h"

frmConfigCust::frmConfigCust() : SearchTopic(Check::Customers, CustomerSearch) {
    setupUi(this);
    Bind({{cboSrchCus, msg::HelpSrchCus}, {cmdEdit, msg::HelpEditCust}, {cmdImport, msg::HelpImportCust}});
    BindSearch(*cboSrchCus);
}

void frmConfigCust::cboSrchCus_Click() {
    Trace("cboSrchCus_Click");
    ChooseSearch(msg::UpdateCustomersSearch);
}

void frmConfigCust::cmdEdit_Click() {
    Trace("cmdEdit_Click");
    EditTable(ViewCust);
}

void frmConfigCust::cmdImport_Click() {
    Trace("cmdImport_Click");
    Import(TemplateKind::Cust);
}
