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

/// The number of the failure that a deed ends in, 0 when it ends in none.
template <typename Deed>
int FailureNumber(Deed&& deed) {
    try {
        deed();
    } catch (const RunTimeFailure& failure) {
        return failure.Number();
    }
    return 0;
}
