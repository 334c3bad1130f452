#include "views/forms/frmViewGrid.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/forms/frmMain1.h"
#include "core/forms/frmProgress.h"
#include "help/HelpTopics.h"
#include "maintenance/forms/BackupRun.h"
#include "platform/BarProgress.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "store/forms/frmCopyDBF.h"
#include "views/BoxReport.h"
#include "views/SetupTables.h"
#include "views/forms/Editors.h"
#include "views/forms/PrintReport.h"
#include "views/forms/frmPreview.h"
#include "views/forms/frmViewData.h"

#include <QTimer>

#include <algorithm>

namespace {

constexpr double PauseBeforeReading = 0.2;

/// How long a backup has been selected before its files are read, in milliseconds.
constexpr int TimeToRest = 200;

// Columns of the list of backups, from 0.
constexpr std::size_t MomentColumn = 1;
constexpr std::size_t DollarsColumn = 4;
constexpr int FilesColumn = BackupPoint::Lines;

/// The row of the column titles, where the grid has heading rows.
constexpr int TitleRow = 1;

bool IsPrinted() {
    return Global.View[ViewTotals] || Global.View[ViewOrHdrAudt] || Global.View[ViewOrLinAudt] ||
           Global.View[ViewAudHH];
}

void ShowGrid(ViewFlag flag, ShowMode mode, std::int32_t record = 0) {
    if (auto* records = IfLoaded<frmViewData>()) records->Unload();
    if (auto* grid = IfLoaded<frmViewGrid>()) grid->Unload();
    ClearViewFlags();
    Global.View[flag] = true;
    Global.SelectedRow = record;
    The<frmViewGrid>().Show(mode);
}

/// A table of a backup is shown.
bool IsPreview() {
    return !Global.ViewFolder.empty();
}

/// The view of a table that a backup can hold; nullptr for any other file.
const TableView* ViewOfBackup(std::string_view fileName) {
    for (const ViewFlag flag :
         {ViewOrHdr, ViewOrLin, ViewOrHdrAudt, ViewOrLinAudt, ViewAudHH, ViewCust, ViewItem}) {
        const TableView& view = AllTableViews()[flag];
        if (SameText(view.File, PathToName(fileName))) return &view;
    }
    return nullptr;
}

Text NamesOf(const std::vector<std::string>& names, const std::vector<std::string>& more = {}) {
    std::string all;
    for (const auto* list : {&names, &more}) {
        for (const std::string& name : *list) all += (all.empty() ? "" : ", ") + name;
    }
    return Text::Value(std::string_view(all));
}

Text WordsOf(const BackupPoint& point) {
    switch (point.Files) {
    case BackupFiles::Complete:
        return msg::FilesComplete;
    case BackupFiles::NotChecked:
        return msg::FilesNotChecked;
    case BackupFiles::Deleted:
        return msg::FilesDeleted;
    case BackupFiles::Changed:
        break;
    }
    Text words;
    if (!point.Changed.empty()) words = Words(msg::FilesChanged, NamesOf(point.Changed));
    if (point.Missing.empty()) return words;
    const Text missing = Words(msg::FilesMissing, NamesOf(point.Missing));
    return words.IsEmpty() ? missing : Words(words, missing);
}

/// Tells how a restore ended; `counted`: the shared totals are those of the tables as they are by now.
void TellOf(const RestoreResult& result, bool counted) {
    const auto withWhy = [&result](MessageId text) {
        return Lines(Lines(msg::FileError, text), Text::Path(std::string_view(result.Why)));
    };
    switch (result.How) {
    case RestoreResult::End::Restored: {
        const Text back =
            Words(Text::Value(Global.CurHeaders), msg::RestoredHeaders, Text::Value(Global.CurLines),
                  msg::RestoredLines, Text::Value(std::string_view(Money(Global.CurDollars))),
                  msg::RestoredDollars);
        return Tell(counted ? Lines(msg::RestoreDone, back) : Text(msg::RestoreDone), Icon::Information);
    }
    case RestoreResult::End::NotFound:
        return Tell(msg::RestoreNotFound, Icon::Warning);
    case RestoreResult::End::ThisMoment:
        return Tell(msg::BackupOfThisMoment, Icon::Information);
    case RestoreResult::End::CopiesStay:
        return Tell(withWhy(msg::CopiesNotPutBack), Icon::Stop);
    case RestoreResult::End::NoSafetyCopy:
        return Tell(Lines(msg::FileError, msg::CannotBackUp), Icon::Stop);
    case RestoreResult::End::Unusable:
        return Tell(withWhy(msg::RestoreNothing), Icon::Stop);
    case RestoreResult::End::Stopped:
        break;
    }
    Text told = withWhy(msg::RestoreStopped);
    if (!result.Done.empty()) told = Lines(told, Words(msg::RestoredAlready, NamesOf(result.Done)));
    told = Lines(told, Words(msg::NotRestored, NamesOf(result.Left)));
    Tell(Lines(told, msg::RestoreAgain), Icon::Stop);
}

} // namespace

