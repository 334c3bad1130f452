// One job of the engine as a whole process, for the comparison with other programs.
//
//   job office   FOLDER HEADERS LINES EVENTS   lays out an office and fills its order tables
//   job customers FOLDER LINES                 writes DataIn/customers-LINES.csv
//   job import   FOLDER FILE                   FILE into the table of customers
//   job export   FOLDER FILE                   the order lines with their headers into FILE
//   job sort     FOLDER                        the order headers by their codes
//   job scan     FOLDER                        prints the sum of L_TOTPRICE
//   job totals   FOLDER                        the totals event
//   job trace    FOLDER COUNT                  events into the trace

#include "Data.h"
#include "Jobs.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Trace.h"
#include "exchange/OrderCheck.h"
#include "maintenance/Totals.h"

#include <iostream>
#include <span>
#include <string>

namespace {

using Arguments = std::span<char*>;

std::int64_t Count(const char* text) {
    return ToLong(text);
}

void Check(bool holds, const char* what) {
    if (!holds) throw RunTimeFailure(5, what);
}

void RunJob(const std::string& job, const BenchOffice& office, Arguments more) {
    NoProgress silent;
    if (job == "office" && more.size() == 3) {
        office.GivenOrders(Count(more[0]), Count(more[1]));
        office.GivenEvents(Count(more[2]));
    } else if (job == "customers" && more.size() == 1) {
        std::cout << office.GivenCustomerFile(Count(more[0])) << '\n';
    } else if (job == "import" && more.size() == 1) {
        const ImportJob import = CustomerImport(more[0]);
        const ImportResult result = ImportDataFile(import, silent);
        Check(result.LinesRead == import.LineCount - 1 && result.LinesFailed == 0, "lines were lost");
    } else if (job == "export" && more.size() == 1) {
        const OrderTables tables = LoadOrderTables(HeaderTable(), LineTable());
        const ExportResult result = ExportOrders(OrderExport(more[0]), tables, silent);
        Check(result.Exported == tables.FGLin.RecordCount(), "lines were lost");
    } else if (job == "sort" && more.empty()) {
        PCOrders book = OpenPCOrders(HeaderTable(), LineTable());
        SortOrHdrFile(book);
    } else if (job == "scan" && more.empty()) {
        std::cout << NumberToText(SumOfLines(LineTable())) << '\n';
    } else if (job == "totals" && more.empty()) {
        CalcPCTotals("RESTORE", silent);
    } else if (job == "trace" && more.size() == 1) {
        for (std::int64_t k = Count(more[0]); k > 0; --k) TraceEvent("frmMain1:Form_Load");
    } else {
        throw RunTimeFailure(5, job);
    }
}

} // namespace

int main(int argc, char** argv) {
    const Arguments arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() < 3) {
        std::cerr << "job JOB FOLDER ...\n";
        return 2;
    }
    try {
        const BenchOffice office{std::string(arguments[2])};
        RunJob(arguments[1], office, arguments.subspan(3));
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
