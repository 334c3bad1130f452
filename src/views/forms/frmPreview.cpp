#include "views/forms/frmPreview.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/Printing.h"
#include "views/forms/PrintReport.h"

#include <QPainter>
#include <QPixmap>
#include <QTimer>

#include <chrono>
#include <utility>

namespace {

/// How often it looks whether the pages are still those of the table.
constexpr std::chrono::seconds BetweenLooks{1};

} // namespace

frmPreview::frmPreview() {
    setupUi(this);
    auto* look = new QTimer(this);
    look->setObjectName(QStringLiteral("TimerLook"));
    look->start(BetweenLooks);
}

void frmPreview::Form_Load() {
    TraceEvent("frmPreview:Form_Load");
    Page->setToolTip({}); // its name is for those who have it read aloud
    connect(Page, &PageView::Turned, this, &frmPreview::ShowPlace);
}

void frmPreview::ShowReport(std::unique_ptr<Report> report) {
    report_ = std::move(report);
    setWindowTitle(QStringLiteral("%1 - %2").arg(windowTitle(), ToQt(report_->Title())));
    DividePages();
    Page->setFocus();
    Show(ShowMode::Modal);
}

void frmPreview::DividePages() {
    const QPageLayout paper = UsualPaper();
    QPixmap nothing(1, 1);
    QPainter painter(&nothing);
    ShownPage measure(painter, paper);
    report_->Begin(measure);
    Page->SetPages(paper, report_->PageCount(), [this](std::int32_t page, Printer& printer) {
        // While it is printed its pages are those of the printer.
        if (!isBusy_) report_->PrintPage(page, printer);
    });
}

void frmPreview::ShowPlace() {
    if (!report_) return;
    const std::int32_t page = Page->Page();
    const bool isBefore = page > 1;
    const bool isBehind = page < Page->PageCount();
    lblPage->setText(ToQt(Words(msg::PreviewPage, Text::Value(std::int64_t{page}), msg::Of,
                                Text::Value(std::int64_t{Page->PageCount()}))));
    cmdFirst->setEnabled(isBefore);
    cmdPrevious->setEnabled(isBefore);
    cmdNext->setEnabled(isBehind);
    cmdLast->setEnabled(isBehind);
}

void frmPreview::TimerLook_Timer() {
    // While it is printed it is looked at by who prints it.
    if (!report_ || isBusy_ || !report_->HasChanged()) return;
    isBusy_ = true; // this is told once
    Tell(msg::ReportOutdated, Icon::Warning);
    if (!IsOver()) Unload();
}

void frmPreview::cmdFirst_Click() {
    Page->TurnTo(1);
}

void frmPreview::cmdPrevious_Click() {
    Page->TurnTo(Page->Page() - 1);
}

void frmPreview::cmdNext_Click() {
    Page->TurnTo(Page->Page() + 1);
}

void frmPreview::cmdLast_Click() {
    Page->TurnTo(Page->PageCount());
}

void frmPreview::cmdZoomIn_Click() {
    Page->ZoomIn();
}

void frmPreview::cmdZoomOut_Click() {
    Page->ZoomOut();
}

void frmPreview::cmdFitWidth_Click() {
    Page->SetFit(PageView::Fit::Width);
}

void frmPreview::cmdWholePage_Click() {
    Page->SetFit(PageView::Fit::Page);
}

void frmPreview::cmdPrint_Click() {
    TraceEvent("frmPreview:cmdPrint_Click");
    if (!report_) return;
    isBusy_ = true;
    const bool isOfUse = PrintReport(*this, *report_);
    isBusy_ = false;
    if (IsOver()) return;
    if (!isOfUse) return Unload();
    // The pages of the printer may have been others.
    const std::int32_t page = Page->Page();
    DividePages();
    Page->TurnTo(page);
}

void frmPreview::cmdOK_Click() {
    TraceEvent("frmPreview:cmdOK_Click");
    Unload();
}
