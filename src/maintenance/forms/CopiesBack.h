#pragma once

#include "core/Text.h"
#include "maintenance/SafetyCopies.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

/// Tells the operator which tables got back what the PC held before an upload, behind `why` they had not: a
/// session that the end of the program broke off (SessionRecovered), or a merge that failed (CopiesPutBack).
/// Nothing where none did.
void TellRecovered(const std::vector<RecoveredTable>& tables, MessageId why);

/// RecoverBeforeReplacing, and tells what it has put back; nothing when that failed for one of these tables:
/// the operator has been told then, and nothing may be done with them.
std::optional<std::vector<RecoveredTable>> PutCopiesBack(std::span<const std::string> tables);
