#include "views/MasterTable.h"

#include "core/Progress.h"
#include "quality/TableChecks.h"
#include "store/SortTables.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Tables.h"

#include <filesystem>
#include <stdexcept>

namespace {

using Values = std::vector<std::string>;
using Record = std::vector<std::pair<std::string, std::string>>;

constexpr int C_SEARCH = 1, C_CODE = 2, C_NAME = 4;
constexpr int I_SEARCH = 1, I_ITEMCODE = 2, I_BARCODE = 3, I_PRICE = 6;
constexpr int ST_CODE = 1, ST_RATE = 4;

constexpr RecordRules QualityRules{FieldsWithoutRepeats, FirstObjection};

/// A disk from which so many files can be opened, and no more.
class DiskThatTires final : public PassingDisk {
public:
    explicit DiskThatTires(int opens) : left_(opens) {}

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        if (left_ == 0) throw RunTimeFailure(57, path);
        --left_;
        return PassingDisk::Open(path, access);
    }

private:
    int left_;
};

class MasterTableTest : public EngineTest {
protected:
    MasterTableTest() { GivenAppDirectory(); }
    ~MasterTableTest() override {
        Global.TheDisk = &NativeDisk();
        Customers.Close();
    }

    void Given(const char* table, const std::vector<Record>& records) {
        std::vector<Values> rows;
        for (const Record& record : records) rows.push_back(RowOf(table, record));
        path_ = GivenTable(Global.DBFPath, table, rows);
    }

    void GivenThree() {
        Given("ZUKCUST", {{{"C_SEARCH", "S3"}, {"C_CODE", "C1"}, {"C_NAME", "Acme"}, {"C_ALTSRCH", "alt"}},
                          {{"C_SEARCH", "S2"}, {"C_CODE", "C2"}, {"C_NAME", "Bolt"}},
                          {{"C_SEARCH", "S1"}, {"C_CODE", "C3"}, {"C_NAME", "Cole"}}});
    }

    Values NamesOnDisk() const {
        const TableContent content = TableAt(path_);
        Values names;
        for (int record = 1; record <= content.Count; ++record)
            names.push_back(content.Trimmed(record)[C_NAME - 1]);
        return names;
    }

    /// What a check does to the table while it stands open.
    void SortBehindItsBack() {
        NoProgress silent;
        SortCustFile(path_, {}, silent);
    }

    /// The warning on a record of a table, with one field typed anew.
    std::string WarningOn(const MasterKind& kind, int record, int place, const std::string& typed) {
        MasterTable table(kind, QualityRules);
        table.Open(record);
        return table.Warning({{place, typed}}).CodePage();
    }

    std::string path_;
    MasterTable Customers{CustomerMaster, QualityRules};
};

TEST_F(MasterTableTest, ListsEveryRecordByItsSearchValueAndName) {
    Given("ZUKCUST", {{{"C_SEARCH", " s1 "}, {"C_NAME", "Acme"}}, {}, {{"C_NAME", "Cole"}}});
    Customers.Open(9);

    EXPECT_EQ(Customers.RecordNumber(), 3);
    EXPECT_EQ(Customers.Lookup(), (Values{"s1 : Acme", " : ", " : Cole"}));
    EXPECT_EQ(Customers.FieldLength(C_CODE), 20);
}

TEST_F(MasterTableTest, APlaceThatIsNoFieldsIsRefused) {
    GivenThree();
    Customers.Open(1);

    EXPECT_EQ(Customers.FieldName(1), std::string("C_SEARCH"));
    EXPECT_THROW(Customers.FieldName(0), std::out_of_range);
    EXPECT_THROW(Customers.Trimmed(1000), std::out_of_range);
    EXPECT_THROW(Customers.Write({{1000, "x"}}), std::out_of_range);
    EXPECT_EQ(NamesOnDisk(), (Values{"Acme", "Bolt", "Cole"}));
}

