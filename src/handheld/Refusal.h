#pragma once

#include <stdexcept>

/// Something that the handheld cannot do. `what()` is UTF-8 and says what and why, for whoever gave the
/// command.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
