#include "driver/Hands.h"

#include "driver/Reading.h"
#include "driver/Refused.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRadioButton>
#include <QScrollArea>
#include <QStyle>
#include <QStyleHints>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QTreeView>
#include <QWindow>

// What the public headers of Qt's own test library call to hand an event to a window as the window
// system does. Sent straight to a widget, a key would reach no shortcut and pass modal windows by.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button, QEvent::Type type,
                                      Qt::KeyboardModifiers mods, int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers mods,
                                    const QString& text, bool autorep, ushort count);
QT_END_NAMESPACE

namespace {

QString Where(const QWidget& control) {
    const QWidget* window = control.window();
    const QString form = window->objectName().isEmpty()
                             ? QString::fromLatin1(window->metaObject()->className())
                             : window->objectName();
    return QStringLiteral("%1.%2").arg(form, control.objectName());
}

void RefuseUnusable(const QWidget& control) {
    if (!control.isVisible()) throw Refused(Where(control) + QStringLiteral(" is hidden"));
    if (!control.isEnabled()) throw Refused(Where(control) + QStringLiteral(" is disabled"));
}

// ---- the mouse ----

/// The time of the last click. Each lies so far behind the one before that two single clicks never
/// make a double one.
int mouseClock = 0;

void SendMouse(const QPointer<QWindow>& window, QPointF local, QPointF global, QEvent::Type type,
               Qt::KeyboardModifiers modifiers) {
    if (!window) return;
    const bool down = type != QEvent::MouseButtonRelease;
    qt_handleMouseEvent(window, local, global, down ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton, type,
                        modifiers, ++mouseClock);
}

/// Scrolls a control that lies in a scrolled page into sight, as a person would before clicking: of one that
/// is larger than what is seen, the place that matters.
void BringIntoSight(QWidget& control, QPoint place) {
    for (QWidget* parent = control.parentWidget(); parent && !control.isWindow();
         parent = parent->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(parent)) {
            area->ensureWidgetVisible(&control); // of a line, its cursor
            const QPoint there = control.mapTo(area->widget(), place);
            area->ensureVisible(there.x(), there.y());
        }
        if (parent->isWindow()) break;
    }
}

void ClickAt(QWidget& widget, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             bool twice = false) {
    BringIntoSight(widget, at);
    QWidget* window = widget.window();
    const QPoint local = widget.mapTo(window, at);
    if (!window->rect().contains(local)) {
        throw Refused(Where(widget) + QStringLiteral(" lies outside its window"));
    }
    const QWidget* hit = window->childAt(local);
    if (!hit) hit = window;
    if (hit != &widget && !widget.isAncestorOf(hit)) {
        throw Refused(
            QStringLiteral("%1 is covered by %2 (a %3)")
                .arg(Where(widget), hit->objectName(), QString::fromLatin1(hit->metaObject()->className())));
    }
    const QPointer<QWindow> handle = window->windowHandle();
    if (!handle) throw Refused(Where(widget) + QStringLiteral(" has no window on the screen"));
    if (!window->isActiveWindow()) window->activateWindow();
    const QPointF global = widget.mapToGlobal(at);
    mouseClock += QGuiApplication::styleHints()->mouseDoubleClickInterval() + 1;
    for (int click = 0; click < (twice ? 2 : 1); ++click) {
        SendMouse(handle, local, global, QEvent::MouseButtonPress, modifiers);
        SendMouse(handle, local, global, QEvent::MouseButtonRelease, modifiers);
    }
}

/// The mark of a check box or an option, since the empty room beside a short caption does not take
/// the mouse; the middle of any other control.
QPoint MarkOf(const QWidget& control) {
    const bool isCheck = qobject_cast<const QCheckBox*>(&control);
    if (!isCheck && !qobject_cast<const QRadioButton*>(&control)) return control.rect().center();
    QStyleOptionButton option;
    option.initFrom(&control);
    option.text = static_cast<const QAbstractButton&>(control).text();
    return control.style()
        ->subElementRect(isCheck ? QStyle::SE_CheckBoxIndicator : QStyle::SE_RadioButtonIndicator, &option,
                         &control)
        .center();
}

// ---- the keyboard ----

QWindow* FocusWindow() {
    QWindow* window = QGuiApplication::focusWindow();
    if (!window) throw Refused(QStringLiteral("no window has the keyboard's focus"));
    return window;
}

void SendKey(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    const QPointer<QWindow> window = FocusWindow();
    qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
    if (window) qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
}

