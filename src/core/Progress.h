#pragma once

#include "core/Text.h"

#include <cstdint>

/// What a long operation tells of its course. A screen repaints its own bar and handles no other
/// event meanwhile.
class Progress {
public:
    virtual ~Progress() = default;

    /// What is being done, and at which value the bar is full; below 1 is 1. Called again at each further
    /// step: the bar begins at 0 then.
    virtual void Begin(const Text& label, std::int64_t maximum) = 0;

    /// 0 to the maximum; more is shown as the maximum.
    virtual void Show(std::int64_t value) = 0;
};

/// For operations that nobody watches.
class NoProgress final : public Progress {
public:
    void Begin(const Text&, std::int64_t) override {}
    void Show(std::int64_t) override {}
};
