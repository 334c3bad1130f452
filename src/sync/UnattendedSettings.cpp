#include "sync/UnattendedSettings.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "core/Trace.h"

#include <exception>
#include <variant>

namespace {

struct Line {
    std::string_view Key;
    std::variant<bool UnattendedSettings::*, std::string UnattendedSettings::*> Value;
};

/// In the order in which the file has them.
constexpr Line FileLines[] = {
    {"Download=", &UnattendedSettings::Download},
    {"DownloadTemplate=", &UnattendedSettings::DownloadTemplate},
    {"Upload=", &UnattendedSettings::Upload},
    {"UploadTemplate=", &UnattendedSettings::UploadTemplate},
    {"Clear=", &UnattendedSettings::Clear},
    {"ClearTemplate=", &UnattendedSettings::ClearTemplate},
};

void CheckTemplate(std::string_view name) {
    if (!name.empty() && !IsPlainFileName(name)) throw RunTimeFailure(52, CodePageToUtf8(name));
}

void Read(std::string_view text, bool& value) {
    value = ReadYesNo(text);
}

void Read(std::string_view text, std::string& value) {
    CheckTemplate(Trim(text));
    value = Trim(text);
}

std::string_view Written(bool value) {
    return YesNoText(value);
}

std::string_view Written(const std::string& value) {
    CheckTemplate(value);
    return value;
}

void Glance(std::string_view text, bool& value) {
    value = SameText(Trim(text), "True");
}

void Glance(std::string_view text, std::string& value) {
    value = Trim(text);
}

/// Hands what stands behind a line's key to `take`, with the setting that it is for.
template <typename Take>
void TakeLine(std::string_view line, UnattendedSettings& settings, const Take& take) {
    for (const auto& [key, value] : FileLines) {
        if (!BeginsWith(line, key)) continue;
        const std::string_view text = line.substr(key.size());
        std::visit([&](auto member) { take(text, settings.*member); }, value);
    }
}

} // namespace

UnattendedSettings ReadUnattendedSettings(std::string_view path, UnattendedSettings settings) {
    TextReader file(path, TextReader::OwnFile);
    for (std::string line; file.ReadLine(line);) {
        try {
            TakeLine(line, settings, [](std::string_view text, auto& value) { Read(text, value); });
        } catch (const RunTimeFailure& failure) {
            throw FailureInLine(failure.Number(), path, file.LineNumber(), line);
        }
    }
    return settings;
}

UnattendedSettings GlanceAtUnattendedSettings(std::string_view path) noexcept {
    UnattendedSettings settings;
    try {
        TextReader file(path, TextReader::OwnFile);
        for (std::string line; file.ReadLine(line);)
            TakeLine(line, settings, [](std::string_view text, auto& value) { Glance(text, value); });
    } catch (const std::exception&) {
        // What was read so far is what it says.
    }
    return settings;
}

void SaveUA(std::string_view path, const UnattendedSettings& settings) {
    TraceEvent("frmOptions:SaveUA");
    SafeFile file(path);
    for (const auto& [key, value] : FileLines) {
        const auto text = std::visit([&](auto member) { return Written(settings.*member); }, value);
        file.WriteLine(std::string(key) + std::string(text));
    }
    file.Commit();
}

UnattendedSettings SelectionsInForce() {
    return {Global.RemoteSelect.ByTemplate(), Global.RemoteSelSettings, Global.UploadSelect.ByTemplate(),
            Global.UploadSelSettings,         Global.RemoteClearSelect, Global.RemoteClearSettings};
}

void PutInForce(const UnattendedSettings& settings) {
    Global.RemoteSelect = settings.Download;
    Global.RemoteSelSettings = settings.DownloadTemplate;
    Global.UploadSelect = settings.Upload;
    Global.UploadSelSettings = settings.UploadTemplate;
    Global.RemoteClearSelect = settings.Clear;
    Global.RemoteClearSettings = settings.ClearTemplate;
}

void TakeUnattendedSettings() {
    const std::string& name = Global.RemoteSyncSettings;
    CheckTemplate(name);
    PutInForce(ReadUnattendedSettings(Global.UnattendedTemplates + NameToPath(name) +
                                          std::string(UnattendedExtension),
                                      SelectionsInForce()));
}

void FindUnattendedTemplates() {
    const auto find = [](bool active, const std::string& folder, const std::string& name,
                         const char* extension) {
        if (!active) return;
        const std::string path = folder + NameToPath(name) + extension;
        if (!FileExists(path)) throw RunTimeFailure(53, path);
    };
    find(Global.UploadSelect.ByTemplate(), Global.UploadTemplates, Global.UploadSelSettings, ".ust");
    find(Global.RemoteClearSelect, Global.DownloadTemplates, Global.RemoteClearSettings, ".dct");
    find(Global.RemoteSelect.ByTemplate(), Global.DownloadTemplates, Global.RemoteSelSettings, ".dst");
}
