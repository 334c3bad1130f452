#include "exchange/forms/Lists.h"

#include "platform/Convert.h"
#include "store/TableCatalogue.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QListWidget>
#include <QPainter>
#include <QShortcut>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

void PressOn(Qt::Key key, QWidget& control, QAbstractButton& button) {
    auto* shortcut = new QShortcut(key, &control, nullptr, nullptr, Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &button, &QAbstractButton::click);
}

/// A row with a label at its right end, in a fainter tone.
class LabelledRow final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static constexpr int Label = Qt::UserRole;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const QString label = index.data(Label).toString();
        if (label.isEmpty()) return;
        const int gap = 2 * option.fontMetrics.averageCharWidth();
        const int name = option.fontMetrics.horizontalAdvance(index.data().toString()) + 2 * gap;
        const QRect room = option.rect.adjusted(name, 0, -gap / 2, 0);
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        painter->setPen(selected ? option.palette.color(QPalette::HighlightedText)
                                 : option.palette.color(QPalette::PlaceholderText));
        painter->drawText(room, Qt::AlignRight | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(label, Qt::ElideRight, room.width()));
        painter->restore();
    }
};

void SetUpLabels(QListWidget& list) {
    if (!dynamic_cast<LabelledRow*>(list.itemDelegate())) list.setItemDelegate(new LabelledRow(&list));
}

/// Nothing where the row says it itself.
void Label(QListWidgetItem& item, const Text& text) {
    const QString label = ToQt(text);
    if (label == item.text()) return;
    item.setData(LabelledRow::Label, label);
    item.setToolTip(PlainTip(label));
    item.setData(Qt::AccessibleTextRole, QStringLiteral("%1, %2").arg(item.text(), label));
}

} // namespace

void ShowLabels(QListWidget& list, int first, std::string_view table) {
    const TableEntry* entry = FindTable(table);
    if (entry == nullptr) return;
    SetUpLabels(list);
    for (int row = first; row < list.count(); ++row) {
        QListWidgetItem& item = *list.item(row);
        Label(item, GetFriendlyFieldName(*entry, FromQt(item.text())));
    }
}

void ShowLabel(QListWidget& list, int row, const Text& label) {
    SetUpLabels(list);
    Label(*list.item(row), label);
}

void FillList(QListWidget& list, const std::vector<std::string>& rows, std::optional<std::size_t> selected) {
    const QSignalBlocker silent(&list);
    list.clear();
    for (const std::string& row : rows) list.addItem(ToQt(std::string_view(row)));
    if (selected) list.setCurrentRow(static_cast<int>(*selected));
}

QList<int> SelectedRows(const QListWidget& list) {
    QList<int> rows;
    for (const QModelIndex& index : list.selectionModel()->selectedRows()) rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

void Deselect(QListWidget& list) {
    const QSignalBlocker silent(&list);
    list.clearSelection();
}

void Deselect(QListWidget& list, int row) {
    const QSignalBlocker silent(&list);
    list.item(row)->setSelected(false);
}

void PressOnEnter(QWidget& control, QAbstractButton& button) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) PressOn(key, control, button);
}

void PressOnDelete(QListWidget& list, QAbstractButton& button) {
    PressOn(Qt::Key_Delete, list, button);
}

void ListName(QComboBox& box, const QString& name) {
    if (box.findText(name, Qt::MatchFixedString) >= 0) return;
    const QString typed = box.currentText();
    const QSignalBlocker silent(&box);
    box.addItem(name);
    box.setEditText(typed);
}

void UnlistName(QComboBox& box, const QString& name) {
    const int row = box.findText(name, Qt::MatchFixedString);
    if (row >= 0) box.removeItem(row);
    box.setCurrentIndex(-1);
    box.clearEditText();
}
