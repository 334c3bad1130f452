#include "quality/forms/frmConfigSTax.h"

#include "core/Messages.h"
#include "views/forms/frmViewGrid.h"

frmConfigSTax::frmConfigSTax() : ConfigTopic(Check::SalesTax) {
    setupUi(this);
    Bind({{cmdSTax, msg::HelpSetupSTax}, {cmdCust, msg::HelpSetupCustSTax}});
}

void frmConfigSTax::cmdSTax_Click() {
    Trace("cmdSTax_Click");
    ShowTable(ViewSTax);
}

void frmConfigSTax::cmdCust_Click() {
    Trace("cmdCust_Click");
    ShowTable(ViewCust);
}
