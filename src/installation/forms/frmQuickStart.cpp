#include "installation/forms/frmQuickStart.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "help/HTMLHelp.h"
#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "platform/MainScreen.h"
#include "platform/ManagerLine.h"
#include "platform/ManagerWindow.h"
#include "sync/Links.h"
#include "sync/Status.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/UpdateHSUsers.h"
#include "sync/forms/frmHSID.h"
#include "sync/forms/frmMainSync.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

#include <utility>

frmQuickStart::frmQuickStart() : QuickStartPage(QuickStart, msg::pageQuickStart) {
    AddText(msg::QuickDemoText);
    AddText(msg::QuickDemoSteps);
    const std::pair<QAbstractButton*, MessageId> labels[] = {
        {&AddLabel("lblCompany", msg::lblDemoCompany), msg::TipQuickCompany},
        {&AddLabel("lblManager", msg::cmdManager), msg::TipManager},
        {&AddLabel("lblInstall", msg::lblInstall), msg::TipQuickInstall}};
    for (const auto& [label, tip] : labels) label->setToolTip(PlainTip(ToQt(Text(tip))));
    AddText(msg::QuickOwnText);

    aniHSWait = new QLabel;
    aniHSWait->setObjectName(QStringLiteral("aniHSWait"));
    lblInstallMsg = new QLabel;
    lblInstallMsg->setObjectName(QStringLiteral("lblInstallMsg"));
    lblInstallMsg->setTextFormat(Qt::PlainText);
    lblInstallMsg->setWordWrap(true);
    const int row = grdPage->rowCount();
    grdPage->addWidget(aniHSWait, row, 0, Qt::AlignCenter);
    grdPage->addWidget(lblInstallMsg, row, 1, 1, 2);
    animation_.SetLabel(*aniHSWait);

    cmdCancel = new QPushButton;
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setProperty("Tag", MessageId(msg::Cancel).Number);
    buttons_->insertWidget(buttons_->count() - 2, cmdCancel);
}

void frmQuickStart::Form_Load() {
    QuickStartPage::Form_Load();
    cmdCancel->setToolTip(PlainTip(ToQt(Text(msg::HintCancelInstall))));
    cmdCancel->hide();
    aniHSWait->hide();
}

void frmQuickStart::Form_Unload() {
    Trace("Form_Unload");
    run_.Cancel();
    // Behind an install the bricks of the manual downloads, and the list of handhelds that goes with them.
    if (auto* main = IfMainScreen(); main && !main->IsOver()) main->GetHHBricksStd();
}

void frmQuickStart::lblCompany_Click() {
    Trace("lblCompany_Click");
    ShowHelpTopic("Demo_Company.htm");
}

void frmQuickStart::lblManager_Click() {
    Trace("lblManager_Click");
    ShowHotSyncManager(*this);
}

// ---- the install ----

void frmQuickStart::lblInstall_Click() {
    Trace("lblInstall_Click");
    if (!IsHotSyncActiveOrTell() || !AgreesToInstall() || IsOver()) return;
    Enable(false);
    const bool ready = UpdateHS(*this);
    // The manager that was started anew needs a moment before it can tell its users.
    if (ManagerLine line; ready) AwaitManager(*this, line);
    if (IsOver()) return;
    if (ready) {
        lblQ1->setText(ToQt(Text(msg::lblInstallHH)));
        if (ChooseUser() && EnterInLinks()) InstallDemo();
    }
    if (!IsOver()) SetInactive();
}

bool frmQuickStart::AgreesToInstall() {
    Text question = msg::InstallSteps;
    for (const MessageId step : {msg::InstallStep1, msg::InstallStep2, msg::InstallStep3, msg::InstallStep4,
                                 msg::InstallStep5, msg::InstallStepsGo})
        question = Lines(question, step);
    return Global.TheOperator->Ask({question, msg::Yes, msg::No,
                                    "Initial_Installation_ZUK_Tramble_on_Handheld_Unit_.htm",
                                    msg::lblInstallHH});
}

/// Asks for a user of the HotSync Manager, which leaves it in Global.NewHSUser. In an office without a
/// handheld it is the first one.
bool frmQuickStart::ChooseUser() {
    Global.NewHSUser.clear();
    auto& users = The<frmHSID>();
    if (LinkIDs().empty()) users.AskForDefault();
    users.Show(ShowMode::Modal);
    if (IsOver()) return false;
    if (Global.NewHSUser.empty()) Say(msg::QuickNotInstalled);
    return !Global.NewHSUser.empty();
}

/// A handheld that does not stand there could take orders, and not bring them home. False when it cannot be
/// entered: the operator has been told.
bool frmQuickStart::EnterInLinks() {
    const Text user = Text::Value(std::string_view(Global.NewHSUser));
    bool entered = false;
    Text refused;
    UnloadMainSync(); // a session would write the same table
    try {
        entered = AddLink(Global.NewHSUser);
    } catch (const RunTimeFailure& failure) {
        refused = failure.Number() == 6 ? Lines(msg::QuickNameTooLong, user)
                                        : Lines(msg::FileError, Text::Path(std::string_view(failure.what())));
    }
    LoadMainSync();
    if (!refused.IsEmpty()) {
        Tell(refused, Icon::Stop);
        return false;
    }
    if (!entered) return true;
    BeginHHStatusAnew();
    Say(Words(user, msg::QuickLinked));
    return !IsOver();
}

void frmQuickStart::InstallDemo() {
    Trace("InstallDemo");
    const InstallRun::End end = run_.Install(InstallKind::Demo, Global.NewHSUser);
    if (IsOver()) return;
    Say(end == InstallRun::End::Installed ? Lines(run_.Outcome(), msg::QuickAfterInstall)
                                          : Text(msg::QuickNotInstalled));
}

void frmQuickStart::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    if (!installing_) return Unload();
    run_.Cancel();
}

// ---- what the page shows ----

void frmQuickStart::SetActive(const Text& message) {
    Trace("SetActive");
    installing_ = true;
    animation_.Play("SingleHotsync");
    Say(message);
}

void frmQuickStart::SetActiveSync(const Text& message) {
    Trace("SetActiveSync");
    animation_.Play("syncZUKwhite");
    Say(message);
}

void frmQuickStart::SetInactive() {
    Trace("SetInactive");
    installing_ = false;
    animation_.Stop();
    lblQ1->setText(ToQt(Text(msg::pageQuickStart)));
    Enable(true);
}

/// On a small screen the page scrolls, and what is said stands at its foot.
void frmQuickStart::Say(const Text& message) {
    lblInstallMsg->setText(ToQt(message));
    auto& area = *findChild<QScrollArea*>(QStringLiteral("scrPage"));
    area.widget()->layout()->activate();
    area.ensureWidgetVisible(lblInstallMsg);
}

/// While something runs there is only the way out of it, the help and the manager.
void frmQuickStart::Enable(bool enabled) {
    for (auto* button : findChildren<QAbstractButton*>()) {
        const QString name = button->objectName();
        if (name == QLatin1String("cmdPrevious") || button == cmdCancel) continue; // nothing stands before it
        // The stand-in handheld that is to press HotSync is opened in the manager.
        const bool isAlwaysOpen = name == QLatin1String("cmdHelp") || name == QLatin1String("lblCompany") ||
                                  name == QLatin1String("lblManager");
        if (!isAlwaysOpen) button->setEnabled(enabled);
    }
    cmdCancel->setVisible(!enabled);
    if (enabled)
        findChild<QPushButton*>(QStringLiteral("cmdNext"))->setFocus();
    else
        cmdCancel->setFocus();
}
