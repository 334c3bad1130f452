#include "platform/Program.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/forms/frmMain1.h"
#include "help/forms/QtHelp.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "platform/QtOperator.h"
#include "platform/Registry.h"

#include <QApplication>
#include <QStandardPaths>

int RunProgram(int argc, char** argv, const char* version) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZUKTramble"));
    QApplication::setApplicationVersion(QString::fromLatin1(version));
    // The main screen's unload ends the program, and nothing else does.
    QApplication::setQuitOnLastWindowClosed(false);
    QtOperator atTheScreen;
    Global.TheOperator = &atTheScreen;
    QtHelp help;
    try {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        Global.AppPath =
            ApplicationDirectory(PathFromQt(QApplication::applicationDirPath()), PathFromQt(data));
        help.Help().HHSetHelpFile(
            HelpFilePath(PathFromQt(QApplication::applicationDirPath()), Global.AppPath));
        ApplyLook(application, Registry::DarkLook());
        auto& main = The<frmMain1>();
        main.Show();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    // A start that was given up has said so; there is no loop to leave.
    const int exitCode = Global.Ending ? Global.ExitCode : QApplication::exec();
    FormRegistry::Instance().Clear();
    return exitCode;
}
