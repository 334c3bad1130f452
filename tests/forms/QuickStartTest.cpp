#include "core/Directories.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/forms/frmProgress.h"
#include "exchange/forms/frmExport1.h"
#include "forms/HotSyncTest.h"
#include "forms/Steps.h"
#include "forms/TopicList.h"
#include "installation/InstallFiles.h"
#include "installation/InstallList.h"
#include "installation/forms/frmQuickStart.h"
#include "installation/forms/frmQuickStart2.h"
#include "installation/forms/frmQuickStart3.h"
#include "installation/forms/frmQuickStart4.h"
#include "installation/forms/frmQuickStart5.h"
#include "installation/forms/frmQuickStart6.h"
#include "installation/forms/frmQuickStart7.h"
#include "installation/forms/frmQuickStart8.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "platform/Convert.h"
#include "platform/TitledWindow.h"
#include "program/forms/frmMain1.h"
#include "quality/forms/frmConfigMsg.h"
#include "support/FakeControl.h"
#include "sync/InstallFolder.h"
#include "sync/Status.h"
#include "sync/TableTemplates.h"
#include "sync/forms/frmHSID.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "tools/forms/frmFindNotes.h"
#include "tools/forms/frmOptions.h"
#include "views/forms/frmViewGrid.h"

#include <QAbstractButton>
#include <QDialog>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include <stdexcept>

namespace {

struct Stage {
    const char* Label; ///< that leads to the page, on every page
    const char* Form;
    const char* Title;
    const char* Caption; ///< of the label
};

constexpr Stage Stages[] = {
    {"lblOverview1", "frmQuickStart2", "Overview", "Overview"},
    {"lblSetup1", "frmQuickStart3", "Change the Setup Tables to Match Your Company", "Setup Tables"},
    {"lblAdd1", "frmQuickStart4", "Add Customers & Items", "Add Customers & Items"},
    {"lblDownload1", "frmQuickStart5", "Download Company Data to Handhelds", "Download"},
    {"lblUpload1", "frmQuickStart6", "Upload Sales Orders to PC", "Upload"},
    {"lblExport1", "frmQuickStart7", "Export Orders", "Export"},
    {"lblEnter1", "frmQuickStart8", "Advanced Tools", "Advanced"}};

class Tour : public FormTest {
protected:
    Tour() { GivenOffice(); }
    ~Tour() override { FormRegistry::Instance().Clear(); }

    static FormBehaviour& Page(const char* name) {
        FormBehaviour* page = FormRegistry::Instance().Find(name);
        if (!page) throw std::runtime_error(std::string("not open: ") + name);
        return *page;
    }

    static void ExpectOnly(const char* page) {
        EXPECT_EQ(FormRegistry::Instance().Names(), QStringList{QLatin1String(page)});
        if (auto* form = FormRegistry::Instance().Find(page)) {
            EXPECT_TRUE(form->Window().isVisible()) << page;
        }
    }

    /// What is done while the next modal screen stands.
    static void Meanwhile(std::function<void()> deed) { QTimer::singleShot(0, qApp, std::move(deed)); }

    /// A button opens a modal screen, which goes again; the page is there before, meanwhile and after.
    template <class Screen, class Opener>
    void ExpectModal(
        Opener& page, const char* button, const std::function<void(Screen&)>& look = [](Screen&) {}) {
        bool stood = false;
        Meanwhile([&] {
            auto* screen = IfLoaded<Screen>();
            ASSERT_NE(screen, nullptr) << button;
            stood = screen->isVisible() && screen->isModal() && Global.FromConfigurator;
            look(*screen);
            EXPECT_FALSE(page.IsGone()) << button;
            screen->Unload();
        });
        Click(page, button);
        EXPECT_TRUE(stood) << button;
        EXPECT_FALSE(Global.FromConfigurator) << button;
        EXPECT_EQ(IfLoaded<Opener>(), &page) << button;
        EXPECT_TRUE(page.isVisible()) << button;
    }

    /// A button opens the grid of a table, and the page stays.
    template <class Opener>
    void ExpectGrid(Opener& page, const char* button, ViewFlag flag, bool toEdit = true) {
        Global.QCViewMode = true; // left by a report
        Click(page, button);
        ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr) << button;
        EXPECT_TRUE(Global.View[flag]) << button;
        EXPECT_FALSE(Global.QCViewMode) << button;
        EXPECT_EQ(dynamic_cast<QPushButton&>(Control(The<frmViewGrid>(), "cmdEdit")).isDefault(), toEdit)
            << button;
        The<frmViewGrid>().Unload();
        EXPECT_FALSE(Global.FromConfigurator) << button;
        EXPECT_TRUE(page.isVisible()) << button;
    }

