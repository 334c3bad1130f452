#include "Program.h"

#include "core/Globals.h"
#include "forms/SocketManager.h"
#include "platform/HotSyncManager.h"
#include "platform/Registry.h"
#include "platform/TitledWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>

#include <optional>

namespace {

const QString SetupWindow = "Setup";
const QStringList Ours{"-crtreg", "ZUK2", "-condpath", "SFrmCn40.dll", "-name", "Tramble"};
const QByteArray OurLine = "ZUK2\tSFrmCn40.dll\tTramble\r\n";

/// The registration as a process, and a HotSync Manager whose program is a script that writes down how it
/// was started.
class Registration : public Program {
protected:
    Registration() {
        Global = Globals{};
        office_.WithManager();
        // The test looks into the same registry as the programs that it starts.
        QDir().mkpath(Config());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, Config());
        QFile::remove(office_.Manager());
        QFile script(office_.Manager());
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s' \"$*\" > started.part\nmv started.part started\n");
        script.close();
        EXPECT_TRUE(script.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        EXPECT_TRUE(Registry::SetHotSyncManager(office_.Manager().toStdString()));
        Manager.emplace(HotSyncManagerFolder());
    }
    ~Registration() override {
        process_.kill();
        process_.waitForFinished();
    }

    QString Config() const { return folder_.filePath("config"); }
    QString Conduits() const { return office_.Path("HotSync/Conduits.txt"); }
    QString Started() const { return office_.Path("HotSync/started"); }

    void Start(const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const DrivenProgram office = InOffice();
        for (const auto& [name, value] : office.Environment.asKeyValueRange()) {
            if (name != "TMPDIR") environment.insert(name, value); // its sockets are this process's too
        }
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process_.setProcessEnvironment(environment);
        process_.start(office_.Registration(), arguments);
        ASSERT_TRUE(process_.waitForStarted());
    }

    int End() {
        if (process_.state() != QProcess::NotRunning) process_.waitForFinished(-1);
        errors_ = process_.readAllStandardError();
        EXPECT_EQ(process_.exitStatus(), QProcess::NormalExit) << errors_.toStdString();
        return process_.exitCode();
    }

    int Run(const QStringList& arguments) {
        Start(arguments);
        return End();
    }

    void Put(const QByteArray& conduits) const {
        QFile file(Conduits());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(conduits);
    }

    /// Waits for a window "Setup", and until it has gone.
    static void SeeSetup() {
        std::optional<FoundWindow> setup;
        WaitUntil([&] { return (setup = FindWindow(SetupWindow)).has_value(); });
        WaitUntil([&] { return !setup || !setup->IsThere(); });
    }

    void ExpectManagerStarted() const {
        WaitUntil([&] { return QFile::exists(Started()); });
        EXPECT_EQ(Bytes(Started()), "--minimised");
    }

    std::optional<SocketManager> Manager;
    QProcess process_;
    QByteArray errors_;
};

TEST_F(Registration, WithWrongOptionsSaysHowItIsUsedAndDoesNothing) {
    const QStringList without = Ours.mid(2);
    const QList<QStringList> faults{{},
                                    without,
                                    Ours.mid(0, 5),
                                    Ours + QStringList{"-name", "Again"},
                                    Ours + QStringList{"-unknown"},
                                    Ours + QStringList{"more"},
                                    QStringList{"-crtreg", "ZUK"} + without,
                                    QStringList{"-crtreg"} + without};
    for (const QStringList& arguments : faults) {
        EXPECT_EQ(Run(arguments), 2) << arguments.join(" ").toStdString();
        EXPECT_TRUE(errors_.startsWith("rdkinst -crtreg CREATOR")) << errors_.toStdString();
    }
    EXPECT_FALSE(QFile::exists(Conduits()));
}

TEST_F(Registration, WritesTheConduitAndLeavesTheManagerAlone) {
    Manager->Listen();

    EXPECT_EQ(Run({"-name", "Order entry", "-condpath", "SFrmCn40.dll", "-crtreg", "ZUK2"}), 0);

    EXPECT_EQ(Bytes(Conduits()), "ZUK2\tSFrmCn40.dll\tOrder entry\r\n");
    EXPECT_TRUE(Manager->Heard().empty());
    EXPECT_FALSE(QFile::exists(Started()));
}

TEST_F(Registration, KeepsTheConduitsOfOtherCreators) {
    Put("Memo\tmemo.dll\tMemo Pad\r\nZUK2\told.dll\tOld\r\n");

    EXPECT_EQ(Run(Ours), 0);

    EXPECT_EQ(Bytes(Conduits()), "Memo\tmemo.dll\tMemo Pad\r\n" + OurLine);
}

TEST_F(Registration, RefusesAFileThatItCannotReadAndLeavesItAlone) {
    const QByteArray rubbish = "Memo\tmemo.dll\tMemo Pad\r\nnot a conduit\r\n";
    Put(rubbish);

    EXPECT_EQ(Run(Ours), 1);

    EXPECT_EQ(Bytes(Conduits()), rubbish);
    EXPECT_TRUE(errors_.contains("Conduits.txt, line 2: it does not hold creator, path and name"))
        << errors_.toStdString();
}

TEST_F(Registration, WithoutAManagerSaysSo) {
    Registry::SetHotSyncManager("");

    EXPECT_EQ(Run(Ours), 1);

    EXPECT_TRUE(errors_.contains("no HotSync Manager is registered")) << errors_.toStdString();
}

TEST_F(Registration, EndsTheManagerThatRunsAndStartsItAgain) {
    Manager->Answer("EXIT", {{"EXITING", {}}});
    Manager->Listen();
    Start(Ours + QStringList{"-restarths"});

    SeeSetup();
    EXPECT_EQ(Bytes(Conduits()), OurLine);
    Manager->WaitFor("EXIT\tASK");
    EXPECT_FALSE(QFile::exists(Started()));
    Manager->Stop();
    SeeSetup();

    EXPECT_EQ(End(), 0) << errors_.toStdString();
    ExpectManagerStarted();
}

TEST_F(Registration, StartsAManagerThatDidNotRun) {
    Start(Ours + QStringList{"-restarths"});

    SeeSetup();
    SeeSetup();

    EXPECT_EQ(End(), 0) << errors_.toStdString();
    ExpectManagerStarted();
}

TEST_F(Registration, IsRunFromTheMainScreenWhichAnswersItsWindows) {
    DriverClient program(InOffice());
    program.Start();
    program.WaitForm(Main);
    ExpectManagerStarted();
    QFile::remove(Started());

    program.Click(Main, QStringLiteral("lblUpdateHSUsers"));
    program.WaitForm(QStringLiteral("frmMessage"));
    EXPECT_EQ(program.Title(QStringLiteral("frmMessage")), QStringLiteral("Update Hotsync Users"));
    EXPECT_EQ(program.Text(QStringLiteral("frmMessage"), QStringLiteral("cmdYes")), QStringLiteral("Ok"));
    EXPECT_EQ(program.Text(QStringLiteral("frmMessage"), QStringLiteral("cmdNo")), QStringLiteral("Cancel"));
    program.Click(QStringLiteral("frmMessage"), QStringLiteral("cmdYes"));
    program.WaitEnabled(Main, QStringLiteral("lblUpdateHSUsers"));

    ExpectManagerStarted();
    EXPECT_EQ(Bytes(Conduits()), OurLine);
    EXPECT_EQ(program.Quit(), 0);
}

} // namespace
