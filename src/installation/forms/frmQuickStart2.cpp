#include "installation/forms/frmQuickStart2.h"

#include "core/Messages.h"
#include "platform/Convert.h"

#include <QAbstractButton>

frmQuickStart2::frmQuickStart2() : QuickStartPage(Overview, msg::PageOverview) {
    AddText(msg::QuickOverviewText);
    AddStep("lblSetup", msg::PageSetupTables, "", msg::QuickStageSetup);
    AddStep("lblAdd", msg::PageAddMasters, "", msg::QuickStageAdd);
    AddStep("lblDownload", msg::PageDownload, "", msg::QuickStageDownload);
    // This stage has a page in the help only.
    QAbstractButton& orders = AddStep("lblHelpOrders", msg::PageEnter, "", msg::QuickStageEnter);
    orders.setProperty("HelpTopic", QStringLiteral("QUICK_START_ENTERING_SALES_ORDERS_.htm"));
    orders.setToolTip(PlainTip(ToQt(Text(msg::TipQuickEnter))));
    AddStep("lblUpload", msg::PageUpload, "", msg::QuickStageUpload);
    AddStep("lblExport", msg::PageExport, "", msg::QuickStageExport);
    AddStep("lblEnter", msg::PageAdvanced, "", msg::QuickStageAdvanced);
}

void frmQuickStart2::lblSetup_Click() {
    GoTo("lblSetup_Click", SetupTables);
}

void frmQuickStart2::lblAdd_Click() {
    GoTo("lblAdd_Click", AddMasters);
}

void frmQuickStart2::lblDownload_Click() {
    GoTo("lblDownload_Click", Download);
}

void frmQuickStart2::lblUpload_Click() {
    GoTo("lblUpload_Click", Upload);
}

void frmQuickStart2::lblExport_Click() {
    GoTo("lblExport_Click", Export);
}

void frmQuickStart2::lblEnter_Click() {
    GoTo("lblEnter_Click", Advanced);
}
