#pragma once

#include "hotsync/HandheldLine.h"

#include <QTcpSocket>

/// A handheld's connection. Waiting runs the event loop, so that the windows live on.
class TcpStream final : public ByteStream {
public:
    /// The socket is connected, and outlives the stream.
    explicit TcpStream(QTcpSocket& socket);

    void Send(std::string_view bytes) override;
    std::string Receive(Clock::time_point until) override;

private:
    QTcpSocket& socket_;
};