    /// Presses each help image of a page and its help button.
    std::vector<std::string> TopicsOf(FormBehaviour& page, const std::vector<const char*>& images) {
        help_.Opened();
        for (const char* image : images) Click(page, image);
        Click(page, "cmdHelp");
        return help_.Opened();
    }

    TopicList help_;
};

using Topics = std::vector<std::string>;

// ---- the pages ----

TEST_F(Tour, EachLabelOfEachPageClosesItAndOpensItsOwn) {
    Open<frmQuickStart2>();
    for (const Stage& from : Stages) {
        for (const Stage& to : Stages) {
            Click(Page(from.Form), to.Label);
            ExpectOnly(to.Form);
            EXPECT_EQ(TextOf(Page(to.Form), "lblQ1"), QLatin1String(to.Title));
            EXPECT_EQ(dynamic_cast<QAbstractButton&>(Control(Page(to.Form), to.Label)).text(),
                      QString::fromLatin1(to.Caption).replace('&', QLatin1String("&&")));
            for (const Stage& each : Stages) {
                EXPECT_EQ(dynamic_cast<QAbstractButton&>(Control(Page(to.Form), each.Label)).isChecked(),
                          &each == &to)
                    << to.Form << " " << each.Label;
            }
            Click(Page(to.Form), from.Label);
        }
        const Stage* const next = &from + 1;
        if (next != std::end(Stages)) Click(Page(from.Form), next->Label);
    }
}

TEST_F(Tour, TheLabelsStandBelowEachOtherInTheOrderOfTheStages) {
    auto& page = Open<frmQuickStart2>();
    int above = -1;
    for (const Stage& each : Stages) {
        const QWidget& label = Control(page, each.Label);
        const int top = label.mapTo(&page, QPoint()).y();
        EXPECT_GT(top, above) << each.Label;
        above = top + label.height() - 1;
    }
}

TEST_F(Tour, ALabelUnderTheMouseIsShaded) {
    QWidget& label = Control(Open<frmQuickStart2>(), "lblExport1");
    const auto look = [&](bool underMouse) {
        label.setAttribute(Qt::WA_UnderMouse, underMouse);
        return label.grab().toImage();
    };

    const QImage before = look(false);
    EXPECT_FALSE(look(true) == before);
    EXPECT_TRUE(look(false) == before);
}

TEST_F(Tour, TheLabelOfThePageThatIsOpenOpensItAnewInItsPlace) {
    auto& page = Open<frmQuickStart4>();
    page.move(40, 30);
    page.resize(900, 600);

    Click(page, "lblAdd1");

    int loads = 0;
    for (std::size_t k = 0; k < TraceEntries; ++k)
        loads += Global.Events.Entry(k) == "frmQuickStart4:Form_Load";
    EXPECT_EQ(loads, 2);
    ExpectOnly("frmQuickStart4");
    auto& anew = The<frmQuickStart4>();
    EXPECT_EQ(anew.size(), QSize(900, 600));
    EXPECT_EQ(anew.pos(), QPoint(40, 30));
}

TEST_F(Tour, PreviousAndNextGoFromTheFirstPageToTheLastAndBack) {
    Open<frmQuickStart>();
    EXPECT_FALSE(Enabled(The<frmQuickStart>(), "cmdPrevious"));
    EXPECT_EQ(TextOf(The<frmQuickStart>(), "lblQ1"), QStringLiteral("QuickStart"));
    std::string page = "frmQuickStart";
    for (const Stage& each : Stages) {
        Click(Page(page.c_str()), "cmdNext");
        ExpectOnly(each.Form);
        page = each.Form;
    }
    EXPECT_FALSE(Enabled(The<frmQuickStart8>(), "cmdNext"));
    for (int presses = 0; presses < 7; ++presses) {
        Click(Page(page.c_str()), "cmdPrevious");
        page = FormRegistry::Instance().Names().at(0).toStdString();
    }
    ExpectOnly("frmQuickStart");
}

