#include "platform/HotSyncControl.h"

#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/HotSyncTest.h"
#include "platform/SFrmUt40.h"
#include "support/Fails.h"
#include "sync/forms/frmHSID.h"

#include <QApplication>
#include <QTimer>

#include <algorithm>

/// A form whose handler waits.
class Waiting final : public Form {
    Q_OBJECT

public:
    void Take(std::int32_t) {
        Run([this] {
            WaitWhile([] { return true; });
            Left = IsOver();
            if (OnEnd) OnEnd();
        });
    }
    bool Left = false;
    std::function<void()> OnEnd;
};

namespace {

using Heard = std::vector<std::string>;
using Statuses = std::vector<std::int32_t>;

ManagerMessage StatusOf(const std::string& status, const std::string& user = "ANNA",
                        const std::string& id = "7") {
    return {"STATUS", {status, user, id, "ZUK2"}};
}

class Control : public HotSyncTest {
protected:
    Control() {
        Manager.Greeting[1].Texts = {"7", "ANNA", "8", "José Núñez"};
        control_ = NewSFrmAX40();
        control_->HotSyncStatus = [this](std::int32_t status) { came_.push_back(status); };
    }
    ~Control() override { control_.reset(); }

    void Enable() {
        Manager.Listen();
        control_->SetEnabled(true);
        Manager.WaitFor("ENABLE");
    }

    void WaitForStatuses(std::size_t count) {
        WaitUntil([&] { return came_.size() >= count; });
    }

