#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/HotSyncTest.h"
#include "forms/Steps.h"
#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "platform/TitledWindow.h"
#include "program/forms/frmMain1.h"
#include "sync/Conduits.h"

#include <QDialog>
#include <QDir>
#include <QPushButton>
#include <QTimer>

namespace {

const QString SetupTitle = QStringLiteral("Setup");
const QString ExitTitle = QStringLiteral("Exit Hotsync Manager");
const QString ProgressTitle = QStringLiteral("Hotsync Progress");

/// A window of another program.
class Other final : public QDialog {
public:
    Other(const std::string& folder, const QString& title) : announced(*this, PathToQt(folder)) {
        setWindowTitle(title);
        ok.setDefault(true);
        connect(&ok, &QPushButton::clicked, this, [this] { ++pressed; });
    }

    QPushButton ok{this};
    int pressed = 0;
    TitledWindow announced;
};

class HotSyncOnTheMainScreen : public HotSyncTest {
protected:
    HotSyncOnTheMainScreen() {
        GivenOffice();
        workingFolder_ = QDir::currentPath();
        temporary_ = qgetenv("TMPDIR");
        GivenScript(Program(), "registered");
    }
    ~HotSyncOnTheMainScreen() override {
        FormRegistry::Instance().Clear();
        temporary_.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", temporary_);
        QDir::setCurrent(workingFolder_);
    }

    static std::string Program() { return Global.InstallPath + "rdkinst"; }

    frmMain1& Start() {
        auto& form = Open<frmMain1>();
        EXPECT_EQ(WrittenBy("started").at(2), "--minimised");
        std::filesystem::remove(Folder() + "started");
        return form;
    }

    static Text Question() {
        Text text = ::Lines(msg::UpdateUsersWhy, ::Lines({}, msg::UpdateUsersSteps));
        for (const MessageId step :
             {msg::UpdateUsersClose, msg::UpdateUsersRegister, msg::UpdateUsersRestart})
            text = ::Lines(text, step);
        return text;
    }

    /// Presses "Update Hotsync Users", agrees, and does the steps in their order while that waits for the
    /// windows. Returns when it has ended.
    void Update(frmMain1& form, const std::vector<Step>& steps) {
        Operator_.Expect(Question()).WithHelp("Update_Hotsync_Users.htm").Answer(Answer::Yes);
        WithSteps(steps, [&] { Click(form, "lblUpdateHSUsers"); });
    }

    Step WhenRegistered(std::function<void()> deed) {
        return {[this] { return Exists(Folder() + "registered"); }, std::move(deed)};
    }

    static Step WhenFound(Other& window, std::function<void()> deed) {
        return {[&window] { return window.announced.WasFound(); }, std::move(deed)};
    }

    void SetTemporaryFolder(const std::string& folder) {
        std::filesystem::create_directories(folder);
        // The names of sockets lie there too.
        Manager.Stop();
        qputenv("TMPDIR", QByteArray::fromStdString(folder));
    }

