#include "sync/forms/StatusFile.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "core/forms/frmMain1.h"

namespace {

void EndProcess() {
    TraceEvent("basCommon:EndProcess");
    if (auto* main = IfLoaded<frmMain1>()) main->hide();
    EndProgram(1);
}

} // namespace

bool WithStatusFile(void (*routine)()) {
    try {
        routine();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ConfigurationError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        EndProcess();
        return false;
    }
}
