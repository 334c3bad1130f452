#include "maintenance/ClearTables.h"

#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "maintenance/Backup.h"
#include "maintenance/Totals.h"
#include "store/TableCatalogue.h"
#include "store/TableLock.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/OtherProgram.h"
#include "support/Tables.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

/// An office whose tables hold a record each, the order lines two.
class ClearTablesTest : public EngineTest {
protected:
    ClearTablesTest() {
        GivenAppDirectory();
        for (const TableEntry& table : AllTables().first(TwinTables)) {
            GivenTable(Global.DBFEmptyPath, table.Name);
            GivenTable(Global.DBFPath, table.Name, {{"1"}});
        }
        GivenTable(Global.DBFPath, "ZUKORLIN",
                   {RowOf("ZUKORLIN", {{"L_TOTPRICE", "10.50"}}), RowOf("ZUKORLIN", {{"L_TOTPRICE", "2"}})});
        GivenTable(Global.DBFPath, "ZUKTOTALPC", {RowOf("ZUKTOTALPC", {{"TP_EVENT", "UPLOAD-ADD"}})});
        before_ = Tables();
    }

    static ClearPlan PlanOf(std::initializer_list<ClearGroup> groups) {
        ClearPlan plan;
        for (const ClearGroup group : groups) plan.Choose(group);
        return plan;
    }
    static ClearPlan All() {
        ClearPlan plan;
        plan.Chosen.fill(true);
        return plan;
    }

    /// The tables by file name, with their bytes.
    static std::map<std::string, std::string> Tables() {
        std::map<std::string, std::string> tables;
        for (const auto& file : fs::directory_iterator(Global.DBFPath)) {
            if (file.is_regular_file()) tables[file.path().filename().string()] = Bytes(file.path().string());
        }
        return tables;
    }

