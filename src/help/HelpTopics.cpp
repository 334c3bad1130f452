#include "help/HelpTopics.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::string_view MasterTopic = "Master_Tables.htm";
constexpr std::string_view SetupTopic = "Change_the_Setup_Tables_to_Match_Your_Company._.htm";
constexpr std::string_view AuditTopic = "Auditing_Sales_Orders.htm";
constexpr std::string_view UnattendedTopic = "Unattended_Hotsync_.htm";
constexpr std::string_view UploadedTopic = "Processing_Upload.htm";
constexpr std::string_view TotalsTopic = "Recent_Uploaded_Orders.htm";
constexpr std::string_view ConfigTopic = "Configurator_.htm";
constexpr std::string_view ButtonsTopic = "QuickButtons.htm";
constexpr std::string_view UsersTopic = "Update_Hotsync_Users.htm";
constexpr std::string_view ManagerTopic = "Hotsync_Manager.htm";
constexpr std::string_view SystemTopic = "System_Information.htm";
constexpr std::string_view PrintTopic = "Reports_and_Printing.htm";
constexpr std::string_view StandInTopic = "Stand_in_Handheld.htm";
constexpr std::string_view ViewTopic = "Viewing_Tables.htm";

struct Row {
    std::string_view Form, Topic;
};

constexpr Row Topics[] = {
    {"frmAbout", SystemTopic},
    {"frmAppend", UploadedTopic},
    {"frmAppendAudit", UploadedTopic},
    {"frmAppendIndex", UploadedTopic},
    {"frmChgLink", SetupTopic},
    {"frmChSetup", SetupTopic},
    {"frmCompany", SetupTopic},
    {"frmConfig", ConfigTopic},
    {"frmConfigCust", MasterTopic},
    {"frmConfigItem", MasterTopic},
    {"frmConfigMsg", ConfigTopic},
    {"frmConfigPrint", "Printers.htm"},
    {"frmConfigSTax", "Sales_Tax.htm"},
    {"frmConvert", "IMPORTING_DATA_FILES_TO_PC.htm"},
    {"frmCopyDBF", "SOFTWARE_UPDATES.htm"},
    {"frmEditCust", MasterTopic},
    {"frmEditItem", MasterTopic},
    {"frmEditSTax", "Sales_Tax.htm"},
    {"frmEventLog", SystemTopic},
    {"frmExport1", "Setup_Export.htm"},
    {"frmFindNotes", "Notes.htm"},
    {"frmHelp", "Using_the_Help.htm"},
    {"frmHHInstall", "Initial_Installation_ZUK_Tramble_on_Handheld_Unit_.htm"},
    {"frmHHStatus", "Handheld_Status.htm"},
    {"frmHSExit", ManagerTopic},
    {"frmHSID", UsersTopic},
    {"frmHSManager", ManagerTopic},
    {"frmHSPickUser", ManagerTopic},
    {"frmHSProgress", ManagerTopic},
    {"frmHSSettings", ManagerTopic},
    {"frmImport1", "Setup_Import.htm"},
    {"frmMainSync", UnattendedTopic},
    {"frmNotes", "Notes.htm"},
    {"frmOptions", "Purging_Backup_PC_Tables.htm"},
    {"frmPay", "Payments.htm"},
    {"frmPreview", PrintTopic},
    {"frmPrinter", "Printers.htm"},
    {"frmPrinting", PrintTopic},
    {"frmProgress", TotalsTopic},
    {"frmQBClearPC", ButtonsTopic},
    {"frmQBDownload", ButtonsTopic},
    {"frmQBExport", ButtonsTopic},
    {"frmQBImport", ButtonsTopic},
    {"frmQBRemote", UnattendedTopic},
    {"frmQBUpload", ButtonsTopic},
    {"frmQuickStart", "Introduction.htm"},
    {"frmQuickStart2", "QUICK_START_SETUP_YOUR_COMPANY_DATA_.htm"},
    {"frmQuickStart3", SetupTopic},
    {"frmQuickStart4", MasterTopic},
    {"frmQuickStart5", "DOWNLOADING_TABLES_TO_HANDHELD_UNITS.htm"},
    {"frmQuickStart6", "UPLOADING_SALES_ORDERS_FROM_HANDHELD_UNITS.htm"},
    {"frmQuickStart7", "EXPORTING_SALES_ORDERS_TO_ACCOUNTING_SYSTEM.htm"},
    {"frmQuickStart8", ButtonsTopic},
    {"frmRemoteSync", UnattendedTopic},
    {"frmSetup", ManagerTopic},
    {"frmStandIn", StandInTopic},
    {"frmStandInOrder", StandInTopic},
    {"frmTableSelectCL", "Options_Download.htm"},
    {"frmTableSelectDL", "Setup_Download.htm"},
    {"frmTableSelectPC", "Clearing_PC_Tables_.htm"},
    {"frmTotalsMsg", UploadedTopic},
    {"frmUpdateMsg", "SOFTWARE_UPDATES.htm"},
    {"frmUploadSelect", "Setup_Upload.htm"},
    {"frmView", ViewTopic},
    {"frmViewGrid", ViewTopic},
    {"frmViewSign", "Signatures.htm"},
};

} // namespace

std::string HelpTopicOfForm(std::string_view form) {
    const auto* row = std::ranges::find(Topics, form, &Row::Form);
    return std::string(row == std::end(Topics) ? HomeTopic : row->Topic);
}

std::string HelpTopicOfView(ViewFlag flag, std::string_view otherwise) {
    switch (flag) {
    case ViewOrHdrAudt:
    case ViewOrLinAudt:
    case ViewAudHH:
        return std::string(AuditTopic);
    case ViewCompany:
    case ViewPrinter:
    case ViewSetup:
    case ViewSTax:
    case ViewPay:
    case ViewLink:
        return std::string(SetupTopic);
    case ViewRestore:
        return "Restoring_PC_Tables_from_Backup_.htm";
    default:
        return std::string(otherwise);
    }
}
