#include "killsweep/Jobs.h"

#include "killsweep/Ground.h"

#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "handheld/Handheld.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "installation/HandheldInstall.h"
#include "maintenance/Backup.h"
#include "maintenance/Office.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "maintenance/UnfinishedJobs.h"
#include "maintenance/VersionUpdate.h"
#include "sync/Status.h"

namespace {

std::vector<SweepJob> MakeJobs() {
    std::vector<SweepJob> all;
    for (const auto& jobs :
         {StoreJobs, ExchangeJobs, MaintenanceJobs, SyncJobs, ScreenJobs, HotSyncJobs, HarmJobs}) {
        for (SweepJob& job : jobs()) all.push_back(std::move(job));
    }
    return all;
}

/// As far as its files go, where there are any.
void StartHotSyncManager() {
    if (FileExists(HotSyncFolder() + "Users.txt")) HotSyncUsers(HotSyncFolder()).Load();
    if (FileExists(HotSyncFolder() + "HotSync.ini")) ReadManagerSettings(HotSyncFolder());
}

/// And that of the one stand-in handheld that jobs use.
void StartHandheld() {
    const std::string folder = HotSyncFolder() + "ANNA/Handheld/";
    if (FileExists(folder + "Handheld.txt")) Handheld(folder).Log();
}

void BeginOffice(const std::string& folder) {
    Global = Globals{};
    Global.Clock = [] { return DateTime{2026, 11, 15, 9, 30, 0}; };
    Global.AppPath = AddBackslash(folder);
    Global.IniFile = Global.AppPath + "ZUKTramble.ini";
    LoadEvents();
}

} // namespace

const std::vector<SweepJob>& SweepJobs() {
    static const std::vector<SweepJob> jobs = MakeJobs();
    return jobs;
}

void OpenOffice(const std::string& folder) {
    BeginOffice(folder);
    SetTablesAndInstall();
    SetGraphics();
    SetImagesAndTotals();
    Global.DBFEmptyPath = Global.AppPath + "DBFEmpty/";
    SetDataIn();
    SetDataOutBackupTemplates();
    TemplatePass([] {});
    SetUpdates();
}

void StartOffice(const std::string& folder) {
    const auto updateSilently = [] {
        NoProgress silent;
        UpdateTables(silent);
    };
    BeginOffice(folder);
    GetIniFile();
    if (!PrepareOffice([] {}, updateSilently)) throw RunTimeFailure(53, "tables");
    FindUnfinishedJobs();
    RecoverSafetyCopies();
    TakeBackInstall(HotSyncFolder());
    GetPCTotals();
    GetHHStatus();
    StartHotSyncManager();
    StartHandheld();
    if (!Global.PurgeBackup) return;
    DeleteBackupTables([](std::string_view file) { throw RunTimeFailure(75, std::string(file)); });
}
