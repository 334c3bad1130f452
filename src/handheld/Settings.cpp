#include "handheld/Settings.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/Refusal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <limits>
#include <set>
#include <vector>

namespace {

constexpr std::string_view FirstLine =
    "# A stand-in for a handheld: what it knows of itself. Its databases lie in the folder beside.\n";
constexpr std::size_t LongestOrderNumber = 8;

/// A text in one line: control characters and the percent sign as %XX.
std::string OneLine(std::string_view text) {
    constexpr std::string_view hex = "0123456789ABCDEF";
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || c == '%') {
            line += {'%', hex[byte >> 4], hex[byte & 15]};
        } else {
            line += c;
        }
    }
    return CodePageToUtf8(line);
}

std::string FromOneLine(std::string_view line) {
    const std::string bytes = Utf8ToCodePage(line);
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        unsigned code = 0;
        const char* const first = bytes.data() + at + 1;
        if (bytes[at] == '\0') throw Refusal("a NUL byte");
        if (bytes[at] != '%') {
            text += bytes[at];
        } else if (at + 2 < bytes.size() && std::from_chars(first, first + 2, code, 16).ptr == first + 2 &&
                   code != 0) {
            text += static_cast<char>(code);
            at += 2;
        } else {
            throw Refusal("a % without the two digits of a character behind it");
        }
    }
    return text;
}

std::string Limited(std::string_view line, std::size_t most) {
    std::string text = FromOneLine(line);
    if (text.size() > most) throw Refusal("more than " + std::to_string(most) + " characters");
    return text;
}

template <typename Number>
Number Whole(std::string_view text, Number least, Number most) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [ptr, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || ptr != end || number < least || number > most) {
        throw Refusal("not a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return number;
}

std::uint32_t Id(std::string_view text) {
    return Whole<std::uint32_t>(text, 0, std::numeric_limits<std::uint32_t>::max());
}

bool YesNo(std::string_view text) {
    if (text != "yes" && text != "no") throw Refusal("neither yes nor no");
    return text == "yes";
}

std::string Moment(const DlpDate& date) {
    return DateAndTime(ToDateTime(date));
}

DlpDate ReadMoment(std::string_view text) {
    if (text.empty()) return {};
    const std::optional<DateTime> date = CDate(text);
    if (!date || date->Year < HandheldSettings::FirstYear) throw Refusal("not a date and time");
    return ToDlpDate(*date);
}

std::string OrderNumber(std::string_view text) {
    if (text.size() > LongestOrderNumber ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        throw Refusal("not up to 8 digits");
    }
    return std::string(text);
}

/// A line of the file: its key, and both ways.
struct Line {
    std::string_view Key;
    std::string (*Write)(const HandheldSettings&);
    void (*Read)(HandheldSettings&, std::string_view);
};

using S = HandheldSettings;
using V = std::string_view;

constexpr std::array Lines{
    Line{"Name", [](const S& s) { return OneLine(s.User.Name); },
         [](S& s, V v) { s.User.Name = Limited(v, LongestUserName); }},
    Line{"UserId", [](const S& s) { return std::to_string(s.User.UserId); },
         [](S& s, V v) { s.User.UserId = Id(v); }},
    Line{"ViewerId", [](const S& s) { return std::to_string(s.User.ViewerId); },
         [](S& s, V v) { s.User.ViewerId = Id(v); }},
    Line{"LastSyncPC", [](const S& s) { return std::to_string(s.User.LastSyncPC); },
         [](S& s, V v) { s.User.LastSyncPC = Id(v); }},
    Line{"LastGoodSync", [](const S& s) { return Moment(s.User.LastGoodSync); },
         [](S& s, V v) { s.User.LastGoodSync = ReadMoment(v); }},
    Line{"LastSync", [](const S& s) { return Moment(s.User.LastSync); },
         [](S& s, V v) { s.User.LastSync = ReadMoment(v); }},
    Line{"LastEnd", [](const S& s) { return OneLine(s.LastEnd); },
         [](S& s, V v) { s.LastEnd = Limited(v, S::LongestEnd); }},
    Line{"Machine", [](const S& s) { return OneLine(s.Machine); },
         [](S& s, V v) { s.Machine = Limited(v, S::LongestMachine); }},
    Line{"LastOrder", [](const S& s) { return s.LastOrder; },
         [](S& s, V v) { s.LastOrder = OrderNumber(v); }},
    Line{"Memory", [](const S& s) { return std::to_string(s.Memory); },
         [](S& s, V v) { s.Memory = Whole<std::uint64_t>(v, 1, S::MostMemory); }},
    Line{"ClockOffset", [](const S& s) { return std::to_string(s.ClockOffset); },
         [](S& s, V v) { s.ClockOffset = Whole<std::int64_t>(v, -S::MostClockOffset, S::MostClockOffset); }},
    Line{"IdSeed", [](const S& s) { return std::to_string(s.IdSeed); },
         [](S& s, V v) { s.IdSeed = Whole<std::uint32_t>(v, 0, LastRecordId); }},
    Line{"LanSync", [](const S& s) { return std::string(s.LanSync ? "yes" : "no"); },
         [](S& s, V v) { s.LanSync = YesNo(v); }},
    Line{"PCName", [](const S& s) { return OneLine(s.PCName); },
         [](S& s, V v) { s.PCName = Limited(v, S::LongestHostName); }},
    Line{"PCAddress", [](const S& s) { return OneLine(s.PCAddress); },
         [](S& s, V v) { s.PCAddress = Limited(v, S::LongestHostName); }},
    Line{"PCMask", [](const S& s) { return OneLine(s.PCMask); },
         [](S& s, V v) { s.PCMask = Limited(v, S::LongestHostName); }},
};

} // namespace

std::string WriteSettings(const HandheldSettings& settings) {
    std::string text(FirstLine);
    for (const Line& line : Lines) text += std::string(line.Key) + '=' + line.Write(settings) + '\n';
    return text;
}

HandheldSettings ReadSettings(std::string_view text, std::string_view file) {
    HandheldSettings settings;
    std::set<std::string_view> seen;
    int number = 0;
    for (std::string_view line : SplitText(text, "\n")) {
        ++number;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() || line.starts_with('#')) continue;
        const std::size_t equals = line.find('=');
        const std::string_view key = line.substr(0, equals);
        const auto known =
            std::find_if(Lines.begin(), Lines.end(), [key](const Line& one) { return one.Key == key; });
        try {
            if (equals == std::string_view::npos) throw Refusal("no = in it");
            if (known == Lines.end()) throw Refusal("a key that is not known: " + std::string(key));
            if (!seen.insert(known->Key).second)
                throw Refusal("the key " + std::string(key) + " for the second time");
            known->Read(settings, line.substr(equals + 1));
        } catch (const Refusal& refusal) {
            throw Refusal(std::string(file) + ", line " + std::to_string(number) + ": " + refusal.what());
        }
    }
    return settings;
}

DlpDate ToDlpDate(const DateTime& date) {
    if (!IsValid(date)) return {};
    return {static_cast<std::uint16_t>(date.Year),  static_cast<std::uint8_t>(date.Month),
            static_cast<std::uint8_t>(date.Day),    static_cast<std::uint8_t>(date.Hour),
            static_cast<std::uint8_t>(date.Minute), static_cast<std::uint8_t>(date.Second)};
}

DateTime ToDateTime(const DlpDate& date) {
    const DateTime moment{date.Year, date.Month, date.Day, date.Hour, date.Minute, date.Second};
    return IsValid(moment) ? moment : DateTime{};
}
