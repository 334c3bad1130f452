#pragma once

#include "sync/UnattendedSettings.h"

#include <array>

class QLabel;

/// The labels of an activity: its name, whether it is active, its template.
struct ActivityLabels {
    QLabel *Name, *Active, *Template;
};

/// Upload, clear and download, in the order in which they are shown.
using ActivitiesLabels = std::array<ActivityLabels, 3>;

/// Shows of each activity "Yes" and its template, or "No", dimmed.
void ShowUnattendedActivities(const ActivitiesLabels& labels, const UnattendedSettings& settings);

/// Takes the settings that Global.RemoteSyncSettings names. False when they cannot be used, since they or a
/// template of an active activity cannot be read: the operator has been told.
bool UnattendedSettingsCanBeUsed();

/// Stops unattended mode and brings the main screen back to idle. A session that is under way is first
/// served to its end, since what the handheld has sent is put together only then.
void StopUnattended();
