#include "installation/forms/frmQuickStart5.h"

#include "core/Messages.h"
#include "quality/forms/QCRun.h"
#include "sync/forms/frmTableSelectDL.h"

frmQuickStart5::frmQuickStart5() : QuickStartPage(Download, msg::TitleDownloadData) {
    AddStep("cmdDownload", msg::cmdQuickDownload, "tool-download", msg::QuickDownloadText,
            "DOWNLOADING_TABLES_TO_HANDHELD_UNITS.htm");
    AddText(msg::QuickDownloadNote);
    AddStep("cmdQC", msg::cmdQuickQC, "tool-check", msg::QuickDownloadCheckText, "Quality_Check_.htm");
}

/// The page waits: the screen is modal, and stands until its session has ended.
void frmQuickStart5::cmdDownload_Click() {
    Lead("cmdDownload_Click", [] { The<frmTableSelectDL>().Show(ShowMode::Modal); });
}

void frmQuickStart5::cmdQC_Click() {
    Trace("cmdQC_Click");
    RunSingleCheck(Check::Download);
}
