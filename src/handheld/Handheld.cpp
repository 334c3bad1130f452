#include "handheld/Handheld.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int SecondsADay = 86400;

std::string SettingsFile(const std::string& folder) {
    return folder + "Handheld.txt";
}

/// In the handheld's folder and that of its databases, with their trailing separators.
std::string DatabasesFolder(const std::string& folder) {
    return AddBackslash(folder + "databases");
}

/// What a killed run left of a file that it was replacing.
void RemoveStrays(const std::string& folder) {
    for (const std::string& file : Global.TheDisk->FilesIn(folder)) {
        if (file.ends_with(SafeFile::WorkExtension)) RemoveQuietly(folder + file);
    }
}

HandheldSettings LoadSettings(const std::string& folder) {
    const std::string file = SettingsFile(folder);
    if (!Global.TheDisk->IsFile(file)) {
        throw Refusal("there is no handheld in " + folder + ": Handheld.txt is missing");
    }
    RemoveStrays(folder);
    RemoveStrays(DatabasesFolder(folder));
    return ReadSettings(ReadWholeFile(file), file);
}

/// Days since 1899-12-30 as whole seconds.
std::int64_t Seconds(const DateTime& date) {
    return std::llround(ToSerial(date) * SecondsADay);
}

} // namespace

Handheld::Handheld(std::string_view folder)
    : Settings(LoadSettings(AddBackslash(folder))),
      Store(DatabasesFolder(AddBackslash(folder)), Settings.Memory),
      folder_(AddBackslash(folder)) {}

void Handheld::Make(std::string_view folder, const HandheldSettings& settings) {
    const std::string path = AddBackslash(folder);
    if (Global.TheDisk->IsFile(SettingsFile(path)))
        throw Refusal("there is a handheld in " + path + " already");
    MakePath(DatabasesFolder(path));
    WriteWholeFile(SettingsFile(path), WriteSettings(settings));
}

DateTime Handheld::Clock() const {
    // A date of the wire's files has 32 bits of seconds since 1904.
    constexpr DateTime First{1904, 1, 2, 0, 0, 0}, Last{2040, 1, 1, 0, 0, 0};
    const DateTime now = Now();
    const double serial =
        ToSerial(IsValid(now) ? now : First) + static_cast<double>(Settings.ClockOffset) / SecondsADay;
    return FromSerial(std::clamp(serial, ToSerial(First), ToSerial(Last)));
}

void Handheld::SetClock(const DateTime& moment) {
    Settings.ClockOffset = Seconds(moment) - Seconds(Now());
}

void Handheld::SaveSettings() const {
    WriteWholeFile(SettingsFile(folder_), WriteSettings(Settings), false);
}

void Handheld::WriteLog(std::string_view text) const {
    WriteWholeFile(folder_ + "log.txt", CodePageToUtf8(text), false);
}

std::string Handheld::Log() const {
    const std::string file = folder_ + "log.txt";
    return FileExists(file) ? ReadWholeFile(file) : std::string();
}

void Handheld::Reset() {
    Store.RemoveAll();
    RemoveQuietly(folder_ + "log.txt");
    HandheldSettings fresh;
    fresh.Memory = Settings.Memory;
    fresh.Machine = Settings.Machine;
    fresh.IdSeed = Settings.IdSeed;
    Settings = fresh;
    SaveSettings();
}
