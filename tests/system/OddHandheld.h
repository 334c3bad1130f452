#pragma once

#include "handheld/DlpServer.h"
#include "handheld/Handheld.h"
#include "palm/Dlp.h"
#include "palm/NetSync.h"

#include <QString>
#include <QTcpSocket>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// A handheld inside the test, at the manager's port: it answers as a stand-in handheld does until it is told
/// to do otherwise. It lives by the event loop; see WireRig::Until and WireRig::Attend.
class OddHandheld {
public:
    /// `folder` holds a handheld, which nobody else uses.
    explicit OddHandheld(const QString& folder);
    ~OddHandheld();
    OddHandheld(const OddHandheld&) = delete;
    OddHandheld& operator=(const OddHandheld&) = delete;

    /// A packet that is about to go out.
    struct Moment {
        int Number = 0;                      ///< from 0, the greeting
        std::uint8_t Transaction = 0;        ///< of the packet that it answers
        const DlpRequest* Request = nullptr; ///< that it answers; none in the handshake
        std::string Right;                   ///< the bytes that a handheld sends

        bool Answers(DlpFunction function) const { return Request && Request->Function == function; }
    };

    /// What goes out in its place; nothing changes without one.
    std::function<std::string(const Moment& moment)> Twist;

    /// The line ends behind so many bytes of a packet.
    struct CutPlace {
        int Packet = 0;
        std::size_t Bytes = 0;
        bool Reset = false; ///< by a reset instead of a close
    };
    std::optional<CutPlace> Cut;

    void Call(std::uint16_t port);
    /// Bytes as they are, beside any answer.
    void Send(const std::string& bytes);
    void HangUp(bool reset = false);

    /// The line has been closed, by either side.
    bool IsOver() const { return called_ && socket_.state() == QAbstractSocket::UnconnectedState; }
    bool IsConnected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    /// Packets that have gone out, whole or not.
    int Packets() const { return packets_; }
    std::size_t LastSize() const { return lastSize_; }
    /// How the desktop ended the session; nothing when it did not.
    std::optional<EndCode> Ended() const { return server_.Ended(); }

private:
    void Read();
    void Answer(const NetPacket& packet);
    void Put(const Moment& moment);

    Handheld handheld_;
    DlpServer server_;
    QTcpSocket socket_;
    PacketReader reader_;
    int packets_ = 0;
    std::size_t lastSize_ = 0;
    bool called_ = false;
};

/// An answer as a packet.
std::string AnswerPacket(std::uint8_t transaction, const std::string& message);
std::string AnswerPacket(std::uint8_t transaction, const DlpResponse& response);