    QString workingFolder_;
    QByteArray temporary_;
    Other setup_{ManagerFolder(), SetupTitle};
    Other exit_{ManagerFolder(), ExitTitle};
};

// ---- IsHotSyncActive ----

TEST_F(HotSyncOnTheMainScreen, StartsTheManagerMinimisedInItsFolder) {
    EXPECT_TRUE(IsHotSyncActive());

    EXPECT_EQ(WrittenBy("started"),
              (std::vector<std::string>{Folder() + "HotSync", ManagerFolder() + "hotsync", "--minimised"}));
}

TEST_F(HotSyncOnTheMainScreen, AManagerThatIsNotThereIsTracedOnceAndCountsAsActive) {
    const std::string program = ManagerFolder() + "hotsync";
    std::filesystem::remove(program);
    int traced = 0;
    for (int k = 0; k < 3; ++k) {
        EXPECT_TRUE(IsHotSyncActive());
        if (Global.Events.Entry(0) == "basCommon:IsHotSyncActive cannot start " + program) ++traced;
    }
    EXPECT_EQ(traced, 1);
}

TEST_F(HotSyncOnTheMainScreen, WithoutAManagerTheMessageComesAndTheAnswerIsNo) {
    Registry::SetHotSyncManager("");
    EXPECT_FALSE(IsHotSyncActive());
    Operator_.Expect(msg::PalmDesktopMissing).With(Icon::Information);

    EXPECT_FALSE(IsHotSyncActiveOrTell());
    EXPECT_EQ(HotSyncManagerFolder(), "");
}

TEST_F(HotSyncOnTheMainScreen, TheRegistryHoldsTheProgramAndItsFolder) {
    EXPECT_EQ(Registry::HotSyncManagerValue("HotSyncPath"), ManagerFolder() + "hotsync");
    EXPECT_EQ(Registry::HotSyncManagerValue("Path"), Folder() + "HotSync");
    EXPECT_EQ(HotSyncManagerFolder(), ManagerFolder());
}

TEST_F(HotSyncOnTheMainScreen, TheInstallFolderOfAUserIsEmptied) {
    const std::string file = GivenFile("HotSync/ANNA/Install/Tramble.prc", "x");

    ClearHSInstallDir("ANNA");

    EXPECT_FALSE(Exists(file));
}

// ---- the update of the users ----

TEST_F(HotSyncOnTheMainScreen, AnUpdateRunsTheRegistrationInTheInstallDirectory) {
    auto& form = Start();
    QString during;

    Update(form, {WhenRegistered([&] {
                      during = QDir::currentPath();
                      setup_.show();
                  }),
                  WhenFound(setup_, [&] {
                      setup_.hide();
                      setup_.show();
                  })});

    const std::string install = Global.InstallPath.substr(0, Global.InstallPath.size() - 1);
    EXPECT_EQ(WrittenBy("registered"),
              (std::vector<std::string>{install, Program(), "-crtreg", "ZUK2", "-condpath", "SFrmCn40.dll",
                                        "-name", "Tramble", "-restarths"}));
    EXPECT_EQ(during.toStdString(), install);
    EXPECT_EQ(QDir::currentPath(), workingFolder_);
    EXPECT_TRUE(Exists(Folder() + "started"));
}

TEST_F(HotSyncOnTheMainScreen, AnUpdateAnswersTheWindowsOfTheRegistration) {
    auto& form = Start();
    std::vector<bool> updated;
    bool enabled = true;

    Update(form, {WhenRegistered([&] { setup_.show(); }),
                  WhenFound(setup_,
                            [&] {
                                setup_.hide();
                                exit_.show();
                            }),
                  {[&] { return exit_.pressed > 0; },
                   [&] {
                       exit_.hide();
                       enabled = Enabled(form, "lblUpdateHSUsers");
                       updated.push_back(Global.HSUsersUpdated);
                       setup_.show();
                   }},
                  WhenFound(setup_, [&] {
                      updated.push_back(Global.HSUsersUpdated);
                      setup_.hide();
                  })});

    EXPECT_EQ(updated, (std::vector<bool>{false, false}));
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(Enabled(form, "lblUpdateHSUsers"));
    EXPECT_TRUE(Global.HSUsersUpdated);
}

TEST_F(HotSyncOnTheMainScreen, AnUpdateEndsWithTheSecondSetupWhenNoManagerHadToEnd) {
    auto& form = Start();

    Update(form, {WhenRegistered([&] { setup_.show(); }), WhenFound(setup_, [&] {
                      setup_.hide();
                      setup_.show();
                  })});

    EXPECT_TRUE(Global.HSUsersUpdated);
    EXPECT_EQ(exit_.pressed, 0);
}

TEST_F(HotSyncOnTheMainScreen, CancelAtTheQuestionRunsNothing) {
    auto& form = Start();
    Operator_.Expect(Question()).Answer(Answer::No);

    ClickMenu(form, "mnuUpdateReg");

    EXPECT_FALSE(Exists(Folder() + "registered"));
    EXPECT_FALSE(Global.HSUsersUpdated);
    EXPECT_TRUE(Enabled(form, "lblUpdateHSUsers"));
}

TEST_F(HotSyncOnTheMainScreen, AnUpdateWithoutAManagerOnlySaysWhatIsMissing) {
    auto& form = Start();
    Registry::SetHotSyncManager("");
    Operator_.Expect(msg::PalmDesktopMissing).With(Icon::Information);

    Click(form, "lblUpdateHSUsers");

    EXPECT_FALSE(Global.HSUsersUpdated);
}

TEST_F(HotSyncOnTheMainScreen, AnUpdateRemovesWhatAKilledRunLeftInTheTemporaryDirectory) {
    SetTemporaryFolder(Folder() + "tmp");
    const std::string stray = GivenFile("tmp/ZUKTemp/stray.prc", "x");
    auto& form = Start();

    Update(form, {WhenRegistered([&] { setup_.show(); }), WhenFound(setup_, [&] {
                      setup_.hide();
                      setup_.show();
                  })});

    EXPECT_TRUE(Global.HSUsersUpdated);
    EXPECT_FALSE(Exists(stray));
}

TEST_F(HotSyncOnTheMainScreen, ACommandThatCannotBeStartedIsRunOnceMoreFromACopy) {
    GivenScript(Program(), "registered", false);
    SetTemporaryFolder(Folder() + "tmp");
    auto& form = Start();

    Update(form, {WhenRegistered([&] { setup_.show(); }), WhenFound(setup_, [&] {
                      setup_.hide();
                      setup_.show();
                  })});

    const std::vector<std::string> arguments = WrittenBy("registered");
    EXPECT_EQ(arguments.at(0), Folder() + "tmp/ZUKTemp");
    EXPECT_EQ(arguments.at(1), Folder() + "tmp/ZUKTemp/rdkinst");
    EXPECT_TRUE(Exists(Folder() + "tmp/ZUKTemp/ZUKOrHdr.dbf"));
    EXPECT_TRUE(Global.HSUsersUpdated);
    EXPECT_EQ(QDir::currentPath(), workingFolder_);

    form.UnloadForms();
    EXPECT_FALSE(std::filesystem::exists(Folder() + "tmp/ZUKTemp"));
}

TEST_F(HotSyncOnTheMainScreen, ACommandThatCannotBeStartedTwiceIsToldAndEndsTheUpdate) {
    std::filesystem::remove(Program());
    SetTemporaryFolder(Folder() + "tmp");
    auto& form = Start();
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_
        .Expect(Text::Path(std::string_view(RunTimeFailure(53, Folder() + "tmp/ZUKTemp/rdkinst").what())))
        .With(Icon::Stop);

    Click(form, "lblUpdateHSUsers");

    EXPECT_FALSE(Global.HSUsersUpdated);
    EXPECT_TRUE(Enabled(form, "lblUpdateHSUsers"));
    EXPECT_EQ(QDir::currentPath(), workingFolder_);
}

TEST_F(HotSyncOnTheMainScreen, NothingIsRunInATemporaryDirectoryThatIsALink) {
    GivenScript(Program(), "registered", false);
    SetTemporaryFolder(Folder() + "tmp");
    std::filesystem::create_directories(Folder() + "elsewhere");
    std::filesystem::create_directory_symlink(Folder() + "elsewhere", Folder() + "tmp/ZUKTemp");
    auto& form = Start();
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_.Expect(Text::Path(std::string_view(RunTimeFailure(70, TemporaryDirectory()).what())))
        .With(Icon::Stop);

    Click(form, "lblUpdateHSUsers");

    EXPECT_TRUE(std::filesystem::is_empty(Folder() + "elsewhere"));
}

TEST_F(HotSyncOnTheMainScreen, AnUpdateThatWaitsEndsWithTheProgram) {
    auto& form = Start();

    Update(form, {WhenRegistered([&] { form.Unload(); })});

    EXPECT_FALSE(Global.HSUsersUpdated);
    EXPECT_EQ(QDir::currentPath(), workingFolder_);
    Global.Ending = false;
}

// ---- the progress window ----

class ProgressWindow : public HotSyncOnTheMainScreen {
protected:
    frmMain1& StartWatching() {
        Global.Clock = [] { return DateTime{2026, 11, 15, 12, 0, 0}; };
        GivenRows("ZUKTOTALPC", {"TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_EVENT|TP_DATETIM|TP_HOTSYNC",
                                 "2|5|10.5|UPLOAD-ADD|2026-11-15 10:00:00|ANNA"});
        auto& form = Start();
        for (const char* timer : {"Timer2", "Timer3"}) TimerOf(form, timer).setInterval(1);
        return form;
    }

