// Goes through an installed program as its user does on the first morning:
//
//   tryinstalled PROGRAM MANAGERS OFFICE VERSION PLUGINS
//
// starts PROGRAM offscreen, for the first time, with the user's folders as HOME, XDG_* and TMPDIR say. It
// must lay out OFFICE, show VERSION and its help, start the HotSync Manager of the folder MANAGERS, register
// its conduit anew, serve the stand-in handheld of that folder, and end. PLUGINS holds
// generic/libtrambledriver.so. Tells what it saw, and ends in 0 when all of it held.

#include "driver/DriverClient.h"
#include "platform/ManagerLine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <stdexcept>

namespace {

const QString Main = QStringLiteral("frmMain1");
constexpr int Patience = 60000; // milliseconds, as LookEvery
constexpr int LookEvery = 50;

void Require(bool held, const QString& reason) {
    if (!held) throw std::runtime_error(reason.toStdString());
}

void Say(const QString& line) {
    std::printf("    %s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

bool Until(const std::function<bool()>& there) {
    QElapsedTimer watch;
    watch.start();
    while (!there()) {
        if (watch.elapsed() > Patience) return false;
        QEventLoop loop;
        QTimer::singleShot(LookEvery, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

QByteArray Bytes(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), path + QStringLiteral(" cannot be read"));
    return file.readAll();
}

void Put(const QString& path, const QByteArray& content) {
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            path + QStringLiteral(" cannot be written"));
}

class FirstMorning {
public:
    FirstMorning(QString program, QString managers, const QString& office, QString version, QString plugins)
        : program_(std::move(program)),
          managers_(std::move(managers)),
          office_(office),
          manager_(office + QStringLiteral("/HotSync")),
          version_(std::move(version)),
          plugins_(std::move(plugins)) {}

    ~FirstMorning() {
        ManagerLine line;
        if (!line.Open(manager_)) return;
        line.Send({"EXIT", {"NOW"}});
        if (!Until([&] { return !line.IsOpen(); })) Say(QStringLiteral("a HotSync Manager stays behind"));
    }

    void Hold() {
        // Any port will do, and a handheld's user: the two things that an office settles by itself.
        Require(QDir().mkpath(manager_), manager_ + QStringLiteral(" cannot be made"));
        Put(manager_ + QStringLiteral("/HotSync.ini"), "[HotSync]\r\nPort=0\r\nLookup=False\r\n");
        Put(manager_ + QStringLiteral("/Users.txt"), "7\tANNA\tnever\tcomplete\r\n");

        DriverClient client(Start());
        client.Start(); // no box: neither are tables missing, nor the manager
        client.WaitForm(Main);
        Require(QFile::exists(office_ + QStringLiteral("/DBFFiles/ZUKCust.dbf")) &&
                    QFile::exists(office_ + QStringLiteral("/Install/Office.txt")) &&
                    QFile::exists(office_ + QStringLiteral("/Install/Tramble.prc")),
                QStringLiteral("no office was laid out in ") + office_);
        Require(Bytes(office_ + QStringLiteral("/Events.log")).contains("frmMain1:Form_Load"),
                QStringLiteral("no trace of the start"));
        Say(QStringLiteral("the main screen stands over ") + office_);

        LookAtAbout(client);
        LookAtHelp(client);
        Require(Until([this] { return ManagerAnswers(); }), QStringLiteral("no HotSync Manager"));
        Say(QStringLiteral("its HotSync Manager answers"));
        UpdateUsers(client);
        Serve();
        Require(client.Quit() == 0, QStringLiteral("the program ended with a failure"));
        Say(QStringLiteral("it ended well"));
    }

private:
    /// With this process's folders, which the client would give it others for.
    DrivenProgram Start() const {
        DrivenProgram start;
        start.Program = program_;
        start.Folder = QDir::homePath();
        start.Plugins = plugins_;
        for (const char* name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"})
            start.Environment[QString::fromLatin1(name)] = qEnvironmentVariable(name);
        return start;
    }

    void LookAtAbout(DriverClient& client) const {
        const QString about = QStringLiteral("frmAbout");
        client.Click(Main, QStringLiteral("mnuMainAbout"));
        client.WaitForm(about);
        const QString version = client.Text(about, QStringLiteral("lblZUKVer1"));
        const QString path = client.Text(about, QStringLiteral("lblAppPath1"));
        const QString manager = client.Text(about, QStringLiteral("lblHotsyncVer1"));
        client.Click(about, QStringLiteral("cmdOK"));
        client.WaitGone(about);
        Require(version == version_, QStringLiteral("the About screen says version ") + version);
        Require(manager == version_, QStringLiteral("the About screen says of the manager: ") + manager);
        Require(QDir(path) == QDir(office_), QStringLiteral("the About screen says ") + path);
        Say(QStringLiteral("About: version %1, HotSync Manager %2").arg(version, manager));
    }

    static void LookAtHelp(DriverClient& client) {
        const QString help = QStringLiteral("frmHelp");
        client.Key(QStringLiteral("F1"));
        client.WaitForm(help);
        const qsizetype keywords = client.Items(help, QStringLiteral("lstKeywords")).size();
        client.Click(help, QStringLiteral("cmdOK"));
        client.WaitGone(help);
        Require(keywords > 0, QStringLiteral("the help is not there"));
        Say(QStringLiteral("F1: the help, with %1 keywords").arg(keywords));
    }

    void UpdateUsers(DriverClient& client) const {
        const QString button = QStringLiteral("lblUpdateHSUsers");
        const QString conduits = manager_ + QStringLiteral("/Conduits.txt");
        const QByteArray registered = Bytes(conduits);
        QFile::remove(conduits);
        client.Click(Main, button);
        client.WaitForm(QStringLiteral("frmMessage"));
        client.Click(QStringLiteral("frmMessage"), QStringLiteral("cmdYes"));
        client.WaitEnabled(Main, button);
        Require(!registered.isEmpty() && Bytes(conduits) == registered,
                QStringLiteral("the conduit is not registered"));
        Require(Until([this] { return ManagerAnswers(); }), QStringLiteral("no HotSync Manager again"));
        Say(QStringLiteral("the conduit was registered anew, and the manager started again"));
    }

    void Serve() const {
        const QString handheld = QDir::home().filePath(QStringLiteral("handheld of ANNA"));
        Hand({handheld, QStringLiteral("new"), QStringLiteral("--user"), QStringLiteral("ANNA"),
              QStringLiteral("--id"), QStringLiteral("7")});
        const QString log = QString::fromUtf8(Bytes(manager_ + QStringLiteral("/HotSync.log")));
        const QString last = log.mid(log.lastIndexOf(QLatin1String("awaits handhelds")));
        const QString port =
            last.section(QLatin1String(" port "), 1, 1).section(QLatin1Char('\n'), 0, 0).trimmed();
        Hand({handheld, QStringLiteral("hotsync"), QStringLiteral("127.0.0.1:") + port});
        Require(Bytes(manager_ + QStringLiteral("/HotSync.log")).contains("ANNA: session ended well"),
                QStringLiteral("the manager's log does not tell of the session"));
        Say(QStringLiteral("a handheld pressed HotSync and was served"));
    }

    void Hand(const QStringList& words) const {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(managers_ + QStringLiteral("/handheld"), words);
        process.waitForFinished(Patience);
        Require(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 &&
                    process.error() == QProcess::UnknownError,
                words.join(QLatin1Char(' ')) + QStringLiteral(": ") + process.errorString() +
                    QString::fromUtf8(process.readAll()));
    }

    bool ManagerAnswers() const {
        ManagerLine line;
        return line.Open(manager_) && line.AwaitUsers();
    }

    QString program_, managers_, office_, manager_, version_, plugins_;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 6) {
        std::fputs("tryinstalled PROGRAM MANAGERS OFFICE VERSION PLUGINS\n", stderr);
        return 2;
    }
    try {
        FirstMorning(words[1], words[2], words[3], words[4], words[5]).Hold();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
