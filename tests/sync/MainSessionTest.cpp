#include "sync/MainSession.h"

#include "core/Failure.h"
#include "core/SafeFile.h"
#include "maintenance/SafetyCopies.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"
#include "sync/SessionTest.h"

#include <filesystem>

namespace {

constexpr const char* EveryUpload = "Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n"
                                    "Print Spooler=1\r\nCustomers=1\r\nItems=1\r\n";

/// The screens behind a session: merges and totals are done for real, the rest is noted.
class FakeScreen final : public SessionScreen {
public:
    Strings Seen;
    std::function<void()> DuringMerge;
    bool MergeFails = false;

    void TellUnknownHandheld() override { Seen.push_back("unknown handheld"); }
    void TellBackupFailed() override { Seen.push_back("backup failed"); }
    void ShowBegun(const std::string& user) override { Seen.push_back("begun " + user); }
    void ShowPhase(SyncPhaseImage phase, PhaseLook look) override {
        const char* const phases[] = {"upload", "clear", "download"};
        const char* const looks[] = {" idle", " running", " queued"};
        Seen.push_back(std::string(phases[static_cast<int>(phase)]) + looks[static_cast<int>(look)]);
    }
    void ShowEnded() override { Seen.push_back("ended"); }
    void Merge() override {
        Seen.push_back("merge");
        if (DuringMerge) DuringMerge();
        if (Global.Ending) return; // the forms go before they have done anything
        const UploadRun run = Global.SessionRun;
        if (MergeFails && run.OrderHeaders) {
            Global.FailedMerges.emplace_back(MergedOrderHeaders.Source);
            return;
        }
        if (run.OrderHeaders) MergeTable(MergedOrderHeaders);
        if (run.OrderLines) MergeTable(MergedOrderLines);
        if (run.AuditHeaders) MergeTable(MergedAuditHeaders);
        if (run.AuditLines) MergeTable(MergedAuditLines);
        if (run.HHTotals) MergeTable(MergedHHTotals);
    }
    void RecordUpload() override {
        Seen.push_back(Global.UploadClosing && Global.TotalsBusy ? "record" : "record, unflagged");
        NoProgress silent;
        CalcPCTotals("UPLOAD-ADD", silent);
    }
    void GetPCTotals() override { rows_ = ::GetPCTotals(); }
    std::optional<Upload> NewestUpload() const override {
        if (rows_.empty()) return std::nullopt;
        return Upload{rows_[0].Orders, rows_[0].Lines, rows_[0].Dollars};
    }
    void RefreshRecordCounts() override { Seen.push_back("counts"); }
    void ShowHHStatus() override { Seen.push_back("status"); }

    bool Saw(const std::string& what) const {
        return std::find(Seen.begin(), Seen.end(), what) != Seen.end();
    }

private:
    static void MergeTable(const MergedTable& table) {
        NoProgress silent;
        TableMerge merge(table);
        merge.WriteText();
        merge.ReadText(silent);
    }
    std::vector<UploadRow> rows_;
};

class MainSessionTest : public SessionTest {
protected:
    MainSessionTest() : Session(Control, Screen) {
        Control.HotSyncStatus = [this](std::int32_t status) { Session.SFMain_HotSyncStatus(status); };
        Control.User = "Anna";
        Global.UnattendedActive = true;
        GivenOrdersOnPC({{"P1", {"10", "20"}}, {"P2", {"5.50"}}});
        GivenHandheld("Anna", {{"A1", {"1.25"}}, {"A2", {"2", "3"}}});
        GivenHandheld("Bea", {{"B1", {"7"}}});
    }

    void GivenUpload(const std::string& lines = EveryUpload) {
        GivenTemplate(Global.UploadTemplates, "Day.ust", lines);
        Global.UploadSelect = true;
        Global.UploadSelSettings = "Day";
    }
    void GivenClear(const std::string& lines) {
        GivenTemplate(Global.DownloadTemplates, "Night.dct", lines);
        Global.RemoteClearSelect = true;
        Global.RemoteClearSettings = "Night";
    }
    void GivenDownload(const std::string& lines) {
        GivenTemplate(Global.DownloadTemplates, "Morning.dst", lines);
        Global.RemoteSelect = true;
        Global.RemoteSelSettings = "Morning";
    }
    Strings Backups() const { return Global.TheDisk->FoldersIn(Global.BackupPath); }

