#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "hotsync/forms/ManagerDesk.h"
#include "hotsync/forms/frmHSExit.h"
#include "hotsync/forms/frmHSManager.h"
#include "hotsync/forms/frmHSPickUser.h"
#include "hotsync/forms/frmHSProgress.h"
#include "hotsync/forms/frmHSSettings.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/Look.h"
#include "platform/Registry.h"
#include "platform/TitledWindow.h"
#include "support/FaultyDisk.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

/// A manager without lines to handhelds and programs: its files, and what a test says of the rest.
class FakeDesk final : public ManagerDesk {
public:
    explicit FakeDesk(const std::string& folder) : folder_(Made(folder)), users_(folder), log_(folder) {
        users_.Changed = [this] {
            if (UsersChanged) UsersChanged();
        };
        log_.Written = [this](const std::string& line) {
            if (LogWritten) LogWritten(line);
        };
    }

    HotSyncUsers& Users() override { return users_; }
    SessionLog& Log() override { return log_; }
    std::optional<std::uint32_t> UserInSession() const override { return InSession; }
    ListeningState Listening() const override { return State; }
    const ManagerSettings& Settings() const override { return settings_; }
    void TakeSettings(const ManagerSettings& settings) override {
        WriteManagerSettings(folder_, settings);
        settings_ = settings;
    }
    void OpenStandIn(const HotSyncUser& user) override {
        if (NoStandIn) throw RunTimeFailure(53, "handheldwindow");
        Opened.push_back(user.Name);
    }
    void End() override { ++Ends; }

    bool NoStandIn = false;
    std::vector<std::string> Opened;

    std::optional<std::uint32_t> InSession;
    ListeningState State{"127.0.0.1", 14238, {}};
    int Ends = 0;

private:
    static std::string Made(const std::string& folder) {
        MakePath(folder);
        return folder;
    }

    std::string folder_;
    HotSyncUsers users_;
    SessionLog log_;
    ManagerSettings settings_ = ReadManagerSettings(folder_);
};

/// A tray that is there on any screen.
class SomeTray final : public Tray {
public:
    using Tray::Tray;
    bool IsThere() const override { return true; }
};

/// Counts how often a window is painted.
class Paints final : public QObject {
public:
    explicit Paints(QWidget& window) { window.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++Count;
        return false;
    }
    int Count = 0;
};

class HotSyncScreens : public FormTest {
protected:
    HotSyncScreens() {
        Global.Clock = [] { return DateTime{2026, 11, 21, 14, 5, 9}; };
        Global.TheManagerDesk = &desk_;
    }
    ~HotSyncScreens() override { FormRegistry::Instance().Clear(); }

    std::uint32_t GivenUser(const std::string& name) { return desk_.Users().New(name).Id; }

    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const HotSyncUser& user : desk_.Users().All()) names.push_back(user.Name);
        return names;
    }

    static void SelectUser(FormBehaviour& form, int row) {
        dynamic_cast<GridView&>(Control(form, "FG1")).SelectRecord(row);
        Settle();
    }

    static QString LogOf(FormBehaviour& form) {
        return dynamic_cast<QPlainTextEdit&>(Control(form, "rtbLog")).toPlainText();
    }

    static bool IsDefault(FormBehaviour& form, const char* button) {
        return dynamic_cast<QPushButton&>(Control(form, button)).isDefault();
    }

    static void Close(FormBehaviour& form) {
        form.Window().close();
        Settle();
    }

    static std::string Prompt(MessageId id) { return Text(id).Utf8(); }

    FakeDesk desk_{Folder() + "HotSync/"};
};

using Names = std::vector<std::string>;

// ---- the manager's window ----

using ManagerWindow = HotSyncScreens;

