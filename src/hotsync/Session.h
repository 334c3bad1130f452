#pragma once

#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "hotsync/SessionLog.h"
#include "hotsync/SessionProgress.h"
#include "hotsync/TableTransfer.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A transfer that a program has asked for.
struct QueuedTransfer {
    enum class Way { Upload, Download };

    Way Direction = Way::Upload;
    std::string Path; ///< of the table, in the file system's encoding
};

/// How a transfer ended.
struct EndedTransfer {
    std::string Path; ///< as it was queued
    bool Well = false;
};

/// The program on the desk that takes part in sessions, as a session sees it. There may be none.
class SessionDesk {
public:
    virtual ~SessionDesk() = default;

    /// Whether a program takes part in sessions of this application.
    virtual bool TakesPart(std::string_view creator) = 0;

    /// Tells the program a status, behind those that it has not handled yet; with status 3 how its
    /// transfer ended.
    virtual void Raise(std::int32_t status, const HotSyncUser& user, std::string_view creator,
                       const EndedTransfer* ended) = 0;

    /// Whether the program that was told of the session still takes part in it. When not, what it has
    /// queued is dropped.
    virtual bool IsThere() = 0;

    /// True while the program handles a status. Waits until it has, but at most so long; a program that
    /// has gone is not busy.
    virtual bool IsBusy(std::chrono::milliseconds wait) = 0;

    /// The next transfer to run, oldest first.
    virtual std::optional<QueuedTransfer> NextTransfer() = 0;

    /// Drops what is queued: the session is over.
    virtual void DropTransfers() = 0;

    /// Which of these users the handheld without a user belongs to; waits for the operator for at most
    /// `wait`, and is asked again then. Nothing when nobody wants to say.
    enum class Picking { Waiting, Picked, Refused };
    virtual Picking PickUser(const std::vector<HotSyncUser>& users, std::chrono::milliseconds wait,
                             std::uint32_t& picked) = 0;
};

/// One handheld's HotSync, from the greeting to the end.
///
/// The program is told status 1 when the session has begun, 3 behind each transfer that the line has
/// survived, well or not, and 2 at the end; between them the handheld is kept waiting. What has arrived
/// whole is kept, however the session ends.
class Session {
public:
    struct Surroundings {
        HotSyncUsers& Users;
        SessionLog& Log;
        SessionProgress& Progress;
        SessionDesk& Desk;
        const ManagerSettings& Settings;
        /// Applications that a program is registered for: four characters each.
        std::vector<std::string> Creators;
    };

    /// `caller` is where the handheld calls from, for the log. `address` as HandheldLine::Handshake.
    Session(ByteStream& stream, const Surroundings& around, std::string caller, std::uint32_t address);

    enum class End { Well, Broken, Cancelled, Refused };

    /// Holds the session. Never fails: the log says how it ended.
    End Run();

private:
    void Greet();
    void FindUser();
    HotSyncUser PickUser();
    void RunConduit(const std::string& creator);
    /// False when it failed and the session goes on.
    bool Move(const QueuedTransfer& transfer);
    void SayRecovered(const std::vector<std::string>& names);
    void InstallFiles();
    bool IsGivenUp(const std::string& folder);
    void SayGoodbye();
    void WaitForDesk();
    void CheckCancel();
    void HangUp(EndCode code) noexcept;
    End EndAs(End end, const std::string& how) noexcept;

    void Say(const std::string& line);

    Surroundings around_;
    HandheldLine line_;
    TableTransfer transfer_;
    std::string caller_;
    std::uint32_t address_;
    ByteStream::Clock::time_point begun_;
    UserInfo handheld_;
    HotSyncUser user_;   ///< Id 0: not known yet
    std::string moving_; ///< the table or file that moves
    SessionProgress::Way way_ = SessionProgress::Way::ToHandheld;
    std::string creator_;                 ///< whose program has been told that the session began
    std::int32_t moved_ = 0, failed_ = 0; ///< transfers and files
    bool recovered_ = false;
};
