#include "platform/DesktopLink.h"

#include "core/Globals.h"
#include "platform/QuietWait.h"
#include "tools/Mail.h"

#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

#include <memory>

namespace {

constexpr int Patience = 3000; // milliseconds

bool RunOpener(const QString& program, const QString& link) {
    auto opener = std::make_unique<QProcess>();
    opener->setStandardInputFile(QProcess::nullDevice());
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    opener->start(program, {link});
    QTimer waiting;
    waiting.setSingleShot(true);
    waiting.start(Global.InstantPauses ? 0 : Patience);
    WaitWithoutInput([&] { return opener->state() != QProcess::NotRunning && waiting.isActive(); });
    if (opener->state() == QProcess::NotRunning)
        return opener->error() != QProcess::FailedToStart && opener->exitStatus() == QProcess::NormalExit &&
               opener->exitCode() == 0;
    // It ends when it likes; an object that ended before it would take it along.
    QProcess* running = opener.release();
    QObject::connect(running, &QProcess::finished, running, &QObject::deleteLater);
    return true;
}

} // namespace

bool OpenDesktopLink(std::string_view link) {
    const std::string uri = ToUri(link);
    if (uri.size() > LongestLink) return false;
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (!opener.isEmpty()) return RunOpener(opener, QString::fromStdString(uri));
    return QDesktopServices::openUrl(QUrl::fromEncoded(QByteArray::fromStdString(uri)));
}
