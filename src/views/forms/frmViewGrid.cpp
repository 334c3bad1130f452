#include "views/forms/frmViewGrid.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/forms/frmProgress.h"
#include "help/HelpTopics.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "platform/MainScreen.h"
#include "views/BoxReport.h"
#include "views/SetupTables.h"
#include "views/forms/BackupList.h"
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
    backups_ = std::make_unique<BackupList>(*this, *FG1);
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
    backups_->Leave();
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
    backups_->Show(*pgbProgress);
    cmdEdit->setEnabled(!backups_->IsEmpty());
    cmdDataView->setEnabled(!backups_->IsEmpty());
    FG1_SelChange();
}

/// The bytes of a backup are compared when its row has been selected for a moment: those of all backups
/// together would take the disk for minutes.
void frmViewGrid::Timer1_Timer() {
    if (Global.View[ViewRestore]) backups_->CompareSelected();
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
    backups_->Select(folder);
    FG1->setFocus();
}

/// From a table of a backup to the list.
void frmViewGrid::BackToList() {
    ShowBackups(NameOfFolder(Global.ViewFolder));
}

void frmViewGrid::Preview() {
    const auto table = backups_->ChooseTable();
    if (table) ReloadBUData(table->Flag, table->Folder);
}

void frmViewGrid::Restore() {
    const BackupPoint* selected = backups_->Selected();
    if (!selected) return;
    const std::string name = selected->Folder;
    const auto result = backups_->Restore();
    if (!result) return;
    const bool recorded = !result->Done.empty() && RecordRestore();
    TellOf(*result, recorded);
    if (!IsOver()) ShowBackups(name);
}

/// Adds the totals event of what is restored. False when that failed, of which the operator is told.
bool frmViewGrid::RecordRestore() {
    return Try([] {
        RecordTotals(ProgressFlag::Restore);
        if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
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
