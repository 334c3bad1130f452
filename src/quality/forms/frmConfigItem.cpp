#include "quality/forms/frmConfigItem.h"

#include "core/Messages.h"
#include "views/forms/frmViewGrid.h"

frmConfigItem::frmConfigItem() : SearchTopic(Check::Items, ItemSearch) {
    setupUi(this);
    Bind({{cboSrchItm, msg::HelpSrchItm}, {cmdEdit, msg::HelpEditItem}, {cmdImport, msg::HelpImportItem}});
    BindSearch(*cboSrchItm);
}

void frmConfigItem::cboSrchItm_Click() {
    Trace("cboSrchItm_Click");
    ChooseSearch(msg::UpdateItemsSearch);
}

void frmConfigItem::cmdEdit_Click() {
    Trace("cmdEdit_Click");
    EditTable(ViewItem);
}

void frmConfigItem::cmdImport_Click() {
    Trace("cmdImport_Click");
    Import(TemplateKind::Item);
}
