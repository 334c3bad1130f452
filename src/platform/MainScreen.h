#pragma once

#include "platform/Form.h"

#include <string>

class Text;
enum class PhaseLook;
enum class SyncPhaseImage;
struct UploadRow;

/// What the other screens ask of the main screen, which stands above all of them.
class MainScreen : public MainForm {
public:
    /// Fills the grid of recent uploads.
    virtual void GetPCTotals() = 0;

    /// The newest of them; nothing when there is none.
    virtual const UploadRow* NewestUpload() const = 0;

    /// Writes the record counts of customers, items and orders on the page "System Summary".
    virtual void RefreshRecordCounts() = 0;

    /// Draws the bricks of a family, one for each record of the Links table, and hides the others.
    virtual void GetHHBricks() = 0;
    virtual void GetHHBricksStd() = 0;
    virtual void GetHHBricksInst() = 0;

    /// Says at the foot of the screen what was done, until another screen is opened.
    virtual void ShowOutcome(const Text& outcome) = 0;

    /// Brings the screen to the armed form of unattended mode: what it does stands in place of the tools and
    /// the QuickButtons, and whatever starts something else is disabled.
    virtual void LoadActiveRemoteSync() = 0;

    /// Brings the screen to the idle form of the mode, and enables what the other has disabled.
    virtual void LoadInactiveRemoteSync() = 0;

    /// Whether the ways to a registration of the HotSync users are open. One at a time: it waits for windows
    /// of the other programs.
    virtual void EnableRegistration(bool enabled) = 0;

    /// A session of the armed mode: who is in it, and how far its phases are.
    virtual void ShowSession(const std::string& user) = 0;
    virtual void ShowPhase(SyncPhaseImage phase, PhaseLook look) = 0;
    virtual void ShowWaiting() = 0;

    /// A handheld that is not in the Links table has turned the mode off, which waits to be stopped.
    virtual void ShowUnattendedOff() = 0;

    /// The mode stops when the session that runs is over, and says so.
    virtual void StopAfterSession(const Text& message) = 0;

    /// The session is over: does what has waited for it.
    virtual void SessionIsOver() = 0;
};

/// The main screen if it is loaded, else nothing.
MainScreen* IfMainScreen();
