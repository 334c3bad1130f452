#include "platform/ManagerWindow.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncManager.h"
#include "platform/ManagerLine.h"
#include "platform/TitledWindow.h"

#include <QDeadlineTimer>

#include <chrono>

bool AwaitManager(FormBehaviour& form, ManagerLine& line) {
    constexpr std::chrono::seconds longestStart{10};
    const QDeadlineTimer longest(Global.InstantPauses ? std::chrono::seconds(0) : longestStart);
    bool answers = false;
    LookUntil(form, [&] {
        answers = line.Open(PathToQt(HotSyncManagerFolder()));
        return answers || longest.hasExpired();
    });
    return answers && !form.IsOver();
}

void ShowHotSyncManager(FormBehaviour& form) {
    if (!IsHotSyncActiveOrTell()) return;
    ManagerLine line;
    if (AwaitManager(form, line)) return line.Send({"SHOW", {}});
    if (!form.IsOver()) Tell(msg::ManagerNotShown, Icon::Warning);
}
