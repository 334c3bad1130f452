#include "hotsync/service/OfficeDesk.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "palm/Converter.h"
#include "platform/Form.h"
#include "sync/SessionStatus.h"

#include <QDir>
#include <QTimer>

#include <algorithm>

namespace {

constexpr const char* Version = "1";
constexpr std::size_t CreatorSize = 4;
constexpr std::size_t MostCommands = 1000;

/// Why a path cannot be that of a table; empty when it can.
std::string WhyNoTable(const std::string& path) {
    // The system would take what stands before it for the whole path.
    if (path.find('\0') != std::string::npos) return "a NUL in a path";
    if (!QDir::isAbsolutePath(QString::fromStdString(path))) return "not a full path";
    const std::string extension = UpperCase(ExtensionOf(path));
    if (extension != ".DBF") return "not the name of a table";
    try {
        HandheldDatabaseName(path);
    } catch (const PalmFailure& failure) {
        return failure.what();
    }
    return {};
}

} // namespace

OfficeDesk::OfficeDesk(HotSyncUsers& users, SessionLog& log, Services services)
    : users_(users),
      log_(log),
      services_(std::move(services)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &OfficeDesk::Accept);
}

OfficeDesk::~OfficeDesk() {
    for (const auto& program : programs_) program->Socket->disconnect(this);
}

bool OfficeDesk::Listen(const QString& name, QString& why) {
    QLocalServer::removeServer(name);
    if (server_.listen(name)) return true;
    why = server_.errorString();
    return false;
}

// ---- the programs ----

void OfficeDesk::Accept() {
    while (QLocalSocket* const socket = server_.nextPendingConnection()) {
        auto& program = programs_.emplace_back(std::make_unique<Program>());
        program->Socket = socket;
        // Queued: a program that has gone is found out in the middle of talking to it, and of walking
        // through all programs.
        connect(
            socket, &QLocalSocket::disconnected, this, [this, socket] { Forget(socket); },
            Qt::QueuedConnection);
        connect(socket, &QLocalSocket::readyRead, this, [this, made = program.get()] { Read(*made); });
        Read(*program);
    }
}

void OfficeDesk::Read(Program& program) {
    QLocalSocket* const socket = program.Socket;
    program.Reader.Feed(socket->readAll().toStdString());
    try {
        ManagerMessage message;
        const auto isThere = [&] {
            return std::any_of(programs_.begin(), programs_.end(),
                               [&](const auto& each) { return each->Socket == socket; });
        };
        while (isThere() && program.Reader.Next(message)) Take(program, message);
    } catch (const RunTimeFailure& failure) {
        log_.Write(std::string("a program was sent away: ") + Utf8ToCodePage(failure.what()));
        socket->abort();
    }
}

void OfficeDesk::Take(Program& program, const ManagerMessage& message) {
    const std::string& verb = message.Verb;
    if (!program.Greeted) {
        if (verb != "HELLO" || message.TextAt(0) != Version)
            throw RunTimeFailure(5, "it did not say HELLO 1");
        program.Greeted = true;
        Send(program, services_.Welcome());
        Send(program, UsersMessage());
    } else if (verb == "ENABLE") {
        if (message.TextAt(0).size() != CreatorSize) throw RunTimeFailure(5, "ENABLE without a creator id");
        program.Creator = message.TextAt(0);
        program.Enabled = ++enabled_;
    } else if (verb == "DISABLE") {
        program.Creator.clear();
        if (&program == current_) transfers_.clear();
    } else if (verb == "UPLOAD") {
        Queue(program, message, QueuedTransfer::Way::Upload);
    } else if (verb == "DOWNLOAD") {
        Queue(program, message, QueuedTransfer::Way::Download);
    } else if (verb == "HANDLED") {
        Handled(program);
    } else if (verb == "COMMAND") {
        const std::string& path = message.TextAt(1);
        const bool isUpload = message.TextAt(0) == "UPLOAD";
        std::string why = WhyNoTable(path);
        if (!isUpload && message.TextAt(0) != "DOWNLOAD") why = "neither UPLOAD nor DOWNLOAD";
        if (program.Commands.size() >= MostCommands) why = "too many commands";
        if (!why.empty()) return Send(program, {"REFUSED", {path, why}});
        program.Commands.push_back(
            {isUpload ? QueuedTransfer::Way::Upload : QueuedTransfer::Way::Download, path});
    } else if (verb == "FLUSH") {
        Flush(program, message);
    } else if (verb == "UNFLUSH") {
        if (armed_ == &program) Unflush(program, "CANCELLED");
    } else if (verb == "SHOW") {
        services_.Show();
    } else if (verb == "EXIT") {
        services_.Exit(message.TextAt(0) != "NOW");
    }
}

void OfficeDesk::Queue(Program& program, const ManagerMessage& message, QueuedTransfer::Way way) {
    const std::string& path = message.TextAt(0);
    std::string why = WhyNoTable(path);
    const bool isAsked = &program == current_ && program.Busy && program.Status != SessionEnded;
    if (!isAsked) why = "no session waits for it";
    if (transfers_.size() >= MostCommands) why = "too many transfers";
    if (!why.empty()) {
        log_.Write("a transfer was refused, " + why + ": " + Utf8ToCodePage(path));
        return Send(program, {"REFUSED", {path, why}});
    }
    transfers_.push_back({way, path});
}

void OfficeDesk::Handled(Program& program) {
    if (!program.Busy) return;
    program.Busy = false;
    if (!program.Pending.empty()) {
        const ManagerMessage next = std::move(program.Pending.front());
        program.Pending.pop_front();
        SendStatus(program, next);
    }
    FinishFlush();
}

