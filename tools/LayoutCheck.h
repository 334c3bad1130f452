#pragma once

#include <QString>
#include <QStringList>

#include <string>

class QWidget;

/// What a person would find wrong with a window, as it stands on the screen: a line each, with the control's
/// name. Nothing when all is well.

/// Texts that are cut, controls that lie upon each other or beyond what holds them, and a window that is
/// larger than its screen.
QStringList LayoutProblems(const QWidget& window);

/// Controls that a key reaches and that have no name to be read aloud; those that the tab key reaches behind
/// one that lies below them, or to their right in the row, where that is not meant; more than one default
/// button, or one that destroys something; and a window with buttons in which Esc does nothing.
QStringList KeyProblems(const QWidget& window);

/// Texts that do not stand out from what is behind them: less than 4.5 to 1, as it is painted.
QStringList ContrastProblems(QWidget& window);

/// Whether the window had to be made to scroll, since it is larger than the screen.
bool Scrolls(const QWidget& window);

/// Writes a catalogue whose texts are the built-in ones, each a third longer. RunTimeFailure as
/// WriteWholeFile.
void WriteStretchedTexts(const std::string& path);
