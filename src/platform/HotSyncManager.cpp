#include "platform/HotSyncManager.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "platform/Convert.h"
#include "platform/Installation.h"
#include "platform/QuietWait.h"
#include "platform/Registry.h"
#include "sync/InstallFolder.h"
#include "tools/FileVersion.h"

#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace {

std::string HotSyncPath() {
    return Registry::HotSyncManagerValue("HotSyncPath").value_or("");
}

/// The last word of a program's answer, when that is a version.
std::string VersionIn(const QByteArray& answer) {
    constexpr qsizetype longest = 30;
    const QByteArray line = answer.split('\n').constFirst().simplified();
    const QByteArray word = line.mid(line.lastIndexOf(' ') + 1);
    const bool isVersion = !word.isEmpty() && word.size() <= longest && word.front() >= '0' &&
                           word.front() <= '9' &&
                           std::all_of(word.begin(), word.end(), [](char c) { return c > ' ' && c <= '~'; });
    return isVersion ? word.toStdString() : std::string();
}

/// What a program says of its version; nothing when it does not end by itself. The screen goes on painting.
std::string AskForVersion(const std::string& program) {
    constexpr std::chrono::seconds patience{3};
    QProcess process;
    process.setProgram(PathToQt(program));
    process.setArguments({QStringLiteral("--version")});
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QIODevice::ReadOnly);
    QTimer longest;
    longest.setSingleShot(true);
    longest.start(patience);
    const auto runs = [&] { return process.state() != QProcess::NotRunning; };
    WaitWithoutInput([&] { return runs() && longest.isActive(); });
    if (runs()) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    const bool ended =
        process.error() == QProcess::UnknownError && process.exitStatus() == QProcess::NormalExit;
    return ended && process.exitCode() == 0 ? VersionIn(process.readAllStandardOutput()) : std::string();
}

} // namespace

std::string HotSyncManagerVersion() {
    const std::string program = HotSyncPath();
    if (program.empty() || !FileExists(program)) return {};
    const std::string version = FileVersion(program);
    return version.empty() ? AskForVersion(program) : version;
}

std::string PalmDesktopVersion() {
    const std::string folder = Registry::HotSyncManagerValue("Path").value_or("");
    return folder.empty() ? std::string() : FileVersion(AddBackslash(folder) + "Palm.exe");
}

std::string HotSyncManagerFolder() {
    const std::string program = HotSyncPath();
    return program.empty() ? std::string() : FolderOfManager(program);
}

bool IsHotSyncActive() {
    TraceEvent("basCommon:IsHotSyncActive");
    const std::string program = HotSyncPath();
    if (program.empty()) return false;
    if (!QProcess::startDetached(PathToQt(program), {QStringLiteral("--minimised")},
                                 PathToQt(std::string(FolderOf(program)))) &&
        Global.ManagerThatFailed != program) {
        Global.ManagerThatFailed = program;
        TraceEvent("basCommon:IsHotSyncActive cannot start " + program);
    }
    return true;
}

bool IsHotSyncActiveOrTell() {
    if (IsHotSyncActive()) return true;
    Tell(msg::PalmDesktopMissing, Icon::Information);
    return false;
}

void ClearHSInstallDir(std::string_view user) {
    ClearHSInstallDir(HotSyncManagerFolder(), user);
}