/// The characters that a keyboard sends along with a key that has no letter.
QString TextOfKey(int key) {
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("\r");
    case Qt::Key_Tab:
        return QStringLiteral("\t");
    case Qt::Key_Escape:
        return QStringLiteral("\x1b");
    case Qt::Key_Backspace:
        return QStringLiteral("\b");
    case Qt::Key_Delete:
        return QStringLiteral("\x7f");
    case Qt::Key_Space:
        return QStringLiteral(" ");
    default:
        return {};
    }
}

void SendCharacter(const QString& character) {
    if (character == QLatin1String("\n"))
        return SendKey(Qt::Key_Return, Qt::NoModifier, TextOfKey(Qt::Key_Return));
    if (character == QLatin1String("\t")) return SendKey(Qt::Key_Tab, Qt::NoModifier, TextOfKey(Qt::Key_Tab));
    const QChar first = character.front();
    int key = Qt::Key_unknown;
    if (first.unicode() >= 0x20 && first.unicode() < 0x7f) key = first.toUpper().unicode();
    SendKey(key, first.isUpper() ? Qt::ShiftModifier : Qt::NoModifier, character);
}

/// Gives a control the focus with the mouse and marks its whole text.
void EnterText(QWidget& control, QWidget& clickOn) {
    ClickAt(clickOn, clickOn.rect().center());
    const QWidget* focus = QApplication::focusWidget();
    if (!focus || (focus != &control && !control.isAncestorOf(focus))) {
        throw Refused(Where(control) + QStringLiteral(" does not take the keyboard's focus"));
    }
    SendKey(Qt::Key_A, Qt::ControlModifier, {});
}

/// Replaces the text; `now` reads it back.
template <class Read>
void Retype(QWidget& control, QWidget& clickOn, const QString& text, Read now) {
    const QPointer<QWidget> guard = &control;
    const QString where = Where(control);
    EnterText(control, clickOn);
    if (text.isEmpty())
        SendKey(Qt::Key_Delete, Qt::NoModifier, TextOfKey(Qt::Key_Delete));
    else
        TypeText(text);
    if (guard && now() != text) {
        throw Refused(
            QStringLiteral("%1 holds \"%2\" after \"%3\" was typed into it").arg(where, now(), text));
    }
}

/// Replaces the text of a control that is typed into. False for any other.
bool TypeInto(QWidget& control, const QString& value) {
    const auto refuseReadOnly = [&](bool readOnly) {
        if (readOnly) throw Refused(Where(control) + QStringLiteral(" cannot be changed, only read"));
    };
    if (auto* edit = qobject_cast<QLineEdit*>(&control)) {
        refuseReadOnly(edit->isReadOnly());
        if (value.contains(QLatin1Char('\n')))
            throw Refused(Where(control) + QStringLiteral(" takes a single line"));
        Retype(control, control, value, [edit] { return edit->text(); });
    } else if (auto* box = qobject_cast<QComboBox*>(&control)) {
        if (!box->lineEdit())
            throw Refused(Where(control) + QStringLiteral(" is not typed into: choose an entry"));
        Retype(control, *box->lineEdit(), value, [box] { return box->currentText(); });
    } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(&control)) {
        refuseReadOnly(spin->isReadOnly());
        auto* line = spin->findChild<QLineEdit*>();
        if (!line) throw Refused(Where(control) + QStringLiteral(" is not typed into"));
        Retype(control, *line, value, [spin] {
            spin->interpretText();
            return spin->text();
        });
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(&control)) {
        refuseReadOnly(plain->isReadOnly());
        Retype(control, *plain->viewport(), value, [plain] { return plain->toPlainText(); });
    } else if (auto* text = qobject_cast<QTextEdit*>(&control)) {
        refuseReadOnly(text->isReadOnly());
        Retype(control, *text->viewport(), value, [text] { return text->toPlainText(); });
    } else {
        return false;
    }
    return true;
}

bool WantsTick(const QWidget& control, const QString& value) {
    if (value == QLatin1String("true")) return true;
    if (value == QLatin1String("false")) return false;
    throw Refused(QStringLiteral("%1 is set to true or false, not to \"%2\"").arg(Where(control), value));
}

void TickGroup(QGroupBox& group, bool tick) {
    if (group.isChecked() == tick) return;
    BringIntoSight(group, group.rect().center());
    group.setFocus(Qt::TabFocusReason);
    SendKey(Qt::Key_Space, Qt::NoModifier, TextOfKey(Qt::Key_Space));
}

