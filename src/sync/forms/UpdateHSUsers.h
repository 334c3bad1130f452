#pragma once

class FormBehaviour;

/// Asks the operator, and registers the conduit for all HotSync users by UpdateHS.
void UpdateHSUsers(FormBehaviour& form);

/// Runs the registration program "rdkinst" of the Install directory, and answers the windows that it and the
/// HotSync Manager show meanwhile. Returns when they have come and gone, however long that takes, or when the
/// form or the process ends; the main screen begins no other one meanwhile. False when it could not be run,
/// of which the operator has been told, or when the form has gone.
bool UpdateHS(FormBehaviour& form);
