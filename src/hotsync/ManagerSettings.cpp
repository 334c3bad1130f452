#include "hotsync/ManagerSettings.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "hotsync/ListeningAddress.h"
#include "hotsync/PlainText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <random>
#include <set>
#include <type_traits>
#include <variant>
#include <vector>

namespace {

constexpr std::string_view FileName = "HotSync.ini";
constexpr std::string_view Section = "[HotSync]";
constexpr std::string_view IdKey = "PCId";

using Member =
    std::variant<std::string ManagerSettings::*, bool ManagerSettings::*, std::uint16_t ManagerSettings::*,
                 std::int32_t ManagerSettings::*, std::uint32_t ManagerSettings::*>;

struct Setting {
    std::string_view Key;
    Member Value;
    ManagerSettingRange Range; ///< of a whole number
};

constexpr ManagerSettingRange Ports{0, 65535};

/// In the file's order. A handheld gives up after half a minute without a sign of life.
constexpr Setting Settings[] = {
    {"Address", &ManagerSettings::Address, {}},
    {"Port", &ManagerSettings::Port, Ports},
    {"Lookup", &ManagerSettings::Lookup, {}},
    {"LookupPort", &ManagerSettings::LookupPort, Ports},
    {"HandshakeSeconds", &ManagerSettings::HandshakeSeconds, {1, 600}},
    {"AnswerSeconds", &ManagerSettings::AnswerSeconds, {1, 600}},
    {"SessionMinutes", &ManagerSettings::SessionMinutes, {1, 1440}},
    {"KeepAliveSeconds", &ManagerSettings::KeepAliveSeconds, {1, 25}},
    {"WaitingCallers", &ManagerSettings::WaitingCallers, {0, 100}},
    {"LargestTableMB", &ManagerSettings::LargestTableMB, {1, 1024}},
    {"LargestFileMB", &ManagerSettings::LargestFileMB, {1, 1024}},
    {IdKey, &ManagerSettings::PCId, {1, std::numeric_limits<std::uint32_t>::max()}},
};

const Setting* Find(std::string_view key) {
    const auto found = std::find_if(std::begin(Settings), std::end(Settings),
                                    [&](const Setting& each) { return SameText(each.Key, key); });
    return found == std::end(Settings) ? nullptr : &*found;
}

const Setting& Require(std::string_view key) {
    const Setting* setting = Find(key);
    if (!setting) throw RunTimeFailure(5, "no setting of the HotSync Manager: " + CodePageToUtf8(key));
    return *setting;
}

/// What is wrong with a value or a line, code page 1252.
struct BadValue {
    std::string Why;
};

std::int64_t ReadNumber(const Setting& setting, std::string_view text) {
    const auto [least, most] = setting.Range;
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc{} && end == text.data() + text.size() && number >= least && number <= most)
        return number;
    throw BadValue{std::string(setting.Key) + " is a whole number from " + std::to_string(least) + " to " +
                   std::to_string(most) + ", not " + WithoutControls(text)};
}

bool ReadFlag(const Setting& setting, std::string_view text) {
    try {
        return ReadYesNo(text);
    } catch (const RunTimeFailure&) {
        throw BadValue{std::string(setting.Key) + " is True or False, not " + WithoutControls(text)};
    }
}

std::string ReadAddress(const Setting& setting, std::string_view text) {
    if (IsListeningAddress(text)) return std::string(text);
    throw BadValue{std::string(setting.Key) + " is an address in numbers or *, not " + WithoutControls(text)};
}

void Read(ManagerSettings& settings, const Setting& setting, std::string_view untrimmed) {
    const std::string_view text = Trim(untrimmed);
    const auto take = [&](auto member) {
        auto& value = settings.*member;
        using Type = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, std::string>)
            value = ReadAddress(setting, text);
        else if constexpr (std::is_same_v<Type, bool>)
            value = ReadFlag(setting, text);
        else
            value = static_cast<Type>(ReadNumber(setting, text));
    };
    std::visit(take, setting.Value);
}

std::string Written(const ManagerSettings& settings, const Setting& setting) {
    const auto give = [&](auto member) -> std::string {
        const auto& value = settings.*member;
        using Type = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, std::string>)
            return value;
        else if constexpr (std::is_same_v<Type, bool>)
            return std::string(YesNoText(value));
        else
            return std::to_string(value);
    };
    return std::visit(give, setting.Value);
}

// ---- the file ----

std::string FileIn(std::string_view folder) {
    return AddBackslash(folder) + std::string(FileName);
}

/// None when there is no file yet.
std::vector<std::string> LinesOf(const std::string& path) {
    std::vector<std::string> lines;
    try {
        TextReader file(path, TextReader::OwnFile);
        for (std::string line; file.ReadLine(line);) lines.push_back(line);
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() != 53) throw;
    }
    if (!lines.empty() && lines.front().starts_with(Utf8Mark)) lines.front().erase(0, Utf8Mark.size());
    return lines;
}