void TickButton(QAbstractButton& button, bool tick) {
    if (button.isChecked() == tick) return;
    const QPointer<QAbstractButton> guard = &button;
    const QString where = Where(button);
    ClickAt(button, MarkOf(button));
    if (guard && guard->isChecked() != tick) {
        throw Refused(QStringLiteral("%1 is still %2")
                          .arg(where, tick ? QStringLiteral("clear") : QStringLiteral("ticked")));
    }
}

// ---- entries ----

QString Named(const Choice& choice) {
    return choice.Text ? QStringLiteral("\"%1\"").arg(*choice.Text)
                       : QStringLiteral("number %1").arg(choice.Row);
}

[[noreturn]] void RefuseEntry(const QWidget& control, const Choice& choice, const QStringList& items) {
    constexpr qsizetype enough = 40;
    QString shown = items.mid(0, enough).join(QLatin1String(", "));
    if (items.size() > enough) shown += QStringLiteral(", ... (%1 in all)").arg(items.size());
    throw Refused(QStringLiteral("%1 has no entry %2; it has: %3").arg(Where(control), Named(choice), shown));
}

int RowOf(const QWidget& control, const Choice& choice, const QStringList& items) {
    const qsizetype row = choice.Text ? items.indexOf(*choice.Text) : choice.Row;
    if (row < 0 || row >= items.size()) RefuseEntry(control, choice, items);
    return static_cast<int>(row);
}

void ChooseInCombo(QComboBox& box, const Choice& choice) {
    const int row = RowOf(box, choice, ItemsOf(box));
    const QModelIndex index = box.model()->index(row, box.modelColumn(), box.rootModelIndex());
    constexpr Qt::ItemFlags usable = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if ((index.flags() & usable) != usable) {
        throw Refused(QStringLiteral("entry %1 of %2 cannot be chosen").arg(Named(choice), Where(box)));
    }
    BringIntoSight(box, box.rect().center());
    const QPointer<QComboBox> guard = &box;
    box.setFocus(Qt::MouseFocusReason);
    if (!guard) return;
    box.showPopup();
    if (!guard) return;
    // In the open list Return stands for the click: the list closes and the choice is announced,
    // also when it is the entry that was chosen before.
    box.view()->setCurrentIndex(index);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, TextOfKey(Qt::Key_Return));
    QCoreApplication::sendEvent(box.view(), &press);
}

void ChooseInView(QAbstractItemView& view, const Choice& choice) {
    QAbstractItemModel* model = view.model();
    if (!model) RefuseEntry(view, choice, {});
    const QModelIndex root = view.rootIndex();
    QStringList items;
    if (choice.Text) {
        for (int row = 0; row < model->rowCount(root); ++row) {
            items << model->index(row, choice.Column, root).data().toString();
        }
    }
    const int row = choice.Text ? RowOf(view, choice, items) : choice.Row;
    const QModelIndex index = model->index(row, choice.Column, root);
    if (!index.isValid()) RefuseEntry(view, choice, ItemsOf(view));
    view.scrollTo(index);
    const QRect cell = view.visualRect(index) & view.viewport()->rect();
    if (cell.isEmpty()) {
        throw Refused(QStringLiteral("entry %1 of %2 cannot be seen").arg(Named(choice), Where(view)));
    }
    ClickAt(*view.viewport(), cell.center(), choice.Add ? Qt::ControlModifier : Qt::NoModifier, choice.Twice);
}

} // namespace

void ClickControl(QWidget& control) {
    RefuseUnusable(control);
    const bool answers = qobject_cast<QAbstractButton*>(&control) || (control.focusPolicy() & Qt::ClickFocus);
    if (!answers) throw Refused(Where(control) + QStringLiteral(" does not answer to the mouse"));
    ClickAt(control, MarkOf(control));
}

void ClickEntry(QAction& entry) {
    QList<QMenu*> menus;
    const QAction* at = &entry;
    while (at) {
        QMenu* menu = nullptr;
        for (QObject* owner : at->associatedObjects()) {
            if (!menu) menu = qobject_cast<QMenu*>(owner);
        }
        if (!menu || menus.contains(menu)) break;
        menus.prepend(menu);
        at = menu->menuAction();
    }
    const QPointer<QAction> guard = &entry;
    const QString name = entry.objectName();
    for (const QPointer<QMenu> menu : menus) {
        if (menu && !menu->isEnabled()) {
            throw Refused(QStringLiteral("menu entry %1 lies in a menu that is disabled").arg(name));
        }
        if (menu) emit menu->aboutToShow();
    }
    if (!guard) throw Refused(QStringLiteral("menu entry %1 went when its menu opened").arg(name));
    if (!entry.isVisible()) throw Refused(QStringLiteral("menu entry %1 is hidden").arg(name));
    if (!entry.isEnabled()) throw Refused(QStringLiteral("menu entry %1 is disabled").arg(name));
    if (entry.menu()) throw Refused(QStringLiteral("%1 is a menu and no entry").arg(name));
    entry.activate(QAction::Trigger);
}

