#include "platform/QuietWait.h"

#include "platform/Form.h"

void WaitWithoutInput(const std::function<bool()>& condition) {
    WaitInLoop(condition, QEventLoop::ExcludeUserInputEvents);
}