TEST_F(MasterTableTest, ASaveChangesTheFieldsThatWereGivenAndItsOwnEntry) {
    GivenThree();
    Customers.Open(1);

    EXPECT_TRUE(Customers.Write({{C_SEARCH, "new"}, {C_NAME, " Acme & Co "}}));

    EXPECT_EQ(Customers.Lookup(), (Values{"new : Acme & Co", "S2 : Bolt", "S1 : Cole"}));
    EXPECT_EQ(TableAt(path_).Trimmed(1)[1], "C1");
    EXPECT_EQ(TableAt(path_).Trimmed(1).back(), "alt");
    Customers.Close();
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(MasterTableTest, AfterADeletionTheRecordBeforeItIsCurrentAndAfterTheLastOneNone) {
    GivenThree();
    Customers.Open(2);

    EXPECT_TRUE(Customers.Delete());
    EXPECT_EQ(Customers.RecordNumber(), 1);
    EXPECT_EQ(Customers.Lookup(), (Values{"S3 : Acme", "S1 : Cole"}));
    EXPECT_TRUE(Customers.Delete());
    EXPECT_EQ(Customers.RecordNumber(), 1);
    EXPECT_EQ(Customers.Trimmed(C_NAME), "Cole");
    EXPECT_TRUE(Customers.Delete());
    EXPECT_EQ(Customers.RecordNumber(), 0);
    EXPECT_EQ(TableAt(path_).Count, 0);

    EXPECT_TRUE(Customers.Append());
    EXPECT_EQ(Customers.Lookup(), (Values{" : "}));
    EXPECT_TRUE(Customers.Write({{C_CODE, "C9"}}));
    EXPECT_EQ(TableAt(path_).Trimmed(1)[1], "C9");
}

TEST_F(MasterTableTest, ATableThatWasPutInOrderMeanwhileIsSavedIntoTheSameRecord) {
    GivenThree();
    Customers.Open(1);
    SortBehindItsBack();

    EXPECT_TRUE(Customers.Write({{C_NAME, "Acme & Co"}}));

    EXPECT_EQ(NamesOnDisk(), (Values{"Cole", "Bolt", "Acme & Co"}));
    EXPECT_EQ(Customers.RecordNumber(), 3);
    EXPECT_EQ(Customers.Lookup(), (Values{"S1 : Cole", "S2 : Bolt", "S3 : Acme & Co"}));
}

TEST_F(MasterTableTest, ADeletionBehindASortTakesTheRecordThatWasShown) {
    GivenThree();
    Customers.Open(3);
    SortBehindItsBack();

    EXPECT_TRUE(Customers.Delete());

    EXPECT_EQ(NamesOnDisk(), (Values{"Bolt", "Acme"}));
}

TEST_F(MasterTableTest, ARecordThatIsNoLongerThereIsSavedIntoNoOther) {
    const std::function<bool()> deeds[] = {[this] {
                                               return Customers.Write({{C_NAME, "Acme & Co"}});
                                           },
                                           [this] { return Customers.Append(); },
                                           [this] { return Customers.Delete(); }};
    for (const auto& deed : deeds) {
        GivenThree();
        Customers.Open(3);
        Given("ZUKCUST", {{{"C_CODE", "N1"}, {"C_NAME", "New"}}, {{"C_CODE", "N2"}, {"C_NAME", "Newer"}}});

        EXPECT_FALSE(deed());

        EXPECT_EQ(NamesOnDisk(), (Values{"New", "Newer"}));
        EXPECT_EQ(Customers.RecordNumber(), 2);
        EXPECT_EQ(Customers.Trimmed(C_NAME), "Newer");
        Customers.Close();
    }
}

TEST_F(MasterTableTest, ATableThatWasClearedMeanwhileStaysEmptyWhateverIsDoneNext) {
    const std::function<bool()> deeds[] = {[this] {
                                               return Customers.Write({{C_NAME, "Acme & Co"}});
                                           },
                                           [this] { return Customers.Append(); },
                                           [this] { return Customers.Delete(); }};
    for (const auto& deed : deeds) {
        GivenThree();
        Customers.Open(2);
        Given("ZUKCUST", {});

        EXPECT_FALSE(deed());

        EXPECT_EQ(TableAt(path_).Count, 0);
        EXPECT_EQ(Customers.RecordNumber(), 0);
        EXPECT_TRUE(Customers.Lookup().empty());
        EXPECT_TRUE(Customers.Append()) << "an empty table takes a new record";
        Customers.Close();
    }
}

TEST_F(MasterTableTest, AFailureWhileTheRecordIsLookedForMakesNoOtherOneTheRecordThatIsSaved) {
    Global.AppPath.clear(); // no trace: only the editor meets the fault
    int failures = 0;
    for (int opens = 0; opens < 50; ++opens) {
        GivenThree();
        Customers.Open(2);
        Given("ZUKCUST", {{{"C_CODE", "C0"}, {"C_NAME", "New"}},
                          {{"C_SEARCH", "S3"}, {"C_CODE", "C1"}, {"C_NAME", "Acme"}, {"C_ALTSRCH", "alt"}},
                          {{"C_SEARCH", "S2"}, {"C_CODE", "C2"}, {"C_NAME", "Bolt"}}});
        DiskThatTires disk(opens);
        Global.TheDisk = &disk;
        const int failure = FailureNumber([this] { Customers.Write({{C_NAME, "x"}}); });
        Global.TheDisk = &NativeDisk();

        EXPECT_TRUE(Customers.Write({{C_NAME, "x"}})) << opens;

        EXPECT_EQ(NamesOnDisk(), (Values{"New", "Acme", "x"})) << opens;
        Customers.Close();
        if (failure == 0) break;
        ++failures;
    }
    EXPECT_GE(failures, 5);
    EXPECT_LT(failures, 50);
}

TEST_F(MasterTableTest, OfTwoRecordsThatAreAlikeTheOneInItsPlaceIsMeant) {
    const Record twin{{"C_CODE", "C1"}, {"C_NAME", "Acme"}};
    Given("ZUKCUST", {twin, twin});
    Customers.Open(2);
    Given("ZUKCUST", {twin, twin, {{"C_NAME", "New"}}});

    EXPECT_TRUE(Customers.Renew());
    EXPECT_EQ(Customers.RecordNumber(), 2);
    EXPECT_EQ(Customers.Lookup().size(), 3U);
    EXPECT_FALSE(Customers.Renew());
}

TEST_F(MasterTableTest, ATableThatAnotherProgramHoldsIsNeitherOpenedNorWritten) {
    GivenThree();
    const std::string lock = GivenFile("app/DBFFiles/.~lock.ZUKCust.dbf#", "office");
    const FailureSeen seen = FailureOf([this] { Customers.Open(1); });
    EXPECT_EQ(seen.Number, 70);
    EXPECT_NE(seen.Words.find("ZUKCust.dbf"), std::string::npos) << seen.Words; // as it stands on the disk
    EXPECT_FALSE(Customers.IsOpen());

    std::filesystem::remove(lock);
    Customers.Open(1);
    GivenFile("app/DBFFiles/.~lock.ZUKCust.dbf#", "office");
    EXPECT_EQ(FailureNumber([this] { Customers.Write({{C_NAME, "x"}}); }), 70);
    EXPECT_EQ(FailureNumber([this] { Customers.Append(); }), 70);
    EXPECT_EQ(FailureNumber([this] { Customers.Delete(); }), 70);
    EXPECT_EQ(NamesOnDisk(), (Values{"Acme", "Bolt", "Cole"}));
}

TEST_F(MasterTableTest, ATableThatIsGoneIsAFailureThatNamesItAndLaterStepsGoOnWhenItIsBack) {
    GivenThree();
    Customers.Open(2);
    std::filesystem::rename(path_, path_ + ".away");
    EXPECT_NE(FailureNumber([this] { Customers.Write({{C_NAME, "x"}}); }), 0);

    std::filesystem::rename(path_ + ".away", path_);
    EXPECT_TRUE(Customers.Write({{C_NAME, "x"}}));
    EXPECT_EQ(NamesOnDisk(), (Values{"Acme", "x", "Cole"}));
}

TEST_F(MasterTableTest, AFullDiskInASaveOrADeletionLeavesTheRecordsAsTheyWere) {
    for (const bool deletes : {false, true}) {
        int failures = 0;
        for (int failAt = 1; failAt < 50; ++failAt) {
            GivenThree();
            FaultyDisk disk(failAt);
            Global.TheDisk = &disk;
            Customers.Open(2);
            const int failure = FailureNumber([&] {
                deletes ? Customers.Delete() : Customers.Write({{C_NAME, "x"}});
            });
            Global.TheDisk = &NativeDisk();
            if (failure == 0) break;
            ++failures;
            EXPECT_EQ(NamesOnDisk(), (Values{"Acme", "Bolt", "Cole"}));
            EXPECT_EQ(Customers.RecordNumber(), 2);
            Customers.Close();
        }
        EXPECT_GE(failures, 1);
        Customers.Close();
    }
}

// ---- the warnings ----

TEST_F(MasterTableTest, WarnsOfWhatTheCheckOfCustomersWouldFind) {
    GivenThree();
    const auto typed = [this](int place, const std::string& text) {
        return WarningOn(CustomerMaster, 2, place, text);
    };

    EXPECT_EQ(typed(C_NAME, "anything"), "");
    EXPECT_EQ(typed(C_CODE, "c3"), "Duplicate customer code (C_CODE) in customer table. Records: 3");
    EXPECT_EQ(typed(C_CODE, "c2"), ""); // its own
    EXPECT_EQ(typed(C_CODE, "C-2"), "Customer Code (C_CODE) in customer table contains invalid characters.");
    EXPECT_EQ(typed(C_SEARCH, "AB 12"),
              "Customer search field (C_SEARCH) in customer table contains invalid characters.");
    EXPECT_EQ(typed(C_SEARCH, " "), "Blank customer searchfield (C_SEARCH) in customer table.");
    EXPECT_EQ(typed(C_SEARCH, "S1"), ""); // customers may share one
    EXPECT_EQ(typed(C_CODE, "  "), "");   // no record is saved without it
}

TEST_F(MasterTableTest, WarnsOfWhatTheChecksOfItemsAndBarCodesWouldFindFatalFirst) {
    Given("ZUKITEM", {{{"I_SEARCH", "A"}, {"I_ITEMCODE", "I1"}, {"I_PRICE", "1"}, {"I_BARCODE", "77"}},
                      {{"I_SEARCH", "B"}, {"I_ITEMCODE", "I2"}, {"I_PRICE", "1,250.00"}}});
    const auto typed = [this](int place, const std::string& text) {
        return WarningOn(ItemMaster, 2, place, text);
    };

    EXPECT_EQ(typed(I_BARCODE, ""), "");
    EXPECT_EQ(typed(I_BARCODE, "77"), "Duplicate item bar code (I_BARCODE) in item table. Records: 1");
    EXPECT_EQ(typed(I_ITEMCODE, "i1"), "Duplicate item code (I_ITEMCODE) in item table. Records: 1");
    EXPECT_EQ(typed(I_SEARCH, "a"), "Duplicate item search field (I_SEARCH) in item table. Records: 1");
    EXPECT_EQ(typed(I_PRICE, "12.5A"), "Non-numeric price in item table.");
    EXPECT_EQ(typed(I_PRICE, "-3"), "Non-numeric price in item table.");
    EXPECT_EQ(typed(I_PRICE, "0.00"), "Blank item price field (I_PRICE) in item table.");
    MasterTable items(ItemMaster, QualityRules);
    items.Open(2);
    EXPECT_EQ(items.Warning({{I_SEARCH, "A"}, {I_PRICE, "x"}}).CodePage(),
              "Non-numeric price in item table.");
}

TEST_F(MasterTableTest, WarnsOfARateThatTheTableWouldChangeOrThatHasTooManyDecimals) {
    Given("ZUKSTAX", {{{"ST_CODE", "NY"}, {"ST_RATE", "8.25"}}, {{"ST_CODE", "CA"}, {"ST_RATE", "7"}}});
    const auto typed = [this](int place, const std::string& text) {
        return WarningOn(SalesTaxMaster, 2, place, text);
    };

    EXPECT_EQ(typed(ST_RATE, "8.12345"), "");
    EXPECT_EQ(typed(ST_RATE, ""), "");
    EXPECT_EQ(typed(ST_RATE, "8.123456"), "The rate has more than five decimals.");
    EXPECT_EQ(typed(ST_RATE, "8%"), "The rate is not a number. It is stored as 0.");
    EXPECT_EQ(typed(ST_CODE, "ny"), "Duplicate sales tax code (ST_CODE) in sales tax table. Records: 1");
}

} // namespace
