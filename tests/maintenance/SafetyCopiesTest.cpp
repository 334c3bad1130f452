#include "maintenance/SafetyCopies.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <algorithm>

namespace {

using Strings = std::vector<std::string>;

class SafetyCopiesTest : public EngineTest {
protected:
    SafetyCopiesTest() {
        GivenAppDirectory();
        Global.UploadSelect = Selection(true);
        GivenOrders({"P1", "P2"});
        GivenLines({"P1-1", "P1-2", "P2-1"});
        GivenTable(Global.DBFPath, "ZUKAudTH", {{"PA1"}});
        GivenTable(Global.DBFPath, "ZUKAudTL", {{"PL1"}});
        GivenTable(Global.DBFPath, "ZUKAudHH", {{"1", "2", "3"}});
        GivenTable(Global.DBFPath, "ZUKBarin", {{"B1"}});
        for (const char* table : {"ZUKPRN", "ZUKCust", "ZUKItem"})
            GivenTable(Global.DBFPath, table, {{"old"}});
    }

    static void GivenCodes(const char* table, const char* field, const Strings& codes) {
        std::vector<Strings> rows;
        for (const std::string& code : codes) rows.push_back(RowOf(table, {{field, code}}));
        GivenTable(Global.DBFPath, table, rows);
    }
    /// The table as a transfer puts it in place.
    static void GivenOrders(const Strings& codes) { GivenCodes("ZUKOrHdr", "H_ORDCODE", codes); }
    static void GivenLines(const Strings& keys) { GivenCodes("ZUKOrLin", "L_KEY", keys); }

    static Strings Codes(const char* table, const char* field) {
        const TableContent content = TableAt(Path(table) + ".dbf");
        const auto place = static_cast<std::size_t>(
            std::find(content.Names.begin(), content.Names.end(), field) - content.Names.begin());
        Strings codes;
        for (int k = 1; k <= content.Count; ++k) codes.push_back(content.Trimmed(k)[place]);
        return codes;
    }
    static Strings Orders() { return Codes("ZUKOrHdr", "H_ORDCODE"); }
    static Strings OrderLines() { return Codes("ZUKOrLin", "L_KEY"); }

    static std::string Path(std::string_view file) { return Global.DBFPath + std::string(file); }
    static bool IsThere(std::string_view file) { return FileExists(Path(file)); }
    /// Extensions in capitals: file names are found whatever their case.
    static Strings Copies() {
        Strings names;
        for (std::string name : FilesWithExtension(Global.DBFPath, ".dap")) {
            std::transform(name.begin(), name.end(), name.begin(), ::toupper);
            names.push_back(name.substr(0, name.find('.')));
        }
        return names;
    }
    static bool MarkStands() { return IsThere("SafetyCopies.txt"); }

    static void Merge(const MergedTable& table) {
        NoProgress silent;
        TableMerge merge(table);
        merge.WriteText();
        merge.ReadText(silent);
    }

    /// The recovery has done all that there was to do.
    static void ExpectNothingLeft() {
        EXPECT_EQ(Copies(), Strings{});
        EXPECT_FALSE(MarkStands());
        EXPECT_TRUE(RecoverSafetyCopies().empty());
    }
};

const std::vector<RecoveredTable> None;

} // namespace

// ---- the copies ----

TEST_F(SafetyCopiesTest, ASessionCopiesSixTables) {
    MakeSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(Copies(), (Strings{"ZUKAUDHH", "ZUKAUDTH", "ZUKAUDTL", "ZUKBARIN", "ZUKORHDR", "ZUKORLIN"}));
    EXPECT_EQ(Bytes(ResolvePath(Path("ZUKORHDR.DAP"))), Bytes(Path("ZUKOrHdr.dbf")));
}

TEST_F(SafetyCopiesTest, TheUploadScreenCopiesEightAndNotTheBarcodeIndex) {
    MakeSafetyCopies(SafetyCopies::OfUploadScreen);

    EXPECT_EQ(Copies(), (Strings{"ZUKAUDHH", "ZUKAUDTH", "ZUKAUDTL", "ZUKCUST", "ZUKITEM", "ZUKORHDR",
                                 "ZUKORLIN", "ZUKPRN"}));
}

TEST_F(SafetyCopiesTest, EarlierCopiesThatNobodyNeedsAreReplaced) {
    WriteWholeFile(Path("ZUKORHDR.dap"), "of an earlier session");

    MakeSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(Bytes(ResolvePath(Path("ZUKOrHdr.dap"))), Bytes(Path("ZUKOrHdr.dbf")));
    EXPECT_EQ(Copies().size(), 6u);
}

