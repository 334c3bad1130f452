#include "core/Settings.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <string_view>

namespace {

constexpr std::int32_t TopLimit = 8500;   // twips
constexpr std::int32_t LeftLimit = 11550; // twips
constexpr std::size_t LongestQuote = 80;  // characters of a line that a failure shows

const char* Word(bool value) {
    return value ? "True" : "False";
}

bool ReadYesNo(std::string_view text) {
    const std::string_view word = Trim(text);
    if (SameText(word, "True")) return true;
    if (SameText(word, "False")) return false;
    if (IsNumeric(word)) return ToNumber(word) != 0;
    throw RunTimeFailure(13, "'" + std::string(word) + "' is neither True nor False");
}

/// A position that cannot be read counts as no value.
void ReadPosition(std::string_view text, std::int32_t& value) {
    try {
        value = ToLong(text);
    } catch (const RunTimeFailure&) {
        value = 0;
    }
}

void ReadWindowState(std::string_view text, std::int16_t& value) {
    std::int32_t wide = 0;
    ReadPosition(text, wide);
    value = wide >= 0 && wide <= 2 ? static_cast<std::int16_t>(wide) : std::int16_t{0};
}

void TakeLine(std::string_view line) {
    std::string_view value;
    const auto is = [&](std::string_view key) {
        if (!BeginsWith(line, key)) return false;
        value = line.substr(key.size());
        return true;
    };
    if (is("PurgeBackup="))
        Global.PurgeBackup = ReadYesNo(value);
    else if (is("PurgeDays="))
        Global.PurgeDays = ToInteger(value);
    else if (is("RemoteSyncSettings="))
        Global.RemoteSyncSettings = value;
    else if (is("RemoteSelect="))
        Global.RemoteSelect = ReadYesNo(value);
    else if (is("RemoteSelSettings="))
        Global.RemoteSelSettings = value;
    else if (is("RemoteClearSelect="))
        Global.RemoteClearSelect = ReadYesNo(value);
    else if (is("RemoteClearSettings="))
        Global.RemoteClearSettings = value;
    else if (is("UploadSelect="))
        Global.UploadSelect = ReadYesNo(value);
    else if (is("UploadSelSettings="))
        Global.UploadSelSettings = value;
    else if (is("UpdateDemoTemplates="))
        Global.UpdateDemoTemplates = ReadYesNo(value);
    else if (is("WindowState="))
        ReadWindowState(value, Global.WindowState);
    else if (is("MainTop="))
        ReadPosition(value, Global.MainTop);
    else if (is("MainLeft="))
        ReadPosition(value, Global.MainLeft);
    else if (is("MainHeight="))
        ReadPosition(value, Global.MainHeight);
    else if (is("MainWidth="))
        ReadPosition(value, Global.MainWidth);
    else if (is("LastReset="))
        Global.LastReset = CDate(value).value_or(DateTime{});
}

/// What the file says of the selections of templates.
struct Selections {
    bool RemoteSelect = false;
    std::string RemoteSelSettings;
    bool RemoteClearSelect = false;
    std::string RemoteClearSettings;
    bool UploadSelect = false;
    std::string UploadSelSettings;
};

void WriteIniFile(const Selections& selections) {
    SafeFile file(Global.IniFile);
    const auto key = [&](std::string_view name, std::string_view value) {
        file.WriteLine(OneLine(std::string(name).append("=").append(value)));
    };
    file.WriteLine("[Backup]");
    key("PurgeBackup", Word(Global.PurgeBackup));
    key("PurgeDays", std::to_string(Global.PurgeDays));
    file.WriteLine("");
    file.WriteLine("[Remote HotSync]");
    key("RemoteSyncSettings", Global.RemoteSyncSettings);
    key("RemoteSelect", Word(selections.RemoteSelect));
    key("RemoteSelSettings", selections.RemoteSelSettings);
    key("RemoteClearSelect", Word(selections.RemoteClearSelect));
    key("RemoteClearSettings", selections.RemoteClearSettings);
    key("UploadSelect", Word(selections.UploadSelect));
    key("UploadSelSettings", selections.UploadSelSettings);
    file.WriteLine("");
    file.WriteLine("[Updates]");
    key("UpdateDemoTemplates", Word(Global.UpdateDemoTemplates));
    file.WriteLine("");

    if (Global.MainTop > TopLimit || Global.MainTop < 0) Global.MainTop = 0;
    if (Global.MainLeft > LeftLimit || Global.MainLeft < 0) Global.MainLeft = 0;
    file.WriteLine("[Form Position]");
    key("WindowState", std::to_string(Global.WindowState));
    key("MainTop", std::to_string(Global.MainTop));
    key("MainLeft", std::to_string(Global.MainLeft));
    key("MainHeight", std::to_string(Global.MainHeight));
    key("MainWidth", std::to_string(Global.MainWidth));
    file.WriteLine("");

    if (Global.LastReset.IsZero()) Global.LastReset = Today();
    file.WriteLine("[Main Screen]");
    key("LastReset", DateAndTime(Global.LastReset));
    file.Commit();
}

void TakeDefaults() {
    const Globals fresh;
    Global.PurgeBackup = fresh.PurgeBackup;
    Global.PurgeDays = fresh.PurgeDays;
    Global.RemoteSyncSettings.clear();
    Global.RemoteSelect = false;
    Global.RemoteSelSettings.clear();
    Global.RemoteClearSelect = false;
    Global.RemoteClearSettings.clear();
    Global.UploadSelect = false;
    Global.UploadSelSettings.clear();
    Global.UpdateDemoTemplates = fresh.UpdateDemoTemplates;
    Global.LastReset = {};
}

} // namespace

void MakeIniFile() {
    TraceEvent("basCommon:MakeIniFile");
    TakeDefaults();
    WriteIniFile({});
}

void GetIniFile() {
    TraceEvent("basCommon:GetIniFile");
    if (!FileExists(Global.IniFile)) MakeIniFile();
    TakeDefaults();
    TextReader file(Global.IniFile, TextReader::OwnFile);
    std::string line;
    while (file.ReadLine(line)) {
        try {
            TakeLine(line);
        } catch (const RunTimeFailure& failure) {
            throw RunTimeFailure(failure.Number(), std::string(FileNameOf(Global.IniFile)) + ", line " +
                                                       std::to_string(file.LineNumber()) + ": " +
                                                       CodePageToUtf8(line.substr(0, LongestQuote)));
        }
        if (Global.LastReset.IsZero()) Global.LastReset = Today();
    }
    if (Global.LastReset.IsZero()) Global.LastReset = Today();
}

void UpdateIniFile() {
    TraceEvent("basCommon:UpdateIniFile");
    WriteIniFile({Global.RemoteSelect, Global.RemoteSelSettings, Global.RemoteClearSelect,
                  Global.RemoteClearSettings, Global.UploadSelect, Global.UploadSelSettings});
}

void DeselectRemoteSelect() {
    TraceEvent("basCommon:DeselectRemoteSelect");
    Selections off;
    off.RemoteClearSelect = Global.RemoteClearSelect;
    WriteIniFile(off);
}
