#include "core/Settings.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace {

constexpr std::int32_t TopLimit = 8500;   // twips
constexpr std::int32_t LeftLimit = 11550; // twips
constexpr std::string_view WindowSection = "[Form Position]";

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

using Member = std::variant<bool Globals::*, Selection Globals::*, std::int16_t Globals::*,
                            std::int32_t Globals::*, std::string Globals::*, DateTime Globals::*>;

struct Setting {
    std::string_view Section;
    std::string_view Key;
    Member Value;
};

/// In the order in which the file has them. A line counts for the first key that it begins with.
constexpr Setting Settings[] = {
    {"[Backup]", "PurgeBackup=", &Globals::PurgeBackup},
    {"[Backup]", "PurgeDays=", &Globals::PurgeDays},
    {"[Remote HotSync]", "RemoteSyncSettings=", &Globals::RemoteSyncSettings},
    {"[Remote HotSync]", "RemoteSelect=", &Globals::RemoteSelect},
    {"[Remote HotSync]", "RemoteSelSettings=", &Globals::RemoteSelSettings},
    {"[Remote HotSync]", "RemoteClearSelect=", &Globals::RemoteClearSelect},
    {"[Remote HotSync]", "RemoteClearSettings=", &Globals::RemoteClearSettings},
    {"[Remote HotSync]", "UploadSelect=", &Globals::UploadSelect},
    {"[Remote HotSync]", "UploadSelSettings=", &Globals::UploadSelSettings},
    {"[Updates]", "UpdateDemoTemplates=", &Globals::UpdateDemoTemplates},
    {WindowSection, "WindowState=", &Globals::WindowState},
    {WindowSection, "MainTop=", &Globals::MainTop},
    {WindowSection, "MainLeft=", &Globals::MainLeft},
    {WindowSection, "MainHeight=", &Globals::MainHeight},
    {WindowSection, "MainWidth=", &Globals::MainWidth},
    {"[Main Screen]", "LastReset=", &Globals::LastReset},
};

void Read(const Setting& setting, std::string_view text) {
    const auto take = [&](auto member) {
        auto& value = Global.*member;
        using Type = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, Selection>)
            value = ReadYesNo(text);
        else if constexpr (std::is_same_v<Type, std::string>)
            value = text;
        else if constexpr (std::is_same_v<Type, std::int32_t>)
            ReadPosition(text, value);
        else if constexpr (std::is_same_v<Type, DateTime>)
            value = CDate(text).value_or(DateTime{});
        else if (setting.Section == WindowSection)
            ReadWindowState(text, value);
        else
            value = ToInteger(text);
    };
    std::visit(take, setting.Value);
}

std::string Written(const Setting& setting) {
    const auto give = [](auto member) -> std::string {
        const auto& value = Global.*member;
        using Type = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, bool>)
            return std::string(YesNoText(value));
        else if constexpr (std::is_same_v<Type, Selection>)
            return std::string(YesNoText(value.ByTemplate()));
        else if constexpr (std::is_same_v<Type, std::string>)
            return value;
        else if constexpr (std::is_same_v<Type, DateTime>)
            return DateAndTime(value);
        else
            return std::to_string(value);
    };
    return std::visit(give, setting.Value);
}

/// All of them before the first counts: when the disk fails, the settings stay as they are.
std::vector<std::string> LinesOf(const std::string& path) {
    TextReader file(path, TextReader::OwnFile);
    std::vector<std::string> lines;
    for (std::string line; file.ReadLine(line);) lines.push_back(line);
    return lines;
}

void TakeLine(std::string_view line) {
    for (const Setting& setting : Settings) {
        if (BeginsWith(line, setting.Key)) return Read(setting, line.substr(setting.Key.size()));
    }
}

/// What DeselectRemoteSelect writes in place of the present value; nothing for any other key.
std::optional<std::string> Deselected(std::string_view key) {
    if (key == "RemoteSelect=" || key == "UploadSelect=") return std::string(YesNoText(false));
    if (key == "RemoteSelSettings=" || key == "RemoteClearSettings=" || key == "UploadSelSettings=")
        return "";
    return std::nullopt;
}

void WriteIniFile(bool deselect = false) {
    if (Global.MainTop > TopLimit || Global.MainTop < 0) Global.MainTop = 0;
    if (Global.MainLeft > LeftLimit || Global.MainLeft < 0) Global.MainLeft = 0;
    if (Global.LastReset.IsZero()) Global.LastReset = Today();

    SafeFile file(Global.IniFile);
    std::string_view section;
    for (const Setting& setting : Settings) {
        if (setting.Section != section) {
            if (!section.empty()) file.WriteLine("");
            section = setting.Section;
            file.WriteLine(section);
        }
        const auto off = deselect ? Deselected(setting.Key) : std::nullopt;
        file.WriteLine(OneLine(std::string(setting.Key) + (off ? *off : Written(setting))));
    }
    file.Commit();
}

/// The window keeps the place that it has: its default is the main form's own.
void TakeDefaults() {
    const Globals fresh;
    for (const Setting& setting : Settings) {
        if (setting.Section == WindowSection) continue;
        std::visit([&](auto member) { Global.*member = fresh.*member; }, setting.Value);
    }
}

} // namespace

std::string_view YesNoText(bool value) {
    return value ? "True" : "False";
}

bool ReadYesNo(std::string_view text) {
    const std::string_view word = Trim(text);
    if (SameText(word, YesNoText(true))) return true;
    if (SameText(word, YesNoText(false))) return false;
    if (IsNumeric(word)) return ToNumber(word) != 0;
    throw RunTimeFailure(13, "'" + CodePageToUtf8(word) + "' is neither True nor False");
}

void MakeIniFile() {
    TraceEvent("basCommon:MakeIniFile");
    TakeDefaults();
    WriteIniFile();
}

void GetIniFile() {
    TraceEvent("basCommon:GetIniFile");
    if (!FileExists(Global.IniFile)) MakeIniFile();
    const std::vector<std::string> lines = LinesOf(Global.IniFile);
    TakeDefaults();
    std::int64_t number = 0;
    for (const std::string& line : lines) {
        ++number;
        try {
            TakeLine(line);
        } catch (const RunTimeFailure& failure) {
            throw FailureInLine(failure.Number(), Global.IniFile, number, line);
        }
        if (Global.LastReset.IsZero()) Global.LastReset = Today();
    }
    if (Global.LastReset.IsZero()) Global.LastReset = Today();
}

void UpdateIniFile() {
    TraceEvent("basCommon:UpdateIniFile");
    WriteIniFile();
}

void DeselectRemoteSelect() {
    TraceEvent("basCommon:DeselectRemoteSelect");
    WriteIniFile(true);
}