TEST_F(ManagerWindow, ShowsTheUsersTheirIdsAndHowTheirLastSessionEnded) {
    const std::uint32_t anna = GivenUser("ANNA");
    const std::uint32_t jose = GivenUser("Jos\xE9");
    const std::uint32_t ben = GivenUser("BEN");
    desk_.Users().Synced(anna, {2026, 11, 20, 17, 30, 0}, true);
    desk_.Users().Synced(jose, {2026, 11, 21, 8, 0, 0}, false);

    auto& form = Open<frmHSManager>();

    EXPECT_EQ(form.windowTitle(), QStringLiteral("HotSync Manager"));
    const auto rows = GridRows(form, "FG1");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].join(u'|').toStdString(),
              "ANNA|" + std::to_string(anna) + "|2026-11-20 17:30:00|Complete");
    EXPECT_EQ(rows[1].join(u'|').toStdString(),
              "Jos\xC3\xA9|" + std::to_string(jose) + "|2026-11-21 08:00:00|Broken off");
    EXPECT_EQ(rows[2].join(u'|').toStdString(), "BEN|" + std::to_string(ben) + "|Never|");
}

TEST_F(ManagerWindow, WithoutUsersOffersNewAlone) {
    auto& form = Open<frmHSManager>();

    EXPECT_TRUE(Enabled(form, "cmdNew"));
    EXPECT_FALSE(Enabled(form, "cmdRename"));
    EXPECT_FALSE(Enabled(form, "cmdDelete"));
}

TEST_F(ManagerWindow, TheStandInIsThatOfTheChosenUser) {
    auto& form = Open<frmHSManager>();
    EXPECT_FALSE(Enabled(form, "cmdStandIn"));
    GivenUser("ANNA");
    GivenUser("BEN");
    SelectUser(form, 2);

    Click(form, "cmdStandIn");
    desk_.NoStandIn = true;
    Operator_.ExpectBeginning(msg::HSStandInNotStarted).With(Icon::Stop);
    Click(form, "cmdStandIn");

    EXPECT_EQ(desk_.Opened, (::Names{"BEN"}));
    EXPECT_TRUE(Operator_.AllCame());
}

TEST_F(ManagerWindow, NewAsksForANameAndSelectsTheUser) {
    GivenUser("ANNA");
    auto& form = Open<frmHSManager>();
    Operator_.Expect(msg::HSAskNewName).Type(" Jos\xE9 ");

    Click(form, "cmdNew");

    EXPECT_EQ(Names(), (::Names{"ANNA", "Jos\xE9"}));
    EXPECT_EQ(dynamic_cast<GridView&>(Control(form, "FG1")).SelectedRecord(), 2);
    EXPECT_TRUE(Enabled(form, "cmdDelete"));
}

TEST_F(ManagerWindow, ANameThatCannotBeIsToldAndAskedForAgain) {
    GivenUser("ANNA");
    auto& form = Open<frmHSManager>();
    const std::pair<const char*, MessageId> refused[] = {
        {"  ", msg::HSNameEmpty},
        {"1234567890123456789012345678901", msg::HSNameTooLong},
        {"a/b", msg::HSNameNoFile},
        {"anna", msg::HSNameTaken}};
    for (const auto& [name, words] : refused) {
        Operator_.Expect(msg::HSAskNewName).Type(name);
        Operator_.Expect(words).With(Icon::Warning);
    }
    Operator_.Expect(msg::HSAskNewName).Type("BEN");

    Click(form, "cmdNew");

    EXPECT_EQ(Names(), (::Names{"ANNA", "BEN"}));
    EXPECT_TRUE(Operator_.AllCame());
}

TEST_F(ManagerWindow, GivingUpTheNameChangesNothing) {
    GivenUser("ANNA");
    auto& form = Open<frmHSManager>();
    Operator_.Expect(msg::HSAskNewName);
    Operator_.Expect(msg::HSAskName);

    Click(form, "cmdNew");
    Click(form, "cmdRename");

    EXPECT_EQ(Names(), (::Names{"ANNA"}));
}

TEST_F(ManagerWindow, AUserForWhomAnInstallWaitsIsNotRenamedAndThatIsTold) {
    GivenUser("ANNA");
    GivenFile("HotSync/ANNA/InstallBegun.txt", "ANNA\r\n");
    auto& form = Open<frmHSManager>();
    SelectUser(form, 1);
    Operator_.Expect(msg::HSInstallWaits).With(Icon::Warning);

    Click(form, "cmdRename");

    EXPECT_EQ(Names(), ::Names{"ANNA"});
}

