#include "platform/GridView.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/FindBar.h"
#include "platform/Registry.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QMenu>
#include <QMetaMethod>
#include <QPainter>
#include <QScopeGuard>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

constexpr int RowsThatFit = 50;   ///< so many first rows decide the width of a column
constexpr int WidestColumn = 320; ///< that a column gets by itself, in pixels
constexpr int MostDrawn = 4000;   ///< that the operator can have given one
constexpr int RowsToCopy = 100'000;

/// The box layout that holds a widget, at any depth below a layout.
QBoxLayout* BoxAround(QLayout* layout, const QWidget& widget) {
    if (!layout) return nullptr;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() == &widget) return qobject_cast<QBoxLayout*>(layout);
        if (QBoxLayout* deeper = BoxAround(item->layout(), widget)) return deeper;
    }
    return nullptr;
}

/// A cell's text as part of a line of cells that are parted by tabs.
QString CopiedCell(QString text) {
    for (const char c : {'\t', '\r', '\n'}) text.replace(QLatin1Char(c), QLatin1Char(' '));
    return text;
}

auto WaitCursor() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    return qScopeGuard([] { QApplication::restoreOverrideCursor(); });
}

/// Draws a marked cell on its own ground also where its row is selected: a fault is not to be hidden
/// by the selection that leads to it.
class CellDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->backgroundBrush.style() != Qt::NoBrush) option->state &= ~QStyle::State_Selected;
        if (option->features & QStyleOptionViewItem::WrapText) option->displayAlignment = Qt::AlignTop;
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int BetweenRows = 6;
        const bool wraps = option.features & QStyleOptionViewItem::WrapText;
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, wraps ? BetweenRows : 0);
    }
};

} // namespace

GridView::GridView(QWidget* parent) : QTableView(parent), model_(new GridDataModel(this)) {
    QTableView::setModel(model_);
    setItemDelegate(new CellDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column) {
        if (wordWrap()) rowsToFit_.start();
        const bool stretches =
            horizontalHeader()->stretchLastSection() && column == model_->columnCount() - 1;
        if (!fitting_ && !stretches) drawn_ = true;
    });
    rowsToFit_.setSingleShot(true);
    connect(&rowsToFit_, &QTimer::timeout, this, &GridView::resizeRowsToContents);
    connect(model_, &GridDataModel::Outdated, this, &GridView::TakeNewContent);

    AddAction(msg::GridCopy, QKeySequence::Copy, &GridView::CopyRows);
    AddAction(msg::GridFind, QKeySequence::Find, &GridView::ShowFindBar);
    AddAction(msg::GridFindNext, Qt::Key_F3, &GridView::FindForward);
    AddAction(msg::GridFindPrevious, Qt::SHIFT | Qt::Key_F3, &GridView::FindBackward);
    AddAction(msg::GridSortUp, {}, &GridView::SortUp);
    AddAction(msg::GridSortDown, {}, &GridView::SortDown);
    FillActions();
}

GridView::~GridView() {
    KeepWidths();
}

void GridView::AddAction(MessageId text, const QKeySequence& key, void (GridView::*deed)()) {
    auto* action = new QAction(this);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, deed);
    addAction(action);
    actions_.append({action, text});
}

void GridView::FillActions() {
    for (const auto& [action, text] : actions_)
        action->setText(QString::fromStdString(CatalogueCaption(text)));
}

// ---- content ----

void GridView::SetContent(std::unique_ptr<GridData> content, const QString& widthsName) {
    KeepWidths();
    widthsName_ = widthsName;
    sortColumn_ = -1;
    fitting_ = true;
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    model_->SetContent(std::move(content));
    fitting_ = false;
    setAccessibleDescription(EmptyText());
    if (!model_->Content()) return;
    LayOutHeadings();
    FitColumns();
    if (wordWrap()) resizeRowsToContents();
    SelectFirstRow();
}

void GridView::SetWrapped() {
    setWordWrap(true);
    setTextElideMode(Qt::ElideNone);
    setVerticalScrollMode(ScrollPerPixel);
    horizontalHeader()->setStretchLastSection(true);
}

void GridView::SetEmptyText(const Text& text) {
    emptyText_ = text;
    setAccessibleDescription(EmptyText());
    viewport()->update();
}

void GridView::LayOutHeadings() {
    clearSpans();
    horizontalHeader()->setVisible(HeadingRows() == 0);
    if (HeadingRows() == 0) return;
    for (const GridGroup& group : model_->Content()->Groups()) {
        if (group.Columns > 1) setSpan(0, group.First, 1, group.Columns);
    }
}

void GridView::Refresh() {
    if (model_->Content() && model_->Content()->CheckChanged()) TakeNewContent();
}

