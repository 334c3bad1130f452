#pragma once

#include "sync/SFrmAX40.h"

#include <cstdint>
#include <map>
#include <string>

/// Which tables a session has replaced: those whose transfer the HotSync Manager says has ended well, and
/// those that are other files than before the session. The manager can come to an end between the putting
/// in place of a table and the word of it.
class Arrivals {
public:
    /// Remembers the table at `path` as it stands, there or not. A session does so for a table before it
    /// queues its upload.
    void Remember(const std::string& path);

    /// Forgets all tables: a session begins.
    void Clear() { versions_.clear(); }

    /// Whether a table that was remembered has come.
    bool Has(const SFrmAX40& control, const std::string& path) const;

private:
    std::map<std::string, std::uint64_t> versions_; ///< by path in any case; 0 for a table that was not there
};
