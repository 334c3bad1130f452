#include "maintenance/UnfinishedJobs.h"

#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "maintenance/Backup.h"
#include "maintenance/ClearTables.h"
#include "maintenance/Restore.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/VersionUpdate.h"
#include "store/TableCatalogue.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;
using Jobs = std::vector<CutOffJob>;
using End = RestoreResult::End;

DateTime clockTime;
DateTime TestNow() {
    return clockTime;
}

class UnfinishedJobsTest : public EngineTest {
protected:
    UnfinishedJobsTest() {
        GivenAppDirectory();
        Global.Clock = TestNow;
        clockTime = {2026, 11, 15, 9, 30, 0};
        for (const TableEntry& table : AllTables().first(TwinTables)) {
            GivenTable(Global.DBFEmptyPath, table.Name);
            GivenTable(Global.DBFPath, table.Name, {{"old"}});
        }
    }

    static std::string Path(const std::string& name) { return Global.DBFPath + name; }
    static std::string MarkPath() { return Path("UnfinishedJobs.txt"); }
    static bool MarkStands() { return Exists(MarkPath()); }

    /// A backup of two orders that the tables do not hold any more, and the folder that it lies in.
    std::string GivenBackup() {
        clockTime = {2026, 11, 15, 9, 0, 0};
        GivenTable(Global.DBFPath, "ZUKOrHdr", {{"A1"}, {"A2"}});
        GivenTable(Global.DBFPath, "ZUKOrLin", {{"A1-1"}, {"A2-1"}});
        EXPECT_TRUE(MakeBackup("CLEAR"));
        GivenTable(Global.DBFPath, "ZUKOrHdr", {{"B1"}});
        GivenTable(Global.DBFPath, "ZUKOrLin", {{"B1-1"}});
        clockTime = {2026, 11, 15, 9, 30, 0};
        return Global.BackupPath + "61115090000/";
    }

    static void Copy(const std::string& from, const std::string& to) {
        NoProgress silent;
        CopySingleTable(from, to, silent);
    }
    RestoreResult Restore(const std::string& folder) {
        ++clockTime.Minute;
        return RestoreTables(folder, Copy);
    }

    /// The files of a restore that was killed before it came to a table: the mark is the one it had then.
    void RestoreKilledBefore(const std::string& folder, const std::string& table) {
        std::string mark;
        ++clockTime.Minute;
        RestoreTables(folder, [&](const std::string& from, const std::string& to) {
            mark = Bytes(MarkPath());
            if (FileNameOf(to) == table) throw RunTimeFailure(57, to);
            Copy(from, to);
        });
        WriteWholeFile(MarkPath(), mark);
    }

    static Jobs Found() {
        const UnfinishedJobs found = FindUnfinishedJobs();
        EXPECT_EQ(found.Broken, "");
        return found.Jobs;
    }

    static ClearPlan OrdersPlan() {
        ClearPlan plan;
        plan.Choose(ClearGroup::OrHdr);
        return plan;
    }
    static void Clear(const ClearPlan& plan) {
        ClearedTables cleared;
        TableJob job = MarkClearing(plan);
        ClearPCTotals(plan, cleared);
        ClearTables(plan, cleared);
        job.Finish();
    }

    static Strings Codes(const char* table) {
        Strings codes;
        const TableContent content = TableAt(ResolvePath(Path(table)));
        for (int k = 1; k <= content.Count; ++k) codes.push_back(content.Trimmed(k)[0]);
        return codes;
    }
};

// The audits are in the backup what they are by now.
const CutOffJob HeadersOnly{JobKind::Restore,
                            "61115090000",
                            {"ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKOrHdr.dbf"},
                            {"ZUKOrLin.dbf"}};

} // namespace

// ---- the mark ----

TEST_F(UnfinishedJobsTest, TheMarkStandsWhileTablesAreReplacedAndIsGoneBehindTheLast) {
    const std::string folder = GivenBackup();
    int stood = 0;
    RestoreTables(folder, [&](const std::string& from, const std::string& to) {
        stood += MarkStands() ? 1 : 0;
        Copy(from, to);
    });

    EXPECT_EQ(stood, 5);
    EXPECT_FALSE(MarkStands());
    EXPECT_EQ(Found(), Jobs{});
}