TEST_F(SafetyCopiesTest, AMissingTableIsAFailureAndTheMarkIsNotSet) {
    Global.TheDisk->Remove(Path("ZUKAudTH.dbf"));

    EXPECT_EQ(FailureNumber([] { MakeSafetyCopies(SafetyCopies::OfSession); }), 53);

    EXPECT_EQ(Copies(), (Strings{"ZUKORHDR", "ZUKORLIN"}));
    EXPECT_FALSE(MarkStands());
}

TEST_F(SafetyCopiesTest, ASessionDeletesItsSixAndLeavesThoseOfTheUploadScreen) {
    MakeSafetyCopies(SafetyCopies::OfUploadScreen);
    MakeSafetyCopies(SafetyCopies::OfSession);

    DeleteSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(Copies(), (Strings{"ZUKCUST", "ZUKITEM", "ZUKPRN"}));
    EXPECT_FALSE(MarkStands());
}

TEST_F(SafetyCopiesTest, CopiesThatAreNotThereNeedNoDeletion) {
    WriteWholeFile(Path("ZUKORLIN.DAP"), "x");

    DeleteSafetyCopies(SafetyCopies::OfUploadScreen);

    EXPECT_EQ(Copies(), Strings{});
}

// ---- a program that was killed ----

TEST_F(SafetyCopiesTest, KilledBeforeAnyUploadTheTablesStayAsTheyAre) {
    MakeSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), (Strings{"P1", "P2"}));
    EXPECT_EQ(OrderLines(), (Strings{"P1-1", "P1-2", "P2-1"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, KilledWhileTheCopiesWereMadeTheyMeanNothing) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    Global.TheDisk->Remove(Path("SafetyCopies.txt"));
    GivenOrders({});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), Strings{});
}

TEST_F(SafetyCopiesTest, KilledBetweenHeadersAndLinesTheHeadersAreMerged) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2}}));

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(OrderLines(), (Strings{"P1-1", "P1-2", "P2-1"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, KilledAfterTheHeadersWereMergedTheLinesAreMerged) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    GivenLines({"H1-1"});
    Merge(MergedOrderHeaders);

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORLIN.DBF", 3}}));

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(OrderLines(), (Strings{"H1-1", "P1-1", "P1-2", "P2-1"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, KilledAfterTheTextWasWrittenItIsWrittenAnew) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("OLDHDR.TXT"), "a text that was cut o");

    RecoverSafetyCopies();

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_FALSE(IsThere("OLDHDR.TXT"));
}

TEST_F(SafetyCopiesTest, KilledAfterEverythingWasMergedNothingIsAppendedTwice) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    GivenLines({"H1-1"});
    for (const MergedTable& table :
         {MergedOrderHeaders, MergedOrderLines, MergedAuditHeaders, MergedAuditLines, MergedHHTotals})
        Merge(table);
    WriteWholeFile(Path("OLDAUDHH.TXT"), "killed before it was deleted");

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(OrderLines(), (Strings{"H1-1", "P1-1", "P1-2", "P2-1"}));
    EXPECT_FALSE(IsThere("OLDAUDHH.TXT"));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, ACopyThatCannotBeDeletedAfterASessionMeansNothing) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    KeepingDisk disk("ZUKOrHdr.dap");
    Global.TheDisk = &disk;
    DeleteSafetyCopies(SafetyCopies::OfSession);
    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Copies(), Strings{"ZUKORHDR"});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), Strings{"H1"});
}

TEST_F(SafetyCopiesTest, AMarkThatCannotBeRemovedIsAFailureAndNoCopyStaysWithIt) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    KeepingDisk disk("SafetyCopies.txt");
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([] { DeleteSafetyCopies(SafetyCopies::OfSession); }), 75);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Copies(), Strings{});
    GivenOrders({});
    EXPECT_EQ(RecoverSafetyCopies(), None);
    EXPECT_EQ(Orders(), Strings{});
}

