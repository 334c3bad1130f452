#pragma once

#include <QObject>

#include <functional>

class QPoint;
class QWidget;

/// The keys of the help in one window: F1, Shift+F1 and the pointer of "What's This?". Belongs to the window.
class HelpKeys final : public QObject {
    Q_OBJECT

public:
    /// `help` is called for F1. The other two show the hint of a control as a pop-up.
    HelpKeys(QWidget& window, std::function<void()> help);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget& window_;
    std::function<void()> help_;
};

/// Shows the hint of a control as a pop-up of the help: what the line for the mouse says of it, or its
/// description, or its tool tip; its own or that of what it is a part of. Says so when there is none.
void ShowHint(const QWidget& control);
