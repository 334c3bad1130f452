#include "quality/CheckResults.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"

namespace {

class CheckResultsTest : public EngineTest {
protected:
    static CheckResult At(int hour, int fatal, int warn) { return {{2026, 11, 21, hour, 5, 9}, fatal, warn}; }

    CheckResults Reading(std::string_view content) { return CheckResults::Read(GivenFile("r.dat", content)); }

    static int Known(const CheckResults& results) {
        int known = 0;
        for (std::size_t check = 0; check < Checks; ++check)
            known += results.Of(static_cast<Check>(check)) ? 1 : 0;
        return known;
    }
};

/// The lines of the worked example below a heading of docs/files.md.
std::string Documented(const std::vector<std::string>& lines, std::string_view file) {
    std::string example;
    bool isBelow = false;
    for (const std::string& line : lines) {
        if (line.starts_with("## ")) isBelow = line.find(file) != std::string::npos;
        if (isBelow && line.starts_with("    ")) example += line.substr(4) + "\r\n";
    }
    return example;
}

TEST_F(CheckResultsTest, TheWorkedExampleIsReadAndWritten) {
    const std::string example =
        Documented(Lines(std::string(TRAMBLE_SOURCE) + "/docs/files.md"), "QCResults.dat");

    const CheckResults results = Reading(example);
    results.Write(Folder() + "again.dat");

    EXPECT_EQ(results.Of(Check::Customers), At(14, 2, 0));
    EXPECT_EQ(results.Of(Check::BarCodes), At(14, 0, 1));
    EXPECT_EQ(results.Of(Check::Download), At(9, 0, 0));
    EXPECT_EQ(Known(results), 3);
    EXPECT_EQ(Bytes(Folder() + "again.dat"), example);
}

TEST_F(CheckResultsTest, EveryCheckKeepsItsOwnResult) {
    CheckResults results;
    for (std::size_t check = 0; check < Checks; ++check)
        results.Set(static_cast<Check>(check), At(static_cast<int>(check), 1, static_cast<int>(check)));

    results.Write(Folder() + "r.dat");
    const CheckResults read = CheckResults::Read(Folder() + "r.dat");

    for (std::size_t check = 0; check < Checks; ++check)
        EXPECT_EQ(read.Of(static_cast<Check>(check)), results.Of(static_cast<Check>(check)));
}

TEST_F(CheckResultsTest, WithoutAFileNothingWasEverChecked) {
    EXPECT_EQ(Known(CheckResults::Read(Folder() + "gone.dat")), 0);
    EXPECT_EQ(Known(CheckResults::Read(Folder())), 0);
    EXPECT_EQ(Known(CheckResults::Read("")), 0);
}

TEST_F(CheckResultsTest, AFileThatMayNotBeReadHasNoResults) {
    const std::string path = GivenFile("r.dat", "Links=2026-11-21 14:05:09;0;0\r\n");
    RefusingDisk refusing(Folder(), Access::Read);
    Global.TheDisk = &refusing;

    EXPECT_EQ(Known(CheckResults::Read(path)), 0);
}

TEST_F(CheckResultsTest, ForWantOfMemoryThereAreNoResults) {
    const std::string path = GivenFile("r.dat", "Links=2026-11-21 14:05:09;0;0\r\n");
    PoorDisk disk;
    Global.TheDisk = &disk;

    EXPECT_EQ(Known(CheckResults::Read(path)), 0);
}

TEST_F(CheckResultsTest, NamesCountInAnyCaseAndWithBlanksAround) {
    EXPECT_EQ(Reading(" barcodes =2026-11-21 14:05:09;3;4").Of(Check::BarCodes), At(14, 3, 4));
}

TEST_F(CheckResultsTest, ALineThatSaysNoResultIsPassedOver) {
    for (const char* line :
         {"Links=", "Links", "Links=2026-11-21 14:05:09", "Links=2026-11-21 14:05:09;1", "Links=;1;1",
          "Links=2026-11-21 14:05:09;1;", "Links=2026-11-21 14:05:09;-1;0", "Links=2026-13-21 14:05:09;1;0",
          "Links=2026-11-21 14:05:09;1;99999999999", "Links=2026-11-21 14:05:09;1;0x",
          "Linkss=2026-11-21;0;0", "=2026-11-21;0;0", "\x01\x02\xFF"}) {
        const CheckResults results = Reading(std::string(line) + "\r\nItems=2026-11-21 14:05:09;1;2\r\n");

        EXPECT_FALSE(results.Of(Check::Links)) << line;
        EXPECT_EQ(results.Of(Check::Items), At(14, 1, 2)) << line;
    }
}

TEST_F(CheckResultsTest, ALineThatSaysNoResultLeavesTheOneBefore) {
    EXPECT_EQ(Reading("Links=2026-11-21 14:05:09;1;2\r\nLinks=soon\r\n").Of(Check::Links), At(14, 1, 2));
}

TEST_F(CheckResultsTest, OfTwoResultsTheLastCounts) {
    EXPECT_EQ(Reading("Links=2026-11-21 14:05:09;1;2\nLinks=2026-11-21 15:05:09;0;0").Of(Check::Links),
              At(15, 0, 0));
}

TEST_F(CheckResultsTest, RubbishHoldsResultsOrNoneAndCanBeWrittenAgain) {
    CheckResults results;
    for (std::size_t check = 0; check < Checks; ++check) results.Set(static_cast<Check>(check), At(14, 1, 2));
    results.Write(Folder() + "good.dat");
    for (const std::string& content : Rubbish(Bytes(Folder() + "good.dat"))) {
        OnlyRunTimeFailures([&] {
            const CheckResults read = Reading(content);
            read.Write(Folder() + "again.dat");
            const CheckResults again = CheckResults::Read(Folder() + "again.dat");
            for (std::size_t check = 0; check < Checks; ++check)
                EXPECT_EQ(again.Of(static_cast<Check>(check)), read.Of(static_cast<Check>(check)));
        });
    }
}

TEST_F(CheckResultsTest, WhateverTheDiskDoesTheOldResultsOrTheNewOnesStand) {
    const std::string path = Folder() + "r.dat";
    CheckResults old;
    old.Set(Check::Links, At(9, 0, 0));
    CheckResults fresh;
    fresh.Set(Check::Links, At(10, 1, 0));
    FaultyDisk whole;
    Global.TheDisk = &whole;
    old.Write(path);
    const int calls = whole.Calls();
    ASSERT_GT(calls, 2);
    for (int n = 1; n <= calls; ++n) {
        FaultyDisk faulty(n);
        Global.TheDisk = &faulty;
        EXPECT_EQ(FailureNumber([&] { fresh.Write(path); }), 61) << n;
        Global.TheDisk = &NativeDisk();

        EXPECT_EQ(CheckResults::Read(path).Of(Check::Links), At(9, 0, 0)) << n;
        EXPECT_FALSE(Exists(path + ".zuk~")) << n;
    }
}

} // namespace
