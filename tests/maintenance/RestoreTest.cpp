#include "maintenance/Restore.h"

#include "maintenance/Totals.h"
#include "maintenance/VersionUpdate.h"
#include "support/CountingDisk.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Rubbish.h"
#include "support/Tables.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;
using End = RestoreResult::End;

DateTime clockTime;
DateTime TestNow() {
    return clockTime;
}

const Strings OrderTables = {"ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKOrHdr.dbf", "ZUKOrLin.dbf"};

class RestoreTest : public EngineTest {
protected:
    RestoreTest() {
        GivenAppDirectory();
        Global.Clock = TestNow;
        clockTime = {2026, 11, 15, 2, 36, 7};
        GivenOrders({"A1", "A2"});
        for (const char* table : {"ZUKAudTH", "ZUKAudTL", "ZUKAudHH"})
            GivenTable(Global.DBFPath, table, {{"1"}});
        GivenTable(Global.DBFPath, "ZUKLINK", {{"Anna", "S1", "A01"}});
        GivenTable(Global.DBFPath, "ZUKTOTALPC");
    }

    static void GivenOrders(const Strings& codes) {
        std::vector<Strings> headers, lines;
        for (const std::string& code : codes) {
            headers.push_back(RowOf("ZUKOrHdr", {{"H_ORDCODE", code}}));
            lines.push_back(RowOf("ZUKOrLin", {{"L_ORDCODE", code}, {"L_TOTPRICE", "10.5"}}));
        }
        GivenTable(Global.DBFPath, "ZUKOrHdr", headers);
        GivenTable(Global.DBFPath, "ZUKOrLin", lines);
    }

    /// A backup at a second of the same minute, and the folder that it lies in.
    static std::string GivenBackup(int second, const char* event = "CLEAR") {
        clockTime.Second = second;
        EXPECT_TRUE(MakeBackup(event));
        clockTime.Second = 59;
        return Global.BackupPath + BackupName({2026, 11, 15, 2, 36, second}) + "/";
    }

    static std::vector<BackupPoint> List() {
        NoProgress silent;
        return ReadBackups(silent);
    }

    static void Copy(const std::string& from, const std::string& to) {
        NoProgress silent;
        CopySingleTable(from, to, silent);
    }
    static RestoreResult Restore(const std::string& folder) { return RestoreTables(folder, Copy); }

    static Strings Codes() {
        Strings codes;
        const TableContent table = TableAt(Global.DBFPath + "ZUKOrHdr.dbf");
        for (int k = 1; k <= table.Count; ++k) codes.push_back(table.Trimmed(k)[0]);
        return codes;
    }
};

} // namespace

// ---- the list ----

TEST_F(RestoreTest, TheListHoldsTheEightLinesOfEachBackupTheNewestFirst) {
    GivenBackup(7, "EXPORT");
    GivenOrders({"B1"});
    GivenBackup(8, "CLEAR");

    const auto points = List();

    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].Folder, "61115023608");
    EXPECT_EQ(points[0].Values,
              (std::array<std::string, 8>{"CLEAR", "2026-11-15 02:36:08", "1", "1", "10.5", "", "", ""}));
    EXPECT_EQ(points[1].Values,
              (std::array<std::string, 8>{"EXPORT", "2026-11-15 02:36:07", "2", "2", "21", "", "", ""}));
    for (const BackupPoint& point : points) EXPECT_EQ(point.Files, BackupFiles::Complete);
}

TEST_F(RestoreTest, TheOrderIsThatOfTheYearsThatTheNamesDoNotTell) {
    GivenFile("app/Backup/00101000000/Backup.txt", "NEW\r\n2030-01-01 00:00:00\r\n");
    GivenFile("app/Backup/91231235959/Backup.txt", "OLD\r\n2029-12-31 23:59:59\r\n");
    GivenFile("app/Backup/zzz/Backup.txt", "NO MOMENT\r\nyesterday\r\n");

    const auto points = List();

    ASSERT_EQ(points.size(), 3u);
    EXPECT_EQ(points[0].Values[0], "NEW");
    EXPECT_EQ(points[1].Values[0], "OLD");
    EXPECT_EQ(points[2].Values[0], "NO MOMENT");
}

