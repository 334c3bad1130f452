#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <functional>

/// The HotSync Manager's icon in the tray of the desk, where there is one; it appears when a tray does.
/// A click opens the window, and so does the menu's "Open".
class Tray : public QObject {
public:
    Tray(const std::function<void()>& open, const std::function<void()>& exit);

    /// Whether a window that is hidden can be had back from here.
    virtual bool IsThere() const;

    QMenu& Menu() { return menu_; }

private:
    QMenu menu_;
    QSystemTrayIcon icon_;
};
