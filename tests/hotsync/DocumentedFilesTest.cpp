#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "support/EngineTest.h"

#include <algorithm>

namespace {

/// The example under a heading of docs/files.md: its indented lines, with tabs for the arrows.
std::string Example(const std::vector<std::string>& document, const std::string& heading) {
    constexpr std::string_view Arrow = "\xE2\x86\x92";
    const auto above = std::find_if(document.begin(), document.end(), [&](const std::string& line) {
        return line.starts_with("## ") && line.find(heading) != std::string::npos;
    });
    std::string example;
    for (auto line = above; line != document.end() && (line == above || !line->starts_with("## ")); ++line) {
        if (!line->starts_with("    ")) continue;
        std::string text = line->substr(4);
        for (std::size_t at = 0; (at = text.find(Arrow)) != std::string::npos;)
            text.replace(at, Arrow.size(), "\t");
        example += text + "\r\n";
    }
    return example;
}

class DocumentedFiles : public EngineTest {
protected:
    std::string In(const std::string& heading) const {
        return Example(Lines(std::string(TRAMBLE_SOURCE) + "/docs/files.md"), heading);
    }
};

TEST_F(DocumentedFiles, TheUsersOfTheExampleAreReadAndWrittenAsTheyStandThere) {
    const std::string example = In("HotSync/Users.txt");
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
    const std::string example = In("HotSync/HotSync.ini");
    GivenFile("HotSync.ini", example);

    const ManagerSettings settings = ReadManagerSettings(Folder());

    ManagerSettings defaults;
    defaults.PCId = 0x12345678;
    EXPECT_EQ(settings, defaults);
    WriteManagerSettings(Folder(), settings);
    EXPECT_EQ(Bytes(Folder() + "HotSync.ini"), example);
}

} // namespace
