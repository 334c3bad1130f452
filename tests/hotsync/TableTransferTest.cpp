#include "hotsync/TableTransfer.h"

#include "core/Paths.h"
#include "core/SafeFile.h"
#include "hotsync/LoopHandheld.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/TableMaker.h"

namespace {

using Rows = std::vector<std::string>;

const HandheldLayout Payments{{{"PAY_CODE", 'C', 4, 0}}};

/// Transfers over a line in memory, without the session around them.
class TableTransferTest : public EngineTest {
protected:
    TableTransferTest() { Handheld::Make(HandheldFolder(), {}); }

    std::string HandheldFolder() const { return Folder() + "handheld/"; }
    std::string Table() const { return Folder() + "ZUKPAY.DBF"; }

    void GivenTable(const Rows& codes) {
        TableMaker maker({{"PAY_CODE", 'C', 4, 0}});
        for (const std::string& code : codes) maker.Row({code});
        WriteWholeFile(Table(), maker.Bytes());
    }

    void GivenOnHandheld(const std::vector<DatabaseRecord>& records) {
        Database database;
        static_cast<DatabaseHeader&>(database) = HandheldHeader("ZUKPAY.DBF");
        database.AppInfo = PackLayout(Payments);
        database.Records = records;
        Handheld(HandheldFolder()).Store.Save(database);
    }

    Rows OnHandheld() const {
        Rows rows;
        for (const DatabaseRecord& record : Handheld(HandheldFolder()).Store.Load(Name).Records)
            rows.push_back(record.Data);
        return rows;
    }

    Rows OnDisk() const {
        Rows rows;
        TableScan scan(Table());
        while (scan.Next()) rows.emplace_back(scan.Fields());
        return rows;
    }

    /// Lets a deed have the line of a HotSync.
    template <class Deed>
    void During(Deed deed) {
        LoopHandheld handheld(HandheldFolder());
        HandheldLine line(handheld, {});
        line.Handshake(0);
        line.EndGreeting();
        TableTransfer transfer(
            line, {}, [](std::int32_t, std::int32_t) {}, [] { return true; });
        deed(transfer, handheld);
    }

    static constexpr const char* Name = "TZUK20000_ZUKPAY";
};

/// The words of the failure that one transfer ends in; one that goes well fails the test.
template <class Deed>
std::string FailureOf(Deed deed) {
    try {
        deed();
    } catch (const TransferFailure& failure) {
        return failure.what();
    }
    ADD_FAILURE() << "nothing failed";
    return {};
}

TEST_F(TableTransferTest, RecordsThatTheHandheldHasMarkedAsDeletedAreNotFetched) {
    // Handhelds keep the mark of a deleted record until the next HotSync, with its bytes or without.
    GivenOnHandheld({{0, 0, 1, "CASH"},
                     {DeletedRecord, 0, 2, ""},
                     {DeletedRecord, 0, 3, "GONE"},
                     {DirtyRecord, 0, 4, "CARD"}});

    During([&](TableTransfer& transfer, LoopHandheld&) {
        const TableTransfer::Result result = transfer.Upload(Table());
        EXPECT_EQ(result.Records, 2);
        EXPECT_EQ(result.LeftBehind, 2);
    });

    EXPECT_EQ(OnDisk(), (Rows{"CASH", "CARD"}));
}

TEST_F(TableTransferTest, ARecordThatIsCutOffFailsTheUploadAndLeavesTheTable) {
    GivenTable({"OLD"});
    GivenOnHandheld({{0, 0, 1, "CASH"}, {0, 0, 2, "CA"}});

    During([&](TableTransfer& transfer, LoopHandheld&) {
        EXPECT_EQ(FailureOf([&] { transfer.Upload(Table()); }),
                  "record of a table: cut off: 4 bytes wanted, 2 there");
    });

    EXPECT_EQ(OnDisk(), Rows{"OLD "});
}

TEST_F(TableTransferTest, ANewTableThatCannotBeOpenedForItsNameLeavesTheOldOne) {
    GivenOnHandheld({{0, 0, 1, "CASH"}});
    GivenTable({"NEW"});

    During([&](TableTransfer& transfer, LoopHandheld& handheld) {
        int requests = 0;
        handheld.Heard = [&](const DlpRequest& request) {
            if (request.Function == DlpFunction::OpenDB) handheld.LieAt = requests;
            ++requests;
        };
        handheld.Lie = PackResponse(DlpResponse(DlpFunction::OpenDB, DlpError::CannotOpen));
        EXPECT_EQ(FailureOf([&] { transfer.Download(Table()); }), "open TZUK20000_ZUKPAY~: cannot be opened");
    });
    EXPECT_EQ(OnHandheld(), Rows{"CASH"});

    During([](TableTransfer& transfer, LoopHandheld&) {
        EXPECT_EQ(transfer.Recover(), Rows{"TZUK20000_ZUKPAY~"});
    });
    EXPECT_EQ(OnHandheld(), Rows{"CASH"});
    EXPECT_EQ(Handheld(HandheldFolder()).Store.Entries().size(), 1U);
}

TEST_F(TableTransferTest, AReadOnlyProgramFileTakesThePlaceOfTheOneBefore) {
    Database program;
    program.Name = "Fonts";
    program.Records = {{0, 0, 1, "old"}};
    Handheld(HandheldFolder()).Store.Save(program);
    program.Flags = ReadOnlyDatabase;
    program.Records = {{0, 0, 1, "new"}};
    const std::string file = GivenFile("Fonts.pdb", WriteDatabase(program));

    During([&](TableTransfer& transfer, LoopHandheld&) { EXPECT_EQ(transfer.Install(file), 1); });

    const Handheld handheld(HandheldFolder());
    EXPECT_EQ(handheld.Store.Load("Fonts").Records[0].Data, "new");
    EXPECT_EQ(handheld.Store.Entries().size(), 1U);
}

TEST_F(TableTransferTest, AProgramFileOfTheInstallersOwnNameIsRefused) {
    Database program;
    program.Name = "ZUK_install~";
    const std::string file = GivenFile("odd.pdb", WriteDatabase(program));

    During([&](TableTransfer& transfer, LoopHandheld&) {
        EXPECT_EQ(FailureOf([&] { transfer.Install(file); }),
                  "the name ZUK_install~ is needed while something is installed");
    });

    EXPECT_TRUE(Handheld(HandheldFolder()).Store.Entries().empty());
}

} // namespace
