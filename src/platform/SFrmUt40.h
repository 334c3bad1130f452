#pragma once

#include "core/Text.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// How the run of the command queue has ended.
enum class FlushEnd {
    Done,      ///< a session was held
    Cancelled, ///< the operator cancelled in the progress window before one began
    Refused,   ///< the HotSync Manager waits for the handheld of another program
    Lost,      ///< the HotSync Manager has gone
    GivenUp,   ///< the caller goes no further, or the process ends
    NoManager, ///< none is registered, or none could be reached within ten seconds
};

/// Which way a transfer goes.
enum class Direction { Upload, Download };

/// Arms the HotSync Manager for the next handheld, with the caption in its progress window, and returns when
/// that session is over. It blocks in the event loop: the events of the enabled controls arrive meanwhile.
/// It ends as soon as `goesOn` is false, which is asked whenever something has happened: a form asks
/// whether it is still there. A manager that was started just now is waited for.
FlushEnd SF_FlushCommandQueue(const Text& caption, const std::function<bool()>& goesOn);

/// Adds the transfer of a table, by its full path, to what the next SF_FlushCommandQueue runs before
/// anything that a handler queues. That one forgets them, however it ends.
void SF_AddToCommandQueue(Direction direction, std::string_view path);

/// The HotSync user, in code page 1252, whose session a control of this process was called for last; empty
/// and 0 before the first one.
std::string SF_GetUserName();
std::uint32_t SF_GetUserID();
