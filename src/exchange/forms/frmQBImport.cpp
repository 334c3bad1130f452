#include "exchange/forms/frmQBImport.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/Activity.h"
#include "exchange/HeadLines.h"
#include "exchange/Import.h"
#include "exchange/ImportTemplate.h"
#include "exchange/LostLines.h"
#include "exchange/forms/DataDirectory.h"
#include "exchange/forms/ExportRun.h"
#include "platform/BarProgress.h"
#include "platform/Convert.h"

frmQBImport::frmQBImport() : QuickButtonForm(ImportActivities) {
    SetUp(msg::frmQBImport);
}

void frmQBImport::ShowHeadings() {
    lblHeading1->setText(ToQt(Text(msg::HeadingTable)));
    lblHeading2->setText(ToQt(Text(msg::HeadingLinesImported)));
}

namespace {

/// Whether the lines above the data have changed since the template was last used; what is there is
/// remembered only when nothing was, so that the mark stays until somebody has looked at the mapping.
bool HasDrifted(const ImportJob& job, const std::string& templateName) {
    const std::string file = Global.ImportTemplates + NameToPath(templateName);
    const HeadLines lines = ReadHeadLines(job.ImportFile, job.StartLine);
    const auto remembered = RememberedHeadLines(file);
    if (!remembered) RememberHeadLines(file, lines);
    return FirstChange(remembered, lines).has_value();
}

/// The import that a template asks for. RunTimeFailure for a template that cannot be run, and as CountLines.
ImportJob JobOf(const ImportTemplateRead& read, std::optional<TemplateKind> kind) {
    const ImportTemplate& content = read.Template;
    // Run all the same, a template that maps nothing would leave a table of blank records.
    const bool mapsNothing = content.Fields.empty() && content.Literals.empty();
    if (!kind || read.BadDataFile || mapsNothing) throw RunTimeFailure(52, content.DataFile);
    ImportJob job;
    job.ImportFile = Global.DataInPath + NameToPath(content.DataFile);
    job.LineCount = CountLines(job.ImportFile);
    job.TableFile = Global.DBFPath + std::string(TableFileOf(*kind));
    job.Delimiter = content.Delimiter.value_or(Delimiter::Csv);
    job.StartLine = StartLineNumber(content.StartLine);
    job.SelectedFields = content.Fields;
    job.Literals = content.Literals;
    job.ErrorFile = LostLinesFile(Global.DataInPath, content.DataFile);
    return job;
}

} // namespace

QuickButtonForm::RowResult frmQBImport::RunRow(std::size_t row, const std::string& templateName) {
    const Text name = Text::Value(templateName);
    const ImportTemplateRead read = ReadImportTemplate(Global.ImportTemplates + NameToPath(templateName));
    if (!read.Complete) return TellCannotOpen(name);
    const auto kind = TemplateKindOf(templateName);
    ImportJob job;
    try {
        EnsureDataDirectory(Global.DataInPath, "DataIn", msg::DataInUnavailable);
        job = JobOf(read, kind);
    } catch (const RunTimeFailure&) {
        Tell(Words(msg::ImportFileError, name) + msg::AndOldTemplate, Icon::Warning);
        return {};
    }
    const bool customers = *kind == TemplateKind::Cust;
    lblSS[row]->setText(ToQt(Text(customers ? msg::lblSysCust : msg::lblSysItems)));
    lblSS[row]->setToolTip(PlainTip(ToQt(name)));
    try {
        BarProgress progress(lblProgress, *pgbProgress);
        progress.Begin(Words(customers ? msg::ImportingCustomers : msg::ImportingItems,
                             Text::Value(read.Template.DataFile)),
                       100);
        PauseFor(0.2);
        if (IsOver()) return {};
        return Import(job, templateName, progress);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ImportStopped, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return {false, Words(Text::Value(0), msg::Of, Text::Value(job.LineCount))};
    }
}

QuickButtonForm::RowResult frmQBImport::Import(ImportJob& job, const std::string& templateName,
                                               Progress& progress) {
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    const bool drifted = HasDrifted(job, templateName);
    const ImportResult result = ImportDataFile(job, progress);
    const std::int32_t good = result.FieldCountMismatch ? 0 : result.LinesRead - result.LinesFailed;
    if (result.FieldCountMismatch)
        Tell(Lines(msg::FieldsDoNotMatch, Text::Path(FileNameOf(job.ImportFile))), Icon::Warning);
    Text note;
    if (drifted) note = msg::HeadChangedMark;
    if (result.ErrorsListed) {
        const Text list = Words(msg::LostLinesListed, Text::Path(std::string_view(job.ErrorFile)));
        note = drifted ? Lines(note, list) : list;
    }
    return {!result.FieldCountMismatch, Words(Text::Value(good), msg::Of, Text::Value(job.LineCount)), note,
            drifted};
}

void frmQBImport::FinishRun(bool anyWorked) {
    if (anyWorked) RefreshMainScreen();
}
