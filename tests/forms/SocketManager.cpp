#include "forms/SocketManager.h"

#include "platform/Form.h"
#include "platform/LocalName.h"
#include "platform/ManagerSocket.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

#include <algorithm>

void WaitUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer until(10000);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [] {});
    look.start(5);
    bool met = false; // once: what was there a moment ago may have gone again
    WaitInLoop([&] {
        met = met || condition();
        return !met && !until.hasExpired();
    });
    EXPECT_TRUE(met || condition()) << "waited in vain"; // the loop also ends, unasked, with the program
}

/// Lives in the thread; its server and its sockets do too.
class SocketManager::Worker final : public QObject {
public:
    explicit Worker(SocketManager& manager) : manager_(manager) {}

    void Listen() {
        server_ = ListenUnder(ManagerSocketName(manager_.folder_));
        connect(server_.get(), &QLocalServer::newConnection, this, [this] { Take(); });
    }

    void Stop() {
        last_ = nullptr;
        server_.reset();
    }

    void Say(const std::string& bytes) {
        if (!last_) return;
        last_->write(bytes.data(), static_cast<qint64>(bytes.size()));
        last_->flush();
    }

private:
    void Take() {
        while (QLocalSocket* socket = server_->nextPendingConnection()) {
            last_ = socket;
            auto reader = std::make_shared<ManagerMessageReader>();
            connect(socket, &QLocalSocket::readyRead, this,
                    [this, socket, reader] { Read(*socket, *reader); });
            connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
                if (last_ == socket) last_ = nullptr;
                Note("bye");
                socket->deleteLater();
            });
            Read(*socket, *reader);
        }
    }

    void Read(QLocalSocket& socket, ManagerMessageReader& reader) {
        const QByteArray bytes = socket.readAll();
        reader.Feed({bytes.data(), static_cast<std::size_t>(bytes.size())});
        ManagerMessage message;
        while (reader.Next(message)) {
            std::string line = PackMessage(message);
            line.pop_back();
            Note(line);
            if (message.Verb == "HELLO") {
                for (const ManagerMessage& word : manager_.Greeting) Say(PackMessage(word));
            }
            for (const auto& [verb, answers] : manager_.answers_) {
                if (verb != message.Verb) continue;
                for (const ManagerMessage& answer : answers) Say(PackMessage(answer));
            }
        }
    }

    void Note(const std::string& line) {
        const std::lock_guard lock(manager_.mutex_);
        manager_.heard_.push_back(line);
    }

    SocketManager& manager_;
    std::unique_ptr<QLocalServer> server_;
    QLocalSocket* last_ = nullptr;
};

SocketManager::SocketManager(const std::string& folder)
    : folder_(QString::fromStdString(folder)),
      worker_(new Worker(*this)) {
    worker_->moveToThread(&thread_);
    thread_.start();
}

SocketManager::~SocketManager() {
    InThread([this] {
        worker_->Stop();
        delete worker_;
    });
    thread_.quit();
    thread_.wait();
}

void SocketManager::InThread(const std::function<void()>& deed) const {
    QMetaObject::invokeMethod(worker_, deed, Qt::BlockingQueuedConnection);
}

void SocketManager::Answer(const std::string& verb, Messages answers) {
    answers_.emplace_back(verb, std::move(answers));
}

void SocketManager::Listen() {
    InThread([this] { worker_->Listen(); });
}

void SocketManager::Stop() {
    InThread([this] { worker_->Stop(); });
}

void SocketManager::SayBytes(const std::string& bytes) {
    InThread([this, &bytes] { worker_->Say(bytes); });
}

std::vector<std::string> SocketManager::Heard() const {
    const std::lock_guard lock(mutex_);
    return heard_;
}

void SocketManager::WaitFor(const std::string& beginning, int times) const {
    WaitUntil([&] {
        const std::vector<std::string> heard = Heard();
        return std::count_if(heard.begin(), heard.end(),
                             [&](const std::string& line) { return line.starts_with(beginning); }) >= times;
    });
}
