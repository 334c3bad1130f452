#include "driver/DriverLine.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QProcessEnvironment>
#include <QTimer>

#include <utility>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace {

/// The length of a local socket's path on Unix, with its final NUL.
constexpr qsizetype MaximumSocketPath = 108;
constexpr qsizetype TailBytes = 4000;
constexpr int ReconnectMilliseconds = 20;

/// A folder with a short name: a socket lies in it.
QString FolderTemplate() {
    const QString own = QDir::tempPath() + QStringLiteral("/zukdrv-XXXXXX");
    constexpr qsizetype socketName = 8;
    // Qt's list of plugins is cut at commas.
    const bool isUsable =
        QFile::encodeName(own).size() + socketName < MaximumSocketPath && !own.contains(QLatin1Char(','));
    return isUsable ? own : QStringLiteral("/tmp/zukdrv-XXXXXX");
}

} // namespace

QString TextOf(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString();
}

DriverLine::DriverLine(DrivenProgram program) : program_(std::move(program)), folder_(FolderTemplate()) {
    if (!folder_.isValid())
        throw DriverFailure("no temporary folder: " + folder_.errorString().toStdString());
    QObject::connect(&process_, &QProcess::readyReadStandardError, &context_, [this] { ReadOutput(); });
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, &context_, [this] { ReadOutput(); });
    QObject::connect(&process_, &QProcess::finished, &context_, [this] { Wake(); });
    QObject::connect(&process_, &QProcess::errorOccurred, &context_, [this] { Wake(); });
    QObject::connect(&socket_, &QLocalSocket::readyRead, &context_, [this] { ReadLines(); });
    QObject::connect(&socket_, &QLocalSocket::connected, &context_, [this] { Wake(); });
    QObject::connect(&socket_, &QLocalSocket::disconnected, &context_, [this] { Wake(); });
}

DriverLine::~DriverLine() {
    Kill();
    socket_.abort();
}

void DriverLine::Start() {
    if (started_) throw DriverFailure("the program was started before");
    started_ = true;
    process_.setProgram(program_.Program);
    process_.setArguments(program_.Arguments);
    process_.setWorkingDirectory(program_.Folder.isEmpty() ? Folder() : program_.Folder);
    process_.setProcessEnvironment(Environment());
#ifdef Q_OS_LINUX
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
    process_.start();
    // The socket's file is there a moment before anybody listens at it, so that a watch on the
    // folder would not spare the second try: a short timer is all it takes.
    QTimer retry;
    QObject::connect(&retry, &QTimer::timeout, &context_, [this] {
        if (socket_.state() == QLocalSocket::UnconnectedState) socket_.connectToServer(SocketPath());
    });
    retry.start(ReconnectMilliseconds);
    const bool isOver = Pump([this] { return IsConnected() || HasEnded(); }, Patience);
    if (process_.error() == QProcess::FailedToStart) {
        Fail(QStringLiteral("the program does not start: %1").arg(process_.errorString()));
    }
    if (HasEnded()) Fail(QStringLiteral("the program ended before it could be driven: %1").arg(EndInWords()));
    if (!isOver) Fail(QStringLiteral("the program did not listen for its driver in time"));
}

std::optional<QJsonObject> DriverLine::Ask(QJsonObject request, const QString& words, Milliseconds within,
                                           bool mayEnd) {
    if (!started_) Fail(words + QStringLiteral(": the program was not started"));
    const int id = ++lastId_;
    request.insert(QStringLiteral("id"), id);
    answer_ = {};
    socket_.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    const auto isAnswered = [&] {
        return !answer_.isEmpty() && answer_.value(QLatin1String("id")).toInt() == id;
    };
    const bool isOver = Pump([&] { return isAnswered() || !IsConnected() || HasEnded(); }, within);
    if (!isAnswered() && isOver) {
        if (mayEnd) return std::nullopt;
        Pump([this] { return HasEnded(); }, Milliseconds(2000));
        Fail(words + QStringLiteral(": the program has gone: ") + EndInWords());
    }
    if (!isAnswered()) Fail(words + QStringLiteral(": the program did not answer in time"));
    if (!answer_.value(QLatin1String("ok")).toBool())
        Fail(words + QStringLiteral(": ") + TextOf(answer_, "error"));
    return answer_;
}

