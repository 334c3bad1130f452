// What the engine does in a day, on generated data. bench/run builds and starts it.

#include "Data.h"
#include "Jobs.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Trace.h"
#include "exchange/OrderCheck.h"
#include "maintenance/Restore.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "maintenance/VersionUpdate.h"
#include "quality/Checks.h"
#include "quality/SearchField.h"
#include "quality/TableChecks.h"
#include "store/CreateTable.h"
#include "store/OfficeTables.h"
#include "store/SortTables.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "sync/ReceiptCount.h"
#include "views/BoxReport.h"
#include "views/MasterTable.h"
#include "views/TableViews.h"

#include <benchmark/benchmark.h>

namespace {

void ImportCustomers(benchmark::State& state) {
    const BenchOffice office;
    const ImportJob job = CustomerImport(office.GivenCustomerFile(state.range(0)));
    NoProgress silent;
    for (auto _ : state) {
        state.PauseTiming();
        EmptyTable(job.TableFile, false); // what stands there already is not written again
        state.ResumeTiming();
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
        const PCOrders book = OpenPCOrders(HeaderTable(), LineTable());
        if (ExportOrders(job, book.Tables, silent).Exported != state.range(0))
            state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ExportOrderLines)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void SortOrderHeaders(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0), 0);
    CopyOver(HeaderTable(), HeaderTable() + ".uploaded", false);
    for (auto _ : state) {
        state.PauseTiming();
        CopyOver(HeaderTable() + ".uploaded", HeaderTable(), false);
        state.ResumeTiming();
        PCOrders book = OpenPCOrders(HeaderTable(), LineTable());
        SortOrHdrFile(book);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(SortOrderHeaders)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

using Order = BenchOffice::Order;
using Sort = void (*)(std::string_view, const SortOptions&, Progress&);

/// Each time on the table as it was delivered.
void SortMaster(benchmark::State& state, Sort sort, const char* table) {
    const std::string path = Global.DBFPath + table;
    CopyOver(path, path + ".delivered", false);
    NoProgress silent;
    for (auto _ : state) {
        state.PauseTiming();
        CopyOver(path + ".delivered", path, false);
        state.ResumeTiming();
        sort(path, {}, silent);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void SortCustomers(benchmark::State& state, Order order) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), order);
    SortMaster(state, SortCustFile, "ZUKCust.dbf");
}
BENCHMARK_CAPTURE(SortCustomers, shuffled, Order::None)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SortCustomers, sorted, Order::OfKeys)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void SortItems(benchmark::State& state, Order order) {
    const BenchOffice office;
    office.GivenItems(state.range(0), order);
    SortMaster(state, SortItemFile, "ZUKItem.dbf");
}
BENCHMARK_CAPTURE(SortItems, shuffled, Order::None)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SortItems, sorted, Order::OfKeys)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// In `again` the index is there already, and of the same items.
void RebuildBarcodes(benchmark::State& state, bool again) {
    const BenchOffice office;
    office.GivenItems(state.range(0), Order::OfKeys);
    NoProgress silent;
    RebuildIndexTables(silent);
    for (auto _ : state) {
        state.PauseTiming();
        if (!again) EmptyTable(Global.DBFPath + "ZUKBarin.dbf", false);
        state.ResumeTiming();
        RebuildIndexTables(silent);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(RebuildBarcodes, anew, false)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RebuildBarcodes, again, true)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// The sorts of a Quality Check of everything: the items are sorted for their own check and again for
/// that of the barcodes.
void SortsOfACheck(benchmark::State& state, Order order) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), order);
    office.GivenItems(state.range(0), order);
    const std::string customers = Global.DBFPath + "ZUKCust.dbf";
    const std::string items = Global.DBFPath + "ZUKItem.dbf";
    for (const std::string& table : {customers, items}) CopyOver(table, table + ".delivered", false);
    NoProgress silent;
    for (auto _ : state) {
        state.PauseTiming();
        for (const std::string& table : {customers, items}) CopyOver(table + ".delivered", table, false);
        state.ResumeTiming();
        SortSTaxFile(Global.DBFPath + "ZUKSTAX.dbf", {}, silent);
        SortCustFile(customers, {}, silent);
        for (int check = 1; check <= 2; ++check) {
            SortItemFile(items, {}, silent);
            RebuildIndexTables(silent);
        }
    }
}
BENCHMARK_CAPTURE(SortsOfACheck, shuffled, Order::None)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SortsOfACheck, sorted, Order::OfKeys)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// A Quality Check of everything; in a `faulty` office no customer's sales tax code is known.
void CheckEverything(benchmark::State& state, Order order, bool faulty) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), order);
    office.GivenItems(state.range(0), order);
    if (!faulty) office.GivenSalesTax("STD");
    const std::string customers = Global.DBFPath + "ZUKCust.dbf";
    const std::string items = Global.DBFPath + "ZUKItem.dbf";
    for (const std::string& table : {customers, items}) CopyOver(table, table + ".delivered", false);
    NoProgress silent;
    const CheckTools tools{silent, [] { return std::vector<std::string>(); }};
    for (auto _ : state) {
        state.PauseTiming();
        for (const std::string& table : {customers, items}) CopyOver(table + ".delivered", table, false);
        state.ResumeTiming();
        ProblemList problems;
        for (const Check check : AllChecks()) RunCheck(check, tools, problems);
        benchmark::DoNotOptimize(problems.ProblemRows());
    }
}
BENCHMARK_CAPTURE(CheckEverything, shuffled, Order::None, false)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckEverything, sorted, Order::OfKeys, false)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckEverything, faulty, Order::None, true)->Arg(100'000)->Unit(benchmark::kMillisecond);

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

/// What an upload costs the PC that holds so many order lines and a tenth of the headers: safety copies and
/// old totals before it, merge and totals behind it. The handheld sends a hundred lines.
void MergeAnUpload(benchmark::State& state) {
    constexpr std::int64_t LinesSent = 100;
    const BenchOffice office;
    Global.UploadSelect = Selection(true);
    const auto keep = [](const char* as) {
        for (const std::string& table : {HeaderTable(), LineTable()}) CopyOver(table, table + as, false);
    };
    const auto put = [](const char* as) {
        for (const std::string& table : {HeaderTable(), LineTable()}) CopyOver(table + as, table, false);
    };
    office.GivenOrders(LinesSent / 10, LinesSent);
    keep(".sent");
    office.GivenOrders(state.range(0) / 10, state.range(0));
    keep(".held");
    NoProgress silent;
    for (auto _ : state) {
        state.PauseTiming();
        put(".held");
        state.ResumeTiming();
        MakeSafetyCopies(SafetyCopies::OfSession);
        CalcOldPCTotals();
        state.PauseTiming();
        put(".sent");
        state.ResumeTiming();
        for (const MergedTable& table : {MergedOrderHeaders, MergedOrderLines}) {
            TableMerge merge(table);
            merge.WriteText();
            merge.ReadText(silent);
        }
        CalcPCTotals("UPLOAD-ADD", silent);
        DeleteSafetyCopies(SafetyCopies::OfSession);
        if (Global.CurLines != state.range(0) + LinesSent) state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(MergeAnUpload)->Arg(10'000)->Arg(50'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// What a receipt costs whose orders the PC held already, every one of them: each is compared whole.
void CompareForAReceipt(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 10, state.range(0));
    const OrderPair tables{HeaderTable(), LineTable()};
    for (auto _ : state) {
        const Comparison result = Compare(tables, tables);
        if (!result.Changed.empty() || result.Arrived.Lines != state.range(0))
            state.SkipWithError("orders differ from themselves");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CompareForAReceipt)->Arg(10'000)->Arg(50'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// What a start costs that finds the lines of such an upload not merged yet.
void RecoverAnUpload(benchmark::State& state) {
    const BenchOffice office;
    Global.UploadSelect = Selection(true);
    office.GivenOrders(state.range(0) / 10, state.range(0));
    CopyOver(LineTable(), LineTable() + ".held", false);
    for (auto _ : state) {
        state.PauseTiming();
        CopyOver(LineTable() + ".held", LineTable(), false);
        MakeSafetyCopies(SafetyCopies::OfSession);
        EmptyTable(LineTable(), false);
        state.ResumeTiming();
        if (RecoverSafetyCopies().size() != 1) state.SkipWithError("nothing was put back");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(RecoverAnUpload)->Arg(10'000)->Arg(50'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

std::string BackupAt(int minute) {
    static DateTime moment;
    moment = {2026, 11, 1 + minute / 1440 % 28, minute / 60 % 24, minute % 60, 0};
    Global.Clock = [] { return moment; };
    if (!MakeBackup("CLEAR")) return {};
    std::string folder = Global.BackupPath + BackupName(moment) + "/";
    moment = {2026, 12, 1, 0, 0, minute % 60};
    return folder;
}

void BackUp(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 5, state.range(0));
    for (auto _ : state) {
        if (BackupAt(0).empty()) state.SkipWithError("no backup was made");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BackUp)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void ListBackups(benchmark::State& state) {
    const BenchOffice office;
    office.GivenOrders(20, 100);
    for (int k = 0; k < state.range(0); ++k) BackupAt(k);
    NoProgress silent;
    for (auto _ : state) {
        const auto points = ReadBackups(silent);
        if (points.size() != static_cast<std::size_t>(state.range(0)) ||
            points.front().Files != BackupFiles::Complete)
            state.SkipWithError("a backup is missing or has changed");
    }
}
BENCHMARK(ListBackups)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Byte by byte, or out of the fields of another release.
void RestoreOrders(benchmark::State& state, bool otherFields) {
    const BenchOffice office;
    office.GivenOrders(state.range(0) / 5, state.range(0));
    const std::string folder = BackupAt(0);
    if (otherFields) {
        const FieldDef fields[] = {{"L_KEY", 'C', 40},
                                   {"L_ORDCODE", 'C', 20},
                                   {"L_QTY", 'N', 10},
                                   {"L_TOTPRICE", 'N', 12, 2},
                                   {"L_OLDFIELD", 'C', 30}};
        CreateTable(folder + "ZUKOrOld.dbf", fields);
        NoProgress silent;
        CopySingleTable(folder + "ZUKOrLin.dbf", folder + "ZUKOrOld.dbf", silent);
        Global.TheDisk->Rename(folder + "ZUKOrOld.dbf", folder + "ZUKOrLin.dbf");
    }
    NoProgress silent;
    for (auto _ : state) {
        const RestoreResult result =
            RestoreTables(folder, [&](const std::string& from, const std::string& to) {
                CopySingleTable(from, to, silent);
            });
        if (result.How != RestoreResult::End::Restored) state.SkipWithError("the restore failed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(RestoreOrders, same_fields, false)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RestoreOrders, other_fields, true)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// As every routine finds the trace: full.
void TraceEvents(benchmark::State& state) {
    const BenchOffice office;
    for (std::size_t k = 0; k < TraceEntries; ++k) TraceEvent("frmMainSync:SFMain_HotSyncStatus");
    for (auto _ : state) TraceEvent("frmMainSync:SFMain_HotSyncStatus");
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

/// Paper that counts its lines and forgets them.
class Shredder final : public Printer {
public:
    void SetFont(const PrintFont&) override {}
    void Print(const Text&) override { ++Lines; }
    int LinesPerPage() override { return 80; }
    int PageWidth() const override { return 11000; }
    int PageHeight() const override { return 15000; }
    int TextWidth(const Text&) override { return 0; }
    int TextHeight() override { return 180; }
    void PrintAt(int, int, const Text&) override {}
    void PrintBox(int, int, int, int) override {}
    void NewPage() override {}
    void EndDoc() override {}

    std::int64_t Lines = 0;
};

/// The pages of the order header audit: as the records stand, or by customer.
void PrintTheAudit(benchmark::State& state, int sortColumn) {
    const BenchOffice office;
    office.GivenAudit(state.range(0));
    for (auto _ : state) {
        auto rows =
            std::make_unique<TableGrid>(Global.DBFPath + "ZUKAUDTH.DBF", [](const TableLayout& layout) {
                return DataColumns(*FindTable("ZUKAUDTH.DBF"), layout);
            });
        if (sortColumn > 0) rows->Sort(sortColumn, false);
        BoxReport report(OrHdrAudtForm(), std::move(rows), UsualPageLength);
        Shredder paper;
        ReportRun run(report, paper);
        while (!run.IsOver()) run.Step(5);
        if (paper.Lines < state.range(0)) state.SkipWithError("rows were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(PrintTheAudit, unsorted, 0)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PrintTheAudit, byCustomer, 2)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// Each time from another field, since a table that holds its new content already is not written.
void UpdateSearchFields(benchmark::State& state) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), Order::None);
    bool byCode = false;
    for (auto _ : state) {
        byCode = !byCode;
        if (UpdateSearchField(CustomerSearch, byCode ? "Code" : "Company") != state.range(0))
            state.SkipWithError("customers were lost");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(UpdateSearchFields)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void OpenAMasterEditor(benchmark::State& state) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), Order::None);
    for (auto _ : state) {
        MasterTable customers(CustomerMaster, {FieldsWithoutRepeats, FirstObjection});
        customers.Open(1);
        benchmark::DoNotOptimize(customers.Lookup().size());
    }
}
BENCHMARK(OpenAMasterEditor)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// A change, the move to the next record, and what there is to warn of there.
void SaveAndMoveInAMaster(benchmark::State& state) {
    const BenchOffice office;
    office.GivenCustomers(state.range(0), Order::None);
    constexpr int C_CITY = 8;
    MasterTable customers(CustomerMaster, {FieldsWithoutRepeats, FirstObjection});
    customers.Open(1);
    int turn = 0;
    for (auto _ : state) {
        customers.Write({{C_CITY, std::to_string(++turn)}});
        customers.Go(customers.RecordNumber() == customers.RecordCount() ? DBFEdit::First : DBFEdit::Next);
        benchmark::DoNotOptimize(customers.Warning({}));
    }
}
BENCHMARK(SaveAndMoveInAMaster)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
