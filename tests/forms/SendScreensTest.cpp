#include "core/SafeFile.h"
#include "exchange/forms/frmQBClearPC.h"
#include "exchange/forms/frmQBDownload.h"
#include "exchange/forms/frmQBUpload.h"
#include "forms/TableScreensTest.h"
#include "installation/forms/frmQuickStart5.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "program/forms/frmMain1.h"
#include "quality/forms/frmConfig.h"
#include "quality/forms/frmConfigMsg.h"
#include "support/RefusingDisk.h"
#include "sync/forms/frmTableSelectCL.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "tools/forms/frmOptions.h"

#include <QComboBox>

namespace {

using Names = std::vector<std::string>;

const Names SetupTables{"DOWNLOAD ZUKSETUP.DBF", "DOWNLOAD ZUKCOMP.DBF", "DOWNLOAD ZUKHELP.DBF",
                        "DOWNLOAD ZUKPRINT.DBF", "DOWNLOAD ZUKSTAX.DBF", "DOWNLOAD ZUKPAY.DBF",
                        "DOWNLOAD ZUKLINK.DBF"};

class SendScreens : public TableScreens {
protected:
    SendScreens() {
        GivenRows("ZUKLINK", {"LK_HOTSYNC", "Ben", "ANNA"});
        GetHHStatus();
    }

    static std::string Template(const std::string& file) { return Global.DownloadTemplates + file; }

    static void GivenTemplate(const std::string& file, const std::string& content) {
        WriteWholeFile(Template(file), content);
    }

    void ExpectCleanCheck() {
        Operator_.Expect(msg::QCWillRun);
        Operator_.Expect(msg::NoFatalProblems);
    }

    /// What the office holds of the handhelds' marks, in the order of the Links table.
    static Names Marks() {
        Names marks;
        for (const std::string& line : Lines(Global.InstallPath + "HSStatus.dat"))
            marks.push_back(line.size() > 60 ? line.substr(60) : std::string());
        return marks;
    }

    /// Does something once a form stands.
    template <class F>
    static void WhenStands(std::function<void(F&)> deed) {
        WhenEver([] { return IfLoaded<F>() && IfLoaded<F>()->isVisible(); }, [deed] { deed(The<F>()); });
    }

    static std::string Perform(const std::string& name) { return "Perform " + name + " - Is that correct?"; }
};

class Download : public SendScreens {};
class ClearHandheld : public SendScreens {};
class TableButtons : public SendScreens {};
class TableTemplateKeepers : public SendScreens {};

// ---- download ----

TEST_F(Download, ASelectionIsSavedAsThreeLinesAndShownAgain) {
    auto& form = Open<frmTableSelectDL>();
    Tick(form, "chkItem");
    Type(form, "cboSettings", Q("Prices"));

    Click(form, "cmdSave");

    EXPECT_EQ(Lines(Template("Prices.dst")), (Names{"Customers=0", "Items=1", "Setup Tables=0"}));
    Click(form, "cmdSelectAll");
    Choose(form, "cboSettings", Q("Prices"));
    EXPECT_FALSE(Ticked(form, "chkCust"));
    EXPECT_TRUE(Ticked(form, "chkItem"));
}

TEST_F(Download, OnlyItsOwnTemplatesAreListed) {
    GivenTemplate("Prices.dst", "");
    GivenTemplate("Old orders.dct", "");

    EXPECT_EQ(dynamic_cast<QComboBox&>(FormTest::Control(Open<frmTableSelectDL>(), "cboSettings")).count(),
              1);
    EXPECT_EQ(
        dynamic_cast<QComboBox&>(FormTest::Control(Open<frmTableSelectCL>(), "cboSettings")).itemText(0),
        Q("Old orders"));
}

TEST_F(Download, TheTablesAreShownWithTheirRecords) {
    GivenRows("ZUKCUST", {"C_CODE", "A1", "B2"});

    auto& form = Open<frmTableSelectDL>();

    EXPECT_EQ(TextOf(form, "lblCust"), Q("Customers (2)"));
    EXPECT_EQ(TextOf(form, "lblItem"), Q("Items (0), Barcode Index (0)"));
}

TEST_F(Download, NoAtTheQuestionLeavesTheScreen) {
    auto& form = Open<frmTableSelectDL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Waits(), 0);
}

