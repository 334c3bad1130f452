#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/ProgramVersion.h"
#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "platform/Installation.h"
#include "platform/Look.h"
#include "platform/QtOperator.h"
#include "platform/Registry.h"
#include "rdkinst/Options.h"
#include "rdkinst/Restart.h"
#include "rdkinst/forms/frmSetup.h"

#include <QApplication>

#include <iostream>

namespace {

int Fail(const std::string& reason) {
    std::cerr << "rdkinst: " << reason << "\n";
    return 1;
}

void ShowSetup(const Text& text, bool isWatched, const std::function<void()>& work) {
    The<frmSetup>().StandFor(text, isWatched, work);
}

/// The reason why the conduit could not be registered; empty when it is.
std::string Register(const Options& options) {
    try {
        ShowSetup(msg::lblSetup, options.RestartHS,
                  [&] { RegisterConduit(HotSyncManagerFolder(), options.Registered); });
        return {};
    } catch (const RunTimeFailure& failure) {
        return failure.what();
    }
}

/// Closes the HotSync Manager and starts it again; false when it goes on.
bool Restart() {
    const bool ended = EndManager(PathToQt(HotSyncManagerFolder()));
    ShowSetup(ended ? msg::SetupRestarts : msg::SetupLeaves, true, [ended] {
        if (ended) IsHotSyncActive();
    });
    return ended;
}

int RunRegistration(const Options& options) {
    if (HotSyncManagerFolder().empty()) return Fail("no HotSync Manager is registered on this computer");
    const std::string reason = Register(options);
    if (!options.RestartHS) return reason.empty() ? 0 : Fail(reason);
    // Whoever watches the windows waits for a second one: it comes whatever happens.
    if (reason.empty()) return Restart() ? 0 : Fail("the HotSync Manager was not closed");
    Tell(Text::Path(std::string_view(reason)), Icon::Stop);
    ShowSetup(msg::SetupFailed, true, [] {});
    return Fail(reason);
}

} // namespace

int main(int argc, char** argv) {
    if (TellsVersion(argc, argv, "rdkinst", TRAMBLE_VERSION)) return 0;
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        std::cout << Usage;
        return 0;
    }
    const auto options = ReadOptions({argv + 1, argv + argc});
    if (!options) {
        std::cerr << Usage;
        return 2;
    }
    int onlyItsName = 1; // the window system would take "-name" for its own
    QApplication application(onlyItsName, argv);
    QApplication::setApplicationName(QStringLiteral("rdkinst"));
    QApplication::setApplicationVersion(QStringLiteral(TRAMBLE_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
    QtOperator atTheScreen;
    Global.TheOperator = &atTheScreen;
    const std::string office = OfficeOfProgram(PathFromQt(QApplication::applicationFilePath()));
    ApplyLook(Registry::DarkLook(office));
    const int exitCode = RunRegistration(*options);
    FormRegistry::Instance().Clear();
    return exitCode;
}