    FakeScreen Screen;
    MainSession Session;
};

// ---- the states ----

TEST_F(MainSessionTest, AHandheldOfTheLinksTableBeginsASessionThatFetchesItsOwnLinksTable) {
    Control.Raise(SessionBegun);

    EXPECT_EQ(Session.SyncStage, "A>B");
    EXPECT_EQ(Session.SyncPhase, "HSStart");
    EXPECT_EQ(Session.PendingOps, 1);
    EXPECT_EQ(Global.HSUserName, "Anna");
    EXPECT_EQ(Global.HHUserDir, AddBackslash(Global.HHTotalsPath + "Anna"));
    EXPECT_TRUE(std::filesystem::is_directory(Global.HHUserDir));
    EXPECT_EQ(Session.LinkTablePath, Global.HHUserDir + "ZUKLINK.DBF");
    EXPECT_EQ(Session.LastQueuedTable, Session.LinkTablePath);
    EXPECT_EQ(Queue(), Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF"});
    EXPECT_EQ(Screen.Seen, Strings{"begun Anna"});
}

TEST_F(MainSessionTest, SixTablesAreCopiedBeforeAnythingIsQueued) {
    Control.Raise(SessionBegun);

    EXPECT_EQ(Copies(), (Strings{"ZUKAudHH.dap", "ZUKAudtH.dap", "ZUKAudtL.dap", "ZUKBarIn.dap",
                                 "ZUKOrHdr.dap", "ZUKOrLin.dap"}));
    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKOrHdr.dap"), Bytes(Global.DBFPath + "ZUKOrHdr.dbf"));
}

TEST_F(MainSessionTest, TheSessionCountsFromWhatThePCHoldsAndKnowsItsUser) {
    Global.HHLastOrder = "old";

    Control.Raise(SessionBegun);

    EXPECT_EQ(Global.OldOrderCount, 2);
    EXPECT_EQ(Global.OldLineCount, 3);
    EXPECT_EQ(Global.OldLineTotal, 35.5);
    EXPECT_EQ(Global.CurrentHotSyncID, "Anna");
    EXPECT_EQ(Global.HHLastOrder, "");
}

TEST_F(MainSessionTest, AnUnknownHandheldIsToldOnceAndTurnsTheModeOff) {
    Session.SyncStage = "End";
    Control.Session("Zoe");
    Control.Session("Anna");

    EXPECT_EQ(Screen.Seen, Strings{"unknown handheld"});
    EXPECT_EQ(Session.SyncStage, "End");
    EXPECT_FALSE(Global.UnattendedActive);
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Copies().empty());
    EXPECT_FALSE(Exists(Global.HHTotalsPath + "Zoe"));
}

TEST_F(MainSessionTest, AnUnknownHandheldQueuesNothingOfASessionThatNeverEnded) {
    GivenUpload();
    Control.Raise(SessionBegun);
    Control.Move();
    Session.PendingOps = 0;

    Control.User = "Zoe";
    Control.Raise(SessionBegun);

    EXPECT_EQ(Session.SyncStage, "A>B");
    EXPECT_TRUE(Control.Queued.empty());
}

TEST_F(MainSessionTest, NothingFollowsWhileTheLinksTableIsOnItsWay) {
    GivenUpload();
    Control.Raise(SessionBegun);

    Control.Raise(99);

    EXPECT_EQ(Session.SyncStage, "A>B");
    EXPECT_EQ(Control.Queued.size(), 1U);
}

TEST_F(MainSessionTest, AFinishedLinksTableBringsAllThreePhasesAtOnce) {
    GivenUpload("Orders=1\r\n");
    GivenClear("Order Tables=1\r\n");
    GivenDownload("Customers=1\r\n");
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_EQ(Session.SyncStage, "C>D");
    EXPECT_EQ(Session.SyncPhase, "HSDownload");
    EXPECT_EQ(Queue(), (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "UPLOAD DBFFiles/ZUKORHDR.DBF",
                                "UPLOAD DBFFiles/ZUKORLIN.DBF", "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf",
                                "DOWNLOAD DBFEmpty/ZUKORHDR.DBF", "DOWNLOAD DBFEmpty/ZUKORLIN.DBF",
                                "DOWNLOAD DBFFiles/ZUKCUST.DBF"}));
    EXPECT_EQ(Session.PendingOps, 6);
    EXPECT_EQ(Session.LastQueuedTable, Global.DBFPath + "ZUKCUST.DBF");
    EXPECT_EQ(Screen.Seen, (Strings{"begun Anna", "upload running", "upload queued", "clear running",
                                    "clear queued", "download running", "download queued"}));
}

TEST_F(MainSessionTest, AStatusOfAnotherNumberGoesOnWhereNothingIsPending) {
    GivenUpload();
    Control.Raise(SessionBegun);
    Session.PendingOps = 0;

    Control.Raise(7);

    EXPECT_EQ(Session.SyncStage, "C>D");
    EXPECT_GT(Control.Queued.size(), 1U);
}

TEST_F(MainSessionTest, AfterThePhasesStatusesAreCountedOnlyAndTheCounterMayGoBelowZero) {
    GivenUpload("Orders=1\r\n");
    Control.Raise(SessionBegun);
    while (Control.RunNext()) {
    }
    const Strings queued = Control.Queued;

    for (int i = 0; i < 3; ++i) Control.Raise(OperationFinished);
    Control.Raise(8);

    EXPECT_EQ(Session.SyncStage, "C>D");
    EXPECT_EQ(Session.PendingOps, -3);
    EXPECT_EQ(Control.Queued, queued);
}

