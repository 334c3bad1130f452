#pragma once

#include <optional>
#include <string>

/// The three phases of an unattended session that the main screen has a picture for.
enum class SyncPhaseImage { Upload, Clear, Download };

/// How a phase's picture looks: nothing to do, at work, or queued at the control.
enum class PhaseLook { Idle, Running, Queued };

/// What an unattended session shows, and what it has forms for. Each call returns when it is done; events of
/// the control may arrive meanwhile.
class SessionScreen {
public:
    virtual ~SessionScreen() = default;

    /// The boxes of a session.
    virtual void TellUnknownHandheld() = 0; ///< the Links table has no row for it; the mode is off
    virtual void TellBackupFailed() = 0;    ///< so nothing was queued

    /// A session begins: no phase has a picture, the user is shown, the session's animation plays.
    virtual void ShowBegun(const std::string& user) = 0;
    /// The picture of one phase; the other two stay.
    virtual void ShowPhase(SyncPhaseImage phase, PhaseLook look) = 0;
    /// The session is over: all three pictures idle, the waiting animation plays, no user is shown.
    virtual void ShowEnded() = 0;

    /// `frmAppend`, `frmAppendAudit` and `frmAppendIndex`, each to its end.
    virtual void Merge() = 0;
    /// `frmProgress`: the totals event of an upload that added orders.
    virtual void RecordUpload() = 0;
    /// Fills the grid of the recent uploads.
    virtual void GetPCTotals() = 0;

    /// The first row of that grid: what the PC took of the newest upload. Nothing when there is none.
    struct Upload {
        std::string Orders, Lines, Dollars; ///< as the grid shows them
    };
    virtual std::optional<Upload> NewestUpload() const = 0;

    /// Counts the records of the tables again, and shows them.
    virtual void RefreshRecordCounts() = 0;
    /// Writes the status list and draws the bricks of the unattended family.
    virtual void ShowHHStatus() = 0;
};