    std::unique_ptr<SFrmAX40> control_;
    Statuses came_;
};

// ---- the manager's window ----

using ManagersWindow = HotSyncTest;

TEST_F(ManagersWindow, IsAskedForAndTheManagerStartedFirst) {
    Manager.Listen();
    auto& form = Open<frmHSID>();

    Click(form, "cmdManager");

    Manager.WaitFor("SHOW");
    EXPECT_EQ(WrittenBy("started").at(2), "--minimised");
}

TEST_F(ManagersWindow, OfAManagerThatDoesNotAnswerIsToldAbout) {
    auto& form = Open<frmHSID>();
    Operator_.Expect(msg::ManagerNotShown).With(Icon::Warning);

    Click(form, "cmdManager");

    EXPECT_FALSE(form.IsGone());
}

TEST_F(ManagersWindow, WithoutAManagerThatIsTold) {
    Registry::SetHotSyncManager("");
    auto& form = Open<frmHSID>();
    Operator_.Expect(msg::PalmDesktopMissing);

    Click(form, "cmdManager");
}

// ---- users ----

TEST_F(Control, WithoutAManagerKnowsNoUserAndIsNotCalled) {
    EXPECT_EQ(control_->HotSyncUser(0), "");
    control_->SetEnabled(true);

    EXPECT_TRUE(control_->Enabled());
    EXPECT_TRUE(KnownUsers(*control_).empty());
    EXPECT_EQ(control_->CreatorID(), 0);
    EXPECT_EQ(control_->UserName(), "");
}

TEST_F(Control, KnowsTheManagersUsersInTheirOrderAndInTheCodePage) {
    Manager.Listen();

    EXPECT_EQ(KnownUsers(*control_), (std::vector<std::string>{"ANNA", "Jos\xE9 N\xFA\xF1"
                                                                       "ez"}));
    EXPECT_EQ(control_->HotSyncUser(-1), "");
    EXPECT_FALSE(control_->Enabled());
    Manager.WaitFor("HELLO");
    EXPECT_EQ(Manager.Heard(), Heard{"HELLO\t1"});
}

TEST_F(Control, HearsOfUsersThatChange) {
    Manager.Listen();
    ASSERT_EQ(KnownUsers(*control_).size(), 2U);

    Manager.Say({"USERS", {"9", "BEN"}});

    WaitUntil([&] { return KnownUsers(*control_) == std::vector<std::string>{"BEN"}; });
}

TEST_F(Control, KnowsNoUserOfAManagerThatHangsAndGoesOn) {
    Manager.Greeting.clear();
    Manager.Listen();

    EXPECT_EQ(control_->HotSyncUser(0), "");
}

TEST_F(Control, HasNothingToDoWithAManagerOfAnotherVersion) {
    Manager.Greeting[0].Texts[0] = "2";
    Manager.Listen();

    EXPECT_EQ(control_->HotSyncUser(0), "");
    Manager.WaitFor("bye");
}

// ---- sessions ----

/// What the documented example says in one direction.
Heard ExampleLines(char direction) {
    const std::string page = ReadWholeFile(std::string(TRAMBLE_SOURCE) + "/docs/hotsync-socket.md");
    Heard lines;
    const std::string mark = std::string("\n    ") + direction + ' ';
    for (std::size_t at = page.find("\n## Example\n"); (at = page.find(mark, at)) != std::string::npos;) {
        const std::size_t end = page.find('\n', at + 1);
        std::string line = page.substr(at + mark.size(), end - at - mark.size());
        for (std::size_t arrow = 0; (arrow = line.find("→")) != std::string::npos;)
            line.replace(arrow, 3, "\t");
        lines.push_back(line);
        at = end;
    }
    return lines;
}

TEST_F(Control, HoldsTheSessionOfTheDocumentedExample) {
    const Heard toManager = ExampleLines('>');
    const Heard fromManager = ExampleLines('<');
    ASSERT_EQ(toManager.size(), 7U);
    ASSERT_EQ(fromManager.size(), 5U);
    const std::string path = toManager[2].substr(toManager[2].find('\t') + 1);
    Manager.Greeting.clear();
    Manager.Answer("HELLO", {});
    ManagerMessageReader reader;
    for (const std::string& line : {fromManager[0], fromManager[1]}) reader.Feed(line + "\n");
    for (ManagerMessage message; reader.Next(message);) Manager.Greeting.push_back(message);
    control_->HotSyncStatus = [&](std::int32_t status) {
        if (status == SessionBegun) control_->QueueUpload(path);
        came_.push_back(status);
    };

    Enable();
    for (int k = 1; k <= 3; ++k) {
        Manager.SayBytes(fromManager[static_cast<std::size_t>(k) + 1] + "\n");
        Manager.WaitFor("HANDLED", k);
    }
    control_->SetEnabled(false);
    Manager.WaitFor("DISABLE");

    EXPECT_EQ(Manager.Heard(), toManager);
    EXPECT_EQ(came_, (Statuses{SessionBegun, OperationFinished, SessionEnded}));
    EXPECT_TRUE(control_->EndedWell(path));
}

/// A transfer of this path is over.
ManagerMessage EndOf(const std::string& path, const std::string& how) {
    ManagerMessage status = StatusOf("3");
    status.Texts.insert(status.Texts.end(), {path, how});
    return status;
}

TEST_F(Control, KnowsWhichTransfersOfTheSessionHaveEndedWell) {
    Enable();
    std::vector<bool> inside;
    control_->HotSyncStatus = [&](std::int32_t status) {
        if (status == OperationFinished) inside.push_back(control_->EndedWell("/office/ZUKORHDR.DBF"));
        came_.push_back(status);
    };

    Manager.Say(StatusOf("1"));
    Manager.Say(EndOf("/office/ZUKORHDR.DBF", "WELL"));
    Manager.Say(EndOf("/office/ZUKORLIN.DBF", "FAILED"));
    Manager.Say(StatusOf("2"));
    WaitForStatuses(4);

    EXPECT_EQ(inside, (std::vector<bool>{true, true}));
    EXPECT_TRUE(control_->EndedWell("/office/zukorhdr.dbf"));
    EXPECT_FALSE(control_->EndedWell("/office/HHTotals/ANNA/ZUKORHDR.DBF"));
    EXPECT_FALSE(control_->EndedWell("/office/ZUKORLIN.DBF"));
    EXPECT_FALSE(control_->EndedWell("/office/ZUKAUDTH.DBF"));
}

TEST_F(Control, ForgetsHowTransfersEndedWhenTheNextSessionBegins) {
    Enable();
    Manager.Say(StatusOf("1"));
    Manager.Say(EndOf("/office/ZUKORHDR.DBF", "WELL"));
    Manager.Say(StatusOf("2"));
    WaitForStatuses(3);

    Manager.Say(StatusOf("1"));
    WaitForStatuses(4);

    EXPECT_FALSE(control_->EndedWell("/office/ZUKORHDR.DBF"));
}

TEST_F(Control, TakesATransferWhoseEndNobodyToldForOneThatDidNotEndWell) {
    Enable();
    Manager.Say(StatusOf("1"));
    Manager.Say(StatusOf("3"));
    Manager.Say({"STATUS", {"3", "ANNA", "7", "ZUK2", "/office/ZUKORHDR.DBF"}});
    Manager.Say(EndOf("/office/ZUKORLIN.DBF", "well"));
    // Only an end of a transfer says that one has ended.
    Manager.Say({"STATUS", {"4", "ANNA", "7", "ZUK2", "/office/ZUKAUDTH.DBF", "WELL"}});
    WaitForStatuses(5);

    for (const char* path : {"", "/office/ZUKORHDR.DBF", "/office/ZUKORLIN.DBF", "/office/ZUKAUDTH.DBF"})
        EXPECT_FALSE(control_->EndedWell(path)) << path;
}

TEST_F(Control, KnowsHowTransfersEndedBeforeItsManagerWasLost) {
    Enable();
    Manager.Say(StatusOf("1"));
    Manager.Say(EndOf("/office/ZUKORHDR.DBF", "WELL"));
    WaitForStatuses(2);

    Manager.Stop();
    WaitForStatuses(3);

    EXPECT_EQ(came_.back(), SessionEnded);
    EXPECT_TRUE(control_->EndedWell("/office/ZUKORHDR.DBF"));
}

TEST_F(Control, SaysWhoIsInSession) {
    Enable();

    Manager.Say(StatusOf("1", "José", "4294967295"));
    WaitForStatuses(1);

    EXPECT_EQ(control_->UserName(), "Jos\xE9");
    EXPECT_EQ(control_->UserID(), -1);
    EXPECT_EQ(control_->CreatorID(), 0x5A554B32);
    EXPECT_EQ(SF_GetUserName(), "Jos\xE9");
    EXPECT_EQ(SF_GetUserID(), 4294967295U);
}

TEST_F(Control, IsCalledWithOtherStatusesToo) {
    Enable();

    Manager.Say(StatusOf("-17"));
    WaitForStatuses(1);

    EXPECT_EQ(came_, Statuses{-17});
    Manager.WaitFor("HANDLED");
}

TEST_F(Control, IsCalledForTheNextStatusOnlyWhenItsHandlerHasReturned) {
    Enable();
    Statuses inside;
    control_->HotSyncStatus = [&](std::int32_t status) {
        inside.push_back(status);
        if (status == SessionBegun) {
            // The users come behind the status: it is there as well when they have been heard.
            Manager.Say(StatusOf("2"));
            Manager.Say({"USERS", {"9", "BEN"}});
            WaitUntil([&] { return control_->HotSyncUser(0) == "BEN"; });
            Settle();
        }
        EXPECT_EQ(inside.back(), status);
        came_.push_back(status);
    };

    Manager.Say(StatusOf("1"));
    WaitForStatuses(2);

    EXPECT_EQ(came_, (Statuses{SessionBegun, SessionEnded}));
    Manager.WaitFor("HANDLED", 2);
}

TEST_F(Control, TellsThatItsHandlerHasReturnedAlsoWhenItThrows) {
    Enable();
    control_->HotSyncStatus = [](std::int32_t) { throw RunTimeFailure(53, "ZUKLINK.DBF"); };
    bool told = false;
    Operator_.ExpectBeginning(Text::Path(std::string_view(RunTimeFailure::Words(53)))).Then([&] {
        told = true;
    });

    Manager.Say(StatusOf("1"));
    WaitUntil([&] { return told || Global.Ending; });

    EXPECT_TRUE(Global.Ending);
    Global.Ending = false;
    // The program has ended: only a fresh loop forgets that.
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
    Manager.WaitFor("HANDLED");
}

TEST_F(Control, MayBeDestroyedInsideItsOwnEvent) {
    Enable();
    bool done = false;
    control_->HotSyncStatus = [&](std::int32_t) {
        control_->QueueUpload("/office/ZUKLINK.DBF");
        control_.reset();
        done = true;
    };

    Manager.Say(StatusOf("1"));
    WaitUntil([&] { return done; });

    Manager.WaitFor("bye");
    const Heard heard = Manager.Heard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "HANDLED"), 1);
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "DISABLE"), 1);
}

