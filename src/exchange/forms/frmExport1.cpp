#include "exchange/forms/frmExport1.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/ExportTemplate.h"
#include "exchange/Import.h"
#include "exchange/TemplateToRepair.h"
#include "exchange/forms/ExportRun.h"
#include "exchange/forms/Lists.h"
#include "platform/Convert.h"
#include "platform/MainScreen.h"

namespace {

constexpr std::string_view Extension = ".xor";
constexpr std::int32_t PreviewRecords = 20;

} // namespace

frmExport1::frmExport1() {
    setupUi(this);
    templates_ = new SavedMappings(*this, Global.ExportTemplates,
                                   {.CanSave = [this] { return CanSave(); },
                                    .Write = [this](const std::string& path) { Write(path); },
                                    .Remove = RemoveQuietly,
                                    .Clear = [this] { cmdRemoveAll_Click(); }});
    PressOnEnter(*lstAvailable, *cmdAdd1);
    PressOnEnter(*txtVal, *cmdVal);
    PressOnDelete(*lstSelected, *cmdRemove1);
    ShowCalc(false);
}

void frmExport1::Form_Load() {
    TraceEvent("frmExport1:Form_Load");
    lblProgress->hide();
    pgbProgress->hide();
    templates_->List(Extension);
    try {
        book_ = OpenPCOrders(Global.DBFPath + "ZUKORHDR.DBF", Global.DBFPath + "ZUKORLIN.DBF");
        const std::vector<std::string> headers = AvailableFieldsOf(book_.HeaderFile);
        const std::vector<std::string> lines = AvailableFieldsOf(book_.LineFile);
        available_.assign(headers.begin() + 1, headers.end());
        available_.insert(available_.end(), lines.begin() + 1, lines.end());
        FillList(*lstAvailable, available_);
        ShowLabels(*lstAvailable, 0, "ZUKORHDR");
        ShowLabels(*lstAvailable, static_cast<int>(headers.size()) - 1, "ZUKORLIN");
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::TablesUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return cmdCancel_Click();
    }
    ShowColumns(std::nullopt);
    lstAvailable->setFocus();
    repair_ = TemplateToRepair({Extension});
    if (!repair_.empty()) ChooseTemplate(repair_);
}

void frmExport1::Form_Unload() {
    if (!repair_.empty()) EndRepair();
}

// ---- templates ----

void frmExport1::ChooseTemplate(const std::string& file) {
    templates_->Choose(file);
    cboSettings_Click();
    txtExpFile->setFocus();
}

void frmExport1::cboSettings_Click() {
    TraceEvent("frmExport1:cboSettings_Click");
    if (templates_->Name().empty()) return;
    const ExportTemplate content = ReadExportTemplate(templates_->Path()).Template;
    cmdRemoveAll_Click();
    txtExpFile->setText(ToQt(std::string_view(content.FileName)));
    if (content.Delimiter) {
        optCSVQ->setChecked(*content.Delimiter == ::Delimiter::CsvQuotes);
        optCSV->setChecked(*content.Delimiter == ::Delimiter::Csv);
        optTAB->setChecked(*content.Delimiter == ::Delimiter::Tab);
    }
    chkSort->setChecked(content.SortOrders);
    chkBlankLine->setChecked(content.AddBlankLine);
    chkQC->setChecked(content.QualityCheck);
    chkHeader->setChecked(content.AddHeadings);
    columns_ = ExportColumns(content.Columns);
    ShowColumns(std::nullopt);
}

void frmExport1::cboSettings_Change() {
    CheckOK();
}

bool frmExport1::CanSave() {
    if (!columns_.Rows().empty()) return true;
    Tell(msg::NothingToExport, Icon::Warning);
    lstAvailable->setFocus();
    return false;
}

void frmExport1::Write(const std::string& path) const {
    ExportTemplate content;
    content.FileName = FromQt(txtExpFile->text().trimmed());
    content.Delimiter = Delimiter();
    content.SortOrders = chkSort->isChecked();
    content.AddBlankLine = chkBlankLine->isChecked();
    content.QualityCheck = chkQC->isChecked();
    content.AddHeadings = chkHeader->isChecked();
    content.Columns = columns_.Rows();
    WriteExportTemplate(path, content);
}

// ---- the columns ----

::Delimiter frmExport1::Delimiter() const {
    if (optCSVQ->isChecked()) return ::Delimiter::CsvQuotes;
    return optTAB->isChecked() ? ::Delimiter::Tab : ::Delimiter::Csv;
}

