#pragma once

#include "handheld/Commands.h"
#include "handheld/DlpServer.h"
#include "palm/NetSync.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <QUdpSocket>

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

/// One press of HotSync over the network: looks the desktop up when asked to, connects, makes the handshake
/// and answers until the session has ended, the line has gone, or the desktop is silent for too long.
/// Lives in an event loop. Destroyed before its end it drops the line.
class HotSyncLine : public QObject {
public:
    /// `handheld` outlives the line.
    HotSyncLine(Handheld& handheld, HotSyncJob job);
    ~HotSyncLine() override;

    /// Begins; the event loop does the rest.
    void Start();
    /// The user breaks it off; nothing when it is over.
    void Break();
    bool IsOver() const { return stage_ == Stage::Over; }
    /// Called once, at its end.
    std::function<void()> Ended;

    /// Tells on `out` what the session did and how it ended. Failures of the disk, and Refusal when no
    /// session came about.
    Outcome Tell(std::ostream& out) const;

private:
    enum class Stage { Idle, Lookup, Connecting, Handshake, Serving, Closing, Over };

    void BeginLookup();
    void AskForDesktop();
    void TakeLookupAnswer();
    void Connect(const QString& host);
    void Greet();
    void Take();
    void TakePacket(const NetPacket& packet);
    void Send(const NetPacket& packet);
    void Pump();
    void GoOnSending();
    void Tick();
    void LineGone();
    void CountPacket();
    void CutNow();
    void End(const std::string& words);
    void Finish();
    void Wait(int seconds);
    std::function<void()> Guarded(void (HotSyncLine::*deed)());
    std::int64_t Allowed(double& budget) const;

    Handheld& handheld_;
    HotSyncJob job_;
    DlpServer server_;
    PacketReader reader_;
    QTcpSocket socket_;
    QUdpSocket lookup_;
    QTimer patience_, lookupTimer_, ticks_;
    QElapsedTimer clock_;
    QHostAddress address_; ///< where the lookup goes
    int lookups_ = 0;
    Stage stage_ = Stage::Idle;
    std::uint64_t packets_ = 0;
    bool cut_ = false; ///< the line was cut as it was asked for
    bool cutWhenSent_ = false;
    std::deque<QByteArray> pieces_;             ///< not yet given to the socket
    double sendBudget_ = 0, receiveBudget_ = 0; ///< bytes that a slow line lets through by now
    std::string end_;                           ///< words, when the session did not end as it should
    std::exception_ptr failure_;
};