TEST_F(Control, ThatIsDisabledIsNotCalledAndKeepsNobodyWaiting) {
    Enable();
    control_->SetEnabled(false);
    Manager.WaitFor("DISABLE");

    Manager.Say(StatusOf("1"));

    Manager.WaitFor("HANDLED");
    Settle();
    EXPECT_TRUE(came_.empty());
}

// ---- what is queued ----

TEST_F(Control, QueuesTransfersInsideItsEvent) {
    Enable();
    control_->HotSyncStatus = [&](std::int32_t status) {
        control_->QueueUpload("/office/A/zukorhdr.dbf");
        control_->QueueDownload("/office/B/ZUKCUST.DBF");
        came_.push_back(status);
    };

    Manager.Say(StatusOf("1"));
    Manager.WaitFor("HANDLED");

    const Heard heard = Manager.Heard();
    EXPECT_EQ(Heard(heard.end() - 3, heard.end()),
              (Heard{"UPLOAD\t/office/A/zukorhdr.dbf", "DOWNLOAD\t/office/B/ZUKCUST.DBF", "HANDLED"}));
}

TEST_F(Control, QueuesNothingOutsideItsEvent) {
    Enable();

    EXPECT_EQ(FailureNumber([&] { control_->QueueUpload("/office/ZUKCUST.DBF"); }), 5);
    EXPECT_EQ(FailureNumber([&] { control_->QueueDownload("/office/ZUKCUST.DBF"); }), 5);
}

