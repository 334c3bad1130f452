#include "sync/TableSelection.h"

#include "core/Catalogue.h"
#include "core/TextCompare.h"

int SelectionValue(std::string_view line, MessageId group) {
    line = Trim(line);
    if (line.empty() || line.back() < '1' || line.back() > '9') return 0;
    return BeginsWithKey(line, group) ? line.back() - '0' : 0;
}

std::optional<bool> TurnsOn(std::string_view line, MessageId group) {
    const std::size_t end = line.find('=');
    if (end == std::string_view::npos) return std::nullopt;
    if (!IsKey(TrimRight(line.substr(0, end)), group)) return std::nullopt;
    return TrimRight(line).back() == '1';
}

std::optional<bool> TurnsOnByBeginning(std::string_view line, MessageId group) {
    line = TrimRight(line);
    if (line.empty() || !BeginsWithKey(line, group)) return std::nullopt;
    return line.back() == '1';
}