TEST_F(MainSessionTest, StatusTwoEndsASessionFromEveryStage) {
    GivenUpload();
    for (const char* stage : {"", "A>B", "B>C", "C>D", "End"}) {
        Control.Raise(SessionBegun);
        Session.SyncStage = stage;

        Control.Raise(SessionEnded);

        EXPECT_EQ(Session.SyncStage, "End") << stage;
        EXPECT_EQ(Session.SyncPhase, "HSEnd");
        EXPECT_EQ(Session.PendingOps, 0);
        EXPECT_FALSE(Session.SessionClosing);
    }
}

TEST_F(MainSessionTest, BehindTheEndStatusesAreCountedAndNoMore) {
    GivenUpload();
    Control.Session("Anna");
    const Strings seen = Screen.Seen;
    const Strings queued = Control.Queued;

    Control.Raise(OperationFinished);
    Control.Raise(5);

    EXPECT_EQ(Session.SyncStage, "End");
    EXPECT_EQ(Session.PendingOps, -1);
    EXPECT_EQ(Screen.Seen, seen);
    EXPECT_EQ(Control.Queued, queued);
}

TEST_F(MainSessionTest, StatusOneBeginsAnewFromEveryStage) {
    for (const char* stage : {"A>B", "B>C", "C>D", "End"}) {
        Session.SyncStage = stage;
        Session.PendingOps = 5;

        Control.Raise(SessionBegun);

        EXPECT_EQ(Session.SyncStage, "A>B") << stage;
        EXPECT_EQ(Session.PendingOps, 1);
        EXPECT_EQ(Control.Queued.size(), 1U);
    }
}

TEST_F(MainSessionTest, ABackupThatFailsIsToldAndTheNextStatusTriesThePhasesAgain) {
    GivenUpload("Orders=1\r\n");
    const std::string audits = Global.DBFPath + "ZUKAudTL.dbf";
    Control.Raise(SessionBegun);
    std::filesystem::rename(audits, audits + ".away");

    Control.RunNext();

    EXPECT_EQ(Session.SyncStage, "B>C");
    EXPECT_TRUE(Screen.Saw("backup failed"));
    EXPECT_FALSE(Screen.Saw("upload queued"));
    EXPECT_EQ(Control.Queued.size(), 1U);

    std::filesystem::rename(audits + ".away", audits);
    Control.Raise(OperationFinished);

    EXPECT_EQ(Session.SyncStage, "C>D");
    EXPECT_EQ(Control.Queued.size(), 4U);
    EXPECT_EQ(Backups().size(), 1U);
}

TEST_F(MainSessionTest, ASessionWhoseBackupFailedIsBadAndLeavesThePCAsItWas) {
    GivenUpload("Orders=1\r\n");
    Global.BackupPath = Global.IniFile + "/no folder/";
    GivenFile("app/ZUKTramble.ini", "a file");

    Control.Session("Anna");

    EXPECT_EQ(StatusOf(1), "B");
    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
}

// ---- who is answered ----

TEST_F(MainSessionTest, NothingHappensWhileTheModeIsOff) {
    Global.UnattendedActive = false;
    Control.Session("Anna");
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Screen.Seen.empty());
    EXPECT_EQ(Session.PendingOps, 0);
}

TEST_F(MainSessionTest, AHandheldOfAnotherApplicationLeavesNoTrace) {
    Control.Creator = 0x6D61696C;
    Control.Session("Zoe");
    EXPECT_TRUE(Screen.Seen.empty());
    EXPECT_EQ(Global.HSUserName, "");
    EXPECT_TRUE(Global.UnattendedActive);
}

TEST_F(MainSessionTest, AFinishedTransferBeforeAnySessionIsCountedAndNothingFollows) {
    GivenUpload();
    Control.Raise(OperationFinished);
    EXPECT_EQ(Session.PendingOps, -1);
    EXPECT_EQ(Session.SyncStage, "");
    EXPECT_TRUE(Control.Queued.empty());
}

TEST_F(MainSessionTest, AnIdThatDiffersInCaseOnlyIsAccepted) {
    Handhelds["ANNA"] = Handhelds["Anna"];
    Control.Session("ANNA");
    EXPECT_EQ(LinkOnPC(1)[1], "S-Anna");
    EXPECT_EQ(StatusOf(1), "G");
}

TEST_F(MainSessionTest, AUserWhoseNameIsNoFolderNameCountsAsUnknownAndReachesNoFolder) {
    for (const std::string user : {"..", ".", "a/b", "a\\b", "", "C:"}) {
        GivenTable(Global.DBFPath, "ZUKLINK", {Link(user, "PC")});
        Global.UnattendedActive = true;
        Screen.Seen.clear();

        Control.Session(user);

        EXPECT_EQ(Screen.Seen, Strings{"unknown handheld"}) << user;
        EXPECT_FALSE(Global.UnattendedActive);
    }
    EXPECT_TRUE(Global.TheDisk->FoldersIn(Global.HHTotalsPath).empty());
    EXPECT_FALSE(Exists(Global.DBFPath + "ZUKLINK.DBF/ZUKLINK.DBF"));
}

