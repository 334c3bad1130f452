#include "program/forms/Program.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Operator.h"
#include "core/ProgramVersion.h"
#include "help/forms/QtHelp.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Installation.h"
#include "platform/Look.h"
#include "platform/QtOperator.h"
#include "platform/Registry.h"
#include "program/forms/frmMain1.h"

#include <QApplication>

#include <cstdio>
#include <string_view>

namespace {

constexpr const char* Usage =
    "ZUKTramble [--help | --version]\n"
    "  --help     tell this, and end\n"
    "  --version  tell the version, and end\n"
    "Without either it opens the office: the one in the program's own folder, or else the user's own.\n";

/// Without its manager the program does all but HotSyncs: that stops no start.
void RegisterManager(const std::string& programFolder) {
    try {
        RegisterOwnManager(programFolder);
    } catch (const RunTimeFailure& failure) {
        Tell(Text::Path(std::string_view(failure.what())), Icon::Warning);
    }
}

} // namespace

int RunProgram(int argc, char** argv, const char* version) {
    if (TellsVersion(argc, argv, "ZUKTramble", version)) return 0;
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        std::fputs(Usage, stdout);
        return 0;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZUKTramble"));
    QApplication::setApplicationVersion(QString::fromLatin1(version));
    // The desktop finds the window's entry and picture by it.
    QGuiApplication::setDesktopFileName(QStringLiteral("com.example.ZUKTramble"));
    // The main screen's unload ends the program, and nothing else does.
    QApplication::setQuitOnLastWindowClosed(false);
    QtOperator atTheScreen;
    Global.TheOperator = &atTheScreen;
    QtHelp help;
    try {
        const std::string programFolder = PathFromQt(QApplication::applicationDirPath());
        Global.AppPath = ApplicationDirectory(programFolder, UserDataFolder());
        help.Help().HHSetHelpFile(HelpFilePath(InstalledSet(programFolder), Global.AppPath));
        ApplyLook(Registry::DarkLook());
        RegisterManager(programFolder);
        The<frmMain1>().Show();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    // A start that was given up has said so; there is no loop to leave.
    const int exitCode = Global.Ending ? Global.ExitCode : QApplication::exec();
    FormRegistry::Instance().Clear();
    return exitCode;
}
