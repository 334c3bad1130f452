#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "forms/FormTest.h"
#include "program/forms/frmMain1.h"
#include "support/IdleControl.h"
#include "sync/SessionStatus.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"
#include "sync/forms/frmChgLink.h"
#include "sync/forms/frmHHStatus.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmQBRemote.h"
#include "sync/forms/frmRemoteSync.h"
#include "tools/forms/frmAbout.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QMovie>
#include <QPlainTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

#include <filesystem>

namespace {

constexpr std::int32_t CreatorZUK2 = 0x5A554B32;

/// Handhelds with tables of their own, and the control through which they reach the program.
class Handhelds {
public:
    class Control final : public IdleControl {
    public:
        explicit Control(Handhelds& handhelds) : handhelds_(handhelds) {
            handhelds_.controls_.push_back(this);
        }
        ~Control() override { std::erase(handhelds_.controls_, this); }

        std::string UserName() const override { return handhelds_.user_; }
        std::int32_t CreatorID() const override { return CreatorZUK2; }
        bool EndedWell(std::string_view path) const override {
            return std::any_of(handhelds_.ended_.begin(), handhelds_.ended_.end(),
                               [path](const std::string& each) { return SameText(each, path); });
        }

    private:
        Handhelds& handhelds_;
    };

    explicit Handhelds(std::string folder) : folder_(std::move(folder)) {}

    std::string FolderOf(const std::string& user) const { return folder_ + user + "/"; }

    /// A handheld is placed in its cradle and HotSync pressed.
    void Begin(const std::string& user) {
        user_ = user;
        ended_.clear();
        Raise(SessionBegun);
    }

    /// Runs what is queued, until nothing is.
    void Transfer() {
        for (IdleControl* control : Enabled()) {
            while (!control->Queued.empty()) {
                const std::string job = control->Queued.front();
                control->Queued.erase(control->Queued.begin());
                const std::string path = job.substr(job.find(' ') + 1);
                const std::string own = ResolvePath(FolderOf(user_) + std::string(FileNameOf(path)));
                if (job.starts_with("UPLOAD") && FileExists(own)) {
                    CopyOver(own, path);
                    ended_.push_back(path);
                } else if (job.starts_with("DOWNLOAD")) {
                    CopyOver(path, own);
                    ended_.push_back(path);
                }
                Raise(OperationFinished);
            }
        }
    }

    void End() {
        for (IdleControl* control : Enabled()) control->Queued.clear();
        Raise(SessionEnded);
    }

    void HotSync(const std::string& user) {
        Begin(user);
        Transfer();
        End();
    }

    std::vector<IdleControl*> Enabled() const {
        std::vector<IdleControl*> enabled;
        for (IdleControl* control : controls_) {
            if (control->Enabled()) enabled.push_back(control);
        }
        return enabled;
    }

private:
    void Raise(std::int32_t status) {
        for (IdleControl* control : Enabled()) {
            if (control->HotSyncStatus) control->HotSyncStatus(status);
        }
        QCoreApplication::processEvents();
    }

    std::string folder_;
    std::string user_;
    std::vector<std::string> ended_;
    std::vector<IdleControl*> controls_;
};

class Unattended : public FormTest {
protected:
    Unattended() {
        GivenOffice();
        Global.MakeSFrmAX40 = [this] { return std::make_unique<Handhelds::Control>(handhelds_); };
    }
    // The controls go before what they lean on.
    ~Unattended() override { FormRegistry::Instance().Clear(); }

    frmMain1& Start() {
        Operator_.Expect(msg::PalmDesktopMissing);
        return Open<frmMain1>();
    }

    /// Settings with one activity.
    static UnattendedSettings Upload(const std::string& file) {
        UnattendedSettings settings;
        settings.Upload = true;
        settings.UploadTemplate = file;
        return settings;
    }
    static UnattendedSettings Download(const std::string& file, bool active = true) {
        UnattendedSettings settings;
        settings.Download = active;
        settings.DownloadTemplate = file;
        return settings;
    }

    static void GivenSettings(const std::string& name, const UnattendedSettings& settings) {
        SaveUA(Global.UnattendedTemplates + name + ".uhs", settings);
    }

    /// Settings that upload orders and the handheld's totals.
    static void GivenEvening() {
        GivenSettings("Evening", Upload("Orders"));
        WriteTemplate(Global.UploadTemplates + "Orders.ust", UploadChoice{.Orders = true, .HHTotals = true});
    }

    void GivenLinks(const std::vector<std::string>& ids) {
        std::vector<std::string> rows{"LK_HOTSYNC"};
        rows.insert(rows.end(), ids.begin(), ids.end());
        GivenRows("ZUKLINK", rows);
    }

