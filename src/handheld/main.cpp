#include "handheld/Commands.h"
#include "handheld/Refusal.h"
#include "handheld/line/HotSyncLine.h"

#include <QCoreApplication>
#include <QFile>
#include <QLockFile>

#include <iostream>

namespace {

/// A lock file that goes with its process, also when that is killed.
std::shared_ptr<void> LockFolder(const std::string& folder) {
    auto lock =
        std::make_shared<QLockFile>(QFile::decodeName(folder.c_str()) + QStringLiteral("Handheld.lock"));
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) return lock;
    if (lock->error() == QLockFile::LockFailedError) {
        throw Refusal("another command is using the handheld in " + folder);
    }
    throw Refusal("the handheld in " + folder + " cannot be locked: Handheld.lock cannot be written");
}

Outcome PressHotSync(Handheld& handheld, const HotSyncJob& job, std::ostream& out) {
    HotSyncLine line(handheld, job);
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
    const QCoreApplication application(argc, argv);
    const Outcome outcome =
        RunCommand(Arguments(argc, argv), {std::cout, std::cerr, LockFolder, PressHotSync});
    std::cout.flush();
    if (!std::cout) return static_cast<int>(Outcome::Failed);
    return static_cast<int>(outcome);
}
