#include "exchange/OrderCheck.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "core/Trace.h"
#include "store/TableRewrite.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int H_ORDCODE = 1; ///< position in ZUKORHDR
constexpr int L_KEY = 6;     ///< position in ZUKORLIN

/// Numbers of records, in the order in which they are to stand in the table.
using Records = std::vector<std::int32_t>;

/// Empties a table and writes records of its copy, with the trace lines of those steps.
void Refill(const std::string& path, MemoryTable& copy, const Records& records) {
    TraceEvent("DBFEdit:FileOpen " + path);
    TableRewrite table(path);
    TraceEvent("DBFEdit:ReIndex " + path);
    TraceEvent("DBFEdit:FileClose");
    TraceEvent("DBFEdit:FileOpen " + path);
    for (const std::int32_t record : records) table.Append(copy.Record(record));
    TraceEvent("DBFEdit:FileClose");
    table.Commit();
    LoadTable(copy, path);
}

void SortTable(const std::string& path, MemoryTable& copy, int key) {
    std::vector<std::pair<std::string, std::int32_t>> keyed;
    keyed.reserve(static_cast<std::size_t>(copy.RecordCount()));
    for (std::int32_t record = 1; record <= copy.RecordCount(); ++record)
        keyed.emplace_back(SortKey(copy.CellOrEmpty(record, key)), record);
    std::sort(keyed.begin(), keyed.end()); // equal keys by their records' numbers
    Records records;
    records.reserve(keyed.size());
    for (const auto& [text, record] : keyed) records.push_back(record);
    Refill(path, copy, records);
}

/// One check over both tables: a Yes holds for what follows.
class Check {
public:
    explicit Check(const RepeatQuestions& questions) : questions_(questions) {}

    /// Removes the repeats of a table, if there are any and the operator agrees.
    void RemoveRepeats(const std::string& path, MemoryTable& copy, int key) {
        Records kept;
        std::string_view lastKey;
        for (std::int32_t record = 1; record <= copy.RecordCount(); ++record) {
            const std::string_view own = copy.CellOrEmpty(record, key);
            const bool repeat = record > 1 && SameText(own, lastKey);
            if (repeat && !deletePending_) Ask();
            if (!repeat) lastKey = own;
            if (!repeat || !deletePending_) kept.push_back(record);
        }
        if (!deletePending_) return;
        // The question may have waited for long: what was uploaded meanwhile is not in the copy.
        if (LoadTable(path) != copy) throw RunTimeFailure(75, path);
        Refill(path, copy, kept);
    }

private:
    void Ask() {
        if (!questions_.DeleteRepeats()) return; // the next repeat asks again
        if (!questions_.MakeBackup()) questions_.BackupFailed();
        questions_.CalcPCTotals();
        deletePending_ = true;
    }

    const RepeatQuestions& questions_;
    bool deletePending_ = false;
};

} // namespace

OrderBook OpenOrderBook(std::string headerFile, std::string lineFile) {
    OrderBook book;
    book.Tables = LoadOrderTables(headerFile, lineFile);
    book.HeaderFile = std::move(headerFile);
    book.LineFile = std::move(lineFile);
    return book;
}

void SortOrHdrFile(OrderBook& book) {
    SortTable(book.HeaderFile, book.Tables.FGHdr, H_ORDCODE);
}

void SortOrLinFile(OrderBook& book) {
    SortTable(book.LineFile, book.Tables.FGLin, L_KEY);
}

void QualityCheckOrders(OrderBook& book, const RepeatQuestions& questions) {
    if (!book.Sorted) {
        SortOrHdrFile(book);
        SortOrLinFile(book);
    }
    Check check(questions);
    check.RemoveRepeats(book.HeaderFile, book.Tables.FGHdr, H_ORDCODE);
    check.RemoveRepeats(book.LineFile, book.Tables.FGLin, L_KEY);
}

void PrepareOrders(const ExportJob& job, OrderBook& book, const RepeatQuestions& questions) {
    if (job.SortOrders) {
        SortOrHdrFile(book);
        SortOrLinFile(book);
        book.Sorted = true;
    }
    if (job.QualityCheck) QualityCheckOrders(book, questions);
}
