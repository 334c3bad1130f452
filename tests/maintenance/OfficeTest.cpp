#include "maintenance/Office.h"

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

} // namespace
