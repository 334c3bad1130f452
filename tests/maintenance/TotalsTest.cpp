#include "maintenance/Totals.h"

#include "core/Messages.h"
#include "maintenance/Backup.h"
#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Tables.h"

#include <filesystem>

namespace {

using Strings = std::vector<std::string>;

DateTime clockTime;
DateTime TestNow() {
    return clockTime;
}

class TotalsTest : public EngineTest {
protected:
    TotalsTest() {
        GivenAppDirectory();
        clockTime = {2026, 11, 15, 14, 5, 9};
        Global.Clock = TestNow;
        GivenTable(Global.DBFPath, "ZUKOrHdr");
        GivenTable(Global.DBFPath, "ZUKOrLin");
        GivenTable(Global.DBFPath, "ZUKTOTALPC");
        GivenTable(Global.DBFPath, "ZUKLINK", {{"Anna", "S1", "A01"}, {"Bea", "S2", "B02"}});
        for (const char* table : {"ZUKAudTH", "ZUKAudTL", "ZUKAudHH"}) GivenTable(Global.DBFPath, table);
    }

    /// So many order headers, and an order line for each total.
    static void GivenOrders(int headers, const Strings& totals) {
        GivenTable(Global.DBFPath, "ZUKOrHdr", std::vector<Strings>(static_cast<std::size_t>(headers)));
        std::vector<Strings> lines;
        for (const std::string& total : totals) lines.push_back(RowOf("ZUKOrLin", {{"L_TOTPRICE", total}}));
        GivenTable(Global.DBFPath, "ZUKOrLin", lines);
    }
    static void Calc(std::string_view event) {
        NoProgress silent;
        CalcPCTotals(event, silent);
    }
    static TableContent Totals() { return TableAt(Global.DBFPath + "ZUKTOTALPC.dbf"); }

