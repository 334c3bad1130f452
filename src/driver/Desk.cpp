#include "driver/Desk.h"

#include "driver/Refused.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace {

/// A form that nothing paints (it lies outside the screen) still settles after this long.
constexpr int UnpaintedMilliseconds = 400;

/// Turns of the event loop behind the first paint: a program that queues its own work behind the
/// paint, or behind that, has done it by then.
constexpr int TurnsToSettle = 3;

bool IsForm(const QWidget& widget) {
    switch (widget.windowType()) {
    case Qt::Window:
    case Qt::Dialog:
    case Qt::Sheet:
    case Qt::Tool:
        return widget.isWindow();
    default:
        return false;
    }
}

bool MayChangeAnAnswer(QEvent::Type type) {
    switch (type) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Close:
    case QEvent::EnabledChange:
    case QEvent::Paint:
    case QEvent::UpdateRequest:
    case QEvent::WindowTitleChange:
    case QEvent::WindowActivate:
    case QEvent::FocusIn:
    case QEvent::LayoutRequest:
        return true;
    default:
        return false;
    }
}

} // namespace

void Desk::Watch() {
    const QString platform = QGuiApplication::platformName();
    managesWindows_ = platform == QLatin1String("offscreen") || platform.startsWith(QLatin1String("minimal"));
    qApp->installEventFilter(this);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && IsForm(*window)) Shown(*window);
    }
}

QList<QWidget*> Desk::Windows() const {
    QList<QWidget*> windows;
    for (auto entry = entries_.crbegin(); entry != entries_.crend(); ++entry) {
        if (entry->Window && entry->Window->isVisible()) windows << entry->Window;
    }
    return windows;
}

QWidget* Desk::Find(const QString& name) const {
    const QList<QWidget*> windows = Windows();
    for (QWidget* window : windows) {
        if (window->objectName() == name) return window;
    }
    for (QWidget* window : windows) {
        if (name == QLatin1String(window->metaObject()->className())) return window;
    }
    return nullptr;
}

QWidget& Desk::Form(const QString& name) const {
    if (QWidget* form = Find(name)) return *form;
    const QStringList names = Names();
    throw Refused(QStringLiteral("no form %1 is on the screen; there is %2")
                      .arg(name, names.isEmpty() ? QStringLiteral("none") : names.join(QLatin1String(", "))));
}

QWidget& Desk::FreeForm(const QString& name) const {
    QWidget& form = Form(name);
    if (const QWidget* above = BlockedBy(form)) {
        throw Refused(QStringLiteral("%1 is blocked by %2, which is modal and stands above it")
                          .arg(name, NameOf(*above)));
    }
    return form;
}

QWidget* Desk::BlockedBy(const QWidget& window) {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || modal == &window || modal->isAncestorOf(&window)) return nullptr;
    // A window that belongs to the modal one, as one that was opened from there, stands above it.
    const QWindow* handle = window.windowHandle();
    const QWindow* above = modal->windowHandle();
    if (handle && above && above->isAncestorOf(handle, QWindow::IncludeTransients)) return nullptr;
    for (const QWidget* parent = window.parentWidget(); parent; parent = parent->parentWidget()) {
        if (parent == modal) return nullptr;
    }
    if (modal->windowModality() == Qt::WindowModal) {
        for (const QWidget* parent = modal->parentWidget(); parent; parent = parent->parentWidget()) {
            if (parent->window() == &window) return modal;
        }
        return nullptr;
    }
    return modal;
}

bool Desk::IsSettled(const QWidget& window) const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [&](const Entry& entry) { return entry.Window == &window && entry.Settled; });
}

void Desk::ActivateTop() {
    const QWindow* focus = QGuiApplication::focusWindow();
    if (focus && focus->isVisible()) return;
    for (QWidget* window : Windows()) {
        if (!BlockedBy(*window)) return window->activateWindow();
    }
}

QString Desk::NameOf(const QWidget& window) {
    return window.objectName().isEmpty() ? QString::fromLatin1(window.metaObject()->className())
                                         : window.objectName();
}

QStringList Desk::Names() const {
    QStringList names;
    for (const QWidget* window : Windows()) names << NameOf(*window);
    return names;
}

Desk::Entry* Desk::EntryOf(const QWidget* window) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.Window == window; });
    return found == entries_.end() ? nullptr : &*found;
}

void Desk::Shown(QWidget& window) {
    entries_.removeIf([&](const Entry& entry) { return !entry.Window || entry.Window == &window; });
    entries_.push_back({&window});
    QTimer::singleShot(UnpaintedMilliseconds, this,
                       [this, guard = QPointer<QWidget>(&window)] { Settle(guard, 0); });
    if (WindowShown) WindowShown(window);
}

void Desk::Settle(const QPointer<QWidget>& window, int turns) {
    if (!window) return;
    if (turns > 0) {
        QTimer::singleShot(1, this, [this, window, turns] { Settle(window, turns - 1); });
        return;
    }
    if (Entry* entry = EntryOf(window)) entry->Settled = true;
    if (Changed) Changed();
}

bool Desk::eventFilter(QObject* object, QEvent* event) {
    const QEvent::Type type = event->type();
    if (!MayChangeAnAnswer(type) || !object->isWidgetType()) return false;
    auto* widget = static_cast<QWidget*>(object);
    if (IsForm(*widget)) {
        if (type == QEvent::Show && !event->spontaneous()) Shown(*widget);
        if (type == QEvent::Paint) {
            Entry* entry = EntryOf(widget);
            if (entry && !entry->Painted) {
                entry->Painted = true;
                Settle(widget, TurnsToSettle);
            }
        }
        if (type == QEvent::WindowActivate) {
            const auto at = std::find_if(entries_.begin(), entries_.end(),
                                         [&](const Entry& entry) { return entry.Window == widget; });
            if (at != entries_.end()) std::rotate(at, at + 1, entries_.end());
        }
        if (type == QEvent::Hide && managesWindows_) QTimer::singleShot(1, this, [this] { ActivateTop(); });
    }
    if (Changed) Changed();
    return false;
}

QWidget* FindControl(const QWidget& form, const QString& name) {
    QWidget* hidden = nullptr;
    for (QWidget* control : form.findChildren<QWidget*>(name)) {
        if (control->window() != &form) continue;
        if (control->isVisible()) return control;
        if (!hidden) hidden = control;
    }
    return hidden;
}

QAction* FindEntry(const QWidget& form, const QString& name) {
    const QList<QAction*> entries = form.findChildren<QAction*>(name);
    for (QAction* entry : entries) {
        if (entry->isVisible()) return entry;
    }
    return entries.isEmpty() ? nullptr : entries.front();
}
