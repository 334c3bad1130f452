#include "quality/forms/QCRun.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmProgress.h"
#include "platform/HotSyncControl.h"
#include "quality/CheckResults.h"
#include "quality/forms/frmConfig.h"
#include "quality/forms/frmConfigMsg.h"

#include <utility>

namespace {

/// Keeps how a check ended, for the Configurator to show.
void KeepResult(Check check, const ProblemList& problems, std::size_t from) {
    CheckResults results = CheckResults::Read(CheckResultsFile());
    results.Set(check, {Now(), problems.Count(Severity::Fatal, from), problems.Count(Severity::Warn, from)});
    try {
        results.Write(CheckResultsFile());
    } catch (const RunTimeFailure&) {
        // Nobody waits for it, and the check itself has its result on the screen.
    }
    if (auto* config = IfLoaded<frmConfig>()) config->ShowResults();
}

void BeginRun() {
    Global.QCFatalFound = false;
    The<frmConfigMsg>().Problems() = {};
}

/// A caller that waits may go on; what it finds in `QCFatalFound` says whether it does.
void Release() {
    Global.QCWaiting = false;
    Global.QCHotsyncPending = false;
}

void EndWithoutReport() {
    // Before the report goes: a Configurator that stood open before the run stays.
    Global.QCAutoRun = false;
    if (auto* report = IfLoaded<frmConfigMsg>()) report->Unload();
    Release();
}

void Stop(const RunTimeFailure& failure, FormProgress& progress) {
    progress.Finish();
    Global.QCCheckAll = false;
    Global.QCFatalFound = Global.QCWaiting; // a table that was not checked does not travel
    Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    EndWithoutReport();
}

/// What each check button does. Within a run of several the rows join those of the others, and
/// nothing is shown.
void Run(Check check, FormProgress& progress) {
    if (!Global.QCCheckAll) BeginRun();
    ProblemList& problems = The<frmConfigMsg>().Problems();
    const std::size_t before = problems.ProblemRows();
    try {
        RunCheck(check, {progress, [] { return HotSyncUsers(*NewSFrmAX40()); }}, problems);
    } catch (const RunTimeFailure& failure) {
        if (Global.QCCheckAll) throw;
        return Stop(failure, progress);
    }
    KeepResult(check, problems, before);
    if (Global.QCCheckAll) return;

    progress.Finish();
    Global.QCFatalFound = false; // nobody waits for a single check
    if (problems.ProblemFound()) return The<frmConfigMsg>().ShowProblems();
    Tell(msg::NoProblems, Icon::Information);
    EndWithoutReport();
}

} // namespace

std::string CheckResultsFile() {
    return Global.AppPath + "QCResults.dat";
}

void RunSingleCheck(Check check) {
    FormProgress progress;
    Run(check, progress);
}

void RunChecks(std::span<const Check> checks, bool forHotsync) {
    BeginRun();
    Global.QCCheckAll = true;
    FormProgress progress;
    try {
        for (const Check check : checks) Run(check, progress);
    } catch (const RunTimeFailure& failure) {
        return Stop(failure, progress);
    }
    progress.Finish();
    Global.QCCheckAll = false;
    if (!Global.QCFatalFound) {
        // Rows of Warn alone are for the single checks.
        Tell(msg::NoFatalProblems, Icon::Information);
        return EndWithoutReport();
    }
    if (forHotsync && Global.QCHotsyncPending) {
        Tell(msg::FatalHotsync, Icon::Warning);
    } else {
        if (!Global.QCWaiting) Global.QCFatalFound = false;
        Tell(msg::FatalProblems, Icon::Warning);
    }
    Release();
    The<frmConfigMsg>().ShowProblems();
}

void CheckAllProcesses() {
    Global.QCAutoRun = true;
    // One that stands open does not load again.
    if (auto* config = IfLoaded<frmConfig>())
        config->CheckAll();
    else
        The<frmConfig>();
}

bool PassQualityCheck(FormBehaviour& caller) {
    Tell(msg::QCWillRun);
    Global.QCWaiting = true;
    CheckAllProcesses();
    caller.WaitWhile([] { return Global.QCWaiting; });
    return !std::exchange(Global.QCFatalFound, false) && !caller.IsOver();
}
