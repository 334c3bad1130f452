#include "platform/SFrmUt40.h"

#include "core/Globals.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncManager.h"
#include "platform/ManagerLine.h"

#include <QDeadlineTimer>
#include <QTimer>

#include <optional>
#include <utility>

namespace {

constexpr int ReachWithin = 10000; // milliseconds, as the other
constexpr int TryEvery = 100;

/// Waits for a manager that has perhaps just been started.
bool Reach(ManagerLine& line, const std::function<bool()>& goesOn) {
    const QString folder = PathToQt(HotSyncManagerFolder());
    if (folder.isEmpty() || !goesOn()) return false;
    if (line.Open(folder)) return true;
    const QDeadlineTimer until(ReachWithin);
    bool reached = false;
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, &again, [&] { reached = reached || line.Open(folder); });
    again.start(TryEvery);
    WaitInLoop([&] { return !reached && !until.hasExpired() && goesOn(); });
    return reached;
}

FlushEnd EndFor(const std::string& how) {
    if (how == "DONE") return FlushEnd::Done;
    return how == "CANCELLED" ? FlushEnd::Cancelled : FlushEnd::Refused;
}

} // namespace

FlushEnd SF_FlushCommandQueue(const Text& caption, const std::function<bool()>& goesOn) {
    TraceEvent("SFrmUt40:SF_FlushCommandQueue");
    const auto commands = std::exchange(Global.CommandQueue, {});
    std::optional<FlushEnd> end;
    ManagerLine line;
    if (!Reach(line, goesOn)) return Global.Ending || !goesOn() ? FlushEnd::GivenUp : FlushEnd::NoManager;
    line.Received = [&](const ManagerMessage& message) {
        if (message.Verb == "FLUSHED") end = EndFor(message.TextAt(0));
    };
    line.Lost = [&] {
        if (!end) end = FlushEnd::Lost;
    };
    for (const auto& [direction, path] : commands) line.Send({"COMMAND", {direction, path}});
    line.Send({"FLUSH", {caption.Utf8()}});
    if (!line.IsOpen()) return FlushEnd::Lost;
    WaitInLoop([&] { return !end && goesOn(); });
    if (end) return *end;
    line.Send({"UNFLUSH", {}});
    return FlushEnd::GivenUp;
}

void SF_AddToCommandQueue(Direction direction, std::string_view path) {
    Global.CommandQueue.emplace_back(direction == Direction::Upload ? "UPLOAD" : "DOWNLOAD", path);
}

std::string SF_GetUserName() {
    return Global.LastSessionUser;
}

std::uint32_t SF_GetUserID() {
    return Global.LastSessionUserID;
}
