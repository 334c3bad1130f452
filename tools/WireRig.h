#pragma once

#include "hotsync/ManagerSettings.h"
#include "sync/ManagerMessage.h"

#include <QLocalSocket>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
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
    /// What is not as usual.
    struct Setup {
        QStringList FurtherUsers; ///< each with a handheld of its own
        std::function<void(ManagerSettings& settings)> Settings;
        bool MayBeDeaf = false; ///< a manager that cannot listen for handhelds will do
    };

    /// `build` is a build's folder; the manager's user and the handheld's is `user`.
    WireRig(QString build, const QString& user, Setup setup);
    WireRig(QString build, const QString& user);
    ~WireRig();
    WireRig(const WireRig&) = delete;
    WireRig& operator=(const WireRig&) = delete;

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

    /// Takes part in a session that another handheld holds. Returns when `isOver` says so and the session, if
    /// one has begun or must begin, has ended.
    Outcome Attend(const std::vector<Transfer>& transfers, const std::function<bool()>& isOver,
                   bool mustBegin = false);

    /// The same up to a moment in the middle of a session.
    Outcome AttendUntil(const std::vector<Transfer>& transfers, const std::function<bool()>& moment);

    /// Runs the event loop until a condition holds; false when the patience ends before.
    bool Until(const std::function<bool()>& condition) const;

    /// Starts the program of a handheld, which calls the manager, or another desktop at `port`.
    void PressHotSync(QProcess& handheld, const QString& folder, const QStringList& options = {},
                      std::uint16_t port = 0) const;

    /// Runs a command of the stand-in and returns what it says. WireFailure unless it ends in 0.
    QString Handheld(const QStringList& arguments);

    /// The manager's process ends at this instant, as by a power cut.
    void KillManager();
    /// Starts it again, and takes the place at the desk.
    void RestartManager();
    /// Starts a further manager in the same folder.
    void StartAnother(QProcess& manager) const;

    /// The program at the desk leaves, and comes again.
    void LeaveDesk();
    void TakeDesk() { Connect(); }

    QString Folder() const { return folder_.path(); }
    QString HandheldFolder() const { return folder_.filePath(QStringLiteral("handheld")); }
    /// Of one of the further users.
    QString HandheldFolder(const QString& user) const { return HandheldFolder() + QLatin1Char('-') + user; }
    QString SocketPath() const;
    QString ManagerFolder() const { return folder_.filePath(QStringLiteral("HotSync")); }
    /// What the manager wrote into its log and to its standard error.
    QString Log() const { return LogFile() + Errors(); }
    QString LogFile() const; ///< the log alone
    QString Errors() const;  ///< the standard error of every manager so far
    std::uint16_t Port() const { return port_; }
    qint64 ManagerProcess() const { return manager_.processId(); }
    bool ManagerRuns() const { return manager_.state() == QProcess::Running; }
    /// How the manager ended; -1 for a crash and while it runs.
    int ManagerCode() const;

    /// How long anything may take, in milliseconds.
    int Patience = 120000;

private:
    void MakeHandheld(const QString& folder, const QString& user, std::uint32_t id);
    QString Run(const QStringList& arguments);
    void Prepare(QProcess& manager) const;
    void StartManager();
    void Connect();
    Outcome Attend(const std::vector<Transfer>& transfers, const std::function<bool(const Outcome&)>& isOver);
    void Look(const std::vector<Transfer>& transfers, Outcome& outcome);
    void Take(const ManagerMessage& message, const std::vector<Transfer>& transfers, Outcome& outcome);
    void Say(const ManagerMessage& message);

    QString build_;
    Setup setup_;
    QTemporaryDir folder_;
    QProcess manager_;
    QLocalSocket desk_;
    ManagerMessageReader reader_;
    bool atDesk_ = false;
    std::uint16_t port_ = 0;
};
