#pragma once

#include "forms/FormTest.h"
#include "forms/SocketManager.h"
#include "platform/Registry.h"

#include <filesystem>
#include <fstream>

/// A test with a HotSync Manager that is registered in a folder of its own. Its program is a script that
/// writes down how it was started.
class HotSyncTest : public FormTest {
protected:
    HotSyncTest() {
        GivenScript(ManagerFolder() + "hotsync", "started");
        Registry::SetHotSyncManager(ManagerFolder() + "hotsync");
    }

    std::string ManagerFolder() const { return Folder() + "HotSync/"; }

    /// A program that writes its folder, its name and its arguments, a line each, into a file of the test's
    /// folder.
    void GivenScript(const std::string& path, const std::string& file, bool runs = true) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        // Renamed, so that whoever sees the file sees all of it.
        std::ofstream(path) << "#!/bin/sh\nprintf '%s\\n' \"$PWD\" \"$0\" \"$@\" > '" << Folder() << file
                            << ".part'\nmv '" << Folder() << file << ".part' '" << Folder() << file << "'\n";
        std::filesystem::permissions(path, runs ? std::filesystem::perms::owner_all
                                                : std::filesystem::perms::owner_read);
    }

    /// What a script has written, once it has.
    std::vector<std::string> WrittenBy(const std::string& file) {
        WaitUntil([&] { return Exists(Folder() + file); });
        return Lines(Folder() + file);
    }

    SocketManager Manager{ManagerFolder()};
};
