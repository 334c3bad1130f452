#include "sync/TableSelection.h"

#include "core/Catalogue.h"
#include "core/TextCompare.h"

#include <algorithm>

namespace {

/// What stands before the "=" of a line, or else before the digits at its end.
std::string_view NameIn(std::string_view line) {
    const std::size_t end = std::min(line.find('='), line.find_last_not_of("0123456789 ") + 1);
    return TrimRight(line.substr(0, end));
}

} // namespace

bool BeginsAs(std::string_view line, MessageId group) {
    return BeginsWith(line, KeyOf(group)) || IsKey(NameIn(line), group);
}

int SelectionValue(std::string_view line, MessageId group) {
    line = Trim(line);
    if (line.empty() || line.back() < '1' || line.back() > '9') return 0;
    return BeginsAs(line, group) ? line.back() - '0' : 0;
}

std::optional<bool> TurnsOn(std::string_view line, MessageId group) {
    const std::size_t end = line.find('=');
    if (end == std::string_view::npos) return std::nullopt;
    if (!IsKey(TrimRight(line.substr(0, end)), group)) return std::nullopt;
    return TrimRight(line).back() == '1';
}

std::optional<bool> TurnsOnByBeginning(std::string_view line, MessageId group) {
    line = TrimRight(line);
    if (line.empty() || !BeginsAs(line, group)) return std::nullopt;
    return line.back() == '1';
}
