#pragma once

#include "core/Text.h"
#include "platform/Form.h"

/// To be called before the MakeBackup of an operation that empties or replaces tables. Where a backup of this
/// very second stands, it waits for the next one: the new backup would take its place, and what the operation
/// before has emptied would be in none. False when the form has gone meanwhile.
bool AwaitOwnSecond(FormBehaviour& form);

/// Tells that there is no backup, and what becomes of the operation: `text`, and behind it the file that
/// stopped the last MakeBackup.
void TellNoBackup(MessageId text);
