#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/Activity.h"
#include "exchange/forms/frmQBClearPC.h"
#include "forms/FormTest.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "program/forms/frmMain1.h"
#include "support/OtherProgram.h"
#include "sync/TableTemplates.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>
#include <filesystem>

namespace {

using Names = std::vector<std::string>;

constexpr const char* Boxes[] = {"chkOrHdr", "chkAudtH", "chkAudHH", "chkBarIn",  "chkComp",
                                 "chkCust",  "chkHelp",  "chkItem",  "chkPrint",  "chkSetup",
                                 "chkSTax",  "chkPay",   "chkLinks", "chkTotalPC"};

/// An office with two orders of three lines, a signature, an audit and two customers.
class ClearPC : public FormTest {
protected:
    ClearPC() {
        GivenOffice();
        GivenRows("ZUKOrHdr", {"H_ORDCODE", "A1", "A2"});
        GivenRows("ZUKOrLin", {"L_KEY|L_TOTPRICE", "1|10.5", "2|4", "3|1"});
        GivenRows("ZUKAudTH", {"A_ORDCODE", "A1"});
        GivenRows("ZUKCUST", {"C_CODE", "C1", "C2"});
        GivenFile("app/DBFFiles/Images/A1.bmp", "BM");
    }

    frmMain1& Start() {
        Operator_.Expect(msg::PalmDesktopMissing);
        return Open<frmMain1>();
    }

    static bool Ticked(FormBehaviour& form, const char* box) {
        return dynamic_cast<QAbstractButton&>(FormTest::Control(form, box)).isChecked();
    }
    static Names AllTicked(FormBehaviour& form) {
        Names ticked;
        for (const char* box : Boxes) {
            if (Ticked(form, box)) ticked.emplace_back(box);
        }
        return ticked;
    }
    static void Tick(FormBehaviour& form, std::initializer_list<const char*> boxes) {
        for (const char* box : boxes) Click(form, box);
    }

    Names Backups() const { return Global.TheDisk->FoldersIn(Global.BackupPath); }
    static int Signatures() { return static_cast<int>(FilesWithExtension(Global.ImagesPath, "").size()); }

    void ExpectWarning(Answer answer) {
        Operator_.Expect(msg::ClearWarningPC).Answer(answer).With(Icon::Warning);
    }
    static Text Locked() { return ::Lines(msg::FileError, msg::TransferAborted); }

    static void GivenTemplate(const std::string& name, std::initializer_list<ClearGroup> groups) {
        ClearPlan plan;
        for (const ClearGroup group : groups) plan.Choose(group);
        WriteTemplate(Global.ClearPCTemplates + name, plan);
    }

