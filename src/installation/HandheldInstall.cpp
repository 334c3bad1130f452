#include "installation/HandheldInstall.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"
#include "sync/InstallFolder.h"
#include "sync/SessionStatus.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::int32_t Creator = 0x5A554B32; // "ZUK2"

/// Where the handheld's version table lands: a folder of its own below the install directory, since the
/// office's empty table of that name lies in the directory itself, and so does the version of the install.
std::string VersionFolder() {
    return Global.InstallPath + AddBackslash("HHVersion");
}

std::string VersionTable() {
    return VersionFolder() + "ZUKVER.DBF";
}

/// Lies there while files of an install may be queued, and names the user, for the next start. The manager
/// has a mark of its own (InstallMark).
std::string MarkPath() {
    return Global.InstallPath + "InstallBegun.txt";
}

Text Number(std::size_t number) {
    return Text::Value(static_cast<std::int64_t>(number));
}

} // namespace

// ---- versions ----

std::string VersionCaption(std::string_view version) {
    const std::vector<std::string_view> parts = SplitText(version, ".");
    const auto part = [&](std::size_t place, int most) {
        const double number = place < parts.size() ? ToNumber(parts[place]) : 0;
        if (number < 0 || number > most) throw RunTimeFailure(6, std::string(version));
        return std::to_string(static_cast<int>(number));
    };
    const std::string minor = part(1, 99);
    return "Version " + part(0, 9) + "." + (minor.size() < 2 ? "0" : "") + minor;
}

std::string MajorVersion(std::string_view caption) {
    return std::string(caption.substr(8, 1)) + std::string(caption.substr(10, 2));
}

std::string ShownVersion(std::string_view major) {
    const std::size_t two = std::min<std::size_t>(2, major.size());
    return std::string(major.substr(0, 1)) + "." + std::string(major.substr(major.size() - two));
}

// ---- the start ----

HandheldInstall::HandheldInstall(SFrmAX40& control, std::string managerFolder, std::string user,
                                 std::string_view version)
    : SFInstall(control),
      managerFolder_(std::move(managerFolder)),
      user_(std::move(user)),
      version_(MajorVersion(VersionCaption(version))) {}

HandheldInstall::~HandheldInstall() {
    if (!begun_.empty()) RemoveQuietly(begun_);
    // Where the manager's stays, the next start has to know: it would keep every install from the user.
    if (begun_.empty() || !FileExists(begun_)) RemoveQuietly(MarkPath());
}

void HandheldInstall::Begin(InstallKind kind) {
    ProgramOnly = kind == InstallKind::Program;
    InstallStage.clear();
    PendingOps = 0;
    InstallDone = queued_ = tablesQueued_ = false;
    stopped_.reset();
    files_ = FilesOf(kind);
    tables_ = kind == InstallKind::Live ? LiveTables() : std::vector<std::string>();
    for (const std::string& file : files_) {
        if (!FileExists(Global.InstallPath + file)) throw RunTimeFailure(53, Global.InstallPath + file);
    }
    // What an earlier install has left there would come along.
    ClearHSInstallDir();
    const std::string folder = InstallFolder(managerFolder_, user_);
    MakePath(folder);
    WriteWholeFile(MarkPath(), user_ + "\r\n");
    begun_ = InstallMark(folder);
    WriteWholeFile(begun_, user_ + "\r\n");
    if (!ProgramOnly) QueueFiles();
    // The prepared data needs no table: no status of its sessions is heeded.
    Global.InstallSession = kind != InstallKind::Demo;
}

void HandheldInstall::QueueFiles() {
    try {
        for (const std::string& file : files_) SFInstall.AddInstall(Global.InstallPath + file, user_);
    } catch (const RunTimeFailure&) {
        ClearHSInstallDir(); // half an application is worse than the one that is there
        throw;
    }
    queued_ = true;
}

void HandheldInstall::ClearHSInstallDir() {
    ::ClearHSInstallDir(managerFolder_, user_);
}

// ---- the sessions ----

void HandheldInstall::SFInstall_HotSyncStatus(std::int32_t status) {
    TraceEvent("frmHHInstall:SFInstall_HotSyncStatus");
    if (!Global.InstallSession || SFInstall.CreatorID() != Creator) return;
    if (status == SessionBegun) BeginSession();
    if (!other_.empty() || stopped_) return;
    if (status == SessionEnded) {
        InstallDone = true;
        return;
    }
    if (status == OperationFinished) --PendingOps;
    if (PendingOps < 1 && SameText(InstallStage, "A>B")) TestVersion();
    if (PendingOps < 1 && SameText(InstallStage, "B>C")) {
        InstallStage.clear();
        try {
            QueueFiles();
        } catch (const RunTimeFailure& failure) {
            stopped_ = Lines(msg::NothingQueued, Text::Path(std::string_view(failure.what())));
        }
    }
}