TEST_F(SafetyCopiesTest, AllFiveTablesThatAHandheldSendsArePutBack) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    GivenLines({"H1-1"});
    GivenTable(Global.DBFPath, "ZUKAudTH", {{"HA1"}});
    GivenTable(Global.DBFPath, "ZUKAudTL", {});
    GivenTable(Global.DBFPath, "ZUKAudHH", {{"9", "9", "9"}});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2},
                                                                  {"ZUKORLIN.DBF", 3},
                                                                  {"ZUKAUDTH.DBF", 1},
                                                                  {"ZUKAUDTL.DBF", 1},
                                                                  {"ZUKAUDHH.DBF", 1}}));

    EXPECT_EQ(TableAt(Path("ZUKAudTH.dbf")).Trimmed(2)[0], "PA1");
    EXPECT_EQ(TableAt(Path("ZUKAudTL.dbf")).Trimmed(1)[0], "PL1");
    EXPECT_EQ(TableAt(Path("ZUKAudHH.dbf")).Trimmed(2)[2], "3");
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, TheBarcodeIndexStaysAsItIs) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenTable(Global.DBFPath, "ZUKBarin", {{"B2"}});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(TableAt(Path("ZUKBarin.dbf")).Count, 1);
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, ATableThatTheHandheldReturnedUnchangedStaysAsItIs) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"P1", "P2"});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), (Strings{"P1", "P2"}));
}

TEST_F(SafetyCopiesTest, AnEmptySafetyCopyHasNothingToPutBack) {
    GivenOrders({});
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), Strings{"H1"});
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, ATableWithOtherFieldsThanItsCopyIsMergedByNames) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    const TableMaker sent = TableMaker({{"NEWFIELD", 'C', 3}, {"H_ORDCODE", 'C', 20}}).Row({"new", "H1"});
    WriteWholeFile(Path("ZUKOrHdr.dbf"), sent.Bytes());

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2}}));

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(TableAt(Path("ZUKOrHdr.dbf")).Trimmed(2), (Strings{"", "P1"}));
}

TEST_F(SafetyCopiesTest, KilledDuringTheRecoveryTheNextOneGoesOnAndEveryOrderIsThereOnce) {
    const std::string headers = Bytes(Path("ZUKOrHdr.dbf"));
    const std::string lines = Bytes(Path("ZUKOrLin.dbf"));
    FaultyDisk whole;       // without faults, and without flushing
    Global.AppPath.clear(); // the calls of the trace are not wanted
    bool failed = true;
    int failAt = 1;
    for (; failed; ++failAt) {
        Global.TheDisk = &whole;
        WriteWholeFile(Path("ZUKOrHdr.dbf"), headers);
        WriteWholeFile(Path("ZUKOrLin.dbf"), lines);
        MakeSafetyCopies(SafetyCopies::OfSession);
        GivenOrders({"H1"});
        GivenLines({"H1-1"});
        FaultyDisk faulty(failAt);
        Global.TheDisk = &faulty;
        failed = FailureNumber([] { RecoverSafetyCopies(); }) != 0;

        Global.TheDisk = &whole;
        RecoverSafetyCopies();

        ASSERT_EQ(Orders(), (Strings{"H1", "P1", "P2"})) << failAt;
        ASSERT_EQ(OrderLines(), (Strings{"H1-1", "P1-1", "P1-2", "P2-1"})) << failAt;
        ExpectNothingLeft();
    }
    Global.TheDisk = &NativeDisk();
    EXPECT_GT(failAt, 6);
}

TEST_F(SafetyCopiesTest, ATableThatCannotBeReadIsToldByNameAndNothingThatIsNeededGoes) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("ZUKOrLin.dbf"), "no table");

    const FailureSeen seen = FailureOf([] { RecoverSafetyCopies(); });

    EXPECT_EQ(seen.Number, 321);
    EXPECT_NE(seen.Words.find("ZUKOrLin.dbf"), std::string::npos) << seen.Words;
    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(Copies(), (Strings{"ZUKBARIN", "ZUKORLIN"}));
    EXPECT_TRUE(MarkStands());
    GivenLines({"H1-1"});
    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORLIN.DBF", 3}}));
    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
}

