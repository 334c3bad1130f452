#include "quality/SearchField.h"

#include "quality/QualityTest.h"
#include "store/DBFEdit.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Lots.h"
#include "support/Tables.h"

#include <filesystem>

namespace {

using Values = std::vector<std::string>;

class SearchFieldTest : public QualityTest {
protected:
    ~SearchFieldTest() override { Global.TheDisk = &NativeDisk(); }

    static std::string Path(const SearchField& field) { return Global.DBFPath + field.Table; }

    /// The search values on the disk.
    static Values SearchValues(const SearchField& field) {
        const TableContent table =
            TableAt(Global.DBFPath + (&field == &CustomerSearch ? "ZUKCust" : "ZUKItem") + ".dbf");
        Values values;
        for (int record = 1; record <= table.Count; ++record) values.push_back(table.Trimmed(record)[0]);
        return values;
    }

    void GivenTwoCustomers() {
        Given({.Tables = {
                   {"ZUKCUST",
                    {{{"C_SEARCH", "OLD1"}, {"C_CODE", "C1"}, {"C_NAME", "Acme Ltd"}, {"C_PHONE", "555"}},
                     {{"C_SEARCH", "OLD2"}, {"C_CODE", "C2"}, {"C_NAME", "Bolt"}, {"C_ZIP", "90210"}}}}}});
    }

    void GivenSetup(const std::vector<Values>& rows) { GivenTable(Global.DBFPath, "ZUKSETUP", rows); }
};

TEST_F(SearchFieldTest, EachCustomerIsFoundByTheFieldThatWasChosen) {
    for (const auto& [choice, expected] : {std::pair<const char*, Values>{"Code", {"C1", "C2"}},
                                           {"Company", {"Acme Ltd", "Bolt"}},
                                           {"Phone", {"555", ""}},
                                           {"phone", {"555", ""}}}) {
        GivenTwoCustomers();

        EXPECT_EQ(UpdateSearchField(CustomerSearch, choice), 2);

        EXPECT_EQ(SearchValues(CustomerSearch), expected) << choice;
        EXPECT_EQ(TableAt(Global.DBFPath + "ZUKCust.dbf").Trimmed(2)[4], "90210");
    }
}

TEST_F(SearchFieldTest, EachItemIsFoundByItsCodeOrItsDescriptionCutAtTheFieldsLength) {
    const std::string text(60, 'd');
    Given({.Tables = {{"ZUKITEM", {{{"I_ITEMCODE", "B10"}, {"I_DESC1", text}}}}}});

    UpdateSearchField(ItemSearch, "Description");
    EXPECT_EQ(SearchValues(ItemSearch), Values{std::string(40, 'd')});

    UpdateSearchField(ItemSearch, "Code");
    EXPECT_EQ(SearchValues(ItemSearch), Values{"B10"});
}

TEST_F(SearchFieldTest, ACustomerWithoutAPhoneGetsNoSearchValueAndTheNextCheckReportsItAsFatal) {
    GivenTwoCustomers();

    UpdateSearchField(CustomerSearch, "Phone");

    const std::vector<ReportRow> rows = Checked(Check::Customers);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].Severity, "Fatal");
    EXPECT_EQ(rows[0].Problem, "Field contains blank value");
    EXPECT_EQ(rows[0].Field, "C_SEARCH");
    EXPECT_EQ(rows[0].List, "1"); // the check has put the customers in order
}

TEST_F(SearchFieldTest, WritesWhatItsStepsWriteRecordByRecord) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        Lots lots(seed);
        std::vector<TableMaker::Column> columns = lots.Columns();
        const auto add = [&](const char* name) {
            const auto at = static_cast<std::ptrdiff_t>(lots.Below(static_cast<int>(columns.size()) + 1));
            columns.insert(columns.begin() + at, {name, "CCCND"[lots.Below(5)], lots.Below(30)});
        };
        add("C_SEARCH");
        add("C_NAME");
        const std::string before = lots.Table(columns).Bytes();
        std::filesystem::remove(Global.DBFPath + "ZUKCust.dbf");

        const std::string path = GivenFile("app/DBFFiles/ZUKCUST.DBF", before);
        DBFEdit table;
        table.FileOpen(path);
        for (std::int32_t record = 1; record <= table.RecordCount; ++record) {
            table.Go(record);
            table.WriteData("C_SEARCH", table.GetData("C_NAME"));
            table.UpDate();
        }
        table.FileClose();
        const std::string expected = UpToTheEnd(Bytes(path));

        GivenFile("app/DBFFiles/ZUKCUST.DBF", before);
        UpdateSearchField(CustomerSearch, "Company");

        EXPECT_EQ(UpToTheEnd(Bytes(path)), expected) << "seed " << seed;
    }
}

