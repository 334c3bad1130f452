#pragma once

#include "core/Text.h"
#include "platform/Animation.h"
#include "sync/SessionScreen.h"

#include <QList>

#include <string>

class QLabel;
class QWidget;

namespace Ui {
class frmMain1;
}

/// What the main screen shows of unattended mode: what the armed mode does, the session that runs, and that
/// nothing else can be begun beside it.
class UnattendedView {
public:
    /// `form` is the main screen, its controls made.
    UnattendedView(QWidget& form, const Ui::frmMain1& controls);

    /// What the mode does stands in place of the tools and the QuickButtons, and whatever starts something
    /// else is disabled.
    void ShowArmed();

    /// Takes all of that back.
    void ShowIdle();

    /// A line that stays until the next one; an empty one takes it away.
    void ShowNotice(const Text& message);

    /// A session: who is in it, and how far its phases are.
    void ShowSession(const std::string& user);
    void ShowPhase(SyncPhaseImage phase, PhaseLook look);
    void ShowWaiting();
    /// Nothing is waited for any more.
    void StopWaiting();

    /// Whether a session is shown.
    bool InSession() const { return inSession_; }

private:
    void ShowActivities();
    void Disable();

    QWidget& form_;
    const Ui::frmMain1& controls_;
    Animation waiting_, session_; ///< play in aniHSWait and in aniHSStatus
    QList<QObject*> disabled_;    ///< buttons and menu entries that were live
    bool inSession_ = false;
};
