#include "installation/forms/frmHHInstall.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "installation/InstallList.h"
#include "platform/Convert.h"
#include "platform/HelpLine.h"
#include "platform/HotSyncManager.h"
#include "platform/Look.h"
#include "platform/MainScreen.h"
#include "platform/ManagerWindow.h"
#include "platform/Registry.h"
#include "quality/forms/QCRun.h"
#include "sync/Status.h"
#include "sync/forms/frmChgLink.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QHeaderView>

#include <memory>
#include <utility>

frmHHInstall::frmHHInstall() {
    setupUi(this);
    waiting_.SetLabel(*aniHSWait);
    syncing_.SetLabel(*aniHS);
}

void frmHHInstall::Form_Load() {
    TraceEvent("frmHHInstall:Form_Load");
    setWindowIcon(Picture("tool-install"));
    // Room for the longest hint and the largest state from the first, so that nothing moves.
    lblMessage->setMinimumHeight(4 * lblMessage->fontMetrics().lineSpacing());
    picInstall->setMinimumHeight(11 * lblMessage->fontMetrics().lineSpacing());
    help_ = new HelpLine(*lblMessage, msg::HintInstalls);
    const std::pair<QWidget*, MessageId> hints[] = {
        {cmdDemo, msg::HintDemo},       {cmdLive, msg::HintLive},        {cmdProgram, msg::HintProgram},
        {cboHSUsers, msg::HintHSUsers}, {cmdLinks, msg::HintLinksTable}, {cmdReset, msg::HintResetInstalls},
        {cmdManager, msg::TipManager},  {cmdCancel, msg::TipClose}};
    for (const auto& [control, hint] : hints) help_->Add(*control, hint);
    FGTot->SetEmptyText(msg::lblNoHandhelds);
    FGTot->horizontalHeader()->setStretchLastSection(true);
    if (!LoadUsers()) return Unload();
    SetInactive();
    cboHSUsers->setFocus();
}

void frmHHInstall::Form_GotFocus() {
    TraceEvent("frmHHInstall:Form_GotFocus");
    if (!busy_) ShowReady();
}

void frmHHInstall::Form_Unload() {
    TraceEvent("frmHHInstall:Form_Unload");
    run_.Cancel();
    // The bricks of the manual downloads, and the list of handhelds that goes with them.
    if (auto* main = IfMainScreen(); main && !main->IsOver()) main->GetHHBricksStd();
}

// ---- the handhelds ----

/// Fills the list of users and that of the installs. False when the Links table cannot be read: the operator
/// has been told.
bool frmHHInstall::LoadUsers() {
    TraceEvent("frmHHInstall:LoadUsers");
    cboHSUsers->clear();
    try {
        for (const std::string& user : LinkIDs()) {
            if (!user.empty()) cboHSUsers->addItem(ToQt(std::string_view(user)));
        }
        Registry registry;
        TakeInLinks(registry);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
    // Who was chosen before the table was looked at stays chosen.
    cboHSUsers->setCurrentIndex(user_.empty() ? -1 : cboHSUsers->findText(ToQt(std::string_view(user_))));
    user_ = FromQt(cboHSUsers->currentText());
    ShowList();
    return true;
}

void frmHHInstall::ShowList() {
    GetList();
    if (auto* main = IfMainScreen()) main->GetHHBricksInst();
}

void frmHHInstall::GetList() {
    std::vector<std::vector<Text>> rows;
    for (const InstallRow& row : ::GetList(Registry())) {
        rows.push_back({Text::Value(std::string_view(row.HHSyncID)),
                        Text::Value(std::string_view(row.HHStatusDT)), ShownType(row)});
    }
    std::vector<GridHeading> headings{{msg::FGTotID}, {msg::FGTotDateTime, SortKind::Date}, {msg::FGTotType}};
    FGTot->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)));
}

void frmHHInstall::cboHSUsers_Click() {
    TraceEvent("frmHHInstall:cboHSUsers_Click");
    user_ = FromQt(cboHSUsers->currentText());
    Enable(true);
    ShowReady();
}

void frmHHInstall::cmdLinks_Click() {
    TraceEvent("frmHHInstall:cmdLinks_Click");
    ShowTable(ViewLink, ShowMode::Modal);
    WaitWhile([] { return IfLoaded<frmViewGrid>() || IfLoaded<frmViewData>() || IfLoaded<frmChgLink>(); });
    if (IsOver()) return;
    if (!LoadUsers()) return Unload();
    Enable(true);
    ShowReady();
}

