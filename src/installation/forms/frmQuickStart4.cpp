#include "installation/forms/frmQuickStart4.h"

#include "core/Messages.h"
#include "quality/forms/QCRun.h"
#include "views/forms/frmViewGrid.h"

frmQuickStart4::frmQuickStart4() : QuickStartPage(AddMasters, msg::PageAddMasters) {
    AddStep("cmdCust", msg::cmdQuickCust, "tool-customers", msg::QuickCustText, "Master_Tables.htm");
    AddStep("cmdItems", msg::cmdQuickItems, "tool-items", msg::QuickItemsText, "Master_Tables.htm");
    AddStep("cmdQC", msg::cmdQuickQC, "tool-check", msg::QuickCheckText, "Quality_Check_.htm");
}

void frmQuickStart4::cmdCust_Click() {
    Lead("cmdCust_Click", [] { EditTable(ViewCust); });
}

void frmQuickStart4::cmdItems_Click() {
    Lead("cmdItems_Click", [] { EditTable(ViewItem); });
}

void frmQuickStart4::cmdQC_Click() {
    Trace("cmdQC_Click");
    constexpr Check checks[] = {Check::Customers, Check::Items};
    RunChecks(checks, false);
}
