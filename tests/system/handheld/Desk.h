#pragma once

#include "palm/Dlp.h"
#include "palm/NetSync.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

/// The line went while the desk was at work.
class LineLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A desktop for one handheld: each call waits until it is done. Whatever is late by half a minute is lost.
class Desk {
public:
    Desk();

    QString Where() const; ///< HOST:PORT to press HotSync to
    /// Answers one lookup by UDP; its port.
    quint16 LookupPort();
    std::optional<NetLookup> AnswerLookup();

    /// Takes the handheld's connection and makes the handshake.
    void Accept();
    DlpResponse Ask(const DlpRequest& request);
    /// An answer without an error; LineLost otherwise.
    DlpResponse Well(const DlpRequest& request);
    void SendRaw(const QByteArray& bytes);
    void Close();

    /// Packets of this connection, both ways.
    int Packets() const { return packets_; }

private:
    NetPacket Receive();
    void Send(const NetPacket& packet);

    QTcpServer server_;
    QUdpSocket lookup_;
    std::unique_ptr<QTcpSocket> line_;
    PacketReader reader_;
    std::uint8_t transaction_ = 2; ///< of the handshake's last packet
    int packets_ = 0;
};