TEST_F(MainSessionTest, AUserWhoseNameGoesBadInTheMiddleKeepsTheDirectoryOfTheStart) {
    GivenUpload("Orders=1\r\n");
    Control.Raise(SessionBegun);
    Control.User = "../../Zoe";

    Control.RunNext();

    EXPECT_EQ(Global.HSUserName, "Anna");
    EXPECT_EQ(Queue().back(), "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf");
}

TEST_F(MainSessionTest, TheInstallerOwnsItsSessions) {
    Global.HHInstallActive = true;
    GivenUpload();

    Control.Raise(SessionBegun);
    Control.Raise(OperationFinished);

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Copies().empty());
    Control.Raise(SessionEnded);
    EXPECT_FALSE(Global.HHInstallActive);
    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
}

// ---- the upload ----

TEST_F(MainSessionTest, UploadedOrdersStandBeforeThoseThatThePCHeld) {
    GivenUpload();

    Control.Session("Anna");

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(Column("ZUKOrLin"), (Strings{"A1", "A2", "A2", "P1", "P1", "P2"}));
    EXPECT_EQ(Column("ZUKAudTH"), Strings{"DAnna"});
    EXPECT_EQ(StatusOf(1), "G");
    EXPECT_TRUE(Copies().empty());
    EXPECT_EQ(Screen.Seen, (Strings{"begun Anna", "upload running", "upload queued", "merge", "record",
                                    "ended", "counts", "status"}));
}

TEST_F(MainSessionTest, TheTotalsEventIsOfThisHandheldAndCountsWhatItBrought) {
    GivenUpload();

    Control.Session("Anna");

    const Strings event = TableAt(Global.DBFPath + "ZUKTOTALPC.dbf").Trimmed(1);
    EXPECT_EQ(Strings(event.begin(), event.begin() + 8),
              (Strings{"2", "3", "6.25", "4", "6", "41.75", "An", "UPLOAD-ADD"}));
    EXPECT_EQ(event[9], "Anna");
    EXPECT_EQ(event[10], "An77");
    EXPECT_EQ(Global.CurrentHotSyncID, "");
    EXPECT_EQ(Global.HHLastOrder, "");
    EXPECT_EQ(Global.OldOrderCount, 0);
    EXPECT_FALSE(Global.UploadClosing);
    EXPECT_FALSE(Global.TotalsBusy);
    EXPECT_EQ(Global.LastSyncedUser, "Anna");
}

TEST_F(MainSessionTest, EachLineOfAnUploadTemplateQueuesItsTablesInTheOrderOfTheLines) {
    GivenUpload("Items=1\r\nCustomers=1\r\nPrint Spooler=1\r\nHandheld Totals=1\r\nAudits=1\r\nOrders=1\r\n");
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_EQ(Queue(),
              (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "UPLOAD DBFFiles/ZUKITEM.DBF",
                       "UPLOAD DBFFiles/ZUKCUST.DBF", "UPLOAD DBFFiles/ZUKPRN.DBF",
                       "UPLOAD DBFFiles/ZUKAUDHH.DBF", "UPLOAD DBFFiles/ZUKAUDTH.DBF",
                       "UPLOAD DBFFiles/ZUKAUDTL.DBF", "UPLOAD DBFFiles/ZUKORHDR.DBF",
                       "UPLOAD DBFFiles/ZUKORLIN.DBF", "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf"}));
    EXPECT_EQ(Session.Label1 + Session.Label2 + Session.Label3, "YYY");
    EXPECT_EQ(Session.PendingOps, 9);
}

TEST_F(MainSessionTest, ATemplateWithEveryLineOffStillBacksUpAndFetchesTheTotalsAlone) {
    GivenUpload("Orders=0\r\nAudits=0\r\n");
    GivenHandheld("Anna", {});
    Handhelds["Anna"]["ZUKORHDR"] = Headers({{"A1", {}}});
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_EQ(Backups().size(), 1U);
    EXPECT_TRUE(Global.BackupOrders && Global.BackupAudits);
    EXPECT_FALSE(Global.BackupHHTotals || Global.BackupCustomers || Global.BackupItems);
    EXPECT_EQ(Queue().back(), "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf");
    EXPECT_EQ(Control.Queued.size(), 2U);
    EXPECT_EQ(Session.Label1 + Session.Label2 + Session.Label3, "");
    Control.RunNext();
    Control.Raise(SessionEnded);
    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
    EXPECT_EQ(StatusOf(1), "G");
}

TEST_F(MainSessionTest, ATemplateThatNamesNoTableMakesNoBackup) {
    GivenUpload("Print Spooler=1\r\nsomething else\r\n");
    Control.Session("Anna");
    EXPECT_TRUE(Backups().empty());
    EXPECT_EQ(Control.Queued.size(), 3U);
}

