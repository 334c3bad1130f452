#include "handheld/HandheldTest.h"

#include "exchange/Export.h"
#include "exchange/ExportTemplate.h"
#include "handheld/Decimal.h"
#include "handheld/TableSearch.h"
#include "maintenance/Office.h"
#include "quality/Checks.h"
#include "store/SortTables.h"
#include "support/TableMaker.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

namespace {

namespace fs = std::filesystem;

const std::string Tables = TRAMBLE_BUILD "/demo/";
const std::string Install = TRAMBLE_INSTALLED "/Install/";

/// The demo company, on the PC's side and on a handheld.
class DemoCompany : public HandheldTest {
protected:
    using Record = std::map<std::string, std::string>;

    /// A table of the demo company, its records' trimmed texts by field.
    static std::vector<Record> Rows(const std::string& table) {
        const TableContent content(Bytes(Tables + table + ".dbf"));
        std::vector<Record> rows;
        for (int record = 1; record <= content.Count; ++record) {
            const std::vector<std::string> values = content.Trimmed(record);
            Record& row = rows.emplace_back();
            for (std::size_t k = 0; k < values.size(); ++k) row[content.Names[k]] = values[k];
        }
        return rows;
    }

    static std::set<std::string> Values(const std::string& table, const std::string& field) {
        std::set<std::string> values;
        for (const Record& row : Rows(table)) values.insert(row.at(field));
        return values;
    }

    /// An office with the demo company's tables, as it stands behind its first start.
    void GivenDemoOffice() {
        Global.AppPath = Folder() + "office/";
        LayOutOffice(TRAMBLE_INSTALLED, Global.AppPath);
        ASSERT_TRUE(PrepareOffice([] {}, [] {}));
        for (const auto& entry : fs::directory_iterator(Tables)) {
            if (entry.path().extension() == ".dbf")
                fs::copy_file(entry, Global.DBFPath + entry.path().filename().string(),
                              fs::copy_options::overwrite_existing);
        }
        for (const char* const file : {"customers.csv", "items.txt"})
            fs::copy_file(std::string(TRAMBLE_SOURCE "/samples/day/") + file, Global.DataInPath + file);
    }