void GridView::TakeNewContent() {
    if (!model_->Content()) return;
    const std::int32_t record = SelectedRecord();
    const int column = CurrentColumn();
    const int columns = model_->columnCount();
    const bool inSight = viewport()->rect().intersects(visualRect(currentIndex()));
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    {
        const auto wait = WaitCursor();
        model_->Reload();
    }
    LayOutHeadings();
    if (model_->columnCount() != columns) {
        sortColumn_ = -1;
        horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        FitColumns();
    }
    if (wordWrap()) resizeRowsToContents();
    setAccessibleDescription(EmptyText());
    setCurrentIndex(model_->index(HeadingRows(), column));
    if (!SelectRecord(record)) SelectFirstRow();
    // Who looks elsewhere than at the selected row goes on looking there.
    horizontalScrollBar()->setValue(scrolled.x());
    verticalScrollBar()->setValue(scrolled.y());
    if (inSight) scrollTo(currentIndex());
    emit SelChange();
}

// ---- rows ----

int GridView::CurrentColumn() const {
    if (currentIndex().isValid()) return currentIndex().column();
    // Behind the record's number, where there is one.
    return HeadingRows() == 0 && model_->columnCount() > 1 ? 1 : 0;
}

int GridView::ContentRow() const {
    return currentIndex().isValid() ? currentIndex().row() - HeadingRows() : -1;
}

std::int32_t GridView::SelectedRecord() const {
    const int row = ContentRow();
    return row >= 0 ? model_->Content()->RecordOf(row) : 0;
}

bool GridView::SelectRecord(std::int32_t record) {
    if (!model_->Content()) return false;
    const auto row = model_->Content()->RowOf(record);
    if (!row) return false;
    const QModelIndex index = model_->index(*row + HeadingRows(), CurrentColumn());
    setCurrentIndex(index);
    scrollTo(index);
    return true;
}

void GridView::SelectRecords(const std::vector<std::int32_t>& records, int column) {
    if (!model_->Content()) return;
    std::vector<std::int32_t> rows;
    for (const std::int32_t record : records) {
        if (const auto row = model_->Content()->RowOf(record)) rows.push_back(*row + HeadingRows());
    }
    if (rows.empty()) return;
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    for (std::size_t from = 0, to = 0; from < rows.size() && selection.size() < MostStretches; from = to) {
        for (to = from + 1; to < rows.size() && rows[to] - rows[to - 1] <= 1;) ++to;
        selection.append(QItemSelectionRange(model_->index(rows[from], 0),
                                             model_->index(rows[to - 1], model_->columnCount() - 1)));
    }
    const QModelIndex first = model_->index(rows.front(), column);
    selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    scrollTo(first);
}

void GridView::SelectFirstRow() {
    if (selectionMode() == NoSelection) return; // the current cell would look like a selected one
    if (model_->rowCount() > HeadingRows()) setCurrentIndex(model_->index(HeadingRows(), CurrentColumn()));
}

void GridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (findBar_ && current.isValid()) findBar_->SetColumn(ColumnTitle(current.column()));
    emit SelChange();
}

QModelIndex GridView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const int rows = model_->rowCount();
    if (rows > 0 && action == MoveHome) return model_->index(0, CurrentColumn());
    if (rows > 0 && action == MoveEnd) return model_->index(rows - 1, CurrentColumn());
    return QTableView::moveCursor(action, modifiers);
}

