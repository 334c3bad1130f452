#include "handheld/line/HotSyncLine.h"

#include "core/CodePage.h"
#include "handheld/Refusal.h"

#include <QHostInfo>

#include <algorithm>
#include <ostream>
#include <utility>

namespace {

constexpr int LookupTries = 3;
constexpr int LookupWait = 1000;    // milliseconds, each
constexpr int ConnectPatience = 20; // seconds
constexpr int TickLength = 20;      // milliseconds
constexpr std::int64_t SlowBuffer = 4096;
constexpr double MostBudget = 0.25; // seconds that a slow line may catch up

std::string Named(const SyncActivity& activity) {
    return CodePageToUtf8(activity.Name);
}

} // namespace

HotSyncLine::HotSyncLine(Handheld& handheld, HotSyncJob job)
    : handheld_(handheld),
      job_(std::move(job)),
      server_(handheld) {
    patience_.setSingleShot(true);
    lookupTimer_.setInterval(LookupWait);
    ticks_.setInterval(TickLength);
    connect(&patience_, &QTimer::timeout, this, Guarded(&HotSyncLine::LineGone));
    connect(&lookupTimer_, &QTimer::timeout, this, Guarded(&HotSyncLine::AskForDesktop));
    connect(&lookup_, &QUdpSocket::readyRead, this, Guarded(&HotSyncLine::TakeLookupAnswer));
    connect(&socket_, &QTcpSocket::readyRead, this, Guarded(&HotSyncLine::Take));
    connect(&socket_, &QTcpSocket::bytesWritten, this, Guarded(&HotSyncLine::GoOnSending));
    connect(&socket_, &QTcpSocket::disconnected, this, Guarded(&HotSyncLine::LineGone));
    connect(&socket_, &QTcpSocket::errorOccurred, this, Guarded(&HotSyncLine::LineGone));
    connect(&ticks_, &QTimer::timeout, this, Guarded(&HotSyncLine::Tick));
    connect(&socket_, &QTcpSocket::connected, this, Guarded(&HotSyncLine::Greet));
}

/// Nobody hears any more that the socket closes.
HotSyncLine::~HotSyncLine() {
    socket_.disconnect(this);
}

/// What is thrown inside the event loop comes out behind it.
std::function<void()> HotSyncLine::Guarded(void (HotSyncLine::*deed)()) {
    return [this, deed] {
        if (stage_ == Stage::Over) return;
        try {
            (this->*deed)();
        } catch (...) {
            failure_ = std::current_exception();
            Finish();
        }
    };
}

void HotSyncLine::Wait(int seconds) {
    patience_.start(seconds * 1000);
}

void HotSyncLine::Start() {
    const QString host = QString::fromStdString(job_.Host);
    if (!job_.Lookup) return Connect(host);
    stage_ = Stage::Lookup;
    Wait(ConnectPatience);
    QHostInfo::lookupHost(host, this, [this](const QHostInfo& info) {
        const QList<QHostAddress> found = info.addresses();
        const auto v4 = std::find_if(found.begin(), found.end(), [](const QHostAddress& address) {
            return address.protocol() == QAbstractSocket::IPv4Protocol;
        });
        if (v4 != found.end()) address_ = *v4;
        Guarded (&HotSyncLine::BeginLookup)();
    });
}

void HotSyncLine::BeginLookup() {
    if (address_.isNull()) return End("there is no host " + job_.Host);
    lookup_.bind(QHostAddress(QHostAddress::AnyIPv4), 0);
    lookupTimer_.start();
    AskForDesktop();
}

void HotSyncLine::AskForDesktop() {
    if (lookups_ == LookupTries) return End("no desktop answers to the name " + *job_.Lookup);
    ++lookups_;
    const NetLookup question{false, 0, address_.toIPv4Address(), 0, Utf8ToCodePage(*job_.Lookup)};
    const std::string bytes = PackLookup(question);
    lookup_.writeDatagram(bytes.data(), static_cast<qint64>(bytes.size()), address_, job_.LookupPort);
}

