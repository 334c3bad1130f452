#include "sync/forms/frmHSID.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/HotSyncControl.h"

void frmHSID::Form_Load() {
    TraceEvent("frmHSID:Form_Load");
    for (const std::string& user : KnownUsers(*NewSFrmAX40())) cboUser->addItem(ToQt(std::string_view(user)));
    const bool anybody = cboUser->count() > 0;
    lblMsg->setText(ToQt(Text(anybody ? msg::UserToAdd : msg::NoUsers)));
    cboUser->setEnabled(anybody);
    cmdOK->setEnabled(anybody);
    if (const int chosen = cboUser->findText(ToQt(std::string_view(Global.NewHSUser))); chosen >= 0)
        cboUser->setCurrentIndex(chosen);
}

void frmHSID::AskForDefault() {
    if (!cmdOK->isEnabled()) return;
    lblMsg->setText(ToQt(Text(msg::DefaultUser)));
    cmdCancel->hide();
}

void frmHSID::cmdOK_Click() {
    TraceEvent("frmHSID:cmdOK_Click");
    Global.NewHSUser = FromQt(cboUser->currentText());
    Unload();
}

void frmHSID::cmdCancel_Click() {
    TraceEvent("frmHSID:cmdCancel_Click");
    Unload();
}
