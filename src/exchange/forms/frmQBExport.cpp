#include "exchange/forms/frmQBExport.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/forms/ExportRun.h"
#include "maintenance/SafetyCopies.h"
#include "platform/Convert.h"

frmQBExport::frmQBExport() : QuickButtonForm(ExportActivities) {
    SetUp(msg::frmQBExport);
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

    std::optional<ExportResult> result;
    try {
        job.ExportFile = ExportPath(read.Template.FileName, job.Delimiter);
        if (!PutBackOrders()) return {};
        PCOrders book = OpenPCOrders(Global.DBFPath + "ZUKORHDR.DBF", Global.DBFPath + "ZUKORLIN.DBF");
        result = RunExport(job, book, *this, *lblProgress, *pgbProgress);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ExportStopped, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    if (!result) return {};
    TellOrphanLines(*result);
    const Text report = Words(Text::Value(result->Exported), msg::Of, Text::Value(result->Walked));
    if (result->CouldNotOpen) return {false, report};
    ShowWritten(job.ExportFile);
    OfferDeletion();
    return {true, report};
}

/// The file that was written, below those of the rows before.
void frmQBExport::ShowWritten(const std::string& file) {
    const QString path = PathToQt(file);
    const QString before = lblWritten->text();
    lblWritten->setText(before.isEmpty() ? ToQt(Text(msg::FileWritten)) + QLatin1Char('\n') + path
                                         : before + QLatin1Char('\n') + path);
    lblWritten->show();
}

void frmQBExport::OfferDeletion() {
    try {
        // A session that has come meanwhile: what it keeps would come back behind the deletion.
        if (HaveKeptCopy(ExportedTables())) return Tell(msg::HotsyncCameMeanwhile, Icon::Warning);
        // No is the default: nobody has looked at the file yet.
        if (!AgreedToDelete(*this, Icon::Warning)) return;
        for (const std::string& table : ExportedTables())
            CopyOver(Global.DBFEmptyPath + table, Global.DBFPath + table);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::DeletingError, Text::Path(std::string_view(failure.what()))), Icon::Information);
    }
}

void frmQBExport::FinishRun(bool) {
    RefreshMainScreen();
}
