#pragma once

class FormBehaviour;
class ManagerLine;

/// Opens a line to the HotSync Manager, which needs a moment when it has just been started. Waits ten seconds
/// at most; false when it does not answer by then, or the form has gone.
bool AwaitManager(FormBehaviour& form, ManagerLine& line);

/// Brings the HotSync Manager's window before the operator, and starts the manager where none runs. The
/// operator is told when there is none, or it does not answer.
void ShowHotSyncManager(FormBehaviour& form);
