#include "handheld/forms/HandheldWork.h"

#include "core/Messages.h"
#include "core/Operator.h"

#include <stdexcept>

bool DoOnHandheld(const std::function<void()>& deed) {
    try {
        deed();
        return true;
    } catch (const std::runtime_error& failure) { // a Refusal, or a failure of the disk
        Tell(Lines(msg::StandInNotDone, Text::Path(std::string_view(failure.what()))), Icon::Warning);
        return false;
    }
}
