#include "sync/DownloadSession.h"

#include "sync/SessionTest.h"

namespace {

class DownloadSessionTest : public SessionTest {
protected:
    void Begin(DownloadSession& session) {
        Control.HotSyncStatus = [&session](std::int32_t status) { session.SFDownload_HotSyncStatus(status); };
        session.ShowStatus = [this] { ++StatusShown; };
        Global.ManualUploadActive = true;
        Control.User = "anna";
        Control.Raise(SessionBegun);
    }
    int StatusShown = 0;
};

TEST_F(DownloadSessionTest, TheFirstStatusTakesTheSessionToItsEnd) {
    DownloadSession session(Control);
    session.Tables = TablesOf(DownloadChoice{.Customers = true, .Items = true, .Setup = true});

    Begin(session);

    EXPECT_EQ(session.SyncStage, "end");
    EXPECT_EQ(session.PendingOps, 0);
    EXPECT_EQ(Queue(), (Strings{"DOWNLOAD DBFFiles/ZUKSETUP.DBF", "DOWNLOAD DBFFiles/ZUKCOMP.DBF",
                                "DOWNLOAD DBFFiles/ZUKHELP.DBF", "DOWNLOAD DBFFiles/ZUKPRINT.DBF",
                                "DOWNLOAD DBFFiles/ZUKSTAX.DBF", "DOWNLOAD DBFFiles/ZUKPAY.DBF",
                                "DOWNLOAD DBFFiles/ZUKLINK.DBF", "DOWNLOAD DBFFiles/ZUKCUST.DBF",
                                "DOWNLOAD DBFFiles/ZUKITEM.DBF", "DOWNLOAD DBFFiles/ZUKBARIN.DBF"}));
    EXPECT_EQ(Global.LastSyncedUser, "anna");
    EXPECT_EQ(Global.HHStatusStd[1], "S");
    EXPECT_EQ(StatusOf(1), "");
    EXPECT_EQ(StatusShown, 1);
}

TEST_F(DownloadSessionTest, FinishedTransfersAndTheEndChangeNothingMore) {
    DownloadSession session(Control);
    session.Tables = TablesOf(DownloadChoice{.Customers = true});
    Begin(session);
    while (Control.RunNext()) {
    }
    Control.Raise(SessionEnded);
    EXPECT_EQ(session.PendingOps, 0);
    EXPECT_EQ(Control.Queued.size(), 1U);
    EXPECT_EQ(StatusShown, 1);
}

TEST_F(DownloadSessionTest, WithNothingTickedTheMarkIsSetAllTheSame) {
    DownloadSession session(Control);
    Begin(session);
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Global.HHStatusStd[1], "S");
}

TEST_F(DownloadSessionTest, NothingIsAnsweredUnlessTheScreenWaitsOrBeforeASession) {
    DownloadSession session(Control);
    session.Tables = TablesOf(DownloadChoice{.Customers = true});
    Begin(session);
    Global.HHStatusStd[1] = "";
    session.SyncStage.clear();
    Control.Raise(7);
    Global.ManualUploadActive = false;
    Control.Raise(SessionBegun);
    EXPECT_EQ(session.SyncStage, "");
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Global.HHStatusStd[1], "");
}

TEST_F(DownloadSessionTest, AClearSendsTheEmptyTwinsAndLeavesThePC) {
    GivenOrdersOnPC({{"P1", {"1"}}});
    GivenHandheld("anna", {{"A1", {"1"}}});
    DownloadSession session(Control, SessionKind::Clear);
    session.Tables = TablesOf(ClearChoice{true, true, true});
    Begin(session);
    while (Control.RunNext()) {
    }
    session.WriteReceipt();

    EXPECT_EQ(Queue(), (Strings{"DOWNLOAD DBFEmpty/ZUKORHDR.DBF", "DOWNLOAD DBFEmpty/ZUKORLIN.DBF",
                                "DOWNLOAD DBFEmpty/ZUKAUDTH.DBF", "DOWNLOAD DBFEmpty/ZUKAUDTL.DBF",
                                "DOWNLOAD DBFEmpty/ZUKAUDHH.DBF"}));
    EXPECT_TRUE(Handhelds["anna"]["ZUKORHDR"].empty());
    EXPECT_EQ(OrdersOnPC(), Strings{"P1"});
    EXPECT_EQ(Global.HHStatusStd[1], "S");
    EXPECT_EQ(ReceiptLine("anna", "Clearing"), "Clearing of the handheld");
}

TEST_F(DownloadSessionTest, AHandheldThatComesBeforeTheScreenHasGoneIsNotCleared) {
    GivenHandheld("Bea", {{"B1", {"7"}}});
    DownloadSession session(Control, SessionKind::Clear);
    session.Tables = TablesOf(ClearChoice{true, true, true});
    Begin(session);
    Control.Raise(SessionEnded);

    Control.Session("Bea");

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Handhelds["Bea"]["ZUKORHDR"].size(), 1U);
    EXPECT_EQ(Global.LastSyncedUser, "anna");
}

TEST_F(DownloadSessionTest, TheReceiptTellsHowEachTransferEnded) {
    Fails = {"ZUKITEM"};
    DownloadSession session(Control);
    session.Tables = TablesOf(DownloadChoice{.Customers = true, .Items = true});
    Begin(session);
    Control.RunNext();
    Control.RunNext();
    session.WriteReceipt();

    const auto ending = [](const char* table) {
        const std::string text = Receipt("anna");
        const std::size_t at = text.find(table);
        const std::string line = text.substr(at, text.find("\r\n", at) - at);
        return line.substr(line.find_last_of(' ') + 1);
    };
    EXPECT_EQ(ending("ZUKCUST"), "well");
    EXPECT_EQ(ending("ZUKITEM"), "failed");
    EXPECT_EQ(ending("ZUKBARIN"), "off");
}

} // namespace
