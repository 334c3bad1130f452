#include "installation/forms/frmQuickStart8.h"

#include "core/Messages.h"
#include "exchange/Activity.h"
#include "sync/UnattendedSettings.h"
#include "tools/forms/frmOptions.h"
#include "views/forms/frmViewGrid.h"

namespace {

/// The options, at the activities or settings with an extension.
void OpenOptions(std::string_view extension) {
    auto& options = The<frmOptions>();
    options.TurnTo(extension);
    options.Show(ShowMode::Modal);
}

} // namespace

frmQuickStart8::frmQuickStart8() : QuickStartPage(Advanced, msg::TitleAdvancedTools) {
    AddStep("cmdQB", msg::cmdQuickQB, "quickbuttons", msg::QuickQBText, "QuickButtons.htm");
    AddStep("cmdUA", msg::cmdQuickUA, "tool-unattended", msg::QuickUAText, "Unattended_Hotsync_.htm");
    AddStep("cmdRestore", msg::cmdQuickRestore, "tool-restore", msg::QuickRestoreText,
            "Restoring_PC_Tables_from_Backup_.htm");
}

void frmQuickStart8::cmdQB_Click() {
    Lead("cmdQB_Click", [] { OpenOptions(ImportActivities); });
}

void frmQuickStart8::cmdUA_Click() {
    Lead("cmdUA_Click", [] { OpenOptions(UnattendedExtension); });
}

void frmQuickStart8::cmdRestore_Click() {
    Lead("cmdRestore_Click", [] { ShowTable(ViewRestore); });
}