    /// An upload of one order from a handheld, a second later than the event before.
    static void Upload(const std::string& id, const std::string& lastOrder = {}) {
        ++clockTime.Second;
        Global.CurrentHotSyncID = id;
        Global.HHLastOrder = lastOrder;
        Calc("UPLOAD-ADD");
    }
};

TEST_F(TotalsTest, OrdersAreCountedAndTheirLinesAddedUp) {
    GivenOrders(2, {"12.50", "-2.25", "", "1,000.00"});
    struct Bar final : Progress {
        void Begin(const Text& label, std::int64_t maximum) override {
            EXPECT_EQ(label, Text(msg::ProcessingData));
            Maximum = maximum;
        }
        void Show(std::int64_t value) override { Shown.push_back(value); }
        std::int64_t Maximum = 0;
        std::vector<std::int64_t> Shown;
    } bar;

    CountOrders(bar);

    EXPECT_EQ(Global.CurHeaders, 2);
    EXPECT_EQ(Global.CurLines, 4);
    EXPECT_DOUBLE_EQ(Global.CurDollars, 1010.25);
    EXPECT_EQ(bar.Maximum, 4);
    EXPECT_EQ(bar.Shown, (std::vector<std::int64_t>{1, 2, 3, 4}));
}

TEST_F(TotalsTest, NoLinesGiveZero) {
    Global.CurDollars = 99;
    GivenOrders(0, {});

    Calc("UPLOAD-REPLACE");

    EXPECT_EQ(Global.CurDollars, 0);
    EXPECT_EQ(GetPCTotals().at(0).Dollars, "0.00");
    EXPECT_EQ(GetPCTotals().at(0).Orders, "0");
}

TEST_F(TotalsTest, EventsThatCountTheWholeContentRecordItTwice) {
    GivenOrders(2, {"10", "2.5", "0.25"});
    Global.OldOrderCount = 1;
    Global.OldLineCount = 1;
    Global.OldLineTotal = 10;
    for (const char* event :
         {"UPLOAD-REPLACE", "EXPORT", "QUALCHECK", "CLEAR", "IMPORT-REPLACE", "RESTORE"}) {
        Calc(event);

        const Strings row = Totals().Trimmed(1);
        EXPECT_EQ((Strings{row.begin(), row.begin() + 6}), (Strings{"2", "3", "12.75", "2", "3", "12.75"}))
            << event;
        EXPECT_EQ(row[7], event);
        EXPECT_EQ(row[8], "2026-11-15 14:05:09") << event;
    }
}

TEST_F(TotalsTest, EventsThatAddRecordTheDifference) {
    GivenOrders(3, {"10", "2.5", "0.25"});
    Global.OldOrderCount = 1;
    Global.OldLineCount = 2;
    Global.OldLineTotal = 12.5;
    for (const char* event : {"UPLOAD-ADD", "IMPORT-ADD"}) {
        Calc(event);

        const Strings row = Totals().Trimmed(1);
        EXPECT_EQ((Strings{row.begin(), row.begin() + 6}), (Strings{"2", "1", "0.25", "3", "3", "12.75"}))
            << event;
        EXPECT_EQ(row[7], event);
    }
}

TEST_F(TotalsTest, ADifferenceCanBeNegative) {
    GivenOrders(1, {"10"});
    Global.OldOrderCount = 3;
    Global.OldLineCount = 5;
    Global.OldLineTotal = 10.5;

    Calc("UPLOAD-ADD");

    const Strings row = Totals().Trimmed(1);
    EXPECT_EQ((Strings{row.begin(), row.begin() + 3}), (Strings{"-2", "-4", "-0.5"}));
}

TEST_F(TotalsTest, MoneyIsWrittenWithFourDecimalsAtMostAndNoZerosAtTheEnd) {
    for (const auto& [lines, written] :
         std::vector<std::pair<Strings, std::string>>{{{"0.1", "0.2"}, "0.3"},
                                                      {{"12.50"}, "12.5"},
                                                      {{"3.00"}, "3"},
                                                      {{"0.00005"}, "0"},
                                                      {{"1.23456"}, "1.2346"}}) {
        GivenOrders(1, lines);
        Calc("QUALCHECK");
        EXPECT_EQ(Totals().Trimmed(1)[2], written);
        EXPECT_EQ(Totals().Trimmed(1)[5], written);
    }
}

TEST_F(TotalsTest, ASecondEventStandsOnTopAndTheOlderMovesToRecord2) {
    GivenOrders(1, {"10"});
    Upload("Anna", "A0100000001");
    GivenOrders(4, {"10", "20"});

    Calc("QUALCHECK");

    const TableContent totals = Totals();
    ASSERT_EQ(totals.Count, 2);
    EXPECT_EQ(totals.Trimmed(1),
              (Strings{"4", "2", "30", "4", "2", "30", "", "QUALCHECK", "2026-11-15 14:05:10", "", ""}));
    EXPECT_EQ(totals.Trimmed(2), (Strings{"1", "1", "10", "1", "1", "10", "A01", "UPLOAD-ADD",
                                          "2026-11-15 14:05:10", "Anna", "A0100000001"}));
    EXPECT_EQ(totals.Flags, "  ");
}

TEST_F(TotalsTest, AnUploadHasItsHandheldsMachineIdAndLastOrderWithoutRegardToCase) {
    for (const char* event : {"UPLOAD-ADD", "UPLOAD-REPLACE"}) {
        Global.CurrentHotSyncID = "aNNA";
        Global.HHLastOrder = "A0100000007";

        Calc(event);

        const Strings row = Totals().Trimmed(1);
        EXPECT_EQ((Strings{row[6], row[9], row[10]}), (Strings{"A01", "aNNA", "A0100000007"})) << event;
    }
}

TEST_F(TotalsTest, AnIdThatTheLinksTableLacksLeavesTheMachineEmpty) {
    for (const std::string& id : Strings{"Ann", "Anna2", "Carl"}) {
        Upload(id);

        EXPECT_EQ(Totals().Trimmed(1)[6], "") << id;
        EXPECT_EQ(Totals().Trimmed(1)[9], id);
    }
}

TEST_F(TotalsTest, NoIdMatchesARowWithoutOne) {
    GivenTable(Global.DBFPath, "ZUKLINK", {{"", "S1", "A01"}});

    Upload("");

    EXPECT_EQ(Totals().Trimmed(1)[6], "");
    EXPECT_EQ(MachineOf(""), "");
}

TEST_F(TotalsTest, AnExportAndOtherEventsOfThePCHaveNoMachineIdOrLastOrder) {
    Global.CurrentHotSyncID = "Anna";
    Global.HHLastOrder = "A0100000007";
    for (const char* event : {"EXPORT", "QUALCHECK", "CLEAR", "RESTORE", "IMPORT-ADD", "IMPORT-REPLACE"}) {
        Calc(event);

        const Strings row = Totals().Trimmed(1);
        EXPECT_EQ((Strings{row[6], row[9], row[10]}), (Strings{"", "", ""})) << event;
    }
}

TEST_F(TotalsTest, ASecondHalfKeepsWhatTheFirstSawAndCompletesTheRest) {
    for (const auto& [first, second] : std::vector<std::pair<std::string, std::string>>{
             {"CLEAR", "CLEAR2"}, {"IMPORT-ADD", "IMPORT2ADD"}, {"IMPORT-REPLACE", "IMPORT2REPLACE"}}) {
        GivenTable(Global.DBFPath, "ZUKTOTALPC");
        GivenOrders(2, {"10", "2.5", "0.25"});
        Calc(first);
        GivenOrders(0, {});

        Calc(second);

        const TableContent totals = Totals();
        ASSERT_EQ(totals.Count, 1) << second;
        const Strings row = totals.Trimmed(1);
        EXPECT_EQ((Strings{row.begin(), row.begin() + 6}), (Strings{"2", "3", "12.75", "0", "0", "0"}))
            << second;
        EXPECT_EQ(row[7], first);
    }
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TotalsTest, ASecondHalfLeavesTheTableThatItsStepsLeave) {
    GivenOrders(2, {"10"});
    for (const char* id : {"Anna", "Bea", "Cleo"}) Upload(id);
    Calc("CLEAR");
    const std::string path = Global.DBFPath + "ZUKTOTALPC.dbf";
    const std::string before = Bytes(path);
    GivenOrders(0, {});
    Calc("CLEAR2");
    const std::string after = Bytes(path);

    GivenFile("app/DBFFiles/ZUKTOTALPC.dbf", before);
    DBFEdit table;
    table.FileOpen(path);
    table.Go(DBFEdit::First);
    const Strings values = {"0", "0", "0", "", "CLEAR", "2026-11-15 14:05:12", "", ""};
    for (std::size_t k = 0; k < values.size(); ++k) table.WriteData(static_cast<int>(k) + 4, values[k]);
    table.UpDate();
    table.FileClose();

    EXPECT_EQ(after, Bytes(path));
    EXPECT_NE(after, before);
}

TEST_F(TotalsTest, ASecondHalfOverAnEmptyTableIsRecordedToo) {
    GivenOrders(1, {"10"});

    Calc("CLEAR2");

    ASSERT_EQ(Totals().Count, 1);
    EXPECT_EQ(Totals().Trimmed(1),
              (Strings{"0", "0", "0", "1", "1", "10", "", "CLEAR", "2026-11-15 14:05:09", "", ""}));
}

// ---- the event's time ----

TEST_F(TotalsTest, TheMomentOfTheOperationsBackupIsTakenOnce) {
    for (const auto& [backup, event] :
         std::vector<std::pair<std::string, std::string>>{{"EXPORT", "EXPORT"},
                                                          {"QUALCHECK", "QUALCHECK"},
                                                          {"RESTORE", "RESTORE"},
                                                          {"UPLOAD-ADD", "UPLOAD-ADD"},
                                                          {"UPLOAD-ADD", "UPLOAD-REPLACE"}}) {
        clockTime = {2026, 11, 15, 14, 5, 9};
        ASSERT_TRUE(MakeBackup(backup));
        clockTime.Minute = 59;

        Calc(event);
        Calc(event);

        EXPECT_EQ(Totals().Trimmed(2)[8], "2026-11-15 14:05:09") << event;
        EXPECT_EQ(Totals().Trimmed(1)[8], "2026-11-15 14:59:09") << event;
    }
}

TEST_F(TotalsTest, BothHalvesOfAClearTakeTheMomentOfItsBackup) {
    ASSERT_TRUE(MakeBackup("CLEAR"));
    clockTime.Minute = 58;
    Calc("CLEAR");
    clockTime.Minute = 59;

    Calc("CLEAR2");
    EXPECT_EQ(Totals().Trimmed(1)[8], "2026-11-15 14:05:09");

    Calc("QUALCHECK");
    EXPECT_EQ(Totals().Trimmed(1)[8], "2026-11-15 14:59:09");
}

TEST_F(TotalsTest, ABackupWhoseOperationWasGivenUpDatesNoOtherEvent) {
    ASSERT_TRUE(MakeBackup("EXPORT"));
    clockTime.Hour = 16;

    Upload("Anna");

    EXPECT_EQ(Totals().Trimmed(1)[8], "2026-11-15 16:05:10");
}

// ---- the recent uploads ----

TEST_F(TotalsTest, EightUploadsShowTheSevenNewestNewestFirst) {
    for (int k = 1; k <= 8; ++k) Upload("Handheld " + std::to_string(k));

    const std::vector<UploadRow> rows = GetPCTotals();

    ASSERT_EQ(rows.size(), 7u);
    for (std::size_t k = 0; k < 7; ++k) EXPECT_EQ(rows[k].HotSyncID, "Handheld " + std::to_string(8 - k));
}

TEST_F(TotalsTest, AnUploadShowsItsIdTimeOrdersLinesAndMoney) {
    GivenOrders(2, {"10", "2.5", "1000"});

    Upload("Anna");

    const std::vector<UploadRow> rows = GetPCTotals();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].HotSyncID, "Anna");
    EXPECT_EQ(rows[0].DateTime, "2026-11-15 14:05:10");
    EXPECT_EQ(rows[0].Orders, "2");
    EXPECT_EQ(rows[0].Lines, "3");
    EXPECT_EQ(rows[0].Dollars, "1012.50");
}