TEST_F(RestoreTest, ADirectoryWithoutATextIsLeftOutAndAShortTextIsShownAsFarAsItGoes) {
    fs::create_directories(Global.BackupPath + "61115000000");
    GivenFile("app/Backup/61115000001/Backup.txt", "");
    GivenFile("app/Backup/61115000002/Backup.txt", "CLEAR\r\n2026-11-15 00:00:02\r\n7");
    GivenFile("app/Backup/loose.txt", "no directory");

    const auto points = List();

    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].Values,
              (std::array<std::string, 8>{"CLEAR", "2026-11-15 00:00:02", "7", "", "", "", "", ""}));
    EXPECT_EQ(points[1].Values[0], "");
}

TEST_F(RestoreTest, ABackupOfAnOlderProgramIsNotChecked) {
    const std::string folder = GivenBackup(7);
    std::string text;
    Strings lines = Lines(folder + "Backup.txt");
    for (std::size_t k = 0; k < 8; ++k) text += lines[k] + "\r\n";
    GivenFile("app/Backup/61115023607/Backup.txt", text);

    auto points = List();
    EXPECT_EQ(points.at(0).Files, BackupFiles::NotChecked);
    CompareSums(points[0]);
    EXPECT_EQ(points[0].Files, BackupFiles::NotChecked);
}

TEST_F(RestoreTest, AFileOfAnotherSizeOrGoneIsMarkedAtOnceAndOneOfOtherBytesWhenTheyAreCompared) {
    const std::string folder = GivenBackup(7);
    GivenFile("app/Backup/61115023607/ZUKAudTH.dbf", "shorter");
    fs::remove(folder + "ZUKAudTL.dbf");
    std::string bytes = Bytes(folder + "ZUKOrLin.dbf");
    bytes[bytes.size() - 30] ^= 1;
    GivenFile("app/Backup/61115023607/ZUKOrLin.dbf", bytes);

    auto points = List();
    EXPECT_EQ(points.at(0).Files, BackupFiles::Changed);
    EXPECT_EQ(points[0].Changed, Strings{"ZUKAudTH.dbf"});
    EXPECT_EQ(points[0].Missing, Strings{"ZUKAudTL.dbf"});
    EXPECT_FALSE(points[0].SumsCompared);

    CompareSums(points[0]);
    EXPECT_EQ(points[0].Changed, (Strings{"ZUKOrLin.dbf", "ZUKAudTH.dbf"}));
    EXPECT_TRUE(points[0].SumsCompared);
}

TEST_F(RestoreTest, ATableThatTheTextDoesNotNameIsMarkedSinceItWouldBeRestoredToo) {
    const std::string folder = GivenBackup(7);
    fs::copy_file(Global.DBFPath + "ZUKLINK.dbf", folder + "ZUKLINK.dbf");

    const auto points = List();

    EXPECT_EQ(points.at(0).Files, BackupFiles::Changed);
    EXPECT_EQ(points[0].Changed, Strings{"ZUKLINK.dbf"});
}

TEST_F(RestoreTest, APurgedBackupStaysInTheListAndItsTablesAreDeleted) {
    GivenBackup(7);
    PurgeBackups({2026, 11, 15, 23, 0, 0}, [](std::string_view) {});

    const auto points = List();

    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points[0].Files, BackupFiles::Deleted);
    EXPECT_EQ(FindBackup(points[0].Values[1]), "");
}

TEST_F(RestoreTest, TheListReadsNoTable) {
    GivenOrders(Strings(2000, "A1"));
    GivenBackup(7);
    GivenBackup(8);
    CountingDisk disk;
    Global.TheDisk = &disk;

    List();

    EXPECT_LT(disk.BytesRead, 2000u);
}

