#include "hotsync/HotSyncUsers.h"

#include "core/Paths.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

#include <set>

namespace {

using Strings = std::vector<std::string>;
using NameFault = HotSyncUsers::NameFault;

constexpr DateTime Noon{2026, 11, 21, 12, 0, 0};

/// A disk where folders cannot be renamed.
class StiffDisk : public PassingDisk {
public:
    void Rename(const std::string& from, const std::string& to) override {
        tried_ = tried_ || IsFolder(from);
        if (IsFolder(from)) throw RunTimeFailure(75, to);
        PassingDisk::Rename(from, to);
    }

protected:
    bool tried_ = false;
};

/// One where nothing can be written any more once that was tried.
class BreakingDisk final : public StiffDisk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        if (tried_ && access != Access::Read) throw RunTimeFailure(57, path);
        return PassingDisk::Open(path, access);
    }
};

class HotSyncUsersTest : public EngineTest {
protected:
    HotSyncUsersTest() : users_(Folder() + "HotSync") { MakePath(Folder() + "HotSync/"); }

    void GivenUsers(const Strings& names) {
        for (const std::string& name : names) users_.New(name);
    }

    void GivenUsersFile(const std::string& lines) { GivenFile("HotSync/Users.txt", lines); }

    std::uint32_t IdOf(const std::string& name) const { return users_.FindName(name)->Id; }

    static Strings Names(const HotSyncUsers& users) {
        Strings names;
        for (const HotSyncUser& user : users.All()) names.push_back(user.Name);
        return names;
    }

    /// A user ANNA who is called CLARA by now, and whose folder could not be renamed.
    void GivenAFolderThatStayedBehind() {
        GivenUsers({"ANNA"});
        GivenFile("HotSync/ANNA/Install/a.pdb", "x");
        BreakingDisk disk;
        Global.TheDisk = &disk;
        EXPECT_NE(FailureNumber([&] { users_.Rename(IdOf("ANNA"), "CLARA"); }), 0);
        Global.TheDisk = &NativeDisk();
    }

    /// What another start of the manager finds.
    HotSyncUsers Again() const {
        HotSyncUsers again(Folder() + "HotSync/");
        again.Load();
        return again;
    }

    std::string Path(const std::string& name) const { return Folder() + "HotSync/" + name; }

    /// The words of the refusal of a file with this third line.
    std::string Refused(const std::string& line) {
        GivenUsersFile("# id\n7\tANNA\tnever\tcomplete\n" + line + "\n8\tBEN\tnever\tcomplete\n");
        const FailureSeen seen = FailureOf([&] { users_.Load(); });
        EXPECT_EQ(seen.Number, 13);
        EXPECT_NE(seen.Words.find("Users.txt, line 3: "), std::string::npos) << seen.Words;
        return seen.Words.substr(seen.Words.find("line 3: ") + 8);
    }

    HotSyncUsers users_;
};

// ---- new users ----

TEST_F(HotSyncUsersTest, ANewUserHasAnIdOfItsOwnAnInstallFolderAndNoHandheldYet) {
    const HotSyncUser anna = users_.New("ANNA");
    const HotSyncUser jose = users_.New("  Jos\xE9 N\xFA\xF1"
                                        "ez ");

    EXPECT_NE(anna.Id, 0u);
    EXPECT_NE(jose.Id, 0u);
    EXPECT_NE(anna.Id, jose.Id);
    EXPECT_EQ(jose.Name, "Jos\xE9 N\xFA\xF1"
                         "ez");
    EXPECT_TRUE(anna.LastSync.IsZero());
    EXPECT_FALSE(anna.Incomplete);
    EXPECT_EQ(users_.InstallFolder(anna), Path("ANNA/Install/"));
    EXPECT_TRUE(Global.TheDisk->IsFolder(Path("ANNA/Install")));
    EXPECT_TRUE(Global.TheDisk->IsFolder(Path("Jos\xC3\xA9 N\xC3\xBA\xC3\xB1"
                                              "ez/Install")));
    EXPECT_EQ(Again().All(), users_.All());
}