    /// Runs an activity to its end.
    frmQBClearPC& RunActivity(const char* first, const char* second) {
        Activity activity;
        activity.Rows[0].Template = first;
        activity.Rows[1].Template = second;
        WriteActivity(Global.QuickButtonTemplates + "Evening.ctm", activity);
        Operator_.Expect(T("Perform Evening - Is that correct?")).Answer(Answer::Yes);
        auto& form = Open<frmQBClearPC>();
        Choose(form, "cboMaster", QStringLiteral("Evening"));
        return form;
    }
    static std::string Row(FormBehaviour& form, const char* row) {
        const auto text = [&](const std::string& name) {
            return TextOf(form, (name + row).c_str()).toStdString();
        };
        const std::string picture = FormTest::Control(form, (std::string("imgSuccess_") + row).c_str())
                                        .accessibleName()
                                        .toStdString();
        return picture + ": " + text("lblSS_") + ", " + text("lblSST_");
    }
};

// ---- choosing ----

TEST_F(ClearPC, NothingIsTickedAtFirstAndSelectionsAreSavedShownAndDeleted) {
    auto& form = Open<frmTableSelectPC>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Clear Tables on PC"));
    EXPECT_EQ(AllTicked(form), Names{});
    EXPECT_EQ(TextOf(form, "lblNothing"), QStringLiteral("No table is ticked: none will be cleared."));
    EXPECT_EQ(TextOf(form, "lblOrHdr"), QStringLiteral("Order Headers (2), Order Lines (3), Signatures (1)"));
    EXPECT_EQ(TextOf(form, "lblCust"), QStringLiteral("Customers (2)"));

    Operator_.Expect(msg::TypeTemplateName);
    Click(form, "cmdSave");
    Tick(form, {"chkOrHdr", "chkTotalPC"});
    Type(form, "cboSettings", QStringLiteral("Evening"));
    Click(form, "cmdSave");
    const Names lines = Lines(Global.ClearPCTemplates + "Evening.pct");
    ASSERT_EQ(lines.size(), 14U);
    EXPECT_EQ(lines[0], "Order Tables1");
    EXPECT_EQ(lines[5], "Customers0");
    EXPECT_EQ(lines[13], "PC Totals1");

    Click(form, "cmdInvert");
    EXPECT_EQ(AllTicked(form).size(), 12U);
    Click(form, "cmdSelectAll");
    EXPECT_EQ(AllTicked(form).size(), 14U);
    Click(form, "cmdClear");
    EXPECT_EQ(AllTicked(form), Names{});
    Choose(form, "cboSettings", QStringLiteral("Evening"));
    EXPECT_EQ(AllTicked(form), (Names{"chkOrHdr", "chkTotalPC"}));

    Type(form, "cboSettings", QStringLiteral("../Evening"));
    Operator_.ExpectBeginning(msg::NotAFileName);
    Click(form, "cmdSave");
    Type(form, "cboSettings", QStringLiteral("Evening"));
    Click(form, "cmdDelete");
    EXPECT_FALSE(Exists(Global.ClearPCTemplates + "Evening.pct"));
    EXPECT_EQ(dynamic_cast<QComboBox&>(FormTest::Control(form, "cboSettings")).count(), 0);
}

// ---- clearing ----

TEST_F(ClearPC, ItAsksAlsoWithNothingTickedAndYesClearsWhatIsTickedBehindABackup) {
    auto& main = Start();
    ExpectWarning(Answer::Yes);
    Click(Open<frmTableSelectPC>(), "cmdOK");
    EXPECT_EQ(Backups(), Names{}) << "nothing was ticked";
    EXPECT_EQ(IfLoaded<frmTableSelectPC>(), nullptr);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);

    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkOrHdr", "chkAudtH", "chkCust", "chkTotalPC"});
    ExpectWarning(Answer::No);
    Click(form, "cmdOK");
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_FALSE(form.IsGone()) << "what is ticked is not lost";

    ExpectWarning(Answer::Yes);
    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    for (const char* table : {"ZUKOrHdr", "ZUKOrLin", "ZUKAudTH", "ZUKAudTL", "ZUKCUST"})
        EXPECT_EQ(RecordCount(table), 0) << table;
    EXPECT_EQ(Signatures(), 0);
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_EQ(Lines(Global.BackupPath + Backups()[0] + "/Backup.txt").at(0), "CLEAR");
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 1);
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "CLEAR");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_NUMLINE"), "3");
    EXPECT_EQ(TextOf(main, "lblSysOrders1"), QStringLiteral("0"));
    auto& outcome = dynamic_cast<QStatusBar&>(FormTest::Control(main, "sbrOutcome"));
    EXPECT_EQ(outcome.currentMessage(),
              QStringLiteral("Cleared: PC Totals (0), Order Headers (2), Order Lines (3), Order Header Audit "
                             "(1), Order Line Audit (0), Customers (2), Signatures (1)"));
    main.UnloadForms();
    EXPECT_FALSE(outcome.isVisible());
}

TEST_F(ClearPC, AsAKeeperOfTemplatesItAsksFirstWhetherItIsToClear) {
    Global.TemplateEditMode = true;
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkCust"});
    Operator_.Expect(msg::ClearNow).Answer(Answer::No);
    Click(form, "cmdOK");
    EXPECT_FALSE(form.IsGone()) << "what has no name is saved nowhere";

    Type(form, "cboSettings", QStringLiteral("Customers"));
    Operator_.Expect(msg::ClearNow).Answer(Answer::No);
    Click(form, "cmdOK");
    EXPECT_TRUE(form.IsGone());
    EXPECT_EQ(Lines(Global.ClearPCTemplates + "Customers.pct").at(5), "Customers1");
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);

    auto& again = Open<frmTableSelectPC>();
    Choose(again, "cboSettings", QStringLiteral("Customers"));
    Operator_.Expect(msg::ClearNow).Answer(Answer::Yes);
    ExpectWarning(Answer::Yes);
    Click(again, "cmdOK");
    EXPECT_EQ(RecordCount("ZUKCUST"), 0);
    EXPECT_EQ(Backups().size(), 1U);
}

