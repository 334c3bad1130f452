#include "hotsync/forms/frmHSManager.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "hotsync/forms/frmHSExit.h"
#include "hotsync/forms/frmHSSettings.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "platform/WindowPlace.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int LinesShown = 200;

ManagerDesk& Desk() {
    return *Global.TheManagerDesk;
}

Text ResultOf(const HotSyncUser& user) {
    if (Desk().UserInSession() == user.Id) return msg::HSRunning;
    if (user.LastSync.IsZero()) return {};
    return user.Incomplete ? msg::HSIncomplete : msg::HSComplete;
}

std::vector<Text> RowOf(const HotSyncUser& user) {
    const bool never = user.LastSync.IsZero();
    return {Text::Value(std::string_view(user.Name)), Text::Value(static_cast<std::int64_t>(user.Id)),
            never ? Text(msg::HSNever) : Text::Value(std::string_view(DateAndTime(user.LastSync))),
            ResultOf(user)};
}

Text WhereItListens(const ListeningState& state) {
    if (state.Port == 0) return Words(msg::HSNotListening, Text::Path(std::string_view(state.Why)));
    const Text place = state.Address == "*"
                           ? Text(msg::HSListeningAtAll)
                           : Words(msg::HSListeningAt, Text::Value(std::string_view(state.Address)));
    return Words(place + msg::HSPort, Text::Value(static_cast<std::int64_t>(state.Port)));
}

MessageId WordsFor(HotSyncUsers::NameFault fault) {
    switch (fault) {
    case HotSyncUsers::NameFault::TooLong:
        return msg::HSNameTooLong;
    case HotSyncUsers::NameFault::NoFileName:
        return msg::HSNameNoFile;
    case HotSyncUsers::NameFault::Taken:
        return msg::HSNameTaken;
    default:
        return msg::HSNameEmpty;
    }
}

} // namespace

frmHSManager::frmHSManager() {
    setupUi(this);
    setWindowFlags(Qt::Window);
}

void frmHSManager::Form_Load() {
    TraceEvent("frmHSManager:Form_Load");
    setWindowIcon(Picture("Hotsync16-256"));
    rtbLog->setMaximumBlockCount(LinesShown); // a manager runs for months
    rtbLog->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    FG1->SetEmptyText(msg::HSNoUsers);
    Desk().UsersChanged = [this] { ShowUsers(); };
    Desk().StateChanged = [this] {
        ShowState();
        ShowUsers();
    };
    Desk().LogWritten = [this](const std::string& line) { rtbLog->appendPlainText(ToQt(line)); };
    tray_ = std::make_unique<Tray>([this] { Open(); }, [this] { cmdExit->click(); });
    ShowUsers();
    ShowState();
    ShowLog();
}

void frmHSManager::Form_Unload() {
    TraceEvent("frmHSManager:Form_Unload");
    tray_.reset();
    Desk().UsersChanged = nullptr;
    Desk().StateChanged = nullptr;
    Desk().LogWritten = nullptr;
}

// ---- what it shows ----

void frmHSManager::ShowUsers() {
    const HotSyncUser* selected = SelectedUser();
    const std::uint32_t id = selected ? selected->Id : 0;
    std::vector<std::vector<Text>> rows;
    shown_.clear();
    for (const HotSyncUser& user : Desk().Users().All()) {
        rows.push_back(RowOf(user));
        shown_.push_back(user.Id);
    }
    std::vector<GridHeading> headings{{msg::HSName, SortKind::Text},
                                      {msg::HSId, SortKind::Number},
                                      {msg::HSLastSync, SortKind::Date},
                                      {msg::HSResult, SortKind::Text}};
    FG1->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)),
                    QStringLiteral("frmHSManager"));
    if (const auto at = std::find(shown_.begin(), shown_.end(), id); at != shown_.end())
        FG1->SelectRecord(static_cast<std::int32_t>(at - shown_.begin()) + 1);
    FG1_SelChange();
}

void frmHSManager::ShowState() {
    const ListeningState listening = Desk().Listening();
    Text state = WhereItListens(listening);
    const auto inSession = Desk().UserInSession();
    const HotSyncUser* user = inSession ? Desk().Users().FindId(*inSession) : nullptr;
    if (user) state = Lines(state, Words(msg::HSInSession, Text::Value(std::string_view(user->Name))));
    lblState->setText(ToQt(state));
    QPalette tones = palette();
    if (listening.Port == 0) tones.setColor(QPalette::WindowText, WarningTone());
    lblState->setPalette(tones);
}

void frmHSManager::ShowLog() {
    for (const std::string& line : Desk().Log().Last(LinesShown)) rtbLog->appendPlainText(ToQt(line));
    rtbLog->verticalScrollBar()->setValue(rtbLog->verticalScrollBar()->maximum());
}

