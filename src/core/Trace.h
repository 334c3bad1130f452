#pragma once

#include <array>
#include <string>
#include <string_view>

/// The last 301 steps of the program, entry 0 the newest.
inline constexpr std::size_t TraceEntries = 301;

class TraceRing {
public:
    /// 0 is the newest. `index` below TraceEntries.
    const std::string& Entry(std::size_t index) const;
    /// Puts a text on top, each line end in it a blank; the oldest entry goes.
    void Push(std::string_view text);
    /// Empties all entries.
    void Clear();

    /// Sets entry `index`, below TraceEntries, as read from a file: a line without its end.
    void Set(std::size_t index, std::string_view text);

private:
    std::array<std::string, TraceEntries> entries_;
    std::size_t newest_ = 0;
};

/// Puts a line such as "frmMain1:Form_Load" on top of the trace and rewrites `Events.log` in the
/// application directory, so that after a crash the road that led there stands on disk. Never fails.
void TraceEvent(std::string_view text) noexcept;

/// Reads `Events.log` of the previous run into the ring; a file that cannot be opened empties it.
/// RunTimeFailure 9 when it holds more than 301 lines.
void LoadEvents();
