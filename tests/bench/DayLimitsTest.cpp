#include "../../bench/DayLimits.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

const DayFigures Tenth{30, {{"ZUKTramble", 90}}};

TEST(DayLimitsTest, ADayWithinItsLimitsBreaksNone) {
    EXPECT_EQ(BrokenLimits(Tenth, {329.9, {{"ZUKTramble", 499.9}, {"hotsync", 120}}}), Lines{});
    EXPECT_EQ(BrokenLimits(Tenth, {330, {}}), Lines{}) << "eleven times is allowed";
}

TEST(DayLimitsTest, EachLimitIsNamedWithItsFigure) {
    EXPECT_EQ(BrokenLimits({60, {}}, {600, {}}), Lines{"seconds: 600.0, the limit is 600"});
    EXPECT_EQ(BrokenLimits(Tenth, {300, {{"ZUKTramble", 90}, {"hotsync", 500}}}),
              Lines{"MB of hotsync: 500.0, the limit is 500"});
    EXPECT_EQ(BrokenLimits(Tenth, {333, {}}), Lines{"times the tenth: 11.1, the limit is 11"});
}

TEST(DayLimitsTest, AllThatAreBrokenAreNamed) {
    EXPECT_EQ(BrokenLimits(Tenth, {700, {{"ZUKTramble", 501}, {"handheld", 502}}}).size(), 4u);
}

TEST(DayLimitsTest, ADayThatWasNotMeasuredKeepsNoLimit) {
    EXPECT_EQ(BrokenLimits({0, {}}, {0, {}}).size(), 1u);
}

} // namespace
