#include "maintenance/Office.h"

#include "core/Globals.h"
#include "maintenance/VersionUpdate.h"
#include "store/TableCatalogue.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

const std::string Installed = TRAMBLE_INSTALLED;

class OfficeTest : public EngineTest {
protected:
    std::string Office() const { return Folder() + "office/"; }

    /// Every file of a folder by its path below it.
    static std::map<std::string, std::string> FilesBelow(const std::string& folder) {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (!entry.is_regular_file()) continue;
            files[fs::relative(entry.path(), folder).generic_string()] = Bytes(entry.path().string());
        }
        return files;
    }

    /// An installed set without pictures and with one template: small enough to fail at every call.
    std::string GivenSmallSet() {
        const std::string set = Folder() + "set/";
        for (const TableEntry& table : AllTables()) GivenTable(set + "Install/", table.Name);
        GivenFile("set/Install/Notes.dat", "");
        GivenFile("set/Install/Graphics/zuk1.svg", "<svg/>");
        GivenFile("set/Templates/Demo.cst", "demo");
        return set;
    }

    /// Programs and set as they are installed for everybody.
    std::string GivenPrefix() {
        fs::create_directories(Folder() + "prefix/bin");
        fs::create_directories(Folder() + "prefix/share");
        fs::rename(GivenSmallSet(), Folder() + "prefix/share/zuk-tramble");
        return Folder() + "prefix/";
    }
};

