#include "core/SafeFile.h"
#include "core/forms/frmProgress.h"
#include "forms/TableScreensTest.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/forms/frmTotalsMsg.h"
#include "platform/Convert.h"
#include "platform/TitledWindow.h"
#include "program/forms/frmMain1.h"
#include "support/RefusingDisk.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmUploadSelect.h"

#include <QComboBox>
#include <QDialog>
#include <QEnterEvent>
#include <QLineEdit>
#include <QTest>

namespace {

using Names = std::vector<std::string>;

class UploadScreen : public TableScreens {
protected:
    /// One order on the handheld, another one on the PC, and a row of the Links table on both.
    void GivenOrders() {
        GivenOnHandheld("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A2|Bolt"});
        GivenOnHandheld("ZUKOrLin", {"L_ORDCODE|L_KEY|L_TOTPRICE", "A2|1|7.5"});
        GivenOnHandheld("ZUKAudTH", {"A_ORDCODE", "A2"});
        GivenOnHandheld("ZUKAudTL", {"AL_ORDCODE", "A2"});
        GivenOnHandheld("ZUKAudHH", {"TH_NUMHEAD|TH_NUMLINE|TH_DOL_LIN", "1|1|7.5"});
        GivenLink();
        GivenRows("ZUKOrHdr", {"H_ORDCODE|H_BILLNAME", "A1|Acme"});
        GivenRows("ZUKOrLin", {"L_ORDCODE|L_KEY|L_TOTPRICE", "A1|1|10", "A1|2|2.5"});
    }

    void GivenLink() {
        GivenOnHandheld("ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", "anna|A|00007"});
        GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", "Anna||"});
        GetHHStatus();
    }

    static std::string Template(const std::string& name) { return Global.UploadTemplates + name + ".ust"; }

    /// Presses Ok, says Yes, and lets a session come.
    void Upload(frmUploadSelect& form, std::size_t cutAt = 1000) {
        Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
        WhenItWaits([this, cutAt] { Session(cutAt); });
        Click(form, "cmdOK");
    }

    /// Puts a dialog in the place of the manager's progress window.
    void ShowAsProgress(QDialog& progress) const {
        progress.setWindowTitle(Q("Hotsync Progress"));
        new TitledWindow(progress, PathToQt(ManagerFolder()));
        progress.show();
    }

    /// Closes the summary of totals when it comes.
    void CloseSummary() {
        WhenEver([] { return IfLoaded<frmTotalsMsg>() && IfLoaded<frmTotalsMsg>()->isVisible(); },
                 [this] {
                     auto& summary = The<frmTotalsMsg>();
                     for (const char* label : {"lblUploadOrders", "lblUploadLines", "lblUploadDollars",
                                               "lblTotalOrders", "lblTotalLines", "lblTotalDollars"})
                         summary_.push_back(TextOf(summary, label).toStdString());
                     Click(summary, "cmdOK");
                 });
    }

    static Names OrderCodes() {
        Names codes;
        for (int record = 1; record <= RecordCount("ZUKOrHdr"); ++record)
            codes.push_back(Cell("ZUKOrHdr", record, "H_ORDCODE"));
        return codes;
    }

    /// The safety copies, and the mark that they are needed.
    static Names SafetyCopyFiles() {
        Names files = FilesWithExtension(Global.DBFPath, ".dap");
        if (FileExists(Global.DBFPath + "SafetyCopies.txt")) files.emplace_back("SafetyCopies.txt");
        return files;
    }

    static Names Backups() {
        Names names;
        for (const auto& each : std::filesystem::directory_iterator(Global.BackupPath))
            names.push_back(each.path().filename().string());
        return names;
    }

    static std::string Info(FormBehaviour& form) { return TextOf(form, "lblInfo").toStdString(); }

    Names summary_;
};

// ---- saved settings ----

