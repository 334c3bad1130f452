#include "exchange/OrderCheck.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "store/SortTables.h"

#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr int H_ORDCODE = 1; ///< position in ZUKORHDR
constexpr int L_KEY = 6;     ///< position in ZUKORLIN

/// Writes records of a table's copy in the place of all that it holds, and fills the copy again.
void Refill(const std::string& path, MemoryTable& copy, const RecordOrder& records) {
    RefillTable(path, copy, records);
    LoadTable(copy, path);
}

/// One check over both tables: a Yes holds for what follows.
class Check {
public:
    explicit Check(const RepeatQuestions& questions) : questions_(questions) {}

    /// Removes the repeats of a table, if there are any and the operator agrees.
    void RemoveRepeats(const std::string& path, MemoryTable& copy, int key) {
        RecordOrder kept;
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

PCOrders OpenPCOrders(std::string headerFile, std::string lineFile) {
    PCOrders book;
    book.Tables = LoadOrderTables(headerFile, lineFile);
    book.HeaderFile = std::move(headerFile);
    book.LineFile = std::move(lineFile);
    return book;
}

void SortOrHdrFile(PCOrders& book) {
    Refill(book.HeaderFile, book.Tables.FGHdr, SortedByKey(book.Tables.FGHdr, H_ORDCODE));
}

void SortOrLinFile(PCOrders& book) {
    Refill(book.LineFile, book.Tables.FGLin, SortedByKey(book.Tables.FGLin, L_KEY));
}

void QualityCheckOrders(PCOrders& book, const RepeatQuestions& questions) {
    if (!book.Sorted) {
        SortOrHdrFile(book);
        SortOrLinFile(book);
    }
    Check check(questions);
    check.RemoveRepeats(book.HeaderFile, book.Tables.FGHdr, H_ORDCODE);
    check.RemoveRepeats(book.LineFile, book.Tables.FGLin, L_KEY);
}

void PrepareOrders(const ExportJob& job, PCOrders& book, const RepeatQuestions& questions) {
    if (job.SortOrders) {
        SortOrHdrFile(book);
        SortOrLinFile(book);
        book.Sorted = true;
    }
    if (job.QualityCheck) QualityCheckOrders(book, questions);
}