void ChooseItem(QWidget& control, const Choice& choice) {
    RefuseUnusable(control);
    if (auto* box = qobject_cast<QComboBox*>(&control)) return ChooseInCombo(*box, choice);
    if (auto* view = qobject_cast<QAbstractItemView*>(&control)) return ChooseInView(*view, choice);
    auto* tabs = qobject_cast<QTabBar*>(&control);
    if (auto* pages = qobject_cast<QTabWidget*>(&control)) tabs = pages->tabBar();
    if (!tabs) throw Refused(Where(control) + QStringLiteral(" has no entries to choose from"));
    const int tab = RowOf(control, choice, ItemsOf(*tabs));
    if (!tabs->isTabEnabled(tab) || !tabs->isTabVisible(tab)) {
        throw Refused(
            QStringLiteral("tab %1 of %2 is disabled or hidden").arg(Named(choice), Where(control)));
    }
    ClickAt(*tabs, tabs->tabRect(tab).center());
}

void ClickHeading(QWidget& control, const QString& heading) {
    RefuseUnusable(control);
    QHeaderView* header = nullptr;
    if (auto* table = qobject_cast<QTableView*>(&control)) header = table->horizontalHeader();
    if (auto* tree = qobject_cast<QTreeView*>(&control)) header = tree->header();
    if (!header || !header->model() || !header->isVisible()) {
        throw Refused(Where(control) + QStringLiteral(" has no headings"));
    }
    QStringList headings;
    for (int column = 0; column < header->count(); ++column) {
        headings << header->model()->headerData(column, Qt::Horizontal).toString();
    }
    const qsizetype column = headings.indexOf(heading);
    if (column < 0 || header->isSectionHidden(static_cast<int>(column))) {
        throw Refused(QStringLiteral("%1 has no heading \"%2\"; it has: %3")
                          .arg(Where(control), heading, headings.join(QLatin1String(", "))));
    }
    const int section = static_cast<int>(column);
    const auto middle = [&] {
        return header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
    };
    auto& view = static_cast<QAbstractItemView&>(control);
    if (!header->viewport()->rect().contains(middle(), 1) && view.model()->rowCount(view.rootIndex()) > 0) {
        view.scrollTo(view.model()->index(0, section, view.rootIndex()));
    }
    ClickAt(*header->viewport(), {middle(), header->viewport()->height() / 2});
}

void SetControl(QWidget& control, const QString& value) {
    RefuseUnusable(control);
    if (TypeInto(control, value)) return;
    auto* group = qobject_cast<QGroupBox*>(&control);
    if (group && group->isCheckable()) return TickGroup(*group, WantsTick(control, value));
    auto* button = qobject_cast<QAbstractButton*>(&control);
    if (!button || !button->isCheckable()) throw Refused(Where(control) + QStringLiteral(" cannot be set"));
    TickButton(*button, WantsTick(control, value));
}

void FocusControl(QWidget& control) {
    RefuseUnusable(control);
    if (control.focusPolicy() == Qt::NoFocus) {
        throw Refused(Where(control) + QStringLiteral(" does not take the keyboard's focus"));
    }
    if (!control.isActiveWindow()) control.activateWindow();
    control.setFocus(Qt::TabFocusReason);
}

void PressKey(const QString& key) {
    if (key.size() == 1) return SendCharacter(key);
    const QKeySequence sequence = QKeySequence::fromString(key, QKeySequence::PortableText);
    if (sequence.count() != 1 || sequence[0].key() == Qt::Key_unknown) {
        throw Refused(QStringLiteral("\"%1\" is no key").arg(key));
    }
    const Qt::KeyboardModifiers modifiers = sequence[0].keyboardModifiers();
    const Qt::Key code = sequence[0].key();
    const bool plain = !(modifiers & ~Qt::KeyboardModifiers(Qt::ShiftModifier));
    QString text = TextOfKey(code);
    if (text.isEmpty() && plain && code >= Qt::Key_Space && code <= Qt::Key_AsciiTilde) {
        const QChar letter(static_cast<char16_t>(code));
        text = modifiers & Qt::ShiftModifier ? letter : letter.toLower();
    }
    SendKey(code, modifiers, text);
}

void TypeText(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size();
        SendCharacter(text.mid(i, pair ? 2 : 1));
        if (pair) ++i;
    }
}
