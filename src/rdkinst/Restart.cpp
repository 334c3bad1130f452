#include "rdkinst/Restart.h"

#include "platform/Form.h"
#include "platform/LocalName.h"
#include "platform/ManagerLine.h"
#include "platform/ManagerSocket.h"

#include <QTimer>

namespace {

constexpr int DecideWithin = 60000; // milliseconds, as the two below
constexpr int GoWithin = 10000;
constexpr int LookEvery = 50;

/// The name must be free before another manager starts: that one would think that the first still runs.
bool HasLeft(const QString& name) {
    bool free = !LocalNameAnswers(name);
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(GoWithin);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] { free = !LocalNameAnswers(name); });
    look.start(LookEvery);
    WaitInLoop([&] { return !free && limit.isActive(); });
    return free;
}

} // namespace

bool EndManager(const QString& folder) {
    ManagerLine line;
    bool lost = false;
    line.Lost = [&] { lost = true; };
    if (!line.Open(folder)) return true;
    line.Send({"EXIT", {"ASK"}});
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(DecideWithin);
    WaitInLoop([&] { return !lost && limit.isActive(); });
    return lost && HasLeft(ManagerSocketName(folder));
}