TEST_F(UploadScreen, ASelectionIsSavedAsSixLinesAndShownAgain) {
    auto& form = Open<frmUploadSelect>();
    for (const char* box : {"chkOrHdr", "chkAudHH", "chkItem"}) Tick(form, box);
    Type(form, "cboSettings", Q("Morning"));

    Click(form, "cmdSave");

    EXPECT_EQ(Lines(Template("Morning")), (Names{"Orders=1", "Audits=0", "Handheld Totals=1",
                                                 "Print Spooler=0", "Customers=0", "Items=1"}));
    Click(form, "cmdClear");
    EXPECT_FALSE(Ticked(form, "chkOrHdr"));
    Choose(form, "cboSettings", Q("Morning"));
    EXPECT_TRUE(Ticked(form, "chkOrHdr"));
    EXPECT_FALSE(Ticked(form, "chkAudtH"));
    EXPECT_TRUE(Ticked(form, "chkItem"));
}

TEST_F(UploadScreen, ATemplateWithALineMissingLeavesThatBoxAsItStood) {
    WriteWholeFile(Template("Short"), "orders=1\r\nLunch=1\r\nItems=0\r\n");
    auto& form = Open<frmUploadSelect>();
    for (const char* box : {"chkCust", "chkItem"}) Tick(form, box);

    Choose(form, "cboSettings", Q("Short"));

    EXPECT_TRUE(Ticked(form, "chkOrHdr"));
    EXPECT_TRUE(Ticked(form, "chkCust"));
    EXPECT_FALSE(Ticked(form, "chkItem"));
}

TEST_F(UploadScreen, ATemplateNameThatExistsIsOverwrittenWithoutAQuestion) {
    WriteWholeFile(Template("Morning"), "Orders=1\r\n");
    auto& form = Open<frmUploadSelect>();
    Type(form, "cboSettings", Q("morning"));

    Click(form, "cmdSave");

    EXPECT_EQ(Lines(Template("Morning")).at(0), "Orders=0");
    EXPECT_EQ(dynamic_cast<QComboBox&>(FormTest::Control(form, "cboSettings")).count(), 1);
}

TEST_F(UploadScreen, SavingWithoutANameAsksForOne) {
    auto& form = Open<frmUploadSelect>();
    Operator_.Expect(msg::TypeTemplateName).With(Icon::Warning);

    Click(form, "cmdSave");

    EXPECT_EQ(form.focusWidget(), &FormTest::Control(form, "cboSettings"));
}

TEST_F(UploadScreen, ANameThatNoFileCanHaveIsRefusedAndNothingIsLost) {
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkCust");
    for (const char* name : {"../Morning", "a/b", "what?", "nul", ".."}) {
        Type(form, "cboSettings", Q(name));
        Operator_.Expect(::Lines(msg::NotAFileName, T(name))).With(Icon::Warning);
        Click(form, "cmdOK");
        EXPECT_FALSE(form.IsGone()) << name;
        EXPECT_TRUE(Ticked(form, "chkCust"));
    }
    EXPECT_TRUE(FilesWithExtension(Global.UploadTemplates, ".ust").empty());
}

TEST_F(UploadScreen, ATemplateThatCannotBeWrittenStopsOk) {
    auto& form = Open<frmUploadSelect>();
    Type(form, "cboSettings", Q("Morning"));
    RefusingDisk disk(Global.UploadTemplates, Access::Create);
    Operator_.ExpectBeginning(msg::TemplateNotSaved).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_FALSE(form.IsGone());
}

TEST_F(UploadScreen, ATemplateIsDeletedWithoutAQuestion) {
    WriteWholeFile(Template("Morning"), "Orders=1\r\n");
    auto& form = Open<frmUploadSelect>();
    EXPECT_FALSE(FormTest::Enabled(form, "cmdDelete"));
    Choose(form, "cboSettings", Q("Morning"));

    Click(form, "cmdDelete");

    EXPECT_FALSE(Exists(Template("Morning")));
    EXPECT_EQ(TextOf(form, "cboSettings"), QString());
    EXPECT_TRUE(Ticked(form, "chkOrHdr"));
}

TEST_F(UploadScreen, ATemplateThatCannotBeDeletedIsToldAndStaysInTheList) {
    WriteWholeFile(Template("Morning"), "Orders=1\r\n");
    auto& form = Open<frmUploadSelect>();
    Choose(form, "cboSettings", Q("Morning"));
    KeepingDisk disk("Morning.ust");
    Operator_.Expect(Words(msg::CannotDelete, T("Morning"))).With(Icon::Warning);
    Global.TheDisk = &disk;

    Click(form, "cmdDelete");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Morning"));
}