TEST_F(OfficeTest, AFreshOfficeHasEveryTableTheNotesThePicturesAndTheDemonstrations) {
    LayOutOffice(Installed, Office());

    for (const TableEntry& table : AllTables()) {
        const std::string name = std::string(table.Name) + ".dbf";
        EXPECT_EQ(TableAt(Office() + "Install/" + name).Count, 0) << name;
        EXPECT_GE(TableAt(Office() + "DBFFiles/" + name).Count, 0) << name;
    }
    EXPECT_TRUE(Exists(Office() + "DBFFiles/Notes.dat"));
    EXPECT_TRUE(Exists(Office() + "Install/Graphics/zuk1.svg"));
    const auto templates = FilesBelow(Installed + "/Templates");
    EXPECT_FALSE(templates.empty());
    EXPECT_EQ(FilesBelow(Office() + "Templates"), templates);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(OfficeTest, CompanyPrintAndSetupHaveOneRecordAndNoOtherTableHasOne) {
    LayOutOffice(Installed, Office());

    for (const TableEntry& table : AllTables()) {
        const std::string name = table.Name;
        const bool settings = name == "ZUKComp" || name == "ZUKPrint" || name == "ZUKSetup";
        const TableContent content = TableAt(Office() + "DBFFiles/" + name + ".dbf");
        EXPECT_EQ(content.Count, settings ? 1 : 0) << name;
        if (!settings) continue;
        EXPECT_EQ(content.Flags, " ") << name;
        for (const std::string& value : content.Trimmed(1)) EXPECT_EQ(value, "") << name;
    }
}

TEST_F(OfficeTest, PathsWithAndWithoutATrailingSeparatorAreTheSame) {
    const std::string set = GivenSmallSet();

    LayOutOffice(set.substr(0, set.size() - 1), Folder() + "one");
    LayOutOffice(set, Folder() + "two/");

    EXPECT_EQ(FilesBelow(Folder() + "one"), FilesBelow(Folder() + "two"));
}

TEST_F(OfficeTest, WhatStandsThereIsNeverTouched) {
    const std::string set = GivenSmallSet();
    const std::string mine = GivenTable(Office() + "DBFFiles/", "ZUKComp", {{"Acme"}, {"Two"}});
    fs::rename(mine, Office() + "DBFFiles/ZUKCOMP.DBF");
    const std::map<std::string, std::string> own = {{"DBFFiles/ZUKCust.dbf", "not even a table"},
                                                    {"DBFFiles/Notes.dat", "my notes"},
                                                    {"Install/ZUKItem.dbf", "an older one"},
                                                    {"Templates/Demo.cst", "my template"},
                                                    {"ZUKTramble.ini", "PurgeDays=1"}};
    for (const auto& [name, content] : own) GivenFile("office/" + name, content);
    const auto before = FilesBelow(Office());

    LayOutOffice(set, Office());

    const auto after = FilesBelow(Office());
    for (const auto& [name, content] : before) EXPECT_EQ(after.at(name), content) << name;
    EXPECT_EQ(after.count("DBFFiles/ZUKComp.dbf"), 0u);
}

TEST_F(OfficeTest, AnOfficeIsLaidOutOnceSoThatATableDeletedLaterStaysMissing) {
    const std::string set = GivenSmallSet();
    LayOutOffice(set, Office());
    fs::remove(Office() + "DBFFiles/ZUKCust.dbf");
    fs::remove(Office() + "Templates/Demo.cst");

    LayOutOffice(set, Office());

    EXPECT_FALSE(Exists(Office() + "DBFFiles/ZUKCust.dbf"));
    EXPECT_FALSE(Exists(Office() + "Templates/Demo.cst"));
}

TEST_F(OfficeTest, ALayoutThatIsCutOffAnywhereIsCompletedByTheNextOne) {
    const std::string set = GivenSmallSet();
    LayOutOffice(set, Folder() + "whole");
    const auto whole = FilesBelow(Folder() + "whole");
    FaultyDisk counting;
    Global.TheDisk = &counting;
    LayOutOffice(set, Folder() + "counted");
    const int calls = counting.Calls();
    ASSERT_GT(calls, 200);

    for (int n = 1; n <= calls; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        EXPECT_EQ(FailureOf([&] { LayOutOffice(set, Office()); }).Number, 61) << n;
        FaultyDisk repaired;
        Global.TheDisk = &repaired;
        EXPECT_EQ(Global.Files.Count(), 0) << n;
        if (Exists(Office())) {
            for (const auto& [name, content] : FilesBelow(Office())) {
                EXPECT_TRUE(whole.contains(name) && whole.at(name) == content) << n << " " << name;
            }
        }

        LayOutOffice(set, Office());

        EXPECT_EQ(FilesBelow(Office()), whole) << n;
        fs::remove_all(Office());
    }
}

TEST_F(OfficeTest, ASetThatLacksATableIsFailure53AndTheOfficeIsNotCalledComplete) {
    const std::string set = GivenSmallSet();
    fs::remove(set + "Install/ZUKVER.dbf");
    const FailureSeen seen = FailureOf([&] { LayOutOffice(set, Office()); });
    EXPECT_EQ(seen.Number, 53);
    EXPECT_NE(seen.Words.find("ZUKVER.dbf"), std::string::npos);

    GivenTable(set + "Install/", "ZUKVER");
    LayOutOffice(set, Office());

    EXPECT_TRUE(Exists(Office() + "DBFFiles/ZUKVER.dbf"));
    EXPECT_TRUE(Exists(Office() + "Templates/Demo.cst"));
}

// ---- where the application directory is ----

TEST_F(OfficeTest, TheProgramsOwnFolderIsTheApplicationDirectoryWhenItCanBeWritten) {
    fs::create_directory(Folder() + "program");

    EXPECT_EQ(ApplicationDirectory(Folder() + "program", Folder() + "user"), Folder() + "program/");

    EXPECT_TRUE(fs::is_empty(Folder() + "program"));
    EXPECT_FALSE(Exists(Folder() + "user"));
}

TEST_F(OfficeTest, AFolderThatCannotBeWrittenGivesAnOfficeInTheUsersDataFolder) {
    const std::string program = GivenSmallSet();
    const auto before = FilesBelow(program);
    RefusingDisk disk(program, Access::Create);
    Global.TheDisk = &disk;

    const std::string app = ApplicationDirectory(program, Folder() + "user/");

    EXPECT_EQ(app, Folder() + "user/ZUKTramble/");
    EXPECT_TRUE(Exists(app + "DBFFiles/ZUKOrHdr.dbf"));
    EXPECT_TRUE(Exists(app + "Install/ZUKOrHdr.dbf"));
    EXPECT_EQ(FilesBelow(program), before);
}

TEST_F(OfficeTest, TheUsersOfficeIsLaidOutAtItsFirstUseOnly) {
    const std::string program = GivenSmallSet();
    RefusingDisk disk(program, Access::Create);
    Global.TheDisk = &disk;
    const std::string app = ApplicationDirectory(program, Folder() + "user");
    fs::remove(app + "DBFFiles/ZUKCust.dbf");

    EXPECT_EQ(ApplicationDirectory(program, Folder() + "user"), app);

    EXPECT_FALSE(Exists(app + "DBFFiles/ZUKCust.dbf"));
}

TEST_F(OfficeTest, AnOfficeThatCannotBeLaidOutAnywhereIsAFailure) {
    const std::string program = GivenSmallSet();
    RefusingDisk disk(Folder(), Access::Create);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { ApplicationDirectory(program, Folder() + "user"); }).Number, 70);
}