    /// A handheld that has taken orders of one line each, at ten a piece.
    void GivenHandheld(const std::string& user, const std::vector<std::string>& orders) {
        std::filesystem::create_directories(handhelds_.FolderOf(user));
        std::vector<std::string> headers{"H_ORDCODE"}, lines{"L_ORDCODE|L_KEY|L_TOTPRICE"};
        for (const std::string& order : orders) {
            headers.push_back(order);
            lines.push_back(order + "|" + order + "1|10");
        }
        const std::string count = std::to_string(orders.size());
        GivenTableOf(user, "ZUKOrHdr", headers);
        GivenTableOf(user, "ZUKOrLin", lines);
        GivenTableOf(user, "ZUKAudHH",
                     {"TH_NUMHEAD|TH_NUMLINE|TH_DOL_LIN", count + "|" + count + "|" + count + "0"});
        GivenTableOf(user, "ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", user + "|M" + user[0] + "|7"});
    }

    /// The same settings and one handheld, which has taken one order.
    void GivenAnnasEvening() {
        GivenEvening();
        GivenLinks({"Anna"});
        GivenHandheld("Anna", {"A1"});
    }

    void GivenTableOf(const std::string& user, const std::string& table,
                      const std::vector<std::string>& rows) {
        const std::string path = ResolvePath(Global.DBFPath + table + ".dbf");
        const std::string before = GivenFile("before.dbf", Bytes(path));
        GivenRows(table, rows);
        CopyOver(path, handhelds_.FolderOf(user) + table + ".dbf");
        CopyOver(before, path);
    }

    /// Starts the mode from the main screen.
    frmMain1& Arm(frmMain1& main, const char* name) {
        Click(main, "lblUA");
        auto& start = The<frmQBRemote>();
        Choose(start, "cboUnattended", QString::fromLatin1(name));
        Operator_.Expect(Question(name)).Answer(Answer::Yes);
        Click(start, "cmdOK");
        return main;
    }

    static Text Question(std::string_view name) {
        return Words(msg::Perform, Text::Value(name)) + msg::IsThatCorrect;
    }

    static std::vector<std::string> Orders() {
        std::vector<std::string> codes;
        for (int k = 1; k <= RecordCount("ZUKORHDR"); ++k) codes.push_back(Cell("ZUKORHDR", k, "H_ORDCODE"));
        std::sort(codes.begin(), codes.end());
        return codes;
    }

    static QString Brick(frmMain1& main, int index) {
        return Control(main, ("cmdHHHSID_" + std::to_string(index)).c_str()).accessibleName();
    }

    /// The cross of a window's frame.
    static void CloseByTheFrame(QWidget& window) {
        QCloseEvent event;
        QCoreApplication::sendEvent(&window, &event);
        Settle();
    }

    static QString Labels(FormBehaviour& form) {
        QStringList all;
        for (const char* name :
             {"lblULActive", "lblULTemplate", "lblCLActive", "lblCLTemplate", "lblDLActive", "lblDLTemplate"})
            all << TextOf(form, name);
        return all.join(QLatin1Char('|'));
    }

    static bool MenuLive(frmMain1& main, const char* name) {
        return main.findChild<QAction*>(QString::fromLatin1(name))->isEnabled();
    }

    static std::string Graphics() { return Global.AppPath + "Install/Graphics/"; }

    Handhelds handhelds_{Folder() + "handhelds/"};
};

using Names = std::vector<std::string>;

// ---- the hidden form ----