TEST_F(Download, SetupCustomersAndItemsTravelInThisOrderAndTheHandheldIsMarked) {
    Open<frmMain1>();
    auto& form = Open<frmTableSelectDL>();
    Click(form, "cmdSelectAll");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    Names expected = SetupTables;
    for (const char* table : {"ZUKCUST", "ZUKITEM", "ZUKBARIN"})
        expected.push_back(std::string("DOWNLOAD ") + table + ".DBF");
    EXPECT_EQ(Queued(), expected);
    EXPECT_TRUE(queued_.at(0).starts_with("DOWNLOAD " + Global.DBFPath));
    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Marks(), (Names{"", "S"}));
    EXPECT_EQ(Global.LastSyncedUser, "Anna");
    EXPECT_FALSE(Global.ManualUploadActive);
    EXPECT_FALSE(FormTest::Enabled(The<frmMain1>(), "cmdHHHSIDStd_2")) << "the mark shows on the brick";
}

TEST_F(Download, WithNothingTickedTheCheckRunsNoTableMovesAndTheHandheldIsMarked) {
    auto& form = Open<frmTableSelectDL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_TRUE(queued_.empty());
    EXPECT_EQ(Marks(), (Names{"", "S"}));
}

TEST_F(Download, TheCheckPutsTheTablesInOrderAndMakesTheIndexOfItemsWithoutBarcodes) {
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "SAW|S1|Saw|9", "HAMMER|H1|Hammer|12"});
    auto& form = Open<frmTableSelectDL>();
    Tick(form, "chkItem");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKITEM", 1, "I_SEARCH"), "HAMMER");
    EXPECT_EQ(RecordCount("ZUKBARIN"), 2);
}

TEST_F(Download, AFatalProblemLeavesTheScreenOpenAndNothingTravels) {
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "ACME|C1|Acme", "|C2|Crane"});
    auto& form = Open<frmTableSelectDL>();
    Tick(form, "chkCust");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::FatalProblems).With(Icon::Warning);
    Operator_.Expect(msg::FatalHotsync).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_NE(IfLoaded<frmConfigMsg>(), nullptr);
    EXPECT_FALSE(Global.QCFatalFound);
    EXPECT_EQ(Waits(), 0);
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);
    EXPECT_TRUE(FormTest::Enabled(form, "cmdOK"));
}

TEST_F(Download, TheReportOfAStoppedDownloadShowsABlankTemplateAndNotTheDownload) {
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "|C2|Crane"});
    GivenTemplate("Blank.dst", "Items=0\r\n");
    auto& form = Open<frmTableSelectDL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::FatalProblems);
    Operator_.Expect(msg::FatalHotsync);
    Click(form, "cmdOK");
    WhenStands<frmTableSelectDL>([&form](auto& other) {
        EXPECT_NE(&other, &form);
        EXPECT_EQ(TextOf(other, "cboSettings"), Q("Blank"));
        Click(other, "cmdCancel");
    });
    auto& report = The<frmConfigMsg>();
    form.hide(); // what stands now is the report's

    Click(report, "cmdView");

    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
}

TEST_F(Download, ATableThatAnotherProgramHoldsIsTold) {
    auto& form = Open<frmTableSelectDL>();
    Tick(form, "chkSetup");
    const std::string help = Global.DBFPath + "ZUKHELP.DBF";
    RefusingDisk disk(ResolvePath(help), Access::ReadWrite);
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    Operator_.Expect(::Lines(::Lines(msg::FileError, msg::TransferAborted), T(help))).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(Waits(), 0);
}

