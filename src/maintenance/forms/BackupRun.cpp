#include "maintenance/forms/BackupRun.h"

#include "maintenance/Backup.h"

namespace {

constexpr double OneSecond = 1;

} // namespace

bool AwaitOwnSecond(FormBehaviour& form) {
    if (HasBackupOfThisSecond()) form.PauseFor(OneSecond);
    return !form.IsOver();
}
