#include "Program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

namespace {

void Write(const QString& path, const QByteArray& content) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
}

/// An office whose desktop has an opener of links that writes down what it gets.
class SupportDesk : public Program {
protected:
    SupportDesk() {
        QDir(folder_.path()).mkpath(QStringLiteral("bin"));
        const QString opener = folder_.filePath(QStringLiteral("bin/xdg-open"));
        Write(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + Got().toUtf8() + "'\n");
        QFile::setPermissions(opener, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        Write(office_.Path(QStringLiteral("Support.ini")), "[Support]\r\nAddress=desk@example.com\r\n");
    }

    QString Got() const { return folder_.filePath(QStringLiteral("link")); }

    DrivenProgram WithDesktop() const {
        DrivenProgram start = InOffice();
        start.Environment[QStringLiteral("PATH")] =
            folder_.filePath(QStringLiteral("bin")) + QLatin1Char(':') + qEnvironmentVariable("PATH");
        return start;
    }
};

TEST_F(SupportDesk, ANoteIsWrittenListedAndHandedToTheDesktopsMailProgram) {
    const QString list = QStringLiteral("frmFindNotes"), note = QStringLiteral("frmNotes");
    DriverClient program(WithDesktop());
    StartUp(program);

    program.Click(Main, QStringLiteral("lblNotes"));
    program.WaitForm(list);
    program.Click(list, QStringLiteral("cmdNew"));
    program.WaitForm(note);
    program.Set(note, QStringLiteral("txtIssue"), "R&D pays none");
    program.Choose(note, QStringLiteral("cboProcess"), QStringLiteral("Sales Tax"));
    program.Click(note, QStringLiteral("cmdOK"));
    program.WaitGone(note);
    EXPECT_EQ(program.Rows(list, QStringLiteral("FG1")).Cell(0, QStringLiteral("Issue")),
              QStringLiteral("R&D pays none"));

    program.ChooseTwice(list, QStringLiteral("FG1"), QStringLiteral("1"));
    program.WaitForm(note);
    program.ExpectContaining(QStringLiteral("containing the necessary Notes information?"),
                             QStringLiteral("Yes"));
    program.Expect(QStringLiteral("Email message successfully created!"));
    program.Click(note, QStringLiteral("cmdEMail"));
    program.Done(std::chrono::seconds(30));
    const QByteArray link = Bytes(Got());
    EXPECT_TRUE(link.startsWith("mailto:desk@example.com?Subject=ZUK%20Tramble%20Note%20%23%201&Body=Record"))
        << link.data();
    EXPECT_TRUE(link.contains("R%26D%20pays%20none%0D%0A")) << link.data();
    EXPECT_TRUE(link.contains("System%20Information:%0D%0A")) << link.data();

    program.Click(note, QStringLiteral("cmdCancel"));
    program.WaitGone(note);
    program.Click(list, QStringLiteral("cmdCancel"));
    program.WaitGone(list);
    program.Click(Main, QStringLiteral("mnuNotes"));
    program.WaitForm(list);
    program.Click(list, QStringLiteral("cmdCancel"));
    program.WaitGone(list);
    EXPECT_EQ(program.Quit(), 0);
    EXPECT_EQ(Bytes(office_.Path(QStringLiteral("DBFFiles/Notes.dat"))).size(), 1112);
}

TEST_F(SupportDesk, TheManagersProgramSaysItsVersionWithoutADisplay) {
    QProcess manager;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(display));
    manager.setProcessEnvironment(environment);
    manager.start(QStringLiteral(TRAMBLE_BUILD "/bin/hotsync"), {QStringLiteral("--version")});

    ASSERT_TRUE(manager.waitForFinished());
    EXPECT_EQ(manager.exitCode(), 0);
    EXPECT_TRUE(manager.readAllStandardOutput().startsWith("hotsync 1."));
}

} // namespace