TEST_F(Download, WithoutAHotSyncManagerNothingIsChecked) {
    Registry::SetHotSyncManager("");
    auto& form = Open<frmTableSelectDL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::PalmDesktopMissing);

    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
}

TEST_F(Download, ASessionThatBreaksOffIsNotNoticedAndTheMarkStays) {
    auto& form = Open<frmTableSelectDL>();
    Tick(form, "chkSetup");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([this] { Session(2); });

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Marks(), (Names{"", "S"}));
}

TEST_F(Download, FromTheConfiguratorItIsNotAskedForAndItReturnsThere) {
    auto& config = Open<frmConfig>();
    WhenStands<frmTableSelectDL>([this](frmTableSelectDL& form) {
        ExpectCleanCheck();
        WhenItWaits([this] { Session(); });
        Click(form, "cmdOK");
    });

    Click(config, "cmdDownload1");

    EXPECT_FALSE(config.IsGone());
    EXPECT_FALSE(Global.FromConfigurator);
    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
}

TEST_F(Download, KeepsThePageOfTheTourWaitingUntilItHasEnded) {
    auto& page = Open<frmQuickStart5>();
    bool goesOn = false;
    const auto waits = [&] { return !goesOn && IfLoaded<frmQuickStart5>() == &page && page.isVisible(); };
    bool before = false;
    bool behind = false;
    WhenStands<frmTableSelectDL>([&](frmTableSelectDL& form) {
        Tick(form, "chkSetup");
        ExpectCleanCheck();
        WhenItWaits([&] {
            before = waits();
            Session();
            behind = waits();
        });
        Click(form, "cmdOK");
    });

    Click(page, "cmdDownload");
    goesOn = true;

    EXPECT_TRUE(before);
    EXPECT_TRUE(behind) << "until the manager says that the session is over";
    EXPECT_EQ(Queued(), SetupTables);
    EXPECT_EQ(Marks(), (Names{"", "S"}));
    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
    EXPECT_FALSE(Global.FromConfigurator);
    EXPECT_TRUE(page.isVisible());
}

TEST_F(Download, ACancelledWaitLeavesTheScreenAndNoMark) {
    auto& form = Open<frmTableSelectDL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([] {}, "CANCELLED");

    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(Marks(), (Names{"", ""}));
}

// ---- clearing ----

TEST_F(ClearHandheld, EmptyTwinsTravelAndTheTablesOfThePCStay) {
    GivenRows("ZUKOrHdr", {"H_ORDCODE", "A1"});
    auto& form = Open<frmTableSelectCL>();
    EXPECT_EQ(form.windowTitle(), Q("Clear Tables on Handheld"));
    Click(form, "cmdSelectAll");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::ClearWarning).Answer(Answer::Yes).With(Icon::Warning);
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    Names expected;
    for (const char* table : {"ZUKORHDR", "ZUKORLIN", "ZUKAUDTH", "ZUKAUDTL", "ZUKAUDHH"})
        expected.push_back("DOWNLOAD " + Global.DBFEmptyPath + table + ".DBF");
    EXPECT_EQ(queued_, expected);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
    EXPECT_EQ(Marks(), (Names{"", "S"})) << "a clearing looks like a manual download";
    EXPECT_TRUE(form.IsGone());
}

TEST_F(ClearHandheld, WithNothingTickedBothQuestionsAreAskedAndTheHandheldIsMarked) {
    auto& form = Open<frmTableSelectCL>();
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::ClearWarning).Answer(Answer::Yes);
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_TRUE(queued_.empty());
    EXPECT_EQ(Marks(), (Names{"", "S"}));
}

