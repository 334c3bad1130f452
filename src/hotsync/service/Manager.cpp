#include "hotsync/service/Manager.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/ProgramVersion.h"
#include "help/forms/QtHelp.h"
#include "hotsync/forms/frmHSExit.h"
#include "hotsync/forms/frmHSManager.h"
#include "hotsync/forms/frmHSPickUser.h"
#include "hotsync/service/TcpStream.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/Installation.h"
#include "platform/Look.h"
#include "platform/ManagerSocket.h"
#include "platform/QtOperator.h"
#include "platform/Registry.h"
#include "platform/SingleInstance.h"
#include "platform/Translation.h"
#include "sync/Conduits.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QProcess>

#include <cstdio>

Manager::Manager(std::string folder)
    : folder_(std::move(folder)),
      users_(folder_),
      log_(folder_),
      settings_(ReadManagerSettings(folder_)),
      desk_(users_, log_, Services()),
      listener_(log_, [this](QTcpSocket& socket, const std::string& caller) { Serve(socket, caller); }) {
    users_.Load();
    users_.Changed = [this] {
        desk_.SendUsers();
        if (UsersChanged) UsersChanged();
    };
    log_.Written = [this](const std::string& line) {
        if (LogWritten) LogWritten(line);
    };
    progress_.AwaitCancelled = [this] { desk_.CancelFlush(); };
}

Manager::~Manager() = default;

OfficeDesk::Services Manager::Services() {
    OfficeDesk::Services services;
    services.Welcome = [this] { return Welcome(); };
    services.Arm = [this](const std::string& caption) {
        progress_.Await(Text::Value(std::string_view(caption)));
    };
    services.Disarm = [this] { progress_.StopAwaiting(); };
    services.Show = [] { The<frmHSManager>().Open(); };
    services.Exit = [this](bool ask) {
        if (ask)
            AskToExit([this] { End(); });
        else
            End();
    };
    services.Pick = AskForUser;
    services.StopPicking = StopAskingForUser;
    return services;
}

void Manager::Start() {
    QString why;
    if (!desk_.Listen(ManagerSocketName(PathToQt(folder_)), why)) throw RunTimeFailure(75, why.toStdString());
    Listen();
}

void Manager::Listen() {
    QString why;
    const bool listens = listener_.Listen(settings_, why);
    listening_ = {settings_.Address, listens ? listener_.Port() : std::uint16_t{0}, why.toStdString()};
    log_.Write(listens
                   ? "awaits handhelds on " + settings_.Address + " port " + std::to_string(listener_.Port())
                   : "cannot await handhelds on " + settings_.Address + " port " +
                         std::to_string(settings_.Port) + ": " + Utf8ToCodePage(listening_.Why));
    TellState();
}

void Manager::TellState() {
    if (StateChanged) StateChanged();
}

std::optional<std::uint32_t> Manager::UserInSession() const {
    return inSession_;
}

void Manager::TakeSettings(const ManagerSettings& settings) {
    WriteManagerSettings(folder_, settings);
    settings_ = settings;
    Listen();
}

namespace {

/// Where a handheld on this computer finds the manager.
QString PlaceFor(const ListeningState& listening) {
    QString host = QString::fromStdString(listening.Address == "*" ? "127.0.0.1" : listening.Address);
    if (host.contains(QLatin1Char(':'))) host = QLatin1Char('[') + host + QLatin1Char(']');
    return listening.Port == 0 ? host : host + QLatin1Char(':') + QString::number(listening.Port);
}

} // namespace

void Manager::OpenStandIn(const HotSyncUser& user) {
    const QString program = QApplication::applicationDirPath() + QStringLiteral("/handheldwindow");
    const QStringList arguments{PathToQt(users_.StandInFolder(user)),
                                QStringLiteral("--user"),
                                ToQt(std::string_view(user.Name)),
                                QStringLiteral("--id"),
                                QString::number(user.Id),
                                QStringLiteral("--machine"),
                                QString::fromStdString(StandInMachine(user.Id)),
                                QStringLiteral("--desktop"),
                                PlaceFor(listening_)};
    if (!QProcess::startDetached(program, arguments)) throw RunTimeFailure(53, program.toStdString());
}

ManagerMessage Manager::Welcome() const {
    const bool listens = listening_.Port != 0;
    return {"WELCOME",
            {"1", folder_, listens ? listening_.Address : std::string(), std::to_string(listening_.Port)}};
}