TEST_F(HotSyncUsersTest, IdsAreNotTheSameAtEachStart) {
    std::set<std::uint32_t> ids;
    for (int k = 0; k < 50; ++k) ids.insert(users_.New("User " + std::to_string(k)).Id);
    EXPECT_EQ(ids.size(), 50u);
    EXPECT_EQ(ids.count(0), 0u);

    HotSyncUsers other(Folder() + "Other");
    MakePath(Folder() + "Other/");

    EXPECT_EQ(ids.count(other.New("User 0").Id), 0u);
}

TEST_F(HotSyncUsersTest, ANameIsRefusedWithItsReason) {
    GivenUsers({"ANNA"});
    const std::string before = Bytes(Path("Users.txt"));
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"", "a user has no name"},
        {"   ", "a user has no name"},
        {std::string(31, 'x'), "more than 30 characters"},
        {"..", "no folder can have"},
        {"a/b", "no folder can have"},
        {"a\\b", "no folder can have"},
        {"c:", "no folder can have"},
        {"nul", "no folder can have"},
        {"end.", "no folder can have"},
        {"what?", "no folder can have"},
        {"a\tb", "no folder can have"},
        {"a\x90z", "no folder can have"},
        {"users.TXT", "no folder can have"},
        {"HotSync.ini", "no folder can have"},
        {"hotsync.LOG", "no folder can have"},
        {"HotSync.old.log", "no folder can have"},
        {"Users.txt.zuk~", "no folder can have"},
        {"anna", "another user has"},
    };
    for (const auto& [name, reason] : refused) {
        const FailureSeen seen = FailureOf([&, n = name] { users_.New(n); });
        EXPECT_EQ(seen.Number, 5) << name;
        EXPECT_NE(seen.Words.find(reason), std::string::npos) << seen.Words;
    }
    EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
    EXPECT_EQ(Bytes(Path("Users.txt")), before);
    EXPECT_EQ(Global.TheDisk->FoldersIn(Path("")), (Strings{"ANNA"}));
}

TEST_F(HotSyncUsersTest, ANameIsLookedForWithoutRegardToCase) {
    GivenUsers({"Ren\xC9"
                "e"});

    ASSERT_NE(users_.FindName("REN\xE9"
                              "E"),
              nullptr);
    EXPECT_EQ(users_.FindName("Renee"), nullptr);
    EXPECT_EQ(users_.WhyNotAName("ren\xE9"
                                 "e"),
              NameFault::Taken);
    EXPECT_EQ(users_.WhyNotAName("ren\xE9"
                                 "e",
                                 users_.All()[0].Id),
              NameFault::None);
    EXPECT_EQ(users_.FindId(users_.All()[0].Id), &users_.All()[0]);
    EXPECT_EQ(users_.FindId(0), nullptr);
}

TEST_F(HotSyncUsersTest, AFolderThatStandsThereIsTakenWithWhatIsInIt) {
    GivenFile("HotSync/anna/Install/a.pdb", "x");

    users_.New("ANNA");

    EXPECT_TRUE(FileExists(users_.InstallFolder(users_.All()[0]) + "a.pdb"));
    EXPECT_EQ(Global.TheDisk->FoldersIn(Path("")), (Strings{"anna"}));
}

TEST_F(HotSyncUsersTest, TheFiveThousandthUserIsTheLast) {
    std::string lines;
    for (int k = 1; k <= 4999; ++k)
        lines += std::to_string(k) + "\tUser " + std::to_string(k) + "\tnever\tcomplete\n";
    GivenUsersFile(lines);
    users_.Load();
    users_.New("The last one");

    EXPECT_EQ(FailureOf([&] { users_.New("One more"); }).Number, 5);

    EXPECT_EQ(users_.All().size(), 5000u);
    EXPECT_FALSE(Global.TheDisk->IsFolder(Path("One more")));
}

// ---- changes ----

TEST_F(HotSyncUsersTest, ARenamedUsersFolderGoesAlong) {
    GivenUsers({"ANNA", "BEN"});
    GivenFile("HotSync/ANNA/Install/a.pdb", "x");
    const std::uint32_t id = IdOf("ANNA");

    users_.Rename(id, " CLARA ");

    EXPECT_EQ(Names(users_), (Strings{"CLARA", "BEN"}));
    EXPECT_EQ(users_.FindId(id)->Name, "CLARA");
    EXPECT_EQ(Bytes(Path("CLARA/Install/a.pdb")), "x");
    EXPECT_FALSE(Exists(Path("ANNA")));
    EXPECT_EQ(Again().All(), users_.All());
}