TEST_F(ClearHandheld, NoAtTheSecondQuestionLeavesTheTemplateSaved) {
    auto& form = Open<frmTableSelectCL>();
    Tick(form, "chkAudtH");
    Type(form, "cboSettings", Q("Audits only"));
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::ClearWarning).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Lines(Template("Audits only.dct")),
              (Names{"Order Tables=0", "Audit Tables=1", "Handheld Totals=0"}));
    EXPECT_EQ(Waits(), 0);
}

TEST_F(ClearHandheld, ATableThatIsNotThereIsLeftToTheTransfer) {
    std::filesystem::remove(ResolvePath(Global.DBFEmptyPath + "ZUKAUDHH.DBF"));
    auto& form = Open<frmTableSelectCL>();
    Tick(form, "chkAudHH");
    Operator_.Expect(msg::DownloadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::ClearWarning).Answer(Answer::Yes);
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_EQ(Queued(), Names{"DOWNLOAD ZUKAUDHH.DBF"});
    EXPECT_TRUE(form.IsGone());
}

// ---- QuickButtons ----

TEST_F(TableButtons, TheDroplistsHoldTheirTemplatesAndAChoiceInOneEmptiesTheOther) {
    GivenTemplate("Prices.dst", "Items=1\r\n");
    GivenTemplate("Old orders.dct", "Order Tables=1\r\n");
    auto& form = Open<frmQBDownload>();
    EXPECT_FALSE(FormTest::Enabled(form, "cmdOK"));

    Choose(form, "cboClear", Q("Old orders"));
    EXPECT_TRUE(FormTest::Enabled(form, "cmdOK"));
    Choose(form, "cboDownload", Q("Prices"));

    EXPECT_EQ(TextOf(form, "cboClear"), QString());
    EXPECT_TRUE(FormTest::Enabled(form, "cmdOK"));
}

TEST_F(TableButtons, ADownloadRunsWithOneConfirmationAndTheButtonThenSaysDone) {
    GivenTemplate("Prices.dst", "Customers=1\r\nItems=0\r\nSetup Tables=0\r\n");
    auto& form = Open<frmQBDownload>();
    Choose(form, "cboDownload", Q("Prices"));
    Operator_.Expect(T(Perform("Prices"))).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_EQ(Queued(), Names{"DOWNLOAD ZUKCUST.DBF"});
    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
    EXPECT_EQ(TextOf(form, "cmdCancel").remove(u'&'), Q("Done"));
    EXPECT_EQ(TextOf(form, "cboDownload"), Q("Prices"));
}

TEST_F(TableButtons, AClearingAsksItsWarningAllTheSame) {
    GivenTemplate("Old orders.dct", "Order Tables=1\r\n");
    auto& form = Open<frmQBDownload>();
    Choose(form, "cboClear", Q("Old orders"));
    Operator_.Expect(T(Perform("Old orders"))).Answer(Answer::Yes);
    Operator_.Expect(msg::ClearWarning).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(Waits(), 0);
    EXPECT_EQ(IfLoaded<frmTableSelectCL>(), nullptr);
    EXPECT_EQ(TextOf(form, "cmdCancel").remove(u'&'), Q("Cancel"));
}

TEST_F(TableButtons, NoAtTheConfirmationOpensNothing) {
    GivenTemplate("Prices.dst", "Items=1\r\n");
    auto& form = Open<frmQBDownload>();
    Choose(form, "cboDownload", Q("Prices"));
    Operator_.Expect(T(Perform("Prices"))).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
}

TEST_F(TableButtons, AnUploadRunsWithOneConfirmation) {
    WriteWholeFile(Global.UploadTemplates + "Audits.ust", "Audits=1\r\n");
    GivenOnHandheld("ZUKAudTH", {"A_ORDCODE", "A2"});
    GivenOnHandheld("ZUKAudTL", {"A_KEY", "1"});
    auto& form = Open<frmQBUpload>();
    EXPECT_FALSE(FormTest::Enabled(form, "cmdOK"));
    Choose(form, "cboDownload", Q("Audits"));
    Operator_.Expect(T(Perform("Audits"))).Answer(Answer::Yes);
    WhenItWaits([this] { Session(); });

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKAudTH"), 1);
    EXPECT_EQ(TextOf(form, "cmdCancel").remove(u'&'), Q("Done"));
}

