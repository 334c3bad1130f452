#include "installation/InstallFiles.h"

#include "installation/InstallTest.h"
#include "store/TableCatalogue.h"
#include "support/Fails.h"

namespace {

class InstallFiles : public InstallTest {};

TEST_F(InstallFiles, ADemoIsTheProgramThenThePreparedDataThenRuntimeAndPrinting) {
    const Strings files = FilesOf(InstallKind::Demo);

    EXPECT_EQ(files.size(), 9U + 22U + 16U);
    EXPECT_EQ(Strings(files.begin(), files.begin() + 9), ProgramSet());
    EXPECT_EQ(files[9], "TZUK20000_ZUKAUDTH.pdb");
    EXPECT_EQ(files[30], "TZUK20000_ZUKLINK.pdb");
    EXPECT_EQ(Strings(files.begin() + 31, files.end()), RuntimeSet());
    EXPECT_EQ(files.front(), "Tramble.prc");
    EXPECT_EQ(files.back(), "ZUK2_Screenlock.prc");
}

TEST_F(InstallFiles, LiveAndProgramOnlyCarryNoPreparedData) {
    Strings both = ProgramSet();
    for (const std::string& file : RuntimeSet()) both.push_back(file);

    EXPECT_EQ(FilesOf(InstallKind::Live), both);
    EXPECT_EQ(FilesOf(InstallKind::Program), both);
}

TEST_F(InstallFiles, EachTableOfALiveInstallIsOneOfTheCataloguesWhateverItsCase) {
    const Strings tables = LiveTables();

    EXPECT_EQ(tables.size(), 23U);
    std::set<const TableEntry*> found;
    for (const std::string& path : tables) {
        const std::string_view name = FileNameOf(path);
        const TableEntry* entry = FindTable(name.substr(0, name.size() - 4));
        EXPECT_NE(entry, nullptr) << name;
        found.insert(entry);
        EXPECT_TRUE(FileExists(path)) << name;
    }
    EXPECT_EQ(found.size(), tables.size()) << "none is sent twice";
    EXPECT_EQ(FileNameOf(tables.front()), "ZUKAUDBH.DBF");
    EXPECT_EQ(FileNameOf(tables.back()), "ZUKXPDAT.DBF");
}

TEST_F(InstallFiles, EachTableOfTheDemoIsOneOfTheCatalogues) {
    for (const std::string& file : DemoSet()) {
        EXPECT_NE(FindTable(file.substr(10, file.size() - 14)), nullptr) << file;
    }
}

TEST_F(InstallFiles, ALiveTableThatIsMissingOrNoTableIsNamed) {
    OpenLiveTables();
    RemoveQuietly(ResolvePath(Global.DBFPath + "ZUKXPDAT.DBF"));
    EXPECT_NE(FailureOf([] { OpenLiveTables(); }).Words.find("ZUKXPDAT.DBF"), std::string::npos);

    GivenFile("app/DBFFiles/ZUKXPDAT.DBF", "no table");
    EXPECT_NE(FailureNumber([] { OpenLiveTables(); }), 0);
}

} // namespace
