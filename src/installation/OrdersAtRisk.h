#pragma once

#include "core/Text.h"
#include "installation/InstallFiles.h"
#include "sync/StatusStore.h"

#include <optional>
#include <string_view>

/// What the operator is asked before an install that could lose orders or double them: a Live install sends
/// the orders of this PC along, and either install with tables replaces those of a handheld that has been in
/// use, which this PC cannot look at. Nothing when no orders are at risk, and for Program Only.
///
/// A handheld has been in use when its row of the Links table has a machine id or an order number, or when
/// the store has an install of it. RunTimeFailure as TableScan.
std::optional<Text> AskBeforeInstall(InstallKind kind, std::string_view user, const StatusStore& store);
