#pragma once

#include <cstdint>

/// What a HotSync session tells the program that takes part in it.
enum SessionStatus : std::int32_t {
    SessionBegun = 1,
    SessionEnded = 2,
    OperationFinished = 3,
};
