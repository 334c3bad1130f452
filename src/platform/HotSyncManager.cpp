#include "platform/HotSyncManager.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "platform/Convert.h"
#include "platform/Registry.h"
#include "sync/InstallFolder.h"

#include <QProcess>

namespace {

std::string HotSyncPath() {
    return Registry::HotSyncManagerValue("HotSyncPath").value_or("");
}

} // namespace

std::string HotSyncManagerFolder() {
    return std::string(FolderOf(HotSyncPath()));
}

bool IsHotSyncActive() {
    TraceEvent("basCommon:IsHotSyncActive");
    const std::string program = HotSyncPath();
    if (program.empty()) return false;
    if (!QProcess::startDetached(PathToQt(program), {QStringLiteral("--minimised")},
                                 PathToQt(HotSyncManagerFolder())) &&
        Global.ManagerThatFailed != program) {
        Global.ManagerThatFailed = program;
        TraceEvent("basCommon:IsHotSyncActive cannot start " + program);
    }
    return true;
}

bool IsHotSyncActiveOrTell() {
    if (IsHotSyncActive()) return true;
    Tell(msg::PalmDesktopMissing, Icon::Information);
    return false;
}

void ClearHSInstallDir(std::string_view user) {
    ClearHSInstallDir(HotSyncManagerFolder(), user);
}
