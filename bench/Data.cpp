#include "Data.h"

#include "core/Directories.h"
#include "core/Globals.h"
#include "core/SafeFile.h"
#include "maintenance/Office.h"
#include "store/OfficeTables.h"
#include "store/TableRewrite.h"

#include <filesystem>
#include <random>

namespace {

/// Twelve digits of a number, so that codes sort as they count.
std::string Code(char letter, std::int64_t number) {
    std::string digits = std::to_string(number);
    return letter + std::string(11 - digits.size(), '0') + digits;
}

} // namespace

BenchOffice::BenchOffice() {
    folder_ =
        (std::filesystem::temp_directory_path() / ("tramble-bench-" + std::to_string(std::random_device()())))
            .string() +
        "/";
    Global = Globals{};
    LayOutOffice(TRAMBLE_INSTALLED, folder_);
    Global.AppPath = folder_;
    SetTablesAndInstall();
    SetImagesAndTotals();
    MakeEmptyTwins();
    SetDataIn();
    SetDataOutBackupTemplates();
}

BenchOffice::~BenchOffice() {
    Global = Globals{};
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string BenchOffice::GivenCustomerFile(std::int64_t lines) const {
    const std::string path = Global.DataInPath + "customers.csv";
    SafeFile file(path);
    file.WriteLine("Code,Name,Contact,Address,City,State,Zip,Phone,Terms,Via,Tax,Alt,Second,End");
    for (std::int64_t i = 0; i < lines; ++i) {
        const std::string n = std::to_string(i);
        file.WriteLine(
            Code('C', i) + ",\"Company " + n + ", Ltd\",\"Contact " + n + "\",\"" + n +
            " High Street\",\"Springfield\",\"WA\",98101,\"(206) 555-0100\",\"Net 30\",\"Ground\",STD,\"ALT" +
            n + "\",\"Floor 2\",0");
    }
    file.Commit(false);
    return path;
}

void BenchOffice::GivenOrders(std::int64_t headers, std::int64_t lines) const {
    TableRewrite hdr(Global.DBFPath + "ZUKORHDR.DBF");
    for (std::int64_t i = 0; i < headers; ++i) {
        hdr.Append();
        // Shuffled, so that a sort has work to do.
        hdr.Write("H_ORDCODE", Code('A', i * 7919 % headers));
        hdr.Write("H_CUSTCODE", Code('C', i % 5000));
        hdr.Write("H_BILLNAME", "Company " + std::to_string(i));
        hdr.Write("H_ORDDATE", "20261115");
        hdr.Write("H_TOTTOTAL", "123.45");
    }
    hdr.Commit(false);
    TableRewrite lin(Global.DBFPath + "ZUKORLIN.DBF");
    for (std::int64_t i = 0; i < lines; ++i) {
        lin.Append();
        lin.Write("L_ORDCODE", Code('A', i % headers));
        lin.Write("L_KEY", Code('K', i));
        lin.Write("L_ITEMCODE", Code('I', i % 20000));
        lin.Write("L_ITEMDES1", "Item number " + std::to_string(i % 20000));
        lin.Write("L_QTY", std::to_string(i % 17 + 1));
        lin.Write("L_PRICE", "12.3333");
        lin.Write("L_TOTPRICE", "24.67");
    }
    lin.Commit(false);
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
