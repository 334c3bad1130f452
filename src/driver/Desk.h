#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>

class QAction;

/// The windows on the screen as a person sees them: which are there, which is on top, which takes
/// no input because a modal one stands above it.
///
/// On a platform without a window manager (offscreen, minimal) it does the one thing that a manager
/// would: when the active window goes, the topmost one left becomes active.
class Desk final : public QObject {
public:
    /// Called when a window appears, before its first paint.
    std::function<void(QWidget&)> WindowShown;
    /// Called behind an event after which a wait may have become true.
    std::function<void()> Changed;

    /// Watches all windows of the process; those that stand already are reported at once.
    void Watch();

    /// The visible windows, the topmost first. Menus, lists that drop down and tool tips are none.
    QList<QWidget*> Windows() const;

    /// The topmost visible window whose object name, or else whose class name, is `name`; nullptr
    /// when there is none.
    QWidget* Find(const QString& name) const;

    /// As Find, but throws Refused, naming the windows that are there.
    QWidget& Form(const QString& name) const;

    /// As Form, but refuses one that a modal window blocks as well.
    QWidget& FreeForm(const QString& name) const;

    /// The modal window that keeps `window` from taking input; nullptr when it is free.
    static QWidget* BlockedBy(const QWidget& window);

    /// True when the window has been painted and what its program queued behind that has run.
    bool IsSettled(const QWidget& window) const;

    /// Makes the topmost free window active when none is.
    void ActivateTop();

    /// What the window is called in requests.
    static QString NameOf(const QWidget& window);

    QStringList Names() const;

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Entry {
        QPointer<QWidget> Window;
        bool Painted = false;
        bool Settled = false;
    };

    Entry* EntryOf(const QWidget* window);
    void Shown(QWidget& window);
    void Settle(const QPointer<QWidget>& window, int turns);

    QList<Entry> entries_; ///< every window that was shown, the last activated last
    bool managesWindows_ = false;
};

/// A visible control of the form by its object name, else a hidden one; nullptr when there is none.
/// Controls of other windows whose parent is the form do not count.
QWidget* FindControl(const QWidget& form, const QString& name);

/// A menu entry of the form by its object name; nullptr when there is none.
QAction* FindEntry(const QWidget& form, const QString& name);
