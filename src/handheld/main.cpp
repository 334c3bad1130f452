#include "core/ProgramVersion.h"
#include "handheld/Commands.h"
#include "handheld/line/FolderLock.h"
#include "handheld/line/HotSyncLine.h"

#include <QCoreApplication>

#include <iostream>

namespace {

Outcome PressHotSync(Handheld& handheld, const HotSyncJob& job, std::ostream& out) {
    HotSyncLine line(handheld, job);
    line.Ended = [] { QCoreApplication::exit(); };
    QMetaObject::invokeMethod(
        &line, [&line] { line.Start(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
    return line.Tell(out);
}

std::vector<std::string> Arguments([[maybe_unused]] int argc, [[maybe_unused]] char** argv) {
#ifdef _WIN32
    std::vector<std::string> arguments;
    for (const QString& argument : QCoreApplication::arguments().mid(1))
        arguments.push_back(argument.toStdString());
    return arguments;
#else
    return {argv + 1, argv + argc};
#endif
}

} // namespace

int main(int argc, char** argv) {
    if (TellsVersion(argc, argv, "handheld", TRAMBLE_VERSION)) return 0;
    const QCoreApplication application(argc, argv);
    const Outcome outcome =
        RunCommand(Arguments(argc, argv), {std::cout, std::cerr, LockFolder, PressHotSync});
    std::cout.flush();
    if (!std::cout) return static_cast<int>(Outcome::Failed);
    return static_cast<int>(outcome);
}
