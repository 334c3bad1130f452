#include "sync/UploadSession.h"

#include "maintenance/Backup.h"
#include "sync/SessionTest.h"

namespace {

/// An upload from the screen: the form's own steps around the session are played here.
class UploadSessionTest : public SessionTest {
protected:
    UploadSessionTest() : Session(Control) {
        Control.HotSyncStatus = [this](std::int32_t status) { Session.SFUpload_HotSyncStatus(status); };
        Session.ShowStatus = [this] { ++StatusShown; };
        Control.User = "Anna";
        GivenOrdersOnPC({{"P1", {"10", "20"}}, {"P2", {"5.50"}}});
        GivenHandheld("Anna", {{"A1", {"1.25"}}, {"A2", {"2", "3"}}});
    }

    /// A HotSync of Anna's handheld that breaks after so many transfers, then what the form does: merge what
    /// a whole session with orders has brought, write the receipt, delete the copies.
    void Upload(int transfers = 1000) {
        MakeBackup("UPLOAD-ADD");
        MakeSafetyCopies(SafetyCopies::OfUploadScreen);
        Session.SyncDone = false;
        Global.ManualUploadActive = true;
        Control.Session("Anna", transfers);
        Global.ManualUploadActive = false;
        if (!Session.SyncRunning && Session.SyncDone && Session.Chosen.Orders) {
            Session.TakeArrived();
            Merge(Global.UploadScreenRun);
        }
        Session.WriteReceipt();
        DeleteSafetyCopies(SafetyCopies::OfUploadScreen);
    }
    static void Merge(const UploadRun& run) {
        const auto merge = [](bool wanted, const MergedTable& table) {
            NoProgress silent;
            TableMerge step(table);
            if (wanted) step.WriteText();
            if (wanted) step.ReadText(silent);
        };
        merge(run.OrderHeaders, MergedOrderHeaders);
        merge(run.OrderLines, MergedOrderLines);
        merge(run.AuditHeaders, MergedAuditHeaders);
        merge(run.AuditLines, MergedAuditLines);
        merge(run.HHTotals, MergedHHTotals);
    }

    UploadSession Session;
    int StatusShown = 0;
};

TEST_F(UploadSessionTest, NothingIsAnsweredUnlessTheScreenWaits) {
    Control.Session("Anna");
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Global.HSUserName, "");
}

TEST_F(UploadSessionTest, AnyHandheldIsAnsweredWhateverItsApplicationAndItsRow) {
    Control.Creator = 1;
    Global.ManualUploadActive = true;
    Control.User = "Zoe";

    Control.Raise(SessionBegun);

    EXPECT_EQ(Queue(), Strings{"UPLOAD DBFFiles/HHTotals/Zoe/ZUKLINK.DBF"});
    EXPECT_EQ(Session.SyncStage, "A>B");
    EXPECT_EQ(Session.PendingOps, 1);
    EXPECT_FALSE(Session.SyncRunning);
    EXPECT_EQ(Global.LastSyncedUser, "Zoe");
    EXPECT_EQ(Global.CurrentHotSyncID, "Zoe");
}

TEST_F(UploadSessionTest, TheLinksRowIsDoneInTheMiddleAndThenTheTickedTablesAreQueued) {
    Session.Chosen = {true, true, true, true, true, true};
    Global.ManualUploadActive = true;
    Control.Raise(SessionBegun);
    Control.Raise(9);
    EXPECT_EQ(Session.SyncStage, "A>B");

    Control.RunNext();

    EXPECT_EQ(LinkOnPC(1), Link("Anna", "Anna", "77"));
    EXPECT_EQ(Global.HHLastOrder, "An77");
    EXPECT_EQ(Session.SyncStage, "C>D");
    EXPECT_TRUE(Session.SyncRunning);
    EXPECT_EQ(Session.PendingOps, 8);
    EXPECT_EQ(Queue(), (Strings{"UPLOAD DBFFiles/HHTotals/Anna/ZUKLINK.DBF", "UPLOAD DBFFiles/ZUKOrHdr.dbf",
                                "UPLOAD DBFFiles/ZUKOrLin.dbf", "UPLOAD DBFFiles/ZUKAudTH.dbf",
                                "UPLOAD DBFFiles/ZUKAudTL.dbf", "UPLOAD DBFFiles/ZUKAudHH.dbf",
                                "UPLOAD DBFFiles/ZUKPRN.dbf", "UPLOAD DBFFiles/ZUKCUST.dbf",
                                "UPLOAD DBFFiles/ZUKITEM.dbf"}));

    while (Control.RunNext()) {
    }
    EXPECT_EQ(Session.SyncStage, "end");
    EXPECT_FALSE(Session.SyncRunning);
    EXPECT_TRUE(Session.SyncDone);
    EXPECT_EQ(StatusOf(1), "G");
    EXPECT_EQ(StatusShown, 1);
}

TEST_F(UploadSessionTest, AHandheldThatItsOwnLinksTableDoesNotNameLeavesThePCsRowAsItIs) {
    Handhelds["Anna"]["ZUKLINK"] = {Link("Somebody", "Somebody")};
    Global.HSMachID = "ZZ";
    Upload();
    EXPECT_EQ(LinkOnPC(1), Link("Anna", "PC"));
}