/// Nothing when no row is selected, or when its user has gone.
const HotSyncUser* frmHSManager::SelectedUser() const {
    const auto record = static_cast<std::size_t>(FG1->SelectedRecord());
    return record == 0 || record > shown_.size() ? nullptr : Desk().Users().FindId(shown_[record - 1]);
}

void frmHSManager::FG1_SelChange() {
    const bool any = SelectedUser() != nullptr;
    cmdRename->setEnabled(any);
    cmdDelete->setEnabled(any);
    cmdStandIn->setEnabled(any);
}

// ---- the users ----

/// Asks until the name is one that the user with this id can have, or the operator gives up.
bool frmHSManager::AskName(const Text& prompt, std::uint32_t id, std::string& name) {
    while (true) {
        const auto answer = Global.TheOperator->InputBox(prompt, name);
        if (!answer || IsOver()) return false;
        name = Trim(*answer);
        const auto fault = Desk().Users().WhyNotAName(name, id);
        if (fault == HotSyncUsers::NameFault::None) return true;
        Tell(WordsFor(fault), Icon::Warning);
        if (IsOver()) return false;
    }
}

void frmHSManager::Change(const std::function<void()>& change) {
    try {
        change();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::HSNotChanged, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

bool frmHSManager::IsInSession(std::uint32_t id) {
    if (Desk().UserInSession() != id) return false;
    Tell(msg::HSUserInSession, Icon::Warning);
    return true;
}

void frmHSManager::FG1_RequestEdit() {
    TraceEvent("frmHSManager:FG1_RequestEdit");
    cmdRename->click();
}

void frmHSManager::cmdNew_Click() {
    TraceEvent("frmHSManager:cmdNew_Click");
    std::string name;
    if (!AskName(msg::HSAskNewName, 0, name)) return;
    Change([&] {
        const std::uint32_t id = Desk().Users().New(name).Id;
        const auto at = std::find(shown_.begin(), shown_.end(), id);
        if (at != shown_.end()) FG1->SelectRecord(static_cast<std::int32_t>(at - shown_.begin()) + 1);
    });
}

void frmHSManager::cmdRename_Click() {
    TraceEvent("frmHSManager:cmdRename_Click");
    const HotSyncUser* user = SelectedUser();
    if (!user) return;
    const std::uint32_t id = user->Id;
    std::string name = user->Name;
    if (Desk().Users().InstallWaits(*user)) return Tell(msg::HSInstallWaits, Icon::Warning);
    // A session may have begun while the operator typed.
    if (IsInSession(id) || !AskName(msg::HSAskName, id, name) || IsInSession(id)) return;
    Change([&] { Desk().Users().Rename(id, name); });
}

void frmHSManager::cmdDelete_Click() {
    TraceEvent("frmHSManager:cmdDelete_Click");
    const HotSyncUser* user = SelectedUser();
    if (!user) return;
    const std::uint32_t id = user->Id;
    const Text name = Text::Value(std::string_view(user->Name));
    if (IsInSession(id) || !AskYesNo(Lines(name, msg::HSAskDelete), Icon::Warning)) return;
    if (IsOver() || IsInSession(id)) return;
    Change([&] { Desk().Users().Delete(id); });
}

void frmHSManager::cmdStandIn_Click() {
    TraceEvent("frmHSManager:cmdStandIn_Click");
    const HotSyncUser* user = SelectedUser();
    if (!user) return;
    try {
        Desk().OpenStandIn(*user);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::HSStandInNotStarted, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

void frmHSManager::cmdSettings_Click() {
    TraceEvent("frmHSManager:cmdSettings_Click");
    The<frmHSSettings>().Show(ShowMode::Modal);
}

// ---- the window ----

void frmHSManager::Open() {
    if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
    Show();
}

void frmHSManager::PutAway() {
    if (tray_ && tray_->IsThere()) {
        KeepPlace(*this); // what is opened from the tray comes where it stood
        hide();
    } else {
        showMinimized();
        // A dialog that has never been shown finds its place as it opens, and forgets its state over that.
        setWindowState(windowState() & ~Qt::WindowMinimized);
        setWindowState(windowState() | Qt::WindowMinimized);
    }
}

void frmHSManager::closeEvent(QCloseEvent* event) {
    event->ignore();
    PutAway();
}

void frmHSManager::cmdHide_Click() {
    TraceEvent("frmHSManager:cmdHide_Click");
    PutAway();
}

void frmHSManager::cmdExit_Click() {
    TraceEvent("frmHSManager:cmdExit_Click");
    AskToExit([] { Desk().End(); });
}
