#include "views/Signatures.h"

#include "core/Directories.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Tables.h"

#include <random>

namespace {

using Codes = std::vector<std::string>;

class SignaturesTest : public EngineTest {
protected:
    SignaturesTest() { GivenAppDirectory(); }

    void GivenOrders(const Codes& codes) {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& code : codes)
            rows.push_back(RowOf("ZUKORHDR", {{"H_ORDCODE", code}, {"H_BILLNAME", "Name of " + code}}));
        headers_ = GivenTable(Global.DBFPath, "ZUKORHDR", rows);
    }

    void GivenImages(const Codes& names) {
        for (const std::string& name : names) WriteWholeFile(Global.ImagesPath + name, "BM");
    }

    static Codes Signed() {
        Codes codes;
        const TableContent table = TableAt(SignTablePath());
        for (int record = 1; record <= table.Count; ++record) codes.push_back(table.Trimmed(record).at(0));
        return codes;
    }

    /// A copy of the headers, from which each one without a bitmap is deleted.
    static std::string StepByStep(const std::string& headers) {
        const std::string path = Global.DBFPath + "STEPS.DBF";
        CopyOver(headers, path);
        DBFEdit table;
        table.FileOpen(path);
        for (std::int32_t record = 1; record <= table.RecordCount; ++record) {
            table.Go(record);
            const std::string code = table.GetData("H_ORDCODE");
            if (SignatureOf(Trimmed(code)).empty()) table.DeleteRecord();
        }
        table.ReIndex(path);
        return path;
    }
    static std::string Trimmed(const std::string& text) {
        const auto end = text.find_last_not_of(' ');
        return end == std::string::npos ? std::string() : text.substr(text.find_first_not_of(' '), end + 1);
    }

    std::string headers_;
};

TEST_F(SignaturesTest, TheWorkingCopyHoldsTheOrdersThatHaveABitmap) {
    GivenOrders({"A1", "A2", "a3", "A4"});
    GivenImages({"A1.bmp", "A3.BMP", "A4", "A9.bmp"});
    const std::string before = Bytes(headers_);

    MakeSignTable();

    EXPECT_EQ(Signed(), (Codes{"A1", "a3"}));
    EXPECT_EQ(TableAt(SignTablePath()).Trimmed(2), TableAt(headers_).Trimmed(3));
    EXPECT_EQ(Bytes(headers_), before) << "deleted from the copy only";

    RemoveSignTable();
    RemoveSignTable();
    EXPECT_FALSE(Exists(SignTablePath()));
}

TEST_F(SignaturesTest, NoSignedOrderLeavesAnEmptyCopy) {
    GivenOrders({"A1"});
    MakeSignTable();
    EXPECT_EQ(TableAt(SignTablePath()).Count, 0);

    GivenOrders({});
    GivenImages({"A1.bmp"});
    MakeSignTable();
    EXPECT_EQ(TableAt(SignTablePath()).Count, 0);
}

TEST_F(SignaturesTest, AreWhatDeletingRecordByRecordLeaves) {
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        TableMaker maker = EmptyTableOf("ZUKORHDR");
        const auto records = static_cast<int>(random() % 30);
        for (int k = 0; k < records; ++k)
            maker.Row({"N" + std::to_string(random() % 40), "C"}, random() % 5 == 0 ? '*' : ' ');
        WriteWholeFile(Global.DBFPath + "ZUKORHDR.DBF", maker.Bytes());
        for (int k = 0; k < 3; ++k) GivenImages({"n" + std::to_string(random() % 40) + ".bmp"});

        MakeSignTable();

        const std::string steps = Bytes(StepByStep(Global.DBFPath + "ZUKORHDR.DBF"));
        const std::string ours = Bytes(SignTablePath());
        ASSERT_GE(steps.size() + 1, ours.size());
        EXPECT_EQ(ours.substr(0, ours.size() - 1), steps.substr(0, ours.size() - 1)) << round;
    }
}

TEST_F(SignaturesTest, AFailureLeavesNoWorkingCopy) {
    GivenOrders({"A1"});
    GivenImages({"A1.bmp"});
    FaultyDisk full(2);
    Global.TheDisk = &full;

    EXPECT_EQ(FailureOf([] { MakeSignTable(); }).Number, 61);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Global.TheDisk->FilesIn(Global.DBFPath), Codes{std::string(FileNameOf(headers_))});
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SignaturesTest, WithoutOrderHeadersTheFailureNamesThem) {
    const FailureSeen failure = FailureOf([] { MakeSignTable(); });

    EXPECT_EQ(failure.Number, 53);
    EXPECT_NE(failure.Words.find("ZUKORHDR"), std::string::npos);
    EXPECT_FALSE(Exists(SignTablePath()));
}

TEST_F(SignaturesTest, ACodeThatIsNoPlainFileNameHasNoBitmap) {
    GivenImages({"A1.bmp", ".bmp", "Caf\xC3\xA9.bmp"});
    WriteWholeFile(Global.DBFPath + "out.bmp", "BM");
    const Codes codes{"../out", "..\\out", Global.DBFPath + "out", "", ".",
                      "..",     "A1\n",    std::string("A1\0x", 4)};
    for (const std::string& code : codes) EXPECT_EQ(SignatureOf(code), "") << code;
    EXPECT_NE(SignatureOf("a1"), "");
    EXPECT_NE(SignatureOf("Caf\xE9"), "");
    GivenOrders({"../out", "Caf\xE9", ""});

    MakeSignTable();

    EXPECT_EQ(Signed(), Codes{"Caf\xE9"});
}

TEST_F(SignaturesTest, AStrayOfAKilledRunGoesAtTheStart) {
    GivenOrders({"A1"});
    WriteWholeFile(Global.DBFPath + "Sign.dbf", "left behind");

    RemoveStrays();

    EXPECT_FALSE(Exists(Global.DBFPath + "Sign.dbf"));
    EXPECT_TRUE(Exists(headers_));
}

} // namespace
