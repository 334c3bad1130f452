#include "hotsync/SessionLog.h"

#include "core/SafeFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

namespace {

using Strings = std::vector<std::string>;

constexpr const char* Moment = "2026-11-21 14:05:09 ";

class SessionLogTest : public EngineTest {
protected:
    SessionLogTest() : log_(Folder()) {
        Global.Clock = [] { return DateTime{2026, 11, 21, 14, 5, 9}; };
    }

    std::string File() const { return Folder() + "HotSync.log"; }

    SessionLog log_;
};

TEST_F(SessionLogTest, EachLineStandsInTheFileAtOnceWithItsMoment) {
    log_.Write("Listening");
    EXPECT_EQ(Bytes(File()), std::string(Moment) + "Listening\r\n");

    log_.Write("Jos\xE9 has come");

    EXPECT_EQ(Bytes(File()), std::string(Moment) + "Listening\r\n" + Moment + "Jos\xC3\xA9 has come\r\n");
    EXPECT_EQ(log_.Last(10),
              (Strings{std::string(Moment) + "Listening", std::string(Moment) + "Jos\xE9 has come"}));
}

TEST_F(SessionLogTest, WhatComesFromAWireCannotLookLikeALineOfItsOwn) {
    log_.Write("user ANNA\r\n2026-11-21 14:05:10 all is well\x1B[2J\t\x7F\x81\x9D");

    EXPECT_EQ(Bytes(File()), std::string(Moment) + "user ANNA??2026-11-21 14:05:10 all is well?[2J????\r\n");
}

TEST_F(SessionLogTest, ALongLineIsCut) {
    log_.Write(std::string(5000, 'x'));

    EXPECT_EQ(Lines(File()), (Strings{Moment + std::string(SessionLog::LongestLine, 'x')}));
}

TEST_F(SessionLogTest, LastGivesNoMoreThanItIsAskedFor) {
    EXPECT_EQ(log_.Last(10), Strings{});
    for (int k = 1; k <= 5; ++k) log_.Write(std::to_string(k));

    EXPECT_EQ(log_.Last(2), (Strings{std::string(Moment) + "4", std::string(Moment) + "5"}));
    EXPECT_EQ(log_.Last(0), Strings{});
}

TEST_F(SessionLogTest, AFullFileBecomesTheOldOneAndItsLinesAreStillTheLast) {
    GivenFile("HotSync.old.log", "older\r\n");
    GivenFile("HotSync.log", "first\r\n" + std::string(SessionLog::FullAt - 20, 'x') + "\r\n");

    log_.Write("the last straw");
    EXPECT_FALSE(Exists(File()));
    log_.Write("after it");

    EXPECT_EQ(Bytes(File()), std::string(Moment) + "after it\r\n");
    EXPECT_EQ(Lines(Folder() + "HotSync.old.log").size(), 3u);
    EXPECT_EQ(log_.Last(2),
              (Strings{std::string(Moment) + "the last straw", std::string(Moment) + "after it"}));
}

TEST_F(SessionLogTest, AFileThatIsNotFullYetStays) {
    GivenFile("HotSync.log", std::string(SessionLog::FullAt - 100, 'x') + "\r\n");

    log_.Write("x");

    EXPECT_FALSE(Exists(Folder() + "HotSync.old.log"));
}

TEST_F(SessionLogTest, OfAFileThatIsLargerThanAnyOnlyTheEndIsReadAndNoPieceOfALine) {
    std::string content;
    for (int k = 0; content.size() < 3 * SessionLog::FullAt; ++k)
        content += std::to_string(k) + std::string(999, 'x') + "\r\n";
    GivenFile("HotSync.log", content + "the end\r\n");

    const Strings lines = log_.Last(1'000'000);

    EXPECT_LE(lines.size(), SessionLog::FullAt / 1000);
    EXPECT_GT(lines.size(), 900u);
    EXPECT_GT(lines.front().size(), 999u);
    EXPECT_EQ(lines.back(), "the end");
}

TEST_F(SessionLogTest, AFileWithoutAnyLineEndAndControlsInItAreSurvived) {
    GivenFile("HotSync.log", std::string(2 * SessionLog::FullAt, '\x01'));

    EXPECT_EQ(log_.Last(10), Strings{});

    GivenFile("HotSync.log", std::string("a\0b\x1B\xFF\n\n\r\nlast", 13));
    EXPECT_EQ(log_.Last(10), (Strings{"a?b??", "last"}));
}

TEST_F(SessionLogTest, ALineThatWasCutOffIsEndedBeforeTheNextOne) {
    GivenFile("HotSync.log", std::string(Moment) + "cut of");

    log_.Write("next");

    EXPECT_EQ(Lines(File()), (Strings{std::string(Moment) + "cut of", std::string(Moment) + "next"}));
}

TEST_F(SessionLogTest, ADiskThatIsFullLosesLinesAndSaysHowMany) {
    Strings heard;
    log_.Written = [&](const std::string& line) { heard.push_back(line); };
    log_.Write("one");
    FaultyDisk disk(1);
    Global.TheDisk = &disk;
    log_.Write("two");
    log_.Write("three");
    Global.TheDisk = &NativeDisk();

    log_.Write("four");

    EXPECT_EQ(Lines(File()),
              (Strings{std::string(Moment) + "one", std::string(Moment) + "2 lines could not be written here",
                       std::string(Moment) + "four"}));
    EXPECT_EQ(heard.size(), 4u);
    EXPECT_EQ(heard[1], std::string(Moment) + "two");
    EXPECT_EQ(heard[3], std::string(Moment) + "four");
}

SessionLog::Clock::time_point hour;

TEST_F(SessionLogTest, LinesAboutStrangersAreRationedAndThoseLeftOutAreCounted) {
    hour = SessionLog::Clock::time_point(std::chrono::hours(1000));
    log_.Moment = [] { return hour; };
    for (int k = 0; k < SessionLog::StrangersAtOnce + 5; ++k) log_.WriteOfStranger("browser");
    EXPECT_EQ(Lines(File()).size(), static_cast<std::size_t>(SessionLog::StrangersAtOnce));

    log_.Write("ANNA: session begins");

    Strings last = log_.Last(2);
    EXPECT_EQ(last[0], std::string(Moment) + "5 lines about callers that nobody knows were left out here");
    EXPECT_EQ(last[1], std::string(Moment) + "ANNA: session begins");

    // A minute brings one more, an hour sixty, and a night no more than there were at first.
    const auto written = [&] {
        const std::size_t before = Lines(File()).size();
        for (int k = 0; k < 1000; ++k) log_.WriteOfStranger("browser");
        return Lines(File()).size() - before;
    };
    EXPECT_EQ(written(), 0u);
    hour += std::chrono::minutes(1);
    EXPECT_EQ(written(), 2u) << "one, and the count of those left out";
    hour += std::chrono::hours(1);
    EXPECT_EQ(written(), 61u);
    hour += std::chrono::hours(12);
    EXPECT_EQ(written(), SessionLog::StrangersAtOnce + 1u);
    log_.Write("others are not rationed");
    EXPECT_EQ(log_.Last(1)[0], std::string(Moment) + "others are not rationed");
}

TEST_F(SessionLogTest, AFolderThatIsNotThereIsNoFailure) {
    SessionLog nowhere(Folder() + "nowhere/");

    nowhere.Write("lost");

    EXPECT_EQ(nowhere.Last(3), Strings{});
    EXPECT_FALSE(Exists(Folder() + "nowhere"));
}

TEST_F(SessionLogTest, AppendLineTellsTheFilesSize) {
    EXPECT_EQ(AppendLine(File(), "abc"), 5u);
    EXPECT_EQ(AppendLine(Folder() + "HOTSYNC.LOG", "de"), 9u);

    EXPECT_EQ(Bytes(File()), "abc\r\nde\r\n");
}

} // namespace