TEST_F(Unattended, TheStartLoadsTheSessionsFormHiddenAndTheEndUnloadsIt) {
    auto& main = Start();
    ASSERT_NE(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_FALSE(The<frmMainSync>().isVisible());
    EXPECT_TRUE(Global.MainSyncLoaded);
    EXPECT_EQ(handhelds_.Enabled().size(), 1u);

    main.Unload();

    EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_FALSE(Global.MainSyncLoaded);
    EXPECT_TRUE(handhelds_.Enabled().empty());
}

TEST_F(Unattended, TheEditorOfTheLinksTakesTheSessionsFormsPlaceAndGivesItBack) {
    auto& main = Start();

    auto& editor = Open<frmChgLink>();
    EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_TRUE(handhelds_.Enabled().empty());
    Click(editor, "cmdCancel");

    EXPECT_NE(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_EQ(handhelds_.Enabled().size(), 1u);
    Open<frmChgLink>();
    main.Unload();
    EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr);
}

TEST_F(Unattended, ClosingTheSecondaryFormsLeavesTheSessionsFormAndTheWindowOfTheArmedMode) {
    GivenEvening();
    auto& main = Arm(Start(), "Evening");
    The<frmAbout>();

    main.UnloadForms();

    EXPECT_EQ(IfLoaded<frmAbout>(), nullptr);
    EXPECT_NE(IfLoaded<frmMainSync>(), nullptr);
    EXPECT_NE(IfLoaded<frmRemoteSync>(), nullptr);
}

TEST_F(Unattended, AHotSyncOutsideTheModePassesThroughUntouched) {
    GivenLinks({"Anna"});
    GivenHandheld("Anna", {"A1"});
    Start();

    handhelds_.HotSync("Anna");

    EXPECT_EQ(Orders(), Names{});
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_MACH_ID"), "");
}

// ---- the start of the mode ----

TEST_F(Unattended, WithoutSavedSettingsTheStartSaysWhereTheyAreMade) {
    auto& main = Start();
    Operator_.Expect(msg::NoUnattendedTemplates).With(Icon::Information);

    Click(main, "lblUA");

    EXPECT_EQ(IfLoaded<frmQBRemote>(), nullptr);
    EXPECT_FALSE(Global.QCHotsyncPending);
}

TEST_F(Unattended, TheStartEmptiesTheMarksOfTheManualDownloads) {
    GivenLinks({"Anna"});
    GivenEvening();
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   "Anna" + std::string(26, ' ') + "G" + std::string(29, ' ') + "S\r\n");
    auto& main = Start();

    Click(main, "lblUA");

    EXPECT_EQ(EngineTest::Lines(Global.InstallPath + "HSStatus.dat")[0],
              "Anna" + std::string(26, ' ') + "G" + std::string(29, ' '));
    EXPECT_EQ(Control(main, "cmdHHHSIDStd_1").accessibleName(), QStringLiteral("Anna: Not Synced"));
}

TEST_F(Unattended, TheSettingsUsedLastAreChosenAndShowWhatTheyDo) {
    GivenEvening();
    GivenSettings("Night", {true, "All", false, "", true, "Both"});
    Global.RemoteSyncSettings = "evening";
    auto& start = Open<frmQBRemote>();
    EXPECT_EQ(TextOf(start, "cboUnattended"), QStringLiteral("Evening"));
    EXPECT_EQ(Labels(start), QStringLiteral("Yes|Orders|No||No|"));

    Choose(start, "cboUnattended", QStringLiteral("Night"));

    EXPECT_EQ(Labels(start), QStringLiteral("No||Yes|Both|Yes|All"));
}

TEST_F(Unattended, WithNothingChosenTheModeCannotBeStarted) {
    GivenEvening();

    auto& start = Open<frmQBRemote>();

    EXPECT_FALSE(Enabled(start, "cmdOK"));
    EXPECT_EQ(Labels(start), QStringLiteral("|||||"));
}

TEST_F(Unattended, NoAtTheQuestionArmsNothing) {
    GivenEvening();
    auto& main = Start();
    Click(main, "lblUA");
    EXPECT_TRUE(Global.QCHotsyncPending);
    Choose(The<frmQBRemote>(), "cboUnattended", QStringLiteral("Evening"));
    Operator_.Expect(Question("Evening")).Answer(Answer::No);

    Click(The<frmQBRemote>(), "cmdOK");

    EXPECT_FALSE(Global.UnattendedActive);
    Click(The<frmQBRemote>(), "cmdCancel");
    EXPECT_FALSE(Global.QCHotsyncPending);
}

TEST_F(Unattended, YesArmsTheModeAndBothWindowsShowWhatItDoes) {
    GivenEvening();

    auto& main = Arm(Start(), "Evening");

    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_TRUE(Global.RemoteFormLoaded);
    EXPECT_FALSE(Global.QCHotsyncPending);
    EXPECT_EQ(Global.RemoteSyncSettings, "Evening");
    EXPECT_EQ(IfLoaded<frmQBRemote>(), nullptr);
    auto& window = The<frmRemoteSync>();
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.isModal());
    for (FormBehaviour* form : {static_cast<FormBehaviour*>(&main), static_cast<FormBehaviour*>(&window)}) {
        EXPECT_EQ(TextOf(*form, "lblRemote"), QStringLiteral("Evening"));
        EXPECT_EQ(Labels(*form), QStringLiteral("Yes|Orders|No||No|"));
        EXPECT_TRUE(Enabled(*form, "lblULActive"));
        EXPECT_FALSE(Enabled(*form, "lblCLActive"));
        EXPECT_TRUE(Visible(*form, "lblULTemplate"));
    }
    EXPECT_EQ(TextOf(main, "lblMatrix"), QStringLiteral("No Current Hotsync..."));
    EXPECT_TRUE(Visible(main, "aniHSWait"));
    EXPECT_TRUE(Visible(main, "lblAnim"));
    EXPECT_FALSE(Visible(main, "aniHSStatus"));
    EXPECT_FALSE(Visible(main, "lblHSID"));
    EXPECT_EQ(TextOf(window, "lblMessage"), QStringLiteral("Waiting for a handheld. Press HotSync on it."));
}

