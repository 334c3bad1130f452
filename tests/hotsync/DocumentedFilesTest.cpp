#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "support/DocumentedBytes.h"
#include "support/EngineTest.h"

namespace {

class DocumentedFiles : public EngineTest {};

TEST_F(DocumentedFiles, TheUsersOfTheExampleAreReadAndWrittenAsTheyStandThere) {
    const std::string example = DocumentedText("HotSync/Users.txt");
    GivenFile("Users.txt", example);
    GivenFile("EVA/Install/a.pdb", "x");
    HotSyncUsers users(Folder());

    users.Load();

    EXPECT_EQ(users.All(), (std::vector<HotSyncUser>{{7, "ANNA", {2026, 11, 21, 14, 5, 9}, false},
                                                     {8,
                                                      "Jos\xE9 N\xFA\xF1"
                                                      "ez",
                                                      {2026, 11, 20, 9, 30, 0},
                                                      true},
                                                     {9, "BEN", {}, false}}));
    EXPECT_EQ(Bytes(Folder() + "EVA.deleted/Install/a.pdb"), "x");
    users.Synced(9, {2026, 11, 22, 8, 0, 0}, true);
    std::string written = example.substr(0, example.find("move"));
    written.replace(written.find("never"), 5, "2026-11-22 08:00:00");
    EXPECT_EQ(Bytes(Folder() + "Users.txt"), written);
}

TEST_F(DocumentedFiles, TheSettingsOfTheExampleAreTheDefaults) {
    const std::string example = DocumentedText("HotSync/HotSync.ini");
    GivenFile("HotSync.ini", example);

    const ManagerSettings settings = ReadManagerSettings(Folder());

    ManagerSettings defaults;
    defaults.PCId = 0x12345678;
    EXPECT_EQ(settings, defaults);
    WriteManagerSettings(Folder(), settings);
    EXPECT_EQ(Bytes(Folder() + "HotSync.ini"), example);
}

} // namespace
