#pragma once

#include "sync/SessionStatus.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What goes with every queued transfer. The HotSync Manager has one converter and no options; a call
/// that asks for others is refused.
struct TransferSettings {
    std::string Creator = "ZUK2";
    std::string Converter = "SDDI_PalmDB.dll";
    std::int32_t Option = 0;
    std::uint8_t Flag1 = 0, Flag2 = 0;

    friend bool operator==(const TransferSettings&, const TransferSettings&) = default;
};

/// A form's side of the HotSync Manager: its users, and the handheld that is in session. Texts are code
/// page 1252 but for paths, which are in the file system's encoding.
class SFrmAX40 {
public:
    SFrmAX40() = default;
    SFrmAX40(const SFrmAX40&) = delete;
    SFrmAX40& operator=(const SFrmAX40&) = delete;
    virtual ~SFrmAX40() = default;

    /// Whether sessions reach this control. Off at first. A manager that starts later finds it enabled:
    /// to enable it fails in no case.
    virtual bool Enabled() const = 0;
    virtual void SetEnabled(bool enabled) = 0;

    /// The HotSync user of the handheld that is in session, or was last.
    virtual std::string UserName() const = 0;
    /// Its number, 32 bits: negative from 2^31 on. 0 before the first session.
    virtual std::int32_t UserID() const = 0;

    /// The application in session: four characters as one number, the first the highest byte; 0 before
    /// the first session.
    virtual std::int32_t CreatorID() const = 0;

    /// A user that the HotSync Manager knows, from 0: empty behind the last one.
    virtual std::string HotSyncUser(int index) const = 0;

    /// Queues the transfer of a handheld database into the table at `path`, or of that table to the
    /// handheld; the table's file name says which database. Only inside HotSyncStatus. Returns at once; how
    /// the transfer ends is told by EndedWell. RunTimeFailure 5 outside HotSyncStatus, for a path that names
    /// no table, and for settings other than those above.
    virtual void QueueUpload(std::string_view path, const TransferSettings& settings = {}) = 0;
    virtual void QueueDownload(std::string_view path, const TransferSettings& settings = {}) = 0;

    /// Whether a transfer of the table at `path`, queued in the session that runs or was last, has ended
    /// and ended well. Paths as they were queued, without regard to case.
    virtual bool EndedWell(std::string_view path) const = 0;

    /// Puts a file into a user's install folder: the next session of that user installs it. See
    /// sync/InstallFolder.h for the failures.
    virtual void AddInstall(std::string_view file, std::string_view user) = 0;

    /// The event: called on the form's thread with a status, one call at a time. Values other than
    /// those of SessionStatus may come.
    std::function<void(std::int32_t status)> HotSyncStatus;
};

/// All users that the HotSync Manager knows, in its order; none without a manager.
std::vector<std::string> KnownUsers(const SFrmAX40& control);
