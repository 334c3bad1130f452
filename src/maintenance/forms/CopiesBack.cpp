#include "maintenance/forms/CopiesBack.h"

#include "core/Messages.h"
#include "core/Operator.h"
#include "store/TableCatalogue.h"

void TellRecovered(const std::vector<RecoveredTable>& tables) {
    if (tables.empty()) return;
    Text told = msg::SessionRecovered;
    for (const RecoveredTable& table : tables) {
        const Text name = MessageId{FindTable(table.Table)->FirstLabel};
        told = Lines(told, Words(name + Text::Path(std::string_view(":")), Text::Value(table.Records),
                                 msg::RecoveredRecords));
    }
    Tell(told, Icon::Information);
}
