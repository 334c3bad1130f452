#include "system/handheld/Desk.h"

namespace {

constexpr int Late = 30000; // milliseconds

} // namespace

Desk::Desk() {
    if (!server_.listen(QHostAddress::LocalHost, 0)) throw LineLost("no port");
}

QString Desk::Where() const {
    return QStringLiteral("127.0.0.1:%1").arg(server_.serverPort());
}

quint16 Desk::LookupPort() {
    if (!lookup_.bind(QHostAddress::LocalHost, 0)) throw LineLost("no lookup port");
    return lookup_.localPort();
}

std::optional<NetLookup> Desk::AnswerLookup() {
    if (!lookup_.hasPendingDatagrams() && !lookup_.waitForReadyRead(Late)) throw LineLost("no lookup came");
    QByteArray datagram(static_cast<qsizetype>(lookup_.pendingDatagramSize()), '\0');
    QHostAddress from;
    quint16 port = 0;
    lookup_.readDatagram(datagram.data(), datagram.size(), &from, &port);
    std::optional<NetLookup> asked = ReadLookup(datagram.toStdString());
    if (!asked) return asked;
    NetLookup answer = *asked;
    answer.IsAnswer = true;
    lookup_.writeDatagram(QByteArray::fromStdString(PackLookup(answer)), from, port);
    return asked;
}

void Desk::Accept() {
    if (!server_.hasPendingConnections() && !server_.waitForNewConnection(Late))
        throw LineLost("nobody came");
    line_.reset(server_.nextPendingConnection());
    line_->setParent(nullptr);
    reader_ = PacketReader();
    transaction_ = 2;
    packets_ = 0;
    DesktopHandshake handshake(0x7F000001);
    while (!handshake.IsDone()) {
        if (const std::optional<NetPacket> next = handshake.Take(Receive())) Send(*next);
    }
}

NetPacket Desk::Receive() {
    for (;;) {
        if (std::optional<NetPacket> packet = reader_.Next()) {
            ++packets_;
            return *packet;
        }
        if (line_->bytesAvailable() == 0 && !line_->waitForReadyRead(Late))
            throw LineLost("the line was lost");
        reader_.Feed(line_->readAll().toStdString());
    }
}

void Desk::Send(const NetPacket& packet) {
    ++packets_;
    SendRaw(QByteArray::fromStdString(PackPacket(packet)));
}

void Desk::SendRaw(const QByteArray& bytes) {
    line_->write(bytes);
    while (line_->bytesToWrite() > 0) {
        if (!line_->waitForBytesWritten(Late)) throw LineLost("the line was lost");
    }
}

DlpResponse Desk::Ask(const DlpRequest& request) {
    transaction_ = NextTransaction(transaction_);
    Send({NetPacket::Data, transaction_, PackRequest(request)});
    const NetPacket answer = Receive();
    if (answer.Transaction != transaction_) throw LineLost("an answer to another request");
    return ReadResponse(answer.Payload);
}

DlpResponse Desk::Well(const DlpRequest& request) {
    DlpResponse response = Ask(request);
    if (response.Error != DlpError::None) throw LineLost("answered " + WordsOf(response.Error));
    return response;
}

void Desk::Close() {
    line_.reset();
}
