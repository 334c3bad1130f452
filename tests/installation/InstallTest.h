#pragma once

#include "core/Globals.h"
#include "core/Paths.h"
#include "installation/HandheldInstall.h"
#include "support/EngineTest.h"
#include "support/FakeControl.h"
#include "support/Tables.h"
#include "sync/InstallFolder.h"

#include <set>

using Strings = std::vector<std::string>;

/// A control whose install files go into the folder of a HotSync Manager, and whose sessions install them as
/// the manager does: behind the transfers, each one that is installed leaves the folder.
class InstallControl : public FakeControl {
public:
    std::string ManagerFolder;
    std::size_t RoomFor = 1000; ///< files that AddInstall takes before the disk is full

    void AddInstall(std::string_view file, std::string_view user) override {
        if (Added.size() == RoomFor) throw RunTimeFailure(61, std::string(file));
        ::AddInstall(ManagerFolder, file, user);
        Added.emplace_back(FileNameOf(file));
    }

    /// A session of a user's handheld; it breaks off after so many transfers, or files.
    void HotSync(const std::string& user, int transfers = 1000, std::size_t files = 1000) {
        User = user;
        Raise(SessionBegun);
        while (transfers-- > 0 && RunNext()) {
        }
        const std::string folder = InstallFolder(ManagerFolder, user);
        for (const std::string& file : FilesWithExtension(folder, "")) {
            if (files-- == 0) break;
            RemoveQuietly(folder + file);
            Installed.push_back(file);
        }
        Raise(SessionEnded);
    }

    Strings Added;     ///< in the order in which they were queued
    Strings Installed; ///< names
};

/// An office with the handhelds Anna and Bea, all install files, and version 1.00 of the program.
class InstallTest : public EngineTest {
protected:
    InstallTest() {
        GivenAppDirectory();
        for (const std::string& file : FilesOf(InstallKind::Demo)) GivenFile("app/Install/" + file, file);
        GivenTable(Global.InstallPath, "ZUKVER");
        for (const std::string& table : LiveTables())
            GivenTable(Global.DBFPath, FileNameOf(table).substr(0, FileNameOf(table).size() - 4));
        GivenTable(Global.DBFPath, "ZUKLINK", {{"Anna"}, {"Bea"}});
        Control.ManagerFolder = Folder() + "HotSync/";
        Control.Transfer = [this](bool upload, const std::string& path) {
            if (!upload || FailsToSend) return !FailsToSend;
            GivenTable(std::string(FolderOf(path)), "ZUKVER", OnHandheld);
            return true;
        };
        Control.HotSyncStatus = [this](std::int32_t status) { Install.SFInstall_HotSyncStatus(status); };
        Control.Creator = 0x5A554B32;
    }

    std::string FolderOfAnna() const { return InstallFolder(Control.ManagerFolder, "Anna"); }
    Strings Waiting() const { return FilesWithExtension(FolderOfAnna(), ""); }

    /// Transfers of the last session, without their folders.
    Strings Queue() const {
        Strings names;
        for (const std::string& each : Control.Queued)
            names.push_back(each.substr(0, each.find(' ') + 1) + std::string(FileNameOf(each)));
        return names;
    }

    InstallControl Control;
    HandheldInstall Install{Control, Folder() + "HotSync/", "Anna", "1.0.0"};
    std::vector<Strings> OnHandheld{{"100"}}; ///< the rows of the handheld's version table
    bool FailsToSend = false;
};

inline Strings Sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
}
