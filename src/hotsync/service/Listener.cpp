#include "hotsync/service/Listener.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "palm/NetSync.h"

#include <QNetworkDatagram>
#include <QTimer>

#include <algorithm>

namespace {

/// How long a handheld may take to hear the last words, in milliseconds.
constexpr int LastWords = 5000;
/// What one look at the lookup port takes up at most: a flood waits for the next one.
constexpr int LookupsAtOnce = 64;
constexpr qint64 LongestLookup = 512;
/// Callers that have not greeted yet. A handheld is one for an instant only.
constexpr std::size_t MostSilent = 30;
/// Nothing is read of a caller that waits but what a greeting needs, in bytes.
constexpr qint64 Greeting = 1024;
/// When callers are taken again that the system could not give, in milliseconds.
constexpr int AcceptPause = 1000;

QHostAddress AddressOf(const ManagerSettings& settings) {
    return settings.Address == "*" ? QHostAddress(QHostAddress::Any)
                                   : QHostAddress(QString::fromStdString(settings.Address));
}

/// Also when the caller has gone, the log can say where it called from.
std::string NameOf(const QTcpSocket& socket) {
    return (socket.peerAddress().toString() + QLatin1Char(' ') + QString::number(socket.peerPort()))
        .toStdString();
}

/// Whether the first packet is there, or it is clear that none will come.
bool HasSpoken(QTcpSocket& socket) {
    PacketReader reader;
    reader.Feed(socket.peek(Greeting).toStdString());
    try {
        return reader.Next().has_value();
    } catch (const PalmFailure&) {
        return true;
    }
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
    connect(&server_, &QTcpServer::acceptError, this, [this] {
        log_.WriteOfStranger("a caller could not be taken: " +
                             Utf8ToCodePage(server_.errorString().toStdString()));
        QTimer::singleShot(AcceptPause, this, &Listener::AcceptAgain);
    });
    connect(&lookup_, &QUdpSocket::readyRead, this, &Listener::AnswerLookups);
}

Listener::~Listener() = default;

bool Listener::Listen(const ManagerSettings& settings, QString& why) {
    server_.close();
    lookup_.close();
    mayWait_ = static_cast<std::size_t>(settings.WaitingCallers);
    patience_ = std::chrono::seconds(settings.HandshakeSeconds);
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
    silent_.clear();
    waiting_.clear();
}

void Listener::Accept() {
    while (QTcpSocket* const connected = server_.nextPendingConnection()) {
        connected->setParent(nullptr);
        TakeSilent({std::unique_ptr<QTcpSocket>(connected), NameOf(*connected)});
    }
    HearSilent();
}

/// The server takes no caller after a failure, such as too many open files, until it is told to.
void Listener::AcceptAgain() {
    if (server_.isListening()) server_.resumeAccepting();
}

void Listener::TakeSilent(Caller caller) {
    if (silent_.size() == MostSilent) GiveUp(silent_.front().Socket.get());
    QTcpSocket* const socket = caller.Socket.get();
    socket->setReadBufferSize(Greeting);
    // Queued: a socket must not go inside its own signal, and its timer goes with it.
    connect(socket, &QTcpSocket::readyRead, this, &Listener::HearSilent, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, this, &Listener::HearSilent, Qt::QueuedConnection);
    auto* const limit = new QTimer(socket);
    limit->setSingleShot(true);
    connect(
        limit, &QTimer::timeout, this, [this, socket] { GiveUp(socket); }, Qt::QueuedConnection);
    limit->start(patience_);
    silent_.push_back(std::move(caller));
}

void Listener::GiveUp(const QTcpSocket* silent) {
    const auto found = std::find_if(silent_.begin(), silent_.end(),
                                    [silent](const Caller& each) { return each.Socket.get() == silent; });
    if (found == silent_.end()) return;
    log_.WriteOfStranger(found->Name + ": sent away, it did not greet");
    found->Socket->abort();
    silent_.erase(found);
}

/// Looks for callers that have greeted by now, or have gone.
void Listener::HearSilent() {
    std::deque<Caller> silent;
    silent.swap(silent_);
    for (Caller& caller : silent) {
        if (HasGone(caller)) continue;
        if (HasSpoken(*caller.Socket))
            TakeIntoLine(std::move(caller));
        else
            silent_.push_back(std::move(caller));
    }
    if (!serving_ && !waiting_.empty()) {
        QMetaObject::invokeMethod(this, &Listener::ServeNext, Qt::QueuedConnection);
    }
}

void Listener::TakeIntoLine(Caller caller) {
    caller.Socket->disconnect(this);
    std::erase_if(waiting_, [this](const Caller& each) { return HasGone(each); });
    if (waiting_.size() > mayWait_ || (serving_ && waiting_.size() == mayWait_)) {
        log_.WriteOfStranger(caller.Name + ": turned away, " + std::to_string(waiting_.size()) +
                             " handhelds wait already");
        return caller.Socket->abort();
    }
    if (serving_) log_.WriteOfStranger(caller.Name + ": waits for the end of the session");
    waiting_.push_back(std::move(caller));
}

bool Listener::HasGone(const Caller& caller) {
    if (caller.Socket->state() == QAbstractSocket::ConnectedState) return false;
    log_.WriteOfStranger(caller.Name + ": went away while it waited");
    return true;
}

void Listener::ServeNext() {
    if (serving_) return;
    serving_ = true;
    while (!waiting_.empty() && !Global.Ending) {
        Caller caller = std::move(waiting_.front());
        waiting_.pop_front();
        if (HasGone(caller)) continue;
        serve_(*caller.Socket, caller.Name);
        LetGo(std::move(caller.Socket));
    }
    serving_ = false;
}

void Listener::AnswerLookups() {
    int answered = 0;
    do {
        // Read even where nothing is left: a socket that has called and was not read calls never again.
        const QNetworkDatagram datagram = lookup_.receiveDatagram(LongestLookup);
        auto lookup = ReadLookup(datagram.data().toStdString());
        if (!lookup || lookup->IsAnswer) continue;
        lookup->IsAnswer = true;
        lookup_.writeDatagram(datagram.makeReply(QByteArray::fromStdString(PackLookup(*lookup))));
    } while (++answered < LookupsAtOnce && lookup_.hasPendingDatagrams());
    if (lookup_.hasPendingDatagrams()) {
        QMetaObject::invokeMethod(this, &Listener::AnswerLookups, Qt::QueuedConnection);
    }
}
