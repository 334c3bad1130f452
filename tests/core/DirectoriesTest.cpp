#include "core/Directories.h"
#include "store/OfficeTables.h"

#include "core/Settings.h"
#include "store/TableCatalogue.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

/// An application directory that has its `Install` and nothing else, as start-up meets it.
class DirectoriesTest : public EngineTest {
protected:
    DirectoriesTest() {
        Global.AppPath = Folder() + "app/";
        Global.InstallPath = Global.AppPath + "Install/";
        Global.IniFile = Global.AppPath + "ZUKTramble.ini";
        fs::create_directories(Global.InstallPath);
        Global.Clock = [] { return DateTime{2026, 11, 15, 2, 36, 7}; };
    }

    void GivenInstalledTables() {
        for (const TableEntry& table : AllTables())
            GivenTable(Global.InstallPath, table.Name, {{"1"}, {"2"}});
    }

    static Strings NamesIn(const std::string& folder) {
        Strings names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(DirectoriesTest, EveryDirectoryIsMadeUnderItsFixedNameAndKnownWithASeparator) {
    SetTablesAndInstall();
    SetGraphics();
    SetImagesAndTotals();
    SetDataIn();
    SetDataOutBackupTemplates();
    SetUpdates();
    TemplatePass([] {});

    const std::string app = Folder() + "app/";
    const std::vector<std::pair<std::string, std::string>> paths = {
        {Global.InstallPath, app + "Install/"},
        {Global.GraphicsPath, app + "Install/Graphics/"},
        {Global.DBFPath, app + "DBFFiles/"},
        {Global.ImagesPath, app + "DBFFiles/Images/"},
        {Global.HHTotalsPath, app + "DBFFiles/HHTotals/"},
        {Global.DataInPath, app + "DataIn/"},
        {Global.DataOutPath, app + "DataOut/"},
        {Global.BackupPath, app + "Backup/"},
        {Global.UpdatesPath, app + "Updates/"},
        {Global.TemplatesPath, app + "Templates/"},
        {Global.ImportTemplates, app + "Templates/Import/"},
        {Global.ExportTemplates, app + "Templates/Export/"},
        {Global.DownloadTemplates, app + "Templates/Download/"},
        {Global.UploadTemplates, app + "Templates/Upload/"},
        {Global.ClearPCTemplates, app + "Templates/ClearPC/"},
        {Global.QuickButtonTemplates, app + "Templates/QuickButtons/"},
        {Global.UnattendedTemplates, app + "Templates/UnattendedHotsync/"}};
    for (const auto& [path, expected] : paths) {
        EXPECT_EQ(path, expected);
        EXPECT_TRUE(fs::is_directory(expected)) << expected;
    }
}

TEST_F(DirectoriesTest, TheInstallDirectoryIsNotMade) {
    fs::remove(Global.InstallPath);

    SetTablesAndInstall();

    EXPECT_FALSE(Exists(Folder() + "app/Install"));
}

TEST_F(DirectoriesTest, AFileInADirectorysPlaceIsAFailure) {
    GivenFile("app/DBFFiles", "");

    EXPECT_EQ(FailureOf([] { SetTablesAndInstall(); }).Number, 75);
}

// ---- the company's name ----

TEST_F(DirectoriesTest, TheCompanysNameComesFromTheTablesDirectory) {
    SetTablesAndInstall();
    GivenTable(Global.DBFPath, "ZUKComp", {{"  Acme Tools ", "line 2"}, {"Second"}});
    GivenTable(Global.InstallPath, "ZUKComp", {{"Installed"}});

    EXPECT_EQ(ReadCompanyName(), "Acme Tools");
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(DirectoriesTest, WithoutATableThereItComesFromTheInstallDirectory) {
    SetTablesAndInstall();
    GivenTable(Global.InstallPath, "ZUKComp", {{"Installed"}});

    EXPECT_EQ(ReadCompanyName(), "Installed");
}

TEST_F(DirectoriesTest, ACompanyTableWithoutARecordGivesAnEmptyName) {
    SetTablesAndInstall();
    GivenTable(Global.DBFPath, "ZUKComp");

    EXPECT_EQ(ReadCompanyName(), "");
}

TEST_F(DirectoriesTest, ACompanyTableThatIsNoneIsAFailureAndNothingStaysOpen) {
    SetTablesAndInstall();
    GivenFile("app/DBFFiles/ZUKComp.dbf", "not a table");

    EXPECT_EQ(FailureOf([] { ReadCompanyName(); }).Number, 321);
    EXPECT_EQ(Global.Files.Count(), 0);
}

// ---- notes ----

TEST_F(DirectoriesTest, NotesAreCopiedOnceAndNeverOverTheOperators) {
    SetTablesAndInstall();
    GivenFile("app/Install/Notes.dat", "installed");
    CopyNotes();
    EXPECT_EQ(Bytes(Global.DBFPath + "Notes.dat"), "installed");
    GivenFile("app/DBFFiles/Notes.dat", "mine");

    CopyNotes();

    EXPECT_EQ(Bytes(Global.DBFPath + "Notes.dat"), "mine");
}

TEST_F(DirectoriesTest, NotesThatCannotBeCopiedStopNothing) {
    SetTablesAndInstall();

    EXPECT_NO_THROW(CopyNotes());

    EXPECT_FALSE(Exists(Global.DBFPath + "Notes.dat"));
}

// ---- empty twins ----

TEST_F(DirectoriesTest, ADirectoryOfTwinsWithStraysEndsUpWithExactlyThe24Tables) {
    GivenInstalledTables();
    GivenFile("app/DBFEmpty/STRAY.DBF", "x");
    GivenFile("app/DBFEmpty/Other.dbf", "x");
    GivenFile("app/DBFEmpty/ZUKPRN.dbf", "x");
    GivenFile("app/DBFEmpty/ZUKORHDR.DBF", "an old twin in other letters");

    MakeEmptyTwins();

    EXPECT_EQ(NamesIn(Global.DBFEmptyPath),
              (Strings{"ZUKAUDBH.dbf", "ZUKAUDBL.dbf",   "ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf",
                       "ZUKBarin.dbf", "ZUKComp.dbf",    "ZUKCust.dbf",  "ZUKHelp.dbf",  "ZUKItem.dbf",
                       "ZUKLINK.dbf",  "ZUKOrHdr.dbf",   "ZUKOrLin.dbf", "ZUKPAY.dbf",   "ZUKPrint.dbf",
                       "ZUKSTAX.dbf",  "ZUKSetup.dbf",   "ZUKTCUST.dbf", "ZUKTITEM.dbf", "ZUKTORHD.dbf",
                       "ZUKTORLI.dbf", "ZUKTOTALPC.dbf", "ZUKTPMNT.dbf", "ZUKVER.dbf"}));
}

TEST_F(DirectoriesTest, ATwinHasTheFieldsOfItsTableAndNoRecord) {
    GivenInstalledTables();

    MakeEmptyTwins();

    const TableContent twin = TableAt(Global.DBFEmptyPath + "ZUKLINK.dbf");
    const TableContent installed = TableAt(Global.InstallPath + "ZUKLINK.dbf");
    EXPECT_EQ(twin.Count, 0);
    EXPECT_EQ(twin.Names, installed.Names);
    EXPECT_EQ(installed.Count, 2);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(DirectoriesTest, ATableThatIsNotInstalledIsNamedInFailure53) {
    GivenInstalledTables();
    fs::remove(Global.InstallPath + "ZUKVER.dbf");

    const FailureSeen seen = FailureOf([] { MakeEmptyTwins(); });

    EXPECT_EQ(seen.Number, 53);
    EXPECT_NE(seen.Words.find("ZUKVER.dbf"), std::string::npos);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(DirectoriesTest, InstalledTablesAreFoundWhateverTheirLetters) {
    GivenInstalledTables();
    fs::rename(Global.InstallPath + "ZUKOrHdr.dbf", Global.InstallPath + "zukorhdr.DBF");

    MakeEmptyTwins();

    EXPECT_EQ(TableAt(Global.DBFEmptyPath + "ZUKOrHdr.dbf").Count, 0);
}

// ---- data in ----

TEST_F(DirectoriesTest, CsvFilesOfTheApplicationDirectoryMoveToDataIn) {
    GivenFile("app/orders.csv", "new");
    GivenFile("app/ITEMS.CSV", "items");
    GivenFile("app/other.txt", "stays");
    GivenFile("app/DataIn/orders.csv", "old");

    SetDataIn();

    EXPECT_EQ(NamesIn(Global.DataInPath), (Strings{"ITEMS.CSV", "orders.csv"}));
    EXPECT_EQ(Bytes(Global.DataInPath + "orders.csv"), "new");
    EXPECT_EQ(NamesIn(Global.AppPath), (Strings{"DataIn", "Install", "other.txt"}));
}

TEST_F(DirectoriesTest, ACsvFileThatCannotBeCopiedIsNotDeleted) {
    GivenFile("app/orders.csv", "new");
    fs::create_directories(Folder() + "app/DataIn");
    FaultyDisk disk(1);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([] { SetDataIn(); }).Number, 61);

    EXPECT_EQ(Bytes(Global.AppPath + "orders.csv"), "new");
}

// ---- the template pass ----

class TemplatePassTest : public DirectoriesTest {
protected:
    TemplatePassTest() { SetDataOutBackupTemplates(); }

    /// Runs the pass; how often the missing selection was told.
    static int Pass() {
        int told = 0;
        TemplatePass([&] { ++told; });
        return told;
    }
    std::string Root(const std::string& name) const { return Folder() + "app/Templates/" + name; }
};

TEST_F(TemplatePassTest, EachExtensionGoesToItsSubdirectory) {
    Global.UpdateDemoTemplates = false;
    const std::vector<std::pair<std::string, std::string>> kinds = {
        {"xah", "Export"},       {"xal", "Export"},       {"xhh", "Export"},
        {"xic", "Export"},       {"xiq", "Export"},       {"xor", "Export"},
        {"dst", "Download"},     {"ust", "Upload"},       {"dct", "Download"},
        {"cst", "Import"},       {"itm", "Import"},       {"orh", "Import"},
        {"orl", "Import"},       {"stx", "Import"},       {"pct", "ClearPC"},
        {"xpm", "QuickButtons"}, {"ipm", "QuickButtons"}, {"dlm", "QuickButtons"},
        {"ulm", "QuickButtons"}, {"ctm", "QuickButtons"}, {"uhs", "UnattendedHotsync"}};
    for (const auto& [extension, folder] : kinds) GivenFile("app/Templates/Demo." + extension, extension);
    GivenFile("app/Templates/Loud.CST", "capitals");
    GivenFile("app/Templates/Readme.txt", "no template");

    Pass();

    for (const auto& [extension, folder] : kinds) {
        EXPECT_EQ(Bytes(Root(folder + "/Demo." + extension)), extension);
        EXPECT_EQ(Bytes(Root("Demo." + extension)), extension);
    }
    EXPECT_EQ(Bytes(Root("Import/Loud.CST")), "capitals");
    std::size_t copies = 0;
    for (const auto& entry : fs::recursive_directory_iterator(Root(""))) {
        copies += entry.is_regular_file() && entry.path().parent_path() != fs::path(Root("")).parent_path();
    }
    EXPECT_EQ(copies, kinds.size() + 1);
    EXPECT_FALSE(Exists(Root("Demo")));
}

TEST_F(TemplatePassTest, WithoutTheUpdateOfDemosTheRootCopiesOverTheLiveOnesAndStays) {
    Global.UpdateDemoTemplates = false;
    GivenFile("app/Templates/Cust.cst", "root");
    GivenFile("app/Templates/Import/Cust.cst", "operator's");

    Pass();

    EXPECT_EQ(Bytes(Root("Import/Cust.cst")), "root");
    EXPECT_EQ(Bytes(Root("Cust.cst")), "root");
}

TEST_F(TemplatePassTest, WithTheUpdateTheDemosAreRefreshedTheOperatorsFileWinsAndTheRootFileGoes) {
    Global.UpdateDemoTemplates = true;
    GivenFile("app/Templates/Cust.cst", "root");
    GivenFile("app/Templates/Demo/Import/Cust.cst", "old demo");
    GivenFile("app/Templates/Import/CUST.CST", "operator's");

    Pass();

    EXPECT_EQ(Bytes(Root("Demo/Import/Cust.cst")), "root");
    EXPECT_EQ(Bytes(Root("Import/CUST.CST")), "operator's");
    EXPECT_FALSE(Exists(Root("Import/Cust.cst")));
    EXPECT_FALSE(Exists(Root("Cust.cst")));
}

TEST_F(TemplatePassTest, WithTheUpdateATemplateThatTheOperatorLacksMovesToItsPlace) {
    Global.UpdateDemoTemplates = true;
    GivenFile("app/Templates/Cust.cst", "root");

    Pass();

    EXPECT_EQ(Bytes(Root("Demo/Import/Cust.cst")), "root");
    EXPECT_EQ(Bytes(Root("Import/Cust.cst")), "root");
    EXPECT_FALSE(Exists(Root("Cust.cst")));
    EXPECT_EQ(Global.TemplatesPath, Root(""));
    EXPECT_EQ(Global.ImportTemplates, Root("Import/"));
}

TEST_F(TemplatePassTest, TheUpdateIsNotTurnedOffByTheStart) {
    Global.UpdateDemoTemplates = true;

    Pass();

    EXPECT_TRUE(Global.UpdateDemoTemplates);
}

TEST_F(TemplatePassTest, AMissingSelectionIsTurnedOffWithOneMessage) {
    for (const bool demo : {false, true}) {
        Global.UpdateDemoTemplates = demo;
        Global.RemoteSelect = true;
        Global.RemoteSelSettings = "Gone";
        Global.UploadSelect = true;
        Global.UploadSelSettings = "Up";
        Global.RemoteClearSettings = "Clear";
        GivenFile("app/Templates/Demo/Download/Gone.dst", "a demo is no selection");
        UpdateIniFile();

        EXPECT_EQ(Pass(), 1);
        EXPECT_FALSE(Global.RemoteSelect);
        EXPECT_EQ(Global.RemoteSelSettings, "");
        EXPECT_FALSE(Global.UploadSelect);
        EXPECT_EQ(Global.UploadSelSettings, "");
        EXPECT_EQ(Global.RemoteClearSettings, "");
        EXPECT_EQ(Global.UpdateDemoTemplates, demo);

        EXPECT_EQ(Pass(), 0);
    }
}

TEST_F(TemplatePassTest, ASelectionThatIsThereStaysOnWhateverItsLetters) {
    Global.RemoteSelect = true;
    Global.RemoteSelSettings = "CAF\xE9";
    GivenFile("app/Templates/Download/Caf\xC3\xA9.dst", "");

    EXPECT_EQ(Pass(), 0);

    EXPECT_TRUE(Global.RemoteSelect);
    EXPECT_EQ(Global.RemoteSelSettings, "CAF\xE9");
}

TEST_F(TemplatePassTest, ASelectionThatLeadsOutOfItsDirectoryIsMissing) {
    GivenFile("app/Elsewhere.dst", "");
    Global.RemoteSelect = true;
    Global.RemoteSelSettings = "../../Elsewhere";
    UpdateIniFile();

    EXPECT_EQ(Pass(), 1);
}

TEST_F(TemplatePassTest, ASelectionThatIsOffMayBeMissing) {
    Global.RemoteSelect = false;
    Global.RemoteSelSettings = "Gone";

    EXPECT_EQ(Pass(), 0);

    EXPECT_EQ(Global.RemoteSelSettings, "Gone");
}

TEST_F(TemplatePassTest, APassThatIsCutOffLosesNoTemplate) {
    Global.UpdateDemoTemplates = true;
    Global.AppPath.clear(); // no trace: only the templates meet the fault
    for (int n = 1; n < 30; ++n) {
        GivenFile("app/Templates/Cust.cst", "root");
        fs::remove(Root("Import/Cust.cst"));
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        try {
            Pass();
        } catch (const RunTimeFailure&) {
        }
        Global.TheDisk = &NativeDisk();
        Global.TemplatesPath = Root("");
        EXPECT_TRUE(Exists(Root("Cust.cst")) || Bytes(Root("Import/Cust.cst")) == "root") << n;
    }
}

// ---- bitmaps, strays, the temporary directory ----

TEST_F(DirectoriesTest, NewBitmapsMoveToTheImagesAndNeverOverOneThatIsThere) {
    SetTablesAndInstall();
    SetImagesAndTotals();
    GivenFile("app/DBFNew/A1.bmp", "new");
    GivenFile("app/DBFNew/b2.BMP", "new too");
    GivenFile("app/DBFNew/other.dbf", "stays");
    GivenFile("app/DBFFiles/Images/a1.BMP", "signed");

    MoveNewBitmaps();

    EXPECT_EQ(NamesIn(Global.ImagesPath), (Strings{"a1.BMP", "b2.BMP"}));
    EXPECT_EQ(Bytes(Global.ImagesPath + "a1.BMP"), "signed");
    EXPECT_EQ(NamesIn(Folder() + "app/DBFNew"), Strings{"other.dbf"});
}

TEST_F(DirectoriesTest, WithoutADirectoryOfNewTablesThereAreNoBitmaps) {
    SetTablesAndInstall();
    SetImagesAndTotals();

    EXPECT_NO_THROW(MoveNewBitmaps());
}

class StraysTest : public EngineTest {
protected:
    StraysTest() { GivenAppDirectory(); }
};

TEST_F(StraysTest, WorkFilesOfAKilledRunGoFromEveryDirectory) {
    const Strings strays = {"app/ZUKTramble.ini.zuk~",
                            "app/Install/HSStatus.dat.zuk~",
                            "app/Install/Graphics/zuk1.svg.zuk~",
                            "app/DBFFiles/ZUKCust.dbf.zuk~",
                            "app/DBFFiles/Images/A1.bmp.zuk~",
                            "app/DBFFiles/HHTotals/Anna/ZUKAudHH.dbf.zuk~",
                            "app/DBFEmpty/ZUKCust.dbf.ZUK~",
                            "app/DataIn/a.csv.zuk~",
                            "app/DataOut/a.csv.zuk~",
                            "app/Backup/61115023607/ZUKOrHdr.dbf.zuk~",
                            "app/Templates/a.cst.zuk~",
                            "app/Templates/Import/a.cst.zuk~",
                            "app/Templates/Demo/Import/a.cst.zuk~"};
    for (const std::string& stray : strays) GivenFile(stray, "half");
    const std::string table = GivenFile("app/DBFFiles/ZUKCust.dbf", "whole");
    const std::string backup = GivenFile("app/Backup/61115023607/ZUKOrHdr.dbf", "whole");

    RemoveStrays();

    for (const std::string& stray : strays) EXPECT_FALSE(Exists(Folder() + stray)) << stray;
    EXPECT_TRUE(Exists(table));
    EXPECT_TRUE(Exists(backup));
}

TEST_F(StraysTest, TheWorkFileOfATablesCompactionGoesAndAnotherIndexStays) {
    GivenFile("app/DBFFiles/ZUKCust.dbf", "whole");
    GivenFile("app/DBFFiles/zukcust.IDX", "half");
    GivenFile("app/DBFFiles/Mine.idx", "mine");

    RemoveStrays();

    EXPECT_FALSE(Exists(Global.DBFPath + "zukcust.IDX"));
    EXPECT_TRUE(Exists(Global.DBFPath + "Mine.idx"));
}

TEST_F(StraysTest, AStrayThatCannotBeRemovedStopsNothing) {
    GivenFile("app/DBFFiles/a.dbf.zuk~", "half");
    GivenFile("app/DBFFiles/b.dbf.zuk~", "half");
    KeepingDisk disk("a.dbf.zuk~");
    Global.TheDisk = &disk;

    EXPECT_NO_THROW(RemoveStrays());

    EXPECT_FALSE(Exists(Global.DBFPath + "b.dbf.zuk~"));
}

TEST_F(StraysTest, PathsThatWereNeverSetAreNotTheCurrentDirectory) {
    const fs::path before = fs::current_path();
    GivenFile("elsewhere/a.zuk~", "somebody's");
    fs::current_path(Folder() + "elsewhere");
    Global = Globals{};

    RemoveStrays();

    fs::current_path(before);
    EXPECT_TRUE(Exists(Folder() + "elsewhere/a.zuk~"));
}

class TemporaryDirectoryTest : public EngineTest {
protected:
    TemporaryDirectoryTest() {
        if (const char* value = std::getenv("TMPDIR")) before_ = value;
        setenv("TMPDIR", Folder().c_str(), 1);
    }
    ~TemporaryDirectoryTest() override {
        if (before_.empty())
            unsetenv("TMPDIR");
        else
            setenv("TMPDIR", before_.c_str(), 1);
    }

private:
    std::string before_;
};

TEST_F(TemporaryDirectoryTest, ItIsEmptiedAndRemoved) {
    GivenFile("ZUKTemp/a.pdb", "x");
    GivenFile("ZUKTemp/b", "x");
    ASSERT_EQ(TemporaryDirectory(), Folder() + "ZUKTemp/");

    RemoveTemporaryDirectory();

    EXPECT_FALSE(Exists(Folder() + "ZUKTemp"));
}

TEST_F(TemporaryDirectoryTest, AMissingOneAndOneThatHoldsAFolderAreNoFailure) {
    EXPECT_NO_THROW(RemoveTemporaryDirectory());
    GivenFile("ZUKTemp/folder/a", "x");

    EXPECT_NO_THROW(RemoveTemporaryDirectory());

    EXPECT_TRUE(Exists(Folder() + "ZUKTemp/folder/a"));
}

TEST_F(TemporaryDirectoryTest, ALinkInItsPlaceIsNotFollowed) {
    const std::string mine = GivenFile("precious/a", "x");
    fs::create_directory_symlink(Folder() + "precious", Folder() + "ZUKTemp");

    RemoveTemporaryDirectory();

    EXPECT_TRUE(Exists(mine));
}

} // namespace
