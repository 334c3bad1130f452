#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "handheld/DatabaseStore.h"
#include "handheld/Handheld.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/LoopHandheld.h"
#include "hotsync/ManagerSettings.h"
#include "hotsync/SessionLog.h"
#include "hotsync/TableTransfer.h"
#include "installation/HandheldInstall.h"
#include "palm/Converter.h"
#include "support/IdleControl.h"
#include "sync/Conduits.h"
#include "sync/InstallFolder.h"

#include <filesystem>

namespace {

constexpr int HotSyncUsersInFile = 5000;

/// More users than a block of their file holds.
void PrepareHotSyncUsers() {
    MakePath(HotSyncFolder());
    std::string lines;
    for (int k = 1; k <= HotSyncUsersInFile; ++k)
        lines += std::to_string(k) + "\tA user with a long name " + std::to_string(k) +
                 "\t2026-11-21 14:05:09\tcomplete\r\n";
    WriteWholeFile(HotSyncFolder() + "Users.txt", lines);
}

std::string EndHotSyncSession() {
    HotSyncUsers users(HotSyncFolder());
    users.Load();
    users.Synced(HotSyncUsersInFile / 2, Now(), false);
    return {};
}

void PrepareHotSyncSettings() {
    MakePath(HotSyncFolder());
    ManagerSettings settings;
    settings.PCId = 7;
    WriteManagerSettings(HotSyncFolder(), settings);
}

std::string WriteHotSyncSettings() {
    ManagerSettings settings = ReadManagerSettings(HotSyncFolder());
    settings.Address = "*";
    settings.AnswerSeconds = 90;
    WriteManagerSettings(HotSyncFolder(), settings);
    return {};
}

// ---- a user's folder ----

constexpr const char* WaitsForAnna = "HotSync/ANNA/Install/Tramble.prc";

void PrepareUser() {
    MakePath(HotSyncFolder() + "ANNA/Install");
    WriteWholeFile(Global.AppPath + WaitsForAnna, "for her handheld");
    WriteWholeFile(HotSyncFolder() + "Users.txt", "7\tANNA\tnever\tcomplete\r\n8\tBEN\tnever\tcomplete\r\n");
    HotSyncUsers users(HotSyncFolder());
    users.Load();
    users.Synced(8, Now(), true); // the file as it is written
}

std::string RenameUser() {
    HotSyncUsers users(HotSyncFolder());
    users.Load();
    users.Rename(7, "EVA");
    return {};
}

std::string JudgeUser() {
    HotSyncUsers users(HotSyncFolder());
    users.Load();
    const HotSyncUser* user = users.FindId(7);
    if (user == nullptr || users.FindId(8) == nullptr) return "a user is lost";
    if (user->Name != "ANNA" && user->Name != "EVA") return "the user has another name";
    return FileExists(users.InstallFolder(*user) + "Tramble.prc") ? "" : "the folder has not gone along";
}

// ---- the log ----

constexpr std::string_view LogLine = "a HotSync began";

/// So long that one line more makes it an old one.
std::string LogBefore() {
    std::string log;
    const std::string line = "2026-11-14 18:00:00 " + std::string(SessionLog::LongestLine, 'x') + "\r\n";
    while (log.size() + line.size() < SessionLog::FullAt) log += line;
    return log + std::string(SessionLog::FullAt - log.size() - 2, 'y') + "\r\n";
}

void PrepareLog() {
    MakePath(HotSyncFolder());
    WriteWholeFile(HotSyncFolder() + "HotSync.log", LogBefore().substr(2));
}

std::string WriteLog() {
    SessionLog(HotSyncFolder()).Write(LogLine);
    return {};
}

/// All lines that stood there, and of the new one nothing, its beginning, or all.
std::string JudgeLog() {
    const std::string now = HotSyncFolder() + "HotSync.log";
    const std::string log = ReadWholeFile(FileExists(now) ? now : HotSyncFolder() + "HotSync.old.log");
    const std::string before = LogBefore().substr(2);
    if (!log.starts_with(before)) return "older lines are lost";
    const std::string line = "2026-11-15 09:30:00 " + std::string(LogLine) + "\r\n";
    return line.starts_with(log.substr(before.size())) ? "" : "something else stands behind the older lines";
}

// ---- conduits ----

const Conduit Other{"memo", "memo.dll", "Notes"};
const Conduit Own{"ZUK2", "SFrmCn40.dll", "Tramble"};

void PrepareConduits() {
    MakePath(HotSyncFolder());
    RegisterConduit(HotSyncFolder(), Other);
}

std::string Register() {
    RegisterConduit(HotSyncFolder(), Own);
    return {};
}

/// The work file stays until the next registration: no start may take it from a program that is just
/// registering.
std::string JudgeConduits() {
    const std::vector<Conduit> conduits = ReadConduits(HotSyncFolder());
    return conduits == std::vector{Other} || conduits == std::vector{Other, Own} ? "" : "a conduit is lost";
}

// ---- an install ----

/// The HotSync Manager as far as it takes files.
class InstallDesk final : public IdleControl {
public:
    void AddInstall(std::string_view file, std::string_view user) override {
        ::AddInstall(HotSyncFolder(), file, user);
    }
};

void PrepareInstall() {
    PrepareUser();
    for (const std::string& file : FilesOf(InstallKind::Program))
        WriteWholeFile(Global.InstallPath + file, file);
}

std::string QueueInstall() {
    InstallDesk desk;
    HandheldInstall(desk, HotSyncFolder(), "ANNA", "1.0.0").Begin(InstallKind::Live);
    return {};
}

/// All files of an install wait or none, and no mark.
std::string JudgeInstall() {
    if (FileExists(Global.InstallPath + "InstallBegun.txt")) return "the office's mark lies about";
    const std::string folder = InstallFolder(HotSyncFolder(), "ANNA");
    if (FileExists(InstallMark(folder))) return "the manager's mark lies about";
    const std::size_t waiting = FilesWithExtension(folder, "").size();
    return waiting == 0 || waiting == FilesOf(InstallKind::Live).size() ||
                   FileExists(Global.AppPath + WaitsForAnna)
               ? ""
               : "half an install waits for the handheld";
}

void PrepareInstallToTakeBack() {
    PrepareUser();
    WriteWholeFile(Global.InstallPath + "InstallBegun.txt", "ANNA\r\n");
    WriteWholeFile(HotSyncFolder() + "ANNA/InstallBegun.txt", "ANNA\r\n");
}

std::string TakeBack() {
    TakeBackInstall(HotSyncFolder());
    return {};
}

/// Nothing waits, or it is still known that something does.
std::string JudgeTakenBack() {
    if (!FileExists(Global.AppPath + WaitsForAnna)) return {};
    return "what was queued waits still";
}

// ---- a table from a handheld ----

/// Beside the office: the sweep is over the office's files.
std::string FolderOfHandheld() {
    return std::filesystem::path(Global.AppPath).parent_path().replace_filename("handheld/").string();
}

void PrepareTransfer() {
    std::filesystem::remove_all(FolderOfHandheld());
    Handheld::Make(FolderOfHandheld(), {});
    const HandheldLayout layout{{{"H_ORDCODE", 'C', 9, 0}}};
    Database database;
    static_cast<DatabaseHeader&>(database) = HandheldHeader("ZUKORHDR.DBF");
    database.AppInfo = PackLayout(layout);
    for (int k = 1; k <= OrdersSent; ++k) {
        HandheldRecord record{CodeSent(k), {}};
        record.Fields.resize(layout.RecordBytes(), ' ');
        if (k == 2) record.Signature = {8, 2, "\xAA\x55"};
        database.Records.push_back({0, 0, static_cast<std::uint32_t>(k), PackRecord(layout, record)});
    }
    Handheld(FolderOfHandheld()).Store.Save(database);
    FillOrders();
}

std::string Receive() {
    LoopHandheld handheld(FolderOfHandheld());
    HandheldLine line(handheld, {});
    line.Handshake(0);
    TableTransfer transfer(line, {}, [](std::int32_t, std::int32_t) {});
    transfer.Upload(Table("ZUKORHDR.DBF"));
    return {};
}

// ---- a stand-in handheld ----

std::string StandIn() {
    return HotSyncFolder() + "ANNA/Handheld/";
}

Database Memos(const char* name, std::size_t records) {
    Database database;
    database.Name = name;
    for (std::size_t k = 1; k <= records; ++k)
        database.Records.push_back({0, 0, static_cast<std::uint32_t>(k), std::string(400, 'm')});
    return database;
}

void PrepareStandIn() {
    Handheld::Make(StandIn(), {});
    Handheld(StandIn()).Store.Save(Memos("Memos", 300));
}

std::string SaveDatabase() {
    Handheld(StandIn()).Store.Save(Memos("Memos", 320));
    return {};
}

std::string RenameDatabase() {
    Handheld(StandIn()).Store.SaveAs("Memos", Memos("Notes", 310));
    return {};
}

std::string SaveHandheld() {
    Handheld handheld(StandIn());
    handheld.Settings.LastOrder = "00000012";
    handheld.SaveSettings();
    handheld.WriteLog("OK");
    return {};
}

} // namespace

