#include "core/SafeFile.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"

#include <filesystem>

namespace {

class SafeFileTest : public EngineTest {
protected:
    SafeFileTest() : path_(GivenFile("file.txt", "old")) {}
    std::string path_;
};

TEST_F(SafeFileTest, TheNewContentStandsOnlyAfterCommit) {
    SafeFile file(path_);
    file.Write("new");
    EXPECT_EQ(Bytes(path_), "old");

    file.Commit();

    EXPECT_EQ(Bytes(path_), "new");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SafeFileTest, AnObjectThatEndsWithoutCommitLeavesNoTrace) {
    {
        SafeFile file(path_);
        file.Write(std::string(1'000'000, 'x'));
        EXPECT_TRUE(Exists(path_ + ".zuk~"));
    }
    EXPECT_EQ(Bytes(path_), "old");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SafeFileTest, AWorkFileThatAKilledRunLeftIsInNobodysWay) {
    GivenFile("file.txt.zuk~", "half of something longer");

    WriteWholeFile(path_, "new");

    EXPECT_EQ(Bytes(path_), "new");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
}

TEST_F(SafeFileTest, LinesEndInCarriageReturnAndLineFeed) {
    SafeFile file(path_);
    file.WriteLine("a");
    file.WriteLine("");
    file.Write("b");
    EXPECT_EQ(file.Size(), 6u);
    file.Commit();

    EXPECT_EQ(Bytes(path_), "a\r\n\r\nb");
}

TEST_F(SafeFileTest, OverwriteChangesWhatWasWrittenBeforeAndNothingBehindIt) {
    SafeFile file(path_);
    file.Write("0123456789");
    file.Overwrite(4, "xy");
    EXPECT_EQ(FailureOf([&] { file.Overwrite(9, "zz"); }).Number, 5);
    file.Write("end");
    file.Commit();

    EXPECT_EQ(Bytes(path_), "0123xy6789end");
}

TEST_F(SafeFileTest, AFileInAFolderThatIsMissingIsFailure76) {
    EXPECT_EQ(FailureOf([&] { SafeFile(Folder() + "missing/file.txt"); }).Number, 76);
}

TEST_F(SafeFileTest, AFolderIsNotReplaced) {
    std::filesystem::create_directory(Folder() + "folder");

    EXPECT_EQ(FailureOf([&] { SafeFile(Folder() + "folder"); }).Number, 75);

    EXPECT_FALSE(Exists(Folder() + "folder.zuk~"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SafeFileTest, AFileThatMayNotBeWrittenIsNotReplacedByWayOfItsFolder) {
    RefusingDisk disk(path_, Access::ReadWrite);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { WriteWholeFile(path_, "new"); }).Number, 70);

    EXPECT_EQ(Bytes(path_), "old");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
}

TEST_F(SafeFileTest, AWorkFileWhoseNumberWasClosedByAnotherFailsWith52AndGoes) {
    {
        SafeFile file(path_);
        Global.Files.Close(std::int16_t{1});

        EXPECT_EQ(FailureOf([&] {
                      file.Write("new");
                      file.Commit();
                  }).Number,
                  52);
    }
    EXPECT_EQ(Bytes(path_), "old");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
}

TEST_F(SafeFileTest, AFaultAtAnyCallLeavesTheOldContentAndNoWorkFile) {
    const std::string big(600'000, 'x');
    for (const int number : {61, 57}) {
        int n = 1;
        for (bool failed = true; failed; ++n) {
            GivenFile("file.txt", "old");
            FaultyDisk disk(n, number);
            Global.TheDisk = &disk;
            try {
                SafeFile file(path_);
                file.Write(big);
                file.Overwrite(3, "yyy");
                file.WriteLine("end");
                file.Commit();
                failed = false;
            } catch (const RunTimeFailure& failure) {
                EXPECT_EQ(failure.Number(), number);
            }
            Global.TheDisk = &NativeDisk();
            if (failed) {
                EXPECT_EQ(Bytes(path_), "old") << n;
            }
            EXPECT_FALSE(Exists(path_ + ".zuk~")) << n;
            EXPECT_EQ(Global.Files.Count(), 0) << n;
        }
        EXPECT_GT(n, 5); // open, three writes, flush, rename
        EXPECT_EQ(Bytes(path_), "xxxyyy" + big.substr(6) + "end\r\n");
    }
}

TEST_F(SafeFileTest, AWholeFileIsReadUpToALimit) {
    EXPECT_EQ(ReadWholeFile(path_), "old");
    EXPECT_EQ(ReadWholeFile(path_, 3), "old");
    EXPECT_EQ(FailureOf([&] { ReadWholeFile(path_, 2); }).Number, 6);
    EXPECT_EQ(FailureOf([&] { ReadWholeFile(path_ + "x"); }).Number, 53);
}

} // namespace
