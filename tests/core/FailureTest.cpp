#include "core/Failure.h"

#include <gtest/gtest.h>

TEST(RunTimeFailure, SaysTheClassicWordsAndWhatItWasAbout) {
    const RunTimeFailure failure(53, "ZUKCUST.DBF");

    EXPECT_EQ(failure.Number(), 53);
    EXPECT_STREQ(failure.what(), "File not found: ZUKCUST.DBF");
}
