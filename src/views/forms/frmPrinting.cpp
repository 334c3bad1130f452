#include "views/forms/frmPrinting.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"

#include <QTimer>

namespace {

/// Printed between two looks at what the operator does.
constexpr std::int32_t PagesAtOnce = 5;

} // namespace

frmPrinting::frmPrinting() {
    setupUi(this);
    auto* pages = new QTimer(this);
    pages->setObjectName(QStringLiteral("TimerPages"));
}

void frmPrinting::Finish(ReportRun& run) {
    std::optional<RunTimeFailure> failure;
    run_ = &run;
    failure_ = &failure;
    pgbProgress->setRange(0, run.LastPage());
    ShowPlace();
    findChild<QTimer*>(QStringLiteral("TimerPages"))->start(0);
    Show(ShowMode::Modal); // the form may be no more when this returns
    if (failure) throw RunTimeFailure(*failure);
}

void frmPrinting::ShowPlace() {
    pgbProgress->setValue(run_->NextPage() - 1);
    lblPage->setText(ToQt(Words(msg::PrintingPage, Text::Value(std::int64_t{run_->NextPage()}), msg::Of,
                                Text::Value(std::int64_t{run_->LastPage()}))));
}

void frmPrinting::TimerPages_Timer() {
    if (!run_) return;
    try {
        run_->Step(PagesAtOnce);
    } catch (const RunTimeFailure& failure) {
        *failure_ = failure;
        return Unload();
    }
    if (!run_) return;
    if (run_->IsOver()) return Unload();
    ShowPlace();
}

void frmPrinting::cmdCancel_Click() {
    TraceEvent("frmPrinting:cmdCancel_Click");
    Unload();
}

void frmPrinting::Form_Unload() {
    TraceEvent("frmPrinting:Form_Unload");
    if (auto* pages = findChild<QTimer*>(QStringLiteral("TimerPages"))) pages->stop();
    run_ = nullptr;
}
