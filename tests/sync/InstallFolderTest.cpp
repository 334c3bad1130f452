#include "sync/InstallFolder.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"

#include <filesystem>

namespace {

class InstallFolderOfAUser : public EngineTest {};

TEST_F(InstallFolderOfAUser, LiesInTheManagersFolderUnderTheUsersName) {
    EXPECT_EQ(InstallFolder(Folder(), "Jos\xE9"), Folder() + "Jos\xC3\xA9/Install/");
    EXPECT_EQ(InstallFolder("/manager", "Anna"), "/manager/Anna/Install/");
}

TEST_F(InstallFolderOfAUser, IsMadeWhenAFileIsPutThere) {
    const std::string file = GivenFile("Tramble.prc", "program");

    AddInstall(Folder(), file, "Anna");

    EXPECT_EQ(Bytes(Folder() + "Anna/Install/Tramble.prc"), "program");
    EXPECT_TRUE(Exists(file));
}

TEST_F(InstallFolderOfAUser, IsFoundWhateverItsCase) {
    std::filesystem::create_directories(Folder() + "ANNA/install");

    AddInstall(Folder(), GivenFile("Tramble.prc", "program"), "Anna");

    EXPECT_TRUE(Exists(Folder() + "ANNA/install/Tramble.prc"));
    EXPECT_FALSE(std::filesystem::exists(Folder() + "Anna"));
}

TEST_F(InstallFolderOfAUser, TakesTheNewOneOfTwoFilesOfOneName) {
    GivenFile("Anna/Install/Tramble.prc", "an older and longer program");

    AddInstall(Folder(), GivenFile("Tramble.prc", "new"), "Anna");

    EXPECT_EQ(Bytes(Folder() + "Anna/Install/Tramble.prc"), "new");
}

TEST_F(InstallFolderOfAUser, IsNotMadeForAFileThatIsNotThere) {
    std::filesystem::create_directories(Folder() + "folder.prc");

    EXPECT_EQ(FailureNumber([&] { AddInstall(Folder(), Folder() + "Gone.prc", "Anna"); }), 53);
    EXPECT_EQ(FailureNumber([&] { AddInstall(Folder(), Folder() + "folder.prc", "Anna"); }), 53);

    EXPECT_FALSE(std::filesystem::exists(Folder() + "Anna"));
}

TEST_F(InstallFolderOfAUser, IsNoneForAUserWhoseNameIsAPath) {
    const std::string file = GivenFile("Tramble.prc", "program");
    GivenFile("Install/keep", "x");
    for (const char* user : {"", ".", "..", "a/b", "a\\b", "../Anna", "C:", "NUL", "Anna.", "a*"}) {
        EXPECT_EQ(FailureNumber([&] { AddInstall(Folder(), file, user); }), 52) << user;
        EXPECT_EQ(FailureNumber([&] { ClearHSInstallDir(Folder(), user); }), 52) << user;
    }
    EXPECT_TRUE(Exists(Folder() + "Install/keep"));
}

TEST_F(InstallFolderOfAUser, IsNoneWithoutAManager) {
    EXPECT_EQ(FailureNumber([&] { AddInstall("", GivenFile("Tramble.prc", "x"), "Anna"); }), 76);
    EXPECT_EQ(FailureNumber([] { ClearHSInstallDir("", "Anna"); }), 76);
}

TEST_F(InstallFolderOfAUser, IsEmptiedOfItsFilesAndOfNothingElse) {
    GivenFile("Anna/Install/Tramble.prc", "x");
    GivenFile("Anna/Install/noextension", "x");
    GivenFile("Anna/Install/folder/file", "x");
    GivenFile("Anna/other", "x");
    GivenFile("Ben/Install/Tramble.prc", "x");

    ClearHSInstallDir(Folder(), "anna");

    EXPECT_FALSE(Exists(Folder() + "Anna/Install/Tramble.prc"));
    EXPECT_FALSE(Exists(Folder() + "Anna/Install/noextension"));
    EXPECT_TRUE(Exists(Folder() + "Anna/Install/folder/file"));
    EXPECT_TRUE(Exists(Folder() + "Anna/other"));
    EXPECT_TRUE(Exists(Folder() + "Ben/Install/Tramble.prc"));
}

/// A disk that holds one file fast.
class HoldingDisk final : public PassingDisk {
public:
    bool Remove(const std::string& path) override {
        if (path.ends_with("a.prc")) throw RunTimeFailure(75, path);
        return PassingDisk::Remove(path);
    }
};

TEST_F(InstallFolderOfAUser, LosesTheOtherFilesWhenOneCannotBeDeleted) {
    GivenFile("Anna/Install/a.prc", "x");
    GivenFile("Anna/Install/b.prc", "x");
    HoldingDisk disk;
    Global.TheDisk = &disk;

    ClearHSInstallDir(Folder(), "Anna");

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(Exists(Folder() + "Anna/Install/a.prc"));
    EXPECT_FALSE(Exists(Folder() + "Anna/Install/b.prc"));
}

TEST_F(InstallFolderOfAUser, ThatIsNotThereIsEmptyAlready) {
    ClearHSInstallDir(Folder(), "Anna");

    EXPECT_FALSE(std::filesystem::exists(Folder() + "Anna"));
}

} // namespace
