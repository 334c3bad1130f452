#include "core/Dates.h"
#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/HotSyncTest.h"
#include "forms/Steps.h"
#include "installation/forms/frmHHInstall.h"
#include "platform/Convert.h"
#include "platform/TitledWindow.h"
#include "program/forms/frmMain1.h"
#include "quality/CheckResults.h"
#include "quality/forms/frmConfigMsg.h"
#include "store/TableRewrite.h"
#include "support/FakeControl.h"
#include "sync/InstallFolder.h"
#include "sync/forms/frmMainSync.h"
#include "views/forms/frmViewGrid.h"

#include <QComboBox>
#include <QDialog>
#include <QTimer>

#include <filesystem>

namespace {

using Names = std::vector<std::string>;

Text T(std::string_view words) {
    return Text::Path(words);
}

QString Q(MessageId text) {
    return ToQt(Text(text));
}

class InstallScreen;

/// A control whose install files go into the folder of the test's manager.
class InstallControl final : public FakeControl {
public:
    explicit InstallControl(InstallScreen& test);
    ~InstallControl() override;

    void AddInstall(std::string_view file, std::string_view user) override {
        ::AddInstall(Folder, file, user);
    }

    std::string Folder;

private:
    InstallScreen& test_;
};

/// An office with a HotSync Manager, the handhelds Anna and Bea, and the window that the manager shows while
/// a HotSync runs.
class InstallScreen : public HotSyncTest {
protected:
    InstallScreen() {
        GivenOffice();
        SetGraphics();
        GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna", "Bea"});
        Global.Clock = [] { return DateTime{2026, 11, 22, 18, 3, 11}; };
        Global.MakeSFrmAX40 = [this] { return std::make_unique<InstallControl>(*this); };
        QApplication::setApplicationVersion("1.0.0");
        progress_.setWindowTitle("Hotsync Progress");
    }
    ~InstallScreen() override { FormRegistry::Instance().Clear(); }

    /// Presses a button, and does the steps in their order while that waits. Returns when it has ended.
    void Press(frmHHInstall& form, const char* button, const std::vector<Step>& steps) {
        WithSteps(steps, [&] { Click(form, button); });
        EXPECT_FALSE(Global.HHInstallActive);
        EXPECT_FALSE(Global.InstallSession);
        EXPECT_TRUE(IfLoaded<frmMainSync>() || !Answering()) << "a control stays behind";
    }

    /// The screen waits for a handheld, or for the second HotSync of a live install.
    static Step WhenItWaits(frmHHInstall& form, std::function<void()> deed) {
        return {[&form] { return Global.HHInstallActive && Visible(form, "lblHSWait"); }, std::move(deed)};
    }
    Step WhenFound(std::function<void()> deed) {
        return {[this] { return window_.WasFound(); }, std::move(deed)};
    }
    static Step WhenSaid(frmHHInstall& form, const Text& text, std::function<void()> deed) {
        return {[&form, text] { return TextOf(form, "lblInstallMsg") == ToQt(text); }, std::move(deed)};
    }

    /// A handheld presses HotSync: the manager's window comes, and what is queued is on the handheld when it
    /// goes.
    std::vector<Step> HotSync(Step begin, const std::string& user = "Anna") {
        const auto deed = begin.Deed;
        begin.Deed = [this, deed, user] {
            deed();
            if (InstallControl* control = Answering()) {
                control->User = user;
                control->Raise(SessionBegun);
            }
            progress_.show();
        };
        return {begin, WhenFound([this, user] {
                    if (InstallControl* control = Answering()) {
                        while (control->RunNext()) {
                        }
                    }
                    InstallFiles(user);
                    if (InstallControl* control = Answering()) control->Raise(SessionEnded);
                    progress_.hide();
                })};
    }

    void InstallFiles(const std::string& user) {
        const std::string folder = InstallFolder(ManagerFolder(), user);
        for (const std::string& file : FilesWithExtension(folder, "")) {
            RemoveQuietly(folder + file);
            Installed.push_back(file);
        }
    }

    Names Waiting(const std::string& user = "Anna") const {
        return FilesWithExtension(InstallFolder(ManagerFolder(), user), "");
    }

    frmHHInstall& OpenFor(const char* user) {
        auto& form = Open<frmHHInstall>();
        ChooseUser(form, user);
        return form;
    }
    static void ChooseUser(frmHHInstall& form, const char* user) {
        Choose(form, "cboHSUsers", QString::fromUtf8(user));
    }

