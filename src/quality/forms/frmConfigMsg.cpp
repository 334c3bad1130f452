#include "quality/forms/frmConfigMsg.h"

#include "core/Catalogue.h"
#include "core/Dates.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "exchange/forms/frmConvert.h"
#include "exchange/forms/frmExport1.h"
#include "platform/Convert.h"
#include "quality/ReportCsv.h"
#include "quality/ReportGrid.h"
#include "quality/forms/frmConfig.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "tools/forms/frmOptions.h"
#include "views/TableViews.h"
#include "views/forms/PrintReport.h"
#include "views/forms/frmPreview.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QTimer>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace {

/// How often the report looks whether somebody has repaired something.
constexpr std::chrono::seconds BetweenLooks{1};

/// The view of the table that a row is about; nothing for a row about templates.
std::optional<ViewFlag> ViewOf(const ProblemRow& row) {
    static constexpr std::array flags{std::pair{"ZUKCUST.DBF", ViewCust}, std::pair{"ZUKITEM.DBF", ViewItem},
                                      std::pair{"ZUKSTAX.DBF", ViewSTax}, std::pair{"ZUKPAY.DBF", ViewPay},
                                      std::pair{"ZUKLINK.DBF", ViewLink}};
    for (const auto& [file, flag] : flags) {
        if (SameText(FileNameOf(row.Target), file)) return flag;
    }
    return std::nullopt;
}

/// Opens a screen on the template that `QCViewRecords` names, and waits until it has gone. `place`
/// says which of several templates it is.
template <class F>
void OpenModal(const Text& place) {
    // One that stands open, as behind a download that the check has stopped, shows something else.
    if (auto* open = IfLoaded<F>()) open->Unload();
    auto& form = The<F>();
    if (form.IsGone()) return;
    if (!place.IsEmpty()) form.setWindowTitle(QStringLiteral("%1 (%2)").arg(form.windowTitle(), ToQt(place)));
    form.Show(ShowMode::Modal);
}

/// The screen that keeps a template of a row.
void (*ScreenOf(const ProblemRow& row, std::string_view name))(const Text& place) {
    if (row.Target == TemplateTarget::Download)
        return SameText(ExtensionOf(name), ".dct") ? OpenModal<frmTableSelectCL>
                                                   : OpenModal<frmTableSelectDL>;
    if (row.Target == TemplateTarget::Upload) return OpenModal<frmUploadSelect>;
    if (row.Target == TemplateTarget::Import) return OpenModal<frmConvert>;
    if (row.Target == TemplateTarget::Export) return OpenModal<frmExport1>;
    return OpenModal<frmOptions>; // QuickButtons and unattended mode
}

} // namespace

frmConfigMsg::frmConfigMsg() {
    setupUi(this);
    auto* look = new QTimer(this);
    look->setObjectName(QStringLiteral("TimerLook"));
    look->start(BetweenLooks);
}

void frmConfigMsg::Form_Load() {
    TraceEvent("frmConfigMsg:Form_Load");
    FG1->SetWrapped();
    cmdView->setToolTip(PlainTip(ToQt(Text(msg::TipViewRecords))));
    cmdPrint->setToolTip(PlainTip(ToQt(Text(msg::TipPrintReport))));
    cmdPreview->setToolTip(PlainTip(ToQt(Text(msg::TipPreviewReport))));
    cmdSave->setToolTip(PlainTip(ToQt(Text(msg::TipSaveReport))));
    cmdOK->setToolTip(PlainTip(ToQt(Text(msg::TipClose))));
}

void frmConfigMsg::ShowProblems(ProblemList problems) {
    problems_ = std::move(problems);
    auto grid = std::make_unique<ReportGrid>(problems_.Rows());
    grid_ = grid.get();
    FG1->SetContent(std::move(grid), objectName());
    FG1->setFocus();
    Show();
}

void frmConfigMsg::Form_GotFocus() {
    FG1->Refresh();
}

void frmConfigMsg::TimerLook_Timer() {
    FG1->Refresh();
}

const ProblemRow* frmConfigMsg::SelectedRow() const {
    const std::int32_t row = grid_ ? FG1->SelectedRecord() : 0;
    return row > 0 ? &grid_->Row(row) : nullptr;
}

void frmConfigMsg::FG1_SelChange() {
    const ProblemRow* row = SelectedRow();
    if (!row) return;
    const bool isTemplate = IsTemplateTarget(row->Target);
    // A row of the Links table leaves the caption as it was.
    if (isTemplate || ViewOf(*row) != ViewLink) {
        cmdView->setText(QString::fromStdString(
            CatalogueCaption(isTemplate ? msg::cmdViewTemplate : msg::cmdViewRecords)));
    }
}

void frmConfigMsg::FG1_RequestEdit() {
    cmdView_Click();
}

