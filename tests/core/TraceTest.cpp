#include "core/Trace.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

namespace {

class TraceTest : public EngineTest {
protected:
    TraceTest() { GivenAppDirectory(); }
    std::string Log() const { return Global.AppPath + "Events.log"; }

    /// The program's next run: the ring starts empty and is loaded.
    static void Restart() {
        Global.Events = TraceRing{};
        LoadEvents();
    }
};

TEST_F(TraceTest, FirstEventWithoutALogWritesOneTextLineAnd300EmptyOnes) {
    LoadEvents();

    TraceEvent("frmMain1:Form_Load");

    const auto lines = Lines(Log());
    ASSERT_EQ(lines.size(), 301u);
    EXPECT_EQ(lines.front(), "frmMain1:Form_Load");
    for (std::size_t k = 1; k < lines.size(); ++k) EXPECT_EQ(lines[k], "") << k;
}

TEST_F(TraceTest, LinesEndInCarriageReturnAndLineFeed) {
    TraceEvent("a:b");

    EXPECT_EQ(Bytes(Log()).substr(0, 7), "a:b\r\n\r\n");
    EXPECT_EQ(Bytes(Log()).size(), 3u + 301u * 2u);
}

TEST_F(TraceTest, TheNewestLineIsOnTop) {
    TraceEvent("first");
    TraceEvent("second");

    const auto lines = Lines(Log());
    EXPECT_EQ(lines[0], "second");
    EXPECT_EQ(lines[1], "first");
    EXPECT_EQ(Global.Events.Entry(0), "second");
}

TEST_F(TraceTest, After301MoreEventsTheOldestHasGone) {
    TraceEvent("oldest");
    for (int k = 1; k <= 300; ++k) TraceEvent("event " + std::to_string(k));
    EXPECT_EQ(Lines(Log()).back(), "oldest");

    TraceEvent("event 301");

    const auto lines = Lines(Log());
    ASSERT_EQ(lines.size(), 301u);
    EXPECT_EQ(lines.front(), "event 301");
    EXPECT_EQ(lines.back(), "event 1");
}

TEST_F(TraceTest, ARestartKeepsThePreviousRunsLinesBelowTheNewOnes) {
    TraceEvent("old 1");
    TraceEvent("old 2");

    Restart();
    TraceEvent("new 1");

    const auto lines = Lines(Log());
    ASSERT_EQ(lines.size(), 301u);
    EXPECT_EQ(lines[0], "new 1");
    EXPECT_EQ(lines[1], "old 2");
    EXPECT_EQ(lines[2], "old 1");
}

TEST_F(TraceTest, LoadingWithoutALogEmptiesTheRing) {
    Global.Events.Push("of a test before");

    LoadEvents();

    EXPECT_EQ(Global.Events.Entry(0), "");
}

TEST_F(TraceTest, ALogOf301LinesIsReadWhole) {
    std::string log;
    for (int k = 0; k <= 300; ++k) log += "line " + std::to_string(k) + "\r\n";
    GivenFile("app/Events.log", log);

    LoadEvents();

    EXPECT_EQ(Global.Events.Entry(0), "line 0");
    EXPECT_EQ(Global.Events.Entry(300), "line 300");
}

TEST_F(TraceTest, ALogOf302LinesIsASubscriptFailure) {
    std::string log;
    for (int k = 0; k <= 301; ++k) log += "line\r\n";
    GivenFile("app/Events.log", log);

    EXPECT_EQ(FailureOf([] { LoadEvents(); }).Number, 9);

    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TraceTest, TheEventBehindATooLongLogMakesItWholeAgain) {
    std::string log;
    for (int k = 0; k <= 301; ++k) log += "line\r\n";
    GivenFile("app/Events.log", log);
    FailureOf([] { LoadEvents(); });

    TraceEvent("next");
    Restart();

    EXPECT_EQ(Global.Events.Entry(0), "next");
}

TEST_F(TraceTest, ALogWithBareLineFeedsAndWithoutALastEndIsRead) {
    GivenFile("app/Events.log", "b\na");

    LoadEvents();

    EXPECT_EQ(Global.Events.Entry(0), "b");
    EXPECT_EQ(Global.Events.Entry(1), "a");
}

TEST_F(TraceTest, ALineBreakInATextDoesNotMakeALine) {
    TraceEvent("table:open bad\r\nname");
    TraceEvent("last");

    const auto lines = Lines(Log());
    EXPECT_EQ(lines.size(), 301u);
    EXPECT_EQ(lines[1], "table:open bad  name");
}

TEST_F(TraceTest, AnEventNeverFailsAndLeavesTheOldLogOnAFullDisk) {
    TraceEvent("before");
    const std::string before = Bytes(Log());
    for (int n = 1; n <= 3; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;

        EXPECT_NO_THROW(TraceEvent("on a full disk"));

        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Bytes(Log()), before) << n;
        EXPECT_FALSE(Exists(Log() + ".zuk~")) << n;
        EXPECT_EQ(Global.Files.Count(), 0) << n;
    }
    TraceEvent("after");
    EXPECT_EQ(Lines(Log())[0], "after");
    EXPECT_EQ(Lines(Log())[1], "on a full disk");
    EXPECT_EQ(Lines(Log())[4], "before");
}

TEST_F(TraceTest, WithoutAnApplicationDirectoryNothingIsWritten) {
    Global.AppPath.clear();

    TraceEvent("early");

    EXPECT_FALSE(Exists("Events.log"));
    EXPECT_EQ(Global.Events.Entry(0), "early");
}

} // namespace