TEST_F(Unattended, ANameOfADownloadThatIsOffShowsNowhere) {
    GivenSettings("Quiet", Download("AllTables", false));

    auto& main = Arm(Start(), "Quiet");

    EXPECT_EQ(Global.RemoteSelSettings, "AllTables");
    EXPECT_EQ(Labels(main), QStringLiteral("No||No||No|"));
    EXPECT_EQ(Labels(The<frmRemoteSync>()), QStringLiteral("No||No||No|"));
}

TEST_F(Unattended, TheModeDisablesWhateverStartsSomethingElseAndTheStopEnablesNoMoreThanThat) {
    GivenEvening();
    auto& main = Start();
    const auto live = [&main] {
        QStringList names;
        for (const auto* button : main.findChildren<QAbstractButton*>())
            if (button->isEnabled()) names << button->objectName();
        for (const auto* entry : main.findChildren<QAction*>())
            if (entry->isEnabled()) names << entry->objectName();
        names.removeAll(QString());
        names.sort();
        return names.join(QLatin1Char(' ')).toStdString();
    };
    const std::string before = live();

    Arm(main, "Evening");
    for (const char* name : {"mnuExit", "mnuMainImport", "mnuPCSetup", "mnuRemoteSync", "mnuMainAbout"})
        EXPECT_FALSE(MenuLive(main, name)) << name;
    for (const char* menu : {"mnuFile", "mnuEdit", "mnuMainView", "mnuTools", "mnuHelp"})
        EXPECT_FALSE(Enabled(main, menu)) << menu;
    for (const char* name : {"cmdPCTotals", "cmdReset", "lblUA", "lblImportBtn", "lblQC", "lblNext"})
        EXPECT_FALSE(Enabled(main, name)) << name;
    EXPECT_TRUE(Visible(main, "cmdStopRemoteSync"));
    Click(main, "cmdStopRemoteSync");

    EXPECT_EQ(live(), before);
    EXPECT_TRUE(Enabled(main, "mnuFile"));
    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_FALSE(Global.RemoteFormLoaded);
    EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
    EXPECT_FALSE(Visible(main, "cmdStopRemoteSync"));
    EXPECT_FALSE(Visible(main, "aniHSWait"));
    EXPECT_FALSE(Visible(main, "lblAnim"));
    EXPECT_TRUE(Visible(main, "lblImportBtn"));
    EXPECT_EQ(TextOf(main, "lblRemoteSync"), QStringLiteral("Tools"));
    EXPECT_EQ(TextOf(main, "lblMatrix"), QStringLiteral("Recent Uploaded Orders"));
}

TEST_F(Unattended, TheWindowsStopItsEscKeyAndItsCrossStopTheModeToo) {
    GivenEvening();
    auto& main = Start();
    for (const auto& deed : std::vector<std::function<void(frmRemoteSync&)>>{
             [](frmRemoteSync& form) { Click(form, "cmdCancel"); },
             [](frmRemoteSync& form) { Press(form, "chkOnTop", Qt::Key_Escape); },
             [](frmRemoteSync& form) { CloseByTheFrame(form); }}) {
        Arm(main, "Evening");

        deed(The<frmRemoteSync>());

        EXPECT_FALSE(Global.UnattendedActive);
        EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
        EXPECT_TRUE(Enabled(main, "lblUA"));
    }
}

TEST_F(Unattended, TheMenuOpensTheWindowStraightWithTheSettingsInUse) {
    GivenEvening();
    auto& main = Start();
    Global.RemoteSyncSettings = "Evening";

    ClickMenu(main, "mnuRemoteSync");

    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_TRUE(The<frmRemoteSync>().isVisible());
    EXPECT_EQ(Labels(main), QStringLiteral("Yes|Orders|No||No|"));
    EXPECT_FALSE(Enabled(main, "cmdReset"));
}

TEST_F(Unattended, TheMenuWithoutSettingsInUseLetsThemBeChosen) {
    GivenEvening();
    auto& main = Start();

    ClickMenu(main, "mnuRemoteSync");

    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_NE(IfLoaded<frmQBRemote>(), nullptr);
}

TEST_F(Unattended, SettingsThatCannotBeReadAreToldWithTheirLineAndArmNothing) {
    WriteWholeFile(Global.UnattendedTemplates + "Odd.uhs", "Download=False\r\nUpload=Perhaps\r\n");
    auto& main = Start();
    Global.RemoteSyncSettings = "Odd";
    Operator_.ExpectBeginning(msg::UnattendedNotStarted).With(Icon::Stop);

    ClickMenu(main, "mnuRemoteSync");

    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_FALSE(Global.RemoteFormLoaded);
    EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
    EXPECT_TRUE(Enabled(main, "lblUA"));
}