TEST_F(SearchFieldTest, AFullDiskLeavesEveryCustomerAsItWas) {
    int failures = 0;
    for (int failAt = 1; failAt < 50; ++failAt) {
        GivenTwoCustomers();
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        const int failure = FailureNumber([] { UpdateSearchField(CustomerSearch, "Code"); });
        Global.TheDisk = &NativeDisk();
        if (failure == 0) break;
        ++failures;
        EXPECT_EQ(failure, 61);
        EXPECT_EQ(SearchValues(CustomerSearch), (Values{"OLD1", "OLD2"})) << failAt;
    }
    EXPECT_GE(failures, 2);
}

TEST_F(SearchFieldTest, ATableThatAnotherProgramHoldsOrThatLacksAFieldIsLeftAlone) {
    GivenTwoCustomers();
    GivenFile("app/DBFFiles/.~lock.ZUKCust.dbf#", "office");
    EXPECT_EQ(FailureNumber([] { UpdateSearchField(CustomerSearch, "Code"); }), 70);
    EXPECT_EQ(SearchValues(CustomerSearch), (Values{"OLD1", "OLD2"}));

    std::filesystem::remove(Global.DBFPath + ".~lock.ZUKCust.dbf#");
    EXPECT_EQ(FailureNumber([] { UpdateSearchField(CustomerSearch, "City"); }), 5);
    GivenFile("app/DBFFiles/ZUKCust.dbf", TableMaker({{"C_SEARCH", 'C', 4}}).Row({"A"}).Bytes());
    const FailureSeen seen = FailureOf([] { UpdateSearchField(CustomerSearch, "Code"); });
    EXPECT_EQ(seen.Number, 321);
    EXPECT_NE(seen.Words.find("C_CODE"), std::string::npos) << seen.Words;
}

TEST_F(SearchFieldTest, TheChoiceStandsInTheFirstRecordOfTheSetup) {
    GivenSetup(
        {RowOf("ZUKSETUP", {{"SU_HHBAKUP", "APPEND"}, {"SU_SRCHCUS", "Phone"}, {"SU_SRCHITM", "Code"}}),
         RowOf("ZUKSETUP", {{"SU_SRCHCUS", "Code"}})});
    EXPECT_EQ(ReadSearchChoice(CustomerSearch), "Phone");
    EXPECT_EQ(ReadSearchChoice(ItemSearch), "Code");

    WriteSearchChoice(CustomerSearch, "Company");

    EXPECT_EQ(ReadSearchChoice(CustomerSearch), "Company");
    const TableContent setup = TableAt(Global.DBFPath + "ZUKSetup.dbf");
    EXPECT_EQ(setup.Trimmed(1)[0], "APPEND");
    EXPECT_EQ(setup.Trimmed(2)[4], "Code");
}

TEST_F(SearchFieldTest, ASetupWithoutARecordGetsOneAndOneThatHoldsTheChoiceIsNotWritten) {
    GivenSetup({});
    EXPECT_EQ(ReadSearchChoice(CustomerSearch), "");

    WriteSearchChoice(CustomerSearch, "Code");
    EXPECT_EQ(ReadSearchChoice(CustomerSearch), "Code");
    EXPECT_EQ(TableAt(Global.DBFPath + "ZUKSetup.dbf").Count, 1);

    const std::string path = Global.DBFPath + "ZUKSetup.dbf";
    const std::filesystem::file_time_type longAgo{};
    std::filesystem::last_write_time(path, longAgo);
    WriteSearchChoice(CustomerSearch, "Code");
    EXPECT_EQ(std::filesystem::last_write_time(path), longAgo);
    WriteSearchChoice(CustomerSearch, "Phone");
    EXPECT_NE(std::filesystem::last_write_time(path), longAgo);
}

} // namespace