TEST_F(ManagerWindow, RenameAndTheEnterKeyOnARowAskForTheNewName) {
    GivenUser("ANNA");
    GivenUser("BEN");
    auto& form = Open<frmHSManager>();
    SelectUser(form, 2);
    Operator_.Expect(msg::HSAskName).Type("CLARA");
    Click(form, "cmdRename");
    EXPECT_EQ(Names(), (::Names{"ANNA", "CLARA"}));
    EXPECT_EQ(GridRows(form, "FG1")[1][0], QStringLiteral("CLARA"));
    EXPECT_EQ(dynamic_cast<GridView&>(Control(form, "FG1")).SelectedRecord(), 2);

    Operator_.Expect(msg::HSAskName).Type("DORA");
    Press(form, "FG1", Qt::Key_Return);

    EXPECT_EQ(Names(), (::Names{"ANNA", "DORA"}));
}

TEST_F(ManagerWindow, DeleteAsksFirst) {
    GivenUser("ANNA");
    GivenUser("BEN");
    auto& form = Open<frmHSManager>();
    const Text question = ::Lines(Text::Value(std::string_view("ANNA")), msg::HSAskDelete);
    Operator_.Expect(question).Answer(Answer::No).With(Icon::Warning);
    Click(form, "cmdDelete");
    EXPECT_EQ(Names(), (::Names{"ANNA", "BEN"}));

    Operator_.Expect(question).Answer(Answer::Yes);
    Click(form, "cmdDelete");

    EXPECT_EQ(Names(), (::Names{"BEN"}));
    EXPECT_EQ(GridRows(form, "FG1").size(), 1u);
}

TEST_F(ManagerWindow, AUserWhoseHandheldIsInSessionStaysAsItIs) {
    desk_.InSession = GivenUser("ANNA");
    auto& form = Open<frmHSManager>();
    EXPECT_EQ(TextOf(form, "lblState"),
              QStringLiteral("Waiting for handhelds at 127.0.0.1, port 14238\nIn session: ANNA"));
    Operator_.Expect(msg::HSUserInSession);
    Operator_.Expect(msg::HSUserInSession);

    Click(form, "cmdRename");
    Click(form, "cmdDelete");

    EXPECT_EQ(Names(), (::Names{"ANNA"}));
}

TEST_F(ManagerWindow, ASessionThatBeginsWhileTheOperatorTypesIsNotDisturbed) {
    const std::uint32_t anna = GivenUser("ANNA");
    auto& form = Open<frmHSManager>();
    Operator_.Expect(msg::HSAskName).Type("CLARA").Then([&] { desk_.InSession = anna; });
    Operator_.Expect(msg::HSUserInSession);

    Click(form, "cmdRename");

    EXPECT_EQ(Names(), (::Names{"ANNA"}));
}

TEST_F(ManagerWindow, AChangeThatCannotBeWrittenIsTold) {
    auto& form = Open<frmHSManager>();
    FaultyDisk disk(1);
    Global.TheDisk = &disk;
    Operator_.Expect(msg::HSAskNewName).Type("ANNA");
    Operator_.ExpectBeginning(::Lines(msg::HSNotChanged, Text())).With(Icon::Stop);

    Click(form, "cmdNew");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Names(), ::Names{});
}

TEST_F(ManagerWindow, SaysWhereHandheldsAreAwaitedOrWhyTheyCannotBe) {
    auto& form = Open<frmHSManager>();
    EXPECT_EQ(TextOf(form, "lblState"), QStringLiteral("Waiting for handhelds at 127.0.0.1, port 14238"));

    desk_.State = {"*", 999, {}};
    desk_.StateChanged();
    EXPECT_EQ(TextOf(form, "lblState"),
              QStringLiteral("Waiting for handhelds at all addresses of this computer, port 999"));

    desk_.State = {"10.0.0.1", 0, "The address is in use"};
    desk_.StateChanged();
    EXPECT_EQ(TextOf(form, "lblState"),
              QStringLiteral("Handhelds cannot reach this computer: The address is in use"));
    EXPECT_EQ(Control(form, "lblState").palette().color(QPalette::WindowText), WarningTone());
}