TEST_F(UploadScreen, ATemplateThatHasGoneMeanwhileIsTold) {
    WriteWholeFile(Template("Morning"), "Orders=1\r\n");
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkItem");
    std::filesystem::remove(Template("Morning"));
    Operator_.ExpectBeginning(msg::UnattendedUnreadable).With(Icon::Warning);

    Choose(form, "cboSettings", Q("Morning"));

    EXPECT_TRUE(Ticked(form, "chkItem"));
}

TEST_F(UploadScreen, AllBoxesAreTickedAndClearedAtOnceAndNothingTickedIsSaid) {
    auto& form = Open<frmUploadSelect>();
    EXPECT_EQ(TextOf(form, "lblNothing"), Q("No table is ticked: none will travel."));

    Click(form, "cmdSelectAll");
    for (const char* box : {"chkOrHdr", "chkAudtH", "chkAudHH", "chkPrn", "chkCust", "chkItem"})
        EXPECT_TRUE(Ticked(form, box)) << box;
    EXPECT_EQ(TextOf(form, "lblNothing"), QString());

    Click(form, "cmdClear");
    for (const char* box : {"chkOrHdr", "chkAudtH", "chkAudHH", "chkPrn", "chkCust", "chkItem"})
        EXPECT_FALSE(Ticked(form, box)) << box;
}

// ---- what the screen says ----

TEST_F(UploadScreen, EachControlHasAHintUnderTheCursorAndWithTheTabKey) {
    auto& form = Open<frmUploadSelect>();
    const std::string rest = "Move the cursor over an option to see more information...";
    const std::pair<const char*, const char*> hints[] = {
        {"cboSettings", "Select a saved template from the droplist, or type a name and click 'Save Settings' "
                        "to save the current settings."},
        {"cmdSave", "Save the current selection to the file specified in the droplist."},
        {"cmdDelete", "Delete the currently selected Saved Settings template file."},
        {"chkOrHdr", "Select the tables to be Uploaded from the available options."},
        {"chkItem", "Select the tables to be Uploaded from the available options."},
        {"cmdSelectAll", "This option will select all tables"},
        {"cmdClear", "This option will deselect all tables."},
        {"cmdOK", "Start the upload process..."},
        {"cmdCancel", "Exit this screen without performing an upload..."}};
    EXPECT_EQ(Info(form), rest);
    for (const auto& [name, hint] : hints) {
        QWidget& control = FormTest::Control(form, name);
        QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
        QCoreApplication::sendEvent(&control, &enter);
        EXPECT_EQ(Info(form), hint) << name;
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(&control, &leave);
        EXPECT_EQ(Info(form), rest) << name;
        QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
        QCoreApplication::sendEvent(&control, &focus);
        EXPECT_EQ(Info(form), hint) << name;
    }
}

TEST_F(UploadScreen, TheHandheldsOfTheLinksTableAreShown) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_MACH_ID|LK_LSTONUM", "Anna|A|00007", "Ben|B|"});

    auto& form = Open<frmUploadSelect>();

    EXPECT_EQ(GridRows(form, "FG1"),
              (std::vector<QStringList>{{Q("Anna"), Q("A"), Q("00007")}, {Q("Ben"), Q("B"), Q("")}}));
}

// ---- Ok ----

TEST_F(UploadScreen, NoAtTheQuestionLeavesEverythingButTheSavedSettings) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Type(form, "cboSettings", Q("Morning"));
    Operator_.Expect(msg::UploadNow).Answer(Answer::No);

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Exists(Template("Morning")));
    EXPECT_TRUE(Backups().empty());
    EXPECT_EQ(Waits(), 0);
}

