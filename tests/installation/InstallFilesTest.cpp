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

TEST_F(InstallFiles, EachSetHasItsFilesInTheirOrder) {
    EXPECT_EQ(ProgramSet(),
              (Strings{"Tramble.prc", "SF41RDK.prc", "ZUK2_PocketUtils.prc", "ZUK2_SerialPort.prc",
                       "ZUK2_SFRecordUtils.prc", "ZUK2_Symbol_Control.prc", "ZUK2_DP4SF.prc",
                       "TZUK20000#TRAMBLE.prc", "TZUK20000$TRAMBLE.pdb"}));
    EXPECT_EQ(DemoSet(),
              (Strings{"TZUK20000_ZUKAUDTH.pdb", "TZUK20000_ZUKAUDTL.pdb", "TZUK20000_ZUKBARIN.pdb",
                       "TZUK20000_ZUKCOMP.pdb",  "TZUK20000_ZUKCUST.pdb",  "TZUK20000_ZUKHELP.pdb",
                       "TZUK20000_ZUKITEM.pdb",  "TZUK20000_ZUKORHDR.pdb", "TZUK20000_ZUKORLIN.pdb",
                       "TZUK20000_ZUKPRINT.pdb", "TZUK20000_ZUKSETUP.pdb", "TZUK20000_ZUKTCUST.pdb",
                       "TZUK20000_ZUKTITEM.pdb", "TZUK20000_ZUKAUDHH.pdb", "TZUK20000_ZUKSTAX.pdb",
                       "TZUK20000_ZUKTORLI.pdb", "TZUK20000_ZUKTORHD.pdb", "TZUK20000_ZUKAUDBH.pdb",
                       "TZUK20000_ZUKAUDBL.pdb", "TZUK20000_ZUKPAY.pdb",   "TZUK20000_ZUKXPDAT.pdb",
                       "TZUK20000_ZUKLINK.pdb"}));
    EXPECT_EQ(RuntimeSet(),
              (Strings{"ZUK2_PAG-BPM.prc", "PageMgr.prc", "TZUK20000_ZUKTPMNT.pdb", "ZUK2_SFInkview.prc",
                       "BPMConfig.prc", "IrMgr.prc", "BPMGeneric.prc", "BPMEpson.prc", "BPMDeskJet.prc",
                       "BPMLaserJet.prc", "BSSFontDB.pdb", "ZUK2_PrtComm.prc", "TZUK20000_ZUKPRN.pdb",
                       "TZUK20000_ZUKVER.pdb", "TZUK20000_ZUKTEMP.pdb", "ZUK2_Screenlock.prc"}));
}

TEST_F(InstallFiles, TheTablesOfALiveInstallAreQueuedInTheirOrder) {
    Strings names;
    for (const std::string& path : LiveTables()) {
        EXPECT_EQ(path.substr(0, path.size() - FileNameOf(path).size()), Global.DBFPath);
        names.emplace_back(FileNameOf(path));
    }

    EXPECT_EQ(names, (Strings{"ZUKAUDBH.DBF", "ZUKAUDBL.DBF", "ZUKAudTH.dbf", "ZUKAUDTL.DBF", "ZUKAUDHH.DBF",
                              "ZUKBarin.dbf", "ZUKCOMP.DBF",  "ZUKCust.dbf",  "ZUKHELP.DBF",  "ZUKItem.dbf",
                              "ZUKLINK.DBF",  "ZUKORHDR.DBF", "ZUKORLIN.DBF", "ZUKPAY.DBF",   "ZUKPRINT.DBF",
                              "ZUKSETUP.DBF", "ZUKStax.dbf",  "ZUKTCUST.DBF", "ZUKTITEM.DBF", "ZUKTORHD.DBF",
                              "ZUKTORLI.DBF", "ZUKTPMNT.DBF", "ZUKXPDAT.DBF"}));
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
