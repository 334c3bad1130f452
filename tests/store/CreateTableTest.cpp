#include "store/CreateTable.h"

#include "store/DBFEdit.h"
#include "store/TableLock.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/TableMaker.h"

namespace {

class CreateTableTest : public EngineTest {
protected:
    std::string Path() const { return Folder() + "ZUKNEW.DBF"; }

    int FaultOf(const std::vector<FieldDef>& fields) {
        const int number = FailureOf([&] { CreateTable(Path(), fields); }).Number;
        EXPECT_FALSE(Exists(Path()));
        return number;
    }
};

const std::vector<FieldDef> Fields = {
    {"C_CODE", 'C', 6}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}, {"OK", 'L', 1}};

class TableLock : public CreateTableTest {};

} // namespace

TEST_F(CreateTableTest, MakesAnEmptyTableByteForByte) {
    CreateTable(Path(), Fields);

    const std::string expected =
        TableMaker({{"C_CODE", 'C', 6}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}, {"OK", 'L', 1}})
            .Preamble("\x03\x7E\x01\x01", std::string(20, '\0'))
            .Bytes();
    EXPECT_EQ(Bytes(Path()), expected);
}

TEST_F(CreateTableTest, IsReadByTheEngine) {
    CreateTable(Path(), Fields);

    DBFEdit table;
    table.FileOpen(Path());

    EXPECT_EQ(table.NoFields(), 4);
    EXPECT_EQ(table.RecordCount, 0);
    EXPECT_EQ(table.RecordLength, 24);
    EXPECT_EQ(table.GetFieldType(2), "N");
}

TEST_F(CreateTableTest, ReplacesATable) {
    GivenFile("zuknew.dbf", std::string(5000, 'x'));

    CreateTable(Path(), Fields);

    EXPECT_EQ(TableContent(Bytes(Folder() + "zuknew.dbf")).Count, 0);
    EXPECT_FALSE(Exists(Path()));
}

TEST_F(CreateTableTest, RefusesNamesThatOtherProgramsCannotRead) {
    for (const char* name : {"", "ELEVENCHARS", "A B", "1ST", "_X", "\xC4", "A-B"}) {
        EXPECT_EQ(FaultOf({{name, 'C', 5}}), 5) << name;
    }
    EXPECT_EQ(FaultOf({{"SAME", 'C', 5}, {"same", 'C', 5}}), 5);
}

TEST_F(CreateTableTest, RefusesTypesAndLengthsThatDoNotFit) {
    EXPECT_EQ(FaultOf({{"A", 'C', 0}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'C', 5, 1}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'N', 0}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'N', 21}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'N', 8, 7}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'D', 10}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'L', 2}}), 5);
    EXPECT_EQ(FaultOf({{"A", 'X', 5}}), 5);
}

TEST_F(CreateTableTest, RefusesTooManyFieldsAndRecordsBeyondFourThousandBytes) {
    std::vector<FieldDef> many;
    for (int k = 0; k < 256; ++k) many.push_back({"F" + std::to_string(k), 'C', 1});
    std::vector<FieldDef> wide;
    for (int k = 0; k < 16; ++k) wide.push_back({"F" + std::to_string(k), 'C', 250});

    EXPECT_EQ(FaultOf({}), 5);
    EXPECT_EQ(FaultOf(many), 5);
    EXPECT_EQ(FaultOf(wide), 5);

    wide.back().Length = 249;
    CreateTable(Path(), wide);
    EXPECT_EQ(TableContent(Bytes(Path())).RecordLength, 4000);
}

TEST_F(CreateTableTest, FullDiskLeavesTheOldTable) {
    const std::string path = GivenFile("ZUKNEW.DBF", "old");
    FaultyDisk disk(2, 61);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { CreateTable(path, Fields); }).Number, 61);

    EXPECT_EQ(Bytes(path), "old");
    EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u);
}

TEST_F(TableLock, TableThatIsFreeIsNotLocked) {
    CreateTable(Path(), Fields);

    EXPECT_FALSE(TableIsLocked(Path()));
    EXPECT_FALSE(TableIsLocked(Folder() + "zuknew.dbf"));
}

TEST_F(TableLock, WhatThisProgramHasOpenIsNotLocked) {
    CreateTable(Path(), Fields);
    DBFEdit table;
    table.FileOpen(Path());

    EXPECT_FALSE(TableIsLocked(Path()));
}

TEST_F(TableLock, LockFileOfAnOfficeProgramLocks) {
    CreateTable(Path(), Fields);

    GivenFile(".~lock.ZUKNEW.DBF#", ",someone");

    EXPECT_TRUE(TableIsLocked(Path()));
}

TEST_F(TableLock, TableThatCannotBeOpenedIsLocked) {
    EXPECT_TRUE(TableIsLocked(Path()));
    EXPECT_TRUE(TableIsLocked(Folder()));
}