TEST_F(UploadScreen, AnUploadPutsTheOldOrdersBehindThoseOfTheHandheldAndSumsUp) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Tick(form, "chkAudtH");
    CloseSummary();

    Upload(form);

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Queued(), (Names{"UPLOAD ZUKLINK.DBF", "UPLOAD ZUKOrHdr.dbf", "UPLOAD ZUKOrLin.dbf",
                               "UPLOAD ZUKAudTH.dbf", "UPLOAD ZUKAudTL.dbf"}));
    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
    EXPECT_EQ(RecordCount("ZUKOrLin"), 3);
    EXPECT_EQ(RecordCount("ZUKAudTH"), 1);
    EXPECT_EQ(summary_, (Names{"1", "1", "7.50", "2", "3", "20.00"}));
    EXPECT_EQ(Cell("ZUKTotalPC", 1, "TP_EVENT"), "UPLOAD-ADD");
    EXPECT_EQ(Cell("ZUKTotalPC", 1, "TP_HOTSYNC"), "Anna");
    EXPECT_EQ(Backups().size(), 1U);
    EXPECT_EQ(SafetyCopyFiles(), Names{});
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_LSTONUM"), "00007");
    EXPECT_TRUE(
        Lines(Global.InstallPath + "HSStatus.dat").at(0).starts_with("Anna" + std::string(26, ' ') + "G"));
    EXPECT_FALSE(Global.UploadClosing);
    EXPECT_EQ(Global.OldOrderCount, 0);
    EXPECT_EQ(Global.CurrentHotSyncID, "");
    EXPECT_FALSE(Global.ManualUploadActive);
}

TEST_F(UploadScreen, EveryBoxQueuesItsTablesInTheirOrder) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Click(form, "cmdSelectAll");
    CloseSummary();

    Upload(form);

    EXPECT_EQ(Queued(), (Names{"UPLOAD ZUKLINK.DBF", "UPLOAD ZUKOrHdr.dbf", "UPLOAD ZUKOrLin.dbf",
                               "UPLOAD ZUKAudTH.dbf", "UPLOAD ZUKAudTL.dbf", "UPLOAD ZUKAudHH.dbf",
                               "UPLOAD ZUKPRN.dbf", "UPLOAD ZUKCUST.dbf", "UPLOAD ZUKITEM.dbf"}));
}

TEST_F(UploadScreen, WithNothingTickedTheSessionFetchesTheLinksAndMovesNoTable) {
    GivenOrders();
    Global.OldOrderCount = 99;
    auto& form = Open<frmUploadSelect>();

    Upload(form);

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Queued(), Names{"UPLOAD ZUKLINK.DBF"});
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_MACH_ID"), "A");
    EXPECT_EQ(OrderCodes(), Names{"A1"});
    EXPECT_TRUE(Backups().empty());
    EXPECT_EQ(SafetyCopyFiles(), Names{});
    EXPECT_EQ(RecordCount("ZUKTotalPC"), 0);
    EXPECT_EQ(Global.OldOrderCount, 0);
}

TEST_F(UploadScreen, AMasterTableIsReplacedAndWhatThePCHadIsInTheBackup) {
    GivenLink();
    GivenOnHandheld("ZUKCUST", {"C_CODE|C_NAME", "B2|Bolt"});
    GivenRows("ZUKCUST", {"C_CODE|C_NAME", "A1|Acme", "C3|Crane"});
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkCust");

    Upload(form);

    EXPECT_EQ(RecordCount("ZUKCUST"), 1);
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_CODE"), "B2");
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_TRUE(FileExists(Global.BackupPath + Backups().at(0) + "/ZUKCUST.DBF"));
    EXPECT_FALSE(Global.BackupCustomers);
    EXPECT_EQ(RecordCount("ZUKTotalPC"), 0);
}

TEST_F(UploadScreen, AuditsWithoutOrdersAreReplacedAndNotMerged) {
    GivenOrders();
    GivenRows("ZUKAudTH", {"A_ORDCODE", "A1", "A0"});
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkAudtH");

    Upload(form);

    EXPECT_EQ(RecordCount("ZUKAudTH"), 1);
    EXPECT_EQ(Cell("ZUKAudTH", 1, "A_ORDCODE"), "A2");
    EXPECT_EQ(Backups().size(), 1U);
    EXPECT_EQ(SafetyCopyFiles(), Names{});
}

TEST_F(UploadScreen, ThePrintSpoolerAloneMakesNoBackup) {
    GivenLink();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkPrn");

    Upload(form);

    EXPECT_TRUE(Backups().empty());
}

TEST_F(UploadScreen, ASecondUploadOfAHandheldThatWasNotClearedAppendsItsOrdersAgain) {
    GivenOrders();
    for (int times = 0; times < 2; ++times) {
        auto& form = Open<frmUploadSelect>();
        Tick(form, "chkOrHdr");
        CloseSummary();
        Upload(form);
    }

    EXPECT_EQ(OrderCodes(), (Names{"A2", "A2", "A1"}));
}

