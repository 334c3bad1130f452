#pragma once

#include "driver/DriverClient.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QLocalSocket>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <optional>

class QEventLoop;

/// The process that a client drives, the socket between them, and the loop that waits for either. What it
/// cannot do is a DriverFailure, with the end of the program's standard error.
class DriverLine {
public:
    using Milliseconds = DriverClient::Milliseconds;

    explicit DriverLine(DrivenProgram program);
    ~DriverLine();
    DriverLine(const DriverLine&) = delete;
    DriverLine& operator=(const DriverLine&) = delete;

    /// Starts the program and connects. Once.
    void Start();

    bool HasStarted() const { return started_; }
    bool HasEnded() const { return started_ && process_.state() == QProcess::NotRunning; }
    qint64 ProcessId() const { return process_.processId(); }
    QString Folder() const { return folder_.path(); }

    /// One request and its answer; `words` name it in a failure. Nothing when the program went instead and
    /// `mayEnd` allows it.
    std::optional<QJsonObject> Ask(QJsonObject request, const QString& words, Milliseconds within,
                                   bool mayEnd);

    /// The exit code.
    int WaitForEnd(Milliseconds within);
    void Kill();
    [[noreturn]] void Fail(const QString& words);

    QStringList Expected;     ///< in words, as long as the program has not answered them
    QString Failure;          ///< the last failure that the program reported by itself
    QList<QJsonObject> Early; ///< expectations from before the start
    QList<DrivenBox> Boxes;
    QByteArray Output, Error;
    Milliseconds Patience{30000};

private:
    bool IsConnected() const { return socket_.state() == QLocalSocket::ConnectedState; }
    QString SocketPath() const { return Folder() + QStringLiteral("/s"); }
    QProcessEnvironment Environment() const;
    QString EndInWords() const;
    bool Pump(const std::function<bool()>& condition, Milliseconds within);
    void Wake();
    void ReadOutput();
    void ReadLines();

    DrivenProgram program_;
    QTemporaryDir folder_;
    QProcess process_;
    QLocalSocket socket_;
    QObject context_; ///< goes first, so that no signal reaches what is going
    QByteArray unread_;
    QJsonObject answer_;
    QEventLoop* loop_ = nullptr;
    int lastId_ = 0;
    bool started_ = false;
};

/// The text under a key of a line; empty when there is none.
QString TextOf(const QJsonObject& object, const char* key);
