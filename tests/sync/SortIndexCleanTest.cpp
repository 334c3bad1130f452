#include "sync/SortIndexClean.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"
#include "support/Tables.h"

namespace {

using Values = std::vector<std::string>;

class SortIndexCleanTest : public EngineTest {
protected:
    SortIndexCleanTest() {
        GivenAppDirectory();
        Global.DownloadTemplates = Global.AppPath + "Templates/Download/";
        GivenTable(Global.DBFPath, "ZUKCUST", {{"c-2"}, {"c-1"}});
        GivenTable(Global.DBFPath, "ZUKITEM",
                   {RowOf("ZUKITEM", {{"I_SEARCH", "i-2"}, {"I_BARCODE", "200"}}),
                    RowOf("ZUKITEM", {{"I_SEARCH", "i-1"}, {"I_BARCODE", "300"}})});
        GivenTable(Global.DBFPath, "ZUKSTAX", {{"t-2"}, {"t-1"}});
        GivenTable(Global.DBFPath, "ZUKBARIN");
        Global.RemoteSelect = true;
        Global.RemoteSelSettings = "Evening";
    }

    void GivenTemplate(const std::string& content) {
        GivenFile("app/Templates/Download/Evening.dst", content);
    }

    static Values Column(const std::string& table, std::size_t field = 1) {
        const TableContent content = TableAt(Global.DBFPath + table + ".dbf");
        Values values;
        for (int record = 1; record <= content.Count; ++record)
            values.push_back(content.Trimmed(record)[field - 1]);
        return values;
    }

    Values Run() {
        struct : Progress {
            void Begin(const Text& label, std::int64_t) override { Labels.push_back(label.Utf8()); }
            void Show(std::int64_t) override {}
            Values Labels;
        } bar;
        SortIndexCleanFiles(bar);
        return bar.Labels;
    }
};

const std::string Rebuilt = "Rebuilding Index Tables, please wait...";

TEST_F(SortIndexCleanTest, TablesThatTheTemplateTurnsOnAreSortedAndTheirKeysCleaned) {
    GivenTemplate("Customers=1\r\nItems=1\r\nSetup Tables=1\r\n");

    Run();

    EXPECT_EQ(Column("ZUKCust"), (Values{"C1", "C2"}));
    EXPECT_EQ(Column("ZUKItem"), (Values{"I1", "I2"}));
    EXPECT_EQ(Column("ZUKSTAX"), (Values{"t-1", "t-2"})) << "sales tax codes are never cleaned";
    EXPECT_EQ(Column("ZUKBarin", 1), (Values{"200", "300"}));
    EXPECT_EQ(Column("ZUKBarin", 2), (Values{"1", "0"})) << "the index is of the sorted items";
}

TEST_F(SortIndexCleanTest, LineThatEndsInAnyOtherThanOneTurnsNothingOn) {
    GivenTemplate("Customers=2\r\nItems=0\r\nSetup Tables=x\r\nCustomers\r\nItems=1;\r\n");

    EXPECT_EQ(Run(), Values{Rebuilt});
}

TEST_F(SortIndexCleanTest, LinesAreObeyedInTheirOrder) {
    GivenTemplate("Setup Tables=1\r\nItems=1\r\nCustomers=1\r\n");

    EXPECT_EQ(Run(), (Values{"Sorting Sales Tax table, please wait...", "Sorting Item Table, please wait...",
                             "Sorting Customer Table, please wait...", Rebuilt}));
}

TEST_F(SortIndexCleanTest, TemplateWithAllLinesOffStillRebuildsTheIndex) {
    GivenTemplate("Customers=0\r\nItems=0\r\nSetup Tables=0\r\n");

    EXPECT_EQ(Run(), Values{Rebuilt});

    EXPECT_EQ(Column("ZUKCust"), (Values{"c-2", "c-1"}));
    EXPECT_EQ(Column("ZUKItem"), (Values{"i-2", "i-1"}));
    EXPECT_EQ(Column("ZUKBarin", 2), (Values{"0", "1"}));
}

TEST_F(SortIndexCleanTest, EmptyTemplateStillRebuildsTheIndex) {
    GivenTemplate("");

    EXPECT_EQ(Run(), Values{Rebuilt});
}

TEST_F(SortIndexCleanTest, LinesAreTrimmedAndTheirCaseDoesNotCount) {
    GivenTemplate("  CUSTOMERS = 1   \n\n   \nOrders=1\nItems=10\nitems 1");

    EXPECT_EQ(Run(), (Values{"Sorting Customer Table, please wait...", "Sorting Item Table, please wait...",
                             Rebuilt}));
}

TEST_F(SortIndexCleanTest, OnlyAOneTurnsALineOn) {
    GivenTemplate("Customers=\xB9\r\nItems=True\r\nSetup Tables\r\nSetup Tables=1.\r\n");

    EXPECT_EQ(Run(), Values{Rebuilt});
}

TEST_F(SortIndexCleanTest, NothingIsDoneWhileNoSelectionIsDownloaded) {
    GivenTemplate("Customers=1\r\n");
    Global.RemoteSelect = false;

    EXPECT_EQ(Run(), Values{});

    EXPECT_EQ(Column("ZUKCust"), (Values{"c-2", "c-1"}));
    EXPECT_EQ(Column("ZUKBarin"), Values{});
}

TEST_F(SortIndexCleanTest, MissingTemplateIsAFailureAndChangesNothing) {
    EXPECT_EQ(FailureNumber([&] { Run(); }), 53);

    EXPECT_EQ(Column("ZUKBarin"), Values{});
}

TEST_F(SortIndexCleanTest, TemplateIsLookedForInItsOwnFolderOnly) {
    GivenFile("Evening.dst", "Customers=1\r\n");
    for (const char* name : {"../../Evening", "", "..", "a/b"}) {
        Global.RemoteSelSettings = name;

        EXPECT_NE(FailureNumber([&] { Run(); }), 0) << name;
    }
    EXPECT_EQ(Column("ZUKCust"), (Values{"c-2", "c-1"}));
}

TEST_F(SortIndexCleanTest, TableThatIsNotThereEndsTheRunAndWhatWasSortedStays) {
    GivenTemplate("Customers=1\r\nItems=1\r\n");
    ASSERT_TRUE(Global.TheDisk->Remove(Global.DBFPath + "ZUKItem.dbf"));

    EXPECT_EQ(FailureNumber([&] { Run(); }), 53);

    EXPECT_EQ(Column("ZUKCust"), (Values{"C1", "C2"}));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SortIndexCleanTest, RubbishAsATemplateDoesNoHarm) {
    for (const std::string& content : Rubbish("Customers=1\r\nItems=1\r\nSetup Tables=1\r\n")) {
        GivenTemplate(content);
        OnlyRunTimeFailures([&] { Run(); });
    }
    EXPECT_EQ(Column("ZUKCust").size(), 2U);
    EXPECT_EQ(Column("ZUKItem").size(), 2U);
    EXPECT_EQ(Column("ZUKSTAX").size(), 2U);
}

} // namespace
