#pragma once

class FormBehaviour;

/// Registers the conduit for all HotSync users: asks the operator, runs the registration program "rdkinst" of
/// the Install directory, and answers the windows that it and the HotSync Manager show meanwhile. Returns
/// when they have come and gone, however long that takes, or when the form or the process ends.
void UpdateHSUsers(FormBehaviour& form);
