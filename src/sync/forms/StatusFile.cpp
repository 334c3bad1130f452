#include "sync/forms/StatusFile.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "platform/MainScreen.h"
#include "sync/Status.h"

namespace {

void EndProcess() {
    TraceEvent("basCommon:EndProcess");
    if (auto* main = IfMainScreen()) main->hide();
    EndProgram(1);
}

void WriteAndDraw(void (MainScreen::*bricks)()) {
    if (!WithStatusFile(UpdateHHStatus)) return;
    if (auto* main = IfMainScreen()) (main->*bricks)();
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

void BeginHHStatusAnew() {
    ClearHHStatus();
    if (!WithStatusFile(MakeHHStatusFile)) return;
    if (auto* main = IfMainScreen()) main->GetHHBricksStd();
}

void ShowHHStatus() {
    WriteAndDraw(&MainScreen::GetHHBricks);
}

void ShowHHStatusStd() {
    WriteAndDraw(&MainScreen::GetHHBricksStd);
}