TEST_F(ClearPC, CustomersAloneAreClearedBehindABackupThatHoldsOnlyTheOrderAndAuditTables) {
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkCust"});
    ExpectWarning(Answer::Yes);

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKCUST"), 0);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0) << "no event: the orders stand as they stood";
    ASSERT_EQ(Backups().size(), 1U);
    const std::string backup = Global.BackupPath + Backups()[0] + "/";
    EXPECT_EQ(EngineTest::Lines(backup + "Backup.txt").at(0), "CLEAR");
    Names files = Global.TheDisk->FilesIn(backup);
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (Names{"Backup.txt", "ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKOrHdr.dbf",
                            "ZUKOrLin.dbf"}));
}

TEST_F(ClearPC, ClearedLinksAndCompanyAreGoneFromTheMainScreenToo) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna", "Ben"});
    auto& main = Start();
    Global.CompanyName = "Acme";
    EXPECT_NE(main.findChild<QWidget*>(QStringLiteral("cmdHHHSIDStd_2")), nullptr);
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkLinks", "chkComp"});
    ExpectWarning(Answer::Yes);

    Click(form, "cmdOK");

    Settle();
    EXPECT_EQ(main.findChild<QWidget*>(QStringLiteral("cmdHHHSIDStd_1")), nullptr);
    EXPECT_TRUE(Global.CompanyName.empty());
    EXPECT_EQ(Backups(), Names{});
}

// ---- what an upload has left to be put back ----

TEST_F(ClearPC, OrdersThatComeBackJustBeforeAreClearedOnlyAfterAnotherYes) {
    CopyOver(Global.DBFPath + "ZUKOrHdr.dbf", Global.DBFPath + "ZUKOrHdr.dap");
    WriteWholeFile(Global.DBFPath + "SafetyCopies.txt", "");
    GivenRows("ZUKOrHdr", {"H_ORDCODE", "H1"});
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkOrHdr"});
    ExpectWarning(Answer::Yes);
    Operator_.ExpectBeginning(Text(msg::CopiesPutBack)).With(Icon::Information);
    ExpectWarning(Answer::No);

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_EQ(Backups(), Names{});

    ExpectWarning(Answer::Yes);
    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 0);
}

TEST_F(ClearPC, OrdersThatCannotBePutBackStopIt) {
    WriteWholeFile(Global.DBFPath + "ZUKOrHdr.dap", "no table");
    WriteWholeFile(Global.DBFPath + "SafetyCopies.txt", "");
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkOrHdr"});
    ExpectWarning(Answer::Yes);
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::CopiesNotPutBack)).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(Backups(), Names{});
}

// ---- when it cannot be done ----

#ifndef _WIN32
TEST_F(ClearPC, ATableThatAnotherProgramLocksStopsItBeforeAnythingHasChanged) {
    const std::string items = Global.DBFPath + "ZUKITEM.DBF", audits = Global.DBFPath + "ZUKAUDTL.DBF";
    auto& form = Open<frmTableSelectPC>();
    Tick(form, {"chkOrHdr", "chkCust", "chkItem", "chkTotalPC"});
    {
        const OtherProgram other(ResolvePath(items), true);
        ASSERT_TRUE(other.Holds);
        ExpectWarning(Answer::Yes);
        Operator_.Expect(::Lines(Locked(), T(items))).With(Icon::Stop);
        Click(form, "cmdOK");
    }
    EXPECT_EQ(Backups(), Names{});
    {
        // Not cleared, but in the backup.
        const OtherProgram other(ResolvePath(audits), false);
        ASSERT_TRUE(other.Holds);
        ExpectWarning(Answer::Yes);
        Operator_.Expect(::Lines(Locked(), T(Global.DBFPath + "ZUKAudTL.dbf"))).With(Icon::Stop);
        Click(form, "cmdOK");
    }

    EXPECT_FALSE(form.IsGone());
    EXPECT_EQ(Backups(), Names{});
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 2);
    EXPECT_EQ(RecordCount("ZUKCUST"), 2);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);
    EXPECT_EQ(Signatures(), 1);
}
#endif

// ---- the QuickButton ----

