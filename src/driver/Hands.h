#pragma once

#include <QAction>
#include <QString>
#include <QWidget>

#include <optional>

/// The mouse and the keyboard. All events take the road of real ones, through the window that has
/// the focus and the shortcuts, so that focus moves, mnemonics work and modal windows block. Each
/// routine throws Refused for what a person could not do; it may return late when a handler opens
/// a loop of its own, and the control may be gone then.

/// Presses and releases the left button on a control: a button on its mark, any other in its
/// middle. Refuses one that is hidden, disabled, covered, or does not answer to the mouse.
void ClickControl(QWidget& control);

/// Chooses a menu entry. Its menus are asked to bring themselves up to date first. Refuses one
/// that is hidden or disabled, or whose menu is.
void ClickEntry(QAction& entry);

/// Which entry of a list, a table or a combo box is meant.
struct Choice {
    std::optional<QString> Text; ///< the entry's text; the first of equal ones
    int Row = -1;                ///< counted from 0, looked at when there is no text
    int Column = 0;              ///< for tables: where the text is looked for and the mouse goes
    bool Twice = false;          ///< a double click (lists and tables)
    bool Add = false;            ///< with the control key held (lists and tables)
};

/// Chooses an entry: of a combo box through its list, of a list or table with the mouse, of tabs
/// with the mouse. Refuses an entry that is not there or cannot be chosen.
void ChooseItem(QWidget& control, const Choice& choice);

/// Clicks on a table's heading by its text.
void ClickHeading(QWidget& control, const QString& heading);

/// Gives a control the focus with the mouse and replaces its whole text by typing; ticks or clears
/// a button that can be checked ("true" and "false"). Refuses what is read-only, and a control
/// that holds another text afterwards.
void SetControl(QWidget& control, const QString& value);

/// Gives a control the focus as the tab key would.
void FocusControl(QWidget& control);

/// One key with its modifiers, as "Tab", "Return", "Alt+I", "Ctrl+A", "a". Refuses an unknown one.
void PressKey(const QString& key);

/// Types characters into whatever has the focus; a line end is Return, a tab is Tab.
void TypeText(const QString& text);