TEST_F(MainSessionTest, TheBackupGoesByTheBeginningOfALineAndTheUploadByTheWholeName) {
    GivenUpload("ORDERS of the day=1\r\naudits=1 \r\nHandheld Totals=11\r\n Customers=1\r\nItems=2\r\nPrint "
                "Spooler\r\n");
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_TRUE(Global.BackupOrders && Global.BackupAudits && Global.BackupHHTotals && Global.BackupItems);
    EXPECT_FALSE(Global.BackupCustomers);
    EXPECT_EQ(Queue(), (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "UPLOAD DBFFiles/ZUKAUDTH.DBF",
                                "UPLOAD DBFFiles/ZUKAUDTL.DBF", "UPLOAD DBFFiles/ZUKAUDHH.DBF",
                                "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf"}));
}

TEST_F(MainSessionTest, ATableThatThePCDoesNotHaveIsNotFetched) {
    GivenUpload("Print Spooler=1\r\nCustomers=1\r\n");
    std::filesystem::remove(Global.DBFPath + "ZUKPRN.dbf");
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_EQ(Queue()[1], "UPLOAD DBFFiles/ZUKCUST.DBF");
    EXPECT_EQ(Session.PendingOps, 2);
}

TEST_F(MainSessionTest, BackupFlagsOfOneTemplateSurviveForTheNextHandheld) {
    GivenUpload("Orders=1\r\nCustomers=0\r\n");
    Control.Session("Anna");

    GivenUpload("Audits=1\r\n");
    Control.Session("Bea");

    EXPECT_TRUE(Global.BackupOrders && Global.BackupAudits && Global.BackupCustomers);
}

TEST_F(MainSessionTest, AnUploadThatIsNeitherOnNorOffFetchesAFixedListAndCountsSixOfNine) {
    Global.UploadSelect = Selection(std::int16_t{3});
    Control.Raise(SessionBegun);

    Control.RunNext();

    EXPECT_EQ(Queue(),
              (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "UPLOAD DBFFiles/ZUKOrHdr.dbf",
                       "UPLOAD DBFFiles/ZUKOrLin.dbf", "UPLOAD DBFFiles/ZUKAudTH.dbf",
                       "UPLOAD DBFFiles/ZUKAudTL.dbf", "UPLOAD DBFFiles/ZUKAudHH.dbf",
                       "UPLOAD DBFFiles/ZUKPRN.dbf", "UPLOAD DBFFiles/ZUKCUST.dbf",
                       "UPLOAD DBFFiles/ZUKITEM.dbf", "UPLOAD DBFFiles/HHTotals/Anna/ZUKAudHH.dbf"}));
    EXPECT_EQ(Session.PendingOps, 6);
    EXPECT_TRUE(Backups().empty());

    while (Control.RunNext()) {
    }
    EXPECT_EQ(Session.PendingOps, -3);
    Control.Raise(SessionEnded);
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(StatusOf(1), "G");
}

TEST_F(MainSessionTest, ATemplateThatIsNotThereIsAFailureAndTheNextSessionBeginsAnew) {
    Global.UploadSelect = true;
    Global.UploadSelSettings = "None";
    Control.Raise(SessionBegun);
    EXPECT_EQ(FailureOf([this] { Control.RunNext(); }).Number, 53);
    EXPECT_EQ(Session.SyncStage, "B>C");

    Global.UploadSelSettings = "../Day";
    EXPECT_EQ(FailureOf([this] { Control.Raise(9); }).Number, 52);

    GivenUpload();
    Control.Session("Anna");
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
}

// ---- clearing and downloading ----

TEST_F(MainSessionTest, AClearSendsTheEmptyTwinsInTheOrderOfTheTemplatesLines) {
    GivenClear("Handheld Totals=1\r\nAudit Tables=1\r\nOrder Tables=0\r\n");
    std::filesystem::remove(Global.DBFEmptyPath + "ZUKAudTL.dbf");

    Control.Session("Anna");

    EXPECT_EQ(Queue(), (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "DOWNLOAD DBFEmpty/ZUKAUDHH.DBF",
                                "DOWNLOAD DBFEmpty/ZUKAUDTH.DBF"}));
    EXPECT_TRUE(Handhelds["Anna"]["ZUKAUDHH"].empty());
    EXPECT_EQ(Handhelds["Anna"]["ZUKORHDR"].size(), 2U);
}

TEST_F(MainSessionTest, ADownloadGoesInTheOrderOfTheTemplatesLinesAndTestsForNoFile) {
    GivenDownload("Items=1\r\n  setup tables=1  \r\nCustomers=1\r\n");
    std::filesystem::remove(Global.DBFPath + "ZUKItem.dbf");

    Control.Session("Anna");

    EXPECT_EQ(Queue(), (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "DOWNLOAD DBFFiles/ZUKITEM.DBF",
                                "DOWNLOAD DBFFiles/ZUKBARIN.DBF", "DOWNLOAD DBFFiles/ZUKSETUP.DBF",
                                "DOWNLOAD DBFFiles/ZUKCOMP.DBF", "DOWNLOAD DBFFiles/ZUKHELP.DBF",
                                "DOWNLOAD DBFFiles/ZUKPRINT.DBF", "DOWNLOAD DBFFiles/ZUKSTAX.DBF",
                                "DOWNLOAD DBFFiles/ZUKPAY.DBF", "DOWNLOAD DBFFiles/ZUKLINK.DBF",
                                "DOWNLOAD DBFFiles/ZUKCUST.DBF"}));
}