    static Text Ready(std::string_view user) {
        return msg::ReadyToInstall + Text::Value(user) + msg::ReadyPressHotsync;
    }

    void ExpectCleanCheck() {
        Operator_.Expect(msg::QCWillRun);
        Operator_.Expect(msg::NoFatalProblems);
    }

    static std::vector<QStringList> List(frmHHInstall& form) { return GridRows(form, "FGTot"); }

    /// The one control that answers.
    InstallControl* Answering() const {
        for (InstallControl* control : Controls) {
            if (control->Enabled()) return control;
        }
        return nullptr;
    }

    friend class InstallControl;

    std::vector<InstallControl*> Controls;
    Names Users{"Anna", "Bea"}; ///< of the manager
    Names Queued;               ///< of all controls
    Names Installed;
    std::function<bool(bool upload, const std::string& path)> Transfer;
    QDialog progress_;
    TitledWindow window_{progress_, PathToQt(ManagerFolder())};
};

InstallControl::InstallControl(InstallScreen& test) : test_(test) {
    Folder = test.ManagerFolder();
    Users = test.Users;
    Transfer = test.Transfer;
    test.Controls.push_back(this);
}

InstallControl::~InstallControl() {
    test_.Queued.insert(test_.Queued.end(), Queued.begin(), Queued.end());
    std::erase(test_.Controls, this);
}

const QStringList Nobody{"Anna", "", ""};

// ---- the screen at rest ----

TEST_F(InstallScreen, NobodyIsSelectedAtFirstAndThatIsTold) {
    auto& form = Open<frmHHInstall>();

    EXPECT_EQ(TextOf(form, "lblInstallMsg"), Q(msg::SelectHSUser));
    for (const char* button : {"cmdDemo", "cmdLive", "cmdProgram"}) EXPECT_FALSE(Enabled(form, button));
    EXPECT_EQ(dynamic_cast<QComboBox&>(Control(form, "cboHSUsers")).count(), 2);
    EXPECT_EQ(List(form), (std::vector<QStringList>{{"Anna", "", ""}, {"Bea", "", ""}}));

    ChooseUser(form, "Bea");

    EXPECT_EQ(TextOf(form, "lblInstallMsg"), Q(msg::ChooseInstall));
    for (const char* button : {"cmdDemo", "cmdLive", "cmdProgram"}) EXPECT_TRUE(Enabled(form, button));
}

TEST_F(InstallScreen, AnOfficeWithoutHandheldsIsToldWhereTheFirstOneIsAdded) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC"});

    auto& form = Open<frmHHInstall>();

    EXPECT_EQ(TextOf(form, "lblInstallMsg"), Q(msg::NoHSUsers));
    EXPECT_TRUE(List(form).empty());
    Click(form, "cmdReset");
    EXPECT_TRUE(List(form).empty()) << "a reset with no handhelds on record";
}

TEST_F(InstallScreen, TheMainScreenOpensItByItsButtonAndItsMenu) {
    auto& main = Open<frmMain1>();
    for (const char* way : {"lblInstallHH", "mnuSetupInitial"}) {
        bool stood = false;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            auto* form = IfLoaded<frmHHInstall>();
            if (!form || !form->isVisible()) return;
            stood = true;
            Click(*form, "cmdCancel");
        });
        look.start(1);
        if (*way == 'm')
            ClickMenu(main, way);
        else
            Click(main, way);
        EXPECT_TRUE(stood) << way;
    }
}

TEST_F(InstallScreen, WhoIsChosenIsToldInFullThatAnInstallReplacesTheOrdersOfTheHandheld) {
    auto& form = OpenFor("Anna");
    Settle();

    EXPECT_EQ(TextOf(form, "lblInstallMsg"), Q(msg::ChooseInstall));
    EXPECT_TRUE(TextOf(form, "lblInstallMsg").contains("replace the orders on it"));
    const QWidget& message = Control(form, "lblInstallMsg");
    EXPECT_GE(message.height(), message.heightForWidth(message.width()));
}

TEST_F(InstallScreen, AStartTakesBackWhatAKilledInstallHadQueuedAndTellsForWhom) {
    WriteWholeFile(Global.InstallPath + "InstallBegun.txt", "Anna\r\n");
    ::AddInstall(ManagerFolder(), Global.InstallPath + "InstallBegun.txt", "Anna");
    Operator_.Expect(::Lines(T("Anna"), msg::CancelledInHotsync)).With(Icon::Warning);

    Open<frmMain1>();

    EXPECT_TRUE(Waiting().empty());
}

