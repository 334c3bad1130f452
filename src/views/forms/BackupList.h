#pragma once

#include "core/Globals.h"
#include "maintenance/Restore.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Form;
class GridView;
class ListGrid;
class QProgressBar;

/// The backups of an office in a grid, what has become of their files, and the ways back to them. Asks and
/// tells the operator.
class BackupList {
public:
    BackupList(Form& form, GridView& grid) : form_(form), grid_(grid) {}

    /// Reads the backups and shows them. RunTimeFailure as ReadBackups.
    void Show(QProgressBar& bar);
    bool IsEmpty() const { return backups_.empty(); }

    /// The grid shows something else from now on.
    void Leave() { list_ = nullptr; }

    /// Selects the backup of a directory's name, where there is one.
    void Select(std::string_view folder);

    /// The backup that is selected; nullptr when none is.
    BackupPoint* Selected();

    /// Compares the bytes of the backup that is selected, once, and shows what came of it.
    void CompareSelected();

    /// Asks for a table of the selected backup. Nothing when none was chosen, or none that can be shown: the
    /// operator has been told.
    struct Table {
        ViewFlag Flag;
        std::string Folder; ///< with a trailing separator
    };
    std::optional<Table> ChooseTable();

    /// Has the tables of the selected backup back. Nothing when the operator does not want it, or the form
    /// has gone meanwhile. How it ended is still to be told, by TellOf.
    std::optional<RestoreResult> Restore();

private:
    BackupPoint* In(std::string_view folder);
    void ShowFiles(const BackupPoint& point);

    Form& form_;
    GridView& grid_;
    std::vector<BackupPoint> backups_; ///< in the order of their records
    ListGrid* list_ = nullptr;         ///< their grid while it is shown
};

/// Tells how a restore ended; `counted`: the shared totals are those of the tables as they are by now.
void TellOf(const RestoreResult& result, bool counted);
