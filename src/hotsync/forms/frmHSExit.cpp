#include "hotsync/forms/frmHSExit.h"

#include "core/Globals.h"
#include "hotsync/forms/KnownWindows.h"
#include "hotsync/forms/ManagerDesk.h"
#include "platform/Look.h"

#include <utility>

frmHSExit::frmHSExit() {
    setupUi(this);
    setWindowTitle(QString::fromLatin1(ExitWindowTitle));
}

void frmHSExit::Form_Load() {
    TraceEvent("frmHSExit:Form_Load");
    LetBeFound(*this);
    imgIcon->setPixmap(Picture("box-question").pixmap(36, 36));
    lblSession->setVisible(Global.TheManagerDesk->UserInSession().has_value());
    adjustSize();
}

void frmHSExit::cmdOK_Click() {
    TraceEvent("frmHSExit:cmdOK_Click");
    const auto agreed = Agreed;
    Unload();
    if (agreed) agreed();
}

void frmHSExit::cmdCancel_Click() {
    TraceEvent("frmHSExit:cmdCancel_Click");
    Unload();
}

void AskToExit(std::function<void()> agreed) {
    auto& form = The<frmHSExit>();
    form.Agreed = std::move(agreed);
    form.Show();
}
