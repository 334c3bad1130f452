#include "exchange/forms/Lists.h"

#include "platform/Convert.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QListWidget>
#include <QShortcut>

#include <algorithm>

namespace {

void PressOn(Qt::Key key, QListWidget& list, QAbstractButton& button) {
    auto* shortcut = new QShortcut(key, &list, nullptr, nullptr, Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &button, &QAbstractButton::click);
}

} // namespace

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

void PressOnEnter(QListWidget& list, QAbstractButton& button) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) PressOn(key, list, button);
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

void UnlistName(QComboBox& box) {
    const int row = box.findText(box.currentText().trimmed(), Qt::MatchFixedString);
    if (row >= 0) box.removeItem(row);
    box.setCurrentIndex(-1);
    box.clearEditText();
}
