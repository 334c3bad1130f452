#include "driver/Reading.h"

#include "driver/Refused.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QBrush>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTextDocumentFragment>
#include <QTextEdit>

#include <algorithm>

namespace {

QString PlainLabel(const QLabel& label) {
    const QString text = label.text();
    const bool rich = label.textFormat() == Qt::RichText ||
                      (label.textFormat() == Qt::AutoText && Qt::mightBeRichText(text));
    if (rich) return QTextDocumentFragment::fromHtml(text).toPlainText();
    return label.buddy() ? WithoutMnemonic(text) : text;
}

const QTabBar* TabsOf(const QWidget& control) {
    if (const auto* tabs = qobject_cast<const QTabWidget*>(&control)) return tabs->tabBar();
    return qobject_cast<const QTabBar*>(&control);
}

QString Described(const QObject& object) {
    return QStringLiteral("%1 (a %2)")
        .arg(object.objectName(), QString::fromLatin1(object.metaObject()->className()));
}

int CurrentRow(const QObject& object) {
    if (const auto* box = qobject_cast<const QComboBox*>(&object)) return box->currentIndex();
    if (const auto* view = qobject_cast<const QAbstractItemView*>(&object)) return view->currentIndex().row();
    if (object.isWidgetType()) {
        if (const QTabBar* tabs = TabsOf(static_cast<const QWidget&>(object))) return tabs->currentIndex();
    }
    throw Refused(QStringLiteral("%1 has no entries").arg(Described(object)));
}

QJsonValue Checked(const QObject& object) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&object)) return button->isChecked();
    if (const auto* entry = qobject_cast<const QAction*>(&object)) return entry->isChecked();
    if (const auto* group = qobject_cast<const QGroupBox*>(&object)) return group->isChecked();
    throw Refused(QStringLiteral("%1 cannot be checked").arg(Described(object)));
}

QString CellText(const QVariant& value) {
    return value.toString();
}

} // namespace

QString WithoutMnemonic(const QString& caption) {
    QString plain;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == QLatin1Char('&') && i + 1 < caption.size()) ++i;
        plain += caption[i];
    }
    return plain;
}

QString ShownText(const QObject& object) {
    if (const auto* label = qobject_cast<const QLabel*>(&object)) return PlainLabel(*label);
    if (const auto* button = qobject_cast<const QAbstractButton*>(&object))
        return WithoutMnemonic(button->text());
    if (const auto* edit = qobject_cast<const QLineEdit*>(&object)) return edit->displayText();
    if (const auto* box = qobject_cast<const QComboBox*>(&object)) return box->currentText();
    if (const auto* spin = qobject_cast<const QAbstractSpinBox*>(&object)) return spin->text();
    if (const auto* text = qobject_cast<const QPlainTextEdit*>(&object)) return text->toPlainText();
    if (const auto* text = qobject_cast<const QTextEdit*>(&object)) return text->toPlainText();
    if (const auto* group = qobject_cast<const QGroupBox*>(&object)) return WithoutMnemonic(group->title());
    if (const auto* bar = qobject_cast<const QProgressBar*>(&object)) return bar->text();
    if (const auto* status = qobject_cast<const QStatusBar*>(&object)) return status->currentMessage();
    if (const auto* entry = qobject_cast<const QAction*>(&object)) return WithoutMnemonic(entry->text());
    if (const auto* view = qobject_cast<const QAbstractItemView*>(&object)) {
        return CellText(view->currentIndex().data());
    }
    if (object.isWidgetType()) {
        const auto& widget = static_cast<const QWidget&>(object);
        if (const QTabBar* tabs = TabsOf(widget)) return WithoutMnemonic(tabs->tabText(tabs->currentIndex()));
        if (widget.isWindow()) return widget.windowTitle();
    }
    throw Refused(QStringLiteral("%1 shows no text").arg(Described(object)));
}

QString BoxText(const QWidget& box) {
    if (const auto* message = qobject_cast<const QMessageBox*>(&box)) return message->text();
    if (qobject_cast<const QFileDialog*>(&box)) return box.windowTitle();
    for (const QLabel* label : box.findChildren<QLabel*>()) {
        if (label->window() == &box && !label->isHidden() && !label->text().isEmpty())
            return PlainLabel(*label);
    }
    return {};
}

