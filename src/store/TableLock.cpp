#include "store/TableLock.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"

bool TableIsLocked(std::string_view path) {
    try {
        const std::string resolved = ResolvePath(path);
        Global.TheDisk->Open(resolved, Access::ReadWrite);
        return Global.TheDisk->LockedByAnother(resolved);
    } catch (const RunTimeFailure&) {
        return true;
    }
}
