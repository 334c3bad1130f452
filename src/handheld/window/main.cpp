// The window of a stand-in handheld:
//
//   handheldwindow FOLDER [--user NAME [--id N] [--machine ID]] [--desktop HOST[:PORT]]
//
// FOLDER holds the handheld; one is made there for the user when there is none. A second start for the same
// folder brings the window to the front.

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "handheld/Commands.h"
#include "handheld/forms/frmStandIn.h"
#include "handheld/line/FolderLock.h"
#include "help/forms/QtHelp.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Installation.h"
#include "platform/Look.h"
#include "platform/QtOperator.h"
#include "platform/Registry.h"
#include "platform/SingleInstance.h"
#include "platform/TitledWindow.h"
#include "platform/Translation.h"

#include <QApplication>
#include <QCommandLineParser>

#include <sstream>

namespace {

/// Makes the handheld as the command `new` does. False when the operator has been told why it could not be.
bool MakeHandheld(const std::string& folder, const QCommandLineParser& options) {
    std::vector<std::string> words{folder, "new"};
    for (const char* const name : {"user", "id", "machine"}) {
        const QString option = QString::fromLatin1(name);
        if (!options.isSet(option)) continue;
        words.push_back("--" + option.toStdString());
        words.push_back(options.value(option).toStdString());
    }
    std::ostringstream out, err;
    if (RunCommand(words, {out, err, LockFolder, nullptr}) == Outcome::Done) return true;
    Tell(Lines(msg::StandInNotDone, Text::Path(std::string_view(err.str()))), Icon::Stop);
    return false;
}

int RunWindow(const std::string& managerFolder) {
    auto& window = The<frmStandIn>();
    if (!SingleInstance::Take(Global.StandInFolder)) {
        if (auto other = FindWindow(window.windowTitle())) other->BringToFront();
        FormRegistry::Instance().Clear();
        return 0;
    }
    new TitledWindow(window, PathToQt(managerFolder)); // the window's own
    window.Show();
    WaitInLoop([] { return IfLoaded<frmStandIn>() != nullptr; });
    FormRegistry::Instance().Clear();
    return Global.ExitCode;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("handheldwindow"));
    QApplication::setApplicationVersion(QStringLiteral(TRAMBLE_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("The window of a stand-in handheld of ZUK Tramble PC."));
    options.addHelpOption();
    options.addVersionOption();
    options.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("The handheld's folder."));
    const auto text = [](const char* words) { return QString::fromLatin1(words); };
    options.addOptions(
        {{text("user"), text("HotSync user of a handheld that is made."), text("name")},
         {text("id"), text("The user's id."), text("number")},
         {text("machine"), text("Its machine id."), text("id")},
         {text("desktop"), text("Where the HotSync Manager waits, 127.0.0.1 else."), text("host[:port]")}});
    options.process(application);
    if (options.positionalArguments().size() != 1) options.showHelp(2);

    QtOperator atTheScreen;
    Global.TheOperator = &atTheScreen;
    QtHelp help;
    // It lies beside the HotSync Manager.
    const std::string program = PathFromQt(QApplication::applicationFilePath());
    const std::string office = OfficeOfProgram(program);
    Global.StandInFolder = AddBackslash(PathFromQt(options.positionalArguments().front()));
    Global.StandInDesktop = options.value(QStringLiteral("desktop")).toStdString();
    try {
        LoadTextsOfOffice(office); // the PC program tells what is wrong with them
        help.Help().HHSetHelpFile(HelpFilePath(InstalledSet(FolderOf(program)), office));
        ApplyLook(Registry::DarkLook(office));
        QApplication::setWindowIcon(Picture("handheld"));
        const bool isThere = FileExists(Global.StandInFolder + "Handheld.txt");
        if (!isThere && options.isSet(QStringLiteral("user")) && !MakeHandheld(Global.StandInFolder, options))
            return 1;
        return RunWindow(FolderOfManager(program));
    } catch (const std::exception& failure) {
        Tell(Text::Path(std::string_view(failure.what())), Icon::Stop);
        return 1;
    }
}
