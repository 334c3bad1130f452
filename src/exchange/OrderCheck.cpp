#include "exchange/OrderCheck.h"

#include "core/TextCompare.h"
#include "core/Trace.h"
#include "store/TableRewrite.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

constexpr int H_ORDCODE = 1; ///< position in ZUKORHDR
constexpr int L_KEY = 6;     ///< position in ZUKORLIN

/// Numbers of records, in the order in which they are to stand in the table.
using Records = std::vector<std::int32_t>;

Records AllRecords(const OrderTable& table) {
    Records records(static_cast<std::size_t>(table.RecordCount()));
    std::iota(records.begin(), records.end(), 1);
    return records;
}

/// Empties a table and writes records of its copy, with the trace lines of those steps.
void Refill(const std::string& path, OrderTable& copy, const Records& records) {
    TraceEvent("DBFEdit:FileOpen " + path);
    TableRewrite table(path);
    TraceEvent("DBFEdit:ReIndex " + path);
    TraceEvent("DBFEdit:FileClose");
    TraceEvent("DBFEdit:FileOpen " + path);
    const int fields = std::min(copy.FieldCount(), table.Layout().FieldCount());
    for (const std::int32_t record : records) {
        table.Append();
        for (int k = 1; k <= fields; ++k) table.Write(k, std::string(copy.Cell(record, k)));
    }
    TraceEvent("DBFEdit:FileClose");
    table.Commit();
    copy = LoadOrderTable(path);
}

void SortTable(const std::string& path, OrderTable& copy, int key) {
    Records records = AllRecords(copy);
    std::stable_sort(records.begin(), records.end(), [&](std::int32_t a, std::int32_t b) {
        return TextCompare(copy.CellOrEmpty(a, key), copy.CellOrEmpty(b, key)) < 0;
    });
    Refill(path, copy, records);
}

/// One check over both tables: a Yes holds for what follows.
class Check {
public:
    explicit Check(const RepeatQuestions& questions) : questions_(questions) {}

    /// Removes the repeats of a table, if there are any and the operator agrees.
    void RemoveRepeats(const std::string& path, OrderTable& copy, int key) {
        Records kept;
        std::string_view lastKey;
        for (std::int32_t record = 1; record <= copy.RecordCount(); ++record) {
            const std::string_view own = copy.CellOrEmpty(record, key);
            const bool repeat = record > 1 && SameText(own, lastKey);
            if (repeat && !deletePending_) Ask();
            if (!repeat) lastKey = own;
            if (!repeat || !deletePending_) kept.push_back(record);
        }
        if (deletePending_) Refill(path, copy, kept);
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