/// Open while a handheld is awaited too: whoever has none presses HotSync on the manager's stand-in.
void frmHHInstall::cmdManager_Click() {
    TraceEvent("frmHHInstall:cmdManager_Click");
    ShowHotSyncManager(*this);
}

void frmHHInstall::cmdReset_Click() {
    TraceEvent("frmHHInstall:cmdReset_Click");
    try {
        Registry registry;
        ResetInstalls(registry);
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    ShowList();
}

// ---- the installs ----

void frmHHInstall::cmdDemo_Click() {
    TraceEvent("frmHHInstall:cmdDemo_Click");
    InstallDemo();
}

void frmHHInstall::cmdLive_Click() {
    TraceEvent("frmHHInstall:cmdLive_Click");
    if (!IsHotSyncActiveOrTell()) return;
    busy_ = true;
    Enable(false);
    const bool passed = PassQualityCheck(*this);
    if (IsOver()) return;
    SetInactive();
    if (passed) InstallLive();
}

void frmHHInstall::cmdProgram_Click() {
    TraceEvent("frmHHInstall:cmdProgram_Click");
    InstallProgram();
}

void frmHHInstall::InstallDemo() {
    TraceEvent("frmHHInstall:InstallDemo");
    if (IsHotSyncActiveOrTell()) Install(InstallKind::Demo);
}

void frmHHInstall::InstallLive() {
    TraceEvent("frmHHInstall:InstallLive");
    try {
        OpenLiveTables();
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    Tell(msg::TwoHotsyncs, Icon::Information);
    if (!IsOver()) Install(InstallKind::Live);
}

void frmHHInstall::InstallProgram() {
    TraceEvent("frmHHInstall:InstallProgram");
    if (IsHotSyncActiveOrTell()) Install(InstallKind::Program);
}

void frmHHInstall::Install(InstallKind kind) {
    const InstallRun::End end = run_.Install(kind, user_);
    if (IsOver()) return;
    if (end == InstallRun::End::Cancelled) return Unload();
    if (end != InstallRun::End::Installed) return;
    GetList();
    lblInstallMsg->setText(ToQt(run_.Outcome()));
}

void frmHHInstall::cmdCancel_Click() {
    TraceEvent("frmHHInstall:cmdCancel_Click");
    if (!busy_) return Unload();
    run_.Cancel();
}

// ---- what the screen shows ----

void frmHHInstall::SetActive(const Text& message) {
    TraceEvent("frmHHInstall:SetActive");
    busy_ = true;
    Enable(false);
    help_->Add(*cmdCancel, msg::HintCancelInstall);
    syncing_.Stop();
    waiting_.Play("SingleHotsync");
    lblSyncMsg->hide();
    lblHSWait->show();
    lblInstallMsg->setText(ToQt(message));
}

void frmHHInstall::SetActiveSync(const Text& message) {
    TraceEvent("frmHHInstall:SetActiveSync");
    waiting_.Stop();
    syncing_.Play("syncZUKwhite");
    lblHSWait->hide();
    lblSyncMsg->show();
    lblInstallMsg->setText(ToQt(message));
}

void frmHHInstall::SetInactive() {
    TraceEvent("frmHHInstall:SetInactive");
    busy_ = false;
    waiting_.Stop();
    syncing_.Stop();
    for (QLabel* label : {lblHSWait, lblSyncMsg}) label->hide();
    help_->Add(*cmdCancel, msg::TipClose);
    Enable(true);
    ShowReady();
}

void frmHHInstall::ShowReady() {
    const MessageId state = cboHSUsers->count() == 0 ? msg::NoHSUsers
                            : user_.empty()          ? msg::SelectHSUser
                                                     : msg::ChooseInstall;
    lblInstallMsg->setText(ToQt(Text(state)));
}

/// What can be begun: while nothing runs, and an install for the user who is chosen.
void frmHHInstall::Enable(bool enabled) {
    if (!enabled) cmdCancel->setFocus(); // of what can be pressed then it is the next
    for (QWidget* install : {cmdDemo, cmdLive, cmdProgram}) install->setEnabled(enabled && !user_.empty());
    for (QWidget* control : {static_cast<QWidget*>(cboHSUsers), static_cast<QWidget*>(cmdLinks),
                             static_cast<QWidget*>(cmdReset)})
        control->setEnabled(enabled);
}