void ShowTable(ViewFlag flag, ShowMode mode, std::int32_t record) {
    Global.QCViewMode = false;
    ShowGrid(flag, mode, record);
}

void ShowReported(ViewFlag flag) {
    Global.QCViewMode = true;
    ShowGrid(flag, ShowMode::Modeless);
}

void EditTable(ViewFlag flag) {
    ShowTable(flag);
    if (auto* grid = IfLoaded<frmViewGrid>()) grid->MakeEditDefault();
}

frmViewGrid::frmViewGrid() {
    setupUi(this);
    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setSingleShot(true);
}

std::string frmViewGrid::HelpTopic() const {
    const TableView* view = ChosenView();
    return view ? HelpTopicOfView(view->Flag, Form::HelpTopic()) : Form::HelpTopic();
}

void frmViewGrid::Form_Load() {
    TraceEvent("frmViewGrid:Form_Load");
    if (!ChosenView()) return;
    const std::int32_t selected = Global.SelectedRow;
    try {
        ShowView();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return Unload();
    }
    if (!Global.View[ViewTotals] && !Global.View[ViewRestore] && selected > 0) FG1->SelectRecord(selected);
    FG1->setFocus();
}

/// Fills the form with the view whose flag is set.
void frmViewGrid::ShowView() {
    const TableView& view = *ChosenView();
    const bool backups = Global.View[ViewRestore];
    setWindowTitle(ToQt(Text(view.GridTitle)));
    FG1->setAccessibleName(windowTitle());
    FG1->setToolTip({});
    if (*view.Icon) setWindowIcon(Picture(view.Icon));
    FG1->SetEmptyText(view.WhenEmpty);
    Caption(*cmdEdit, backups ? msg::cmdRestore : msg::cmdEdit);
    Caption(*cmdDataView, backups ? msg::cmdPreview : msg::cmdDataView);
    Caption(*cmdOK, IsPreview() ? msg::cmdBackToList : msg::Ok);
    cmdEdit->setEnabled(HasEditor());
    cmdDataView->setEnabled(true);
    cmdPreview->setVisible(IsPrinted());
    cmdPreview->setToolTip(ToQt(Text(msg::TipPreviewReport)));
    list_ = nullptr;
    Display(view);
    EnablePrinting();
}

void frmViewGrid::Caption(QPushButton& button, MessageId text) {
    button.setText(QString::fromStdString(CatalogueCaption(text)));
}

void frmViewGrid::Display(const TableView& view) {
    if (IsPreview()) return DisplayData(view.Path());
    switch (view.Display) {
    case DisplayRoutine::TotalsData:
        return DisplayTotalsData();
    case DisplayRoutine::CustData:
        return DisplayCustData(view.Path());
    case DisplayRoutine::ItemData:
        return DisplayItemData(view.Path());
    case DisplayRoutine::STaxData:
        return DisplaySTaxData(view.Path());
    case DisplayRoutine::Data:
        return DisplayData(view.Path());
    case DisplayRoutine::RestoreData:
        return DisplayRestoreData();
    }
}

void frmViewGrid::Fill(const std::string& path, ColumnsOf columnsOf) {
    const QString table = PathToQt(path).section(QLatin1Char('/'), -1).toUpper();
    path_ = path;
    columnsOf_ = std::move(columnsOf);
    auto grid = std::make_unique<TableGrid>(path_, columnsOf_);
    const auto faulty = ReportedCells();
    if (faulty) grid->MarkFaulty(*faulty);
    FG1->SetContent(std::move(grid), objectName() + QLatin1Char(' ') + table);
    if (faulty) FG1->SelectRecords(faulty->Records, faulty->Column);
}

