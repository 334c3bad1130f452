#include "platform/Installation.h"

#include "core/Failure.h"
#include "core/Paths.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Registry.h"
#include "sync/Conduits.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

#ifdef _WIN32
constexpr const char* ManagerProgram = "hotsync.exe";
#else
constexpr const char* ManagerProgram = "hotsync";
#endif

/// A folder that is not there yet can still be made.
bool IsReadOnly(const std::string& folder) {
    const QFileInfo place(PathToQt(folder));
    return place.isDir() && !place.isWritable();
}

} // namespace

std::string UserDataFolder() {
    return AddBackslash(PathFromQt(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)));
}

std::string FolderOfManager(std::string_view program) {
    const std::string own(FolderOf(program));
    const bool isTheUsers = IsInstalledForEverybody(own) || IsReadOnly(own);
    return isTheUsers ? AddBackslash(UsersOffice(UserDataFolder()) + "HotSync") : own;
}

std::string OfficeOfProgram(std::string_view program) {
    const std::string folder = FolderOfManager(program);
    return std::string(FolderOf(std::string_view(folder).substr(0, folder.size() - 1)));
}

void RegisterOwnManager(std::string_view programFolder) {
    const auto registered = Registry::HotSyncManagerValue("HotSyncPath");
    if (registered && FileExists(*registered)) return;
    const std::string own = AddBackslash(programFolder);
    const std::string program =
        (IsInstalledForEverybody(own) ? own : AddBackslash(own + "HotSync")) + ManagerProgram;
    if (!FileExists(program)) return;
    if (!Registry::SetHotSyncManager(program)) throw RunTimeFailure(75, program);
    const std::string folder = FolderOfManager(program);
    MakePath(folder);
    RegisterConduit(folder, {"ZUK2", "SFrmCn40.dll", "Tramble"});
}
