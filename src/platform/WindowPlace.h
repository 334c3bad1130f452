#pragma once

#include <QRect>

#include <optional>

class QWidget;

/// A place where all of the window can be reached: cut to a screen that stands there. Nothing when no screen
/// does, since the one that it was on has gone. `place` is that of the window without its frame.
std::optional<QRect> PlaceOnScreen(const QRect& place);

/// Opens a window where and as large as it was left, if it has the property "KeepsPlace". Called before it
/// shows.
void RestorePlace(QWidget& window);

/// Keeps the place of such a window for the office of Global.AppPath; the programs that have none keep one
/// place for all offices.
void KeepPlace(const QWidget& window);