TEST_F(Control, QueuesNoPathThatNamesNoTableAndNoOtherSettings) {
    Enable();
    std::vector<int> failures;
    control_->HotSyncStatus = [&](std::int32_t status) {
        for (const char* path : {"", "/office/", "/office/.DBF", "/office/ZUKCUST", "/office/ZUKCUST.DBF/"})
            failures.push_back(FailureNumber([&] { control_->QueueUpload(path); }));
        TransferSettings other;
        other.Converter = "other.dll";
        failures.push_back(FailureNumber([&] { control_->QueueDownload("/office/ZUKCUST.DBF", other); }));
        came_.push_back(status);
    };

    Manager.Say(StatusOf("1"));
    WaitForStatuses(1);

    EXPECT_EQ(failures, std::vector<int>(6, 5));
    Manager.WaitFor("HANDLED");
    EXPECT_EQ(Manager.Heard().size(), 3U); // HELLO, ENABLE, HANDLED
}

TEST_F(Control, TracesATransferThatTheManagerRefuses) {
    Enable();
    Manager.Say({"REFUSED", {"/office/ZUKCUST.DBF", "no session"}});
    Manager.Say(StatusOf("1"));
    WaitForStatuses(1);

    EXPECT_EQ(Global.Events.Entry(0), "SFrmAX40:Refused /office/ZUKCUST.DBF: no session");
}

TEST_F(Control, PutsAFileIntoTheInstallFolderOfAUser) {
    const std::string file = GivenFile("Tramble.prc", "program");

    control_->AddInstall(file, "ANNA");

    EXPECT_EQ(Bytes(ManagerFolder() + "ANNA/Install/Tramble.prc"), "program");
    EXPECT_EQ(FailureNumber([&] { control_->AddInstall(Folder() + "gone.prc", "ANNA"); }), 53);
}

// ---- managers that come and go ----

TEST_F(Control, FindsAManagerThatStartsLater) {
    control_->SetEnabled(true);

    Manager.Listen();

    Manager.WaitFor("ENABLE");
    Manager.Say(StatusOf("1"));
    WaitForStatuses(1);
}

TEST_F(Control, FindsAManagerThatIsStartedAgain) {
    Enable();
    Manager.Stop();

    Manager.Listen();

    Manager.WaitFor("ENABLE", 2);
    Manager.Say(StatusOf("1"));
    WaitForStatuses(1);
    Manager.WaitFor("HANDLED");
}

