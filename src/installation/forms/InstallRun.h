#pragma once

#include "core/Text.h"
#include "installation/HandheldInstall.h"

#include <cstdint>
#include <memory>
#include <string>

class FormBehaviour;

/// What an install shows on the screen that has begun it.
class InstallScreen {
public:
    virtual ~InstallScreen() = default;

    /// A handheld is awaited: nothing else can be begun, the animation "SingleHotsync" plays beside the
    /// message ("Ready to install files on Handheld ...").
    virtual void SetActive(const Text& message) = 0;

    /// A HotSync runs, or the second one of a Live install is awaited, which the message tells then: the
    /// animation "syncZUKwhite" plays.
    virtual void SetActiveSync(const Text& message) = 0;

    /// The install is over, however it went.
    virtual void SetInactive() = 0;
};

/// An install that the operator has begun on a screen: `frmHHInstall` and the tour share it. It has a control
/// of its own, for which `frmMainSync` gives way, and Global.HHInstallActive while it lasts.
class InstallRun {
public:
    enum class End {
        NotBegun, ///< the operator has been told why, or would not have orders put at risk; nothing is queued
        Installed, ///< recorded in the list of installs
        Stopped,   ///< the handheld's version is another, or the files could not be queued: told
        Cancelled, ///< by Cancel, or the form has gone: nothing is queued any more, and nothing recorded
    };

    /// Both outlive it.
    InstallRun(FormBehaviour& form, InstallScreen& screen) : form_(form), screen_(screen) {}
    InstallRun(const InstallRun&) = delete;
    InstallRun& operator=(const InstallRun&) = delete;
    ~InstallRun();

    /// Holds one install, to its end: asks when orders are at risk (AskBeforeInstall), queues the files,
    /// waits for the handheld, for a Live install twice, and notes what was installed. A HotSync that did not
    /// bring everything is followed by another one. Before it the caller has found the HotSync Manager
    /// (IsHotSyncActiveOrTell), and for a Live install the tables.
    End Install(InstallKind kind, const std::string& user);

    /// Ends the install that runs, and takes back at once what is queued: Install goes on only when the
    /// screens have gone that were opened above it. Does nothing when none runs.
    void Cancel();

    /// Behind an install: what was installed on whom, and how many files and tables.
    const Text& Outcome() const { return outcome_; }

private:
    /// False when nothing is queued: the operator has been told why, or would not have orders put at risk.
    bool Queue(InstallKind kind, const std::string& user);
    void Arm();
    End Await();
    void TellCancelled(const std::string& user);
    bool GoesOn() const;
    void TakeBack();
    void Record(InstallKind kind, const std::string& user);

    FormBehaviour& form_;
    InstallScreen& screen_;
    std::unique_ptr<SFrmAX40> SFInstall;
    std::unique_ptr<HandheldInstall> install_;
    bool awaits_ = false;    ///< a handheld, with the files queued
    std::int32_t begun_ = 0; ///< sessions of the control
    bool inSession_ = false; ///< of the control
    bool hotSynced_ = false; ///< a HotSync has begun, as the control or the manager's window tells
    Text outcome_;
};
