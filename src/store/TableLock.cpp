#include "store/TableLock.h"

#include "core/Globals.h"
#include "core/Paths.h"

#include <exception>

bool TableIsLocked(std::string_view path) noexcept {
    try {
        const std::string resolved = ResolvePath(path);
        Global.TheDisk->Open(resolved, Access::ReadWrite);
        return Global.TheDisk->LockedByAnother(resolved);
    } catch (const std::exception&) {
        return true;
    }
}
