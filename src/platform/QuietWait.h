#pragma once

#include <functional>

/// Blocks in the event loop while the condition holds and the process is not ending; what the operator does
/// meanwhile comes behind it. For what is over in a moment.
void WaitWithoutInput(const std::function<bool()>& condition);
