#include "maintenance/Backup.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/OtherProgram.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

DateTime clockTime;
DateTime TestNow() {
    return clockTime;
}

const Strings OrderTables = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKAudHH.dbf"};

Strings NamesIn(const std::string& folder) {
    Strings names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class BackupTest : public EngineTest {
protected:
    BackupTest() {
        GivenAppDirectory();
        clockTime = {2026, 11, 15, 2, 36, 7};
        Global.Clock = TestNow;
        GivenTable(Global.DBFPath, "ZUKOrHdr", {{"A1"}, {"A2"}});
        GivenTable(Global.DBFPath, "ZUKOrLin",
                   {RowOf("ZUKOrLin", {{"L_TOTPRICE", "10.50"}}), RowOf("ZUKOrLin", {{"L_TOTPRICE", "0.25"}}),
                    RowOf("ZUKOrLin", {{"L_TOTPRICE", "2"}})});
        for (const char* table : {"ZUKAudTH", "ZUKAudTL", "ZUKAudHH", "ZUKCust", "ZUKItem"}) {
            GivenTable(Global.DBFPath, table, {{"1"}});
        }
        GivenTable(Global.DBFPath, "ZUKLINK", {{"Anna", "S1", "A01"}, {"Bea", "S2", "B02"}});
        Global.CurrentHotSyncID = "BEA";
        Global.HHLastOrder = "B0200000012";
    }
    static Strings FirstEight() {
        Strings lines = Lines(Directory() + "Backup.txt");
        lines.resize(std::min<std::size_t>(lines.size(), 8));
        return lines;
    }
    static std::string Directory() { return Global.BackupPath + "61115023607/"; }
};

// ---- making one ----

TEST_F(BackupTest, TheDirectorysNameIsTheEventsMomentInElevenDigits) {
    EXPECT_EQ(BackupName({2026, 11, 15, 2, 36, 7}), "61115023607");
    EXPECT_EQ(BackupName({2030, 1, 2, 3, 4, 5}), "00102030405");
    EXPECT_EQ(BackupName({2029, 12, 31, 23, 59, 59}), "91231235959");
}

TEST_F(BackupTest, ABackupHoldsTheOrderAndAuditTablesAndItsText) {
    ASSERT_TRUE(MakeBackup("CLEAR"));

    EXPECT_EQ(NamesIn(Global.BackupPath), Strings{"61115023607"});
    Strings expected = OrderTables;
    expected.push_back("Backup.txt");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(NamesIn(Directory()), expected);
    for (const std::string& table : OrderTables)
        EXPECT_EQ(Bytes(Directory() + table), Bytes(Global.DBFPath + table));
}

TEST_F(BackupTest, TheTextSaysWhatHappenedInEightLines) {
    ASSERT_TRUE(MakeBackup("UPLOAD-ADD"));

    EXPECT_TRUE(Bytes(Directory() + "Backup.txt")
                    .starts_with("UPLOAD-ADD\r\n2026-11-15 02:36:07\r\n2\r\n3\r\n12.75\r\nBEA\r\nB02\r\n"
                                 "B0200000012\r\n"));
}

TEST_F(BackupTest, BehindTheEighthLineStandsWhatEachCopyHolds) {
    Global.BackupItems = true;
    ASSERT_TRUE(MakeBackup("UPLOAD-ADD"));

    const Strings lines = Lines(Directory() + "Backup.txt");
    ASSERT_EQ(lines.size(), 8 + OrderTables.size() + 1);
    for (std::size_t k = 8; k < lines.size(); ++k) {
        const auto saved = SavedTable::FromLine(lines[k]);
        ASSERT_TRUE(saved) << lines[k];
        EXPECT_EQ(saved->Name, k < 13 ? OrderTables[k - 8] : "ZUKItem.dbf");
        EXPECT_EQ(saved->Content, SumOfFile(Global.DBFPath + saved->Name));
        EXPECT_EQ(saved->Records, TableAt(Global.DBFPath + saved->Name).Count);
        EXPECT_EQ(saved->Line(), lines[k]);
    }
}

TEST_F(BackupTest, ALineThatWasNotWrittenSoTellsNothing) {
    const std::string good = "ZUKOrHdr.dbf\t801\t2\t995dc9bbdf1939fa";
    ASSERT_TRUE(SavedTable::FromLine(good));
    for (const char* line :
         {"", "ZUKOrHdr.dbf", "ZUKOrHdr.dbf\t801\t2", "ZUKOrHdr.dbf\t801\t2\t995dc9bbdf1939f",
          "ZUKOrHdr.dbf\t801\t2\t995dc9bbdf1939fa ", "ZUKOrHdr.dbf\t801\t2\t995dc9bbdf1939fa\t",
          "ZUKOrHdr.dbf\t-1\t2\t995dc9bbdf1939fa", "ZUKOrHdr.dbf\t801\tmany\t995dc9bbdf1939fa",
          "ZUKOrHdr.dbf\t801\t99999999999\t995dc9bbdf1939fa", "../ZUKOrHdr.dbf\t801\t2\t995dc9bbdf1939fa",
          "\t801\t2\t995dc9bbdf1939fa", "ZUKOrHdr.dbf\t99999999999999999999\t2\t995dc9bbdf1939fa"}) {
        EXPECT_FALSE(SavedTable::FromLine(line)) << line;
    }
}

/// A disk that changes the bytes of one file on their way to it.
class LyingDisk final : public PassingDisk {
public:
    explicit LyingDisk(std::string name) : name_(std::move(name)) {}

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        auto file = PassingDisk::Open(path, access);
        if (access != Access::Create || path.find(name_) == std::string::npos) return file;
        return std::make_unique<File>(std::move(file));
    }

private:
    class File final : public PassingFile {
    public:
        using PassingFile::PassingFile;
        void WriteAt(std::uint64_t offset, std::string_view bytes) override {
            std::string changed(bytes);
            changed.back() ^= 1;
            PassingFile::WriteAt(offset, changed);
        }
    };

    std::string name_;
};

