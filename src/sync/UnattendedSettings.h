#pragma once

#include <string>
#include <string_view>

/// The extension of files of unattended settings.
inline constexpr std::string_view UnattendedExtension = ".uhs";

/// What unattended mode does with each handheld. A template is a file name without extension, in code
/// page 1252, or empty; that of an activity that is off is kept for the day when it is on again.
struct UnattendedSettings {
    bool Download = false;
    std::string DownloadTemplate;
    bool Upload = false;
    std::string UploadTemplate;
    bool Clear = false;
    std::string ClearTemplate;

    bool operator==(const UnattendedSettings&) const = default;
};

/// Reads a file of unattended settings over those that are in force: what the file has no line for
/// stays. RunTimeFailure as TextReader, 13 for an activity that is neither True nor False, 52 for a
/// template that is not a plain file name.
UnattendedSettings ReadUnattendedSettings(std::string_view path, UnattendedSettings settings = {});

/// What a file says that may be damaged, for a look at it: an activity is on where its line says True,
/// and a template is what stands there. What cannot be read is off and empty. Never fails.
UnattendedSettings GlanceAtUnattendedSettings(std::string_view path) noexcept;

/// Writes a file of unattended settings from scratch. RunTimeFailure 52 for a template that is not a
/// plain file name, otherwise as SafeFile.
void SaveUA(std::string_view path, const UnattendedSettings& settings);

/// What sessions do, as Global has it in RemoteSelect and its neighbours.
UnattendedSettings SelectionsInForce();

/// Makes them those that the next sessions go by.
void PutInForce(const UnattendedSettings& settings);

/// Reads the file that Global.RemoteSyncSettings names over the selections in force. RunTimeFailure as
/// ReadUnattendedSettings; they are then as they were.
void TakeUnattendedSettings();

/// Looks whether the templates of the activities that are on are there. RunTimeFailure 53 for the first that
/// is not: no session could do without it.
void FindUnattendedTemplates();
