#pragma once

#include "core/Globals.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QTimer>

#include <functional>
#include <vector>

/// What is done as soon as something holds, while a handler waits.
struct Step {
    std::function<bool()> When;
    std::function<void()> Deed;
};

/// Does something that waits, and meanwhile the steps in their order. Returns when it has ended. A step that
/// never comes ends every wait, and fails the test.
inline void WithSteps(const std::vector<Step>& steps, const std::function<void()>& deed) {
    std::size_t done = 0;
    const QDeadlineTimer until(20000);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (done < steps.size() && steps[done].When())
            steps[done++].Deed();
        else if (until.hasExpired())
            Global.Ending = true;
    });
    look.start(1);
    deed();
    EXPECT_EQ(done, steps.size()) << "a step never came";
}
