#include "platform/SingleInstance.h"

#include "platform/Convert.h"
#include "platform/LocalName.h"

#include <QLocalServer>
#include <QLocalSocket>

#include <memory>

namespace {

std::unique_ptr<QLocalServer>& Server() {
    static std::unique_ptr<QLocalServer> server;
    return server;
}

} // namespace

bool SingleInstance::Take(const std::string& applicationDirectory) {
    const QString name = LocalName(QStringLiteral("ZUKTramble-"), PathToQt(applicationDirectory));
    if (LocalNameAnswers(name)) return false;
    auto server = ListenUnder(name);
    if (!server) return true; // a system without such names cannot tell two programs apart
    // Whoever asks wants to know that there is an answer, and no more.
    QObject::connect(server.get(), &QLocalServer::newConnection, server.get(),
                     [asked = server.get()] { delete asked->nextPendingConnection(); });
    Server() = std::move(server);
    return true;
}

void SingleInstance::Release() {
    Server().reset();
}