TEST_F(ManagerWindow, ShowsTheLastLinesOfTheLogAndThoseThatCome) {
    for (int k = 1; k <= 250; ++k) desk_.Log().Write("line " + std::to_string(k));
    auto& form = Open<frmHSManager>();
    EXPECT_EQ(LogOf(form).count(u'\n'), 199);
    EXPECT_TRUE(LogOf(form).startsWith(QStringLiteral("2026-11-21 14:05:09 line 51\n")));

    desk_.Log().Write("Jos\xE9 has <b>come</b>");

    EXPECT_TRUE(LogOf(form).endsWith(QStringLiteral("line 250\n2026-11-21 14:05:09 José has <b>come</b>")));
    EXPECT_EQ(LogOf(form).count(u'\n'), 199) << "the oldest line goes";
}

TEST_F(ManagerWindow, UsersThatChangeElsewhereKeepTheSelection) {
    GivenUser("ANNA");
    const std::uint32_t ben = GivenUser("BEN");
    auto& form = Open<frmHSManager>();
    SelectUser(form, 2);

    desk_.Users().TakeHandheld(desk_.Users().FindName("ANNA")->Id, 77);
    desk_.Users().Synced(ben, {2026, 11, 21, 9, 0, 0}, true);

    EXPECT_EQ(dynamic_cast<GridView&>(Control(form, "FG1")).SelectedRecord(), 2);
    EXPECT_EQ(GridRows(form, "FG1")[0][1], QStringLiteral("77"));
    EXPECT_EQ(GridRows(form, "FG1")[1][3], QStringLiteral("Complete"));
}

TEST_F(ManagerWindow, AWindowThatHasGoneIsToldOfNothing) {
    Open<frmHSManager>().Unload();
    Settle();

    GivenUser("ANNA");
    desk_.Log().Write("x");

    EXPECT_FALSE(desk_.StateChanged);
}

TEST_F(ManagerWindow, ClosingEscAndHidePutItAwayAndEndNothing) {
    auto& form = Open<frmHSManager>();
    for (const auto& deed : std::vector<std::function<void()>>{
             [&] { Close(form); }, [&] { Press(form, "cmdSettings", Qt::Key_Escape); },
             [&] { Click(form, "cmdHide"); }}) {
        form.Open();
        Settle();
        EXPECT_FALSE(form.isMinimized());

        deed();

        EXPECT_TRUE(form.isMinimized());
        EXPECT_FALSE(form.IsGone());
    }
    EXPECT_EQ(desk_.Ends, 0);
    EXPECT_TRUE(IsDefault(form, "cmdHide"));
}

TEST_F(ManagerWindow, WhereThereIsATrayItGoesThereAndComesBackFromIt) {
    auto& form = Open<frmHSManager>();
    auto tray = std::make_unique<SomeTray>([&] { form.Open(); }, [] {});
    const QList<QAction*> menu = tray->Menu().actions();
    form.UseTray(std::move(tray));

    Close(form);
    EXPECT_FALSE(form.isVisible());
    EXPECT_FALSE(form.IsGone());

    menu.first()->trigger();
    Settle();
    EXPECT_TRUE(form.isVisible());
}

TEST_F(ManagerWindow, TheTraysMenuHasOpenAndExit) {
    ::Names done;
    SomeTray tray([&] { done.push_back("open"); }, [&] { done.push_back("exit"); });

    for (QAction* action : tray.Menu().actions()) action->trigger();

    EXPECT_EQ(done, (::Names{"open", "exit"}));
    EXPECT_EQ(tray.Menu().actions()[0]->text(), QStringLiteral("&Open"));
    EXPECT_EQ(tray.Menu().actions()[1]->text(), QStringLiteral("E&xit"));
}

// ---- the question before the end ----

using ExitQuestion = HotSyncScreens;

TEST_F(ExitQuestion, OkIsTheDefaultAndEndsTheManager) {
    auto& form = Open<frmHSManager>();
    Click(form, "cmdExit");
    auto* question = IfLoaded<frmHSExit>();
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->windowTitle(), QStringLiteral("Exit Hotsync Manager"));
    EXPECT_TRUE(IsDefault(*question, "cmdOK"));
    EXPECT_FALSE(Visible(*question, "lblSession"));
    EXPECT_EQ(desk_.Ends, 0);

    Press(*question, "cmdOK", Qt::Key_Return);

    EXPECT_EQ(desk_.Ends, 1);
    EXPECT_EQ(IfLoaded<frmHSExit>(), nullptr);
}

