#include "views/forms/PrintReport.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Form.h"
#include "views/Report.h"
#include "views/forms/frmPrinting.h"

#include <memory>

namespace {

/// So many pages are there at once, and need no window that tells of them.
constexpr std::int32_t ShortReport = 20;

} // namespace

bool PrintReport(FormBehaviour& form, Report& report) {
    try {
        const std::unique_ptr<Printer> printer = Global.TheOperator->PrinterDialog(report.Title());
        if (!printer || form.IsOver()) return true;
        ReportRun run(report, *printer);
        run.Step(ShortReport);
        if (!run.IsOver()) The<frmPrinting>().Finish(run);
        if (!run.IsOver()) return true; // stopped
        if (run.WasOutdated()) {
            Tell(msg::ReportOutdated, Icon::Warning);
            return false;
        }
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(report.WhenNotPrinted(), Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return true;
    }
    if (const Text done = report.WhenPrinted(); !done.IsEmpty() && !form.IsOver())
        Tell(done, Icon::Information);
    return true;
}
