#include "core/SafeFile.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"

#include <algorithm>
#include <chrono>
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

/// As the trace replaces its file.
void ReplaceQuickly(const std::string& path, std::string_view content) {
    SafeFile file(path);
    file.Write(content);
    file.CommitQuickly();
}

TEST_F(SafeFileTest, WhatIsReplacedQuicklyStandsAlone) {
    for (const char* content : {"new", "newer", ""}) {
        ReplaceQuickly(path_, content);

        EXPECT_EQ(Bytes(path_), content);
        EXPECT_FALSE(Exists(path_ + ".zuk~"));
    }
    ReplaceQuickly(Folder() + "fresh.txt", "first");
    EXPECT_EQ(Bytes(Folder() + "fresh.txt"), "first");
    EXPECT_FALSE(Exists(Folder() + "fresh.txt.zuk~"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SafeFileTest, TheOldContentThatAKillLeftAsAWorkFileIsInNobodysWay) {
    GivenFile("file.txt.zuk~", "what stood there before, and longer than what comes");

    ReplaceQuickly(path_, "new");

    EXPECT_EQ(Bytes(path_), "new");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
}

TEST_F(SafeFileTest, AFaultAtAnyCallOfAQuickReplacementLeavesTheOldContent) {
    int n = 1;
    for (bool failed = true; failed; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        failed = FailureNumber([&] { ReplaceQuickly(path_, "new"); }) == 61;
        Global.TheDisk = &NativeDisk();

        EXPECT_EQ(Bytes(path_), failed ? "old" : "new") << n;
        EXPECT_FALSE(Exists(path_ + ".zuk~")) << n;
    }
    EXPECT_EQ(n, 5); // open, write, rename, and the run without a fault
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

/// Writes a content in pieces to a file that keeps what it has.
void WriteIfOther(const std::string& path, std::string_view content) {
    SafeFile file(path, SafeFile::WhenSame::Keep);
    for (; !content.empty(); content.remove_prefix(std::min<std::size_t>(content.size(), 1000)))
        file.Write(content.substr(0, 1000));
    file.Commit();
}

TEST_F(SafeFileTest, FileThatHoldsWhatIsWrittenIsLeftAlone) {
    for (const std::string& content : {std::string(), std::string("x"), std::string(1'000'000, 'x')}) {
        GivenFile("file.txt", content);
        FaultyDisk disk(1);
        Global.TheDisk = &disk;

        WriteIfOther(path_, content);

        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(disk.Calls(), 0) << "of a disk that takes nothing";
        EXPECT_EQ(Bytes(path_), content);
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(SafeFileTest, FileThatDiffersAnywhereOrInItsLengthIsReplaced) {
    const std::string old(1'000'000, 'x');
    std::vector<std::string> contents = {"", "x", old + "x", old.substr(1), old + std::string(600'000, 'y')};
    for (const std::size_t at : {0, 1, 262'143, 262'144, 600'000, 999'999}) {
        contents.push_back(old);
        contents.back()[at] = 'y';
    }
    for (const std::string& content : contents) {
        GivenFile("file.txt", old);

        WriteIfOther(path_, content);

        EXPECT_TRUE(Bytes(path_) == content) << content.size();
        EXPECT_FALSE(Exists(path_ + ".zuk~"));
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(SafeFileTest, OverwriteBehindAnEqualBeginningIsADifference) {
    SafeFile file(path_, SafeFile::WhenSame::Keep);
    file.Write("old");
    file.Overwrite(1, "l");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
    file.Overwrite(1, "dd");
    file.Commit();

    EXPECT_EQ(Bytes(path_), "odd");
}

TEST_F(SafeFileTest, EqualFileThatIsNotThereYetIsMade) {
    WriteIfOther(Folder() + "fresh.txt", "");

    EXPECT_EQ(Bytes(Folder() + "fresh.txt"), "");
}

TEST_F(SafeFileTest, FullDiskBehindAnEqualBeginningLeavesTheFile) {
    const std::string old(1'000'000, 'x');
    for (int call = 1;; ++call) {
        GivenFile("file.txt", old);
        FaultyDisk disk(call);
        Global.TheDisk = &disk;
        const int failure = FailureNumber([&] { WriteIfOther(path_, old + "y"); });
        Global.TheDisk = &NativeDisk();
        if (failure == 0) {
            EXPECT_GT(call, 6) << "what was equal is written, too";
            break;
        }

        EXPECT_EQ(failure, 61);
        EXPECT_TRUE(Bytes(path_) == old) << "call " << call;
        EXPECT_FALSE(Exists(path_ + ".zuk~"));
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(SafeFileTest, FileThatGetsShorterMeanwhileIsNotMadeUp) {
    GivenFile("file.txt", std::string(1'000'000, 'x'));
    SafeFile file(path_, SafeFile::WhenSame::Keep);
    file.Write(std::string(600'000, 'x'));
    std::filesystem::resize_file(path_, 10);

    EXPECT_EQ(FailureNumber([&] { file.Overwrite(0, "y"); }), 75);
}

TEST_F(SafeFileTest, WhatAnotherProgramWritesIntoAnEqualBeginningIsNotMixedWithWhatComesBehind) {
    const std::string old(1'000'000, 'x');
    GivenFile("file.txt", old);
    const auto before = std::filesystem::last_write_time(path_);
    {
        SafeFile file(path_, SafeFile::WhenSame::Keep);
        file.Write(old.substr(0, 600'000));
        GivenFile("file.txt", "theirs" + old.substr(6));
        std::filesystem::last_write_time(path_, before + std::chrono::seconds(1)); // coarse clocks

        EXPECT_EQ(FailureNumber([&] { file.Overwrite(9, "y"); }), 75);
    }
    EXPECT_TRUE(Bytes(path_) == "theirs" + old.substr(6));
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SafeFileTest, FileThatAnotherProgramPutsInItsPlaceStaysWhenNothingDiffers) {
    SafeFile file(path_, SafeFile::WhenSame::Keep);
    file.Write("old");
    std::filesystem::rename(GivenFile("other.txt", "theirs"), path_);
    file.Commit();

    EXPECT_EQ(Bytes(path_), "theirs");
    EXPECT_FALSE(Exists(path_ + ".zuk~"));
}

TEST_F(SafeFileTest, FileThatAnotherProgramPutsInItsPlaceIsReplacedWholeByAnotherContent) {
    SafeFile file(path_, SafeFile::WhenSame::Keep);
    file.Write("ol");
    file.Overwrite(0, "o");
    std::filesystem::rename(GivenFile("other.txt", "theirs"), path_);
    file.Write("ive");
    file.Commit();

    EXPECT_EQ(Bytes(path_), "olive");
}

TEST_F(SafeFileTest, FileThatMayNotBeWrittenIsNotKeptEither) {
    RefusingDisk disk(path_, Access::ReadWrite);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([&] { WriteIfOther(path_, "old"); }), 70);
    EXPECT_EQ(FailureNumber([&] { WriteIfOther(path_, "new"); }), 70);

    EXPECT_EQ(Bytes(path_), "old");
}

TEST_F(SafeFileTest, WhatFailedAtItsFirstDifferenceIsNeverCommitted) {
    const std::string old(1'000'000, 'x');
    for (int call = 1; call <= 4; ++call) { // the work file and the blocks of the equal beginning
        GivenFile("file.txt", old);
        {
            SafeFile file(path_, SafeFile::WhenSame::Keep);
            file.Write(old);
            FaultyDisk disk(call);
            Global.TheDisk = &disk;
            EXPECT_EQ(FailureNumber([&] { file.Overwrite(0, "y"); }), 61) << call;
            Global.TheDisk = &NativeDisk();

            EXPECT_EQ(FailureNumber([&] { file.Commit(); }), 52) << call;
        }
        EXPECT_TRUE(Bytes(path_) == old) << call;
        EXPECT_FALSE(Exists(path_ + ".zuk~")) << call;
    }
}

TEST_F(SafeFileTest, AWorkFileOfSomebodyElseOutlivesAnObjectThatMadeNone) {
    SafeFile other(path_);
    { SafeFile file(path_, SafeFile::WhenSame::Keep); }
    other.Write("new");
    other.Commit();

    EXPECT_EQ(Bytes(path_), "new");
}

} // namespace
