#pragma once

#include "sync/UnattendedSettings.h"

class QWidget;

/// Shows on a form of each activity "Yes" and its template, or "No", dimmed. The labels are lblUpload,
/// lblULActive and lblULTemplate, and likewise for Clear (CL) and Download (DL).
void ShowUnattendedActivities(QWidget& form, const UnattendedSettings& settings);

/// Takes the settings that Global.RemoteSyncSettings names. False when they cannot be used, since they or a
/// template of an active activity cannot be read: the operator has been told.
bool UnattendedSettingsCanBeUsed();

/// Stops unattended mode and brings the main screen back to idle. A session that is under way is first
/// served to its end, since what the handheld has sent is put together only then.
void StopUnattended();
