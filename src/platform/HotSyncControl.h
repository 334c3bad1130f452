#pragma once

#include "sync/SFrmAX40.h"

#include <memory>

/// A control for a form: what Global.MakeSFrmAX40 makes when it is set, else the platform's own. That one
/// has no HotSync Manager to speak to: it knows no user, and no event comes.
std::unique_ptr<SFrmAX40> NewSFrmAX40();
