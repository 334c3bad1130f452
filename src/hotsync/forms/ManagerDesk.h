#pragma once

#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "hotsync/SessionLog.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Where the manager awaits handhelds.
struct ListeningState {
    std::string Address;    ///< as the settings name it
    std::uint16_t Port = 0; ///< 0: it does not listen
    std::string Why;        ///< then: the reason, UTF-8

    bool operator==(const ListeningState&) const = default;
};

/// What the windows of the HotSync Manager have of the manager: it outlives them and stands in
/// `Global.TheManagerDesk`. One thread.
class ManagerDesk {
public:
    ManagerDesk() = default;
    ManagerDesk(const ManagerDesk&) = delete;
    ManagerDesk& operator=(const ManagerDesk&) = delete;
    virtual ~ManagerDesk() = default;

    virtual HotSyncUsers& Users() = 0;
    virtual SessionLog& Log() = 0;

    /// The user whose handheld is in session; nothing between sessions.
    virtual std::optional<std::uint32_t> UserInSession() const = 0;

    virtual ListeningState Listening() const = 0;
    virtual const ManagerSettings& Settings() const = 0;

    /// Writes the settings and listens as they say; a session that runs goes on under the old ones.
    /// RunTimeFailure as WriteManagerSettings, nothing changed then. That it cannot listen there is no
    /// failure: Listening says so.
    virtual void TakeSettings(const ManagerSettings& settings) = 0;

    /// Starts the window of the user's stand-in handheld, which is made when there is none; or brings it to
    /// the front. RunTimeFailure 53 when its program cannot be started.
    virtual void OpenStandIn(const HotSyncUser& user) = 0;

    /// Ends the program as soon as no session runs. The operator has been asked.
    virtual void End() = 0;

    // The manager's window sets these; the manager calls them behind each change.
    std::function<void()> UsersChanged;
    std::function<void()> StateChanged; ///< of Listening or UserInSession
    std::function<void(const std::string& line)> LogWritten;
};