ExportJob frmExport1::Job() const {
    ExportJob job;
    job.Delimiter = Delimiter();
    job.AddHeadings = chkHeader->isChecked();
    job.AddBlankLine = chkBlankLine->isChecked();
    job.SortOrders = chkSort->isChecked();
    job.QualityCheck = chkQC->isChecked();
    job.Columns = columns_.Rows();
    return job;
}

std::optional<std::size_t> frmExport1::SelectedRow() const {
    const QList<int> rows = SelectedRows(*lstSelected);
    if (rows.isEmpty()) return std::nullopt;
    return static_cast<std::size_t>(rows.first());
}

/// Shows the columns anew, with one of them selected.
void frmExport1::ShowColumns(std::optional<std::size_t> row) {
    FillList(*lstSelected, columns_.Rows(), row);
    CheckOK();
    ShowPreview();
}

void frmExport1::ShowPreview() {
    if (columns_.Rows().empty() || book_.Tables.FGHdr.RecordCount() == 0) {
        rtbText->setPlainText(ToQt(Text(columns_.Rows().empty() ? msg::NoColumnsYet : msg::NoOrdersYet)));
        return;
    }
    QStringList lines;
    for (const std::string& line : PreviewOrders(Job(), book_.Tables, PreviewRecords)) {
        lines << ToQt(std::string_view(line));
    }
    rtbText->setPlainText(lines.join(QLatin1Char('\n')));
}

void frmExport1::CheckOK() {
    const auto row = SelectedRow();
    const bool inserts = row && *row + 1 < columns_.Rows().size();
    cmdAdd1->setText(QString::fromStdString(CatalogueCaption(inserts ? msg::Insert : msg::Add)));
    cmdAdd1->setEnabled(!SelectedRows(*lstAvailable).isEmpty());
    cmdOK->setEnabled(!columns_.Rows().empty() && !txtExpFile->text().trimmed().isEmpty());
    cmdRemove1->setEnabled(row.has_value());
    cmdRemoveAll->setEnabled(!columns_.Rows().empty());
    cmdLiteral->setEnabled(!columns_.CalcPending());
    cmdDelSettings->setEnabled(!templates_->Name().empty());
}

void frmExport1::txtExpFile_Change() {
    CheckOK();
}

void frmExport1::optCSVQ_Click() {
    ShowPreview();
}

void frmExport1::optCSV_Click() {
    ShowPreview();
}

void frmExport1::optTAB_Click() {
    ShowPreview();
}

void frmExport1::chkHeader_Click() {
    ShowPreview();
}

void frmExport1::chkBlankLine_Click() {
    ShowPreview();
}

void frmExport1::lstAvailable_Click() {
    CheckOK();
}

void frmExport1::lstAvailable_DblClick() {
    cmdAdd1_Click();
}

void frmExport1::lstSelected_Click() {
    CheckOK();
}

void frmExport1::lstSelected_DblClick() {
    cmdRemove1_Click();
}

void frmExport1::cmdAdd1_Click() {
    TraceEvent("frmExport1:cmdAdd1_Click");
    auto row = SelectedRow();
    for (const int k : SelectedRows(*lstAvailable)) {
        const std::string& field = available_[static_cast<std::size_t>(k)];
        std::string format;
        if (ExportColumns::IsDate(field) && !columns_.CalcPending()) {
            format = Global.TheOperator->InputBox(msg::DateFormatQuestion, std::string(UsualDateFormat))
                         .value_or(std::string());
            if (IsOver()) return;
        }
        if (columns_.CalcPending()) ShowCalc(false);
        const std::size_t before = columns_.Rows().size();
        columns_.Add(field, format, row);
        // What was put before the row that is selected moves it on.
        if (row && *row + 1 < before && columns_.Rows().size() > before) ++*row;
        Deselect(*lstAvailable, k);
    }
    ShowColumns(row);
    lstAvailable->setFocus();
}

void frmExport1::cmdLiteral_Click() {
    TraceEvent("frmExport1:cmdLiteral_Click");
    if (columns_.CalcPending()) return;
    const auto value = Global.TheOperator->InputBox(msg::LiteralQuestion, std::string());
    if (IsOver() || !value) return;
    columns_.AddLiteral(*value);
    ShowColumns(SelectedRow());
}