TEST_F(UploadScreen, ASessionThatBreaksOffMergesNothingAndSaysWhereTheOldRecordsAre) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.ExpectBeginning(::Lines(
        msg::UploadBrokeOff, Words(msg::UploadBackupIn, Text::Path(std::string_view(Global.BackupPath)))));
    WhenItWaits([this] { Session(2); }); // the headers come, the lines do not

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(OrderCodes(), Names{"A2"});
    EXPECT_EQ(RecordCount("ZUKOrLin"), 2);
    EXPECT_EQ(SafetyCopyFiles(), Names{});
    EXPECT_EQ(Backups().size(), 1U);
    EXPECT_EQ(RecordCount("ZUKTotalPC"), 0);
}

TEST_F(UploadScreen, ATableThatDidNotArriveKeepsItsRecordsOnce) {
    GivenOrders();
    std::filesystem::remove(Handheld() + "ZUKOrLin.DBF");
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    CloseSummary();

    Upload(form);

    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
    EXPECT_EQ(RecordCount("ZUKOrLin"), 2);
}

// ---- no session ----

TEST_F(UploadScreen, AWaitThatWasCancelledChangesNothingAndLeavesTheScreenForAnotherTry) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    WhenItWaits([] {}, "CANCELLED");
    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(OrderCodes(), Names{"A1"});
    EXPECT_EQ(SafetyCopyFiles(), Names{});
    EXPECT_TRUE(FormTest::Enabled(form, "cmdOK"));

    CloseSummary();
    Upload(form);
    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
}

TEST_F(UploadScreen, AManagerThatRefusesOrGoesIsTold) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::HotSyncRefused).With(Icon::Warning);
    WhenItWaits([] {}, "REFUSED");
    Click(form, "cmdOK");
    EXPECT_FALSE(form.IsGone());

    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::HotSyncLost).With(Icon::Warning);
    WhenItWaits([this] { Manager.Stop(); });
    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(SafetyCopyFiles(), Names{});
}

TEST_F(UploadScreen, WithoutAHotSyncManagerTheOperatorIsToldAndStaysOnTheScreen) {
    Registry::SetHotSyncManager("");
    auto& form = Open<frmUploadSelect>();
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.Expect(msg::PalmDesktopMissing);

    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(SafetyCopyFiles(), Names{});
}

TEST_F(UploadScreen, ATableThatAnotherProgramHoldsStopsBeforeTheBackup) {
    GivenOrders();
    const std::string lines = Global.DBFPath + "ZUKORLIN.DBF";
    RefusingDisk disk(ResolvePath(lines), Access::ReadWrite);
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.Expect(::Lines(::Lines(msg::FileError, msg::TransferAborted), T(lines))).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_FALSE(form.IsGone());
    EXPECT_TRUE(Backups().empty());
    EXPECT_EQ(Waits(), 0);
}

TEST_F(UploadScreen, WithoutItsBackupNothingIsTransferred) {
    GivenOrders();
    RefusingDisk disk(Global.BackupPath, Access::Create);
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkAudHH");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    const Text why = T("Permission denied: " + Global.BackupPath);
    Operator_.ExpectBeginning(::Lines(::Lines(msg::FileError, msg::TransferAborted), why)).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Waits(), 0);
    EXPECT_EQ(SafetyCopyFiles(), Names{});
}

TEST_F(UploadScreen, WithoutASafetyCopyNothingIsTransferred) {
    GivenOrders();
    std::filesystem::remove(ResolvePath(Global.DBFPath + "ZUKPRN.DBF"));
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::TransferAborted)).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(Waits(), 0);
    EXPECT_EQ(OrderCodes(), Names{"A1"});
}

// ---- while it waits ----

TEST_F(UploadScreen, WhileItWaitsNothingCanBeChangedAndCancelGivesTheWaitUp) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    WhenEver([this] { return Waits() > 0; },
             [&] {
                 EXPECT_EQ(Info(form), Text(msg::WaitForHandheld).Utf8());
                 for (const char* control : {"chkOrHdr", "cboSettings", "cmdSave", "cmdOK"})
                     EXPECT_FALSE(FormTest::Enabled(form, control)) << control;
                 Click(form, "cmdCancel");
             });

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    Manager.WaitFor("UNFLUSH");
    EXPECT_EQ(SafetyCopyFiles(), Names{});
    EXPECT_FALSE(Global.ManualUploadActive);
}