TEST_F(MainSessionTest, TheLinksTableTravelsWithTheOrderNumberThatTheHandheldHasJustTold) {
    GivenDownload("Setup Tables=1\r\n");

    Control.Session("Anna");

    ASSERT_FALSE(Handhelds["Anna"]["ZUKLINK"].empty());
    EXPECT_EQ(Trim(Handhelds["Anna"]["ZUKLINK"][0][3]), "77");
}

TEST_F(MainSessionTest, ADownloadThatIsNeitherOnNorOffHasItsPhaseAndQueuesNothing) {
    Global.RemoteSelect = Selection(std::int16_t{2});
    Control.Session("Anna");
    EXPECT_EQ(Control.Queued.size(), 1U);
    EXPECT_TRUE(Screen.Saw("download queued"));
}

TEST_F(MainSessionTest, WithNoPhaseASessionStillBringsTheLinksRowUpToDateAndIsGood) {
    Control.Session("Anna");

    EXPECT_EQ(LinkOnPC(1), Link("Anna", "Anna", "77"));
    EXPECT_TRUE(Exists(ResolvePath(Global.HHUserDir + "ZUKLINK.DBF")));
    EXPECT_EQ(StatusOf(1), "G");
    EXPECT_EQ(Screen.Seen, (Strings{"begun Anna", "ended", "counts", "status"}));
    EXPECT_EQ(TableAt(Global.DBFPath + "ZUKTOTALPC.dbf").Count, 0);
}

TEST_F(MainSessionTest, ASessionWithoutAnUploadIsGoodWhateverBecameOfIt) {
    GivenDownload("Customers=1\r\n");
    Fails = {"ZUKCUST", "ZUKLINK"};
    Control.Session("Anna");
    EXPECT_EQ(StatusOf(1), "G");
}

// ---- the Links row ----

TEST_F(MainSessionTest, AHandheldThatItsOwnLinksTableDoesNotNameTakesTheValuesOfTheOneBefore) {
    Handhelds["Bea"]["ZUKLINK"] = {Link("Somebody", "Somebody")};
    Control.Session("Anna");

    Control.Session("Bea");

    EXPECT_EQ(LinkOnPC(2), Link("Bea", "Anna", "77"));
    EXPECT_NE(Receipt("Bea").find("took the values of the handheld before it"), std::string::npos);
}

TEST_F(MainSessionTest, AHandheldWithoutAnyLinksTableFailsNothing) {
    Handhelds["Anna"].erase("ZUKLINK");
    Control.Session("Anna");
    EXPECT_EQ(StatusOf(1), "G");
    EXPECT_EQ(LinkOnPC(1)[0], "Anna");
}

TEST_F(MainSessionTest, ALinksTableOfRubbishFromTheHandheldFailsNothing) {
    GivenUpload();
    Control.Raise(SessionBegun);
    while (Control.RunNext()) {
    }
    GivenFile("app/DBFFiles/HHTotals/Anna/ZUKLINK.dbf", "no table at all");

    Control.Raise(SessionEnded);

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
}

TEST_F(MainSessionTest, AMachineIdWithoutAnOrderNumberBlanksTheOldNumber) {
    Handhelds["Anna"]["ZUKLINK"] = {Link("Anna", "Anna", "")};
    Control.Session("Anna");
    EXPECT_EQ(LinkOnPC(1)[3], "");

    Handhelds["Bea"]["ZUKLINK"] = {RowOf("ZUKLINK", {{"LK_HOTSYNC", "Bea"}, {"LK_LSTONUM", "9"}})};
    Control.Session("Bea");
    EXPECT_EQ(LinkOnPC(2), RowOf("ZUKLINK", {{"LK_HOTSYNC", "Bea"}, {"LK_LSTONUM", "1"}}));
}

TEST_F(MainSessionTest, ALinksTableOfThePCThatHasGoneKeepsNoOrdersFromTheMerge) {
    GivenUpload();
    Control.Raise(SessionBegun);
    while (Control.RunNext()) {
    }
    GivenFile("app/DBFFiles/ZUKLINK.dbf", "torn");
    Global.CurrentHotSyncID.clear();

    Control.Raise(SessionEnded);

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_NE(Receipt("Anna").find("The Links table could not be brought up to date:"), std::string::npos);
}

// ---- several handhelds, and sessions that break ----

