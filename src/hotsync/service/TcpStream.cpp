#include "hotsync/service/TcpStream.h"

#include "core/Globals.h"
#include "platform/Form.h"

#include <QTimer>

namespace {

/// More than a whole packet waits in no buffer: what a handheld sends unasked stays on its side.
constexpr qint64 Buffered = qint64{256} * 1024;
/// A handheld answers what it has read: so much cannot be on its way to one.
constexpr qint64 MostUnread = Buffered;

} // namespace

TcpStream::TcpStream(QTcpSocket& socket) : socket_(socket) {
    socket_.setReadBufferSize(Buffered);
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket_.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
}

void TcpStream::Send(std::string_view bytes) {
    const auto size = static_cast<qint64>(bytes.size());
    if (socket_.state() != QAbstractSocket::ConnectedState || socket_.write(bytes.data(), size) != size) {
        throw LineFailure(LineFailure::Why::Lost, "the handheld went away");
    }
    socket_.flush();
    if (socket_.bytesToWrite() > MostUnread)
        throw LineFailure(LineFailure::Why::Nonsense, "the handheld answers what it has not read");
}

std::string TcpStream::Receive(Clock::time_point until) {
    const auto left = [until] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
    };
    if (socket_.bytesAvailable() == 0) {
        QTimer limit;
        limit.setSingleShot(true);
        limit.setTimerType(Qt::CoarseTimer);
        limit.start(std::max(left(), std::chrono::milliseconds(0)) + std::chrono::milliseconds(1));
        WaitInLoop([&] {
            return socket_.bytesAvailable() == 0 && limit.isActive() &&
                   socket_.state() == QAbstractSocket::ConnectedState;
        });
    }
    const QByteArray bytes = socket_.readAll();
    if (!bytes.isEmpty()) return bytes.toStdString();
    if (Global.Ending) throw LineFailure(LineFailure::Why::Ending, "the manager comes to its end");
    if (socket_.state() != QAbstractSocket::ConnectedState) {
        throw LineFailure(LineFailure::Why::Lost, "the handheld went away");
    }
    throw LineFailure(LineFailure::Why::Silent, "the handheld did not answer in time");
}
