#include "platform/LookupBox.h"

#include "platform/Convert.h"

#include <QAbstractProxyModel>
#include <QCompleter>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>

namespace {

constexpr int Wide = 24; ///< characters that the box has room for at least

} // namespace

void LookupEntries::Show(const std::vector<std::string>& texts) {
    beginResetModel();
    texts_ = &texts;
    count_ = static_cast<int>(texts.size());
    endResetModel();
}

void LookupEntries::Refresh(int row) {
    emit dataChanged(index(row), index(row));
}

int LookupEntries::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count_;
}

QVariant LookupEntries::data(const QModelIndex& index, int role) const {
    const auto row = static_cast<std::size_t>(index.row());
    if ((role != Qt::DisplayRole && role != Qt::EditRole) || !texts_ || row >= texts_->size()) return {};
    return ToQt(std::string_view((*texts_)[row]));
}

LookupBox::LookupBox(QWidget* parent) : QComboBox(parent), entries_(new LookupEntries(this)) {
    setEditable(true);
    setInsertPolicy(NoInsert);
    // Nothing looks at every entry: not for the width, not when the list drops down.
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(Wide);
    auto* list = new QListView(this);
    list->setUniformItemSizes(true);
    setView(list);
    setModel(entries_);
}

void LookupBox::Stand(int row) {
    setCurrentIndex(row);
    setEditText(itemText(row));
    lineEdit()->setCursorPosition(0);
}

bool LookupBox::IsTyped() const {
    return currentText() != itemText(currentIndex());
}

/// A completer remembers what it has found, and the entries change: there is a new one for each visit, also
/// for that of a window which opens with the focus here.
void LookupBox::focusInEvent(QFocusEvent* event) {
    const bool isFirst = !completer() || completer()->filterMode() != Qt::MatchContains;
    if (isFirst ||
        (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)) {
        auto* finder = new QCompleter(entries_, lineEdit());
        finder->setCaseSensitivity(Qt::CaseInsensitive);
        finder->setFilterMode(Qt::MatchContains);
        setCompleter(finder);
    }
    QComboBox::focusInEvent(event);
}

void LookupBox::focusOutEvent(QFocusEvent* event) {
    QComboBox::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason &&
        IsTyped())
        Stand(currentIndex());
}

void LookupBox::keyPressEvent(QKeyEvent* event) {
    const bool takes = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!takes || !completer() || !IsTyped()) return QComboBox::keyPressEvent(event);
    // One that is marked is taken by the list of those that were found.
    const auto* found = completer()->popup();
    if (found->isVisible() && found->currentIndex().isValid()) return event->ignore();
    event->accept(); // no default button is pressed by who looks for something
    TakeFirst();
}

void LookupBox::TakeFirst() {
    completer()->setCompletionPrefix(currentText());
    completer()->popup()->hide();
    if (!completer()->setCurrentRow(0)) return Stand(currentIndex());
    const auto* proxy = qobject_cast<const QAbstractProxyModel*>(completer()->completionModel());
    const int row = proxy->mapToSource(completer()->currentIndex()).row();
    Stand(row);
    emit activated(row);
}