TEST_F(TotalsTest, OnlyUploadsAreShown) {
    Upload("Anna");
    for (const char* event : {"EXPORT", "QUALCHECK", "CLEAR", "RESTORE", "IMPORT-ADD", "IMPORT-REPLACE"})
        Calc(event);
    Global.CurrentHotSyncID = "Bea";
    Calc("UPLOAD-REPLACE");

    const std::vector<UploadRow> rows = GetPCTotals();

    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].HotSyncID, "Bea");
    EXPECT_EQ(rows[1].HotSyncID, "Anna");
}

TEST_F(TotalsTest, AfterAResetEarlierUploadsAreHiddenThoughTheirRecordsRemain) {
    Upload("Anna");
    Global.LastReset = clockTime;
    Upload("Bea");

    const std::vector<UploadRow> rows = GetPCTotals();

    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].HotSyncID, "Bea");
    EXPECT_EQ(Totals().Count, 2);
}

TEST_F(TotalsTest, AResetAtMidnightHidesTheDaysBefore) {
    clockTime = {2026, 9, 30, 23, 59, 58};
    Upload("Anna");
    clockTime = {2026, 10, 1, 0, 0, 0};
    Global.LastReset = clockTime;
    Upload("Bea");

    ASSERT_EQ(GetPCTotals().size(), 1u);
    EXPECT_EQ(GetPCTotals()[0].HotSyncID, "Bea");
}

