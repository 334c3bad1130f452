#include "platform/ManagerLine.h"

#include "core/Failure.h"
#include "platform/Convert.h"
#include "platform/ManagerSocket.h"

#include <QDeadlineTimer>

#include <charconv>

namespace {

constexpr const char* Version = "1";
constexpr int ConnectWithin = 500; // milliseconds, as the two below
constexpr int UsersWithin = 1000;
constexpr int WriteWithin = 500;

} // namespace

bool ReadId(const std::string& text, std::uint32_t& id) {
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, id);
    return read.ec == std::errc() && read.ptr == end;
}

ManagerLine::ManagerLine() {
    QObject::connect(&socket_, &QLocalSocket::readyRead, &socket_, [this] { Read(); });
    QObject::connect(&socket_, &QLocalSocket::disconnected, &socket_, [this] {
        Read();
        Forget();
        if (!closing_ && Lost) Lost();
    });
}

ManagerLine::~ManagerLine() {
    Received = nullptr;
    Close();
}

bool ManagerLine::Open(const QString& folder) {
    Close();
    reader_ = ManagerMessageReader();
    refused_ = false;
    socket_.connectToServer(ManagerSocketName(folder));
    if (!socket_.waitForConnected(ConnectWithin)) {
        closing_ = true;
        socket_.abort();
        closing_ = false;
        return false;
    }
    Send({"HELLO", {Version}});
    return IsOpen();
}

bool ManagerLine::AwaitUsers() {
    const QDeadlineTimer until(UsersWithin);
    while (IsOpen() && !usersTold_ && !until.hasExpired())
        socket_.waitForReadyRead(static_cast<int>(until.remainingTime()));
    return usersTold_;
}

void ManagerLine::Send(const ManagerMessage& message) {
    if (!IsOpen()) return;
    const std::string line = PackMessage(message);
    socket_.write(line.data(), static_cast<qint64>(line.size()));
    socket_.flush();
}

void ManagerLine::Close() {
    closing_ = true;
    if (IsOpen() && socket_.bytesToWrite() > 0) socket_.waitForBytesWritten(WriteWithin);
    socket_.abort();
    closing_ = false;
    Forget();
}

void ManagerLine::Refuse() {
    refused_ = true;
    socket_.abort();
}

void ManagerLine::Read() {
    if (refused_ || socket_.bytesAvailable() == 0) return;
    const QByteArray bytes = socket_.readAll();
    try {
        reader_.Feed({bytes.data(), static_cast<std::size_t>(bytes.size())});
        ManagerMessage message;
        while (!refused_ && reader_.Next(message)) Take(message);
    } catch (const RunTimeFailure&) {
        Refuse();
    }
}

void ManagerLine::Take(const ManagerMessage& message) {
    if (message.Verb == "WELCOME") {
        if (message.TextAt(0) != Version) Refuse();
    } else if (message.Verb == "USERS") {
        TakeUsers(message);
    } else if (Received) {
        Received(message);
    }
}

void ManagerLine::TakeUsers(const ManagerMessage& message) {
    std::vector<ManagerUser> users;
    for (std::size_t at = 0; at < message.Texts.size(); at += 2) {
        ManagerUser user;
        if (at + 1 == message.Texts.size() || !ReadId(message.Texts[at], user.Id)) return Refuse();
        user.Name = FromQt(QString::fromStdString(message.Texts[at + 1]));
        users.push_back(std::move(user));
    }
    users_ = std::move(users);
    usersTold_ = true;
}

void ManagerLine::Forget() {
    users_.clear();
    usersTold_ = false;
}