TEST_F(ExitQuestion, CancelEscAndClosingLeaveTheManagerRunning) {
    for (const auto& deed : std::vector<std::function<void(frmHSExit&)>>{
             [](frmHSExit& form) { Click(form, "cmdCancel"); },
             [](frmHSExit& form) { Press(form, "cmdOK", Qt::Key_Escape); },
             [](frmHSExit& form) { Close(form); }}) {
        AskToExit([&] { desk_.End(); });
        Settle();

        deed(The<frmHSExit>());

        EXPECT_EQ(IfLoaded<frmHSExit>(), nullptr);
    }
    EXPECT_EQ(desk_.Ends, 0);
}

TEST_F(ExitQuestion, SaysThatASessionIsFinishedFirst) {
    desk_.InSession = GivenUser("ANNA");
    AskToExit([] {});
    Settle();

    EXPECT_TRUE(Visible(The<frmHSExit>(), "lblSession"));
}

TEST_F(ExitQuestion, AskedTwiceItStandsOnceAndTheLastWhoAskedIsAnswered) {
    int first = 0;
    int second = 0;
    AskToExit([&] { ++first; });
    AskToExit([&] { ++second; });
    Settle();

    Click(The<frmHSExit>(), "cmdOK");

    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(ExitQuestion, AnotherProgramFindsItByItsTitleAndPressesEnter) {
    ASSERT_TRUE(Registry::SetHotSyncManager(Folder() + "HotSync/hotsync"));
    EXPECT_FALSE(FindWindow(QStringLiteral("Exit Hotsync Manager")));
    AskToExit([&] { desk_.End(); });
    Settle();

    auto window = FindWindow(QStringLiteral("Exit Hotsync Manager"));
    ASSERT_TRUE(window);
    window->SendKeys("{ENTER}");

    EXPECT_TRUE(QTest::qWaitFor([&] { return desk_.Ends == 1; }));
    EXPECT_FALSE(FindWindow(QStringLiteral("Exit Hotsync Manager")));
}

// ---- a handheld without a user ----

class PickingAUser : public HotSyncScreens {
protected:
    using Picking = SessionDesk::Picking;

    /// Asks, and does something while it is waited for.
    Picking Ask(const std::vector<HotSyncUser>& users, const std::function<void()>& deed) {
        QTimer::singleShot(0, qApp, deed);
        return AskForUser(users, std::chrono::hours(1), picked_);
    }

    const std::vector<HotSyncUser> two_{{7, "ANNA", {}, false}, {8, "Jos\xE9", {}, false}};
    std::uint32_t picked_ = 99;
};

TEST_F(PickingAUser, TheChosenUserIsPicked) {
    const Picking result = Ask(two_, [] {
        auto& form = The<frmHSPickUser>();
        EXPECT_EQ(Rows(form, "lstUsers"), (QStringList{QStringLiteral("ANNA"), QStringLiteral("José")}));
        EXPECT_FALSE(Enabled(form, "cmdOK"));
        Select(form, "lstUsers", {QStringLiteral("José")});
        Click(form, "cmdOK");
    });

    EXPECT_EQ(result, Picking::Picked);
    EXPECT_EQ(picked_, 8u);
    EXPECT_EQ(IfLoaded<frmHSPickUser>(), nullptr);
}

TEST_F(PickingAUser, ADoubleClickPicks) {
    EXPECT_EQ(Ask(two_, [] { DoubleClick(The<frmHSPickUser>(), "lstUsers", QStringLiteral("ANNA")); }),
              Picking::Picked);
    EXPECT_EQ(picked_, 7u);
}

TEST_F(PickingAUser, TheOnlyUserIsChosenAlreadyAndEnterPicks) {
    EXPECT_EQ(Ask({two_[1]}, [] { Press(The<frmHSPickUser>(), "lstUsers", Qt::Key_Return); }),
              Picking::Picked);
    EXPECT_EQ(picked_, 8u);
}

TEST_F(PickingAUser, NoneOfTheseEscAndClosingRefuse) {
    EXPECT_EQ(Ask(two_, [] { Click(The<frmHSPickUser>(), "cmdCancel"); }), Picking::Refused);
    EXPECT_EQ(Ask(two_, [] { Press(The<frmHSPickUser>(), "lstUsers", Qt::Key_Escape); }), Picking::Refused);
    EXPECT_EQ(Ask(two_, [] { Close(The<frmHSPickUser>()); }), Picking::Refused);
    EXPECT_EQ(IfLoaded<frmHSPickUser>(), nullptr);
}

TEST_F(PickingAUser, TheQuestionStandsOnWhileNobodyAnswersAndIsNotAskedAnew) {
    EXPECT_EQ(AskForUser(two_, std::chrono::milliseconds(0), picked_), Picking::Waiting);
    auto* form = IfLoaded<frmHSPickUser>();
    ASSERT_NE(form, nullptr);
    Select(*form, "lstUsers", {QStringLiteral("ANNA")});

    EXPECT_EQ(AskForUser(two_, std::chrono::milliseconds(0), picked_), Picking::Waiting);

    EXPECT_EQ(IfLoaded<frmHSPickUser>(), form);
    EXPECT_EQ(Rows(*form, "lstUsers").size(), 2);
    // Between two questions the operator answers: the next one has the answer at once.
    Click(*form, "cmdOK");
    EXPECT_EQ(AskForUser(two_, std::chrono::hours(1), picked_), Picking::Picked);
    EXPECT_EQ(picked_, 7u);
}

TEST_F(PickingAUser, AHandheldThatGoesTakesTheQuestionAlong) {
    EXPECT_EQ(Ask(two_, [] { StopAskingForUser(); }), Picking::Refused);
    EXPECT_EQ(IfLoaded<frmHSPickUser>(), nullptr);
    StopAskingForUser();
}

// ---- the settings ----

class SettingsScreen : public HotSyncScreens {
protected:
    std::string Ini() const { return Bytes(Folder() + "HotSync/HotSync.ini"); }
};

TEST_F(SettingsScreen, ShowsTheSettingsAndWritesWhatIsEntered) {
    auto& form = Open<frmHSSettings>();
    EXPECT_EQ(TextOf(form, "txtAddress"), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(TextOf(form, "txtAnswerSeconds"), QStringLiteral("60"));
    EXPECT_TRUE(IsDefault(form, "cmdOK"));
    const std::pair<const char*, const char*> entries[] = {
        {"txtAddress", "*"},          {"txtPort", "1000"},        {"txtLookupPort", "1001"},
        {"txtHandshakeSeconds", "2"}, {"txtAnswerSeconds", "3"},  {"txtSessionMinutes", "4"},
        {"txtKeepAliveSeconds", "5"}, {"txtWaitingCallers", "6"}, {"txtLargestTableMB", "7"},
        {"txtLargestFileMB", " 8 "}};
    for (const auto& [name, value] : entries) Type(form, name, QString::fromLatin1(value));

    Click(form, "cmdOK");

    const std::uint32_t id = desk_.Settings().PCId;
    EXPECT_EQ(desk_.Settings(), (ManagerSettings{"*", 1000, 1001, true, 2, 3, 4, 5, 6, 7, 8, id}));
    EXPECT_EQ(ReadManagerSettings(Folder() + "HotSync"), desk_.Settings());
    EXPECT_EQ(IfLoaded<frmHSSettings>(), nullptr);
}

TEST_F(SettingsScreen, WhatCannotBeIsToldAndTheOperatorStandsInIt) {
    const std::string before = Ini();
    const std::tuple<const char*, const char*, MessageId, Text> wrong[] = {
        {"txtAddress", "localhost", msg::HSAddress, msg::HSEnterAddress},
        {"txtPort", "65536", msg::HSTcpPort,
         Words(msg::HSEnterNumber, Text::Value(std::int64_t{0}), msg::HSUpTo,
               Text::Value(std::int64_t{65535}))},
        {"txtKeepAliveSeconds", "", msg::HSKeepAlive,
         Words(msg::HSEnterNumber, Text::Value(std::int64_t{1}), msg::HSUpTo,
               Text::Value(std::int64_t{25}))}};
    for (const auto& [name, value, label, words] : wrong) {
        auto& form = Open<frmHSSettings>();
        Type(form, name, QString::fromLatin1(value));
        Operator_.Expect(::Lines(label, words)).With(Icon::Warning);

        Click(form, "cmdOK");

        EXPECT_EQ(IfLoaded<frmHSSettings>(), &form);
        EXPECT_EQ(form.focusWidget(), &Control(form, name));
        form.Unload();
        Settle();
    }
    EXPECT_EQ(Ini(), before);
}

TEST_F(SettingsScreen, WithoutTheLookupItsPortIsNotAskedFor) {
    auto& form = Open<frmHSSettings>();
    Type(form, "txtLookupPort", QStringLiteral("rubbish"));

    Click(form, "chkLookup");
    EXPECT_FALSE(Enabled(form, "txtLookupPort"));
    Click(form, "cmdOK");

    EXPECT_FALSE(desk_.Settings().Lookup);
    EXPECT_EQ(desk_.Settings().LookupPort, 14237);
}

TEST_F(SettingsScreen, CancelAndEscLeaveTheSettings) {
    const ManagerSettings before = desk_.Settings();
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_unknown}) {
        auto& form = Open<frmHSSettings>();
        Type(form, "txtPort", QStringLiteral("5"));
        if (key == Qt::Key_Escape)
            Press(form, "txtPort", key);
        else
            Click(form, "cmdCancel");
        EXPECT_EQ(IfLoaded<frmHSSettings>(), nullptr);
    }
    EXPECT_EQ(desk_.Settings(), before);
}

