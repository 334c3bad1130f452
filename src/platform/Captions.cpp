#include "core/Catalogue.h"
#include "platform/Convert.h"
#include "platform/Form.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>

#include <optional>

namespace {

/// The tab strip that has a widget for a page; nothing for any other widget.
QTabWidget* TabsAround(const QWidget& page) {
    const QObject* stack = page.parent();
    return stack ? qobject_cast<QTabWidget*>(stack->parent()) : nullptr;
}

/// Input controls keep what they hold: their tag is the number of a field, not of a text.
bool IsInput(const QObject& object) {
    return qobject_cast<const QLineEdit*>(&object) || qobject_cast<const QComboBox*>(&object);
}

void SetCaption(QObject& object, MessageId entry) {
    const QString caption = QString::fromStdString(CatalogueCaption(entry));
    const QString plain = QString::fromStdString(CatalogueText(entry));
    if (auto* button = qobject_cast<QAbstractButton*>(&object))
        button->setText(caption);
    else if (auto* label = qobject_cast<QLabel*>(&object))
        label->setText(label->buddy() ? caption : plain);
    else if (auto* action = qobject_cast<QAction*>(&object))
        action->setText(caption);
    else if (auto* menu = qobject_cast<QMenu*>(&object))
        menu->setTitle(caption);
    else if (auto* group = qobject_cast<QGroupBox*>(&object))
        group->setTitle(caption);
    else if (auto* widget = qobject_cast<QWidget*>(&object); widget && widget->isWindow())
        widget->setWindowTitle(plain);
    else if (auto* tabs = widget ? TabsAround(*widget) : nullptr)
        tabs->setTabText(tabs->indexOf(widget), caption);
}

/// The number that a control's tag holds, or nothing when it holds none.
std::optional<MessageId> TagOf(const QObject& object, const char* property) {
    bool isNumber = false;
    const int number = object.property(property).toString().toInt(&isNumber);
    if (!isNumber || number < 1 || number > 65535) return std::nullopt;
    return MessageId{static_cast<std::uint16_t>(number)};
}

} // namespace

void FillCaptions(QWidget& window) {
    QList<QObject*> all = window.findChildren<QObject*>();
    all.prepend(&window);
    for (QObject* object : all) {
        if (const auto entry = TagOf(*object, "Tag"); entry && !IsInput(*object)) SetCaption(*object, *entry);
        if (const auto entry = TagOf(*object, "TipTag")) {
            const QString tip = QString::fromStdString(CatalogueText(*entry));
            if (auto* widget = qobject_cast<QWidget*>(object)) {
                widget->setToolTip(PlainTip(tip));
                widget->setAccessibleName(tip);
            }
        }
    }
    for (auto* label : window.findChildren<QLabel*>()) {
        // What comes out of a table or a file is shown as it stands there; as markup it could open files.
        if (label->textFormat() == Qt::AutoText) label->setTextFormat(Qt::PlainText);
        // Unlike other controls a list is not read aloud by the label before it.
        auto* list = qobject_cast<QAbstractItemView*>(label->buddy());
        const auto entry = TagOf(*label, "Tag");
        if (list && entry && list->accessibleName().isEmpty())
            list->setAccessibleName(QString::fromStdString(CatalogueText(*entry)));
    }
}
