#include "store/TableReader.h"

#include "store/DBFEdit.h"
#include "store/TableRewrite.h"
#include "support/CountingDisk.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"
#include "support/TableMaker.h"

#include <filesystem>
#include <random>

namespace {

class TableReaderTest : public EngineTest {
protected:
    static TableMaker Items() { return TableMaker({{"I_CODE", 'C', 6}, {"I_NAME", 'C', 10}}); }

    std::string GivenItems(const std::vector<std::string>& codes, const std::string& name = "ZUKITEM.DBF") {
        TableMaker maker = Items();
        for (const std::string& code : codes) maker.Row({code, "Name of " + code});
        return GivenFile(name, maker.Bytes());
    }

    /// Puts another table in the place of one, as the program's own routines do.
    void ReplacedBy(const std::string& path, const std::vector<std::string>& codes) {
        std::filesystem::rename(GivenItems(codes, "NEW.DBF"), path);
    }
};

TEST_F(TableReaderTest, ReadsAnyRecordAsDBFEditDoes) {
    TableMaker maker({{"KEY", 'C', 9}, {"REST", 'C', 200}});
    for (int k = 1; k <= 4000; ++k) {
        maker.Row({"K" + std::to_string(k), std::string(static_cast<std::size_t>(k % 200), 'x')},
                  k % 7 ? ' ' : '*');
    }
    const std::string path = GivenFile("BIG.DBF", maker.Bytes());
    DBFEdit table;
    table.FileOpen(path);
    std::mt19937 random(20261115);

    TableReader reader(path);

    EXPECT_EQ(reader.RecordCount(), 4000);
    for (int k = 0; k < 20000; ++k) {
        const auto record = static_cast<std::int32_t>(random() % 4000 + 1);
        table.Go(record);
        ASSERT_EQ(reader.Layout().Get(1, reader.Record(record)), table.GetData(1));
        ASSERT_EQ(reader.Layout().Get(2, reader.Record(record)), table.GetData(2));
    }
}

TEST_F(TableReaderTest, RecordsOutsideTheTableAreBlank) {
    TableReader reader(GivenItems({"A1"}));

    for (const std::int32_t record : {-1, 0, 2, 0x7FFFFFFF}) {
        EXPECT_EQ(reader.Record(record), std::string(16, ' '));
        EXPECT_EQ(reader.Trimmed(record, 1), "");
    }
    EXPECT_EQ(FailureOf([&] { reader.Trimmed(1, 3); }).Number, 9);
}

TEST_F(TableReaderTest, HoldsNoFileBetweenReads) {
    const std::string path = GivenItems({"A1"});
    TableReader reader(path);
    EXPECT_EQ(reader.Trimmed(1, 1), "A1");

    EXPECT_EQ(Global.Files.Count(), 0);
    std::filesystem::rename(path, Folder() + "ELSEWHERE.DBF");
    EXPECT_TRUE(reader.CheckChanged());
}

TEST_F(TableReaderTest, LeavesTheTraceLinesOfATable) {
    const std::string path = GivenItems({"A1"});
    { TableReader reader(path); }

    EXPECT_EQ(Global.Events.Entry(0), "DBFEdit:FileClose");
    EXPECT_EQ(Global.Events.Entry(1), "DBFEdit:FileOpen " + path);
}

TEST_F(TableReaderTest, AMillionRecordsOpenByTheirHeaderAndAreReadABlockAtATime) {
    std::string bytes = Items().ClaimCount(1'000'000).End("").Bytes();
    std::string record = Items().Row({"A1", "Axe"}).End("").Bytes().substr(bytes.size());
    const std::size_t header = bytes.size();
    bytes.reserve(header + 1'000'000 * record.size());
    for (int k = 0; k < 1'000'000; ++k) bytes += record;
    bytes.replace(header + 777'776 * record.size() + 1, 4, "Here");
    const std::string path = GivenFile("MILLION.DBF", bytes);
    CountingDisk disk;
    Global.TheDisk = &disk;

    TableReader reader(path);
    EXPECT_EQ(reader.RecordCount(), 1'000'000);
    EXPECT_LT(disk.BytesRead, 10'000U);

    EXPECT_EQ(reader.Trimmed(777'777, 1), "Here");
    EXPECT_LT(disk.BytesRead, 50'000U);

    // A screen's rows, forth and back again.
    const std::uint64_t before = disk.BytesRead;
    for (int k = 0; k < 200; ++k) reader.Trimmed(500'000 + k % 100, 1);
    EXPECT_LT(disk.BytesRead - before, 70'000U);

    // From end to end by screens: each block once.
    disk.BytesRead = 0;
    for (std::int32_t k = 1; k <= 1'000'000; k += 40) reader.Trimmed(k, 1);
    EXPECT_LE(disk.BytesRead, bytes.size());
}

TEST_F(TableReaderTest, RecordsThatLieApartStayInTheCache) {
    TableMaker maker({{"KEY", 'C', 250}});
    for (int k = 1; k <= 20'000; ++k) maker.Row({std::to_string(k)});
    const std::string path = GivenFile("BIG.DBF", maker.Bytes());
    CountingDisk disk;
    Global.TheDisk = &disk;
    TableReader reader(path);
    const auto readFifty = [&] {
        for (std::int32_t k = 1; k <= 50; ++k) EXPECT_EQ(reader.Trimmed(k * 400, 1), std::to_string(k * 400));
    };
    readFifty();
    const std::uint64_t once = disk.BytesRead;

    readFifty();

    EXPECT_EQ(disk.BytesRead, once);
}

TEST_F(TableReaderTest, ATableInItsPlaceIsFoundOutAtTheNextReadAndNothingOfItIsShown) {
    const std::string path = GivenItems({"A1", "A2"});
    TableReader reader(path);
    ReplacedBy(path, {"B1", "B2"});

    EXPECT_FALSE(reader.HasChanged());
    EXPECT_EQ(reader.Trimmed(1, 1), "");
    EXPECT_TRUE(reader.HasChanged());

    reader.Reopen();
    EXPECT_FALSE(reader.HasChanged());
    EXPECT_EQ(reader.Trimmed(2, 1), "B2");
}

TEST_F(TableReaderTest, WhatWasReadBeforeTheChangeIsBlankOnceItIsFoundOut) {
    const std::string path = GivenItems({"A1"});
    TableReader reader(path);
    EXPECT_EQ(reader.Trimmed(1, 1), "A1");
    ReplacedBy(path, {"B1", "B2", "B3"});

    EXPECT_TRUE(reader.CheckChanged());

    EXPECT_EQ(reader.Trimmed(1, 1), "");
    EXPECT_EQ(reader.RecordCount(), 1);
}

TEST_F(TableReaderTest, ATableThatShrinksOrGrowsHasChanged) {
    const std::string path = GivenItems({"A1", "A2", "A3"});
    TableReader reader(path);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 20);
    EXPECT_TRUE(reader.CheckChanged());
    EXPECT_EQ(FailureOf([&] { reader.Reopen(); }).Number, 321);
    EXPECT_EQ(reader.Trimmed(1, 1), "");

    GivenItems({"A1", "A2"});
    reader.Reopen();
    DBFEdit table;
    table.FileOpen(path);
    table.Go(DBFEdit::Append);

    EXPECT_TRUE(reader.CheckChanged());
}

TEST_F(TableReaderTest, ATableThatIsGoneHasChangedAndCanComeBack) {
    const std::string path = GivenItems({"A1"});
    TableReader reader(path);
    std::filesystem::remove(path);

    EXPECT_EQ(reader.Trimmed(1, 1), "");
    EXPECT_TRUE(reader.HasChanged());
    EXPECT_EQ(FailureOf([&] { reader.Reopen(); }).Number, 53);
    EXPECT_TRUE(reader.HasChanged());

    GivenItems({"C1"});
    reader.Reopen();
    EXPECT_EQ(reader.Trimmed(1, 1), "C1");
}

TEST_F(TableReaderTest, TablesThatCannotBeTrueAreRefused) {
    const std::string beyond = GivenFile("A.DBF", Items().Row({"A1"}).ClaimCount(0x7FFFFFFF).Bytes());
    const std::string cut = GivenFile("B.DBF", Items().Row({"A1"}).Bytes().substr(0, 40));
    const std::string none = GivenFile("C.DBF", "");

    for (const std::string& path : {beyond, cut, none}) {
        EXPECT_EQ(FailureOf([&] { TableReader reader(path); }).Number, 321) << path;
    }
    EXPECT_EQ(FailureOf([&] { TableReader reader(Folder() + "NONE.DBF"); }).Number, 53);
}

TEST_F(TableReaderTest, ReadsATableOf255Fields) {
    std::vector<TableMaker::Column> columns;
    std::vector<std::string> values;
    for (int k = 1; k <= 255; ++k) {
        columns.push_back({"F" + std::to_string(k), 'C', 100});
        values.push_back("V" + std::to_string(k));
    }
    TableReader reader(GivenFile("WIDE.DBF", TableMaker(columns).Row(values).Row(values).Bytes()));

    EXPECT_EQ(reader.Trimmed(2, 255), "V255");
    EXPECT_EQ(reader.Trimmed(1, 1), "V1");
}

TEST_F(TableReaderTest, RubbishIsReadOrRefused) {
    TableMaker maker = Items();
    for (int k = 0; k < 6; ++k) maker.Row({"C" + std::to_string(k), "x"}, k % 2 == 0 ? ' ' : '*');
    for (const std::string& content : Rubbish(maker.Bytes())) {
        const std::string path = GivenFile("T.DBF", content);
        OnlyRunTimeFailures([&] {
            TableReader reader(path);
            for (const std::int32_t k : {0, 1, 2, reader.RecordCount(), reader.RecordCount() + 1}) {
                for (int field = 0; field <= reader.Layout().FieldCount(); ++field) reader.Trimmed(k, field);
            }
        });
    }
}

} // namespace
