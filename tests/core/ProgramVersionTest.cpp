#include "core/ProgramVersion.h"

#include <gtest/gtest.h>

namespace {

TEST(ProgramVersion, AskedForTheVersionAloneTheProgramTellsItAndNothingElse) {
    const char* const arguments[] = {"/usr/bin/hotsync", "--version"};

    testing::internal::CaptureStdout();
    EXPECT_TRUE(TellsVersion(2, arguments, "hotsync", "1.2.3"));

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "hotsync 1.2.3\n");
}

TEST(ProgramVersion, OtherArgumentsAreTheProgramsOwn) {
    const char* const arguments[] = {"handheld", "--version", "more"};

    testing::internal::CaptureStdout();
    EXPECT_FALSE(TellsVersion(1, arguments, "handheld", "1.2.3"));
    EXPECT_FALSE(TellsVersion(3, arguments, "handheld", "1.2.3"));
    const char* const folder[] = {"handheld", "version"};
    EXPECT_FALSE(TellsVersion(2, folder, "handheld", "1.2.3"));

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

} // namespace
