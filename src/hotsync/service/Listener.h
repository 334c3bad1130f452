#pragma once

#include "hotsync/ManagerSettings.h"
#include "hotsync/SessionLog.h"

#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>

/// Where handhelds call: the port of Network HotSync, and the one on which they look this computer up.
/// Callers are served one after the other; so many wait, and any further one is turned away. A handheld
/// greets first: a caller that has not waits apart, holds nobody up, and goes when the time of a handshake is
/// over or when there are too many of its kind.
class Listener final : public QObject {
public:
    /// Holds one session; runs the event loop while it does. The socket is gone afterwards. `caller` is
    /// where the handheld calls from, for the log.
    using Serve = std::function<void(QTcpSocket& socket, const std::string& caller)>;

    /// The log outlives it.
    Listener(SessionLog& log, Serve serve);
    ~Listener() override;

    /// Listens as the settings say, in the place of where it listened before; callers that wait go on
    /// waiting. False with a reason when that cannot be; it listens nowhere then.
    bool Listen(const ManagerSettings& settings, QString& why);

    /// No further caller is taken, and those that wait are sent away.
    void Stop();

    std::uint16_t Port() const { return server_.serverPort(); } ///< 0: it does not listen
    bool IsServing() const { return serving_; }

private:
    struct Caller {
        std::unique_ptr<QTcpSocket> Socket;
        std::string Name; ///< where it calls from
    };

    void Accept();
    void AcceptAgain();
    void TakeSilent(Caller caller);
    void GiveUp(const QTcpSocket* silent);
    void HearSilent();
    void TakeIntoLine(Caller caller);
    void ServeNext();
    bool HasGone(const Caller& caller);
    void AnswerLookups();

    SessionLog& log_;
    Serve serve_;
    QTcpServer server_;
    QUdpSocket lookup_;
    std::deque<Caller> silent_;  ///< have not greeted yet
    std::deque<Caller> waiting_; ///< have
    std::size_t mayWait_ = 0;
    std::chrono::seconds patience_{};
    bool serving_ = false;
};