TEST_F(SafetyCopiesTest, OrdersDeletedFromATableThatCouldNotBeReadAtTheStartComeBackAndNoneIsThereTwice) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    RefusingDisk disk(Path("ZUKOrHdr.dbf"), Access::Read);
    Global.TheDisk = &disk;
    EXPECT_EQ(FailureNumber([] { RecoverSafetyCopies(); }), 70);
    Global.TheDisk = &NativeDisk();
    GivenOrders({"P2"});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 1}}));

    EXPECT_EQ(Orders(), (Strings{"P2", "P1"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, OrdersDeletedFromAMergedTableThatCouldNotBeReadAtTheStartBringNoOtherOrderTwice) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    Merge(MergedOrderHeaders);
    RefusingDisk disk(Path("ZUKOrHdr.dbf"), Access::Read);
    Global.TheDisk = &disk;
    EXPECT_EQ(FailureNumber([] { RecoverSafetyCopies(); }), 70);
    Global.TheDisk = &NativeDisk();
    GivenOrders({"P2"}); // H1 and P1 deleted

    RecoverSafetyCopies();

    EXPECT_EQ(Orders(), (Strings{"P2", "P1"}));
}

TEST_F(SafetyCopiesTest, ARepeatThatWasRemovedFromATableThatCouldNotBeReadAtTheStartIsPutBackAlone) {
    GivenOrders({"P1", "P1", "P2"});
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"P1", "P2"});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 1}}));

    EXPECT_EQ(Orders(), (Strings{"P1", "P2", "P1"}));
}

TEST_F(SafetyCopiesTest, AnOrderThatTheHandheldHasSentOnceMoreAmongOthersIsThereOnce) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1", "P2"});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 1}}));

    EXPECT_EQ(Orders(), (Strings{"H1", "P2", "P1"}));
}

TEST_F(SafetyCopiesTest, ATableWhoseCopyIsKeptIsKnownUntilItIsPutBackAndWhatThatBringsIsReturned) {
    const Strings orders = {"ZUKOrHdr.dbf", "ZUKOrLin.dbf"};
    EXPECT_FALSE(HaveKeptCopy(orders));
    EXPECT_TRUE(RecoverBeforeReplacing(orders).empty());
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    EXPECT_TRUE(HaveKeptCopy(orders));
    EXPECT_FALSE(HaveKeptCopy(Strings{"ZUKCust.dbf"}));

    EXPECT_EQ(RecoverBeforeReplacing(orders), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2}}));

    EXPECT_FALSE(HaveKeptCopy(orders));
}

TEST_F(SafetyCopiesTest, ARecoveryThatFailsAtATableSaysWhatCameBackAllTheSame) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("ZUKAudtH.dbf"), "no table");
    const std::vector<RecoveredTable> expected = {{"ZUKORHDR.DBF", 2}};
    std::vector<RecoveredTable> recovered;

    try {
        RecoverSafetyCopies();
    } catch (const RecoveryFailure& failure) {
        recovered = failure.Recovered;
    }

    EXPECT_EQ(recovered, expected);
}

TEST_F(SafetyCopiesTest, OrdersThatHaveComeBackAreToldThoughATableThatIsNotReplacedFails) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("ZUKAudtH.dbf"), "no table");

    EXPECT_EQ(RecoverBeforeReplacing(Strings{"ZUKOrHdr.dbf", "ZUKOrLin.dbf"}),
              (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2}}));
}

TEST_F(SafetyCopiesTest, OrdersThatWereExportedBetweenTwoTriesOfARecoveryAreNotPutBackAgain) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("ZUKAudtH.dbf"), "no table");
    EXPECT_EQ(FailureNumber([] { RecoverSafetyCopies(); }), 321);
    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    GivenOrders({});
    GivenLines({});
    GivenTable(Global.DBFPath, "ZUKAudtH");

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKAUDTH.DBF", 1}}));

    EXPECT_EQ(Orders(), Strings{});
    EXPECT_EQ(OrderLines(), Strings{});
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, TablesThatWereSortedBetweenAMergeAndTheRecoveryAreNotMergedTwice) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    Merge(MergedOrderHeaders);
    GivenOrders({"P2", "H1", "P1"});
    GivenLines({"P2-1", "P1-2", "P1-1"}); // never replaced

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), (Strings{"P2", "H1", "P1"}));
    EXPECT_EQ(OrderLines(), (Strings{"P2-1", "P1-2", "P1-1"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, OrdersOfThePCThatTheHandheldHasSentOnceMoreAreThereOnce) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"P1", "H1", "P2"});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), (Strings{"P1", "H1", "P2"}));
    ExpectNothingLeft();
}

TEST_F(SafetyCopiesTest, OnTheUploadScreenMastersThatWereReplacedStaySoAndTheirCopiesStayToo) {
    MakeSafetyCopies(SafetyCopies::OfUploadScreen);
    GivenOrders({"H1"});
    GivenTable(Global.DBFPath, "ZUKCust", {{"new"}});

    EXPECT_EQ(RecoverSafetyCopies(), (std::vector<RecoveredTable>{{"ZUKORHDR.DBF", 2}}));

    EXPECT_EQ(TableAt(Path("ZUKCust.dbf")).Count, 1);
    EXPECT_EQ(Copies(), (Strings{"ZUKCUST", "ZUKITEM", "ZUKPRN"}));
    EXPECT_FALSE(MarkStands());
}