TEST_F(RestoreTest, RubbishForATextIsListedOrMarkedAndNeverFails) {
    const std::string folder = GivenBackup(7);
    for (const std::string& bytes : Rubbish(Bytes(folder + "Backup.txt"))) {
        GivenFile("app/Backup/61115023607/Backup.txt", bytes);
        OnlyRunTimeFailures([&] {
            auto points = List();
            ASSERT_EQ(points.size(), 1u);
            for (const std::string& value : points[0].Values) ASSERT_LE(value.size(), 200u);
            CompareSums(points[0]);
            FindBackup(points[0].Values[1]);
        });
    }
}

TEST_F(RestoreTest, ANameThatLeadsOutOfTheDirectoryIsNotFollowed) {
    GivenBackup(7);
    const std::string path = Global.BackupPath + "61115023607/Backup.txt";
    GivenFile("app/Backup/61115023607/Backup.txt",
              Bytes(path) + "../../DBFFiles/ZUKLINK.dbf\t1\t1\t0000000000000000\r\n");

    const auto points = List();

    EXPECT_EQ(points.at(0).Changed, Strings{"Backup.txt"});
}

TEST_F(RestoreTest, TheDirectoryIsFoundByTheMomentOfItsEvent) {
    const std::string folder = GivenBackup(7);

    EXPECT_EQ(FindBackup("2026-11-15 02:36:07"), folder);
    EXPECT_EQ(FindBackup("2026-11-15 02:36:08"), "");
    EXPECT_EQ(FindBackup("no date"), "");
    EXPECT_EQ(FindBackup("../../.."), "");
    EXPECT_EQ(FindBackup(""), "");
}

// ---- the restore ----

TEST_F(RestoreTest, TheTablesAreThoseOfTheBackupByteByByteAndTheStateBeforeIsInAFurtherBackup) {
    std::map<std::string, std::string> before;
    for (const std::string& table : OrderTables) before[table] = Bytes(Global.DBFPath + table);
    const std::string folder = GivenBackup(7);
    GivenOrders({"B1", "B2", "B3"});

    const RestoreResult result = Restore(folder);

    EXPECT_EQ(result.How, End::Restored);
    EXPECT_EQ(result.Done, OrderTables);
    for (const auto& [table, bytes] : before) EXPECT_EQ(Bytes(Global.DBFPath + table), bytes) << table;
    const auto points = List();
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].Values[0], "RESTORE");
    EXPECT_EQ(points[0].Values[2], "3");
}

TEST_F(RestoreTest, TheTotalsEventBearsTheMomentOfTheBackupThatTheRestoreMade) {
    const std::string folder = GivenBackup(7);
    GivenOrders({});
    Restore(folder);
    clockTime = {2026, 11, 15, 3, 0, 0};

    NoProgress silent;
    CalcPCTotals("RESTORE", silent);

    const auto row = TableAt(Global.DBFPath + "ZUKTOTALPC.dbf").Trimmed(1);
    EXPECT_EQ(row[7], "RESTORE");
    EXPECT_EQ(row[8], "2026-11-15 02:36:59");
    EXPECT_EQ(row[0], "2");
    EXPECT_EQ(Global.CurDollars, 21);
}

TEST_F(RestoreTest, AnOlderReleasesTableComesBackInTodaysFields) {
    const std::string folder = GivenBackup(7);
    TableMaker old({{"H_ORDCODE", 'C', 4}, {"H_OLDFIELD", 'C', 5}});
    old.Row({"OLD1", "gone"}).Row({"OLD2", "gone"});
    GivenFile("app/Backup/61115023607/ZUKOrHdr.dbf", old.Bytes());
    const auto names = TableAt(Global.DBFPath + "ZUKOrHdr.dbf").Names;

    EXPECT_EQ(Restore(folder).How, End::Restored);

    EXPECT_EQ(Codes(), (Strings{"OLD1", "OLD2"}));
    EXPECT_EQ(TableAt(Global.DBFPath + "ZUKOrHdr.dbf").Names, names);
    EXPECT_FALSE(Exists(Global.DBFPath + "DBFCOPY.TXT"));
}