QJsonValue PropertyOf(const QObject& object, const QString& name) {
    const auto* widget = object.isWidgetType() ? static_cast<const QWidget*>(&object) : nullptr;
    const auto* entry = qobject_cast<const QAction*>(&object);
    if (name == QLatin1String("text")) return ShownText(object);
    if (name == QLatin1String("checked")) return Checked(object);
    if (name == QLatin1String("row")) return CurrentRow(object);
    if (name == QLatin1String("enabled")) return widget ? widget->isEnabled() : entry && entry->isEnabled();
    if (name == QLatin1String("visible")) return widget ? widget->isVisible() : entry && entry->isVisible();
    if (name == QLatin1String("focus")) {
        const QWidget* focus = QApplication::focusWidget();
        return widget && focus && (focus == widget || widget->isAncestorOf(focus));
    }
    const QVariant value = object.property(name.toUtf8().constData());
    if (!value.isValid()) throw Refused(QStringLiteral("%1 has no property %2").arg(Described(object), name));
    QJsonValue json = QJsonValue::fromVariant(value);
    if (json.isNull())
        throw Refused(QStringLiteral("%1: property %2 is no plain value").arg(Described(object), name));
    return json;
}

QStringList ItemsOf(const QWidget& control) {
    QStringList items;
    if (const auto* box = qobject_cast<const QComboBox*>(&control)) {
        for (int i = 0; i < box->count(); ++i) items << box->itemText(i);
    } else if (const auto* view = qobject_cast<const QAbstractItemView*>(&control); view && view->model()) {
        const QAbstractItemModel& model = *view->model();
        for (int i = 0; i < model.rowCount(view->rootIndex()); ++i) {
            items << CellText(model.index(i, 0, view->rootIndex()).data());
        }
    } else if (const QTabBar* tabs = TabsOf(control)) {
        for (int i = 0; i < tabs->count(); ++i) items << WithoutMnemonic(tabs->tabText(i));
    } else {
        throw Refused(QStringLiteral("%1 has no entries").arg(Described(control)));
    }
    return items;
}

QJsonArray ChosenRowsOf(const QWidget& control) {
    QList<int> rows;
    const auto* view = qobject_cast<const QAbstractItemView*>(&control);
    if (view && view->selectionModel()) {
        for (const QModelIndex& index : view->selectionModel()->selectedIndexes()) {
            if (!rows.contains(index.row())) rows << index.row();
        }
        std::sort(rows.begin(), rows.end());
    } else if (const int row = CurrentRow(control); row >= 0) {
        rows << row;
    }
    QJsonArray json;
    for (const int row : rows) json << row;
    return json;
}

QJsonObject ControlsOf(const QWidget& form) {
    QJsonArray controls;
    for (const QWidget* control : form.findChildren<QWidget*>()) {
        const QString name = control->objectName();
        // Qt names the parts of its own controls so.
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_")) || control->window() != &form) continue;
        controls << QJsonObject{
            {QStringLiteral("name"), name},
            {QStringLiteral("class"), QString::fromLatin1(control->metaObject()->className())},
            {QStringLiteral("enabled"), control->isEnabled()},
            {QStringLiteral("visible"), control->isVisible()}};
    }
    return {{QStringLiteral("controls"), controls}};
}

QJsonObject RowsOf(const QWidget& control) {
    const auto* view = qobject_cast<const QAbstractItemView*>(&control);
    if (!view || !view->model()) throw Refused(QStringLiteral("%1 shows no table").arg(Described(control)));
    QAbstractItemModel& model = *view->model();
    const QModelIndex root = view->rootIndex();
    while (model.canFetchMore(root)) {
        const int before = model.rowCount(root);
        model.fetchMore(root);
        if (model.rowCount(root) == before) break;
    }
    QJsonArray headings;
    const int columns = model.columnCount(root);
    for (int column = 0; column < columns; ++column) {
        headings << CellText(model.headerData(column, Qt::Horizontal));
    }
    QJsonArray rows, grounds;
    const int count = model.rowCount(root);
    for (int row = 0; row < count; ++row) {
        QJsonArray cells;
        for (int column = 0; column < columns; ++column) {
            const QModelIndex cell = model.index(row, column, root);
            cells << CellText(cell.data());
            const auto ground = cell.data(Qt::BackgroundRole).value<QBrush>();
            if (ground.style() == Qt::NoBrush) continue;
            grounds << QJsonObject{{QStringLiteral("row"), row},
                                   {QStringLiteral("column"), column},
                                   {QStringLiteral("color"), ground.color().name()}};
        }
        rows << cells;
    }
    return {{QStringLiteral("headings"), headings},
            {QStringLiteral("rows"), rows},
            {QStringLiteral("grounds"), grounds}};
}