void HandheldInstall::BeginSession() {
    InstallStage.clear();
    PendingOps = 0;
    tablesQueued_ = false;
    other_ = SameText(SFInstall.UserName(), user_) ? std::string() : SFInstall.UserName();
    if (!other_.empty()) return;
    if (ProgramOnly) return QueueVersion();
    // The tables follow the program that reads them: not in the session that still brings its files.
    if (FilesWaiting() > 0) return;
    for (const std::string& table : tables_) SFInstall.QueueDownload(table);
    tablesQueued_ = !tables_.empty();
}

void HandheldInstall::QueueVersion() {
    if (queued_) return; // a session that breaks off leaves the files for the next one
    MakePath(VersionFolder());
    RemoveVersionFiles();
    SFInstall.QueueUpload(VersionTable());
    PendingOps = 1;
    InstallStage = "A>B";
}

void HandheldInstall::TestVersion() {
    const std::optional<std::string> onHandheld = HandheldVersion();
    RemoveVersionFiles();
    InstallStage.clear();
    if (!onHandheld) return; // it did not come: another HotSync may bring it
    if (*onHandheld == version_) {
        InstallStage = "B>C";
        return;
    }
    const auto shown = [](const std::string& major) {
        return Text::Value(std::string_view(ShownVersion(major)));
    };
    Text refusal = msg::OSVersion;
    if (!onHandheld->empty()) refusal = Words(refusal, shown(*onHandheld));
    stopped_ = Words(refusal, msg::CannotUpgrade, shown(version_)) + msg::InstallNewVersion;
}

/// V_MAJOR of the first record, trimmed, and empty without a record. Nothing when the table did not come or
/// cannot be read.
std::optional<std::string> HandheldInstall::HandheldVersion() const {
    if (!SFInstall.EndedWell(VersionTable())) return std::nullopt;
    try {
        TableScan table(VersionTable());
        const int major = table.Layout().Find(FieldKey("V_MAJOR"));
        return table.Next() && major > 0 ? std::string(table.Trimmed(major)) : std::string();
    } catch (const RunTimeFailure&) {
        return std::nullopt;
    }
}

void HandheldInstall::RemoveVersionFiles() const {
    RemoveQuietly(VersionTable());
    RemoveQuietly(VersionFolder() + "TZUK20000_ZUKVER.PDB");
}

// ---- how far it is ----

std::size_t HandheldInstall::FilesWaiting() const {
    if (!queued_) return files_.size();
    if (UserHasGone()) return files_.size();
    const std::string folder = InstallFolder(managerFolder_, user_);
    return static_cast<std::size_t>(std::count_if(
        files_.begin(), files_.end(), [&](const std::string& file) { return FileExists(folder + file); }));
}

/// The manager's mark goes with the folder of its user, also when another user of the name is made.
bool HandheldInstall::UserHasGone() const {
    return !begun_.empty() && !FileExists(begun_);
}

std::size_t HandheldInstall::TablesWaiting() const {
    if (!tablesQueued_) return tables_.size();
    return static_cast<std::size_t>(
        std::count_if(tables_.begin(), tables_.end(),
                      [&](const std::string& table) { return !SFInstall.EndedWell(table); }));
}

bool HandheldInstall::IsComplete() const {
    return FilesWaiting() == 0 && TablesWaiting() == 0;
}

bool HandheldInstall::AwaitsTables() const {
    return other_.empty() && !tables_.empty() && !tablesQueued_ && FilesWaiting() == 0;
}

Text HandheldInstall::Missing() const {
    if (UserHasGone()) return msg::UserHasGone;
    if (!other_.empty())
        return Lines(Words(msg::OtherHandheld, Text::Value(std::string_view(other_))), msg::PressAgain);
    if (ProgramOnly && !queued_) return Lines(msg::VersionNotRead, msg::PressAgain);
    if (const std::size_t files = FilesWaiting())
        return Lines(Words(msg::FilesWaiting, Number(files)), msg::PressAgain);
    return Lines(Words(msg::TablesWaiting, Number(TablesWaiting())), msg::PressAgain);
}

// ---- behind a kill ----

std::optional<std::string> TakeBackInstall(std::string_view managerFolder) {
    const std::string mark = MarkPath();
    if (!FileExists(mark)) return std::nullopt;
    const std::string content = ReadWholeFile(mark);
    std::optional<std::string> user(Trim(std::string_view(content).substr(0, content.find('\r'))));
    try {
        const std::string folder = InstallFolder(managerFolder, *user);
        ClearHSInstallDir(managerFolder, *user);
        // What could not be removed is known as long as the marks stand; the next start tries again.
        if (!FilesWithExtension(folder, "").empty()) throw RunTimeFailure(75, folder);
        Global.TheDisk->Remove(ResolvePath(InstallMark(folder)));
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() != 52) throw; // a mark that names no user has nothing to take back
        user.reset();
    }
    RemoveQuietly(mark);
    return user;
}
