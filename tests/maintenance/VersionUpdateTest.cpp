#include "maintenance/VersionUpdate.h"

#include "maintenance/Office.h"
#include "store/OfficeTables.h"
#include "store/TableCatalogue.h"
#include "store/TableLayout.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"
#include "support/Tables.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

class VersionUpdateTest : public EngineTest {
protected:
    VersionUpdateTest() {
        GivenAppDirectory();
        GivenTable(Global.DBFPath, "ZUKPAY", {{"N30", "Net 30"}, {"COD", "Cash"}});
        for (const TableEntry& table : AllTables().first(TwinTables))
            GivenTable(Global.InstallPath, table.Name);
    }

    /// The structure of a next release: a wider code, a new field, and no description.
    static TableMaker NextPay() {
        return TableMaker({{"PAY_NEW", 'C', 6}, {"PAY_CODE", 'C', 20}, {"PAY_NUMBER", 'N', 5}});
    }
    std::string GivenNew(const std::string& name, const std::string& bytes) {
        return GivenFile("app/DBFNew/" + name, bytes);
    }
    static void Update() {
        NoProgress silent;
        UpdateTables(silent);
    }
    static TableContent Pay() { return TableAt(Global.DBFPath + "ZUKPAY.dbf"); }
    static bool NothingIsNew() { return fs::is_empty(Global.AppPath + "DBFNew"); }
};

} // namespace

TEST_F(VersionUpdateTest, AnEmptyOrMissingDirectoryMakesSureOfItAndDoesNothingElse) {
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");

    Update();
    Update();

    EXPECT_TRUE(NothingIsNew());
    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), before);
}

TEST_F(VersionUpdateTest, ANewFieldIsBlankAWiderOneHoldsTheOldValueAndADroppedOneIsGone) {
    GivenNew("ZUKPAY.dbf", NextPay().Row({"demo", "demo", "9"}).Bytes());

    Update();

    EXPECT_EQ(Pay().Names, (Strings{"PAY_NEW", "PAY_CODE", "PAY_NUMBER"}));
    ASSERT_EQ(Pay().Count, 2);
    EXPECT_EQ(Pay().Trimmed(1), (Strings{"", "N30", ""}));
    EXPECT_EQ(Pay().Trimmed(2), (Strings{"", "COD", ""}));
    EXPECT_TRUE(NothingIsNew());
    EXPECT_FALSE(Exists(Global.DBFPath + "DBFCOPY.TXT"));
}

TEST_F(VersionUpdateTest, ASecondStartFindsNothingToDo) {
    GivenNew("ZUKPAY.dbf", NextPay().Bytes());
    Update();
    const std::string after = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    const auto written = fs::last_write_time(Global.DBFPath + "ZUKPAY.dbf");

    Update();

    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), after);
    EXPECT_EQ(fs::last_write_time(Global.DBFPath + "ZUKPAY.dbf"), written);
}

TEST_F(VersionUpdateTest, ATableThatIsNotThereYetIsPlacedAsItIs) {
    const std::string bytes = TableMaker({{"X_CODE", 'C', 3}}).Row({"A"}).Row({"B"}, '*').Bytes();
    GivenNew("ZUKBRAND.DBF", bytes);

    Update();

    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKBRAND.DBF"), bytes);
    EXPECT_TRUE(NothingIsNew());
}

TEST_F(VersionUpdateTest, ATableOfTheSameFieldsStaysAsItIsByteByByte) {
    GivenFile("app/DBFFiles/ZUKPAY.dbf",
              EmptyTableOf("ZUKPAY").Row({"N30"}, '*').Row({"COD", "  Cash"}).End("").Bytes());
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    GivenNew("ZUKPAY.dbf", EmptyTableOf("ZUKPAY").Row({"demo"}).Bytes());

    Update();

    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), before);
    EXPECT_TRUE(NothingIsNew());
}

TEST_F(VersionUpdateTest, OtherDecimalsOfAFieldAreAnotherStructure) {
    const auto withDecimals = [](int decimals) {
        return TableMaker({{"PAY_CODE", 'C', 9}, {"PAY_RATE", 'N', 8, decimals}});
    };
    GivenFile("app/DBFFiles/ZUKPAY.dbf", withDecimals(2).Row({"N30", "1.25"}).Bytes());
    GivenNew("ZUKPAY.dbf", withDecimals(3).Bytes());

    Update();

    EXPECT_EQ(TableLayout::ReadBytes(Bytes(Global.DBFPath + "ZUKPAY.dbf"), "ZUKPAY").FieldDecimals(2), 3);
    EXPECT_EQ(Pay().Trimmed(1), (Strings{"N30", "1.25"}));
}

TEST_F(VersionUpdateTest, NamesAreFoundWhateverTheirLetters) {
    fs::rename(Global.DBFPath + "ZUKPAY.dbf", Global.DBFPath + "ZukPay.DBF");
    GivenNew("zukpay.Dbf", NextPay().Bytes());

    Update();

    EXPECT_EQ(TableAt(Global.DBFPath + "ZukPay.DBF").Trimmed(2)[1], "COD");
    EXPECT_FALSE(Exists(Global.DBFPath + "zukpay.Dbf"));
    EXPECT_TRUE(NothingIsNew());
}

TEST_F(VersionUpdateTest, TheTwinsGetTheNewStructureSoThatAClearingDoesNotBringTheOldOneBack) {
    MakeEmptyTwins();
    GivenNew("ZUKPAY.dbf", NextPay().Row({"demo"}).Bytes());

    Update();

    for (const std::string* folder : {&Global.InstallPath, &Global.DBFEmptyPath}) {
        const TableContent twin = TableAt(*folder + "ZUKPAY.dbf");
        EXPECT_EQ(twin.Names, Pay().Names) << *folder;
        EXPECT_EQ(twin.Count, 0) << *folder;
    }
}