void frmViewGrid::DisplayData(const std::string& path) {
    TraceEvent("frmViewGrid:DisplayData");
    PauseFor(PauseBeforeReading);
    if (IsOver()) return;
    const TableEntry& table = ChosenView()->Table();
    Fill(path, [&table](const TableLayout& layout) { return DataColumns(table, layout); });
}

void frmViewGrid::DisplayCustData(const std::string& path) {
    TraceEvent("frmViewGrid:DisplayCustData");
    Fill(path, CustColumns);
}

void frmViewGrid::DisplayItemData(const std::string& path) {
    TraceEvent("frmViewGrid:DisplayItemData");
    Fill(path, ItemColumns);
}

void frmViewGrid::DisplaySTaxData(const std::string& path) {
    TraceEvent("frmViewGrid:DisplaySTaxData");
    Fill(path, STaxColumns);
}

void frmViewGrid::DisplayTotalsData() {
    TraceEvent("frmViewGrid:DisplayTotalsData");
    Fill(ChosenView()->Path(), TotalsColumns);
    FG1_SelChange();
}

void frmViewGrid::DisplayRestoreData() {
    TraceEvent("frmViewGrid:DisplayRestoreData");
    show(); // so that the bar is seen
    pgbProgress->show();
    {
        BarProgress progress(nullptr, *pgbProgress);
        backups_ = ReadBackups(progress);
    }
    pgbProgress->hide();

    std::vector<std::vector<Text>> rows;
    for (const BackupPoint& point : backups_) {
        std::vector<Text> cells;
        for (const std::string& value : point.Values) cells.push_back(Text::Value(std::string_view(value)));
        if (IsNumeric(point.Values[DollarsColumn]))
            cells[DollarsColumn] =
                Text::Value(std::string_view(Money(ToNumber(point.Values[DollarsColumn]))));
        cells.emplace_back();
        rows.push_back(std::move(cells));
    }
    std::vector<GridHeading> headings{{msg::ColumnEvent},
                                      {msg::ColumnDateTime, SortKind::Date},
                                      {msg::ColumnOrders, SortKind::Number},
                                      {msg::ColumnLines, SortKind::Number},
                                      {msg::ColumnDollars, SortKind::Number},
                                      {msg::ColumnHotsyncID},
                                      {msg::ColumnMachine},
                                      {msg::ColumnLastOrder},
                                      {msg::ColumnFiles}};
    auto grid = std::make_unique<ListGrid>(std::move(headings), std::move(rows));
    list_ = grid.get();
    for (const BackupPoint& point : backups_) ShowFiles(point);
    FG1->SetContent(std::move(grid), objectName() + QStringLiteral(" Backup"));
    cmdEdit->setEnabled(!backups_.empty());
    cmdDataView->setEnabled(!backups_.empty());
    FG1_SelChange();
}

/// What has become of a backup's files: words in the last column, which a colour goes with.
void frmViewGrid::ShowFiles(const BackupPoint& point) {
    const auto record = static_cast<std::int32_t>(&point - backups_.data()) + 1;
    const CellMark mark = point.Files == BackupFiles::Deleted   ? CellMark::Past
                          : point.Files == BackupFiles::Changed ? CellMark::Warn
                                                                : CellMark::None;
    list_->SetCell(record, FilesColumn, WordsOf(point), mark);
    if (mark != CellMark::Past) return;
    for (int column = 0; column < FilesColumn; ++column)
        list_->SetCell(record, column, list_->Cell(*list_->RowOf(record), column), mark);
}

BackupPoint* frmViewGrid::SelectedBackup() {
    const std::int32_t record = FG1->SelectedRecord();
    return record > 0 ? &backups_[static_cast<std::size_t>(record) - 1] : nullptr;
}

/// The bytes of a backup are compared when its row has been selected for a moment: those of all backups
/// together would take the disk for minutes.
void frmViewGrid::Timer1_Timer() {
    if (!Global.View[ViewRestore] || !list_) return;
    BackupPoint* point = SelectedBackup();
    if (!point || point->SumsCompared) return;
    CompareSums(*point);
    ShowFiles(*point);
    FG1->viewport()->update();
}