void HotSyncLine::TakeLookupAnswer() {
    while (lookup_.hasPendingDatagrams()) {
        QByteArray datagram(static_cast<qsizetype>(lookup_.pendingDatagramSize()), '\0');
        const qint64 size = lookup_.readDatagram(datagram.data(), datagram.size());
        if (size < 0 || stage_ != Stage::Lookup) continue;
        const auto answer =
            ReadLookup(std::string_view(datagram.constData(), static_cast<std::size_t>(size)));
        if (!answer || !answer->IsAnswer || answer->Name != Utf8ToCodePage(*job_.Lookup)) continue;
        lookupTimer_.stop();
        Connect(answer->Address == 0 ? address_.toString() : QHostAddress(answer->Address).toString());
    }
}

void HotSyncLine::Connect(const QString& host) {
    stage_ = Stage::Connecting;
    Wait(std::min(ConnectPatience, job_.Patience));
    socket_.connectToHost(host, job_.Port);
}

void HotSyncLine::Greet() {
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    stage_ = Stage::Handshake;
    Wait(job_.Patience);
    if (job_.BytesPerSecond != 0) {
        socket_.setReadBufferSize(SlowBuffer);
        clock_.start();
        ticks_.start();
    }
    if (job_.CutAfter == 0U) return CutNow();
    Send(HandheldHello());
}

// ---- packets ----

