#include "Data.h"

#include "core/CodePage.h"
#include "core/Directories.h"
#include "core/Globals.h"
#include "core/SafeFile.h"
#include "maintenance/Office.h"
#include "store/OfficeTables.h"
#include "store/TableRewrite.h"

#include <array>
#include <filesystem>
#include <random>

namespace {

/// Twelve digits of a number, so that codes sort as they count.
std::string Code(char letter, std::int64_t number) {
    std::string digits = std::to_string(number);
    return letter + std::string(11 - digits.size(), '0') + digits;
}

std::string Two(std::int64_t number) {
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

/// Every number below `count` once, in no order that a sort could use.
std::int64_t Shuffled(std::int64_t index, std::int64_t count) {
    constexpr std::int64_t Step = 618'033'989; // shares no factor with a power of ten
    return index * Step % count;
}

using Names = std::array<std::string_view, 8>;
constexpr Names Companies{"Acme",  "Bolt & Sons", "Caf\xC3\xA9 Central", "Delta Supply", "Evans",
                          "Fjord", "Garage",      "M\xC3\xBCller Handel"};
constexpr Names People{"Ann Archer", "Bo Berg",     "Carl Crane", "Dora Diaz",
                       "Eve Ek",     "Fred Farmer", "Gil Gray",   "Zo\xC3\xAB Hart"};
constexpr Names Cities{"Springfield",
                       "Riverton",
                       "Lakewood",
                       "Seattle",
                       "Tacoma",
                       "Olympia",
                       "Vancouver",
                       "Montr\xC3\xA9"
                       "al"};
constexpr Names Ways{"Ground", "Air", "Truck", "Mail", "Courier", "Ground", "Pick-up", "Truck"};

std::string Pick(const Names& names, std::int64_t index) {
    return std::string(names[static_cast<std::size_t>(index) % names.size()]);
}

/// As an accounting system writes them: quotes round the texts, and a comma in one of them.
std::string CustomerLine(std::int64_t i) {
    const std::string n = std::to_string(i);
    const std::string zip = std::to_string(10000 + i * 7 % 90000);
    const std::string phone = std::to_string(1000 + i * 13 % 9000);
    return Code('C', i) + R"(,")" + Pick(Companies, i) + " " + n + R"(, Ltd",")" + Pick(People, i) +
           R"(",")" + n + R"( High Street",")" + Pick(Cities, i) + R"(","WA",)" + zip + R"(,"(206) 555-)" +
           phone + R"(","Net 30",")" + Pick(Ways, i) + R"(",STD,"ALT)" + n + R"(","Floor )" +
           std::to_string(i % 40) + R"(",0)";
}

} // namespace

BenchOffice::BenchOffice()
    : folder_((std::filesystem::temp_directory_path() /
               ("tramble-bench-" + std::to_string(std::random_device()())))
                  .string() +
              "/"),
      keep_(false) {
    Use();
}

BenchOffice::BenchOffice(std::string folder) : folder_(std::move(folder)), keep_(true) {
    if (!folder_.ends_with('/')) folder_ += '/';
    Use();
}

void BenchOffice::Use() const {
    Global = Globals{};
    const bool fresh = !std::filesystem::exists(folder_ + "DBFFiles");
    if (fresh) LayOutOffice(TRAMBLE_INSTALLED, folder_);
    Global.AppPath = folder_;
    SetTablesAndInstall();
    SetImagesAndTotals();
    if (fresh) MakeEmptyTwins();
    SetDataIn();
    SetDataOutBackupTemplates();
}

BenchOffice::~BenchOffice() {
    Global = Globals{};
    if (keep_) return;
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string BenchOffice::GivenCustomerFile(std::int64_t lines) const {
    std::string path = Global.DataInPath + "customers-" + std::to_string(lines) + ".csv";
    SafeFile file(path);
    file.WriteLine("Code,Name,Contact,Address,City,State,Zip,Phone,Terms,Via,Tax,Alt,Second,End");
    for (std::int64_t i = 0; i < lines; ++i) file.WriteLine(CustomerLine(i));
    file.Commit(false);
    return path;
}

void BenchOffice::GivenCustomers(std::int64_t count, Order order) const {
    TableRewrite table(Global.DBFPath + "ZUKCust.dbf");
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t n = order == Order::None ? Shuffled(i, count) : i;
        table.Append();
        table.Write("C_SEARCH", Code('C', n));
        table.Write("C_CODE", Code('C', n));
        table.Write("C_PHONE", "(206) 555-" + std::to_string(1000 + n * 13 % 9000));
        table.Write("C_NAME", Utf8ToCodePage(Pick(Companies, n)) + " " + std::to_string(n));
        table.Write("C_ZIP", std::to_string(10000 + n * 7 % 90000));
        table.Write("C_ADDRESS1", std::to_string(n) + " High Street");
        table.Write("C_CITY", Utf8ToCodePage(Pick(Cities, n)));
        table.Write("C_STATE", "WA");
        table.Write("C_CONTACT", Utf8ToCodePage(Pick(People, n)));
        table.Write("C_PAYTERMS", "Net 30");
        table.Write("C_SHIPVIA", Pick(Ways, n));
        table.Write("C_STCODE", "STD");
    }
    table.Commit(false);
}