/// What a line of the file is.
enum class Line {
    Remark,    ///< or blank
    OurHead,   ///< the line "[HotSync]"
    OtherHead, ///< that of another section
    Setting,   ///< of our section
    Other,     ///< of another section
    Nowhere,   ///< before the first section
};

/// Goes through the lines of a file from the first to the last.
class Sections {
public:
    Line Next(std::string_view line) {
        const std::string_view text = Trim(line);
        if (text.empty() || text.front() == ';' || text.front() == '#') return Line::Remark;
        if (text.front() != '[') return inside_;
        inside_ = SameText(text, Section) ? Line::Setting : Line::Other;
        return inside_ == Line::Setting ? Line::OurHead : Line::OtherHead;
    }

private:
    Line inside_ = Line::Nowhere;
};

std::string_view KeyOf(std::string_view line) {
    return Trim(line.substr(0, line.find('=')));
}

/// A line of the section. Keys of other programs, and of later ones, are passed by.
void TakeLine(std::string_view line, ManagerSettings& settings, std::set<std::string_view>& read) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) throw BadValue{"not Key=value: " + WithoutControls(line)};
    const Setting* setting = Find(KeyOf(line));
    if (!setting) return;
    if (!read.insert(setting->Key).second) throw BadValue{std::string(setting->Key) + " stands here again"};
    Read(settings, *setting, line.substr(equals + 1));
}

ManagerSettings ReadLines(const std::vector<std::string>& lines) {
    ManagerSettings settings;
    std::set<std::string_view> read;
    Sections sections;
    std::int64_t number = 0;
    for (const std::string& line : lines) {
        ++number;
        try {
            const Line kind = sections.Next(line);
            if (kind == Line::Nowhere)
                throw BadValue{"a line before the section [HotSync]: " + WithoutControls(line)};
            if (kind == Line::Setting) TakeLine(line, settings, read);
        } catch (const BadValue& bad) {
            throw FailureInLine(13, FileName, number, bad.Why);
        }
    }
    return settings;
}

std::string LineOf(const ManagerSettings& settings, const Setting& setting) {
    return std::string(setting.Key) + '=' + Written(settings, setting);
}

/// The lines of a file with these settings in them; the missing ones come at the end of the section.
std::vector<std::string> WithSettings(const std::vector<std::string>& lines,
                                      const ManagerSettings& settings) {
    std::vector<std::string> with;
    std::set<std::string_view> written;
    std::size_t end = 0;
    Sections sections;
    for (const std::string& line : lines) {
        const Line kind = sections.Next(line);
        const Setting* setting = kind == Line::Setting ? Find(KeyOf(line)) : nullptr;
        if (!setting)
            with.push_back(line);
        else if (written.insert(setting->Key).second)
            with.push_back(LineOf(settings, *setting));
        if (kind == Line::OurHead || kind == Line::Setting) end = with.size();
    }
    if (end == 0) {
        if (!with.empty()) with.emplace_back();
        with.emplace_back(Section);
        end = with.size();
    }
    for (const Setting& setting : Settings) {
        if (written.contains(setting.Key)) continue;
        with.insert(with.begin() + static_cast<std::ptrdiff_t>(end), LineOf(settings, setting));
        ++end;
    }
    return with;
}

std::uint32_t AnyId() {
    std::random_device random;
    return std::uniform_int_distribution<std::uint32_t>(1)(random);
}

} // namespace

std::optional<ManagerSettingRange> RangeOfManagerSetting(std::string_view key) {
    const ManagerSettingRange range = Require(key).Range;
    if (range.Most == 0) return std::nullopt;
    return range;
}

std::string ManagerSettingText(const ManagerSettings& settings, std::string_view key) {
    return Written(settings, Require(key));
}

void SetManagerSetting(ManagerSettings& settings, std::string_view key, std::string_view text) {
    try {
        Read(settings, Require(key), text);
    } catch (const BadValue& bad) {
        throw RunTimeFailure(13, CodePageToUtf8(bad.Why));
    }
}

ManagerSettings ReadManagerSettings(std::string_view folder) {
    RemoveQuietly(FileIn(folder) + std::string(SafeFile::WorkExtension));
    ManagerSettings settings = ReadLines(LinesOf(FileIn(folder)));
    if (settings.PCId == 0) {
        settings.PCId = AnyId();
        WriteManagerSettings(folder, settings);
    }
    return settings;
}

void WriteManagerSettings(std::string_view folder, const ManagerSettings& settings) {
    ManagerSettings checked;
    for (const Setting& setting : Settings)
        SetManagerSetting(checked, setting.Key, Written(settings, setting));

    const std::vector<std::string> lines = LinesOf(FileIn(folder));
    SafeFile file(FileIn(folder));
    for (const std::string& line : WithSettings(lines, settings)) file.WriteLine(line);
    file.Commit();
}
