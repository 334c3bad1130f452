#include "OfficeForKeys.h"
#include "ScreensByKeys.h"

#include <gtest/gtest.h>

namespace {

/// The screens of the tables over tables of so many records; ./run keys does the same over 100000 and in both
/// looks.
class ScreensWithoutAMouse : public ::testing::TestWithParam<int> {};

TEST_P(ScreensWithoutAMouse, DoWhatTheyAreFor) {
    OfficeForKeys office(QStringLiteral(TRAMBLE_BUILD), GetParam());
    DriverClient& program = office.Program();

    ScreensByKeys{program, GetParam(), {}}.Run();

    program.Done();
    EXPECT_EQ(program.Quit(), 0);
}

INSTANTIATE_TEST_SUITE_P(Records, ScreensWithoutAMouse, ::testing::Values(0, 1));

} // namespace
