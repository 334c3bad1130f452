#include "sync/Images.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"

std::vector<std::string> RenameImages(std::string_view folder) {
    std::vector<std::string> left;
    if (folder.empty()) return left;
    const std::string images = AddBackslash(folder);
    for (const std::string& name : FilesWithExtension(images, "")) {
        const std::string_view extension = ExtensionOf(name);
        if (SameText(extension, ".bmp") || extension == SafeFile::WorkExtension) continue;
        try {
            CopyOver(images + name, images + name + ".bmp");
            // Not the resolved path: of two names that differ in case only the one that was copied goes.
            Global.TheDisk->Remove(images + name);
        } catch (const RunTimeFailure&) {
            left.push_back(name);
        }
    }
    return left;
}