std::vector<SweepJob> HotSyncJobs() {
    const std::string databases = "HotSync/ANNA/Handheld/databases/";
    const std::string mark = "Install/InstallBegun.txt";
    const std::string managersMark = "HotSync/ANNA/InstallBegun.txt";
    std::vector<std::string> install = {WaitsForAnna, mark, managersMark};
    for (const std::string& file : FilesOf(InstallKind::Live))
        install.push_back("HotSync/ANNA/Install/" + file);
    install.insert(install.end(), {managersMark, mark});
    return {
        {"HotSync users", {"HotSync/Users.txt"}, PrepareHotSyncUsers, EndHotSyncSession},
        {.Name = "HotSync user renamed",
         .Steps = {"HotSync/Users.txt", "HotSync/EVA/"},
         .Prepare = PrepareUser,
         .Run = RenameUser,
         .JudgeStarted = JudgeUser},
        {"HotSync settings", {"HotSync/HotSync.ini"}, PrepareHotSyncSettings, WriteHotSyncSettings},
        {.Name = "HotSync log",
         .Steps = {"HotSync/HotSync.old.log"},
         .Prepare = PrepareLog,
         .Run = WriteLog,
         .JudgeStarted = JudgeLog,
         .IsQuiet = true,
         .InPlace = "HotSync/HotSync.log"},
        {.Name = "conduit registered",
         .Steps = {"HotSync/Conduits.txt"},
         .Prepare = PrepareConduits,
         .Run = Register,
         .JudgeStarted = JudgeConduits},
        {.Name = "install queued",
         .Steps = install,
         .Prepare = PrepareInstall,
         .Run = QueueInstall,
         .JudgeStarted = JudgeInstall},
        {.Name = "install taken back",
         .Steps = {WaitsForAnna, managersMark, mark},
         .Prepare = PrepareInstallToTakeBack,
         .Run = TakeBack,
         .IsStart = true,
         .JudgeStarted = JudgeTakenBack,
         .IsQuiet = true},
        {"table received", {"DBFFiles/Images/NEW2", "DBFFiles/ZUKOrHdr.dbf"}, PrepareTransfer, Receive},
        {"handheld database", {databases + "Memos.pdb"}, PrepareStandIn, SaveDatabase},
        {"handheld database renamed",
         {databases + "Notes.pdb", databases + "Memos.pdb"},
         PrepareStandIn,
         RenameDatabase},
        {"handheld settings and log",
         {"HotSync/ANNA/Handheld/Handheld.txt", "HotSync/ANNA/Handheld/log.txt"},
         PrepareStandIn,
         SaveHandheld},
    };
}