TEST_F(SettingsScreen, SettingsThatCannotBeWrittenAreToldAndStayOnTheScreen) {
    auto& form = Open<frmHSSettings>();
    Type(form, "txtPort", QStringLiteral("5"));
    FaultyDisk disk(1);
    Global.TheDisk = &disk;
    Operator_.ExpectBeginning(::Lines(msg::HSSettingsNotWritten, Text())).With(Icon::Stop);

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(IfLoaded<frmHSSettings>(), &form);
    EXPECT_EQ(desk_.Settings().Port, 14238);
}

// ---- the progress of a session ----

class SessionProgressWindow : public HotSyncScreens {
protected:
    static int Bar() {
        return dynamic_cast<QProgressBar&>(Control(The<frmHSProgress>(), "pgbProgress")).value();
    }

    HotSyncProgress progress_;
};

TEST_F(SessionProgressWindow, ShowsWhoAndWhatMovesAndGoesWithTheSession) {
    progress_.Begun("Jos\xE9");
    auto* form = IfLoaded<frmHSProgress>();
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Hotsync Progress"));
    EXPECT_EQ(TextOf(*form, "lblCaption"), QStringLiteral("Synchronizing ZUK Tramble data..."));
    EXPECT_EQ(TextOf(*form, "lblUser"), QStringLiteral("HotSync user: José"));

    progress_.Step(SessionProgress::Way::ToHandheld, "ZUKCUST", 1, 4);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Bar() == 250; }));
    EXPECT_EQ(TextOf(*form, "lblWhat"), QStringLiteral("ZUKCUST to the handheld"));

    progress_.Ended("well", true);
    EXPECT_EQ(IfLoaded<frmHSProgress>(), nullptr);
}

