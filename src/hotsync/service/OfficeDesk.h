#pragma once

#include "hotsync/Session.h"
#include "sync/ManagerMessage.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The manager's local socket: the programs that take part in sessions, and what they ask for. The
/// messages are those of docs/hotsync-socket.md.
class OfficeDesk final : public QObject, public SessionDesk {
public:
    /// What the rest of the manager does for a program.
    struct Services {
        std::function<ManagerMessage()> Welcome;             ///< where the manager is, and listens
        std::function<void(const std::string& caption)> Arm; ///< a program waits for the next handheld
        std::function<void()> Disarm;                        ///< and does no longer
        std::function<void()> Show; ///< brings the manager's window before the operator
        std::function<void(bool ask)> Exit;
        std::function<Picking(const std::vector<HotSyncUser>&, std::chrono::milliseconds, std::uint32_t&)>
            Pick;
        std::function<void()> StopPicking;
    };

    /// The users and the log outlive it.
    OfficeDesk(HotSyncUsers& users, SessionLog& log, Services services);
    ~OfficeDesk() override;

    /// Listens under this name, which no other process holds. False with a reason when that cannot be.
    bool Listen(const QString& name, QString& why);

    bool TakesPart(std::string_view creator) override;
    void Raise(std::int32_t status, const HotSyncUser& user, std::string_view creator,
               const EndedTransfer* ended) override;
    bool IsThere() override;
    bool IsBusy(std::chrono::milliseconds wait) override;
    std::optional<QueuedTransfer> NextTransfer() override;
    void DropTransfers() override;
    Picking PickUser(const std::vector<HotSyncUser>& users, std::chrono::milliseconds wait,
                     std::uint32_t& picked) override;

    /// A session of a known user was held: whoever waited for one hears of it, once its program has
    /// handled the end.
    void SessionHeld();

    /// The operator does not want to wait for a handheld any more.
    void CancelFlush();

    bool IsArmed() const { return armed_ != nullptr; }

    /// The users as they are by now, to every program.
    void SendUsers();
    /// The last words to everybody.
    void SayExiting();

private:
    struct Program {
        QLocalSocket* Socket = nullptr;
        ManagerMessageReader Reader;
        bool Greeted = false;
        std::string Creator;       ///< whose sessions it takes part in; empty: none
        std::uint64_t Enabled = 0; ///< the larger, the later
        bool Busy = false;         ///< a status has been sent and not been handled
        std::int32_t Status = 0;   ///< that status
        std::deque<ManagerMessage> Pending;
        std::deque<QueuedTransfer> Commands;
    };

    ManagerMessage UsersMessage() const;
    void Accept();
    void Read(Program& program);
    void Take(Program& program, const ManagerMessage& message);
    void Queue(Program& program, const ManagerMessage& message, QueuedTransfer::Way way);
    void Flush(Program& program, const ManagerMessage& message);
    void Unflush(Program& program, const char* how);
    void Handled(Program& program);
    void Forget(QLocalSocket* socket);
    static void Send(Program& program, const ManagerMessage& message);
    void SendStatus(Program& program, const ManagerMessage& message);
    Program* Latest(std::string_view creator);
    void FinishFlush();

    HotSyncUsers& users_;
    SessionLog& log_;
    Services services_;
    QLocalServer server_;
    std::vector<std::unique_ptr<Program>> programs_;
    Program* current_ = nullptr; ///< whose session it is, or was last
    std::string creator_;        ///< of that session
    Program* armed_ = nullptr;   ///< who waits for a handheld
    bool held_ = false;          ///< the session that it waits for is over
    std::deque<QueuedTransfer> transfers_;
    std::uint64_t enabled_ = 0;
};
