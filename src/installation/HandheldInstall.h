#pragma once

#include "core/Text.h"
#include "installation/InstallFiles.h"
#include "sync/SFrmAX40.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The program's version as its caption has it: "Version 1.02" for "1.2.3". The third number is that of a
/// correction, which every handheld of the version takes. A number that is missing is 0; RunTimeFailure 6 for
/// a first one above 9 or a second one above 99.
std::string VersionCaption(std::string_view version);

/// What V_MAJOR of the version table is for that caption: its three digits, as "100".
std::string MajorVersion(std::string_view caption);

/// A version as the operator reads it: "1.00" for "100". The first character, a point and the last two.
std::string ShownVersion(std::string_view major);

/// One install of one handheld, from the files that are queued to the last table: the machine behind the
/// installer's control. A session of another handheld is counted as none.
///
/// The files wait in the user's install folder, which the HotSync Manager empties as it installs them: what
/// still lies there has not reached the handheld. A Live install sends the tables in the first session that
/// finds none of the files there. Program Only first fetches the version of the handheld and queues the files
/// when it is the program's own, for the end of that same session.
class HandheldInstall {
public:
    /// `managerFolder` is the HotSync Manager's, with a trailing separator; `user` is spelled as the manager
    /// knows it; `version` as VersionCaption.
    HandheldInstall(SFrmAX40& control, std::string managerFolder, std::string user, std::string_view version);
    HandheldInstall(const HandheldInstall&) = delete;
    HandheldInstall& operator=(const HandheldInstall&) = delete;
    ~HandheldInstall(); ///< takes nothing back: what is queued stays for the handheld

    /// Empties the install folder and queues the files of an install, and for Program Only none yet. A
    /// failure leaves none queued: RunTimeFailure 53 for a file that the install directory lacks, before
    /// anything is queued, or as SFrmAX40::AddInstall.
    void Begin(InstallKind kind);

    /// The control's event. Acts only while Global.InstallSession, and only for the handheld application.
    void SFInstall_HotSyncStatus(std::int32_t status);

    /// Takes back what is queued and has not been installed.
    void ClearHSInstallDir();

    bool IsComplete() const; ///< everything has reached the handheld

    /// The install cannot go on: why, in words. Nothing while it can.
    std::optional<Text> Stopped() const { return stopped_; }

    /// Behind a session of a Live install: all files are there, and the next session brings the tables.
    bool AwaitsTables() const;

    /// What is still to come otherwise, and what the operator does about it: behind a session that did not
    /// complete the install.
    Text Missing() const;

    std::size_t FileCount() const { return files_.size(); } ///< of the install
    std::size_t TableCount() const { return tables_.size(); }

    bool ProgramOnly = false;
    std::string InstallStage;    ///< "A>B" while the version is fetched, "B>C" when it matched; else empty
    std::int16_t PendingOps = 0; ///< queued and not yet reported done; of the version table alone
    bool InstallDone = false;    ///< a session that the install has taken part in has ended

private:
    void BeginSession();
    void QueueVersion();
    void QueueFiles();
    void TestVersion();
    std::optional<std::string> HandheldVersion() const;
    void RemoveVersionFiles() const;
    bool UserHasGone() const;
    std::size_t FilesWaiting() const;
    std::size_t TablesWaiting() const;

    SFrmAX40& SFInstall;
    std::string managerFolder_, user_, version_;
    std::string begun_;               ///< the manager's mark, once it was set
    std::vector<std::string> files_;  ///< names
    std::vector<std::string> tables_; ///< paths; of a Live install
    bool queued_ = false;             ///< the files
    bool tablesQueued_ = false;       ///< in the session that runs or was last
    std::string other_;               ///< whose session it was, when it was another's
    std::optional<Text> stopped_;
};

/// At the start, when nothing is queued yet: takes back what an install had queued whose program was killed,
/// or the next HotSync would replace the orders of a handheld that nobody thinks of any more. For whom;
/// nothing when no install was cut off. RunTimeFailure as ReadWholeFile, 76 without a manager's folder, and
/// 75 for files, or a mark of the manager, that cannot be removed: the office's mark stands as long as these
/// lie there.
std::optional<std::string> TakeBackInstall(std::string_view managerFolder);
