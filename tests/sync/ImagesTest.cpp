#include "sync/Images.h"

#include "core/Failure.h"
#include "support/EngineTest.h"
#include "support/RefusingDisk.h"

namespace {

class Images : public EngineTest {
protected:
    ~Images() override { Global.TheDisk = &NativeDisk(); }
};

TEST_F(Images, WithoutTheEndingGetIt) {
    GivenFile("M1000001", "ink");
    GivenFile("M1000.002", "more ink");

    EXPECT_TRUE(RenameImages(Folder()).empty());

    EXPECT_EQ(Bytes(Folder() + "M1000001.bmp"), "ink");
    EXPECT_EQ(Bytes(Folder() + "M1000.002.bmp"), "more ink");
    EXPECT_FALSE(Exists(Folder() + "M1000001"));
    EXPECT_FALSE(Exists(Folder() + "M1000.002"));
}

TEST_F(Images, WithTheEndingStayAsTheyAre) {
    GivenFile("a.bmp", "a");
    GivenFile("b.BMP", "b");

    EXPECT_TRUE(RenameImages(Folder()).empty());

    EXPECT_EQ(Bytes(Folder() + "a.bmp"), "a");
    EXPECT_EQ(Bytes(Folder() + "b.BMP"), "b");
    EXPECT_FALSE(Exists(Folder() + "b.BMP.bmp"));
}

TEST_F(Images, ThatComeAgainReplaceTheOldOnes) {
    GivenFile("M1.bmp", "an old and longer one");
    GivenFile("M1", "new");

    RenameImages(Folder());

    EXPECT_EQ(Bytes(Folder() + "M1.bmp"), "new");
    EXPECT_FALSE(Exists(Folder() + "M1"));
}

TEST_F(Images, ThatAreJustBeingWrittenArePassedBy) {
    GivenFile("M1.zuk~", "half");

    EXPECT_TRUE(RenameImages(Folder()).empty());

    EXPECT_TRUE(Exists(Folder() + "M1.zuk~"));
}

TEST_F(Images, OfAFolderThatIsNotThereAreNone) {
    EXPECT_TRUE(RenameImages(Folder() + "gone").empty());
    EXPECT_TRUE(RenameImages("").empty());
}

/// A disk on which one image cannot be renamed and another not be deleted.
class StubbornDisk final : public PassingDisk {
public:
    void Rename(const std::string& from, const std::string& to) override {
        if (to.ends_with("/a.bmp")) throw RunTimeFailure(75, to);
        PassingDisk::Rename(from, to);
    }
    bool Remove(const std::string& path) override {
        if (path.ends_with("/b")) throw RunTimeFailure(75, path);
        return PassingDisk::Remove(path);
    }
};

TEST_F(Images, ThatCannotBeRenamedAreNamedAndKeptAndTheOthersGetTheEnding) {
    for (const char* name : {"a", "b", "c"}) GivenFile(name, name);
    StubbornDisk disk;
    Global.TheDisk = &disk;

    EXPECT_EQ(RenameImages(Folder()), (std::vector<std::string>{"a", "b"}));

    EXPECT_EQ(Bytes(Folder() + "a"), "a");
    EXPECT_EQ(Bytes(Folder() + "b.bmp"), "b");
    EXPECT_EQ(Bytes(Folder() + "c.bmp"), "c");
}

} // namespace