// ---- installed for everybody ----

TEST_F(OfficeTest, InstalledForEverybodyTheOfficeIsTheUsersAlsoForWhoeverMayWriteBesideTheProgram) {
    const std::string prefix = GivenPrefix();
    const auto before = FilesBelow(prefix);

    const std::string app = ApplicationDirectory(prefix + "bin", Folder() + "user");

    EXPECT_TRUE(IsInstalledForEverybody(prefix + "bin/"));
    EXPECT_EQ(InstalledSet(prefix + "bin"), prefix + "share/zuk-tramble/");
    EXPECT_EQ(app, Folder() + "user/ZUKTramble/");
    EXPECT_EQ(app, UsersOffice(Folder() + "user/"));
    EXPECT_TRUE(Exists(app + "DBFFiles/ZUKOrHdr.dbf"));
    EXPECT_TRUE(Exists(app + "Install/Graphics/zuk1.svg"));
    EXPECT_EQ(FilesBelow(prefix), before);
}

TEST_F(OfficeTest, AFolderWithASetOfItsOwnIsNotEverybodysWhateverLiesInTheShareBesideIt) {
    const std::string prefix = GivenPrefix();
    fs::rename(GivenSmallSet(), prefix + "unpacked");

    EXPECT_FALSE(IsInstalledForEverybody(prefix + "unpacked"));
    EXPECT_EQ(InstalledSet(prefix + "unpacked"), prefix + "unpacked/");
    EXPECT_EQ(ApplicationDirectory(prefix + "unpacked", Folder() + "user"), prefix + "unpacked/");
    EXPECT_FALSE(Exists(Folder() + "user"));
}

TEST_F(OfficeTest, AUserWhoInstallsForHimselfHasSetAndOfficeBesideEachOther) {
    const std::string prefix = GivenPrefix();
    const auto before = FilesBelow(prefix + "share/zuk-tramble");

    const std::string app = ApplicationDirectory(prefix + "bin", prefix + "share");

    EXPECT_EQ(app, prefix + "share/ZUKTramble/");
    EXPECT_TRUE(Exists(app + "DBFFiles/ZUKOrHdr.dbf"));
    EXPECT_EQ(FilesBelow(prefix + "share/zuk-tramble"), before);
}

TEST_F(OfficeTest, AProgramWithNoSetAnywhereHasItsOwnFolder) {
    EXPECT_FALSE(IsInstalledForEverybody(Folder() + "bin"));
    EXPECT_EQ(InstalledSet(Folder() + "bin"), Folder() + "bin/");
}

// ---- a newer release ----

/// A user's office, laid out from an installed set that a newer release then replaces.
class UpgradeTest : public OfficeTest {
protected:
    UpgradeTest() : prefix_(GivenPrefix()) {
        GivenShipped("Tramble.prc", "stand-in, release 1");
        GivenShipped("Old.prc", "of release 1 alone");
        Start();
    }