TEST_F(BackupTest, ACopyThatIsAnotherThanItsTableIsNo) {
    for (const std::string& table : OrderTables) {
        LyingDisk disk(table);
        Global.TheDisk = &disk;
        EXPECT_FALSE(MakeBackup("CLEAR")) << table;
        EXPECT_NE(Global.BackupFault.find(Directory() + table), std::string::npos) << Global.BackupFault;
        Global.TheDisk = &NativeDisk();
        EXPECT_FALSE(Exists(Directory() + "Backup.txt")) << table;
    }
}

TEST_F(BackupTest, ATableThatCannotBeReadIsNo) {
    GivenFile("app/DBFFiles/ZUKAudTL.dbf", "no table");

    EXPECT_FALSE(MakeBackup("CLEAR"));

    EXPECT_FALSE(Exists(Directory() + "Backup.txt"));
}

TEST_F(BackupTest, ABackupThatFailsInTheSecondOfAnotherLeavesNoTextThatSpeaksOfOtherTables) {
    ASSERT_TRUE(MakeBackup("CLEAR"));
    GivenFile("app/DBFFiles/ZUKAudTL.dbf", "no table");

    EXPECT_FALSE(MakeBackup("RESTORE"));

    EXPECT_FALSE(Exists(Directory() + "Backup.txt"));
}

TEST_F(BackupTest, ABreakInAnIdDoesNotMakeALine) {
    Global.CurrentHotSyncID = "Be\r\na";
    Global.HHLastOrder = "B02\n7";

    ASSERT_TRUE(MakeBackup("UPLOAD-ADD"));

    const Strings lines = Lines(Directory() + "Backup.txt");
    ASSERT_EQ(lines.size(), 8 + OrderTables.size());
    EXPECT_EQ(lines[5], "Be  a");
    EXPECT_EQ(lines[7], "B02 7");
}

TEST_F(BackupTest, AnExportDoesNotSearchForTheMachine) {
    fs::remove(Global.DBFPath + "ZUKLINK.dbf");

    ASSERT_TRUE(MakeBackup("EXPORT"));

    EXPECT_EQ(FirstEight(),
              (Strings{"EXPORT", "2026-11-15 02:36:07", "2", "3", "12.75", "BEA", "", "B0200000012"}));
}

