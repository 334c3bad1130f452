#pragma once

#include "core/Globals.h"
#include "core/Text.h"
#include "store/TableCatalogue.h"
#include "views/TableGrid.h"

#include <optional>
#include <span>
#include <string>

/// Which routine of the grid shows a table.
enum class DisplayRoutine { Data, CustData, ItemData, STaxData, TotalsData, RestoreData };

/// One table that the browser shows, or the list of backups, which is none.
struct TableView {
    ViewFlag Flag;
    const char* File; ///< name in the tables directory, any case; empty for none
    MessageId GridTitle;
    MessageId RecordTitle;
    const char* Icon; ///< a picture's name; empty for the program's own
    DisplayRoutine Display;
    MessageId WhenEmpty; ///< says what fills the table

    std::string Path() const {
        return (Global.ViewFolder.empty() ? Global.DBFPath : Global.ViewFolder) + File;
    }
    const TableEntry& Table() const;
};

/// All of them, in the order of ViewFlag.
std::span<const TableView> AllTableViews();

/// Sets every flag to no, no row as selected, and the tables directory as the one that is viewed. Who opens
/// the browser does so and sets one flag.
void ClearViewFlags();

/// The view of the first flag that is set; nullptr when none is.
const TableView* ChosenView();

/// The cells that the Quality Check's report has sent the grid to show: by `Global.QCViewRecords`,
/// `QCViewField` and `QCViewSeverity`, in the table whose flag is set. Nothing outside the report's view
/// mode, and nothing for a field that the grid does not mark.
std::optional<FaultyCells> ReportedCells();

// The columns of each routine, for a table of a layout.

/// The record number, then every field under the title by which its table is viewed. A numeric field
/// sorts by number, any other by text.
TableColumns DataColumns(const TableEntry& table, const TableLayout& layout);
TableColumns CustColumns(const TableLayout& layout);
TableColumns ItemColumns(const TableLayout& layout);
TableColumns STaxColumns(const TableLayout& layout);

/// What an event changed, what the PC held after it, and the handheld, each group under its title;
/// without a record number.
TableColumns TotalsColumns(const TableLayout& layout);
