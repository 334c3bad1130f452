#include "hotsync/ListeningAddress.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace {

std::string_view TakeUpTo(std::string_view& text, char end) {
    const std::size_t at = text.find(end);
    const std::string_view piece = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
    return piece;
}

bool IsNumberUpTo(std::string_view digits, int base, unsigned most) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return error == std::errc{} && end == digits.data() + digits.size() && value <= most;
}

/// A number with a zero before it is octal to some programs, and so none here.
bool IsIPv4(std::string_view text) {
    if (std::count(text.begin(), text.end(), '.') != 3 || text.ends_with('.')) return false;
    while (!text.empty()) {
        const std::string_view part = TakeUpTo(text, '.');
        if ((part.size() > 1 && part.front() == '0') || !IsNumberUpTo(part, 10, 255)) return false;
    }
    return true;
}

/// The groups of four hexadecimal digits in one half of an IPv6 address, an IPv4 address at the end of the
/// last half for two of them; nothing when it is none.
std::optional<int> Groups(std::string_view half, bool last) {
    int groups = 0;
    if (half.ends_with(':')) return std::nullopt;
    while (!half.empty()) {
        const std::string_view group = TakeUpTo(half, ':');
        if (last && half.empty() && IsIPv4(group))
            groups += 2;
        else if (group.size() > 4 || !IsNumberUpTo(group, 16, 0xFFFF))
            return std::nullopt;
        else
            ++groups;
    }
    return groups;
}

bool IsIPv6(std::string_view text) {
    const std::size_t gap = text.find("::");
    if (gap == std::string_view::npos) return Groups(text, true) == 8;
    const auto before = Groups(text.substr(0, gap), false);
    const auto behind = Groups(text.substr(gap + 2), true);
    return before && behind && *before + *behind < 8;
}

} // namespace

bool IsListeningAddress(std::string_view text) {
    return text == "*" || IsIPv4(text) || IsIPv6(text);
}