std::vector<std::string> Manager::Creators() {
    std::vector<std::string> creators;
    try {
        for (const Conduit& conduit : ReadConduits(folder_)) creators.push_back(conduit.Creator);
    } catch (const RunTimeFailure& failure) {
        log_.Write(Utf8ToCodePage(failure.what()));
    }
    return creators;
}

void Manager::Serve(QTcpSocket& socket, const std::string& caller) {
    TcpStream stream(socket);
    const ManagerSettings settings = settings_; // the session goes on under them
    Watcher watcher(*this);
    Session session(stream, {users_, log_, watcher, desk_, settings, Creators()}, caller,
                    socket.localAddress().toIPv4Address());
    if (session.Run() != Session::End::Refused) desk_.SessionHeld();
    if (endWanted_)
        QMetaObject::invokeMethod(
            &listener_, [this] { EndIfIdle(); }, Qt::QueuedConnection);
}

void Manager::End() {
    endWanted_ = true;
    listener_.Stop();
    EndIfIdle();
}

void Manager::EndIfIdle() {
    if (listener_.IsServing() || Global.Ending) return;
    log_.Write("ends");
    desk_.SayExiting();
    EndProgram(0);
}

// ---- what a session tells ----

void Manager::Watcher::Begun(std::string_view user) {
    if (const HotSyncUser* const known = manager_.users_.FindName(user)) manager_.inSession_ = known->Id;
    manager_.progress_.Begun(user);
    manager_.TellState();
}

void Manager::Watcher::Step(Way way, std::string_view what, std::int32_t done, std::int32_t of) {
    manager_.progress_.Step(way, what, done, of);
}

void Manager::Watcher::Ended(std::string_view how, bool well) {
    manager_.inSession_.reset();
    manager_.progress_.Ended(how, well);
    manager_.TellState();
}

bool Manager::Watcher::CancelAsked() {
    return manager_.progress_.CancelAsked();
}

// ---- the program ----

namespace {

int Register(const QString& program) {
    if (Registry::SetHotSyncManager(PathFromQt(program))) return 0;
    std::fputs("The HotSync Manager cannot be registered.\n", stderr);
    return 1;
}

void Run(const std::string& folder, bool minimised) {
    Manager manager(folder);
    Global.TheManagerDesk = &manager;
    manager.Start();
    // For whoever starts it by a script: from here on it answers.
    std::printf("Listening on port %d\n", manager.Listening().Port);
    std::fflush(stdout);
    auto& window = The<frmHSManager>();
    if (minimised)
        window.PutAway();
    else
        window.Open();
    if (!Global.Ending) QApplication::exec();
    FormRegistry::Instance().Clear();
    Global.TheManagerDesk = nullptr;
}

} // namespace

int RunManager(int argc, char** argv, const char* version) {
    // The PC program asks so for its "About" screen.
    if (TellsVersion(argc, argv, "hotsync", version)) return 0;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("hotsync"));
    QApplication::setApplicationVersion(QString::fromLatin1(version));
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("The HotSync Manager of ZUK Tramble PC."));
    options.addHelpOption();
    options.addVersionOption();
    const QCommandLineOption minimised(QStringLiteral("minimised"), QStringLiteral("Start out of the way."));
    const QCommandLineOption registers(QStringLiteral("register"),
                                       QStringLiteral("Enter this program into the registry, and end."));
    options.addOptions({minimised, registers});
    options.process(application);
    if (options.isSet(registers)) return Register(QApplication::applicationFilePath());

    QtOperator atTheScreen;
    Global.TheOperator = &atTheScreen;
    QtHelp help;
    const std::string program = PathFromQt(QApplication::applicationFilePath());
    const std::string folder = FolderOfManager(program);
    const std::string office = OfficeOfProgram(program);
    try {
        MakePath(folder);
        // One manager a folder: a second start has nothing to do.
        if (!SingleInstance::Take(folder)) return 0;
        LoadTextsOfOffice(office); // the PC program tells what is wrong with them
        help.Help().HHSetHelpFile(HelpFilePath(InstalledSet(FolderOf(program)), office));
        ApplyLook(Registry::DarkLook(office));
        Run(folder, options.isSet(minimised));
    } catch (const std::exception& failure) {
        Tell(Text::Path(std::string_view(failure.what())), Icon::Stop);
        return 1;
    }
    return Global.ExitCode;
}
