#include "Program.h"

#include "core/Globals.h"
#include "platform/HotSyncManager.h"
#include "platform/ManagerLine.h"
#include "platform/Registry.h"
#include "platform/TitledWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

namespace {

constexpr int Patience = 60000; // milliseconds

/// The PC program, the HotSync Manager, the registration and a handheld: all of them the real ones.
class RealHotSync : public Program {
protected:
    RealHotSync() {
        Global = Globals{};
        office_.WithManager();
        // The test looks into the same registry, and finds the same sockets, as the programs.
        QDir().mkpath(folder_.filePath("config"));
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder_.filePath("config"));
        before_ = qgetenv("TMPDIR");
        qputenv("TMPDIR", folder_.path().toLocal8Bit());
        EXPECT_EQ(Run(office_.Manager(), {"--register"}), 0);
        EXPECT_EQ(
            Run(office_.Registration(), {"-crtreg", "ZUK2", "-condpath", "SFrmCn40.dll", "-name", "Tramble"}),
            0);
        Put("HotSync.ini", "[HotSync]\r\nPort=0\r\nLookup=False\r\n");
        Put("Users.txt", "7\tANNA\tnever\tcomplete\r\n");
    }

    ~RealHotSync() override {
        if (ManagerAnswers()) {
            ManagerLine line;
            line.Open(ManagerFolder());
            line.Send({"EXIT", {"NOW"}});
            EXPECT_TRUE(QTest::qWaitFor([&] { return !line.IsOpen(); }, Patience))
                << "a manager stays behind";
        }
        qputenv("TMPDIR", before_);
    }

    QString ManagerFolder() const { return office_.Path("HotSync"); }

    void Put(const QString& name, const QByteArray& content) const {
        QFile file(office_.Path("HotSync/") + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    int Run(const QString& program, const QStringList& arguments) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const DrivenProgram office = InOffice();
        for (const auto& [name, value] : office.Environment.asKeyValueRange())
            environment.insert(name, value);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        process.waitForFinished(Patience);
        said_ = QString::fromUtf8(process.readAll());
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    bool ManagerAnswers() const {
        ManagerLine line;
        return line.Open(ManagerFolder()) && line.AwaitUsers();
    }

    /// A port out of the last line of the manager's log that says this.
    QString PortBehind(const QString& words) const {
        const QString log = QString::fromUtf8(Bytes(office_.Path("HotSync/HotSync.log")));
        return log.mid(log.lastIndexOf(words)).section(" port ", 1, 1).section('\n', 0, 0).trimmed();
    }
    QString Address() const { return "127.0.0.1:" + PortBehind("awaits handhelds"); }

    QString HandheldProgram() const { return QStringLiteral(TRAMBLE_BUILD "/bin/handheld"); }
    int Handheld(const QStringList& arguments) {
        return Run(HandheldProgram(), QStringList{folder_.filePath("handheld")} + arguments);
    }

    QString said_;

private:
    QByteArray before_;
};

} // namespace

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

    EXPECT_TRUE(Bytes(office_.Path("HotSync/HotSync.log")).contains("ANNA: session ended well"));
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

    EXPECT_TRUE(Bytes(office_.Path("HotSync/HotSync.log")).contains("ANNA: session ended well"));
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
    const QByteArray log = Bytes(office_.Path("HotSync/HotSync.log"));
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
    EXPECT_EQ(ends, QStringList{"DONE"});
    EXPECT_TRUE(QFile::exists(office_.Path("DBFFiles/Images/A1000001.bmp")));
    EXPECT_FALSE(QFile::exists(office_.Path("DBFFiles/Images/A1000001")));
    EXPECT_EQ(program.Quit(), 0);
}