    std::string Set() const { return prefix_ + "share/zuk-tramble/"; }
    std::string App() const { return Folder() + "user/ZUKTramble/"; }
    void GivenShipped(const std::string& name, const std::string& content) {
        GivenFile("prefix/share/zuk-tramble/Install/" + name, content);
    }
    /// ZUKPAY with a field that the release before did not have.
    void GivenNewPay() {
        const TableMaker pay({{"P_CODE", 'C', 3}, {"P_DESC", 'C', 10}, {"P_DAYS", 'C', 3}});
        GivenShipped("ZUKPAY.dbf", pay.Bytes());
    }
    void GivenOldPay() {
        const TableMaker pay({{"P_CODE", 'C', 3}, {"P_DESC", 'C', 10}});
        GivenShipped("ZUKPAY.dbf", pay.Bytes());
        GivenFile("user/ZUKTramble/Install/ZUKPAY.dbf", pay.Bytes());
        GivenFile("user/ZUKTramble/DBFFiles/ZUKPAY.dbf", TableMaker(pay).Row({"N30", "Net 30"}).Bytes());
        fs::remove(App() + "Install/Office.txt");
        Start();
    }
    void Start() const {
        RenewInstall(InstalledSet(prefix_ + "bin"), ApplicationDirectory(prefix_ + "bin", Folder() + "user"));
    }
    std::string Own(const std::string& name) const { return Bytes(App() + "Install/" + name); }

    /// What a start goes on with.
    void Update() const {
        Global.AppPath = App();
        NoProgress silent;
        ASSERT_TRUE(PrepareOffice([] {}, [&] { UpdateTables(silent); }));
    }
    std::vector<std::string> Pay() const { return TableAt(App() + "DBFFiles/ZUKPAY.dbf").Trimmed(1); }

private:
    std::string prefix_;
};

TEST_F(UpgradeTest, WhatTheOperatorHasNotChangedBecomesTheNewerOne) {
    GivenShipped("Tramble.prc", "stand-in, release 2");
    GivenShipped("Graphics/zuk1.svg", "<svg>2</svg>");
    GivenShipped("Graphics/new.svg", "<svg/>");
    GivenShipped("New.prc", "of release 2");

    Start();

    EXPECT_EQ(Own("Tramble.prc"), "stand-in, release 2");
    EXPECT_EQ(Own("Graphics/zuk1.svg"), "<svg>2</svg>");
    EXPECT_EQ(Own("Graphics/new.svg"), "<svg/>");
    EXPECT_EQ(Own("New.prc"), "of release 2");
}

TEST_F(UpgradeTest, WhatTheOperatorHasPutThereStaysAlsoAtTheReleaseBehindTheNext) {
    GivenFile("user/ZUKTramble/Install/Tramble.prc", "the real program");
    GivenFile("user/ZUKTramble/Install/New.prc", "mine");
    for (const char* release : {"2", "3"}) {
        GivenShipped("Tramble.prc", std::string("stand-in, release ") + release);
        GivenShipped("New.prc", std::string("of release ") + release);

        Start();

        EXPECT_EQ(Own("Tramble.prc"), "the real program") << release;
        EXPECT_EQ(Own("New.prc"), "mine") << release;
    }
}

TEST_F(UpgradeTest, EachReleaseRenewsWhatTheOneBeforeBrought) {
    for (const char* release : {"2", "3", "4"}) {
        GivenShipped("Tramble.prc", release);

        Start();

        EXPECT_EQ(Own("Tramble.prc"), release);
    }
}

TEST_F(UpgradeTest, TheSameReleaseChangesNothingSoThatWhatWasRemovedStaysSo) {
    fs::remove(App() + "Install/Tramble.prc");
    const auto before = FilesBelow(App());

    Start();

    EXPECT_EQ(FilesBelow(App()), before);
}

TEST_F(UpgradeTest, WhatTheOperatorHasRemovedDoesNotComeBackWithANewerRelease) {
    fs::remove(App() + "Install/Tramble.prc");
    GivenShipped("Tramble.prc", "stand-in, release 2");

    Start();

    EXPECT_FALSE(Exists(App() + "Install/Tramble.prc"));
}

