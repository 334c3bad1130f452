#include "exchange/forms/frmImport1.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "exchange/HeadLines.h"
#include "exchange/Import.h"
#include "exchange/ImportText.h"
#include "exchange/LostLines.h"
#include "exchange/forms/Lists.h"
#include "exchange/forms/frmConvert.h"
#include "platform/BarProgress.h"
#include "platform/Convert.h"
#include "platform/MainScreen.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int WidestColumn = 220;         // pixels; the rest of a long text is in its tip
constexpr std::size_t LongestQuote = 160; ///< characters of a line that a box repeats

QString Caption(MessageId entry) {
    return QString::fromStdString(CatalogueCaption(entry));
}

} // namespace

frmImport1::frmImport1() : columns_(new PreviewModel(this)) {
    setupUi(this);
    templates_ = new SavedMappings(*this, Global.ImportTemplates,
                                   {.CanSave = [this] { return CanSave(); },
                                    .Write = [this](const std::string& path) { Write(path); },
                                    .Remove =
                                        [](const std::string& path) {
                                            RemoveQuietly(path);
                                            ForgetHeadLines(path);
                                        },
                                    .Clear = [this] { cmdRemoveAll_Click(); }});
    auto* startLine = UpDown1->findChild<QLineEdit*>();
    startLine->setObjectName(QStringLiteral("txtStartLine"));
    startLine->setAccessibleName(ToQt(Text(msg::lblStartLine)));
    FGPreview->setModel(columns_);
    FGPreview->verticalHeader()->hide();
    FGPreview->verticalHeader()->setDefaultSectionSize(FGPreview->fontMetrics().height() + 6);
    FGPreview->horizontalHeader()->setHighlightSections(false);
    PressOnEnter(*lstAvailable, *cmdAdd1);
    for (QListWidget* list : {lstSelected, lstLiteral}) PressOnDelete(*list, *cmdRemove1);
}

// ---- opening ----

void frmImport1::Form_Load() {
    TraceEvent("frmImport1:Form_Load");
    lblProgress->hide();
    pgbProgress->hide();
    lblHint->hide();
    try {
        const auto* convert = IfLoaded<frmConvert>();
        if (convert && !Global.TemplateEditMode) {
            kind_ = convert->Kind();
            LoadForImport(convert->ImportFile());
        } else {
            LoadForEditing();
        }
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::TablesUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        cmdCancel_Click();
    }
}

void frmImport1::LoadForImport(const std::string& importFile) {
    mode_ = Mode::Import;
    importFile_ = importFile;
    if (!LoadPreview()) return cmdCancel_Click();
    templates_->List(TemplateExtension(*kind_));
    ListAvailable(*kind_);
    if (!RecogniseFormat()) return cmdCancel_Click();
    ShowColumns();
    lstAvailable->setFocus();
}

void frmImport1::LoadForEditing() {
    setWindowTitle(ToQt(Text(msg::EditImportTemplate)));
    kind_ = TemplateKindOf(Global.TemplateEditKind);
    mode_ = kind_ ? Mode::EditKind : Mode::EditTemplate;
    optCSV->setChecked(true);
    if (kind_) {
        templates_->List(TemplateExtension(*kind_));
        ListAvailable(*kind_);
    } else {
        templates_->ListKinds({TemplateExtension(TemplateKind::Cust), TemplateExtension(TemplateKind::Item)});
    }
    ShowColumns();
    cboSettings->setFocus();
}

void frmImport1::ListAvailable(TemplateKind kind) {
    tableFile_ = Global.DBFPath + std::string(TableFileOf(kind));
    available_ = AvailableFieldsOf(tableFile_);
    FillList(*lstAvailable, available_);
    ShowLabel(*lstAvailable, 0, msg::IgnoreField); // the row itself is what templates hold
    ShowLabels(*lstAvailable, 1, TableFileOf(kind));
    lstAvailable_Click();
}

