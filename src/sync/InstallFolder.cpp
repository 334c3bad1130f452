#include "sync/InstallFolder.h"

#include "core/Failure.h"
#include "core/Paths.h"

std::string InstallFolder(std::string_view managerFolder, std::string_view user) {
    if (managerFolder.empty()) throw RunTimeFailure(76, "the HotSync Manager's folder");
    const std::string name = NameToPath(user);
    if (!IsNameForNewFile(name)) throw RunTimeFailure(52, name);
    return AddBackslash(AddBackslash(AddBackslash(managerFolder) + name) + "Install");
}

std::string InstallMark(std::string_view folder) {
    const std::size_t end = folder.find_last_not_of("/\\");
    return std::string(FolderOf(folder.substr(0, end == std::string_view::npos ? 0 : end + 1))) +
           "InstallBegun.txt";
}

void AddInstall(std::string_view managerFolder, std::string_view file, std::string_view user) {
    const std::string folder = InstallFolder(managerFolder, user);
    if (!FileExists(file)) throw RunTimeFailure(53, std::string(file));
    MakePath(folder);
    CopyOver(file, folder + std::string(FileNameOf(file)));
}

void ClearHSInstallDir(std::string_view managerFolder, std::string_view user) {
    const std::string folder = InstallFolder(managerFolder, user);
    for (const std::string& name : FilesWithExtension(folder, "")) RemoveQuietly(folder + name);
}
