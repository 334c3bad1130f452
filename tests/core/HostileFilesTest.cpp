#include "core/Catalogue.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextFile.h"
#include "core/Trace.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"

#include <filesystem>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace fs = std::filesystem;

namespace {

class HostileFilesTest : public EngineTest {
protected:
    HostileFilesTest() { GivenAppDirectory(); }
};

TEST_F(HostileFilesTest, RubbishSettingsEndInSettingsThatCanBeWrittenOrInAFailure) {
    UpdateIniFile();
    for (const std::string& content : Rubbish(Bytes(Global.IniFile))) {
        GivenFile("app/ZUKTramble.ini", content);

        OnlyRunTimeFailures([] {
            GetIniFile();
            UpdateIniFile();
        });
    }
    UpdateIniFile();
    EXPECT_EQ(Lines(Global.IniFile).size(), 25u);
}

TEST_F(HostileFilesTest, RubbishTracesAreReadOrRefusedAndTheNextEventMakesTheLogWhole) {
    for (int k = 0; k < 20; ++k) TraceEvent("DBFEdit:FileOpen " + std::to_string(k));
    for (const std::string& content : Rubbish(Bytes(Global.AppPath + "Events.log"))) {
        GivenFile("app/Events.log", content);

        OnlyRunTimeFailures(LoadEvents);
    }
    TraceEvent("last");
    EXPECT_EQ(Lines(Global.AppPath + "Events.log").size(), TraceEntries);
}

TEST_F(HostileFilesTest, RubbishReplacementsOfMessagesAreReported) {
    const std::string path = Folder() + "Messages.tsv";
    const std::string row = "50000\tName\tO\t\"one\\ttwo\"\n";
    for (const std::string& content : Rubbish(row + row + "# a remark\n")) {
        GivenFile("Messages.tsv", content);

        OnlyRunTimeFailures([&] { LoadMessages(path); });
    }
}

TEST_F(HostileFilesTest, AFolderInAFilesPlaceIsNoFile) {
    for (const char* name : {"ZUKTramble.ini", "Events.log"}) fs::create_directory(Global.AppPath + name);

    EXPECT_FALSE(FileExists(Global.IniFile));
    EXPECT_EQ(FailureOf(GetIniFile).Number, 75);
    EXPECT_NO_THROW(LoadEvents());
    EXPECT_NO_THROW(TraceEvent("any"));
    EXPECT_EQ(Global.Files.Count(), 0);
}

#ifndef _WIN32
TEST_F(HostileFilesTest, APipeInAFilesPlaceHoldsNobodyUp) {
    const std::string pipe = Folder() + "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_FALSE(FileExists(pipe));
    EXPECT_EQ(FailureOf([&] { TextReader reader(pipe); }).Number, 75);
    EXPECT_EQ(FailureOf([&] { CopyOver(pipe, Folder() + "copy"); }).Number, 75);
}
#endif

TEST_F(HostileFilesTest, ANulInAPathIsNotTheEndOfAnotherPath) {
    const std::string path = GivenFile("a", "content") + std::string("\0b", 2);

    EXPECT_FALSE(FileExists(path));
    EXPECT_EQ(FailureOf([&] { ReadWholeFile(path); }).Number, 52);
    EXPECT_EQ(FailureOf([&] { WriteWholeFile(path, "other"); }).Number, 52);
    EXPECT_EQ(Bytes(Folder() + "a"), "content");
}

TEST_F(HostileFilesTest, WhatNeverFailsSurvivesWantOfMemoryToo) {
    TraceEvent("before");
    PoorDisk disk;
    Global.TheDisk = &disk;

    TraceEvent("without memory");
    EXPECT_FALSE(FileExists(Global.AppPath + "Events.log"));

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Global.Events.Entry(0), "without memory");
    EXPECT_EQ(Lines(Global.AppPath + "Events.log")[0], "before");
}

TEST_F(HostileFilesTest, AFileOfOurOwnIsNotReadWhenItIsTooLarge) {
    GivenFile("app/ZUKTramble.ini", "PurgeDays=5\n");
    fs::resize_file(Global.IniFile, TextReader::OwnFile + 1);

    EXPECT_EQ(FailureOf(GetIniFile).Number, 6);
    EXPECT_EQ(Global.Files.Count(), 0);
    EXPECT_NO_THROW(TextReader{Global.IniFile});
}

} // namespace