/// Shows the data file; tells the operator and says no when it cannot be read.
bool frmImport1::LoadPreview() {
    preview_ = {};
    rtbText->clear();
    lblPreview->clear();
    try {
        preview_ = ImportPreview(importFile_);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ImportFileUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Warning);
        return false;
    }
    QStringList lines;
    for (const std::string& line : preview_.Lines()) lines << ToQt(std::string_view(line));
    rtbText->setPlainText(lines.join(QLatin1Char('\n')));
    Text heading = Words(msg::ContentsOf, Text::Path(FileNameOf(importFile_)));
    if (preview_.HasMore()) heading = Words(heading, msg::FirstLinesOnly);
    lblPreview->setText(ToQt(heading));
    return true;
}

bool frmImport1::RecogniseFormat() {
    const auto delimiter = RecogniseDelimiter(importFile_);
    if (!delimiter) {
        Tell(Lines(msg::InvalidFormat, Text::Path(std::string_view(importFile_))), Icon::Stop);
        return false;
    }
    SetDelimiter(*delimiter);
    return true;
}

// ---- templates ----

void frmImport1::cboSettings_Click() {
    TraceEvent("frmImport1:cboSettings_Click");
    const std::string name = templates_->Name();
    if (name.empty()) return;
    if (mode_ == Mode::EditTemplate) {
        kind_ = TemplateKindOf(name);
        templates_->Use(kind_ ? TemplateExtension(*kind_) : std::string_view());
    }
    const ImportTemplateRead read = ReadImportTemplate(templates_->Path());
    if (mode_ != Mode::Import) {
        importFile_ = Global.DataInPath + NameToPath(read.Template.DataFile);
        LoadPreview();
    }
    if (mode_ == Mode::EditTemplate && kind_) {
        try {
            ListAvailable(*kind_);
        } catch (const RunTimeFailure& failure) {
            // The mapping that was here is another template's, and must not be saved under this name.
            available_.clear();
            lstAvailable->clear();
            cmdRemoveAll_Click();
            return Tell(Lines(msg::TablesUnreadable, Text::Path(std::string_view(failure.what()))),
                        Icon::Stop);
        }
    }
    cmdRemoveAll_Click();
    if (read.Template.Delimiter) SetDelimiter(*read.Template.Delimiter);
    {
        const QSignalBlocker silent(UpDown1);
        UpDown1->setValue(StartLineNumber(read.Template.StartLine));
    }
    mapping_ = ImportMapping(read.Template.Fields, read.Template.Literals);
    ShowColumns();
    ShowMapping(std::nullopt);
}

bool frmImport1::SaveAnew(const std::string& templateFile) {
    TraceEvent("frmImport1:SaveAnew");
    // What was read of half a template would be all that is left of it.
    if (!ReadImportTemplate(Global.ImportTemplates + templateFile).Complete) {
        Tell(Words(msg::ErrorOpening, Text::Path(std::string_view(templateFile))) + msg::MakeSureFileExists,
             Icon::Warning);
        return false;
    }
    templates_->Choose(templateFile);
    cboSettings_Click();
    return templates_->Save();
}

void frmImport1::cboSettings_Change() {
    CheckSaveSettings();
}

bool frmImport1::CanSave() {
    if (mapping_.IsEmpty()) {
        Tell(msg::NothingToSave, Icon::Warning);
        lstAvailable->setFocus();
        return false;
    }
    const std::string_view dataFile = FileNameOf(importFile_);
    if (dataFile.empty()) {
        Tell(msg::NoDataFile, Icon::Warning);
        cboSettings->setFocus();
        return false;
    }
    if (NameToPath(PathToName(dataFile)) != dataFile) {
        Tell(Words(msg::NameNotKept, Text::Path(dataFile)), Icon::Warning);
        return false;
    }
    return true;
}

void frmImport1::Write(const std::string& path) const {
    ImportTemplate content;
    content.DataFile = PathToName(FileNameOf(importFile_));
    content.Delimiter = Delimiter();
    content.StartLine = FromQt(UpDown1->cleanText());
    content.Fields = mapping_.Selected();
    content.Literals = mapping_.Literals();
    WriteImportTemplate(path, content);
    // A new template is compared from now on with the file that it was made for.
    if (!RememberedHeadLines(path)) RememberHead();
}

