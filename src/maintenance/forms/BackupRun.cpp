#include "maintenance/forms/BackupRun.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "maintenance/Backup.h"

namespace {

constexpr double OneSecond = 1;

} // namespace

bool AwaitOwnSecond(FormBehaviour& form) {
    if (HasBackupOfThisSecond()) form.PauseFor(OneSecond);
    return !form.IsOver();
}

void TellNoBackup(MessageId text) {
    Tell(Lines(Lines(msg::FileError, text), Text::Path(std::string_view(Global.BackupFault))), Icon::Stop);
}