TEST_F(Unattended, ATemplateThatIsNotThereIsToldBeforeAnyHandheldComes) {
    GivenEvening();
    std::filesystem::remove(Global.UploadTemplates + "Orders.ust");
    auto& main = Start();
    Click(main, "lblUA");
    Choose(The<frmQBRemote>(), "cboUnattended", QStringLiteral("Evening"));
    Operator_.Expect(Question("Evening")).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::UnattendedNotStarted).With(Icon::Stop);

    Click(The<frmQBRemote>(), "cmdOK");

    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_NE(IfLoaded<frmQBRemote>(), nullptr); // others can be chosen
}

TEST_F(Unattended, AFatalProblemStopsTheStartBeforeAnythingIsArmed) {
    GivenSettings("Morning", Download("All"));
    WriteTemplate(Global.DownloadTemplates + "All.dst", DownloadChoice{.Customers = true});
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "|B2|Bolt"});
    auto& main = Start();
    Click(main, "lblUA");
    Choose(The<frmQBRemote>(), "cboUnattended", QStringLiteral("Morning"));
    Operator_.Expect(Question("Morning")).Answer(Answer::Yes);
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::FatalHotsync).With(Icon::Warning).Then([] {
        EXPECT_FALSE(Global.UnattendedActive);
    });

    Click(The<frmQBRemote>(), "cmdOK");

    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_FALSE(Global.QCFatalFound);
    EXPECT_FALSE(Global.QCHotsyncPending);
    EXPECT_EQ(IfLoaded<frmQBRemote>(), nullptr);
    EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
    EXPECT_TRUE(Enabled(main, "lblUA"));
}

TEST_F(Unattended, SoundTablesLetAModeWithADownloadStart) {
    GivenSettings("Morning", Download("All"));
    WriteTemplate(Global.DownloadTemplates + "All.dst", DownloadChoice{.Customers = true});
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "BOLT|B2|Bolt"});
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "SAW|S1|Saw|9.00"});
    GivenLinks({"Anna"});
    GivenHandheld("Anna", {});
    auto& main = Start();
    Click(main, "lblUA");
    Choose(The<frmQBRemote>(), "cboUnattended", QStringLiteral("Morning"));
    Operator_.Expect(Question("Morning")).Answer(Answer::Yes);
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::NoFatalProblems);

    Click(The<frmQBRemote>(), "cmdOK");
    handhelds_.HotSync("Anna");

    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_TRUE(FileExists(ResolvePath(handhelds_.FolderOf("Anna") + "ZUKCUST.DBF")));
}

// ---- sessions ----

TEST_F(Unattended, ASessionShowsWhoIsInItAndWhatWaits) {
    GivenAnnasEvening();
    auto& main = Arm(Start(), "Evening");
    EXPECT_TRUE(Visible(main, "imgUpload"));
    auto& window = The<frmRemoteSync>();

    handhelds_.Begin("Anna");

    EXPECT_EQ(TextOf(main, "lblMatrix"), QStringLiteral("Hotsync Active..."));
    EXPECT_TRUE(Visible(main, "lblSyncMsg"));
    EXPECT_EQ(TextOf(main, "lblHSID"), QStringLiteral("Anna"));
    EXPECT_TRUE(Visible(main, "aniHSStatus"));
    EXPECT_FALSE(Visible(main, "aniHSWait"));
    EXPECT_FALSE(Visible(main, "lblAnim"));
    for (const char* image : {"imgUpload", "imgClear", "imgDownload"}) EXPECT_FALSE(Visible(main, image));
    EXPECT_EQ(TextOf(window, "lblMessage") + TextOf(window, "lblHotSyncID"),
              QStringLiteral("Synchronizing:Anna"));

    handhelds_.Transfer();
    EXPECT_TRUE(Visible(main, "imgUpload"));
    EXPECT_EQ(Control(main, "imgUpload").accessibleName(), QStringLiteral("queued"));
    EXPECT_FALSE(Visible(main, "imgDownload"));

    handhelds_.End();
    for (const char* image : {"imgUpload", "imgClear", "imgDownload"}) {
        EXPECT_TRUE(Visible(main, image));
        EXPECT_EQ(Control(main, image).accessibleName(), QStringLiteral("idle"));
    }
    EXPECT_EQ(TextOf(main, "lblMatrix"), QStringLiteral("No Current Hotsync..."));
    EXPECT_FALSE(Visible(main, "lblHSID"));
    EXPECT_FALSE(Visible(main, "aniHSStatus"));
    EXPECT_TRUE(Visible(main, "aniHSWait"));
    EXPECT_EQ(TextOf(window, "lblMessage") + TextOf(window, "lblHotSyncID"),
              QStringLiteral("Waiting for a handheld. The last one wasAnna"));
}