TEST_F(Tour, TheLabelsAreWorkedByReturnAndSpaceAndThePageIsLeftByEscape) {
    Press(Open<frmQuickStart2>(), "lblSetup1", Qt::Key_Return);
    ExpectOnly("frmQuickStart3");
    Press(The<frmQuickStart3>(), "lblUpload1", Qt::Key_Space);
    ExpectOnly("frmQuickStart6");
    Press(The<frmQuickStart6>(), "lblEnter1", Qt::Key_Enter);
    ExpectOnly("frmQuickStart8");
    Press(The<frmQuickStart8>(), "cmdQB", Qt::Key_Escape);
    EXPECT_EQ(FormRegistry::Instance().Names(), QStringList());
}

TEST_F(Tour, ReturnTurnsThePageAndEndsTheTourOnTheLast) {
    auto& page = Open<frmQuickStart7>();
    Press(page, "lblOverview1", Qt::Key_Tab); // the page has the keys
    QTest::keyClick(&Control(page, "cmdNext"), Qt::Key_Return);
    Settle();
    ExpectOnly("frmQuickStart8");
    auto& last = The<frmQuickStart8>();
    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(last, "cmdOK")).isDefault());
    Click(last, "cmdOK");
    EXPECT_EQ(FormRegistry::Instance().Names(), QStringList());
}

TEST_F(Tour, TheOverviewLeadsToEachStageByItsOwnLabelsToo) {
    for (const Stage& each : Stages) {
        if (&each == Stages) continue; // the overview itself
        std::string twin = each.Label;
        twin.pop_back();
        Click(Open<frmQuickStart2>(), twin.c_str());
        ExpectOnly(each.Form);
        Page(each.Form).Unload();
    }
    Click(Open<frmQuickStart2>(), "lblHelpOrders");
    EXPECT_EQ(help_.Opened(), Topics{"QUICK_START_ENTERING_SALES_ORDERS_.htm"});
    ExpectOnly("frmQuickStart2");
}

TEST_F(Tour, ThePagesOpenTheirTopics) {
    const std::string setup = "Change_the_Setup_Tables_to_Match_Your_Company._.htm";
    EXPECT_EQ(TopicsOf(Open<frmQuickStart>(), {"lblCompany"}),
              (Topics{"Demo_Company.htm", "Introduction.htm"}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart2>(), {}), Topics{"QUICK_START_SETUP_YOUR_COMPANY_DATA_.htm"});
    EXPECT_EQ(TopicsOf(Open<frmQuickStart3>(), {"imgCompanyHelp", "imgSTaxHelp", "imgPrintersHelp",
                                                "imgPaymentsHelp", "imgLinksHelp"}),
              (Topics{setup, "Sales_Tax.htm", "Printers.htm", "Payments.htm", setup, setup}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart4>(), {"imgCustHelp", "imgItemsHelp", "imgQCHelp"}),
              (Topics{"Master_Tables.htm", "Master_Tables.htm", "Quality_Check_.htm", "Master_Tables.htm"}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart5>(), {"imgDownloadHelp", "imgQCHelp"}),
              (Topics{"DOWNLOADING_TABLES_TO_HANDHELD_UNITS.htm", "Quality_Check_.htm",
                      "DOWNLOADING_TABLES_TO_HANDHELD_UNITS.htm"}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart6>(), {"imgUploadHelp", "imgProcessingHelp"}),
              (Topics{"UPLOADING_SALES_ORDERS_FROM_HANDHELD_UNITS.htm", "Processing_Upload.htm",
                      "UPLOADING_SALES_ORDERS_FROM_HANDHELD_UNITS.htm"}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart7>(), {"imgExportHelp", "imgClearHelp"}),
              (Topics{"EXPORTING_SALES_ORDERS_TO_ACCOUNTING_SYSTEM.htm", "Clearing_PC_Tables_.htm",
                      "EXPORTING_SALES_ORDERS_TO_ACCOUNTING_SYSTEM.htm"}));
    EXPECT_EQ(TopicsOf(Open<frmQuickStart8>(), {"imgQBHelp", "imgUAHelp", "imgRestoreHelp"}),
              (Topics{"QuickButtons.htm", "Unattended_Hotsync_.htm", "Restoring_PC_Tables_from_Backup_.htm",
                      "QuickButtons.htm"}));
}

// ---- the buttons ----

