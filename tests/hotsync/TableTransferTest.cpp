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

    /// Codes "00000" and so on.
    Rows GivenTableOf(std::size_t rows) {
        Rows codes;
        for (std::size_t k = 0; k < rows; ++k) {
            std::string code = std::to_string(k);
            codes.push_back(code.insert(0, 5 - code.size(), '0'));
        }
        TableMaker maker({{"PAY_CODE", 'C', 5, 0}});
        for (const std::string& code : codes) maker.Row({code});
        WriteWholeFile(Table(), maker.Bytes());
        return codes;
    }

    /// Three rows in a record.
    void GivenPackedOnHandheld(const Rows& records) {
        HandheldLayout layout = Payments;
        layout.RowsInRecord = 3;
        Database database;
        static_cast<DatabaseHeader&>(database) = HandheldHeader("ZUKPAY.DBF");
        database.AppInfo = PackLayout(layout);
        for (const std::string& record : records)
            database.Records.push_back(
                {0, 0, static_cast<std::uint32_t>(database.Records.size() + 1), record});
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

TEST_F(TableTransferTest, ATableOfAsManyRowsAsADatabaseHasRecordsIsSentARowARecord) {
    const Rows rows = GivenTableOf(65535);

    During([&](TableTransfer& transfer, LoopHandheld&) {
        EXPECT_EQ(transfer.Download(Table()).Records, 65535);
    });

    EXPECT_EQ(OnHandheld(), rows);
    EXPECT_EQ(ReadLayout(Handheld(HandheldFolder()).Store.Load(Name).AppInfo).RowsInRecord, 1);
}

TEST_F(TableTransferTest, ATableOfMoreRowsIsSentPackedAndComesBackAsItWas) {
    for (const std::size_t count : {std::size_t{65536}, std::size_t{100000}}) {
        const Rows rows = GivenTableOf(count);

        During([&](TableTransfer& transfer, LoopHandheld& handheld) {
            EXPECT_EQ(transfer.Download(Table()).Records, static_cast<std::int32_t>(count));
            EXPECT_LT(handheld.Packets, 400) << "819 rows go over at once";
        });
        const Rows records = OnHandheld();
        EXPECT_EQ(records.size(), (count + 818) / 819);
        EXPECT_EQ(records.front().substr(0, 10), "0000000001");
        EXPECT_EQ(records.back().substr(records.back().size() - 5), rows.back());

        GivenTableOf(1);
        During([&](TableTransfer& transfer, LoopHandheld&) {
            EXPECT_EQ(transfer.Upload(Table()).Records, static_cast<std::int32_t>(count));
        });
        EXPECT_EQ(OnDisk(), rows);
    }
}

TEST_F(TableTransferTest, RowsThatAreMarkedAsDeletedLeaveNoHoleInAPackedTable) {
    TableMaker maker({{"PAY_CODE", 'C', 1, 0}});
    for (int k = 0; k < 65536; ++k) maker.Row({k % 2 == 0 ? "A" : "B"}, k % 2 == 0 ? ' ' : '*');
    WriteWholeFile(Table(), maker.Bytes());

    During([&](TableTransfer& transfer, LoopHandheld&) {
        const TableTransfer::Result result = transfer.Download(Table());
        EXPECT_EQ(result.Records, 32768);
        EXPECT_EQ(result.LeftBehind, 32768);
    });

    EXPECT_EQ(OnHandheld(), Rows(8, std::string(4096, 'A')));
}

TEST_F(TableTransferTest, ATableWhoseRowsNoDatabaseHoldsIsRefusedAndTheOldOneStays) {
    GivenOnHandheld({{0, 0, 1, "CASH"}});
    std::vector<TableMaker::Column> columns;
    for (int k = 0; k < 128; ++k) columns.push_back({"F" + std::to_string(k), 'C', 255, 0});
    columns.push_back({"LAST", 'C', 124, 0});
    WriteWholeFile(Table(), TableMaker(columns).ClaimCount(65536).Bytes());

    During([&](TableTransfer& transfer, LoopHandheld&) {
        EXPECT_NE(FailureOf([&] { transfer.Download(Table()); }), "");
    });

    EXPECT_EQ(OnHandheld(), Rows{"CASH"});
}

TEST_F(TableTransferTest, APackedRecordThatIsNoWholeNumberOfRowsFailsTheUploadAndLeavesTheTable) {
    const struct {
        Rows Records;
        const char* Words;
    } wrong[] = {
        {{"CASHCARDDEBT", "CASHCA"}, "record of a table: 6 bytes are not 1 to 3 rows of 4"},
        {{"CASHCARDDEBT", ""}, "record of a table: 0 bytes are not 1 to 3 rows of 4"},
        {{"CASHCARDDEBTBILL"}, "record of a table: 16 bytes are not 1 to 3 rows of 4"},
        {{"CASHCARD", "DEBT"}, "record of a table: it comes behind one that is not full"},
    };
    GivenTable({"OLD"});
    for (const auto& [records, words] : wrong) {
        GivenPackedOnHandheld(records);

        During([&](TableTransfer& transfer, LoopHandheld&) {
            EXPECT_EQ(FailureOf([&] { transfer.Upload(Table()); }), words);
        });

        EXPECT_EQ(OnDisk(), Rows{"OLD "});
    }
}

TEST_F(TableTransferTest, APackedTableIsFetchedRowByRow) {
    GivenPackedOnHandheld({"CASHCARDDEBT", "BILL"});

    During([&](TableTransfer& transfer, LoopHandheld&) { EXPECT_EQ(transfer.Upload(Table()).Records, 4); });

    EXPECT_EQ(OnDisk(), (Rows{"CASH", "CARD", "DEBT", "BILL"}));
}

TEST_F(TableTransferTest, APackedTableOfMoreBytesThanAllowedIsRefusedBeforeItIsFetched) {
    GivenTable({"OLD"});
    GivenPackedOnHandheld({"CASHCARDDEBT", "CASHCARDDEBT", "BILL"}); // 28 bytes

    LoopHandheld handheld(HandheldFolder());
    HandheldLine line(handheld, {});
    line.Handshake(0);
    TableTransfer::Limits limits;
    limits.LargestTable = 27;
    TableTransfer small(line, limits, [](std::int32_t, std::int32_t) {});
    EXPECT_EQ(FailureOf([&] { small.Upload(Table()); }), "TZUK20000_ZUKPAY: 7 records are more than 0 MB");
    limits.LargestTable = 28;
    EXPECT_EQ(TableTransfer(line, limits, [](std::int32_t, std::int32_t) {}).Upload(Table()).Records, 7);
}

} // namespace