TEST_F(UploadScreen, ASessionThatHasBegunCannotBeLeft) {
    GivenOrders();
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    CloseSummary();
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    WhenItWaits([&] {
        Raise(SessionBegun);
        EXPECT_EQ(Info(form), Text(msg::SessionRuns).Utf8());
        EXPECT_FALSE(FormTest::Enabled(form, "cmdCancel"));
        QTest::keyClick(&form, Qt::Key_Escape);
        form.close();
        EXPECT_FALSE(form.IsGone());
        Session();
    });

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
}

TEST_F(UploadScreen, AHandheldThatNobodyWaitsForIsLeftAlone) {
    auto& form = Open<frmUploadSelect>();
    EXPECT_EQ(Enabled(), nullptr);

    Session();

    EXPECT_TRUE(queued_.empty());
    EXPECT_FALSE(form.IsGone());
}

TEST_F(UploadScreen, TheMergeWaitsUntilTheProgressWindowHasGone) {
    GivenOrders();
    QDialog progress;
    ShowAsProgress(progress);
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    CloseSummary();
    Names whileItStood;
    QTimer::singleShot(0, &form, [&] {
        WhenEver([this] { return Waits() > 0 && !Global.ManualUploadActive; },
                 [&] {
                     whileItStood = OrderCodes();
                     progress.close();
                 });
    });

    Upload(form);

    EXPECT_EQ(whileItStood, Names{"A2"});
    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
}

TEST_F(UploadScreen, AProgramThatEndsBeforeTheMergeKeepsTheSafetyCopiesForItsNextStart) {
    GivenOrders();
    QDialog progress;
    ShowAsProgress(progress);
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    QTimer::singleShot(0, &form, [&] {
        WhenEver([this] { return Waits() > 0 && !Global.ManualUploadActive; }, [] { Global.Ending = true; });
    });

    Upload(form);

    EXPECT_EQ(OrderCodes(), Names{"A2"});
    EXPECT_EQ(SafetyCopyFiles().size(), 9U);
    Global.Ending = false;
    RecoverSafetyCopies();
    EXPECT_EQ(OrderCodes(), (Names{"A2", "A1"}));
}

TEST_F(UploadScreen, TheSessionFormStandsBackForTheScreen) {
    GivenOrders();
    Open<frmMain1>();
    The<frmMainSync>();
    auto& form = Open<frmUploadSelect>();
    EXPECT_NE(IfLoaded<frmMainSync>(), nullptr);
    Operator_.Expect(msg::UploadNow).Answer(Answer::Yes);
    WhenItWaits([this] {
        EXPECT_EQ(IfLoaded<frmMainSync>(), nullptr);
        Session();
    });

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_NE(IfLoaded<frmMainSync>(), nullptr);
}

// ---- kept for others ----

TEST_F(UploadScreen, OpenedToKeepTemplatesItSavesAndClosesOnly) {
    Global.TemplateEditMode = true;
    auto& form = Open<frmUploadSelect>();
    Tick(form, "chkOrHdr");
    Operator_.Expect(msg::TypeTemplateName).With(Icon::Warning);
    Click(form, "cmdOK");
    EXPECT_FALSE(form.IsGone()) << "what was ticked would be lost";
    Type(form, "cboSettings", Q("Morning"));

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Lines(Template("Morning")).at(0), "Orders=1");
    EXPECT_EQ(Waits(), 0);
}

TEST_F(UploadScreen, TheReportsTemplateIsShownAndSavedOnly) {
    WriteWholeFile(Template("Morning"), "Orders=0\r\n");
    Global.QCViewMode = true;
    Global.QCViewRecords = "Morning.ust";
    auto& form = Open<frmUploadSelect>();
    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Morning"));
    Tick(form, "chkAudtH");

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Lines(Template("Morning")).at(1), "Audits=1");
    EXPECT_EQ(Global.QCViewRecords, "");
}

} // namespace