/// Keeps the lines above the data beside the template. A data file that has gone stops nothing.
void frmImport1::RememberHead() const {
    try {
        RememberHeadLines(templates_->Path(), ReadHeadLines(importFile_, UpDown1->value()));
    } catch (const RunTimeFailure&) { // the next import has nothing to compare with
    }
}

// ---- the mapping ----

::Delimiter frmImport1::Delimiter() const {
    if (optCSVQ->isChecked()) return ::Delimiter::CsvQuotes;
    return optTAB->isChecked() ? ::Delimiter::Tab : ::Delimiter::Csv;
}

void frmImport1::SetDelimiter(::Delimiter delimiter) {
    QRadioButton* option = delimiter == ::Delimiter::CsvQuotes ? optCSVQ
                           : delimiter == ::Delimiter::Tab     ? optTAB
                                                               : optCSV;
    option->setChecked(true);
}

std::optional<std::size_t> frmImport1::SelectedRow() const {
    const QList<int> rows = SelectedRows(*lstSelected);
    if (rows.isEmpty()) return std::nullopt;
    return static_cast<std::size_t>(rows.first());
}

/// Shows both lists anew, with a row of the selected fields selected.
void frmImport1::ShowMapping(std::optional<std::size_t> row) {
    FillList(*lstSelected, mapping_.Selected(), row);
    FillList(*lstLiteral, mapping_.Literals());
    const QColor used = palette().color(QPalette::PlaceholderText);
    for (int k = 0; k < lstAvailable->count(); ++k) {
        const bool inUse = k > 0 && mapping_.IsInUse(available_[static_cast<std::size_t>(k)]);
        lstAvailable->item(k)->setForeground(inUse ? QBrush(used) : QBrush());
    }
    const int scrolled = FGPreview->verticalScrollBar()->value();
    columns_->SetMapping(mapping_.Selected(), available_);
    FGPreview->verticalScrollBar()->setValue(scrolled);
    FGPreview->resizeColumnToContents(1);
    MarkColumn();
    ShowHint();
    CheckSaveSettings();
    CheckOK();
}

/// Shows the file's columns anew.
void frmImport1::ShowColumns() {
    PreviewColumns columns;
    try {
        columns = preview_.Columns(Delimiter(), UpDown1->value());
    } catch (const RunTimeFailure&) { // the file has gone meanwhile: it has no columns
    }
    endsBeforeStart_ = columns.Count == 0 && !preview_.Lines().empty();
    startsWithHeadings_ = columns.StartsWithHeadings;
    columns_->SetColumns(std::move(columns));
    FGPreview->resizeColumnsToContents();
    for (int k = 0; k < columns_->columnCount(); ++k) {
        FGPreview->setColumnWidth(k, std::min(FGPreview->columnWidth(k), WidestColumn));
    }
    MarkColumn();
    ShowHint();
}

/// Says what to do next where that is not plain to see.
void frmImport1::ShowHint() {
    std::vector<Text> hints;
    if (endsBeforeStart_) hints.emplace_back(msg::EndsBeforeStart);
    if (startsWithHeadings_) hints.emplace_back(msg::HeadingsHint);
    if (kind_ && mapping_.IsEmpty()) hints.emplace_back(msg::FirstFieldHint);
    Text all;
    for (const Text& hint : hints) all = all.IsEmpty() ? hint : Lines(all, hint);
    lblHint->setText(ToQt(all));
    lblHint->setVisible(!hints.empty());
}

/// Marks the column that the selected row takes; while none is selected, the one that comes next.
void frmImport1::MarkColumn() {
    const std::size_t row = SelectedRow().value_or(mapping_.Selected().size());
    if (static_cast<int>(row) < columns_->rowCount())
        FGPreview->selectRow(static_cast<int>(row));
    else
        FGPreview->clearSelection();
}

void frmImport1::SetAddText() {
    const auto row = SelectedRow();
    const bool inserts = row && *row + 1 < mapping_.Selected().size();
    cmdAdd1->setText(Caption(inserts ? msg::Insert : msg::Add));
}