void BenchOffice::GivenItems(std::int64_t count, Order order) const {
    TableRewrite table(Global.DBFPath + "ZUKItem.dbf");
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t n = order == Order::None ? Shuffled(i, count) : i;
        table.Append();
        table.Write("I_SEARCH", Code('I', n));
        table.Write("I_ITEMCODE", Code('I', n));
        table.Write("I_BARCODE", std::to_string(4'000'000'000'000 + Shuffled(n, count)));
        table.Write("I_DESC1", "Item number " + std::to_string(n));
        table.Write("I_UM", "EACH");
        table.Write("I_PRICE", std::to_string(n % 90 + 1) + ".25");
        table.Write("I_STAXUSE", "Y");
        if (n % 4 == 0) table.Write("I_BARCODE2", std::to_string(5'000'000'000'000 + n));
    }
    table.Commit(false);
}

void BenchOffice::GivenSalesTax(std::string_view code) const {
    TableRewrite table(Global.DBFPath + "ZUKSTAX.dbf");
    table.Append();
    table.Write("ST_CODE", code);
    table.Write("ST_DESC", "Standard");
    table.Write("ST_RATE", "8.25");
    table.Commit(false);
}

void BenchOffice::GivenOrders(std::int64_t headers, std::int64_t lines) const {
    TableRewrite hdr(Global.DBFPath + "ZUKORHDR.DBF");
    for (std::int64_t i = 0; i < headers; ++i) {
        const std::int64_t n = Shuffled(i, headers);
        hdr.Append();
        hdr.Write("H_ORDCODE", Code('A', n));
        hdr.Write("H_CUSTCODE", Code('C', n % 5000));
        hdr.Write("H_BILLNAME", Utf8ToCodePage(Pick(Companies, n)) + " " + std::to_string(n));
        hdr.Write("H_CUST_PO", "PO-" + std::to_string(n));
        hdr.Write("H_ORDDATE", "2026" + Two(n % 12 + 1) + Two(n % 28 + 1));
        hdr.Write("H_ORDTIME", Two(n % 24) + ":" + Two(n % 60));
        hdr.Write("H_SHIPVIA", Pick(Ways, n));
        hdr.Write("H_PAYTERMS", "Net 30");
        hdr.Write("H_BILLADD1", std::to_string(n) + " High Street");
        hdr.Write("H_BILLCITY", "Springfield");
        hdr.Write("H_BILLST", "WA");
        hdr.Write("H_BILLZIP", std::to_string(10000 + n * 7 % 90000));
        hdr.Write("H_NUMLINES", "5");
        hdr.Write("H_TOTITEMS", std::to_string(n % 900 + 10) + ".50");
        hdr.Write("H_TOTTOTAL", std::to_string(n % 900 + 12) + ".45");
    }
    hdr.Commit(false);
    TableRewrite lin(Global.DBFPath + "ZUKORLIN.DBF");
    const std::int64_t each = lines > 0 ? (lines + headers - 1) / headers : 1;
    for (std::int64_t i = 0; i < lines; ++i) {
        const std::int64_t item = i * 31 % 20000;
        lin.Append();
        lin.Write("L_ORDCODE", Code('A', i / each));
        lin.Write("L_CUSTCODE", Code('C', i / each % 5000));
        lin.Write("L_KEY", Code('A', i / each) + Two(i % each));
        lin.Write("L_NUMBER", std::to_string(i % each + 1));
        lin.Write("L_ITEMCODE", Code('I', item));
        lin.Write("L_ITEMDES1", "Item number " + std::to_string(item));
        lin.Write("L_QTY", std::to_string(i % 17 + 1));
        lin.Write("L_PRICE", std::to_string(i % 90 + 1) + ".25");
        lin.Write("L_TOTPRICE", std::to_string((i % 17 + 1) * (i % 90 + 1)) + ".75");
        lin.Write("L_DATE", "202611" + Two(i % 28 + 1));
    }
    lin.Commit(false);
}

void BenchOffice::GivenAudit(std::int64_t headers) const {
    TableRewrite audit(Global.DBFPath + "ZUKAUDTH.DBF");
    for (std::int64_t i = 0; i < headers; ++i) {
        const std::int64_t n = Shuffled(i, headers);
        audit.Append();
        audit.Write("A_ORDCODE", Code('A', n));
        audit.Write("A_CUSTCODE", Code('C', n % 5000));
        audit.Write("A_TOTTOTAL", std::to_string(n % 900 + 12) + ".45");
        audit.Write("A_PRT_STAT", "Y");
        audit.Write("A_DELTYPE", "SINGLE");
        audit.Write("A_DATE", "2026" + Two(n % 12 + 1) + Two(n % 28 + 1));
        audit.Write("A_TIME", Two(n % 24) + ":" + Two(n % 60) + ":00");
        audit.Write("A_MACH_ID", "A001");
    }
    audit.Commit(false);
}

void BenchOffice::GivenEvents(std::int64_t events) const {
    TableRewrite totals(Global.DBFPath + "ZUKTOTALPC.DBF");
    for (std::int64_t i = 0; i < events; ++i) {
        totals.Append();
        totals.Write("TP_NUMHEAD", "5");
        totals.Write("TP_NUMLINE", "50");
        totals.Write("TP_DOL_LIN", "1234.5");
        totals.Write("TP_EVENT", "UPLOAD-ADD");
        totals.Write("TP_DATETIM", "2026-11-15 12:00:00");
    }
    totals.Commit(false);
}