TEST_F(InstallScreen, ALinksTableThatCannotBeReadIsTold) {
    const std::string path = ResolvePath(Global.DBFPath + "ZUKLINK.DBF");
    WriteWholeFile(path, "no table");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    The<frmHHInstall>();

    EXPECT_EQ(IfLoaded<frmHHInstall>(), nullptr);
}

TEST_F(InstallScreen, TheLinksTableIsShownAndWhoWasAddedThereIsListed) {
    auto& form = OpenFor("Anna");
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        auto* grid = IfLoaded<frmViewGrid>();
        if (!grid || !grid->isVisible()) return;
        EXPECT_TRUE(Global.View[ViewLink]);
        GivenRows("ZUKLINK", {"LK_HOTSYNC", "Aaron", "Anna"});
        Click(*grid, "cmdOK");
    });
    look.start(1);

    Click(form, "cmdLinks");

    EXPECT_EQ(dynamic_cast<QComboBox&>(Control(form, "cboHSUsers")).currentText(), "Anna");
    EXPECT_EQ(List(form), (std::vector<QStringList>{{"Aaron", "", ""}, {"Anna", "", ""}}));
}

// ---- the demo company ----

TEST_F(InstallScreen, ADemoWaitsForTheHandheldInstallsEverythingAndIsNoted) {
    auto& main = Open<frmMain1>();
    auto& form = OpenFor("Anna");
    Names queued;
    bool synchronized = false;
    auto steps = HotSync(WhenItWaits(form, [&] {
        queued = Waiting();
        EXPECT_EQ(TextOf(form, "lblInstallMsg"), ToQt(Ready("Anna")));
        for (const char* button : {"cmdDemo", "cmdLive", "cmdProgram", "cmdLinks", "cboHSUsers", "cmdReset"})
            EXPECT_FALSE(Enabled(form, button)) << button;
        EXPECT_TRUE(Enabled(form, "cmdCancel"));
        EXPECT_TRUE(Visible(form, "aniHSWait"));
        EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr) << "one control at a time";
    }));
    steps.insert(steps.begin() + 1,
                 Step{[&] { return Visible(form, "lblSyncMsg"); },
                      [&] { synchronized = Visible(form, "aniHS") && !Visible(form, "lblHSWait"); }});

    Press(form, "cmdDemo", steps);

    EXPECT_EQ(queued.size(), 47U);
    EXPECT_EQ(Installed.size(), 47U);
    EXPECT_TRUE(synchronized);
    EXPECT_TRUE(Queued.empty());
    EXPECT_EQ(List(form),
              (std::vector<QStringList>{{"Anna", "2026-11-22 18:03:11", "Demo Company"}, {"Bea", "", ""}}));
    EXPECT_EQ(TextOf(form, "lblInstallMsg"), "Demo Company was installed on handheld Anna\nFiles: 47");
    EXPECT_FALSE(Visible(form, "aniHS"));
    EXPECT_TRUE(Enabled(form, "cmdDemo"));
    EXPECT_NE(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_NE(main.findChild<QWidget*>("cmdHHHSIDInst_1"), nullptr) << "the bricks are those of the installs";
    form.Unload();
    EXPECT_NE(main.findChild<QWidget*>("cmdHHHSIDStd_1"), nullptr);
}

TEST_F(InstallScreen, WithoutPalmDesktopNothingHappensButTheMessage) {
    auto& form = OpenFor("Anna");
    Registry::SetHotSyncManager("");

    for (const char* button : {"cmdDemo", "cmdLive", "cmdProgram"}) {
        Operator_.Expect(msg::PalmDesktopMissing).With(Icon::Information);
        Click(form, button);
    }

    EXPECT_TRUE(Waiting().empty());
    EXPECT_FALSE(Global.HHInstallActive);
    EXPECT_TRUE(Controls.empty() || !Answering());
}

TEST_F(InstallScreen, AMissingInstallFileIsNamedAndNothingIsQueued) {
    auto& form = OpenFor("Anna");
    const std::string file = Global.InstallPath + "Tramble.prc";
    RemoveQuietly(file);

    for (const char* button : {"cmdDemo", "cmdProgram"}) {
        Operator_.Expect(::Lines(msg::NothingQueued, T(RunTimeFailure(53, file).what()))).With(Icon::Stop);
        Click(form, button);
    }

    EXPECT_TRUE(Waiting().empty());
    EXPECT_TRUE(Enabled(form, "cmdDemo"));
}