    /// Every file of the handheld that an office installs.
    static std::vector<std::string> HandheldFiles() {
        std::vector<std::string> files;
        for (const auto& entry : fs::directory_iterator(Install)) {
            const std::string extension = entry.path().extension();
            if (extension == ".pdb" || extension == ".prc") files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    /// A handheld of the user that the demo's Links table knows, with everything installed.
    void GivenDemoHandheld() {
        HandheldSettings settings = Anna();
        settings.User.Name = "Demo";
        GivenHandheld(settings);
        std::vector<std::string> words{"install"};
        for (const std::string& file : HandheldFiles()) words.push_back(file);
        const CommandResult installed = Run(words);
        ASSERT_EQ(installed.How, Outcome::Done) << installed.Err;
        Again();
    }
};

std::int64_t Cents(const std::string& text) {
    const std::optional<std::int64_t> cents = ReadDecimal(text, 2);
    if (!cents) ADD_FAILURE() << '"' << text << "\" is no money";
    return cents.value_or(0);
}

std::int64_t TenThousandths(const std::string& text) {
    return ReadDecimal(text, 4).value_or(-1);
}

/// Half away from zero, as the handheld rounds; nothing in here is below zero.
std::int64_t Rounded(std::int64_t value, std::int64_t over) {
    return (value + over / 2) / over;
}

/// Whether the last digit of an EAN-13 or a UPC-A is that of the others.
bool HasRightCheckDigit(const std::string& code) {
    int sum = 0;
    for (std::size_t k = 0; k < code.size(); ++k)
        sum += (code[k] - '0') * ((code.size() - k) % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

} // namespace

TEST_F(DemoCompany, NoQualityCheckFindsAnything) {
    GivenDemoOffice();
    NoProgress nobody;

    for (std::size_t check = 0; check < Checks; ++check) {
        ProblemList problems;
        RunCheck(static_cast<Check>(check), {nobody, [] { return std::vector<std::string>{"Demo"}; }},
                 problems);
        EXPECT_FALSE(problems.ProblemFound())
            << CheckName(static_cast<Check>(check)) << ": " << problems.Row(0).Issue.Utf8();
    }
}

TEST_F(DemoCompany, TheSortsOfACheckLeaveItsTablesAsTheyAre) {
    GivenDemoOffice();
    NoProgress nobody;
    SortCustFile(Global.DBFPath + "ZUKCust.dbf", {}, nobody);
    SortItemFile(Global.DBFPath + "ZUKItem.dbf", {}, nobody);
    SortSTaxFile(Global.DBFPath + "ZUKSTAX.dbf", {}, nobody);
    RebuildItemIndex(Global.DBFPath, nobody);

    for (const char* const table : {"ZUKCust.dbf", "ZUKItem.dbf", "ZUKSTAX.dbf", "ZUKBarin.dbf"})
        EXPECT_EQ(Bytes(Global.DBFPath + table), Bytes(Tables + table)) << table;
}

TEST_F(DemoCompany, HasAsManyRecordsAsItTells) {
    std::map<std::string, std::size_t> groups;
    for (const Record& item : Rows("ZUKItem")) ++groups[item.at("I_ITEMCODE").substr(0, 2)];

    EXPECT_EQ(Rows("ZUKCust").size(), 200U);
    EXPECT_EQ(Rows("ZUKItem").size(), 400U);
    EXPECT_EQ(groups.size(), 6U);
    EXPECT_EQ(Rows("ZUKSTAX").size(), 20U);
    EXPECT_EQ(Rows("ZUKPAY").size(), 4U);
    EXPECT_EQ(Rows("ZUKOrHdr").size(), 12U);
    EXPECT_EQ(Rows("ZUKOrLin").size(), 56U);
    EXPECT_EQ(Rows("ZUKAudTH").size(), 2U);
    EXPECT_EQ(Rows("ZUKLINK").size(), 1U);
    for (const char* const one : {"ZUKComp", "ZUKPrint", "ZUKSetup", "ZUKAudHH"})
        EXPECT_EQ(Rows(one).size(), 1U) << one;
    for (const char* const none :
         {"ZUKTCUST", "ZUKTITEM", "ZUKTORHD", "ZUKTORLI", "ZUKAUDBH", "ZUKAUDBL", "ZUKXPDAT"})
        EXPECT_TRUE(Rows(none).empty()) << none;
}

TEST_F(DemoCompany, ItsNamesAreWrittenAsTheyAreAtHome) {
    std::set<char> accents;
    for (const Record& customer : Rows("ZUKCust")) {
        for (const char c : customer.at("C_NAME") + customer.at("C_CITY") + customer.at("C_CONTACT")) {
            if (static_cast<unsigned char>(c) >= 0xC0) accents.insert(c);
            EXPECT_NE(c, '?') << customer.at("C_CODE");
        }
        const std::string& phone = customer.at("C_PHONE");
        EXPECT_FALSE(phone.empty()) << customer.at("C_CODE");
        // North America's numbers for fiction are 555-0100 to 555-0199.
        if (phone.size() > 4 && phone[4] == ')') {
            EXPECT_EQ(phone.substr(5, 7), " 555-01") << phone;
        }
    }

    EXPECT_GT(accents.size(), 20U);
}

TEST_F(DemoCompany, EachBarcodeIsOneOfAShopsOwnWithItsCheckDigit) {
    std::set<std::string> seen;
    for (const Record& item : Rows("ZUKItem")) {
        for (const char* const field : {"I_BARCODE", "I_BARCODE2"}) {
            const std::string& code = item.at(field);
            if (code.empty() && field == std::string("I_BARCODE2")) continue;
            EXPECT_TRUE(code.size() == 13 || code.size() == 12) << code;
            EXPECT_TRUE(code.starts_with('2')) << code;
            EXPECT_TRUE(HasRightCheckDigit(code)) << code;
            EXPECT_TRUE(seen.insert(code).second) << code << " comes twice";
        }
    }
    EXPECT_FALSE(HasRightCheckDigit("2033740000077")) << "the test itself must see a wrong digit";
}

TEST_F(DemoCompany, EachOrdersSumsAgreeToTheCent) {
    std::map<std::string, std::vector<Record>> lines;
    for (const Record& line : Rows("ZUKOrLin")) lines[line.at("L_ORDCODE")].push_back(line);
    std::map<std::string, Record> items, taxes;
    for (const Record& item : Rows("ZUKItem")) items[item.at("I_ITEMCODE")] = item;
    for (const Record& tax : Rows("ZUKSTAX")) taxes[tax.at("ST_CODE")] = tax;

    for (const Record& order : Rows("ZUKOrHdr")) {
        const std::string& code = order.at("H_ORDCODE");
        const std::int64_t rate = ReadDecimal(order.at("H_STRATE"), 5).value_or(-1);
        std::int64_t sum = 0, taxable = 0, number = 0;
        for (const Record& line : lines[code]) {
            ++number;
            EXPECT_EQ(line.at("L_NUMBER"), std::to_string(number)) << code;
            EXPECT_EQ(line.at("L_KEY"), code + "000" + std::to_string(number));
            EXPECT_EQ(line.at("L_CUSTCODE"), order.at("H_CUSTCODE")) << code;
            const Record& item = items[line.at("L_ITEMCODE")];
            EXPECT_EQ(line.at("L_ITEMDES1"), item.at("I_DESC1")) << code;
            EXPECT_EQ(line.at("L_BARCODE"), item.at("I_BARCODE")) << code;
            EXPECT_EQ(TenThousandths(line.at("L_PRICEREF")), TenThousandths(item.at("I_PRICE"))) << code;
            EXPECT_EQ(line.at("L_PRICE") == line.at("L_PRICEREF"), line.at("L_PRIC_SRC") == "LIST") << code;
            const std::int64_t cents = Cents(line.at("L_TOTPRICE"));
            EXPECT_EQ(cents,
                      Rounded(TenThousandths(line.at("L_QTY")) * TenThousandths(line.at("L_PRICE")), 1000000))
                << code << " line " << number;
            sum += cents;
            if (item.at("I_STAXUSE") == "YES") taxable += cents;
        }
        std::int64_t charges = 0;
        for (const char* const charge : {"H_CHG1AMT", "H_CHG2AMT"}) charges += Cents(order.at(charge));
        std::int64_t discount = Cents(order.at("H_DISCOUNT"));
        if (order.at("H_DISCTYPE") == "%") discount = Rounded(sum * discount, 10000);
        const Record& tax = taxes[order.at("H_STCODE")];
        if (!order.at("H_STCODE").empty()) {
            EXPECT_EQ(rate, ReadDecimal(tax.at("ST_RATE"), 5)) << code;
        }

        EXPECT_EQ(order.at("H_NUMLINES"), std::to_string(number)) << code;
        EXPECT_EQ(order.at("H_LASTLINE"), std::to_string(number)) << code;
        EXPECT_EQ(Cents(order.at("H_TOTITEMS")), sum) << code;
        EXPECT_EQ(Cents(order.at("H_TOTTAX")), taxable) << code;
        EXPECT_EQ(Cents(order.at("H_TOTCHARG")), charges) << code;
        EXPECT_EQ(Cents(order.at("H_TOTTOTAL")), sum - discount + charges + Rounded(taxable * rate, 10000000))
            << code;
        lines.erase(code);
    }
    EXPECT_TRUE(lines.empty()) << "lines without a header";
}

TEST_F(DemoCompany, EachOrderIsOfACustomerThatIsThere) {
    std::map<std::string, Record> customers;
    for (const Record& customer : Rows("ZUKCust")) customers[customer.at("C_CODE")] = customer;

    for (const Record& order : Rows("ZUKOrHdr")) {
        ASSERT_TRUE(customers.contains(order.at("H_CUSTCODE"))) << order.at("H_ORDCODE");
        const Record& customer = customers[order.at("H_CUSTCODE")];
        EXPECT_EQ(order.at("H_BILLNAME"), customer.at("C_NAME"));
        EXPECT_EQ(order.at("H_CUSTFONE"), customer.at("C_PHONE"));
        EXPECT_EQ(order.at("H_STCODE"), customer.at("C_STCODE"));
    }
}

TEST_F(DemoCompany, ItsAuditTellsOfOrdersThatAreGone) {
    const std::set<std::string> orders = Values("ZUKOrHdr", "H_ORDCODE");
    std::set<std::string> audited, lines;
    for (const Record& audit : Rows("ZUKAudTH")) {
        EXPECT_FALSE(orders.contains(audit.at("A_ORDCODE")));
        audited.insert(audit.at("A_ORDCODE"));
    }
    for (const Record& audit : Rows("ZUKAudTL")) lines.insert(audit.at("A_KEY").substr(0, 8));

    EXPECT_EQ(lines, audited);
}

TEST_F(DemoCompany, ItsHandheldTotalsAreThoseOfItsOrders) {
    std::int64_t sum = 0;
    for (const Record& line : Rows("ZUKOrLin")) sum += Cents(line.at("L_TOTPRICE"));
    const Record totals = Rows("ZUKAudHH").front();
    const Record link = Rows("ZUKLINK").front();

    EXPECT_EQ(totals.at("TH_NUMHEAD"), "12");
    EXPECT_EQ(totals.at("TH_NUMLINE"), "56");
    EXPECT_EQ(Cents(totals.at("TH_DOL_LIN")), sum);
    EXPECT_EQ(totals.at("TH_LASTONU"), link.at("LK_MACH_ID") + link.at("LK_LSTONUM"));
    EXPECT_EQ(totals.at("TH_LASTONU"), *Values("ZUKOrHdr", "H_ORDCODE").rbegin());
}

TEST_F(DemoCompany, TheBarcodeIndexLeadsToEachItem) {
    GivenDemoHandheld();
    const HandheldTable index(Its().Store, "ZUKBARIN");
    const HandheldTable items(Its().Store, "ZUKITEM");

    for (std::size_t row = 0; row < items.Count(); ++row)
        EXPECT_EQ(FindBarcode(index, items, items.Get(row, "I_BARCODE")), row);
}

TEST_F(DemoCompany, AHandheldHoldsItsTablesInTheOrderOfItsSearches) {
    GivenDemoHandheld();
    for (const char* const table : {"ZUKCUST", "ZUKITEM", "ZUKBARIN", "ZUKSTAX"})
        EXPECT_EQ(FirstOutOfOrder(HandheldTable(Its().Store, table)), std::nullopt) << table;
    for (const Record& customer : Rows("ZUKCust")) {
        const RowRange found = FindKey(HandheldTable(Its().Store, "ZUKCUST"), customer.at("C_SEARCH"));
        EXPECT_EQ(found.End - found.First, 1U) << customer.at("C_SEARCH");
    }
}

TEST_F(DemoCompany, AHandheldHasTheRecordsOfEachTable) {
    GivenDemoHandheld();
    std::size_t tables = 0;
    for (const auto& entry : fs::directory_iterator(Tables)) {
        if (entry.path().extension() != ".dbf") continue;
        const TableContent content(Bytes(entry.path()));
        const HandheldTable table(Its().Store, entry.path().stem().string());
        ASSERT_EQ(table.Count(), static_cast<std::size_t>(content.Count)) << table.Name();
        for (std::size_t row = 0; row < table.Count(); ++row) {
            for (std::size_t field = 0; field < table.Layout().Fields.size(); ++field)
                EXPECT_EQ(table.Get(row, field), content.Trimmed(static_cast<int>(row) + 1)[field]);
        }
        EXPECT_TRUE(std::all_of(table.Data().Records.begin(), table.Data().Records.end(),
                                [](const auto& record) { return record.Flags == 0; }))
            << table.Name();
        ++tables;
    }
    EXPECT_EQ(tables, 22U);
}

TEST_F(DemoCompany, FiveOfItsOrdersAreSigned) {
    GivenDemoHandheld();
    const HandheldTable headers(Its().Store, "ZUKORHDR");
    std::vector<std::string> isSigned;
    for (std::size_t row = 0; row < headers.Count(); ++row) {
        if (headers.IsSigned(row)) isSigned.emplace_back(headers.Get(row, "H_ORDCODE"));
    }

    EXPECT_EQ(isSigned,
              (std::vector<std::string>{"D1000101", "D1000103", "D1000106", "D1000110", "D1000113"}));
}

TEST_F(DemoCompany, AnOrderCanBeTakenAtOnce) {
    GivenDemoHandheld();

    EXPECT_EQ(Run({"order", "--customer", "LOONLAKE01", "--line", "TE1000:2", "--line", "ST1120:100"}).Out,
              "D1000115\n");
    EXPECT_NE(Run({"customer", "ahringer01"}).Out.find("Ähringer Hofladen"), std::string::npos);
    EXPECT_NE(Run({"barcode", "2033740000076"}).Out.find("Bergamot black tea"), std::string::npos);
    const std::string totals = Run({"totals"}).Out;
    EXPECT_NE(totals.find("Orders: 13\nLines: 58\n"), std::string::npos) << totals;
    EXPECT_NE(totals.find("Last order: D1000115"), std::string::npos) << totals;
}

TEST_F(DemoCompany, TheStandInsOfTheProgramsSayThatTheyAre) {
    GivenDemoHandheld();
    std::size_t programs = 0;
    for (const std::string& file : HandheldFiles()) {
        const Database database = ReadDatabase(Bytes(file));
        const std::string name = fs::path(file).filename();
        EXPECT_EQ(database.Name, fs::path(file).stem().string());
        EXPECT_EQ(database.Creator, FourCharacters("ZUK2")) << name;
        EXPECT_EQ(database.IsResource(), name.ends_with(".prc")) << name;
        if (!TableOfDatabase(database.Name).empty()) continue;
        const std::string& words =
            database.IsResource() ? database.Resources.front().Data : database.Records.front().Data;
        EXPECT_TRUE(words.starts_with("This is a stand-in for " + name + ", ")) << words;
        programs += database.IsResource() ? 1 : 0;
    }

    EXPECT_EQ(programs, 19U);
    EXPECT_NE(Run({"programs"}).Out.find("Tramble: version 1, type appl, creator ZUK2, 2 resources"),
              std::string::npos);
    EXPECT_NE(Run({"programs"}).Out.find("19 program files\n"), std::string::npos);
}

TEST_F(DemoCompany, TheTablesOfTheApplicationAreThere) {
    GivenDemoHandheld();

    EXPECT_EQ(Run({"version"}).Out, "100\n");
    for (const char* const table : {"ZUKTPMNT", "ZUKPRN", "ZUKTEMP"}) {
        EXPECT_EQ(HandheldTable(Its().Store, table).Count(), 0U) << table;
    }
}

TEST_F(DemoCompany, ItsOrdersMakeACorrectExport) {
    GivenDemoOffice();
    const ExportTemplate demo =
        ReadExportTemplate(TRAMBLE_SOURCE "/resources/templates/DemoOrders.xor").Template;
    ExportJob job{Folder() + "orders.csv", *demo.Delimiter, false, false, false, false, demo.Columns};
    NoProgress nobody;

    const ExportResult result = ExportOrders(
        job, LoadOrderTables(Global.DBFPath + "ZUKORHDR.DBF", Global.DBFPath + "ZUKORLIN.DBF"), nobody);

    EXPECT_EQ(result.Exported, 56);
    EXPECT_EQ(result.OrphanLines, 0);
    const std::vector<std::string> lines = Lines(job.ExportFile);
    ASSERT_EQ(lines.size(), 56U);
    const std::vector<Record> rows = Rows("ZUKOrLin");
    std::map<std::string, Record> headers;
    for (const Record& order : Rows("ZUKOrHdr")) headers[order.at("H_ORDCODE")] = order;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const Record& line = rows[k];
        const Record& order = headers[line.at("L_ORDCODE")];
        const std::string& date = order.at("H_ORDDATE");
        const std::string& ship = order.at("H_SHIPDATE");
        // What is a number has no quotes, in whatever field it stands.
        const auto quoted = [](const std::string& text) {
            const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
            return isNumber ? text + ',' : '"' + text + "\",";
        };
        const std::string begin = quoted(line.at("L_ORDCODE")) +
                                  quoted(date.substr(6) + '.' + date.substr(4, 2) + '.' + date.substr(0, 4)) +
                                  quoted(order.at("H_CUSTCODE")) + quoted(order.at("H_BILLNAME")) +
                                  quoted(order.at("H_CUST_PO")) + "\"WEB\"," + line.at("L_NUMBER") + ',' +
                                  quoted(line.at("L_ITEMCODE")) + quoted(line.at("L_ITEMDES1")) +
                                  line.at("L_QTY") + ',' + quoted(line.at("L_QTY_UM")) + line.at("L_PRICE") +
                                  ',';
        const std::string end =
            ',' + line.at("L_TOTPRICE") + ',' + order.at("H_TOTTOTAL") + ',' + quoted(order.at("H_SHIPVIA")) +
            (ship.empty() ? std::string("\"\"")
                          : '"' + ship.substr(0, 4) + '-' + ship.substr(4, 2) + '-' + ship.substr(6) + '"');
        EXPECT_TRUE(lines[k].starts_with(begin)) << lines[k] << "\nand not\n" << begin;
        EXPECT_TRUE(lines[k].ends_with(end)) << lines[k] << "\nand not\n" << end;
    }
}
