#include "tools/SupportDesk.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Something that stands before a link's own signs and does not end it.
bool IsMailAddress(std::string_view text) {
    const std::size_t at = text.find('@');
    if (at == 0 || at == std::string_view::npos || at + 1 == text.size()) return false;
    return std::all_of(text.begin(), text.end(), [&](const char& c) {
        const bool isTheSign = &c == &text[at];
        return isTheSign || IsLetterOrDigit(c) || std::string_view("._-+'").find(c) != std::string_view::npos;
    });
}

bool AreMailAddresses(std::string_view text) {
    for (std::size_t comma = text.find(','); comma != std::string_view::npos; comma = text.find(',')) {
        if (!IsMailAddress(text.substr(0, comma))) return false;
        text.remove_prefix(comma + 1);
    }
    return IsMailAddress(text);
}

/// A page of the web, and nothing else that a desktop might open or run.
bool IsWebAddress(std::string_view text) {
    const std::size_t begin = BeginsWith(text, "https://") ? 8 : BeginsWith(text, "http://") ? 7 : 0;
    if (begin == 0 || text.size() == begin || !IsLetterOrDigit(text[begin])) return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c > ' ' && c <= '~' && std::string_view("\"'<>\\^`{|}").find(c) == std::string_view::npos;
    });
}

struct Setting {
    std::string_view Key;
    std::string SupportDesk::*Value;
    bool (*IsRight)(std::string_view);
    const char* Reason;
};

constexpr Setting Settings[] = {
    {"Address=", &SupportDesk::Address, AreMailAddresses, "no mail address such as desk@example.com: "},
    {"Web=", &SupportDesk::Web, IsWebAddress, "no web address such as https://example.com/: "},
};

} // namespace

SupportDesk ReadSupportDesk() {
    SupportDesk desk;
    const std::string path = Global.AppPath + "Support.ini";
    if (!FileExists(path)) return desk;
    TextReader file(path, TextReader::OwnFile);
    for (std::string line; file.ReadLine(line);) {
        for (const Setting& setting : Settings) {
            if (!BeginsWith(line, setting.Key)) continue;
            const std::string_view value = Trim(std::string_view(line).substr(setting.Key.size()));
            if (!value.empty() && !setting.IsRight(value))
                throw FailureInLine(13, path, file.LineNumber(), setting.Reason + std::string(value));
            desk.*setting.Value = value;
        }
    }
    return desk;
}
