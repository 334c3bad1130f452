#include "RealHotSync.h"

#include "platform/TitledWindow.h"

TEST_F(RealHotSync, TheProgramStartsTheManagerWhichServesHandheldsAndOutlivesIt) {
    {
        DriverClient program(InOffice());
        program.Start(); // no box says that there is no manager
        program.WaitForm(Main);
        ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
        EXPECT_EQ(program.Quit(), 0);
    }
    EXPECT_TRUE(ManagerAnswers());

    ASSERT_EQ(Handheld({"new", "--user", "ANNA", "--id", "7"}), 0) << said_.toStdString();
    EXPECT_EQ(Handheld({"hotsync", Address()}), 0) << said_.toStdString();

    EXPECT_TRUE(ManagerLogs("ANNA: session ended well")) << ManagerLog().toStdString();
}

TEST_F(RealHotSync, AHandheldThatLooksForTheComputerFindsItAndIsServed) {
    Put("HotSync.ini", "[HotSync]\r\nPort=0\r\nLookup=True\r\nLookupPort=0\r\n");
    DriverClient program(InOffice());
    program.Start();
    program.WaitForm(Main);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    ASSERT_EQ(Handheld({"new", "--user", "ANNA", "--id", "7"}), 0) << said_.toStdString();

    EXPECT_EQ(Handheld({"hotsync", Address(), "--lookup", "desk", "--lookup-port",
                        PortBehind("look for this computer")}),
              0)
        << said_.toStdString();

    EXPECT_TRUE(ManagerLogs("ANNA: session ended well")) << ManagerLog().toStdString();
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(RealHotSync, UpdatingTheUsersEndsTheManagerRegistersAndStartsItAgain) {
    QFile::remove(office_.Path("HotSync/Conduits.txt"));
    DriverClient program(InOffice());
    program.Start();
    program.WaitForm(Main);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));

    program.Click(Main, QStringLiteral("lblUpdateHSUsers"));
    program.WaitForm(QStringLiteral("frmMessage"));
    program.Click(QStringLiteral("frmMessage"), QStringLiteral("cmdYes"));
    program.WaitEnabled(Main, QStringLiteral("lblUpdateHSUsers"));

    ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    EXPECT_EQ(Bytes(office_.Path("HotSync/Conduits.txt")), "ZUK2\tSFrmCn40.dll\tTramble\r\n");
    const QByteArray log = ManagerLog();
    EXPECT_EQ(log.count("awaits handhelds"), 2) << log.toStdString();
    EXPECT_TRUE(log.contains(" ends")) << log.toStdString();
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(RealHotSync, TheProgressWindowStandsInTheMainScreenWhileAHandheldIsInSession) {
    DriverClient program(InOffice());
    program.Start();
    program.WaitForm(Main);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    ASSERT_EQ(Handheld({"new", "--user", "ANNA", "--id", "7"}), 0) << said_.toStdString();
    // A signature that an upload brought without an ending.
    QDir().mkpath(office_.Path("DBFFiles/Images"));
    QFile image(office_.Path("DBFFiles/Images/A1000001"));
    ASSERT_TRUE(image.open(QIODevice::WriteOnly));
    image.close();

    // A program that waits for a handheld brings the window up.
    ManagerLine line;
    ASSERT_TRUE(line.Open(ManagerFolder()) && line.AwaitUsers());
    QStringList ends;
    line.Received = [&](const ManagerMessage& message) {
        if (message.Verb == "FLUSHED") ends << QString::fromStdString(message.TextAt(0));
    };
    line.Send({"FLUSH", {"Synchronizing ZUK Tramble data..."}});
    ASSERT_TRUE(QTest::qWaitFor([] { return FindWindow("Hotsync Progress").has_value(); }, Patience));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !program.IsVisible(Main, "picMatrix"); }, Patience));

    EXPECT_EQ(Handheld({"hotsync", Address()}), 0) << said_.toStdString();

    ASSERT_TRUE(QTest::qWaitFor([&] { return program.IsVisible(Main, "picMatrix"); }, Patience));
    EXPECT_FALSE(FindWindow("Hotsync Progress").has_value());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ends.isEmpty(); }, Patience));
    EXPECT_EQ(ends, QStringList{"DONE"});
    EXPECT_TRUE(QFile::exists(office_.Path("DBFFiles/Images/A1000001.bmp")));
    EXPECT_FALSE(QFile::exists(office_.Path("DBFFiles/Images/A1000001")));
    EXPECT_EQ(program.Quit(), 0);
}
