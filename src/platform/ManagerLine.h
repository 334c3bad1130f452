#pragma once

#include "sync/ManagerMessage.h"

#include <QLocalSocket>
#include <QString>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A user as the HotSync Manager tells it.
struct ManagerUser {
    std::uint32_t Id = 0;
    std::string Name; ///< code page 1252
};

/// A connection to a HotSync Manager (docs/hotsync-socket.md). It keeps the users that the manager tells.
/// What is no message, and a manager of another version, end it.
class ManagerLine {
public:
    ManagerLine();
    ManagerLine(const ManagerLine&) = delete;
    ManagerLine& operator=(const ManagerLine&) = delete;
    ~ManagerLine();

    /// Connects to the manager of a folder and says HELLO; false when nobody listens there. A connection
    /// that stands is closed first.
    bool Open(const QString& folder);

    bool IsOpen() const { return socket_.state() == QLocalSocket::ConnectedState; }

    /// Waits until the manager has said WELCOME and told its users, a second at most; false when it has
    /// not. No event is handled meanwhile.
    bool AwaitUsers();

    /// None until the manager has told them, and none when it has gone.
    const std::vector<ManagerUser>& Users() const { return users_; }

    /// What is sent when nobody listens is lost.
    void Send(const ManagerMessage& message);

    /// Ends the connection. What was sent before still arrives.
    void Close();

    /// Ends the connection over something that is no message of a manager; `Lost` is called.
    void Refuse();

    /// Called with each message but WELCOME and USERS, in their order; also inside AwaitUsers, so that it
    /// only notes what it is told. It may refuse the connection, and not close or destroy it.
    std::function<void(const ManagerMessage&)> Received;

    /// Called when the manager has gone, or was refused. As Received, it only takes notice.
    std::function<void()> Lost;

private:
    void Read();
    void Take(const ManagerMessage& message);
    void TakeUsers(const ManagerMessage& message);
    void Forget();

    QLocalSocket socket_;
    ManagerMessageReader reader_;
    std::vector<ManagerUser> users_;
    bool usersTold_ = false;
    bool refused_ = false;
    bool closing_ = false;
};

/// A decimal number without sign, as the manager writes ids; false for anything else.
bool ReadId(const std::string& text, std::uint32_t& id);