TEST_F(HotSyncUsersTest, AUserForWhomAnInstallWaitsKeepsTheNameUnderWhichItIsTakenBack) {
    GivenUsers({"ANNA"});
    GivenFile("HotSync/ANNA/InstallBegun.txt", "ANNA\r\n");
    EXPECT_TRUE(users_.InstallWaits(*users_.FindName("ANNA")));

    EXPECT_EQ(FailureNumber([&] { users_.Rename(IdOf("ANNA"), "ANNE"); }), 5);

    EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
    EXPECT_EQ(Names(Again()), (Strings{"ANNA"}));
}

TEST_F(HotSyncUsersTest, ANameCanChangeItsCaseAlone) {
    GivenUsers({"ANNA"});
    GivenFile("HotSync/ANNA/Install/a.pdb", "x");

    users_.Rename(IdOf("ANNA"), "Anna");

    EXPECT_EQ(Names(users_), (Strings{"Anna"}));
    EXPECT_EQ(Bytes(Path("Anna/Install/a.pdb")), "x");
    EXPECT_EQ(Global.TheDisk->FoldersIn(Path("")), (Strings{"Anna"}));
    EXPECT_EQ(Names(Again()), (Strings{"Anna"}));
    EXPECT_EQ(Bytes(Path("Anna/Install/a.pdb")), "x");
}

TEST_F(HotSyncUsersTest, AUserCannotTakeTheFolderThatAnotherLeft) {
    GivenUsers({"ANNA"});
    GivenFile("HotSync/clara/Install/hers.pdb", "x");

    const FailureSeen seen = FailureOf([&] { users_.Rename(IdOf("ANNA"), "CLARA"); });

    EXPECT_EQ(seen.Number, 5);
    EXPECT_NE(seen.Words.find("stands there already"), std::string::npos) << seen.Words;
    EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
    EXPECT_EQ(Names(Again()), (Strings{"ANNA"}));
}

TEST_F(HotSyncUsersTest, AUserWithoutAFolderIsRenamedAllTheSame) {
    GivenUsersFile("7\tANNA\tnever\tcomplete\n");
    users_.Load();

    users_.Rename(7, "CLARA");

    EXPECT_EQ(Names(Again()), (Strings{"CLARA"}));
}

TEST_F(HotSyncUsersTest, ADeletedUsersFilesStayAndDoNotReachALaterUserOfTheName) {
    for (int round = 0; round < 3; ++round) {
        users_.New("ANNA");
        GivenFile("HotSync/ANNA/Install/a.pdb", std::to_string(round));
        users_.Delete(IdOf("ANNA"));
    }
    users_.New("ANNA");

    EXPECT_EQ(Bytes(Path("ANNA.deleted/Install/a.pdb")), "0");
    EXPECT_EQ(Bytes(Path("ANNA.deleted-2/Install/a.pdb")), "1");
    EXPECT_EQ(Bytes(Path("ANNA.deleted-3/Install/a.pdb")), "2");
    EXPECT_FALSE(Exists(Path("ANNA/Install/a.pdb")));
    EXPECT_EQ(Names(Again()), (Strings{"ANNA"}));
}

TEST_F(HotSyncUsersTest, ADeletedUsersFolderDoesNotBecomeThatOfAnotherUser) {
    GivenUsers({"ANNA", "Anna.Deleted"});

    users_.Delete(IdOf("ANNA"));

    EXPECT_EQ(Names(users_), (Strings{"Anna.Deleted"}));
    EXPECT_EQ(Global.TheDisk->FoldersIn(Path("")), (Strings{"ANNA.deleted-2", "Anna.Deleted"}));
}