/// Shows a table of a backup, to be looked at and not changed.
void frmViewGrid::ReloadBUData(ViewFlag flag, const std::string& folder) {
    TraceEvent("frmViewGrid:ReloadBUData");
    ClearViewFlags();
    Global.View[flag] = true;
    Global.ViewFolder = folder;
    try {
        ShowView();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::TableCannotBeRead, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        BackToList();
    }
}

/// Shows the list of backups, at the one of a directory's name.
void frmViewGrid::ShowBackups(const std::string& folder) {
    ClearViewFlags();
    Global.View[ViewRestore] = true;
    ShowView();
    for (const BackupPoint& point : backups_) {
        if (point.Folder == folder)
            FG1->SelectRecord(static_cast<std::int32_t>(&point - backups_.data()) + 1);
    }
    FG1->setFocus();
}

/// The backup that lies in a directory; nullptr when the list has none there.
BackupPoint* frmViewGrid::BackupIn(std::string_view folder) {
    const std::string name = NameOfFolder(folder);
    const auto found = std::find_if(backups_.begin(), backups_.end(),
                                    [&name](const BackupPoint& point) { return point.Folder == name; });
    return found == backups_.end() ? nullptr : &*found;
}

/// From a table of a backup to the list.
void frmViewGrid::BackToList() {
    ShowBackups(NameOfFolder(Global.ViewFolder));
}

void frmViewGrid::Preview() {
    const BackupPoint* point = SelectedBackup();
    if (!point) return;
    const std::string folder = FindBackup(point->Values[MomentColumn]);
    if (folder.empty()) return Tell(msg::PreviewNotFound, Icon::Warning);
    const auto file = Global.TheOperator->OpenFile({msg::SelectTableToView, msg::DBFFiles, ".DBF", folder});
    if (!file || IsOver()) return;
    const TableView* view = ViewOfBackup(FileNameOf(*file));
    if (!view) return Tell(msg::CannotBePreviewed, Icon::Warning);
    ReloadBUData(view->Flag, std::string(FolderOf(*file)));
}

void frmViewGrid::Restore() {
    BackupPoint* point = SelectedBackup();
    if (!point || !AskYesNo(msg::RestoreQuestion, Icon::Warning) || IsOver()) return;
    const std::string name = point->Folder;
    const std::string folder = FindBackup(point->Values[MomentColumn]);
    // A text in a directory of another name leads to the one of its moment.
    BackupPoint* restored = BackupIn(folder);
    if (restored) CompareSums(*restored);
    if (restored && restored->Files == BackupFiles::Changed &&
        !AskYesNo(Lines(Lines(msg::FilesNoLongerMatch, NamesOf(restored->Changed, restored->Missing)),
                        msg::RestoreAnyway),
                  Icon::Warning))
        return;
    if (IsOver() || !AwaitOwnSecond(*this)) return;
    const RestoreResult result = RestoreTables(folder, CopyTable);
    const bool recorded = !result.Done.empty() && RecordRestore();
    TellOf(result, recorded);
    if (!IsOver()) ShowBackups(name);
}

/// Adds the totals event of what is restored. False when that failed, of which the operator is told.
bool frmViewGrid::RecordRestore() {
    return Try([] {
        RecordTotals(ProgressFlag::Restore);
        if (auto* main = IfLoaded<frmMain1>()) main->RefreshRecordCounts();
    });
}

void frmViewGrid::Form_GotFocus() {
    FG1->Refresh();
}

void frmViewGrid::FG1_ColumnClick(int column) {
    TraceEvent("frmViewGrid:FG1_ColumnClick");
    FG1->SortOn(column);
}

void frmViewGrid::FG1_Click() {
    // The second heading row is what the totals have for headings.
    if (FG1->HeadingRows() > 0 && FG1->currentIndex().row() == TitleRow)
        FG1_ColumnClick(FG1->currentIndex().column());
}

void frmViewGrid::FG1_SelChange() {
    if (Global.View[ViewRestore]) Timer1->start(Global.InstantPauses ? 0 : TimeToRest);
    if (!Global.View[ViewTotals]) return;
    const int row = FG1->currentIndex().row();
    if (row < 0) FG1->SelectRecord(1);
    cmdDataView->setEnabled(FG1->currentIndex().row() >= FG1->HeadingRows());
    EnablePrinting();
}

