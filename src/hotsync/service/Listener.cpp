#include "hotsync/service/Listener.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "palm/NetSync.h"

#include <QNetworkDatagram>
#include <QTimer>

namespace {

/// How long a handheld may take to hear the last words, in milliseconds.
constexpr int LastWords = 5000;
/// What one look at the lookup port takes up at most: a flood waits for the next one.
constexpr int LookupsAtOnce = 64;
constexpr qint64 LongestLookup = 512;

QHostAddress AddressOf(const ManagerSettings& settings) {
    return settings.Address == "*" ? QHostAddress(QHostAddress::Any)
                                   : QHostAddress(QString::fromStdString(settings.Address));
}

std::string CallerOf(const QTcpSocket& socket) {
    return (socket.peerAddress().toString() + QLatin1Char(' ') + QString::number(socket.peerPort()))
        .toStdString();
}

/// Lets what was sent last arrive, and the socket go when it has.
void LetGo(std::unique_ptr<QTcpSocket> socket) {
    QTcpSocket* const going = socket.release();
    QObject::connect(going, &QAbstractSocket::disconnected, going, &QObject::deleteLater);
    QTimer::singleShot(LastWords, going, [going] { going->abort(); });
    going->disconnectFromHost();
    if (going->state() == QAbstractSocket::UnconnectedState) going->deleteLater();
}

} // namespace

Listener::Listener(SessionLog& log, Serve serve) : log_(log), serve_(std::move(serve)) {
    connect(&server_, &QTcpServer::newConnection, this, &Listener::Accept);
    connect(&lookup_, &QUdpSocket::readyRead, this, &Listener::AnswerLookups);
}

Listener::~Listener() = default;

bool Listener::Listen(const ManagerSettings& settings, QString& why) {
    server_.close();
    lookup_.close();
    mayWait_ = static_cast<std::size_t>(settings.WaitingCallers);
    if (!server_.listen(AddressOf(settings), settings.Port)) {
        why = server_.errorString();
        return false;
    }
    // The lookup is a help and no condition.
    if (!settings.Lookup) return true;
    if (lookup_.bind(AddressOf(settings), settings.LookupPort)) {
        log_.Write("answers handhelds that look for this computer on port " +
                   std::to_string(lookup_.localPort()));
    } else {
        log_.Write("handhelds cannot look this computer up on port " + std::to_string(settings.LookupPort) +
                   ": " + Utf8ToCodePage(lookup_.errorString().toStdString()));
    }
    return true;
}

void Listener::Stop() {
    server_.close();
    lookup_.close();
    waiting_.clear();
}

void Listener::Accept() {
    while (QTcpSocket* const connected = server_.nextPendingConnection()) {
        std::unique_ptr<QTcpSocket> socket(connected);
        socket->setParent(nullptr);
        const std::string caller = CallerOf(*socket);
        std::erase_if(waiting_, [this](const auto& each) { return HasGone(*each); });
        if (waiting_.size() > mayWait_ || (serving_ && waiting_.size() == mayWait_)) {
            log_.Write(caller + ": turned away, " + std::to_string(waiting_.size()) +
                       " handhelds wait already");
            socket->abort();
            continue;
        }
        if (serving_) log_.Write(caller + ": waits for the end of the session");
        // Nothing is read of one that waits but what a greeting needs.
        constexpr qint64 greeting = 1024;
        socket->setReadBufferSize(greeting);
        waiting_.push_back(std::move(socket));
    }
    if (!serving_) QMetaObject::invokeMethod(this, &Listener::ServeNext, Qt::QueuedConnection);
}

bool Listener::HasGone(const QTcpSocket& waiting) {
    if (waiting.state() == QAbstractSocket::ConnectedState) return false;
    log_.Write(CallerOf(waiting) + ": went away while it waited");
    return true;
}

void Listener::ServeNext() {
    if (serving_) return;
    serving_ = true;
    while (!waiting_.empty() && !Global.Ending) {
        std::unique_ptr<QTcpSocket> socket = std::move(waiting_.front());
        waiting_.pop_front();
        if (HasGone(*socket)) continue;
        serve_(*socket, CallerOf(*socket));
        LetGo(std::move(socket));
    }
    serving_ = false;
}

void Listener::AnswerLookups() {
    for (int k = 0; k < LookupsAtOnce && lookup_.hasPendingDatagrams(); ++k) {
        const QNetworkDatagram datagram = lookup_.receiveDatagram(LongestLookup);
        auto lookup = ReadLookup(datagram.data().toStdString());
        if (!lookup || lookup->IsAnswer) continue;
        lookup->IsAnswer = true;
        lookup_.writeDatagram(datagram.makeReply(QByteArray::fromStdString(PackLookup(*lookup))));
    }
    if (lookup_.hasPendingDatagrams()) {
        QMetaObject::invokeMethod(this, &Listener::AnswerLookups, Qt::QueuedConnection);
    }
}