TEST_F(VersionUpdateTest, WhatIsNoTableStopsItByItsNameBeforeAnyTableIsTouched) {
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    GivenNew("ZUKPAY.dbf", NextPay().Bytes());
    for (const std::string& bytes :
         {std::string("no table"), std::string(), NextPay().Row({"a"}).ClaimCount(1'000'000).Bytes(),
          NextPay().ClaimRecordLength(3).Bytes()}) {
        GivenNew("ZUKSTAX.dbf", bytes);

        const FailureSeen seen = FailureOf(Update);

        EXPECT_EQ(seen.Number, 321);
        EXPECT_NE(seen.Words.find("DBFNew/ZUKSTAX.dbf"), std::string::npos) << seen.Words;
        EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), before);
        EXPECT_TRUE(Exists(Global.AppPath + "DBFNew/ZUKPAY.dbf"));
    }
}

TEST_F(VersionUpdateTest, AStructureWithoutOneFieldOfTheTableIsRefusedSinceNoRecordWouldKeepAValue) {
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    GivenNew("ZUKPAY.dbf", TableMaker({{"OTHER", 'C', 9}}).Bytes());

    EXPECT_EQ(FailureOf(Update).Number, 321);
    EXPECT_EQ(Bytes(Global.DBFPath + "ZUKPAY.dbf"), before);

    GivenTable(Global.DBFPath, "ZUKPAY");
    Update();
    EXPECT_EQ(Pay().Names, Strings{"OTHER"});
}

TEST_F(VersionUpdateTest, ALockedTableOnEitherSideStopsItByItsName) {
    GivenNew("ZUKPAY.dbf", NextPay().Bytes());
    for (const char* folder : {"app/DBFNew/", "app/DBFFiles/"}) {
        const std::string lock = GivenFile(std::string(folder) + ".~lock.ZUKPAY.dbf#", "somebody");

        const FailureSeen seen = FailureOf(Update);

        EXPECT_EQ(seen.Number, 70);
        EXPECT_NE(seen.Words.find("ZUKPAY.dbf"), std::string::npos) << seen.Words;
        fs::remove(lock);
    }
    Update();
    EXPECT_EQ(Pay().Count, 2);
}

TEST_F(VersionUpdateTest, RubbishInTheDirectoryFailsAsFailuresDoOrGoesIn) {
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    for (const std::string& bytes : Rubbish(NextPay().Row({"a", "b", "1"}).Bytes())) {
        GivenFile("app/DBFFiles/ZUKPAY.dbf", before);
        GivenNew("ZUKPAY.dbf", bytes);
        OnlyRunTimeFailures(Update);
        ASSERT_EQ(Pay().Count, 2);
    }
}

TEST_F(VersionUpdateTest, WhereverTheDiskFailsEachTableIsOldOrNewAndTheNextUpdateCompletesIt) {
    const std::string before = Bytes(Global.DBFPath + "ZUKPAY.dbf");
    const std::string brand = TableMaker({{"X_CODE", 'C', 3}}).Row({"A"}).Bytes();
    bool failed = true;
    int failAt = 1;
    for (; failed; ++failAt) {
        GivenFile("app/DBFFiles/ZUKPAY.dbf", before);
        fs::remove(Global.DBFPath + "ZUKBRAND.dbf");
        GivenTable(Global.InstallPath, "ZUKPAY");
        GivenNew("ZUKPAY.dbf", NextPay().Bytes());
        GivenNew("ZUKBRAND.dbf", brand);
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        failed = FailureNumber(Update) != 0;
        Global.TheDisk = &NativeDisk();
        ASSERT_TRUE(Bytes(Global.DBFPath + "ZUKPAY.dbf") == before || Pay().Trimmed(2)[1] == "COD") << failAt;
        ASSERT_EQ(Global.Files.Count(), 0) << failAt;

        Update();
        ASSERT_EQ(Pay().Trimmed(2), (Strings{"", "COD", ""})) << failAt;
        ASSERT_EQ(Bytes(Global.DBFPath + "ZUKBRAND.dbf"), brand) << failAt;
        ASSERT_EQ(TableAt(Global.InstallPath + "ZUKPAY.dbf").Names, Pay().Names) << failAt;
        ASSERT_TRUE(NothingIsNew()) << failAt;
    }
    EXPECT_GT(failAt, 10);
}

TEST_F(VersionUpdateTest, AStartCarriesTablesAndBitmapsAndItsSecondOneFindsNothing) {
    LayOutOffice(TRAMBLE_INSTALLED, Folder() + "office/");
    Global.AppPath = Folder() + "office/";
    GivenTable(Global.AppPath + "DBFFiles/", "ZUKPAY", {{"N30", "Net 30"}});
    GivenFile("office/DBFNew/ZUKPAY.DBF", NextPay().Bytes());
    GivenFile("office/DBFNew/A1.bmp", "BM");
    int updates = 0;
    const auto update = [&updates] {
        updates += NewTables().empty() ? 0 : 1;
        Update();
    };

    for (int start = 0; start < 2; ++start) {
        ASSERT_TRUE(PrepareOffice([] {}, update));
        EXPECT_EQ(Pay().Trimmed(1), (Strings{"", "N30", ""}));
        EXPECT_EQ(TableAt(Global.DBFEmptyPath + "ZUKPAY.dbf").Names, Pay().Names);
        EXPECT_EQ(Bytes(Global.ImagesPath + "A1.bmp"), "BM");
        EXPECT_TRUE(NothingIsNew());
    }
    EXPECT_EQ(updates, 1);
}
