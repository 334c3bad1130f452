#pragma once

#include <QAbstractItemView>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/// What stands on a control or menu entry as a person reads it: without mnemonic marks, rich text
/// as plain text; a window's title. Throws Refused for an object that shows no text.
QString ShownText(const QObject& object);

/// The text of a box: of a message box its message, of a file dialog its title, of any other window its
/// first label that shows one.
QString BoxText(const QWidget& box);

/// `enabled`, `visible`, `checked`, `focus`, `text`, `row` (the current entry, counted from 0, -1
/// for none), or any property of the object that has a JSON form. Throws Refused for any other.
QJsonValue PropertyOf(const QObject& object, const QString& name);

/// The entries of a combo box, a list, or a row of tabs. Throws Refused for any other control.
QStringList ItemsOf(const QWidget& control);

/// Where the chosen entries of a list stand, counted from 0 and in order; of a combo box or a row
/// of tabs the current one.
QJsonArray ChosenRowsOf(const QWidget& control);

/// The controls of a form that have a name, hidden ones too: {"controls": [{"name", "class", "enabled",
/// "visible"}, ...]}.
QJsonObject ControlsOf(const QWidget& form);

/// All cells of a table with its headings: {"headings": [...], "rows": [[...], ...]}, and those with a
/// ground of their own: "grounds": [{"row", "column", "color"}, ...]. A model that reads on demand is
/// read to its end. Throws Refused for a control that is no view of a model.
QJsonObject RowsOf(const QWidget& control);

/// A caption without its mnemonic marks: "&Import" is "Import", "R&&D" is "R&D".
QString WithoutMnemonic(const QString& caption);