TEST_F(Unattended, ThreeHandheldsInTurnBringTheirOrdersAndEachGetsItsLetter) {
    GivenEvening();
    GivenLinks({"Anna", "Ben", "Cleo"});
    GivenHandheld("Anna", {"A1", "A2"});
    GivenHandheld("Ben", {"B1"});
    GivenHandheld("Cleo", {"C1"});
    // She says that she has taken more than she sends.
    GivenTableOf("Cleo", "ZUKAudHH", {"TH_NUMHEAD|TH_NUMLINE|TH_DOL_LIN", "2|2|20"});
    GivenRows("ZUKORHDR", {"H_ORDCODE", "OLD1"});
    GivenRows("ZUKORLIN", {"L_ORDCODE|L_KEY|L_TOTPRICE", "OLD1|OLD11|5"});
    auto& main = Arm(Start(), "Evening");

    for (const char* user : {"Anna", "Ben", "Cleo"}) handhelds_.HotSync(user);

    EXPECT_EQ(Orders(), (Names{"A1", "A2", "B1", "C1", "OLD1"}));
    EXPECT_EQ(RecordCount("ZUKORLIN"), 5);
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Sync OK"));
    EXPECT_EQ(Brick(main, 2), QStringLiteral("Ben: Sync OK"));
    EXPECT_EQ(Brick(main, 3), QStringLiteral("Cleo: Bad Sync"));
    EXPECT_EQ(Cell("ZUKLINK", 2, "LK_MACH_ID"), "MB");
    EXPECT_EQ(GridRows(main, "FGTot").size(), 3u);
    EXPECT_FALSE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
    EXPECT_TRUE(Global.UnattendedActive);
}

TEST_F(Unattended, WithEveryActivityOffASessionJustUpdatesTheLinksRow) {
    GivenSettings("Quiet", {});
    GivenLinks({"Anna"});
    GivenHandheld("Anna", {"A1"});
    auto& main = Arm(Start(), "Quiet");

    handhelds_.HotSync("Anna");

    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_MACH_ID"), "MA");
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "7");
    EXPECT_EQ(Orders(), Names{});
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Sync OK"));
}

TEST_F(Unattended, AnUnknownHandheldGivesOneMessageAndTheModeIsOffUntilItIsStoppedAndStarted) {
    GivenEvening();
    GivenLinks({"Anna"});
    for (const char* user : {"Anna", "Zoe"}) GivenHandheld(user, {std::string(1, user[0]) + "1"});
    auto& main = Arm(Start(), "Evening");
    Operator_.Expect(msg::UnknownHandheld).With(Icon::Warning);

    handhelds_.HotSync("Zoe");
    handhelds_.HotSync("Zoe");
    handhelds_.HotSync("Anna");

    EXPECT_EQ(Orders(), Names{});
    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_EQ(TextOf(The<frmRemoteSync>(), "lblMessage").toStdString(), Text(msg::UnattendedIsOff).Utf8());
    EXPECT_TRUE(Visible(main, "lblStopping"));
    EXPECT_FALSE(Visible(main, "aniHSWait"));

    Click(main, "cmdStopRemoteSync");
    Arm(main, "Evening");
    EXPECT_FALSE(Visible(main, "lblStopping"));
    handhelds_.HotSync("Anna");
    EXPECT_EQ(Orders(), Names{"A1"});
}

TEST_F(Unattended, AStopInTheMiddleOfASessionWaitsForItsEndAndLosesNoOrder) {
    GivenAnnasEvening();
    GivenRows("ZUKORHDR", {"H_ORDCODE", "OLD1"});
    GivenRows("ZUKORLIN", {"L_ORDCODE|L_KEY|L_TOTPRICE", "OLD1|OLD11|5"});
    auto& main = Arm(Start(), "Evening");
    handhelds_.Begin("Anna");
    handhelds_.Transfer();

    Click(main, "cmdStopRemoteSync");

    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_FALSE(Enabled(main, "cmdStopRemoteSync"));
    EXPECT_EQ(TextOf(main, "lblStopping").toStdString(), Text(msg::StopsAfterHotsync).Utf8());
    EXPECT_EQ(TextOf(The<frmRemoteSync>(), "lblMessage").toStdString(), Text(msg::StopsAfterHotsync).Utf8());
    CloseByTheFrame(The<frmRemoteSync>()); // and nothing comes of it
    ASSERT_NE(IfLoaded<frmRemoteSync>(), nullptr);

    handhelds_.End();

    EXPECT_EQ(Orders(), (Names{"A1", "OLD1"}));
    EXPECT_FALSE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
    EXPECT_TRUE(Enabled(main, "lblUA"));
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Sync OK"));
    handhelds_.HotSync("Anna");
    EXPECT_EQ(Orders().size(), 2u);
    Arm(main, "Evening");
    EXPECT_TRUE(Enabled(main, "cmdStopRemoteSync"));
    EXPECT_TRUE(Enabled(The<frmRemoteSync>(), "cmdCancel"));
}

