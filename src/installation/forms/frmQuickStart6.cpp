#include "installation/forms/frmQuickStart6.h"

#include "core/Messages.h"
#include "sync/forms/frmUploadSelect.h"

frmQuickStart6::frmQuickStart6() : QuickStartPage(Upload, msg::TitleUploadOrders) {
    AddStep("cmdUpload", msg::cmdQuickUpload, "tool-upload", msg::QuickUploadText,
            "UPLOADING_SALES_ORDERS_FROM_HANDHELD_UNITS.htm");
    AddText(msg::QuickUploadAfter);
    AddHelp("Processing", "Processing_Upload.htm", msg::TitleUploadOrders);
}

/// The page waits: the screen is modal, and stands until its session has ended.
void frmQuickStart6::cmdUpload_Click() {
    Lead("cmdUpload_Click", [] { The<frmUploadSelect>().Show(ShowMode::Modal); });
}