TEST_F(MainSessionTest, TwoHandheldsInTurnFollowEachOther) {
    GivenUpload();
    Control.Session("Anna");
    ++Moment.Second;

    Control.Session("Bea");

    EXPECT_EQ(OrdersOnPC(), (Strings{"B1", "A1", "A2", "P1", "P2"}));
    EXPECT_EQ(Global.HHUserDir, AddBackslash(Global.HHTotalsPath + "Bea"));
    EXPECT_EQ(LinkOnPC(1), Link("Anna", "Anna", "77"));
    EXPECT_EQ(LinkOnPC(2), Link("Bea", "Bea", "77"));
    EXPECT_EQ(StatusOf(1) + StatusOf(2) + StatusOf(3), "GG");
    EXPECT_EQ(Global.LastSyncedUser, "Bea");
}

TEST_F(MainSessionTest, AnUnknownHandheldBetweenTwoOthersStopsTheModeUntilItIsStartedAgain) {
    GivenUpload();
    Control.Session("Anna");
    Control.Session("Zoe");
    Control.Session("Bea");
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));

    Global.UnattendedActive = true;
    ++Moment.Second;
    Control.Session("Bea");

    EXPECT_EQ(OrdersOnPC(), (Strings{"B1", "A1", "A2", "P1", "P2"}));
    EXPECT_EQ(StatusOf(2), "G");
}

TEST_F(MainSessionTest, ASessionThatIsCutAtAnyPlaceKeepsEveryOrderOfThePC) {
    GivenUpload("Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n");
    for (int transfers = 0; transfers <= 7; ++transfers) {
        GivenOrdersOnPC({{"P1", {"10", "20"}}, {"P2", {"5.50"}}});
        GivenTable(Global.DBFPath, "ZUKAudHH", {{"5"}});
        ++Moment.Second;

        Control.Session("Anna", transfers);

        const Strings headers = transfers > 1 ? Strings{"A1", "A2", "P1", "P2"} : Strings{"P1", "P2"};
        const Strings lines =
            transfers > 2 ? Strings{"A1", "A2", "A2", "P1", "P1", "P2"} : Strings{"P1", "P1", "P2"};
        EXPECT_EQ(OrdersOnPC(), headers) << transfers;
        EXPECT_EQ(Column("ZUKOrLin"), lines) << transfers;
        EXPECT_EQ(Column("ZUKAudHH").back(), "5") << transfers;
        EXPECT_EQ(StatusOf(1), transfers > 6 ? "G" : "B") << transfers;
        EXPECT_TRUE(Copies().empty());
        EXPECT_EQ(Receipt("Anna").find("BALANCED") != std::string::npos, transfers > 6) << Receipt("Anna");
    }
}

TEST_F(MainSessionTest, ATableWhoseTransferFailedIsNotMerged) {
    GivenUpload();
    Fails = {"ZUKORLIN", "ZUKAUDTH"};

    Control.Session("Anna");

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(Column("ZUKOrLin"), (Strings{"P1", "P1", "P2"}));
    EXPECT_TRUE(Column("ZUKAudTH").empty());
    EXPECT_EQ(StatusOf(1), "B");
}

TEST_F(MainSessionTest, ATableThatWasReplacedBeforeTheManagerDiedIsMergedThoughNothingSaysThatItCame) {
    GivenUpload("Orders=1\r\n");
    Control.Raise(SessionBegun);
    Control.RunNext();
    Control.Move();
    Control.Tells = false;

    Control.Raise(SessionEnded);

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(Column("ZUKOrLin"), (Strings{"P1", "P1", "P2"}));
}

TEST_F(MainSessionTest, TheSameHandheldTwiceWithoutAClearDoublesItsOrdersAndTheReceiptNamesThem) {
    GivenUpload();
    Control.Session("Anna");
    ++Moment.Second;

    Control.Session("Anna");

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "A1", "A2", "P1", "P2"}));
    EXPECT_EQ(StatusOf(1), "G");
    EXPECT_NE(Receipt("Anna").find("came again unchanged:\r\n  A1, A2\r\n"), std::string::npos)
        << Receipt("Anna");
}

TEST_F(MainSessionTest, TablesThatComeWithTheSameBytesHaveArrivedAllTheSame) {
    GivenUpload("Orders=1\r\n");
    GivenOrdersOnPC({{"A1", {"1.25"}}, {"A2", {"2", "3"}}});

    Control.Session("Anna");

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "A1", "A2"}));
}

TEST_F(MainSessionTest, ASessionWhoseEndNeverCameGivesItsOldRecordsBackAtTheNextStart) {
    GivenUpload();
    Control.Raise(SessionBegun);
    while (Control.RunNext()) {
    }
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2"}));

    ++Moment.Second;
    Control.Session("Bea");

    EXPECT_EQ(OrdersOnPC(), (Strings{"B1", "A1", "A2", "P1", "P2"}));
}

TEST_F(MainSessionTest, AnEndWithoutABeginningCountsNothingAsUploaded) {
    GivenUpload();
    Control.User = "Anna";

    Control.Raise(SessionEnded);

    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
    const Strings event = TableAt(Global.DBFPath + "ZUKTOTALPC.dbf").Trimmed(1);
    EXPECT_EQ(Strings(event.begin(), event.begin() + 3), (Strings{"0", "0", "0"}));
}

