#include "quality/forms/frmConfigPrint.h"

#include "core/Messages.h"
#include "views/forms/frmViewGrid.h"

frmConfigPrint::frmConfigPrint() : ConfigTopic(Check::Printing) {
    setupUi(this);
    Bind({{cmdComp, msg::HelpSetupComp}, {cmdPrinter, msg::HelpSetupPrinter}});
}

void frmConfigPrint::cmdComp_Click() {
    Trace("cmdComp_Click");
    ShowTable(ViewCompany);
}

void frmConfigPrint::cmdPrinter_Click() {
    Trace("cmdPrinter_Click");
    ShowTable(ViewPrinter);
}