TEST_F(UpgradeTest, ASetThatIsAwayForAStartIsNoReleaseWithoutFiles) {
    const auto before = FilesBelow(App());
    fs::rename(Set(), Folder() + "away");
    fs::create_directories(Set());
    Start();
    EXPECT_EQ(FilesBelow(App()), before);
    fs::remove(Set());
    fs::rename(Folder() + "away", Set());
    GivenShipped("Tramble.prc", "stand-in, release 2");

    Start();

    EXPECT_EQ(Own("Tramble.prc"), "stand-in, release 2");
}

TEST_F(UpgradeTest, WhatANewerReleaseLacksAndEveryFileOutsideInstallStays) {
    fs::remove(Set() + "Install/Old.prc");
    GivenFile("prefix/share/zuk-tramble/Templates/Demo.cst", "release 2");
    GivenFile("user/ZUKTramble/Install/HSStatus.dat", "status");
    const auto before = FilesBelow(App());

    Start();

    auto after = FilesBelow(App());
    EXPECT_NE(after["Install/Office.txt"], before.at("Install/Office.txt"));
    after["Install/Office.txt"] = before.at("Install/Office.txt");
    EXPECT_EQ(after, before);
}

TEST_F(UpgradeTest, AnOfficeThatKeptNoChecksumsGetsWhatItLacksAndKeepsTheRest) {
    GivenFile("user/ZUKTramble/Install/Office.txt", "This office has been laid out.\r\n12 no checksum\r\n");
    GivenShipped("Tramble.prc", "stand-in, release 2");
    GivenShipped("New.prc", "of release 2");

    Start();

    EXPECT_EQ(Own("Tramble.prc"), "stand-in, release 1");
    EXPECT_EQ(Own("New.prc"), "of release 2");
}

TEST_F(UpgradeTest, ATableWithANewFieldTakesTheOperatorsRecordsOver) {
    GivenOldPay();
    GivenNewPay();

    Start();
    Update();

    EXPECT_EQ(Pay(), (std::vector<std::string>{"N30", "Net 30", ""}));
    EXPECT_EQ(TableAt(App() + "Install/ZUKPAY.dbf").Names.size(), 3u);
    EXPECT_EQ(TableAt(App() + "DBFEmpty/ZUKPAY.dbf").Names.size(), 3u);
    EXPECT_TRUE(fs::is_empty(App() + "DBFNew"));
}

TEST_F(UpgradeTest, ATableThatTheOperatorHasGivenOtherFieldsKeepsThem) {
    GivenOldPay();
    const TableMaker mine = TableMaker({{"P_CODE", 'C', 3}, {"MINE", 'C', 4}}).Row({"N30", "own"});
    GivenFile("user/ZUKTramble/DBFFiles/ZUKPAY.dbf", mine.Bytes());
    GivenNewPay();

    Start();
    Update();

    EXPECT_EQ(Pay(), (std::vector<std::string>{"N30", "own"}));
}

TEST_F(UpgradeTest, ATableThatIsNewInAReleaseStandsAmongTheTables) {
    const std::string fresh = TableMaker({{"X_CODE", 'C', 3}}).Bytes();
    GivenShipped("ZUKNEXT.dbf", fresh);

    Start();

    EXPECT_EQ(Own("ZUKNEXT.dbf"), fresh);
    EXPECT_EQ(Bytes(App() + "DBFFiles/ZUKNEXT.dbf"), fresh);
}

TEST_F(UpgradeTest, AnUpgradeThatIsCutOffAnywhereIsCompletedByTheNextStart) {
    GivenOldPay();
    const fs::path old = Folder() + "old";
    fs::copy(App(), old, fs::copy_options::recursive);
    GivenNewPay();
    GivenShipped("Tramble.prc", "stand-in, release 2");
    Start();
    const auto whole = FilesBelow(App());
    int failAt = 1;
    for (bool failed = true; failed; ++failAt) {
        fs::remove_all(App());
        fs::copy(old, App(), fs::copy_options::recursive);
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        failed = FailureNumber([&] { Start(); }) == 61;
        FaultyDisk repaired;
        Global.TheDisk = &repaired;
        Start();
        Global.TheDisk = &NativeDisk();

        ASSERT_EQ(FilesBelow(App()), whole) << failAt;
    }
    EXPECT_GT(failAt, 10);
}

} // namespace
