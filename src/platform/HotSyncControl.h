#pragma once

#include "sync/SFrmAX40.h"

#include <memory>

/// A control for a form: what Global.MakeSFrmAX40 makes when it is set, else the platform's own.
///
/// That one reaches the HotSync Manager by its local socket. It connects when it is first asked for users or
/// enabled, and waits a second at most for the answer; while it is enabled it looks for a manager every
/// second, so that one that starts later finds it. It raises HotSyncStatus from the event loop, one at a
/// time, and tells the manager when the handler has returned; when the connection is lost in the middle of a
/// session, it raises the end of that session itself. What a handler throws is shown and ends the process. A
/// control may be destroyed inside its own event.
std::unique_ptr<SFrmAX40> NewSFrmAX40();