TEST_F(UnfinishedJobsTest, TheMarkSaysWhatTheTablesWere) {
    WriteWholeFile(Path("ZUKOrLin.dbf"), "123456789");
    fs::remove(Path("ZUKAudTH.dbf"));
    const TableJob job(JobKind::Clear, "", {"ZUKOrLin.dbf", "ZUKAudTH.dbf"});

    const Strings lines = Lines(MarkPath());
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[1], "CLEAR");
    EXPECT_EQ(lines[2], "ZUKOrLin.dbf\t9\t0\t995dc9bbdf1939fa");
    EXPECT_EQ(lines[3], "ZUKAudTH.dbf\t0\t0\t0000000000000000");
}

TEST_F(UnfinishedJobsTest, WithoutAMarkNoTableIsReplaced) {
    const std::string folder = GivenBackup();
    RefusingDisk disk(MarkPath(), Access::Create);
    Global.TheDisk = &disk;

    const RestoreResult result = Restore(folder);
    const int clearing = FailureNumber([] { Clear(OrdersPlan()); });

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(result.How, End::Unusable);
    EXPECT_NE(result.Why.find("UnfinishedJobs.txt"), std::string::npos) << result.Why;
    EXPECT_EQ(clearing, 70);
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), Strings{"B1"});
}

TEST_F(UnfinishedJobsTest, AClearingOfNothingLeavesTheMarkOfAnEarlierJobAlone) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");

    Clear({});

    EXPECT_EQ(Found(), Jobs{HeadersOnly});
}

// ---- jobs that were cut off ----

TEST_F(UnfinishedJobsTest, ARestoreThatWasKilledIsTakenForCutOffOnlyWhereTablesAreOfTwoMoments) {
    const std::string folder = GivenBackup();
    GivenTable(Global.DBFPath, "ZUKAudTH", {{"new"}});
    const Strings tables = {"ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKOrHdr.dbf", "ZUKOrLin.dbf"};
    const std::map<std::string, std::string> before = [&] {
        std::map<std::string, std::string> all;
        for (const std::string& table : tables) all[table] = Bytes(Path(table));
        return all;
    }();
    for (std::size_t k = 0; k <= tables.size(); ++k) {
        for (const auto& [table, bytes] : before) WriteWholeFile(Path(table), bytes);
        RemoveQuietly(MarkPath());
        RestoreKilledBefore(folder, k < tables.size() ? tables[k] : "");

        const Jobs found = Found();

        // The handheld totals are the backup's from the beginning.
        const bool cutOff = k > 1 && k < tables.size();
        ASSERT_EQ(found.size(), cutOff ? 1u : 0u) << k;
        EXPECT_EQ(MarkStands(), cutOff) << k;
        if (!cutOff) continue;
        EXPECT_EQ(found[0].Kind, JobKind::Restore);
        EXPECT_EQ(found[0].Backup, "61115090000");
        const auto at = static_cast<std::ptrdiff_t>(k);
        const Strings same = k <= 2 ? Strings{"ZUKAudTL.dbf"} : Strings{};
        Strings done(tables.begin(), tables.begin() + at), left(tables.begin() + at, tables.end());
        done.insert(done.end(), same.begin(), same.end());
        std::erase(left, same.empty() ? "" : same[0]);
        EXPECT_EQ(found[0].Done, done) << k;
        EXPECT_EQ(found[0].Left, left) << k;
    }
}

TEST_F(UnfinishedJobsTest, ARestoreThatFailedHalfWayKeepsTheMark) {
    const std::string folder = GivenBackup();
    const RestoreResult result = RestoreTables(folder, [](const std::string& from, const std::string& to) {
        if (FileNameOf(to) == "ZUKOrLin.dbf") throw RunTimeFailure(61, to);
        Copy(from, to);
    });

    EXPECT_EQ(result.How, End::Stopped);
    EXPECT_EQ(Found(), Jobs{HeadersOnly});
}

TEST_F(UnfinishedJobsTest, WhatTheOperatorDoesWithTheTablesLaterChangesNothingOfWhatIsTold) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");
    EXPECT_EQ(Found(), Jobs{HeadersOnly});

    GivenTable(Global.DBFPath, "ZUKOrLin", {{"B1-1"}, {"by hand"}});
    GivenTable(Global.DBFPath, "ZUKOrHdr", {{"B1"}});

    EXPECT_EQ(Found(), Jobs{HeadersOnly});
}

