#include "hotsync/Session.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "sync/InstallFolder.h"
#include "sync/SessionStatus.h"

#include <algorithm>
#include <cstdio>

namespace {

// What this desktop says that it speaks. Handhelds with a password want no older one.
constexpr std::uint16_t OurDlpMajor = 1, OurDlpMinor = 3;
// What a handheld has to speak: databases can be given another name from then on.
constexpr std::uint16_t LeastDlpMajor = 1, LeastDlpMinor = 2;

/// The operator's refusal, or a handheld that belongs to nobody.
class Turned : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

DlpDate DateOf(const DateTime& moment) {
    return {static_cast<std::uint16_t>(moment.Year),  static_cast<std::uint8_t>(moment.Month),
            static_cast<std::uint8_t>(moment.Day),    static_cast<std::uint8_t>(moment.Hour),
            static_cast<std::uint8_t>(moment.Minute), static_cast<std::uint8_t>(moment.Second)};
}

std::string SecondsSince(ByteStream::Clock::time_point begun) {
    const std::chrono::duration<double> seconds = ByteStream::Clock::now() - begun;
    char text[32];
    const int tenths = static_cast<int>(seconds.count() * 10);
    std::snprintf(text, sizeof text, "%d.%d s", tenths / 10, tenths % 10);
    return text;
}

std::string Counted(std::int32_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

HandheldLine::Limits LineLimits(const ManagerSettings& settings) {
    return {std::chrono::seconds(settings.HandshakeSeconds), std::chrono::seconds(settings.AnswerSeconds),
            std::chrono::minutes(settings.SessionMinutes)};
}

TableTransfer::Limits TransferLimits(const ManagerSettings& settings) {
    const auto bytes = [](std::int32_t megabytes) { return static_cast<std::uint64_t>(megabytes) << 20; };
    return {bytes(settings.LargestTableMB), bytes(settings.LargestFileMB)};
}

} // namespace

Session::Session(ByteStream& stream, const Surroundings& around, std::string caller, std::uint32_t address)
    : around_(around),
      line_(stream, LineLimits(around.Settings)),
      transfer_(
          line_, TransferLimits(around.Settings),
          [this](std::int32_t done, std::int32_t of) {
              CheckCancel();
              around_.Progress.Step(way_, moving_, done, of);
          },
          [this] { return around_.Desk.IsThere(); }),
      caller_(std::move(caller)),
      address_(address),
      begun_(ByteStream::Clock::now()) {
    line_.Odd = [this](const std::string& words) { Say(words); };
}

Session::End Session::Run() {
    try {
        Greet();
        FindUser();
        line_.EndGreeting();
        Say("session begins, from " + caller_);
        around_.Users.Synced(user_.Id, Now(), false);
        around_.Progress.Begun(user_.Name);
        for (const std::string& creator : around_.Creators) RunConduit(creator);
        InstallFiles();
        SayGoodbye();
        const bool allWell = failed_ == 0;
        return EndAs(End::Well, allWell ? "well" : Counted(failed_, "transfer") + " failed");
    } catch (const Turned& reason) {
        HangUp(EndCode::Other);
        return EndAs(End::Refused, reason.what());
    } catch (const SessionCancelled& cancel) {
        HangUp(EndCode::Cancelled);
        return EndAs(End::Cancelled, cancel.what());
    } catch (const LineFailure& failure) {
        if (failure.Reason == LineFailure::Why::TooLong || failure.Reason == LineFailure::Why::Ending) {
            HangUp(EndCode::Other);
        }
        return EndAs(End::Broken, failure.what());
    } catch (const std::exception& failure) {
        HangUp(EndCode::Other);
        return EndAs(End::Broken, Utf8ToCodePage(failure.what()));
    }
}

Session::End Session::EndAs(End end, const std::string& how) noexcept {
    try {
        around_.Desk.DropTransfers();
        Say(std::string("session ended ") + (end == End::Well ? "" : "early: ") + how + ", " +
            Counted(moved_, "transfer") + ", " + SecondsSince(begun_));
        around_.Progress.Ended(how, end == End::Well && failed_ == 0);
        if (user_.Id != 0) around_.Users.Synced(user_.Id, Now(), end == End::Well);
    } catch (const std::exception& failure) {
        around_.Log.Write(Utf8ToCodePage(failure.what()));
    }
    if (!creator_.empty()) around_.Desk.Raise(SessionEnded, user_, creator_, nullptr);
    return end;
}

void Session::HangUp(EndCode code) noexcept {
    try {
        line_.Ask(PackEndOfSync(code));
    } catch (const std::exception&) { // the handheld finds out by itself
    }
}

void Session::Say(const std::string& line) {
    if (user_.Id == 0)
        around_.Log.WriteOfStranger(caller_ + ": " + line);
    else
        around_.Log.Write(user_.Name + ": " + line);
}

void Session::CheckCancel() {
    if (around_.Progress.CancelAsked()) throw SessionCancelled(SessionCancelled::By::Operator);
}

void Session::WaitForDesk() {
    const std::chrono::seconds atMost(around_.Settings.KeepAliveSeconds);
    while (around_.Desk.IsBusy(atMost)) {
        CheckCancel();
        line_.KeepAlive();
    }
    CheckCancel();
}

void Session::Greet() {
    line_.Handshake(address_);
    ByteWriter version;
    version.U16(OurDlpMajor).U16(OurDlpMinor);
    const SysInfo system = ReadSysInfo(line_.Need(
        DlpRequest(DlpFunction::ReadSysInfo, std::move(version).Bytes()), "read the system information"));
    if (std::pair(system.DlpMajor, system.DlpMinor) < std::pair(LeastDlpMajor, LeastDlpMinor)) {
        throw Turned("its system speaks version " + std::to_string(system.DlpMajor) + "." +
                     std::to_string(system.DlpMinor) + " of the protocol, 1.2 is needed");
    }
    handheld_ = ReadUserInfo(line_.Need(DlpRequest(DlpFunction::ReadUserInfo), "read the user"));
}

void Session::FindUser() {
    HotSyncUsers& users = around_.Users;
    if (handheld_.UserId == 0) {
        user_ = PickUser();
        return;
    }
    const HotSyncUser* user = users.FindId(handheld_.UserId);
    if (!user) {
        const HotSyncUser* const named = users.FindName(handheld_.Name);
        if (!named || !named->LastSync.IsZero()) {
            throw Turned("no user of this manager is called \"" + handheld_.Name + "\" with the id " +
                         std::to_string(handheld_.UserId));
        }
        users.TakeHandheld(named->Id, handheld_.UserId);
        user = users.FindId(handheld_.UserId);
    }
    user_ = *user;
}

HotSyncUser Session::PickUser() {
    std::vector<HotSyncUser> free;
    for (const HotSyncUser& user : around_.Users.All()) {
        if (user.LastSync.IsZero()) free.push_back(user);
    }
    if (free.empty()) throw Turned("a handheld without a user, and no user without a handheld");
    line_.EndGreeting(); // the operator may take longer
    std::uint32_t picked = 0;
    const std::chrono::seconds atMost(around_.Settings.KeepAliveSeconds);
    for (;;) {
        const SessionDesk::Picking picking = around_.Desk.PickUser(free, atMost, picked);
        if (picking == SessionDesk::Picking::Refused) throw Turned("nobody gave the handheld a user");
        if (picking == SessionDesk::Picking::Picked) break;
        line_.KeepAlive();
    }
    const HotSyncUser* const found = around_.Users.FindId(picked);
    if (!found) throw Turned("the user was deleted meanwhile");
    HotSyncUser user = *found; // the users can change while the handheld answers
    UserChange change;
    change.Flags = UserChange::SetUserId | UserChange::SetName;
    change.UserId = user.Id;
    change.Name = user.Name;
    line_.Need(PackUserChange(change), "write the user");
    handheld_.UserId = user.Id;
    handheld_.Name = user.Name;
    return user;
}

void Session::RunConduit(const std::string& creator) {
    if (!around_.Desk.TakesPart(creator)) return;
    // The program may still be busy with the session before.
    WaitForDesk();
    if (!around_.Desk.TakesPart(creator)) return;
    around_.Desk.Raise(SessionBegun, user_, creator, nullptr);
    creator_ = creator;
    WaitForDesk();
    while (const auto transfer = around_.Desk.NextTransfer()) {
        const EndedTransfer ended{transfer->Path, Move(*transfer)};
        around_.Desk.Raise(OperationFinished, user_, creator, &ended);
        WaitForDesk();
    }
}

/// A handheld can claim thousands of them.
void Session::SayRecovered(const std::vector<std::string>& names) {
    constexpr std::size_t mostNamed = 20;
    const std::size_t named = std::min(names.size(), mostNamed);
    for (std::size_t k = 0; k < named; ++k) Say("put " + names[k] + " in order");
    if (named < names.size()) Say("put " + std::to_string(names.size() - named) + " more in order");
}

bool Session::Move(const QueuedTransfer& transfer) {
    const bool isUpload = transfer.Direction == QueuedTransfer::Way::Upload;
    moving_ = PathToName(FileNameOf(transfer.Path));
    way_ = isUpload ? SessionProgress::Way::FromHandheld : SessionProgress::Way::ToHandheld;
    const std::string deed = moving_ + (isUpload ? " from the handheld" : " to the handheld");
    const auto begun = ByteStream::Clock::now();
    try {
        if (!recovered_) {
            SayRecovered(transfer_.Recover());
            recovered_ = true;
        }
        around_.Progress.Step(way_, moving_, 0, 0);
        const TableTransfer::Result result =
            isUpload ? transfer_.Upload(transfer.Path) : transfer_.Download(transfer.Path);
        ++moved_;
        std::string line = deed + ": " + Counted(result.Records, "record");
        if (result.WasMissing) line += ", the handheld has no such table";
        if (result.LeftBehind != 0)
            line += ", " + std::to_string(result.LeftBehind) + " marked as deleted not sent";
        if (result.Signatures != 0) line += ", " + Counted(result.Signatures, "signature");
        Say(line + ", " + SecondsSince(begun));
        if (!result.Odd.empty()) Say(Utf8ToCodePage(result.Odd));
        return true;
    } catch (const TransferFailure& failure) {
        ++failed_;
        Say(deed + " failed: " + Utf8ToCodePage(failure.what()));
        return false;
    } catch (const LineFailure&) {
        Say(deed + " broke off");
        throw;
    } catch (const SessionCancelled&) {
        Say(deed + " broke off");
        throw;
    }
}

/// An install that a program has begun and no program attends to any more.
bool Session::IsGivenUp(const std::string& folder) {
    return FileExists(InstallMark(folder)) &&
           std::none_of(around_.Creators.begin(), around_.Creators.end(),
                        [this](const std::string& creator) { return around_.Desk.TakesPart(creator); });
}

void Session::InstallFiles() {
    const std::string folder = around_.Users.InstallFolder(user_);
    const std::vector<std::string> files = FilesWithExtension(folder, "");
    if (!files.empty() && IsGivenUp(folder))
        return Say("nothing is installed: the program that has begun the installation has gone");
    for (const std::string& file : files) {
        if (file.ends_with(SafeFile::WorkExtension)) continue; // it is just being put there
        moving_ = PathToName(file);
        way_ = SessionProgress::Way::ToHandheld;
        try {
            const std::int32_t records = transfer_.Install(folder + file);
            Global.TheDisk->Remove(ResolvePath(folder + file));
            ++moved_;
            Say("installed " + PathToName(file) + ": " + Counted(records, "record"));
        } catch (const TransferFailure& failure) {
            ++failed_;
            Say("could not install " + PathToName(file) + ": " + Utf8ToCodePage(failure.what()));
        } catch (const RunTimeFailure& failure) {
            // It is on the handheld and stays in the folder: the next session puts it there once more.
            ++failed_;
            Say(Utf8ToCodePage(failure.what()));
        }
    }
    if (transfer_.NeedsReset()) line_.Need(DlpRequest(DlpFunction::ResetSystem), "ask for a reset");
}

void Session::SayGoodbye() {
    std::string log = "ZUK Tramble: " + Counted(moved_, "transfer");
    if (failed_ != 0) log += ", " + std::to_string(failed_) + " failed";
    line_.Ask(PackSyncLog(log + ".\n"));
    UserChange change;
    change.Flags = UserChange::SetLastSyncPC | UserChange::SetSyncDate;
    if (handheld_.Name != user_.Name) change.Flags |= UserChange::SetName;
    change.UserId = user_.Id;
    change.LastSyncPC = around_.Settings.PCId;
    change.SyncDate = DateOf(Now());
    change.Name = user_.Name;
    line_.Need(PackUserChange(change), "write the date of the session");
    try {
        line_.Ask(PackEndOfSync(EndCode::Normal));
    } catch (const LineFailure& failure) {
        // Some handhelds hang up instead of answering.
        if (failure.Reason != LineFailure::Why::Lost) throw;
    }
}