TEST_F(UploadSessionTest, WithNothingTickedTheRowIsUpdatedAndTheSessionGoesThrough) {
    Upload();

    EXPECT_EQ(Control.Queued.size(), 1U);
    EXPECT_EQ(LinkOnPC(1), Link("Anna", "Anna", "77"));
    EXPECT_TRUE(Session.SyncDone);
    EXPECT_FALSE(Session.SyncRunning);
    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
    EXPECT_EQ(ReceiptLine("Anna", "NOT COMPARED"), "NOT COMPARED: the session did not fetch the orders.");
}

TEST_F(UploadSessionTest, AWholeUploadIsMergedAndBalances) {
    Session.Chosen = {.Orders = true, .HHTotals = true};
    Upload();

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
    EXPECT_EQ(ReceiptLine("Anna", "BALANCED"), "BALANCED");
    EXPECT_EQ(ReceiptLine("Anna", "Upload"), "Upload");
    EXPECT_EQ(Receipt("Anna").find("hold only"), std::string::npos);
}

TEST_F(UploadSessionTest, ASecondUploadWithoutAClearDoublesTheOrdersAndTheReceiptNamesThem) {
    Session.Chosen = {.Orders = true, .HHTotals = true};
    Upload();
    ++Moment.Second;

    Upload();

    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "A1", "A2", "P1", "P2"}));
    EXPECT_NE(Receipt("Anna").find("came again unchanged:\r\n  A1, A2\r\n"), std::string::npos);
}

TEST_F(UploadSessionTest, OnlyCustomersTickedReplacesTheMasterAndTheReceiptSaysWhereTheOldOneIs) {
    Session.Chosen.Customers = Global.BackupCustomers = true;
    Upload();

    EXPECT_EQ(Column("ZUKCust", 1), Strings{"FromHandheld"});
    EXPECT_NE(Receipt("Anna").find("ZUKCUST.dbf     the old records are in the backup 61122180311"),
              std::string::npos)
        << Receipt("Anna");
}

TEST_F(UploadSessionTest, OnlyAuditsTickedReplacesThemAndTheReceiptSaysSo) {
    Session.Chosen.Audits = true;
    GivenTable(Global.DBFPath, "ZUKAudTH", {{"OLD"}});
    Upload();

    EXPECT_EQ(Column("ZUKAudTH"), Strings{"DAnna"});
    EXPECT_NE(Receipt("Anna").find("ZUKAudTH.dbf    the old records are in the backup 61122180311"),
              std::string::npos);
    EXPECT_EQ(Column("ZUKAudTH", 0, Global.BackupPath + "61122180311/"), Strings{"OLD"});
}

TEST_F(UploadSessionTest, ASessionThatIsCutStaysRunningAndMergesNothing) {
    Session.Chosen = {.Orders = true, .PrintSpooler = true};
    Upload(2);

    EXPECT_TRUE(Session.SyncRunning);
    EXPECT_FALSE(Session.SyncDone);
    EXPECT_EQ(StatusOf(1), "");
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2"}));
    EXPECT_EQ(Column("ZUKOrLin"), (Strings{"P1", "P1", "P2"}));
    const std::string receipt = Receipt("Anna");
    EXPECT_NE(receipt.find("The session broke off, so nothing was merged.\r\n"), std::string::npos);
    EXPECT_NE(receipt.find("ZUKOrHdr.dbf    the old records are in the backup 61122180311"),
              std::string::npos)
        << receipt;
    EXPECT_EQ(receipt.find("ZUKOrLin.dbf    the old"), std::string::npos);
}

TEST_F(UploadSessionTest, ASessionThatIsCutBeforeTheLinksTableCameHasNothingRunning) {
    Session.Chosen.Orders = true;
    Upload(0);
    EXPECT_FALSE(Session.SyncRunning);
    EXPECT_FALSE(Session.SyncDone);
    EXPECT_EQ(OrdersOnPC(), (Strings{"P1", "P2"}));
}

TEST_F(UploadSessionTest, AHandheldThatComesBeforeTheMergeTouchesNothingOfTheFirst) {
    GivenHandheld("Bea", {{"B1", {"7"}}});
    Session.Chosen.Orders = true;
    MakeSafetyCopies(SafetyCopies::OfUploadScreen);
    Global.ManualUploadActive = true;
    Control.Session("Anna");

    Control.Session("Bea");

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Session.SyncDone);
    EXPECT_EQ(Global.HSUserName, "Anna");
    Session.TakeArrived();
    Merge(Global.UploadScreenRun);
    EXPECT_EQ(OrdersOnPC(), (Strings{"A1", "A2", "P1", "P2"}));
}

TEST_F(UploadSessionTest, AHandheldThatComesBehindOneThatWasCutDoesNotHideTheCut) {
    GivenHandheld("Bea", {{"B1", {"7"}}});
    Session.Chosen.Orders = true;
    Global.ManualUploadActive = true;
    Control.Session("Anna", 2);

    Control.Session("Bea");

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Session.SyncRunning);
    EXPECT_FALSE(Session.SyncDone);
}

TEST_F(UploadSessionTest, AUserWhoseNameIsNoFolderNameMovesNothing) {
    Session.Chosen.Orders = true;
    Global.ManualUploadActive = true;
    for (const std::string user : {"..", "", "a/b"}) {
        Control.Session(user);
        EXPECT_TRUE(Control.Queued.empty()) << user;
        EXPECT_FALSE(Session.SyncDone);
    }
    Session.WriteReceipt();
    EXPECT_TRUE(FilesWithExtension(Global.DBFPath, ".txt").empty());
}

TEST_F(UploadSessionTest, WithoutASessionThereIsNoReceipt) {
    Session.WriteReceipt();
    EXPECT_EQ(LastReceipt("Anna"), std::nullopt);
}

} // namespace
