#pragma once

#include "hotsync/forms/ManagerDesk.h"
#include "hotsync/forms/frmHSProgress.h"
#include "hotsync/service/Listener.h"
#include "hotsync/service/OfficeDesk.h"

#include <optional>
#include <string>
#include <vector>

/// The HotSync Manager: its files, the handhelds' line, the programs' line, and the windows between them.
class Manager final : public ManagerDesk {
public:
    /// `folder` is the manager's, with its trailing separator. RunTimeFailure, with file, line and reason,
    /// when its users or settings cannot be read.
    explicit Manager(std::string folder);
    ~Manager() override;

    /// Opens both lines. RunTimeFailure 75 without the programs' one; without the handhelds' one the
    /// window and the log say so.
    void Start();

    HotSyncUsers& Users() override { return users_; }
    SessionLog& Log() override { return log_; }
    std::optional<std::uint32_t> UserInSession() const override;
    ListeningState Listening() const override { return listening_; }
    const ManagerSettings& Settings() const override { return settings_; }
    void TakeSettings(const ManagerSettings& settings) override;
    void OpenStandIn(const HotSyncUser& user) override;
    void End() override;

private:
    /// Passes what a session tells on to its window, and keeps whose session it is.
    class Watcher final : public SessionProgress {
    public:
        explicit Watcher(Manager& manager) : manager_(manager) {}
        void Begun(std::string_view user) override;
        void Step(Way way, std::string_view what, std::int32_t done, std::int32_t of) override;
        void Ended(std::string_view how, bool well) override;
        bool CancelAsked() override;

    private:
        Manager& manager_;
    };

    OfficeDesk::Services Services();
    void Listen();
    void Serve(QTcpSocket& socket, const std::string& caller);
    std::vector<std::string> Creators();
    ManagerMessage Welcome() const;
    void EndIfIdle();
    void TellState();

    std::string folder_;
    HotSyncUsers users_;
    SessionLog log_;
    ManagerSettings settings_;
    HotSyncProgress progress_;
    OfficeDesk desk_;
    Listener listener_;
    ListeningState listening_;
    std::optional<std::uint32_t> inSession_;
    bool endWanted_ = false;
};

/// The whole run of the HotSync Manager; the exit code. Options: `--minimised` starts it out of the way,
/// `--register` enters it into the registry and ends.
int RunManager(int argc, char** argv, const char* version);