TEST_F(ClearPC, AnActivityWithAMissingTemplateInRowOneStillRunsRowTwoWithoutAsking) {
    GivenTemplate("Orders.pct", {ClearGroup::OrHdr});
    auto& form = RunActivity("Gone.pct", "orders.PCT");
    Operator_.Expect(T("Error opening Gone.pct. Please make sure the file exists."));

    Click(form, "cmdOK");

    EXPECT_EQ(Row(form, "1"), "failed: Saved Setting 1:, Gone.pct");
    EXPECT_EQ(Row(form, "2"), "succeeded: orders.PCT, 2 of 2");
    EXPECT_EQ(FormTest::Control(form, "lblSST_2").toolTip().toStdString(),
              "Order Headers (2), Order Lines (3), Signatures (1)");
    EXPECT_EQ(TextOf(form, "lblHeading2"), QStringLiteral("PC Tables Cleared:"));
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
    EXPECT_EQ(RecordCount("ZUKOrLin"), 0);
    EXPECT_EQ(Backups().size(), 1U);
    EXPECT_EQ(IfLoaded<frmTableSelectPC>(), nullptr);
    EXPECT_EQ(Operator_.Beeps(), 1);
}

TEST_F(ClearPC, TheErrorsOfTheScreenDecideAndARowThatFailsDoesNotStopTheNext) {
    GivenTemplate("Items.pct", {ClearGroup::Pay, ClearGroup::Item});
    GivenTemplate("Customers.pct", {ClearGroup::Cust});
    std::filesystem::remove(ResolvePath(Global.DBFEmptyPath + "ZUKITEM.DBF"));
    auto& form = RunActivity("Items.pct", "Customers.pct");
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::ClearStopped)).Then([&form] {
        EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Processing"));
    });

    Click(form, "cmdOK");

    EXPECT_EQ(Row(form, "1"), "failed: Items.pct, 0 of 2");
    EXPECT_EQ(Row(form, "2"), "succeeded: Customers.pct, 1 of 1");
    EXPECT_EQ(TextOf(form, "cmdCancel").remove(u'&'), QStringLiteral("Done"));
    EXPECT_TRUE(Global.RefreshTotals);
}

TEST_F(ClearPC, RowsOfTheSameSecondHaveABackupEachSoThatWhatTheFirstHasClearedIsStillInOne) {
    static DateTime clockTime;
    clockTime = {2026, 11, 15, 2, 36, 7};
    Global.Clock = [] { return clockTime; };
    // Time stands still but for a pause that the screen makes behind its Ok.
    QTimer time;
    QObject::connect(&time, &QTimer::timeout, [] {
        if (Global.Events.Entry(0).find("frmTableSelectPC:cmdOK_Click") != std::string::npos)
            clockTime.Second = 8;
    });
    time.start(0);
    GivenTemplate("Orders.pct", {ClearGroup::OrHdr});
    GivenTemplate("Customers.pct", {ClearGroup::Cust});
    auto& form = RunActivity("Orders.pct", "Customers.pct");

    Click(form, "cmdOK");

    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Process completed with no errors!"));
    EXPECT_EQ(RecordCount("ZUKOrHdr") + RecordCount("ZUKCUST"), 0);
    ASSERT_EQ(Backups(), (Names{"61115023607", "61115023608"}));
    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023607/Backup.txt").at(2), "2");
    EXPECT_EQ(EngineTest::Lines(Global.BackupPath + "61115023608/Backup.txt").at(2), "0");
}

TEST_F(ClearPC, TwoRowsNamingOneTemplateRunItTwiceAndATemplateOfAnotherKindIsNone) {
    GivenTemplate("Orders.pct", {ClearGroup::OrHdr});
    GivenTemplate("Orders.dct", {ClearGroup::OrHdr});
    auto& twice = RunActivity("Orders.pct", "Orders.pct");
    Click(twice, "cmdOK");
    EXPECT_EQ(TextOf(twice, "lblProgress"), QStringLiteral("Process completed with no errors!"));
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 2);
    Click(twice, "cmdCancel");

    auto& other = RunActivity("Orders.dct", "");
    Operator_.Expect(T("Error opening Orders.dct. Please make sure the file exists."));
    Click(other, "cmdOK");
    EXPECT_EQ(TextOf(other, "lblProgress"), QStringLiteral("Process completed with 1 error!"));
}

} // namespace