TEST_F(Unattended, ClosingTheProgramInTheMiddleOfASessionWaitsForItsEndAndLosesNoOrder) {
    GivenAnnasEvening();
    GivenRows("ZUKORHDR", {"H_ORDCODE", "OLD1"});
    auto& main = Arm(Start(), "Evening");
    handhelds_.Begin("Anna");

    CloseByTheFrame(main);
    EXPECT_FALSE(Global.Ending);
    EXPECT_EQ(TextOf(main, "lblStopping").toStdString(), Text(msg::ClosesAfterHotsync).Utf8());
    handhelds_.Transfer();
    handhelds_.End();

    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Global.ExitCode, 0);
    EXPECT_EQ(Orders(), (Names{"A1", "OLD1"}));
    EXPECT_FALSE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
}

TEST_F(Unattended, ClosingItTwiceAsksAndTheSafetyCopiesStayForTheNextStart) {
    GivenAnnasEvening();
    auto& main = Arm(Start(), "Evening");
    handhelds_.Begin("Anna");
    handhelds_.Transfer();
    CloseByTheFrame(main);
    Operator_.Expect(msg::CloseInHotsync).Answer(Answer::No).With(Icon::Warning);
    CloseByTheFrame(main);
    EXPECT_FALSE(Global.Ending);
    Operator_.Expect(msg::CloseInHotsync).Answer(Answer::Yes);

    CloseByTheFrame(main);

    EXPECT_TRUE(Global.Ending);
    EXPECT_TRUE(Exists(Global.DBFPath + "ZUKOrHdr.dap"));
    EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr);
}

TEST_F(Unattended, ClosingTheProgramBetweenSessionsEndsItAtOnce) {
    GivenEvening();
    auto& main = Arm(Start(), "Evening");

    CloseByTheFrame(main);

    EXPECT_TRUE(Global.Ending);
    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_EQ(IfLoaded<frmRemoteSync>(), nullptr);
}

TEST_F(Unattended, ABrickDoesNothingDuringASessionAndShowsTheReceiptBehindIt) {
    GivenAnnasEvening();
    auto& main = Arm(Start(), "Evening");
    handhelds_.Begin("Anna");
    handhelds_.Transfer();

    Click(main, "cmdHHHSID_1");
    EXPECT_EQ(IfLoaded<frmHHStatus>(), nullptr);

    handhelds_.End();
    QString receipt;
    bool readOnly = false;
    QTimer::singleShot(0, qApp, [&] {
        auto& details = The<frmHHStatus>();
        auto& view = dynamic_cast<QPlainTextEdit&>(Control(details, "txtReceipt"));
        receipt = view.toPlainText();
        readOnly = view.isReadOnly();
        Click(details, "cmdOK");
    });
    Click(main, "cmdHHHSID_1");
    EXPECT_TRUE(receipt.contains(QStringLiteral("BALANCED"))) << receipt.toStdString();
    EXPECT_TRUE(readOnly);
}

TEST_F(Unattended, ASessionThatComesWhileTheDetailsStandIsServed) {
    GivenAnnasEvening();
    auto& main = Arm(Start(), "Evening");
    handhelds_.HotSync("Anna");
    GivenHandheld("Anna", {"A2"});
    QTimer::singleShot(0, qApp, [&] {
        handhelds_.HotSync("Anna");
        Click(The<frmHHStatus>(), "cmdOK");
    });

    Click(main, "cmdHHHSID_1");

    EXPECT_EQ(Orders(), (Names{"A1", "A2"}));
}

TEST_F(Unattended, AManagerThatIsGoneInTheMiddleLosesNoOrderAndMarksTheHandheld) {
    GivenAnnasEvening();
    GivenRows("ZUKORHDR", {"H_ORDCODE", "OLD1"});
    auto& main = Arm(Start(), "Evening");

    handhelds_.Begin("Anna");
    handhelds_.End();

    EXPECT_EQ(Orders(), Names{"OLD1"});
    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_EQ(TextOf(main, "lblMatrix"), QStringLiteral("No Current Hotsync..."));
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Bad Sync"));
}

