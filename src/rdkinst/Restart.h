#pragma once

#include <QString>

/// Asks the HotSync Manager of a folder to end, and returns when it has: true, also when none was running.
/// The manager lets the operator decide, and a refusal closes nothing and is not told; so a manager that
/// has not gone after a minute goes on: false.
bool EndManager(const QString& folder);
