#pragma once

#include "core/Failure.h"

#include <gtest/gtest.h>

#include <string>

/// What a deed failed with: its number, and its words. A deed that goes well fails the test.
struct FailureSeen {
    int Number = 0;
    std::string Words;
};

template <typename Deed>
FailureSeen FailureOf(Deed&& deed) {
    try {
        deed();
    } catch (const RunTimeFailure& failure) {
        return {failure.Number(), failure.what()};
    }
    ADD_FAILURE() << "nothing failed";
    return {};
}
