#include "views/forms/BackupList.h"

#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "maintenance/forms/BackupRun.h"
#include "platform/BarProgress.h"
#include "platform/Form.h"
#include "platform/GridView.h"
#include "store/forms/frmCopyDBF.h"
#include "views/GridData.h"
#include "views/TableViews.h"

#include <algorithm>
#include <memory>

namespace {

// Columns of the list of backups, from 0.
constexpr std::size_t MomentColumn = 1;
constexpr std::size_t DollarsColumn = 4;
constexpr int FilesColumn = BackupPoint::Lines;

/// The view of a table that a backup can hold; nullptr for any other file.
const TableView* ViewOfBackup(std::string_view fileName) {
    for (const ViewFlag flag :
         {ViewOrHdr, ViewOrLin, ViewOrHdrAudt, ViewOrLinAudt, ViewAudHH, ViewCust, ViewItem}) {
        const TableView& view = AllTableViews()[flag];
        if (SameText(view.File, PathToName(fileName))) return &view;
    }
    return nullptr;
}

Text NamesOf(const std::vector<std::string>& names, const std::vector<std::string>& more = {}) {
    std::string all;
    for (const auto* list : {&names, &more}) {
        for (const std::string& name : *list) all += (all.empty() ? "" : ", ") + name;
    }
    return Text::Value(std::string_view(all));
}

Text WordsOf(const BackupPoint& point) {
    switch (point.Files) {
    case BackupFiles::Complete:
        return msg::FilesComplete;
    case BackupFiles::NotChecked:
        return msg::FilesNotChecked;
    case BackupFiles::Deleted:
        return msg::FilesDeleted;
    case BackupFiles::Changed:
        break;
    }
    Text words;
    if (!point.Changed.empty()) words = Words(msg::FilesChanged, NamesOf(point.Changed));
    if (point.Missing.empty()) return words;
    const Text missing = Words(msg::FilesMissing, NamesOf(point.Missing));
    return words.IsEmpty() ? missing : Words(words, missing);
}

} // namespace

// ---- what is shown ----

void BackupList::Show(QProgressBar& bar) {
    bar.show();
    {
        BarProgress progress(nullptr, bar);
        backups_ = ReadBackups(progress);
    }
    bar.hide();

    std::vector<std::vector<Text>> rows;
    for (const BackupPoint& point : backups_) {
        std::vector<Text> cells;
        cells.reserve(point.Values.size());
        for (const std::string& value : point.Values) cells.push_back(Text::Value(std::string_view(value)));
        if (IsNumeric(point.Values[DollarsColumn]))
            cells[DollarsColumn] =
                Text::Value(std::string_view(Money(ToNumber(point.Values[DollarsColumn]))));
        cells.emplace_back();
        rows.push_back(std::move(cells));
    }
    std::vector<GridHeading> headings{{msg::ColumnEvent},
                                      {msg::ColumnDateTime, SortKind::Date},
                                      {msg::ColumnOrders, SortKind::Number},
                                      {msg::ColumnLines, SortKind::Number},
                                      {msg::ColumnDollars, SortKind::Number},
                                      {msg::ColumnHotsyncID},
                                      {msg::ColumnMachine},
                                      {msg::ColumnLastOrder},
                                      {msg::ColumnFiles}};
    auto grid = std::make_unique<ListGrid>(std::move(headings), std::move(rows));
    list_ = grid.get();
    for (const BackupPoint& point : backups_) ShowFiles(point);
    grid_.SetContent(std::move(grid), form_.objectName() + QStringLiteral(" Backup"));
}

/// What has become of a backup's files: words in the last column, which a colour goes with.
void BackupList::ShowFiles(const BackupPoint& point) {
    const auto record = static_cast<std::int32_t>(&point - backups_.data()) + 1;
    const CellMark mark = point.Files == BackupFiles::Deleted   ? CellMark::Past
                          : point.Files == BackupFiles::Changed ? CellMark::Warn
                                                                : CellMark::None;
    list_->SetCell(record, FilesColumn, WordsOf(point), mark);
    if (mark != CellMark::Past) return;
    for (int column = 0; column < FilesColumn; ++column)
        list_->SetCell(record, column, list_->Cell(*list_->RowOf(record), column), mark);
}

void BackupList::Select(std::string_view folder) {
    for (const BackupPoint& point : backups_) {
        if (point.Folder == folder)
            grid_.SelectRecord(static_cast<std::int32_t>(&point - backups_.data()) + 1);
    }
}

