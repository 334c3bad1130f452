#include "exchange/forms/frmQBExport.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/forms/frmMain1.h"
#include "core/forms/frmProgress.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/forms/OrderQuestions.h"
#include "maintenance/Backup.h"
#include "platform/BarProgress.h"
#include "platform/Convert.h"
#include "ui_frmQBExport.h"

#include <QLabel>

frmQBExport::frmQBExport() : QuickButtonForm(ExportActivities) {
    Ui::frmQBExport().setupUi(this);
    Bind();
}

void frmQBExport::ShowHeadings() {
    lblHeading1->setText(ToQt(Text(msg::HeadingTemplate)));
    lblHeading2->setText(ToQt(Text(msg::HeadingRecordsExported)));
}

QuickButtonForm::RowResult frmQBExport::RunRow(std::size_t row, const std::string& templateName) {
    const Text name = Text::Value(templateName);
    const ExportTemplateRead read = ReadExportTemplate(Global.ExportTemplates + NameToPath(templateName));
    if (!read.Complete || !read.BeginsWithFileName || read.BadFileName || read.Template.Columns.empty()) {
        Tell(Words(msg::ExportFileError, name) + msg::BangOldTemplate, Icon::Warning);
        return {};
    }
    lblSS[row]->setText(ToQt(name));

    ExportJob job;
    job.Delimiter = read.Template.Delimiter.value_or(Delimiter::Csv);
    job.AddHeadings = read.Template.AddHeadings;
    job.AddBlankLine = read.Template.AddBlankLine;
    job.SortOrders = read.Template.SortOrders;
    job.QualityCheck = read.Template.QualityCheck;
    job.Columns = read.Template.Columns;

    ExportResult result;
    try {
        EnsureDataDirectory(Global.DataOutPath, "DataOut", msg::DataOutUnavailable);
        job.ExportFile =
            Global.DataOutPath + NameToPath(ExportFileName(read.Template.FileName, job.Delimiter));
        OrderBook book = OpenOrderBook(Global.DBFPath + "ZUKORHDR.DBF", Global.DBFPath + "ZUKORLIN.DBF");
        PrepareOrders(job, book, OrderQuestions());
        const bool byLine = HasLineFields(job.Columns);
        const OrderTable& walked = byLine ? book.Tables.FGLin : book.Tables.FGHdr;
        BarProgress progress(lblProgress, *pgbProgress);
        progress.Begin(Words(msg::ConvertingTable, byLine ? msg::LineTable : msg::HeaderTable),
                       std::int64_t{walked.RecordCount()} + 2);
        PauseFor(0.2);
        if (IsOver()) return {};
        result = ExportOrders(job, book.Tables, progress);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ExportStopped, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return {};
    }
    if (result.CouldNotOpen) Tell(msg::ExportFileCannotBeOpened, Icon::Stop);
    TellOrphanLines(result);
    const Text report = Words(Text::Value(result.Exported), msg::Of, Text::Value(result.Walked));
    if (result.CouldNotOpen) return {false, report};
    OfferDeletion();
    return {true, report};
}

void frmQBExport::OfferDeletion() {
    if (!AskYesNo(Lines(msg::DeleteExported, msg::DeleteExportedNote))) return;
    if (!MakeBackup("EXPORT")) {
        // Without a backup nothing is emptied: the orders would be gone.
        Tell(Lines(msg::FileError, msg::CannotBackUp), Icon::Stop);
        return;
    }
    try {
        RecordTotals(ProgressFlag::Export);
        for (const char* table : {"ZUKOrHdr.dbf", "ZUKOrLin.dbf"}) {
            CopyOver(Global.DBFEmptyPath + table, Global.DBFPath + table);
        }
    } catch (const RunTimeFailure&) {
        Tell(msg::DeletingError, Icon::Information);
    }
}

void frmQBExport::FinishRun(bool) {
    Global.RefreshTotals = true;
    if (auto* main = IfLoaded<frmMain1>()) {
        main->GetPCTotals();
        main->RefreshRecordCounts();
    }
}
