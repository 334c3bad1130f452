#include "quality/Checks.h"

#include "quality/TableChecks.h"
#include "quality/TemplateChecks.h"

#include <array>

std::string_view CheckName(Check check) {
    constexpr std::array<std::string_view, Checks> names{
        "Links",    "Customers", "Items",  "BarCodes", "SalesTax",     "Payments",   "Printing",
        "Download", "Upload",    "Import", "Export",   "QuickButtons", "Unattended", "Backup"};
    return names[static_cast<std::size_t>(check)];
}

std::span<const Check> AllChecks() {
    static constexpr std::array order{
        Check::Download,   Check::Upload,   Check::Import,    Check::Export, Check::QuickButtons,
        Check::Unattended, Check::Backup,   Check::Customers, Check::Items,  Check::SalesTax,
        Check::Payments,   Check::Printing, Check::BarCodes};
    return order;
}

void RunCheck(Check check, const CheckTools& tools, ProblemList& problems) {
    switch (check) {
    case Check::Links:
        return QCLinks(problems, tools.HotSyncUsers());
    case Check::Customers:
        return QCCust(problems, tools.Bar);
    case Check::Items:
        return QCItems(problems, tools.Bar);
    case Check::BarCodes:
        return QCBarcode(problems, tools.Bar);
    case Check::SalesTax:
        return QCSTax(problems, tools.Bar);
    case Check::Payments:
        return QCPay(problems);
    case Check::Download:
        return QCDownload(problems);
    case Check::Upload:
        return QCUpload(problems);
    case Check::Import:
        return QCImport(problems);
    case Check::Export:
        return QCExport(problems);
    case Check::QuickButtons:
        return QCQB(problems);
    case Check::Unattended:
        return QCUA(problems);
    case Check::Printing:
    case Check::Backup:
        return;
    }
}
