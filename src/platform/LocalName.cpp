#include "platform/LocalName.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

constexpr int AnswerWithin = 500; // milliseconds

} // namespace

QString LocalName(const QString& prefix, const QString& folder, const QString& behind) {
    const QFileInfo place(folder);
    QString path = place.canonicalFilePath();
    if (path.isEmpty()) path = QDir::cleanPath(place.absoluteFilePath());
    const QByteArray hash =
        QCryptographicHash::hash((path + behind).toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return prefix + QString::fromLatin1(hash);
}

bool LocalNameAnswers(const QString& name) {
    QLocalSocket other;
    other.connectToServer(name);
    return other.waitForConnected(AnswerWithin);
}

std::unique_ptr<QLocalServer> ListenUnder(const QString& name) {
    QLocalServer::removeServer(name);
    auto server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(name)) return nullptr;
    return server;
}
