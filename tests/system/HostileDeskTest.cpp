#include "DeskProgram.h"
#include "WireTest.h"

#include "driver/DriverClient.h"
#include "platform/Convert.h"

#include <QFile>
#include <QTcpServer>

#include <memory>

namespace {

using Statuses = std::vector<int>;

/// Programs at the manager's local socket, beside the rig's own, which was enabled before them.
class HostileDesk : public WireTest {
protected:
    using WireTest::WireTest;

    std::unique_ptr<DeskProgram> Program() const {
        auto program = std::make_unique<DeskProgram>(rig_.SocketPath());
        EXPECT_TRUE(program->IsThere());
        return program;
    }

    /// One that takes part, and has been heard.
    std::unique_ptr<DeskProgram> Enabled() const {
        auto program = Program();
        program->Enable();
        EXPECT_TRUE(rig_.Until([&] { return !program->Heard("USERS").empty(); }));
        return program;
    }

    /// The handheld's program from the press of the button to its end.
    int Press(const std::function<bool()>& further = [] { return true; }) const {
        QProcess handheld;
        rig_.PressHotSync(handheld, rig_.HandheldFolder());
        const bool ended = rig_.Until([&] { return handheld.state() == QProcess::NotRunning && further(); });
        EXPECT_TRUE(ended) << rig_.Log().toStdString();
        return ended && handheld.exitStatus() == QProcess::NormalExit ? handheld.exitCode() : -1;
    }
};

TEST_F(HostileDesk, RubbishIsSentAway) {
    const std::string hello = "HELLO\t1\n";
    const std::vector<std::string> rubbish{std::string("\0\xFF\xFE\n", 4),
                                           "hello\t1\n",
                                           "GET / HTTP/1.1\r\n\r\n",
                                           "HELLO\t2\n",
                                           "HELLO\n",
                                           "\n",
                                           "ENABLE\tZUK2\n" + hello,
                                           hello + "UPLOAD\t\\x41\n",
                                           hello + "UPLOAD\tends in\\\n",
                                           hello + "ENABLE\tTOO LONG\n",
                                           hello + "ENABLE\n",
                                           std::string(2 << 20, 'A'),
                                           hello + "UPLOAD\t" + std::string(2 << 20, '/')};
    for (const std::string& bytes : rubbish) {
        SCOPED_TRACE(bytes.substr(0, 20));
        NewLog();
        const auto program = Program();
        program->SayBytes(bytes);

        EXPECT_TRUE(rig_.Until([&] { return program->IsGone(); }));

        ExpectLogged(QStringLiteral("a program was sent away: "));
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, AVerbThatNobodyKnowsIsPassedOver) {
    const auto program = Program();
    program->Greet();
    program->Say({"XYZZY", {"a", "b"}});
    program->Say({"FLUSH", {"waits"}});
    program->Say({"UNFLUSH", {}});

    EXPECT_TRUE(rig_.Until([&] { return !program->Heard("FLUSHED").empty(); }));

    EXPECT_EQ(program->Heard("FLUSHED").front().TextAt(0), "CANCELLED");
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, ProgramsThatAskAndLeaveHarmNobody) {
    for (int k = 0; k < 50; ++k) {
        const auto program = Program();
        program->SayBytes("HELLO\t1\nFLUSH\twaits\nUPLOAD\t/x\n");
        program->Leave();
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, ATransferOutsideASessionIsRefused) {
    const auto program = Enabled();
    program->Say({"UPLOAD", {Target()}});
    program->Say({"DOWNLOAD", {Target()}});
    program->Say({"HANDLED", {}});

    EXPECT_TRUE(rig_.Until([&] { return program->Heard("REFUSED").size() == 2; }));

    for (const ManagerMessage& refused : program->Heard("REFUSED")) {
        EXPECT_EQ(refused.TextAt(0), Target());
        EXPECT_EQ(refused.TextAt(1), "no session waits for it");
    }
    ExpectLogged(QStringLiteral("a transfer was refused, no session waits for it"));
    program->Leave();
    EXPECT_EQ(RowsOf(Target()), Old());
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, OnlyTablesAreTransferredAndAStatusIsHandledOnce) {
    const std::vector<std::string> paths{"ZUKVER.DBF",
                                         "",
                                         "/etc/passwd",
                                         folder_ + "pc/x.txt",
                                         folder_ + "pc/.DBF",
                                         folder_ + "pc/" + std::string(40, 'X') + ".DBF",
                                         folder_ + "pc/x.txt" + std::string(1, '\0') + ".DBF",
                                         folder_ + "pc/"};
    const auto program = Enabled();
    program->Handler = [&](int status) {
        for (const std::string& path : paths)
            if (status == 1) program->Say({"UPLOAD", {path}});
        program->Say({"HANDLED", {}});
        program->Say({"HANDLED", {}});
    };

    EXPECT_EQ(Press([&] { return program->Statuses() == Statuses{1, 2}; }), 0);

    EXPECT_EQ(program->Heard("REFUSED").size(), paths.size());
    for (const ManagerMessage& refused : program->Heard("REFUSED")) EXPECT_FALSE(refused.TextAt(1).empty());
    ExpectLogged(QStringLiteral("a transfer was refused, "));
    EXPECT_EQ(RowsOf(Target()), Old());
    program->Leave();
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, AProgramThatVanishesInItsHandlerTakesItsTransfersAlong) {
    const auto program = Enabled();
    program->Handler = [&](int) {
        program->Say({"UPLOAD", {Target()}});
        program->Say({"UPLOAD", {Next()}});
        program->Leave();
    };

    EXPECT_EQ(Press(), 0);

    EXPECT_EQ(program->Statuses(), Statuses{1});
    EXPECT_EQ(RowsOf(Target()), Old());
    ExpectLogged(QStringLiteral("has gone, 2 transfers that it asked for are dropped"));
    ExpectLogged(QStringLiteral("ANNA: session ended "));
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, ATableWhoseProgramVanishesWhileItComesReplacesNothing) {
    for (const bool turnsOff : {false, true}) {
        SCOPED_TRACE(turnsOff);
        NewLog();
        const auto program = Enabled();
        program->Handler = [&](int) {
            program->Say({"UPLOAD", {Target()}});
            program->Say({"UPLOAD", {Next()}});
            // In one piece: it is gone before the first byte of the table has come.
            program->Say({"HANDLED", {}});
            turnsOff ? program->Say({"DISABLE", {}}) : program->Leave();
        };

        EXPECT_EQ(Press(), 0);

        EXPECT_EQ(program->Statuses(), Statuses{1});
        EXPECT_EQ(RowsOf(Target()), Old());
        ExpectLogged(QStringLiteral("ANNA: session ended "));
        program->Leave();
        ExpectTheNextIsServed();
    }
}

TEST_F(HostileDesk, TheProgramHearsHowEachTransferEnded) {
    const auto program = Enabled();
    const std::string missing = folder_ + "pc/ZUKCUST.DBF";
    program->Handler = [&](int status) {
        if (status == 1) program->Say({"UPLOAD", {missing}});
        if (status == 1) program->Say({"UPLOAD", {Target()}});
        program->Say({"HANDLED", {}});
    };

    EXPECT_EQ(Press([&] { return program->Statuses() == Statuses{1, 3, 3, 2}; }), 0);

    std::vector<std::string> ends;
    for (const ManagerMessage& status : program->Heard("STATUS"))
        ends.push_back(status.TextAt(4) + " " + status.TextAt(5));
    EXPECT_EQ(ends, (std::vector<std::string>{" ", missing + " FAILED", Target() + " WELL", " "}));
    program->Leave();
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, ASecondProgramThatWaitsForAHandheldIsRefused) {
    const auto first = Program();
    const auto second = Program();
    first->Greet();
    const auto answers = [&](const DeskProgram& program, std::size_t count) {
        return rig_.Until([&] { return program.Heard("FLUSHED").size() == count; });
    };
    first->Say({"FLUSH", {"first"}});
    first->Say({"UPLOAD", {Target()}});
    ASSERT_TRUE(rig_.Until([&] { return !first->Heard("REFUSED").empty(); })); // so it is armed by now
    second->Greet();
    second->Say({"FLUSH", {"second"}});

    ASSERT_TRUE(answers(*second, 1));
    EXPECT_EQ(second->Heard("FLUSHED").back().TextAt(0), "REFUSED");

    first->Say({"UNFLUSH", {}});
    ASSERT_TRUE(answers(*first, 1));
    EXPECT_EQ(first->Heard("FLUSHED").back().TextAt(0), "CANCELLED");

    // One that waits and goes does not stand in the way.
    second->Say({"FLUSH", {"second"}});
    second->Leave();
    ExpectTheNextIsServed();
    first->Say({"FLUSH", {"first"}});
    first->Say({"UPLOAD", {Target()}});
    ASSERT_TRUE(rig_.Until([&] { return first->Heard("REFUSED").size() == 2; }));
    ExpectTheNextIsServed();
    ASSERT_TRUE(answers(*first, 2));
    EXPECT_EQ(first->Heard("FLUSHED").back().TextAt(0), "DONE");
}

TEST_F(HostileDesk, TheProgramThatWasEnabledLastIsCalled) {
    const auto first = Enabled();
    const auto second = Enabled();
    for (DeskProgram* const program : {first.get(), second.get()})
        program->Handler = [=](int) { program->Say({"HANDLED", {}}); };

    EXPECT_EQ(Press([&] { return second->Statuses() == Statuses{1, 2}; }), 0);
    EXPECT_TRUE(first->Statuses().empty());

    second->Leave();
    EXPECT_EQ(Press([&] { return first->Statuses() == Statuses{1, 2}; }), 0);
    EXPECT_EQ(second->Statuses(), (Statuses{1, 2}));
    first->Leave();
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, AnEndThatIsAskedForInASessionWaitsForItsEnd) {
    const auto program = Enabled();
    program->Handler = [&](int status) {
        if (status == 1) program->Say({"UPLOAD", {Target()}});
        if (status == 1) program->Say({"EXIT", {"NOW"}});
        program->Say({"HANDLED", {}});
    };

    EXPECT_EQ(Press([&] { return !rig_.ManagerRuns(); }), 0);

    EXPECT_EQ(rig_.ManagerCode(), 0) << rig_.Log().toStdString();
    EXPECT_EQ(program->Statuses(), (Statuses{1, 3, 2}));
    EXPECT_EQ(program->Heard("EXITING").size(), 1U);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectLogged(QStringLiteral(" ends"));
    rig_.LeaveDesk();
    rig_.RestartManager();
    ExpectTheNextIsServed();
}

TEST_F(HostileDesk, ASecondManagerInTheFolderEndsQuietly) {
    QProcess second;
    rig_.StartAnother(second);

    EXPECT_TRUE(rig_.Until([&] { return second.state() == QProcess::NotRunning; }));

    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0) << rig_.Errors().toStdString();
    EXPECT_TRUE(NewLog().isEmpty());
    ExpectTheNextIsServed();
}

// ---- starts that fail ----

/// A port that somebody has already.
class Taken {
public:
    Taken() { server_.listen(QHostAddress::LocalHost); }
    std::uint16_t Port() const { return server_.serverPort(); }

private:
    QTcpServer server_;
};

class DeafManager : protected Taken, public HostileDesk {
protected:
    DeafManager()
        : HostileDesk(
              {{}, [port = Taken::Port()](ManagerSettings& settings) { settings.Port = port; }, true}) {}
};

TEST_F(DeafManager, SaysSoInItsLogAndToEveryProgramAndGoesOn) {
    const auto program = Enabled();

    EXPECT_EQ(program->Heard("WELCOME").front().TextAt(2), "");
    EXPECT_EQ(program->Heard("WELCOME").front().TextAt(3), "0");
    EXPECT_TRUE(rig_.LogFile().contains(
        QStringLiteral("cannot await handhelds on 127.0.0.1 port %1: ").arg(Taken::Port())))
        << rig_.LogFile().toStdString();
    EXPECT_TRUE(rig_.ManagerRuns());

    program->Say({"EXIT", {"NOW"}});
    EXPECT_TRUE(rig_.Until([&] { return !rig_.ManagerRuns(); }));
    EXPECT_EQ(rig_.ManagerCode(), 0) << rig_.Log().toStdString();
}

TEST_F(HostileDesk, AManagerThatCannotReadItsUsersSaysWhyAndEnds) {
    rig_.KillManager();
    const QString path = rig_.ManagerFolder() + QStringLiteral("/Users.txt");
    QFile users(path);
    ASSERT_TRUE(users.open(QIODevice::ReadWrite));
    const QByteArray before = users.readAll();
    users.write("../../etc	BOSS\n");
    users.close();
    DrivenProgram start;
    start.Program = rig_.ManagerFolder() + QStringLiteral("/hotsync");
    start.Folder = rig_.ManagerFolder();
    start.Environment[QStringLiteral("TMPDIR")] = rig_.Folder();
    start.Environment[QStringLiteral("XDG_CONFIG_HOME")] = rig_.Folder();
    {
        DriverClient manager(start);
        manager.ExpectContaining(QStringLiteral("Users.txt"));
        manager.Start();
        EXPECT_EQ(manager.WaitForEnd(), 1);
        ASSERT_EQ(manager.Boxes().size(), 1);
        EXPECT_TRUE(manager.Boxes().front().Text.contains(QStringLiteral("line 3")))
            << manager.Boxes().front().Text.toStdString();
    }

    // Nothing of it was lost.
    ASSERT_TRUE(users.open(QIODevice::ReadOnly));
    EXPECT_EQ(users.readAll(), before + "../../etc	BOSS\n");
    users.close();
    ASSERT_TRUE(users.open(QIODevice::WriteOnly));
    users.write(before);
    users.close();
    rig_.RestartManager();
    ExpectTheNextIsServed();
}

} // namespace