// ---- failures ----

TEST_F(TotalsTest, AMissingTableIsFailure53) {
    for (const std::string& table : Strings{"ZUKTOTALPC.dbf", "ZUKOrHdr.dbf", "ZUKOrLin.dbf"}) {
        const std::string path = Global.DBFPath + table;
        std::filesystem::rename(path, path + ".away");
        for (const char* event : {"EXPORT", "CLEAR2"}) {
            EXPECT_EQ(FailureOf([&] { Calc(event); }).Number, 53) << table;
        }
        std::filesystem::rename(path + ".away", path);
        EXPECT_EQ(Global.Files.Count(), 0) << table;
    }
    std::filesystem::remove(Global.DBFPath + "ZUKTOTALPC.dbf");
    EXPECT_EQ(FailureOf([] { GetPCTotals(); }).Number, 53);
}

TEST_F(TotalsTest, ATotalsTableOfTooFewFieldsIsFailure9AndNothingStaysOpen) {
    GivenFile("app/DBFFiles/ZUKTOTALPC.dbf", TableMaker({{"TP_NUMHEAD", 'N', 6, 0}}).Row({"1"}).Bytes());
    for (const char* event : {"EXPORT", "CLEAR2"}) {
        EXPECT_EQ(FailureOf([&] { Calc(event); }).Number, 9) << event;
        EXPECT_EQ(Global.Files.Count(), 0) << event;
    }
    EXPECT_EQ(FailureOf([] { GetPCTotals(); }).Number, 9);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TotalsTest, AnEventOnAFullDiskLeavesTheTotalsAsTheyWere) {
    GivenOrders(1, {"10"});
    Upload("Anna");
    const std::string path = Global.DBFPath + "ZUKTOTALPC.dbf";
    const std::string before = Bytes(path);
    Global.AppPath.clear(); // no trace: only the table meets the fault
    for (const char* event : {"QUALCHECK", "CLEAR2"}) {
        for (int n = 1; n <= 5; ++n) {
            FaultyDisk disk(n);
            Global.TheDisk = &disk;
            EXPECT_EQ(FailureOf([&] { Calc(event); }).Number, 61) << event << n;
            Global.TheDisk = &NativeDisk();
            EXPECT_EQ(Bytes(path), before) << event << n;
            EXPECT_EQ(Global.Files.Count(), 0) << event << n;
        }
    }
}

} // namespace