/// The operators and the number, in the place of the button that leads to them.
void frmExport1::ShowCalc(bool shown) {
    cmdCalc->setVisible(!shown);
    for (QWidget* control :
         {static_cast<QWidget*>(cmdPlus), static_cast<QWidget*>(cmdMinus), static_cast<QWidget*>(cmdMultiply),
          static_cast<QWidget*>(cmdDivide), static_cast<QWidget*>(txtVal), static_cast<QWidget*>(cmdVal)}) {
        control->setVisible(shown);
    }
}

void frmExport1::cmdCalc_Click() {
    TraceEvent("frmExport1:cmdCalc_Click");
    const bool shown = cmdCalc->isVisibleTo(this);
    ShowCalc(shown);
    if (shown) cmdPlus->setFocus();
}

void frmExport1::Operate(std::string_view operation) {
    const auto row = SelectedRow();
    if (!columns_.Operate(operation, row)) return;
    ShowColumns(row);
    lstAvailable->setFocus();
}

void frmExport1::cmdPlus_Click() {
    TraceEvent("frmExport1:cmdPlus_Click");
    Operate(" + ");
}

void frmExport1::cmdMinus_Click() {
    TraceEvent("frmExport1:cmdMinus_Click");
    Operate(" - ");
}

void frmExport1::cmdMultiply_Click() {
    TraceEvent("frmExport1:cmdMultiply_Click");
    Operate(" * ");
}

void frmExport1::cmdDivide_Click() {
    TraceEvent("frmExport1:cmdDivide_Click");
    Operate(" / ");
}

void frmExport1::cmdVal_Click() {
    TraceEvent("frmExport1:cmdVal_Click");
    const bool pending = columns_.CalcPending();
    if (!columns_.AddNumber(FromQt(txtVal->text()), SelectedRow())) return txtVal->setFocus();
    if (pending) ShowCalc(false);
    txtVal->clear();
    ShowColumns(SelectedRow());
    if (pending) lstAvailable->setFocus();
}

void frmExport1::cmdRemove1_Click() {
    TraceEvent("frmExport1:cmdRemove1_Click");
    // Before the button is disabled: the focus would go on to the one that removes all.
    lstSelected->setFocus();
    if (const auto row = SelectedRow()) columns_.Remove(*row);
    ShowColumns(std::nullopt);
}

void frmExport1::cmdRemoveAll_Click() {
    TraceEvent("frmExport1:cmdRemoveAll_Click");
    columns_.RemoveAll();
    ShowCalc(false);
    ShowColumns(std::nullopt);
}

// ---- the export ----

void frmExport1::cmdOK_Click() {
    TraceEvent("frmExport1:cmdOK_Click");
    const bool repairs = !repair_.empty();
    if ((repairs || !templates_->Name().empty()) && !templates_->Save()) return;
    if (repairs) return cmdCancel_Click();
    if (Global.TemplateEditMode && !AskYesNo(msg::ExportNow)) return cmdCancel_Click();
    cmdOK->setEnabled(false);
    cmdCancel->setEnabled(false);
    const bool exported = Export();
    if (IsOver()) return;
    if (exported) {
        OfferBackup();
        RefreshMainScreen();
        return cmdCancel_Click();
    }
    // Still here: the name of the file or the columns can be mended.
    lblProgress->hide();
    pgbProgress->hide();
    cmdCancel->setEnabled(true);
    cmdOK->setEnabled(true);
}

/// False when no file was written; the operator has been told.
bool frmExport1::Export() {
    try {
        ExportJob job = Job();
        job.ExportFile = ExportPath(FromQt(txtExpFile->text().trimmed()), job.Delimiter);
        lblProgress->show();
        pgbProgress->show();
        if (!PutBackOrders()) return false;
        // Orders may have come in since the screen was opened: a sort of old copies would lose them.
        book_ = OpenPCOrders(book_.HeaderFile, book_.LineFile);
        const auto result = RunExport(job, book_, *this, *lblProgress, *pgbProgress);
        if (!result || result->CouldNotOpen) return false;
        Tell(
            Words(Text::Value(result->Exported), msg::Of, Text::Value(result->Walked), msg::RecordsExported));
        TellOrphanLines(*result);
        if (auto* main = IfMainScreen())
            main->ShowOutcome(Words(msg::FileWritten, Text::Path(std::string_view(job.ExportFile))));
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ExportStopped, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

/// The tables stay as they are here: the backup is all that a Yes does.
void frmExport1::OfferBackup() {
    Try([this] { AgreedToDelete(*this, Icon::Question); });
}

void frmExport1::cmdCancel_Click() {
    TraceEvent("frmExport1:cmdCancel_Click");
    Unload();
}