TEST_F(UnfinishedJobsTest, ATableOfAnOlderReleaseCountsAsRestoredByHavingChanged) {
    const std::string folder = GivenBackup();
    TableMaker older({{"H_ORDCODE", 'C', 4}, {"H_FORMER", 'C', 5}});
    WriteWholeFile(folder + "ZUKOrHdr.dbf", older.Row({"OLD1", "gone"}).Bytes());
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");

    EXPECT_EQ(Found(), Jobs{HeadersOnly});
}

TEST_F(UnfinishedJobsTest, AClearingThatEndedHalfWayIsFoundWithTheBackupThatItMade) {
    ASSERT_TRUE(MakeBackup("CLEAR"));
    fs::remove(ResolvePath(Global.DBFEmptyPath + "ZUKORLIN.DBF"));

    EXPECT_EQ(FailureNumber([] { Clear(OrdersPlan()); }), 53);

    EXPECT_EQ(Found(), Jobs({{JobKind::Clear, "61115093000", {"ZUKORHDR.DBF"}, {"ZUKORLIN.DBF"}}}));
}

// ---- quiet again ----

TEST_F(UnfinishedJobsTest, TheSameRestoreRunAgainMakesItQuiet) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");
    ASSERT_EQ(Found().size(), 1u);

    EXPECT_EQ(Restore(folder).How, End::Restored);

    EXPECT_FALSE(MarkStands());
    EXPECT_EQ(Codes("ZUKOrLin.dbf"), (Strings{"A1-1", "A2-1"}));
}

TEST_F(UnfinishedJobsTest, AnotherRestoreOfAllTheTablesMakesItQuietAndOneOfSomeDoesNot) {
    const std::string folder = GivenBackup();
    const std::string further = Global.BackupPath + "61115080000/";
    fs::create_directories(further);
    fs::copy_file(folder + "ZUKOrHdr.dbf", further + "ZUKOrHdr.dbf");
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");

    EXPECT_EQ(Restore(further).How, End::Restored);
    ASSERT_EQ(Found().size(), 1u);
    EXPECT_EQ(Found()[0].Left, Strings{"ZUKOrLin.dbf"});

    const std::string madeByTheRestore = Global.BackupPath + BackupName(clockTime) + "/";
    EXPECT_EQ(Restore(madeByTheRestore).How, End::Restored);
    EXPECT_FALSE(MarkStands());
}

TEST_F(UnfinishedJobsTest, AClearingOfTheTablesThatWereLeftMakesARestoreQuiet) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");
    ClearPlan customers;
    customers.Choose(ClearGroup::Cust);

    Clear(customers);
    EXPECT_EQ(Found(), Jobs{HeadersOnly});
    Clear(OrdersPlan());

    EXPECT_EQ(Found(), Jobs{});
    EXPECT_FALSE(MarkStands());
}

TEST_F(UnfinishedJobsTest, TwoJobsThatWereCutOffAreBothTold) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");
    fs::remove(ResolvePath(Global.DBFEmptyPath + "ZUKITEM.DBF"));
    ClearPlan masters;
    masters.Choose(ClearGroup::Cust);
    masters.Choose(ClearGroup::Item);
    ASSERT_TRUE(MakeBackup("CLEAR"));

    EXPECT_EQ(FailureNumber([&] { Clear(masters); }), 53);

    EXPECT_EQ(Found(),
              Jobs({HeadersOnly, {JobKind::Clear, BackupName(clockTime), {"ZUKCUST.DBF"}, {"ZUKITEM.DBF"}}}));
}

TEST_F(UnfinishedJobsTest, AMarkThatCannotBeRemovedSaysNothingBehindAWholeRestoreAlsoWhenTheTablesChange) {
    const std::string folder = GivenBackup();
    KeepingDisk disk("UnfinishedJobs.txt");
    Global.TheDisk = &disk;
    EXPECT_EQ(Restore(folder).How, End::Restored);
    Global.TheDisk = &NativeDisk();
    ASSERT_TRUE(MarkStands());
    GivenTable(Global.DBFPath, "ZUKOrLin", {{"A1-1"}, {"A2-1"}, {"uploaded"}});

    EXPECT_EQ(Found(), Jobs{});
    EXPECT_FALSE(MarkStands());
}

// ---- what is told ----

