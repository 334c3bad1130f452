#pragma once

#include "exchange/Export.h"
#include "exchange/OrderTables.h"

#include <functional>
#include <string>

/// The order tables and their copies, as a screen that exports holds them.
struct PCOrders {
    std::string HeaderFile; ///< full path of ZUKORHDR.DBF
    std::string LineFile;   ///< full path of ZUKORLIN.DBF
    OrderTables Tables;     ///< filled again by every routine below that changes a table
    bool Sorted = false;    ///< both tables have been sorted for an export
};

/// Opens the book: reads both tables. RunTimeFailure as TableScan.
PCOrders OpenPCOrders(std::string headerFile, std::string lineFile);

/// What the check asks and lets others do. All four are set.
struct RepeatQuestions {
    std::function<bool()> DeleteRepeats; ///< asked at each repeat until it has been answered true
    std::function<bool()> MakeBackup;    ///< event "QUALCHECK"; false when it failed
    std::function<void()> BackupFailed;  ///< tells the operator; the check goes on
    std::function<void()> CalcPCTotals;  ///< event "QUALCHECK"
};

/// Sorts a table by the text of `H_ORDCODE`, or of `L_KEY`, and writes it anew; records marked as
/// deleted come back as live ones. Equal keys keep their order. The table changes as a whole or not
/// at all. RunTimeFailure as TableScan and TableRewrite; 5 when the table's fields are no longer those
/// that were read.
void SortOrHdrFile(PCOrders& book);
void SortOrLinFile(PCOrders& book);

/// Finds orders and order lines that are there more than once, next to each other after a sort, and
/// removes all but the first of each once the operator has agreed. The first row of a table is
/// never a repeat. RunTimeFailure as the sorts, and 75 when a table has changed while a question
/// waited: it is left as it is then.
void QualityCheckOrders(PCOrders& book, const RepeatQuestions& questions);

/// What an export does before it writes: the sorts and the check that its job asks for.
void PrepareOrders(const ExportJob& job, PCOrders& book, const RepeatQuestions& questions);
