#include "views/SetupTables.h"

#include "core/Paths.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Tables.h"

namespace {

using Cells = std::vector<std::string>;

class SetupTablesTest : public EngineTest {
protected:
    SetupTablesTest() { GivenAppDirectory(); }

    /// One record of a table, by its fields.
    void Given(const char* table, const std::vector<std::pair<std::string, std::string>>& values) {
        GivenTable(Global.DBFPath, table, {RowOf(table, values)});
    }

    static SetupTexts Shown(const SetupTable& table) {
        TableRecords records;
        records.Open(table.Path(), table.Key(), 1);
        return TextsOf(table, records);
    }

    static void Save(const SetupTable& table, const SetupTexts& texts) {
        TableRecords records;
        records.Open(table.Path(), table.Key(), 1);
        records.Write(ValuesOf(table, texts));
    }

    static Cells Stored(const SetupTable& table) { return TableAt(ResolvePath(table.Path())).Trimmed(1); }

    static SetupTexts Datecs(const char* style, const char* contForm) {
        return {"66", "Datecs", contForm, "", "", "", "", style, "", ""};
    }
};

// ---- what is shown and stored ----

TEST_F(SetupTablesTest, EveryFieldIsOneOfItsTableInItsOrder) {
    for (const SetupTable* table : {&CompanyTable, &PrinterTable, &HandheldTable, &PaymentTable}) {
        const std::string name = std::string(table->File).substr(0, std::string(table->File).size() - 4);
        const std::vector<std::string> names = TableContent(EmptyTableOf(name).Bytes()).Names;
        auto at = names.begin();
        for (const SetupField& field : table->Fields) {
            at = std::find(at, names.end(), field.Name);
            EXPECT_NE(at, names.end()) << field.Name;
        }
    }
}

TEST_F(SetupTablesTest, EveryEntryFitsItsFieldAndComesBackAsItself) {
    for (const SetupTable* table : {&PrinterTable, &HandheldTable, &PaymentTable}) {
        const std::string name = std::string(table->File).substr(0, std::string(table->File).size() - 4);
        for (std::size_t k = 0; k < table->Fields.size(); ++k) {
            for (const char* entry : table->Fields[k].Entries) {
                Given(name.c_str(), {});
                SetupTexts texts(table->Fields.size());
                texts[k] = entry;
                Save(*table, texts);
                EXPECT_EQ(Shown(*table)[k], entry);
            }
        }
    }
}

TEST_F(SetupTablesTest, AListShowsTheEntryThatEqualsTheStoredValueOrNothing) {
    Given("ZUKSETUP", {{"SU_HHBAKUP", "append"}, {"SU_SRCHCUS", "Codes"}, {"SU_SRCHITM", ""}});

    EXPECT_EQ(Shown(HandheldTable), (SetupTexts{"APPEND", "", ""}));
}

TEST_F(SetupTablesTest, AListInWhichNothingIsChosenLeavesItsFieldAsItIs) {
    Given("ZUKSETUP", {{"SU_HHBAKUP", "BOTH"}, {"SU_RESYN1", "abc"}, {"SU_SRCHCUS", "Phone"}});

    Save(HandheldTable, {"", "Company", "Code"});

    EXPECT_EQ(Stored(HandheldTable), (Cells{"BOTH", "abc", "", "", "Company", "Code"}));
}

TEST_F(SetupTablesTest, ThePrintFormatIsStoredAsItsFirstFiveCharactersAndShownWhole) {
    Given("ZUKPRINT", {});
    for (const auto& [entry, stored] : {std::pair{"Fixed Length", "Fixed"}, {"Continuous Form", "Conti"}}) {
        SetupTexts texts(10);
        texts[PrinterField::StdStyle] = entry;
        Save(PrinterTable, texts);
        EXPECT_EQ(Stored(PrinterTable)[PrinterField::StdStyle], stored);
        EXPECT_EQ(Shown(PrinterTable)[PrinterField::StdStyle], entry);
    }
}

TEST_F(SetupTablesTest, NumbersAreShownAndStoredByTheirValue) {
    Given("ZUKPRINT", {{"LINEMAX", " 066"}, {"LINEFEED", "3.0"}, {"COMPRESCHR", "x"}});
    const SetupTexts shown = Shown(PrinterTable);
    EXPECT_EQ(shown[PrinterField::LineMax], "66");
    EXPECT_EQ(shown[PrinterField::LineFeed], "3");
    EXPECT_EQ(shown[PrinterField::CompresChr], "0");
    EXPECT_EQ(shown[PrinterField::ResetChr], "");

    SetupTexts texts = shown;
    texts[PrinterField::LineMax] = "007";
    Save(PrinterTable, texts);

    const Cells stored = Stored(PrinterTable);
    EXPECT_EQ(stored[PrinterField::LineMax], "7");
    EXPECT_EQ(stored[PrinterField::LineFeed], "3");
    EXPECT_EQ(stored[PrinterField::ResetChr], "0");
}

TEST_F(SetupTablesTest, TheCompanysLinesGoThroughAsTheyAre) {
    Given("ZUKCOMP", {{"COMPANY", " Acme & Sons "}, {"FOOTNOTE3", "Thank you"}});
    SetupTexts texts = Shown(CompanyTable);
    EXPECT_EQ(texts, (SetupTexts{"Acme & Sons", "", "", "", "", "", "", "", "Thank you"}));

    texts[1] = std::string(60, 'x');
    Save(CompanyTable, texts);

    EXPECT_EQ(Stored(CompanyTable)[1], std::string(40, 'x'));
    EXPECT_EQ(Stored(CompanyTable)[8], "Thank you");
}

TEST_F(SetupTablesTest, SavingAnEmptyTableAddsItsRecord) {
    GivenTable(Global.DBFPath, "ZUKCOMP");
    EXPECT_EQ(Shown(CompanyTable), SetupTexts(9));

    Save(CompanyTable, {"Acme", "", "", "", "", "", "", "", ""});

    EXPECT_EQ(Stored(CompanyTable)[0], "Acme");
}

TEST_F(SetupTablesTest, ARecordDiffersFromTheScreenByWhatTheScreenShows) {
    Given("ZUKPAY", {{"PAY_CODE", "card"}, {"PAY_REF", "yes"}, {"PAY_CDESC", " Visa "}, {"PAY_CDET", "?"}});

    EXPECT_EQ(Shown(PaymentTable), (SetupTexts{"CARD", "YES", "Visa", ""}));
}

TEST_F(SetupTablesTest, AnUnknownPaymentTypeIsNone) {
    Given("ZUKPAY", {{"PAY_CODE", "GIRO"}});

    EXPECT_EQ(Shown(PaymentTable)[0], "");
}

TEST_F(SetupTablesTest, AnOlderTableWithoutAFieldIsShownWithoutIt) {
    GivenFile("app/DBFFiles/ZUKSETUP.DBF", TableMaker({{"SU_HHBAKUP", 'C', 8}}).Row({"APPEND"}).Bytes());

    EXPECT_EQ(Shown(HandheldTable), (SetupTexts{"APPEND", "", ""}));
    Save(HandheldTable, {"REPLACE", "Code", ""});

    EXPECT_EQ(Shown(HandheldTable), (SetupTexts{"REPLACE", "", ""}));
}

// ---- print settings ----

TEST_F(SetupTablesTest, EachDriverTakesItsOwnSettings) {
    struct Case {
        const char* Driver;
        bool BaudRate, Logo, FormatCodes;
    };
    for (const Case& each : {Case{"PalmSerial", true, false, false},
                             {"Datecs", false, true, false},
                             {"BPM", true, false, true},
                             {"", false, false, false}}) {
        const DriverOptions options = OptionsOf(each.Driver);
        EXPECT_EQ(options.BaudRate, each.BaudRate) << each.Driver;
        EXPECT_EQ(options.Logo, each.Logo) << each.Driver;
        EXPECT_EQ(options.FormatCodes, each.FormatCodes) << each.Driver;
    }
}

TEST_F(SetupTablesTest, OnlyContinuousFormsHaveNoPages) {
    EXPECT_FALSE(HasPages("YES"));
    EXPECT_TRUE(HasPages("NO"));
    EXPECT_TRUE(HasPages(""));
}

TEST_F(SetupTablesTest, ARollPrinterChangesTheFormatAndAsksForContinuousForms) {
    struct Case {
        const char *Style, *ContForm;
        bool Change, Ask;
    };
    for (const Case& each : {Case{"Fixed Length", "NO", true, true},
                             {"", "", true, true},
                             {"Continuous Form", "NO", false, true},
                             {"Continuous Form", "YES", false, false}}) {
        const DatecsRules rules = RulesOf(Datecs(each.Style, each.ContForm));
        EXPECT_EQ(rules.ChangeFormat, each.Change) << each.Style;
        EXPECT_EQ(rules.AskForForm, each.Ask) << each.ContForm;
    }
    SetupTexts other = Datecs("Fixed Length", "NO");
    other[PrinterField::Printer] = "BPM";
    EXPECT_FALSE(RulesOf(other).ChangeFormat || RulesOf(other).AskForForm);
}

TEST_F(SetupTablesTest, APagesLengthIsAWholeNumberThatIsNeverBelowZero) {
    for (const auto& [stored, lines] : std::initializer_list<std::pair<const char*, int>>{
             {"66", 66}, {"", 0}, {"x", 0}, {"-4", 0}, {"65.6", 66}, {"99999", 32767}})
        EXPECT_EQ(PageLength(stored), lines) << stored;
}

// ---- at the start ----

TEST_F(SetupTablesTest, TheStartReadsTheSearchFieldsAndThePagesLength) {
    Given("ZUKSETUP", {{"SU_SRCHCUS", "Phone"}, {"SU_SRCHITM", "Description"}});
    Given("ZUKPRINT", {{"LINEMAX", "60"}});

    ReadSearchFields();
    ReadLinesPerPage();

    EXPECT_EQ(Global.SearchCustomers, "Phone");
    EXPECT_EQ(Global.SearchItems, "Description");
    EXPECT_EQ(Global.LinesPerPage, 60);
}

TEST_F(SetupTablesTest, WithoutSettingsTheStartHasNone) {
    Global.SearchCustomers = Global.SearchItems = "old";
    Global.LinesPerPage = 9;
    ReadSearchFields();
    ReadLinesPerPage();
    EXPECT_EQ(Global.SearchCustomers + Global.SearchItems, "");
    EXPECT_EQ(Global.LinesPerPage, 0);

    GivenTable(Global.DBFPath, "ZUKSETUP");
    GivenFile("app/DBFFiles/ZUKPRINT.DBF", TableMaker({{"PRINTER", 'C', 8}}).Row({"BPM"}).Bytes());
    ReadSearchFields();
    ReadLinesPerPage();
    EXPECT_EQ(Global.SearchCustomers + Global.SearchItems, "");
    EXPECT_EQ(Global.LinesPerPage, 0);
}

TEST_F(SetupTablesTest, SettingsThatAreNoTableAreToldByName) {
    GivenFile("app/DBFFiles/ZUKSETUP.DBF", "rubbish");

    const FailureSeen failure = FailureOf([] { ReadSearchFields(); });

    EXPECT_NE(failure.Number, 0);
    EXPECT_NE(failure.Words.find("ZUKSETUP"), std::string::npos);
}

} // namespace
