#pragma once

#include <QWidget>

/// Windows of the HotSync Manager that other programs look for: by these titles, whatever the texts of
/// the catalogue are.
inline constexpr const char* ProgressWindowTitle = "Hotsync Progress";
inline constexpr const char* ExitWindowTitle = "Exit Hotsync Manager";

/// Lets a window of the manager be found by the title that it has, while it is visible.
void LetBeFound(QWidget& window);
