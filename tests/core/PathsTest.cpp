#include "core/Paths.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

class PathsTest : public EngineTest {};

TEST_F(PathsTest, AddBackslashCutsTrailingBlanksAndAppendsOneSeparator) {
    EXPECT_EQ(AddBackslash("/a/b"), "/a/b/");
    EXPECT_EQ(AddBackslash("/a/b  "), "/a/b/");
    EXPECT_EQ(AddBackslash("/a b/c d"), "/a b/c d/");
}

TEST_F(PathsTest, AddBackslashLeavesAPathThatEndsInEitherSeparator) {
    EXPECT_EQ(AddBackslash("/a/b/"), "/a/b/");
    EXPECT_EQ(AddBackslash("C:\\a\\"), "C:\\a\\");
    EXPECT_EQ(AddBackslash("/a/b/ "), "/a/b/");
}

TEST_F(PathsTest, AFileExistsWhenItCanBeOpened) {
    const std::string file = GivenFile("dir/Table.dbf", "x");

    EXPECT_TRUE(FileExists(file));
    EXPECT_FALSE(FileExists(file + "x"));
    EXPECT_FALSE(FileExists(Folder() + "dir"));
    EXPECT_FALSE(FileExists(Folder() + "dir/"));
    EXPECT_FALSE(FileExists(Folder() + "other/Table.dbf"));
    EXPECT_FALSE(FileExists(""));
}

TEST_F(PathsTest, FileExistsCutsATrailingSeparatorOfEitherKind) {
    const std::string file = GivenFile("Table.dbf", "x");

    EXPECT_TRUE(FileExists(file + "/"));
    EXPECT_TRUE(FileExists(file + "\\"));
}