TEST_F(TableButtons, ATemplateThatCannotBeReadIsToldAndNothingRunsByIt) {
    const std::string path = Global.UploadTemplates + "Audits.ust";
    WriteWholeFile(path, "Audits=1\r\n");
    auto& form = Open<frmQBUpload>();
    Choose(form, "cboDownload", Q("Audits"));
    Operator_.Expect(T(Perform("Audits"))).Answer(Answer::Yes).Then([path] {
        std::filesystem::remove(path);
    });
    Operator_.ExpectBeginning(msg::UnattendedUnreadable);
    WhenEver([this] { return Operator_.AllCame(); }, [] { Click(The<frmUploadSelect>(), "cmdCancel"); });

    Click(form, "cmdOK");

    EXPECT_EQ(Waits(), 0);
    EXPECT_FALSE(Exists(path));
    EXPECT_FALSE(FormTest::Enabled(form, "cmdOK"));
}

TEST_F(TableButtons, AWaitThatWasCancelledLeadsBackToTheButton) {
    GivenTemplate("Prices.dst", "Items=1\r\n");
    auto& form = Open<frmQBDownload>();
    Choose(form, "cboDownload", Q("Prices"));
    Operator_.Expect(T(Perform("Prices"))).Answer(Answer::Yes);
    ExpectCleanCheck();
    WhenItWaits([] {}, "CANCELLED");

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmTableSelectDL>(), nullptr);
    EXPECT_EQ(TextOf(form, "cmdCancel").remove(u'&'), Q("Cancel"));
}

TEST_F(TableButtons, SetupTurnsToTheTemplatesOfItsKindAndTheListsAreNew) {
    auto& form = Open<frmQBDownload>();
    WhenStands<frmOptions>([](frmOptions& options) {
        EXPECT_TRUE(Global.TemplateEditMode);
        EXPECT_EQ(options.focusWidget(), &FormTest::Control(options, "cmdSUClear"));
        GivenTemplate("Old orders.dct", "Order Tables=1\r\n");
        Click(options, "cmdCancel");
    });

    Click(form, "cmdSetupCL");

    EXPECT_FALSE(Global.TemplateEditMode);
    EXPECT_EQ(dynamic_cast<QComboBox&>(FormTest::Control(form, "cboClear")).count(), 1);
}

TEST_F(TableButtons, TheMainScreenOpensThemAll) {
    auto& main = Open<frmMain1>();
    WhenStands<frmTableSelectDL>([](auto& form) { Click(form, "cmdCancel"); });
    ClickMenu(main, "mnuDownloadSelect");
    WhenStands<frmTableSelectCL>([](auto& form) { Click(form, "cmdCancel"); });
    ClickMenu(main, "mnuClearSelect");
    WhenStands<frmUploadSelect>([](auto& form) { Click(form, "cmdCancel"); });
    ClickMenu(main, "mnuMainUpload");

    for (const char* way : {"mnuClearPCTables", "lblPurgeBU"}) {
        WhenStands<frmTableSelectPC>([](auto& form) { Click(form, "cmdCancel"); });
        way[0] == 'm' ? ClickMenu(main, way) : Click(main, way);
    }
    Click(main, "lblClearPC");
    EXPECT_NE(IfLoaded<frmQBClearPC>(), nullptr);

    Click(main, "lblDownloadBtn");
    EXPECT_NE(IfLoaded<frmQBDownload>(), nullptr);
    Click(main, "lblUploadBtn");

    EXPECT_NE(IfLoaded<frmQBUpload>(), nullptr);
    EXPECT_EQ(IfLoaded<frmQBDownload>(), nullptr);
}