void HotSyncLine::Take() {
    if (cutWhenSent_) return;
    std::int64_t most = socket_.bytesAvailable();
    if (job_.BytesPerSecond != 0) most = std::min(most, Allowed(receiveBudget_));
    if (most <= 0) return;
    const QByteArray bytes = socket_.read(most);
    if (job_.BytesPerSecond != 0) receiveBudget_ -= static_cast<double>(bytes.size());
    if (stage_ == Stage::Handshake || stage_ == Stage::Serving) Wait(job_.Patience);
    reader_.Feed(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    try {
        while (stage_ == Stage::Handshake || stage_ == Stage::Serving) {
            const std::optional<NetPacket> packet = reader_.Next();
            if (!packet) break;
            CountPacket();
            if (job_.CutAfter == packets_) return CutNow();
            TakePacket(*packet);
        }
    } catch (const PalmFailure& failure) {
        End(std::string("the desktop does not keep to the protocol: ") + failure.what());
    }
}

void HotSyncLine::TakePacket(const NetPacket& packet) {
    if (packet.Type == NetPacket::Tickle) return;
    if (stage_ == Stage::Serving) {
        Send({NetPacket::Data, packet.Transaction, server_.Answer(packet.Payload)});
        if (server_.Ended() && stage_ == Stage::Serving) stage_ = Stage::Closing;
        return Pump();
    }
    const std::optional<NetPacket> answer =
        HandheldAnswer(packet, socket_.localAddress().toIPv4Address(), socket_.localPort());
    if (!answer) return End("the desktop does not keep to the protocol: no packet of a handshake");
    if (IsLastOfHandshake(packet)) stage_ = Stage::Serving;
    Send(*answer);
}

void HotSyncLine::CountPacket() {
    ++packets_;
    if (job_.CancelAfter && packets_ >= *job_.CancelAfter) server_.Cancel();
}

void HotSyncLine::Send(const NetPacket& packet) {
    CountPacket();
    const std::string packed = PackPacket(packet);
    const QByteArray bytes(packed.data(), static_cast<qsizetype>(packed.size()));
    if (job_.Split) {
        // Inside the header, behind it, and inside what follows.
        constexpr qsizetype inHeader = 1, header = 6;
        const qsizetype half = header + (bytes.size() - header) / 2;
        for (const auto& [from, to] : {std::pair<qsizetype, qsizetype>{0, inHeader},
                                       {inHeader, header},
                                       {header, half},
                                       {half, bytes.size()}}) {
            if (to > from) pieces_.push_back(bytes.mid(from, to - from));
        }
    } else {
        pieces_.push_back(bytes);
    }
    cutWhenSent_ = job_.CutAfter == packets_;
    Pump();
}

/// Gives the socket what it may have: all, or a piece at a time, each when the one before has gone out, or
/// as much as a slow line takes.
void HotSyncLine::Pump() {
    const bool isSlow = job_.BytesPerSecond != 0;
    while (!pieces_.empty() && ((!job_.Split && !isSlow) || socket_.bytesToWrite() == 0)) {
        QByteArray piece = std::move(pieces_.front());
        pieces_.pop_front();
        if (isSlow) {
            const std::int64_t most = std::min<std::int64_t>(piece.size(), Allowed(sendBudget_));
            if (most < piece.size()) pieces_.push_front(piece.mid(static_cast<qsizetype>(most)));
            if (most <= 0) return;
            piece.truncate(static_cast<qsizetype>(most));
            sendBudget_ -= static_cast<double>(most);
        }
        socket_.write(piece);
    }
    if (!pieces_.empty() || socket_.bytesToWrite() != 0) return;
    if (cutWhenSent_) return CutNow();
    if (stage_ == Stage::Closing && socket_.state() == QAbstractSocket::ConnectedState)
        socket_.disconnectFromHost();
}

/// A desktop that is still being answered is not silent.
void HotSyncLine::GoOnSending() {
    if (stage_ == Stage::Handshake || stage_ == Stage::Serving) Wait(job_.Patience);
    Pump();
}

std::int64_t HotSyncLine::Allowed(double& budget) const {
    return static_cast<std::int64_t>(budget);
}

void HotSyncLine::Tick() {
    const auto rate = static_cast<double>(job_.BytesPerSecond);
    const double more = rate * static_cast<double>(clock_.restart()) / 1000;
    const double most = std::max(1.0, rate * MostBudget);
    sendBudget_ = std::min(sendBudget_ + more, most);
    receiveBudget_ = std::min(receiveBudget_ + more, most);
    Pump();
    if (stage_ != Stage::Over) Take();
}

// ---- the end ----

void HotSyncLine::Break() {
    End("it was broken off on the handheld");
}

void HotSyncLine::CutNow() {
    cut_ = true;
    End("the line was cut after " + std::to_string(packets_) + " packets");
}

/// The line has closed or failed, or the desktop was silent for too long.
void HotSyncLine::LineGone() {
    if (stage_ == Stage::Closing) return Finish();
    if (stage_ == Stage::Lookup) return End("the lookup of " + job_.Host + " took too long");
    const bool isSilent = !patience_.isActive();
    if (stage_ == Stage::Connecting) {
        return End("no connection to " + job_.Host + ": " +
                   (isSilent ? std::string("it took too long") : socket_.errorString().toStdString()));
    }
    // What came before the line closed is answered to nobody, but is done.
    Take();
    if (stage_ == Stage::Closing || stage_ == Stage::Over) return Finish();
    End(isSilent ? "the desktop was silent for " + std::to_string(job_.Patience) + " seconds"
                 : "the line was lost");
}

void HotSyncLine::End(const std::string& words) {
    if (stage_ == Stage::Over) return;
    end_ = words;
    if (!server_.Ended()) server_.EndWithout(Utf8ToCodePage(words));
    Finish();
}

void HotSyncLine::Finish() {
    if (stage_ == Stage::Over) return;
    stage_ = Stage::Over;
    patience_.stop();
    lookupTimer_.stop();
    ticks_.stop();
    socket_.abort();
    if (Ended) Ended();
}

Outcome HotSyncLine::Tell(std::ostream& out) const {
    if (failure_) std::rethrow_exception(failure_);
    for (const SyncActivity& one : server_.Activities()) {
        const std::string name = Named(one);
        if (one.Read > 0 || (one.IsOpened && one.Written == 0 && !one.IsDeleted)) {
            out << name << ": read, " << one.Read << " records\n";
        }
        if (one.Written > 0 || one.IsMade) out << name << ": written, " << one.Written << " records\n";
        if (one.IsDeleted) out << name << ": deleted\n";
    }
    if (server_.IsRestartAsked()) out << "The handheld has restarted.\n";
    if (cut_) {
        out << "HotSync: " << end_ << '\n';
        return Outcome::Cut;
    }
    if (!end_.empty()) throw Refusal("HotSync: " + end_);
    if (server_.Ended() != EndCode::Normal) {
        throw Refusal("HotSync: " + CodePageToUtf8(handheld_.Settings.LastEnd));
    }
    out << "HotSync: done\n";
    return Outcome::Done;
}
