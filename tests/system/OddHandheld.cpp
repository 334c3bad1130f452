#include "OddHandheld.h"

#include "platform/Convert.h"

#include <algorithm>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#endif

OddHandheld::OddHandheld(const QString& folder)
    : handheld_(PathFromQt(folder + QLatin1Char('/'))),
      server_(handheld_) {
    QObject::connect(&socket_, &QTcpSocket::connected, [this] {
        socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        Put({0, 0xFF, nullptr, PackPacket(HandheldHello())});
    });
    QObject::connect(&socket_, &QTcpSocket::readyRead, [this] { Read(); });
}

OddHandheld::~OddHandheld() {
    socket_.disconnect();
    socket_.abort();
    if (!server_.Ended()) server_.EndWithout("the line was cut");
}

void OddHandheld::Call(std::uint16_t port) {
    called_ = true;
    socket_.connectToHost(QStringLiteral("127.0.0.1"), port);
}

void OddHandheld::Send(const std::string& bytes) {
    socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
    socket_.flush();
}

void OddHandheld::HangUp(bool reset) {
#ifdef Q_OS_UNIX
    const linger atOnce{reset ? 1 : 0, 0};
    setsockopt(static_cast<int>(socket_.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
#endif
    if (reset) return socket_.abort();
    socket_.flush();
    socket_.disconnectFromHost();
}

void OddHandheld::Read() {
    reader_.Feed(socket_.readAll().toStdString());
    while (const auto packet = reader_.Next()) {
        if (packet->Type == NetPacket::Data && IsConnected()) Answer(*packet);
    }
}

void OddHandheld::Answer(const NetPacket& packet) {
    Moment moment{packets_, packet.Transaction, nullptr, {}};
    if (const auto answer = HandheldAnswer(packet, 0x7F000001, socket_.localPort())) {
        moment.Right = PackPacket(*answer);
        return Put(moment);
    }
    const DlpRequest request = ReadRequest(packet.Payload);
    moment.Request = &request;
    moment.Right = AnswerPacket(packet.Transaction, server_.Answer(packet.Payload));
    Put(moment);
}

void OddHandheld::Put(const Moment& moment) {
    std::string bytes = Twist ? Twist(moment) : moment.Right;
    ++packets_;
    lastSize_ = bytes.size();
    const bool isCut = Cut && Cut->Packet == moment.Number;
    if (isCut) bytes.resize(std::min(bytes.size(), Cut->Bytes));
    Send(bytes);
    if (isCut) HangUp(Cut->Reset);
}

std::string AnswerPacket(std::uint8_t transaction, const std::string& message) {
    return PackPacket({NetPacket::Data, transaction, message});
}

std::string AnswerPacket(std::uint8_t transaction, const DlpResponse& response) {
    return AnswerPacket(transaction, PackResponse(response));
}
