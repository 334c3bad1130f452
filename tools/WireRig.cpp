#include "WireRig.h"

#include "core/Failure.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "platform/Convert.h"
#include "platform/ManagerSocket.h"
#include "sync/Conduits.h"
#include "sync/SessionStatus.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

namespace {

[[noreturn]] void Fail(const QString& words) {
    throw WireFailure(words.toStdString());
}

} // namespace

WireRig::WireRig(const QString& build, const QString& user) : build_(build) {
    if (!folder_.isValid()) Fail(folder_.errorString());
    QDir().mkpath(ManagerFolder());
    const std::string folder = PathFromQt(ManagerFolder() + QLatin1Char('/'));
    HotSyncUsers users(folder);
    const HotSyncUser& made = users.New(FromQt(user));
    ManagerSettings settings = ReadManagerSettings(folder);
    settings.Port = 0;
    settings.Lookup = false;
    WriteManagerSettings(folder, settings);
    RegisterConduit(folder, {"ZUK2", "SFrmCn40.dll", "Tramble"});
    Handheld({QStringLiteral("new"), QStringLiteral("--user"), user, QStringLiteral("--id"),
              QString::number(made.Id)});
    StartManager();
    Connect();
}

WireRig::~WireRig() {
    desk_.abort();
    manager_.kill();
    manager_.waitForFinished();
}

void WireRig::StartManager() {
    const QString program = ManagerFolder() + QStringLiteral("/hotsync");
    if (!QFile::copy(build_ + QStringLiteral("/bin/hotsync"), program)) Fail(QStringLiteral("no ") + program);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        environment.insert(QLatin1String(name), folder_.path());
    }
    manager_.setProcessEnvironment(environment);
    manager_.setStandardErrorFile(folder_.filePath(QStringLiteral("errors.txt")));
    manager_.start(program, {QStringLiteral("--minimised")});
    // It says where it listens as soon as it does.
    while (!manager_.canReadLine()) {
        if (!manager_.waitForReadyRead(Patience))
            Fail(QStringLiteral("the manager does not start: ") + Log());
    }
}

void WireRig::Connect() {
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", folder_.path().toLocal8Bit());
    desk_.connectToServer(ManagerSocketName(ManagerFolder()));
    qputenv("TMPDIR", before);
    if (!desk_.waitForConnected(Patience))
        Fail(QStringLiteral("the manager's socket: ") + desk_.errorString());
    Say({"HELLO", {"1"}});
    ManagerMessage message;
    for (;;) {
        while (reader_.Next(message)) {
            if (message.Verb != "WELCOME") continue;
            port_ = static_cast<std::uint16_t>(std::stoi(message.TextAt(3)));
            if (port_ == 0) Fail(QStringLiteral("the manager does not listen: ") + Log());
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

WireRig::Outcome WireRig::HotSync(const std::vector<Transfer>& transfers, const QStringList& options) {
    Outcome outcome;
    QProcess handheld;
    handheld.setProcessChannelMode(QProcess::MergedChannels);
    QEventLoop loop;
    const auto isOver = [&] {
        return handheld.state() == QProcess::NotRunning &&
               (!outcome.Begun() || outcome.Statuses.back() == SessionEnded);
    };
    bool inTime = true;
    std::string broken;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, &loop, [&] {
        inTime = false;
        loop.quit();
    });
    const auto look = [&] {
        try {
            reader_.Feed(desk_.readAll().toStdString());
            ManagerMessage message;
            while (reader_.Next(message)) Take(message, transfers, outcome);
        } catch (const std::exception& failure) {
            broken = failure.what();
        }
        if (isOver() || !broken.empty()) loop.quit();
    };
    const auto reading = QObject::connect(&desk_, &QLocalSocket::readyRead, &loop, look);
    QObject::connect(&desk_, &QLocalSocket::disconnected, &loop, [&] {
        broken = "the manager has gone";
        loop.quit();
    });
    QObject::connect(&handheld, &QProcess::finished, &loop, look);
    QStringList arguments{HandheldFolder(), QStringLiteral("hotsync"),
                          QStringLiteral("127.0.0.1:") + QString::number(port_)};
    handheld.start(build_ + QStringLiteral("/bin/handheld"), arguments + options);
    limit.start(Patience);
    loop.exec();
    outcome.HandheldSaid = QString::fromUtf8(handheld.readAll());
    if (!broken.empty() || !inTime) {
        handheld.kill();
        handheld.waitForFinished();
        Fail(QString::fromStdString(broken.empty() ? "a session does not end" : broken) + QLatin1Char('\n') +
             outcome.HandheldSaid + Log());
    }
    outcome.HandheldCode = handheld.exitStatus() == QProcess::NormalExit ? handheld.exitCode() : -1;
    return outcome;
}

QString WireRig::Handheld(const QStringList& arguments) {
    QProcess handheld;
    handheld.setProcessChannelMode(QProcess::MergedChannels);
    handheld.start(build_ + QStringLiteral("/bin/handheld"), QStringList{HandheldFolder()} + arguments);
    const bool ended = handheld.waitForFinished(Patience);
    const QString said = QString::fromUtf8(handheld.readAll());
    if (!ended || handheld.exitStatus() != QProcess::NormalExit || handheld.exitCode() != 0) {
        Fail(QStringLiteral("handheld ") + arguments.join(QLatin1Char(' ')) + QStringLiteral(": ") + said +
             handheld.errorString());
    }
    return said;
}

QString WireRig::Log() const {
    QString text;
    for (const QString& name : {QStringLiteral("HotSync/HotSync.log"), QStringLiteral("errors.txt")}) {
        QFile log(folder_.filePath(name));
        if (log.open(QIODevice::ReadOnly)) text += QString::fromUtf8(log.readAll());
    }
    return text;
}