    /// The tables that are not what they were at first, by name in capitals.
    Names Changed() const {
        Names names;
        for (const auto& [name, bytes] : Tables()) {
            const auto old = before_.find(name);
            if (old != before_.end() && old->second == bytes) continue;
            std::string table = name.substr(0, name.find('.'));
            std::transform(table.begin(), table.end(), table.begin(), ::toupper);
            names.push_back(std::move(table));
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    static TableContent At(const std::string& table) {
        return TableAt(ResolvePath(Global.DBFPath + table + ".DBF"));
    }
    static std::int32_t Records(const std::string& table) { return At(table).Count; }

    /// The steps of a clearing, as the screen takes them.
    static ClearedTables Clear(const ClearPlan& plan) {
        NoProgress silent;
        ClearedTables cleared;
        TableJob job = MarkClearing(plan);
        ClearPCTotals(plan, cleared);
        if (plan.ChangesOrders()) CalcPCTotals("CLEAR", silent);
        ClearTables(plan, cleared);
        job.Finish();
        if (plan.ChangesOrders()) CalcPCTotals("CLEAR2", silent);
        return cleared;
    }

    std::map<std::string, std::string> before_;
};

// ---- what a plan says ----

TEST_F(ClearTablesTest, TheTablesAreOpenedAndClearedInTheOrderOfTheScreen) {
    Names paths;
    for (const char* name :
         {"ZUKORHDR", "ZUKORLIN", "ZUKAUDTH", "ZUKAUDTL", "ZUKAUDHH", "ZUKBARIN", "ZUKCOMP", "ZUKCUST",
          "ZUKHELP", "ZUKITEM", "ZUKPRINT", "ZUKSETUP", "ZUKSTAX", "ZUKPAY", "ZUKLINK", "ZUKTOTALPC"}) {
        paths.push_back(Global.DBFPath + name + ".DBF");
        ASSERT_NE(FindTable(name), nullptr) << name;
    }

    EXPECT_EQ(TablesOf(All()), paths);
    EXPECT_TRUE(TablesOf(ClearPlan()).empty());
}

TEST_F(ClearTablesTest, ABackupIsMadeForSixGroupsAndTheTotalsAreRecordedForThree) {
    for (std::size_t k = 0; k < ClearGroups; ++k) {
        const auto group = static_cast<ClearGroup>(k);
        const bool orders =
            group == ClearGroup::OrHdr || group == ClearGroup::AudtH || group == ClearGroup::AudHH;
        const bool masters =
            group == ClearGroup::Cust || group == ClearGroup::Item || group == ClearGroup::STax;
        EXPECT_EQ(PlanOf({group}).ChangesOrders(), orders) << k;
        EXPECT_EQ(PlanOf({group}).NeedsBackup(), orders || masters) << k;
    }
    EXPECT_FALSE(ClearPlan().NeedsBackup());
}

// ---- clearing ----

TEST_F(ClearTablesTest, EachGroupClearsItsTablesAndNoOther) {
    for (std::size_t k = 0; k < ClearGroups; ++k) {
        const auto group = static_cast<ClearGroup>(k);
        Names expected(TablesOf(group).begin(), TablesOf(group).end());
        std::sort(expected.begin(), expected.end());

        ClearedTables cleared;
        ClearPCTotals(PlanOf({group}), cleared);
        ClearTables(PlanOf({group}), cleared);

        EXPECT_EQ(Changed(), expected);
        for (const std::string& table : expected) {
            EXPECT_EQ(Records(table), 0) << table;
            EXPECT_EQ(Bytes(ResolvePath(Global.DBFPath + table + ".DBF")),
                      Bytes(ResolvePath(Global.DBFEmptyPath + table + ".DBF")));
        }
        for (const auto& [name, bytes] : before_) GivenFile("app/DBFFiles/" + name, bytes);
    }
}

TEST_F(ClearTablesTest, NothingChosenChangesNothing) {
    const ClearedTables cleared = Clear(ClearPlan());

    EXPECT_EQ(Changed(), Names{});
    EXPECT_TRUE(cleared.Tables.empty());
}

TEST_F(ClearTablesTest, WhatWasClearedIsToldWithItsRecordsInItsOrder) {
    WriteWholeFile(Global.DBFPath + "ZUKAUDTL.DBF", "no table at all");

    const ClearedTables cleared = Clear(PlanOf({ClearGroup::AudtH, ClearGroup::OrHdr, ClearGroup::TotalPC}));

    EXPECT_EQ(cleared.Tables,
              (std::vector<ClearedTables::Table>{
                  {"ZUKTOTALPC", 1}, {"ZUKORHDR", 1}, {"ZUKORLIN", 2}, {"ZUKAUDTH", 1}, {"ZUKAUDTL", -1}}));
    EXPECT_EQ(Records("ZUKAUDTL"), 0) << "what is no table can be cleared too";
    EXPECT_EQ(TellCleared(cleared).Utf8(), "PC Totals (1), Order Headers (1), Order Lines (2), Order Header "
                                           "Audit (1), Order Line Audit");
    EXPECT_TRUE(TellCleared({}).IsEmpty());
}

TEST_F(ClearTablesTest, TheOrdersGoWithEveryFileOfTheImagesFolderAndOtherGroupsLeaveThem) {
    for (const char* name : {"A1.bmp", "A2", "notes.txt"})
        GivenFile(std::string("app/DBFFiles/Images/") + name, "x");
    ASSERT_EQ(CountImages(), 3);

    ClearedTables cleared;
    ClearTables(PlanOf({ClearGroup::AudtH, ClearGroup::Cust}), cleared);
    EXPECT_EQ(CountImages(), 3);
    ClearTables(PlanOf({ClearGroup::OrHdr}), cleared);

    EXPECT_EQ(CountImages(), 0);
    EXPECT_EQ(cleared.Images, 3);
    EXPECT_TRUE(fs::is_directory(Global.ImagesPath));
}

/// The images go behind the headers, and a file that cannot go is no failure.
class ImagesStay final : public FaultyDisk {
public:
    bool Remove(const std::string& path) override {
        if (path.find("Images") == std::string::npos) return FaultyDisk::Remove(path);
        HeadersWereGone = TableAt(ResolvePath(Global.DBFPath + "ZUKORHDR.DBF")).Count == 0;
        LinesWereThere = TableAt(ResolvePath(Global.DBFPath + "ZUKORLIN.DBF")).Count > 0;
        throw RunTimeFailure(75, path);
    }

    bool HeadersWereGone = false, LinesWereThere = false;
};

TEST_F(ClearTablesTest, ImagesThatCannotBeDeletedStopNothingAndTheirPlaceIsBetweenHeadersAndLines) {
    GivenFile("app/DBFFiles/Images/A1.bmp", "x");
    ImagesStay disk;
    Global.TheDisk = &disk;

    ClearedTables cleared;
    ClearTables(PlanOf({ClearGroup::OrHdr}), cleared);

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(disk.HeadersWereGone);
    EXPECT_TRUE(disk.LinesWereThere);
    EXPECT_EQ(cleared.Images, 0);
    EXPECT_EQ(Records("ZUKORLIN"), 0);
}

TEST_F(ClearTablesTest, WithoutAnImagesFolderNoFileGoes) {
    Global.ImagesPath.clear();
    EXPECT_EQ(CountImages(), 0);
    Global.ImagesPath = Folder() + "nowhere/";

    ClearedTables cleared;
    ClearTables(PlanOf({ClearGroup::OrHdr}), cleared);

    EXPECT_EQ(cleared.Images, 0);
}

// ---- totals ----

TEST_F(ClearTablesTest, ClearedPCTotalsStartWithTheOneRowOfTheClearing) {
    Clear(PlanOf({ClearGroup::OrHdr, ClearGroup::TotalPC}));

    EXPECT_EQ(Records("ZUKTOTALPC"), 1);
    EXPECT_EQ(At("ZUKTOTALPC").Trimmed(1).at(7), "CLEAR");
}

TEST_F(ClearTablesTest, TheEventKeepsWhatTheTablesHeldAndTakesInWhatTheyHoldNow) {
    Clear(PlanOf({ClearGroup::OrHdr}));

    ASSERT_EQ(Records("ZUKTOTALPC"), 2) << "the earlier event moves down";
    Names row = At("ZUKTOTALPC").Trimmed(1);
    row.resize(6);
    EXPECT_EQ(row, (Names{"1", "2", "12.5", "0", "0", "0"}));
    EXPECT_EQ(At("ZUKTOTALPC").Trimmed(2).at(7), "UPLOAD-ADD");
}

TEST_F(ClearTablesTest, PCTotalsAloneAreClearedWithoutAnEvent) {
    Clear(PlanOf({ClearGroup::TotalPC, ClearGroup::Cust}));

    EXPECT_EQ(Records("ZUKTOTALPC"), 0);
}

// ---- backups ----

TEST_F(ClearTablesTest, ABackupForCustomersHoldsTheOrderAndAuditTablesAlone) {
    Global.Clock = [] { return DateTime{2026, 11, 15, 2, 36, 7}; };

    ASSERT_TRUE(MakeBackup("CLEAR"));

    Names names;
    for (const auto& file : fs::directory_iterator(Global.BackupPath + "61115023607"))
        names.push_back(file.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{"Backup.txt", "ZUKAudHH.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKOrHdr.dbf",
                            "ZUKOrLin.dbf"}));
    EXPECT_EQ(Lines(Global.BackupPath + "61115023607/Backup.txt").front(), "CLEAR");
}

// ---- when it cannot be done ----

#ifndef _WIN32
TEST_F(ClearTablesTest, EachTableThatAnotherProgramLocksIsFoundBeforeAnythingIsChanged) {
    for (const std::string& path : TablesOf(All())) {
        const OtherProgram other(ResolvePath(path), path.find("ZUKITEM") == std::string::npos);
        ASSERT_TRUE(other.Holds) << path;

        Names locked = TablesOf(All());
        std::erase_if(locked, [](const std::string& each) { return !TableIsLocked(each); });

        EXPECT_EQ(locked, Names{path});
    }
    EXPECT_EQ(Changed(), Names{});
}
#endif

TEST_F(ClearTablesTest, AMissingTwinStopsTheClearingAndWhatWasClearedBeforeStaysCleared) {
    fs::remove(ResolvePath(Global.DBFEmptyPath + "ZUKCUST.DBF"));
    ClearedTables cleared;

    EXPECT_EQ(FailureNumber([&] {
                  ClearTables(PlanOf({ClearGroup::BarIn, ClearGroup::Cust, ClearGroup::Item}), cleared);
              }),
              53);

    EXPECT_EQ(Changed(), Names{"ZUKBARIN"});
    EXPECT_EQ(cleared.Tables, (std::vector<ClearedTables::Table>{{"ZUKBARIN", 1}}));
}

TEST_F(ClearTablesTest, WhateverTheDiskDoesEachTableIsTheOldOneOrTheEmptyOne) {
    Global.AppPath.clear(); // no trace: only the clearing meets the fault
    const ClearPlan plan = PlanOf({ClearGroup::OrHdr, ClearGroup::Item, ClearGroup::TotalPC});
    FaultyDisk counting;
    Global.TheDisk = &counting;
    Clear(plan);
    const int calls = counting.Calls();
    ASSERT_GE(calls, 4 * 4);

    for (int n = 1; n <= calls; ++n) {
        Global.TheDisk = &NativeDisk();
        for (const auto& [name, bytes] : before_) GivenFile("app/DBFFiles/" + name, bytes);
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        EXPECT_NE(FailureNumber([&] { Clear(plan); }), 0) << n;
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Global.Files.Count(), 0) << n;
        RemoveQuietly(Global.DBFPath + "UnfinishedJobs.txt"); // what it says has tests of its own
        for (const auto& [name, bytes] : Tables()) {
            const TableEntry* entry = FindTable(name);
            ASSERT_NE(entry, nullptr) << name << " lies about";
            if (std::string_view(entry->Name) == "ZUKTOTALPC") continue; // an event may stand in it
            EXPECT_TRUE(bytes == before_.at(name) ||
                        bytes == Bytes(ResolvePath(Global.DBFEmptyPath + std::string(entry->Name) + ".DBF")))
                << n << ' ' << name;
        }
    }
}

} // namespace
