#include "store/TableCatalogue.h"

#include "store/CreateTable.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"

#include <set>

namespace {

class TableCatalogueTest : public EngineTest {
protected:
    static std::string Grid(std::string_view table, std::string_view field) {
        return GetFriendlyFieldName(*FindTable(table), field).Utf8();
    }
    static std::string Viewer(std::string_view table, std::string_view field) {
        return DisplayFriendlyFieldNames(*FindTable(table), field).Utf8();
    }
    static std::vector<std::string> FieldsOf(std::string_view table) {
        std::vector<std::string> names;
        for (const TableField& field : FindTable(table)->Fields) names.emplace_back(field.Name);
        return names;
    }
};

TEST_F(TableCatalogueTest, ATableIsFoundByItsNameInAnyLettersWithOrWithoutItsExtension) {
    const TableEntry* customers = FindTable("ZUKCust");

    ASSERT_NE(customers, nullptr);
    EXPECT_EQ(FindTable("ZUKCUST.DBF"), customers);
    EXPECT_EQ(FindTable("zukcust.dbf"), customers);
    EXPECT_EQ(FindTable("zukcust"), customers);
}

TEST_F(TableCatalogueTest, WhatIsNoTableIsNotFound) {
    for (const char* name :
         {"", ".dbf", "ZUKCUS", "ZUKCust.dap", "ZUKCust.dbf.dbf", "ZUKBARINDX", "ZUKQUOTE"}) {
        EXPECT_EQ(FindTable(name), nullptr) << name;
    }
}

TEST_F(TableCatalogueTest, The24TablesWithATwinComeFirst) {
    const std::set<std::string_view> twins = {
        "ZUKOrHdr", "ZUKAudTH", "ZUKAudTL", "ZUKAudHH", "ZUKBarin", "ZUKComp",  "ZUKCust",    "ZUKHelp",
        "ZUKItem",  "ZUKOrLin", "ZUKPrint", "ZUKSetup", "ZUKTCUST", "ZUKTITEM", "ZUKTOTALPC", "ZUKSTAX",
        "ZUKTORLI", "ZUKTORHD", "ZUKAUDBH", "ZUKAUDBL", "ZUKPAY",   "ZUKLINK",  "ZUKTPMNT",   "ZUKVER"};
    std::set<std::string_view> first, others;
    for (const TableEntry& table : AllTables().first(TwinTables)) first.insert(table.Name);
    for (const TableEntry& table : AllTables().subspan(TwinTables)) others.insert(table.Name);

    EXPECT_EQ(first, twins);
    EXPECT_EQ(others, (std::set<std::string_view>{"ZUKPRN", "ZUKXPDAT"}));
}

TEST_F(TableCatalogueTest, EveryFieldOfEveryTableIsFoundByItsNameAsTablesLookNamesUp) {
    for (const TableEntry& table : AllTables()) {
        std::vector<FieldDef> fields;
        for (const TableField& field : table.Fields) {
            fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
        }
        const std::string path = Folder() + table.Name + ".dbf";
        CreateTable(path, fields);
        TableScan scan(path);
        for (std::size_t k = 0; k < fields.size(); ++k) {
            EXPECT_EQ(scan.Layout().Find(FieldKey(fields[k].Name)), static_cast<int>(k) + 1)
                << table.Name << " " << fields[k].Name;
        }
    }
}

TEST_F(TableCatalogueTest, TheFieldsOfTheTotalsStandInTheirBindingOrder) {
    EXPECT_EQ(FieldsOf("ZUKTOTALPC"),
              (std::vector<std::string>{"TP_NUMHEAD", "TP_NUMLINE", "TP_DOL_LIN", "TP_CURHEAD", "TP_CURLINE",
                                        "TP_CURDOL", "TP_MACHINE", "TP_EVENT", "TP_DATETIM", "TP_HOTSYNC",
                                        "TP_LSTONUM"}));
    EXPECT_EQ(FieldsOf("ZUKVER"), std::vector<std::string>{"V_MAJOR"});
}

TEST_F(TableCatalogueTest, TheGridShowsALabelAndTheRecordViewerTheSameWithAColon) {
    EXPECT_EQ(Grid("ZUKCUST", "C_PAYTERMS"), "Payment Terms");
    EXPECT_EQ(Viewer("ZUKCUST", "C_PAYTERMS"), "Payment Terms:");
    EXPECT_EQ(Grid("ZUKORHDR", "H_CUST_PO"), "Customer PO#");
    EXPECT_EQ(Viewer("ZUKORHDR", "H_STAXNUM"), "# Uncalculated Sales Tax Items:");
    EXPECT_EQ(Grid("ZUKAUDTL", "A_ITEMCODE"), "Item COde");
    EXPECT_EQ(Grid("ZUKAUDTH", "A_MACH_ID"), "Machine ID");
    EXPECT_EQ(Viewer("ZUKLINK", "LK_LINK1"), "Link Field:");
}

TEST_F(TableCatalogueTest, AFieldWithoutALabelIsShownUnderItsOwnNameAndWithoutAColon) {
    for (const auto& [table, field] :
         std::vector<std::pair<std::string, std::string>>{{"ZUKITEM", "I_STAXUSE"},
                                                          {"ZUKORHDR", "H_CHG4CNAM"},
                                                          {"ZUKLINK", "LK_SFUSER"},
                                                          {"ZUKSTAX", "ST_TYPE"}}) {
        EXPECT_EQ(Grid(table, field), field);
        EXPECT_EQ(Viewer(table, field), field);
    }
    EXPECT_EQ(Grid("ZUKITEM", "i_staxuse"), "i_staxuse");
    EXPECT_EQ(Viewer("ZUKITEM", "i_staxuse"), "i_staxuse");
}

TEST_F(TableCatalogueTest, TheWholeNameDecidesWithoutRegardToCase) {
    EXPECT_EQ(Grid("ZUKORHDR", "h_date2"), "Date Printed");
    EXPECT_EQ(Grid("ZUKORHDR", "H_DATE"), "Date Changed");
    EXPECT_EQ(Grid("ZUKORHDR", "H_DAT"), "H_DAT");
    EXPECT_EQ(Viewer("ZUKORHDR", "H_DATE22"), "H_DATE22");
}

TEST_F(TableCatalogueTest, ALabelThatDiffersFromItsFieldInCaseAloneIsALabel) {
    EXPECT_EQ(Grid("ZUKBARIN", "BARCODE"), "Barcode");
    EXPECT_EQ(Viewer("ZUKBARIN", "BARCODE"), "Barcode:");
    EXPECT_EQ(Viewer("ZUKBARIN", "Barcode"), "Barcode:");
}

TEST_F(TableCatalogueTest, AFieldOfAnotherTableHasNoLabelAndIsShownInUnicode) {
    EXPECT_EQ(Grid("ZUKITEM", "C_CODE"), "C_CODE");
    EXPECT_EQ(Viewer("ZUKITEM", "CAF\xC9"), "CAF\xC3\x89");
}

} // namespace
