#include "sync/TableSelection.h"

#include "core/TextCompare.h"

int SelectionValue(std::string_view line, MessageId group) {
    line = Trim(line);
    if (line.empty() || line.back() < '1' || line.back() > '9') return 0;
    return BeginsWith(line, Text(group).CodePage()) ? line.back() - '0' : 0;
}
