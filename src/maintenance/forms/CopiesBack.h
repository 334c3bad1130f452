#pragma once

#include "maintenance/SafetyCopies.h"

#include <vector>

/// Tells the operator which tables got back what the PC held before an upload; nothing where none did.
void TellRecovered(const std::vector<RecoveredTable>& tables);
