#include "WireRig.h"

#include "core/Failure.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/ManagerSocket.h"
#include "sync/Conduits.h"
#include "sync/SessionStatus.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTimer>

#include <utility>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace {

[[noreturn]] void Fail(const QString& words) {
    throw WireFailure(words.toStdString());
}

QString TextOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// A program that does not outlive this one, also when this one crashes.
void EndWithParent([[maybe_unused]] QProcess& program) {
#ifdef Q_OS_LINUX
    program.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
}

} // namespace

WireRig::WireRig(QString build, const QString& user) : WireRig(std::move(build), user, Setup()) {}

WireRig::WireRig(QString build, const QString& user, Setup setup)
    : build_(std::move(build)),
      setup_(std::move(setup)) {
    if (!folder_.isValid()) Fail(folder_.errorString());
    QDir().mkpath(ManagerFolder());
    const std::string folder = PathFromQt(ManagerFolder() + QLatin1Char('/'));
    HotSyncUsers users(folder);
    MakeHandheld(HandheldFolder(), user, users.New(FromQt(user)).Id);
    for (const QString& further : setup_.FurtherUsers)
        MakeHandheld(HandheldFolder(further), further, users.New(FromQt(further)).Id);
    ManagerSettings settings = ReadManagerSettings(folder);
    settings.Port = 0;
    settings.Lookup = false;
    if (setup_.Settings) setup_.Settings(settings);
    WriteManagerSettings(folder, settings);
    RegisterConduit(folder, {"ZUK2", "SFrmCn40.dll", "Tramble"});
    const QString program = ManagerFolder() + QStringLiteral("/hotsync");
    if (!QFile::copy(build_ + QStringLiteral("/bin/hotsync"), program)) Fail(QStringLiteral("no ") + program);
    StartManager();
    Connect();
}

WireRig::~WireRig() {
    desk_.abort();
    manager_.kill();
    manager_.waitForFinished();
}

void WireRig::MakeHandheld(const QString& folder, const QString& user, std::uint32_t id) {
    Run({folder, QStringLiteral("new"), QStringLiteral("--user"), user, QStringLiteral("--id"),
         QString::number(id)});
}

void WireRig::Prepare(QProcess& manager) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        environment.insert(QLatin1String(name), folder_.path());
    }
    manager.setProcessEnvironment(environment);
    manager.setStandardErrorFile(folder_.filePath(QStringLiteral("errors.txt")), QIODevice::Append);
    EndWithParent(manager);
    manager.setProgram(ManagerFolder() + QStringLiteral("/hotsync"));
    manager.setArguments({QStringLiteral("--minimised")});
}

void WireRig::StartManager() {
    Prepare(manager_);
    manager_.start();
    // It says where it listens as soon as it does.
    while (!manager_.canReadLine()) {
        if (!manager_.waitForReadyRead(Patience))
            Fail(QStringLiteral("the manager does not start: ") + Log());
    }
}

void WireRig::StartAnother(QProcess& manager) const {
    Prepare(manager);
    manager.start();
}

void WireRig::KillManager() {
    LeaveDesk();
    manager_.kill();
    if (!manager_.waitForFinished(Patience)) Fail(QStringLiteral("the manager cannot be killed"));
    manager_.readAll();
}

void WireRig::RestartManager() {
    StartManager();
    Connect();
}

void WireRig::LeaveDesk() {
    atDesk_ = false;
    desk_.abort();
    reader_ = {};
}

int WireRig::ManagerCode() const {
    const bool ended =
        manager_.state() == QProcess::NotRunning && manager_.exitStatus() == QProcess::NormalExit;
    return ended ? manager_.exitCode() : -1;
}

QString WireRig::SocketPath() const {
    return folder_.filePath(ManagerSocketName(ManagerFolder()));
}

void WireRig::Connect() {
    desk_.connectToServer(SocketPath());
    if (!desk_.waitForConnected(Patience))
        Fail(QStringLiteral("the manager's socket: ") + desk_.errorString());
    atDesk_ = true;
    Say({"HELLO", {"1"}});
    ManagerMessage message;
    for (;;) {
        while (reader_.Next(message)) {
            if (message.Verb != "WELCOME") continue;
            port_ = static_cast<std::uint16_t>(std::stoi(message.TextAt(3)));
            if (port_ == 0 && !setup_.MayBeDeaf)
                Fail(QStringLiteral("the manager does not listen: ") + Log());
            return Say({"ENABLE", {"ZUK2"}});
        }
        if (!desk_.waitForReadyRead(Patience)) Fail(QStringLiteral("the manager says nothing"));
        reader_.Feed(desk_.readAll().toStdString());
    }
}

void WireRig::Say(const ManagerMessage& message) {
    desk_.write(QByteArray::fromStdString(PackMessage(message)));
    desk_.flush();
}

