#include "installation/forms/frmQuickStart7.h"

#include "core/Messages.h"
#include "exchange/forms/frmExport1.h"
#include "maintenance/forms/frmTableSelectPC.h"

frmQuickStart7::frmQuickStart7() : QuickStartPage(Export, msg::TitleExportOrders) {
    AddStep("cmdExport", msg::cmdQuickExport, "tool-export", msg::QuickExportText,
            "EXPORTING_SALES_ORDERS_TO_ACCOUNTING_SYSTEM.htm");
    AddStep("cmdClear", msg::cmdQuickClear, "tool-clear", msg::QuickClearText, "Clearing_PC_Tables_.htm");
}

void frmQuickStart7::cmdExport_Click() {
    Lead("cmdExport_Click", [] { The<frmExport1>().Show(ShowMode::Modal); });
}

void frmQuickStart7::cmdClear_Click() {
    Lead("cmdClear_Click", [] { The<frmTableSelectPC>().Show(ShowMode::Modal); });
}
