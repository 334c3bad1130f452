#include "exchange/forms/OrderQuestions.h"

#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmProgress.h"
#include "maintenance/Backup.h"

RepeatQuestions OrderQuestions() {
    return {[] { return AskYesNo(msg::DuplicateOrders); }, [] { return MakeBackup("QUALCHECK"); },
            [] { Tell(Lines(msg::FileError, msg::CannotBackUp), Icon::Stop); },
            [] { RecordTotals(ProgressFlag::QualCheck); }};
}

void TellOrphanLines(const ExportResult& result) {
    if (result.OrphanLines == 0) return;
    Tell(Words(Text::Value(result.OrphanLines), msg::LinesWithoutHeader), Icon::Information);
}
