#pragma once

#include "sync/ManagerMessage.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Runs the event loop until the condition holds; a test that waits for ten seconds in vain fails.
void WaitUntil(const std::function<bool()>& condition);

/// What stands for the HotSync Manager on its local socket. It has a thread of its own, since a control may
/// wait for its words without an event loop.
class SocketManager {
public:
    using Messages = std::vector<ManagerMessage>;

    explicit SocketManager(const std::string& folder);
    ~SocketManager();
    SocketManager(const SocketManager&) = delete;
    SocketManager& operator=(const SocketManager&) = delete;

    /// What is answered to HELLO; nothing for a manager that has hung.
    Messages Greeting{{"WELCOME", {"1", "/manager", "127.0.0.1", "14238"}}, {"USERS", {}}};

    /// What is said behind each message of this verb. Set before Listen.
    void Answer(const std::string& verb, Messages answers);

    void Listen();

    /// Closes its socket and all connections.
    void Stop();

    /// Says something to the connection that came last.
    void Say(const ManagerMessage& message) { SayBytes(PackMessage(message)); }
    void SayBytes(const std::string& bytes);

    /// All that came, in its order and without line ends; "bye" for the end of a connection.
    std::vector<std::string> Heard() const;

    /// Waits until so many messages have come that begin so.
    void WaitFor(const std::string& beginning, int times = 1) const;

private:
    class Worker;

    void InThread(const std::function<void()>& deed) const;

    QString folder_;
    QThread thread_;
    Worker* worker_;
    mutable std::mutex mutex_;
    std::vector<std::string> heard_;
    std::vector<std::pair<std::string, Messages>> answers_;
};
