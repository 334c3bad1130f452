#include "exchange/forms/ExportRun.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/forms/frmProgress.h"
#include "exchange/forms/DataDirectory.h"
#include "maintenance/Backup.h"
#include "maintenance/forms/BackupRun.h"
#include "maintenance/forms/CopiesBack.h"
#include "platform/BarProgress.h"
#include "platform/MainScreen.h"

namespace {

RepeatQuestions OrderQuestions() {
    return {[] { return AskYesNo(msg::DuplicateOrders); }, [] { return MakeBackup("QUALCHECK"); },
            [] { TellNoBackup(msg::CannotBackUp); }, [] { RecordTotals(ProgressFlag::QualCheck); }};
}

} // namespace

std::string ExportPath(std::string_view fileName, Delimiter delimiter) {
    if (!IsPlainFileName(fileName)) throw RunTimeFailure(52, std::string(fileName));
    EnsureDataDirectory(Global.DataOutPath, "DataOut", msg::DataOutUnavailable);
    return Global.DataOutPath + NameToPath(ExportFileName(fileName, delimiter));
}

std::optional<ExportResult> RunExport(const ExportJob& job, PCOrders& book, FormBehaviour& form,
                                      QLabel& label, QProgressBar& bar) {
    PrepareOrders(job, book, OrderQuestions());
    const bool byLine = HasLineFields(job.Columns);
    const MemoryTable& walked = byLine ? book.Tables.FGLin : book.Tables.FGHdr;
    BarProgress progress(&label, bar);
    progress.Begin(Words(msg::ConvertingTable, byLine ? msg::LineTable : msg::HeaderTable),
                   std::int64_t{walked.RecordCount()} + StepsBehindExport);
    form.PauseFor(0.2);
    if (form.IsOver()) return std::nullopt;
    ExportResult result = ExportOrders(job, book.Tables, progress);
    if (result.CouldNotOpen)
        Tell(Lines(msg::ExportFileCannotBeOpened, Text::Path(std::string_view(job.ExportFile))), Icon::Stop);
    return result;
}

void TellOrphanLines(const ExportResult& result) {
    if (result.OrphanLines == 0) return;
    Tell(Words(Text::Value(result.OrphanLines), msg::LinesWithoutHeader), Icon::Information);
}

std::span<const std::string> ExportedTables() {
    static const std::string tables[] = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf"};
    return tables;
}

bool PutBackOrders() {
    return PutCopiesBack(ExportedTables()).has_value();
}

bool AgreedToDelete(FormBehaviour& form, Icon icon) {
    if (!AskYesNo(Lines(msg::DeleteExported, msg::DeleteExportedNote), icon)) return false;
    if (!AwaitOwnSecond(form)) return false;
    if (!MakeBackup("EXPORT")) {
        // Without a backup nothing is emptied: the orders would be gone.
        TellNoBackup(msg::CannotBackUp);
        return false;
    }
    RecordTotals(ProgressFlag::Export);
    return true;
}

void RefreshMainScreen() {
    Global.RefreshTotals = true;
    auto* main = IfMainScreen();
    if (!main) return;
    main->GetPCTotals();
    main->RefreshRecordCounts();
}
