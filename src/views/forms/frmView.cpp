#include "views/forms/frmView.h"

#include "core/Globals.h"
#include "views/forms/frmViewGrid.h"

void frmView::Form_Load() {
    TraceEvent("frmView:Form_Load");
}

void frmView::cmdOrHdr_Click() {
    TraceEvent("frmView:cmdOrHdr_Click");
    ShowTable(ViewOrHdr);
}

void frmView::cmdOrLin_Click() {
    TraceEvent("frmView:cmdOrLin_Click");
    ShowTable(ViewOrLin);
}

void frmView::cmdOrHdrAudt_Click() {
    TraceEvent("frmView:cmdOrHdrAudt_Click");
    ShowTable(ViewOrHdrAudt);
}

void frmView::cmdOrLinAudt_Click() {
    TraceEvent("frmView:cmdOrLinAudt_Click");
    ShowTable(ViewOrLinAudt);
}

void frmView::cmdAudHH_Click() {
    TraceEvent("frmView:cmdAudHH_Click");
    ShowTable(ViewAudHH);
}

void frmView::cmdCompany_Click() {
    TraceEvent("frmView:cmdCompany_Click");
    ShowTable(ViewCompany);
}

void frmView::cmdPrinter_Click() {
    TraceEvent("frmView:cmdPrinter_Click");
    ShowTable(ViewPrinter);
}

void frmView::cmdSetup_Click() {
    TraceEvent("frmView:cmdSetup_Click");
    ShowTable(ViewSetup);
}

void frmView::cmdCust_Click() {
    TraceEvent("frmView:cmdCust_Click");
    ShowTable(ViewCust);
}

void frmView::cmdItems_Click() {
    TraceEvent("frmView:cmdItems_Click");
    ShowTable(ViewItem);
}

void frmView::cmdBCIndex_Click() {
    TraceEvent("frmView:cmdBCIndex_Click");
    ShowTable(ViewBarIn);
}

void frmView::cmdTotals_Click() {
    TraceEvent("frmView:cmdTotals_Click");
    ShowTable(ViewTotals, ShowMode::Modal);
}

void frmView::cmdSTax_Click() {
    TraceEvent("frmView:cmdSTax_Click");
    ShowTable(ViewSTax);
}

void frmView::cmdPay_Click() {
    TraceEvent("frmView:cmdPay_Click");
    ShowTable(ViewPay);
}

void frmView::cmdLinks_Click() {
    TraceEvent("frmView:cmdLinks_Click");
    ShowTable(ViewLink);
}

void frmView::cmdPRN_Click() {
    TraceEvent("frmView:cmdPRN_Click");
    ShowTable(ViewPRN);
}

void frmView::cmdOK_Click() {
    TraceEvent("frmView:cmdOK_Click");
    Unload();
}