TEST_F(BackupTest, WithoutLinesCountAndTotalAreZeroAndWithoutAHandheldItsLinesAreEmpty) {
    GivenTable(Global.DBFPath, "ZUKOrLin");
    Global.CurrentHotSyncID.clear();
    Global.HHLastOrder.clear();

    ASSERT_TRUE(MakeBackup("QUALCHECK"));

    EXPECT_EQ(FirstEight(), (Strings{"QUALCHECK", "2026-11-15 02:36:07", "2", "0", "0", "", "", ""}));
}

TEST_F(BackupTest, TheMomentIsKeptAndTheSharedTotalsAreCleared) {
    Global.CurHeaders = 7;

    ASSERT_TRUE(MakeBackup("CLEAR"));

    EXPECT_EQ(Global.BackupTime, clockTime);
    EXPECT_EQ(Global.CurHeaders, 0);
    EXPECT_EQ(Global.CurLines, 0);
    EXPECT_EQ(Global.CurDollars, 0);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(BackupTest, TwoInTheSameSecondWriteIntoOneDirectoryAndTheSecondReplacesTheFirst) {
    ASSERT_TRUE(MakeBackup("CLEAR"));
    GivenTable(Global.DBFPath, "ZUKOrHdr", {{"B1"}});

    ASSERT_TRUE(MakeBackup("RESTORE"));

    EXPECT_EQ(NamesIn(Global.BackupPath), Strings{"61115023607"});
    EXPECT_EQ(Lines(Directory() + "Backup.txt")[0], "RESTORE");
    EXPECT_EQ(Lines(Directory() + "Backup.txt")[2], "1");
    EXPECT_EQ(TableAt(Directory() + "ZUKOrHdr.dbf").Count, 1);
}

TEST_F(BackupTest, WhetherOneOfThisSecondStandsGoesByTheTextThatMakesItCount) {
    EXPECT_FALSE(HasBackupOfThisSecond());
    ASSERT_TRUE(MakeBackup("CLEAR"));
    EXPECT_TRUE(HasBackupOfThisSecond());
    fs::remove(Directory() + "Backup.txt");
    EXPECT_FALSE(HasBackupOfThisSecond());

    ASSERT_TRUE(MakeBackup("CLEAR"));
    ++clockTime.Second;
    EXPECT_FALSE(HasBackupOfThisSecond());
}

TEST_F(BackupTest, TablesAreFoundWhateverTheirLetters) {
    fs::rename(Global.DBFPath + "ZUKOrHdr.dbf", Global.DBFPath + "ZUKORHDR.DBF");

    ASSERT_TRUE(MakeBackup("CLEAR"));

    EXPECT_EQ(TableAt(Directory() + "ZUKOrHdr.dbf").Count, 2);
}

TEST_F(BackupTest, CustomersAndItemsComeAlongWhenTheyAreAskedFor) {
    Global.BackupCustomers = true;
    ASSERT_TRUE(MakeBackup("UPLOAD-ADD"));
    EXPECT_TRUE(Exists(Directory() + "ZUKCust.dbf"));
    EXPECT_FALSE(Exists(Directory() + "ZUKItem.dbf"));

    Global.BackupCustomers = false;
    Global.BackupItems = true;
    ++clockTime.Second;
    ASSERT_TRUE(MakeBackup("UPLOAD-ADD"));
    EXPECT_FALSE(Exists(Global.BackupPath + "61115023608/ZUKCust.dbf"));
    EXPECT_TRUE(Exists(Global.BackupPath + "61115023608/ZUKItem.dbf"));
}

// ---- when it cannot be made ----

TEST_F(BackupTest, AMissingTableIsNoBeforeAnythingIsMade) {
    for (const std::string& table : OrderTables) {
        fs::rename(Global.DBFPath + table, Global.DBFPath + "away");
        EXPECT_FALSE(MakeBackup("CLEAR")) << table;
        EXPECT_EQ(Global.BackupFault, RunTimeFailure(53, Global.DBFPath + table).what());
        fs::rename(Global.DBFPath + "away", Global.DBFPath + table);
    }
    EXPECT_TRUE(fs::is_empty(Global.BackupPath));
    EXPECT_TRUE(Global.BackupTime.IsZero());
}

#ifndef _WIN32
TEST_F(BackupTest, ATableThatAnotherProgramLocksIsNoBeforeAnythingIsMade) {
    for (const bool wholeFile : {false, true}) {
        for (const std::string& table : OrderTables) {
            const OtherProgram other(Global.DBFPath + table, wholeFile);
            ASSERT_TRUE(other.Holds);
            EXPECT_FALSE(MakeBackup("CLEAR")) << table << wholeFile;
            EXPECT_EQ(Global.BackupFault, Global.DBFPath + table);
        }
    }
    EXPECT_TRUE(fs::is_empty(Global.BackupPath));

    EXPECT_TRUE(MakeBackup("CLEAR"));
    EXPECT_EQ(Global.BackupFault, "");
}
#endif

TEST_F(BackupTest, ALockFileOfAnOfficeProgramIsALockToo) {
    GivenFile("app/DBFFiles/.~lock.ZUKAudTL.dbf#", "somebody");

    EXPECT_FALSE(MakeBackup("CLEAR"));

    EXPECT_TRUE(fs::is_empty(Global.BackupPath));
    fs::remove(Global.DBFPath + ".~lock.ZUKAudTL.dbf#");
    EXPECT_TRUE(MakeBackup("CLEAR"));
}

TEST_F(BackupTest, AFaultAnywhereIsNoAndLeavesNoHalfFile) {
    Global.AppPath.clear(); // no trace: only the backup meets the fault
    FaultyDisk counting;
    Global.TheDisk = &counting;
    ASSERT_TRUE(MakeBackup("CLEAR"));
    const int calls = counting.Calls();
    ASSERT_GE(calls, 1 + 6 * 4); // the directory; of each file its opening, writing, flush and renaming

    for (int n = 1; n <= calls; ++n) {
        fs::remove_all(Directory());
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        EXPECT_FALSE(MakeBackup("CLEAR")) << n;
        EXPECT_NE(Global.BackupFault, "") << n;
        Global.TheDisk = &NativeDisk();
        EXPECT_TRUE(Global.BackupTime.IsZero()) << n;
        EXPECT_EQ(Global.Files.Count(), 0) << n;
        EXPECT_FALSE(Exists(Directory() + "Backup.txt")) << n;
        if (!Exists(Directory())) continue;
        for (const std::string& name : NamesIn(Directory())) {
            EXPECT_EQ(Bytes(Directory() + name), Bytes(Global.DBFPath + name)) << n;
        }
    }
}

TEST_F(BackupTest, AMissingLinksTableIsNoForAnythingButAnExport) {
    fs::remove(Global.DBFPath + "ZUKLINK.dbf");

    EXPECT_FALSE(MakeBackup("CLEAR"));

    EXPECT_FALSE(Exists(Directory() + "Backup.txt"));
}

// ---- the purge ----

class PurgeTest : public EngineTest {
protected:
    PurgeTest() {
        GivenAppDirectory();
        clockTime = {2026, 11, 15, 12, 0, 0};
        Global.Clock = TestNow;
    }
    void GivenBackup(const std::string& name, bool withText = true) {
        for (const std::string& table : OrderTables) GivenFile("app/Backup/" + name + "/" + table, "x");
        if (withText) GivenFile("app/Backup/" + name + "/Backup.txt", "CLEAR\r\n");
    }
    static void Purge() {
        DeleteBackupTables([](std::string_view file) { ADD_FAILURE() << "cannot delete " << file; });
    }
    static bool Whole(const std::string& name) { return Exists(Global.BackupPath + name + "/ZUKOrHdr.dbf"); }
};

TEST_F(PurgeTest, BackupsOlderThanTheDaysGoAndYoungerOnesStay) {
    Global.PurgeDays = 7;
    GivenBackup("61108115959");
    GivenBackup("61108120000");
    GivenBackup("61108120001");
    GivenBackup("61115115959");

    Purge();

    EXPECT_FALSE(Whole("61108115959"));
    EXPECT_FALSE(Whole("61108120000"));
    EXPECT_TRUE(Whole("61108120001"));
    EXPECT_TRUE(Whole("61115115959"));
}

TEST_F(PurgeTest, APurgedDirectoryStaysWithItsTextAlone) {
    GivenBackup("61001000000");

    Purge();

    EXPECT_EQ(NamesIn(Global.BackupPath + "61001000000"), Strings{"Backup.txt"});
}

TEST_F(PurgeTest, ADirectoryWithoutATextGoesWithItsTables) {
    GivenBackup("61001000000", false);
    fs::create_directories(Global.BackupPath + "61001000001");

    Purge();

    EXPECT_TRUE(fs::is_empty(Global.BackupPath));
}

TEST_F(PurgeTest, ADirectoryWhoseNameIsNoNumberStays) {
    const Strings names = {"Mine",   "61001000000x", "x61001000000",
                           "6 1001", "-61001000000", "99999999999999999999999"};
    for (const std::string& name : names) GivenBackup(name, false);

    Purge();

    for (const std::string& name : names) EXPECT_TRUE(Whole(name)) << name;
}

TEST_F(PurgeTest, ABackupFromBeforeADecadeChangeComparesAsNewer) {
    clockTime = {2030, 1, 20, 12, 0, 0};
    GivenBackup("91231235959");
    GivenBackup("00101000000");
    GivenBackup("00119000000");

    Purge();

    EXPECT_TRUE(Whole("91231235959"));
    EXPECT_FALSE(Whole("00101000000"));
    EXPECT_TRUE(Whole("00119000000"));
}

TEST_F(PurgeTest, AChosenDayIsALimitAndTheDeletedTablesAreCounted) {
    GivenBackup("61001000000");
    GivenBackup("61002000000");
    GivenFile("app/Backup/61001000000/ZUKCUST.DBF", "x");

    const int deleted = PurgeBackups({2026, 10, 1, 0, 0, 0}, [](std::string_view) {});

    EXPECT_EQ(deleted, 6);
    EXPECT_TRUE(Whole("61002000000"));
    EXPECT_EQ(PurgeBackups({2026, 10, 1, 0, 0, 0}, [](std::string_view) {}), 0);
}

TEST_F(PurgeTest, WhatIsNoTableIsNotDeleted) {
    GivenBackup("61001000000");
    GivenFile("app/Backup/61001000000/notes.doc", "mine");
    GivenFile("app/Backup/stray.dbf", "mine");

    Purge();

    EXPECT_EQ(NamesIn(Global.BackupPath + "61001000000"), (Strings{"Backup.txt", "notes.doc"}));
    EXPECT_TRUE(Exists(Global.BackupPath + "stray.dbf"));
}

TEST_F(PurgeTest, AFileThatCannotBeDeletedIsToldAndTheWalkGoesOn) {
    KeepingDisk disk("ZUKAudTH.dbf");
    GivenBackup("61001000000", false);
    GivenBackup("61002000000", false);
    Global.TheDisk = &disk;
    Strings told;

    const int deleted =
        PurgeBackups({2026, 11, 1, 0, 0, 0}, [&](std::string_view file) { told.emplace_back(file); });

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(deleted, 8);
    EXPECT_EQ(told, (Strings{Global.BackupPath + "61001000000/ZUKAudTH.dbf",
                             Global.BackupPath + "61002000000/ZUKAudTH.dbf"}));
    EXPECT_EQ(NamesIn(Global.BackupPath + "61002000000"), Strings{"ZUKAudTH.dbf"});
}

TEST_F(PurgeTest, WithoutABackupDirectoryThereIsNothingToPurge) {
    fs::remove(Global.BackupPath);

    EXPECT_NO_THROW(Purge());
}

TEST_F(PurgeTest, ABackupThatWasJustMadeOutlivesThePurge) {
    for (const char* table : {"ZUKOrHdr", "ZUKOrLin", "ZUKAudTH", "ZUKAudTL", "ZUKAudHH", "ZUKLINK"}) {
        GivenTable(Global.DBFPath, table);
    }
    ASSERT_TRUE(MakeBackup("CLEAR"));

    Purge();

    EXPECT_TRUE(Whole("61115120000"));
}

} // namespace