TEST_F(Control, ThatLosesItsManagerInsideASessionRaisesTheEndOfIt) {
    Enable();
    Manager.Say(StatusOf("1"));
    Manager.WaitFor("HANDLED");

    Manager.Stop();

    WaitForStatuses(2);
    EXPECT_EQ(came_, (Statuses{SessionBegun, SessionEnded}));
    EXPECT_EQ(control_->UserName(), "ANNA");
}

TEST_F(Control, ThatLosesItsManagerBetweenSessionsRaisesNothing) {
    Enable();
    Manager.Say(StatusOf("1"));
    Manager.Say(StatusOf("2"));
    Manager.WaitFor("HANDLED", 2);

    Manager.Stop();
    Manager.Listen();

    Manager.WaitFor("ENABLE", 2);
    EXPECT_EQ(came_, (Statuses{SessionBegun, SessionEnded}));
}

TEST_F(Control, SaysNothingOfAnOldSessionToANewManager) {
    Enable();
    bool goOn = false;
    bool inside = false;
    control_->HotSyncStatus = [&](std::int32_t status) {
        if (status == SessionBegun) {
            inside = true;
            WaitUntil([&] { return goOn; });
        }
        came_.push_back(status);
    };
    Manager.Say(StatusOf("1"));
    WaitUntil([&] {
        if (inside && !goOn) {
            Manager.Stop();
            Manager.Listen();
            goOn = true;
        }
        return came_.size() == 2;
    });
    Manager.WaitFor("ENABLE", 2);
    Manager.Say(StatusOf("1"));
    Manager.WaitFor("HANDLED");

    const Heard heard = Manager.Heard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "HANDLED"), 1);
}

TEST_F(Control, EndsAConnectionOverWhatIsNoMessageAndConnectsAgain) {
    const std::string faults[] = {"nonsense\n",
                                  "STATUS\n",
                                  "STATUS\tone\tANNA\t7\tZUK2\n",
                                  "STATUS\t1x\tANNA\t7\tZUK2\n",
                                  "STATUS\t1\tANNA\t-7\tZUK2\n",
                                  "STATUS\t1\tANNA\t4294967296\tZUK2\n",
                                  "STATUS\t1\tANNA\t7\tZUK\n",
                                  "STATUS\t99999999999\tANNA\t7\tZUK2\n",
                                  "USERS\t7\n",
                                  "USERS\tx\tANNA\n",
                                  "STATUS\t1\tA\\qNNA\t7\tZUK2\n",
                                  std::string(ManagerMessageReader::LongestLine + 1, 'A')};
    Enable();
    int times = 1;
    for (const std::string& fault : faults) {
        Manager.SayBytes(fault);
        Manager.WaitFor("bye", times);
        Manager.WaitFor("ENABLE", ++times);
    }
    EXPECT_TRUE(came_.empty());
}

TEST_F(Control, PassesByMessagesAndTextsThatItDoesNotKnow) {
    Enable();

    Manager.Say({"WEATHER", {"fine"}});
    Manager.Say({"STATUS", {"1", "ANNA", "7", "ZUK2", "more", "texts"}});

    WaitForStatuses(1);
    Manager.WaitFor("HANDLED");
}

// ---- forms ----

TEST_F(Control, LetsItsFormGoWhileTheHandlerWaits) {
    Enable();
    bool ended = false;
    auto& form = Open<Waiting>();
    form.OnEnd = [&, &waiting = form] { ended = waiting.Left; };
    control_->HotSyncStatus = [&](std::int32_t status) {
        QTimer::singleShot(0, [] { The<Waiting>().Unload(); });
        form.Take(status);
    };

    Manager.Say(StatusOf("1"));

    Manager.WaitFor("HANDLED");
    EXPECT_TRUE(ended);
}

// ---- SFrmUt40 ----

class CommandQueue : public HotSyncTest {
protected:
    // What the manager's thread hears is no event of this one: a condition over it is asked again and again.
    CommandQueue() { look_.start(1); }

    bool HasHeardFlush() const {
        const Heard heard = Manager.Heard();
        return std::any_of(heard.begin(), heard.end(),
                           [](const std::string& line) { return line.starts_with("FLUSH"); });
    }

    static bool Always() { return true; }
    static Text Caption() { return msg::lblSetup; }

    QTimer look_;
};