    static QTimer& TimerOf(frmMain1& form, const char* name) {
        auto* timer = form.findChild<QTimer*>(QString::fromLatin1(name));
        EXPECT_NE(timer, nullptr) << name;
        return *timer;
    }

    static bool IsActive(frmMain1& form, const char* timer) { return TimerOf(form, timer).isActive(); }

    Other progress_{ManagerFolder(), ProgressTitle};
};

TEST_F(ProgressWindow, TakesThePlaceOfTheRecentUploadsWhileItStands) {
    auto& form = StartWatching();
    ASSERT_TRUE(Visible(form, "FGTot"));
    EXPECT_TRUE(IsActive(form, "Timer2"));
    EXPECT_FALSE(IsActive(form, "Timer3"));
    const QRect space(Control(form, "picMatrix").mapToGlobal(QPoint(0, 0)),
                      Control(form, "picMatrix").size());
    GivenFile("app/DBFFiles/Images/M1000001", "ink");
    GivenFile("app/DBFFiles/Images/M1000002.bmp", "kept");
    Global.ImagesPath = Global.DBFPath + "Images/";

    progress_.show();

    WaitUntil([&] { return IsActive(form, "Timer3"); });
    EXPECT_FALSE(IsActive(form, "Timer2"));
    EXPECT_FALSE(Visible(form, "picMatrix"));
    EXPECT_FALSE(Visible(form, "FGTot"));
    WaitUntil([&] { return progress_.geometry() == space; });
    EXPECT_TRUE(Exists(Global.ImagesPath + "M1000001"));

    progress_.hide();

    WaitUntil([&] { return IsActive(form, "Timer2"); });
    EXPECT_FALSE(IsActive(form, "Timer3"));
    EXPECT_TRUE(Visible(form, "picMatrix"));
    EXPECT_TRUE(Visible(form, "FGTot"));
    EXPECT_EQ(Bytes(Global.ImagesPath + "M1000001.bmp"), "ink");
    EXPECT_EQ(Bytes(Global.ImagesPath + "M1000002.bmp"), "kept");
    EXPECT_FALSE(Exists(Global.ImagesPath + "M1000001"));
}

TEST_F(ProgressWindow, LeavesTheDisplayAloneWhileThatIsHeld) {
    auto& form = StartWatching();
    Global.HSDisplayHeld = true;
    progress_.show();
    int looks = 0;
    QObject counter;
    QObject::connect(&TimerOf(form, "Timer2"), &QTimer::timeout, &counter, [&] { ++looks; });
    WaitUntil([&] { return looks > 3; });
    EXPECT_TRUE(Visible(form, "picMatrix"));

    Global.HSDisplayHeld = false;
    WaitUntil([&] { return IsActive(form, "Timer3"); });
    Global.HSDisplayHeld = true;
    progress_.hide();

    WaitUntil([&] { return IsActive(form, "Timer2"); });
    EXPECT_FALSE(Global.HSDisplayHeld);
}

TEST_F(ProgressWindow, GivesTheSpaceOfNoUploadsBackToTheHint) {
    GivenRows("ZUKTOTALPC", {"TP_EVENT"});
    auto& form = Start();
    for (const char* timer : {"Timer2", "Timer3"}) TimerOf(form, timer).setInterval(1);
    ASSERT_TRUE(Visible(form, "lblNoUploads"));
    progress_.show();
    WaitUntil([&] { return IsActive(form, "Timer3"); });

    progress_.hide();
    WaitUntil([&] { return IsActive(form, "Timer2"); });

    EXPECT_TRUE(Visible(form, "lblNoUploads"));
    EXPECT_FALSE(Visible(form, "FGTot"));
}

} // namespace