TEST_F(InstallScreen, AUserThatTheManagerDoesNotKnowIsNotWaitedFor) {
    Users = {"Carl"};
    auto& form = OpenFor("Anna");
    Operator_.Expect(msg::UnknownUser).With(Icon::Warning);

    Click(form, "cmdDemo");

    EXPECT_TRUE(Waiting().empty());
}

TEST_F(InstallScreen, TheFolderIsThatOfTheUserAsTheManagerSpellsIt) {
    Users = {"ANNA"};
    auto& form = OpenFor("Anna");
    std::size_t queued = 0;

    Press(form, "cmdDemo", HotSync(WhenItWaits(form, [&] { queued = Waiting("ANNA").size(); }), "ANNA"));

    EXPECT_EQ(queued, 47U);
    EXPECT_EQ(List(form).at(0).at(2), "Demo Company");
}

TEST_F(InstallScreen, AHotSyncOfAnotherHandheldInstallsNothingAndTheScreenWaitsOn) {
    auto& form = OpenFor("Anna");
    auto steps = HotSync(WhenItWaits(form, [] {}), "Bea");
    const Text missing = ::Lines(Words(msg::FilesWaiting, Text::Value(std::int64_t{47})), msg::PressAgain);
    for (const Step& step : HotSync(WhenSaid(form, missing, [&] { EXPECT_EQ(Waiting().size(), 47U); })))
        steps.push_back(step);

    Press(form, "cmdDemo", steps);

    EXPECT_EQ(Installed.size(), 47U);
    EXPECT_EQ(List(form),
              (std::vector<QStringList>{{"Anna", "2026-11-22 18:03:11", "Demo Company"}, {"Bea", "", ""}}));
}

// ---- cancelling ----

TEST_F(InstallScreen, CancelBeforeTheHotSyncTakesBackTheFilesClosesAndNotesNothing) {
    auto& form = OpenFor("Anna");

    Press(form, "cmdDemo", {WhenItWaits(form, [&] { Click(form, "cmdCancel"); })});

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Waiting().empty());
    EXPECT_EQ(List(Open<frmHHInstall>()).at(0), Nobody);
}

TEST_F(InstallScreen, CancelInTheHotSyncTakesBackTheRestAndTellsWhatMayBeOnTheHandheld) {
    auto& form = OpenFor("Anna");
    Operator_.Expect(msg::CancelledInHotsync).With(Icon::Warning);

    Press(form, "cmdDemo",
          {WhenItWaits(form, [&] { progress_.show(); }), WhenFound([&] { Click(form, "cmdCancel"); })});

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Waiting().empty());
    EXPECT_EQ(List(Open<frmHHInstall>()).at(0), Nobody);
}

TEST_F(InstallScreen, TheCrossInTheHotSyncTellsWhatMayBeOnTheHandheldToo) {
    auto& form = OpenFor("Anna");
    Operator_.Expect(msg::CancelledInHotsync).With(Icon::Warning);

    Press(form, "cmdDemo", {WhenItWaits(form, [&] { progress_.show(); }), WhenFound([&] { form.close(); })});

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Waiting().empty());
}

TEST_F(InstallScreen, WhileAHandheldIsAwaitedTheManagerCanBeOpenedForItsStandIn) {
    auto& form = OpenFor("Anna");

    Press(form, "cmdDemo", {WhenItWaits(form, [&] {
              EXPECT_TRUE(Enabled(form, "cmdManager"));
              EXPECT_FALSE(Enabled(form, "cmdLinks"));
              Click(form, "cmdCancel");
          })});

    EXPECT_TRUE(form.IsGone());
}

TEST_F(InstallScreen, CancelBetweenTheTwoHotSyncsOfALiveInstallNotesNothing) {
    auto& form = OpenFor("Anna");
    ExpectCleanCheck();
    Operator_.Expect(msg::TwoHotsyncs);
    Operator_.Expect(msg::CancelledInHotsync);
    auto steps = HotSync(WhenItWaits(form, [] {}));
    steps.push_back(WhenSaid(form, msg::SecondHotsync, [&] { Click(form, "cmdCancel"); }));

    Press(form, "cmdLive", steps);

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Queued.empty());
    EXPECT_EQ(List(Open<frmHHInstall>()).at(0), Nobody);
}

TEST_F(InstallScreen, EscapeAtRestClosesAndWhileItWaitsCancels) {
    auto& form = OpenFor("Anna");
    Press(form, "cmdDemo", {WhenItWaits(form, [&] { FormTest::Press(form, "cmdCancel", Qt::Key_Escape); })});
    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Waiting().empty());

    auto& other = Open<frmHHInstall>();
    FormTest::Press(other, "cmdCancel", Qt::Key_Escape);
    EXPECT_TRUE(other.IsGone());
}

