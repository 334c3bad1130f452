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

/// Writes a file of unattended settings from scratch. RunTimeFailure 52 for a template that is not a
/// plain file name, otherwise as SafeFile.
void SaveUA(std::string_view path, const UnattendedSettings& settings);
