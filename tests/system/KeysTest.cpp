#include "FilledTables.h"
#include "OfficeForDay.h"
#include "ScreensByKeys.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace {

/// The screens of the tables over tables of so many records; ./run keys does the same over 100000 and in both
/// looks.
class ScreensWithoutAMouse : public ::testing::TestWithParam<int> {};

TEST_P(ScreensWithoutAMouse, DoWhatTheyAreFor) {
    const QTemporaryDir folder;
    const QTemporaryDir samples;
    const OfficeForDay office(QStringLiteral(TRAMBLE_BUILD), folder.filePath(QStringLiteral("office")),
                              samples.path());
    FillAllTables(office.Path(QStringLiteral("DBFFiles")).toStdString(), GetParam());
    DrivenProgram start;
    start.Program = office.Program();
    start.Folder = office.Path(QString());
    DriverClient program(start);
    program.ExpectContaining(QStringLiteral("Palm Desktop software is needed"));
    program.Start();
    program.WaitForm(QStringLiteral("frmMain1"));

    ScreensByKeys{program, GetParam(), {}}.Run();

    program.Done();
    EXPECT_EQ(program.Quit(), 0);
}

INSTANTIATE_TEST_SUITE_P(Records, ScreensWithoutAMouse, ::testing::Values(0, 1));

} // namespace
