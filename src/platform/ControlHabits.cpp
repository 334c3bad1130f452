#include "platform/ControlHabits.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>

namespace {

/// A list that may be typed into announces a choice only when an entry was chosen: by itself it
/// also does when a text that was typed equals an entry.
void AnnounceOnlyChoices(QComboBox& box) {
    if (!box.isEditable()) return;
    box.setInsertPolicy(QComboBox::NoInsert);
    box.setCompleter(nullptr);
    QObject::disconnect(box.lineEdit(), &QLineEdit::editingFinished, &box, nullptr);
    QObject::disconnect(box.lineEdit(), &QLineEdit::returnPressed, &box, nullptr);
}

/// In a list with nothing selected an arrow on the first row, where the frame is when the list is
/// entered, selects that row. By itself the list would pass it by, and a key could never select it.
class FirstArrow final : public QObject {
public:
    explicit FirstArrow(QListWidget& list) : QObject(&list), list_(list) { list.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || list_.currentRow() != 0 || !list_.selectedItems().isEmpty())
            return false;
        const auto* key = static_cast<const QKeyEvent*>(event);
        const bool moves =
            key->key() == Qt::Key_Down || key->key() == Qt::Key_Up || key->key() == Qt::Key_Home;
        if (!moves || key->modifiers() != Qt::NoModifier) return false;
        list_.setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
        return true;
    }

private:
    QListWidget& list_;
};

/// A wheel that passes over a closed list or a number changes nothing: a choice loads a template over
/// what is on the screen, and nobody has meant it.
class NoWheel final : public QObject {
public:
    explicit NoWheel(QWidget& control) : QObject(&control) {
        control.setFocusPolicy(Qt::StrongFocus);
        control.installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Wheel) return false;
        event->ignore(); // what lies around it may scroll
        return true;
    }
};

} // namespace

void TeachHabits(QWidget& window) {
    for (auto* box : window.findChildren<QComboBox*>()) {
        AnnounceOnlyChoices(*box);
        new NoWheel(*box);
    }
    for (auto* box : window.findChildren<QAbstractSpinBox*>()) new NoWheel(*box);
    for (auto* list : window.findChildren<QListWidget*>()) new FirstArrow(*list);
}