TEST_F(RestoreTest, CustomersComeBackTooAndATableThatIsMissingByNowIsPlaced) {
    GivenTable(Global.DBFPath, "ZUKCust", {{"C1"}});
    Global.BackupCustomers = true;
    const std::string folder = GivenBackup(7);
    Global.BackupCustomers = false;
    fs::remove(Global.DBFPath + "ZUKCust.dbf");

    EXPECT_EQ(Restore(folder).How, End::Restored);

    EXPECT_EQ(TableAt(Global.DBFPath + "ZUKCust.dbf").Count, 1);
}

TEST_F(RestoreTest, EveryTableThatIsReplacedIsInTheFurtherBackupAlsoOneThatBackupsHoldOnlyAtTimes) {
    GivenTable(Global.DBFPath, "ZUKCust", {{"C1"}});
    Global.BackupCustomers = true;
    const std::string folder = GivenBackup(7);
    Global.BackupCustomers = false;
    GivenTable(Global.DBFPath, "ZUKCust", {{"C2"}, {"C3"}});
    const std::string present = Bytes(Global.DBFPath + "ZUKCust.dbf");

    EXPECT_EQ(Restore(folder).How, End::Restored);

    EXPECT_EQ(TableAt(Global.DBFPath + "ZUKCust.dbf").Count, 1);
    const auto points = List();
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].Values[0], "RESTORE");
    EXPECT_EQ(points[0].Tables.size(), 6u);
    EXPECT_EQ(Bytes(Global.BackupPath + points[0].Folder + "/ZUKCust.dbf"), present);
}

TEST_F(RestoreTest, ATableWithoutOneFieldOfTodaysIsRefusedBeforeAnythingIsTouched) {
    const std::string folder = GivenBackup(7);
    GivenOrders({"B1"});
    GivenFile("app/Backup/61115023607/ZUKOrHdr.dbf",
              TableMaker({{"OTHER", 'C', 4}}).Row({"x"}).Row({"y"}).Bytes());

    const RestoreResult result = Restore(folder);

    EXPECT_EQ(result.How, End::Unusable);
    EXPECT_NE(result.Why.find("ZUKOrHdr.dbf"), std::string::npos) << result.Why;
    EXPECT_EQ(Codes(), Strings{"B1"});
    EXPECT_EQ(List().size(), 1u);
}

TEST_F(RestoreTest, ADirectoryWithoutTablesIsNotFoundAndLeavesNoFurtherBackup) {
    GivenBackup(7);
    PurgeBackups({2026, 11, 15, 23, 0, 0}, [](std::string_view) {});

    EXPECT_EQ(Restore(FindBackup("2026-11-15 02:36:07")).How, End::NotFound);
    EXPECT_EQ(Restore(Global.BackupPath + "61115023607/").How, End::NotFound);

    EXPECT_EQ(List().size(), 1u);
}

TEST_F(RestoreTest, ABackupOfThisVerySecondIsNotReplacedByTheCopyThatWouldBeMade) {
    const std::string folder = GivenBackup(7);
    clockTime.Second = 7;
    GivenOrders({"B1"});

    EXPECT_EQ(Restore(folder).How, End::ThisMoment);

    EXPECT_EQ(Codes(), Strings{"B1"});
    EXPECT_EQ(TableAt(folder + "ZUKOrHdr.dbf").Count, 2);
}

TEST_F(RestoreTest, ASecondThatPassesWhileItBeginsDoesNotBringItToReplaceTheVeryBackup) {
    const std::string folder = GivenBackup(30);
    GivenOrders({"B1"});
    Global.Clock = [] {
        ++clockTime.Second;
        return clockTime;
    };
    for (int second = 20; second < 30; ++second) {
        clockTime.Second = second;

        const RestoreResult result = Restore(folder);

        EXPECT_TRUE(result.How == End::Restored || result.How == End::ThisMoment) << second;
        EXPECT_EQ(TableAt(folder + "ZUKOrHdr.dbf").Count, 2) << second;
        EXPECT_EQ(Lines(folder + "Backup.txt").at(0), "CLEAR") << second;
        GivenOrders({"B1"});
    }
}

