#include "sync/Receipt.h"

#include "core/Failure.h"
#include "core/SafeFile.h"
#include "sync/ReceiptCount.h"
#include "sync/SessionTest.h"

#include "support/FaultyDisk.h"

namespace {

/// Receipts as a session makes them: the tables of the office are what arrived, the safety copies what the PC
/// held before; GivenNow says what the merge made of them.
class ReceiptTest : public SessionTest {
protected:
    ReceiptTest() { Arrive({}, {}); }

    void Arrive(const std::vector<TestOrder>& held, const std::vector<TestOrder>& came) {
        GivenOrdersOnPC(held);
        MakeSafetyCopies(SafetyCopies::OfSession);
        GivenOrdersOnPC(came);
        now_ = came;
        now_.insert(now_.end(), held.begin(), held.end());
    }
    void GivenNow(const std::vector<TestOrder>& orders) { now_ = orders; }

    /// The text of the receipt of such a session.
    std::string Written(const UploadRun& arrived = Whole, const Strings& stated = {}) {
        SessionReceipt receipt(SessionKind::Unattended);
        receipt.Begin("Anna");
        for (const char* table : {"ZUKORHDR.DBF", "ZUKORLIN.DBF"}) receipt.NoteUpload(Global.DBFPath + table);
        std::string totals;
        if (!stated.empty()) totals = GivenTable(Global.HHTotalsPath + "Anna/", "ZUKAudHH", {stated});
        receipt.TakeArrived(arrived, totals);
        GivenOrdersOnPC(now_);
        receipt.Write(Control, arrived);
        return Receipt("Anna");
    }
    static std::string Verdict() {
        for (const char* word : {"BALANCED", "OUT BY", "NOT COMPARED"}) {
            if (const std::string line = ReceiptLine("Anna", word); !line.empty()) return line;
        }
        return "(no verdict)";
    }
    /// The codes below a heading, as they stand.
    static std::string Below(const std::string& heading) {
        const std::string text = Receipt("Anna");
        const std::size_t at = text.find(heading + "\r\n");
        if (at == std::string::npos) return "(none)";
        const std::size_t begin = at + heading.size() + 2;
        const std::size_t end = std::min(text.find("\r\n\r\n", begin), text.size() - 2);
        return text.substr(begin, end - begin);
    }
    Strings Names() const { return FilesWithExtension(Global.HHTotalsPath + "Anna", ".txt"); }