TEST_F(InstallScreen, AScreenThatIsClosedFromOutsideLeavesNothingQueued) {
    auto& form = OpenFor("Anna");
    Operator_.Expect(Words(msg::InstallGivenUp, T("Anna"))).With(Icon::Warning);

    Press(form, "cmdDemo", {WhenItWaits(form, [&] { FormRegistry::Instance().UnloadSecondary(); })});

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Waiting().empty());
}

TEST_F(InstallScreen, WhatCancelDoesIsToldBesideIt) {
    auto& form = OpenFor("Anna");
    const auto hint = [&] { return Control(form, "cmdCancel").accessibleDescription(); };
    EXPECT_EQ(hint(), Q(msg::TipClose));
    QString active;

    Press(form, "cmdDemo", HotSync(WhenItWaits(form, [&] { active = hint(); })));

    EXPECT_EQ(active, Q(msg::HintCancelInstall));
    EXPECT_EQ(hint(), Q(msg::TipClose));
}

// ---- live ----

TEST_F(InstallScreen, ALiveInstallChecksTellsOfTwoHotSyncsAndSendsTheTablesInTheSecond) {
    auto& form = OpenFor("Anna");
    ExpectCleanCheck();
    Operator_.Expect(msg::TwoHotsyncs);
    auto steps = HotSync(WhenItWaits(form, [&] { EXPECT_EQ(Waiting().size(), 25U); }));
    for (const Step& step : HotSync(WhenSaid(form, msg::SecondHotsync, [&] {
             EXPECT_TRUE(Visible(form, "lblSyncMsg"));
             EXPECT_EQ(Installed.size(), 25U);
         })))
        steps.push_back(step);

    Press(form, "cmdLive", steps);

    ASSERT_EQ(Queued.size(), 23U);
    EXPECT_EQ(Queued.front(), "DOWNLOAD " + Global.DBFPath + "ZUKAUDBH.DBF");
    EXPECT_EQ(List(form).at(0), (QStringList{"Anna", "2026-11-22 18:03:11", "Live Data"}));
    EXPECT_EQ(TextOf(form, "lblInstallMsg"),
              "Live Data was installed on handheld Anna\nFiles: 25 Tables: 23");
}

TEST_F(InstallScreen, AFatalQualityCheckStopsALiveInstallBeforeTheNote) {
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "ACME|C1|Acme", "|C2|Crane"});
    auto& form = OpenFor("Anna");
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::FatalProblems).With(Icon::Warning);

    Click(form, "cmdLive");

    EXPECT_NE(IfLoaded<frmConfigMsg>(), nullptr);
    EXPECT_TRUE(Waiting().empty());
    EXPECT_FALSE(form.IsGone());
    EXPECT_TRUE(Enabled(form, "cmdLive"));
}

TEST_F(InstallScreen, AWarnOfTheQualityCheckDoesNotStopALiveInstall) {
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "SAW|S1|Saw|"});
    auto& form = OpenFor("Anna");
    ExpectCleanCheck();
    Operator_.Expect(msg::TwoHotsyncs).Then([] {
        const CheckResult items = CheckResults::Read(CheckResultsFile()).Of(Check::Items).value();
        EXPECT_EQ(items.Fatal, 0);
        EXPECT_GT(items.Warn, 0);
    });

    Press(form, "cmdLive", {WhenItWaits(form, [&] { Click(form, "cmdCancel"); })});
}

TEST_F(InstallScreen, ALiveTableThatIsMissingEndsTheInstallBeforeAnythingIsQueued) {
    auto& form = OpenFor("Anna");
    ExpectCleanCheck();
    RemoveQuietly(ResolvePath(Global.DBFPath + "ZUKXPDAT.DBF"));
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(form, "cmdLive");

    EXPECT_TRUE(Waiting().empty());
    EXPECT_FALSE(Global.HHInstallActive);
}

// ---- orders at risk ----

