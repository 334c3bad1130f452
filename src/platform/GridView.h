#pragma once

#include "platform/GridDataModel.h"

#include <QTableView>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <vector>

class QAction;
class FindBar;

/// The grid of the screens: rows that are selected whole, over a content that is read on demand.
///
/// Home and End go to the first and the last row, Enter is the same as a double click where a handler
/// waits for one. Ctrl+C, or the menu of the right button, copies the selected rows with a line of
/// headings, parted by tabs; Ctrl+F opens a line below the grid that finds a text in the column at
/// hand, as typing does, and F3 and Shift+F3 go on and back. A grid without rows shows a text that says why.
///
/// It can stand in a box layout only, where the line for finding has a place.
class GridView final : public QTableView {
    Q_OBJECT

public:
    explicit GridView(QWidget* parent = nullptr);
    ~GridView() override;

    /// Takes what is to be shown, and selects its first row. The widths of columns that the operator
    /// draws are kept under a name, for a content of as many columns; without a name they are not.
    /// A null pointer leaves a grid without columns.
    void SetContent(std::unique_ptr<GridData> content, const QString& widthsName = {});

    /// Cells of several lines, in rows as high as their cells need. For few rows only: all are measured.
    void SetWrapped();

    /// What the grid says when it has no rows.
    void SetEmptyText(const Text& text);

    /// 0, or 2 where rows with headings stand above the first one.
    int HeadingRows() const { return model_->HeadingRows(); }

    /// The record of the selected row, from 1; 0 when none or a heading row is selected.
    std::int32_t SelectedRecord() const;
    /// Selects a record's row and brings it into sight. False when it is not in the grid.
    bool SelectRecord(std::int32_t record);

    /// Selects records' rows. The cell of the first of them in `column` becomes the current one and
    /// comes into sight. Of more than MostStretches stretches of neighbouring rows only those in the
    /// first so many are selected: a view looks through all stretches whenever it paints a cell.
    void SelectRecords(const std::vector<std::int32_t>& records, int column);
    static constexpr int MostStretches = 1000;

    /// Sorts on a column, ascending; the second time in a row on the same column, descending.
    void SortOn(int column);
    void SortOn(int column, bool descending);
    /// By which column the rows stand in order, from 0; -1 as the content has them.
    int SortColumn() const { return sortColumn_; }
    bool IsDescending() const { return descending_; }

    /// Looks at the file, and shows its new content if it has another one by now. The order, the
    /// selected record and the widths stay.
    void Refresh();

    void CopyRows();
    /// Opens the line in which a text to find is typed.
    void ShowFindBar();
    /// Selects the next row, or the one before, that has the text in its current column.
    void FindNext(bool backwards = false);

signals:
    /// Another row is the current one, or none.
    void SelChange();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyboardSearch(const QString& search) override;
    void hideEvent(QHideEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void AddAction(MessageId text, const QKeySequence& key, void (GridView::*deed)());
    void FillActions();
    void FindForward() { FindNext(false); }
    void FindBackward() { FindNext(true); }
    void SortUp() { SortOn(CurrentColumn(), false); }
    void SortDown() { SortOn(CurrentColumn(), true); }

    void TakeNewContent();
    void LayOutHeadings();
    void FitColumns();
    int FittingWidth(int column) const;
    void KeepWidths();
    void SelectFirstRow();
    int CurrentColumn() const;
    int ContentRow() const;
    QString ColumnTitle(int column) const;
    QString EmptyText() const;

    GridDataModel* model_;
    FindBar* findBar_ = nullptr;
    QList<std::pair<QAction*, MessageId>> actions_;
    QString widthsName_;
    QTimer rowsToFit_; ///< behind the last of several columns that change their widths
    bool fitting_ = false;
    bool drawn_ = false; ///< the operator has drawn a column's width
    int sortColumn_ = -1;
    bool descending_ = false;
    Text emptyText_;
};