TEST_F(SessionProgressWindow, AnotherProgramFindsItByItsTitleWhileItStands) {
    ASSERT_TRUE(Registry::SetHotSyncManager(Folder() + "HotSync/hotsync"));
    progress_.Begun("ANNA");
    EXPECT_TRUE(FindWindow(QStringLiteral("Hotsync Progress")));

    progress_.Ended("well", true);

    EXPECT_FALSE(FindWindow(QStringLiteral("Hotsync Progress")));
}

TEST_F(SessionProgressWindow, NumbersThatCannotBeLeaveTheBarInItsBounds) {
    progress_.Begun("ANNA");
    for (const auto& [done, of, bar] : std::vector<std::tuple<int, int, int>>{
             {5, 4, 1000}, {-1, 4, 0}, {3, 0, 1000}, {2'000'000'000, 2'000'000'000, 1000}, {0, -5, 0}}) {
        progress_.Step(SessionProgress::Way::FromHandheld, "x", done, of);
        EXPECT_TRUE(QTest::qWaitFor([bar = bar] { return Bar() == bar; })) << done;
    }
}

TEST_F(SessionProgressWindow, AHundredThousandStepsDoNotPaintAHundredThousandTimes) {
    progress_.Begun("ANNA");
    Settle();
    Paints paints(The<frmHSProgress>());
    for (int k = 0; k <= 100'000; ++k)
        progress_.Step(SessionProgress::Way::ToHandheld, "ZUKCUST", k, 100'000);

    EXPECT_LT(paints.Count, 1000);
    EXPECT_TRUE(QTest::qWaitFor([] { return Bar() == 1000; }));
}

TEST_F(SessionProgressWindow, CancelIsAskedOnceAndTheSessionEndsByItself) {
    progress_.Begun("ANNA");
    auto& form = The<frmHSProgress>();
    EXPECT_FALSE(progress_.CancelAsked());

    Click(form, "cmdCancel");

    EXPECT_TRUE(progress_.CancelAsked());
    EXPECT_FALSE(Enabled(form, "cmdCancel"));
    EXPECT_FALSE(form.IsGone());
    progress_.Step(SessionProgress::Way::FromHandheld, "ZUKITEM", 1, 2);
    EXPECT_TRUE(QTest::qWaitFor([] { return Bar() == 500; }));
    EXPECT_EQ(TextOf(form, "lblWhat"), QStringLiteral("The session is being ended..."));
    progress_.Ended("cancelled", false);
    EXPECT_TRUE(progress_.CancelAsked());
    progress_.Begun("BEN");
    EXPECT_FALSE(progress_.CancelAsked());
    EXPECT_TRUE(Enabled(The<frmHSProgress>(), "cmdCancel"));
}

TEST_F(SessionProgressWindow, EscAndClosingAskToCancelToo) {
    progress_.Begun("ANNA");
    Press(The<frmHSProgress>(), "cmdCancel", Qt::Key_Escape);
    EXPECT_TRUE(progress_.CancelAsked());

    progress_.Begun("BEN");
    Close(The<frmHSProgress>());
    EXPECT_TRUE(progress_.CancelAsked());
    EXPECT_TRUE(The<frmHSProgress>().isVisible());
}

TEST_F(SessionProgressWindow, WhileAHandheldIsAwaitedItSaysWhatToPress) {
    progress_.Await(Text::Value(std::string_view("Fetching orders")));

    auto& form = The<frmHSProgress>();
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(TextOf(form, "lblCaption"), QStringLiteral("Fetching orders"));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return TextOf(form, "lblWhat") == QStringLiteral("Press the HotSync button on the handheld");
    }));

    progress_.Begun("ANNA");
    progress_.StopAwaiting();
    EXPECT_FALSE(form.IsGone());
    progress_.Ended("well", true);
    EXPECT_EQ(IfLoaded<frmHSProgress>(), nullptr);
}

TEST_F(SessionProgressWindow, ASessionOfAnotherLeavesTheWaitingWindow) {
    progress_.Await({});
    progress_.Begun("ANNA");

    progress_.Ended("refused", false);

    auto& form = The<frmHSProgress>();
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(TextOf(form, "lblUser"), QString());
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return TextOf(form, "lblWhat") == QStringLiteral("Press the HotSync button on the handheld");
    }));
    progress_.StopAwaiting();
    EXPECT_EQ(IfLoaded<frmHSProgress>(), nullptr);
}

TEST_F(SessionProgressWindow, CancelWhileAwaitingGivesTheWaitUp) {
    int cancelled = 0;
    progress_.AwaitCancelled = [&] { ++cancelled; };
    progress_.Await({});

    Click(The<frmHSProgress>(), "cmdCancel");

    EXPECT_EQ(cancelled, 1);
    EXPECT_FALSE(progress_.CancelAsked());
    EXPECT_EQ(IfLoaded<frmHSProgress>(), nullptr);
}

} // namespace
