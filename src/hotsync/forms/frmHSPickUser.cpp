#include "hotsync/forms/frmHSPickUser.h"

#include "core/Globals.h"
#include "platform/Convert.h"

#include <QCloseEvent>
#include <QTimer>

void frmHSPickUser::Form_Load() {
    TraceEvent("frmHSPickUser:Form_Load");
}

void frmHSPickUser::Fill(const std::vector<HotSyncUser>& users) {
    for (const HotSyncUser& user : users) {
        lstUsers->addItem(ToQt(std::string_view(user.Name)));
        ids_.push_back(user.Id);
    }
    // The handheld is the only user's in all likelihood; of several nobody can say.
    if (users.size() == 1) lstUsers->setCurrentRow(0);
}

void frmHSPickUser::lstUsers_Click() {
    cmdOK->setEnabled(!lstUsers->selectedItems().isEmpty());
}

void frmHSPickUser::lstUsers_DblClick() {
    TraceEvent("frmHSPickUser:lstUsers_DblClick");
    cmdOK->click();
}

void frmHSPickUser::cmdOK_Click() {
    TraceEvent("frmHSPickUser:cmdOK_Click");
    answer_ = ids_.at(static_cast<std::size_t>(lstUsers->currentRow()));
    hide();
}

void frmHSPickUser::cmdCancel_Click() {
    TraceEvent("frmHSPickUser:cmdCancel_Click");
    answer_ = 0;
    hide();
}

/// The answer is fetched before the form goes.
void frmHSPickUser::closeEvent(QCloseEvent* event) {
    event->ignore();
    cmdCancel->click();
}

SessionDesk::Picking AskForUser(const std::vector<HotSyncUser>& users, std::chrono::milliseconds wait,
                                std::uint32_t& picked) {
    auto* form = IfLoaded<frmHSPickUser>();
    if (!form) {
        form = &The<frmHSPickUser>();
        form->Fill(users);
        form->Show();
    }
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(wait);
    WaitInLoop([&] { return IfLoaded<frmHSPickUser>() == form && !form->Answer() && limit.isActive(); });
    // Somebody else has taken the question away.
    if (IfLoaded<frmHSPickUser>() != form) return SessionDesk::Picking::Refused;
    const auto answer = form->Answer();
    if (!answer) return SessionDesk::Picking::Waiting;
    form->Unload();
    picked = *answer;
    return picked == 0 ? SessionDesk::Picking::Refused : SessionDesk::Picking::Picked;
}

void StopAskingForUser() {
    if (auto* form = IfLoaded<frmHSPickUser>()) form->Unload();
}
