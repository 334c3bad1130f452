#include "RealHotSync.h"

namespace {

const QString Window = QStringLiteral("frmStandIn");
const QString Order = QStringLiteral("frmStandInOrder");

/// The HotSync Manager, and the window of a stand-in handheld, for which the demo company waits.
class StandIn : public RealHotSync {
protected:
    StandIn() {
        const QDir files(QStringLiteral(TRAMBLE_INSTALLED "/Install"));
        const QString waiting = office_.Path("HotSync/ANNA/Install/");
        QDir().mkpath(waiting);
        for (const QString& file : files.entryList({"*.pdb", "*.prc"}))
            EXPECT_TRUE(QFile::copy(files.filePath(file), waiting + file));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const DrivenProgram office = InOffice();
        for (const auto& [name, value] : office.Environment.asKeyValueRange())
            environment.insert(name, value);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        manager_.setProcessEnvironment(environment);
        manager_.start(office_.Manager(), {"--minimised"});
        EXPECT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    }
    ~StandIn() override {
        ManagerLine line;
        if (line.Open(ManagerFolder())) line.Send({"EXIT", {"NOW"}});
        EXPECT_TRUE(manager_.waitForFinished(Patience));
    }

    DrivenProgram WindowFor(const QString& user) const {
        DrivenProgram start = InOffice();
        start.Program = QStringLiteral(TRAMBLE_BUILD "/bin/handheldwindow");
        start.Arguments = {folder_.filePath("handheld"),
                           "--user",
                           user,
                           "--id",
                           "7",
                           "--machine",
                           "H4",
                           "--desktop",
                           Address()};
        return start;
    }

private:
    QProcess manager_;
};

} // namespace

TEST_F(StandIn, InItsWindowTheDemoCompanyArrivesByHotSyncAndAnOrderIsTaken) {
    DriverClient window(WindowFor("ANNA"));
    window.Start();
    window.WaitForm(Window);
    EXPECT_EQ(window.Text(Window, "lblWho"), "HotSync user: ANNA\nMachine ID: H4");

    window.Click(Window, "cmdHotSync");
    window.WaitTextContaining(Window, "lblSyncMsg", "HotSync is complete.");
    EXPECT_EQ(window.Rows(Window, "FG2").Rows.size(), 47);
    EXPECT_EQ(window.Rows(Window, "FG1").Rows.size(), 12);
    window.Click(Window, "cmdTake");
    window.WaitForm(Order);
    window.ChooseRow(Order, "cboCustomer", 100);
    window.ChooseRow(Order, "cboItem", 200);
    window.Set(Order, "txtQty", "3");
    window.Click(Order, "cmdAdd");
    window.Click(Order, "cmdOK");
    window.WaitGone(Order);

    const DrivenTable orders = window.Rows(Window, "FG1");
    ASSERT_EQ(orders.Rows.size(), 13);
    EXPECT_EQ(orders.Cell(12, "Order Code"), "H4000001");
    window.Click(Window, "cmdCancel");
    EXPECT_EQ(window.WaitForEnd(), 0);
    EXPECT_TRUE(ManagerLogs("ANNA: session ended well")) << ManagerLog().toStdString();
}

TEST_F(StandIn, AUserWhomTheManagerDoesNotKnowIsToldSoInTheWindow) {
    DrivenProgram stranger = WindowFor("BERTA");
    stranger.Arguments[4] = "8";
    DriverClient window(stranger);
    window.Start();
    window.WaitForm(Window);

    window.Click(Window, "cmdHotSync");
    window.WaitTextContaining(Window, "lblSyncMsg", "HotSync was not completed:");

    EXPECT_EQ(window.Rows(Window, "FG2").Rows.size(), 0);
    window.Click(Window, "cmdCancel");
    EXPECT_EQ(window.WaitForEnd(), 0);
}
