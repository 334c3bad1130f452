#include "WireTest.h"

#include "core/Paths.h"
#include "platform/Convert.h"

#include <QFile>
#include <QProcess>

namespace {

using Moment = OddHandheld::Moment;

class HandheldsAtOnce : public WireTest {
protected:
    static constexpr int MayWait = 2;
    HandheldsAtOnce()
        : WireTest({{QStringLiteral("BEN")},
                    [](ManagerSettings& settings) { settings.WaitingCallers = MayWait; },
                    false}) {}
};

TEST_F(HandheldsAtOnce, AreServedOneBehindTheOther) {
    QProcess anna, ben;
    rig_.PressHotSync(anna, rig_.HandheldFolder());
    rig_.PressHotSync(ben, rig_.HandheldFolder(QStringLiteral("BEN")));

    const auto outcome = rig_.Attend(
        Fetch(), [&] { return anna.state() == QProcess::NotRunning && ben.state() == QProcess::NotRunning; });

    EXPECT_EQ(outcome.Statuses, (std::vector<int>{1, 3, 2, 1, 3, 2}));
    EXPECT_EQ(anna.exitCode(), 0);
    EXPECT_EQ(ben.exitCode(), 0);
    const QString log = rig_.LogFile();
    EXPECT_TRUE(log.contains(QStringLiteral("BEN: session ended well")));
    ExpectTheNextIsServed();
}

TEST_F(HandheldsAtOnce, WaitInALineThatHasAnEnd) {
    const auto holding = Odd();
    bool asked = false;
    holding->Twist = [&](const Moment& moment) {
        asked = asked || moment.Answers(DlpFunction::ReadSysInfo);
        return asked ? std::string() : moment.Right;
    };
    holding->Call(rig_.Port());
    ASSERT_TRUE(rig_.Until([&] { return asked; }));
    const auto patient = Odd(), leaving = Odd(), late = Odd();
    for (OddHandheld* const caller : {patient.get(), leaving.get(), late.get()}) {
        caller->Call(rig_.Port());
        ASSERT_TRUE(rig_.Until([&] { return caller->IsConnected() || caller->IsOver(); }));
    }

    // More than may wait: the last one is turned away at once.
    EXPECT_TRUE(rig_.Until([&] { return late->IsOver(); }));
    ExpectLogged(QStringLiteral("waits for the end of the session"));
    ExpectLogged(QStringLiteral("turned away, 2 handhelds wait already"));
    EXPECT_FALSE(late->Ended());

    leaving->HangUp();
    ASSERT_TRUE(rig_.Until([&] { return leaving->IsOver(); }));
    holding->HangUp();
    const auto outcome = rig_.Attend(
        Fetch(), [&] { return patient->IsOver(); }, true);

    EXPECT_EQ(outcome.Statuses, (std::vector<int>{1, 3, 2}));
    EXPECT_EQ(patient->Ended(), EndCode::Normal);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
    ExpectLogged(QStringLiteral("session ended early: the handheld went away"));
    EXPECT_EQ(NewLog().count(QStringLiteral("went away")), 2);
}

TEST_F(HandheldsAtOnce, OfOneUserAreTwoSessions) {
    const auto one = Odd(), other = Odd();
    one->Call(rig_.Port());
    other->Call(rig_.Port());

    const auto outcome = rig_.Attend(
        Fetch(), [&] { return one->IsOver() && other->IsOver(); }, true);

    EXPECT_EQ(outcome.Statuses, (std::vector<int>{1, 3, 2, 1, 3, 2}));
    EXPECT_EQ(one->Ended(), EndCode::Normal);
    EXPECT_EQ(other->Ended(), EndCode::Normal);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
}

TEST_F(HandheldsAtOnce, OneCannotBePressedTwice) {
    QProcess first, second;
    rig_.PressHotSync(first, rig_.HandheldFolder());
    ASSERT_TRUE(rig_.Until([&] {
        return QFile::exists(rig_.HandheldFolder() + QStringLiteral("/Handheld.lock")) ||
               first.state() == QProcess::NotRunning;
    }));
    rig_.PressHotSync(second, rig_.HandheldFolder());

    rig_.Attend(Fetch(), [&] {
        return first.state() == QProcess::NotRunning && second.state() == QProcess::NotRunning;
    });

    // Whichever came first holds the session; the other is told so, or comes behind it.
    EXPECT_TRUE(first.exitCode() == 0 || second.exitCode() == 0);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
}

// ---- the manager's own death ----

class ManagerThatIsKilled : public WireTest {};

TEST_F(ManagerThatIsKilled, InTheMiddleOfATableLeavesTheOldOneAndTheNextPutsTheNewOneThere) {
    const auto odd = Odd();
    int records = 0;
    odd->Twist = [&](const Moment& moment) {
        records += moment.Answers(DlpFunction::ReadRecord) ? 1 : 0;
        return records < 2 ? moment.Right : std::string();
    };
    odd->Call(rig_.Port());
    rig_.AttendUntil(Fetch(), [&] { return records == 2; });

    rig_.KillManager();

    EXPECT_EQ(RowsOf(Target()), Old());
    rig_.RestartManager();
    EXPECT_EQ(RowsOf(Target()), Old());
    EXPECT_TRUE(rig_.HotSync(Fetch()).IsWhole());
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectNoWorkFilesIn(rig_.Folder());
    ExpectTheNextIsServed();
}

} // namespace