void frmConfigMsg::FG1_ColumnClick(int column) {
    TraceEvent("frmConfigMsg:FG1_ColumnClick");
    FG1->SortOn(column);
}

void frmConfigMsg::cmdView_Click() {
    TraceEvent("frmConfigMsg:cmdView_Click");
    if (!SelectedRow()) FG1->SelectRecord(1);
    const ProblemRow* selected = SelectedRow();
    if (!selected) return;
    Global.QCViewMode = true;
    ClearViewFlags();
    const ProblemRow row = *selected; // the report may go while a screen is open
    if (IsTemplateTarget(row.Target)) return ViewTemplates(row);
    Global.QCViewRecords = row.List;
    Global.QCViewField = row.Field;
    Global.QCViewSeverity = SeverityName(row.Severity);
    if (const auto flag = ViewOf(row)) ShowReported(*flag);
}

void frmConfigMsg::ViewTemplates(const ProblemRow& row) {
    const auto names = SplitText(row.List, ListSeparator);
    std::int64_t place = 0;
    for (const std::string_view name : names) {
        Global.QCViewMode = true;
        Global.QCViewRecords = Trim(name);
        // The screens come one behind the other in the same place, and look alike.
        ScreenOf(row, Trim(name))(
            names.size() > 1
                ? Words(Text::Value(++place), msg::Of, Text::Value(static_cast<std::int64_t>(names.size())))
                : Text());
        if (IsOver()) return;
    }
    // What is opened from now on is not for these templates.
    Global.QCViewMode = false;
    Global.QCViewRecords.clear();
}

PrintGrid frmConfigMsg::UpdateFlexGrid() const {
    TraceEvent("frmConfigMsg:UpdateFlexGrid");
    constexpr int TwipsToThePixel = 15;
    PrintGrid print;
    print.Widths = {1200, 2850, 1425, 2850, 2880};
    print.Rows.push_back({ReportHeadings(), 0});
    for (std::int32_t row = 0; grid_ && row < grid_->RowCount(); ++row) {
        PrintGrid::Row& printed = print.Rows.emplace_back();
        for (int column = 0; column < grid_->ColumnCount(); ++column)
            printed.Cells.push_back(grid_->Cell(row, column));
        printed.Height = FG1->rowHeight(row) * TwipsToThePixel;
    }
    return print;
}

std::unique_ptr<Report> frmConfigMsg::NewReport() const {
    return std::make_unique<FlexGridPrint>(UpdateFlexGrid(), Global.CompanyName, Now());
}

void frmConfigMsg::cmdPrint_Click() {
    TraceEvent("frmConfigMsg:cmdPrint_Click");
    PrintReport(*this, *NewReport());
}

void frmConfigMsg::cmdPreview_Click() {
    TraceEvent("frmConfigMsg:cmdPreview_Click");
    The<frmPreview>().ShowReport(NewReport());
}

void frmConfigMsg::cmdSave_Click() {
    TraceEvent("frmConfigMsg:cmdSave_Click");
    const std::string preset = Text(msg::ReportFileName).CodePage() + " " + ShortDate(Today()) + ".csv";
    const auto typed = Global.TheOperator->InputBox(msg::SaveReportAs, preset);
    if (!typed || IsOver()) return;
    std::string name(Trim(*typed));
    if (!IsPlainFileName(name)) {
        return Tell(Lines(msg::ReportNameBad, Text::Value(std::string_view(name))), Icon::Warning);
    }
    if (ExtensionOf(name).empty()) name += ".csv";
    const std::string path = Global.DataOutPath + NameToPath(name);
    if (FileExists(path)) {
        if (!AskYesNo(Lines(msg::ReportNameTaken, Text::Path(std::string_view(path))), Icon::Warning)) return;
    }
    if (!Try([&] { SaveReport(path, problems_.Rows()); })) return;
    Tell(Lines(msg::ReportSaved, Text::Path(std::string_view(path))), Icon::Information);
}

void frmConfigMsg::cmdOK_Click() {
    TraceEvent("frmConfigMsg:cmdOK_Click");
    Unload();
}

void frmConfigMsg::Form_Unload() {
    TraceEvent("frmConfigMsg:Form_Unload");
    Global.QCViewMode = false;
    Global.FromConfigurator = false;
    // A table that the report has opened can stay open, and goes by its flag.
    if (!IfLoaded<frmViewGrid>() && !IfLoaded<frmViewData>()) ClearViewFlags();
    // However it is closed: the Configurator that ran the checks goes, the next one does not check by
    // itself, and nobody waits for ever.
    if (auto* config = IfLoaded<frmConfig>(); config && Global.QCAutoRun) config->Unload();
    Global.QCAutoRun = false;
    Global.QCWaiting = false;
}