TEST_F(Tour, TheSetupTablesAndTheMasterTablesOpenForEditing) {
    auto& setup = Open<frmQuickStart3>();
    ExpectGrid(setup, "cmdCompany", ViewCompany);
    ExpectGrid(setup, "cmdSTax", ViewSTax);
    ExpectGrid(setup, "cmdPrinters", ViewPrinter);
    ExpectGrid(setup, "cmdPayments", ViewPay);
    ExpectGrid(setup, "cmdLinks", ViewLink);
    auto& masters = Open<frmQuickStart4>();
    ExpectGrid(masters, "cmdCust", ViewCust);
    ExpectGrid(masters, "cmdItems", ViewItem);
    ExpectGrid(Open<frmQuickStart8>(), "cmdRestore", ViewRestore, false);
}

TEST_F(Tour, TheOtherButtonsOpenTheirScreensAndComeBackToThePage) {
    ExpectModal<frmTableSelectDL>(Open<frmQuickStart5>(), "cmdDownload");
    ExpectModal<frmUploadSelect>(Open<frmQuickStart6>(), "cmdUpload");
    auto& orders = Open<frmQuickStart7>();
    ExpectModal<frmExport1>(orders, "cmdExport");
    ExpectModal<frmTableSelectPC>(orders, "cmdClear");
    auto& tools = Open<frmQuickStart8>();
    const auto tab = [](frmOptions& options) {
        return dynamic_cast<QTabWidget&>(Control(options, "SSTab1")).currentIndex();
    };
    int buttons = -1;
    int unattended = -1;
    ExpectModal<frmOptions>(tools, "cmdQB", [&](frmOptions& options) { buttons = tab(options); });
    ExpectModal<frmOptions>(tools, "cmdUA", [&](frmOptions& options) { unattended = tab(options); });
    EXPECT_EQ(buttons, 0);
    EXPECT_EQ(unattended, 1);
}

// ---- the checks ----

class TourCheck : public Tour {
protected:
    /// Without a fault, but for the payments, which no check of the tour looks at.
    TourCheck() {
        GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "ACME|A1|Acme"});
        GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "HAMMER|H1|Hammer|12.50"});
        GivenRows("ZUKPAY", {"PAY_CODE"});
    }

    static QStringList Report(int column) {
        QStringList cells;
        for (const QStringList& row : GridRows(The<frmConfigMsg>(), "FG1")) cells << row.at(column);
        return cells;
    }
};

TEST_F(TourCheck, CustomersAndItemsAreCheckedTogetherAndNothingElse) {
    Global.QCHotsyncPending = true; // it has no words of its own here
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "|A1|Acme"});
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "HAMMER|H1|Hammer|dear"});
    auto& page = Open<frmQuickStart4>();
    Operator_.Expect(msg::FatalProblems).With(Icon::Warning);

    Click(page, "cmdQC");

    ASSERT_NE(IfLoaded<frmConfigMsg>(), nullptr);
    QStringList groups = Report(1);
    groups.removeDuplicates();
    EXPECT_EQ(groups.size(), 2) << groups.join(QStringLiteral(" | ")).toStdString();
    EXPECT_FALSE(Global.QCCheckAll);
    EXPECT_FALSE(Global.QCFatalFound);
    EXPECT_FALSE(IfLoaded<frmProgress>());
    EXPECT_TRUE(page.isVisible());
    Click(The<frmConfigMsg>(), "cmdOK");
    EXPECT_TRUE(page.isVisible());
}

TEST_F(TourCheck, CleanCustomersAndItemsAreToldSo) {
    auto& page = Open<frmQuickStart4>();
    Operator_.Expect(msg::NoFatalProblems).With(Icon::Information);

    Click(page, "cmdQC");

    EXPECT_EQ(IfLoaded<frmConfigMsg>(), nullptr);
}

TEST_F(TourCheck, TheCheckOfTheDownloadIsASingleOneAndShowsItsWarnings) {
    auto& page = Open<frmQuickStart5>();
    Operator_.Expect(msg::NoProblems).With(Icon::Information);
    Click(page, "cmdQC");
    EXPECT_EQ(IfLoaded<frmConfigMsg>(), nullptr);

    WriteTemplate(Global.DownloadTemplates + "Nothing.dst", DownloadChoice{});
    Click(page, "cmdQC");
    ASSERT_NE(IfLoaded<frmConfigMsg>(), nullptr);
    EXPECT_TRUE(Report(3).join(QString()).contains(QStringLiteral("Nothing.dst")));
    EXPECT_TRUE(page.isVisible());
}

// ---- the main screen ----

