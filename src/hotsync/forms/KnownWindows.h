#pragma once

#include <QWidget>

/// Windows of the HotSync Manager that other programs look for: by these titles, whatever the texts of
/// the catalogue are.
inline constexpr const char* ProgressWindowTitle = "Hotsync Progress";
inline constexpr const char* ExitWindowTitle = "Exit Hotsync Manager";

/// Gives a window the title that it is known by.
void BeKnownAs(const char* title, QWidget& window);
