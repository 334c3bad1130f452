#include "hotsync/forms/KnownWindows.h"

#include "core/Globals.h"
#include "hotsync/forms/ManagerDesk.h"
#include "platform/Convert.h"
#include "platform/TitledWindow.h"

void LetBeFound(QWidget& window) {
    const std::string& folder = Global.TheManagerDesk->Users().Folder();
    new TitledWindow(window, PathToQt(folder)); // the window's own
}