TEST_F(MainSessionTest, StatusesThatComeWhileTheMergeStandsAreCountedAndNoMore) {
    GivenUpload();
    Screen.DuringMerge = [this] {
        for (const std::int32_t status : {3, 1, 2, 9}) Session.SFMain_HotSyncStatus(status);
        EXPECT_TRUE(Session.SessionClosing);
        EXPECT_EQ(Session.SyncStage, "End");
    };

    Control.Session("Anna");

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_FALSE(Session.SessionClosing);
}

TEST_F(MainSessionTest, AMergeThatFailedKeepsTheOldRecordsForTheNextSession) {
    GivenUpload("Orders=1\r\n");
    Screen.MergeFails = true;
    Control.Session("Anna");
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2"}));
    EXPECT_EQ(Copies(), Strings{"ZUKOrHdr.dap"});
    EXPECT_NE(Receipt("Anna").find("The safety copies (*.dap) stay."), std::string::npos);
    EXPECT_EQ(ReceiptLine("Anna", "OUT BY"), "OUT BY 2 orders, 3 lines, 35.50 - what the PC held before and "
                                             "what arrived, less what it holds now.");

    Screen.MergeFails = false;
    ++Moment.Second;
    Control.Session("Bea");

    EXPECT_EQ(OrdersOnPC(), (Strings{"B1", "A1", "A2", "P1", "P2"}));
}

TEST_F(MainSessionTest, AProgramThatEndsInTheMergePutsTheOldRecordsBackAtItsNextStart) {
    GivenUpload();
    Screen.DuringMerge = [] { Global.Ending = true; };
    Control.Session("Anna");
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2"}));
    EXPECT_FALSE(Screen.Saw("record"));

    Global.Ending = false;
    EXPECT_EQ(RecoverSafetyCopies().size(), 2U);

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
}

TEST_F(MainSessionTest, AMarkThatCannotBeRemovedEndsNeitherTheSessionNorTheProgram) {
    GivenUpload();
    KeepingDisk disk("SafetyCopies.txt");
    Global.TheDisk = &disk;

    Control.Session("Anna");

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(Screen.Saw("record"));
    EXPECT_TRUE(Screen.Saw("ended"));
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(Copies(), Strings{});
}

TEST_F(MainSessionTest, AMergeThatThrowsLeavesTheFormReadyForTheNextSession) {
    GivenUpload();
    Screen.DuringMerge = [] { throw RunTimeFailure(61); };
    EXPECT_EQ(FailureOf([this] { Control.Session("Anna"); }).Number, 61);
    EXPECT_FALSE(Session.SessionClosing);

    Screen.DuringMerge = nullptr;
    ++Moment.Second;
    Control.Session("Bea");

    EXPECT_EQ(OrdersOnPC(), (Strings{"B1", "A1", "A2", "P1", "P2"}));
}

// ---- the letter ----

TEST_F(MainSessionTest, TotalsThatDifferFromWhatArrivedMakeASessionBad) {
    GivenUpload();
    Handhelds["Anna"]["ZUKAUDHH"] = {{"2", "3", "6.24"}};
    Control.Session("Anna");
    EXPECT_EQ(StatusOf(1), "B");
    EXPECT_EQ(ReceiptLine("Anna", "OUT BY"),
              "OUT BY 0 orders, 0 lines, -0.01 - what the handheld states, less what arrived.");
}

TEST_F(MainSessionTest, AHandheldWithoutTotalsIsBadAndBalancesNothing) {
    GivenUpload("Orders=1\r\n");
    for (const bool empty : {true, false}) {
        if (empty)
            Handhelds["Anna"]["ZUKAUDHH"].clear();
        else
            Handhelds["Anna"].erase("ZUKAUDHH");
        ++Moment.Second;

        Control.Session("Anna");

        EXPECT_EQ(StatusOf(1), "B");
        EXPECT_EQ(ReceiptLine("Anna", "NOT COMPARED"), "NOT COMPARED: the handheld's totals did not come.");
    }
}

TEST_F(MainSessionTest, TotalsOfAnEarlierSessionDoNotMakeThisOneGood) {
    GivenUpload("Orders=1\r\n");
    GivenHandheld("Anna", {});
    Control.Session("Anna");
    EXPECT_EQ(StatusOf(1), "G");

    GivenHandheld("Anna", {{"A1", {"1"}}});
    ++Moment.Second;
    Control.Session("Anna", 0);

    EXPECT_EQ(StatusOf(1), "B");
}

TEST_F(MainSessionTest, AHandheldThatIsNotInTheStatusListChangesNoLetter) {
    Global.HHSyncID = {"", "Bea", "bea"};
    Global.HHStatus = {"", "", ""};
    Global.HHCount = 2;
    Control.Session("Anna");
    EXPECT_EQ(StatusOf(1) + StatusOf(2), "");

    Control.Session("BEA");
    EXPECT_EQ(StatusOf(1) + "," + StatusOf(2), "G,");
}

} // namespace