TEST_F(Tour, TheMainScreenOpensTheTourAtItsTwoBeginnings) {
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    Click(main, "lblPrev");

    Click(main, "lblDemoInstall");
    ASSERT_NE(IfLoaded<frmQuickStart>(), nullptr);
    EXPECT_FALSE(The<frmQuickStart>().isModal());

    // Whatever else the main screen opens closes the page.
    Click(main, "lblHelpCompany");
    EXPECT_EQ(IfLoaded<frmQuickStart>(), nullptr);
    ASSERT_NE(IfLoaded<frmQuickStart2>(), nullptr);
    Click(main, "lblPCTables");
    EXPECT_EQ(IfLoaded<frmQuickStart2>(), nullptr);
}

// ---- the install ----

class TourInstall;

class InstallingControl final : public FakeControl {
public:
    explicit InstallingControl(TourInstall& test);
    ~InstallingControl() override;

    void AddInstall(std::string_view file, std::string_view user) override;
    std::string HotSyncUser(int index) const override;

private:
    TourInstall& test_;
};

/// The first page over a HotSync Manager with the users Anna and Ben, whose registration program is a script.
class TourInstall : public HotSyncTest {
protected:
    TourInstall() {
        GivenOffice();
        GivenScript(Global.InstallPath + "rdkinst", "registered");
        for (const std::string& file : FilesOf(InstallKind::Demo)) {
            if (!Exists(Global.InstallPath + file)) WriteWholeFile(Global.InstallPath + file, file);
        }
        Global.Clock = [] { return DateTime{2026, 11, 22, 9, 30, 0}; };
        Global.MakeSFrmAX40 = [this] { return std::make_unique<InstallingControl>(*this); };
        Manager.Listen();
        setup_.setWindowTitle(QStringLiteral("Setup"));
        progress_.setWindowTitle(QStringLiteral("Hotsync Progress"));
    }
    ~TourInstall() override { FormRegistry::Instance().Clear(); }

    static Text Question() {
        Text text = msg::InstallSteps;
        for (const MessageId step : {msg::InstallStep1, msg::InstallStep2, msg::InstallStep3,
                                     msg::InstallStep4, msg::InstallStep5, msg::InstallStepsGo})
            text = ::Lines(text, step);
        return text;
    }

    /// The registration comes and goes.
    std::vector<Step> Registration() {
        return {{[this] { return Exists(Folder() + "registered"); }, [this] { setup_.show(); }},
                {[this] { return setupWindow_.WasFound(); },
                 [this] {
                     setup_.hide();
                     setup_.show();
                 }}};
    }

    /// A user is chosen of those that are offered, or nobody.
    Step Choosing(const char* user) {
        return {[] { return IfLoaded<frmHSID>() && The<frmHSID>().isVisible(); },
                [this, user] {
                    setup_.hide();
                    auto& form = The<frmHSID>();
                    asked_ = TextOf(form, "lblMsg");
                    mayGiveUp_ = Visible(form, "cmdCancel");
                    if (user) Choose(form, "cboUser", QString::fromLatin1(user));
                    Click(form, user ? "cmdOK" : "cmdCancel");
                }};
    }

    Step WhenItWaits(std::function<void()> deed) {
        return {[] { return Global.HHInstallActive; }, std::move(deed)};
    }

    /// The handheld presses HotSync: the manager's window comes, and when it goes the files are installed.
    std::vector<Step> HotSync(const std::string& user) {
        return {WhenItWaits([this] {
                    EXPECT_EQ(TextOf(The<frmQuickStart>(), "lblInstallMsg"), waitsFor_);
                    EXPECT_EQ(TextOf(The<frmQuickStart>(), "lblQ1"), QStringLiteral("Install Handheld"));
                    progress_.show();
                }),
                {[this] { return progressWindow_.WasFound(); },
                 [this, user] {
                     InstallFiles(user);
                     progress_.hide();
                 }}};
    }

    void InstallFiles(const std::string& user) {
        const std::string folder = InstallFolder(ManagerFolder(), user);
        for (const std::string& file : FilesWithExtension(folder, "")) {
            RemoveQuietly(folder + file);
            ++installed_;
        }
    }

    static std::vector<Step> Joined(std::vector<Step> first, const std::vector<Step>& more) {
        first.insert(first.end(), more.begin(), more.end());
        return first;
    }

    /// Presses the button, agrees, and does the steps.
    void Install(const std::vector<Step>& steps) {
        auto& page = Open<frmQuickStart>();
        Operator_.Expect(Question()).Answer(Answer::Yes);
        WithSteps(steps, [&] { Click(page, "lblInstall"); });
        EXPECT_FALSE(Global.HHInstallActive);
    }