TEST_F(Unattended, TotalsThatCannotBeTakenStopNoSessionAndMarkTheHandheld) {
    GivenEvening();
    GivenLinks({"Anna", "Ben"});
    GivenHandheld("Anna", {"A1"});
    GivenHandheld("Ben", {"B1"});
    auto& main = Arm(Start(), "Evening");
    const std::string totals = ResolvePath(Global.DBFPath + "ZUKTOTALPC.dbf");
    std::filesystem::rename(totals, totals + ".away");

    handhelds_.HotSync("Anna");

    EXPECT_EQ(Orders(), Names{"A1"});
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Bad Sync"));
    std::filesystem::rename(totals + ".away", totals);
    handhelds_.HotSync("Ben");
    EXPECT_EQ(Brick(main, 2), QStringLiteral("Ben: Sync OK"));
}

TEST_F(Unattended, ABackupThatFailsIsToldAndTheSessionEndsWithoutAnUpload) {
    GivenAnnasEvening();
    auto& main = Arm(Start(), "Evening");
    std::filesystem::remove_all(Global.BackupPath);
    WriteWholeFile(Global.BackupPath.substr(0, Global.BackupPath.size() - 1), "in the way");
    const Text why =
        T("Path/File access error: " + Global.BackupPath.substr(0, Global.BackupPath.size() - 1));
    Operator_.ExpectBeginning(::Lines(::Lines(msg::FileError, msg::CannotBackUp), why)).With(Icon::Stop);

    handhelds_.HotSync("Anna");

    EXPECT_EQ(Orders(), Names{});
    EXPECT_TRUE(Global.UnattendedActive);
    EXPECT_EQ(Brick(main, 1), QStringLiteral("Anna: Bad Sync"));
}

TEST_F(Unattended, UploadsThatCannotBeShownTellNobodyWhileTheModeIsArmed) {
    GivenEvening();
    auto& main = Arm(Start(), "Evening");
    std::filesystem::remove(ResolvePath(Global.DBFPath + "ZUKTOTALPC.dbf"));
    Global.RefreshTotals = true;

    The<frmAbout>().Show();
    Settle();
    The<frmAbout>().Unload();
    main.Show();
    Settle();

    EXPECT_FALSE(Global.Ending);
}

// ---- the pictures that move ----

TEST_F(Unattended, TheAnimationsPlayWithoutEndOnAClearGround) {
    for (const char* name : {"synczukwhite", "WaitingforHotsync"}) {
        QMovie movie(QString::fromStdString(Graphics() + name + ".gif"));

        ASSERT_TRUE(movie.isValid()) << name;
        EXPECT_GE(movie.frameCount(), 5) << name;
        EXPECT_EQ(movie.loopCount(), -1) << name;
        for (int frame = 0; frame < movie.frameCount(); ++frame) {
            ASSERT_TRUE(movie.jumpToFrame(frame)) << name << frame;
            EXPECT_EQ(movie.currentImage().size(), QSize(450, 144));
            EXPECT_EQ(movie.currentImage().pixelColor(0, 0).alpha(), 0);
            EXPECT_EQ(movie.currentImage().pixelColor(60, 60), QColor(0xe8edf2)); // the handheld's screen
        }
    }
}

TEST_F(Unattended, AMissingOrBrokenAnimationStopsNothingAndIsToldNowhere) {
    GivenAnnasEvening();
    std::filesystem::remove(Graphics() + "WaitingforHotsync.gif");
    WriteWholeFile(Graphics() + "synczukwhite.gif", "GIF89a, or so it says");
    auto& main = Arm(Start(), "Evening");
    EXPECT_FALSE(Visible(main, "aniHSWait"));
    EXPECT_TRUE(Visible(main, "lblAnim"));

    handhelds_.Begin("Anna");
    EXPECT_FALSE(Visible(main, "aniHSStatus"));
    Click(main, "cmdHHHSID_1"); // a session runs, whether it can be seen or not
    handhelds_.Transfer();
    handhelds_.End();

    EXPECT_EQ(Orders(), Names{"A1"});
}

TEST_F(Unattended, TheWindowStaysAboveTheOthersOnRequestOnly) {
    GivenEvening();
    Arm(Start(), "Evening");
    auto& window = The<frmRemoteSync>();
    const auto onTop = [&] { return window.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint); };
    EXPECT_FALSE(onTop());

    Click(window, "chkOnTop");
    EXPECT_TRUE(onTop());
    EXPECT_TRUE(window.isVisible());
    Click(window, "chkOnTop");
    EXPECT_FALSE(onTop());
}

TEST_F(Unattended, DetailsWithoutAReceiptSaySo) {
    auto& details = Open<frmHHStatus>();

    details.Fill("Anna", {{1, 1, 10}, {1, 1, 10}});

    auto& view = dynamic_cast<QPlainTextEdit&>(Control(details, "txtReceipt"));
    EXPECT_TRUE(view.toPlainText().isEmpty());
    EXPECT_EQ(view.placeholderText().toStdString(), Text(msg::NoReceipt).Utf8());
}

} // namespace
