#include "installation/forms/InstallRun.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "installation/InstallList.h"
#include "installation/OrdersAtRisk.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncControl.h"
#include "platform/HotSyncManager.h"
#include "platform/MainScreen.h"
#include "platform/Registry.h"
#include "platform/TitledWindow.h"
#include "sync/SessionStatus.h"
#include "sync/forms/frmMainSync.h"

#include <QApplication>

#include <algorithm>
#include <optional>

namespace {

bool ProgressWindowStands() {
    return FindWindow(QStringLiteral("Hotsync Progress")).has_value();
}

Text Number(std::size_t number) {
    return Text::Value(static_cast<std::int64_t>(number));
}

/// Lets `frmMainSync` give way to another control for as long as it lives.
class MainSyncAway {
public:
    MainSyncAway() { UnloadMainSync(); }
    MainSyncAway(const MainSyncAway&) = delete;
    MainSyncAway& operator=(const MainSyncAway&) = delete;
    ~MainSyncAway() { LoadMainSync(); }
};

} // namespace

InstallRun::~InstallRun() = default;

InstallRun::End InstallRun::Install(InstallKind kind, const std::string& user) {
    const MainSyncAway away;
    SFInstall = NewSFrmAX40();
    if (!Queue(kind, user)) return End::NotBegun;
    Arm();
    screen_.SetActive(msg::ReadyToInstall + Text::Value(std::string_view(user)) + msg::ReadyPressHotsync);

    awaits_ = true;
    const End end = Await();
    awaits_ = false;

    SFInstall->SetEnabled(false);
    if (end != End::Installed) TakeBack();
    Global.HHInstallActive = Global.InstallSession = false;
    if (end == End::Installed) Record(kind, user);
    if (!form_.IsOver()) screen_.SetInactive();
    if (end == End::Stopped) Tell(*install_->Stopped(), Icon::Stop);
    if (end == End::Cancelled && !Global.Ending) TellCancelled(user);
    SFInstall.reset();
    install_.reset();
    return end;
}

bool InstallRun::Queue(InstallKind kind, const std::string& user) {
    // The manager's folder for a user bears the manager's own spelling.
    const std::vector<std::string> known = KnownUsers(*SFInstall);
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const std::string& each) { return SameText(each, user); });
    if (found == known.end() && !known.empty()) {
        Tell(msg::UnknownUser, Icon::Warning);
        return false;
    }
    const std::string& spelled = found == known.end() ? user : *found;
    try {
        const std::optional<Text> atRisk = AskBeforeInstall(kind, user, Registry());
        if (atRisk && (!AskYesNo(*atRisk, Icon::Warning) || form_.IsOver())) return false;
        install_ = std::make_unique<HandheldInstall>(*SFInstall, HotSyncManagerFolder(), spelled,
                                                     PathFromQt(QApplication::applicationVersion()));
        install_->Begin(kind);
        return true;
    } catch (const RunTimeFailure& failure) {
        install_.reset();
        Tell(Lines(msg::NothingQueued, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

void InstallRun::Arm() {
    Global.HHInstallActive = true;
    inSession_ = hotSynced_ = false;
    begun_ = 0;
    SFInstall->HotSyncStatus = [this](std::int32_t status) {
        if (status == SessionBegun && GoesOn()) ++begun_;
        if (status == SessionBegun || status == SessionEnded) inSession_ = status == SessionBegun;
        install_->SFInstall_HotSyncStatus(status);
    };
    SFInstall->SetEnabled(true);
}

InstallRun::End InstallRun::Await() {
    for (std::int32_t seen = 0;; seen = begun_) {
        bool begun = false;
        LookUntil(form_, [&] {
            begun = begun_ > seen || ProgressWindowStands();
            return begun || !GoesOn();
        });
        hotSynced_ = hotSynced_ || begun;
        if (!GoesOn()) return End::Cancelled;
        screen_.SetActiveSync({});
        LookUntil(form_, [&] {
            const bool stands = ProgressWindowStands(); // a window that nobody finds stays
            return !GoesOn() || (!inSession_ && !stands);
        });
        if (!GoesOn()) return End::Cancelled;
        if (install_->Stopped()) return End::Stopped;
        if (install_->IsComplete()) return End::Installed;
        if (install_->AwaitsTables())
            screen_.SetActiveSync(msg::SecondHotsync);
        else
            screen_.SetActive(install_->Missing());
    }
}

/// Who has pressed Cancel knows it; who has closed the screen, or opened another one in its place, may not.
void InstallRun::TellCancelled(const std::string& user) {
    if (hotSynced_)
        Tell(msg::CancelledInHotsync, Icon::Warning);
    else if (form_.IsOver())
        Tell(Words(msg::InstallGivenUp, Text::Value(std::string_view(user))), Icon::Warning);
}

bool InstallRun::GoesOn() const {
    return Global.HHInstallActive && !form_.IsOver();
}

void InstallRun::Cancel() {
    if (!awaits_) return;
    Global.HHInstallActive = false;
    TakeBack();
}

/// No HotSync that follows installs anything.
void InstallRun::TakeBack() {
    SFInstall->SetEnabled(false);
    install_->ClearHSInstallDir();
    Global.InstallSession = false;
}

void InstallRun::Record(InstallKind kind, const std::string& user) {
    const MessageId type = InstallType(kind);
    Text amount = Words(msg::FilesInstalled, Number(install_->FileCount()));
    if (install_->TableCount() > 0)
        amount = Words(amount, msg::TablesInstalled, Number(install_->TableCount()));
    outcome_ = Lines(Words(type, msg::WasInstalled, Text::Value(std::string_view(user))), amount);
    try {
        Registry registry;
        RecordInstall(registry, user, type);
        if (auto* main = IfMainScreen()) main->GetHHBricksInst();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::StoreFailed, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
}
