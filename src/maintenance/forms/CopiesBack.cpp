#include "maintenance/forms/CopiesBack.h"

#include "core/Messages.h"
#include "core/Operator.h"
#include "store/TableCatalogue.h"

void TellRecovered(const std::vector<RecoveredTable>& tables, MessageId why) {
    if (tables.empty()) return;
    Text told = why;
    for (const RecoveredTable& table : tables) {
        const Text name = MessageId{FindTable(table.Table)->FirstLabel};
        told = Lines(told, Words(name + Text::Path(std::string_view(":")), Text::Value(table.Records),
                                 msg::RecoveredRecords));
    }
    Tell(told, Icon::Information);
}

std::optional<std::vector<RecoveredTable>> PutCopiesBack(std::span<const std::string> tables) {
    try {
        std::vector<RecoveredTable> recovered = RecoverBeforeReplacing(tables);
        TellRecovered(recovered, msg::CopiesPutBack);
        return recovered;
    } catch (const RecoveryFailure& failure) {
        TellRecovered(failure.Recovered, msg::CopiesPutBack);
        Tell(
            Lines(Lines(msg::FileError, msg::CopiesNotPutBack), Text::Path(std::string_view(failure.what()))),
            Icon::Stop);
        return std::nullopt;
    }
}
