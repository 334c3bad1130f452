// What the engine does in a day, on generated data. bench/run builds and starts it.

#include "Data.h"
#include "Jobs.h"

#include "core/Globals.h"
#include "core/Trace.h"
#include "exchange/OrderCheck.h"
#include "maintenance/Totals.h"
#include "store/OfficeTables.h"
#include "store/TableScan.h"
#include "views/TableViews.h"

#include <benchmark/benchmark.h>

namespace {

void ImportCustomers(benchmark::State& state) {
    const BenchOffice office;
    const ImportJob job = CustomerImport(office.GivenCustomerFile(state.range(0)));
    NoProgress silent;
    for (auto _ : state) {
        const ImportResult result = ImportDataFile(job, silent);
        if (result.LinesRead != state.range(0) || result.LinesFailed != 0)
            state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ImportCustomers)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void ExportOrderLines(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 5, state.range(0));
    const ExportJob job = OrderExport(Global.DataOutPath + "orders.csv");
    NoProgress silent;
    for (auto _ : state) {
        const OrderBook book = OpenOrderBook(HeaderTable(), LineTable());
        if (ExportOrders(job, book.Tables, silent).Exported != state.range(0))
            state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ExportOrderLines)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void SortOrderHeaders(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0), 0);
    for (auto _ : state) {
        OrderBook book = OpenOrderBook(HeaderTable(), LineTable());
        SortOrHdrFile(book);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(SortOrderHeaders)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void ScanOrderLines(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(1000, state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(SumOfLines(LineTable()));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ScanOrderLines)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void TotalsEvent(benchmark::State& state) {
    const BenchOffice office;
    NoProgress silent;
    for (auto _ : state) {
        state.PauseTiming();
        office.GivenEvents(state.range(0));
        state.ResumeTiming();
        CalcPCTotals("RESTORE", silent);
    }
}
BENCHMARK(TotalsEvent)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void TraceEvents(benchmark::State& state) {
    const BenchOffice office;
    for (auto _ : state) TraceEvent("frmMain1:Form_Load");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(TraceEvents)->Unit(benchmark::kMicrosecond);

void EmptyTwins(benchmark::State& state) {
    const BenchOffice office;
    for (auto _ : state) MakeEmptyTwins();
}
BENCHMARK(EmptyTwins)->Unit(benchmark::kMillisecond);

TableColumns OrderLineColumns(const TableLayout& layout) {
    return DataColumns(*FindTable("ZUKORLIN"), layout);
}

void SortAColumn(benchmark::State& state, const char* field) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 5, state.range(0));
    TableGrid grid(Global.DBFPath + "ZUKORLIN.DBF", OrderLineColumns);
    const int column = TableReader(grid.Path()).Layout().Find(FieldKey(field));
    bool descending = true;
    for (auto _ : state) grid.Sort(column, descending = !descending);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(SortAColumn, texts, "L_ITEMDES1")->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SortAColumn, numbers, "L_QTY")->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void FindInASortedColumn(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 5, state.range(0));
    TableGrid grid(Global.DBFPath + "ZUKORLIN.DBF", OrderLineColumns);
    const int column = TableReader(grid.Path()).Layout().Find("L_KEY");
    grid.Sort(column, true);
    for (auto _ : state) {
        if (grid.Find(column, "nowhere", 0)) state.SkipWithError("found what is not there");
    }
}
BENCHMARK(FindInASortedColumn)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void OpenATableAndShowItsEnd(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(1000, state.range(0));
    for (auto _ : state) {
        TableGrid grid(Global.DBFPath + "ZUKORLIN.DBF", OrderLineColumns);
        for (std::int32_t row = grid.RowCount() - 40; row < grid.RowCount(); ++row) {
            for (int column = 0; column < grid.ColumnCount(); ++column)
                benchmark::DoNotOptimize(grid.Cell(row, column));
        }
    }
}
BENCHMARK(OpenATableAndShowItsEnd)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