void frmImport1::CheckOK() {
    cmdOK->setEnabled(!mapping_.IsEmpty());
    SetAddText();
    cmdAdd1->setEnabled(!SelectedRows(*lstAvailable).isEmpty());
    cmdRemove1->setEnabled(SelectedRow() || !lstLiteral->selectedItems().isEmpty());
    cmdRemoveAll->setEnabled(!mapping_.IsEmpty());
}

void frmImport1::CheckSaveSettings() {
    const bool named = !cboSettings->currentText().isEmpty();
    cmdSaveSettings->setEnabled(!mapping_.IsEmpty() && named);
    cmdDelSettings->setEnabled(named);
    cmdAnd->setEnabled(!mapping_.IsEmpty() && !mapping_.AndPending());
}

void frmImport1::optCSVQ_Click() {
    ShowColumns();
}

void frmImport1::optCSV_Click() {
    ShowColumns();
}

void frmImport1::optTAB_Click() {
    ShowColumns();
}

void frmImport1::UpDown1_Change() {
    ShowColumns();
}

void frmImport1::lstAvailable_Click() {
    const QList<int> rows = SelectedRows(*lstAvailable);
    cmdLiteral->setEnabled(std::any_of(rows.begin(), rows.end(), [](int row) { return row > 0; }));
    cmdAdd1->setEnabled(!rows.isEmpty());
}

void frmImport1::lstAvailable_DblClick() {
    cmdAdd1_Click();
}

void frmImport1::lstSelected_Click() {
    Deselect(*lstLiteral);
    MarkColumn();
    CheckOK();
}

void frmImport1::lstSelected_DblClick() {
    cmdRemove1_Click();
}

void frmImport1::lstLiteral_Click() {
    Deselect(*lstSelected);
    MarkColumn();
    CheckOK();
}

void frmImport1::lstLiteral_DblClick() {
    cmdRemove1_Click();
}

void frmImport1::FGPreview_Click() {
    const int row = FGPreview->currentIndex().row();
    if (row >= 0 && row < lstSelected->count()) lstSelected->setCurrentRow(row);
}

void frmImport1::cmdAdd1_Click() {
    TraceEvent("frmImport1:cmdAdd1_Click");
    auto row = SelectedRow();
    for (const int k : SelectedRows(*lstAvailable)) {
        const std::size_t before = mapping_.Selected().size();
        if (!mapping_.Add(available_[static_cast<std::size_t>(k)], row)) continue;
        // What was put before the row that is selected moves it on.
        const bool inserted = row && *row + 1 < before && mapping_.Selected().size() > before;
        if (inserted) ++*row;
        Deselect(*lstAvailable, k);
    }
    cmdLiteral->setEnabled(false);
    ShowMapping(row);
    lstAvailable->setFocus();
}

void frmImport1::cmdAnd_Click() {
    TraceEvent("frmImport1:cmdAnd_Click");
    const auto row = SelectedRow();
    if (mapping_.And(row)) ShowMapping(row);
    lstAvailable->setFocus();
}

void frmImport1::cmdLiteral_Click() {
    TraceEvent("frmImport1:cmdLiteral_Click");
    for (const int k : SelectedRows(*lstAvailable)) {
        const std::string& field = available_[static_cast<std::size_t>(k)];
        // "Ignore" is no field, and as a literal it would bar the columns that are to be ignored.
        if (k == 0 || mapping_.IsInUse(field)) continue;
        const auto value =
            Global.TheOperator->InputBox(Words(msg::EnterLiteral, Text::Value(field)), std::string());
        if (IsOver()) return;
        if (!value || value->empty()) break;
        mapping_.AddLiteral(field, *value);
        Deselect(*lstAvailable, k);
    }
    ShowMapping(SelectedRow());
    lstAvailable_Click();
    lstAvailable->setFocus();
}

