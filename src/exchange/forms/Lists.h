#pragma once

#include "core/Text.h"

#include <QList>
#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QAbstractButton;
class QComboBox;
class QListWidget;
class QWidget;

/// What the two screens that lay out columns do with their lists. None of it announces a selection.

/// Shows rows (code page 1252) in a list, one of them selected.
void FillList(QListWidget& list, const std::vector<std::string>& rows,
              std::optional<std::size_t> selected = std::nullopt);

/// Shows beside the fields of a list, from row `first` on, what the screens of a table call them.
void ShowLabels(QListWidget& list, int first, std::string_view table);

/// Shows beside one row what it is called in the language of the texts.
void ShowLabel(QListWidget& list, int row, const Text& label);

/// The rows of a list that are selected, in list order.
QList<int> SelectedRows(const QListWidget& list);

/// Takes the selection from all rows, or from one.
void Deselect(QListWidget& list);
void Deselect(QListWidget& list, int row);

/// Enter in a control presses a button; elsewhere on the form it presses the default one.
void PressOnEnter(QWidget& control, QAbstractButton& button);
/// Del in a list presses a button.
void PressOnDelete(QListWidget& list, QAbstractButton& button);

/// Adds a name to a list that is typed into, unless it is there, any case; what is typed stays.
void ListName(QComboBox& box, const QString& name);

/// Takes a name out of the list, any case, and empties the box.
void UnlistName(QComboBox& box, const QString& name);