void GridView::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    static const QMetaMethod twice = QMetaMethod::fromSignal(&QAbstractItemView::doubleClicked);
    if (isEnter && currentIndex().isValid() && isSignalConnected(twice)) {
        event->accept();
        emit doubleClicked(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}

// ---- columns ----

QString GridView::ColumnTitle(int column) const {
    return model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
}

int GridView::FittingWidth(int column) const {
    constexpr int Margins = 16;
    const int arrow = style()->pixelMetric(QStyle::PM_HeaderMarkSize);
    int width = fontMetrics().horizontalAdvance(ColumnTitle(column)) + arrow + Margins;
    if (const int told = model_->Content()->Heading(column).Width) return std::max(told, width);
    const auto fit = [&](int row) {
        const QString text = model_->index(row, column).data().toString();
        width = std::max(width, std::min(fontMetrics().horizontalAdvance(text) + Margins, WidestColumn));
    };
    const int rows = model_->rowCount();
    for (int row = HeadingRows(); row < std::min(rows, HeadingRows() + RowsThatFit); ++row) fit(row);
    // The last row has the longest record number.
    if (rows > HeadingRows()) fit(rows - 1);
    return width;
}

void GridView::FitColumns() {
    fitting_ = true;
    const int columns = model_->columnCount();
    const QList<int> drawn = widthsName_.isEmpty() ? QList<int>() : Registry::ColumnWidths(widthsName_);
    const bool remembered = drawn.size() == columns;
    for (int column = 0; column < columns; ++column) {
        if (horizontalHeader()->sectionResizeMode(column) != QHeaderView::Interactive) continue;
        setColumnWidth(column, remembered ? std::clamp(drawn[column],
                                                       horizontalHeader()->minimumSectionSize(), MostDrawn)
                                          : FittingWidth(column));
    }
    fitting_ = false;
    drawn_ = false;
}

void GridView::KeepWidths() {
    if (!drawn_ || widthsName_.isEmpty()) return;
    drawn_ = false;
    QList<int> widths;
    for (int column = 0; column < model_->columnCount(); ++column) widths << columnWidth(column);
    Registry::SetColumnWidths(widthsName_, widths);
}

void GridView::hideEvent(QHideEvent* event) {
    KeepWidths();
    QTableView::hideEvent(event);
}

// ---- order ----

void GridView::SortOn(int column) {
    SortOn(column, sortColumn_ == column && !descending_);
}

void GridView::SortOn(int column, bool descending) {
    if (!model_->Content() || column < 0 || column >= model_->columnCount()) return;
    const auto wait = WaitCursor();
    const std::int32_t record = SelectedRecord();
    sortColumn_ = column;
    descending_ = descending;
    clearSelection();
    model_->SortBy(column, descending);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicator(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    if (!SelectRecord(record)) SelectFirstRow();
}

// ---- copying ----

void GridView::CopyRows() {
    if (!model_->Content() || !selectionModel()->hasSelection()) return;
    std::vector<std::pair<int, int>> ranges; // first row and the one behind the last
    std::int64_t count = 0;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        const int first = std::max(range.top(), HeadingRows());
        if (first > range.bottom()) continue;
        ranges.emplace_back(first, range.bottom() + 1);
        count += range.bottom() + 1 - first;
    }
    if (count == 0) return; // heading rows alone: the clipboard keeps what it has
    if (count > RowsToCopy) {
        return Tell(Words(msg::TooManyRows, Text::Value(std::int64_t{RowsToCopy})), Icon::Information);
    }
    std::sort(ranges.begin(), ranges.end());
    const int columns = model_->columnCount();
    QString text;
    const auto line = [&](auto&& cell) {
        for (int column = 0; column < columns; ++column) {
            if (column > 0) text += QLatin1Char('\t');
            text += CopiedCell(cell(column));
        }
        text += QLatin1Char('\n');
    };
    const auto wait = WaitCursor();
    line([&](int column) { return ColumnTitle(column); });
    for (const auto& [first, end] : ranges) {
        for (int row = first; row < end; ++row) {
            line([&](int column) { return model_->index(row, column).data().toString(); });
        }
    }
    QApplication::clipboard()->setText(text);
}

void GridView::contextMenuEvent(QContextMenuEvent* event) {
    FillActions();
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint at =
        byKey ? viewport()->mapToGlobal(visualRect(currentIndex()).center()) : event->globalPos();
    QMenu menu(this);
    for (const auto& [action, text] : actions_) {
        if (text == msg::GridFind || text == msg::GridSortUp) menu.addSeparator();
        menu.addAction(action);
    }
    menu.exec(at);
}

// ---- finding ----

void GridView::ShowFindBar() {
    if (!findBar_) {
        QBoxLayout* box = parentWidget() ? BoxAround(parentWidget()->layout(), *this) : nullptr;
        if (!box) return;
        findBar_ = new FindBar(parentWidget());
        box->insertWidget(box->indexOf(this) + 1, findBar_);
        setTabOrder(this, findBar_);
        connect(findBar_, &FindBar::Find, this, &GridView::FindNext);
        connect(findBar_, &FindBar::Closed, this, [this] {
            findBar_->hide();
            setFocus();
        });
    }
    findBar_->SetColumn(ColumnTitle(CurrentColumn()));
    findBar_->SayNotFound(false);
    findBar_->show();
    findBar_->TakeFocus();
}

void GridView::keyboardSearch(const QString& search) {
    // Qt would look at row after row, however many there are.
    if (search.trimmed().isEmpty()) return;
    ShowFindBar();
    if (findBar_) findBar_->Begin(search);
}

void GridView::FindNext(bool backwards) {
    if (!findBar_ || findBar_->Text().isEmpty()) return ShowFindBar();
    if (!model_->Content()) return;
    const std::string text = FromQt(findBar_->Text());
    // A character that no table can hold is in no cell.
    const bool canBe = ToQt(std::string_view(text)) == findBar_->Text();
    std::optional<std::int32_t> row;
    try {
        const auto wait = WaitCursor();
        if (canBe) row = model_->Content()->Find(CurrentColumn(), text, ContentRow(), backwards);
    } catch (const RunTimeFailure&) {
        TakeNewContent();
    }
    findBar_->SayNotFound(!row);
    if (row) SelectRecord(model_->Content()->RecordOf(*row));
}

// ---- the empty grid ----

QString GridView::EmptyText() const {
    if (!model_->Fault().empty())
        return ToQt(Lines(msg::TableCannotBeRead, Text::Path(std::string_view(model_->Fault()))));
    return model_->rowCount() > HeadingRows() ? QString() : ToQt(emptyText_);
}

void GridView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    const QString text = EmptyText();
    if (text.isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int below = rowViewportPosition(HeadingRows() - 1) + verticalHeader()->defaultSectionSize();
    const QRect room = viewport()->rect().adjusted(24, HeadingRows() > 0 ? below + 12 : 12, -24, -12);
    painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, text);
}
