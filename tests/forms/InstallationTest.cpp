#include "platform/Installation.h"

#include "forms/FormTest.h"
#include "platform/HotSyncManager.h"
#include "platform/Registry.h"
#include "sync/Conduits.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// Programs that were put somewhere, for one user or for everybody.
class InstallationTest : public FormTest {
protected:
    InstallationTest() : data_(qgetenv("XDG_DATA_HOME")) {
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString(Folder() + "data"));
        Registry::SetHotSyncManager("");
    }
    ~InstallationTest() override {
        if (data_.isNull())
            qunsetenv("XDG_DATA_HOME");
        else
            qputenv("XDG_DATA_HOME", data_);
    }

    /// The folder of the programs.
    std::string GivenEverybodys() {
        GivenFile("usr/bin/hotsync", "");
        GivenFile("usr/share/zuk-tramble/Install/ZUKOrHdr.dbf", "");
        return Folder() + "usr/bin/";
    }
    std::string UsersManager() const { return Folder() + "data/ZUKTramble/HotSync/"; }

    static std::vector<Conduit> Ours() { return {{"ZUK2", "SFrmCn40.dll", "Tramble"}}; }

private:
    QByteArray data_;
};

TEST_F(InstallationTest, AManagerKeepsItsFilesBesideItsProgramInTheOffice) {
    GivenFile("office/HotSync/hotsync", "");

    EXPECT_EQ(FolderOfManager(Folder() + "office/HotSync/hotsync"), Folder() + "office/HotSync/");
    EXPECT_EQ(OfficeOfProgram(Folder() + "office/HotSync/hotsync"), Folder() + "office/");
    EXPECT_EQ(OfficeOfProgram(Folder() + "office/Install/rdkinst"), Folder() + "office/");
}

TEST_F(InstallationTest, AFolderThatIsNotThereIsStillTheManagersOwn) {
    EXPECT_EQ(FolderOfManager(Folder() + "not there/hotsync"), Folder() + "not there/");
}

TEST_F(InstallationTest, InstalledForEverybodyItKeepsThemInTheUsersOffice) {
    const std::string programs = GivenEverybodys();

    EXPECT_EQ(FolderOfManager(programs + "hotsync"), UsersManager());
    EXPECT_EQ(OfficeOfProgram(programs + "handheldwindow"), Folder() + "data/ZUKTramble/");
    EXPECT_FALSE(Exists(Folder() + "data/ZUKTramble"));
}

TEST_F(InstallationTest, TheManagerOfAnOfficeIsRegisteredWithItsConduitWhenThereIsNoOther) {
    GivenFile("office/HotSync/hotsync", "");

    RegisterOwnManager(Folder() + "office");

    EXPECT_EQ(Registry::HotSyncManagerValue("HotSyncPath"), Folder() + "office/HotSync/hotsync");
    EXPECT_EQ(HotSyncManagerFolder(), Folder() + "office/HotSync/");
    EXPECT_EQ(ReadConduits(Folder() + "office/HotSync/"), Ours());
}

TEST_F(InstallationTest, TheManagerOfEverybodyIsRegisteredWithAFolderOfTheUsers) {
    const std::string programs = GivenEverybodys();

    RegisterOwnManager(programs);

    EXPECT_EQ(Registry::HotSyncManagerValue("HotSyncPath"), programs + "hotsync");
    EXPECT_EQ(HotSyncManagerFolder(), UsersManager());
    EXPECT_EQ(ReadConduits(UsersManager()), Ours());
}

TEST_F(InstallationTest, AManagerThatIsRegisteredAndThereStays) {
    const std::string other = GivenFile("Palm/hotsync", "");
    Registry::SetHotSyncManager(other);
    GivenFile("office/HotSync/hotsync", "");

    RegisterOwnManager(Folder() + "office");

    EXPECT_EQ(Registry::HotSyncManagerValue("HotSyncPath"), other);
    EXPECT_FALSE(Exists(Folder() + "office/HotSync/Conduits.txt"));
}

TEST_F(InstallationTest, AManagerThatHasGoneMakesWayForTheOneThatCameAlong) {
    Registry::SetHotSyncManager(Folder() + "gone/hotsync");
    GivenFile("office/HotSync/hotsync", "");

    RegisterOwnManager(Folder() + "office");

    EXPECT_EQ(Registry::HotSyncManagerValue("HotSyncPath"), Folder() + "office/HotSync/hotsync");
}

TEST_F(InstallationTest, WithoutAManagerOfItsOwnAnOfficeRegistersNone) {
    GivenFile("office/ZUKTramble", "");

    RegisterOwnManager(Folder() + "office");

    EXPECT_EQ(HotSyncManagerFolder(), "");
}

} // namespace
