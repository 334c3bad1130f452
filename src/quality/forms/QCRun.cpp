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

/// What a run works on. It belongs to no form: in the pauses of the progress a form can be closed.
struct Run {
    ProblemList FG1;
    FormProgress Bar;
    /// A caller waits. The flag itself goes when the report is closed, in a pause too.
    const bool IsAwaited = Global.QCWaiting;
    CheckResults Results = CheckResults::Read(CheckResultsFile());

    /// Notes how a check ended; its rows are those behind the first `from`.
    void Note(Check check, std::size_t from) {
        Results.Set(check, {Now(), FG1.Count(Severity::Fatal, from), FG1.Count(Severity::Warn, from)});
    }

    /// Ends the progress, and keeps the results for the Configurator to show.
    void Finish() {
        Bar.Finish();
        try {
            Results.Write(CheckResultsFile());
        } catch (const RunTimeFailure&) {
            // Nobody waits for it, and the run itself has its result on the screen.
        }
        if (auto* config = IfLoaded<frmConfig>()) config->ShowResults();
    }
};

void BeginRun() {
    Global.QCFatalFound = false;
    The<frmConfigMsg>();
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

void Stop(const RunTimeFailure& failure, Run& run) {
    run.Finish();
    Global.QCCheckAll = false;
    Global.QCFatalFound = run.IsAwaited; // a table that was not checked does not travel
    Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    EndWithoutReport();
}

/// Its rows join those of the run.
void Do(Check check, Run& run) {
    const std::size_t before = run.FG1.ProblemRows();
    RunCheck(check, {run.Bar, [] { return KnownUsers(*NewSFrmAX40()); }}, run.FG1);
    run.Note(check, before);
}

} // namespace

void RunSingleCheck(Check check) {
    if (Global.QCCheckAll) return;
    BeginRun();
    Run run;
    try {
        Do(check, run);
    } catch (const RunTimeFailure& failure) {
        return Stop(failure, run);
    }
    run.Finish();
    Global.QCFatalFound = false; // nobody waits for a single check
    if (Global.Ending) return;
    if (run.FG1.ProblemFound()) return The<frmConfigMsg>().ShowProblems(std::move(run.FG1));
    Tell(msg::NoProblems, Icon::Information);
    EndWithoutReport();
}

void RunChecks(std::span<const Check> checks, bool forHotsync) {
    BeginRun();
    Global.QCCheckAll = true;
    Run run;
    try {
        for (const Check check : checks) Do(check, run);
    } catch (const RunTimeFailure& failure) {
        return Stop(failure, run);
    }
    run.Finish();
    Global.QCCheckAll = false;
    if (Global.Ending) return;
    if (!Global.QCFatalFound) {
        // Rows of Warn alone are for the single checks.
        Tell(msg::NoFatalProblems, Icon::Information);
        return EndWithoutReport();
    }
    if (forHotsync && Global.QCHotsyncPending) {
        Tell(msg::FatalHotsync, Icon::Warning);
    } else {
        if (!run.IsAwaited) Global.QCFatalFound = false;
        Tell(msg::FatalProblems, Icon::Warning);
    }
    Release();
    The<frmConfigMsg>().ShowProblems(std::move(run.FG1));
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

void OpenToConfigure(const std::function<void()>& open) {
    Global.QCViewMode = false; // the screen opens for itself, whatever the report has shown last
    Global.FromConfigurator = true;
    open();
    Global.FromConfigurator = false;
}
