#pragma once

#include "sync/ManagerMessage.h"

#include <QLocalSocket>
#include <QString>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

/// A program at the manager's local socket that says what the test wants. It lives by the event loop.
class DeskProgram {
public:
    explicit DeskProgram(const QString& socket) {
        QObject::connect(&socket_, &QLocalSocket::readyRead, [this] { Read(); });
        socket_.connectToServer(socket);
        constexpr int patience = 30000;
        isThere_ = socket_.waitForConnected(patience);
    }
    ~DeskProgram() {
        socket_.disconnect();
        socket_.abort();
    }
    DeskProgram(const DeskProgram&) = delete;
    DeskProgram& operator=(const DeskProgram&) = delete;

    /// Called with each STATUS; nothing is answered without it.
    std::function<void(int status)> Handler;

    void Say(const ManagerMessage& message) { SayBytes(PackMessage(message)); }
    void SayBytes(const std::string& bytes) {
        socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
        socket_.flush();
    }
    void Greet() { Say({"HELLO", {"1"}}); }
    void Enable() {
        Greet();
        Say({"ENABLE", {"ZUK2"}});
    }
    void Leave() { socket_.abort(); }

    bool IsThere() const { return isThere_; }
    bool IsGone() const { return socket_.state() == QLocalSocket::UnconnectedState; }

    std::vector<ManagerMessage> Heard(const std::string& verb) const {
        std::vector<ManagerMessage> some;
        std::copy_if(heard_.begin(), heard_.end(), std::back_inserter(some),
                     [&](const ManagerMessage& each) { return each.Verb == verb; });
        return some;
    }
    std::vector<int> Statuses() const {
        std::vector<int> statuses;
        for (const ManagerMessage& status : Heard("STATUS")) statuses.push_back(std::stoi(status.TextAt(0)));
        return statuses;
    }

private:
    void Read() {
        reader_.Feed(socket_.readAll().toStdString());
        for (ManagerMessage message; reader_.Next(message);) {
            heard_.push_back(message);
            if (message.Verb == "STATUS" && Handler) Handler(std::stoi(message.TextAt(0)));
        }
    }

    QLocalSocket socket_;
    ManagerMessageReader reader_;
    std::vector<ManagerMessage> heard_;
    bool isThere_ = false;
};