void frmViewGrid::EnablePrinting() {
    const int row = FG1->currentIndex().row();
    const bool isHeading = row >= 0 && row < FG1->HeadingRows();
    cmdPrint->setEnabled(IsPrinted() && !isHeading);
    cmdPreview->setEnabled(cmdPrint->isEnabled());
}

void frmViewGrid::FG1_DblClick() {
    TraceEvent("frmViewGrid:FG1_DblClick");
    if (cmdEdit->isEnabled())
        cmdEdit_Click();
    else if (cmdDataView->isEnabled())
        cmdDataView_Click();
}

void frmViewGrid::MakeEditDefault() {
    cmdEdit->setDefault(true);
}

void frmViewGrid::cmdEdit_Click() {
    TraceEvent("frmViewGrid:cmdEdit_Click");
    if (Global.View[ViewRestore]) return Restore();
    Global.SelectedRow = FG1->SelectedRecord();
    if (OpenEditor()) Unload();
}

void frmViewGrid::cmdDataView_Click() {
    TraceEvent("frmViewGrid:cmdDataView_Click");
    if (Global.View[ViewRestore]) return Preview();
    Global.SelectedRow = FG1->SelectedRecord();
    auto& records = The<frmViewData>();
    records.Show();
    // Where the table could not be opened the operator has been told, and the grid stays.
    if (!records.IsGone()) Unload();
}

void frmViewGrid::DisplayPrint() {
    TraceEvent("frmViewGrid:DisplayPrint");
    try {
        ReadLinesPerPage();
    } catch (const RunTimeFailure&) {
        Global.LinesPerPage = 0; // settings that cannot be read: a report is printed all the same
    }
}

std::unique_ptr<Report> frmViewGrid::ReportOf(const BoxForm& form) {
    // Rows of its own: the grid takes a new content whenever the table gets one.
    auto rows = std::make_unique<TableGrid>(path_, columnsOf_);
    if (FG1->SortColumn() >= 0) rows->Sort(FG1->SortColumn(), FG1->IsDescending());
    return std::make_unique<BoxReport>(form, std::move(rows), PageLengthFrom(Global.LinesPerPage));
}

std::unique_ptr<Report> frmViewGrid::PrintData() {
    TraceEvent("frmViewGrid:PrintData");
    return ReportOf(TotalsForm());
}

std::unique_ptr<Report> frmViewGrid::PrintDataOrHdrAudt() {
    TraceEvent("frmViewGrid:PrintDataOrHdrAudt");
    return ReportOf(OrHdrAudtForm());
}

std::unique_ptr<Report> frmViewGrid::PrintDataOrLinAudt() {
    TraceEvent("frmViewGrid:PrintDataOrLinAudt");
    return ReportOf(OrLinAudtForm());
}

std::unique_ptr<Report> frmViewGrid::PrintDataAudtHH() {
    TraceEvent("frmViewGrid:PrintDataAudtHH");
    return ReportOf(AudtHHForm());
}

std::unique_ptr<Report> frmViewGrid::ChosenReport() {
    DisplayPrint();
    try {
        if (Global.View[ViewTotals]) return PrintData();
        if (Global.View[ViewOrHdrAudt]) return PrintDataOrHdrAudt();
        if (Global.View[ViewOrLinAudt]) return PrintDataOrLinAudt();
        if (Global.View[ViewAudHH]) return PrintDataAudtHH();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    return nullptr;
}

void frmViewGrid::cmdPrint_Click() {
    TraceEvent("frmViewGrid:cmdPrint_Click");
    if (const auto report = ChosenReport()) PrintReport(*this, *report);
}

void frmViewGrid::cmdPreview_Click() {
    TraceEvent("frmViewGrid:cmdPreview_Click");
    if (auto report = ChosenReport()) The<frmPreview>().ShowReport(std::move(report));
}

void frmViewGrid::cmdOK_Click() {
    TraceEvent("frmViewGrid:cmdOK_Click");
    if (IsPreview()) return BackToList();
    Unload();
}

void frmViewGrid::Form_Unload() {
    TraceEvent("frmViewGrid:Form_Unload");
    FG1->SetContent(nullptr);
}