void WireRig::Take(const ManagerMessage& message, const std::vector<Transfer>& transfers, Outcome& outcome) {
    if (message.Verb == "REFUSED") Fail(QString::fromStdString(message.TextAt(0) + ": " + message.TextAt(1)));
    if (message.Verb != "STATUS") return;
    outcome.Statuses.push_back(std::stoi(message.TextAt(0)));
    if (outcome.Statuses.back() == SessionBegun) {
        for (const Transfer& transfer : transfers)
            Say({transfer.Upload ? "UPLOAD" : "DOWNLOAD", {transfer.Path}});
    }
    Say({"HANDLED", {}});
}

void WireRig::Look(const std::vector<Transfer>& transfers, Outcome& outcome) {
    if (!atDesk_) return;
    reader_.Feed(desk_.readAll().toStdString());
    ManagerMessage message;
    while (reader_.Next(message)) Take(message, transfers, outcome);
    if (desk_.state() != QLocalSocket::ConnectedState) Fail(QStringLiteral("the manager has gone"));
}

bool WireRig::Until(const std::function<bool()>& condition) const {
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(Patience);
    bool holds = false;
    WaitInLoop([&] {
        holds = holds || condition();
        return !holds && limit.isActive();
    });
    return holds;
}

WireRig::Outcome WireRig::Attend(const std::vector<Transfer>& transfers, const std::function<bool()>& isOver,
                                 bool mustBegin) {
    return Attend(transfers, [&](const Outcome& outcome) {
        const bool ended = outcome.Begun() ? outcome.Statuses.back() == SessionEnded : !mustBegin;
        return ended && isOver();
    });
}

WireRig::Outcome WireRig::AttendUntil(const std::vector<Transfer>& transfers,
                                      const std::function<bool()>& moment) {
    return Attend(transfers, [&](const Outcome&) { return moment(); });
}

WireRig::Outcome WireRig::Attend(const std::vector<Transfer>& transfers,
                                 const std::function<bool(const Outcome&)>& isOver) {
    Outcome outcome;
    std::string broken;
    const bool inTime = Until([&] {
        try {
            if (broken.empty()) Look(transfers, outcome);
        } catch (const std::exception& failure) {
            broken = failure.what();
        }
        return !broken.empty() || isOver(outcome);
    });
    if (!inTime) broken = "a session does not end";
    if (!broken.empty()) Fail(QString::fromStdString(broken) + QLatin1Char('\n') + Log());
    return outcome;
}

void WireRig::PressHotSync(QProcess& handheld, const QString& folder, const QStringList& options,
                           std::uint16_t port) const {
    handheld.setProcessChannelMode(QProcess::MergedChannels);
    EndWithParent(handheld);
    const QStringList arguments{folder, QStringLiteral("hotsync"),
                                QStringLiteral("127.0.0.1:") + QString::number(port == 0 ? port_ : port)};
    handheld.start(build_ + QStringLiteral("/bin/handheld"), arguments + options);
}

WireRig::Outcome WireRig::HotSync(const std::vector<Transfer>& transfers, const QStringList& options) {
    QProcess handheld;
    PressHotSync(handheld, HandheldFolder(), options);
    try {
        Outcome outcome = Attend(transfers, [&] { return handheld.state() == QProcess::NotRunning; });
        outcome.HandheldSaid = QString::fromUtf8(handheld.readAll());
        outcome.HandheldCode = handheld.exitStatus() == QProcess::NormalExit ? handheld.exitCode() : -1;
        return outcome;
    } catch (const WireFailure& failure) {
        handheld.kill();
        handheld.waitForFinished();
        Fail(QString::fromUtf8(failure.what()) + QString::fromUtf8(handheld.readAll()));
    }
}

QString WireRig::Handheld(const QStringList& arguments) {
    return Run(QStringList{HandheldFolder()} + arguments);
}

QString WireRig::Run(const QStringList& arguments) {
    QProcess handheld;
    handheld.setProcessChannelMode(QProcess::MergedChannels);
    handheld.start(build_ + QStringLiteral("/bin/handheld"), arguments);
    const bool ended = handheld.waitForFinished(Patience);
    QString said = QString::fromUtf8(handheld.readAll());
    if (!ended || handheld.exitStatus() != QProcess::NormalExit || handheld.exitCode() != 0) {
        Fail(QStringLiteral("handheld ") + arguments.join(QLatin1Char(' ')) + QStringLiteral(": ") + said +
             handheld.errorString());
    }
    return said;
}

QString WireRig::LogFile() const {
    return TextOf(ManagerFolder() + QStringLiteral("/HotSync.log"));
}

QString WireRig::Errors() const {
    return TextOf(folder_.filePath(QStringLiteral("errors.txt")));
}