TEST_F(InstallScreen, OrdersThatWouldTravelOrBeLostAreAskedAboutBeforeAnythingIsQueued) {
    GivenRows("ZUKORHDR", {"H_ORDCODE", "A000122", "A000123"});
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", "Anna|A|000123"});
    auto& form = OpenFor("Anna");
    const Text blank = ::Lines({}, {});
    const Text risk = ::Lines(Words(msg::HandheldMayHoldOrders, msg::LastOrderKnown, T("A000123")), blank);
    const Text doubled = ::Lines(Words(msg::OrdersGoAlong, T("2")), blank);
    const auto look = [&] { EXPECT_TRUE(Waiting().empty() && !Global.HHInstallActive); };

    ExpectCleanCheck();
    Operator_.Expect(msg::TwoHotsyncs);
    // The icon makes No the default.
    Operator_.Expect(doubled + risk + msg::InstallAnyway).With(Icon::Warning).Then(look).Answer(Answer::No);
    Click(form, "cmdLive");

    EXPECT_TRUE(Waiting().empty());
    EXPECT_EQ(List(form).at(0), Nobody);
    EXPECT_EQ(TextOf(form, "lblInstallMsg"), Q(msg::ChooseInstall));
    EXPECT_TRUE(Enabled(form, "cmdLive"));

    Operator_.Expect(risk + ::Lines(msg::DemoBeginsAgain, blank) + msg::InstallAnyway)
        .With(Icon::Warning)
        .Then(look)
        .Answer(Answer::Yes);
    Press(form, "cmdDemo", HotSync(WhenItWaits(form, [] {})));
    EXPECT_EQ(List(form).at(0).at(2), "Demo Company");
}

// ---- program only ----

TEST_F(InstallScreen, ProgramOnlyWithTheSameVersionInstallsTheFilesInOneHotSync) {
    Transfer = [](bool upload, const std::string& path) {
        EXPECT_TRUE(upload);
        CopyOver(Global.InstallPath + "ZUKVER.dbf", path);
        TableRewrite table(path);
        table.Append();
        table.Write(FieldKey("V_MAJOR"), "100");
        table.Commit();
        return true;
    };
    auto& form = OpenFor("Bea");

    Press(form, "cmdProgram",
          HotSync(WhenItWaits(form, [&] { EXPECT_TRUE(Waiting("Bea").empty()); }), "Bea"));

    EXPECT_EQ(Installed.size(), 25U);
    EXPECT_EQ(List(form).at(1), (QStringList{"Bea", "2026-11-22 18:03:11", "Program Only"}));
}

TEST_F(InstallScreen, ProgramOnlyWithoutAVersionIsRefusedAndTheScreenIsReadyAgain) {
    Transfer = [](bool, const std::string& path) {
        CopyOver(Global.InstallPath + "ZUKVER.dbf", path);
        return true;
    };
    auto& form = OpenFor("Anna");
    Operator_.Expect(Words(msg::OSVersion, msg::CannotUpgrade, T("1.00")) + msg::InstallNewVersion)
        .With(Icon::Stop);

    Press(form, "cmdProgram", HotSync(WhenItWaits(form, [] {})));

    EXPECT_TRUE(Installed.empty());
    EXPECT_EQ(List(form).at(0), Nobody);
    EXPECT_FALSE(form.IsGone());
    EXPECT_TRUE(Enabled(form, "cmdProgram"));
}

// ---- the list ----

TEST_F(InstallScreen, AResetForgetsTheInstallsOfAllHandhelds) {
    auto& main = Open<frmMain1>();
    auto& form = OpenFor("Anna");
    const auto brick = [&] { return Control(main, "cmdHHHSIDInst_1").accessibleName(); };
    const QString before = brick();
    Press(form, "cmdDemo", HotSync(WhenItWaits(form, [] {})));
    EXPECT_NE(brick(), before);

    Click(form, "cmdReset");

    EXPECT_EQ(brick(), before) << "on the main screen too";
    EXPECT_EQ(List(form), (std::vector<QStringList>{{"Anna", "", ""}, {"Bea", "", ""}}));
    form.Unload();
    EXPECT_EQ(List(Open<frmHHInstall>()).at(0), Nobody);
}

TEST_F(InstallScreen, AListThatCannotBeWrittenIsToldAndTheOldOneStandsOnTheDisk) {
    auto& form = OpenFor("Anna");
    Press(form, "cmdDemo", HotSync(WhenItWaits(form, [] {})));
    const std::string before = Bytes(Folder() + "ZUK/ZUKTramble.ini");
    ASSERT_NE(before.find("Demo Company"), std::string::npos);
    std::filesystem::rename(Folder() + "ZUK", Folder() + "away");
    WriteWholeFile(Folder() + "ZUK", "no folder");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(form, "cmdReset");

    EXPECT_EQ(Bytes(Folder() + "away/ZUKTramble.ini"), before);
}

} // namespace