// ---- kept for others ----

TEST_F(TableTemplateKeepers, TheOptionsOpenTheScreensAndListWhatWasSavedThere) {
    auto& options = Open<frmOptions>();
    const auto save = [](FormBehaviour& form, const char* name) {
        Click(form, "cmdSelectAll");
        Type(form, "cboSettings", Q(name));
        Click(form, "cmdOK");
    };
    WhenStands<frmTableSelectDL>([&](auto& form) { save(form, "Prices"); });
    Click(options, "cmdSUDownload");
    WhenStands<frmUploadSelect>([&](auto& form) { save(form, "Orders"); });
    Click(options, "cmdSUUpload");
    WhenStands<frmTableSelectCL>([&](auto& form) { save(form, "Old orders"); });
    Click(options, "cmdSUClear");

    WhenStands<frmTableSelectPC>([&](auto& form) {
        Operator_.Expect(msg::ClearNow).Answer(Answer::No);
        save(form, "Everything");
    });
    Click(options, "cmdEdtPC");

    for (const auto& [list, name] : {std::pair{"cboSettings", "Prices"},
                                     {"cboULSettings", "Orders"},
                                     {"cboClearSettings", "Old orders"},
                                     {"cboPCSS1", "Everything.pct"},
                                     {"cboPCSS2", "Everything.pct"}})
        EXPECT_EQ(dynamic_cast<QComboBox&>(FormTest::Control(options, list)).itemText(1), Q(name));
    EXPECT_EQ(Lines(Template("Old orders.dct")).at(0), "Order Tables=1");
    EXPECT_FALSE(Global.TemplateEditMode);
    EXPECT_EQ(Waits(), 0);
}

TEST_F(TableTemplateKeepers, TheReportOpensEachBlankTemplateOnItsScreen) {
    GivenTemplate("Blank.dct", "Order Tables=0\r\n");
    GivenTemplate("Blank.dst", "Items=0\r\n");
    auto& config = Open<frmConfig>();
    Click(config, "cmdDownload2");
    Settle();
    auto& report = The<frmConfigMsg>();
    WhenStands<frmTableSelectCL>([](auto& form) {
        EXPECT_EQ(form.windowTitle(), Q("Clear Tables on Handheld (1 of 2)"));
        Click(form, "cmdDelete");
        Click(form, "cmdCancel");
    });
    WhenStands<frmTableSelectDL>([](auto& form) {
        EXPECT_EQ(TextOf(form, "cboSettings"), Q("Blank"));
        Tick(form, "chkItem");
        Click(form, "cmdOK");
    });

    Click(report, "cmdView");

    EXPECT_FALSE(Exists(Template("Blank.dct")));
    EXPECT_EQ(Lines(Template("Blank.dst")).at(1), "Items=1");
    EXPECT_EQ(Waits(), 0);
}

TEST_F(TableTemplateKeepers, TheReportOpensABlankUploadTemplate) {
    WriteWholeFile(Global.UploadTemplates + "Blank.ust", "Orders=0\r\n");
    auto& config = Open<frmConfig>();
    Click(config, "cmdUpload2");
    Settle();
    WhenStands<frmUploadSelect>([](auto& form) {
        Tick(form, "chkOrHdr");
        Click(form, "cmdOK");
    });

    Click(The<frmConfigMsg>(), "cmdView");

    EXPECT_EQ(Lines(Global.UploadTemplates + "Blank.ust").at(0), "Orders=1");
}

TEST_F(TableTemplateKeepers, TheConfiguratorOpensTheUpload) {
    auto& config = Open<frmConfig>();
    WhenStands<frmUploadSelect>([](auto& form) {
        EXPECT_TRUE(Global.FromConfigurator);
        Click(form, "cmdCancel");
    });

    Click(config, "cmdUpload1");

    EXPECT_FALSE(Global.FromConfigurator);
}

} // namespace