BackupPoint* BackupList::Selected() {
    const std::int32_t record = grid_.SelectedRecord();
    return record > 0 ? &backups_[static_cast<std::size_t>(record) - 1] : nullptr;
}

/// The backup that lies in a directory; nullptr when the list has none there.
BackupPoint* BackupList::In(std::string_view folder) {
    const std::string name = NameOfFolder(folder);
    const auto found = std::find_if(backups_.begin(), backups_.end(),
                                    [&name](const BackupPoint& point) { return point.Folder == name; });
    return found == backups_.end() ? nullptr : &*found;
}

void BackupList::CompareSelected() {
    BackupPoint* point = list_ ? Selected() : nullptr;
    if (!point || point->SumsCompared) return;
    CompareSums(*point);
    ShowFiles(*point);
    grid_.viewport()->update();
}

// ---- the ways back ----

std::optional<BackupList::Table> BackupList::ChooseTable() {
    const BackupPoint* point = Selected();
    if (!point) return std::nullopt;
    const auto refuse = [](MessageId why) {
        Tell(why, Icon::Warning);
        return std::nullopt;
    };
    const std::string folder = FindBackup(point->Values[MomentColumn]);
    if (folder.empty()) return refuse(msg::PreviewNotFound);
    const auto file = Global.TheOperator->OpenFile({msg::SelectTableToView, msg::DBFFiles, ".DBF", folder});
    if (!file || form_.IsOver()) return std::nullopt;
    const TableView* view = ViewOfBackup(FileNameOf(*file));
    if (!view) return refuse(msg::CannotBePreviewed);
    return Table{view->Flag, std::string(FolderOf(*file))};
}

std::optional<RestoreResult> BackupList::Restore() {
    const BackupPoint* point = Selected();
    if (!point || !AskYesNo(msg::RestoreQuestion, Icon::Warning) || form_.IsOver()) return std::nullopt;
    const std::string folder = FindBackup(point->Values[MomentColumn]);
    // A text in a directory of another name leads to the one of its moment.
    BackupPoint* restored = In(folder);
    if (restored) CompareSums(*restored);
    if (restored && restored->Files == BackupFiles::Changed &&
        !AskYesNo(Lines(Lines(msg::FilesNoLongerMatch, NamesOf(restored->Changed, restored->Missing)),
                        msg::RestoreAnyway),
                  Icon::Warning))
        return std::nullopt;
    if (form_.IsOver() || !AwaitOwnSecond(form_)) return std::nullopt;
    return RestoreTables(folder, CopyTable);
}

/// Tells how a restore ended; `counted`: the shared totals are those of the tables as they are by now.
void TellOf(const RestoreResult& result, bool counted) {
    const auto withWhy = [&result](MessageId text) {
        return Lines(Lines(msg::FileError, text), Text::Path(std::string_view(result.Why)));
    };
    switch (result.How) {
    case RestoreResult::End::Restored: {
        const Text back =
            Words(Text::Value(Global.CurHeaders), msg::RestoredHeaders, Text::Value(Global.CurLines),
                  msg::RestoredLines, Text::Value(std::string_view(Money(Global.CurDollars))),
                  msg::RestoredDollars);
        return Tell(counted ? Lines(msg::RestoreDone, back) : Text(msg::RestoreDone), Icon::Information);
    }
    case RestoreResult::End::NotFound:
        return Tell(msg::RestoreNotFound, Icon::Warning);
    case RestoreResult::End::ThisMoment:
        return Tell(msg::BackupOfThisMoment, Icon::Information);
    case RestoreResult::End::CopiesStay:
        return Tell(withWhy(msg::CopiesNotPutBack), Icon::Stop);
    case RestoreResult::End::NoSafetyCopy:
        return Tell(withWhy(msg::CannotBackUp), Icon::Stop);
    case RestoreResult::End::Unusable:
        return Tell(withWhy(msg::RestoreNothing), Icon::Stop);
    case RestoreResult::End::Stopped:
        break;
    }
    Text told = withWhy(msg::RestoreStopped);
    if (!result.Done.empty()) told = Lines(told, Words(msg::RestoredAlready, NamesOf(result.Done)));
    told = Lines(told, Words(msg::NotRestored, NamesOf(result.Left)));
    Tell(Lines(told, msg::RestoreAgain), Icon::Stop);
}
