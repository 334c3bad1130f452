#pragma once

/// Whether the table that is chosen for the browser has an editor.
bool HasEditor();

/// Opens that editor at the record that is selected (Global.SelectedRow); one that is open goes there.
/// False when it could not be opened: the operator has been told.
bool OpenEditor();