TEST_F(UnfinishedJobsTest, TheOperatorReadsWhichJobWhichTablesAndWhatToDo) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");

    const std::string told = TellCutOff(Found().at(0)).Utf8();

    EXPECT_TRUE(told.starts_with("A restore of PC tables did not come to its end.")) << told;
    EXPECT_NE(told.find("\nBackup: CLEAR 2026-11-15 09:00:00\n"), std::string::npos) << told;
    EXPECT_NE(told.find("\nRestored: Handheld Totals, Order Header Audit, Order Line Audit, Order Headers\n"
                        "Not restored: Order Lines\n"),
              std::string::npos)
        << told;
    EXPECT_NE(told.find("restore it again"), std::string::npos) << told;
    EXPECT_NE(Global.Events.Entry(0).find("RESTORE\t61115090000"), std::string::npos);
}

TEST_F(UnfinishedJobsTest, ABackupThatHasBeenPurgedIsNotToBeRestoredAgain) {
    const std::string folder = GivenBackup();
    RestoreKilledBefore(folder, "ZUKOrLin.dbf");
    const Jobs found = Found();
    PurgeBackups({2026, 11, 15, 9, 10, 0}, [](std::string_view) {});

    const std::string told = TellCutOff(found.at(0)).Utf8();

    EXPECT_NE(told.find("\nBackup: 61115090000\n"), std::string::npos) << told;
    EXPECT_NE(told.find("no longer there"), std::string::npos) << told;
}

TEST_F(UnfinishedJobsTest, AClearingIsToldWithItsTablesAndTheBackupThatItMade) {
    ASSERT_TRUE(MakeBackup("CLEAR"));

    const std::string told =
        TellCutOff({JobKind::Clear, "61115093000", {"ZUKORHDR.DBF"}, {"ZUKORLIN.DBF", "Other.dbf"}}).Utf8();

    EXPECT_NE(told.find("\nBackup: CLEAR 2026-11-15 09:30:00\nCleared: Order Headers\n"
                        "Not cleared: Order Lines, Other.dbf\n"),
              std::string::npos)
        << told;
    EXPECT_NE(told.find("clear the same tables again"), std::string::npos) << told;
}

// ---- a mark that is none ----

TEST_F(UnfinishedJobsTest, ALineThatSaysNothingIsToldByFileAndLineAndTheMarkStays) {
    const std::string head = "for people\r\n";
    const std::string job = "RESTORE\t61115090000\r\n";
    for (const std::string& bad :
         {std::string(), head, head + "\r\n", head + "done\tZUKOrHdr.dbf\r\n", head + "RESTORE\r\n",
          head + "RESTORE\t../elsewhere\r\n", head + job + "done\t../ZUKOrHdr.dbf\r\n",
          head + job + "ZUKOrHdr.dbf\t-1\t0\t0\r\n", head + job + std::string(1, '\0'),
          head + "CLEAR\t" + std::string(2, '/')}) {
        WriteWholeFile(MarkPath(), bad);

        const UnfinishedJobs found = FindUnfinishedJobs();

        EXPECT_TRUE(found.Jobs.empty()) << bad;
        EXPECT_NE(found.Broken.find("UnfinishedJobs.txt"), std::string::npos) << bad << found.Broken;
        EXPECT_EQ(Bytes(MarkPath()), bad);
    }
    std::string endless = head;
    for (int k = 0; k < 2000; ++k) endless += job;
    WriteWholeFile(MarkPath(), endless);
    EXPECT_NE(FindUnfinishedJobs().Broken, "");
}

TEST_F(UnfinishedJobsTest, AMarkThatCannotBeReadIsLaidAsideByTheNextJob) {
    const std::string folder = GivenBackup();
    WriteWholeFile(MarkPath(), "rubbish\r\nmore of it");

    EXPECT_EQ(Restore(folder).How, End::Restored);

    EXPECT_FALSE(MarkStands());
    EXPECT_EQ(Bytes(Path("UnfinishedJobs.bad.txt")), "rubbish\r\nmore of it");
}

// ---- copies that a failed merge has kept ----

/// An upload that brought H1 and whose merge of the old headers failed: their copy stays.
class KeptCopies : public UnfinishedJobsTest {
protected:
    KeptCopies() {
        GivenTable(Global.DBFPath, "ZUKOrHdr", {{"P1"}, {"P2"}});
        Global.UploadSelect = true;
        MakeSafetyCopies(SafetyCopies::OfSession);
        GivenTable(Global.DBFPath, "ZUKOrHdr", {{"H1"}});
        RefusingDisk disk(Path("OLDHDR.TXT"), Access::Create);
        Global.TheDisk = &disk;
        TableMerge(MergedOrderHeaders).WriteText();
        Global.TheDisk = &NativeDisk();
        DeleteSafetyCopies(SafetyCopies::OfSession);
    }

