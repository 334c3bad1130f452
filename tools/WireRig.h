#pragma once

#include "sync/ManagerMessage.h"

#include <QLocalSocket>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// What a rig could not do, in words.
class WireFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The real HotSync Manager in a folder of its own, a stand-in handheld beside it, and the place of the
/// program on the desk, which speaks the manager's local socket. A QCoreApplication must exist. Everything
/// that was started is gone with it.
class WireRig {
public:
    /// `build` is a build's folder; the manager's user and the handheld's is `user`.
    WireRig(const QString& build, const QString& user);
    ~WireRig();

    /// One transfer that is asked for in a session.
    struct Transfer {
        bool Upload = false;
        std::string Path;
    };

    struct Outcome {
        int HandheldCode = 0;
        QString HandheldSaid;
        std::vector<int> Statuses;

        bool Begun() const { return !Statuses.empty(); }
        bool IsWhole() const { return HandheldCode == 0; }
    };

    /// The handheld presses HotSync with these further options; the transfers are asked for when the session
    /// begins. Returns when the handheld's program and the session have ended.
    Outcome HotSync(const std::vector<Transfer>& transfers, const QStringList& options = {});

    /// Runs a command of the stand-in and returns what it says. WireFailure unless it ends in 0.
    QString Handheld(const QStringList& arguments);

    QString Folder() const { return folder_.path(); }
    QString HandheldFolder() const { return folder_.filePath(QStringLiteral("handheld")); }
    QString ManagerFolder() const { return folder_.filePath(QStringLiteral("HotSync")); }
    /// What the manager wrote into its log and to its standard error.
    QString Log() const;
    std::uint16_t Port() const { return port_; }
    qint64 ManagerProcess() const { return manager_.processId(); }
    bool ManagerRuns() const { return manager_.state() == QProcess::Running; }

    /// How long anything may take, in milliseconds.
    int Patience = 120000;

private:
    void StartManager();
    void Connect();
    void Take(const ManagerMessage& message, const std::vector<Transfer>& transfers, Outcome& outcome);
    void Say(const ManagerMessage& message);

    QString build_;
    QTemporaryDir folder_;
    QProcess manager_;
    QLocalSocket desk_;
    ManagerMessageReader reader_;
    std::uint16_t port_ = 0;
};
