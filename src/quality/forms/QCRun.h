#pragma once

#include "quality/Checks.h"

#include <functional>
#include <span>

class FormBehaviour;

/// The runs of the Quality Check that every screen with check buttons shares, and the gate that
/// stands before what goes to a handheld. A table that cannot be read stops a run: the operator is
/// told which, no report is shown, and a caller that waits goes no further.

/// Runs one check and shows its report, or tells the operator that there are no problems. Does nothing while
/// several checks run as one (`QCCheckAll`): their report is on its way.
void RunSingleCheck(Check check);

/// Runs several checks as one, in their order. Shows the report when one of them is Fatal, also the
/// rows of Warn then; without a Fatal one it says so and shows nothing. Releases a caller that waits.
/// `forHotsync`: heeds `QCHotsyncPending`.
void RunChecks(std::span<const Check> checks, bool forHotsync = true);

/// Has the Configurator check everything and does not wait.
void CheckAllProcesses();

/// Tells that a check comes, has the Configurator check everything and waits for the end of the run.
/// True when `caller` may go on: no Fatal problem, and the caller still there.
bool PassQualityCheck(FormBehaviour& caller);

/// Opens a screen on behalf of the Configurator or of QuickStart: `open` returns when it has been shown, or,
/// for a modal one, when it has gone.
void OpenToConfigure(const std::function<void()>& open);