    /// The main screen opens a modal screen, which is looked at and left. Returns when it has gone.
    template <class Screen>
    static void OpenAbove(const std::function<void()>& open, const char* leave,
                          const std::function<void()>& look) {
        QTimer stands; // not that of the steps, which waits until the screen has gone
        QObject::connect(&stands, &QTimer::timeout, &stands, [&] {
            auto* screen = IfLoaded<Screen>();
            if (!screen || !screen->isVisible()) return;
            stands.stop();
            EXPECT_TRUE(screen->isModal());
            look();
            Click(*screen, leave);
        });
        stands.start(1);
        open();
    }

    /// Who has opened another screen is told what became of the install.
    void ExpectGivenUp() { Operator_.Expect(Words(msg::InstallGivenUp, T("Ben"))).With(Icon::Warning); }

    void ExpectAtRest() {
        auto& page = The<frmQuickStart>();
        EXPECT_EQ(TextOf(page, "lblQ1"), QStringLiteral("QuickStart"));
        for (const char* button : {"lblInstall", "lblOverview1", "cmdNext", "cmdOK"})
            EXPECT_TRUE(Enabled(page, button)) << button;
        EXPECT_FALSE(Enabled(page, "cmdPrevious"));
        EXPECT_FALSE(Visible(page, "cmdCancel"));
    }

    friend class InstallingControl;

    QDialog setup_, progress_;
    TitledWindow setupWindow_{setup_, PathToQt(ManagerFolder())};
    TitledWindow progressWindow_{progress_, PathToQt(ManagerFolder())};
    std::vector<InstallingControl*> controls_;
    std::vector<std::string> users_{"Anna", "Ben"};
    QString asked_;
    bool mayGiveUp_ = true;
    QString waitsFor_ =
        QStringLiteral("Ready to install files on Handheld Ben. Press the hotsync button on the "
                       "handheld cradle to continue.");
    std::size_t installed_ = 0;
};

InstallingControl::InstallingControl(TourInstall& test) : test_(test) {
    test_.controls_.push_back(this);
}

InstallingControl::~InstallingControl() {
    std::erase(test_.controls_, this);
}

void InstallingControl::AddInstall(std::string_view file, std::string_view user) {
    ::AddInstall(test_.ManagerFolder(), file, user);
}

std::string InstallingControl::HotSyncUser(int index) const {
    const auto place = static_cast<std::size_t>(index);
    return place < test_.users_.size() ? test_.users_[place] : std::string();
}

TEST_F(TourInstall, TheFirstInstallEntersTheUserInTheLinksTableAndIsRecorded) {
    Install(Joined(Joined(Registration(), {Choosing("Ben")}), HotSync("Ben")));

    EXPECT_EQ(asked_, ToQt(Text(msg::DefaultUser)));
    EXPECT_FALSE(mayGiveUp_);
    EXPECT_TRUE(Global.HSUsersUpdated);
    EXPECT_EQ(LinkIDs(), std::vector<std::string>{"Ben"});
    EXPECT_EQ(installed_, FilesOf(InstallKind::Demo).size());
    const std::vector<InstallRow> rows = GetList(Registry());
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0], (InstallRow{"Ben", "2026-11-22 09:30:00", "Demo Company"}));
    EXPECT_TRUE(TextOf(The<frmQuickStart>(), "lblInstallMsg").endsWith(ToQt(Text(msg::QuickAfterInstall))));
    ExpectAtRest();
}

TEST_F(TourInstall, AnotherHandheldIsAddedAndOneOfTheLinksTableIsNotAddedAgain) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_SERIAL", "BEN|77"});

    Install(Joined(Joined(Registration(), {Choosing("Ben")}), HotSync("Ben")));

    EXPECT_EQ(asked_, ToQt(Text(msg::UserToAdd)));
    EXPECT_TRUE(mayGiveUp_);
    EXPECT_EQ(LinkIDs(), std::vector<std::string>{"BEN"});
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "77");
    ExpectAtRest();
}

TEST_F(TourInstall, NoAtTheStepsDoesNothing) {
    auto& page = Open<frmQuickStart>();
    Operator_.Expect(Question()).Answer(Answer::No);

    Click(page, "lblInstall");

    EXPECT_FALSE(Exists(Folder() + "registered"));
    ExpectAtRest();
}

