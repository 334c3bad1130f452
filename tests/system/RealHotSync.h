#pragma once

#include "Program.h"

#include "core/Globals.h"
#include "platform/ManagerLine.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QTest>

inline constexpr int Patience = 60000; // milliseconds

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

    QByteArray ManagerLog() const { return Bytes(office_.Path("HotSync/HotSync.log")); }
    /// A handheld goes when it has been told goodbye, and the manager writes its line behind that.
    bool ManagerLogs(const char* piece) const {
        return QTest::qWaitFor([&] { return ManagerLog().contains(piece); }, Patience);
    }

    /// A port out of the last line of the manager's log that says this.
    QString PortBehind(const QString& words) const {
        const QString log = QString::fromUtf8(ManagerLog());
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