void OfficeDesk::Forget(QLocalSocket* socket) {
    const auto found = std::find_if(programs_.begin(), programs_.end(),
                                    [socket](const auto& each) { return each->Socket == socket; });
    if (found == programs_.end()) return;
    if (current_ == found->get()) {
        if ((*found)->Busy && (*found)->Status != SessionEnded) {
            log_.Write("the program that takes part in the session has gone, " +
                       std::to_string(transfers_.size()) + " transfers that it asked for are dropped");
        }
        current_ = nullptr;
        transfers_.clear();
    }
    if (armed_ == found->get()) {
        armed_ = nullptr;
        services_.Disarm();
    }
    programs_.erase(found);
    socket->deleteLater();
    FinishFlush();
}

void OfficeDesk::Send(Program& program, const ManagerMessage& message) {
    if (program.Socket->state() != QLocalSocket::ConnectedState) return;
    program.Socket->write(QByteArray::fromStdString(PackMessage(message)));
    program.Socket->flush();
}

ManagerMessage OfficeDesk::UsersMessage() const {
    ManagerMessage message{"USERS", {}};
    for (const HotSyncUser& user : users_.All()) {
        message.Texts.push_back(std::to_string(user.Id));
        message.Texts.push_back(CodePageToUtf8(user.Name));
    }
    return message;
}

void OfficeDesk::SendUsers() {
    const ManagerMessage message = UsersMessage();
    for (const auto& program : programs_) {
        if (program->Greeted) Send(*program, message);
    }
}

void OfficeDesk::SayExiting() {
    for (const auto& program : programs_) {
        Send(*program, {"EXITING", {}});
        program->Socket->waitForBytesWritten(100);
    }
    server_.close();
}

// ---- the session ----

OfficeDesk::Program* OfficeDesk::Latest(std::string_view creator) {
    Program* latest = nullptr;
    for (const auto& program : programs_) {
        if (program->Socket->state() != QLocalSocket::ConnectedState) continue; // about to be forgotten
        if (program->Creator == creator && (!latest || program->Enabled > latest->Enabled))
            latest = program.get();
    }
    return latest;
}

bool OfficeDesk::TakesPart(std::string_view creator) {
    return Latest(creator) != nullptr;
}

void OfficeDesk::Raise(std::int32_t status, const HotSyncUser& user, std::string_view creator,
                       const EndedTransfer* ended) {
    if (status == SessionBegun) {
        current_ = Latest(creator);
        creator_ = creator;
        transfers_.clear();
        if (armed_) transfers_.swap(armed_->Commands);
    }
    // A control that was turned off in the middle of its session hears no more.
    if (!current_ || current_->Creator != creator) return;
    ManagerMessage message{
        "STATUS",
        {std::to_string(status), CodePageToUtf8(user.Name), std::to_string(user.Id), std::string(creator)}};
    if (ended) message.Texts.insert(message.Texts.end(), {ended->Path, ended->Well ? "WELL" : "FAILED"});
    if (current_->Busy)
        current_->Pending.push_back(message);
    else
        SendStatus(*current_, message);
}

void OfficeDesk::SendStatus(Program& program, const ManagerMessage& message) {
    program.Busy = true;
    program.Status = std::atoi(message.TextAt(0).c_str());
    Send(program, message);
}

bool OfficeDesk::IsThere() {
    // A program that was killed an instant ago is found out only by asking the system.
    if (current_) current_->Socket->waitForReadyRead(0);
    if (current_ && current_->Socket->state() != QLocalSocket::ConnectedState) Forget(current_->Socket);
    return current_ && current_->Creator == creator_;
}

bool OfficeDesk::IsBusy(std::chrono::milliseconds wait) {
    const auto busy = [this] { return current_ && current_->Busy; };
    if (!busy()) return false;
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(wait);
    WaitInLoop([&] { return busy() && limit.isActive(); });
    return busy();
}

std::optional<QueuedTransfer> OfficeDesk::NextTransfer() {
    if (transfers_.empty()) return std::nullopt;
    QueuedTransfer next = std::move(transfers_.front());
    transfers_.pop_front();
    return next;
}

void OfficeDesk::DropTransfers() {
    if (!transfers_.empty()) {
        log_.Write(std::to_string(transfers_.size()) + " transfers that were asked for did not take place");
    }
    transfers_.clear();
    services_.StopPicking();
}

SessionDesk::Picking OfficeDesk::PickUser(const std::vector<HotSyncUser>& users,
                                          std::chrono::milliseconds wait, std::uint32_t& picked) {
    return services_.Pick(users, wait, picked);
}

// ---- waiting for the next handheld ----

void OfficeDesk::Flush(Program& program, const ManagerMessage& message) {
    if (armed_) return Send(program, {"FLUSHED", {"REFUSED"}});
    armed_ = &program;
    held_ = false;
    services_.Arm(Utf8ToCodePage(message.TextAt(0)));
}

void OfficeDesk::Unflush(Program& program, const char* how) {
    armed_ = nullptr;
    held_ = false;
    program.Commands.clear();
    services_.Disarm();
    Send(program, {"FLUSHED", {how}});
}

void OfficeDesk::CancelFlush() {
    if (armed_) Unflush(*armed_, "CANCELLED");
}

void OfficeDesk::SessionHeld() {
    if (!armed_) return;
    held_ = true;
    FinishFlush();
}

void OfficeDesk::FinishFlush() {
    if (!armed_ || !held_ || (current_ && current_->Busy)) return;
    Unflush(*armed_, "DONE");
}
