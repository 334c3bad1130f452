#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What a HotSync session tells its control.
enum SessionStatus : std::int32_t {
    SessionBegun = 1,
    SessionEnded = 2,
    OperationFinished = 3,
};

/// A form's side of the HotSync Manager: its users, and the handheld that is in session. Texts are code
/// page 1252.
class SFrmAX40 {
public:
    SFrmAX40() = default;
    SFrmAX40(const SFrmAX40&) = delete;
    SFrmAX40& operator=(const SFrmAX40&) = delete;
    virtual ~SFrmAX40() = default;

    /// The HotSync user of the handheld that is in session.
    virtual std::string UserName() const = 0;
    virtual std::int32_t UserID() const = 0;

    /// A user that the HotSync Manager knows, from 0: empty behind the last one.
    virtual std::string HotSyncUser(int index) const = 0;

    /// The event: called on the form's thread with a status, one call at a time. Values other than
    /// those of SessionStatus may come.
    std::function<void(std::int32_t status)> HotSyncStatus;
};

/// All users that the HotSync Manager knows, in its order; none without a manager.
std::vector<std::string> HotSyncUsers(const SFrmAX40& control);
