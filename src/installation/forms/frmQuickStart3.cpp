#include "installation/forms/frmQuickStart3.h"

#include "core/Messages.h"
#include "views/forms/frmViewGrid.h"

namespace {

constexpr const char* SetupTopic = "Change_the_Setup_Tables_to_Match_Your_Company._.htm";

} // namespace

frmQuickStart3::frmQuickStart3() : QuickStartPage(SetupTables, msg::TitleSetupTables) {
    AddText(msg::QuickSetupText);
    AddStep("cmdCompany", msg::cmdQuickCompany, "SetupCompanyData32x32-16M", msg::QuickCompanyText,
            SetupTopic);
    AddStep("cmdSTax", msg::cmdQuickSTax, "summary", msg::QuickSTaxText, "Sales_Tax.htm");
    AddStep("cmdPrinters", msg::cmdQuickPrinters, "tool-setup", msg::QuickPrintersText, "Printers.htm");
    AddStep("cmdPayments", msg::cmdQuickPayments, "uploads", msg::QuickPaymentsText, "Payments.htm");
    AddStep("cmdLinks", msg::cmdQuickLinks, "handheld", msg::QuickLinksText, SetupTopic);
}

void frmQuickStart3::cmdCompany_Click() {
    Lead("cmdCompany_Click", [] { EditTable(ViewCompany); });
}

void frmQuickStart3::cmdSTax_Click() {
    Lead("cmdSTax_Click", [] { EditTable(ViewSTax); });
}

void frmQuickStart3::cmdPrinters_Click() {
    Lead("cmdPrinters_Click", [] { EditTable(ViewPrinter); });
}

void frmQuickStart3::cmdPayments_Click() {
    Lead("cmdPayments_Click", [] { EditTable(ViewPay); });
}

void frmQuickStart3::cmdLinks_Click() {
    Lead("cmdLinks_Click", [] { EditTable(ViewLink); });
}
