#include "platform/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

#include <memory>

namespace {

constexpr int AnswerWithin = 500; // milliseconds

std::unique_ptr<QLocalServer>& Server() {
    static std::unique_ptr<QLocalServer> server;
    return server;
}

QString NameFor(const std::string& directory) {
    const QString folder = QFileInfo(QString::fromStdString(directory)).canonicalFilePath();
    const QByteArray hash =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QStringLiteral("ZUKTramble-") + QString::fromLatin1(hash);
}

} // namespace

bool SingleInstance::Take(const std::string& applicationDirectory) {
    const QString name = NameFor(applicationDirectory);
    QLocalSocket other;
    other.connectToServer(name);
    if (other.waitForConnected(AnswerWithin)) return false;
    // Nobody answers: what stands under the name is a dead one's.
    QLocalServer::removeServer(name);
    auto server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::UserAccessOption);
    // Whoever asks wants to know that there is an answer, and no more.
    QObject::connect(server.get(), &QLocalServer::newConnection, server.get(),
                     [asked = server.get()] { delete asked->nextPendingConnection(); });
    server->listen(name);
    Server() = std::move(server);
    return true;
}

void SingleInstance::Release() {
    Server().reset();
}