TEST_F(SafetyCopiesTest, ARecoveryIsInTheTrace) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    Global.Events.Clear();

    RecoverSafetyCopies();

    bool found = false;
    for (std::size_t k = 0; k < TraceEntries; ++k)
        found = found || Global.Events.Entry(k) == "SafetyCopies:RecoverSafetyCopies";
    EXPECT_TRUE(found);
}

// ---- copies that look as if they were needed ----

TEST_F(SafetyCopiesTest, OrdersThatWereExportedAfterASessionWithoutUploadAreNotPutBack) {
    Global.UploadSelect = Selection(false);
    MakeSafetyCopies(SafetyCopies::OfSession);
    EXPECT_EQ(Copies().size(), 6u);
    GivenOrders({});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), Strings{});
}

TEST_F(SafetyCopiesTest, OrdersThatWereExportedAfterAWholeSessionAreNotPutBack) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    Merge(MergedOrderHeaders);
    DeleteSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({});

    EXPECT_EQ(RecoverSafetyCopies(), None);

    EXPECT_EQ(Orders(), Strings{});
}

// ---- a merge that failed ----

TEST_F(SafetyCopiesTest, AMergeThatFailsIsForTheTraceAndItsCopyOutlivesTheSession) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    GivenLines({"H1-1"});
    RefusingDisk disk(Path("ZUKOrHdr.dbf.zuk~"), Access::Create);
    Global.TheDisk = &disk;
    EXPECT_NO_THROW(Merge(MergedOrderHeaders));
    Global.TheDisk = &NativeDisk();
    Merge(MergedOrderLines);

    EXPECT_TRUE(IsThere("OLDHDR.TXT"));
    EXPECT_NE(Global.Events.Entry(0).find("TableMerge"), 0u); // the lines came behind it
    DeleteSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(Orders(), Strings{"H1"});
    EXPECT_EQ(OrderLines().size(), 4u);
    EXPECT_EQ(Copies(), Strings{"ZUKORHDR"});
    EXPECT_TRUE(MarkStands());
    EXPECT_TRUE(Global.FailedMerges.empty());
}

TEST_F(SafetyCopiesTest, AMergeWhoseTextCannotBeWrittenReadsNoOlderText) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    WriteWholeFile(Path("OLDHDR.TXT"), "of yesterday\xA5\r\n");
    RefusingDisk disk(Path("OLDHDR.TXT"), Access::Create);
    Global.TheDisk = &disk;
    Merge(MergedOrderHeaders);
    Global.TheDisk = &NativeDisk();

    EXPECT_EQ(Orders(), Strings{"H1"});
    EXPECT_EQ(Global.FailedMerges, Strings{"ZUKORHDR.DAP"});
}

TEST_F(SafetyCopiesTest, TheNextSafetyCopiesPutBackFirstWhatAMergeHasFailedToDo) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    GivenOrders({"H1"});
    RefusingDisk disk(Path("ZUKOrHdr.dbf.zuk~"), Access::Create);
    Global.TheDisk = &disk;
    Merge(MergedOrderHeaders);
    Global.TheDisk = &NativeDisk();
    DeleteSafetyCopies(SafetyCopies::OfSession);

    MakeSafetyCopies(SafetyCopies::OfSession);

    EXPECT_EQ(Orders(), (Strings{"H1", "P1", "P2"}));
    EXPECT_EQ(Bytes(ResolvePath(Path("ZUKOrHdr.dap"))), Bytes(Path("ZUKOrHdr.dbf")));
}

TEST_F(SafetyCopiesTest, CopiesThatAreNeededAreNotReplacedWhileTheyCannotBePutBack) {
    MakeSafetyCopies(SafetyCopies::OfSession);
    const std::string copy = Bytes(ResolvePath(Path("ZUKOrHdr.dap")));
    WriteWholeFile(Path("ZUKOrHdr.dbf"), "no table");

    EXPECT_EQ(FailureNumber([] { MakeSafetyCopies(SafetyCopies::OfSession); }), 321);

    EXPECT_EQ(Bytes(ResolvePath(Path("ZUKOrHdr.dap"))), copy);
    EXPECT_TRUE(MarkStands());
}