TEST_F(CommandQueue, IsRunWithWhatWasAddedBeforeIt) {
    Manager.Answer("FLUSH", {{"FLUSHED", {"DONE"}}});
    Manager.Listen();
    SF_AddToCommandQueue(Direction::Upload, "/office/ZUKORHDR.DBF");
    SF_AddToCommandQueue(Direction::Download, "/office/ZUKCUST.DBF");

    EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), FlushEnd::Done);
    EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), FlushEnd::Done);

    Manager.WaitFor("bye", 2);
    EXPECT_EQ(Manager.Heard(), (Heard{"HELLO\t1", "COMMAND\tUPLOAD\t/office/ZUKORHDR.DBF",
                                      "COMMAND\tDOWNLOAD\t/office/ZUKCUST.DBF", "FLUSH\tRegistering ...",
                                      "bye", "HELLO\t1", "FLUSH\tRegistering ...", "bye"}));
}

TEST_F(CommandQueue, TellsHowItsRunHasEnded) {
    const std::pair<const char*, FlushEnd> ends[] = {
        {"DONE", FlushEnd::Done}, {"CANCELLED", FlushEnd::Cancelled}, {"REFUSED", FlushEnd::Refused}};
    for (const auto& [how, end] : ends) {
        SocketManager manager(ManagerFolder());
        manager.Answer("FLUSH", {{"FLUSHED", {how}}});
        manager.Listen();
        EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), end) << how;
    }
}

TEST_F(CommandQueue, LetsTheEventsOfControlsComeWhileItBlocks) {
    Manager.Listen();
    const auto control = NewSFrmAX40();
    SocketManager& manager = Manager;
    Statuses came;
    control->HotSyncStatus = [&](std::int32_t status) { came.push_back(status); };
    control->SetEnabled(true);
    manager.WaitFor("ENABLE");
    manager.Say(StatusOf("1"));
    bool over = false;

    const FlushEnd end = SF_FlushCommandQueue(Caption(), [&] {
        if (!came.empty() && !over && HasHeardFlush()) {
            over = true;
            manager.Say({"FLUSHED", {"DONE"}}); // to the connection that came last
        }
        return true;
    });

    EXPECT_EQ(end, FlushEnd::Done);
    EXPECT_EQ(came, Statuses{SessionBegun});
}

TEST_F(CommandQueue, EndsWhenTheManagerGoes) {
    Manager.Listen();
    bool asked = false;

    const FlushEnd end = SF_FlushCommandQueue(Caption(), [&] {
        if (!asked && HasHeardFlush()) {
            asked = true;
            Manager.Stop();
        }
        return true;
    });

    EXPECT_EQ(end, FlushEnd::Lost);
}

TEST_F(CommandQueue, IsTakenBackWhenItsCallerGoesNoFurther) {
    Manager.Listen();

    EXPECT_EQ(SF_FlushCommandQueue(Caption(), [&] { return !HasHeardFlush(); }), FlushEnd::GivenUp);

    Manager.WaitFor("bye");
    const Heard heard = Manager.Heard();
    EXPECT_EQ(heard.at(heard.size() - 2), "UNFLUSH");
}

TEST_F(CommandQueue, EndsWithTheProcess) {
    Manager.Listen();
    QTimer::singleShot(1, [] { Global.Ending = true; });

    EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), FlushEnd::GivenUp);

    Global.Ending = false;
}

TEST_F(CommandQueue, WaitsForAManagerThatIsJustStarting) {
    Manager.Answer("FLUSH", {{"FLUSHED", {"DONE"}}});
    QTimer::singleShot(1, [this] { Manager.Listen(); });

    EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), FlushEnd::Done);
}

TEST_F(CommandQueue, IsRunByNobodyWhenNoManagerIsRegistered) {
    Registry::SetHotSyncManager("");
    SF_AddToCommandQueue(Direction::Upload, "/office/ZUKORHDR.DBF");

    EXPECT_EQ(SF_FlushCommandQueue(Caption(), Always), FlushEnd::NoManager);

    EXPECT_TRUE(Global.CommandQueue.empty());
    EXPECT_EQ(SF_GetUserName(), "");
    EXPECT_EQ(SF_GetUserID(), 0U);
}

} // namespace

#include "HotSyncControlTest.moc"