TEST_F(TourInstall, WithoutAManagerOnlyThatIsTold) {
    Registry::SetHotSyncManager("");
    auto& page = Open<frmQuickStart>();
    Operator_.Expect(msg::PalmDesktopMissing).With(Icon::Information);

    Click(page, "lblInstall");

    ExpectAtRest();
}

TEST_F(TourInstall, ARegistrationThatCannotBeRunIsToldAndInstallsNothing) {
    std::filesystem::remove(Global.InstallPath + "rdkinst");
    auto& page = Open<frmQuickStart>();
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_.ExpectBeginning({}).With(Icon::Stop);

    Click(page, "lblInstall");

    EXPECT_EQ(LinkIDs(), std::vector<std::string>());
    ExpectAtRest();
}

TEST_F(TourInstall, WhoChoosesNobodyGetsNothingInstalled) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Zoe"});

    Install(Joined(Registration(), {Choosing(nullptr)}));

    EXPECT_EQ(LinkIDs(), std::vector<std::string>{"Zoe"});
    EXPECT_EQ(TextOf(The<frmQuickStart>(), "lblInstallMsg"), ToQt(Text(msg::QuickNotInstalled)));
    ExpectAtRest();
}

TEST_F(TourInstall, ANameThatTheLinksTableCannotHoldIsToldBeforeAnythingIsQueued) {
    users_ = {std::string(40, 'x')};
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Zoe"});
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_.Expect(::Lines(msg::QuickNameTooLong, Text::Value(std::string_view(users_[0]))))
        .With(Icon::Stop);
    auto& page = Open<frmQuickStart>();

    WithSteps(Joined(Registration(), {Choosing(users_[0].c_str())}), [&] { Click(page, "lblInstall"); });

    EXPECT_EQ(LinkIDs(), std::vector<std::string>{"Zoe"});
    ExpectAtRest();
}

TEST_F(TourInstall, CancelEndsTheInstallAndKeepsTheTour) {
    Install(Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([this] {
                       auto& page = The<frmQuickStart>();
                       for (const char* button : {"lblInstall", "lblOverview1", "cmdNext", "cmdOK"})
                           EXPECT_FALSE(Enabled(page, button)) << button;
                       EXPECT_TRUE(Enabled(page, "cmdHelp"));
                       Click(page, "cmdCancel");
                   })}));

    EXPECT_EQ(FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), ""), std::vector<std::string>());
    EXPECT_EQ(TextOf(The<frmQuickStart>(), "lblInstallMsg"), ToQt(Text(msg::QuickNotInstalled)));
    ExpectAtRest();
}

TEST_F(TourInstall, AScreenThatIsOpenedMeanwhileEndsTheInstallAndTheTour) {
    Install(Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([this] {
                       ExpectGivenUp();
                       The<frmQuickStart>().Unload();
                   })}));

    EXPECT_EQ(IfLoaded<frmQuickStart>(), nullptr);
    EXPECT_EQ(FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), ""), std::vector<std::string>());
}

TEST_F(TourInstall, WhatIsQueuedIsTakenBackBeforeAScreenThatWaitsForTheHandheldIsOpenedAboveIt) {
    std::vector<std::string> queued{"not looked at"};
    Install(Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([&] {
                       ExpectGivenUp();
                       The<frmQuickStart>().Unload();
                       queued = FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), "");
                   })}));

    EXPECT_EQ(queued, std::vector<std::string>());
}

TEST_F(TourInstall, AModalScreenAboveTheWaitingInstallEndsItAndBothEndWell) {
    auto& main = Open<frmMain1>();
    int looked = 0;
    const auto look = [&] {
        ++looked;
        EXPECT_EQ(IfLoaded<frmQuickStart>(), nullptr);
        EXPECT_FALSE(Global.HHInstallActive);
        EXPECT_EQ(FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), ""), std::vector<std::string>());
        ASSERT_FALSE(controls_.empty()) << "the install waits below";
        EXPECT_FALSE(controls_.front()->Enabled()) << "a HotSync now is not the installer's";
        controls_.front()->User = "Ben";
        controls_.front()->Raise(SessionBegun);
        EXPECT_TRUE(controls_.front()->Queued.empty());
    };
    const auto expectBothWell = [&](int times) {
        EXPECT_EQ(looked, times);
        EXPECT_EQ(FormRegistry::Instance().Names(), (QStringList{"frmMain1", "frmMainSync"}));
        EXPECT_TRUE(main.isVisible() && main.isEnabled());
        const std::vector<InstallRow> rows = GetList(Registry());
        EXPECT_TRUE(rows.empty() || rows.at(0).HHStatusDT.empty()) << "nothing was installed";
        EXPECT_FALSE(Exists(Global.InstallPath + "InstallBegun.txt"));
        EXPECT_FALSE(Exists(ManagerFolder() + "Ben/InstallBegun.txt"));
    };
    const auto installBelow = [&](const std::function<void()>& open) {
        std::filesystem::remove(Folder() + "registered");
        Install(Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([&] {
                           ExpectGivenUp();
                           open();
                       })}));
    };

    installBelow(
        [&] { OpenAbove<frmUploadSelect>([&] { ClickMenu(main, "mnuMainUpload"); }, "cmdCancel", look); });
    expectBothWell(1);
    installBelow([&] { OpenAbove<frmFindNotes>([&] { Click(main, "lblNotes"); }, "cmdCancel", look); });
    expectBothWell(2);
}

