#include "sync/forms/frmHSID.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/HotSyncControl.h"
#include "platform/Look.h"
#include "platform/ManagerWindow.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

frmHSID::frmHSID() : control_(NewSFrmAX40()) {
    constexpr std::chrono::seconds betweenLooks{1};
    setupUi(this);
    QSizePolicy stays = cmdCancel->sizePolicy();
    stays.setRetainSizeWhenHidden(true); // Ok stands where it stood
    cmdCancel->setSizePolicy(stays);
    auto* look = new QTimer(this);
    look->setObjectName(QStringLiteral("TimerLook"));
    look->start(betweenLooks);
}

void frmHSID::Form_Load() {
    TraceEvent("frmHSID:Form_Load");
    cmdManager->setToolTip(PlainTip(ToQt(Text(msg::TipManager))));
    ShowUsers();
    if (const int chosen = cboUser->findText(ToQt(std::string_view(Global.NewHSUser))); chosen >= 0)
        cboUser->setCurrentIndex(chosen);
}

void frmHSID::AskForDefault() {
    forDefault_ = true;
    ShowState();
}

/// A user that came meanwhile is the one that the operator has just made.
void frmHSID::ShowUsers() {
    const std::vector<std::string> before = std::exchange(users_, KnownUsers(*control_));
    if (users_ != before) {
        QString chosen = cboUser->currentText();
        cboUser->clear();
        for (const std::string& user : users_) {
            cboUser->addItem(ToQt(std::string_view(user)));
            if (!before.empty() && std::find(before.begin(), before.end(), user) == before.end())
                chosen = ToQt(std::string_view(user));
        }
        cboUser->setCurrentIndex(std::max(0, cboUser->findText(chosen)));
    }
    ShowState();
}

void frmHSID::ShowState() {
    const bool anybody = !users_.empty();
    const MessageId asked = forDefault_ ? msg::DefaultUser : msg::UserToAdd;
    lblMsg->setText(ToQt(Text(anybody ? asked : msg::NoUsers)));
    cboUser->setEnabled(anybody);
    cmdOK->setEnabled(anybody);
    cmdCancel->setVisible(!anybody || !forDefault_);
    // The first user is made in the manager: Return leads there.
    (anybody ? cmdOK : cmdManager)->setDefault(true);
}

void frmHSID::TimerLook_Timer() {
    ShowUsers();
}

void frmHSID::cmdManager_Click() {
    TraceEvent("frmHSID:cmdManager_Click");
    ShowHotSyncManager(*this);
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