    static bool CopyIsThere() { return FileExists(Path("ZUKOrHdr.dap")); }
    static Strings PathsOf(const ClearPlan& plan) { return TablesOf(plan); }
};

TEST_F(KeptCopies, BehindAClearingNothingComesBackAndTheBackupHoldsWhatWasKept) {
    ASSERT_TRUE(CopyIsThere());

    RecoverBeforeReplacing(PathsOf(OrdersPlan()));
    ASSERT_TRUE(MakeBackup("CLEAR"));
    Clear(OrdersPlan());

    EXPECT_TRUE(RecoverSafetyCopies().empty()) << "the next start";
    MakeSafetyCopies(SafetyCopies::OfSession);
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), Strings{});
    EXPECT_EQ(TableAt(Global.BackupPath + "61115093000/ZUKOrHdr.dbf").Count, 3);
}

TEST_F(KeptCopies, AClearingOfOtherTablesLeavesThemForTheNextStart) {
    ClearPlan customers;
    customers.Choose(ClearGroup::Cust);
    customers.Choose(ClearGroup::AudtH);

    RecoverBeforeReplacing(PathsOf(customers));
    Clear(customers);

    EXPECT_TRUE(CopyIsThere());
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), Strings{"H1"});
    EXPECT_EQ(RecoverSafetyCopies().size(), 1u);
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(Codes("ZUKAudTH.dbf"), Strings{});
}

TEST_F(KeptCopies, BehindARestoreNothingComesBackAndTheBackupOfTheRestoreHoldsWhatWasKept) {
    clockTime = {2026, 11, 15, 9, 0, 0};
    const std::string headers = Bytes(Path("ZUKOrHdr.dbf"));
    GivenTable(Global.DBFPath, "ZUKOrHdr", {{"A1"}});
    ASSERT_TRUE(MakeBackup("CLEAR"));
    WriteWholeFile(Path("ZUKOrHdr.dbf"), headers);
    clockTime = {2026, 11, 15, 9, 30, 0};

    EXPECT_EQ(Restore(Global.BackupPath + "61115090000/").How, End::Restored);

    EXPECT_TRUE(RecoverSafetyCopies().empty()) << "the next start";
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), Strings{"A1"});
    EXPECT_EQ(TableAt(Global.BackupPath + BackupName(clockTime) + "/ZUKOrHdr.dbf").Count, 3);
}

TEST_F(KeptCopies, WhereTheyCannotBePutBackNeitherBeginsAndSaysWhy) {
    clockTime = {2026, 11, 15, 9, 0, 0};
    ASSERT_TRUE(MakeBackup("CLEAR"));
    clockTime = {2026, 11, 15, 9, 30, 0};
    RefusingDisk disk(Path("ZUKOrHdr.dbf.zuk~"), Access::Create);
    Global.TheDisk = &disk;

    const RestoreResult result = Restore(Global.BackupPath + "61115090000/");
    const int clearing = FailureNumber([] { RecoverBeforeReplacing(PathsOf(OrdersPlan())); });

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(result.How, End::CopiesStay);
    EXPECT_NE(result.Why.find("ZUKOrHdr.dbf"), std::string::npos) << result.Why;
    EXPECT_EQ(clearing, 70);
    EXPECT_TRUE(CopyIsThere());
    EXPECT_EQ(Codes("ZUKOrHdr.dbf"), Strings{"H1"});
    EXPECT_EQ(Global.TheDisk->FoldersIn(Global.BackupPath).size(), 1u) << "no further backup";
}

TEST_F(KeptCopies, ACopyOfATableThatIsNotReplacedStopsNothing) {
    GivenTable(Global.DBFPath, "ZUKAudHH", {{"old"}});
    GivenFile("app/DBFFiles/ZUKAudHH.dap", Bytes(Path("ZUKAudHH.dbf")));
    RefusingDisk disk(Path("ZUKOrHdr.dbf.zuk~"), Access::Create);
    Global.TheDisk = &disk;

    EXPECT_NO_THROW(RecoverBeforeReplacing(Strings{"ZUKAUDHH.DBF"}));

    Global.TheDisk = &NativeDisk();
    EXPECT_FALSE(FileExists(Path("ZUKAudHH.dap")));
    EXPECT_TRUE(CopyIsThere());
}