    static constexpr UploadRun Whole{.OrderHeaders = true, .OrderLines = true};

private:
    std::vector<TestOrder> now_;
};

TEST_F(ReceiptTest, ABalancedReceiptReadsLikeThis) {
    Arrive({{"P1", {"1000.00"}}}, {{"A1", {"20.25", "100.25"}}, {"A2", {"-0.5"}}});

    Written(Whole, {"2", "3", "120.0000"});

    EXPECT_EQ(Lines(Global.HHTotalsPath + "Anna/Receipt 2026-11-22 180311.txt"),
              (Strings{"Receipt of a HotSync", "2026-11-22 18:03:11", "Handheld: Anna", "Unattended session",
                       "", "BALANCED", "",
                       "Transfers:", "  from the handheld  ZUKORHDR.DBF                            cut off",
                       "  from the handheld  ZUKORLIN.DBF                            cut off", "",
                       "                            Orders     Lines           Money",
                       "The handheld states              2         3          120.00",
                       "Arrived                          2         3          120.00",
                       "The PC held before               1         1         1000.00",
                       "The PC holds now                 3         4         1120.00", "",
                       "Orders that arrived:", "  A1, A2"}));
}

TEST_F(ReceiptTest, ALostOrderIsToldByHowMuch) {
    Arrive({}, {{"A1", {"1.10"}}});
    Written(Whole, {"3", "5", "81.10"});
    EXPECT_EQ(Verdict(), "OUT BY 2 orders, 4 lines, 80.00 - what the handheld states, less what arrived.");
}

TEST_F(ReceiptTest, AnOrderThatTheMergeLostIsToldToo) {
    Arrive({{"P1", {"2"}}}, {{"A1", {"1"}}});
    GivenNow({{"A1", {"1"}}});
    Written(Whole, {"1", "1", "1"});
    EXPECT_EQ(
        Verdict(),
        "OUT BY 1 orders, 1 lines, 2.00 - what the PC held before and what arrived, less what it holds now.");
}

TEST_F(ReceiptTest, MoneyIsAddedInExactCents) {
    std::vector<TestOrder> orders{{"A1", Strings(1000, "0.10")}};
    Arrive({}, orders);
    Written(Whole, {"1", "1000", "100"});
    EXPECT_EQ(Verdict(), "BALANCED");

    Arrive({}, {{"A1", {"9999999999.99", "0.01", "-9999999999.99"}}});
    ++Moment.Second;
    Written(Whole, {"1", "3", "0.01"});
    EXPECT_EQ(Verdict(), "BALANCED");
}

TEST_F(ReceiptTest, OrdersThatComeAgainAreToldApartByWhatTheyHold) {
    Arrive({{"Same", {"1", "2"}}, {"Price", {"1"}}, {"Fewer", {"1", "2"}}, {"Other", {"4"}}},
           {{"SAME", {"1", "2"}}, {"Price", {"1.01"}}, {"Fewer", {"1"}}, {"New", {"4"}}});

    Written();

    EXPECT_EQ(Below("On the PC already, came again changed:"), "  SAME, Price, Fewer");
    EXPECT_EQ(Below("On the PC already, came again unchanged:"), "(none)");
}

TEST_F(ReceiptTest, AnOrderIsUnchangedWhateverTheOrderOfItsLinesAndTheZerosOfItsNumbers) {
    Arrive({{"A1", {"1.50", "2"}}}, {});
    auto lines = OrderLines({{"A1", {"1.5", "2.00"}}});
    std::swap(lines[0], lines[1]);
    lines[0][7] = "0.0000";
    GivenTable(Global.DBFPath, "ZUKOrHdr", Headers({{"A1", {}}}));
    GivenTable(Global.DBFPath, "ZUKOrLin", lines);

    Written();

    EXPECT_EQ(Below("On the PC already, came again unchanged:"), "  A1");
}

TEST_F(ReceiptTest, AnOrderThatThePCHoldsTwiceAlreadyIsUnchangedTheThirdTime) {
    Arrive({{"A1", {"1", "2"}}, {"A1", {"1", "2"}}}, {{"A1", {"1", "2"}}});
    Written();
    EXPECT_EQ(Below("On the PC already, came again unchanged:"), "  A1");

    Arrive({{"A1", {"1", "2"}}, {"A1", {"1", "3"}}}, {{"A1", {"1", "2"}}});
    ++Moment.Second;
    Written();
    EXPECT_EQ(Below("On the PC already, came again changed:"), "  A1");
}

TEST_F(ReceiptTest, LinesWithoutHeaderAndHeadersWithoutLinesAreNamed) {
    Arrive({}, {{"Whole", {"1"}}});
    GivenTable(Global.DBFPath, "ZUKOrHdr", Headers({{"Whole", {}}, {"Bare", {}}}));
    GivenTable(Global.DBFPath, "ZUKOrLin", OrderLines({{"Whole", {"1"}}, {"Alone", {"2"}}, {"", {"3"}}}));
    Written();
    EXPECT_EQ(Below("Lines without their order header, by order:"), "  Alone, (no order code)");
    EXPECT_EQ(Below("Order headers without lines:"), "  Bare");
}

TEST_F(ReceiptTest, WhereOnlyHeadersCameTheLinesThatThePCHoldsCount) {
    Arrive({{"Old", {"1"}}}, {{"Old", {"1"}}, {"New", {"2"}}});
    GivenTable(Global.DBFPath, "ZUKOrLin", OrderLines({{"Old", {"1"}}}));
    GivenNow({{"Old", {"1"}}, {"New", {}}, {"Old", {}}});

    Written({.OrderHeaders = true}, {"2", "2", "3"});

    EXPECT_EQ(Verdict(), "OUT BY 0 orders, 2 lines, 3.00 - what the handheld states, less what arrived.");
    EXPECT_EQ(Below("Order headers without lines:"), "  New");
    EXPECT_EQ(Below("On the PC already, came again in part and cannot be compared:"), "  Old");
    EXPECT_EQ(ReceiptLine("Anna", "Arrived"), "Arrived                          2              did not come");
}

TEST_F(ReceiptTest, WithoutTheTotalsOfTheHandheldNothingIsCompared) {
    Arrive({}, {{"A1", {"1"}}});
    Written();
    EXPECT_EQ(Verdict(), "NOT COMPARED: the handheld's totals did not come.");
    EXPECT_EQ(ReceiptLine("Anna", "The handheld states"),
              "The handheld states                               not stated");
}

TEST_F(ReceiptTest, TablesThatCannotBeCountedAreToldAndStopNothing) {
    GivenFile("app/DBFFiles/ZUKOrLin.dbf", "torn");
    GivenNow({});
    EXPECT_NE(Written(Whole, {"1", "1", "1"}).find("NOT COMPARED: the tables could not be counted."),
              std::string::npos);

    Arrive({}, {});
    GivenTable(Global.DBFPath, "ZUKOrLin", {RowOf("ZUKOrLin", {{"L_TOTPRICE", "1E+300"}})});
    ++Moment.Second;
    EXPECT_NE(Written().find("NOT COMPARED: the tables could not be counted."), std::string::npos);
}

TEST_F(ReceiptTest, CodesAreWrapped) {
    std::vector<TestOrder> orders;
    for (int i = 100; i < 140; ++i) orders.push_back({"ORDER" + std::to_string(i), {"1"}});
    Arrive({}, orders);
    Written();
    const std::string codes = Below("Orders that arrived:");
    for (std::size_t at = 0, end = 0; end != std::string::npos; at = end + 2) {
        end = codes.find("\r\n", at);
        EXPECT_LE(codes.substr(at, end - at).size(), 78U);
    }
    EXPECT_NE(codes.find("ORDER106\r\n  ORDER107, "), std::string::npos) << codes;
}

TEST_F(ReceiptTest, WhatAHandheldPutsIntoACodeBreaksNoLine) {
    Arrive({}, {{"A\r\nBALANCED", {"1"}}, {"\xC4\x01", {"1"}}});
    Written();
    EXPECT_EQ(Below("Orders that arrived:"), "  A  BALANCED, \xC3\x84?");
}

TEST_F(ReceiptTest, TwoReceiptsOfOneSecondHaveANumberAndTheLaterOneIsTheLast) {
    Arrive({}, {{"A1", {"1"}}});
    Written();
    EXPECT_NE(Written(Whole, {"1", "1", "1"}).find("BALANCED"), std::string::npos);
    EXPECT_EQ(Names(), (Strings{"Receipt 2026-11-22 180311.txt", "Receipt 2026-11-22 180311_02.txt"}));
}

TEST_F(ReceiptTest, TheNewestFiftyStayAndOtherFilesAreLeftAlone) {
    for (int i = 0; i < 60; ++i) {
        const std::string second = std::to_string(10 + i % 50);
        GivenFile("app/DBFFiles/HHTotals/Anna/Receipt 2026-01-0" + std::to_string(1 + i / 50) + " 1200" +
                      second + ".txt",
                  "x");
    }
    GivenFile("app/DBFFiles/HHTotals/Anna/Receipt of my own.txt", "x");
    GivenFile("app/DBFFiles/HHTotals/Anna/Receipt 2026-01-01 1200109.txt", "x");

    Written();

    Strings names = Names();
    EXPECT_EQ(names.size(), ReceiptsKept + 2);
    EXPECT_TRUE(std::find(names.begin(), names.end(), "Receipt 2026-01-01 120020.txt") == names.end());
    EXPECT_TRUE(std::find(names.begin(), names.end(), "Receipt 2026-01-01 120021.txt") != names.end());
    EXPECT_TRUE(std::find(names.begin(), names.end(), "Receipt of my own.txt") != names.end());
}

TEST_F(ReceiptTest, AClockThatWentBackDoesNotRemoveTheNewReceipt) {
    for (int i = 0; i < 50; ++i)
        GivenFile("app/DBFFiles/HHTotals/Anna/Receipt 2030-01-01 1200" + std::to_string(10 + i) + ".txt",
                  "x");
    Written();
    EXPECT_EQ(Names().size(), ReceiptsKept);
    EXPECT_EQ(Names().front(), "Receipt 2026-11-22 180311.txt");
}

TEST_F(ReceiptTest, AReceiptThatCannotBeWrittenLeavesATraceLineAndNothingElse) {
    SessionReceipt receipt(SessionKind::Download);
    receipt.Begin("Anna");
    FaultyDisk disk(1);
    Global.TheDisk = &disk;
    receipt.Write(Control, {});
    Global.TheDisk = &NativeDisk();

    EXPECT_EQ(LastReceipt("Anna"), std::nullopt);
    bool traced = false;
    for (std::size_t i = 0; i < 20; ++i)
        traced = traced || Global.Events.Entry(i).starts_with("SessionReceipt:Write ");
    EXPECT_TRUE(traced);
}

TEST_F(ReceiptTest, AReceiptIsWrittenOnceASession) {
    SessionReceipt receipt(SessionKind::Download);
    receipt.Begin("Anna");
    receipt.Write(Control, {});
    receipt.Write(Control, {});
    EXPECT_EQ(Names().size(), 1U);
}

TEST_F(ReceiptTest, LastReceiptGoesToNoOtherFolder) {
    GivenFile("app/DBFFiles/Receipt 2026-01-01 120010.txt", "x");
    for (const char* id : {"..", ".", "", "Anna/..", "Nobody"})
        EXPECT_EQ(LastReceipt(id), std::nullopt) << id;
}

TEST_F(ReceiptTest, ManyOrdersThatComeAgainAreAllFoundUnchanged) {
    std::vector<TestOrder> orders;
    for (int i = 0; i < 1000; ++i) orders.push_back({"A" + std::to_string(i), Strings(10, "1.01")});
    Arrive(orders, orders);

    const OrderPair came{Global.DBFPath + "ZUKOrHdr.dbf", Global.DBFPath + "ZUKOrLin.dbf"};
    const Comparison result =
        Compare(came, {Global.DBFPath + "ZUKOrHdr.dap", Global.DBFPath + "ZUKOrLin.dap"});

    EXPECT_EQ(result.Again.size(), 1000U);
    EXPECT_TRUE(result.Changed.empty());
    EXPECT_EQ(result.Arrived, (OrderTally{1000, 10000, 101000000}));
}

} // namespace