TEST_F(HotSyncUsersTest, AUserTakesTheIdOfTheHandheldThatCarriesItsName) {
    GivenUsers({"ANNA", "BEN"});

    users_.TakeHandheld(IdOf("ANNA"), 4'000'000'000U);

    EXPECT_EQ(users_.FindId(4'000'000'000U)->Name, "ANNA");
    EXPECT_EQ(Again().FindId(4'000'000'000U)->Name, "ANNA");
    EXPECT_EQ(FailureOf([&] { users_.TakeHandheld(IdOf("BEN"), 4'000'000'000U); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { users_.TakeHandheld(IdOf("BEN"), 0); }).Number, 5);
    users_.TakeHandheld(IdOf("BEN"), IdOf("BEN"));
    EXPECT_EQ(Again().All(), users_.All());
}

TEST_F(HotSyncUsersTest, ASessionIsRemembered) {
    GivenUsers({"ANNA", "BEN"});

    users_.Synced(IdOf("ANNA"), Noon, false);
    EXPECT_TRUE(Again().FindName("ANNA")->Incomplete);
    users_.Synced(IdOf("ANNA"), {2026, 11, 22, 8, 5, 9}, true);

    EXPECT_EQ(Again().FindName("ANNA")->LastSync, (DateTime{2026, 11, 22, 8, 5, 9}));
    EXPECT_FALSE(Again().FindName("ANNA")->Incomplete);
    EXPECT_TRUE(Again().FindName("BEN")->LastSync.IsZero());
    EXPECT_EQ(FailureOf([&] { users_.Synced(IdOf("BEN"), {}, true); }).Number, 5);
}

TEST_F(HotSyncUsersTest, AnIdThatNobodyHasIsAFailureOfEachChange) {
    GivenUsers({"ANNA"});
    const std::uint32_t nobody = IdOf("ANNA") ^ 1U;

    EXPECT_EQ(FailureOf([&] { users_.Rename(nobody, "X"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { users_.Delete(nobody); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { users_.TakeHandheld(nobody, 77); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { users_.Synced(nobody, Noon, true); }).Number, 5);

    EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
}

TEST_F(HotSyncUsersTest, WhoeverWatchesHearsOfEachChangeOnceItIsInTheFile) {
    Strings heard;
    users_.Changed = [&] { heard.push_back(std::to_string(Lines(Path("Users.txt")).size() - 1)); };

    users_.New("ANNA");
    users_.New("BEN");
    users_.Rename(IdOf("BEN"), "CLARA");
    users_.Synced(IdOf("ANNA"), Noon, true);
    users_.Delete(IdOf("ANNA"));
    EXPECT_EQ(FailureOf([&] { users_.New(""); }).Number, 5);

    // The line of a renaming stands until the next change.
    EXPECT_EQ(heard, (Strings{"1", "2", "3", "2", "2"}));
}

// ---- the file ----

TEST_F(HotSyncUsersTest, WithoutAFileThereAreNoUsers) {
    users_.Load();

    EXPECT_TRUE(users_.All().empty());
    EXPECT_FALSE(Exists(Path("Users.txt")));
}

TEST_F(HotSyncUsersTest, TheFileSaysWhatItsColumnsAre) {
    GivenUsersFile("7\tANNA\t2026-11-21 14:05:09\tincomplete\n");
    users_.Load();

    users_.New("Jos\xE9");

    EXPECT_EQ(
        Bytes(Path("Users.txt")),
        "# id\tname\tlast sync\tcomplete or incomplete\r\n7\tANNA\t2026-11-21 14:05:09\tincomplete\r\n" +
            std::to_string(IdOf("Jos\xE9")) + "\tJos\xC3\xA9\tnever\tcomplete\r\n");
}

TEST_F(HotSyncUsersTest, AnOperatorsRemarksAreKeptAtTheHeadAndBlankLinesPassedOver) {
    GivenUsersFile("\xEF\xBB\xBF# mine\n\n7\tANNA\tnever\tcomplete\n# of the north\n");
    users_.Load();

    users_.Synced(7, Noon, true);

    EXPECT_EQ(Lines(Path("Users.txt")),
              (Strings{"# id\tname\tlast sync\tcomplete or incomplete", "# mine", "# of the north",
                       "7\tANNA\t2026-11-21 12:00:00\tcomplete"}));
}

TEST_F(HotSyncUsersTest, ALineThatIsNoUserIsRefusedWithFileLineAndReason) {
    GivenUsers({"OLD"});

    EXPECT_EQ(Refused("8 BEN never complete"),
              "not the four columns of a user, parted by tabs: 8 BEN never complete");
    EXPECT_NE(Refused("8\tBEN\tnever").find("four columns"), std::string::npos);
    EXPECT_NE(Refused("8\tBEN\tnever\tcomplete\t").find("four columns"), std::string::npos);
    EXPECT_EQ(Refused("0\tBEN\tnever\tcomplete"), "an id is a whole number from 1 to 4294967295: 0");
    EXPECT_NE(Refused("4294967296\tBEN\tnever\tcomplete").find("an id is"), std::string::npos);
    EXPECT_NE(Refused("-8\tBEN\tnever\tcomplete").find("an id is"), std::string::npos);
    EXPECT_NE(Refused("8x\tBEN\tnever\tcomplete").find("an id is"), std::string::npos);
    EXPECT_NE(Refused("\tBEN\tnever\tcomplete").find("an id is"), std::string::npos);
    EXPECT_EQ(Refused("7\tBEN\tnever\tcomplete"), "an id that another user has: 7");
    EXPECT_EQ(Refused("8\tanna\tnever\tcomplete"), "a name that another user has: anna");
    EXPECT_EQ(Refused("8\t../x\tnever\tcomplete"), "a name that no folder can have: ../x");
    EXPECT_NE(Refused("8\t BEN\tnever\tcomplete").find("no folder"), std::string::npos);
    EXPECT_NE(Refused("8\t\tnever\tcomplete").find("no name"), std::string::npos);
    EXPECT_NE(Refused("8\t" + std::string(31, 'x') + "\tnever\tcomplete").find("more than 30"),
              std::string::npos);
    EXPECT_EQ(Refused("8\tB\xE9N\tnever\tcomplete"), "a name with characters that no handheld has: B?N");
    EXPECT_NE(Refused("8\t\xD0\x90nna\tnever\tcomplete").find("no handheld"), std::string::npos);
    EXPECT_NE(Refused("8\tBEN\tyesterday\tcomplete").find("a last sync is"), std::string::npos);
    EXPECT_NE(Refused("8\tBEN\t2026-02-30 10:00:00\tcomplete").find("a last sync is"), std::string::npos);
    EXPECT_NE(Refused("8\tBEN\t2026-11-21\tcomplete").find("a last sync is"), std::string::npos);
    EXPECT_EQ(Refused("8\tBEN\tnever\tdone"), "neither 'complete' nor 'incomplete': done");
    EXPECT_NE(Refused("move\tANNA").find("three columns"), std::string::npos);
    EXPECT_NE(Refused("move\tANNA\t../../etc").find("no folder"), std::string::npos);

    EXPECT_EQ(Names(users_), (Strings{"OLD"}));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(HotSyncUsersTest, ATabInARefusedLineIsShownAsAQuestionMark) {
    EXPECT_EQ(Refused("8\tBEN"), "not the four columns of a user, parted by tabs: 8?BEN");
}

TEST_F(HotSyncUsersTest, AFileThatMayNotBeReadIsNotAnEmptyOne) {
    GivenUsersFile("7\tANNA\tnever\tcomplete\n");
    RefusingDisk disk(Path(""), Access::Read);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { users_.Load(); }).Number, 70);
}

TEST_F(HotSyncUsersTest, WhatAKilledRunHasLeftIsPutAway) {
    GivenFile("HotSync/Users.txt.zuk~", "half");

    users_.Load();

    EXPECT_FALSE(Exists(Path("Users.txt.zuk~")));
}

// ---- failing disks ----

TEST_F(HotSyncUsersTest, AChangeThatCannotBeWrittenChangesNothing) {
    GivenUsers({"ANNA"});
    GivenFile("HotSync/ANNA/Install/a.pdb", "x");
    const std::string before = Bytes(Path("Users.txt"));
    const std::uint32_t id = IdOf("ANNA");
    int changes = 0;
    users_.Changed = [&] { ++changes; };
    for (const int call : {1, 2}) {
        for (const auto& change : std::vector<std::function<void()>>{
                 [&] { users_.New("BEN"); }, [&] { users_.Rename(id, "CLARA"); }, [&] { users_.Delete(id); },
                 [&] { users_.TakeHandheld(id, 9); }, [&] { users_.Synced(id, Noon, true); }}) {
            FaultyDisk disk(call);
            Global.TheDisk = &disk;

            EXPECT_EQ(FailureOf(change).Number, 61);

            Global.TheDisk = &NativeDisk();
            EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
            EXPECT_EQ(Bytes(Path("Users.txt")), before);
            EXPECT_TRUE(Exists(Path("ANNA/Install/a.pdb")));
        }
    }
    EXPECT_EQ(changes, 0);
}

TEST_F(HotSyncUsersTest, AUserWhoseFolderCannotBeRenamedKeepsItsName) {
    GivenUsers({"ANNA"});
    StiffDisk disk;
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { users_.Rename(IdOf("ANNA"), "CLARA"); }).Number, 75);
    EXPECT_EQ(FailureOf([&] { users_.Delete(IdOf("ANNA")); }).Number, 75);

    EXPECT_EQ(Names(users_), (Strings{"ANNA"}));
    EXPECT_EQ(Again().All(), users_.All());
    EXPECT_TRUE(Exists(Path("ANNA")));
}

TEST_F(HotSyncUsersTest, AFolderThatStayedBehindFollowsAtTheNextStart) {
    GivenAFolderThatStayedBehind();
    EXPECT_EQ(Names(users_), (Strings{"CLARA"}));
    EXPECT_TRUE(Exists(Path("ANNA")));

    const HotSyncUsers again = Again();

    EXPECT_EQ(Names(again), (Strings{"CLARA"}));
    EXPECT_EQ(Bytes(Path("CLARA/Install/a.pdb")), "x");
    EXPECT_FALSE(Exists(Path("ANNA")));
}

TEST_F(HotSyncUsersTest, AFolderThatStayedBehindFollowsBeforeItsNameIsUsedAgain) {
    GivenAFolderThatStayedBehind();

    users_.New("ANNA");

    EXPECT_EQ(Bytes(Path("CLARA/Install/a.pdb")), "x");
    EXPECT_FALSE(Exists(Path("ANNA/Install/a.pdb")));
}

TEST_F(HotSyncUsersTest, WhereverARenamingIsCutOffTheNextStartFindsTheUserWithItsFolder) {
    int before = 0;
    int behind = 0;
    for (int call = 1; before + behind < call; ++call) {
        const std::string folder = Folder() + "Cut " + std::to_string(call) + "/";
        GivenFile("Cut " + std::to_string(call) + "/ANNA/Install/a.pdb", "x");
        HotSyncUsers users(folder);
        users.New("ANNA");
        FaultyDisk disk(call); // nothing works any more from this call on: as if the process had ended there
        Global.TheDisk = &disk;
        const bool failed = FailureNumber([&] { users.Rename(users.All()[0].Id, "CLARA"); }) != 0;
        Global.TheDisk = &NativeDisk();

        HotSyncUsers again(folder);
        again.Load();

        ASSERT_EQ(again.All().size(), 1u);
        EXPECT_EQ(Bytes(again.InstallFolder(again.All()[0]) + "a.pdb"), "x") << call;
        EXPECT_EQ(Global.TheDisk->FoldersIn(folder).size(), 1u) << call;
        ++(again.All()[0].Name == "ANNA" ? before : behind);
        if (!failed) break;
    }
    EXPECT_GE(before, 3);
    EXPECT_GE(behind, 2);
}

TEST_F(HotSyncUsersTest, ARenamingThatIsDoneIsNotDoneAgain) {
    GivenUsersFile("7\tCLARA\tnever\tcomplete\nmove\tANNA\tCLARA\n");
    GivenFile("HotSync/CLARA/Install/hers.pdb", "x");
    GivenFile("HotSync/ANNA/Install/later.pdb", "y");

    users_.Load();

    EXPECT_TRUE(Exists(Path("CLARA/Install/hers.pdb")));
    EXPECT_TRUE(Exists(Path("ANNA/Install/later.pdb")));
}

TEST_F(HotSyncUsersTest, TheMachineOfAStandInGoesByTheUsersIdAndFitsTheLinksTable) {
    std::set<std::string> machines;
    for (std::uint32_t id = 1; id <= 5000; ++id) {
        const std::string machine = StandInMachine(id);
        ASSERT_EQ(machine.size(), 4U) << id;
        ASSERT_TRUE(machine[0] >= 'A' && machine[0] <= 'Z') << machine;
        EXPECT_TRUE(machines.insert(machine).second) << machine;
    }
    EXPECT_EQ(StandInMachine(0xFFFFFFFF).size(), 4U);
}

} // namespace
