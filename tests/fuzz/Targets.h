#pragma once

#include <span>
#include <string_view>

/// What reads bytes that nobody should trust.
struct FuzzTarget {
    std::string_view Name; ///< also the name of its folder of inputs

    /// Reads `bytes` as a file of its kind and does with it what the program does. RunTimeFailures
    /// are expected and stay inside. A rule that is broken ends in std::logic_error.
    void (*Run)(std::string_view bytes);
};

std::span<const FuzzTarget> FuzzTargets();
