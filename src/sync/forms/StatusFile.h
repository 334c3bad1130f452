#pragma once

/// Runs a routine that reads or writes the status file. False when it could not: the operator has been
/// told, and the process ends.
bool WithStatusFile(void (*routine)());