TEST_F(PathsTest, FileExistsHoldsNoFileOpen) {
    FileExists(GivenFile("Table.dbf", "x"));

    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(PathsTest, NamesAreFoundWhateverTheirCaseAlongTheWholePath) {
    const std::string file = GivenFile("DBFFiles/HHTotals/ZUKOrHdr.dbf", "x");

    EXPECT_EQ(ResolvePath(Folder() + "dbffiles/HHTOTALS/ZUKORHDR.DBF"), file);
    EXPECT_TRUE(FileExists(Folder() + "DBFFILES/hhtotals/zukorhdr.DBF"));
}

TEST_F(PathsTest, BothSeparatorsAreRead) {
    const std::string file = GivenFile("DBFFiles/HHTotals/ZUKOrHdr.dbf", "x");

    EXPECT_EQ(ResolvePath(Folder() + "dbffiles\\HHTotals\\ZUKORHDR.DBF"), file);
    EXPECT_TRUE(FileExists(Folder() + "DBFFiles\\HHTotals/ZUKOrHdr.dbf"));
}

TEST_F(PathsTest, TheExactNameComesBeforeOneThatDiffersInCase) {
    GivenFile("NAME.txt", "large");
    const std::string exact = GivenFile("name.txt", "small");

    EXPECT_EQ(ResolvePath(exact), exact);
}

TEST_F(PathsTest, OfTwoThatDifferOnlyInCaseTheFirstByBytesCounts) {
    GivenFile("nAME.txt", "");
    const std::string first = GivenFile("NAme.txt", "");
    GivenFile("naME.txt", "");

    EXPECT_EQ(ResolvePath(Folder() + "name.TXT"), first);
}

TEST_F(PathsTest, WhatIsNotThereKeepsItsSpellingBelowTheFoldersThatAre) {
    GivenFile("DBFFiles/x", "");

    EXPECT_EQ(ResolvePath(Folder() + "dbffiles/New/Thing.DBF"), Folder() + "DBFFiles/New/Thing.DBF");
    EXPECT_EQ(ResolvePath(""), "");
}

TEST_F(PathsTest, AccentedLettersDifferOnlyInCaseToo) {
    const std::string file = GivenFile("Caf\xC3\x89 \xC3\x9F.cst", "x"); // CafÉ ß

    EXPECT_EQ(ResolvePath(Folder() + "CAF\xC3\xA9 \xC3\x9F.CST"), file);
    EXPECT_FALSE(FileExists(Folder() + "CAFE \xC3\x9F.CST"));
}

TEST_F(PathsTest, EveryAccentedLetterOfTheCodePageFoldsAndTheDivisionSignDoesNot) {
    const std::string file = GivenFile("\xC5\xA0\xC5\xBD\xC5\x92\xC5\xB8\xC3\x9E.cst", "x"); // ŠŽŒŸÞ
    GivenFile("\xC3\x97.cst", "multiplied");

    EXPECT_EQ(ResolvePath(Folder() + "\xC5\xA1\xC5\xBE\xC5\x93\xC3\xBF\xC3\xBE.cst"), file);
    EXPECT_FALSE(FileExists(Folder() + "\xC3\xB7.cst")); // divided
}

TEST_F(PathsTest, MakePathMakesEveryMissingFolderAndIsContentWithThoseThere) {
    MakePath(Folder() + "a/b/c/");
    MakePath(Folder() + "a/b/d");
    MakePath(Folder() + "a/b/c");

    EXPECT_TRUE(fs::is_directory(Folder() + "a/b/c"));
    EXPECT_TRUE(fs::is_directory(Folder() + "a/b/d"));
}

TEST_F(PathsTest, MakePathReadsBothSeparatorsAndUsesFoldersThatDifferInCase) {
    MakePath(Folder() + "Backup");

    MakePath(Folder() + "BACKUP\\61115023607\\");

    EXPECT_TRUE(fs::is_directory(Folder() + "Backup/61115023607"));
    EXPECT_FALSE(Exists(Folder() + "BACKUP"));
}

TEST_F(PathsTest, MakePathMakesAFolderWhoseNameEndsInAColon) {
    MakePath(Folder() + "Office:/DBFFiles");

    EXPECT_TRUE(fs::is_directory(Folder() + "Office:/DBFFiles"));
}

TEST_F(PathsTest, MakePathIsFailure75WhereAFileStands) {
    GivenFile("a", "a file");

    EXPECT_EQ(FailureOf([&] { MakePath(Folder() + "a/b"); }).Number, 75);
    EXPECT_EQ(FailureOf([&] { MakePath(Folder() + "a"); }).Number, 75);
}

TEST_F(PathsTest, PartsOfAPath) {
    EXPECT_EQ(FileNameOf("/a/b\\c.cst"), "c.cst");
    EXPECT_EQ(FolderOf("/a/b\\c.cst"), "/a/b\\");
    EXPECT_EQ(FolderOf("c.cst"), "");
    EXPECT_EQ(FileNameOf("/a/"), "");
    EXPECT_EQ(ExtensionOf("/a.b/c"), "");
    EXPECT_EQ(ExtensionOf("/a.b/c.d.cst"), ".cst");
}

TEST_F(PathsTest, NamesOfTablesAndLinesAreCodePageText) {
    EXPECT_EQ(NameToPath("Caf\xE9 \x80"), "Caf\xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(PathToName("Caf\xC3\xA9 \xE2\x82\xAC"), "Caf\xE9 \x80");
    EXPECT_EQ(PathToName("\xE6\x97\xA5"), "?");
}

TEST_F(PathsTest, APlainFileNameLeadsNowhereElse) {
    for (const char* good : {"a", "Order list.cst", "..a", "a..", "Caf\xE9"})
        EXPECT_TRUE(IsPlainFileName(good)) << good;
    for (const std::string& bad :
         Strings{"", ".", "..", "a/b", "a\\b", "..\\a", "C:a", "a\nb", "a\x7F", std::string("a\0b", 3)}) {
        EXPECT_FALSE(IsPlainFileName(bad)) << bad;
    }
}

TEST_F(PathsTest, ANewFileHasANameThatEverySystemTakes) {
    for (const char* good :
         {"a", "Every evening", "..a", "Console", "COM", "COM10", "COM\xC2\xBC", "Caf\xC3\xA9; 2"})
        EXPECT_TRUE(IsNameForNewFile(good)) << good;
    for (const char* bad :
         {"",     "..",   "a/b",    "a\\b",    "C:a",      "a\tb",        "a*",           "why?",
          "a\"b", "<a>",  "a|b",    "a.",      "a ",       "con",         "NUL",          "aux.old",
          "Com1", "LPT9", "nul .x", "conout$", "CONIN$.x", "COM\xC2\xB9", "lpt\xC2\xB3.x"}) {
        EXPECT_FALSE(IsNameForNewFile(bad)) << bad;
    }
}

TEST_F(PathsTest, FilesOfAnExtensionComeInTheOrderOfTheirNamesWithoutRegardToCase) {
    for (const char* name : {"b.cst", "A.CST", "c.Cst", "d.csta", "cst", "e.cst.txt"}) {
        GivenFile(std::string("t/") + name, "");
    }
    fs::create_directory(Folder() + "t/folder.cst");

    EXPECT_EQ(FilesWithExtension(Folder() + "T", ".cst"), (Strings{"A.CST", "b.cst", "c.Cst"}));
    EXPECT_EQ(FilesWithExtension(Folder() + "t/", "").size(), 6u);
}

TEST_F(PathsTest, NamesOfAnExtensionComeWithoutItAsTheDiskWritesThem) {
    for (const char* name : {"b day.ipm", "A night.IPM", "c.xpm", "M\xC3\xBCller.ipm"}) {
        GivenFile(std::string("t/") + name, "");
    }

    EXPECT_EQ(NamesWithExtension(Folder() + "t/", ".ipm"), (Strings{"A night", "b day", "M\xC3\xBCller"}));
    EXPECT_EQ(NamesWithExtension(Folder() + "t/", ".ctm"), Strings{});
}

TEST_F(PathsTest, AFolderThatIsMissingOrWasNeverSetHoldsNoFiles) {
    EXPECT_EQ(FilesWithExtension(Folder() + "missing", ""), Strings{});
    EXPECT_EQ(FilesWithExtension("", ""), Strings{});
}

TEST_F(PathsTest, CopyOverMakesOrReplacesAFile) {
    const std::string big(700'000, 'x');
    const std::string from = GivenFile("from", big);
    const std::string there = GivenFile("there", "old");

    CopyOver(from, there);
    CopyOver(from, Folder() + "new", false);

    EXPECT_EQ(Bytes(there), big);
    EXPECT_EQ(Bytes(Folder() + "new"), big);
}

TEST_F(PathsTest, CopyOverKeepsTheSpellingThatStandsThere) {
    const std::string there = GivenFile("ZUKOrHdr.dbf", "old");

    CopyOver(GivenFile("from", "new"), Folder() + "ZUKORHDR.DBF");

    EXPECT_EQ(Bytes(there), "new");
    EXPECT_FALSE(Exists(Folder() + "ZUKORHDR.DBF"));
}

TEST_F(PathsTest, CopyOverOfAMissingFileIsFailure53AndTouchesNothing) {
    const std::string there = GivenFile("there", "old");

    EXPECT_EQ(FailureOf([&] { CopyOver(Folder() + "missing", there); }).Number, 53);

    EXPECT_EQ(Bytes(there), "old");
}

TEST_F(PathsTest, ACopyThatIsCutOffAnywhereLeavesTheOldFile) {
    const std::string from = GivenFile("from", std::string(600'000, 'x'));
    const std::string there = GivenFile("there", "old");
    int n = 1;
    for (bool failed = true; failed; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        try {
            CopyOver(from, there);
            failed = false;
        } catch (const RunTimeFailure& failure) {
            EXPECT_EQ(failure.Number(), 61);
            EXPECT_EQ(Bytes(there), "old") << n;
            EXPECT_FALSE(Exists(there + ".zuk~")) << n;
        }
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Global.Files.Count(), 0) << n;
    }
    EXPECT_GT(n, 4);
    EXPECT_EQ(Bytes(there).size(), 600'000u);
}

} // namespace