void frmImport1::cmdRemove1_Click() {
    TraceEvent("frmImport1:cmdRemove1_Click");
    const auto row = SelectedRow();
    // Before the button is disabled: the focus would go on to the one that removes all.
    (row ? lstSelected : lstLiteral)->setFocus();
    if (row) mapping_.RemoveSelected(*row);
    if (!lstLiteral->selectedItems().isEmpty())
        mapping_.RemoveLiteral(static_cast<std::size_t>(SelectedRows(*lstLiteral).first()));
    ShowMapping(std::nullopt);
}

void frmImport1::cmdRemoveAll_Click() {
    TraceEvent("frmImport1:cmdRemoveAll_Click");
    mapping_.RemoveAll();
    ShowMapping(std::nullopt);
}

// ---- the import ----

void frmImport1::cmdOK_Click() {
    TraceEvent("frmImport1:cmdOK_Click");
    if (!templates_->Name().empty() && !templates_->Save()) return;
    if (mode_ != Mode::Import && !AskYesNo(msg::ImportNow)) return cmdCancel_Click();
    if (!ColumnsStand()) return;
    cmdOK->setEnabled(false);
    cmdCancel->setEnabled(false);
    try {
        Import();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ImportStopped, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    if (IsOver()) return;
    // Still here: the mapping can be mended.
    lblProgress->hide();
    pgbProgress->hide();
    cmdCancel->setEnabled(true);
    cmdOK->setEnabled(true);
}

/// Asks when the lines above the data are not those of the last time; false when the operator will
/// not import them.
bool frmImport1::ColumnsStand() const {
    if (templates_->Name().empty()) return true;
    std::optional<ChangedLine> change;
    try {
        change = FirstChange(RememberedHeadLines(templates_->Path()),
                             ReadHeadLines(importFile_, UpDown1->value()));
    } catch (const RunTimeFailure&) { // the import itself tells that the file cannot be read
    }
    if (!change) return true;
    const auto quote = [](MessageId which, const std::string& line) {
        return Words(which, Text::Value(std::string_view(line).substr(0, LongestQuote)));
    };
    const Text lines = Lines(quote(msg::HeadBefore, change->Before), quote(msg::HeadIsNow, change->Now));
    return AskYesNo(Lines(Lines(msg::HeadChanged, lines), msg::HeadChangedImport), Icon::Warning);
}

ImportJob frmImport1::Job() const {
    ImportJob job;
    job.ImportFile = importFile_;
    job.TableFile = tableFile_;
    job.Delimiter = Delimiter();
    job.StartLine = UpDown1->value();
    job.AvailableFields = available_;
    job.SelectedFields = mapping_.Selected();
    job.Literals = mapping_.Literals();
    job.LineCount = CountLines(importFile_);
    job.ErrorFile = LostLinesFile(Global.DataInPath, PathToName(FileNameOf(importFile_)));
    return job;
}

void frmImport1::Import() {
    const ImportJob job = Job();
    lblProgress->show();
    pgbProgress->show();
    BarProgress progress(lblProgress, *pgbProgress);
    progress.Begin(Words(*kind_ == TemplateKind::Cust ? msg::ImportingCustomers : msg::ImportingItems,
                         Text::Path(FileNameOf(importFile_))),
                   100);
    PauseFor(0.2);
    if (IsOver()) return;
    const ImportResult result = ImportDataFile(job, progress);
    if (result.FieldCountMismatch)
        return Tell(Lines(msg::FieldsDoNotMatch, Text::Path(std::string_view(importFile_))), Icon::Warning);
    TellResult(job, result);
    cmdCancel_Click();
}

void frmImport1::TellResult(const ImportJob& job, const ImportResult& result) {
    if (!templates_->Name().empty()) RememberHead();
    if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
    Text count = Words(Text::Value(result.LinesRead - result.LinesFailed), msg::Of,
                       Text::Value(result.LinesRead), msg::LinesImported);
    if (result.ErrorsListed)
        count = Lines(count, Words(msg::LostLinesListed, Text::Path(std::string_view(job.ErrorFile))));
    Tell(count);
}

void frmImport1::cmdCancel_Click() {
    TraceEvent("frmImport1:cmdCancel_Click");
    Unload();
}