TEST_F(RestoreTest, WithoutACopyOfThePresentTablesNothingIsTouched) {
    const std::string folder = GivenBackup(7);
    fs::remove(folder + "ZUKAudTL.dbf");
    GivenOrders({"B1"});
    fs::remove(Global.DBFPath + "ZUKAudTL.dbf");

    const RestoreResult result = Restore(folder);

    EXPECT_EQ(result.How, End::NoSafetyCopy);
    EXPECT_EQ(result.Why, RunTimeFailure(53, Global.DBFPath + "ZUKAudTL.dbf").what());
    EXPECT_EQ(Codes(), Strings{"B1"});
}

TEST_F(RestoreTest, ATableOfTheBackupThatIsNoneOrOneThatIsLockedStopsItBeforeAnythingIsTouched) {
    const std::string folder = GivenBackup(7);
    GivenOrders({"B1"});
    const std::string good = Bytes(folder + "ZUKOrLin.dbf");
    GivenFile("app/Backup/61115023607/ZUKOrLin.dbf", good.substr(0, good.size() - 20));

    RestoreResult result = Restore(folder);
    EXPECT_EQ(result.How, End::Unusable);
    EXPECT_NE(result.Why.find("ZUKOrLin.dbf"), std::string::npos) << result.Why;

    GivenFile("app/Backup/61115023607/ZUKOrLin.dbf", good);
    GivenFile("app/DBFFiles/.~lock.ZUKOrLin.dbf#", "somebody");
    result = Restore(folder);
    EXPECT_EQ(result.How, End::Unusable);
    EXPECT_NE(result.Why.find("ZUKOrLin.dbf"), std::string::npos) << result.Why;

    EXPECT_EQ(Codes(), Strings{"B1"});
    EXPECT_EQ(List().size(), 1u);
}

TEST_F(RestoreTest, WhereverTheDiskFailsEachTableIsOldOrRestoredAndASecondRestoreCompletesIt) {
    Global.AppPath.clear(); // no trace: only the restore meets the fault
    const std::string folder = GivenBackup(7);
    std::map<std::string, std::string> old;
    for (const std::string& table : OrderTables) old[table] = Bytes(Global.DBFPath + table);
    GivenOrders({"B1"});
    for (const char* table : {"ZUKAudTH", "ZUKAudTL", "ZUKAudHH"}) GivenTable(Global.DBFPath, table, {{"2"}});
    std::map<std::string, std::string> now;
    for (const std::string& table : OrderTables) now[table] = Bytes(Global.DBFPath + table);

    int stopped = 0;
    bool failed = true;
    for (int failAt = 1; failed; ++failAt) {
        for (const auto& [table, bytes] : now) GivenFile("app/DBFFiles/" + table, bytes);
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        const RestoreResult result = Restore(folder);
        Global.TheDisk = &NativeDisk();
        failed = result.How != End::Restored;
        if (result.How == End::Stopped) {
            ++stopped;
            EXPECT_EQ(result.Done.size() + result.Left.size(), OrderTables.size()) << failAt;
            EXPECT_FALSE(result.Why.empty()) << failAt;
        }
        for (const std::string& table : OrderTables) {
            const bool done = std::find(result.Done.begin(), result.Done.end(), table) != result.Done.end();
            const std::string bytes = Bytes(Global.DBFPath + table);
            EXPECT_TRUE(bytes == old[table] || (!done && bytes == now[table])) << failAt << table;
        }
        EXPECT_EQ(Global.Files.Count(), 0) << failAt;
        EXPECT_EQ(Restore(folder).How, End::Restored) << failAt;
    }
    EXPECT_GE(stopped, 10);
}