int DriverLine::WaitForEnd(Milliseconds within) {
    if (!started_) Fail(QStringLiteral("the program was not started"));
    const bool isOver = Pump([this] { return HasEnded() || !Failure.isEmpty(); }, within);
    ReadOutput();
    if (!Failure.isEmpty()) Fail(QStringLiteral("at the end: ") + Failure);
    if (!isOver) Fail(QStringLiteral("the program did not end in time"));
    if (process_.exitStatus() == QProcess::CrashExit) Fail(EndInWords());
    if (!Expected.isEmpty()) {
        Fail(QStringLiteral("the program ended, and expected boxes never came: ") +
             std::exchange(Expected, {}).join(QLatin1String("; ")));
    }
    return process_.exitCode();
}

void DriverLine::Kill() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.kill();
    process_.waitForFinished(-1);
    ReadOutput();
}

void DriverLine::Fail(const QString& words) {
    ReadOutput();
    QString all = words;
    if (!Error.isEmpty()) {
        all += QStringLiteral("\nThe end of the program's standard error:\n") +
               QString::fromUtf8(Error.right(TailBytes));
    }
    throw DriverFailure(all.toStdString());
}

QProcessEnvironment DriverLine::Environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const std::pair<const char*, const char*> folders[] = {{"HOME", "home"},
                                                           {"XDG_CONFIG_HOME", "config"},
                                                           {"XDG_DATA_HOME", "data"},
                                                           {"XDG_CACHE_HOME", "cache"},
                                                           {"XDG_RUNTIME_DIR", "run"}};
    for (const auto& [variable, name] : folders) {
        const QString path = Folder() + QLatin1Char('/') + QLatin1String(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(QLatin1String(variable), path);
    }
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (auto given = program_.Environment.begin(); given != program_.Environment.end(); ++given) {
        environment.insert(given.key(), given.value());
    }
    QString plugins = program_.Plugins.isEmpty() ? QStringLiteral(TRAMBLE_DRIVER_PLUGINS) : program_.Plugins;
    const QString others = environment.value(QStringLiteral("QT_PLUGIN_PATH"));
    if (!others.isEmpty()) plugins += QDir::listSeparator() + others;
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), plugins);
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                       QStringLiteral("trambledriver:") + SocketPath());
    return environment;
}

QString DriverLine::EndInWords() const {
    if (!HasEnded()) return QStringLiteral("it closed the line and still runs");
    if (process_.exitStatus() == QProcess::CrashExit) {
        return QStringLiteral("it crashed (signal %1)").arg(process_.exitCode());
    }
    return QStringLiteral("it ended with exit code %1").arg(process_.exitCode());
}

bool DriverLine::Pump(const std::function<bool()>& condition, Milliseconds within) {
    const QDeadlineTimer until(within);
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QEventLoop* const outer = std::exchange(loop_, &loop);
    while (!condition() && !until.hasExpired()) {
        timer.start(static_cast<int>(until.remainingTime()) + 1);
        loop.exec();
    }
    loop_ = outer;
    return condition();
}

void DriverLine::Wake() {
    if (loop_) loop_->quit();
}

void DriverLine::ReadOutput() {
    Output += process_.readAllStandardOutput();
    Error += process_.readAllStandardError();
}

void DriverLine::ReadLines() {
    unread_ += socket_.readAll();
    for (qsizetype end = unread_.indexOf('\n'); end >= 0; end = unread_.indexOf('\n')) {
        const QJsonObject line = QJsonDocument::fromJson(unread_.left(end)).object();
        unread_.remove(0, end + 1);
        const QString event = TextOf(line, "event");
        if (event == QLatin1String("answered")) {
            Boxes << DrivenBox{TextOf(line, "box"), TextOf(line, "text"), TextOf(line, "answer")};
            if (!Expected.isEmpty()) Expected.removeFirst();
        } else if (event == QLatin1String("failure")) {
            Failure = TextOf(line, "error");
        } else {
            answer_ = line;
        }
    }
    Wake();
}