TEST_F(TourInstall, TheEndOfTheProgramWhileItWaitsTakesBackWhatIsQueued) {
    auto& main = Open<frmMain1>();
    std::size_t queued = 0;

    Install(Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([&] {
                       queued = FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), "").size();
                       EXPECT_TRUE(Exists(Global.InstallPath + "InstallBegun.txt"));
                       main.close();
                   })}));

    EXPECT_EQ(queued, FilesOf(InstallKind::Demo).size());
    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), ""), std::vector<std::string>());
    EXPECT_FALSE(Exists(Global.InstallPath + "InstallBegun.txt"));
}

TEST_F(TourInstall, AQuestionThatStandsWhileTheHandheldSynchronisesHoldsUpOnlyTheRecord) {
    auto& main = Open<frmMain1>();
    const auto recorded = [] {
        const std::vector<InstallRow> rows = GetList(Registry());
        return !rows.empty() && rows[0].HHStatusType == "Demo Company";
    };
    bool heldUp = false;
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_.Expect(msg::ResetQuestion)
        .Then([&] {
            progress_.show();
            WaitInLoop([&] { return !progressWindow_.WasFound() && !Global.Ending; });
            InstallFiles("Ben");
            progress_.hide();
            Settle();
            heldUp = !recorded();
        })
        .Answer(Answer::No);
    auto& page = Open<frmQuickStart>();

    WithSteps(
        Joined(Joined(Registration(), {Choosing("Ben")}), {WhenItWaits([&] { Click(main, "cmdReset"); })}),
        [&] { Click(page, "lblInstall"); });

    EXPECT_TRUE(heldUp);
    EXPECT_TRUE(recorded());
    EXPECT_EQ(installed_, FilesOf(InstallKind::Demo).size());
    EXPECT_FALSE(Exists(Global.InstallPath + "InstallBegun.txt"));
    ExpectAtRest();
}

TEST_F(TourInstall, AHandheldThatMayHoldOrdersIsAskedAboutAndNoInstallsNothing) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", "Ben|B|000009"});
    auto& page = Open<frmQuickStart>();
    Operator_.Expect(Question()).Answer(Answer::Yes);
    Operator_
        .Expect(::Lines(Words(msg::HandheldMayHoldOrders, msg::LastOrderKnown,
                              Text::Path(std::string_view("B000009"))),
                        ::Lines({}, {})) +
                ::Lines(msg::DemoBeginsAgain, ::Lines({}, {})) + msg::InstallAnyway)
        .With(Icon::Warning)
        .Answer(Answer::No);

    WithSteps(Joined(Registration(), {Choosing("Ben")}), [&] { Click(page, "lblInstall"); });

    EXPECT_EQ(FilesWithExtension(InstallFolder(ManagerFolder(), "Ben"), ""), std::vector<std::string>());
    EXPECT_EQ(TextOf(page, "lblInstallMsg"), ToQt(Text(msg::QuickNotInstalled)));
    ExpectAtRest();
}

TEST_F(TourInstall, CancelDuringTheRegistrationEndsTheTour) {
    Install({{[this] { return Exists(Folder() + "registered"); },
              [] { Click(The<frmQuickStart>(), "cmdCancel"); }}});

    EXPECT_EQ(IfLoaded<frmQuickStart>(), nullptr);
    EXPECT_FALSE(Global.HSUsersUpdated);
    EXPECT_EQ(LinkIDs(), std::vector<std::string>());
}

} // namespace
