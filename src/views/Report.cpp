#include "views/Report.h"

#include "core/Messages.h"

#include <algorithm>

Text Report::WhenNotPrinted() const {
    return msg::ReportFailed;
}

ReportRun::ReportRun(Report& report, Printer& printer) : report_(report), printer_(printer) {
    report.Begin(printer);
    const Printer::Range wanted = printer.Pages();
    last_ = std::clamp(wanted.Last, 1, report.PageCount());
    first_ = next_ = std::clamp(wanted.First, 1, last_);
}

void ReportRun::Step(std::int32_t pages) {
    for (; pages > 0 && !IsOver(); --pages, ++next_) {
        if (next_ > first_) printer_.NewPage();
        report_.PrintPage(next_, printer_);
        outdated_ = report_.HasChanged();
        if (outdated_) next_ = last_;
    }
    if (IsOver() && !outdated_) printer_.EndDoc();
}
